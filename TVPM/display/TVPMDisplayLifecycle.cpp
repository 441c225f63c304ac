// TVPMDisplayLifecycle.cpp: what the display unit does when a plugin is enabled, disabled or unloaded.
#include "TVPMDisplayPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMDisplayEnableHook(TVPMPluginID id) {
    for (TVPMWindowWalk walk(TVPMWindowWalk::kFrontToBack); TVPMWindow* w = walk.Next();)
        if (w->plugin == id && w->isGuiBacked && w->visible) gHooks->TVPMShowGuiPluginWindow_f(w);
}

void TVPMDisplayDisablePrePluginDisableHook(TVPMPluginID id) {
    if (gFocusWindow && gFocusWindow->plugin == id) TVPMDisplayTakeFocus(nullptr);
    if (gDragWindow && gDragWindow->plugin == id) {
        int x = 0, y = 0;
        TVPMDisplayReadMouse(gDragWindow, x, y);
        TVPMDisplayMouseClickHook(x, y, tvpm_MouseUp, gDragWindowReceivedDownClickFromBtn, nullptr);
    }
}

void TVPMDisplayDisablePostPluginDisableHook(TVPMPluginID id) {
    for (TVPMWindowWalk walk(TVPMWindowWalk::kFrontToBack); TVPMWindow* w = walk.Next();)
        if (w->plugin == id && w->isGuiBacked) gHooks->TVPMHideGuiPluginWindow_f(w);
}

void TVPMDisplaySyncGuiWindowStateWithPluginHook(TVPMPluginID id, int enabled) {
    for (TVPMWindowWalk walk(TVPMWindowWalk::kFrontToBack); TVPMWindow* w = walk.Next();) {
        if (w->plugin != id || !w->isGuiBacked) continue;
        const bool shown = TVPMGetWindowIsVisible(w) != 0;
        const bool wanted = enabled && w->visible;
        if (wanted && !shown) gHooks->TVPMShowGuiPluginWindow_f(w);
        else if (!wanted && shown) gHooks->TVPMHideGuiPluginWindow_f(w);
    }
}

// Releases in a fixed order: draw callbacks, key sniffers, avionics, windows
// (each losing focus and mouse first), hot keys.
void TVPMDisplayCleanupHook(TVPMPluginID id) {
    gDrawCallbacks.RemoveOwnedBy(id);
    gKeyCallbacks.RemoveOwnedBy(id);
    TVPMDisplayAvionicsCleanupHook(id);
    // Front to back. The owner is disabled by now, so no focus-loss call runs.
    gWindows.RemoveOwnedBy(id, TVPMDisplayReleaseWindow);
    gHotKeys.RemoveOwnedBy(id);
}
