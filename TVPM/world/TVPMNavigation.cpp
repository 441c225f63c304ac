// TVPMNavigation.cpp: navigation database, FMS and GPS calls, each passed unchanged to the simulator's slot of the same name.
#include "TVPMNavigation.h"

#include "TVPMDispatch.h"
#include "TVPMForward.h"

// X(return type, exported name, slot, (parameters), (arguments))
#define TVPM_NAVIGATION_FORWARDERS(X)                                                          \
    X(TVPMNavRef, TVPMGetFirstNavAid, TVPMGetFirstNavAid_f, (void), ())                         \
    X(TVPMNavRef, TVPMGetNextNavAid, TVPMGetNextNavAid_f, (TVPMNavRef ref), (ref))              \
    X(TVPMNavRef, TVPMFindFirstNavAidOfType, TVPMFindFirstNavAidOfType_f, (TVPMNavType type),   \
      (type))                                                                                   \
    X(TVPMNavRef, TVPMFindLastNavAidOfType, TVPMFindLastNavAidOfType_f, (TVPMNavType type),     \
      (type))                                                                                   \
    X(TVPMNavRef, TVPMFindNavAid, TVPMFindNavAid_f,                                             \
      (const char* name, const char* id, float* lat, float* lon, int* freq, TVPMNavType type),  \
      (name, id, lat, lon, freq, type))                                                         \
    X(void, TVPMGetNavAidInfo, TVPMGetNavAidInfo_f,                                             \
      (TVPMNavRef ref, TVPMNavType* type, float* lat, float* lon, float* height, int* freq,     \
       float* heading, char* id, char* name, char* reg),                                        \
      (ref, type, lat, lon, height, freq, heading, id, name, reg))                              \
    X(int, TVPMCountFMSEntries, TVPMCountFMSEntries_f, (void), ())                              \
    X(int, TVPMGetDisplayedFMSEntry, TVPMGetDisplayedFMSEntry_f, (void), ())                    \
    X(int, TVPMGetDestinationFMSEntry, TVPMGetDestinationFMSEntry_f, (void), ())                \
    X(void, TVPMSetDisplayedFMSEntry, TVPMSetDisplayedFMSEntry_f, (int i), (i))                 \
    X(void, TVPMSetDestinationFMSEntry, TVPMSetDestinationFMSEntry_f, (int i), (i))             \
    X(void, TVPMGetFMSEntryInfo, TVPMGetFMSEntryInfo_f,                                         \
      (int i, TVPMNavType* type, char* id, TVPMNavRef* ref, int* alt, float* lat, float* lon),  \
      (i, type, id, ref, alt, lat, lon))                                                        \
    X(void, TVPMSetFMSEntryInfo, TVPMSetFMSEntryInfo_f, (int i, TVPMNavRef ref, int alt),       \
      (i, ref, alt))                                                                            \
    X(void, TVPMSetFMSEntryLatLon, TVPMSetFMSEntryLatLon_f,                                     \
      (int i, float lat, float lon, int alt), (i, lat, lon, alt))                               \
    X(void, TVPMClearFMSEntry, TVPMClearFMSEntry_f, (int i), (i))                               \
    X(int, TVPMCountFMSFlightPlanEntries, TVPMCountFMSFlightPlanEntries_f,                      \
      (TVPMNavFlightPlan p), (p))                                                               \
    X(int, TVPMGetDisplayedFMSFlightPlanEntry, TVPMGetDisplayedFMSFlightPlanEntry_f,            \
      (TVPMNavFlightPlan p), (p))                                                               \
    X(int, TVPMGetDestinationFMSFlightPlanEntry, TVPMGetDestinationFMSFlightPlanEntry_f,        \
      (TVPMNavFlightPlan p), (p))                                                               \
    X(void, TVPMSetDisplayedFMSFlightPlanEntry, TVPMSetDisplayedFMSFlightPlanEntry_f,           \
      (TVPMNavFlightPlan p, int i), (p, i))                                                     \
    X(void, TVPMSetDestinationFMSFlightPlanEntry, TVPMSetDestinationFMSFlightPlanEntry_f,       \
      (TVPMNavFlightPlan p, int i), (p, i))                                                     \
    X(void, TVPMSetDirectToFMSFlightPlanEntry, TVPMSetDirectToFMSFlightPlanEntry_f,             \
      (TVPMNavFlightPlan p, int i), (p, i))                                                     \
    X(void, TVPMGetFMSFlightPlanEntryInfo, TVPMGetFMSFlightPlanEntryInfo_f,                     \
      (TVPMNavFlightPlan p, int i, TVPMNavType* type, char* id, TVPMNavRef* ref, int* alt,      \
       float* lat, float* lon),                                                                 \
      (p, i, type, id, ref, alt, lat, lon))                                                     \
    X(void, TVPMSetFMSFlightPlanEntryInfo, TVPMSetFMSFlightPlanEntryInfo_f,                     \
      (TVPMNavFlightPlan p, int i, TVPMNavRef ref, int alt), (p, i, ref, alt))                  \
    X(void, TVPMSetFMSFlightPlanEntryLatLon, TVPMSetFMSFlightPlanEntryLatLon_f,                 \
      (TVPMNavFlightPlan p, int i, float lat, float lon, int alt), (p, i, lat, lon, alt))       \
    X(void, TVPMSetFMSFlightPlanEntryLatLonWithId, TVPMSetFMSFlightPlanEntryLatLonWithId_f,     \
      (TVPMNavFlightPlan p, int i, float lat, float lon, int alt, const char* id,               \
       unsigned int idLength),                                                                  \
      (p, i, lat, lon, alt, id, idLength))                                                      \
    X(void, TVPMClearFMSFlightPlanEntry, TVPMClearFMSFlightPlanEntry_f,                         \
      (TVPMNavFlightPlan p, int i), (p, i))                                                     \
    X(void, TVPMLoadFMSFlightPlan, TVPMLoadFMSFlightPlan_f,                                     \
      (int device, const char* buffer, unsigned int length), (device, buffer, length))          \
    X(unsigned int, TVPMSaveFMSFlightPlan, TVPMSaveFMSFlightPlan_f,                             \
      (int device, char* buffer, unsigned int length), (device, buffer, length))                \
    X(TVPMNavType, TVPMGetGPSDestinationType, TVPMGetGPSDestinationType_f, (void), ())          \
    X(TVPMNavRef, TVPMGetGPSDestination, TVPMGetGPSDestination_f, (void), ())

#define TVPM_NAVIGATION_FORWARDER(ret, name, slot, params, args) \
    TVPM_FORWARD_TO_SLOT(TVPM_CHECK_THREAD_IF_DIAGNOSING(), ret, name, slot, params, args)

TVPM_NAVIGATION_FORWARDERS(TVPM_NAVIGATION_FORWARDER)
