// TVPMDisplayWindows.cpp: plugin windows: creation, destruction, stacking order, geometry, visibility and keyboard focus.
#include <algorithm>
#include <deque>

#include "TVPMDisplayPrivate.h"
#include "TVPMUnitHooks.h"

TVPMResourceList<TVPMWindowCallbackRecord> gWindows;
TVPMWindow* gFocusWindow = nullptr;
TVPMWindow* gDragWindow = nullptr;
int gDragWindowReceivedDownClickFromBtn = -1;

TVPM_FAMILY_RECORD_COUNT("windows", [](TVPMPluginID id) { return gWindows.CountOwnedBy(id); });

namespace {

constexpr int kCreateWindowPlainSize = 72;
constexpr int kCreateWindowGuiSize = 88;

// One copy of the stacking order per depth of gWindows' holds, which a window
// walk's own hold makes unique to it; a deque, so that growing it never moves
// a copy an outer walk is using.
std::deque<std::vector<TVPMWindow*>> s_walkOrders;

std::vector<TVPMWindow*>& AcquireWalkOrder() {
    const size_t depth = static_cast<size_t>(gWindows.IterationDepth());
    while (s_walkOrders.size() <= depth) s_walkOrders.emplace_back();
    std::vector<TVPMWindow*>& order = s_walkOrders[depth];
    order.clear();
    return order;
}

// The simulator's window bounds travel as int[4]: left, bottom, right, top.
enum { kBoundsLeft = 0, kBoundsBottom = 1, kBoundsRight = 2, kBoundsTop = 3 };

void CopyBoundsOut(const int bounds[4], int* outLeft, int* outTop, int* outRight,
                   int* outBottom) {
    if (outLeft) *outLeft = bounds[kBoundsLeft];
    if (outTop) *outTop = bounds[kBoundsTop];
    if (outRight) *outRight = bounds[kBoundsRight];
    if (outBottom) *outBottom = bounds[kBoundsBottom];
}

// The simulator takes window bounds as four ints: left, bottom, right, top.
struct HostBounds {
    HostBounds(int left, int top, int right, int bottom) {
        v[kBoundsLeft] = left;
        v[kBoundsBottom] = bottom;
        v[kBoundsRight] = right;
        v[kBoundsTop] = top;
    }
    int v[4];
};

void SetHostBounds(TVPMWindow* w, int left, int top, int right, int bottom) {
    HostBounds bounds(left, top, right, bottom);
    gHooks->TVPMSetGuiPluginWindowBounds_f(w, bounds.v);
}

void TellHostFocus(TVPMWindow* w) {
    gHooks->TVPMSetPluginMouseFocus_f(w && !w->isGuiBacked ? 1 : 0,
                                      w && w->isGuiBacked ? w : nullptr);
}

// The window whose focus-loss call is running, if any.
TVPMWindow* s_windowBeingToldOfLoss = nullptr;

class StTellingOfLoss {
public:
    explicit StTellingOfLoss(TVPMWindow* w) : outer(s_windowBeingToldOfLoss) {
        s_windowBeingToldOfLoss = w;
    }
    ~StTellingOfLoss() { s_windowBeingToldOfLoss = outer; }
    StTellingOfLoss(const StTellingOfLoss&) = delete;
    StTellingOfLoss& operator=(const StTellingOfLoss&) = delete;

private:
    TVPMWindow* outer;
};

// The focus-loss call: the window argument is the window taking the focus.
// The losing window keeps the focus while it is told, so a window that
// destroys or hides itself in this call starts a hand-over of its own; that
// one must not tell it again, or the two would never end.
void TellWindowItLosesFocus(TVPMWindow* losing, TVPMWindow* taking) {
    if (losing == s_windowBeingToldOfLoss || !losing->keyCallback) return;
    StTellingOfLoss telling(losing);
    TVPMCallPlugin(losing->plugin, TVPMCallSite::kWindow,
                   [&] { losing->keyCallback(taking, 0, 0, 0, losing->refcon, 1); });
}

TVPMWindow* NewWindow(int visible, TVPMDrawWindow_f draw, TVPMHandleKey_f key,
                      TVPMHandleMouseClick_f mouse, void* refcon) {
    TVPMWindow* w = new TVPMWindow;
    w->visible = visible;
    w->drawCallback = draw;
    w->keyCallback = key;
    w->mouseCallback = mouse;
    w->refcon = refcon;
    w->plugin = gDispatchedPlugin;
    return w;
}

void SetPlainRect(TVPMWindow* w, int left, int top, int right, int bottom) {
    w->leftNonGui = left;
    w->topNonGui = top;
    w->rightNonGui = right;
    w->bottomNonGui = bottom;
}

}  // namespace

// ---- Walks and look-up -------------------------------------------------------------

