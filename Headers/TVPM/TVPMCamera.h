/*
 * TVPMCamera.h: taking over the simulator's camera. One plugin at a time
 * controls it: every frame its callback receives the camera position and may
 * move it, keep control or give it up.
 *
 * Every function here is [plugin-thread] and acts for the [current plugin].
 * Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMCamera_h
#define TVPMCamera_h

#include <stddef.h>

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

#define TVPM_CAMERA_POSITION_SIZE 28
/* The camera, in local OpenGL metres and degrees; zoom 1 is normal. */
typedef struct TVPMCameraPosition_t {
    float x, y, z;
    float pitch, heading, roll;
    float zoom;
} TVPMCameraPosition_t;
TVPM_PIN_LAYOUT(camera_position_size, sizeof(TVPMCameraPosition_t) == TVPM_CAMERA_POSITION_SIZE);
TVPM_PIN_LAYOUT(camera_position_pitch, offsetof(TVPMCameraPosition_t, pitch) == 12);
TVPM_PIN_LAYOUT(camera_position_zoom, offsetof(TVPMCameraPosition_t, zoom) == 24);

typedef int TVPMCameraControlDuration;
enum {
    tvpm_ControlCameraUntilViewChanges = 1, /* until the user picks another view */
    tvpm_ControlCameraForever = 2           /* until the plugin gives it up */
};

/*
 * The controller, called once per frame in its plugin's context with the
 * camera position to change (owned by TVPM, for the call only) and
 * inIsLosingControl 0; returns 1 to keep control, 0 to give it up (it is then
 * not called again). When control is taken from it (view change, its plugin
 * disabled or unloaded) it is called once more with a null position and
 * inIsLosingControl 1; its result is then ignored.
 */
typedef int (*TVPMCameraControl_f)(TVPMCameraPosition_t* outCameraPosition,
                                   int inIsLosingControl, void* inRefcon);

/* Takes the camera at once, replacing any other plugin's control without
 * telling that plugin. */
TVPM_API void TVPMControlCamera(TVPMCameraControlDuration inHowLong,
                                TVPMCameraControl_f inControlFunc, void* inRefcon);
/* Hands the camera back to the simulator without calling the controller. Any
 * plugin may call it. */
TVPM_API void TVPMDontControlCamera(void);
/* 1 when a plugin controls the camera (and then, when the pointer is not
 * null, its duration); 0 otherwise, leaving the duration untouched. */
TVPM_API int TVPMIsCameraBeingControlled(TVPMCameraControlDuration* outCameraControlDuration);
/* The camera position now, into a structure the caller owns (null ignored). */
TVPM_API void TVPMReadCameraPosition(TVPMCameraPosition_t* outCameraPosition);

#ifdef __cplusplus
}
#endif

#endif /* TVPMCamera_h */
