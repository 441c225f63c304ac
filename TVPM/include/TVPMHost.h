/*
 * TVPMHost.h: the simulator-facing interface of TVPM: the table of simulator
 * services handed over at start-up (TVPMHooks) and the hooks through which
 * the simulator drives the plugin manager.
 *
 * Every hook below is [plugin-thread]: the simulator calls them on the thread
 * that called TVPMInitializePlugins. Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMHost_h
#define TVPMHost_h

#include <stdbool.h>
#include <stdint.h>

#include "TVPM/TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* FMOD's own opaque handles; the simulator owns the sound system. */
typedef struct FMOD_SYSTEM FMOD_SYSTEM;
typedef struct FMOD_STUDIO_SYSTEM FMOD_STUDIO_SYSTEM;
typedef struct FMOD_STUDIO_BUS FMOD_STUDIO_BUS;

/* The only table layout this library accepts. */
#define TVPM_HOOKS_VERSION 25
#define TVPM_HOOKS_SIZE 1320

/*
 * The simulator's services, one slot each. The simulator fills every slot
 * (FMOD slots may be null when it has no sound system) and keeps the table
 * valid until TVPMShutdownPlugins has returned; TVPM never copies it.
 */
typedef struct TVPMHooks {
    int version;    /* TVPM_HOOKS_VERSION */
    int structSize; /* TVPM_HOOKS_SIZE */
    /*   1 */ void (*TVPMHostReady_f)(void);
    /*   2 */ void* (*TVPMCreateAvionics_f)(const TVPMCreateAvionics_t*);
    /*   3 */ void (*TVPMDestroyAvionics_f)(void*);
    /*   4 */ int (*TVPMIsAvionicsBound_f)(int, void*);
    /*   5 */ void (*TVPMSetAvionicsBrightness_f)(int, void*, float);
    /*   6 */ float (*TVPMGetAvionicsBrightness_f)(int, void*);
    /*   7 */ float (*TVPMGetAvionicsBusVolts_f)(int, void*);
    /*   8 */ void (*TVPMSetAvionicsPopupVisible_f)(int, void*, int);
    /*   9 */ int (*TVPMIsAvionicsPopupVisible_f)(int, void*);
    /*  10 */ void (*TVPMPopOutAvionics_f)(int, void*);
    /*  11 */ int (*TVPMIsAvionicsPoppedOut_f)(int, void*);
    /*  12 */ int (*TVPMIsMouseOverAvionics_f)(int, void*, int*, int*);
    /*  13 */ void (*TVPMAvionicsNeedsDrawing_f)(int, void*);
    /*  14 */ void (*TVPMTakeAvionicsKeyboardFocus_f)(int, void*);
    /*  15 */ int (*TVPMHasAvionicsKeyboardFocus_f)(int, void*);
    /*  16 */ void (*TVPMGetAvionicsWindowBounds_f)(int, void*, int*);
    /*  17 */ void (*TVPMSetAvionicsWindowBounds_f)(int, void*, int*);
    /*  18 */ void (*TVPMGetAvionicsWindowBoundsOS_f)(int, void*, int*);
    /*  19 */ void (*TVPMSetAvionicsWindowBoundsOS_f)(int, void*, int*);
    /*  20 */ void (*TVPMGetScreenSize_f)(int*, int*);
    /*  21 */ void (*TVPMGetScreenBoundsGlobal_f)(int*, int*, int*, int*);
    /*  22 */ void (*TVPMGetAllMonitorBoundsGlobal_f)(TVPMReceiveMonitorBoundsGlobal_f, void*);
    /*  23 */ void (*TVPMGetAllMonitorBoundsOS_f)(TVPMReceiveMonitorBoundsOS_f, void*);
    /*  24 */ void (*TVPMGetMouseLocation_f)(int*, int*, int);
    /*  25 */ void (*TVPMGetMouseLocationGlobal_f)(int*, int*, int);
    /*  26 */ void (*TVPMSetPluginMouseFocus_f)(int, void*);
    /*  27 */ void (*TVPMSetGraphicsState_f)(int, int, int, int, int, int, int);
    /*  28 */ void (*TVPMBindTexture2d_f)(TVPMTextureID, int);
    /*  29 */ void (*TVPMGenerateTextureIDs_f)(TVPMTextureID*, int);
    /*  30 */ int (*TVPMGetTexture_f)(TVPMTextureID);
    /*  31 */ void (*TVPMWorldToLocal_f)(double, double, double, double*, double*, double*);
    /*  32 */ void (*TVPMLocalToWorld_f)(double, double, double, double*, double*, double*);
    /*  33 */ void (*TVPMDrawTranslucentDarkBox_f)(int, int, int, int);
    /*  34 */ void (*TVPMDrawString_f)(float*, int, int, const char*, int*, TVPMFontID);
    /*  35 */ void (*TVPMDrawNumber_f)(float*, int, int, double, int, int, int, TVPMFontID);
    /*  36 */ void (*TVPMGetFontDimensions_f)(TVPMFontID, int*, int*, int*);
    /*  37 */ float (*TVPMMeasureString_f)(TVPMFontID, const char*, int);
    /*  38 */ void* (*TVPMCreateInstance_f)(const char**, void*);
    /*  39 */ void (*TVPMDestroyInstance_f)(void*);
    /*  40 */ void (*TVPMInstanceSetAutoShift_f)(void*);
    /*  41 */ void (*TVPMInstanceSetPosition_f)(void*, float, float, float, float, float, float);
    /*  42 */ void (*TVPMInstanceSetPositionDouble_f)(void*, double, double, double, double, double, double);
    /*  43 */ void (*TVPMInstanceSetData_f)(void*, const float*);
    /*  44 */ void (*TVPMInstanceEnable_f)(void*);
    /*  45 */ void (*TVPMInstanceDisable_f)(void*);
    /*  46 */ float (*TVPMGetElapsedTime_f)(void);
    /*  47 */ void (*TVPMReadCameraPosition_f)(float*, float*, float*, float*, float*, float*, float*);
    /*  48 */ void (*TVPMDrawPlane_f)(int, float, float, float, float, float, float, int, TVPMPlaneDrawState_t*);
    /*  49 */ void (*TVPMLoadPlane_f)(int, const char*, const char*);
    /*  50 */ void (*TVPMGetPlaneName_f)(int, char*, char*);
    /*  51 */ int (*TVPMCountPlanes_f)(void);
    /*  52 */ void (*TVPMLoadAirport_f)(const char*);
    /*  53 */ void (*TVPMInitAtLocation_f)(double, double, float, float, float);
    /*  54 */ int (*TVPMInitFlight_f)(const char*, void (*)(const char*));
    /*  55 */ int (*TVPMUpdateFlight_f)(const char*, void (*)(const char*));
    /*  56 */ void (*TVPMSimulateKeyPress_f)(int, int);
    /*  57 */ void (*TVPMSpeakString_f)(char*);
    /*  58 */ void (*TVPMCommandKeyStroke_f)(TVPMCommandKeyID);
    /*  59 */ void (*TVPMCommandButtonPress_f)(TVPMCommandButtonID*, int, int);
    /*  60 */ void (*TVPMGetSystemPath_f)(char*);
    /*  61 */ void (*TVPMGetPrefsPath_f)(char*);
    /*  62 */ void (*TVPMGetVersions_f)(int*, TVPMHostApplicationID*);
    /*  63 */ int (*TVPMGetLanguage_f)(void);
    /*  64 */ void (*TVPMDebugString_f)(const char*);
    /*  65 */ void* (*TVPMFindSymbol_f)(const char*);
    /*  66 */ void (*TVPMReinitFlight_f)(int, int);
    /*  67 */ void (*TorvaneReceiveMessage_f)(TVPMPluginID, int, void*);
    /*  68 */ bool (*TVPMShouldLoadPlugin_f)(const char*);
    /*  69 */ intptr_t (*TVPMCreateMenu_f)(intptr_t, int, const char*);
    /*  70 */ int (*TVPMAppendMenu_f)(intptr_t, const char*);
    /*  71 */ int (*TVPMAppendMenuWithCommand_f)(intptr_t, const char*, TVPMCommandRef);
    /*  72 */ void (*TVPMSetMenuTitle_f)(intptr_t, int, const char*);
    /*  73 */ void (*TVPMDestroyMenu_f)(intptr_t);
    /*  74 */ void (*TVPMRemoveMenuItem_f)(intptr_t, int);
    /*  75 */ void (*TVPMCreateGuiPluginWindow_f)(void*, TVPMWindowDecoration, int, int);
    /*  76 */ void (*TVPMDestroyGuiPluginWindow_f)(void*);
    /*  77 */ int (*TVPMGuiPluginWindowIsVisible_f)(void*);
    /*  78 */ void (*TVPMHideGuiPluginWindow_f)(void*);
    /*  79 */ void (*TVPMShowGuiPluginWindow_f)(void*);
    /*  80 */ void (*TVPMGetGuiPluginWindowBounds_f)(void*, int*);
    /*  81 */ int (*TVPMSetGuiPluginWindowBounds_f)(void*, int*);
    /*  82 */ void (*TVPMGetPopoutWindowOSBounds_f)(void*, int*);
    /*  83 */ int (*TVPMSetPopoutWindowOSBounds_f)(void*, int*);
    /*  84 */ int (*TVPMWindowIsPoppedOut_f)(void*);
    /*  85 */ int (*TVPMWindowIsInVr_f)(void*);
    /*  86 */ void (*TVPMBringGuiWindowToFront_f)(void*);
    /*  87 */ bool (*TVPMGuiWindowIsInFront_f)(void*);
    /*  88 */ void (*TVPMSetWindowPositioningMode_f)(void*, int, int);
    /*  89 */ void (*TVPMSetWindowResizingLimits_f)(void*, int, int, int, int);
    /*  90 */ void (*TVPMSetWindowGravity_f)(void*, float, float, float, float);
    /*  91 */ void (*TVPMSetWindowTitle_f)(void*, const char*);
    /*  92 */ void (*TVPMGetWindowVrSize_f)(TVPMWindowID, int*, int*);
    /*  93 */ void (*TVPMSetWindowVrSize_f)(TVPMWindowID, int, int);
    /*  94 */ int (*TVPMCreateMapLayer_f)(void*, const char*, TVPMMapLayerType, int, const char*);
    /*  95 */ void (*TVPMDrawMapIconFromSheet_f)(void*, const char*, int, int, int, int, float, float, TVPMMapOrientation, float, float);
    /*  96 */ void (*TVPMDrawMapLabel_f)(void*, const char*, float, float, TVPMMapOrientation, float);
    /*  97 */ void (*TVPMMapProject_f)(void*, double, double, float*, float*);
    /*  98 */ void (*TVPMMapUnproject_f)(void*, float, float, double*, double*);
    /*  99 */ float (*TVPMMapScaleMeter_f)(void*, float, float);
    /* 100 */ float (*TVPMMapGetNorthHeading_f)(void*, float, float);
    /* 101 */ int (*TVPMMapExists_f)(const char*);
    /* 102 */ void (*TVPMDestroyMapLayer_f)(void*);
    /* 103 */ TVPMNavRef (*TVPMGetFirstNavAid_f)(void);
    /* 104 */ TVPMNavRef (*TVPMGetNextNavAid_f)(TVPMNavType);
    /* 105 */ TVPMNavRef (*TVPMFindFirstNavAidOfType_f)(TVPMNavType);
    /* 106 */ TVPMNavRef (*TVPMFindLastNavAidOfType_f)(TVPMNavType);
    /* 107 */ TVPMNavRef (*TVPMFindNavAid_f)(const char*, const char*, float*, float*, int*, TVPMNavType);
    /* 108 */ void (*TVPMGetNavAidInfo_f)(TVPMNavRef, TVPMNavType*, float*, float*, float*, int*, float*, char*, char*, char*);
    /* 109 */ int (*TVPMCountFMSEntries_f)(void);
    /* 110 */ int (*TVPMGetDisplayedFMSEntry_f)(void);
    /* 111 */ int (*TVPMGetDestinationFMSEntry_f)(void);
    /* 112 */ void (*TVPMSetDisplayedFMSEntry_f)(int);
    /* 113 */ void (*TVPMSetDestinationFMSEntry_f)(int);
    /* 114 */ void (*TVPMGetFMSEntryInfo_f)(int, TVPMNavType*, char*, TVPMNavRef*, int*, float*, float*);
    /* 115 */ void (*TVPMSetFMSEntryInfo_f)(int, TVPMNavRef, int);
    /* 116 */ void (*TVPMSetFMSEntryLatLon_f)(int, float, float, int);
    /* 117 */ void (*TVPMClearFMSEntry_f)(int);
    /* 118 */ int (*TVPMCountFMSFlightPlanEntries_f)(TVPMNavFlightPlan);
    /* 119 */ int (*TVPMGetDisplayedFMSFlightPlanEntry_f)(TVPMNavFlightPlan);
    /* 120 */ int (*TVPMGetDestinationFMSFlightPlanEntry_f)(TVPMNavFlightPlan);
    /* 121 */ void (*TVPMSetDisplayedFMSFlightPlanEntry_f)(TVPMNavFlightPlan, int);
    /* 122 */ void (*TVPMSetDestinationFMSFlightPlanEntry_f)(TVPMNavFlightPlan, int);
    /* 123 */ void (*TVPMSetDirectToFMSFlightPlanEntry_f)(TVPMNavFlightPlan, int);
    /* 124 */ void (*TVPMGetFMSFlightPlanEntryInfo_f)(TVPMNavFlightPlan, int, TVPMNavType*, char*, TVPMNavRef*, int*, float*, float*);
    /* 125 */ void (*TVPMSetFMSFlightPlanEntryInfo_f)(TVPMNavFlightPlan, int, TVPMNavRef, int);
    /* 126 */ void (*TVPMSetFMSFlightPlanEntryLatLon_f)(TVPMNavFlightPlan, int, float, float, int);
    /* 127 */ void (*TVPMSetFMSFlightPlanEntryLatLonWithId_f)(TVPMNavFlightPlan, int, float, float, int, const char*, unsigned int);
    /* 128 */ void (*TVPMClearFMSFlightPlanEntry_f)(TVPMNavFlightPlan, int);
    /* 129 */ void (*TVPMLoadFMSFlightPlan_f)(int, const char*, unsigned int);
    /* 130 */ unsigned int (*TVPMSaveFMSFlightPlan_f)(int, char*, unsigned int);
    /* 131 */ TVPMNavType (*TVPMGetGPSDestinationType_f)(void);
    /* 132 */ TVPMNavRef (*TVPMGetGPSDestination_f)(void);
    /* 133 */ void (*TVPMDisplayModalAlert_f)(const char*, const char*, const char*, const char*);
    /* 134 */ void (*TVPMDisplayDismissableAlert_f)(const char*, const char*, const char*, const char*, const char*, const char*);
    /* 135 */ void (*TVPMDisplayInitString_f)(const char*);
    /* 136 */ void (*TVPMHandleAssertFailed_f)(const char*, const char*, int);
    /* 137 */ void* (*TVPMFindCreateCommand_f)(const char*, const char*, int);
    /* 138 */ void (*TVPMDoCommandBegin_f)(void*);
    /* 139 */ void (*TVPMDoCommandContinue_f)(void*);
    /* 140 */ void (*TVPMDoCommandEnd_f)(void*);
    /* 141 */ int (*TVPMAllocateProbe_f)(void);
    /* 142 */ int (*TVPMProbeY_f)(int, float*, float*, float*, float*, int*);
    /* 143 */ void* (*TVPMLoadObject_f)(const char*);
    /* 144 */ void (*TVPMDrawObject_f)(void*, float, float, float, float, float, float, int, int);
    /* 145 */ void (*TVPMUnloadObject_f)(void*);
    /* 146 */ int (*TVPMLookupObjects_f)(const char*, float, float, void (*)(const char*, void*), void*);
    /* 147 */ void (*TVPMLoadObjectAsync_f)(const char*, void (*)(void*, void*), void*);
    /* 148 */ void (*TVPMShiftScenery_f)(void);
    /* 149 */ float (*TVPMGetMagneticVariation_f)(float, float);
    /* 150 */ float (*TVPMDegTrueToDegMagnetic_f)(float);
    /* 151 */ float (*TVPMDegMagneticToDegTrue_f)(float);
    /* 152 */ int (*TVPMLoadDataFile_f)(TVPMDataFileType, const char*);
    /* 153 */ int (*TVPMSaveDataFile_f)(TVPMDataFileType, const char*);
    /* 154 */ FMOD_SYSTEM* (*TVPMGetFMODSystem_f)(void);
    /* 155 */ FMOD_STUDIO_SYSTEM* (*TVPMGetFMODStudio_f)(void);
    /* 156 */ FMOD_STUDIO_BUS* (*TVPMGetFMODBus_f)(const char*);
    /* 157 */ int (*TVPMGetWeatherAtPt_f)(float, float, float, TVPMWeatherInfo_t*);
    /* 158 */ void (*TVPMGetLastKnownMETAR_f)(const char*, char*);
    /* 159 */ void (*TVPMSetWeatherAtPt_f)(TVPMPluginID, float, float, float, TVPMWeatherInfo_t*);
    /* 160 */ void (*TVPMEraseWeatherAtPt_f)(TVPMPluginID, float, float);
    /* 161 */ void (*TVPMSetWeatherAtAirport_f)(TVPMPluginID, const char*, TVPMWeatherInfo_t*);
    /* 162 */ void (*TVPMEraseWeatherAtAirport_f)(TVPMPluginID, const char*);
    /* 163 */ void (*TVPMBeginWeatherUpdate_f)(TVPMPluginID);
    /* 164 */ void (*TVPMEndWeatherUpdate_f)(TVPMPluginID, int, int);
} TVPMHooks;

