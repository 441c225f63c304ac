// TVPMWeather.cpp: weather (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMWeatherEnableHook(TVPMPluginID) {}
void TVPMWeatherDisableHook(TVPMPluginID) {}
void TVPMWeatherCleanupHook(TVPMPluginID) {}

TVPMPluginID gPendingWeatherUpdate = -1;
