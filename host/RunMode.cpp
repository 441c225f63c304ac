// RunMode.cpp: the default run: start, aircraft and scenery, the frames, aircraft unload, shut-down, summary.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "CheckSignals.h"
#include "CheckVerdicts.h"

#include "Modes.h"
#include "Report.h"
#include "SimLayout.h"
#include "SimSound.h"
#include "Simulator.h"
#include "TVPMApi.h"

namespace tvpmhost {

int RunInThisProcess(const HostOptions& o, int crashFd);

namespace {

struct RunSetup {
    std::string root, aircraftFolder;
    std::vector<std::string> sceneries;
};

bool PrepareRun(const HostOptions& o, const TempFolder& temp, RunSetup& setup, std::string& error) {
    if (!o.plugins.empty()) {
        if (!temp.Ok()) {
            error = "cannot create a temporary simulator folder";
            return false;
        }
        setup.root = temp.Path();
        if (!MakeSimulatorFolder(setup.root, error)) return false;
        for (auto& p : o.plugins)
            if (AddPlugin(setup.root, p, error).empty()) return false;
    } else {
        setup.root = WithSlash(Absolute(o.root.empty() ? DefaultRoot() : o.root));
        if (!IsDirectory(setup.root)) {
            error = "simulator folder " + setup.root + " does not exist";
            return false;
        }
    }
    // The bundled example aircraft flies only in the default run.
    const bool defaultRun = o.root.empty() && o.plugins.empty();
    setup.aircraftFolder = !o.aircraft.empty() ? Absolute(o.aircraft)
                           : defaultRun        ? DefaultAircraft(setup.root)
                                               : "";
    if (!setup.aircraftFolder.empty() && !IsDirectory(setup.aircraftFolder)) {
        error = "aircraft folder " + setup.aircraftFolder + " does not exist";
        return false;
    }
    for (auto& s : o.sceneries) {
        if (!IsDirectory(s)) {
            error = "scenery folder " + s + " does not exist";
            return false;
        }
        setup.sceneries.push_back(WithSlash(Absolute(s)));
    }
    return true;
}

void Fly(Simulator& sim, RunSummary& summary, const RunSetup& setup, long frames) {
    SetStep("frames");
    ObservePlugins(summary, false);
    for (auto& pack : setup.sceneries) sim.RegisterScenery(pack);
    ObservePlugins(summary, false);
    if (!setup.aircraftFolder.empty()) {
        sim.LoadAircraft(AircraftFile(setup.aircraftFolder));
        ObservePlugins(summary, true);
    }
    for (long f = 0; f < frames; ++f) {
        sim.Frame();
        // Half-way, the user tries every menu item the plugins added.
        if (f == frames / 2) World().PickPluginMenuItems();
        // Three quarters in, the user switches views.
        if (f == frames * 3 / 4) sim.ChangeView();
    }
    ObservePlugins(summary, false);
    if (!setup.aircraftFolder.empty()) {
        SetStep("aircraft unload");
        sim.UnloadAircraft();
        for (auto& [path, p] : summary.plugins)
            if (p.aircraft) World().ReportAliveOf(path);
    }
    SetStep("shut-down");
    for (auto& [path, p] : summary.plugins) WatchPluginCode(path);
    sim.Shutdown();
    for (auto& [path, p] : summary.plugins)
        if (!p.aircraft) World().ReportAliveOf(path);
}

// The crash the run's process reported, said the way --check says it; the
// JSON report, which the process could not write, says it too.
int ReportCrash(const std::string& crashFile, const HostOptions& o) {
    const CrashReport c = ReadCrash(crashFile, "");
    if (c.kind.empty()) return 0;
    const std::string plugin = !c.frames.empty() ? c.frames.front().file : c.plugin;
    fprintf(stderr, "\ntvpm-host: %s in step '%s'%s%s\n", c.signal.c_str(), c.step.c_str(),
            c.inFlight.empty() ? "" : (" during " + c.inFlight).c_str(),
            plugin.empty() ? "" : (", in plugin " + plugin).c_str());
    for (auto& f : c.frames)
        fprintf(stderr, "    at %s +%s %s\n", f.file.c_str(), f.offset.c_str(), f.function.c_str());
    printf("\nResult: FAILED (the simulator process crashed)\n");
    if (!o.reportFile.empty()) {
        FILE* out = fopen(o.reportFile.c_str(), "w");
        if (!out) return 3;
        fprintf(out, "{\"mode\":\"run\",\"ok\":false,\"crash\":{\"signal\":%s,\"step\":%s,\"inFlight\":%s,\"plugin\":%s}}\n",
                JsonString(c.signal).c_str(), JsonString(c.step).c_str(), JsonString(c.inFlight).c_str(),
                JsonString(plugin).c_str());
        fclose(out);
    }
    return 3;
}

}  // namespace

// The run happens in a child process, so that a plugin that crashes it is
// still reported.
int RunHost(const HostOptions& o) {
    TempFolder temp;
    if (!temp.Ok()) return RunInThisProcess(o, -1);
    const std::string crashFile = temp.Path() + "run.crash";
    const int fd = open(crashFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) _exit(RunInThisProcess(o, fd));
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) return RunInThisProcess(o, fd);
    if (fd >= 0) close(fd);
    if (const int crashed = ReportCrash(crashFile, o)) return crashed;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 3;
}

int RunInThisProcess(const HostOptions& o, int crashFd) {
    if (crashFd >= 0) InstallCrashReport(crashFd, 0);
    SetStep("start");
    TempFolder temp;
    RunSetup setup;
    std::string error;
    if (!PrepareRun(o, temp, setup, error)) {
        fprintf(stderr, "tvpm-host: %s\n", error.c_str());
        return 2;
    }
    Simulator sim;
    sim.log.echo = !o.quiet;
    FILE* logFile = nullptr;
    if (!o.logFile.empty() && !(logFile = fopen(o.logFile.c_str(), "w"))) {
        fprintf(stderr, "tvpm-host: cannot write %s\n", o.logFile.c_str());
        return 2;
    }
    sim.log.file = logFile;
    RunSummary summary;
    summary.library = o.library.empty() ? DefaultLibrary() : o.library;
    summary.root = setup.root;
    summary.frames = o.frames > 0 ? o.frames : 300;
    summary.fps = o.fps;
    if (!sim.Start(summary.library, setup.root, o.fps, error))
        summary.startError = error;
    else
        Fly(sim, summary, setup, summary.frames);
    CompleteSummary(summary, sim);
    summary.sound = SoundSummary();
    summary.soundLeftovers = SoundLeftovers();
    PrintSummary(summary);
    if (!o.audioOut.empty()) {
        for (auto& file : WriteBusWavs(o.audioOut, error)) printf("wrote %s\n", file.c_str());
        if (!error.empty()) fprintf(stderr, "tvpm-host: %s\n", error.c_str());
    }
    if (logFile) fclose(logFile);
    if (!o.reportFile.empty() && !WriteJsonReport(summary, o.reportFile, error)) {
        fprintf(stderr, "tvpm-host: %s\n", error.c_str());
        return 2;
    }
    fflush(nullptr);
    return summary.Ok() ? 0 : 1;
}

}  // namespace tvpmhost
