// TVPMSound.cpp: sound buses and playback (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMDoFMODHousekeeping() {}
void TVPMFMODClearChannelGroupsInBank(TVPMPluginID, int) {}
void TVPMFMODDisableHook(TVPMPluginID) {}
void TVPMFMODCleanupHook(TVPMPluginID) {}
