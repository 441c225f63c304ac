// SimMapsGraphics.cpp: the simulator's map windows driving plugin layers, and the counting of graphics calls per plugin.
#include <dlfcn.h>

#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "SimServices.h"
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

std::map<std::string, std::map<std::string, long>> s_graphicsCalls;

template <auto Slot, class Ptr>
struct Counted;

template <auto Slot, class R, class... A>
struct Counted<Slot, R (*)(A...)> {
    static inline R (*original)(A...) = nullptr;
    static inline const char* name = "";
    static R Call(A... a) {
        ++s_graphicsCalls[CurrentPluginPath()][name];
        return original(a...);
    }
};

template <auto Slot>
void Count(TVPMHooks& h, const char* name) {
    using C = Counted<Slot, std::remove_reference_t<decltype(h.*Slot)>>;
    C::original = h.*Slot;
    C::name = name;
    h.*Slot = &C::Call;
}

// The map hooks, found in the loaded library (a build without maps has none).
template <class F>
F MapHook(const char* name) {
    return Api().handle ? reinterpret_cast<F>(dlsym(Api().handle, name)) : nullptr;
}

// Stands for the map's projection; the projection slots ignore it.
int s_projection;

}  // namespace

#define TVPM_COUNT_SLOT(slot) Count<&TVPMHooks::slot>(h, #slot)
void CountGraphicsSlots(TVPMHooks& h) {
    TVPM_COUNT_SLOT(TVPMSetGraphicsState_f);
    TVPM_COUNT_SLOT(TVPMBindTexture2d_f);
    TVPM_COUNT_SLOT(TVPMGenerateTextureIDs_f);
    TVPM_COUNT_SLOT(TVPMGetTexture_f);
    TVPM_COUNT_SLOT(TVPMWorldToLocal_f);
    TVPM_COUNT_SLOT(TVPMLocalToWorld_f);
    TVPM_COUNT_SLOT(TVPMDrawTranslucentDarkBox_f);
    TVPM_COUNT_SLOT(TVPMDrawString_f);
    TVPM_COUNT_SLOT(TVPMDrawNumber_f);
    TVPM_COUNT_SLOT(TVPMGetFontDimensions_f);
    TVPM_COUNT_SLOT(TVPMMeasureString_f);
    TVPM_COUNT_SLOT(TVPMDrawMapIconFromSheet_f);
    TVPM_COUNT_SLOT(TVPMDrawMapLabel_f);
}
#undef TVPM_COUNT_SLOT

const std::map<std::string, std::map<std::string, long>>& GraphicsCalls() {
    return s_graphicsCalls;
}

void AnnounceMaps() {
    auto created = MapHook<void (*)(const char*)>("TVPMMapCreated");
    if (!created) return;
    for (const char* map : {"TVPM_MAP_USER_INTERFACE", "TVPM_MAP_IOS"}) created(map);
}

void DrawMapLayers() {
    using Needs = int (*)();
    using Prepare = void (*)(void*, const float*, TVPMMapProjectionID);
    using Draw = void (*)(void*, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID);
    static const auto needs = MapHook<Needs>("TVPMNeedsMapLayerDrawingHooks");
    static const auto prepare = MapHook<Prepare>("TVPMDoMapLayerPrepareCacheHook");
    static const auto draw = MapHook<Draw>("TVPMDoMapLayerDrawingHook");
    static std::map<void*, bool> prepared;
    if (!needs || !prepare || !draw || !needs()) return;
    // A map window around the example aircraft: left, top, right, bottom.
    const float bounds[4] = {8.0f, 48.0f, 9.0f, 47.0f};
    std::vector<void*> layers;  // drawing may create or destroy layers
    for (auto& [layer, r] : World().mapLayers)
        if (r.alive) layers.push_back(layer);
    for (void* layer : layers) {
        if (!prepared[layer]) prepare(layer, bounds, &s_projection);
        prepared[layer] = true;
        draw(layer, bounds, 1.0f, 1.0f, 0, &s_projection);
    }
}

}  // namespace tvpmhost
