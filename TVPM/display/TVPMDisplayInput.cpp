// TVPMDisplayInput.cpp: key sniffers and the routing of mouse, cursor, scroll-wheel and key events to windows and sniffers.
#include "TVPMDisplayPrivate.h"
#include "TVPMUnitHooks.h"

// Never destroyed: records still listed at exit erase themselves from it.
TVPMRecordIndex<TVPMKeyCallbackRecord>& TVPMKeySnifferKeys() {
    static auto* keys = new TVPMRecordIndex<TVPMKeyCallbackRecord>;
    return *keys;
}
TVPMResourceList<TVPMKeyCallbackRecord> gKeyCallbacks;

TVPM_FAMILY_RECORD_COUNT("key sniffers",
                         [](TVPMPluginID id) { return gKeyCallbacks.CountOwnedBy(id); });

namespace {

constexpr int kNotConsumed = 1;
constexpr int kConsumed = 0;

enum KeyPhase { kKeyPhaseBeforeWindows = 0, kKeyPhaseWindows = 1, kKeyPhaseAfterWindows = 2 };

TVPMHandleMouseClick_f HandlerForButton(const TVPMWindow* w, int button) {
    if (button == 0) return w->mouseCallback;
    if (button == 1) return w->mouseRightClickCallback;
    return nullptr;
}

// Left and bottom edges are inside the window, right and top edges outside.
bool Contains(const TVPMWindow* w, int x, int y) {
    return w->leftNonGui <= x && x < w->rightNonGui && w->bottomNonGui <= y && y < w->topNonGui;
}

bool should_deliver_mouse_hook(const TVPMWindow* w, int x, int y, void* inFixedWindow) {
    if (w->is_dead() || !w->visible) return false;
    if (w == inFixedWindow) return true;
    if (inFixedWindow) return false;
    if (w->isGuiBacked) return false;
    return Contains(w, x, y);
}

int MouseDown(int x, int y, int button, void* inFixedWindow) {
    for (TVPMWindowWalk walk(TVPMWindowWalk::kFrontToBack); TVPMWindow* w = walk.Next();) {
        if (!should_deliver_mouse_hook(w, x, y, inFixedWindow)) continue;
        TVPMHandleMouseClick_f handler = HandlerForButton(w, button);
        if (!handler) continue;
        int took = 0;
        TVPMCallPlugin(w->plugin, TVPMCallSite::kWindow,
                       [&] { took = handler(w, x, y, tvpm_MouseDown, w->refcon); });
        if (!took) continue;
        // A handler that destroyed its own window still consumed the click,
        // but nothing is left to capture the mouse.
        if (!w->is_dead()) {
            gDragWindow = w;
            gDragWindowReceivedDownClickFromBtn = button;
        }
        return kConsumed;
    }
    return kNotConsumed;
}

// Drags and the mouse-up go to the window that took the mouse-down, wherever
// the mouse is; the button of each event chooses the handler. The capture ends
// before the mouse-up handler runs, so that a handler disabling its own plugin
// is not sent a second, synthetic mouse-up.
int MouseDragOrUp(int x, int y, TVPMMouseStatus status, int button, void* inFixedWindow) {
    TVPMListHold<TVPMWindow> hold(gWindows);
    TVPMWindow* w = gDragWindow;
    if (status == tvpm_MouseUp) TVPMDisplayClearDrag();
    if (!w || (w != inFixedWindow && (inFixedWindow || w->isGuiBacked))) return kNotConsumed;
    TVPMHandleMouseClick_f handler = HandlerForButton(w, button);
    if (!handler) return kNotConsumed;
    const TVPMCalled called = TVPMCallPlugin(w->plugin, TVPMCallSite::kWindow,
                                             [&] { handler(w, x, y, status, w->refcon); });
    return called == TVPMCalled::kNo ? kNotConsumed : kConsumed;
}

int AskSniffer(const TVPMKeyCallbackRecord* r, char charCode, TVPMKeyFlags flags,
               char virtualCode) {
    int passOn = 1;
    TVPMCallPlugin(r->plugin, TVPMCallSite::kKey,
                   [&] { passOn = r->callback(charCode, flags, virtualCode, r->refcon); });
    return passOn == 0 ? kConsumed : kNotConsumed;
}

int KeyBeforeWindows(char charCode, TVPMKeyFlags flags, char virtualCode) {
    for (TVPMWalk<TVPMKeyCallbackRecord> walk(gKeyCallbacks); auto* r = walk.Next();)
        if (r->beforeWindows && AskSniffer(r, charCode, flags, virtualCode) == kConsumed)
            return kConsumed;
    return TVPMDisplayFireHotKey(flags, virtualCode) ? kConsumed : kNotConsumed;
}

// A focused window always consumes the key.
int KeyToFocusWindow(char charCode, TVPMKeyFlags flags, char virtualCode, void* inFixedWindow) {
    TVPMWindow* w = gFocusWindow;
    if (!w || (inFixedWindow && inFixedWindow != w)) return kNotConsumed;
    const TVPMCalled called = TVPMCallPlugin(w->plugin, TVPMCallSite::kWindow, [&] {
        if (w->keyCallback) w->keyCallback(w, charCode, flags, virtualCode, w->refcon, 0);
    });
    return called == TVPMCalled::kNo ? kNotConsumed : kConsumed;
}

// Unlike the other walks, this one also asks sniffers that were unregistered
// while it runs; kept so on purpose.
int KeyAfterWindows(char charCode, TVPMKeyFlags flags, char virtualCode) {
    TVPMWalk<TVPMKeyCallbackRecord, TVPMVisit::kLiveAndRemoved> walk(gKeyCallbacks);
    while (TVPMKeyCallbackRecord* r = walk.Next())
        if (!r->beforeWindows && AskSniffer(r, charCode, flags, virtualCode) == kConsumed)
            return kConsumed;
    return kNotConsumed;
}

bool SameSniffer(const TVPMKeyCallbackRecord* r, TVPMKeySniffer_f cb, int before, void* ref) {
    return r->callback == cb && r->beforeWindows == before && r->refcon == ref;
}

}  // namespace

