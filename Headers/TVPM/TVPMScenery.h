/*
 * TVPMScenery.h: terrain probes, magnetic variation, and scenery objects
 * (model files) that a plugin loads, draws, looks up and unloads, at once or
 * in the background.
 *
 * TVPM remembers which plugin holds each probe and object: whatever a plugin
 * still holds when it is unloaded is released for it.
 *
 * Every function here is [plugin-thread] and acts for the [current plugin].
 * Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMScenery_h
#define TVPMScenery_h

#include <stddef.h>

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Terrain probes ------------------------------------------------------ */

/* A terrain probe [handle]: valid until TVPMDestroyProbe or until its plugin
 * is unloaded. */
typedef void* TVPMProbeRef;

typedef int TVPMProbeType;
enum { tvpm_ProbeY = 0 /* straight down, the only kind */ };

typedef int TVPMProbeResult;
enum {
    tvpm_ProbeHitTerrain = 0, /* outInfo describes the terrain hit */
    tvpm_ProbeError = 1,      /* bad probe, type or structSize; outInfo untouched */
    tvpm_ProbeMissed = 2      /* nothing below the point */
};

#define TVPM_PROBE_INFO_SIZE 44
/* What a probe found, in local OpenGL metres. Set structSize to
 * TVPM_PROBE_INFO_SIZE. */
typedef struct TVPMProbeInfo_t {
    int structSize;
    float locationX, locationY, locationZ; /* the terrain point hit */
    float normalX, normalY, normalZ;       /* the terrain's up vector there */
    float velocityX, velocityY, velocityZ; /* of moving terrain (a ship's deck) */
    int is_wet;                            /* 1 over water */
} TVPMProbeInfo_t;
TVPM_PIN_LAYOUT(probe_info_size, sizeof(TVPMProbeInfo_t) == TVPM_PROBE_INFO_SIZE);
TVPM_PIN_LAYOUT(probe_info_location, offsetof(TVPMProbeInfo_t, locationX) == 4);
TVPM_PIN_LAYOUT(probe_info_normal, offsetof(TVPMProbeInfo_t, normalX) == 16);
TVPM_PIN_LAYOUT(probe_info_velocity, offsetof(TVPMProbeInfo_t, velocityX) == 28);
TVPM_PIN_LAYOUT(probe_info_wet, offsetof(TVPMProbeInfo_t, is_wet) == 40);

/* Creates a probe owned by the current plugin. The type is not checked. */
TVPM_API TVPMProbeRef TVPMCreateProbe(TVPMProbeType inProbeType);
/* Destroys a probe; any plugin may destroy any probe. Unknown, stale and
 * already destroyed handles are ignored. */
TVPM_API void TVPMDestroyProbe(TVPMProbeRef inProbe);
/* Probes the terrain below (inX, inY, inZ) into outInfo (owned by the
 * caller; its structSize must be TVPM_PROBE_INFO_SIZE). Returns
 * tvpm_ProbeError, with no message, for an unknown probe, a wrong type or
 * size, or a null outInfo. */
TVPM_API TVPMProbeResult TVPMProbeTerrainXYZ(TVPMProbeRef inProbe, float inX, float inY,
                                             float inZ, TVPMProbeInfo_t* outInfo);

/* ---- Magnetic variation -------------------------------------------------- */

/* The magnetic variation in degrees at a point (computed in single precision). */
TVPM_API float TVPMGetMagneticVariation(double latitude, double longitude);
/* A true heading as a magnetic heading at the user's aircraft. */
TVPM_API float TVPMDegTrueToDegMagnetic(float headingDegreesTrue);
/* A magnetic heading as a true heading at the user's aircraft. */
TVPM_API float TVPMDegMagneticToDegTrue(float headingDegreesMagnetic);

/* ---- Objects --------------------------------------------------------------- */

/* A loaded scenery object [handle owned by the simulator]. The plugin that
 * loaded it holds it until TVPMUnloadObject or until it is unloaded; an
 * object loaded twice is held twice and needs two unloads. */
typedef void* TVPMObjectRef;

#define TVPM_DRAW_INFO_SIZE 28
/* Where to draw an object, in local OpenGL metres and degrees. Set
 * structSize to TVPM_DRAW_INFO_SIZE. */
typedef struct TVPMDrawInfo_t {
    int structSize;
    float x, y, z;
    float pitch, heading, roll;
} TVPMDrawInfo_t;
TVPM_PIN_LAYOUT(draw_info_size, sizeof(TVPMDrawInfo_t) == TVPM_DRAW_INFO_SIZE);
TVPM_PIN_LAYOUT(draw_info_x, offsetof(TVPMDrawInfo_t, x) == 4);
TVPM_PIN_LAYOUT(draw_info_pitch, offsetof(TVPMDrawInfo_t, pitch) == 16);
TVPM_PIN_LAYOUT(draw_info_roll, offsetof(TVPMDrawInfo_t, roll) == 24);

/* Receives a background load's result: the object, which the plugin then
 * holds, or null when the file could not be loaded. */
typedef void (*TVPMObjectLoaded_f)(TVPMObjectRef inObject, void* inRefcon);
/* Receives each file path a library lookup finds ([static-text] for the
 * duration of the call). */
typedef void (*TVPMLibraryEnumerator_f)(const char* inFilePath, void* inRef);

/* Loads an object file (path relative to the simulator folder, or absolute).
 * Returns null, with no message, when the simulator cannot load it. */
TVPM_API TVPMObjectRef TVPMLoadObject(const char* inPath);
/* Starts loading an object in the background. inCallback runs later, in the
 * plugin's own context, with the object (now held by the plugin) or null. A
 * result that arrives while the plugin is disabled waits until it is enabled
 * again; one that arrives after the plugin was unloaded is released. */
TVPM_API void TVPMLoadObjectAsync(const char* inPath, TVPMObjectLoaded_f inCallback,
                                  void* inRefcon);
/* Draws an object at inCount locations (owned by the caller), from a draw
 * callback. When the plugin has an error callback, an object it does not hold
 * or a location whose structSize is not TVPM_DRAW_INFO_SIZE is reported and
 * nothing is drawn. */
TVPM_API void TVPMDrawObjects(TVPMObjectRef inObject, int inCount, TVPMDrawInfo_t* inLocations,
                              int lighting, int earth_relative);
/* Releases one hold of an object the current plugin loaded. An object it does
 * not hold is reported ("Unknown object for TVPMUnloadObject") and kept. */
TVPM_API void TVPMUnloadObject(TVPMObjectRef inObject);
/* Calls enumerator once for each file the scenery library holds under the
 * virtual path inPath near the location; returns how many it found. */
TVPM_API int TVPMLookupObjects(const char* inPath, float inLatitude, float inLongitude,
                               TVPMLibraryEnumerator_f enumerator, void* ref);

#ifdef __cplusplus
}
#endif

#endif /* TVPMScenery_h */
