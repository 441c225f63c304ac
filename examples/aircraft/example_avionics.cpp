// example_avionics.cpp: example aircraft plugin: loads with its aircraft, adds to the "<Aircraft>" menu, drives a simulator data item, customises a built-in screen and creates a device of its own.
//
// An aircraft plugin lives in <aircraft folder>/plugins/<name>/lin_x64/<name>.tvp.
// TVPM loads and enables it when the user's aircraft is loaded and disables
// and unloads it when the aircraft is unloaded, so TPluginStop runs every
// time the user changes aircraft: release everything there.
#include <cstdio>
#include <cstring>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"

namespace {

const float kRotateSpeed = 85.0f;  // knots
const float kCheckInterval = 0.5f;  // seconds
const TVPMDeviceID kMultiFunctionDisplay = 1;  // the simulator's device number

struct Avionics {
    TVPMDataRef airspeed = nullptr, tcasOverride = nullptr, icao = nullptr;
    TVPMCommandRef toggleTcas = nullptr;
    TVPMMenuID aircraftMenu = nullptr;
    int menuItem = -1;
    TVPMFlightLoopID loop = nullptr;
    bool rotated = false;
    TVPMAvionicsID overlay = nullptr, timer = nullptr;
    int overlayDraws = 0, timerDraws = 0, touches = 0, keys = 0;
} g;

void Log(const char* text) {
    char line[256];
    snprintf(line, sizeof line, "Example Avionics: %s\n", text);
    TVPMDebugString(line);
}

float WatchAirspeed(float, float, int, void*) {
    if (!g.rotated && TVPMGetDataf(g.airspeed) >= kRotateSpeed) {
        g.rotated = true;
        Log("rotate speed reached");
    }
    return kCheckInterval;  // positive: call again in this many seconds
}

int ToggleTcasOverride(TVPMCommandRef, TVPMCommandPhase phase, void*) {
    // A simulator data item a plugin may write: the override switch.
    if (phase == tvpm_CommandBegin) TVPMSetDatai(g.tcasOverride, !TVPMGetDatai(g.tcasOverride));
    return 1;
}

// ---- Avionics ----------------------------------------------------------------
// Callbacks run only while this plugin is enabled, with it as the current
// plugin. Drawing callbacks are timed as "avionics drawing".

// After the simulator has drawn its multi-function display: draw on top.
int DrawOverlay(TVPMDeviceID, int /*isBefore*/, void*) {
    ++g.overlayDraws;
    return 1;  // ignored after the screen; before it, 0 would hide the simulator's screen
}

// Our own device's screen, drawn every frame.
void DrawTimerScreen(void*) { ++g.timerDraws; }

// A touch on our screen: take the keyboard so that the pilot can type.
int TouchTimer(int, int, TVPMMouseStatus status, void*) {
    if (status == tvpm_MouseDown && ++g.touches == 1) TVPMTakeAvionicsKeyboardFocus(g.timer);
    return 1;  // consumed: the simulator does nothing more with it
}

int TimerKey(char, TVPMKeyFlags, char, void*, int losingFocus) {
    if (!losingFocus) ++g.keys;
    return 1;
}

void CustomiseAndCreateDevices() {
    // Unset callbacks stay null. The short form, TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE,
    // takes only the two drawing callbacks and the refcon.
    TVPMCustomizeAvionics_t overlay = {};
    overlay.structSize = TVPM_CUSTOMIZE_AVIONICS_SIZE;
    overlay.deviceId = kMultiFunctionDisplay;
    overlay.drawCallbackAfter = DrawOverlay;
    g.overlay = TVPMRegisterAvionicsCallbacksEx(&overlay);

    TVPMCreateAvionics_t timer = {};
    timer.structSize = TVPM_CREATE_AVIONICS_SIZE;
    timer.screenWidth = 200;
    timer.screenHeight = 100;
    timer.bezelWidth = 240;
    timer.bezelHeight = 140;
    timer.screenOffsetX = 20;
    timer.screenOffsetY = 20;
    timer.drawCallback = DrawTimerScreen;
    timer.screenTouchCallback = TouchTimer;
    timer.keyboardCallback = TimerKey;
    timer.deviceID = "tvpm_example_timer";
    timer.deviceName = "Example timer";
    g.timer = TVPMCreateAvionicsEx(&timer);
}

void ReleaseDevices() {
    char text[160];
    snprintf(text, sizeof text, "timer drawn %d times, %d touches, %d keys; display overlay drawn %d times",
             g.timerDraws, g.touches, g.keys, g.overlayDraws);
    Log(text);
    TVPMDestroyAvionics(g.timer);
    TVPMUnregisterAvionicsCallbacks(g.overlay);
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Example Avionics");
    strcpy(outSignature, "tvpm.examples.example_avionics");
    strcpy(outDescription, "The example aircraft's own systems.");
    g.airspeed = TVPMFindDataRef("sim/flightmodel/position/indicated_airspeed");
    g.tcasOverride = TVPMFindDataRef("sim/operation/override/override_TCAS");
    g.icao = TVPMFindDataRef("sim/aircraft/view/acf_ICAO");

    g.toggleTcas = TVPMCreateCommand("tvpm/examples/avionics/toggle_tcas_override", "Toggle the TCAS override");
    TVPMRegisterCommandHandler(g.toggleTcas, ToggleTcasOverride, 1, nullptr);
    // Only the user aircraft's plugins get the "<Aircraft>" menu.
    g.aircraftMenu = TVPMFindAircraftMenu();
    g.menuItem = TVPMAppendMenuItemWithCommand(g.aircraftMenu, "Toggle TCAS override", g.toggleTcas);

    TVPMCreateFlightLoop_t loop = {static_cast<int>(sizeof loop), tvpm_FlightLoop_Phase_BeforeFlightModel,
                                   WatchAirspeed, nullptr};
    g.loop = TVPMCreateFlightLoop(&loop);
    TVPMScheduleFlightLoop(g.loop, kCheckInterval, 1);
    CustomiseAndCreateDevices();

    char icao[40] = {0};
    TVPMGetDatab(g.icao, icao, 0, sizeof icao - 1);
    char text[80];
    snprintf(text, sizeof text, "started in a %s", icao[0] ? icao : "(unknown aircraft)");
    Log(text);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {
    ReleaseDevices();
    TVPMDestroyFlightLoop(g.loop);
    // The "<Aircraft>" menu is shared: remove only this plugin's item.
    if (g.menuItem >= 0) TVPMRemoveMenuItem(g.aircraftMenu, g.menuItem);
    TVPMUnregisterCommandHandler(g.toggleTcas, ToggleTcasOverride, 1, nullptr);
    g = Avionics();
}

TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }

TVPM_PLUGIN_API void TPluginDisable(void) {}

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
