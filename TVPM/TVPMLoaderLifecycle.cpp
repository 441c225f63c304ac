// TVPMLoaderLifecycle.cpp: enabling, disabling, unloading and reloading plugins, with every unit told in a fixed order.
#include <algorithm>
#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

extern std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;
bool gScheduleReload = false;

namespace {

constexpr int kMinVersionForReloadAlert = 3;

// A plugin that may be enabled or disabled through the interface: never the
// simulator's own record.
PluginRecord* SwitchablePlugin(TVPMPluginID id) {
    return id > 0 ? TVPMGetPluginRecord(id) : nullptr;
}

// Calls TPluginEnable with the plugin current; the plugin counts as enabled
// during the call and afterwards only if it returned non-zero.
void CallPluginEnable(TVPMPluginID id) {
    StDispatchCallback scope(id);
    PluginRecord& r = gAllPlugins[static_cast<size_t>(id)];
    r.enabled = true;
    r.enabled = r.enableFunc() != 0;
}

void DeliverPending(TVPMPluginID id) {
    StDispatchCallback scope(id);
    TVPMDeliveryHead& pending = gAllPlugins[static_cast<size_t>(id)].pending;
    while (TVPMDelivery* d = pending.first()) {
        d->Unlink();
        d->DeliverToPlugin(false);
    }
}

// Runs the rest of enabling once the plugin agreed; returns the final state.
int FinishEnable(TVPMPluginID id) {
    if (gAllPlugins[static_cast<size_t>(id)].enableFunc) CallPluginEnable(id);
    else gAllPlugins[static_cast<size_t>(id)].enabled = true;
    if (!gAllPlugins[static_cast<size_t>(id)].enabled) return 0;
    TVPMWeatherEnableHook(id);
    return gAllPlugins[static_cast<size_t>(id)].enabled ? 1 : 0;
}

void OrphanOutstanding(PluginRecord& r) {
    while (TVPMDelivery* d = r.outstanding.first()) {
        d->Unlink();
        d->plugin = TVPM_NO_PLUGIN_ID;
        orphaned.PushFront(d);
    }
}

void CancelPending(PluginRecord& r) {
    while (TVPMDelivery* d = r.pending.first()) {
        d->Unlink();
        d->plugin = TVPM_NO_PLUGIN_ID;
        d->DeliverToPlugin(true);
    }
}

void CallPluginStop(TVPMPluginID id) {
    TVPMPluginStop_f stop = gAllPlugins[static_cast<size_t>(id)].exitFunc;
    if (!stop) return;
    const TVPMPluginID saved = TVPMGetDispatchedPlugin();
    TVPMSetDispatchedPlugin(id);
    stop();
    TVPMSetDispatchedPlugin(saved);
}

void RunCleanupHooks(TVPMPluginID id) {
    TVPMCommandCleanupHook(id);
    TVPMDisplayCleanupHook(id);
    TVPMInstanceCleanupHook(id);
    TVPMProcessingCleanupHook(id);
    TVPMCameraCleanupHook(id);
    TVPMMenuCleanupHook(id);
    TVPMPlaneCleanupHook(id);
    TVPMDataRefsCleanupHook(id);
    TVPMSceneryCleanupHook(id);
    TVPMFMODCleanupHook(id);
    TVPMWeatherCleanupHook(id);
}

}  // namespace

std::string TVPMUserAircraftFolder() {
    char path[1024] = "", name[1024] = "";
    gHooks->TVPMGetPlaneName_f(0, path, name);
    std::string p(path);
    size_t slash = p.rfind('/');
    return slash == std::string::npos ? std::string() : p.substr(0, slash);
}

TVPM_API int TVPMIsPluginEnabled(TVPMPluginID inPluginID) {
    const PluginRecord* r = TVPMGetPluginRecord(inPluginID);
    return r && r->enabled ? 1 : 0;
}

TVPM_API int TVPMEnablePlugin(TVPMPluginID inPluginID) {
    PluginRecord* r = SwitchablePlugin(inPluginID);
    if (!r) return 0;
    int state = 1;
    if (!r->enabled) {
        TVPMDisplayEnableHook(inPluginID);
        TVPMInstanceEnableHook(inPluginID);
        state = FinishEnable(inPluginID);
    }
    if (state) DeliverPending(inPluginID);
    TVPMDisplaySyncGuiWindowStateWithPluginHook(inPluginID, state);
    return state;
}

