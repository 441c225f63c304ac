// TVPMDispatch.h: the current-plugin scope around every call into a plugin, and the plugin-thread check.
#pragma once

#include <cstdint>
#include <cstring>

#include "TVPMPluginTable.h"

// ---------------------------------------------------------------------------
// Calling into a plugin.

// Weather update opened by the current plugin and not yet closed, or -1.
extern TVPMPluginID gPendingWeatherUpdate TVPM_INTERNAL;
// Closes and reports a weather update that a callback left open.
void TVPMReportUnclosedWeatherUpdate();

// The libraries whose code the current call chain has entered, innermost
// first: one link lives in each scope on the stack, so keeping the chain
// costs two stores per call. A library on it must not be closed yet.
struct TVPMCodeOnStack {
    const void* library;
    const TVPMCodeOnStack* below;
};
extern const TVPMCodeOnStack* gCodeOnStack TVPM_INTERNAL;
bool TVPMIsLibraryOnStack(const void* library);

// Puts a library on the chain for the scope's lifetime.
class StPluginCodeOnStack {
public:
    explicit StPluginCodeOnStack(const void* library) : link_{library, gCodeOnStack} {
        gCodeOnStack = &link_;
    }
    ~StPluginCodeOnStack() { gCodeOnStack = link_.below; }
    StPluginCodeOnStack(const StPluginCodeOnStack&) = delete;
    StPluginCodeOnStack& operator=(const StPluginCodeOnStack&) = delete;

private:
    TVPMCodeOnStack link_;
};

// Makes a plugin the current plugin, with its library on the code chain, for
// the scope's lifetime, and runs the end-of-callback weather check when it
// ends. One frame (the chain link and the saved current plugins): entering
// is one load and one store for the current plugins and two stores for the
// chain, leaving one load for the weather check and two stores.
class StCurrentPlugin {
public:
    StCurrentPlugin(TVPMPluginID id, const void* library) : onStack_(library), saved_(gCurrentPlugins) {
        // The outer dispatched plugin becomes the client: one shift of the
        // word (the first member is its low half on this target).
        uint64_t word;
        memcpy(&word, &saved_, sizeof word);
        word = word << 32 | static_cast<uint32_t>(id);
        memcpy(&gCurrentPlugins, &word, sizeof word);
    }
    ~StCurrentPlugin() {
        if (__builtin_expect(gPendingWeatherUpdate != -1, 0)) TVPMReportUnclosedWeatherUpdate();
        gCurrentPlugins = saved_;
    }
    StCurrentPlugin(const StCurrentPlugin&) = delete;
    StCurrentPlugin& operator=(const StCurrentPlugin&) = delete;

private:
    StPluginCodeOnStack onStack_;  // leaves the chain after the restore above
    TVPMCurrentPlugins saved_;
};

// Marks a plugin as the current plugin for the scope's lifetime; operator()
// says whether the plugin may be called (it is enabled).
class StDispatchCallback {
public:
    explicit StDispatchCallback(TVPMPluginID id) : StDispatchCallback(id, TVPMGetPluginRecord(id)) {}
    StDispatchCallback(const StDispatchCallback&) = delete;
    StDispatchCallback& operator=(const StDispatchCallback&) = delete;

    bool operator()() const { return mOK; }

private:
    StDispatchCallback(TVPMPluginID id, const PluginRecord* r)
        : mOK(r ? r->enabled : gAllPlugins.empty() && id == 0), mScope(id, r ? r->dllRef : nullptr) {}

    bool mOK;
    StCurrentPlugin mScope;
};

// ---------------------------------------------------------------------------
// The plugin-thread check: first statement of every checked entry point.

void __TVPMValidateThreadSafety(const char* func, const char* file, int line);

// Names the checked function itself, so a moved or renamed function cannot
// report under a stale name.
#define TVPM_CHECK_THREAD() __TVPMValidateThreadSafety(__func__, __FILE__, __LINE__)

// Set when the simulator turns on plugin diagnostics; off by default.
extern bool gTVPMDiagnostics;
// First statement of every plugin-thread function whose thread the library
// does not otherwise check: checked only under diagnostics, one predictable
// branch when they are off.
#define TVPM_CHECK_THREAD_IF_DIAGNOSING()                                     \
    do {                                                                      \
        if (__builtin_expect(gTVPMDiagnostics, 0))                            \
            __TVPMValidateThreadSafety(__func__, __FILE__, __LINE__);         \
    } while (0)
