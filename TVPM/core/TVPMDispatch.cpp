// TVPMDispatch.cpp: the plugin-thread check, and the flag behind the end-of-callback weather check.
#include <execinfo.h>

#include <cstdio>
#include <cstdlib>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"

TVPMPluginID gPendingWeatherUpdate = -1;
bool gTVPMDiagnostics = false;
const TVPMCodeOnStack* gCodeOnStack = nullptr;

bool TVPMIsLibraryOnStack(const void* library) {
    for (const TVPMCodeOnStack* link = gCodeOnStack; link; link = link->below)
        if (link->library == library) return true;
    return false;
}

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

__attribute__((noinline, noreturn)) void ReportThreadViolation(TVPMPluginID offender,
                                                                const char* func,
                                                                const char* file, int line) {
    // The report calls functions that check their thread under diagnostics.
    gTVPMDiagnostics = false;
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
