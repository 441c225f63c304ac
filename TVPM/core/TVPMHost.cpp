// TVPMHost.cpp: start-up and shut-down, and the simulator's event hook.
#include <cstdio>
#include <cstring>
#include <string>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDiagnostics.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"


namespace {

constexpr int kHooksVersion = TVPM_HOOKS_VERSION;
constexpr int kHooksSize = TVPM_HOOKS_SIZE;
constexpr int kStartedResult = 23;
// The build stamp is fixed so that every build reports the same text.
constexpr const char* kBuildDate = "Dec  8 2025";
constexpr const char* kBuildTime = "20:31:39";

std::string BuildString() {
    char text[64];
    snprintf(text, sizeof text, "%s %s", kBuildDate, kBuildTime);
    return text;
}

// Broadcasts a simulator message to every plugin, with the host as sender.
void BroadcastFromHost(int message, void* param) {
    StActingAsSimulator asSimulator;
    TVPMSendMessageToPlugin(TVPM_NO_PLUGIN_ID, message, param);
}

// The aircraft and scenery events reshape the plugin table; a plugin that
// sends one from inside its own start or stop gets only the broadcast.
void OnPlaneLoaded(intptr_t index) {
    BroadcastFromHost(TVPM_MSG_PLANE_LOADED, reinterpret_cast<void*>(index));
    std::string folder;
    if (index != 0 || TVPMLoaderBusy() || !TVPMGetUserAircraftFolder(folder)) return;
    TVPMFindAndLoadAcfPlugins(folder.c_str());
    TVPMEnableACFPlugins();
}

void OnPlaneUnloaded(intptr_t index) {
    BroadcastFromHost(TVPM_MSG_PLANE_UNLOADED, reinterpret_cast<void*>(index));
    if (index != 0 || TVPMLoaderBusy()) return;
    TVPMDisableACFPlugins();
    TVPMUnloadAcfPlugin();
}

void OnRegisterScenery(const char* pack) {
    if (!TVPMLoaderBusy()) TVPMFindAndLoadSceneryPlugins(pack);
}

void OnCheckNewDatarefs() {
    int count = 0;
    if (!TVPMDataRefsCheckForNew(count)) return;
    StActingAsSimulator asSimulator;
    for (int n = 0; n < TVPMCountPlugins(); ++n) {
        TVPMPluginID id = TVPMGetNthPlugin(n);
        if (TVPMHasFeatureInternal(id, kFeatureWantsDatarefNotifications))
            TVPMSendMessageToPlugin(id, TVPM_MSG_DATAREFS_ADDED, &count);
    }
}

int MessageForBroadcastEvent(TVPMEventKind kind) {
    switch (kind) {
        case tvpm_PlaneCrashed: return TVPM_MSG_PLANE_CRASHED;
        case tvpm_AirportLoaded: return TVPM_MSG_AIRPORT_LOADED;
        case tvpm_SceneryLoaded: return TVPM_MSG_SCENERY_LOADED;
        case tvpm_AirplaneCountChanged: return TVPM_MSG_AIRPLANE_COUNT_CHANGED;
        case tvpm_WritePrefs: return TVPM_MSG_WILL_WRITE_PREFS;
        case tvpm_LiveryChanged: return TVPM_MSG_LIVERY_LOADED;
        case tvpm_EnteredVR: return TVPM_MSG_ENTERED_VR;
        case tvpm_ExitingVR: return TVPM_MSG_EXITING_VR;
        case tvpm_FMODBankLoaded: return TVPM_MSG_FMOD_BANK_LOADED;
        default: return 0;
    }
}

// Events whose parameter travels with the message; the others send null.
bool BroadcastCarriesParameter(TVPMEventKind kind) {
    return kind >= tvpm_LiveryChanged && kind <= tvpm_FMODBankLoaded;
}

}  // namespace

