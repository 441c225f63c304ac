// TVPMLoaderLifecycle.cpp: enabling, disabling, unloading and reloading plugins, with every unit told in a fixed order.
#include "TVPMLoaderLifecycle.h"

#include <algorithm>
#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDLLUtils.h"
#include "TVPMDiagnostics.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

bool gScheduleReload = false;

namespace {

constexpr int kMinVersionForReloadAlert = 3;
constexpr size_t kHostPathSize = 1024;

int s_busyDepth = 0;
// Libraries of plugins unloaded while their own code was still on the stack.
std::vector<void*> s_deferredCloses;

// A plugin that may be enabled or disabled through the interface: never the
// simulator's own record.
PluginRecord* SwitchablePlugin(TVPMPluginID id) {
    return id > 0 ? TVPMGetPluginRecord(id) : nullptr;
}

// True when the plugin's code may be on the stack below us: it is the plugin
// being called now or the one that called it.
bool MayBeRunning(TVPMPluginID id) { return id == gDispatchedPlugin || id == gClientPlugin; }

bool NoPluginIsRunning() { return gDispatchedPlugin <= 0 && gClientPlugin <= 0; }

// Calls TPluginEnable with the plugin current; the plugin counts as enabled
// during the call and afterwards only if it returned non-zero.
void CallPluginEnable(TVPMPluginID id, TVPMPluginEnable_f enable) {
    StDispatchCallback scope(id);
    gAllPlugins[static_cast<size_t>(id)].enabled = true;
    const bool agreed = enable() != 0;
    // The callback may have reshaped the table; look the record up again.
    if (PluginRecord* r = TVPMGetPluginRecord(id)) r->enabled = agreed;
}

bool IsEnabled(TVPMPluginID id) {
    const PluginRecord* r = TVPMGetPluginRecord(id);
    return r && r->enabled;
}

// The plugin's own agreement, then the weather unit's; returns the state.
int EnableAfterHooks(TVPMPluginID id) {
    PluginRecord& r = gAllPlugins[static_cast<size_t>(id)];
    if (r.enableFunc)
        CallPluginEnable(id, r.enableFunc);
    else
        r.enabled = true;
    if (!IsEnabled(id)) return 0;
    TVPMWeatherEnableHook(id);
    return IsEnabled(id) ? 1 : 0;
}

void DeliverPending(TVPMPluginID id) {
    StDispatchCallback scope(id);
    while (PluginRecord* r = TVPMGetPluginRecord(id)) {
        TVPMDelivery* d = r->pending.first();
        if (!d) break;
        d->Unlink();
        d->DeliverToPlugin(false);
    }
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

}  // namespace

void TVPMRunCleanupHooks(TVPMPluginID id) {
    TVPMDiagnoseLeftAtUnload(id);
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
    TVPMCheckNothingOwnedBy(id);
}

namespace {

// The record outlives its library until the table is trimmed: it must never
// lead into unmapped code. Its name, path and signature stay, so that it is
// still found by them, and a second copy of the plugin loaded meanwhile is
// refused as a duplicate.
void ForgetLibrary(PluginRecord& r, bool closeLater) {
    if (r.dllRef) {
        if (closeLater)
            s_deferredCloses.push_back(r.dllRef);
        else
            TVPMUnloadDLL(r.dllRef);
    }
    r.dllRef = nullptr;
    r.exitFunc = nullptr;
    r.enableFunc = nullptr;
    r.disableFunc = nullptr;
    r.receiveMessageFunc = nullptr;
    r.errorFunc = nullptr;
    r.enabled = false;
}

void UnloadPlugin(TVPMPluginID id, bool closeLater) {
    StLoaderBusy busy;
    PluginRecord& r = gAllPlugins[static_cast<size_t>(id)];
    OrphanOutstanding(r);
    CancelPending(r);
    CallPluginStop(id);
    TVPMRunCleanupHooks(id);
    ForgetLibrary(gAllPlugins[static_cast<size_t>(id)], closeLater);
}

void ReportRefusedAircraftReload() {
    TVPMLogPluginWarning(
        "TVPMReloadACFPlugins called while plugins are being loaded or unloaded; ignored.");
}

}  // namespace

StLoaderBusy::StLoaderBusy() { ++s_busyDepth; }
StLoaderBusy::~StLoaderBusy() { --s_busyDepth; }
bool TVPMLoaderBusy() { return s_busyDepth > 0; }

bool TVPMGetUserAircraftFolder(std::string& outFolder) {
    char path[kHostPathSize] = "", name[kHostPathSize] = "";
    gHooks->TVPMGetPlaneName_f(0, path, name);
    path[kHostPathSize - 1] = 0;
    const std::string p(path);
    const size_t slash = p.rfind('/');
    if (slash == std::string::npos) return false;
    outFolder = p.substr(0, slash);
    return true;
}

std::string TVPMUserAircraftFolder() {
    std::string folder;
    return TVPMGetUserAircraftFolder(folder) ? folder : std::string();
}

TVPM_API int TVPMIsPluginEnabled(TVPMPluginID inPluginID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return IsEnabled(inPluginID) ? 1 : 0;
}

TVPM_API int TVPMEnablePlugin(TVPMPluginID inPluginID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    PluginRecord* r = SwitchablePlugin(inPluginID);
    // A record whose library is gone (unloaded, awaiting trimming) stays off.
    if (!r || !r->dllRef) return 0;
    int state = 1;
    if (!r->enabled) {
        TVPMDisplayEnableHook(inPluginID);
        TVPMInstanceEnableHook(inPluginID);
        state = EnableAfterHooks(inPluginID);
    }
    if (state) DeliverPending(inPluginID);
    TVPMDisplaySyncGuiWindowStateWithPluginHook(inPluginID, state);
    return state;
}

TVPM_API void TVPMDisablePlugin(TVPMPluginID inPluginID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    PluginRecord* r = SwitchablePlugin(inPluginID);
    if (!r || !r->enabled) return;
    TVPMDisplayDisablePrePluginDisableHook(inPluginID);
    TVPMInstanceDisableHook(inPluginID);
    TVPMCameraDisableHook(inPluginID);
    r->enabled = false;
    if (TVPMPluginDisable_f disable = r->disableFunc) {
        // The plugin is already off, so the scope's permission is ignored.
        StDispatchCallback scope(inPluginID);
        disable();
    }
    TVPMPlaneDisableHook(inPluginID);
    TVPMDisplayDisablePostPluginDisableHook(inPluginID);
    TVPMFMODDisableHook(inPluginID);
    TVPMWeatherDisableHook(inPluginID);
}

TVPM_API void TVPMReloadPlugins(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gScheduleReload = true;
}

TVPM_API void TVPMReloadACFPlugins(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!gHooks || gAllPlugins.empty()) return;  // not started, or shut down
    if (TVPMLoaderBusy()) return ReportRefusedAircraftReload();
    StLoaderBusy busy;
    TVPMDisableACFPlugins();
    TVPMUnloadAcfPlugin();
    std::string folder;
    if (!TVPMGetUserAircraftFolder(folder)) return;
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
    if (!TVPMIsValidPluginID(id)) return;
    UnloadPlugin(id, MayBeRunning(id));
}

