// TVPMScenery.cpp: terrain probes and objects (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMSceneryCleanupHook(TVPMPluginID) {}
