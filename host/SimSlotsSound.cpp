// SimSlotsSound.cpp: the sound slots of the headless simulator, backed by the stand-in sound engine, and what it reports about plugin sound.
#include <cstdio>
#include <map>

#include "FMODStandIn.h"
#include "SimSound.h"
#include "SimWorld.h"

namespace tvpmhost {

namespace {

// The buses of the simulator's Studio project, by ID.
const std::map<std::string, std::string> kProjectBuses = {
    {"9f08114d-36ec-44cc-b8bf-b2babda09f9e", "Main"},
    {"7f7c05a4-e05a-4d44-94fe-d4691147a9b7", "Master"},
    {"e3492bec-f854-4fbb-b2bc-23586269032e", "Copilot"},
    {"a5a85a81-afd5-4425-9dc2-6e50f7776e6a", "Exterior Processed"},
    {"06db5351-0b2f-4648-b97a-a33b40a00e11", "Exterior Aircraft"},
    {"b6c156f1-9861-405c-a622-92b2ab8010a7", "Exterior Environment"},
    {"8dbbc9d7-a954-4ed0-b1f1-f8111b03cbd1", "Exterior Unprocessed"},
    {"751f5066-4651-4afb-a410-4cb9db0894c9", "Interior"},
    {"d8526059-b27c-4eae-9b14-a1ee1cb3dfa1", "Radio"},
    {"fdebe6fb-b9d1-4739-a7ef-795062ed899d", "COM1"},
    {"9cf53f8a-68b5-4d4b-8136-d8b5d0971f10", "COM2"},
    {"c4c4d185-3205-4f8c-a8b3-32d8172f8806", "Pilot"},
    {"0371a26e-638b-49cd-b8d5-cd8b85306782", "Ground Vehicles"},
    {"77575f3b-b9cd-4bff-9056-637cff744a14", "UI"},
};

FMOD_SYSTEM* GetSystem() { return fmodstandin::System(); }
FMOD_STUDIO_SYSTEM* GetStudio() { return fmodstandin::Studio(); }
FMOD_STUDIO_BUS* GetBus(const char* id) {
    auto it = id ? kProjectBuses.find(id) : kProjectBuses.end();
    return it == kProjectBuses.end() ? nullptr : fmodstandin::Bus(it->first, it->second);
}

struct GroupTotals {
    int sounds = 0, delivered = 0;
    double seconds = 0;
};

}  // namespace

void FillSoundSlots(TVPMHooks& h) {
    h.TVPMGetFMODSystem_f = &GetSystem;
    h.TVPMGetFMODStudio_f = &GetStudio;
    h.TVPMGetFMODBus_f = &GetBus;
}

void AdvanceSound(double seconds) { fmodstandin::Advance(seconds); }

std::vector<std::string> SoundSummary() {
    std::map<std::string, GroupTotals> byGroup;
    const double now = fmodstandin::Now();
    for (auto& p : fmodstandin::Plays()) {
        GroupTotals& t = byGroup[p.group];
        ++t.sounds;
        t.seconds += (p.end < 0 ? now : p.end) - p.start;
        t.delivered += p.released;
    }
    std::vector<std::string> lines;
    for (auto& [group, t] : byGroup) {
        char line[300];
        snprintf(line, sizeof line, "%s: %d sound%s, %.2f s played, %d completion%s delivered",
                 group.c_str(), t.sounds, t.sounds == 1 ? "" : "s", t.seconds, t.delivered,
                 t.delivered == 1 ? "" : "s");
        lines.push_back(line);
    }
    return lines;
}

}  // namespace tvpmhost