// ---- Mouse ---------------------------------------------------------------------------

int TVPMDisplayMouseClickHook(int inX, int inY, TVPMMouseStatus inStatus, int button_0_or_1,
                              void* inFixedWindow) {
    TVPM_CHECK_THREAD();
    if (inStatus == tvpm_MouseDown) return MouseDown(inX, inY, button_0_or_1, inFixedWindow);
    if (inStatus == tvpm_MouseDrag || inStatus == tvpm_MouseUp)
        return MouseDragOrUp(inX, inY, inStatus, button_0_or_1, inFixedWindow);
    return kNotConsumed;
}

// The window holding the mouse gets a drag every frame, moved or not.
void TVPMDisplayMouseDragHook(void* inFixedWindow) {
    TVPM_CHECK_THREAD();
    if (!inFixedWindow && !gDragWindow) return;
    int x = 0, y = 0;
    TVPMDisplayReadMouse(gDragWindow, x, y);
    TVPMDisplayMouseClickHook(x, y, tvpm_MouseDrag, gDragWindowReceivedDownClickFromBtn,
                              inFixedWindow);
}

TVPMCursorStatus TVPMDisplayCursorHook(int inX, int inY, void* inFixedWindow) {
    TVPM_CHECK_THREAD();
    for (TVPMWindowWalk walk(TVPMWindowWalk::kFrontToBack); TVPMWindow* w = walk.Next();) {
        if (!should_deliver_mouse_hook(w, inX, inY, inFixedWindow)) continue;
        if (!w->handleCursorCallback) continue;
        TVPMCursorStatus cursor = tvpm_CursorDefault;
        TVPMCallPlugin(w->plugin, TVPMCallSite::kWindow,
                       [&] { cursor = w->handleCursorCallback(w, inX, inY, w->refcon); });
        if (cursor != tvpm_CursorDefault) return cursor;
    }
    return tvpm_CursorDefault;
}

int TVPMDisplayScrollWheelHook(int inX, int inY, int inWheel, int inClicks, void* inFixedWindow) {
    TVPM_CHECK_THREAD();
    for (TVPMWindowWalk walk(TVPMWindowWalk::kFrontToBack); TVPMWindow* w = walk.Next();) {
        if (!should_deliver_mouse_hook(w, inX, inY, inFixedWindow)) continue;
        if (!w->handleMouseWheelCallback) continue;
        int took = 0;
        TVPMCallPlugin(w->plugin, TVPMCallSite::kWindow, [&] {
            took = w->handleMouseWheelCallback(w, inX, inY, inWheel, inClicks, w->refcon);
        });
        if (took) return kConsumed;
    }
    return kNotConsumed;
}

// ---- Keys ----------------------------------------------------------------------------

// The simulator calls this with phase 0, 1 and 2 in turn, stopping at the
// first call that consumes the key.
int TVPMDisplayKeyPressHook(char charCode, TVPMKeyFlags flags, char virtualCode, int phase,
                            void* inFixedWindow) {
    TVPM_CHECK_THREAD();
    if (!flags && !charCode && !virtualCode) return kNotConsumed;
    switch (phase) {
        case kKeyPhaseBeforeWindows: return KeyBeforeWindows(charCode, flags, virtualCode);
        case kKeyPhaseWindows: return KeyToFocusWindow(charCode, flags, virtualCode, inFixedWindow);
        case kKeyPhaseAfterWindows: return KeyAfterWindows(charCode, flags, virtualCode);
        default: return kNotConsumed;
    }
}

TVPM_API int TVPMRegisterKeySniffer(TVPMKeySniffer_f inCallback, int inBeforeWindows,
                                    void* inRefcon) {
    TVPM_CHECK_THREAD();
    if (!inCallback) return 0;
    TVPMWalk<TVPMKeyCallbackRecord> walk(gKeyCallbacks);
    if (TVPMKeySnifferKeys().Any(TVPMCallbackKey(inCallback, inBeforeWindows, 0, inRefcon),
                                 [](const TVPMKeyCallbackRecord* r) { return !r->is_dead(); }))
        return 0;
    gKeyCallbacks.Add(
        new TVPMKeyCallbackRecord(inCallback, gDispatchedPlugin, inBeforeWindows, inRefcon));
    return 1;
}

TVPM_API int TVPMUnregisterKeySniffer(TVPMKeySniffer_f inCallback, int inBeforeWindows,
                                      void* inRefcon) {
    TVPM_CHECK_THREAD();
    TVPMKeyCallbackRecord* found = nullptr;
    {
        TVPMWalk<TVPMKeyCallbackRecord> walk(gKeyCallbacks);
        while (auto* r = walk.Next())
            if (SameSniffer(r, inCallback, inBeforeWindows, inRefcon)) {
                found = r;
                break;
            }
    }
    if (!found) return 0;
    gKeyCallbacks.Remove(found);
    return 1;
}
