// TVPMProcessing.cpp: the flight-loop scheduler: loops created, scheduled and destroyed by plugins, and the per-pass walk that calls the due ones.
#include <array>
#include <limits>
#include <unordered_set>

#include "TVPMProcessingPrivate.h"
#include "TVPMUnitHooks.h"
#include "UTL_timing.h"

TVPMResourceList<TVPMFlightLoopRecord> gFlightLoops;
int gLastCallNumber = 0;
float gLastCallTime = 0;

TVPM_FAMILY_RECORD_COUNT("flight loops",
                         [](TVPMPluginID id) { return gFlightLoops.CountOwnedBy(id); });

namespace {

constexpr int kCreateStructSize = 24;
constexpr unsigned kPhaseCount = 2;
constexpr float kNever = std::numeric_limits<float>::quiet_NaN();

// Never destroyed, like the list itself: a host may still shut down from its
// own static destructors.
std::array<TVPMFlightLoopDueTable, kPhaseCount>& s_due =
    *new std::array<TVPMFlightLoopDueTable, kPhaseCount>;
// The records handed out and not yet removed: handles are checked against it.
std::unordered_set<const void*>& s_live = *new std::unordered_set<const void*>;

float HostElapsedTime() { return gHooks ? gHooks->TVPMGetElapsedTime_f() : 0.0f; }

TVPMFlightLoopDueTable* TableFor(TVPMFlightLoopPhaseType phase) {
    return static_cast<unsigned>(phase) < kPhaseCount ? &s_due[static_cast<unsigned>(phase)] : nullptr;
}

// The due tables keep their holes while anything holds gFlightLoops.
void CompactIfIdle() {
    if (gFlightLoops.IterationDepth() != 0) return;
    for (TVPMFlightLoopDueTable& table : s_due)
        if (table.NeedsCompacting()) table.Compact();
}

// Runs walk with gFlightLoops held: removals during it are deferred, in the
// list and in the due tables alike, and purged when the outermost hold ends.
template <class F>
void WhileHeld(F&& walk) {
    {
        TVPMListHold<TVPMFlightLoopRecord> hold(gFlightLoops);
        walk();
    }
    CompactIfIdle();
}

TVPMFlightLoopRecord* LiveRecord(TVPMFlightLoopID id) {
    return id && s_live.count(id) ? static_cast<TVPMFlightLoopRecord*>(id) : nullptr;
}

void Reschedule(TVPMFlightLoopRecord* r) {
    if (TVPMFlightLoopDueTable* table = TableFor(r->phase)) table->Refresh(r);
}

// Takes the record out of the handle set and its due table; the list entry
// is the caller's to remove.
void Unschedule(TVPMFlightLoopRecord* r) {
    if (s_live.erase(r))
        if (TVPMFlightLoopDueTable* table = TableFor(r->phase)) table->Remove(r);
}

void RemoveRecord(TVPMFlightLoopRecord* r) {
    Unschedule(r);
    gFlightLoops.Remove(r);
    CompactIfIdle();
}

bool OwnedByCaller(const TVPMFlightLoopRecord* r, const char* refusal) {
    if (r->plugin == TVPMGetDispatchedPlugin()) return true;
    TVPMSendError(refusal);
    return false;
}

void SetSchedule(TVPMFlightLoopRecord* r, float interval, int relativeToNow) {
    if (relativeToNow) r->lastCallTime = HostElapsedTime();
    r->interval = interval;
    Reschedule(r);
}

void ReportBadCreateParams(const TVPMCreateFlightLoop_t& p) {
    if (p.structSize != kCreateStructSize) TVPMSendError("Illegal struct size for TVPMCreateFlightLoop");
    if (static_cast<unsigned>(p.phase) >= kPhaseCount)
        TVPMSendError("Illegal phase type for TVPMCreateFlightLoop");
    if (!p.callbackFunc) TVPMSendError("Null callback for TVPMCreateFlightLoop");
}

// Runs one due loop in its owner's context, timed, and stores its answer as
// the next schedule. A disabled owner's loop stays due, untouched.
void RunDue(TVPMFlightLoopRecord* r, float now) {
    float next = r->interval;  // a throwing loop keeps its schedule
    const TVPMCalled called =
        TVPMCallPluginTimed(r->plugin, TVPMCallSite::kFlightLoop, tvpm_cb_flight_loop, [&] {
            next = r->callback(now - r->lastCallTime, now, gLastCallNumber, r->refcon);
        });
    if (called == TVPMCalled::kNo) return;
    r->interval = next;
    r->lastCallTime = now;
    r->lastCallNumber = gLastCallNumber;
    Reschedule(r);
}

// Calls callback for every record with this callback and refcon, head first,
// dead ones included; stops when it returns false.
template <class F>
void ForEachMatching(TVPMFlightLoop_f cb, void* refcon, F&& f) {
    WhileHeld([&] {
        TVPMWalk<TVPMFlightLoopRecord, TVPMVisit::kLiveAndRemoved> walk(gFlightLoops);
        while (TVPMFlightLoopRecord* r = walk.Next())
            if (r->callback == cb && r->refcon == refcon && !f(r)) return;
    });
}

}  // namespace

// ---- Due table ------------------------------------------------------------------

void TVPMFlightLoopDueTable::Add(TVPMFlightLoopRecord* r) {
    r->dueIndex = static_cast<int>(entries_.size());
    entries_.push_back({kNever, kNever, r});
    Refresh(r);
}

