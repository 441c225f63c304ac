// TVPMLoaderContext.cpp: who is calling: the plugin-thread check, current-plugin names and the end-of-callback weather check.
#include <execinfo.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

// Frames looked at when searching for the checked entry point's caller.
constexpr int kMaxFramesToOffendingCaller = 16;

// The plugin whose code called the checked entry point: the frame right after
// the entry point's own return address. Found by matching rather than by a
// fixed depth, so that frames added by instrumented builds do not shift it.
TVPMPluginID OffendingPlugin(void* intoEntryPoint) {
    void* frames[kMaxFramesToOffendingCaller];
    const int count = backtrace(frames, kMaxFramesToOffendingCaller);
    for (int i = 0; i + 1 < count; ++i)
        if (frames[i] == intoEntryPoint)
            return TVPMPluginFromDLL(TVPMGetDLLForInstruction(frames[i + 1]));
    return TVPM_NO_PLUGIN_ID;
}

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
    ReportThreadViolation(OffendingPlugin(__builtin_return_address(0)), func, file, line);
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
