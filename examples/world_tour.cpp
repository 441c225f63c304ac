// world_tour.cpp: example plugin: probes the terrain, places instances of an object it loads in the background, flies the other aircraft, and takes the camera for a fly-by on a command.
//
// What it shows:
//   - a terrain probe made once and reused every time (probes are cheap to
//     query, not to create);
//   - an object loaded in the background: the callback runs later, with this
//     plugin current, and from then on the object is this plugin's;
//   - instances: the simulator draws them every frame by itself, no draw
//     callback needed;
//   - control of the other aircraft, taken on enable, given back on disable
//     and whenever another plugin asks for it (message 111);
//   - the camera, taken for a few seconds by the "Fly-by" command (also in
//     the Plugins menu) and given back when the fly-by ends or the view
//     changes.
// Everything made in TPluginStart is released in TPluginStop.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "TVPM/TVPMCamera.h"
#include "TVPM/TVPMInstance.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlanes.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMScenery.h"
#include "TVPM/TVPMUtilities.h"

namespace {

const char* const kFlyByCommand = "tvpm/examples/world_tour/fly_by";
constexpr int kBeacons = 3;
constexpr float kBeaconSpacing = 400.0f;  // metres
constexpr float kFlyBySeconds = 4.0f;
constexpr float kFlyByRadius = 300.0f;
constexpr float kReportEvery = 2.0f;  // seconds

struct Tour {
    TVPMProbeRef probe = nullptr;
    TVPMObjectRef beacon = nullptr;
    TVPMInstanceRef beacons[kBeacons] = {};
    TVPMCommandRef flyBy = nullptr;
    TVPMMenuID menu = nullptr;
    bool holdsTraffic = false;
    float flyByTime = 0;
    int reports = 0;
} g;

void Log(const char* text) {
    char line[256];
    snprintf(line, sizeof line, "World Tour: %s\n", text);
    TVPMDebugString(line);
}

// This plugin's folder: its library is <folder>/lin_x64/world_tour.tvp.
std::string PluginFolder() {
    char path[256] = "";
    TVPMGetPluginInfo(TVPMGetMyID(), nullptr, path, nullptr, nullptr);
    std::string folder(path);
    for (int up = 0; up < 2 && folder.rfind('/') != std::string::npos; ++up)
        folder.erase(folder.rfind('/'));
    return folder + "/";
}

// The terrain height below a point, or NAN when the probe found nothing.
float GroundBelow(float x, float y, float z, int* wet) {
    TVPMProbeInfo_t info{};
    info.structSize = sizeof info;  // 44: TVPM refuses any other size
    if (TVPMProbeTerrainXYZ(g.probe, x, y, z, &info) != tvpm_ProbeHitTerrain) return NAN;
    if (wet) *wet = info.is_wet;
    return info.locationY;
}

// Called with this plugin current once the simulator has loaded the object
// (or failed to: then inObject is null). Not called while the plugin is
// disabled: the result waits for the next enable.
void OnBeaconLoaded(TVPMObjectRef inObject, void*) {
    if (!inObject) {
        Log("the beacon object could not be loaded; no beacons today");
        return;
    }
    g.beacon = inObject;
    static const char* const kNoData[] = {nullptr};  // no per-instance data items
    for (int i = 0; i < kBeacons; ++i) {
        g.beacons[i] = TVPMCreateInstance(g.beacon, const_cast<const char**>(kNoData));
        TVPMDrawInfo_t at{};
        at.structSize = sizeof at;  // 28
        at.x = kBeaconSpacing * static_cast<float>(i + 1);
        at.z = -kBeaconSpacing;
        at.y = GroundBelow(at.x, 1000, at.z, nullptr);
        if (std::isnan(at.y)) at.y = 0;
        at.heading = 120.0f * static_cast<float>(i);
        TVPMInstanceSetPosition(g.beacons[i], &at, nullptr);
    }
    Log("three beacons placed on the terrain");
}

// Each frame of the fly-by: circle the first beacon, then give the camera back.
int FlyBy(TVPMCameraPosition_t* camera, int inIsLosingControl, void*) {
    if (inIsLosingControl || !camera) {  // taken from us: a view change, or we were disabled
        Log("fly-by interrupted");
        return 0;
    }
    g.flyByTime += 1.0f / 60.0f;
    if (g.flyByTime > kFlyBySeconds) {
        Log("fly-by done");
        return 0;  // returning 0 gives the camera back; we are not called again
    }
    const float angle = g.flyByTime / kFlyBySeconds * 6.2831853f;
    camera->x = kBeaconSpacing + kFlyByRadius * std::cos(angle);
    camera->z = -kBeaconSpacing + kFlyByRadius * std::sin(angle);
    const float ground = GroundBelow(camera->x, 2000, camera->z, nullptr);
    camera->y = (std::isnan(ground) ? 0 : ground) + 80.0f;
    camera->heading = angle * 57.29578f + 90.0f;
    camera->pitch = -10.0f;
    return 1;
}

int OnFlyBy(TVPMCommandRef, TVPMCommandPhase inPhase, void*) {
    if (inPhase == tvpm_CommandBegin) {
        g.flyByTime = 0;
        TVPMControlCamera(tvpm_ControlCameraUntilViewChanges, FlyBy, nullptr);
        Log("fly-by started");
    }
    return 0;  // handled: nobody else needs this command
}

// Once every kReportEvery seconds: how high the camera is above the terrain.
float OnReport(float, float, int, void*) {
    TVPMCameraPosition_t camera{};
    TVPMReadCameraPosition(&camera);
    int wet = 0;
    const float ground = GroundBelow(camera.x, camera.y, camera.z, &wet);
    if (g.reports++ < 3 && !std::isnan(ground)) {
        char text[160];
        snprintf(text, sizeof text, "camera %.0f m above %s, magnetic variation %.1f deg",
                 camera.y - ground, wet ? "water" : "ground", TVPMGetMagneticVariation(47.46, 8.55));
        Log(text);
    }
    return kReportEvery;
}

// Asks for the other aircraft; when another plugin holds them, TVPM calls
// this again once they are free.
void AskForTraffic(void*) {
    if (g.holdsTraffic) return;
    g.holdsTraffic = TVPMAcquirePlanes(nullptr, AskForTraffic, nullptr) == 1;
    if (!g.holdsTraffic) return;
    TVPMSetActiveAircraftCount(2);
    Log("flying two of the other aircraft");
}

void GiveTrafficBack() {
    if (!g.holdsTraffic) return;
    g.holdsTraffic = false;
    TVPMReleasePlanes();  // also turns the simulator's AI back on
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "World Tour");
    strcpy(outSignature, "tvpm.examples.world_tour");
    strcpy(outDescription, "Probes the terrain, places beacons and flies the camera around them.");

