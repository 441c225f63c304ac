// TVPMDisplayPrivate.h: records, lists and helpers shared by the display units (drawing, windows, input, hot keys).
#pragma once

#include <string>
#include <vector>

#include "TVPM/TVPMDisplay.h"
#include "TVPMPrivate.h"
#include "TVPMRecordIndex.h"

// ---------------------------------------------------------------------------
// Records.

// The values each registration's duplicate rule compares, as index keys.
template <class Callback>
TVPMRecordKey TVPMCallbackKey(Callback cb, intptr_t a, intptr_t b, void* ref) {
    return {reinterpret_cast<uintptr_t>(cb), static_cast<uintptr_t>(a), static_cast<uintptr_t>(b),
            reinterpret_cast<uintptr_t>(ref)};
}
struct TVPMDrawCallbackRecord;
struct TVPMKeyCallbackRecord;
TVPMRecordIndex<TVPMDrawCallbackRecord>& TVPMDrawCallbackKeys();
TVPMRecordIndex<TVPMKeyCallbackRecord>& TVPMKeySnifferKeys();

struct TVPMDrawCallbackRecord : TVPMResource_t<TVPMDrawCallbackRecord> {
    TVPMDrawCallbackRecord(TVPMDrawCallback_f cb, TVPMPluginID who, TVPMDrawingPhase ph, int pre,
                           void* ref)
        : callback(cb), plugin(who), phase(ph), preCallback(pre), refcon(ref),
          indexed(TVPMDrawCallbackKeys(), TVPMCallbackKey(cb, ph, pre, ref), this) {}
    TVPMDrawCallback_f callback;
    TVPMPluginID plugin;
    TVPMDrawingPhase phase;
    int preCallback;  // as registered, not normalised
    void* refcon;
    TVPMIndexedKey<TVPMDrawCallbackRecord> indexed;
};

struct TVPMKeyCallbackRecord : TVPMResource_t<TVPMKeyCallbackRecord> {
    TVPMKeyCallbackRecord(TVPMKeySniffer_f cb, TVPMPluginID who, int before, void* ref)
        : callback(cb), plugin(who), beforeWindows(before), refcon(ref),
          indexed(TVPMKeySnifferKeys(), TVPMCallbackKey(cb, before, 0, ref), this) {}
    TVPMKeySniffer_f callback;
    TVPMPluginID plugin;
    int beforeWindows;
    void* refcon;
    TVPMIndexedKey<TVPMKeyCallbackRecord> indexed;
};

// Its address is the TVPMWindowID handed to the plugin.
struct TVPMWindowCallbackRecord : TVPMResource_t<TVPMWindowCallbackRecord> {
    int leftNonGui = 0, topNonGui = 0, rightNonGui = 0, bottomNonGui = 0;
    int visible = 0;
    int isGuiBacked = 0;
    TVPMWindowLayer layer = tvpm_WindowLayerFloatingWindows;
    TVPMWindowDecoration decorateAsFloatingWindow = tvpm_WindowDecorationNone;
    TVPMDrawWindow_f drawCallback = nullptr;
    TVPMHandleKey_f keyCallback = nullptr;
    TVPMHandleMouseClick_f mouseCallback = nullptr;
    TVPMHandleMouseClick_f mouseRightClickCallback = nullptr;
    TVPMHandleCursor_f handleCursorCallback = nullptr;
    TVPMHandleMouseWheel_f handleMouseWheelCallback = nullptr;
    TVPMPluginID plugin = TVPM_NO_PLUGIN_ID;
    void* refcon = nullptr;
};

// Its address is the TVPMHotKeyID.
struct TVPMHotKeyInfoRecord : TVPMResource_t<TVPMHotKeyInfoRecord> {
    TVPMHotKeyInfoRecord(TVPMPluginID who, char key, TVPMKeyFlags fl, const char* text,
                         TVPMHotKey_f cb, void* ref)
        : plugin(who), vkey(key), flags(fl), description(text ? text : ""), callback(cb),
          refcon(ref) {}
    TVPMPluginID plugin;
    char vkey;
    TVPMKeyFlags flags;
    std::string description;
    TVPMHotKey_f callback;
    void* refcon;
};

