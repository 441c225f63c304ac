// broken_start.cpp: a test plugin that refuses to start (TPluginStart returns 0).
#include <cstring>

#include "TVPM/TVPMPlugin.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Start");
    strcpy(outSignature, "test.broken.start");
    strcpy(outDescription, "Refuses to start.");
    return 0;
}
