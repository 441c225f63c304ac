/*
 * TVPMProcessing.h: flight loops: plugin callbacks run by TVPM once per frame
 * before or after the simulator's flight model, every N seconds or every N
 * passes, each in its owner's context.
 *
 * Every function here is meant for the plugin thread: flight loops are kept
 * without locks. Calls from other threads are detected only when the
 * simulator turned on plugin diagnostics. Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMProcessing_h
#define TVPMProcessing_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A flight loop [handle]: valid until destroyed or its plugin is unloaded. */
typedef void* TVPMFlightLoopID;

/* When in the frame a flight loop runs. */
typedef int TVPMFlightLoopPhaseType;
enum {
    tvpm_FlightLoop_Phase_BeforeFlightModel = 0,
    tvpm_FlightLoop_Phase_AfterFlightModel = 1
};

/*
 * A flight loop. inElapsedSinceLastCall: seconds since it last ran (or was
 * created or rescheduled relative to now); inElapsedTimeSinceLastFlightLoop:
 * the simulator's elapsed time now; inCounter: the pass counter
 * (TVPMGetCycleNumber). Returns the next schedule: > 0 seconds until the next
 * call, < 0 the number of passes to wait (negated; -1 = every pass of its
 * phase, i.e. every frame), 0 to stop being called.
 */
typedef float (*TVPMFlightLoop_f)(float inElapsedSinceLastCall,
                                  float inElapsedTimeSinceLastFlightLoop, int inCounter,
                                  void* inRefcon);

/* Set structSize to sizeof(TVPMCreateFlightLoop_t) (24). */
typedef struct TVPMCreateFlightLoop_t {
    int structSize;
    TVPMFlightLoopPhaseType phase;
    TVPMFlightLoop_f callbackFunc;
    void* refcon;
} TVPMCreateFlightLoop_t;

/* The simulator's elapsed time in seconds, the clock flight loops run on. */
TVPM_API float TVPMGetElapsedTime(void);
/* The pass counter: advances once per flight-loop pass, twice per frame. */
TVPM_API int TVPMGetCycleNumber(void);

/* Creates an unscheduled flight loop owned by the [current plugin]; schedule
 * it with TVPMScheduleFlightLoop. Bad parameters are reported to plugins with
 * an error callback but do not prevent creation. */
TVPM_API TVPMFlightLoopID TVPMCreateFlightLoop(TVPMCreateFlightLoop_t* inParams);
/* Destroys one of the [current plugin]'s flight loops; safe from inside its own
 * callback (it is not called again). */
TVPM_API void TVPMDestroyFlightLoop(TVPMFlightLoopID inFlightLoopID);
/* Sets the schedule (as a callback's return value would); with
 * inRelativeToNow non-zero a seconds interval counts from now rather than from
 * the last call. Only the owner may schedule. */
TVPM_API void TVPMScheduleFlightLoop(TVPMFlightLoopID inFlightLoopID, float inInterval,
                                     int inRelativeToNow);

/* Older interface, keyed by callback and refcon rather than by handle. */

/* Creates a before-flight-model loop with the given schedule. */
TVPM_API void TVPMRegisterFlightLoopCallback(TVPMFlightLoop_f inFlightLoop, float inInterval,
                                             void* inRefcon);
/* Destroys the newest loop with this callback and refcon, if any. */
TVPM_API void TVPMUnregisterFlightLoopCallback(TVPMFlightLoop_f inFlightLoop, void* inRefcon);
/* Reschedules every loop with this callback and refcon. */
TVPM_API void TVPMSetFlightLoopCallbackInterval(TVPMFlightLoop_f inFlightLoop, float inInterval,
                                                int inRelativeToNow, void* inRefcon);

#ifdef __cplusplus
}
#endif

#endif /* TVPMProcessing_h */
