// TVPMMap.cpp: plugin map layers and map-creation callbacks, routed from the simulator's map hooks to their owners.
#include "TVPMMap.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

constexpr int kCreateMapLayerSize = TVPM_CREATE_MAP_LAYER_SIZE;
static_assert(sizeof(TVPMCreateMapLayer_t) == kCreateMapLayerSize, "layer parameters");
static_assert(offsetof(TVPMCreateMapLayer_t, structSize) == 0 &&
                  offsetof(TVPMCreateMapLayer_t, mapToCreateLayerIn) == 8 &&
                  offsetof(TVPMCreateMapLayer_t, layerType) == 16 &&
                  offsetof(TVPMCreateMapLayer_t, willBeDeletedCallback) == 24 &&
                  offsetof(TVPMCreateMapLayer_t, prepCacheCallback) == 32 &&
                  offsetof(TVPMCreateMapLayer_t, drawCallback) == 40 &&
                  offsetof(TVPMCreateMapLayer_t, iconCallback) == 48 &&
                  offsetof(TVPMCreateMapLayer_t, labelCallback) == 56 &&
                  offsetof(TVPMCreateMapLayer_t, showUiToggle) == 64 &&
                  offsetof(TVPMCreateMapLayer_t, layerName) == 72 &&
                  offsetof(TVPMCreateMapLayer_t, refcon) == 80,
              "layer parameter offsets");

struct TVPMMapLayerCallbackRecord : TVPMResource_t<TVPMMapLayerCallbackRecord> {
    TVPMMapWillBeDeletedCallback_f willBeDeletedCallback;
    TVPMMapPrepareCacheCallback_f prepCacheCallback;
    TVPMMapDrawingCallback_f drawCallback;
    TVPMMapIconDrawingCallback_f iconCallback;
    TVPMMapLabelDrawingCallback_f labelCallback;
    void* refcon;
    TVPMPluginID plugin;
    // The owner's table generation: unloading keeps layers, and a plugin
    // loaded later may reuse the ID; the old callbacks must not be called.
    uint64_t generation;
};

struct TVPMMapCreationCallbackRecord : TVPMResource_t<TVPMMapCreationCallbackRecord> {
    TVPMMapCreatedCallback_f callback;
    TVPMPluginID plugin;
    void* refcon;
    uint64_t generation;
};

TVPMResourceList<TVPMMapLayerCallbackRecord> gMapLayers;
TVPMResourceList<TVPMMapCreationCallbackRecord> gMapCreationCallbacks;

uint64_t GenerationOf(TVPMPluginID id) {
    const PluginRecord* r = TVPMGetPluginRecord(id);
    return r ? r->generation : 0;
}

// Unloaded owners keep their ID's record (marked disabled) until the table is
// trimmed or reloaded; after that the ID may name another plugin.
template <class Record>
bool OwnerStillLoaded(const Record* r) {
    return GenerationOf(r->plugin) == r->generation;
}

// Calls fn(record) for the live layer whose handle is given, in its owner's
// context, while the walk keeps the record alive.
template <class F>
void WithLayerOwner(const void* handle, F&& fn) {
    for (TVPMWalk<TVPMMapLayerCallbackRecord> w(gMapLayers); auto* r = w.Next();) {
        if (r != handle) continue;
        if (OwnerStillLoaded(r)) fn(r);
        return;
    }
}

void CallLayer(TVPMMapLayerCallbackRecord* r, TVPMMapDrawingCallback_f cb, const float* bounds,
               float zoom, float unitsPerUI, TVPMMapStyle style, TVPMMapProjectionID projection) {
    if (!cb) return;
    TVPMCallPlugin(r->plugin, TVPMCallSite::kMapLayer,
                   [&] { cb(r, bounds, zoom, unitsPerUI, style, projection, r->refcon); });
}

void CallWillBeDeleted(TVPMMapLayerCallbackRecord* r) {
    if (!r->willBeDeletedCallback) return;
    TVPMCallPlugin(r->plugin, TVPMCallSite::kMapLayer,
                   [&] { r->willBeDeletedCallback(r, r->refcon); });
}

}  // namespace

TVPM_API TVPMMapLayerID TVPMCreateMapLayer(TVPMCreateMapLayer_t* inParams) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inParams || inParams->structSize != kCreateMapLayerSize) return nullptr;
    const TVPMPluginID owner = TVPMGetDispatchedPlugin();
    auto* r = new TVPMMapLayerCallbackRecord();
    r->willBeDeletedCallback = inParams->willBeDeletedCallback;
    r->prepCacheCallback = inParams->prepCacheCallback;
    r->drawCallback = inParams->drawCallback;
    r->iconCallback = inParams->iconCallback;
    r->labelCallback = inParams->labelCallback;
    r->refcon = inParams->refcon;
    r->plugin = owner;
    r->generation = GenerationOf(owner);
    gMapLayers.Add(r);
    if (gHooks->TVPMCreateMapLayer_f(r, inParams->mapToCreateLayerIn, inParams->layerType,
                                     inParams->showUiToggle, inParams->layerName))
        return r;
    gMapLayers.Remove(r);
    return nullptr;
}

TVPM_API int TVPMDestroyMapLayer(TVPMMapLayerID layer) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    for (TVPMWalk<TVPMMapLayerCallbackRecord> w(gMapLayers); auto* r = w.Next();) {
        if (r != layer) continue;
        if (OwnerStillLoaded(r)) CallWillBeDeleted(r);
        gHooks->TVPMDestroyMapLayer_f(layer);
        return 1;
    }
    return 0;
}

