// Report.h: what a run found: plugins, their registrations and callback times, failures and warnings; printed and as JSON.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "HostLog.h"
#include "SimWorld.h"
#include "Simulator.h"

namespace tvpmhost {

struct PluginSummary {
    std::string path, name, signature, description;
    bool aircraft = false;
    bool enabled = false;  // at the last look
    std::set<std::string> dataItems, hotKeys;
    std::vector<std::string> commands, menus, menuItems, windows;
    std::map<int, TimingStat> timings;
    long FlightLoopCalls() const;
};

struct RunSummary {
    std::string library, root;
    long frames = 0;
    double fps = 0;
    std::string startError;
    std::map<std::string, PluginSummary> plugins;  // by library path
    std::vector<LoaderFailure> failed;
    std::vector<std::string> loaderWarnings, pluginWarnings, alerts, assertions;
    std::vector<LeftBehind> leftBehind;
    std::vector<std::string> sound, soundLeftovers;  // per plugin group; after unload
    int hostDataItems = 0;

    bool Ok() const {
        return startError.empty() && failed.empty() && assertions.empty() && soundLeftovers.empty();
    }
};

// Looks at the plugin table and at what the loaded plugins registered
// through the interface (data items, hot keys); call while they are loaded.
void ObservePlugins(RunSummary& summary, bool aircraftPhase);
// Adds what the simulator saw (commands, menus, windows), the timings and
// the log's findings.
void CompleteSummary(RunSummary& summary, const Simulator& sim);

void PrintSummary(const RunSummary& summary);
bool WriteJsonReport(const RunSummary& summary, const std::string& file, std::string& error);

// JSON text helpers shared with the check report.
std::string JsonString(const std::string& text);
std::string JsonList(const std::vector<std::string>& items);

}  // namespace tvpmhost
