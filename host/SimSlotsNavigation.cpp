// SimSlotsNavigation.cpp: the simulator's navigation database, flight-management entries and GPS destination.
#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "SimWorld.h"

namespace tvpmhost {

namespace {

constexpr TVPMNavRef kNoNavAid = -1;
constexpr int kFmsEntries = 100;
constexpr int kFlightPlans = 2;

struct NavAid {
    TVPMNavType type;
    float lat, lon, height;
    int frequency;
    float heading;
    const char* id;
    const char* name;
};

// A small, fixed database around the example aircraft's position.
constexpr NavAid kNavAids[] = {
    {1, 47.4647f, 8.5492f, 432, 0, 0, "LSZH", "Zurich"},
    {4, 47.4750f, 8.5000f, 450, 11440, 0, "KLO", "Kloten VOR"},
    {2, 47.5500f, 8.4000f, 500, 310, 0, "ZH", "Zurich NDB"},
    {512, 47.3000f, 8.7000f, 0, 0, 0, "GIPOL", "GIPOL"},
};
constexpr int kNavAidCount = sizeof kNavAids / sizeof kNavAids[0];

struct FmsEntry {
    TVPMNavType type = 0;
    std::string id;
    TVPMNavRef ref = kNoNavAid;
    int altitude = 0;
    float lat = 0, lon = 0;
};

struct FlightPlan {
    std::array<FmsEntry, kFmsEntries> entries;
    int displayed = 0, destination = 0;
    int Count() const {
        int n = 0;
        for (int i = 0; i < kFmsEntries; ++i)
            if (entries[i].type) n = i + 1;
        return n;
    }
};

std::array<FlightPlan, kFlightPlans> s_plans;

bool ValidIndex(int i) { return i >= 0 && i < kFmsEntries; }
FlightPlan& Plan(TVPMNavFlightPlan p) { return s_plans[p == 1 ? 1 : 0]; }

void GetEntry(TVPMNavFlightPlan p, int i, TVPMNavType* type, char* id, TVPMNavRef* ref,
              int* alt, float* lat, float* lon) {
    if (!ValidIndex(i)) return;
    const FmsEntry& e = Plan(p).entries[i];
    if (type) *type = e.type;
    if (id) snprintf(id, 32, "%s", e.id.c_str());
    if (ref) *ref = e.ref;
    if (alt) *alt = e.altitude;
    if (lat) *lat = e.lat;
    if (lon) *lon = e.lon;
}

void SetEntryNav(TVPMNavFlightPlan p, int i, TVPMNavRef ref, int alt) {
    if (!ValidIndex(i) || ref < 0 || ref >= kNavAidCount) return;
    const NavAid& n = kNavAids[ref];
    Plan(p).entries[i] = {n.type, n.id, ref, alt, n.lat, n.lon};
}

void SetEntryLatLon(TVPMNavFlightPlan p, int i, float lat, float lon, int alt,
                    const char* id = nullptr) {
    if (!ValidIndex(i)) return;
    Plan(p).entries[i] = {2048, id ? id : "LATLON", kNoNavAid, alt, lat, lon};
}

void FillNavAidSlots(TVPMHooks& h) {
    h.TVPMGetFirstNavAid_f = [] { return kNavAidCount ? 0 : kNoNavAid; };
    h.TVPMGetNextNavAid_f = [](TVPMNavRef ref) {
        return ref >= 0 && ref + 1 < kNavAidCount ? ref + 1 : kNoNavAid;
    };
    h.TVPMFindFirstNavAidOfType_f = [](TVPMNavType type) {
        for (int i = 0; i < kNavAidCount; ++i)
            if (kNavAids[i].type & type) return i;
        return kNoNavAid;
    };
    h.TVPMFindLastNavAidOfType_f = [](TVPMNavType type) {
        for (int i = kNavAidCount - 1; i >= 0; --i)
            if (kNavAids[i].type & type) return i;
        return kNoNavAid;
    };
    h.TVPMFindNavAid_f = [](const char* name, const char* id, float*, float*, int* freq,
                            TVPMNavType type) {
        for (int i = 0; i < kNavAidCount; ++i) {
            const NavAid& n = kNavAids[i];
            if (type && !(n.type & type)) continue;
            if (name && !strstr(n.name, name)) continue;
            if (id && !strstr(n.id, id)) continue;
            if (freq && *freq != n.frequency) continue;
            return i;
        }
        return kNoNavAid;
    };
    h.TVPMGetNavAidInfo_f = [](TVPMNavRef ref, TVPMNavType* type, float* lat, float* lon,
                               float* height, int* freq, float* heading, char* id, char* name,
                               char* reg) {
        if (ref < 0 || ref >= kNavAidCount) {
            if (type) *type = 0;
            return;
        }
        const NavAid& n = kNavAids[ref];
        if (type) *type = n.type;
        if (lat) *lat = n.lat;
        if (lon) *lon = n.lon;
        if (height) *height = n.height;
        if (freq) *freq = n.frequency;
        if (heading) *heading = n.heading;
        if (id) snprintf(id, 32, "%s", n.id);
        if (name) snprintf(name, 256, "%s", n.name);
        if (reg) *reg = 1;
    };
    h.TVPMGetGPSDestinationType_f = [] { return Plan(0).Count() ? Plan(0).entries[0].type : 0; };
    h.TVPMGetGPSDestination_f = [] {
        const FlightPlan& p = Plan(0);
        return p.Count() ? p.entries[p.destination].ref : kNoNavAid;
    };
}

void FillFmsSlots(TVPMHooks& h) {
    h.TVPMCountFMSEntries_f = [] { return Plan(0).Count(); };
    h.TVPMGetDisplayedFMSEntry_f = [] { return Plan(0).displayed; };
    h.TVPMGetDestinationFMSEntry_f = [] { return Plan(0).destination; };
    h.TVPMSetDisplayedFMSEntry_f = [](int i) {
        if (ValidIndex(i)) Plan(0).displayed = i;
    };
    h.TVPMSetDestinationFMSEntry_f = [](int i) {
        if (ValidIndex(i)) Plan(0).destination = i;
    };
    h.TVPMGetFMSEntryInfo_f = [](int i, TVPMNavType* t, char* id, TVPMNavRef* r, int* a,
                                 float* la, float* lo) { GetEntry(0, i, t, id, r, a, la, lo); };
    h.TVPMSetFMSEntryInfo_f = [](int i, TVPMNavRef r, int a) { SetEntryNav(0, i, r, a); };
    h.TVPMSetFMSEntryLatLon_f = [](int i, float la, float lo, int a) {
        SetEntryLatLon(0, i, la, lo, a);
    };
    h.TVPMClearFMSEntry_f = [](int i) {
        if (ValidIndex(i)) Plan(0).entries[i] = FmsEntry{};
    };
}

void FillFlightPlanSlots(TVPMHooks& h) {
    h.TVPMCountFMSFlightPlanEntries_f = [](TVPMNavFlightPlan p) { return Plan(p).Count(); };
    h.TVPMGetDisplayedFMSFlightPlanEntry_f = [](TVPMNavFlightPlan p) { return Plan(p).displayed; };
    h.TVPMGetDestinationFMSFlightPlanEntry_f = [](TVPMNavFlightPlan p) {
        return Plan(p).destination;
    };
    h.TVPMSetDisplayedFMSFlightPlanEntry_f = [](TVPMNavFlightPlan p, int i) {
        if (ValidIndex(i)) Plan(p).displayed = i;
    };
    h.TVPMSetDestinationFMSFlightPlanEntry_f = [](TVPMNavFlightPlan p, int i) {
        if (ValidIndex(i)) Plan(p).destination = i;
    };
    h.TVPMSetDirectToFMSFlightPlanEntry_f = [](TVPMNavFlightPlan p, int i) {
        if (ValidIndex(i)) Plan(p).destination = Plan(p).displayed = i;
    };
    h.TVPMGetFMSFlightPlanEntryInfo_f = [](TVPMNavFlightPlan p, int i, TVPMNavType* t, char* id,
                                           TVPMNavRef* r, int* a, float* la, float* lo) {
        GetEntry(p, i, t, id, r, a, la, lo);
    };
    h.TVPMSetFMSFlightPlanEntryInfo_f = [](TVPMNavFlightPlan p, int i, TVPMNavRef r, int a) {
        SetEntryNav(p, i, r, a);
    };
    h.TVPMSetFMSFlightPlanEntryLatLon_f = [](TVPMNavFlightPlan p, int i, float la, float lo,
                                             int a) { SetEntryLatLon(p, i, la, lo, a); };
    h.TVPMSetFMSFlightPlanEntryLatLonWithId_f = [](TVPMNavFlightPlan p, int i, float la, float lo,
                                                   int a, const char* id, unsigned int) {
        SetEntryLatLon(p, i, la, lo, a, id);
    };
    h.TVPMClearFMSFlightPlanEntry_f = [](TVPMNavFlightPlan p, int i) {
        if (ValidIndex(i)) Plan(p).entries[i] = FmsEntry{};
    };
    h.TVPMLoadFMSFlightPlan_f = [](int p, const char*, unsigned int) { Plan(p) = FlightPlan{}; };
    h.TVPMSaveFMSFlightPlan_f = [](int p, char* out, unsigned int size) -> unsigned int {
        std::string text;
        for (int i = 0; i < Plan(p).Count(); ++i) text += Plan(p).entries[i].id + "\n";
        if (out && size) snprintf(out, size, "%s", text.c_str());
        return static_cast<unsigned int>(text.size());
    };
}

}  // namespace

void FillNavigationSlots(TVPMHooks& h) {
    FillNavAidSlots(h);
    FillFmsSlots(h);
    FillFlightPlanSlots(h);
}

}  // namespace tvpmhost
