/*
 * TVPMProcessing.h: flight loops: plugin callbacks run by TVPM once per frame
 * before or after the simulator's flight model, every N seconds or every N
 * passes, each in its owner's context.
 *
 * Every function here is [plugin-thread]: flight loops are kept without
 * locks. Terms are defined in TVPMDefs.h.
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

/* The only structSize TVPMCreateFlightLoop accepts: sizeof(TVPMCreateFlightLoop_t). */
#define TVPM_CREATE_FLIGHT_LOOP_SIZE 24

/* Set structSize to TVPM_CREATE_FLIGHT_LOOP_SIZE. */
typedef struct TVPMCreateFlightLoop_t {
    int structSize;
    TVPMFlightLoopPhaseType phase;
    TVPMFlightLoop_f callbackFunc;
    void* refcon;
} TVPMCreateFlightLoop_t;
TVPM_PIN_LAYOUT(create_flight_loop_size, sizeof(TVPMCreateFlightLoop_t) == TVPM_CREATE_FLIGHT_LOOP_SIZE);
TVPM_PIN_LAYOUT(create_flight_loop_phase, offsetof(TVPMCreateFlightLoop_t, phase) == 4);
TVPM_PIN_LAYOUT(create_flight_loop_callback, offsetof(TVPMCreateFlightLoop_t, callbackFunc) == 8);
TVPM_PIN_LAYOUT(create_flight_loop_refcon, offsetof(TVPMCreateFlightLoop_t, refcon) == 16);

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
