// broken_avionics_leak.cpp: a test plugin that creates an avionics device and customises a screen, and releases neither.
#include <cstring>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMPlugin.h"

namespace {

void DrawScreen(void*) {}
int DrawOver(TVPMDeviceID, int, void*) { return 1; }

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Avionics Leak");
    strcpy(outSignature, "test.broken.avionics_leak");
    strcpy(outDescription, "Never destroys its device.");
    TVPMCreateAvionics_t device;
    memset(&device, 0, sizeof device);
    device.structSize = sizeof device;
    device.screenWidth = 100;
    device.screenHeight = 100;
    device.drawCallback = DrawScreen;
    device.deviceID = "test_forgotten";
    device.deviceName = "Forgotten display";
    TVPMCreateAvionicsEx(&device);
    TVPMCustomizeAvionics_t overlay;
    memset(&overlay, 0, sizeof overlay);
    overlay.structSize = sizeof overlay;
    overlay.drawCallbackBefore = DrawOver;
    TVPMRegisterAvionicsCallbacksEx(&overlay);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }
TVPM_PLUGIN_API void TPluginDisable(void) {}
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
