/*
 * TVPMDefs.h: definitions shared by every TVPM plugin header: the export
 * macro, plugin identity, the thread and ownership terms used by all function
 * comments, and the input and window enumerations of the display family.
 *
 * Terms used in the function comments of every TVPM header:
 *
 *   [plugin-thread]  May only be called on the plugin thread: the thread on
 *                    which the simulator started the plugin manager and on
 *                    which every plugin callback runs. Not enforced: a call
 *                    from another thread races with the plugin thread and is
 *                    reported only when the simulator has turned on plugin
 *                    diagnostics.
 *   [plugin-thread, checked]
 *                    As [plugin-thread], and enforced: a call from any other
 *                    thread prints a threading-violation report and aborts
 *                    the process.
 *   [any-thread]     May be called from any thread.
 *   [current plugin] The plugin on whose behalf a call runs: the plugin whose
 *                    entry point or callback is executing. Registrations are
 *                    stamped with it and misuse is reported to its error
 *                    callback (TVPMSetErrorCallback).
 *   [caller-buffer]  Text is copied into a buffer the caller owns, 256 bytes
 *                    unless stated otherwise, cut to 255 characters and a
 *                    terminating zero.
 *   [static-text]    The returned text is owned by TVPM and lives for the
 *                    process; do not free or modify it.
 *   [handle]         An opaque handle owned by TVPM. It stays valid until the
 *                    matching destroy call or until its plugin is unloaded; a
 *                    stale handle is ignored, never dereferenced blindly.
 *   refcon           An untyped pointer given at registration and handed back
 *                    unchanged to every callback of that registration.
 */
#ifndef TVPMDefs_h
#define TVPMDefs_h

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define TVPM_EXTERN_C extern "C"
#else
#define TVPM_EXTERN_C extern
#endif

/* Every interface function is a plain C function with default visibility. */
#define TVPM_API TVPM_EXTERN_C __attribute__((visibility("default")))

/* Pins a public structure's size or a field's offset: the header fails to
 * compile, as C or as C++, if the layout ever changes. tag names the check. */
#ifdef __cplusplus
#define TVPM_PIN_LAYOUT(tag, cond) static_assert(cond, #tag)
#else
#define TVPM_PIN_LAYOUT(tag, cond) typedef char tvpm_layout_##tag[(cond) ? 1 : -1]
#endif

/* Plugin entry points: what a plugin exports so that TVPM can find them. */
#define TVPM_PLUGIN_API TVPM_EXTERN_C __attribute__((visibility("default")))

/* ------------------------------------------------------------------------ */
/* Plugin identity                                                           */

/* Index of a plugin in TVPM's plugin table. IDs never change while a plugin
 * is loaded. */
typedef int TVPMPluginID;

/* No plugin; also "every plugin" as the target of a message. */
#define TVPM_NO_PLUGIN_ID (-1)
/* The simulator itself, always the first entry of the plugin table. */
#define TVPM_PLUGIN_TORVANE 0

/* The version of this interface, as reported by TVPMGetVersions. */
#define TVPM_INTERFACE_VERSION 421

/* Identifies the application hosting TVPM (reported by TVPMGetVersions). */
typedef int TVPMHostApplicationID;

/* ------------------------------------------------------------------------ */
/* Messages that the simulator broadcasts to plugins (TPluginReceiveMessage) */

#define TVPM_MSG_PLANE_CRASHED 101          /* param: unused */
#define TVPM_MSG_PLANE_LOADED 102           /* param: aircraft index */
#define TVPM_MSG_AIRPORT_LOADED 103         /* param: unused */
#define TVPM_MSG_SCENERY_LOADED 104         /* param: unused */
#define TVPM_MSG_AIRPLANE_COUNT_CHANGED 105 /* param: unused */
#define TVPM_MSG_PLANE_UNLOADED 106         /* param: aircraft index */
#define TVPM_MSG_WILL_WRITE_PREFS 107       /* param: unused */
#define TVPM_MSG_LIVERY_LOADED 108          /* param: aircraft index */
#define TVPM_MSG_ENTERED_VR 109
#define TVPM_MSG_EXITING_VR 110
#define TVPM_MSG_RELEASE_PLANES 111
#define TVPM_MSG_FMOD_BANK_LOADED 112       /* param: bank */
#define TVPM_MSG_FMOD_BANK_UNLOADING 113    /* param: bank */
#define TVPM_MSG_DATAREFS_ADDED 114         /* param: int* total item count */

/* ------------------------------------------------------------------------ */
/* Keyboard                                                                  */

/* Modifier and key-state flags delivered with every key event; combine with
 * bitwise or. */
