// TVPMAssert.h: internal checks reported through the simulator's assertion slot.
#pragma once

#include "TVPMPluginTable.h"

// ---------------------------------------------------------------------------
// Plugin-owned resource lists.

// Resource-list assertion reports name this header and fixed lines (see
// TVPMResourceList), so that a host's assertion log stays comparable across builds.
constexpr const char* kTVPMPrivateSource = "TVPM/TVPMPrivate.h";

// True when the host supplied an assertion handler; checks are skipped otherwise.
inline bool TVPMHasAssertHandler() { return gHooks && gHooks->TVPMHandleAssertFailed_f; }
// Reports a failed internal check to the host's assertion handler, if any.
inline void TVPMFailAssertion(const char* condition, const char* file, int line) {
    if (TVPMHasAssertHandler()) gHooks->TVPMHandleAssertFailed_f(condition, file, line);
}

// The one form of every internal check: report when the condition is false
// (or when there is no handler, in which case reporting is a no-op).
inline void TVPMCheckAssertion(bool ok, const char* condition, const char* file, int line) {
    if (!ok || !TVPMHasAssertHandler()) TVPMFailAssertion(condition, file, line);
}

