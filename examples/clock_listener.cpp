// clock_listener.cpp: example plugin: shares data with panel_clock, reads the data items it publishes, and follows simulator messages.
//
// Plugins load in name order, so this one starts before panel_clock: its
// data items do not exist yet. Two ways to cope are shown: shared data
// (whoever shares first creates it, the other just joins), and asking TVPM
// to say when new data items appear (the TVPM_WANTS_DATAREF_NOTIFICATIONS
// feature), then looking the item up again.
#include <cstdio>
#include <cstring>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

namespace {

const char* const kTicksItem = "tvpm/examples/shared/ticks";
const char* const kElapsedItem = "tvpm/examples/panel_clock/elapsed_sec";
const int kReportEvery = 2;  // seconds

struct Listener {
    TVPMDataRef ticks = nullptr, elapsed = nullptr, airspeed = nullptr;
    int notifications = 0;
} g;

void Log(const char* text) {
    char line[256];
    snprintf(line, sizeof line, "Clock Listener: %s\n", text);
    TVPMDebugString(line);
}

// Called, with this plugin current, every time any plugin writes the shared item.
void OnTicksChanged(void*) {
    ++g.notifications;
    const int ticks = TVPMGetDatai(g.ticks);
    if (ticks == 0 || ticks % kReportEvery) return;
    char text[160];
    // TVPMIsDataRefGood: the publisher may have gone away (the handle stays
    // valid, reads then give 0).
    snprintf(text, sizeof text, "tick %d, panel clock at %.2f s, airspeed %.1f kt", ticks,
             TVPMIsDataRefGood(g.elapsed) ? TVPMGetDataf(g.elapsed) : -1.0f, TVPMGetDataf(g.airspeed));
    Log(text);
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Clock Listener");
    strcpy(outSignature, "tvpm.examples.clock_listener");
    strcpy(outDescription, "Follows the panel clock through shared data.");
    TVPMEnableFeature("TVPM_WANTS_DATAREF_NOTIFICATIONS", 1);
    // Subscribing: the callback runs whenever the value is written.
    TVPMShareData(kTicksItem, tvpmType_Int, OnTicksChanged, nullptr);
    g.ticks = TVPMFindDataRef(kTicksItem);
    g.airspeed = TVPMFindDataRef("sim/flightmodel/position/indicated_airspeed");
    g.elapsed = TVPMFindDataRef(kElapsedItem);  // null until panel_clock has started
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {
    char text[64];
    snprintf(text, sizeof text, "%d tick notifications", g.notifications);
    Log(text);
    TVPMUnshareData(kTicksItem, tvpmType_Int, OnTicksChanged, nullptr);
    g = Listener();
}

TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }

TVPM_PLUGIN_API void TPluginDisable(void) {}

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID inFrom, int inMessage, void* inParam) {
    (void)inFrom;
    switch (inMessage) {
        case TVPM_MSG_DATAREFS_ADDED:  // inParam: int* total number of items
            if (!g.elapsed) g.elapsed = TVPMFindDataRef(kElapsedItem);
            break;
        case TVPM_MSG_PLANE_LOADED:  // inParam: the aircraft's index, 0 = the user's
            if (reinterpret_cast<intptr_t>(inParam) == 0) Log("the user's aircraft was loaded");
            break;
        case TVPM_MSG_PLANE_UNLOADED:
            if (reinterpret_cast<intptr_t>(inParam) == 0) Log("the user's aircraft was unloaded");
            break;
        default:
            break;
    }
}