TVPM_API void TVPMRegisterMapCreationHook(TVPMMapCreatedCallback_f callback, void* refcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID owner = TVPMGetDispatchedPlugin();
    auto* r = new TVPMMapCreationCallbackRecord();
    r->callback = callback;
    r->plugin = owner;
    r->refcon = refcon;
    r->generation = GenerationOf(owner);
    gMapCreationCallbacks.Add(r);
}

TVPM_API int TVPMMapExists(const char* mapIdentifier) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMMapExists_f(mapIdentifier);
}

TVPM_API void TVPMDrawMapIconFromSheet(TVPMMapLayerID layer, const char* inPngPath, int s, int t,
                                       int ds, int dt, float mapX, float mapY,
                                       TVPMMapOrientation orientation, float rotationDegrees,
                                       float mapWidth) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!gMapLayers.Contains(layer)) return;
    gHooks->TVPMDrawMapIconFromSheet_f(layer, inPngPath, s, t, ds, dt, mapX, mapY, orientation,
                                       rotationDegrees, mapWidth);
}

TVPM_API void TVPMDrawMapLabel(TVPMMapLayerID layer, const char* inText, float mapX, float mapY,
                               TVPMMapOrientation orientation, float rotationDegrees) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!gMapLayers.Contains(layer)) return;
    gHooks->TVPMDrawMapLabel_f(layer, inText, mapX, mapY, orientation, rotationDegrees);
}

TVPM_API void TVPMMapProject(TVPMMapProjectionID projection, double latitude, double longitude,
                             float* outX, float* outY) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gHooks->TVPMMapProject_f(projection, latitude, longitude, outX, outY);
}

TVPM_API void TVPMMapUnproject(TVPMMapProjectionID projection, float mapX, float mapY,
                               double* outLatitude, double* outLongitude) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gHooks->TVPMMapUnproject_f(projection, mapX, mapY, outLatitude, outLongitude);
}

TVPM_API float TVPMMapScaleMeter(TVPMMapProjectionID projection, float mapX, float mapY) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMMapScaleMeter_f(projection, mapX, mapY);
}

TVPM_API float TVPMMapGetNorthHeading(TVPMMapProjectionID projection, float mapX, float mapY) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMMapGetNorthHeading_f(projection, mapX, mapY);
}

// ---- the simulator's map hooks ----------------------------------------------

int TVPMMapNeedsLayerDrawingHooks() {
    for (TVPMWalk<TVPMMapLayerCallbackRecord> w(gMapLayers); auto* r = w.Next();)
        if (r->drawCallback || r->iconCallback || r->prepCacheCallback) return 1;
    return 0;
}

void TVPMMapDoLayerDrawingHook(void* sdkLayerHandle, const float* inMapBoundsLeftTopRightBottom,
                               float zoomRatio, float mapUnitsPerUserInterfaceUnit,
                               TVPMMapStyle mapStyle, TVPMMapProjectionID projection) {
    WithLayerOwner(sdkLayerHandle, [&](TVPMMapLayerCallbackRecord* r) {
        for (TVPMMapDrawingCallback_f cb : {r->drawCallback, r->iconCallback, r->labelCallback})
            CallLayer(r, cb, inMapBoundsLeftTopRightBottom, zoomRatio,
                      mapUnitsPerUserInterfaceUnit, mapStyle, projection);
    });
}

void TVPMMapDoLayerPrepareCacheHook(void* sdkLayerHandle,
                                    const float* inTotalMapBoundsLeftTopRightBottom,
                                    TVPMMapProjectionID projection) {
    WithLayerOwner(sdkLayerHandle, [&](TVPMMapLayerCallbackRecord* r) {
        if (!r->prepCacheCallback) return;
        TVPMCallPlugin(r->plugin, TVPMCallSite::kMapLayer, [&] {
            r->prepCacheCallback(r, inTotalMapBoundsLeftTopRightBottom, projection, r->refcon);
        });
    });
}

void TVPMMapDoLayerWillBeDeletedHook(void* sdkLayerHandle) {
    WithLayerOwner(sdkLayerHandle, CallWillBeDeleted);
}

void TVPMMapHandleCreation(const char* mapIdentifier) {
    if (!mapIdentifier || (strcmp(mapIdentifier, TVPM_MAP_USER_INTERFACE) != 0 &&
                           strcmp(mapIdentifier, TVPM_MAP_IOS) != 0))
        return;
    for (TVPMWalk<TVPMMapCreationCallbackRecord> w(gMapCreationCallbacks); auto* r = w.Next();) {
        if (!r->callback || !OwnerStillLoaded(r)) continue;
        TVPMCallPlugin(r->plugin, TVPMCallSite::kMapCreation,
                       [&] { r->callback(mapIdentifier, r->refcon); });
    }
}

// Kept for completeness: unloading does not call it, so an unloaded plugin's
// layers stay registered (and are never called again, see OwnerStillLoaded).
void TVPMMapCleanupHook(TVPMPluginID id) {
    gMapLayers.RemoveOwnedBy(id,
                             [](TVPMMapLayerCallbackRecord* r) { gHooks->TVPMDestroyMapLayer_f(r); });
    gMapCreationCallbacks.RemoveOwnedBy(id);
}
