// TVPMRecordKit.h: the one way a family keeps plugin-owned records, walks them while callbacks change them, and releases them per plugin.
//
// Overview
// --------
// Every family keeps records that a plugin created (a probe, a sound, a hot
// key) and calls back into plugins while it walks them. A callback may
// register, unregister, disable its own plugin or reload everything, so a walk
// must survive any change to the container it walks. The kit's rule, as in an
// observer list: removal during a walk only marks the record; the last walk to
// end compacts. A marked record is invisible to handle checks, counts and
// ordinary walks, and its memory stays valid until that walk ends, so the
// pointer a walk holds across a callback never dangles.
//
// Two containers share that vocabulary:
//   - TVPMResourceList<T> (TVPMPrivate.h): the intrusive list whose layout and
//     assertion texts are fixed; newest first; window stacking order.
//   - TVPMRecordSet<T> (below): records held by pointer in creation order, with
//     a handle index, for families whose records are kept in vectors.
// Both offer Contains(handle), Remove(record), RemoveOwnedBy(id),
// CountOwnedBy(id) and an RAII walk with a named TVPMVisit policy.
//
// Every record names its owner in a member `TVPMPluginID plugin`.
//
// Example:
//
//   struct TVPMProbe_t { TVPMPluginID plugin; int simProbe; };
//   TVPMRecordSet<TVPMProbe_t> gProbes;
//
//   TVPMProbeRef TVPMCreateProbe(...) { return gProbes.Add(new TVPMProbe_t{gDispatchedPlugin, slot}); }
//   void TVPMDestroyProbe(TVPMProbeRef h) {
//       auto* p = static_cast<TVPMProbe_t*>(h);
//       if (!gProbes.Contains(p)) return;      // stale, foreign or destroyed handle
//       gProbes.Remove(p);                     // freed now, or when the walk ends
//   }
//   for (TVPMSetWalk<TVPMProbe_t> w(gProbes); TVPMProbe_t* p = w.Next();) { ... }
//   void TVPMSceneryCleanupHook(TVPMPluginID id) { gProbes.RemoveOwnedBy(id); }
//   TVPM_FAMILY_RECORD_COUNT("probes", [](TVPMPluginID id) { return gProbes.CountOwnedBy(id); });
//
// Plugin thread only, like every family's records.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

#include "TVPMHost.h"

// Which records a walk visits. Nearly every walk wants kLive; kLiveAndRemoved
// is for the rare walk that must still see records removed during an outer
// walk (a clean-up that releases what a callback already unregistered).
enum class TVPMVisit { kLive, kLiveAndRemoved };

// Records held by pointer in creation order. Handles are the records'
// addresses; a hash index makes Contains O(1).
template <class T>
class TVPMRecordSet {
public:
    TVPMRecordSet() = default;
    TVPMRecordSet(const TVPMRecordSet&) = delete;
    TVPMRecordSet& operator=(const TVPMRecordSet&) = delete;
    ~TVPMRecordSet() = default;

    // Takes ownership; returns the record, which is the plugin's handle.
    T* Add(T* r) {
        slots_.push_back(Slot{std::unique_ptr<T>(r), false});
        index_.insert(r);
        return r;
    }

    // True for a live record of this set: false for null, stale, removed and
    // foreign handles, without dereferencing them.
    bool Contains(const void* handle) const {
        return handle && index_.count(static_cast<const T*>(handle)) != 0;
    }

    // Frees the record now, or marks it and frees it when the last walk ends.
    // Removing a handle that is not live does nothing.
    void Remove(T* r) {
        if (!index_.erase(r)) return;
        for (Slot& s : slots_)
            if (s.record.get() == r) {
                s.removed = true;
                break;
            }
        needsCompact_ = true;
        CompactIfIdle();
    }

    // Removes every live record of plugin id in one pass; onRemove, when
    // given, sees each record first (to release what it holds at the host).
    // Returns how many were removed.
    template <class F>
    size_t RemoveOwnedBy(TVPMPluginID id, F&& onRemove) {
        // Held like a walk: onRemove may reach code that adds or removes.
        size_t n = 0;
        ++walks_;
        for (size_t i = 0, end = slots_.size(); i < end; ++i) {
            if (slots_[i].removed || slots_[i].record->plugin != id) continue;
            T* r = slots_[i].record.get();
            slots_[i].removed = true;
            needsCompact_ = true;
            index_.erase(r);
            ++n;
            onRemove(r);
        }
        --walks_;
        CompactIfIdle();
        return n;
    }
    size_t RemoveOwnedBy(TVPMPluginID id) {
        return RemoveOwnedBy(id, [](T*) {});
    }

