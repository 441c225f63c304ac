// TVPMMap.cpp: map layers (not built yet: every hook is a no-op).
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

int TVPMMapNeedsLayerDrawingHooks() { return 0; }
void TVPMMapDoLayerDrawingHook(void*, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID) {}
void TVPMMapHandleCreation(const char*) {}
void TVPMMapDoLayerWillBeDeletedHook(void*) {}
void TVPMMapDoLayerPrepareCacheHook(void*, const float*, TVPMMapProjectionID) {}
