// TVPMDisplay.cpp: draw callbacks, windows, input routing and hot keys (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMDisplayEnableHook(TVPMPluginID) {}
void TVPMDisplayDisablePrePluginDisableHook(TVPMPluginID) {}
void TVPMDisplayDisablePostPluginDisableHook(TVPMPluginID) {}
void TVPMDisplaySyncGuiWindowStateWithPluginHook(TVPMPluginID, int) {}
void TVPMDisplayCleanupHook(TVPMPluginID) {}
int TVPMDisplayNeedsDrawingHook(TVPMDrawingHookKind, int) { return 0; }
int TVPMDisplayDoDrawingHook(TVPMDrawingHookKind, int, void*) { return 1; }
int TVPMDisplayMouseClickHook(int, int, TVPMMouseStatus, int, void*) { return 1; }
int TVPMDisplayKeyPressHook(char, TVPMKeyFlags, char, int, void*) { return 1; }
TVPMCursorStatus TVPMDisplayCursorHook(int, int, void*) { return 0; }
int TVPMDisplayScrollWheelHook(int, int, int, int, void*) { return 1; }
