// worker_thread.cpp: a test plugin that calls the interface from a thread of its own, as a careless plugin would.
#include <dlfcn.h>
#include <pthread.h>

#include <cstdio>
#include <cstring>

#include "TVPM/TVPMPlugin.h"

// Declared for the simulator in TVPMHost.h; plugins may call it too.
extern "C" const char* TVPMDebugGetCurrentPluginName(void);

namespace {

void ReportError(const char* text) { fprintf(stderr, "worker plugin was told: %s", text); }

// Receives the name TVPM gives the calling thread into a char[256].
void* NameFromWorker(void* buffer) {
    const char* name = TVPMDebugGetCurrentPluginName();
    snprintf(static_cast<char*>(buffer), 256, "%s", name ? name : "(null)");
    return buffer;
}

volatile int s_result;

// Calls an interface function as int f(void*, int, int, void*), through a
// plain call (not a tail call), so that this frame, in the plugin, is the one
// the library identifies as the caller.
void* CallFromWorker(void* fn) {
    s_result = reinterpret_cast<int (*)(void*, int, int, void*)>(fn)(nullptr, 0, 0, nullptr);
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

// Message 1 names a worker thread, 2 the plugin thread (into a char[256]);
// 3 calls the interface function its parameter names from a worker.
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int inMsg, void* inParam) {
    if (inMsg == 1) RunOnWorker(NameFromWorker, inParam);
    if (inMsg == 2) NameFromWorker(inParam);
    void* fn = inMsg == 3 ? dlsym(RTLD_DEFAULT, static_cast<const char*>(inParam)) : nullptr;
    if (fn) RunOnWorker(CallFromWorker, fn);
}

// For threads the test itself starts: the name TVPM gives code of this plugin.
extern "C" __attribute__((visibility("default"), noinline)) const char* WorkerThreadName(void) {
    const char* name = TVPMDebugGetCurrentPluginName();
    asm volatile("" ::: "memory");  // no tail call: this frame must be on the stack
    return name;
}
