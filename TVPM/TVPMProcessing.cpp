// TVPMProcessing.cpp: the flight-loop scheduler (only the pass frame so far: the pass counter and the scheduled reload).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {
int s_pass_counter = 0;
}

void TVPMDoFlightLoopProcessing(float, int) {
    ++s_pass_counter;
    // A reload asked for during the pass runs only once the walk is over, so
    // that no callback's plugin is unloaded under it.
    if (gScheduleReload) TVPMReloadPluginsInternal();
}

void TVPMProcessingCleanupHook(TVPMPluginID) {}
