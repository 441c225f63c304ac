// TVPMDisplayAvionics.cpp: avionics devices (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

int TVPMDisplayBezelClickHook(int, int, int, TVPMMouseStatus, void*) { return 1; }
int TVPMDisplayBezelRightClickHook(int, int, int, TVPMMouseStatus, void*) { return 1; }
int TVPMDisplayScreenClickHook(int, int, int, TVPMMouseStatus, void*) { return 1; }
int TVPMDisplayScreenRightClickHook(int, int, int, TVPMMouseStatus, void*) { return 1; }
int TVPMDisplayBezelScrollHook(int, int, int, int, int, void*) { return 1; }
int TVPMDisplayScreenScrollHook(int, int, int, int, int, void*) { return 1; }
int TVPMDisplayBezelCursorHook(int, int, int, void*) { return 0; }
int TVPMDisplayScreenCursorHook(int, int, int, void*) { return 0; }
int TVPMDisplayNeedsAvionicsBrightnessHook(int, void*) { return 0; }
float TVPMDisplayDoAvionicsBrightnessHook(int, float, float, float, void*) { return 0.0f; }
int TVPMDisplayNeedsAvionicsBezelHook(int, void*) { return 0; }
void TVPMDisplayDoAvionicsBezelHook(int, void*, float*) {}
int TVPMDisplayNeedsAvionicsScreenHook(int, void*, int) { return 0; }
int TVPMDisplayDoAvionicsScreenHook(int, void*, int) { return 0; }
void TVPMDisplayDoAvionicsKeyHook(int, char, TVPMKeyFlags, char, int, void*) {}
void TVPMDisplayAvionicsCleanupHook(TVPMPluginID) {}
