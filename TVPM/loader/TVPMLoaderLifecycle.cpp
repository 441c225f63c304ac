// TVPMLoaderLifecycle.cpp: enabling, disabling, unloading and reloading plugins, with every unit told in a fixed order.
#include "TVPMLoaderLifecycle.h"

#include <algorithm>
#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDLLUtils.h"
#include "TVPMDiagnostics.h"
#include "TVPMLoaderNames.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

bool gScheduleReload = false;

namespace {

constexpr int kMinVersionForReloadAlert = 3;
constexpr size_t kHostPathSize = 1024;
// An aircraft plugin whose enable reloads the aircraft plugins recurses;
// past this depth the reload is refused.
constexpr int kMaxNestedAircraftReloads = 4;
// Disabling the aircraft plugins repeats while a disable brought in new copies.
constexpr int kMaxAircraftDisablePasses = 4;

int s_busyDepth = 0;
int s_aircraftReloadDepth = 0;
// Libraries of plugins unloaded while their own code was still on the stack.
std::vector<void*> s_deferredCloses;

class StCount {
public:
    explicit StCount(int& counter) : counter_(counter) { ++counter_; }
    ~StCount() { --counter_; }
    StCount(const StCount&) = delete;
    StCount& operator=(const StCount&) = delete;

private:
    int& counter_;
};

bool IsEnabled(const TVPMPluginIncarnation& p) {
    const PluginRecord* r = p.Get();
    return r && r->enabled;
}

// Calls an entry point that returns nothing, with the plugin current whether
// or not it is enabled; a throw counts as the entry point doing nothing.
template <class F>
void CallEntryPoint(TVPMPluginID id, TVPMCallSite site, F entry) {
    TVPMCallPluginEvenIfDisabled(id, site, entry);
}

// Calls TPluginEnable with the plugin current; the plugin counts as enabled
// during the call and afterwards only if it returned non-zero (a throw is 0).
void CallPluginEnable(const TVPMPluginIncarnation& p, TVPMPluginEnable_f enable) {
    p.Get()->enabled = true;
    int agreed = 0;
    TVPMCallPluginEvenIfDisabled(p.id(), TVPMCallSite::kEnable, [&] { agreed = enable(); });
    if (PluginRecord* r = p.Get()) r->enabled = agreed != 0;
}

// Every hook below may call into plugin code, which may disable, unload or
// reload this very plugin; each step therefore starts from the ID and stops
// when the plugin it began with is gone.
int EnableSteps(const TVPMPluginIncarnation& p) {
    const TVPMPluginID id = p.id();
    TVPMDisplayEnableHook(id);
    if (!p.Get()) return 0;
    TVPMInstanceEnableHook(id);
    PluginRecord* r = p.Get();
    if (!r) return 0;
    if (r->enabled) return 1;  // a hook's callback enabled it meanwhile
    if (r->enableFunc)
        CallPluginEnable(p, r->enableFunc);
    else
        r->enabled = true;
    if (!IsEnabled(p)) return 0;
    TVPMWeatherEnableHook(id);
    return IsEnabled(p) ? 1 : 0;
}

void DeliverPending(const TVPMPluginIncarnation& p) {
    TVPMCallPluginEvenIfDisabled(p.id(), TVPMCallSite::kDelivery, [&] {
        while (PluginRecord* r = p.Get()) {
            TVPMDelivery* d = r->pending.first();
            if (!d) break;
            d->Unlink();
            d->DeliverToPlugin(false);
        }
    });
}

void OrphanOutstanding(PluginRecord& r) {
    while (TVPMDelivery* d = r.outstanding.first()) {
        d->Unlink();
        d->plugin = TVPM_NO_PLUGIN_ID;
        orphaned.PushFront(d);
    }
}

void CancelPending(const TVPMPluginIncarnation& p) {
    while (PluginRecord* r = p.Get()) {
        TVPMDelivery* d = r->pending.first();
        if (!d) break;
        d->Unlink();
        d->plugin = TVPM_NO_PLUGIN_ID;
        d->DeliverToPlugin(true);
    }
}

void CallPluginStop(const TVPMPluginIncarnation& p) {
    const PluginRecord* r = p.Get();
    TVPMPluginStop_f stop = r ? r->exitFunc : nullptr;
    if (!stop) return;
    StLoaderCall call(p.id(), r->dllRef);
    TVPMGuardPluginCall(p.id(), TVPMCallSite::kStop, stop);
}

bool AnyAircraftPluginEnabled() {
    for (TVPMPluginID id : gCurrentAircraftPluginIDS)
        if (TVPMIsPluginEnabled(id)) return true;
    return false;
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
// refused as a duplicate. A library whose code is still on the stack is
// closed once that code has returned.
void ForgetLibrary(PluginRecord& r) {
    TVPMWithdrawPluginLibrary(r.generation);
    if (r.dllRef) {
        if (TVPMIsLibraryOnStack(r.dllRef))
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

void UnloadPlugin(TVPMPluginID id) {
    StLoaderBusy busy;
    const TVPMPluginIncarnation p(id);
    OrphanOutstanding(*p.Get());
    CancelPending(p);
    CallPluginStop(p);
    TVPMRunCleanupHooks(id);
    if (PluginRecord* r = p.Get()) ForgetLibrary(*r);
}

void ReportRefusedAircraftReload() {
    TVPMLogPluginWarning(
        "TVPMReloadACFPlugins called while plugins are being loaded or unloaded; ignored.");
}

void ReportNestedAircraftReload() {
    TVPMLogPluginWarning(
        "TVPMReloadACFPlugins called from inside too many nested aircraft reloads; ignored.");
}

}  // namespace

StLoaderCall::StLoaderCall(TVPMPluginID id, const void* dll)
    : saved_(TVPMGetDispatchedPlugin()), onStack_(dll) {
    TVPMSetDispatchedPlugin(id);
}
StLoaderCall::~StLoaderCall() { TVPMSetDispatchedPlugin(saved_); }

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
    const PluginRecord* r = TVPMGetPluginRecord(inPluginID);
    return r && r->enabled ? 1 : 0;
}

TVPM_API int TVPMEnablePlugin(TVPMPluginID inPluginID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (inPluginID <= 0) return 0;  // the simulator's own record is not switchable
    const TVPMPluginIncarnation p(inPluginID);
    const PluginRecord* r = p.Get();
    // A record whose library is gone (unloaded, awaiting trimming) stays off.
    if (!r || !r->dllRef) return 0;
    const int state = r->enabled ? 1 : EnableSteps(p);
    if (!p.Get()) return 0;
    if (state) DeliverPending(p);
    if (!p.Get()) return 0;
    TVPMDisplaySyncGuiWindowStateWithPluginHook(inPluginID, state);
    return state;
}

TVPM_API void TVPMDisablePlugin(TVPMPluginID inPluginID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (inPluginID <= 0) return;
    const TVPMPluginIncarnation p(inPluginID);
    if (!IsEnabled(p)) return;
    for (auto hook : {TVPMDisplayDisablePrePluginDisableHook, TVPMInstanceDisableHook,
                      TVPMCameraDisableHook}) {
        hook(inPluginID);
        if (!IsEnabled(p)) return;  // disabled, unloaded or replaced meanwhile
    }
    PluginRecord* r = p.Get();
    r->enabled = false;
    if (TVPMPluginDisable_f disable = r->disableFunc)
        CallEntryPoint(inPluginID, TVPMCallSite::kDisable, disable);
    for (auto hook : {TVPMPlaneDisableHook, TVPMDisplayDisablePostPluginDisableHook,
                      TVPMFMODDisableHook, TVPMWeatherDisableHook}) {
        if (!p.Get()) return;
        hook(inPluginID);
    }
}

TVPM_API void TVPMReloadPlugins(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gScheduleReload = true;
}

TVPM_API void TVPMReloadACFPlugins(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!gHooks || gAllPlugins.empty()) return;  // not started, or shut down
    if (TVPMLoaderBusy()) return ReportRefusedAircraftReload();
    if (s_aircraftReloadDepth >= kMaxNestedAircraftReloads) return ReportNestedAircraftReload();
    StCount nesting(s_aircraftReloadDepth);
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

// A plugin's disable may reload the aircraft plugins; the copies that brings
// in are disabled too.
void TVPMDisableACFPlugins() {
    for (int pass = 0; pass < kMaxAircraftDisablePasses && AnyAircraftPluginEnabled(); ++pass) {
        const std::vector<TVPMPluginID> ids = gCurrentAircraftPluginIDS;
        for (TVPMPluginID id : ids) TVPMDisablePlugin(id);
    }
}

bool TVPMIsAcfPlugin(TVPMPluginID id) {
    return std::find(gCurrentAircraftPluginIDS.begin(), gCurrentAircraftPluginIDS.end(), id) !=
           gCurrentAircraftPluginIDS.end();
}

void UnloadOnePlugin(TVPMPluginID id) {
    if (TVPMIsValidPluginID(id)) UnloadPlugin(id);
}

void TVPMUnloadStoppedPlugin(TVPMPluginID id) { UnloadOnePlugin(id); }

void TVPMCloseDeferredLibraries() {
    if (s_deferredCloses.empty()) return;
    std::vector<void*> handles;
    handles.swap(s_deferredCloses);
    for (void* dll : handles) {
        if (TVPMIsLibraryOnStack(dll))
            s_deferredCloses.push_back(dll);
        else
            TVPMUnloadDLL(dll);
    }
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

// The loader is busy only while it unloads and, inside each load, while a
// record is appended and started: enabling works here as at start-up.
void TVPMReloadPluginsInternal() {
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
