// broken_world_leak.cpp: a test plugin that keeps an object, an instance, the other aircraft and the camera to the end.
#include <cstring>

#include "TVPM/TVPMCamera.h"
#include "TVPM/TVPMInstance.h"
#include "TVPM/TVPMPlanes.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMScenery.h"

namespace {

int KeepCamera(TVPMCameraPosition_t*, int, void*) { return 1; }

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken World Leak");
    strcpy(outSignature, "test.broken.world_leak");
    strcpy(outDescription, "Never releases its object, instance, aircraft or camera.");
    // Any file will do as the simulator's object: this plugin's own library.
    char path[256] = "";
    TVPMGetPluginInfo(TVPMGetMyID(), nullptr, path, nullptr, nullptr);
    static const char* const kNoData[] = {nullptr};
    TVPMCreateInstance(TVPMLoadObject(path), const_cast<const char**>(kNoData));
    return 1;
}

TVPM_PLUGIN_API int TPluginEnable(void) {
    TVPMAcquirePlanes(nullptr, nullptr, nullptr);
    TVPMControlCamera(tvpm_ControlCameraForever, KeepCamera, nullptr);
    return 1;
}
