// TVPMWeather.cpp: weather (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMWeatherEnableHook(TVPMPluginID) {}
void TVPMWeatherDisableHook(TVPMPluginID) {}
void TVPMWeatherCleanupHook(TVPMPluginID) {}

void TVPMReportUnclosedWeatherUpdate() {
    const TVPMPluginID id = gDispatchedPlugin;
    TVPMWeatherCleanupHook(id);
    TVPMLogPluginWarning(
        "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate() from the same "
        "callback. This is a plugin bug.");
    TVPMSendErrorTo("TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate()", id);
}
