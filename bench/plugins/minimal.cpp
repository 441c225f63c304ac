// minimal.cpp: the smallest useful plugin, loaded in many copies by the start-up and broadcast benchmarks.
#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMProcessing.h"

// Set by the benchmark program while it loads the copies without the library.
extern "C" int tvpm_bench_bare_loads __attribute__((weak));

namespace {

long s_messages = 0;

float Loop(float, float, int, void*) { return 0; }
int Draw(TVPMDrawingPhase, int, void*) { return 1; }

// Each copy signs with its own file name, so that no copy is a duplicate.
const char* FileName() {
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(&Loop), &info) || !info.dli_fname) return "minimal.tvp";
    const char* slash = strrchr(info.dli_fname, '/');
    return slash ? slash + 1 : info.dli_fname;
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    snprintf(outName, 256, "%s", FileName());
    snprintf(outSig, 256, "bench.%s", FileName());
    snprintf(outDesc, 256, "benchmark plugin");
    if (&tvpm_bench_bare_loads && tvpm_bench_bare_loads) return 1;
    TVPMRegisterFlightLoopCallback(Loop, 1.0f, nullptr);
    TVPMRegisterDrawCallback(Draw, tvpm_Phase_Objects, 0, nullptr);
    return 1;
}
TVPM_PLUGIN_API void TPluginStop(void) {}
TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }
TVPM_PLUGIN_API void TPluginDisable(void) {}
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) { ++s_messages; }
