// broken_enable.cpp: a test plugin that starts but refuses to be enabled (TPluginEnable returns 0).
#include <cstring>

#include "TVPM/TVPMPlugin.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Enable");
    strcpy(outSignature, "test.broken.enable");
    strcpy(outDescription, "Starts, then refuses to be enabled.");
    return 1;
}

TVPM_PLUGIN_API int TPluginEnable(void) { return 0; }
