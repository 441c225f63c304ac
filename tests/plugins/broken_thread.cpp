// broken_thread.cpp: a test plugin that calls the interface from a worker thread of its own.
#include <cstring>
#include <thread>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMPlugin.h"

namespace {

int Draw(TVPMDrawingPhase, int, void*) { return 1; }

// Kept after the call, so that the call is not a tail call and the worker's
// frame (in this plugin) is the caller TVPM sees on the stack.
volatile int s_registered = 0;

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Thread");
    strcpy(outSignature, "test.broken.thread");
    strcpy(outDescription, "Registers a draw callback from a worker thread.");
    return 1;
}

TVPM_PLUGIN_API int TPluginEnable(void) {
    std::thread worker([] { s_registered = TVPMRegisterDrawCallback(Draw, tvpm_Phase_Window, 0, nullptr); });
    worker.join();
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
