// TVPMDisplayScreen.cpp: screen, monitor and mouse queries and the window settings that only the simulator keeps.
#include "TVPMDisplayPrivate.h"

// Window settings the simulator keeps for its own windows: passed on as they
// are, without looking the window up.

TVPM_API void TVPMSetWindowGravity(TVPMWindowID inWindowID, float inLeftGravity,
                                   float inTopGravity, float inRightGravity,
                                   float inBottomGravity) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMSetWindowGravity_f(inWindowID, inLeftGravity, inTopGravity, inRightGravity,
                                   inBottomGravity);
}

TVPM_API void TVPMSetWindowResizingLimits(TVPMWindowID inWindowID, int inMinWidthBoxels,
                                          int inMinHeightBoxels, int inMaxWidthBoxels,
                                          int inMaxHeightBoxels) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMSetWindowResizingLimits_f(inWindowID, inMinWidthBoxels, inMinHeightBoxels,
                                          inMaxWidthBoxels, inMaxHeightBoxels);
}

TVPM_API void TVPMSetWindowPositioningMode(TVPMWindowID inWindowID,
                                           TVPMWindowPositioningMode inPositioningMode,
                                           int inMonitorIndex) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMSetWindowPositioningMode_f(inWindowID, inPositioningMode, inMonitorIndex);
}

TVPM_API void TVPMSetWindowTitle(TVPMWindowID inWindowID, const char* inWindowTitle) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMSetWindowTitle_f(inWindowID, inWindowTitle);
}

// ---- Screen and mouse ---------------------------------------------------------------

TVPM_API void TVPMGetScreenSize(int* outWidth, int* outHeight) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMGetScreenSize_f(outWidth, outHeight);
}

TVPM_API void TVPMGetScreenBoundsGlobal(int* outLeft, int* outTop, int* outRight,
                                        int* outBottom) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMGetScreenBoundsGlobal_f(outLeft, outTop, outRight, outBottom);
}

TVPM_API void TVPMGetAllMonitorBoundsGlobal(TVPMReceiveMonitorBoundsGlobal_f inMonitorBoundsCallback,
                                            void* inRefcon) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMGetAllMonitorBoundsGlobal_f(inMonitorBoundsCallback, inRefcon);
}

TVPM_API void TVPMGetAllMonitorBoundsOS(TVPMReceiveMonitorBoundsOS_f inMonitorBoundsCallback,
                                        void* inRefcon) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMGetAllMonitorBoundsOS_f(inMonitorBoundsCallback, inRefcon);
}

TVPM_API void TVPMGetMouseLocation(int* outX, int* outY) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMGetMouseLocation_f(outX, outY, 0);
}

TVPM_API void TVPMGetMouseLocationGlobal(int* outX, int* outY) {
    TVPM_CHECK_THREAD();
    gHooks->TVPMGetMouseLocationGlobal_f(outX, outY, 0);
}

void TVPMDisplayReadMouse(const TVPMWindow* dragWindow, int& x, int& y) {
    if (dragWindow && dragWindow->isGuiBacked) gHooks->TVPMGetMouseLocationGlobal_f(&x, &y, 0);
    else gHooks->TVPMGetMouseLocation_f(&x, &y, 0);
}
