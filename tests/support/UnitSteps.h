// UnitSteps.h: the step log the white-box tests record into, and recording stand-ins for every unit's lifecycle hooks.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

// Every step recorded so far, in order.
inline std::vector<std::string> s_steps;

inline void Step(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
inline void Step(const char* fmt, ...) {
    char text[256];
    va_list args;
    va_start(args, fmt);
    vsnprintf(text, sizeof text, fmt, args);
    va_end(args);
    s_steps.push_back(text);
}

// Define TVPM_RECORD_LIFECYCLE_HOOKS before including this file to get the
// units' enable, disable and cleanup hooks, each recorded as "<hook> <id>".
#ifdef TVPM_RECORD_LIFECYCLE_HOOKS

#include "TVPMPrivate.h"

// Set to make the weather unit switch the plugin off again while it is enabled.
inline bool s_weatherRefuses = false;

#define RECORD_HOOK(name) \
    void name(TVPMPluginID id) { Step(#name " %d", id); }
RECORD_HOOK(TVPMDisplayEnableHook)
RECORD_HOOK(TVPMInstanceEnableHook)
RECORD_HOOK(TVPMDisplayDisablePrePluginDisableHook)
RECORD_HOOK(TVPMInstanceDisableHook)
RECORD_HOOK(TVPMCameraDisableHook)
RECORD_HOOK(TVPMPlaneDisableHook)
RECORD_HOOK(TVPMDisplayDisablePostPluginDisableHook)
RECORD_HOOK(TVPMFMODDisableHook)
RECORD_HOOK(TVPMWeatherDisableHook)
RECORD_HOOK(TVPMCommandCleanupHook)
RECORD_HOOK(TVPMDisplayCleanupHook)
RECORD_HOOK(TVPMInstanceCleanupHook)
RECORD_HOOK(TVPMProcessingCleanupHook)
RECORD_HOOK(TVPMCameraCleanupHook)
RECORD_HOOK(TVPMMenuCleanupHook)
RECORD_HOOK(TVPMPlaneCleanupHook)
RECORD_HOOK(TVPMDataRefsCleanupHook)
RECORD_HOOK(TVPMSceneryCleanupHook)
RECORD_HOOK(TVPMFMODCleanupHook)
#undef RECORD_HOOK

void TVPMWeatherEnableHook(TVPMPluginID id) {
    Step("TVPMWeatherEnableHook %d", id);
    if (s_weatherRefuses) gAllPlugins[static_cast<size_t>(id)].enabled = false;
}
void TVPMWeatherCleanupHook(TVPMPluginID id) {
    Step("TVPMWeatherCleanupHook %d", id);
    gPendingWeatherUpdate = -1;
}
void TVPMCheckNothingOwnedBy(TVPMPluginID) {}
void TVPMDiagnoseError(const char*, TVPMPluginID) {}
void TVPMDiagnoseLeftAtUnload(TVPMPluginID) {}
void TVPMDisplaySyncGuiWindowStateWithPluginHook(TVPMPluginID id, int enabled) {
    Step("TVPMDisplaySyncGuiWindowStateWithPluginHook %d %d", id, enabled);
}

#endif
