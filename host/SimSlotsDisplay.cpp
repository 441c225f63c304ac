// SimSlotsDisplay.cpp: the simulator's display slots: screen, graphics, GUI windows and map layers (avionics devices: SimAvionics.cpp).
#include <cstring>
#include <string>

#include "SimServices.h"
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr int kScreenWidth = 1920, kScreenHeight = 1080;
constexpr int kFontWidth = 8, kFontHeight = 16;

SimWindow* FindWindow(void* id) {
    auto it = World().windows.find(id);
    return it == World().windows.end() || !it->second.alive ? nullptr : &it->second;
}

void FillScreenSlots(TVPMHooks& h) {
    h.TVPMGetScreenSize_f = [](int* w, int* hgt) {
        if (w) *w = kScreenWidth;
        if (hgt) *hgt = kScreenHeight;
    };
    h.TVPMGetScreenBoundsGlobal_f = [](int* l, int* t, int* r, int* b) {
        if (l) *l = 0;
        if (t) *t = kScreenHeight;
        if (r) *r = kScreenWidth;
        if (b) *b = 0;
    };
    h.TVPMGetAllMonitorBoundsGlobal_f = [](TVPMReceiveMonitorBoundsGlobal_f cb, void* ref) {
        if (cb) cb(0, 0, kScreenHeight, kScreenWidth, 0, ref);
    };
    h.TVPMGetAllMonitorBoundsOS_f = [](TVPMReceiveMonitorBoundsOS_f cb, void* ref) {
        if (cb) cb(0, 0, 0, kScreenWidth, kScreenHeight, ref);
    };
    h.TVPMGetMouseLocation_f = [](int* x, int* y, int) {
        if (x) *x = kScreenWidth / 2;
        if (y) *y = kScreenHeight / 2;
    };
    h.TVPMGetMouseLocationGlobal_f = h.TVPMGetMouseLocation_f;
    h.TVPMSetPluginMouseFocus_f = [](int, void*) {};
}

void FillGraphicsSlots(TVPMHooks& h) {
    h.TVPMSetGraphicsState_f = [](int, int, int, int, int, int, int) {};
    h.TVPMBindTexture2d_f = [](TVPMTextureID, int) {};
    h.TVPMGenerateTextureIDs_f = [](TVPMTextureID* ids, int count) {
        static TVPMTextureID next = 1;
        for (int i = 0; ids && i < count; ++i) ids[i] = next++;
    };
    h.TVPMGetTexture_f = [](TVPMTextureID id) { return static_cast<int>(id); };
    h.TVPMWorldToLocal_f = [](double lat, double lon, double alt, double* x, double* y,
                              double* z) {
        if (x) *x = lon * 111320.0;
        if (y) *y = alt;
        if (z) *z = -lat * 110540.0;
    };
    h.TVPMLocalToWorld_f = [](double x, double y, double z, double* lat, double* lon,
                              double* alt) {
        if (lat) *lat = -z / 110540.0;
        if (lon) *lon = x / 111320.0;
        if (alt) *alt = y;
    };
    h.TVPMDrawTranslucentDarkBox_f = [](int, int, int, int) {};
    h.TVPMDrawString_f = [](float*, int, int, const char*, int*, TVPMFontID) {};
    h.TVPMDrawNumber_f = [](float*, int, int, double, int, int, int, TVPMFontID) {};
    h.TVPMGetFontDimensions_f = [](TVPMFontID, int* w, int* hgt, int* digitsOnly) {
        if (w) *w = kFontWidth;
        if (hgt) *hgt = kFontHeight;
        if (digitsOnly) *digitsOnly = 0;
    };
    h.TVPMMeasureString_f = [](TVPMFontID, const char*, int chars) {
        return static_cast<float>(chars * kFontWidth);
    };
}

