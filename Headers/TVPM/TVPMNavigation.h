/*
 * TVPMNavigation.h: the simulator's navigation database (navaids, fixes,
 * airports), the flight management system's entries and flight plans, and
 * the GPS destination.
 *
 * The simulator holds all of it; every call passes its arguments to the
 * simulator unchanged and returns its answer. Output pointers are the
 * caller's and may be null to skip a value; ID buffers need 32 bytes, name
 * buffers 256.
 *
 * [plugin-thread] for every function. Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMNavigation_h
#define TVPMNavigation_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Navaid kinds, as bit flags that may be combined in searches. */
enum {
    tvpm_Nav_Unknown = 0,
    tvpm_Nav_Airport = 1,
    tvpm_Nav_NDB = 2,
    tvpm_Nav_VOR = 4,
    tvpm_Nav_ILS = 8,
    tvpm_Nav_Localizer = 16,
    tvpm_Nav_GlideSlope = 32,
    tvpm_Nav_OuterMarker = 64,
    tvpm_Nav_MiddleMarker = 128,
    tvpm_Nav_InnerMarker = 256,
    tvpm_Nav_Fix = 512,
    tvpm_Nav_DME = 1024,
    tvpm_Nav_LatLon = 2048
};

/* The navaid reference that means none. */
#define TVPM_NAV_NOT_FOUND (-1)

/* The FMS's flight plans. */
enum {
    tvpm_Fpl_Pilot_Primary = 0,
    tvpm_Fpl_CoPilot_Primary = 1,
    tvpm_Fpl_Pilot_Approach = 2,
    tvpm_Fpl_CoPilot_Approach = 3,
    tvpm_Fpl_Pilot_Temporary = 4,
    tvpm_Fpl_CoPilot_Temporary = 5
};

/* ---- navaids -------------------------------------------------------------- */
TVPM_API TVPMNavRef TVPMGetFirstNavAid(void);
TVPM_API TVPMNavRef TVPMGetNextNavAid(TVPMNavRef inNavAidRef);
TVPM_API TVPMNavRef TVPMFindFirstNavAidOfType(TVPMNavType inType);
TVPM_API TVPMNavRef TVPMFindLastNavAidOfType(TVPMNavType inType);
/* Finds a navaid by name or ID fragment, near a position, by frequency and
 * kind; each criterion may be null (or 0 for the kind) to ignore it. */
TVPM_API TVPMNavRef TVPMFindNavAid(const char* inNameFragment, const char* inIDFragment,
                                   float* inLat, float* inLon, int* inFrequency,
                                   TVPMNavType inType);
TVPM_API void TVPMGetNavAidInfo(TVPMNavRef inRef, TVPMNavType* outType, float* outLatitude,
                                float* outLongitude, float* outHeight, int* outFrequency,
                                float* outHeading, char* outID, char* outName, char* outReg);

/* ---- the FMS's primary flight plan -------------------------------------- */
TVPM_API int TVPMCountFMSEntries(void);
TVPM_API int TVPMGetDisplayedFMSEntry(void);
TVPM_API int TVPMGetDestinationFMSEntry(void);
TVPM_API void TVPMSetDisplayedFMSEntry(int inIndex);
TVPM_API void TVPMSetDestinationFMSEntry(int inIndex);
TVPM_API void TVPMGetFMSEntryInfo(int inIndex, TVPMNavType* outType, char* outID,
                                  TVPMNavRef* outRef, int* outAltitude, float* outLat,
                                  float* outLon);
TVPM_API void TVPMSetFMSEntryInfo(int inIndex, TVPMNavRef inRef, int inAltitude);
TVPM_API void TVPMSetFMSEntryLatLon(int inIndex, float inLat, float inLon, int inAltitude);
TVPM_API void TVPMClearFMSEntry(int inIndex);

/* ---- any of the FMS's flight plans ---------------------------------------- */
TVPM_API int TVPMCountFMSFlightPlanEntries(TVPMNavFlightPlan inFlightPlan);
TVPM_API int TVPMGetDisplayedFMSFlightPlanEntry(TVPMNavFlightPlan inFlightPlan);
TVPM_API int TVPMGetDestinationFMSFlightPlanEntry(TVPMNavFlightPlan inFlightPlan);
TVPM_API void TVPMSetDisplayedFMSFlightPlanEntry(TVPMNavFlightPlan inFlightPlan, int inIndex);
TVPM_API void TVPMSetDestinationFMSFlightPlanEntry(TVPMNavFlightPlan inFlightPlan, int inIndex);
TVPM_API void TVPMSetDirectToFMSFlightPlanEntry(TVPMNavFlightPlan inFlightPlan, int inIndex);
TVPM_API void TVPMGetFMSFlightPlanEntryInfo(TVPMNavFlightPlan inFlightPlan, int inIndex,
                                            TVPMNavType* outType, char* outID,
                                            TVPMNavRef* outRef, int* outAltitude,
                                            float* outLat, float* outLon);
TVPM_API void TVPMSetFMSFlightPlanEntryInfo(TVPMNavFlightPlan inFlightPlan, int inIndex,
                                            TVPMNavRef inRef, int inAltitude);
TVPM_API void TVPMSetFMSFlightPlanEntryLatLon(TVPMNavFlightPlan inFlightPlan, int inIndex,
                                              float inLat, float inLon, int inAltitude);
/* As above, naming the entry inID (inIDLength characters, read during the call). */
TVPM_API void TVPMSetFMSFlightPlanEntryLatLonWithId(TVPMNavFlightPlan inFlightPlan, int inIndex,
                                                    float inLat, float inLon, int inAltitude,
                                                    const char* inID, unsigned int inIDLength);
TVPM_API void TVPMClearFMSFlightPlanEntry(TVPMNavFlightPlan inFlightPlan, int inIndex);
/* Replaces a device's flight plan with the text in inBuffer (inLength bytes). */
TVPM_API void TVPMLoadFMSFlightPlan(int inDevice, const char* inBuffer, unsigned int inLength);
/* Writes a device's flight plan as text into outBuffer (inLength bytes, the
 * caller's); returns the text's full length. */
TVPM_API unsigned int TVPMSaveFMSFlightPlan(int inDevice, char* outBuffer, unsigned int inLength);

/* ---- the GPS -------------------------------------------------------------- */
TVPM_API TVPMNavType TVPMGetGPSDestinationType(void);
TVPM_API TVPMNavRef TVPMGetGPSDestination(void);

#ifdef __cplusplus
}
#endif

#endif /* TVPMNavigation_h */