/* Fails to compile when the table's layout drifts from the agreed size. */
typedef char TVPMHooks_layout_check[(sizeof(TVPMHooks) == TVPM_HOOKS_SIZE) ? 1 : -1];

/* ---- Start-up and shut-down ------------------------------------------- */

/* Starts the plugin manager: records the calling thread as the plugin thread,
 * keeps inHooks (not copied), loads and enables all plugins below
 * inSystemFolderPath (which ends with "/"). Returns 23, or 0 when the table's
 * version or size is not the one this library was built for. */
TVPM_API int TVPMInitializePlugins(const char* inSystemFolderPath, TVPMHooks* inHooks,
                                   void* inSelfDLL);
/* ---- Plugin diagnostics ------------------------------------------------ */

/* Diagnostics for plugin authors, off by default. The simulator turns them on
 * by setting the environment variable TVPM_DIAGNOSTICS to anything but "" or
 * "0" before TVPMInitializePlugins, or by calling TVPMSetPluginDiagnostics at
 * any time. Under them:
 *   - every plugin-thread function checks its thread;
 *   - every error text sent to a plugin is also logged, callback or not;
 *   - a data-item lookup that finds nothing is logged once per plugin and name;
 *   - at unload, what the plugin still had registered after TPluginStop is
 *     logged per kind before TVPM releases it.
 * Log lines start with the prefixes below followed by the plugin's name in
 * brackets: "Diagnostics: [My Plugin] error: Unknown menu index 7". When off,
 * they cost one predictable branch per plugin-thread call. [plugin-thread] */