TVPM_API void TVPMDisablePlugin(TVPMPluginID inPluginID) {
    PluginRecord* r = SwitchablePlugin(inPluginID);
    if (!r || !r->enabled) return;
    TVPMDisplayDisablePrePluginDisableHook(inPluginID);
    TVPMInstanceDisableHook(inPluginID);
    TVPMCameraDisableHook(inPluginID);
    r->enabled = false;
    if (r->disableFunc) {
        StDispatchCallback scope(inPluginID);
        r->disableFunc();
    }
    TVPMPlaneDisableHook(inPluginID);
    TVPMDisplayDisablePostPluginDisableHook(inPluginID);
    TVPMFMODDisableHook(inPluginID);
    TVPMWeatherDisableHook(inPluginID);
}

TVPM_API void TVPMReloadPlugins(void) { gScheduleReload = true; }

TVPM_API void TVPMReloadACFPlugins(void) {
    TVPMDisableACFPlugins();
    TVPMUnloadAcfPlugin();
    const std::string folder = TVPMUserAircraftFolder();
    if (folder.empty()) return;
    TVPMFindAndLoadAcfPlugins(folder.c_str());
    TVPMEnableACFPlugins();
}

void TVPMEnableAllPlugins() {
    for (TVPMPluginID id = 0; id < TVPMCountPlugins(); ++id) TVPMEnablePlugin(id);
}

void TVPMDisableAllPlugins() {
    for (TVPMPluginID id = 0; id < TVPMCountPlugins(); ++id) TVPMDisablePlugin(id);
}

void TVPMEnableACFPlugins() {
    const std::vector<TVPMPluginID> ids = gCurrentAircraftPluginIDS;
    for (TVPMPluginID id : ids) TVPMEnablePlugin(id);
}

void TVPMDisableACFPlugins() {
    const std::vector<TVPMPluginID> ids = gCurrentAircraftPluginIDS;
    for (TVPMPluginID id : ids) TVPMDisablePlugin(id);
}

bool TVPMIsAcfPlugin(TVPMPluginID id) {
    return std::find(gCurrentAircraftPluginIDS.begin(), gCurrentAircraftPluginIDS.end(), id) !=
           gCurrentAircraftPluginIDS.end();
}

void UnloadOnePlugin(TVPMPluginID id) {
    PluginRecord& r = gAllPlugins[static_cast<size_t>(id)];
    OrphanOutstanding(r);
    CancelPending(r);
    CallPluginStop(id);
    RunCleanupHooks(id);
    if (r.dllRef) {
        TVPMUnloadDLL(r.dllRef);
        r.dllRef = nullptr;
    }
}

void TVPMUnloadPlugins() {
    for (TVPMPluginID id = 1; id < TVPMCountPlugins(); ++id) UnloadOnePlugin(id);
    gAllPlugins.clear();
    gCurrentAircraftPluginIDS.clear();
}

void TVPMUnloadAcfPlugin() {
    const std::vector<TVPMPluginID> ids = gCurrentAircraftPluginIDS;
    for (TVPMPluginID id : ids) UnloadOnePlugin(id);
    while (!gAllPlugins.empty() && TVPMIsAcfPlugin(TVPMCountPlugins() - 1)) gAllPlugins.pop_back();
    gCurrentAircraftPluginIDS.clear();
}

void TVPMReloadPluginsInternal() {
    gScheduleReload = false;
    TVPMDisableAllPlugins();
    TVPMUnloadAcfPlugin();
    TVPMUnloadPlugins();
    if (gHooks->version >= kMinVersionForReloadAlert)
        gHooks->TVPMDisplayModalAlert_f("Please place your new plugin in the plugins folder.",
                                        "I will then reload all plugins.", "", "");
    char systemPath[1024] = "";
    gHooks->TVPMGetSystemPath_f(systemPath);
    TVPMFindAndLoadPlugins(systemPath);
    const std::string folder = TVPMUserAircraftFolder();
    if (!folder.empty()) TVPMFindAndLoadAcfPlugins(folder.c_str());
    TVPMEnableAllPlugins();
}