    size_t CountOwnedBy(TVPMPluginID id) const {
        size_t n = 0;
        for (const Slot& s : slots_)
            if (!s.removed && s.record->plugin == id) ++n;
        return n;
    }

    // Live records, creation order.
    size_t size() const { return index_.size(); }
    bool empty() const { return index_.empty(); }

private:
    template <class U, TVPMVisit V>
    friend class TVPMSetWalk;

    struct Slot {
        std::unique_ptr<T> record;
        bool removed;
    };

    void CompactIfIdle() {
        if (walks_ != 0 || !needsCompact_) return;
        size_t out = 0;
        for (size_t i = 0; i < slots_.size(); ++i)
            if (!slots_[i].removed) slots_[out++] = std::move(slots_[i]);
        slots_.resize(out);
        needsCompact_ = false;
    }

    std::vector<Slot> slots_;
    std::unordered_set<const T*> index_;
    int walks_ = 0;
    bool needsCompact_ = false;
};

// Walks a TVPMRecordSet in creation order (NewestFirst: the reverse). Records
// added during the walk are not visited; records removed during it are skipped
// unless the policy says otherwise. Usage:
//   for (TVPMSetWalk<T> w(set); T* r = w.Next();) { ... }
template <class T, TVPMVisit Visit = TVPMVisit::kLive>
class TVPMSetWalk {
public:
    explicit TVPMSetWalk(TVPMRecordSet<T>& set, bool newestFirst = false)
        : set_(set), end_(set.slots_.size()), next_(newestFirst ? end_ : 0), back_(newestFirst) {
        ++set_.walks_;
    }
    ~TVPMSetWalk() {
        --set_.walks_;
        set_.CompactIfIdle();
    }
    TVPMSetWalk(const TVPMSetWalk&) = delete;
    TVPMSetWalk& operator=(const TVPMSetWalk&) = delete;

    T* Next() {
        // Slots never move while a walk is open, so indices stay meaningful.
        while (back_ ? next_ > 0 : next_ < end_) {
            auto& s = set_.slots_[back_ ? --next_ : next_++];
            if (Visit == TVPMVisit::kLiveAndRemoved || !s.removed) return s.record.get();
        }
        return nullptr;
    }

private:
    TVPMRecordSet<T>& set_;
    size_t end_;
    size_t next_;
    bool back_;
};

// ---------------------------------------------------------------------------
// The clean-up check: every family registers how many records a plugin still
// owns; after a plugin's clean-up hooks have run, each count must be zero.

using TVPMRecordCounter = std::function<size_t(TVPMPluginID)>;

struct TVPMFamilyRecordCount {
    const char* family;
    TVPMRecordCounter count;
};

// Families register at static initialisation; the list lives for the process.
std::vector<TVPMFamilyRecordCount>& TVPMFamilyRecordCounts();

struct TVPMRegisterFamilyRecordCount {
    TVPMRegisterFamilyRecordCount(const char* family, TVPMRecordCounter count) {
        TVPMFamilyRecordCounts().push_back({family, std::move(count)});
    }
};

#define TVPM_KIT_CONCAT2(a, b) a##b
#define TVPM_KIT_CONCAT(a, b) TVPM_KIT_CONCAT2(a, b)
// One line per kind of record a family keeps, at namespace scope in its unit.
#define TVPM_FAMILY_RECORD_COUNT(family, counter)                                      \
    static const TVPMRegisterFamilyRecordCount TVPM_KIT_CONCAT(s_recordCount_, __LINE__)( \
        family, counter)

// In debug and sanitizer builds: reports every family that still holds records
// of plugin id, through the host's assertion slot when it has one and
// otherwise by aborting. Release builds compile it to nothing.
void TVPMCheckNothingOwnedBy(TVPMPluginID id);
