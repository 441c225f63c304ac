// TVPMDiagnostics.cpp: the diagnostics switch and the lines it adds to the log.
#include "TVPMDiagnostics.h"

#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "TVPMPrivate.h"

namespace {

// Data-item lookups may come from any thread.
std::mutex s_unknownLock;
std::set<std::pair<TVPMPluginID, std::string>> s_unknownReported;

std::string NameOf(TVPMPluginID who) {
    const PluginRecord* r = TVPMGetPluginRecord(who);
    if (!r) return "unknown";
    if (!r->name.empty()) return r->name;
    return r->path.substr(r->path.rfind('/') + 1);
}

// Straight to the simulator's log: TVPMDebugString checks its thread.
void Log(TVPMPluginID who, const char* kind, const std::string& text) {
    if (!gHooks) return;
    const std::string line = TVPM_DIAGNOSTICS_PREFIX + NameOf(who) + kind + text + "\n";
    gHooks->TVPMDebugString_f(line.c_str());
}

}  // namespace

TVPM_API void TVPMSetPluginDiagnostics(int inOn) { gTVPMDiagnostics = inOn != 0; }

void TVPMReadDiagnosticsSwitch() {
    const char* value = getenv(TVPM_DIAGNOSTICS_ENVIRONMENT);
    if (value && *value && std::string(value) != "0") gTVPMDiagnostics = true;
}

void TVPMDiagnoseError(const char* text, TVPMPluginID who) {
    if (!gTVPMDiagnostics || !text || who <= 0) return;
    std::string line(text);
    while (!line.empty() && line.back() == '\n') line.pop_back();
    Log(who, TVPM_DIAGNOSTICS_ERROR, line);
}

void TVPMDiagnoseUnknownDataRef(const char* name, TVPMPluginID who) {
    if (!gTVPMDiagnostics || !name || who <= 0) return;
    {
        std::lock_guard<std::mutex> lock(s_unknownLock);
        if (!s_unknownReported.emplace(who, name).second) return;
    }
    Log(who, TVPM_DIAGNOSTICS_UNKNOWN_DATA, name);
}

void TVPMDiagnoseLeftAtUnload(TVPMPluginID id) {
    if (!gTVPMDiagnostics) return;
    for (const TVPMFamilyRecordCount& f : TVPMFamilyRecordCounts())
        if (const size_t left = f.count(id)) Log(id, TVPM_DIAGNOSTICS_LEFT_AT_UNLOAD, std::to_string(left) + " " + f.family);
}
