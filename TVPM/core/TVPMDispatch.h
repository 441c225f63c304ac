// TVPMDispatch.h: the current-plugin scope around every call into a plugin, and the plugin-thread check.
#pragma once

#include "TVPMPluginTable.h"

// ---------------------------------------------------------------------------
// Calling into a plugin.

// Weather update opened by the current plugin and not yet closed, or -1.
extern TVPMPluginID gPendingWeatherUpdate;
// Closes and reports a weather update that a callback left open.
void TVPMReportUnclosedWeatherUpdate();

// The libraries whose code the current call chain has entered, innermost
// first: one link lives in each scope on the stack, so keeping the chain
// costs two stores per call. A library on it must not be closed yet.
struct TVPMCodeOnStack {
    const void* library;
    const TVPMCodeOnStack* below;
};
extern const TVPMCodeOnStack* gCodeOnStack;
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

// Marks a plugin as the current plugin for the scope's lifetime; operator()
// says whether the plugin may be called (it is enabled).
class StDispatchCallback {
public:
    explicit StDispatchCallback(TVPMPluginID id) : StDispatchCallback(id, TVPMGetPluginRecord(id)) {}
    ~StDispatchCallback() {
        if (gPendingWeatherUpdate != -1) TVPMReportUnclosedWeatherUpdate();
        gDispatchedPlugin = mOld;
        gClientPlugin = mReallyOld;
    }
    StDispatchCallback(const StDispatchCallback&) = delete;
    StDispatchCallback& operator=(const StDispatchCallback&) = delete;

    bool operator()() const { return mOK; }

private:
    StDispatchCallback(TVPMPluginID id, const PluginRecord* r)
        : mOK(r ? r->enabled : gAllPlugins.empty() && id == 0),
          mOld(gDispatchedPlugin),
          mReallyOld(gClientPlugin),
          mOnStack(r ? r->dllRef : nullptr) {
        gClientPlugin = gDispatchedPlugin;
        gDispatchedPlugin = id;
    }

    bool mOK;
    TVPMPluginID mOld;
    TVPMPluginID mReallyOld;
    StPluginCodeOnStack mOnStack;
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