void TVPMFlightLoopDueTable::Remove(TVPMFlightLoopRecord* r) {
    if (r->dueIndex < 0) return;
    entries_[static_cast<size_t>(r->dueIndex)] = {kNever, kNever, nullptr};
    r->dueIndex = -1;
    ++holes_;
}

void TVPMFlightLoopDueTable::Refresh(const TVPMFlightLoopRecord* r) {
    if (r->dueIndex < 0) return;
    TVPMFlightLoopDue& e = entries_[static_cast<size_t>(r->dueIndex)];
    e.dueTime = e.dueCycle = kNever;
    if (!r->callback) return;
    if (r->interval > 0)
        e.dueTime = r->lastCallTime + r->interval;
    else if (r->interval < 0)
        e.dueCycle = static_cast<float>(r->lastCallNumber) - r->interval;
}

void TVPMFlightLoopDueTable::Compact() {
    size_t kept = 0;
    for (const TVPMFlightLoopDue& e : entries_) {
        if (!e.record) continue;
        e.record->dueIndex = static_cast<int>(kept);
        entries_[kept++] = e;
    }
    entries_.resize(kept);
    holes_ = 0;
}

// ---- Interface ------------------------------------------------------------------

TVPM_API float TVPMGetElapsedTime(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return HostElapsedTime();
}

TVPM_API int TVPMGetCycleNumber(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gLastCallNumber;
}

TVPM_API TVPMFlightLoopID TVPMCreateFlightLoop(TVPMCreateFlightLoop_t* inParams) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inParams) {
        TVPMSendError("Illegal struct size for TVPMCreateFlightLoop");
        return nullptr;
    }
    // Only plugins that listen for errors are checked, and no finding stops
    // the creation.
    if (TVPMHasError()) ReportBadCreateParams(*inParams);
    TVPMFlightLoopRecord* r = new TVPMFlightLoopRecord;
    r->lastCallTime = HostElapsedTime();
    r->lastCallNumber = gLastCallNumber;
    r->interval = 0;
    r->phase = inParams->phase;
    r->callback = inParams->callbackFunc;
    r->refcon = inParams->refcon;
    r->plugin = TVPMGetDispatchedPlugin();
    gFlightLoops.Add(r);
    s_live.insert(r);
    if (TVPMFlightLoopDueTable* table = TableFor(r->phase)) table->Add(r);
    return r;
}

TVPM_API void TVPMDestroyFlightLoop(TVPMFlightLoopID inFlightLoopID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMFlightLoopRecord* r = LiveRecord(inFlightLoopID);
    if (!r || !OwnedByCaller(r, "Attempt to remove a flight loop callback owned by another plugin."))
        return;
    RemoveRecord(r);
}

TVPM_API void TVPMScheduleFlightLoop(TVPMFlightLoopID inFlightLoopID, float inInterval,
                                     int inRelativeToNow) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMFlightLoopRecord* r = LiveRecord(inFlightLoopID);
    if (!r ||
        !OwnedByCaller(r, "Attempt to schedule a flight loop callback owned by another plugin."))
        return;
    // The cycle count is not restarted: a cycle interval still counts from the
    // last call or the creation.
    SetSchedule(r, inInterval, inRelativeToNow);
}

TVPM_API void TVPMRegisterFlightLoopCallback(TVPMFlightLoop_f inFlightLoop, float inInterval,
                                             void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMCreateFlightLoop_t params{kCreateStructSize, tvpm_FlightLoop_Phase_BeforeFlightModel,
                                  inFlightLoop, inRefcon};
    TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&params), inInterval, 0);
}

TVPM_API void TVPMUnregisterFlightLoopCallback(TVPMFlightLoop_f inFlightLoop, void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    ForEachMatching(inFlightLoop, inRefcon, [](TVPMFlightLoopRecord* r) {
        RemoveRecord(r);
        return false;
    });
}

TVPM_API void TVPMSetFlightLoopCallbackInterval(TVPMFlightLoop_f inFlightLoop, float inInterval,
                                                int inRelativeToNow, void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    ForEachMatching(inFlightLoop, inRefcon, [&](TVPMFlightLoopRecord* r) {
        SetSchedule(r, inInterval, inRelativeToNow);
        return true;
    });
}

// ---- Unit hooks ------------------------------------------------------------------

void TVPMDoFlightLoopProcessing(float inElapsedTime, int inEvent) {
    ++gLastCallNumber;
    WhileHeld([&] {
        const TVPMFlightLoopDueTable& table = s_due[inEvent != 0 ? 1 : 0];
        const float now = inElapsedTime;
        const float cycle = static_cast<float>(gLastCallNumber);
        // Newest first; records created during the walk lie past the start.
        for (size_t i = table.size(); i-- > 0;) {
            const TVPMFlightLoopDue& e = table[i];
            if ((now >= e.dueTime) | (cycle >= e.dueCycle)) RunDue(e.record, now);
        }
    });
    // A reload asked for during the pass runs only once the walk is over, so
    // that no callback's plugin is unloaded under it.
    if (gScheduleReload) TVPMReloadPluginsInternal();
}

void TVPMProcessingCleanupHook(TVPMPluginID id) {
    gFlightLoops.RemoveOwnedBy(id, Unschedule);
    CompactIfIdle();
}
