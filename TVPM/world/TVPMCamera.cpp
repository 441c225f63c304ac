// TVPMCamera.cpp: camera control (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

void TVPMReleaseCamera() {}
int TVPMAdjustCamera(float*, float*, float*, float*, float*, float*, float*) { return 0; }
void TVPMCameraDisableHook(TVPMPluginID) {}
void TVPMCameraCleanupHook(TVPMPluginID) {}
