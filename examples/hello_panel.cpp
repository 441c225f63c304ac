// hello_panel.cpp: placeholder example plugin.
#include <cstring>
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
TVPM_PLUGIN_API int TPluginStart(char* name, char* sig, char* desc) {
    strcpy(name, "Hello Panel");
    strcpy(sig, "tvpm.examples.hello_panel");
    strcpy(desc, "x");
    TVPMDebugString("hello\n");
    return 1;
}
TVPM_PLUGIN_API void TPluginStop(void) {}
TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }
TVPM_PLUGIN_API void TPluginDisable(void) {}
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
