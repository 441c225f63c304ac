// TVPMInstance.cpp: object instances (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMInstanceEnableHook(TVPMPluginID) {}
void TVPMInstanceDisableHook(TVPMPluginID) {}
void TVPMInstanceCleanupHook(TVPMPluginID) {}
