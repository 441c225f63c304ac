// broken_deprecated.cpp: a test plugin that works but looks up a data item the simulator has retired (a warning, not a failure).
#include <cstring>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMPlugin.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Deprecated");
    strcpy(outSignature, "test.broken.deprecated");
    strcpy(outDescription, "Reads a retired data item.");
    TVPMFindDataRef("sim/graphics/view/legacy_frame_rate");
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
