// TVPMUtilitiesCommands.cpp: commands and command handlers (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMDoRepeatedButtons() {}
void TVPMCommandRepeatHook() {}
int TVPMDispatchCommandHook(void*, int, int, int) { return 1; }
void TVPMCommandCleanupHook(TVPMPluginID) {}
