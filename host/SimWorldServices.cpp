// SimWorldServices.cpp: the simulated terrain, the other aircraft and the camera: what probes hit, which models the AI slots fly, and the camera hook each frame.
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "SimWorld.h"
#include "Simulator.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr float kWaterLevel = 15.0f;
constexpr int kAircraftSlots = 4;  // the user's and three AI aircraft

struct Camera {
    float x = 0, y = 100, z = 0, pitch = 0, heading = 0, roll = 0, zoom = 1;
} s_camera;

int s_aiDisabled[kAircraftSlots] = {};
std::string s_aiModels[kAircraftSlots];

// Rolling hills with a lake wherever they dip below the water level.
float GroundHeight(float x, float z) {
    return 30.0f + 20.0f * std::sin(x / 500.0f) * std::cos(z / 700.0f);
}

bool Exists(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

int ProbeTerrain(const float* point, float* location, float* normal, float* velocity, int* wet) {
    if (!point || std::isnan(point[0]) || std::isnan(point[1]) || std::isnan(point[2])) return 0;
    const float x = point[0], z = point[2];
    const float ground = GroundHeight(x, z);
    const bool water = ground < kWaterLevel;
    if (location) location[0] = x, location[1] = water ? kWaterLevel : ground, location[2] = z;
    if (normal) {
        // Water is flat; the hills lean along the height's gradient.
        const float dx = water ? 0 : (GroundHeight(x + 1, z) - ground);
        const float dz = water ? 0 : (GroundHeight(x, z + 1) - ground);
        const float len = std::sqrt(dx * dx + 1 + dz * dz);
        normal[0] = -dx / len, normal[1] = 1 / len, normal[2] = -dz / len;
    }
    if (velocity) velocity[0] = velocity[1] = velocity[2] = 0;
    if (wet) *wet = water ? 1 : 0;
    return 1;
}

bool ObjectFileExists(const char* path) {
    if (!path || !*path) return false;
    return Exists(path[0] == '/' ? std::string(path) : World().systemPath + path);
}

int AircraftSlots() { return World().aircraftPath.empty() ? 0 : kAircraftSlots; }

int PublishTrafficItems() {
    int n = 0;
    for (int i = 1; i < kAircraftSlots; ++i) {
        char name[64];
        snprintf(name, sizeof name, "sim/private/net_disables/ai_loc[%d]", i);
        n += !!Api().RegisterDataAccessor(
            name, tvpmType_Int, 1, [](void* ref) { return *static_cast<int*>(ref); },
            [](void* ref, int v) { *static_cast<int*>(ref) = v; }, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &s_aiDisabled[i],
            &s_aiDisabled[i]);
    }
    return n;
}

// The simulator's side of each frame: how many aircraft to fly and with
// which models, then the camera, which a plugin may drive.
void WorldServicesFrame() {
    if (Api().GetNumberPlanesToHandle && Api().UpdatePlaneNameAndPath && AircraftSlots()) {
        const int active = Api().GetNumberPlanesToHandle(kAircraftSlots, 0);
        for (int i = 1; i < active && i < kAircraftSlots; ++i) {
            char name[256] = "", path[512] = "";
            Api().UpdatePlaneNameAndPath(i, name, path);
            if (*path) s_aiModels[i] = path;
        }
    }
    if (!Api().CameraHook) return;
    Camera c = s_camera;
    if (Api().CameraHook(&c.x, &c.y, &c.z, &c.pitch, &c.heading, &c.roll, &c.zoom) == 0)
        World().cameraFramesByPlugin++;
}

void Simulator::ChangeView() {
    Api().EventHook(tvpm_CameraChangedHook, World().ElapsedTime(), 0, 0, 0);
    log.Flush();
}

// The release line TVPM writes when AI-aircraft control ends: released by
// anyone but the holder itself (its disable or unload), it was left behind.
void NoteWorldLogLine(const char* text) {
    static const char kHead[] = "The plugin ", kTail[] = " is releasing control of AI aircraft.\n";
    const size_t len = strlen(text), head = sizeof kHead - 1, tail = sizeof kTail - 1;
    if (len <= head + tail || strncmp(text, kHead, head) != 0 || strcmp(text + len - tail, kTail) != 0)
        return;
    const std::string name(text + head, len - head - tail);
    for (TVPMPluginID id = 1; id < Api().CountPlugins(); ++id)
        if (PluginName(id) == name)
            World().Released("AI aircraft control", "the other aircraft", PluginPath(id));
}

}  // namespace tvpmhost
