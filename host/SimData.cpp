// SimData.cpp: the data items the simulator publishes: build string, clock, position, airspeed, aircraft and a few retired names.
#include <cstring>

#include "SimWorld.h"
#include "Simulator.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr int kDeprecated = tvpm_DataRefDeprecatedFlag;  // only the simulator may publish these
constexpr int kReplaced = tvpm_DataRefReplacedFlag;

struct HostValues {
    char buildString[64] = {0};
    char icao[40] = "TVX1";
    double latitude = 47.4647, longitude = 8.5492, elevation = 432.0;
    int overrideTCAS = 0;
} s_values;

int ReadBytes(const char* source, size_t size, void* out, int offset, int max) {
    if (!out) return static_cast<int>(size);
    if (offset < 0 || static_cast<size_t>(offset) >= size || max <= 0) return 0;
    const int n = static_cast<int>(std::min(size - offset, static_cast<size_t>(max)));
    memcpy(out, source + offset, n);
    return n;
}

void WriteBytes(char* target, size_t size, const void* in, int offset, int length) {
    if (!in || offset < 0 || length < 0 || static_cast<size_t>(offset) >= size) return;
    memcpy(target + offset, in, std::min(size - offset, static_cast<size_t>(length)));
}

TVPMDataRef Publish(const char* name, int type, int writable, TVPMGetDatai_f ri, TVPMSetDatai_f wi,
                    TVPMGetDataf_f rf, TVPMGetDatad_f rd, TVPMGetDatab_f rb, TVPMSetDatab_f wb,
                    void* ref) {
    HostDataItems().push_back({name, type & ~(kDeprecated | kReplaced), writable != 0, (type & kDeprecated) != 0,
                               (type & kReplaced) != 0});
    return Api().RegisterDataAccessor(name, type, writable, ri, wi, rf, nullptr, rd, nullptr,
                                      nullptr, nullptr, nullptr, nullptr, rb, wb, ref, ref);
}

double* Position(void* ref) { return static_cast<double*>(ref); }

int PublishAll() {
    int n = 0;
    auto readString = [](void* ref, void* out, int offset, int max) {
        const char* s = static_cast<const char*>(ref);
        return ReadBytes(s, strlen(s) + 1, out, offset, max);
    };
    n += !!Publish("sim/version/tvpm_build_string", tvpmType_Data, 1, nullptr, nullptr, nullptr,
                   nullptr, readString,
                   [](void*, void* in, int offset, int length) {
                       WriteBytes(s_values.buildString, sizeof s_values.buildString - 1, in,
                                  offset, length);
                   },
                   s_values.buildString);
    n += !!Publish("sim/aircraft/view/acf_ICAO", tvpmType_Data, 0, nullptr, nullptr, nullptr,
                   nullptr, readString, nullptr, s_values.icao);
    n += !!Publish("sim/time/total_running_time_sec", tvpmType_Float, 0, nullptr, nullptr,
                   [](void*) { return World().ElapsedTime(); }, nullptr, nullptr, nullptr, nullptr);
    auto readPosition = [](void* ref) { return *Position(ref); };
    n += !!Publish("sim/flightmodel/position/latitude", tvpmType_Double, 0, nullptr, nullptr,
                   nullptr, readPosition, nullptr, nullptr, &s_values.latitude);
    n += !!Publish("sim/flightmodel/position/longitude", tvpmType_Double, 0, nullptr, nullptr,
                   nullptr, readPosition, nullptr, nullptr, &s_values.longitude);
    n += !!Publish("sim/flightmodel/position/elevation", tvpmType_Double, 0, nullptr, nullptr,
                   nullptr, readPosition, nullptr, nullptr, &s_values.elevation);
    // A slow climb-out: the airspeed follows the clock so readers see it move.
    n += !!Publish("sim/flightmodel/position/indicated_airspeed", tvpmType_Float, 0, nullptr,
                   nullptr, [](void*) { return 80.0f + World().ElapsedTime(); }, nullptr, nullptr,
                   nullptr, nullptr);
    n += !!Publish("sim/operation/override/override_TCAS", tvpmType_Int, 1,
                   [](void*) { return s_values.overrideTCAS; },
                   [](void*, int v) { s_values.overrideTCAS = v; }, nullptr, nullptr, nullptr,
                   nullptr, nullptr);
    n += !!Publish("sim/graphics/view/legacy_frame_rate", tvpmType_Float | kDeprecated, 0,
                   nullptr, nullptr, [](void*) { return static_cast<float>(World().fps); },
                   nullptr, nullptr, nullptr, nullptr);
    n += !!Publish("sim/operation/misc/frame_rate_period_old", tvpmType_Float | kReplaced, 0,
                   nullptr, nullptr, [](void*) { return static_cast<float>(1.0 / World().fps); },
                   nullptr, nullptr, nullptr, nullptr);
    return n + PublishTrafficItems();
}

}  // namespace

std::vector<HostDataItem>& HostDataItems() {
    static std::vector<HostDataItem> items;
    return items;
}

int PublishHostDataItems() { return Api().RegisterDataAccessor ? PublishAll() : 0; }

}  // namespace tvpmhost
