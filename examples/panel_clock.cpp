// panel_clock.cpp: example plugin: a menu item tied to a command it creates, a flight loop that updates a data item it publishes, and a window.
//
// A tour of the usual shape of a plugin:
//   TPluginStart   creates everything the plugin needs for its whole life;
//   TPluginEnable  / TPluginDisable  are where a plugin would start and stop
//                  talking to hardware or the network (TVPM already stops
//                  calling a disabled plugin's callbacks on its own);
//   TPluginStop    releases everything TPluginStart created, in reverse order.
// TVPM cleans up after a plugin that forgets, but `tvpm-host --check` reports
// everything it had to clean up: release what you create.
//
// Every callback runs on the simulator's main thread, with this plugin as
// the "current plugin"; never call TVPM from a thread of your own.
#include <cstdio>
#include <cstring>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"

namespace {

// Names other plugins use to find what this one publishes. Prefix them with
// something unique to you; "sim/" belongs to the simulator.
const char* const kElapsedItem = "tvpm/examples/panel_clock/elapsed_sec";
const char* const kVisibleItem = "tvpm/examples/panel_clock/window_visible";
const char* const kTicksItem = "tvpm/examples/shared/ticks";  // shared with clock_listener
const char* const kToggleCommand = "tvpm/examples/panel_clock/toggle_window";

// The plugin's state. Plain globals are fine: everything runs on one thread.
struct Clock {
    float elapsed = 0;  // seconds on the clock since it was last reset
    int ticks = 0;      // whole seconds, published as shared data
    int framesDrawn = 0;
    TVPMDataRef elapsedItem = nullptr, visibleItem = nullptr, ticksItem = nullptr;
    TVPMCommandRef toggle = nullptr;
    TVPMMenuID menu = nullptr;
    TVPMWindowID window = nullptr;
    TVPMFlightLoopID loop = nullptr;
    TVPMHotKeyID hotKey = nullptr;
} g;

// ---- the published data items: TVPM calls these accessors when anyone reads
// ---- or writes the item; the refcon is whatever was given at registration.

float ReadElapsed(void*) { return g.elapsed; }
int ReadVisible(void*) { return TVPMGetWindowIsVisible(g.window); }
void WriteVisible(void*, int visible) { TVPMSetWindowIsVisible(g.window, visible != 0); }

// ---- the flight loop: called once per frame after the flight model.

float OnFlightLoop(float sinceLastCall, float /*simTime*/, int /*counter*/, void*) {
    g.elapsed += sinceLastCall;
    if (static_cast<int>(g.elapsed) != g.ticks) {
        g.ticks = static_cast<int>(g.elapsed);
        // Writing shared data notifies every plugin that subscribed to it.
        TVPMSetDatai(g.ticksItem, g.ticks);
    }
    return -1;  // negative: call again in 1 flight-loop pass, i.e. next frame
}

// ---- the command: the menu item and the hot key both run it.

int OnToggle(TVPMCommandRef, TVPMCommandPhase phase, void*) {
    if (phase == tvpm_CommandBegin) TVPMSetWindowIsVisible(g.window, !TVPMGetWindowIsVisible(g.window));
    return 1;  // 1: let other handlers (and the simulator) see the command too
}

void OnHotKey(void*) { TVPMCommandOnce(g.toggle); }

// ---- the menu: plain items arrive here with the item's refcon.

void OnMenu(void*, void* item) {
    if (item == &g.elapsed) g.elapsed = 0;  // "Reset Clock"
}

// ---- the window.

void DrawWindow(TVPMWindowID, void*) { ++g.framesDrawn; }
int MouseClick(TVPMWindowID, int, int, TVPMMouseStatus, void*) { return 1; }  // 1: consumed
void Key(TVPMWindowID, char, TVPMKeyFlags, char, void*, int) {}

void CreateWindow() {
    TVPMCreateWindow_t params;
    memset(&params, 0, sizeof params);
    params.structSize = sizeof params;  // 88: a window the simulator draws a frame around
    params.left = 50;
    params.top = 400;
    params.right = 250;
    params.bottom = 340;
    params.visible = 1;
    params.drawWindowFunc = DrawWindow;
    params.handleMouseClickFunc = MouseClick;
    params.handleKeyFunc = Key;
    params.decorateAsFloatingWindow = tvpm_WindowDecorationRoundRectangle;
    params.layer = tvpm_WindowLayerFloatingWindows;
    g.window = TVPMCreateWindowEx(&params);
    TVPMSetWindowTitle(g.window, "Panel Clock");
}

void CreateMenu() {
    // A null parent hangs the menu on a new item of the shared "Plugins" menu.
    g.menu = TVPMCreateMenu("Panel Clock", nullptr, 0, OnMenu, nullptr);
    TVPMAppendMenuItemWithCommand(g.menu, "Show/Hide Clock", g.toggle);
    TVPMAppendMenuSeparator(g.menu);
    TVPMAppendMenuItem(g.menu, "Reset Clock", &g.elapsed, 0);
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    // Each buffer holds 256 bytes. The signature must be unique: reverse-DNS style.
    strcpy(outName, "Panel Clock");
    strcpy(outSignature, "tvpm.examples.panel_clock");
    strcpy(outDescription, "Publishes a clock, shares a tick count, and shows both in a window.");

    g.elapsedItem = TVPMRegisterDataAccessor(kElapsedItem, tvpmType_Float, 0, nullptr, nullptr, ReadElapsed,
                                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, nullptr);
    g.visibleItem = TVPMRegisterDataAccessor(kVisibleItem, tvpmType_Int, 1, ReadVisible, WriteVisible, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, nullptr);
    // Shared data has no owner: whoever shares it first creates it, and it
    // outlives every plugin. This plugin only writes it, so no callback.
    TVPMShareData(kTicksItem, tvpmType_Int, nullptr, nullptr);
    g.ticksItem = TVPMFindDataRef(kTicksItem);

    g.toggle = TVPMCreateCommand(kToggleCommand, "Show or hide the panel clock");
    TVPMRegisterCommandHandler(g.toggle, OnToggle, 1, nullptr);
    g.hotKey = TVPMRegisterHotKey(TVPM_VK_F8, tvpm_DownFlag | tvpm_ControlFlag, "Show or hide the panel clock",
                                  OnHotKey, nullptr);
    CreateMenu();
    CreateWindow();

    TVPMCreateFlightLoop_t loop = {static_cast<int>(sizeof loop), tvpm_FlightLoop_Phase_AfterFlightModel, OnFlightLoop, nullptr};
    g.loop = TVPMCreateFlightLoop(&loop);
    TVPMScheduleFlightLoop(g.loop, -1, 1);  // created unscheduled: start it now
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {
    char line[128];
    snprintf(line, sizeof line, "Panel Clock: stopped after %.1f s, window drawn %d times\n", g.elapsed,
             g.framesDrawn);
    TVPMDebugString(line);
    TVPMDestroyFlightLoop(g.loop);
    TVPMDestroyWindow(g.window);
    // Destroying a menu leaves the item that led to it in its parent, here
    // the shared "Plugins" menu: clear this plugin's items there as well.
    TVPMDestroyMenu(g.menu);
    TVPMClearAllMenuItems(TVPMFindPluginsMenu());
    TVPMUnregisterHotKey(g.hotKey);
    TVPMUnregisterCommandHandler(g.toggle, OnToggle, 1, nullptr);
    TVPMUnregisterDataAccessor(g.visibleItem);
    TVPMUnregisterDataAccessor(g.elapsedItem);
    g = Clock();
}

TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }

TVPM_PLUGIN_API void TPluginDisable(void) {}

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
