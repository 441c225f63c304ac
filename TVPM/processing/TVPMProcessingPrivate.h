// TVPMProcessingPrivate.h: flight-loop records and the compact due table that the per-pass walk reads.
#pragma once

#include <vector>

#include "TVPM/TVPMProcessing.h"
#include "TVPMPrivate.h"

class TVPMFlightLoopRecord : public TVPMResource_t<TVPMFlightLoopRecord> {
public:
    float lastCallTime = 0;
    int lastCallNumber = 0;
    float interval = 0;
    TVPMFlightLoopPhaseType phase = tvpm_FlightLoop_Phase_BeforeFlightModel;
    TVPMFlightLoop_f callback = nullptr;
    TVPMPluginID plugin = -1;
    void* refcon = nullptr;
    // Position of this record's entry in its phase's due table; -1 when it
    // has none (a phase no pass runs, or the record was removed).
    int dueIndex = -1;
};

extern TVPMResourceList<TVPMFlightLoopRecord> gFlightLoops;
extern int gLastCallNumber;
extern float gLastCallTime;

// What a pass needs to decide that a record is not due, kept apart from the
// records so that skipping one reads 16 contiguous bytes. Exactly one of the
// two thresholds is a number; the other (or both, for a loop that is not
// scheduled) is NaN, which no comparison satisfies. A record is due when
// now >= dueTime (seconds interval) or pass counter >= dueCycle (a cycle
// interval), the same float sums the schedule defines.
struct TVPMFlightLoopDue {
    float dueTime;
    float dueCycle;
    TVPMFlightLoopRecord* record;  // null once the record is removed
};

// Due entries of one phase in creation order: a walk from the back visits
// records newest first, like the list. Removed records leave a hole until no
// pass is running.
class TVPMFlightLoopDueTable {
public:
    void Add(TVPMFlightLoopRecord* r);
    void Remove(TVPMFlightLoopRecord* r);
    // Recomputes the record's thresholds from its schedule.
    void Refresh(const TVPMFlightLoopRecord* r);
    // Drops the holes; only while no pass is walking.
    void Compact();
    bool NeedsCompacting() const { return holes_ > 0 && holes_ * 2 >= entries_.size(); }

    size_t size() const { return entries_.size(); }
    const TVPMFlightLoopDue& operator[](size_t i) const { return entries_[i]; }

private:
    std::vector<TVPMFlightLoopDue> entries_;
    size_t holes_ = 0;
};