void FillWindowSlots(TVPMHooks& h) {
    h.TVPMCreateGuiPluginWindow_f = [](void* id, TVPMWindowDecoration decoration, int layer, int) {
        SimWindow& w = World().windows[id];
        w = SimWindow{};
        w.owner = CurrentPluginPath();
        w.decoration = decoration;
        w.layer = layer;
    };
    h.TVPMDestroyGuiPluginWindow_f = [](void* id) {
        if (SimWindow* w = FindWindow(id)) {
            World().Released("window", w->title, w->owner);
            w->alive = false;
        }
    };
    h.TVPMGuiPluginWindowIsVisible_f = [](void* id) {
        SimWindow* w = FindWindow(id);
        return w && w->visible ? 1 : 0;
    };
    h.TVPMHideGuiPluginWindow_f = [](void* id) {
        if (SimWindow* w = FindWindow(id)) w->visible = false;
    };
    h.TVPMShowGuiPluginWindow_f = [](void* id) {
        if (SimWindow* w = FindWindow(id)) w->visible = true;
    };
    h.TVPMGetGuiPluginWindowBounds_f = [](void* id, int* lbrt) {
        if (SimWindow* w = FindWindow(id); w && lbrt) memcpy(lbrt, w->bounds, sizeof w->bounds);
    };
    h.TVPMSetGuiPluginWindowBounds_f = [](void* id, int* lbrt) {
        SimWindow* w = FindWindow(id);
        if (!w || !lbrt) return 0;
        memcpy(w->bounds, lbrt, sizeof w->bounds);
        return 1;
    };
    h.TVPMGetPopoutWindowOSBounds_f = h.TVPMGetGuiPluginWindowBounds_f;
    h.TVPMSetPopoutWindowOSBounds_f = h.TVPMSetGuiPluginWindowBounds_f;
    h.TVPMWindowIsPoppedOut_f = [](void*) { return 0; };
    h.TVPMWindowIsInVr_f = [](void*) { return 0; };
    h.TVPMBringGuiWindowToFront_f = [](void*) {};
    h.TVPMGuiWindowIsInFront_f = [](void* id) { return FindWindow(id) != nullptr; };
    h.TVPMSetWindowPositioningMode_f = [](void*, int, int) {};
    h.TVPMSetWindowResizingLimits_f = [](void*, int, int, int, int) {};
    h.TVPMSetWindowGravity_f = [](void*, float, float, float, float) {};
    h.TVPMSetWindowTitle_f = [](void* id, const char* title) {
        if (SimWindow* w = FindWindow(id); w && title) w->title = title;
    };
    h.TVPMGetWindowVrSize_f = [](TVPMWindowID, int* w, int* hgt) {
        if (w) *w = 0;
        if (hgt) *hgt = 0;
    };
    h.TVPMSetWindowVrSize_f = [](TVPMWindowID, int, int) {};
}

void FillMapSlots(TVPMHooks& h) {
    h.TVPMCreateMapLayer_f = [](void* layer, const char* map, TVPMMapLayerType, int,
                                const char* name) {
        // Only the two maps this simulator has accept layers.
        if (!map || (strcmp(map, "TVPM_MAP_USER_INTERFACE") && strcmp(map, "TVPM_MAP_IOS")))
            return 0;
        World().mapLayers[layer] = {"map layer", name ? name : "", CurrentPluginPath(), true};
        return 1;
    };
    h.TVPMDestroyMapLayer_f = [](void* layer) {
        auto it = World().mapLayers.find(layer);
        if (it == World().mapLayers.end() || !it->second.alive) return;
        World().Released("map layer", it->second.name, it->second.owner);
        it->second.alive = false;
    };
    h.TVPMDrawMapIconFromSheet_f = [](void*, const char*, int, int, int, int, float, float,
                                      TVPMMapOrientation, float, float) {};
    h.TVPMDrawMapLabel_f = [](void*, const char*, float, float, TVPMMapOrientation, float) {};
    h.TVPMMapProject_f = [](void*, double lat, double lon, float* x, float* y) {
        if (x) *x = static_cast<float>(lon);
        if (y) *y = static_cast<float>(lat);
    };
    h.TVPMMapUnproject_f = [](void*, float x, float y, double* lat, double* lon) {
        if (lat) *lat = y;
        if (lon) *lon = x;
    };
    h.TVPMMapScaleMeter_f = [](void*, float, float) { return 1.0f / 1852.0f; };
    h.TVPMMapGetNorthHeading_f = [](void*, float, float) { return 0.0f; };
    h.TVPMMapExists_f = [](const char* map) {
        return map && (!strcmp(map, "TVPM_MAP_USER_INTERFACE") || !strcmp(map, "TVPM_MAP_IOS"))
                   ? 1
                   : 0;
    };
}

}  // namespace

void FillDisplaySlots(TVPMHooks& h) {
    FillScreenSlots(h);
    FillGraphicsSlots(h);
    FillWindowSlots(h);
    FillAvionicsSlots(h);
    FillMapSlots(h);
    CountGraphicsSlots(h);
}

}  // namespace tvpmhost
