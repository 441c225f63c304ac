// CheckSteps.cpp: the life a checked plugin is driven through, and what is read out of it.
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "CheckMode.h"
#include "SimServices.h"
#include "SimSound.h"
#include "SimWorld.h"
#include "Simulator.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

class Findings {
public:
    explicit Findings(const std::string& file) : out_(fopen(file.c_str(), "w")) {}
    ~Findings() {
        if (out_) fclose(out_);
    }
    void Add(const char* kind, const std::string& text) {
        if (!out_) return;
        fprintf(out_, "%s\t%s\n", kind, text.c_str());
        fflush(out_);  // a later abort must not lose what was found so far
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

void CheckStillMapped(const std::string& path, const char* when, Findings& f) {
    void* h = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (!h) return;
    dlclose(h);
    f.Add("problem", std::string("plugin code still mapped after ") + when +
                         ": its library was not unloaded (a thread still running, or symbols "
                         "that pin it, such as C++ unique globals)");
}

void ReportLeftBehind(const std::string& path, Findings& f) {
    std::map<std::string, int> seen;
    for (auto& l : World().leftBehind)
        if (l.owner == path)
            ++seen[l.kind + " '" + l.name + "' " +
                   (l.releasedBy.empty() ? "was still in the simulator after unload"
                                         : "was not released by the plugin (TVPM's clean-up did it)")];
    for (auto& [text, count] : seen)
        f.Add("problem", "left behind: " + text + (count > 1 ? " (at each of " + std::to_string(count) + " unloads)" : ""));
}

void ReportTimings(const Simulator& sim, const std::string& path, Findings& f) {
    auto it = sim.timings.find(path);
    if (it == sim.timings.end()) return;
    std::vector<std::pair<int, TimingStat>> rows(it->second.begin(), it->second.end());
    std::sort(rows.begin(), rows.end(), [](auto& a, auto& b) { return a.second.maxUs > b.second.maxUs; });
    for (size_t i = 0; i < rows.size() && i < 3; ++i) {
        char line[200];
        snprintf(line, sizeof line, "%s: %ld calls, mean %.1f us, max %.1f us", CategoryName(rows[i].first),
                 rows[i].second.calls, rows[i].second.MeanUs(), rows[i].second.maxUs);
        f.Add("slowest", line);
    }
}

void ReportLog(const Simulator& sim, Findings& f) {
    for (auto& w : sim.log.loaderWarnings) f.Add("warning", w);
    for (auto& w : sim.log.pluginWarnings) f.Add("warning", w);
    for (auto& a : World().alerts)
        if (a.rfind("Please place your new plugin", 0) != 0) f.Add("warning", "alert: " + a);
    for (auto& a : World().assertions) f.Add("problem", "TVPM assertion failed: " + a);
}

// Start to shut-down; false when the plugin never got going.
bool DriveLifecycle(Simulator& sim, const CheckUnit& unit, const std::string& path,
                    const std::string& acfPath, long frames, Findings& f) {
    TVPMApi& api = Api();
    if (unit.aircraft) sim.LoadAircraft(acfPath);
    TVPMPluginID id = api.FindPluginByPath(path.c_str());
    if (id < 0) {
        f.Add("problem", "did not load: " + FailureReason(sim.log, path));
        return false;
    }
    f.Add("name", PluginName(id));
    if (!api.IsPluginEnabled(id)) {
        f.Add("problem", "did not enable: TPluginEnable returned 0");
        return false;
    }
    sim.Frames(frames);
    api.DisablePlugin(id);
    sim.Frames(frames / 2);
    if (!api.EnablePlugin(id)) f.Add("problem", "refused to enable again after being disabled");
    sim.Frames(frames);
    api.ReloadPlugins();  // runs at the end of the next flight-loop pass
    sim.Frame();
    if ((id = api.FindPluginByPath(path.c_str())) < 0 || !api.IsPluginEnabled(id)) {
        f.Add("problem", "did not come back after a reload of all plugins");
        return false;
    }
    sim.Frames(frames);
    if (unit.aircraft) {
        sim.UnloadAircraft();
        World().ReportAliveOf(path);
        CheckStillMapped(path, "the aircraft was unloaded", f);
    } else {
        sim.LoadAircraft(acfPath);
        sim.Frames(frames / 2);
        sim.UnloadAircraft();
        sim.Frames(frames / 2);
    }
    return true;
}

}  // namespace

void CheckInThisProcess(const CheckUnit& unit, const std::string& root, const std::string& library,
                        const std::string& pluginPath, const std::string& acfPath, long frames,
                        double fps, const std::string& resultFile, const std::string& logFile) {
    Findings f(resultFile);
    Simulator sim;
    sim.log.file = fopen(logFile.c_str(), "w");
    std::string error;
    if (!sim.Start(library, root, fps, error)) {
        f.Add("problem", error);
        ReportLog(sim, f);
        return;
    }
    const bool ran = DriveLifecycle(sim, unit, pluginPath, acfPath, frames, f);
    for (auto& held : WorldControlsStillHeld()) f.Add("warning", held);
    sim.Shutdown();
    if (ran) {
        World().ReportAliveOf(pluginPath);
        CheckStillMapped(pluginPath, "shut-down", f);
    }
    ReportLeftBehind(pluginPath, f);
    AuditWorldServices(pluginPath, sim.log.pluginWarnings,
                       [&f](const char* kind, const std::string& text) { f.Add(kind, text); });
    for (auto& s : SoundLeftovers()) f.Add("problem", "left behind: " + s);
    ReportLog(sim, f);
    ReportTimings(sim, pluginPath, f);
    for (auto& [path, n] : World().probesAllocated)
        if (path == pluginPath) f.Add("note", "allocated " + std::to_string(n) + " terrain probe slots");
    if (sim.log.file) fclose(sim.log.file);
    sim.log.file = nullptr;
}

}  // namespace tvpmhost
