/*
 * TVPMMap.h: layers that plugins add to the simulator's maps, drawing into
 * them (own drawing, icons from image sheets, text labels), notice of map
 * creation, and conversions between map and world coordinates.
 *
 * The simulator owns the maps; it calls a layer's callbacks in the owning
 * plugin's context while the plugin is enabled, and never while it is
 * disabled. A layer stays registered until the map deletes it; destroying a
 * layer tells the map, and the layer's callbacks are no longer called once
 * its plugin is unloaded.
 *
 * [plugin-thread] for every function and callback. Terms are defined in
 * TVPMDefs.h.
 */
#ifndef TVPMMap_h
#define TVPMMap_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A map layer [handle]; the map receives the same value as its layer. */
typedef void* TVPMMapLayerID;

/* The simulator's maps. */
#define TVPM_MAP_USER_INTERFACE "TVPM_MAP_USER_INTERFACE"
#define TVPM_MAP_IOS "TVPM_MAP_IOS"

/* Where a layer goes: over the map's markings, or under them with fills. */
enum { tvpm_MapLayer_Fill = 0, tvpm_MapLayer_Markings = 1 };
/* Map styles passed to drawing callbacks. */
enum { tvpm_MapStyle_VFR_Sectional = 0, tvpm_MapStyle_IFR_LowEnroute = 1,
       tvpm_MapStyle_IFR_HighEnroute = 2 };
/* An icon or label turns with the map, or stays upright on screen. */
enum { tvpm_MapOrientation_Map = 0, tvpm_MapOrientation_UI = 1 };

/* Called before the map deletes the layer: release what the layer holds. */
typedef void (*TVPMMapWillBeDeletedCallback_f)(TVPMMapLayerID inLayer, void* inRefcon);
/* The map's total bounds changed: rebuild cached geometry. */
typedef void (*TVPMMapPrepareCacheCallback_f)(TVPMMapLayerID inLayer,
                                              const float* inTotalMapBoundsLeftTopRightBottom,
                                              TVPMMapProjectionID projection, void* inRefcon);
/* Draws the layer (drawing, icons or labels phase) within the given bounds. */
typedef void (*TVPMMapDrawingCallback_f)(TVPMMapLayerID inLayer,
                                         const float* inMapBoundsLeftTopRightBottom,
                                         float zoomRatio, float mapUnitsPerUserInterfaceUnit,
                                         TVPMMapStyle mapStyle, TVPMMapProjectionID projection,
                                         void* inRefcon);
typedef TVPMMapDrawingCallback_f TVPMMapIconDrawingCallback_f;
typedef TVPMMapDrawingCallback_f TVPMMapLabelDrawingCallback_f;
/* A map was created (mapIdentifier is one of the two map names). */
typedef void (*TVPMMapCreatedCallback_f)(const char* mapIdentifier, void* refcon);

/* Set structSize to sizeof(TVPMCreateMapLayer_t) (88); any callback may be null. */
#define TVPM_CREATE_MAP_LAYER_SIZE 88
typedef struct TVPMCreateMapLayer_t {
    int structSize;
    const char* mapToCreateLayerIn;
    TVPMMapLayerType layerType;
    TVPMMapWillBeDeletedCallback_f willBeDeletedCallback;
    TVPMMapPrepareCacheCallback_f prepCacheCallback;
    TVPMMapDrawingCallback_f drawCallback;
    TVPMMapIconDrawingCallback_f iconCallback;
    TVPMMapLabelDrawingCallback_f labelCallback;
    int showUiToggle;
    const char* layerName; /* read during the call */
    void* refcon;
} TVPMCreateMapLayer_t;

/* Adds a layer owned by the [current plugin] to an existing map. Returns null
 * for a wrong structSize or when the map refuses it. */
TVPM_API TVPMMapLayerID TVPMCreateMapLayer(TVPMCreateMapLayer_t* inParams);
/* Tells the layer's will-be-deleted callback (in its owner's context) and the
 * map. Returns 0 for an unknown layer. */
TVPM_API int TVPMDestroyMapLayer(TVPMMapLayerID layer);
/* Calls callback, in the [current plugin]'s context, each time a map is
 * created. Registering twice calls it twice; newest registrations first. */
TVPM_API void TVPMRegisterMapCreationHook(TVPMMapCreatedCallback_f callback, void* refcon);
/* 1 when the named map exists. */
TVPM_API int TVPMMapExists(const char* mapIdentifier);

/* Icon and label drawing, only from a layer's own drawing callbacks; an
 * unknown layer is ignored. Texts and paths are read during the call. */
TVPM_API void TVPMDrawMapIconFromSheet(TVPMMapLayerID layer, const char* inPngPath, int s, int t,
                                       int ds, int dt, float mapX, float mapY,
                                       TVPMMapOrientation orientation, float rotationDegrees,
                                       float mapWidth);
TVPM_API void TVPMDrawMapLabel(TVPMMapLayerID layer, const char* inText, float mapX, float mapY,
                               TVPMMapOrientation orientation, float rotationDegrees);

/* Conversions with the projection a callback was given (valid only during
 * that callback). Outputs are the caller's. */
TVPM_API void TVPMMapProject(TVPMMapProjectionID projection, double latitude, double longitude,
                             float* outX, float* outY);
TVPM_API void TVPMMapUnproject(TVPMMapProjectionID projection, float mapX, float mapY,
                               double* outLatitude, double* outLongitude);
/* Map units per metre at a map point. */
TVPM_API float TVPMMapScaleMeter(TVPMMapProjectionID projection, float mapX, float mapY);
/* The heading of true north at a map point, degrees clockwise from up. */
TVPM_API float TVPMMapGetNorthHeading(TVPMMapProjectionID projection, float mapX, float mapY);

#ifdef __cplusplus
}
#endif

#endif /* TVPMMap_h */
