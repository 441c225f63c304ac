/*
 * TVPMInstance.h: instances: copies of a loaded scenery object that the
 * simulator draws by itself every frame, at a position and with per-instance
 * data values the plugin sets.
 *
 * A plugin's instances are hidden while it is disabled, shown again when it
 * is enabled, and destroyed when it is unloaded.
 *
 * Every function here is [plugin-thread] and acts for the [current plugin].
 * Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMInstance_h
#define TVPMInstance_h

#include "TVPMDefs.h"
#include "TVPMScenery.h"

#ifdef __cplusplus
extern "C" {
#endif

/* An instance [handle]: valid until TVPMDestroyInstance or until its plugin
 * is unloaded. */
typedef void* TVPMInstanceRef;

/* A position with double-precision coordinates; structSize is not checked. */
typedef struct TVPMDrawInfoDouble_t {
    int structSize;
    double x, y, z;
    double pitch, heading, roll;
} TVPMDrawInfoDouble_t;

/* Creates an instance of obj owned by the current plugin. datarefs is a
 * null-terminated list of data item names (may be null for none), read
 * during the call; each TVPMInstanceSetPosition gives one value per name. */
TVPM_API TVPMInstanceRef TVPMCreateInstance(TVPMObjectRef obj, const char** datarefs);
/* Destroys an instance; any plugin may destroy any instance. Unknown, stale
 * and already destroyed handles are ignored. */
TVPM_API void TVPMDestroyInstance(TVPMInstanceRef instance);
/* Sets the data values (one float per name given at creation, in that order;
 * read during the call) and then the position. Unknown handles and a null
 * position are ignored. */
TVPM_API void TVPMInstanceSetPosition(TVPMInstanceRef instance, const TVPMDrawInfo_t* position,
                                      const float* data);
/* The same with double-precision coordinates. */
TVPM_API void TVPMInstanceSetPositionDouble(TVPMInstanceRef instance,
                                            const TVPMDrawInfoDouble_t* position,
                                            const float* data);
/* Lets the simulator move the instance along when the local coordinate
 * origin shifts. Unknown handles are ignored. */
TVPM_API void TVPMInstanceSetAutoShift(TVPMInstanceRef instance);

#ifdef __cplusplus
}
#endif

#endif /* TVPMInstance_h */
