// worker_thread.cpp: a test plugin that calls the interface from a thread of its own, as a careless plugin would.
#include <dlfcn.h>
#include <pthread.h>

#include <cstdio>
#include <cstring>

#include "TVPM/TVPMPlugin.h"

// Declared for the simulator in TVPMHost.h; plugins may call it too.
extern "C" const char* TVPMDebugGetCurrentPluginName(void);

namespace {

// Messages understood, with what their parameter points to.
constexpr int kNameFromWorker = 1;    // char[256]: receives the name seen by a worker thread
constexpr int kNameOnMainThread = 2;  // char[256]: the same, on the plugin thread
constexpr int kCallFromWorker = 3;    // const char*: an interface function (int f(void*, int, int, void*))

void ReportError(const char* text) { fprintf(stderr, "worker plugin was told: %s", text); }

void* NameFromWorker(void* buffer) {
    const char* name = TVPMDebugGetCurrentPluginName();
    snprintf(static_cast<char*>(buffer), 256, "%s", name ? name : "(null)");
    return buffer;
}

typedef int (*AnyCheckedCall)(void*, int, int, void*);
volatile int s_result;

void* CallFromWorker(void* fn) {
    // Called through a plain call (not a tail call) so that this frame, in the
    // plugin, is the one the library identifies as the caller.
    int result = reinterpret_cast<AnyCheckedCall>(fn)(nullptr, 0, 0, nullptr);
    s_result = result;
    return nullptr;
}

void RunOnWorker(void* (*body)(void*), void* arg) {
    pthread_t worker;
    if (pthread_create(&worker, nullptr, body, arg) == 0) pthread_join(worker, nullptr);
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    strcpy(outName, "Worker");
    strcpy(outSig, "test.worker_thread");
    strcpy(outDesc, "calls the interface from its own threads");
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}

TVPM_PLUGIN_API int TPluginEnable(void) {
    TVPMSetErrorCallback(ReportError);
    return 1;
}

TVPM_PLUGIN_API void TPluginDisable(void) {}

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int inMsg, void* inParam) {
    switch (inMsg) {
        case kNameFromWorker: RunOnWorker(NameFromWorker, inParam); break;
        case kNameOnMainThread: NameFromWorker(inParam); break;
        case kCallFromWorker:
            if (void* fn = dlsym(RTLD_DEFAULT, static_cast<const char*>(inParam)))
                RunOnWorker(CallFromWorker, fn);
            break;
        default: break;
    }
}

// For threads the test itself starts: the name TVPM gives code of this plugin.
extern "C" __attribute__((visibility("default"), noinline)) const char* WorkerThreadName(void) {
    const char* name = TVPMDebugGetCurrentPluginName();
    asm volatile("" ::: "memory");  // no tail call: this frame must be on the stack
    return name;
}
