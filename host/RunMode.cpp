// RunMode.cpp: the default run: start, aircraft and scenery, the frames, aircraft unload, shut-down, summary.
#include <cstdio>

#include "Modes.h"
#include "Report.h"
#include "SimLayout.h"
#include "SimSound.h"
#include "Simulator.h"
#include "TVPMApi.h"

namespace tvpmhost {

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
        sim.UnloadAircraft();
        for (auto& [path, p] : summary.plugins)
            if (p.aircraft) World().ReportAliveOf(path);
    }
    sim.Shutdown();
    for (auto& [path, p] : summary.plugins)
        if (!p.aircraft) World().ReportAliveOf(path);
}

}  // namespace

int RunHost(const HostOptions& o) {
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
    return summary.Ok() ? 0 : 1;
}

}  // namespace tvpmhost
