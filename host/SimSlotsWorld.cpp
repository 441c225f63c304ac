// SimSlotsWorld.cpp: the simulator's world slots: camera, instances, terrain probes, objects, magnetic variation and weather.
#include <cmath>
#include <cstring>
#include <string>

#include "SimServices.h"
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr float kMagneticVariation = -3.5f;

void FillCameraAndInstanceSlots(TVPMHooks& h) {
    h.TVPMReadCameraPosition_f = [](float* x, float* y, float* z, float* pitch, float* heading,
                                    float* roll, float* zoom) {
        for (float* f : {x, z, pitch, heading, roll})
            if (f) *f = 0;
        if (y) *y = 100;
        if (zoom) *zoom = 1;
    };
    h.TVPMCreateInstance_f = [](const char**, void* obj) -> void* {
        void* instance = World().NewToken();
        const auto found = World().objects.find(obj);
        const std::string what = found == World().objects.end() ? "" : found->second.name;
        World().instances[instance] = {"instance", what, CurrentPluginPath(), true};
        return instance;
    };
    h.TVPMDestroyInstance_f = [](void* instance) {
        auto it = World().instances.find(instance);
        if (it == World().instances.end() || !it->second.alive) return;
        World().Released("instance", it->second.name, it->second.owner);
        it->second.alive = false;
    };
    h.TVPMInstanceSetAutoShift_f = [](void*) {};
    h.TVPMInstanceSetPosition_f = [](void*, float, float, float, float, float, float) {};
    h.TVPMInstanceSetPositionDouble_f = [](void*, double, double, double, double, double,
                                           double) {};
    h.TVPMInstanceSetData_f = [](void*, const float*) {};
    h.TVPMInstanceEnable_f = [](void*) {};
    h.TVPMInstanceDisable_f = [](void*) {};
}

void FillScenerySlots(TVPMHooks& h) {
    h.TVPMAllocateProbe_f = [] {
        ++World().probesAllocated[CurrentPluginPath()];
        return World().nextProbe++;
    };
    h.TVPMProbeY_f = [](int, float* point, float* location, float* normal, float* velocity,
                        int* wet) { return ProbeTerrain(point, location, normal, velocity, wet); };
    h.TVPMLoadObject_f = [](const char* path) { return World().LoadObject(path); };
    h.TVPMLoadObjectAsync_f = [](const char* path, void (*cb)(void*, void*), void* ref) {
        if (cb) World().asyncLoads.push_back({path ? path : "", cb, ref});
    };
    h.TVPMUnloadObject_f = [](void* obj) {
        auto it = World().objects.find(obj);
        if (it == World().objects.end() || !it->second.alive) return;
        World().Released("object", it->second.name, it->second.owner);
        it->second.alive = false;
    };
    h.TVPMDrawObject_f = [](void*, float, float, float, float, float, float, int, int) {};
    h.TVPMLookupObjects_f = [](const char* path, float, float, void (*cb)(const char*, void*),
                               void* ref) {
        if (!path || !cb) return 0;
        cb(path, ref);
        return 1;
    };
    h.TVPMShiftScenery_f = [] {};
    h.TVPMGetMagneticVariation_f = [](float, float) { return kMagneticVariation; };
    h.TVPMDegTrueToDegMagnetic_f = [](float t) {
        return std::fmod(t - kMagneticVariation + 360.0f, 360.0f);
    };
    h.TVPMDegMagneticToDegTrue_f = [](float m) {
        return std::fmod(m + kMagneticVariation + 360.0f, 360.0f);
    };
}

}  // namespace

void FillWorldSlots(TVPMHooks& h) {
    FillCameraAndInstanceSlots(h);
    FillScenerySlots(h);
    FillWeatherSlots(h);
}

}  // namespace tvpmhost
