// broken_weather.cpp: a test plugin that begins a bulk weather update in a flight loop and never ends it, and keeps its map layer.
#include <cstring>

#include "TVPM/TVPMMap.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMWeather.h"

namespace {

float BeginOnly(float, float, int, void*) {
    static TVPMWeatherInfo_t info;
    info.structSize = sizeof info;
    TVPMBeginWeatherUpdate();
    TVPMSetWeatherAtAirport("LSZH", &info);
    return 0;
}

void Draw(TVPMMapLayerID, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID, void*) {}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Weather");
    strcpy(outSignature, "test.broken.weather");
    strcpy(outDescription, "Leaves a bulk weather update open and its map layer registered.");
    TVPMCreateMapLayer_t layer;
    memset(&layer, 0, sizeof layer);
    layer.structSize = sizeof layer;
    layer.mapToCreateLayerIn = TVPM_MAP_USER_INTERFACE;
    layer.drawCallback = Draw;
    layer.layerName = "Kept";
    TVPMCreateMapLayer(&layer);
    TVPMCreateFlightLoop_t loop = {static_cast<int>(sizeof loop),
                                   tvpm_FlightLoop_Phase_BeforeFlightModel, BeginOnly, nullptr};
    TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&loop), -1, 1);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
