/*
 * TVPMDisplay.h: drawing at fixed points of the simulator's frame, plugin
 * windows with their stacking order and keyboard focus, key sniffers, hot
 * keys, and the screen and mouse queries that go with them.
 *
 * Every function here is [plugin-thread, checked], except the avionics
 * functions (their section says). Terms are defined in TVPMDefs.h.
 * Callbacks are called only while their plugin is enabled, always on the
 * plugin thread and with their plugin as the [current plugin]. A callback may
 * register, unregister, create, destroy or reorder anything declared here,
 * itself included.
 */
#ifndef TVPMDisplay_h
#define TVPMDisplay_h

#include <stddef.h>

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
TVPM_PIN_LAYOUT(create_window_size, sizeof(TVPMCreateWindow_t) == TVPM_CREATE_WINDOW_SIZE_GUI);
TVPM_PIN_LAYOUT(create_window_refcon, offsetof(TVPMCreateWindow_t, refcon) == 64);
TVPM_PIN_LAYOUT(create_window_floating,
                offsetof(TVPMCreateWindow_t, decorateAsFloatingWindow) == TVPM_CREATE_WINDOW_SIZE_PLAIN);

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

/* ==== Avionics devices ======================================================
 *
 * A plugin either customises one of the simulator's built-in glass-cockpit
 * devices (draws before or after the simulator draws its screen, takes its
 * bezel and screen mouse input and its keys) or creates a whole new device
 * that the simulator shows in the cockpit or in a pop-up window.
 *
 * Every function here is [plugin-thread]. Callbacks are called only while
 * their plugin is enabled, on the plugin thread and with their plugin as the
 * [current plugin]; they may register, unregister or destroy any device,
 * themselves included. Drawing callbacks are timed as avionics drawing.
 *
 * When several registrations serve the same device, the newest is asked
 * first and:
 *   - before-screen callbacks all run, and their results combine by AND: any
 *     0 suppresses the simulator's own screen;
 *   - bezel, screen and after-screen drawing callbacks all run;
 *   - mouse, scroll and key input stops at the first callback that consumes
 *     it (returns non-zero); the cursor at the first one that answers other
 *     than tvpm_CursorDefault; the brightness at the first brightness
 *     callback.
 * A created device is served by its own registration only.
 */

