// TVPMCallPlugin.h: the one way to call into plugin code: dispatch scope, optional timing, and the exception policy.
//
// Every call from the library into a plugin goes through TVPMCallPlugin (or,
// for the loader's TPluginStart/TPluginStop, which run before and after the
// plugin is callable, and for the error callback, which runs in the context of
// the call that misused the interface, TVPMGuardPluginCall).
//
//   int handled = 1;   // the neutral answer, kept if the plugin throws
//   TVPMCallPlugin(r->plugin, TVPMCallSite::kCommand,
//                  [&] { handled = r->callback(cmd, phase, r->refcon); });
//
// The exception policy: no C++ exception from a plugin crosses into the
// simulator's C frames. It is caught, logged once per plugin and site kind as
// "[plugin name]: ...", and the call counts as having returned whatever the
// caller initialised its result to (its neutral value). Forced unwinding
// (thread cancellation) is never swallowed.
//
// Plugin thread only.
#pragma once

#include <cxxabi.h>

#include <exception>
#include <utility>

#include "TVPMDispatch.h"
#include "UTL_timing.h"

// What kind of callback is being called; each kind is reported once per plugin.
enum class TVPMCallSite : unsigned {
    kStart,
    kEnable,
    kDisable,
    kStop,
    kMessage,
    kErrorCallback,
    kDelivery,
    kFlightLoop,
    kDataAccessor,
    kSharedData,
    kDataNotification,
    kCommand,
    kMenu,
    kDraw,
    kWindow,
    kKey,
    kHotKey,
    kAvionics,
    kMapLayer,
    kMapCreation,
    kCamera,
    kAIControl,
    kObjectLoaded,
    kSound,
    kCount
};
static_assert(static_cast<unsigned>(TVPMCallSite::kCount) <= 32, "sites are kept in a 32-bit mask");

// The site's name in log lines ("draw callback", "TPluginStart", ...).
const char* TVPMCallSiteName(TVPMCallSite site);

// Logs the caught exception under the plugin's name, once per plugin and site.
// what is null when the exception was not a std::exception.
void TVPMReportPluginThrow(TVPMPluginID id, TVPMCallSite site, const char* what)
    __attribute__((cold, noinline));

enum class TVPMCalled {
    kNo,        // the plugin is not callable (disabled or gone); fn did not run
    kReturned,  // fn ran and returned
    kThrew,     // fn ran and threw; the exception was caught and reported
};

// Runs fn, catching what it throws under the policy above and reporting it
// under the plugin who() names.
template <class Who, class F>
inline TVPMCalled TVPMGuardCall(Who who, TVPMCallSite site, F&& fn) {
    try {
        std::forward<F>(fn)();
        return TVPMCalled::kReturned;
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (const std::exception& e) {
        TVPMReportPluginThrow(who(), site, e.what());
    } catch (...) {
        TVPMReportPluginThrow(who(), site, nullptr);
    }
    return TVPMCalled::kThrew;
}

// Runs fn under the policy above. The caller has already made id the current
// plugin.
template <class F>
inline TVPMCalled TVPMGuardPluginCall(TVPMPluginID id, TVPMCallSite site, F&& fn) {
    return TVPMGuardCall([id] { return id; }, site, std::forward<F>(fn));
}

// Calls fn with plugin id current when id may be called (it is enabled).
template <class F>
inline TVPMCalled TVPMCallPlugin(TVPMPluginID id, TVPMCallSite site, F&& fn) {
    StDispatchCallback scope(id);
    if (!scope()) return TVPMCalled::kNo;
    return TVPMGuardPluginCall(id, site, std::forward<F>(fn));
}

// Returns what fn returns, called with plugin id current, or R() when fn
// throws; for a caller that keeps its owner's record place
// (TVPMPluginTable::PlaceOf(id)) and has seen place.enabled, so that the
// owner costs no table lookup. Any other owner goes through TVPMCallPlugin,
// which decides.
template <class R, class F>
inline R TVPMCallEnabledPlugin(const PluginRecord& place, TVPMPluginID id, TVPMCallSite site,
                               F&& fn) {
    StCurrentPlugin scope(id, place.dllRef);
    R result = R();
    // Within the scope the callee is the current plugin, so a throw is
    // reported under it and id need not be kept across the call.
    TVPMGuardCall([] { return gDispatchedPlugin; }, site, [&] { result = fn(); });
    return result;
}

// Calls fn with plugin id current whether or not it is enabled: for the
// loader's entry points (enable runs before the plugin counts as enabled,
// disable after), deliveries handed over while it is being enabled, and what
// a family still owes a plugin inside its own disable path (its last sound
// completions). Does nothing for an ID that has no record.
template <class F>
inline TVPMCalled TVPMCallPluginEvenIfDisabled(TVPMPluginID id, TVPMCallSite site, F&& fn) {
    StDispatchCallback scope(id);
    if (!TVPMGetPluginRecord(id)) return TVPMCalled::kNo;
    return TVPMGuardPluginCall(id, site, std::forward<F>(fn));
}

// The same, timed under category for the host's callback timings.
template <class F>
inline TVPMCalled TVPMCallPluginTimed(TVPMPluginID id, TVPMCallSite site,
                                      TVPMPluginCallbackType category, F&& fn) {
    StDispatchCallback scope(id);
    if (!scope()) return TVPMCalled::kNo;
    StCallbackTimer timer(category, id);
    return TVPMGuardPluginCall(id, site, std::forward<F>(fn));
}

// The library acting as the simulator itself (plugin ID 0) for the scope's
// lifetime: host events, menu picks the simulator owns, notifications it sends.
class StActingAsSimulator {
public:
    StActingAsSimulator() : scope_(0) {}
    StActingAsSimulator(const StActingAsSimulator&) = delete;
    StActingAsSimulator& operator=(const StActingAsSimulator&) = delete;

private:
    StDispatchCallback scope_;
};
