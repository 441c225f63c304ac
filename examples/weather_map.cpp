// weather_map.cpp: example plugin: text drawn over the panel, a map layer showing navaids, and weather written in one bulk update.
//
// What it shows an author:
//   - drawing text from a draw callback with the graphics calls (TVPMGraphics.h);
//   - adding a layer to the simulator's map, either right away when the map
//     already exists or when the simulator announces it (TVPMMap.h);
//   - walking the navigation database (TVPMNavigation.h);
//   - reading a METAR and writing this plugin's own weather between
//     TVPMBeginWeatherUpdate and TVPMEndWeatherUpdate, both in the same
//     callback: an update left open at the end of a callback is a bug that
//     TVPM reports and `tvpm-host --check` fails (TVPMWeather.h).
// The simulator removes a plugin's weather when it is unloaded; a map layer
// stays registered unless the plugin destroys it, so TPluginStop does.
#include <cstdio>
#include <cstring>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMGraphics.h"
#include "TVPM/TVPMMap.h"
#include "TVPM/TVPMNavigation.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPM/TVPMWeather.h"

namespace {

const char* const kAirport = "LSZH";
constexpr float kWeatherEverySeconds = 2.0f;

struct State {
    TVPMMapLayerID layer = nullptr;
    TVPMFlightLoopID loop = nullptr;
    TVPMFixedString150_t metar{};
    int labelsDrawn = 0, weatherUpdates = 0;
} g;

// ---- text over the panel ------------------------------------------------------

int DrawMetar(TVPMDrawingPhase, int, void*) {
    float white[3] = {1, 1, 1};
    int charHeight = 0;
    TVPMGetFontDimensions(tvpmFont_Proportional, nullptr, &charHeight, nullptr);
    TVPMDrawString(white, 20, 40 + charHeight, g.metar.buffer, nullptr, tvpmFont_Proportional);
    return 1;
}

// ---- the map layer ----------------------------------------------------------------

// Labels every navaid of the database at its position on the map.
void DrawNavaidLabels(TVPMMapLayerID layer, const float*, float, float, TVPMMapStyle,
                      TVPMMapProjectionID projection, void*) {
    for (TVPMNavRef ref = TVPMGetFirstNavAid(); ref != TVPM_NAV_NOT_FOUND;
         ref = TVPMGetNextNavAid(ref)) {
        float lat = 0, lon = 0, x = 0, y = 0;
        char id[32] = "";
        TVPMGetNavAidInfo(ref, nullptr, &lat, &lon, nullptr, nullptr, nullptr, id, nullptr,
                          nullptr);
        TVPMMapProject(projection, lat, lon, &x, &y);
        TVPMDrawMapLabel(layer, id, x, y, tvpm_MapOrientation_UI, 0);
        ++g.labelsDrawn;
    }
}

// Marks the airport whose weather this plugin writes.
void DrawAirportIcon(TVPMMapLayerID layer, const float*, float, float, TVPMMapStyle,
                     TVPMMapProjectionID projection, void*) {
    const TVPMNavRef airport = TVPMFindNavAid(nullptr, kAirport, nullptr, nullptr, nullptr,
                                              tvpm_Nav_Airport);
    if (airport == TVPM_NAV_NOT_FOUND) return;
    float lat = 0, lon = 0, x = 0, y = 0;
    TVPMGetNavAidInfo(airport, nullptr, &lat, &lon, nullptr, nullptr, nullptr, nullptr, nullptr,
                      nullptr);
    TVPMMapProject(projection, lat, lon, &x, &y);
    TVPMDrawMapIconFromSheet(layer, "weather_map_icons.png", 0, 0, 4, 4, x, y,
                             tvpm_MapOrientation_UI, 0, 20 * TVPMMapScaleMeter(projection, x, y));
}

// The map forgets the layer (for example when its window closes).
void LayerDeleted(TVPMMapLayerID layer, void*) {
    if (layer == g.layer) g.layer = nullptr;
}

void CreateLayer() {
    if (g.layer) return;
    TVPMCreateMapLayer_t params = {};
    params.structSize = sizeof params;
    params.mapToCreateLayerIn = TVPM_MAP_USER_INTERFACE;
    params.layerType = tvpm_MapLayer_Markings;
    params.willBeDeletedCallback = LayerDeleted;
    params.iconCallback = DrawAirportIcon;
    params.labelCallback = DrawNavaidLabels;
    params.showUiToggle = 1;
    params.layerName = "Navaids and weather";
    g.layer = TVPMCreateMapLayer(&params);
}

void OnMapCreated(const char* map, void*) {
    if (!strcmp(map, TVPM_MAP_USER_INTERFACE)) CreateLayer();
}

// ---- weather --------------------------------------------------------------------

// A breezy, hazy day at the airport, written as one bulk update.
float UpdateWeather(float, float, int, void*) {
    TVPMGetMETARForAirport(kAirport, &g.metar);
    TVPMWeatherInfo_t info = {};
    info.structSize = sizeof info;
    if (!TVPMGetWeatherAtLocation(47.46, 8.55, 500, &info)) return kWeatherEverySeconds;
    info.visibility = 6000;
    info.wind_layers[0] = {500, 15, 240, 22, 10, 2};
    TVPMBeginWeatherUpdate();
    TVPMSetWeatherAtAirport(kAirport, &info);
    TVPMEndWeatherUpdate(1, 0);  // keep other weather; blend in
    ++g.weatherUpdates;
    return kWeatherEverySeconds;
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    strcpy(outName, "Weather Map");
    strcpy(outSig, "tvpm.examples.weather_map");
    strcpy(outDesc, "Draws a METAR and a navaid map layer, and writes weather at LSZH.");
    TVPMRegisterDrawCallback(DrawMetar, tvpm_Phase_Window, 0, nullptr);
    TVPMRegisterMapCreationHook(OnMapCreated, nullptr);
    if (TVPMMapExists(TVPM_MAP_USER_INTERFACE)) CreateLayer();
    TVPMCreateFlightLoop_t loop = {static_cast<int>(sizeof loop),
                                   tvpm_FlightLoop_Phase_AfterFlightModel, UpdateWeather, nullptr};
    g.loop = TVPMCreateFlightLoop(&loop);
    TVPMScheduleFlightLoop(g.loop, -1, 1);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {
    char line[160];
    snprintf(line, sizeof line, "Weather Map: %d navaid labels drawn, %d weather updates\n",
             g.labelsDrawn, g.weatherUpdates);
    TVPMDebugString(line);
    TVPMDestroyFlightLoop(g.loop);
    if (g.layer) TVPMDestroyMapLayer(g.layer);
    TVPMUnregisterDrawCallback(DrawMetar, tvpm_Phase_Window, 0, nullptr);
    g = State();
}

TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }
TVPM_PLUGIN_API void TPluginDisable(void) {}
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