#define TVPM_DIAGNOSTICS_ENVIRONMENT "TVPM_DIAGNOSTICS"
#define TVPM_DIAGNOSTICS_PREFIX "Diagnostics: ["
#define TVPM_DIAGNOSTICS_ERROR "] error: "
#define TVPM_DIAGNOSTICS_UNKNOWN_DATA "] unknown data item: "
#define TVPM_DIAGNOSTICS_LEFT_AT_UNLOAD "] left at unload: "
TVPM_API void TVPMSetPluginDiagnostics(int inOn);

/* Disables and unloads every plugin. */
TVPM_API void TVPMShutdownPlugins(void);
/* 1 once TVPMInitializePlugins has been called (even with a refused table). */
TVPM_API int TVPMInitialized(void);

/* ---- Events --------------------------------------------------------------- */

typedef int TVPMEventKind;
enum {
    tvpm_FlightLoopEvent = 0,
    tvpm_CameraChangedHook = 1,
    tvpm_PlaneCrashed = 2,
    tvpm_PlaneLoaded = 3,
    tvpm_AirportLoaded = 4,
    tvpm_ATCInstruction = 5,
    tvpm_SceneryLoaded = 6,
    tvpm_AirplaneCountChanged = 7,
    tvpm_PlaneUnloaded = 8,
    tvpm_CommandRepeat = 9,
    tvpm_FlightLoopDoneEvent = 10,
    tvpm_WritePrefs = 11,
    tvpm_RegisterScenery = 12,
    tvpm_LiveryChanged = 13,
    tvpm_EnteredVR = 14,
    tvpm_ExitingVR = 15,
    tvpm_FMODBankLoaded = 16,
    tvpm_FMODBankUnloading = 17,
    tvpm_FMODSoundEnded = 18,
    tvpm_CheckNewDatarefs = 19
};

