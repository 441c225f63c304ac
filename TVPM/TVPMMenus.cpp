// TVPMMenus.cpp: plugin menus in the shared menus (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMInitMenus() {}
void TVPMMenuCleanupHook(TVPMPluginID) {}
int TVPMHandleMenuItemPick(int) { return 1; }
int TVPMHandleMenuItemCheck(intptr_t, int, int*) { return 1; }
int TVPMHandleMenuItemEnable(intptr_t, int) { return 1; }
