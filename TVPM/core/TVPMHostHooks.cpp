// TVPMHostHooks.cpp: the simulator's drawing, input, avionics, map, camera, menu, aircraft and command hooks, forwarded to their units.
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#include "UTL_timing.h"

TVPM_API int TVPMNeedsDrawingHook(TVPMDrawingHookKind inKind, int inRenderType) {
    return TVPMDisplayNeedsDrawingHook(inKind, inRenderType);
}
TVPM_API int TVPMDoDrawingHook(TVPMDrawingHookKind inKind, int inRenderType, void* inFixedWindow) {
    return TVPMDisplayDoDrawingHook(inKind, inRenderType, inFixedWindow);
}
TVPM_API int TVPMMouseClickHook(int inX, int inY, int inIsDown, int button_0_or_1,
                                void* inFixedWindow) {
    return TVPMDisplayMouseClickHook(inX, inY, inIsDown ? tvpm_MouseDown : tvpm_MouseUp,
                                     button_0_or_1, inFixedWindow);
}
TVPM_API int TVPMKeyPressHook(char inChar, TVPMKeyFlags inFlags, char inVirtualKey, int phase,
                              void* inFixedWindow) {
    return TVPMDisplayKeyPressHook(inChar, inFlags, inVirtualKey, phase, inFixedWindow);
}
TVPM_API int TVPMCursorHook(int inX, int inY, void* inFixedWindow) {
    return TVPMDisplayCursorHook(inX, inY, inFixedWindow);
}
TVPM_API int TVPMScrollWheelHook(int inX, int inY, int inWheel, int inClicks, void* inFixedWindow) {
    return TVPMDisplayScrollWheelHook(inX, inY, inWheel, inClicks, inFixedWindow);
}

TVPM_API int TVPMDoAvionicsBezelClickHook(int device, int x, int y, TVPMMouseStatus status,
                                          void* display) {
    return TVPMDisplayBezelClickHook(device, x, y, status, display);
}
TVPM_API int TVPMDoAvionicsBezelRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                               void* display) {
    return TVPMDisplayBezelRightClickHook(device, x, y, status, display);
}
TVPM_API int TVPMDoAvionicsScreenClickHook(int device, int x, int y, TVPMMouseStatus status,
                                           void* display) {
    return TVPMDisplayScreenClickHook(device, x, y, status, display);
}
TVPM_API int TVPMDoAvionicsScreenRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                                void* display) {
    return TVPMDisplayScreenRightClickHook(device, x, y, status, display);
}
TVPM_API int TVPMDoAvionicsBezelScrollHook(int device, int x, int y, int wheel, int clicks,
                                           void* display) {
    return TVPMDisplayBezelScrollHook(device, x, y, wheel, clicks, display);
}
TVPM_API int TVPMDoAvionicsScreenScrollHook(int device, int x, int y, int wheel, int clicks,
                                            void* display) {
    return TVPMDisplayScreenScrollHook(device, x, y, wheel, clicks, display);
}
TVPM_API int TVPMDoAvionicsBezelCursorHook(int device, int x, int y, void* display) {
    return TVPMDisplayBezelCursorHook(device, x, y, display);
}
TVPM_API int TVPMDoAvionicsScreenCursorHook(int device, int x, int y, void* display) {
    return TVPMDisplayScreenCursorHook(device, x, y, display);
}
TVPM_API int TVPMNeedsAvionicsBrightnessHook(int device, void* display) {
    return TVPMDisplayNeedsAvionicsBrightnessHook(device, display);
}
TVPM_API float TVPMDoAvionicsBrightnessHook(int device, float rheo, float cell, float bus,
                                            void* display) {
    return TVPMDisplayDoAvionicsBrightnessHook(device, rheo, cell, bus, display);
}
TVPM_API int TVPMNeedsAvionicsBezelHook(int device, void* display) {
    return TVPMDisplayNeedsAvionicsBezelHook(device, display);
}
TVPM_API void TVPMDoAvionicsBezelHook(int device, void* display, float* tint) {
    TVPMDisplayDoAvionicsBezelHook(device, display, tint);
}
TVPM_API int TVPMNeedsAvionicsScreenHook(int device, void* display, int before) {
    return TVPMDisplayNeedsAvionicsScreenHook(device, display, before);
}
TVPM_API int TVPMDoAvionicsScreenHook(int device, void* display, int before) {
    return TVPMDisplayDoAvionicsScreenHook(device, display, before);
}
TVPM_API void TVPMDoAvionicsKeyHook(int device, char key, TVPMKeyFlags flags, char vkey,
                                    int losing, void* display) {
    TVPMDisplayDoAvionicsKeyHook(device, key, flags, vkey, losing, display);
}

TVPM_API int TVPMNeedsMapLayerDrawingHooks(void) { return TVPMMapNeedsLayerDrawingHooks(); }
TVPM_API void TVPMDoMapLayerDrawingHook(void* sdkLayerHandle,
                                        const float* inMapBoundsLeftTopRightBottom,
                                        float zoomRatio, float mapUnitsPerUserInterfaceUnit,
                                        TVPMMapStyle mapStyle, TVPMMapProjectionID projection) {
    TVPMMapDoLayerDrawingHook(sdkLayerHandle, inMapBoundsLeftTopRightBottom, zoomRatio,
                              mapUnitsPerUserInterfaceUnit, mapStyle, projection);
}
TVPM_API void TVPMMapCreated(const char* mapIdentifier) { TVPMMapHandleCreation(mapIdentifier); }
TVPM_API void TVPMMapLayerWillBeDeleted(void* sdkLayerHandle) {
    TVPMMapDoLayerWillBeDeletedHook(sdkLayerHandle);
}
TVPM_API void TVPMDoMapLayerPrepareCacheHook(void* sdkLayerHandle,
                                             const float* inTotalMapBoundsLeftTopRightBottom,
                                             TVPMMapProjectionID projection) {
    TVPMMapDoLayerPrepareCacheHook(sdkLayerHandle, inTotalMapBoundsLeftTopRightBottom, projection);
}

TVPM_API int TVPMCameraHook(float* ioX, float* ioY, float* ioZ, float* ioPitch, float* ioHeading,
                            float* ioRoll, float* ioZoom) {
    return TVPMAdjustCamera(ioX, ioY, ioZ, ioPitch, ioHeading, ioRoll, ioZoom);
}
TVPM_API int TVPMMenuHook(int inCode) { return TVPMHandleMenuItemPick(inCode); }
TVPM_API int TVPMCheckMenuHook(intptr_t menu, int item, int* outCheck) {
    return TVPMHandleMenuItemCheck(menu, item, outCheck);
}
TVPM_API int TVPMMenuItemEnabled(intptr_t menuIndex, int itemIndex) {
    return TVPMHandleMenuItemEnable(menuIndex, itemIndex);
}
TVPM_API void TVPMUpdatePlaneNameAndPath(int index, char* name, char* path) {
    TVPMHandleUpdatePlaneNameAndPath(index, name, path);
}
TVPM_API int TVPMGetNumberPlanesToHandle(int inNumber, int inLoading) {
    return TVPMHandleGetNumberPlanesToHandle(inNumber, inLoading);
}
TVPM_API int TVPMCommandHook(void* inCmdRef, int inDown, int inUp, int inBefore) {
    return TVPMDispatchCommandHook(inCmdRef, inDown, inUp, inBefore);
}
TVPM_API void TVPMGetPluginCallbackTimings(tvpm_plugin_time_callback* callback) {
    StCallbackTimer::get_plugin_timings(callback);
}
