// TVPMPlanes.cpp: aircraft and AI control (not built yet: every hook is a no-op).
#include "TVPMPlanesPrivate.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMPlaneDisableHook(TVPMPluginID) {}
void TVPMPlaneCleanupHook(TVPMPluginID) {}
void TVPMHandleUpdatePlaneNameAndPath(int, char*, char*) {}
int TVPMHandleGetNumberPlanesToHandle(int, int) { return 0; }
TVPMPluginID TVPMGetTrafficControlPlugin() { return -1; }
