// SimSlotsWeather.cpp: the simulator's weather: a standard atmosphere to read, METAR text for a few airports, and each plugin's written weather.
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "SimServices.h"
#include "SimWorld.h"
#include "TVPM/TVPMWeather.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

struct KnownMetar {
    const char* icao;
    const char* text;
};
constexpr KnownMetar kMetars[] = {
    {"LSZH", "LSZH 221150Z 24008KT 9999 FEW035 12/06 Q1019 NOSIG"},
    {"LSGG", "LSGG 221150Z 22012KT 9999 SCT040 13/05 Q1018 NOSIG"},
    {"EDDF", "EDDF 221150Z 27010KT CAVOK 11/04 Q1020 NOSIG"},
    {"KSEA", "KSEA 221153Z 18009KT 10SM BKN025 OVC045 09/06 A3001"},
};

// Places (a point "lat,lon" or an ICAO code) where a plugin's weather is set.
using Places = std::set<std::string>;
struct PluginWeather {
    Places stored, pending;
    bool updating = false;
    int droppedAtFullUpdate = 0;  // places removed by full updates that wrote nothing
};
std::map<std::string, PluginWeather> s_weather;  // by plugin path

std::string PointKey(float lat, float lon) {
    char key[64];
    snprintf(key, sizeof key, "%.4f,%.4f", lat, lon);
    return key;
}

void Write(TVPMPluginID id, const std::string& place) {
    PluginWeather& w = s_weather[PluginPath(id)];
    (w.updating ? w.pending : w.stored).insert(place);
    ++World().weatherWrites[PluginPath(id)];
}

void Erase(TVPMPluginID id, const std::string& place) {
    PluginWeather& w = s_weather[PluginPath(id)];
    w.stored.erase(place);
    w.pending.erase(place);
}

void EndUpdate(TVPMPluginID id, int isIncremental) {
    PluginWeather& w = s_weather[PluginPath(id)];
    if (!isIncremental) {
        if (w.pending.empty()) w.droppedAtFullUpdate += static_cast<int>(w.stored.size());
        w.stored.clear();
    }
    w.stored.insert(w.pending.begin(), w.pending.end());
    w.pending.clear();
    w.updating = false;
    World().openWeatherUpdates.erase(id);
}

}  // namespace

void FillWeatherSlots(TVPMHooks& h) {
    // Standard atmosphere, calm, good visibility.
    h.TVPMGetWeatherAtPt_f = [](float, float, float alt, TVPMWeatherInfo_t* info) {
        if (!info) return 0;
        info->temperature_alt = 15.0f - 0.0065f * alt;
        info->dewpoint_alt = 5.0f;
        info->pressure_alt = 101325.0f;
        info->visibility = 10000.0f;
        return 1;
    };
    h.TVPMGetLastKnownMETAR_f = [](const char* icao, char* out) {
        if (!out) return;
        out[0] = '\0';
        for (const KnownMetar& m : kMetars)
            if (icao && !strcmp(icao, m.icao)) snprintf(out, 150, "%s", m.text);
    };
    h.TVPMSetWeatherAtPt_f = [](TVPMPluginID id, float lat, float lon, float, TVPMWeatherInfo_t*) {
        Write(id, PointKey(lat, lon));
    };
    h.TVPMEraseWeatherAtPt_f = [](TVPMPluginID id, float lat, float lon) {
        Erase(id, PointKey(lat, lon));
    };
    h.TVPMSetWeatherAtAirport_f = [](TVPMPluginID id, const char* icao, TVPMWeatherInfo_t*) {
        Write(id, icao ? icao : "");
    };
    h.TVPMEraseWeatherAtAirport_f = [](TVPMPluginID id, const char* icao) {
        Erase(id, icao ? icao : "");
    };
    h.TVPMBeginWeatherUpdate_f = [](TVPMPluginID id) {
        s_weather[PluginPath(id)].updating = true;
        World().openWeatherUpdates[id] = PluginPath(id);
    };
    h.TVPMEndWeatherUpdate_f = [](TVPMPluginID id, int isIncremental, int) {
        EndUpdate(id, isIncremental);
    };
}

namespace {

void AuditWeather(const std::string& path, const std::vector<std::string>& pluginWarnings,
                  const std::function<void(const char*, const std::string&)>& add) {
    bool leftOpen = false;
    for (const std::string& w : pluginWarnings)
        leftOpen |= w.find("TVPMBeginWeatherUpdate() called without matching "
                           "TVPMEndWeatherUpdate()") != std::string::npos;
    if (leftOpen)
        add("problem",
            "left a bulk weather update open at the end of a callback: call "
            "TVPMEndWeatherUpdate in the same callback as TVPMBeginWeatherUpdate");
    const auto it = s_weather.find(path);
    if (it == s_weather.end()) return;
    if (!it->second.stored.empty())
        add("problem", "left weather in the simulator after it was unloaded (" +
                           std::to_string(it->second.stored.size()) + " places)");
    else if (it->second.droppedAtFullUpdate > 0)
        add("note", "its weather (" + std::to_string(it->second.droppedAtFullUpdate) +
                        " places) was removed by TVPM's clean-up: nothing to do, the simulator drops a plugin's weather when it goes");
}

void AuditMapLayers(const std::string& path,
                    const std::function<void(const char*, const std::string&)>& add) {
    int layers = 0;
    for (auto& [ref, layer] : World().mapLayers)
        if (layer.alive && layer.owner == path) ++layers;
    if (layers)
        add("note", std::to_string(layers) +
                        " map layer(s) stay registered after unload; TVPM keeps them by design "
                        "and never calls them again, but destroying them in TPluginStop is tidier");
}

void AuditGraphics(const std::string& path,
                   const std::function<void(const char*, const std::string&)>& add) {
    const auto it = GraphicsCalls().find(path);
    if (it == GraphicsCalls().end()) return;
    std::string text;
    for (auto& [slot, n] : it->second)
        text += (text.empty() ? "" : ", ") + slot + " " + std::to_string(n);
    add("note", "graphics calls: " + text);
}

}  // namespace

void AuditWorldServices(const std::string& path, const std::vector<std::string>& pluginWarnings,
                        const std::function<void(const char*, const std::string&)>& add) {
    AuditWeather(path, pluginWarnings, add);
    AuditMapLayers(path, add);
    AuditGraphics(path, add);
}

}  // namespace tvpmhost
