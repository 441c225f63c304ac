/*
 * TVPMHost.h: the simulator-facing interface of TVPM: the table of simulator
 * services handed over at start-up (TVPMHooks) and the hooks through which
 * the simulator drives the plugin manager.
 *
 * The simulator calls every hook below on the thread that called
 * TVPMInitializePlugins. The drawing and input hooks are [plugin-thread,
 * checked]; every other hook is [plugin-thread] unless marked otherwise.
 * Terms are defined in TVPMDefs.h.
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
    /*   2 */ void* (*TVPMCreateAvionics_f)(const TVPMCreateAvionics_t* inParams);
    /*   3 */ void (*TVPMDestroyAvionics_f)(void* inDisplay);
    /*   4 */ int (*TVPMIsAvionicsBound_f)(int inDeviceID, void* inDisplay);
    /*   5 */ void (*TVPMSetAvionicsBrightness_f)(int inDeviceID, void* inDisplay, float inBrightness);
    /*   6 */ float (*TVPMGetAvionicsBrightness_f)(int inDeviceID, void* inDisplay);
    /*   7 */ float (*TVPMGetAvionicsBusVolts_f)(int inDeviceID, void* inDisplay);
    /*   8 */ void (*TVPMSetAvionicsPopupVisible_f)(int inDeviceID, void* inDisplay, int inVisible);
    /*   9 */ int (*TVPMIsAvionicsPopupVisible_f)(int inDeviceID, void* inDisplay);
    /*  10 */ void (*TVPMPopOutAvionics_f)(int inDeviceID, void* inDisplay);
    /*  11 */ int (*TVPMIsAvionicsPoppedOut_f)(int inDeviceID, void* inDisplay);
    /*  12 */ int (*TVPMIsMouseOverAvionics_f)(int inDeviceID, void* inDisplay, int* outX, int* outY);
    /*  13 */ void (*TVPMAvionicsNeedsDrawing_f)(int inDeviceID, void* inDisplay);
    /*  14 */ void (*TVPMTakeAvionicsKeyboardFocus_f)(int inDeviceID, void* inDisplay);
    /*  15 */ int (*TVPMHasAvionicsKeyboardFocus_f)(int inDeviceID, void* inDisplay);
    /*  16 */ void (*TVPMGetAvionicsWindowBounds_f)(int inDeviceID, void* inDisplay, int* outLeftTopRightBottom);
    /*  17 */ void (*TVPMSetAvionicsWindowBounds_f)(int inDeviceID, void* inDisplay, int* inLeftTopRightBottom);
    /*  18 */ void (*TVPMGetAvionicsWindowBoundsOS_f)(int inDeviceID, void* inDisplay, int* outLeftTopRightBottom);
    /*  19 */ void (*TVPMSetAvionicsWindowBoundsOS_f)(int inDeviceID, void* inDisplay, int* inLeftTopRightBottom);
    /*  20 */ void (*TVPMGetScreenSize_f)(int* outWidth, int* outHeight);
    /*  21 */ void (*TVPMGetScreenBoundsGlobal_f)(int* outLeft, int* outTop, int* outRight, int* outBottom);
    /*  22 */ void (*TVPMGetAllMonitorBoundsGlobal_f)(TVPMReceiveMonitorBoundsGlobal_f inMonitorBoundsCallback, void* inRefcon);
    /*  23 */ void (*TVPMGetAllMonitorBoundsOS_f)(TVPMReceiveMonitorBoundsOS_f inMonitorBoundsCallback, void* inRefcon);
    /*  24 */ void (*TVPMGetMouseLocation_f)(int* outX, int* outY, int inReserved);
    /*  25 */ void (*TVPMGetMouseLocationGlobal_f)(int* outX, int* outY, int inReserved);
    /*  26 */ void (*TVPMSetPluginMouseFocus_f)(int inPluginHasFocus, void* inWindow);
    /*  27 */ void (*TVPMSetGraphicsState_f)(int inEnableFog, int inNumberTexUnits, int inEnableLighting, int inEnableAlphaTesting, int inEnableAlphaBlending, int inEnableDepthTesting, int inEnableDepthWriting);
    /*  28 */ void (*TVPMBindTexture2d_f)(TVPMTextureID inTextureID, int inTextureUnit);
    /*  29 */ void (*TVPMGenerateTextureIDs_f)(TVPMTextureID* outTextureIDs, int inCount);
    /*  30 */ int (*TVPMGetTexture_f)(TVPMTextureID inTexture);
    /*  31 */ void (*TVPMWorldToLocal_f)(double inLatitude, double inLongitude, double inAltitude, double* outX, double* outY, double* outZ);
    /*  32 */ void (*TVPMLocalToWorld_f)(double inX, double inY, double inZ, double* outLatitude, double* outLongitude, double* outAltitude);
    /*  33 */ void (*TVPMDrawTranslucentDarkBox_f)(int inLeft, int inTop, int inRight, int inBottom);
    /*  34 */ void (*TVPMDrawString_f)(float* inColorRGB, int inXOffset, int inYOffset, const char* inChar, int* inWordWrapWidth, TVPMFontID inFontID);
    /*  35 */ void (*TVPMDrawNumber_f)(float* inColorRGB, int inXOffset, int inYOffset, double inValue, int inDigits, int inDecimals, int inShowSign, TVPMFontID inFontID);
    /*  36 */ void (*TVPMGetFontDimensions_f)(TVPMFontID inFontID, int* outCharWidth, int* outCharHeight, int* outDigitsOnly);
    /*  37 */ float (*TVPMMeasureString_f)(TVPMFontID inFontID, const char* inChar, int inNumChars);
    /*  38 */ void* (*TVPMCreateInstance_f)(const char** inDataRefNames, void* inObject);
    /*  39 */ void (*TVPMDestroyInstance_f)(void* inInstance);
    /*  40 */ void (*TVPMInstanceSetAutoShift_f)(void* inInstance);
    /*  41 */ void (*TVPMInstanceSetPosition_f)(void* inInstance, float inX, float inY, float inZ, float inPitch, float inHeading, float inRoll);
    /*  42 */ void (*TVPMInstanceSetPositionDouble_f)(void* inInstance, double inX, double inY, double inZ, double inPitch, double inHeading, double inRoll);
    /*  43 */ void (*TVPMInstanceSetData_f)(void* inInstance, const float* inData);
    /*  44 */ void (*TVPMInstanceEnable_f)(void* inInstance);
    /*  45 */ void (*TVPMInstanceDisable_f)(void* inInstance);
    /*  46 */ float (*TVPMGetElapsedTime_f)(void);
    /*  47 */ void (*TVPMReadCameraPosition_f)(float* outX, float* outY, float* outZ, float* outPitch, float* outHeading, float* outRoll, float* outZoom);
    /*  48 */ void (*TVPMDrawPlane_f)(int inPlaneIndex, float inX, float inY, float inZ, float inPitch, float inRoll, float inYaw, int inFullDraw, TVPMPlaneDrawState_t* inDrawStateInfo);
    /*  49 */ void (*TVPMLoadPlane_f)(int inPlaneIndex, const char* inAircraftPath, const char* inLiveryPath);
    /*  50 */ void (*TVPMGetPlaneName_f)(int inPlaneIndex, char* outFilePath, char* outFileName);
    /*  51 */ int (*TVPMCountPlanes_f)(void);
    /*  52 */ void (*TVPMLoadAirport_f)(const char* inAirportCode);
    /*  53 */ void (*TVPMInitAtLocation_f)(double inLatitudeDegrees, double inLongitudeDegrees, float inElevationMetersMSL, float inHeadingDegreesTrue, float inSpeedMetersPerSecond);
    /*  54 */ int (*TVPMInitFlight_f)(const char* inFlightDescription, void (*inErrorCallback)(const char* inMessage));
    /*  55 */ int (*TVPMUpdateFlight_f)(const char* inFlightDescription, void (*inErrorCallback)(const char* inMessage));
    /*  56 */ void (*TVPMSimulateKeyPress_f)(int inKeyType, int inKey);
    /*  57 */ void (*TVPMSpeakString_f)(char* inString);
    /*  58 */ void (*TVPMCommandKeyStroke_f)(TVPMCommandKeyID inKey);
    /*  59 */ void (*TVPMCommandButtonPress_f)(TVPMCommandButtonID* inButtons, int inIsRelease, int inRepeat);
    /*  60 */ void (*TVPMGetSystemPath_f)(char* outSystemPath);
    /*  61 */ void (*TVPMGetPrefsPath_f)(char* outPrefsPath);
    /*  62 */ void (*TVPMGetVersions_f)(int* outHostVersion, TVPMHostApplicationID* outHostID);
    /*  63 */ int (*TVPMGetLanguage_f)(void);
    /*  64 */ void (*TVPMDebugString_f)(const char* inString);
    /*  65 */ void* (*TVPMFindSymbol_f)(const char* inSymbolName);
    /*  66 */ void (*TVPMReinitFlight_f)(int inReason, int inOption);
    /*  67 */ void (*TorvaneReceiveMessage_f)(TVPMPluginID inFrom, int inMessage, void* inParam);
    /*  68 */ bool (*TVPMShouldLoadPlugin_f)(const char* inPluginPath);
    /*  69 */ intptr_t (*TVPMCreateMenu_f)(intptr_t inParentMenu, int inParentItem, const char* inName);
    /*  70 */ int (*TVPMAppendMenu_f)(intptr_t inMenu, const char* inItemName);
    /*  71 */ int (*TVPMAppendMenuWithCommand_f)(intptr_t inMenu, const char* inItemName, TVPMCommandRef inCommand);
    /*  72 */ void (*TVPMSetMenuTitle_f)(intptr_t inMenu, int inItem, const char* inItemName);
    /*  73 */ void (*TVPMDestroyMenu_f)(intptr_t inMenu);
    /*  74 */ void (*TVPMRemoveMenuItem_f)(intptr_t inMenu, int inItem);
    /*  75 */ void (*TVPMCreateGuiPluginWindow_f)(void* inWindow, TVPMWindowDecoration inDecoration, int inLayer, int inVisible);
    /*  76 */ void (*TVPMDestroyGuiPluginWindow_f)(void* inWindow);
    /*  77 */ int (*TVPMGuiPluginWindowIsVisible_f)(void* inWindow);
    /*  78 */ void (*TVPMHideGuiPluginWindow_f)(void* inWindow);
    /*  79 */ void (*TVPMShowGuiPluginWindow_f)(void* inWindow);
    /*  80 */ void (*TVPMGetGuiPluginWindowBounds_f)(void* inWindow, int* outLeftTopRightBottom);
    /*  81 */ int (*TVPMSetGuiPluginWindowBounds_f)(void* inWindow, int* inLeftTopRightBottom);
    /*  82 */ void (*TVPMGetPopoutWindowOSBounds_f)(void* inWindow, int* outLeftTopRightBottom);
    /*  83 */ int (*TVPMSetPopoutWindowOSBounds_f)(void* inWindow, int* inLeftTopRightBottom);
    /*  84 */ int (*TVPMWindowIsPoppedOut_f)(void* inWindow);
    /*  85 */ int (*TVPMWindowIsInVr_f)(void* inWindow);
    /*  86 */ void (*TVPMBringGuiWindowToFront_f)(void* inWindow);
    /*  87 */ bool (*TVPMGuiWindowIsInFront_f)(void* inWindow);
    /*  88 */ void (*TVPMSetWindowPositioningMode_f)(void* inWindow, int inPositioningMode, int inMonitorIndex);
    /*  89 */ void (*TVPMSetWindowResizingLimits_f)(void* inWindow, int inMinWidthBoxels, int inMinHeightBoxels, int inMaxWidthBoxels, int inMaxHeightBoxels);
    /*  90 */ void (*TVPMSetWindowGravity_f)(void* inWindow, float inLeftGravity, float inTopGravity, float inRightGravity, float inBottomGravity);
    /*  91 */ void (*TVPMSetWindowTitle_f)(void* inWindow, const char* inWindowTitle);
    /*  92 */ void (*TVPMGetWindowVrSize_f)(TVPMWindowID inWindow, int* outWidthBoxels, int* outHeightBoxels);
    /*  93 */ void (*TVPMSetWindowVrSize_f)(TVPMWindowID inWindow, int inWidthBoxels, int inHeightBoxels);
    /*  94 */ int (*TVPMCreateMapLayer_f)(void* inLayer, const char* inMapIdentifier, TVPMMapLayerType inLayerType, int inShowUiToggle, const char* inLayerName);
    /*  95 */ void (*TVPMDrawMapIconFromSheet_f)(void* inLayer, const char* inPngPath, int inS, int inT, int inDs, int inDt, float inMapX, float inMapY, TVPMMapOrientation inOrientation, float inRotationDegrees, float inMapWidth);
    /*  96 */ void (*TVPMDrawMapLabel_f)(void* inLayer, const char* inText, float inMapX, float inMapY, TVPMMapOrientation inOrientation, float inRotationDegrees);
    /*  97 */ void (*TVPMMapProject_f)(void* inProjection, double inLatitude, double inLongitude, float* outX, float* outY);
    /*  98 */ void (*TVPMMapUnproject_f)(void* inProjection, float inMapX, float inMapY, double* outLatitude, double* outLongitude);
    /*  99 */ float (*TVPMMapScaleMeter_f)(void* inProjection, float inMapX, float inMapY);
    /* 100 */ float (*TVPMMapGetNorthHeading_f)(void* inProjection, float inMapX, float inMapY);
    /* 101 */ int (*TVPMMapExists_f)(const char* inMapIdentifier);
    /* 102 */ void (*TVPMDestroyMapLayer_f)(void* inLayer);
    /* 103 */ TVPMNavRef (*TVPMGetFirstNavAid_f)(void);
    /* 104 */ TVPMNavRef (*TVPMGetNextNavAid_f)(TVPMNavType inNavAid);
    /* 105 */ TVPMNavRef (*TVPMFindFirstNavAidOfType_f)(TVPMNavType inType);
    /* 106 */ TVPMNavRef (*TVPMFindLastNavAidOfType_f)(TVPMNavType inType);
    /* 107 */ TVPMNavRef (*TVPMFindNavAid_f)(const char* inNameFragment, const char* inIDFragment, float* ioLatitude, float* ioLongitude, int* ioFrequency, TVPMNavType inType);
    /* 108 */ void (*TVPMGetNavAidInfo_f)(TVPMNavRef inRef, TVPMNavType* outType, float* outLatitude, float* outLongitude, float* outHeight, int* outFrequency, float* outHeading, char* outID, char* outName, char* outReg);
    /* 109 */ int (*TVPMCountFMSEntries_f)(void);
    /* 110 */ int (*TVPMGetDisplayedFMSEntry_f)(void);
    /* 111 */ int (*TVPMGetDestinationFMSEntry_f)(void);
    /* 112 */ void (*TVPMSetDisplayedFMSEntry_f)(int inIndex);
    /* 113 */ void (*TVPMSetDestinationFMSEntry_f)(int inIndex);
    /* 114 */ void (*TVPMGetFMSEntryInfo_f)(int inIndex, TVPMNavType* outType, char* outID, TVPMNavRef* outRef, int* outAltitude, float* outLatitude, float* outLongitude);
    /* 115 */ void (*TVPMSetFMSEntryInfo_f)(int inIndex, TVPMNavRef inRef, int inAltitude);
    /* 116 */ void (*TVPMSetFMSEntryLatLon_f)(int inIndex, float inLatitude, float inLongitude, int inAltitude);
    /* 117 */ void (*TVPMClearFMSEntry_f)(int inIndex);
    /* 118 */ int (*TVPMCountFMSFlightPlanEntries_f)(TVPMNavFlightPlan inFlightPlan);
    /* 119 */ int (*TVPMGetDisplayedFMSFlightPlanEntry_f)(TVPMNavFlightPlan inFlightPlan);
    /* 120 */ int (*TVPMGetDestinationFMSFlightPlanEntry_f)(TVPMNavFlightPlan inFlightPlan);
    /* 121 */ void (*TVPMSetDisplayedFMSFlightPlanEntry_f)(TVPMNavFlightPlan inFlightPlan, int inIndex);
    /* 122 */ void (*TVPMSetDestinationFMSFlightPlanEntry_f)(TVPMNavFlightPlan inFlightPlan, int inIndex);
    /* 123 */ void (*TVPMSetDirectToFMSFlightPlanEntry_f)(TVPMNavFlightPlan inFlightPlan, int inIndex);
    /* 124 */ void (*TVPMGetFMSFlightPlanEntryInfo_f)(TVPMNavFlightPlan inFlightPlan, int inIndex, TVPMNavType* outType, char* outID, TVPMNavRef* outRef, int* outAltitude, float* outLatitude, float* outLongitude);
    /* 125 */ void (*TVPMSetFMSFlightPlanEntryInfo_f)(TVPMNavFlightPlan inFlightPlan, int inIndex, TVPMNavRef inRef, int inAltitude);
    /* 126 */ void (*TVPMSetFMSFlightPlanEntryLatLon_f)(TVPMNavFlightPlan inFlightPlan, int inIndex, float inLatitude, float inLongitude, int inAltitude);
    /* 127 */ void (*TVPMSetFMSFlightPlanEntryLatLonWithId_f)(TVPMNavFlightPlan inFlightPlan, int inIndex, float inLatitude, float inLongitude, int inAltitude, const char* inID, unsigned int inIDLength);
    /* 128 */ void (*TVPMClearFMSFlightPlanEntry_f)(TVPMNavFlightPlan inFlightPlan, int inIndex);
    /* 129 */ void (*TVPMLoadFMSFlightPlan_f)(int inDevice, const char* inFlightPlan, unsigned int inLength);
    /* 130 */ unsigned int (*TVPMSaveFMSFlightPlan_f)(int inDevice, char* outFlightPlan, unsigned int inBufferLength);
    /* 131 */ TVPMNavType (*TVPMGetGPSDestinationType_f)(void);
    /* 132 */ TVPMNavRef (*TVPMGetGPSDestination_f)(void);
    /* 133 */ void (*TVPMDisplayModalAlert_f)(const char* inMessage, const char* inDetail, const char* inButton1, const char* inButton2);
    /* 134 */ void (*TVPMDisplayDismissableAlert_f)(const char* inMessage, const char* inDetail, const char* inButton1, const char* inButton2, const char* inButton3, const char* inPrefKey);
    /* 135 */ void (*TVPMDisplayInitString_f)(const char* inText);
    /* 136 */ void (*TVPMHandleAssertFailed_f)(const char* inCondition, const char* inFile, int inLine);
    /* 137 */ void* (*TVPMFindCreateCommand_f)(const char* inName, const char* inDescription, int inCreate);
    /* 138 */ void (*TVPMDoCommandBegin_f)(void* inCommand);
    /* 139 */ void (*TVPMDoCommandContinue_f)(void* inCommand);
    /* 140 */ void (*TVPMDoCommandEnd_f)(void* inCommand);
    /* 141 */ int (*TVPMAllocateProbe_f)(void);
    /* 142 */ int (*TVPMProbeY_f)(int inProbe, float* inPointXYZ, float* outLocationXYZ, float* outNormalXYZ, float* outVelocityXYZ, int* outIsWet);
    /* 143 */ void* (*TVPMLoadObject_f)(const char* inPath);
    /* 144 */ void (*TVPMDrawObject_f)(void* inObject, float inX, float inY, float inZ, float inHeading, float inPitch, float inRoll, int inLighting, int inEarthRelative);
    /* 145 */ void (*TVPMUnloadObject_f)(void* inObject);
    /* 146 */ int (*TVPMLookupObjects_f)(const char* inPath, float inLatitude, float inLongitude, void (*inEnumerator)(const char* inFilePath, void* inRef), void* inRef);
    /* 147 */ void (*TVPMLoadObjectAsync_f)(const char* inPath, void (*inLoaded)(void* inObject, void* inRef), void* inRef);
    /* 148 */ void (*TVPMShiftScenery_f)(void);
    /* 149 */ float (*TVPMGetMagneticVariation_f)(float inLatitude, float inLongitude);
    /* 150 */ float (*TVPMDegTrueToDegMagnetic_f)(float inHeadingDegreesTrue);
    /* 151 */ float (*TVPMDegMagneticToDegTrue_f)(float inHeadingDegreesMagnetic);
    /* 152 */ int (*TVPMLoadDataFile_f)(TVPMDataFileType inFileType, const char* inFilePath);
    /* 153 */ int (*TVPMSaveDataFile_f)(TVPMDataFileType inFileType, const char* inFilePath);
    /* 154 */ FMOD_SYSTEM* (*TVPMGetFMODSystem_f)(void);
    /* 155 */ FMOD_STUDIO_SYSTEM* (*TVPMGetFMODStudio_f)(void);
    /* 156 */ FMOD_STUDIO_BUS* (*TVPMGetFMODBus_f)(const char* inBusPath);
    /* 157 */ int (*TVPMGetWeatherAtPt_f)(float inLatitude, float inLongitude, float inAltitudeMeters, TVPMWeatherInfo_t* outInfo);
    /* 158 */ void (*TVPMGetLastKnownMETAR_f)(const char* inAirportID, char* outMETAR);
    /* 159 */ void (*TVPMSetWeatherAtPt_f)(TVPMPluginID inPlugin, float inLatitude, float inLongitude, float inAltitudeMeters, TVPMWeatherInfo_t* inInfo);
    /* 160 */ void (*TVPMEraseWeatherAtPt_f)(TVPMPluginID inPlugin, float inLatitude, float inLongitude);
    /* 161 */ void (*TVPMSetWeatherAtAirport_f)(TVPMPluginID inPlugin, const char* inAirportID, TVPMWeatherInfo_t* inInfo);
    /* 162 */ void (*TVPMEraseWeatherAtAirport_f)(TVPMPluginID inPlugin, const char* inAirportID);
    /* 163 */ void (*TVPMBeginWeatherUpdate_f)(TVPMPluginID inPlugin);
    /* 164 */ void (*TVPMEndWeatherUpdate_f)(TVPMPluginID inPlugin, int inIsIncremental, int inUpdateImmediately);
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
/* Each of these is [plugin-thread, checked]. */

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
