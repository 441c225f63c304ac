// CheckSteps.cpp: the life a checked plugin is driven through in the child, and what is read out of it.
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "CheckMode.h"
#include "CheckSignals.h"
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

// Time left to threads the plugin did not stop to run into its unloaded code.
constexpr useconds_t kLateThreadGraceUs = 300 * 1000;

class Findings {
public:
    explicit Findings(const std::string& file) : out_(fopen(file.c_str(), "w")) {}
    ~Findings() {
        if (out_) fclose(out_);
    }
    void Add(const char* check, Outcome outcome, const std::string& message) {
        Add(Finding{check, CurrentStep(), outcome, message});
    }
    void Add(const Finding& f) { Raw(FindingLine(f)); }
    void Raw(const std::string& line) {
        if (!out_) return;
        fprintf(out_, "%s\n", line.c_str());
        fflush(out_);  // a later crash must not lose what was found so far
    }

private:
    FILE* out_;
};

std::string FailureReason(const HostLog& log, const std::string& path) {
    for (auto& f : log.failed)
        if (f.path == path) return f.reason;
    for (auto& w : log.loaderWarnings)
        if (w.find(path) != std::string::npos) return w;
    return "TVPM did not load it (no library in a layout TVPM looks for?)";
}

// Marks the step and remembers where the plugin's code is for crash reports.
void Step(Simulator& sim, const char* step, const std::string& path) {
    SetStep(step);
    WatchPluginCode(path);
    sim.log.Flush();
    if (!sim.log.file) return;
    fprintf(sim.log.file, "%s%s\n", kStepMarker, step);
    fflush(sim.log.file);
}

bool StillLoaded(const std::string& path, TVPMPluginID& id, Findings& f, const char* after) {
    id = Api().FindPluginByPath(path.c_str());
    if (id >= 0 && Api().IsPluginEnabled(id)) return true;
    f.Add("lifecycle", Outcome::kFail, std::string("was not loaded and enabled after ") + after);
    return false;
}

bool EnableAgain(TVPMPluginID id) {
    InFlight call("TPluginEnable");
    return Api().EnablePlugin(id) != 0;
}

// Start to shut-down; false when the plugin never got going.
bool DriveLifecycle(Simulator& sim, const CheckParams& p, Findings& f) {
    TVPMApi& api = Api();
    const std::string& path = p.pluginPath;
    if (p.unit.aircraft) {
        Step(sim, "aircraft load", path);
        sim.LoadAircraft(p.acfPath);
    }
    TVPMPluginID id = api.FindPluginByPath(path.c_str());
    if (id < 0) {
        f.Add("load", Outcome::kFail, "did not load: " + FailureReason(sim.log, path));
        return false;
    }
    f.Raw("name\t" + PluginName(id));
    Step(sim, "enable", path);
    if (!api.IsPluginEnabled(id)) {
        f.Add("load", Outcome::kFail, "did not enable: TPluginEnable returned 0");
        return false;
    }
    Step(sim, "frames", path);
    sim.Frames(p.frames);
    Step(sim, "disable", path);
    {
        InFlight call("TPluginDisable");
        api.DisablePlugin(id);
    }
    sim.Frames(p.frames / 2);
    Step(sim, "re-enable", path);
    if (!EnableAgain(id)) f.Add("lifecycle", Outcome::kFail, "refused to enable again after being disabled");
    sim.Frames(p.frames);
    Step(sim, "reload", path);
    api.ReloadPlugins();  // runs at the end of the next flight-loop pass
    sim.Frame();
    if (!StillLoaded(path, id, f, "a reload of all plugins")) return false;
    WatchPluginCode(path);
    sim.Frames(p.frames);
    if (p.fuzzRounds > 0 && p.selection.Selected("fuzz")) {
        Step(sim, "fuzz", path);
        std::vector<Finding> fuzz;
        FuzzPlugin(sim, p, fuzz);
        for (auto& x : fuzz) f.Add(x);
        if (!StillLoaded(path, id, f, "fuzzing")) return false;
    }
    if (p.unit.aircraft) {
        Step(sim, "aircraft unload", path);
        sim.UnloadAircraft();
    } else {
        Step(sim, "aircraft load", path);
        sim.LoadAircraft(p.acfPath);
        sim.Frames(p.frames / 2);
        Step(sim, "aircraft unload", path);
        sim.UnloadAircraft();
        sim.Frames(p.frames / 2);
    }
    return true;
}

bool DiagnosticsWanted(const CheckSelection& s) {
    for (const char* check : {"threads", "errors", "unknown-data", "leftovers"})
        if (s.Selected(check)) return true;
    return false;
}

void WriteTimings(const Simulator& sim, const CheckParams& p, Findings& f) {
    f.Raw("framecount\t" + std::to_string(World().frame));
    auto it = sim.timings.find(p.pluginPath);
    if (it == sim.timings.end()) return;
    for (auto& [category, t] : it->second) {
        char line[300];
        const double budgetShare = t.totalUs / std::max(1L, World().frame) / (1e6 / p.fps);
        snprintf(line, sizeof line, "timing\t%s\t%ld\t%.0f\t%.2f\t%.0f\t%.0f\t%.4f\t%.0f", CategoryName(category),
                 t.calls, t.totalUs, t.MeanUs(), t.PercentileUs(99), t.maxUs, budgetShare, t.MaxAfterFirstUs());
        f.Raw(line);
        for (auto& [frame, us] : t.usByFrame)
            f.Raw("frame\t" + std::string(CategoryName(category)) + "\t" + std::to_string(frame) + "\t" +
                  std::to_string(us));
    }
}

}  // namespace

void CheckInThisProcess(const CheckParams& p) {
    Findings f(p.resultFile);
    Simulator sim;
    sim.log.file = fopen(p.logFile.c_str(), "w");
    CheckedPlugin plugin{p, sim, DirectoryNames("/proc/self/fd"), DirectoryNames("/proc/self/task")};
    if (DiagnosticsWanted(p.selection)) setenv(TVPM_DIAGNOSTICS_ENVIRONMENT, "1", 1);
    std::string error;
    Step(sim, "start", p.pluginPath);
    if (!sim.Start(p.library, p.root, p.fps, error)) {
        f.Add("load", Outcome::kFail, error);
        return;
    }
    const bool ran = DriveLifecycle(sim, p, f);
    // Still running its last fuzzed command, perhaps: TVPM takes control back
    // at disable and tells the plugin, so this is a note.
    for (auto& held : WorldControlsStillHeld()) f.Add("world-services", Outcome::kPass, held);
    Step(sim, "shut-down", p.pluginPath);
    sim.Shutdown();
    if (ran) World().ReportAliveOf(p.pluginPath);
    std::vector<Finding> audits;
    for (auto& check : AllChecks())
        if (check.audit && p.selection.Selected(check)) check.audit(plugin, audits);
    for (auto& x : audits) f.Add(x);
    ReserveUnloadedCode();
    usleep(kLateThreadGraceUs);
    WriteTimings(sim, p, f);
    if (sim.log.file) fclose(sim.log.file);
    sim.log.file = nullptr;
}

}  // namespace tvpmhost