void TVPMUnloadStoppedPlugin(TVPMPluginID id) {
    if (TVPMIsValidPluginID(id)) UnloadPlugin(id, false);
}

void TVPMCloseDeferredLibraries() {
    if (!NoPluginIsRunning() || s_deferredCloses.empty()) return;
    std::vector<void*> handles;
    handles.swap(s_deferredCloses);
    for (void* dll : handles) TVPMUnloadDLL(dll);
}

void TVPMUnloadPlugins() {
    {
        StLoaderBusy busy;
        for (TVPMPluginID id = 1; id < TVPMCountPlugins(); ++id) UnloadOnePlugin(id);
        gAllPlugins.clear();
        gCurrentAircraftPluginIDS.clear();
    }
    TVPMCloseDeferredLibraries();
}

void TVPMUnloadAcfPlugin() {
    StLoaderBusy busy;
    const std::vector<TVPMPluginID> ids = gCurrentAircraftPluginIDS;
    for (TVPMPluginID id : ids) UnloadOnePlugin(id);
    while (!gAllPlugins.empty() && TVPMIsAcfPlugin(TVPMCountPlugins() - 1)) gAllPlugins.pop_back();
    gCurrentAircraftPluginIDS.clear();
}

void TVPMReloadPluginsInternal() {
    StLoaderBusy busy;
    gScheduleReload = false;
    TVPMDisableAllPlugins();
    TVPMUnloadAcfPlugin();
    TVPMUnloadPlugins();
    if (gHooks->version >= kMinVersionForReloadAlert)
        gHooks->TVPMDisplayModalAlert_f("Please place your new plugin in the plugins folder.",
                                        "I will then reload all plugins.", "", "");
    char systemPath[kHostPathSize] = "";
    gHooks->TVPMGetSystemPath_f(systemPath);
    systemPath[kHostPathSize - 1] = 0;
    TVPMFindAndLoadPlugins(systemPath);
    std::string folder;
    if (TVPMGetUserAircraftFolder(folder)) TVPMFindAndLoadAcfPlugins(folder.c_str());
    TVPMEnableAllPlugins();
}
