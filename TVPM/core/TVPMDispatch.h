// TVPMDispatch.h: the current-plugin scope around every call into a plugin, and the plugin-thread check.
#pragma once

#include "TVPMPluginTable.h"

// ---------------------------------------------------------------------------
// Calling into a plugin.

// Weather update opened by the current plugin and not yet closed, or -1.
extern TVPMPluginID gPendingWeatherUpdate;
// Closes and reports a weather update that a callback left open.
void TVPMReportUnclosedWeatherUpdate();

// Marks a plugin as the current plugin for the scope's lifetime; operator()
// says whether the plugin may be called (it is enabled).
class StDispatchCallback {
public:
    explicit StDispatchCallback(TVPMPluginID id)
        : mOK(IsCallable(id)), mOld(gDispatchedPlugin), mReallyOld(gClientPlugin) {
        gClientPlugin = gDispatchedPlugin;
        gDispatchedPlugin = id;
    }
    ~StDispatchCallback() {
        if (gPendingWeatherUpdate != -1) TVPMReportUnclosedWeatherUpdate();
        gDispatchedPlugin = mOld;
        gClientPlugin = mReallyOld;
    }
    StDispatchCallback(const StDispatchCallback&) = delete;
    StDispatchCallback& operator=(const StDispatchCallback&) = delete;

    bool operator()() const { return mOK; }

private:
    static bool IsCallable(TVPMPluginID id) {
        if (gAllPlugins.empty()) return id == 0;
        return TVPMPluginIsEnabled(id);
    }

    bool mOK;
    TVPMPluginID mOld;
    TVPMPluginID mReallyOld;
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