/* The simulator's single entry for frame and simulator events. inFuture1
 * carries the event's parameter (aircraft index, scenery folder, bank).
 * Always returns 1. */
TVPM_API int TVPMEventHook(TVPMEventKind inEventType, float inElapsedTime, float inFuture0,
                           intptr_t inFuture1, intptr_t inFuture2);

/* ---- Drawing and input ---------------------------------------------------- */

/* A hook point of the simulator's frame, 1 to 27. */
typedef int TVPMDrawingHookKind;

/* 1 when TVPMDoDrawingHook must be called for this hook point. */
TVPM_API int TVPMNeedsDrawingHook(TVPMDrawingHookKind inKind, int inRenderType);
/* Runs the plugins' drawing for this hook point; 0 asks the simulator not to
 * draw its own content for the phase. */
TVPM_API int TVPMDoDrawingHook(TVPMDrawingHookKind inKind, int inRenderType, void* inFixedWindow);
/* Input hooks: 1 = not consumed, the simulator handles the event. */
TVPM_API int TVPMMouseClickHook(int inX, int inY, int inIsDown, int button_0_or_1,
                                void* inFixedWindow);
TVPM_API int TVPMKeyPressHook(char inChar, TVPMKeyFlags inFlags, char inVirtualKey, int phase,
                              void* inFixedWindow);
