// TVPMCallPlugin.cpp: reporting a C++ exception that a plugin let escape into the library.
#include <string>

#include "TVPMPrivate.h"
#include "TVPMUtilities.h"

const char* TVPMCallSiteName(TVPMCallSite site) {
    static const char* const kNames[] = {
        "TPluginStart",         "TPluginEnable",        "TPluginDisable",
        "TPluginStop",          "TPluginReceiveMessage", "error callback",
        "delivery callback",    "flight loop",          "data accessor",
        "shared-data callback", "data-item notification", "command handler",
        "menu handler",         "draw callback",        "window callback",
        "key callback",         "hot key callback",     "avionics callback",
        "map layer callback",   "map creation callback", "camera callback",
        "AI control callback",  "object loaded callback", "sound callback",
    };
    static_assert(sizeof(kNames) / sizeof(kNames[0]) == static_cast<size_t>(TVPMCallSite::kCount),
                  "one name per site");
    const auto i = static_cast<size_t>(site);
    return i < static_cast<size_t>(TVPMCallSite::kCount) ? kNames[i] : "callback";
}

void TVPMReportPluginThrow(TVPMPluginID id, TVPMCallSite site, const char* what) {
    PluginRecord* r = TVPMGetPluginRecord(id);
    if (!r) return;
    const uint32_t bit = 1u << static_cast<unsigned>(site);
    if (r->reportedThrows & bit) return;
    r->reportedThrows |= bit;
    std::string line = "[" + r->name + "]: a C++ exception escaped from its " +
                       TVPMCallSiteName(site) + " (" + (what ? what : "not a std::exception") +
                       "); TVPM caught it and carried on as if the call had done nothing.\n";
    TVPMDebugString(line.c_str());
}