typedef TVPMWindowCallbackRecord TVPMWindow;

// ---------------------------------------------------------------------------
// Lists and state. gWindows is the stacking order: head front-most, tail back-most.

extern TVPMResourceList<TVPMDrawCallbackRecord> gDrawCallbacks;
extern TVPMResourceList<TVPMKeyCallbackRecord> gKeyCallbacks;
extern TVPMResourceList<TVPMWindowCallbackRecord> gWindows;
extern TVPMResourceList<TVPMHotKeyInfoRecord> gHotKeys;

extern TVPMWindow* gFocusWindow;
extern TVPMWindow* gDragWindow;
extern int gDragWindowReceivedDownClickFromBtn;

// ---------------------------------------------------------------------------
// Helpers.

// True while the ID names a live window of gWindows.
bool TVPMWindowIsValid(TVPMWindowID id);

// The live window with this ID, or null.
inline TVPMWindow* TVPMFindWindow(TVPMWindowID id) {
    return TVPMWindowIsValid(id) ? static_cast<TVPMWindow*>(id) : nullptr;
}

// Takes focus away from the focused window, if any (see TVPMTakeKeyboardFocus).
void TVPMDisplayTakeFocus(TVPMWindowID id);

// Releases a live window's focus and mouse and destroys the simulator's
// window, leaving the record to the caller. False when the window's own
// focus-loss callback destroyed it meanwhile.
bool TVPMDisplayReleaseWindow(TVPMWindow* w);

// Destroys a live window: released as above, then the record removed.
void TVPMDisplayDestroyWindowRecord(TVPMWindow* w);

// Ends any mouse capture.
inline void TVPMDisplayClearDrag() {
    gDragWindow = nullptr;
    gDragWindowReceivedDownClickFromBtn = -1;
}

// Reads the mouse position the way the capturing window sees it.
void TVPMDisplayReadMouse(const TVPMWindow* dragWindow, int& x, int& y);

// Sends the mouse a drag event once per frame (window-phase after hook point).
void TVPMDisplayMouseDragHook(void* inFixedWindow);

// Offers a key to the hot keys; true when one fired.
bool TVPMDisplayFireHotKey(TVPMKeyFlags flags, char virtualCode);

// Calls the draw callbacks of one phase and timing; the AND of their results.
int TVPMDispatchDrawingHook(TVPMDrawingPhase inPhase, int isBefore, int render_type);

// A walk of gWindows over the order the list had when the walk began.
// Callbacks may bring windows to the front during the walk; the list re-links
// such a record at once, which would send a link-following walk back to the
// head (forward) or end it early (backward). Walking a copy of the order
// visits every window that existed at the start exactly once, skipping those
// destroyed meanwhile. The copies' buffers are kept per nesting depth, so a
// steady state allocates nothing.
class TVPMWindowWalk {
public:
    enum Direction { kFrontToBack, kBackToFront };
    explicit TVPMWindowWalk(Direction d);
    TVPMWindowWalk(const TVPMWindowWalk&) = delete;
    TVPMWindowWalk& operator=(const TVPMWindowWalk&) = delete;

    // The next window that is still live, or null at the end.
    TVPMWindow* Next();

private:
    TVPMListHold<TVPMWindow> hold{gWindows};  // removals only mark while the copy is walked
    std::vector<TVPMWindow*>& order;
    size_t pos = 0;
};

// Called by TVPMDisplayCleanupHook between key sniffers and windows: removes the
// plugin's avionics records, asking the simulator to destroy each created
// device that has a display first. Defined by the avionics unit.
void TVPMDisplayAvionicsCleanupHook(TVPMPluginID id);
