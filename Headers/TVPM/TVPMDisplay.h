/*
 * TVPMDisplay.h: drawing at fixed points of the simulator's frame, plugin
 * windows with their stacking order and keyboard focus, key sniffers, hot
 * keys, and the screen and mouse queries that go with them.
 *
 * Every function here is [plugin-thread, checked]. Terms are defined in
 * TVPMDefs.h.
 * Callbacks are called only while their plugin is enabled, always on the
 * plugin thread and with their plugin as the [current plugin]. A callback may
 * register, unregister, create, destroy or reorder anything declared here,
 * itself included.
 */
#ifndef TVPMDisplay_h
#define TVPMDisplay_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Drawing callbacks ------------------------------------------------------ */

/* Points of the simulator's frame at which plugins may draw. */
typedef int TVPMDrawingPhase;
enum {
    tvpm_Phase_FirstScene = 0,
    tvpm_Phase_Terrain = 5,
    tvpm_Phase_Airports = 10,
    tvpm_Phase_Vectors = 15,
    tvpm_Phase_Objects = 20,
    tvpm_Phase_Airplanes = 25,
    tvpm_Phase_LastScene = 30,
    tvpm_Phase_Modern3D = 31,
    tvpm_Phase_FirstCockpit = 35,
    tvpm_Phase_Panel = 40,
    tvpm_Phase_Gauges = 45,
    tvpm_Phase_Window = 50,
    tvpm_Phase_LastCockpit = 55,
    tvpm_Phase_LocalMap3D = 100,
    tvpm_Phase_LocalMap2D = 101,
    tvpm_Phase_LocalMapProfile = 102
};

/* Called before (inIsBefore 1) or after (0) the simulator draws inPhase. A
 * before callback returns 1 to let the simulator draw the phase and 0 to
 * suppress it (any other value also suppresses it); an after callback's
 * result is ignored. */
typedef int (*TVPMDrawCallback_f)(TVPMDrawingPhase inPhase, int inIsBefore, void* inRefcon);

/* Registers a draw callback for the [current plugin]. inWantsBefore must be 1
 * (before) or 0 (after); other values register a callback that is never
 * called. Returns 1, or 0 when the same callback, phase, inWantsBefore and
 * refcon are already registered. The most recently registered callback is
 * called first. Setting the feature "TVPM_WANTS_REFLECTIONS" makes the
 * plugin's callbacks run in reflection passes too. */
TVPM_API int TVPMRegisterDrawCallback(TVPMDrawCallback_f inCallback, TVPMDrawingPhase inPhase,
                                      int inWantsBefore, void* inRefcon);
/* Removes a registration made with exactly these four values; returns 1, or
 * 0 when there is none. Safe from inside the callback itself. */
TVPM_API int TVPMUnregisterDrawCallback(TVPMDrawCallback_f inCallback, TVPMDrawingPhase inPhase,
                                        int inWantsBefore, void* inRefcon);

/* ---- Key sniffers ------------------------------------------------------------- */

/* Sees every key event; returns 1 to pass the key on, 0 to consume it. */
typedef int (*TVPMKeySniffer_f)(char inChar, TVPMKeyFlags inFlags, char inVirtualKey,
                                void* inRefcon);

/* Registers a key sniffer for the [current plugin], asked before the windows
 * (inBeforeWindows non-zero) or after them (0); the newest sniffer is asked
 * first. Returns 1, or 0 when the same three values are already registered. */
TVPM_API int TVPMRegisterKeySniffer(TVPMKeySniffer_f inCallback, int inBeforeWindows,
                                    void* inRefcon);
/* Removes the registration with these three values; returns 1, or 0 when
 * there is none. */
TVPM_API int TVPMUnregisterKeySniffer(TVPMKeySniffer_f inCallback, int inBeforeWindows,
                                      void* inRefcon);

/* ---- Windows ---------------------------------------------------------------- */

/* Draws the window; called once per frame while the window is visible. */
typedef void (*TVPMDrawWindow_f)(TVPMWindowID inWindowID, void* inRefcon);
/* A key for the focused window. When the window loses the keyboard focus it
 * is called once with key, flags and virtual key 0 and inLosingFocus 1; the
 * window argument is then the window taking the focus (null for none). */
typedef void (*TVPMHandleKey_f)(TVPMWindowID inWindowID, char inKey, TVPMKeyFlags inFlags,
                                char inVirtualKey, void* inRefcon, int inLosingFocus);
/* A mouse event; return 1 to consume it. A window that consumes a mouse-down
 * receives every drag of that button and the mouse-up, wherever the mouse
 * goes. Coordinates are the simulator's 2-D coordinates (y grows upwards). */
typedef int (*TVPMHandleMouseClick_f)(TVPMWindowID inWindowID, int x, int y,
                                      TVPMMouseStatus inMouse, void* inRefcon);
/* The cursor to show over the window; tvpm_CursorDefault lets windows behind
 * and then the simulator decide. */
typedef TVPMCursorStatus (*TVPMHandleCursor_f)(TVPMWindowID inWindowID, int x, int y,
                                               void* inRefcon);