#ifdef __cplusplus
extern "C" {
#endif

/* One of the simulator's built-in devices (its numbers are the simulator's). */
typedef int TVPMDeviceID;

/* A customisation or a created device [handle]. */
typedef void* TVPMAvionicsID;

/* Before (inIsBefore 1) or after (0) the simulator draws the device's screen.
 * A before callback returns 1 to let the simulator draw, 0 to suppress it;
 * an after callback's result is ignored. */
typedef int (*TVPMAvionicsCallback_f)(TVPMDeviceID inDeviceID, int inIsBefore, void* inRefcon);
/* Draws a created device's screen. */
typedef void (*TVPMAvionicsScreenCallback_f)(void* inRefcon);
/* Draws a created device's bezel, lit by the cockpit's ambient colour. */
typedef void (*TVPMAvionicsBezelCallback_f)(float inAmbientR, float inAmbientG, float inAmbientB,
                                            void* inRefcon);
/* A click on the bezel or a touch on the screen, in device pixels; return 1
 * to consume it. */
typedef int (*TVPMAvionicsMouse_f)(int x, int y, TVPMMouseStatus inMouse, void* inRefcon);
/* A scroll-wheel event; return 1 to consume it. */
typedef int (*TVPMAvionicsMouseWheel_f)(int x, int y, int inWheel, int inClicks, void* inRefcon);
/* The cursor to show; tvpm_CursorDefault lets the simulator decide. */
typedef TVPMCursorStatus (*TVPMAvionicsCursor_f)(int x, int y, void* inRefcon);
/* A key for the device; return 1 to consume it. When the device loses the
 * keyboard focus it is called with inLosingFocus 1. */
typedef int (*TVPMAvionicsKeyboard_f)(char inKey, TVPMKeyFlags inFlags, char inVirtualKey,
                                      void* inRefcon, int inLosingFocus);
/* The screen brightness (0..1) for the rheostat, the ambient light and the
 * bus volts ratio. */
typedef float (*TVPMAvionicsBrightness_f)(float inRheoValue, float inAmbientBrightness,
                                          float inBusVoltsRatio, void* inRefcon);

#define TVPM_CUSTOMIZE_AVIONICS_SIZE 104
/* The short form: structSize, deviceId, the two drawing callbacks and the
 * refcon, which then stands where bezelClickCallback stands. */
#define TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE 32
#define TVPM_CREATE_AVIONICS_SIZE 152

/* Parameters of TVPMRegisterAvionicsCallbacksEx. Every callback may be null. */
typedef struct TVPMCustomizeAvionics_t {
    int structSize; /* TVPM_CUSTOMIZE_AVIONICS_SIZE or _SHORT_SIZE */
    TVPMDeviceID deviceId;
    TVPMAvionicsCallback_f drawCallbackBefore;
    TVPMAvionicsCallback_f drawCallbackAfter;
    TVPMAvionicsMouse_f bezelClickCallback;
    TVPMAvionicsMouse_f bezelRightClickCallback;
    TVPMAvionicsMouseWheel_f bezelScrollCallback;
    TVPMAvionicsCursor_f bezelCursorCallback;
    TVPMAvionicsMouse_f screenTouchCallback;
    TVPMAvionicsMouse_f screenRightTouchCallback;
    TVPMAvionicsMouseWheel_f screenScrollCallback;
    TVPMAvionicsCursor_f screenCursorCallback;
    TVPMAvionicsKeyboard_f keyboardCallback;
    void* refcon;
} TVPMCustomizeAvionics_t;

/* Parameters of TVPMCreateAvionicsEx. Every callback may be null. */
struct TVPMCreateAvionics_t {
    int structSize; /* TVPM_CREATE_AVIONICS_SIZE */
    int screenWidth;
    int screenHeight;
    int bezelWidth;
    int bezelHeight;
    int screenOffsetX;
    int screenOffsetY;
    int drawOnDemand; /* 1: the screen is drawn only after TVPMAvionicsNeedsDrawing */
    TVPMAvionicsBezelCallback_f bezelDrawCallback;
    TVPMAvionicsScreenCallback_f drawCallback;
    TVPMAvionicsMouse_f bezelClickCallback;
    TVPMAvionicsMouse_f bezelRightClickCallback;
    TVPMAvionicsMouseWheel_f bezelScrollCallback;
    TVPMAvionicsCursor_f bezelCursorCallback;
    TVPMAvionicsMouse_f screenTouchCallback;
    TVPMAvionicsMouse_f screenRightTouchCallback;
    TVPMAvionicsMouseWheel_f screenScrollCallback;
    TVPMAvionicsCursor_f screenCursorCallback;
    TVPMAvionicsKeyboard_f keyboardCallback;
    TVPMAvionicsBrightness_f brightnessCallback;
    const char* deviceID;   /* copied (63 characters at most) */
    const char* deviceName; /* read by the simulator during the call */
    void* refcon;
};

/* Customises built-in device deviceId for the [current plugin]. Returns a
 * [handle], or null when inParams is null, its structSize is neither size,
 * or the plugin already made exactly this customisation. inParams is read
 * during the call only. */
TVPM_API TVPMAvionicsID TVPMRegisterAvionicsCallbacksEx(TVPMCustomizeAvionics_t* inParams);
/* Ends a customisation (a created device is destroyed as by
 * TVPMDestroyAvionics); an unknown [handle] is ignored. Safe from inside the
 * customisation's own callbacks. */
TVPM_API void TVPMUnregisterAvionicsCallbacks(TVPMAvionicsID inAvionicsId);
/* A [handle] on built-in device inDeviceID for the calls below, without
 * customising it: the plugin's own customisation of the device when it has
 * one without callbacks, otherwise a handle kept until the plugin unloads. */
TVPM_API TVPMAvionicsID TVPMGetAvionicsHandle(TVPMDeviceID inDeviceID);
/* Creates a device of the [current plugin]; the screen callback runs in the
 * simulator's before-screen pass. Returns its [handle], or null when inParams
 * is null, its structSize is not TVPM_CREATE_AVIONICS_SIZE, or the same
 * device already exists without a simulator display. */
TVPM_API TVPMAvionicsID TVPMCreateAvionicsEx(TVPMCreateAvionics_t* inParams);
/* Destroys a created device (or ends a customisation); an unknown [handle]
 * is ignored. Devices still there when their plugin unloads are destroyed
 * for it. */
TVPM_API void TVPMDestroyAvionics(TVPMAvionicsID inHandle);

/* The calls below pass the device to the simulator; a null or unknown
 * [handle] does nothing and answers 0. */

/* 1 when the device is installed in the user's aircraft. */
TVPM_API int TVPMIsAvionicsBound(TVPMAvionicsID inHandle);
TVPM_API void TVPMSetAvionicsBrightnessRheo(TVPMAvionicsID inHandle, float brightness);
TVPM_API float TVPMGetAvionicsBrightnessRheo(TVPMAvionicsID inHandle);
TVPM_API float TVPMGetAvionicsBusVoltsRatio(TVPMAvionicsID inHandle);
TVPM_API void TVPMSetAvionicsPopupVisible(TVPMAvionicsID inHandle, int inVisible);
TVPM_API int TVPMIsAvionicsPopupVisible(TVPMAvionicsID inHandle);
TVPM_API void TVPMPopOutAvionics(TVPMAvionicsID inHandle);
TVPM_API int TVPMIsAvionicsPoppedOut(TVPMAvionicsID inHandle);
/* 1 when the mouse is over the device's screen; the position, in screen
 * pixels, goes to the outputs, which may be null. */
TVPM_API int TVPMIsCursorOverAvionics(TVPMAvionicsID inHandle, int* outX, int* outY);
/* Asks for the screen of a draw-on-demand device to be drawn again. */
TVPM_API void TVPMAvionicsNeedsDrawing(TVPMAvionicsID inHandle);
TVPM_API void TVPMTakeAvionicsKeyboardFocus(TVPMAvionicsID inHandle);
TVPM_API int TVPMHasAvionicsKeyboardFocus(TVPMAvionicsID inHandle);
/* The pop-up window's bounds; each output may be null. */
TVPM_API void TVPMGetAvionicsGeometry(TVPMAvionicsID inHandle, int* outLeft, int* outTop,
                                      int* outRight, int* outBottom);
TVPM_API void TVPMSetAvionicsGeometry(TVPMAvionicsID inHandle, int inLeft, int inTop,
                                      int inRight, int inBottom);
/* The popped-out window's bounds in operating-system pixels; each output may
 * be null. */
TVPM_API void TVPMGetAvionicsGeometryOS(TVPMAvionicsID inHandle, int* outLeft, int* outTop,
                                        int* outRight, int* outBottom);
TVPM_API void TVPMSetAvionicsGeometryOS(TVPMAvionicsID inHandle, int inLeft, int inTop,
                                        int inRight, int inBottom);

/* The layouts above are fixed: these fail to compile if they change. */
TVPM_PIN_LAYOUT(avionics_customize_size, sizeof(TVPMCustomizeAvionics_t) == TVPM_CUSTOMIZE_AVIONICS_SIZE);
TVPM_PIN_LAYOUT(avionics_customize_short,
                  offsetof(TVPMCustomizeAvionics_t, bezelClickCallback) ==
                      TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE - sizeof(void*));
TVPM_PIN_LAYOUT(avionics_customize_keyboard, offsetof(TVPMCustomizeAvionics_t, keyboardCallback) == 88);
TVPM_PIN_LAYOUT(avionics_customize_refcon, offsetof(TVPMCustomizeAvionics_t, refcon) == 96);
TVPM_PIN_LAYOUT(avionics_create_size, sizeof(struct TVPMCreateAvionics_t) == TVPM_CREATE_AVIONICS_SIZE);
TVPM_PIN_LAYOUT(avionics_create_bezel, offsetof(struct TVPMCreateAvionics_t, bezelDrawCallback) == 32);
TVPM_PIN_LAYOUT(avionics_create_brightness,
                  offsetof(struct TVPMCreateAvionics_t, brightnessCallback) == 120);
TVPM_PIN_LAYOUT(avionics_create_device_id, offsetof(struct TVPMCreateAvionics_t, deviceID) == 128);
TVPM_PIN_LAYOUT(avionics_create_refcon, offsetof(struct TVPMCreateAvionics_t, refcon) == 144);

#ifdef __cplusplus
}
#endif

#endif /* TVPMDisplay_h */
