// TVPMUnitHooks.h: the functions through which units reach each other: lifecycle hooks, host-event targets and forwarded host hooks.
#pragma once

#include <cstdint>
#include <string>

#include "TVPMHost.h"

// Each lifecycle hook takes the plugin ID and is called by the loader at the
// plugin's enable, disable and unload transitions, in a fixed order.

// ---- Loader (TVPMLoader*) ---------------------------------------------------
void TVPMFindAndLoadPlugins(const char* inSystemPath);
void TVPMFindAndLoadAcfPlugins(const char* inAircraftPath);
void TVPMFindAndLoadSceneryPlugins(const char* inSceneryPack);
void TVPMEnableAllPlugins();
void TVPMDisableAllPlugins();
void TVPMEnableACFPlugins();
void TVPMDisableACFPlugins();
bool TVPMIsAcfPlugin(TVPMPluginID id);
void UnloadOnePlugin(TVPMPluginID id);
void TVPMUnloadPlugins();
void TVPMUnloadAcfPlugin();
void TVPMReloadPluginsInternal();
// The folder of the user's aircraft (its file path cut at the last "/"), or
// "" when the path has no "/".
std::string TVPMUserAircraftFolder();
// Set by TVPMReloadPlugins; the flight-loop pass runs the reload at its end.
extern bool gScheduleReload;

// ---- Data access (TVPMDataAccess*) -------------------------------------------
// Writes text (with its terminating zero) into "sim/version/tvpm_build_string"
// when that item exists.
void TVPMPublishBuildString(const char* text);
// True when items were published since the last check; outCount gets the total.
bool TVPMDataRefsCheckForNew(int& outCount);
void TVPMDataRefsCleanupHook(TVPMPluginID id);

// ---- Processing (TVPMProcessing) ----------------------------------------------
void TVPMDoFlightLoopProcessing(float inElapsedTime, int inEvent);
void TVPMProcessingCleanupHook(TVPMPluginID id);

// ---- Commands (TVPMUtilities*) ------------------------------------------------
void TVPMDoRepeatedButtons();
void TVPMCommandRepeatHook();
int TVPMDispatchCommandHook(void* inCmdRef, int inDown, int inUp, int inBefore);
void TVPMCommandCleanupHook(TVPMPluginID id);

// ---- Display (TVPMDisplay*) ---------------------------------------------------
void TVPMDisplayEnableHook(TVPMPluginID id);
void TVPMDisplayDisablePrePluginDisableHook(TVPMPluginID id);
void TVPMDisplayDisablePostPluginDisableHook(TVPMPluginID id);
void TVPMDisplaySyncGuiWindowStateWithPluginHook(TVPMPluginID id, int enabled);
void TVPMDisplayCleanupHook(TVPMPluginID id);
int TVPMDisplayNeedsDrawingHook(TVPMDrawingHookKind inKind, int inRenderType);
int TVPMDisplayDoDrawingHook(TVPMDrawingHookKind inKind, int inRenderType, void* inFixedWindow);
int TVPMDisplayMouseClickHook(int inX, int inY, TVPMMouseStatus inStatus, int button_0_or_1,
                              void* inFixedWindow);
int TVPMDisplayKeyPressHook(char charCode, TVPMKeyFlags flags, char virtualCode, int phase,
                            void* inFixedWindow);
TVPMCursorStatus TVPMDisplayCursorHook(int inX, int inY, void* inFixedWindow);
int TVPMDisplayScrollWheelHook(int inX, int inY, int inWheel, int inClicks, void* inFixedWindow);
// Called by TVPMDisplayCleanupHook between key sniffers and windows: removes the
// plugin's avionics records, asking the simulator to destroy each created
// device that has a display first. Defined by the avionics unit.
void TVPMDisplayAvionicsCleanupHook(TVPMPluginID id);

