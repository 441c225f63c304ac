// TVPMPlanes.cpp: the user's aircraft, and exclusive control of the other aircraft with a queue of plugins waiting for it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMPlanes.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

constexpr int kReinitFlightWhat = 208;
constexpr int kReinitFlightHow = 201;
constexpr int kPathBufferSize = 512;
constexpr int kNameBufferSize = 256;

struct TVPMPlaneCallback {
    TVPMPlanesAvailable_f callback;
    void* refcon;
    TVPMPluginID plugin;
};

TVPMPluginID gOwner = TVPM_NO_PLUGIN_ID;
int gPlaneLimit = -1;
int gPlaneSlotMax = -1;
bool gIsSelfLoading = false;
std::vector<std::string> gRequestedPlanes;  // by aircraft slot; "" = no choice
std::vector<TVPMPlaneCallback> gQueue;

TVPM_FAMILY_RECORD_COUNT("AI aircraft control", [](TVPMPluginID id) {
    return size_t{gOwner == id} +
           static_cast<size_t>(std::count_if(gQueue.begin(), gQueue.end(),
                                             [id](const TVPMPlaneCallback& e) { return e.plugin == id; }));
});

bool NeedPathConvert() { return !TVPMHasFeatureInternal(TVPMGetDispatchedPlugin(), kFeatureUseNativePaths); }

std::string HostPath(const char* path) {
    std::string s(path ? path : "");
    if (NeedPathConvert()) TVPMOldToUTF8(s);
    return s;
}

bool CallerOwns() { return gOwner != TVPM_NO_PLUGIN_ID && TVPMGetDispatchedPlugin() == gOwner; }

void SetIntItem(const char* name, int value) {
    if (TVPMDataRef ref = TVPMFindDataRef(name)) TVPMSetDatai(ref, value);
}

void LoadPlaneAtSimulator(int index, const char* path, const char* name) {
    gIsSelfLoading = true;
    gHooks->TVPMLoadPlane_f(index, path, name);
    gIsSelfLoading = false;
}

// Frees the aircraft held by owner and calls every waiting plugin back.
void ReleaseHeldBy(TVPMPluginID owner) {
    const PluginRecord* r = TVPMGetPluginRecord(owner);
    const std::string line =
        "The plugin " + (r ? r->name : std::string()) + " is releasing control of AI aircraft.\n";
    gHooks->TVPMDebugString_f(line.c_str());
    SetIntItem("sim/operation/override/override_TCAS", 0);
    gPlaneLimit = -1;
    gOwner = TVPM_NO_PLUGIN_ID;
    gRequestedPlanes.clear();
    std::vector<TVPMPlaneCallback> waiting;
    waiting.swap(gQueue);
    for (int i = 1; gPlaneSlotMax >= 2 && i < gPlaneSlotMax; ++i) {
        char name[64];
        snprintf(name, sizeof name, "sim/private/net_disables/ai_loc[%d]", i);
        SetIntItem(name, 0);
    }
    for (const TVPMPlaneCallback& e : waiting)
        TVPMCallPlugin(e.plugin, TVPMCallSite::kAIControl, [&] { e.callback(e.refcon); });
}

}  // namespace

// ---- The user's aircraft -----------------------------------------------------

TVPM_API void TVPMSetUsersAircraft(const char* inAircraftPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inAircraftPath) return;
    const std::string full = HostPath(inAircraftPath);
    // The name starts after the last separator; without one it starts at
    // index 1, dropping the first character, as the simulator expects.
    const char separator = TVPMGetDirectorySeparator()[0];
    size_t start = 1;
    for (size_t i = strlen(inAircraftPath); i >= 1; --i)
        if (inAircraftPath[i] == separator) {
            start = i + 1;
            break;
        }
    const std::string name = strlen(inAircraftPath) >= start ? inAircraftPath + start : "";
    LoadPlaneAtSimulator(0, full.c_str(), name.c_str());
}

TVPM_API void TVPMPlaceUserAtAirport(const char* inAirportCode) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (inAirportCode) gHooks->TVPMLoadAirport_f(inAirportCode);
}

TVPM_API void TVPMPlaceUserAtLocation(double latitudeDegrees, double longitudeDegrees,
                                      float elevationMetersMSL, float headingDegreesTrue,
                                      float speedMetersPerSecond) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gHooks->TVPMInitAtLocation_f(latitudeDegrees, longitudeDegrees, elevationMetersMSL,
                                 headingDegreesTrue, speedMetersPerSecond);
}

TVPM_API void TVPMReinitUsersPlane(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!CallerOwns() || gHooks->structSize < TVPM_HOOKS_SIZE) return;
    gHooks->TVPMReinitFlight_f(kReinitFlightWhat, kReinitFlightHow);
}

// ---- All aircraft ------------------------------------------------------------

