/*
 * TVPMPlanes.h: the user's aircraft, and exclusive control of the other (AI
 * and multiplayer) aircraft.
 *
 * One plugin at a time controls the other aircraft: it chooses their models,
 * how many are active and how they are drawn. A plugin that asks while
 * another holds them is refused; the holder receives TVPM_MSG_RELEASE_PLANES
 * and, when it releases, every waiting plugin's callback runs. Calls that
 * need control are ignored, without a message, from any other plugin.
 * Aircraft index 0 is always the user's aircraft.
 *
 * Every function here is [plugin-thread] and acts for the [current plugin].
 * Paths are in the plugin's path style (TVPM_USE_NATIVE_PATHS). Terms are
 * defined in TVPMDefs.h.
 */
#ifndef TVPMPlanes_h
#define TVPMPlanes_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Called, in its plugin's context, when the aircraft become free. It does not
 * give control: call TVPMAcquirePlanes again; the first to do so wins. */
typedef void (*TVPMPlanesAvailable_f)(void* inRefcon);

/* ---- The user's aircraft ------------------------------------------------- */

/* Loads the aircraft file as the user's aircraft. */
TVPM_API void TVPMSetUsersAircraft(const char* inAircraftPath);
/* Places the user's aircraft at an airport (its code). */
TVPM_API void TVPMPlaceUserAtAirport(const char* inAirportCode);
/* Places the user's aircraft in flight at a location, heading and speed. */
TVPM_API void TVPMPlaceUserAtLocation(double latitudeDegrees, double longitudeDegrees,
                                      float elevationMetersMSL, float headingDegreesTrue,
                                      float speedMetersPerSecond);
/* Re-initialises the user's aircraft. Controlling plugin only. */
TVPM_API void TVPMReinitUsersPlane(void);

/* ---- All aircraft -------------------------------------------------------- */

/* The number of aircraft, how many are active, and the controlling plugin
 * (-1 when none); each output may be null. */
TVPM_API void TVPMCountAircraft(int* outTotalAircraft, int* outActiveAircraft,
                                TVPMPluginID* outController);
/* Aircraft inIndex's file name (256 bytes) and full path (512 bytes), into
 * buffers the caller owns. */
TVPM_API void TVPMGetNthAircraftModel(int inIndex, char* outFileName, char* outPath);

/* ---- Control of the other aircraft ---------------------------------------- */

/* Asks for control. Returns 1 when the current plugin now holds it (or held
 * it already: nothing changes then). inAircraft, when not null, is a
 * null-terminated list of model paths, entry i for aircraft i (entry 0 is the
 * user's slot), read during the call. Returns 0 when another plugin holds
 * control: that plugin is asked to release, and inCallback (when not null) is
 * queued to run once it does. */
TVPM_API int TVPMAcquirePlanes(char** inAircraft, TVPMPlanesAvailable_f inCallback,
                               void* inRefcon);
/* Gives control up: AI flying and collision warnings come back on for every
 * aircraft, and every waiting plugin is called back. Controlling plugin only. */
TVPM_API void TVPMReleasePlanes(void);
/* How many aircraft the simulator keeps active. Controlling plugin only. */
TVPM_API void TVPMSetActiveAircraftCount(int inCount);
/* Chooses aircraft inIndex's model (inIndex >= 1), loading it at once when
 * the simulator has that slot. Controlling plugin only. */
TVPM_API void TVPMSetAircraftModel(int inIndex, const char* inAircraftPath);
/* Stops the simulator's AI from flying aircraft inPlaneIndex. Any plugin. */
TVPM_API void TVPMDisableAIForPlane(int inPlaneIndex);
/* Draws aircraft inPlaneIndex at a position, from a draw callback;
 * inDrawStateInfo goes to the simulator unchanged. Controlling plugin only. */
TVPM_API void TVPMDrawAircraft(int inPlaneIndex, float inX, float inY, float inZ, float inPitch,
                               float inRoll, float inYaw, int inFullDraw,
                               TVPMPlaneDrawState_t* inDrawStateInfo);

#ifdef __cplusplus
}
#endif

#endif /* TVPMPlanes_h */
