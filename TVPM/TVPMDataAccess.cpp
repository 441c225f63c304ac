// TVPMDataAccess.cpp: the registry of published data items (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMPublishBuildString(const char*) {}
bool TVPMDataRefsCheckForNew(int&) { return false; }
void TVPMDataRefsCleanupHook(TVPMPluginID) {}
