// TVPMLoaderContext.cpp: who is calling: the plugin-thread check, current-plugin names and the end-of-callback weather check.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

// Frames between the plugin's call and the stack walk: the walk itself, the
// check, and the checked entry point.
constexpr int kFramesToOffendingCaller = 3;

void PrintAndLog(const char* line) {
    printf("%s", line);
    fflush(stdout);
    TVPMDebugString(line);
}

const char* DebugPluginField(std::string PluginRecord::*field) {
    TVPMPluginID id = gDispatchedPlugin;
    if (id == -1) return "[NO_PLUGIN_ID]";
    if (id == 0) return "[TVPM_PLUGIN_TORVANE]";
    if (id < 0) return "[Bad plugin ID low]";
    if (id >= TVPMCountPlugins()) return "[Bad plugin ID high]";
    return (gAllPlugins[static_cast<size_t>(id)].*field).c_str();
}

__attribute__((noinline, noreturn)) void ReportThreadViolation(TVPMPluginID offender,
                                                                const char* func,
                                                                const char* file, int line) {
    char text[2048];
    snprintf(text, sizeof text, "Threading violation calling %s (%s:%d)\n", func, file, line);
    TVPMSendErrorTo(text, offender);
    PrintAndLog(text);
    char name[256] = "", path[256] = "", signature[256] = "";
    TVPMGetPluginInfo(offender, name, path, signature, nullptr);
    snprintf(text, sizeof text, "Violation by %s (%s - %s)\n", name, signature, path);
    PrintAndLog(text);
    abort();
}

}  // namespace

__attribute__((noinline)) void __TVPMValidateThreadSafety(const char* func, const char* file,
                                                          int line) {
    if (pthread_equal(pthread_self(), gPluginThread)) return;
    TVPMPluginID offender = TVPMPluginFromDLL(TVPMGetDLLForCaller(kFramesToOffendingCaller));
    ReportThreadViolation(offender, func, file, line);
}

const char* DebugCurrentPluginName() { return DebugPluginField(&PluginRecord::name); }
const char* DebugCurrentPluginSignature() { return DebugPluginField(&PluginRecord::signature); }

TVPM_API const char* TVPMDebugGetCurrentPluginName(void) {
    if (pthread_equal(pthread_self(), gPluginThread)) return DebugCurrentPluginName();
    for (int depth = 0; depth < 10; ++depth) {
        const PluginRecord* r = TVPMGetPluginRecord(TVPMPluginFromDLL(TVPMGetDLLForCaller(depth)));
        if (r && r->dllRef) return r->name.c_str();
    }
    return "";
}

void TVPMReportUnclosedWeatherUpdate() {
    const TVPMPluginID id = gDispatchedPlugin;
    TVPMWeatherCleanupHook(id);
    TVPMLogPluginWarning(
        "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate() from the same "
        "callback. This is a plugin bug.");
    TVPMSendErrorTo("TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate()", id);
}