    g.probe = TVPMCreateProbe(tvpm_ProbeY);
    TVPMLoadObjectAsync((PluginFolder() + "objects/beacon.obj").c_str(), OnBeaconLoaded, nullptr);

    g.flyBy = TVPMCreateCommand(kFlyByCommand, "Fly the camera around the beacons");
    TVPMRegisterCommandHandler(g.flyBy, OnFlyBy, 1, nullptr);
    g.menu = TVPMCreateMenu("World Tour", nullptr, 0, nullptr, nullptr);
    TVPMAppendMenuItemWithCommand(g.menu, "Fly-by", g.flyBy);
    TVPMRegisterFlightLoopCallback(OnReport, kReportEvery, nullptr);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {
    TVPMUnregisterFlightLoopCallback(OnReport, nullptr);
    TVPMDestroyMenu(g.menu);
    TVPMClearAllMenuItems(TVPMFindPluginsMenu());
    TVPMUnregisterCommandHandler(g.flyBy, OnFlyBy, 1, nullptr);
    for (TVPMInstanceRef& beacon : g.beacons) TVPMDestroyInstance(beacon);
    // A load still in flight needs nothing: TVPM releases its object.
    if (g.beacon) TVPMUnloadObject(g.beacon);
    TVPMDestroyProbe(g.probe);
    g = Tour();
}

// The other aircraft are held only while enabled. (The camera needs no care
// here: TVPM takes it back from a disabled plugin and tells FlyBy.)
TVPM_PLUGIN_API int TPluginEnable(void) {
    AskForTraffic(nullptr);
    return 1;
}

TVPM_PLUGIN_API void TPluginDisable(void) { GiveTrafficBack(); }

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int inMessage, void*) {
    // Another plugin wants the other aircraft: be a good neighbour.
    if (inMessage == TVPM_MSG_RELEASE_PLANES) GiveTrafficBack();
}