/* A scroll-wheel event (wheel and clicks as the simulator reports them);
 * return 1 to consume it. */
typedef int (*TVPMHandleMouseWheel_f)(TVPMWindowID inWindowID, int x, int y, int inWheel,
                                      int inClicks, void* inRefcon);

/* How the simulator positions a window managed by the simulator (its values
 * are the simulator's). */
typedef int TVPMWindowPositioningMode;

/* The two structSize values TVPMCreateWindowEx accepts: a window kept by TVPM
 * (the fields up to refcon) or a window that the simulator keeps as a real
 * window of its own, with decoration, layer, pop-out and VR support (all
 * fields, sizeof(TVPMCreateWindow_t)). */
#define TVPM_CREATE_WINDOW_SIZE_PLAIN 72
#define TVPM_CREATE_WINDOW_SIZE_GUI 88

/* Parameters of TVPMCreateWindowEx; structSize is one of the two above. */
typedef struct TVPMCreateWindow_t {
    int structSize;
    int left;
    int top;
    int right;
    int bottom;
    int visible;
    TVPMDrawWindow_f drawWindowFunc;
    TVPMHandleMouseClick_f handleMouseClickFunc;
    TVPMHandleKey_f handleKeyFunc;
    TVPMHandleCursor_f handleCursorFunc;
    TVPMHandleMouseWheel_f handleMouseWheelFunc;
    void* refcon;
    TVPMWindowDecoration decorateAsFloatingWindow;
    TVPMWindowLayer layer;
    /* Right-button events; read for both sizes, so zero it in a plain one. */
    TVPMHandleMouseClick_f handleRightClickFunc;
} TVPMCreateWindow_t;

/* Creates a window kept by TVPM for the [current plugin] and puts it in
 * front of all others. Returns its [handle]. */
TVPM_API TVPMWindowID TVPMCreateWindow(int inLeft, int inTop, int inRight, int inBottom,
                                       int inIsVisible, TVPMDrawWindow_f inDrawCallback,
                                       TVPMHandleKey_f inKeyCallback,
                                       TVPMHandleMouseClick_f inMouseCallback, void* inRefcon);
/* Creates a window as described by inParams (see TVPMCreateWindow_t) and puts
 * it in front. Returns its [handle], or null when inParams is null or its
 * structSize is neither TVPM_CREATE_WINDOW_SIZE_PLAIN nor
 * TVPM_CREATE_WINDOW_SIZE_GUI. A layer outside 0..3 gives
 * tvpm_WindowLayerFloatingWindows. */
TVPM_API TVPMWindowID TVPMCreateWindowEx(TVPMCreateWindow_t* inParams);
/* Destroys a window; it first loses the keyboard focus and the mouse if it
 * holds them. Safe from inside the window's own callbacks. */
TVPM_API void TVPMDestroyWindow(TVPMWindowID inWindowID);

/* Calls below that take a window ignore an unknown [handle] (returning 0). */

/* The window's rectangle; each output may be null. */
TVPM_API void TVPMGetWindowGeometry(TVPMWindowID inWindowID, int* outLeft, int* outTop,
                                    int* outRight, int* outBottom);
/* Moves and resizes the window (y grows upwards: inTop > inBottom). */
TVPM_API void TVPMSetWindowGeometry(TVPMWindowID inWindowID, int inLeft, int inTop, int inRight,
                                    int inBottom);
/* The rectangle of a popped-out window in the operating system's desktop
 * coordinates; outputs are untouched for a window that is not popped out. */
TVPM_API void TVPMGetWindowGeometryOS(TVPMWindowID inWindowID, int* outLeft, int* outTop,
                                      int* outRight, int* outBottom);
/* Moves a popped-out window on the desktop; ignored for any other window. */
TVPM_API void TVPMSetWindowGeometryOS(TVPMWindowID inWindowID, int inLeft, int inTop,
                                      int inRight, int inBottom);
/* 1 when the window has been popped out into an operating-system window. */
TVPM_API int TVPMWindowIsPoppedOut(TVPMWindowID inWindowID);
/* The size of a window shown in VR; untouched outside VR. */
TVPM_API void TVPMGetWindowGeometryVR(TVPMWindowID inWindowID, int* outWidthBoxels,
                                      int* outHeightBoxels);
/* Resizes a window shown in VR; ignored outside VR. */
TVPM_API void TVPMSetWindowGeometryVR(TVPMWindowID inWindowID, int inWidthBoxels,
                                      int inHeightBoxels);
/* 1 when the window is shown in VR. */
TVPM_API int TVPMWindowIsInVR(TVPMWindowID inWindowID);
/* Whether the window is shown (for a window the simulator keeps, as the
 * simulator answers). */
TVPM_API int TVPMGetWindowIsVisible(TVPMWindowID inWindowID);
/* Shows or hides the window; hiding the focused window takes its focus away. */
TVPM_API void TVPMSetWindowIsVisible(TVPMWindowID inWindowID, int inIsVisible);
/* The refcon passed to the window's callbacks; null for an unknown window. */
TVPM_API void* TVPMGetWindowRefCon(TVPMWindowID inWindowID);
/* Replaces the window's refcon; later callbacks receive the new one. */
TVPM_API void TVPMSetWindowRefCon(TVPMWindowID inWindowID, void* inRefcon);
/* Moves the window in front of all others: it is hit first and drawn last. */
TVPM_API void TVPMBringWindowToFront(TVPMWindowID inWindowID);
/* 1 when the window is the front-most visible one (for a window the
 * simulator keeps, as the simulator answers); a hidden window is never in
 * front. */