typedef int TVPMKeyFlags;
#define tvpm_ShiftFlag 1
#define tvpm_OptionAltFlag 2
#define tvpm_ControlFlag 4
#define tvpm_DownFlag 8
#define tvpm_UpFlag 16

/* Virtual key codes: the Windows virtual-key numbers for the same keys.
 * Letters and digits use their upper-case ASCII codes. */
#define TVPM_VK_BACK 0x08
#define TVPM_VK_TAB 0x09
#define TVPM_VK_CLEAR 0x0C
#define TVPM_VK_RETURN 0x0D
#define TVPM_VK_ESCAPE 0x1B
#define TVPM_VK_SPACE 0x20
#define TVPM_VK_PRIOR 0x21
#define TVPM_VK_NEXT 0x22
#define TVPM_VK_END 0x23
#define TVPM_VK_HOME 0x24
#define TVPM_VK_LEFT 0x25
#define TVPM_VK_UP 0x26
#define TVPM_VK_RIGHT 0x27
#define TVPM_VK_DOWN 0x28
#define TVPM_VK_SELECT 0x29
#define TVPM_VK_PRINT 0x2A
#define TVPM_VK_EXECUTE 0x2B
#define TVPM_VK_SNAPSHOT 0x2C
#define TVPM_VK_INSERT 0x2D
#define TVPM_VK_DELETE 0x2E
#define TVPM_VK_HELP 0x2F
#define TVPM_VK_0 0x30
#define TVPM_VK_1 0x31
#define TVPM_VK_2 0x32
#define TVPM_VK_3 0x33
#define TVPM_VK_4 0x34
#define TVPM_VK_5 0x35
#define TVPM_VK_6 0x36
#define TVPM_VK_7 0x37
#define TVPM_VK_8 0x38
#define TVPM_VK_9 0x39
#define TVPM_VK_A 0x41
#define TVPM_VK_B 0x42
#define TVPM_VK_C 0x43
#define TVPM_VK_D 0x44
#define TVPM_VK_E 0x45
#define TVPM_VK_F 0x46
#define TVPM_VK_G 0x47
#define TVPM_VK_H 0x48
#define TVPM_VK_I 0x49
#define TVPM_VK_J 0x4A
#define TVPM_VK_K 0x4B
#define TVPM_VK_L 0x4C
#define TVPM_VK_M 0x4D
#define TVPM_VK_N 0x4E
#define TVPM_VK_O 0x4F
#define TVPM_VK_P 0x50
#define TVPM_VK_Q 0x51
#define TVPM_VK_R 0x52
#define TVPM_VK_S 0x53
#define TVPM_VK_T 0x54
#define TVPM_VK_U 0x55
#define TVPM_VK_V 0x56
#define TVPM_VK_W 0x57
#define TVPM_VK_X 0x58
#define TVPM_VK_Y 0x59
#define TVPM_VK_Z 0x5A
#define TVPM_VK_NUMPAD0 0x60
#define TVPM_VK_NUMPAD1 0x61
#define TVPM_VK_NUMPAD2 0x62
#define TVPM_VK_NUMPAD3 0x63
#define TVPM_VK_NUMPAD4 0x64
#define TVPM_VK_NUMPAD5 0x65
#define TVPM_VK_NUMPAD6 0x66
#define TVPM_VK_NUMPAD7 0x67
#define TVPM_VK_NUMPAD8 0x68
#define TVPM_VK_NUMPAD9 0x69
#define TVPM_VK_MULTIPLY 0x6A
#define TVPM_VK_ADD 0x6B
#define TVPM_VK_SUBTRACT 0x6D
#define TVPM_VK_DECIMAL 0x6E
#define TVPM_VK_DIVIDE 0x6F
#define TVPM_VK_F1 0x70
#define TVPM_VK_F2 0x71
#define TVPM_VK_F3 0x72
#define TVPM_VK_F4 0x73
#define TVPM_VK_F5 0x74
#define TVPM_VK_F6 0x75
#define TVPM_VK_F7 0x76
#define TVPM_VK_F8 0x77
#define TVPM_VK_F9 0x78
#define TVPM_VK_F10 0x79
#define TVPM_VK_F11 0x7A
#define TVPM_VK_F12 0x7B
#define TVPM_VK_F13 0x7C
#define TVPM_VK_F14 0x7D
#define TVPM_VK_F15 0x7E
#define TVPM_VK_F16 0x7F
#define TVPM_VK_F17 0x80
#define TVPM_VK_F18 0x81
#define TVPM_VK_F19 0x82
#define TVPM_VK_F20 0x83
#define TVPM_VK_F21 0x84
#define TVPM_VK_F22 0x85
#define TVPM_VK_F23 0x86
#define TVPM_VK_F24 0x87
#define TVPM_VK_EQUAL 0xB0
#define TVPM_VK_MINUS 0xB1
#define TVPM_VK_RBRACE 0xB2
#define TVPM_VK_LBRACE 0xB3
#define TVPM_VK_QUOTE 0xB4
#define TVPM_VK_SEMICOLON 0xB5
#define TVPM_VK_BACKSLASH 0xB6
#define TVPM_VK_COMMA 0xB7
#define TVPM_VK_SLASH 0xB8
#define TVPM_VK_PERIOD 0xB9
#define TVPM_VK_BACKQUOTE 0xBA
#define TVPM_VK_ENTER 0xBB
#define TVPM_VK_NUMPAD_ENT 0xBC
#define TVPM_VK_NUMPAD_EQ 0xBD