TVPMWindowWalk::TVPMWindowWalk(Direction d) : order(AcquireWalkOrder()) {
    for (TVPMWalk<TVPMWindow> walk(gWindows); TVPMWindow* w = walk.Next();) order.push_back(w);
    if (d == kBackToFront) std::reverse(order.begin(), order.end());
}

TVPMWindow* TVPMWindowWalk::Next() {
    while (pos < order.size()) {
        TVPMWindow* w = order[pos++];
        if (!w->is_dead()) return w;
    }
    return nullptr;
}

bool TVPMWindowIsValid(TVPMWindowID id) { return gWindows.Contains(id); }

// ---- Focus and destruction ------------------------------------------------------------

void TVPMDisplayTakeFocus(TVPMWindowID id) {
    TVPMListHold<TVPMWindow> hold(gWindows);
    TVPMWindow* w = TVPMFindWindow(id);
    if (w == gFocusWindow) return;
    if (w && !TVPMDisplayPluginEnabled(w->plugin)) return;
    if (gFocusWindow) TellWindowItLosesFocus(gFocusWindow, w);
    // Whatever the losing window did meanwhile, the focus goes where it was
    // asked to, unless that window is gone.
    if (w && w->is_dead()) w = nullptr;
    gFocusWindow = w;
    TellHostFocus(w);
}

bool TVPMDisplayReleaseWindow(TVPMWindow* w) {
    TVPMListHold<TVPMWindow> hold(gWindows);
    if (w == gFocusWindow) TVPMDisplayTakeFocus(nullptr);
    if (w->is_dead()) return false;  // its own focus-loss callback destroyed it
    if (w == gDragWindow) TVPMDisplayClearDrag();
    if (w->isGuiBacked) gHooks->TVPMDestroyGuiPluginWindow_f(w);
    return true;
}

void TVPMDisplayDestroyWindowRecord(TVPMWindow* w) {
    TVPMListHold<TVPMWindow> hold(gWindows);
    if (TVPMDisplayReleaseWindow(w)) gWindows.Remove(w);
}

// ---- Creation ------------------------------------------------------------------------

TVPM_API TVPMWindowID TVPMCreateWindow(int inLeft, int inTop, int inRight, int inBottom,
                                       int inIsVisible, TVPMDrawWindow_f inDrawCallback,
                                       TVPMHandleKey_f inKeyCallback,
                                       TVPMHandleMouseClick_f inMouseCallback, void* inRefcon) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = NewWindow(inIsVisible, inDrawCallback, inKeyCallback, inMouseCallback, inRefcon);
    SetPlainRect(w, inLeft, inTop, inRight, inBottom);
    gWindows.Add(w);
    return w;
}

TVPM_API TVPMWindowID TVPMCreateWindowEx(TVPMCreateWindow_t* inParams) {
    TVPM_CHECK_THREAD();
    if (!inParams) return nullptr;
    const int size = inParams->structSize;
    if (size != kCreateWindowPlainSize && size != kCreateWindowGuiSize) return nullptr;
    TVPMWindow* w = NewWindow(inParams->visible, inParams->drawWindowFunc, inParams->handleKeyFunc,
                              inParams->handleMouseClickFunc, inParams->refcon);
    w->handleCursorCallback = inParams->handleCursorFunc;
    w->handleMouseWheelCallback = inParams->handleMouseWheelFunc;
    // Read for both sizes on purpose: older callers zero the whole structure.
    w->mouseRightClickCallback = inParams->handleRightClickFunc;
    if (size == kCreateWindowPlainSize) {
        SetPlainRect(w, inParams->left, inParams->top, inParams->right, inParams->bottom);
        gWindows.Add(w);
        return w;
    }
    w->isGuiBacked = 1;
    if (inParams->layer >= tvpm_WindowLayerFlightOverlay &&
        inParams->layer <= tvpm_WindowLayerGrowlNotifications)
        w->layer = inParams->layer;
    w->decorateAsFloatingWindow = inParams->decorateAsFloatingWindow;
    gWindows.Add(w);
    gHooks->TVPMCreateGuiPluginWindow_f(w, w->decorateAsFloatingWindow, w->layer, w->visible);
    SetHostBounds(w, inParams->left, inParams->top, inParams->right, inParams->bottom);
    return w;
}

TVPM_API void TVPMDestroyWindow(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    if (TVPMWindow* w = TVPMFindWindow(inWindowID)) TVPMDisplayDestroyWindowRecord(w);
}

// ---- Geometry ------------------------------------------------------------------------

TVPM_API void TVPMGetWindowGeometry(TVPMWindowID inWindowID, int* outLeft, int* outTop,
                                    int* outRight, int* outBottom) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w) return;
    if (w->isGuiBacked) {
        int bounds[4] = {0, 0, 0, 0};
        gHooks->TVPMGetGuiPluginWindowBounds_f(w, bounds);
        CopyBoundsOut(bounds, outLeft, outTop, outRight, outBottom);
        return;
    }
    if (outLeft) *outLeft = w->leftNonGui;
    if (outTop) *outTop = w->topNonGui;
    if (outRight) *outRight = w->rightNonGui;
    if (outBottom) *outBottom = w->bottomNonGui;
}