TVPM_API int TVPMIsWindowInFront(TVPMWindowID inWindowID);

/* Passed to the simulator unchanged, for windows the simulator keeps. */
TVPM_API void TVPMSetWindowGravity(TVPMWindowID inWindowID, float inLeftGravity,
                                   float inTopGravity, float inRightGravity,
                                   float inBottomGravity);
TVPM_API void TVPMSetWindowResizingLimits(TVPMWindowID inWindowID, int inMinWidthBoxels,
                                          int inMinHeightBoxels, int inMaxWidthBoxels,
                                          int inMaxHeightBoxels);
TVPM_API void TVPMSetWindowPositioningMode(TVPMWindowID inWindowID,
                                           TVPMWindowPositioningMode inPositioningMode,
                                           int inMonitorIndex);
/* inWindowTitle is copied by the simulator. */
TVPM_API void TVPMSetWindowTitle(TVPMWindowID inWindowID, const char* inWindowTitle);

/* ---- Keyboard focus ------------------------------------------------------------ */

/* Gives the keyboard focus to a window of an enabled plugin, or back to the
 * simulator with null (an unknown [handle] counts as null). The window losing
 * the focus is told through its key callback, during which it still has the
 * focus; afterwards the focus goes where it was asked to, whatever that
 * callback did. */
TVPM_API void TVPMTakeKeyboardFocus(TVPMWindowID inWindowID);
/* 1 when the window has the keyboard focus; with null (or an unknown handle),
 * 1 when no window has it. */
TVPM_API int TVPMHasKeyboardFocus(TVPMWindowID inWindowID);

/* ---- Screen and mouse ------------------------------------------------------------ */

/* The size of the simulator's main 2-D surface; each output may be null. */
TVPM_API void TVPMGetScreenSize(int* outWidth, int* outHeight);
/* The bounds of the simulator's global desktop space; each output may be null. */
TVPM_API void TVPMGetScreenBoundsGlobal(int* outLeft, int* outTop, int* outRight,
                                        int* outBottom);
/* Calls inMonitorBoundsCallback once per monitor the simulator covers, in
 * global desktop coordinates. */
TVPM_API void TVPMGetAllMonitorBoundsGlobal(TVPMReceiveMonitorBoundsGlobal_f inMonitorBoundsCallback,
                                            void* inRefcon);
/* The same for every monitor of the system, in operating-system pixels. */
TVPM_API void TVPMGetAllMonitorBoundsOS(TVPMReceiveMonitorBoundsOS_f inMonitorBoundsCallback,
                                        void* inRefcon);
/* The mouse position in the main 2-D surface; each output may be null. */
TVPM_API void TVPMGetMouseLocation(int* outX, int* outY);
/* The mouse position in global desktop coordinates; each output may be null. */
TVPM_API void TVPMGetMouseLocationGlobal(int* outX, int* outY);

/* ---- Hot keys ------------------------------------------------------------------ */

/* A hot key [handle]. Hot keys are global: any plugin may list and rebind the
 * hot keys of every plugin. */
typedef void* TVPMHotKeyID;

/* Called when the hot key's combination is pressed. */
typedef void (*TVPMHotKey_f)(void* inRefcon);

/* Binds a virtual key plus exact modifier flags to inCallback for the
 * [current plugin]; inDescription is copied. The same combination may be
 * bound many times: only the newest binding fires. */
TVPM_API TVPMHotKeyID TVPMRegisterHotKey(char inVirtualKey, TVPMKeyFlags inFlags,
                                         const char* inDescription, TVPMHotKey_f inCallback,
                                         void* inRefcon);
/* Removes any plugin's hot key; the [handle] is invalid afterwards. Safe
 * from inside the hot key's own callback. */
TVPM_API void TVPMUnregisterHotKey(TVPMHotKeyID inHotKey);
/* The number of hot keys of all plugins. */
TVPM_API int TVPMCountHotKeys(void);
/* The hot key at inIndex, 0 being the newest; null out of range. */
TVPM_API TVPMHotKeyID TVPMGetNthHotKey(int inIndex);
/* Each output may be null. The description goes into a [caller-buffer] of
 * 512 bytes (cut to 511 characters). */
TVPM_API void TVPMGetHotKeyInfo(TVPMHotKeyID inHotKey, char* outVirtualKey,
                                TVPMKeyFlags* outFlags, char* outDescription,
                                TVPMPluginID* outPlugin);
/* Rebinds any plugin's hot key to another combination. */
TVPM_API void TVPMSetHotKeyCombination(TVPMHotKeyID inHotKey, char inVirtualKey,
                                       TVPMKeyFlags inFlags);

#ifdef __cplusplus
}
#endif

#endif /* TVPMDisplay_h */