TVPM_API int TVPMInitializePlugins(const char* inSystemFolderPath, TVPMHooks* inHooks,
                                   void* inSelfDLL) {
    gPluginThread = pthread_self();
    TVPMReadDiagnosticsSwitch();
    gSelf = inSelfDLL;
    gHooks = inHooks;
    gDirSeparator[0] = '/';
    gDirSeparator[1] = 0;
    if (!inHooks || inHooks->version != kHooksVersion || inHooks->structSize != kHooksSize)
        return 0;
    TVPMInitMenus();
    TVPMPublishBuildString(BuildString().c_str());
    gHooks->TVPMHostReady_f();
    TVPMFindAndLoadPlugins(inSystemFolderPath ? inSystemFolderPath : "");
    TVPMEnableAllPlugins();
    return kStartedResult;
}

TVPM_API void TVPMShutdownPlugins(void) {
    if (!gHooks) return;
    TVPMDisableAllPlugins();
    TVPMUnloadPlugins();
}

TVPM_API int TVPMInitialized(void) { return gHooks ? 1 : 0; }

TVPM_API int TVPMEventHook(TVPMEventKind inEventType, float inElapsedTime, float,
                           intptr_t inFuture1, intptr_t) {
    // Before start-up, after a refused table and after shut-down there is no
    // plugin table: nothing to route, and no aircraft plugin may load.
    if (!gHooks || gAllPlugins.empty()) return 1;
    // Libraries of plugins that unloaded themselves can go once the host
    // calls in from outside any plugin.
    TVPMCloseDeferredLibraries();
    switch (inEventType) {
        case tvpm_FlightLoopEvent:
            TVPMDoRepeatedButtons();
            TVPMDoFMODHousekeeping();
            TVPMDoFlightLoopProcessing(inElapsedTime, tvpm_FlightLoopEvent);
            break;
        case tvpm_FlightLoopDoneEvent:
            TVPMDoFlightLoopProcessing(inElapsedTime, tvpm_FlightLoopDoneEvent);
            break;
        case tvpm_CameraChangedHook: TVPMReleaseCamera(); break;
        case tvpm_PlaneLoaded: OnPlaneLoaded(inFuture1); break;
        case tvpm_PlaneUnloaded: OnPlaneUnloaded(inFuture1); break;
        case tvpm_CommandRepeat: TVPMCommandRepeatHook(); break;
        case tvpm_RegisterScenery:
            OnRegisterScenery(reinterpret_cast<const char*>(inFuture1));
            break;
        case tvpm_FMODBankUnloading: {
            StActingAsSimulator asSimulator;
            TVPMSendMessageToPlugin(TVPM_NO_PLUGIN_ID, TVPM_MSG_FMOD_BANK_UNLOADING,
                                    reinterpret_cast<void*>(inFuture1));
            TVPMFMODClearChannelGroupsInBank(TVPM_NO_PLUGIN_ID, static_cast<int>(inFuture1));
            break;
        }
        case tvpm_CheckNewDatarefs: OnCheckNewDatarefs(); break;
        default: {
            int message = MessageForBroadcastEvent(inEventType);
            if (message)
                BroadcastFromHost(message, BroadcastCarriesParameter(inEventType)
                                               ? reinterpret_cast<void*>(inFuture1)
                                               : nullptr);
            break;
        }
    }
    return 1;
}

TVPM_API int TVPMGetCurrentPluginInfo(char* outPluginName, char* outPluginSignature) {
    TVPMPluginID id = gClientPlugin;
    const PluginRecord* r = TVPMGetPluginRecord(id);
    if (!r) return id;
    if (outPluginName) strncpy(outPluginName, r->name.c_str(), 256);
    if (outPluginSignature) strncpy(outPluginSignature, r->signature.c_str(), 256);
    return id;
}

TVPM_API int TVPMGetTrafficControlPluginInfo(char* outPluginName, char* outPluginSignature) {
    TVPMPluginID id = TVPMGetTrafficControlPlugin();
    const PluginRecord* r = TVPMGetPluginRecord(id);
    if (!r) return id;
    if (outPluginName) strncpy(outPluginName, r->name.c_str(), 256);
    if (outPluginSignature) strncpy(outPluginSignature, r->signature.c_str(), 256);
    return id;
}