// ---- Avionics (TVPMDisplayAvionics) --------------------------------------------
int TVPMDisplayBezelClickHook(int device, int x, int y, TVPMMouseStatus status, void* display);
int TVPMDisplayBezelRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                   void* display);
int TVPMDisplayScreenClickHook(int device, int x, int y, TVPMMouseStatus status, void* display);
int TVPMDisplayScreenRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                    void* display);
int TVPMDisplayBezelScrollHook(int device, int x, int y, int wheel, int clicks, void* display);
int TVPMDisplayScreenScrollHook(int device, int x, int y, int wheel, int clicks, void* display);
int TVPMDisplayBezelCursorHook(int device, int x, int y, void* display);
int TVPMDisplayScreenCursorHook(int device, int x, int y, void* display);
int TVPMDisplayNeedsAvionicsBrightnessHook(int device, void* display);
float TVPMDisplayDoAvionicsBrightnessHook(int device, float rheo, float cell, float bus,
                                          void* display);
int TVPMDisplayNeedsAvionicsBezelHook(int device, void* display);
void TVPMDisplayDoAvionicsBezelHook(int device, void* display, float* tint);
int TVPMDisplayNeedsAvionicsScreenHook(int device, void* display, int before);
int TVPMDisplayDoAvionicsScreenHook(int device, void* display, int before);
void TVPMDisplayDoAvionicsKeyHook(int device, char key, TVPMKeyFlags flags, char vkey, int losing,
                                  void* display);

// ---- Menus (TVPMMenus) --------------------------------------------------------
void TVPMInitMenus();
void TVPMMenuCleanupHook(TVPMPluginID id);
int TVPMHandleMenuItemPick(int inCode);
int TVPMHandleMenuItemCheck(intptr_t menu, int item, int* outCheck);
int TVPMHandleMenuItemEnable(intptr_t menuIndex, int itemIndex);

// ---- Instances (TVPMInstance) -------------------------------------------------
void TVPMInstanceEnableHook(TVPMPluginID id);
void TVPMInstanceDisableHook(TVPMPluginID id);
void TVPMInstanceCleanupHook(TVPMPluginID id);

// ---- Camera (TVPMCamera) ------------------------------------------------------
void TVPMReleaseCamera();
int TVPMAdjustCamera(float* ioX, float* ioY, float* ioZ, float* ioPitch, float* ioHeading,
                     float* ioRoll, float* ioZoom);
void TVPMCameraDisableHook(TVPMPluginID id);
void TVPMCameraCleanupHook(TVPMPluginID id);

// ---- Planes (TVPMPlanes) -------------------------------------------------------
void TVPMPlaneDisableHook(TVPMPluginID id);
void TVPMPlaneCleanupHook(TVPMPluginID id);
void TVPMHandleUpdatePlaneNameAndPath(int index, char* name, char* path);
int TVPMHandleGetNumberPlanesToHandle(int inNumber, int inLoading);
// The plugin that controls the AI aircraft, or -1.
TVPMPluginID TVPMGetTrafficControlPlugin();

// ---- Scenery (TVPMScenery) ----------------------------------------------------
void TVPMSceneryCleanupHook(TVPMPluginID id);

// ---- Maps (TVPMMap) -----------------------------------------------------------
int TVPMMapNeedsLayerDrawingHooks();
void TVPMMapDoLayerDrawingHook(void* sdkLayerHandle, const float* inMapBoundsLeftTopRightBottom,
                               float zoomRatio, float mapUnitsPerUserInterfaceUnit,
                               TVPMMapStyle mapStyle, TVPMMapProjectionID projection);
void TVPMMapHandleCreation(const char* mapIdentifier);
void TVPMMapDoLayerWillBeDeletedHook(void* sdkLayerHandle);
void TVPMMapDoLayerPrepareCacheHook(void* sdkLayerHandle,
                                    const float* inTotalMapBoundsLeftTopRightBottom,
                                    TVPMMapProjectionID projection);
// Releases a plugin's layers and creation callbacks; unloading does not call it.
void TVPMMapCleanupHook(TVPMPluginID id);

// ---- Sound (TVPMSound) --------------------------------------------------------
void TVPMDoFMODHousekeeping();
void TVPMFMODClearChannelGroupsInBank(TVPMPluginID id, int bank);
void TVPMFMODDisableHook(TVPMPluginID id);
void TVPMFMODCleanupHook(TVPMPluginID id);

// ---- Weather (TVPMWeather) ----------------------------------------------------
void TVPMWeatherEnableHook(TVPMPluginID id);
void TVPMWeatherDisableHook(TVPMPluginID id);
void TVPMWeatherCleanupHook(TVPMPluginID id);
