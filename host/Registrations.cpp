// Registrations.cpp: finds out what each plugin registered, through the plugin table, the interface and the simulator's own stores.
#include "Report.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

void ObserveDataItems(RunSummary& summary) {
    TVPMApi& api = Api();
    if (!api.CountDataRefs || !api.GetDataRefsByIndex || !api.GetDataRefInfo) return;
    const int count = api.CountDataRefs();
    if (count <= 0) return;
    std::vector<TVPMDataRef> refs(static_cast<size_t>(count));
    api.GetDataRefsByIndex(0, count, refs.data());
    for (TVPMDataRef ref : refs) {
        TVPMDataRefInfo_t info{};
        info.structSize = sizeof info;
        api.GetDataRefInfo(ref, &info);
        const std::string owner = PluginPath(info.owner);
        if (!owner.empty() && info.name) summary.plugins[owner].dataItems.insert(info.name);
    }
}

void ObserveHotKeys(RunSummary& summary) {
    TVPMApi& api = Api();
    if (!api.CountHotKeys || !api.GetNthHotKey || !api.GetHotKeyInfo) return;
    for (int i = 0, n = api.CountHotKeys(); i < n; ++i) {
        char description[512] = {0};  // hot-key descriptions may be 511 characters
        char key = 0;
        TVPMKeyFlags flags = 0;
        TVPMPluginID owner = -1;
        api.GetHotKeyInfo(api.GetNthHotKey(i), &key, &flags, description, &owner);
        const std::string path = PluginPath(owner);
        if (!path.empty()) summary.plugins[path].hotKeys.insert(description);
    }
}

template <class Store, class Fn>
void ForOwned(const Store& store, RunSummary& summary, Fn fn) {
    for (auto& [key, item] : store)
        if (summary.plugins.count(item.owner)) fn(summary.plugins[item.owner], item);
}

}  // namespace

long PluginSummary::FlightLoopCalls() const {
    auto it = timings.find(tvpm_cb_flight_loop);
    return it == timings.end() ? 0 : it->second.calls;
}

void ObservePlugins(RunSummary& summary, bool aircraftPhase) {
    TVPMApi& api = Api();
    for (TVPMPluginID id = 1; id < api.CountPlugins(); ++id) {
        char name[256] = {0}, path[256] = {0}, signature[256] = {0}, description[256] = {0};
        api.GetPluginInfo(id, name, path, signature, description);
        if (!*path) continue;
        PluginSummary& p = summary.plugins[path];
        const bool firstLook = p.path.empty();
        p.path = path;
        p.name = name;
        p.signature = signature;
        p.description = description;
        p.enabled = api.IsPluginEnabled(id) != 0;
        if (firstLook) p.aircraft = aircraftPhase;
    }
    ObserveDataItems(summary);
    ObserveHotKeys(summary);
}

void CompleteSummary(RunSummary& summary, const Simulator& sim) {
    SimWorld& w = World();
    for (auto& [ref, c] : w.commands)
        if (c.created && summary.plugins.count(c.creator))
            summary.plugins[c.creator].commands.push_back(c.name);
    for (auto& [handle, menu] : w.menus) {
        if (summary.plugins.count(menu.owner)) summary.plugins[menu.owner].menus.push_back(menu.name);
    }
    for (auto& item : w.menuItemHistory)
        if (summary.plugins.count(item.owner)) summary.plugins[item.owner].menuItems.push_back(item.name);
    ForOwned(w.windows, summary, [](PluginSummary& p, const SimWindow& win) {
        p.windows.push_back(win.title.empty() ? "(untitled)" : win.title);
    });
    for (auto& [path, categories] : sim.timings)
        if (summary.plugins.count(path)) summary.plugins[path].timings = categories;
    summary.hostDataItems = sim.hostDataItems;
    summary.failed = sim.log.failed;
    summary.loaderWarnings = sim.log.loaderWarnings;
    summary.pluginWarnings = sim.log.pluginWarnings;
    summary.alerts = w.alerts;
    summary.assertions = w.assertions;
    summary.leftBehind = w.leftBehind;
}

}  // namespace tvpmhost
