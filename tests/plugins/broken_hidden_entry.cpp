// broken_hidden_entry.cpp: a test plugin whose TPluginEnable lacks the export macro, so TVPM never calls it.
#include <cstring>

#include "TVPM/TVPMPlugin.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Hidden Entry");
    strcpy(outSignature, "test.broken.hidden_entry");
    strcpy(outDescription, "Forgot TVPM_PLUGIN_API on TPluginEnable.");
    return 1;
}

extern "C" int TPluginEnable(void) { return 1; }