TVPM_API void TVPMCountAircraft(int* outTotalAircraft, int* outActiveAircraft,
                                TVPMPluginID* outController) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const int total = gHooks->TVPMCountPlanes_f();
    const int active = gPlaneLimit == -1 ? total : std::min(total, gPlaneLimit);
    if (outTotalAircraft) *outTotalAircraft = total;
    if (outActiveAircraft) *outActiveAircraft = active;
    if (outController) *outController = gOwner;
}

TVPM_API void TVPMGetNthAircraftModel(int inIndex, char* outFileName, char* outPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    char nameScratch[kNameBufferSize] = "", pathScratch[kPathBufferSize] = "";
    char* name = outFileName ? outFileName : nameScratch;
    char* path = outPath ? outPath : pathScratch;
    gHooks->TVPMGetPlaneName_f(inIndex, path, name);  // the simulator takes the path first
    if (!NeedPathConvert()) return;
    std::string converted(path);
    TVPMUTF8ToOld(converted);
    strcpytrunc(path, converted, kPathBufferSize);
}

// ---- Control of the other aircraft ------------------------------------------

TVPM_API int TVPMAcquirePlanes(char** inAircraft, TVPMPlanesAvailable_f inCallback,
                               void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID caller = TVPMGetDispatchedPlugin();
    if (caller == gOwner) return 1;
    if (gOwner != TVPM_NO_PLUGIN_ID) {
        TVPMSendMessageToPlugin(gOwner, TVPM_MSG_RELEASE_PLANES, nullptr);
        if (inCallback) gQueue.push_back({inCallback, inRefcon, caller});
        return 0;
    }
    // Taking control is not logged; giving it up is.
    gRequestedPlanes.clear();
    gPlaneLimit = -1;
    gOwner = caller;
    for (char** p = inAircraft; p && *p; ++p) gRequestedPlanes.push_back(HostPath(*p));
    return 1;
}

TVPM_API void TVPMReleasePlanes(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (CallerOwns()) ReleaseHeldBy(gOwner);
}

TVPM_API void TVPMSetActiveAircraftCount(int inCount) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (CallerOwns()) gPlaneLimit = inCount;
}

TVPM_API void TVPMSetAircraftModel(int inIndex, const char* inAircraftPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!CallerOwns() || inIndex < 0 || !inAircraftPath) return;
    const std::string path = HostPath(inAircraftPath);
    if (gRequestedPlanes.size() <= static_cast<size_t>(inIndex))
        gRequestedPlanes.resize(static_cast<size_t>(inIndex) + 1);
    gRequestedPlanes[static_cast<size_t>(inIndex)] = path;
    if (gPlaneSlotMax != -1 && inIndex < gPlaneSlotMax)
        LoadPlaneAtSimulator(inIndex, path.c_str(), path.c_str());
}

TVPM_API void TVPMDisableAIForPlane(int inPlaneIndex) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    char name[64];
    snprintf(name, sizeof name, "sim/private/net_disables/ai_loc[%d]", inPlaneIndex);
    SetIntItem(name, 1);
}

TVPM_API void TVPMDrawAircraft(int inPlaneIndex, float inX, float inY, float inZ, float inPitch,
                               float inRoll, float inYaw, int inFullDraw,
                               TVPMPlaneDrawState_t* inDrawStateInfo) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!CallerOwns()) return;
    gHooks->TVPMDrawPlane_f(inPlaneIndex, inX, inY, inZ, inPitch, inRoll, inYaw, inFullDraw,
                            inDrawStateInfo);
}

// ---- The simulator's side ------------------------------------------------------

int TVPMHandleGetNumberPlanesToHandle(int inMax, int inLoading) {
    gPlaneSlotMax = inMax;
    if (inLoading || gIsSelfLoading || gOwner == TVPM_NO_PLUGIN_ID || gPlaneLimit == -1) return inMax;
    return std::min(gPlaneLimit, inMax);
}

void TVPMHandleUpdatePlaneNameAndPath(int inIndex, char*, char* outPath) {
    if (gOwner == TVPM_NO_PLUGIN_ID || gIsSelfLoading || inIndex == 0 || inIndex < 0 || !outPath) return;
    if (static_cast<size_t>(inIndex) >= gRequestedPlanes.size()) return;
    const std::string& chosen = gRequestedPlanes[static_cast<size_t>(inIndex)];
    if (!chosen.empty()) strcpy(outPath, chosen.c_str());
}

TVPMPluginID TVPMGetTrafficControlPlugin() { return gOwner; }

// ---- Lifecycle -------------------------------------------------------------------

void TVPMPlaneDisableHook(TVPMPluginID id) {
    if (id == gOwner && id != TVPM_NO_PLUGIN_ID) ReleaseHeldBy(id);
}

void TVPMPlaneCleanupHook(TVPMPluginID id) {
    gQueue.erase(std::remove_if(gQueue.begin(), gQueue.end(),
                                [id](const TVPMPlaneCallback& e) { return e.plugin == id; }),
                 gQueue.end());
    if (id == gOwner && id != TVPM_NO_PLUGIN_ID) ReleaseHeldBy(id);
}