/* Returns the cursor the simulator should show. */
TVPM_API int TVPMCursorHook(int inX, int inY, void* inFixedWindow);
TVPM_API int TVPMScrollWheelHook(int inX, int inY, int inWheel, int inClicks, void* inFixedWindow);

/* ---- Avionics devices ----------------------------------------------------- */

TVPM_API int TVPMDoAvionicsBezelClickHook(int device, int x, int y, TVPMMouseStatus status,
                                          void* display);
TVPM_API int TVPMDoAvionicsBezelRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                               void* display);
TVPM_API int TVPMDoAvionicsScreenClickHook(int device, int x, int y, TVPMMouseStatus status,
                                           void* display);
TVPM_API int TVPMDoAvionicsScreenRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                                void* display);
TVPM_API int TVPMDoAvionicsBezelScrollHook(int device, int x, int y, int wheel, int clicks,
                                           void* display);
TVPM_API int TVPMDoAvionicsScreenScrollHook(int device, int x, int y, int wheel, int clicks,
                                            void* display);
TVPM_API int TVPMDoAvionicsBezelCursorHook(int device, int x, int y, void* display);
TVPM_API int TVPMDoAvionicsScreenCursorHook(int device, int x, int y, void* display);
TVPM_API int TVPMNeedsAvionicsBrightnessHook(int device, void* display);
TVPM_API float TVPMDoAvionicsBrightnessHook(int device, float rheo, float cell, float bus,
                                            void* display);
