// broken_leak.cpp: a test plugin that leaves a window and a held command behind when it stops.
#include <cstring>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

namespace {

void Draw(TVPMWindowID, void*) {}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Leak");
    strcpy(outSignature, "test.broken.leak");
    strcpy(outDescription, "Never releases its window or its held command.");
    TVPMCreateWindow_t params;
    memset(&params, 0, sizeof params);
    params.structSize = sizeof params;
    params.right = 100;
    params.top = 100;
    params.visible = 1;
    params.drawWindowFunc = Draw;
    params.layer = tvpm_WindowLayerFloatingWindows;
    TVPMWindowID window = TVPMCreateWindowEx(&params);
    TVPMSetWindowTitle(window, "Forgotten");
    TVPMCommandBegin(TVPMCreateCommand("test/broken/held", "Held down forever"));
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