/* ------------------------------------------------------------------------ */
/* Mouse and cursor                                                          */

typedef int TVPMMouseStatus;
enum {
    tvpm_MouseDown = 1,
    tvpm_MouseDrag = 2,
    tvpm_MouseUp = 3
};

/* What a cursor callback asks the simulator to show. Values 4 to 24 are
 * further cursor shapes of the simulator, passed through unchanged. */
typedef int TVPMCursorStatus;
enum {
    tvpm_CursorDefault = 0,
    tvpm_CursorHidden = 1,
    tvpm_CursorArrow = 2,
    tvpm_CursorCustom = 3,
    tvpm_CursorRotateSmall = 4,
    tvpm_CursorRotateSmallLeft = 5,
    tvpm_CursorRotateSmallRight = 6,
    tvpm_CursorRotateMedium = 7,
    tvpm_CursorRotateMediumLeft = 8,
    tvpm_CursorRotateMediumRight = 9,
    tvpm_CursorRotateLarge = 10,
    tvpm_CursorRotateLargeLeft = 11,
    tvpm_CursorRotateLargeRight = 12,
    tvpm_CursorUpDown = 13,
    tvpm_CursorDown = 14,
    tvpm_CursorUp = 15,
    tvpm_CursorLeftRight = 16,
    tvpm_CursorLeft = 17,
    tvpm_CursorRight = 18,
    tvpm_CursorButton = 19,
    tvpm_CursorHandle = 20,
    tvpm_CursorFourArrows = 21,
    tvpm_CursorSplitterH = 22,
    tvpm_CursorSplitterV = 23,
    tvpm_CursorText = 24
};

/* ------------------------------------------------------------------------ */
/* Windows                                                                   */

/* A window handle [handle]. */
typedef void* TVPMWindowID;

typedef int TVPMWindowLayer;
enum {
    tvpm_WindowLayerFlightOverlay = 0,
    tvpm_WindowLayerFloatingWindows = 1,
    tvpm_WindowLayerModal = 2,
    tvpm_WindowLayerGrowlNotifications = 3
};

typedef int TVPMWindowDecoration;
enum {
    tvpm_WindowDecorationNone = 0,
    tvpm_WindowDecorationRoundRectangle = 1,
    tvpm_WindowDecorationSelfDecorated = 2,
    tvpm_WindowDecorationSelfDecoratedResizable = 3
};

/* ------------------------------------------------------------------------ */
/* Handles and identifiers of the simulator's own objects                    */

typedef int TVPMTextureID;
typedef int TVPMFontID;
typedef int TVPMNavRef;
typedef int TVPMNavType;
typedef int TVPMNavFlightPlan;
typedef int TVPMMapLayerType;
typedef int TVPMMapOrientation;
typedef int TVPMMapStyle;
typedef void* TVPMMapProjectionID;
typedef int TVPMDataFileType;
typedef int TVPMCommandKeyID;
typedef int TVPMCommandButtonID;
/* A simulator command [handle owned by the simulator]. */
typedef void* TVPMCommandRef;

/* Structures defined by their family headers and passed through unchanged to
 * the simulator. */
typedef struct TVPMCreateAvionics_t TVPMCreateAvionics_t;
typedef struct TVPMPlaneDrawState_t TVPMPlaneDrawState_t;
typedef struct TVPMWeatherInfo_t TVPMWeatherInfo_t;

/* Receives one monitor's bounds: monitor index, left, top, right, bottom. */
typedef void (*TVPMReceiveMonitorBoundsGlobal_f)(int inMonitorIndex, int inLeftBx, int inTopBx,
                                                 int inRightBx, int inBottomBx, void* inRefcon);
typedef void (*TVPMReceiveMonitorBoundsOS_f)(int inMonitorIndex, int inLeftPx, int inTopPx,
                                             int inRightPx, int inBottomPx, void* inRefcon);

#endif /* TVPMDefs_h */