TVPM_API int TVPMNeedsAvionicsBezelHook(int device, void* display);
TVPM_API void TVPMDoAvionicsBezelHook(int device, void* display, float* tint);
TVPM_API int TVPMNeedsAvionicsScreenHook(int device, void* display, int before);
TVPM_API int TVPMDoAvionicsScreenHook(int device, void* display, int before);
TVPM_API void TVPMDoAvionicsKeyHook(int device, char key, TVPMKeyFlags flags, char vkey,
                                    int losing, void* display);

/* ---- Maps ------------------------------------------------------------------- */

TVPM_API int TVPMNeedsMapLayerDrawingHooks(void);
TVPM_API void TVPMDoMapLayerDrawingHook(void* sdkLayerHandle,
                                        const float* inMapBoundsLeftTopRightBottom,
                                        float zoomRatio, float mapUnitsPerUserInterfaceUnit,
                                        TVPMMapStyle mapStyle, TVPMMapProjectionID projection);
TVPM_API void TVPMMapCreated(const char* mapIdentifier);
TVPM_API void TVPMMapLayerWillBeDeleted(void* sdkLayerHandle);
TVPM_API void TVPMDoMapLayerPrepareCacheHook(void* sdkLayerHandle,
                                             const float* inTotalMapBoundsLeftTopRightBottom,
                                             TVPMMapProjectionID projection);

