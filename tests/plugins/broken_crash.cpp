// broken_crash.cpp: a test plugin that crashes the simulator the first time it is disabled.
#include <csignal>
#include <cstring>

#include "TVPM/TVPMPlugin.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Crash");
    strcpy(outSignature, "test.broken.crash");
    strcpy(outDescription, "Crashes when disabled.");
    return 1;
}

TVPM_PLUGIN_API void TPluginDisable(void) { raise(SIGSEGV); }