TVPM_API void TVPMSetWindowGeometry(TVPMWindowID inWindowID, int inLeft, int inTop, int inRight,
                                    int inBottom) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w) return;
    if (w->isGuiBacked) SetHostBounds(w, inLeft, inTop, inRight, inBottom);
    else SetPlainRect(w, inLeft, inTop, inRight, inBottom);
}

TVPM_API void TVPMGetWindowGeometryOS(TVPMWindowID inWindowID, int* outLeft, int* outTop,
                                      int* outRight, int* outBottom) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w || !gHooks->TVPMWindowIsPoppedOut_f(w)) return;
    int bounds[4] = {0, 0, 0, 0};
    gHooks->TVPMGetPopoutWindowOSBounds_f(w, bounds);
    CopyBoundsOut(bounds, outLeft, outTop, outRight, outBottom);
}

TVPM_API void TVPMSetWindowGeometryOS(TVPMWindowID inWindowID, int inLeft, int inTop,
                                      int inRight, int inBottom) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w || !TVPMWindowIsPoppedOut(w)) return;
    HostBounds bounds(inLeft, inTop, inRight, inBottom);
    gHooks->TVPMSetPopoutWindowOSBounds_f(w, bounds.v);
}

TVPM_API int TVPMWindowIsPoppedOut(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    return w && w->isGuiBacked ? gHooks->TVPMWindowIsPoppedOut_f(w) : 0;
}

TVPM_API void TVPMGetWindowGeometryVR(TVPMWindowID inWindowID, int* outWidthBoxels,
                                      int* outHeightBoxels) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (w && w->isGuiBacked && gHooks->TVPMWindowIsInVr_f(w))
        gHooks->TVPMGetWindowVrSize_f(w, outWidthBoxels, outHeightBoxels);
}

TVPM_API void TVPMSetWindowGeometryVR(TVPMWindowID inWindowID, int inWidthBoxels,
                                      int inHeightBoxels) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (w && w->isGuiBacked && gHooks->TVPMWindowIsInVr_f(w))
        gHooks->TVPMSetWindowVrSize_f(w, inWidthBoxels, inHeightBoxels);
}

TVPM_API int TVPMWindowIsInVR(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    return w && w->isGuiBacked ? gHooks->TVPMWindowIsInVr_f(w) : 0;
}

// ---- Visibility, refcon, stacking ------------------------------------------------------

TVPM_API int TVPMGetWindowIsVisible(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w) return 0;
    return w->isGuiBacked ? gHooks->TVPMGuiPluginWindowIsVisible_f(w) : w->visible;
}

TVPM_API void TVPMSetWindowIsVisible(TVPMWindowID inWindowID, int inIsVisible) {
    TVPM_CHECK_THREAD();
    TVPMListHold<TVPMWindow> hold(gWindows);
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w) return;
    if (w->visible && !inIsVisible && w == gFocusWindow) {
        TVPMDisplayTakeFocus(nullptr);
        if (w->is_dead()) return;
    }
    w->visible = inIsVisible;
    if (!w->isGuiBacked) return;
    if (inIsVisible) gHooks->TVPMShowGuiPluginWindow_f(w);
    else gHooks->TVPMHideGuiPluginWindow_f(w);
}

TVPM_API void* TVPMGetWindowRefCon(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    return w ? w->refcon : nullptr;
}

TVPM_API void TVPMSetWindowRefCon(TVPMWindowID inWindowID, void* inRefcon) {
    TVPM_CHECK_THREAD();
    if (TVPMWindow* w = TVPMFindWindow(inWindowID)) w->refcon = inRefcon;
}

TVPM_API void TVPMBringWindowToFront(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w) return;
    if (w->isGuiBacked) gHooks->TVPMBringGuiWindowToFront_f(w);
    // Safe during walks: window walks run over a copy of the order.
    gWindows.MoveToFront(w);
}

TVPM_API int TVPMIsWindowInFront(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMWindow* w = TVPMFindWindow(inWindowID);
    if (!w) return 0;
    if (w->isGuiBacked) return gHooks->TVPMGuiWindowIsInFront_f(w) ? 1 : 0;
    for (TVPMWalk<TVPMWindow> walk(gWindows); TVPMWindow* h = walk.Next();)
        if (h->visible) return h == w ? 1 : 0;
    return 0;
}

// ---- Keyboard focus ---------------------------------------------------------------------

TVPM_API void TVPMTakeKeyboardFocus(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    TVPMDisplayTakeFocus(inWindowID);
}

TVPM_API int TVPMHasKeyboardFocus(TVPMWindowID inWindowID) {
    TVPM_CHECK_THREAD();
    return TVPMFindWindow(inWindowID) == gFocusWindow ? 1 : 0;
}