/* ---- Camera, menus, aircraft, commands -------------------------------------- */

TVPM_API int TVPMCameraHook(float* ioX, float* ioY, float* ioZ, float* ioPitch, float* ioHeading,
                            float* ioRoll, float* ioZoom);
TVPM_API int TVPMMenuHook(int inCode);
TVPM_API int TVPMCheckMenuHook(intptr_t menu, int item, int* outCheck);
TVPM_API int TVPMMenuItemEnabled(intptr_t menuIndex, int itemIndex);
TVPM_API void TVPMUpdatePlaneNameAndPath(int index, char* name, char* path);
TVPM_API int TVPMGetNumberPlanesToHandle(int inNumber, int inLoading);
/* A simulator command is about to run (inBefore 1) or has run (0). Returns 0
 * when a plugin handler asked the simulator to stop processing it. */
TVPM_API int TVPMCommandHook(void* inCmdRef, int inDown, int inUp, int inBefore);

/* ---- Callback timing and diagnostics ------------------------------------------ */

/* What a timed callback was doing. */
typedef int TVPMPluginCallbackType;
enum {
    tvpm_cb_drawing_misc = 0,
    tvpm_cb_drawing_panel_legacy = 1,
    tvpm_cb_drawing_window_legacy = 2,
    tvpm_cb_drawing_avionics = 3,
    tvpm_cb_drawing_window = 4,
    tvpm_cb_flight_loop = 5
};

/* Receives the callback timings gathered since the last collection: three
 * parallel arrays of inCount entries, valid only during the call. */
typedef void tvpm_plugin_time_callback(uint64_t inCount, const TVPMPluginID* inIds,
                                       const TVPMPluginCallbackType* inTypes,
                                       const double* inMicroseconds);

/* Hands every timing sample gathered since the previous call to callback, then
 * forgets them. Meant to be called once per frame. */
TVPM_API void TVPMGetPluginCallbackTimings(tvpm_plugin_time_callback* callback);

/* The client plugin: the one that was current when the running plugin was
 * entered (0 when the simulator itself called it; plugin A when A sent the
 * running plugin a message). Copies its name and signature (strncpy of 256
 * bytes each; either buffer may be null) and returns its ID; for an ID that
 * is not a plugin the buffers are untouched and the raw ID is returned. */
TVPM_API int TVPMGetCurrentPluginInfo(char* outPluginName, char* outPluginSignature);
/* The same for the plugin that controls the AI aircraft. */
TVPM_API int TVPMGetTrafficControlPluginInfo(char* outPluginName, char* outPluginSignature);
/* The name of the plugin running now, for log lines [any-thread]: off the
 * plugin thread the calling plugin is found from the call stack ("" if none). */
TVPM_API const char* TVPMDebugGetCurrentPluginName(void);

#ifdef __cplusplus
}
#endif

#endif /* TVPMHost_h */
