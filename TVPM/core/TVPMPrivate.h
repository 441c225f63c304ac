// TVPMPrivate.h: internal machinery shared by every unit: host globals, the plugin table, dispatch scopes, deliveries and resource lists.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "TVPMHost.h"
#include "TVPMRecordKit.h"

// ---------------------------------------------------------------------------
// Host globals, written once by TVPMInitializePlugins.

extern TVPMHooks* gHooks;
extern void* gSelf;
extern char gDirSeparator[2];
extern pthread_t gPluginThread;

// ---------------------------------------------------------------------------
// Deferred deliveries: results of asynchronous work that reach a plugin only
// while it is enabled.

class TVPMDelivery {
public:
    TVPMDelivery() = default;
    virtual ~TVPMDelivery() = default;
    TVPMDelivery(const TVPMDelivery&) = delete;
    TVPMDelivery& operator=(const TVPMDelivery&) = delete;

    // Hands the result over (targetGone false) or, when the recipient no longer
    // exists (targetGone true), only disposes of itself. Either way the delivery
    // may delete itself.
    virtual void DeliverToPlugin(bool targetGone) = 0;

    void Unlink() {
        if (prev) prev->next = next;
        if (next) next->prev = prev;
        next = prev = nullptr;
    }
    void InsertAfter(TVPMDelivery* where) {
        next = where->next;
        prev = where;
        if (where->next) where->next->prev = this;
        where->next = this;
    }

    TVPMPluginID plugin = -1;
    TVPMDelivery* next = nullptr;
    TVPMDelivery* prev = nullptr;
};

// A queue head; never delivered itself.
class TVPMDeliveryHead : public TVPMDelivery {
public:
    void DeliverToPlugin(bool) override {}
    bool empty() const { return next == nullptr; }
    TVPMDelivery* first() const { return next; }
    void PushFront(TVPMDelivery* d) { d->InsertAfter(this); }
};

// Deliveries whose sender was unloaded while the work was in flight.
extern TVPMDeliveryHead orphaned;

void TVPMQueueDelivery(TVPMDelivery* d);
void TVPMSendDelivery(TVPMDelivery* d);

// ---------------------------------------------------------------------------
// The plugin table.

typedef int (*TVPMPluginStart_f)(char* outName, char* outSignature, char* outDescription);
typedef void (*TVPMPluginStop_f)(void);
typedef int (*TVPMPluginEnable_f)(void);
typedef void (*TVPMPluginDisable_f)(void);
typedef void (*TVPMPluginReceiveMessage_f)(TVPMPluginID inFrom, int inMessage, void* inParam);
typedef void (*TVPMErrorCallback_f)(const char* inMessage);

enum TVPMFeatureIndex {
    kFeatureWantsReflections = 0,
    kFeatureUseNativePaths = 1,
    kFeatureUseNativeWidgetWindows = 2,
    kFeatureWantsDatarefNotifications = 3,
    kFeatureCount = 4,
};

struct PluginRecord {
    void* dllRef = nullptr;
    std::string name, path, signature, description;
    TVPMPluginStop_f exitFunc = nullptr;
    TVPMPluginEnable_f enableFunc = nullptr;
    TVPMPluginDisable_f disableFunc = nullptr;
    TVPMPluginReceiveMessage_f receiveMessageFunc = nullptr;
    TVPMErrorCallback_f errorFunc = nullptr;
    bool enabled = false;
    int features[kFeatureCount] = {0, 0, 0, 0};
    bool weatherUpdatePending = false;
    // TVPMCallSite bits whose caught exception was already logged.
    uint32_t reportedThrows = 0;
    TVPMDeliveryHead outstanding;
    TVPMDeliveryHead pending;
};

// The plugin table, indexed by TVPMPluginID. Records are held by pointer so
// that they (and the delivery queue heads inside them) never move while
// plugins are appended or trimmed, and so that finding a record on the hot
// paths is one indexed load.
class TVPMPluginTable {
public:
    size_t size() const { return records_.size(); }
    bool empty() const { return records_.empty(); }
    PluginRecord& operator[](size_t id) const { return *records_[id]; }
    PluginRecord& back() const { return *records_.back(); }
    PluginRecord& emplace_back() {
        records_.push_back(std::make_unique<PluginRecord>());
        return *records_.back();
    }
    void pop_back() { records_.pop_back(); }
    void clear() { records_.clear(); }
    void resize(size_t n) {
        while (records_.size() > n) records_.pop_back();
        while (records_.size() < n) emplace_back();
    }

    class iterator {
    public:
        explicit iterator(const std::unique_ptr<PluginRecord>* p) : p_(p) {}
        PluginRecord& operator*() const { return **p_; }
        iterator& operator++() {
            ++p_;
            return *this;
        }
        bool operator!=(const iterator& o) const { return p_ != o.p_; }

    private:
        const std::unique_ptr<PluginRecord>* p_;
    };
    iterator begin() const { return iterator(records_.data()); }
    iterator end() const { return iterator(records_.data() + records_.size()); }

private:
    std::vector<std::unique_ptr<PluginRecord>> records_;
};

extern TVPMPluginTable gAllPlugins;

// The plugin being called now (0 the host, -1 none) and the one that was
// current when it was entered.
extern TVPMPluginID gDispatchedPlugin;
extern TVPMPluginID gClientPlugin;

inline bool TVPMIsValidPluginID(TVPMPluginID id) {
    return id >= 0 && static_cast<size_t>(id) < gAllPlugins.size();
}
inline PluginRecord* TVPMGetPluginRecord(TVPMPluginID id) {
    return TVPMIsValidPluginID(id) ? &gAllPlugins[static_cast<size_t>(id)] : nullptr;
}

inline void TVPMSetDispatchedPlugin(int id) { gDispatchedPlugin = id; }
inline int TVPMGetDispatchedPlugin() { return gDispatchedPlugin; }
inline void TVPMSetClientPlugin(int id) { gClientPlugin = id; }
inline int TVPMGetClientPlugin() { return gClientPlugin; }

// Error reporting to the current plugin's error callback (nothing is logged).
void TVPMSendError(const char* msg);
int TVPMHasError();
void TVPMSendErrorTo(const char* msg, TVPMPluginID who);
// Logs "[name]: msg" for the current plugin.
void TVPMLogPluginWarning(const char* msg);
// printf-style line to the simulator's log; a no-op before start-up.
int TVPM_dprintf(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

int TVPMHasFeatureInternal(TVPMPluginID id, int index);
TVPMPluginID TVPMPluginFromDLL(void* dll);
const char* TVPMFindPluginForIP(void* ip, TVPMPluginID* out_id);
const char* DebugCurrentPluginName();
const char* DebugCurrentPluginSignature();

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
        const PluginRecord* r = TVPMGetPluginRecord(id);
        return r && r->enabled;
    }

    bool mOK;
    TVPMPluginID mOld;
    TVPMPluginID mReallyOld;
};

// ---------------------------------------------------------------------------
// The plugin-thread check: first statement of every checked entry point.

void __TVPMValidateThreadSafety(const char* func, const char* file, int line);

#define TVPM_CHECK_THREAD(name) __TVPMValidateThreadSafety(name, __FILE__, __LINE__)

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

// Base of every record kept in a TVPMResourceList; T derives from TVPMResource_t<T>.
template <class T>
class TVPMResource_t {
public:
    T* get_prev() const { return prev; }
    T* get_next() const { return next; }
    bool is_dead() const { return dead; }
    T* get_next_dead() const { return next_dead; }

    // Low-level layer: callers pass the list's head and dead pointers.
    static void TVPMAddResource(T*& head, T*& /*deadHead*/, T* r) {
        r->dead = false;
        r->prev = nullptr;
        r->next_dead = nullptr;
        r->next = head;
        if (head) head->prev = r;
        head = r;
    }
    // Marks r dead and chains it for later purging (once, however often it is
    // killed); raises needsClean either way.
    static void TVPMKillResource(T*& /*head*/, T*& deadHead, T* r, bool& needsClean) {
        if (!r->dead) {
            r->dead = true;
            r->next_dead = deadHead;
            deadHead = r;
        }
        needsClean = true;
    }
    // Unlinks r from the live chain and, when destroy is set, frees it.
    static void TVPMRemoveResource(T*& head, T*& /*deadHead*/, T* r, bool destroy) {
        if (head == r) head = r->next;
        if (r->prev) r->prev->next = r->next;
        if (r->next) r->next->prev = r->prev;
        r->prev = r->next = nullptr;
        if (destroy) delete r;
    }
    // Purges the whole dead chain.
    static void TVPMCleanResources(T*& head, T*& deadHead) {
        while (deadHead) {
            T* d = deadHead;
            deadHead = d->next_dead;
            TVPMRemoveResource(head, deadHead, d, true);
        }
    }

protected:
    TVPMResource_t() = default;
    ~TVPMResource_t() = default;

private:
    template <class U>
    friend class TVPMResourceList;
    T* next = nullptr;
    bool dead = false;
    T* prev = nullptr;
    T* next_dead = nullptr;
};

// A list of plugin-owned records that callbacks may change while it is being
// walked: a record removed during a walk is only marked dead and is freed when
// the outermost walk ends. Plugin thread only.
template <class T>
class TVPMResourceList {
    using R = TVPMResource_t<T>;

public:
    TVPMResourceList() = default;
    TVPMResourceList(const TVPMResourceList&) = delete;
    TVPMResourceList& operator=(const TVPMResourceList&) = delete;

    void Add(T* r) {
        Validate();
        R::TVPMAddResource(head, dead, r);
        Validate();
    }

    void Remove(T* r) {
        Validate();
        if (in_iterate == 0) {
            R::TVPMRemoveResource(head, dead, r, true);
        } else {
            R::TVPMKillResource(head, dead, r, needs_clean);
        }
        Validate();
    }

    T* BeginIterate() {
        Check(in_iterate >= 0, "in_iterate >= 0", kLineBeginIterate);
        ++in_iterate;
        return head;
    }

    void EndIterate() {
        Check(in_iterate > 0, "in_iterate > 0", kLineEndIterate);
        in_iterate = in_iterate > 0 ? in_iterate - 1 : 0;
        if (!needs_clean || in_iterate != 0) return;
        Validate();
        R::TVPMCleanResources(head, dead);
        needs_clean = false;
        Validate();
    }

    // Starts a walk that the caller runs from the tail towards the head with
    // get_prev(); returns the tail (the back-most record).
    T* BeginReverseIterate() {
        T* tail = BeginIterate();
        while (tail && tail->get_next()) tail = tail->get_next();
        return tail;
    }

    // A walk in progress: where it goes next. Registered walks have their
    // cursor stepped past a record that MoveToFront takes out from under them.
    struct Cursor {
        T* next = nullptr;
        bool backwards = false;
        Cursor* outer = nullptr;
    };
    void Attach(Cursor* c) {
        c->outer = walkers;
        walkers = c;
    }
    void Detach(Cursor* c) {
        for (Cursor** link = &walkers; *link; link = &(*link)->outer)
            if (*link == c) {
                *link = c->outer;
                return;
            }
    }

    // Re-links a live record at the head. A dead record stays where it is: it
    // is still chained for purging.
    void MoveToFront(T* r) {
        Validate();
        if (r != head && !r->is_dead()) {
            for (Cursor* c = walkers; c; c = c->outer)
                if (c->next == r) c->next = c->backwards ? r->get_prev() : r->get_next();
            R::TVPMRemoveResource(head, dead, r, false);
            R::TVPMAddResource(head, dead, r);
        }
        Validate();
    }

    void Clean() {
        if (in_iterate != 0) return;
        Validate();
        R::TVPMCleanResources(head, dead);
        needs_clean = false;
        Validate();
    }

    void Validate() const {
        if (!TVPMHasAssertHandler()) return;
        Check(!head || head->get_prev() == nullptr, "!head || head->get_prev() == NULL",
              kLineHeadHasNoPrev);
        for (T* h = head; h; h = h->get_next()) {
            Check(h->get_prev() == nullptr || h->get_prev()->get_next() == h,
                  "h->get_prev() == NULL || h->get_prev()->get_next() == h", kLinePrevLinksBack);
            Check(h->get_next() == nullptr || h->get_next()->get_prev() == h,
                  "h->get_next() == NULL || h->get_next()->get_prev() == h", kLineNextLinksBack);
            T* d = dead;
            while (d && d != h) d = d->get_next_dead();
            Check(h->is_dead() == (d != nullptr), "h->is_dead() == (d != NULL)",
                  kLineDeadMatchesChain);
        }
        for (T* d = dead; d; d = d->get_next_dead()) {
            Check(d->is_dead(), "d->is_dead()", kLineDeadIsMarked);
            T* h = head;
            while (h && h != d) h = h->get_next();
            Check(h != nullptr, "h != NULL", kLineDeadIsLinked);
        }
    }

    // The kit's vocabulary (TVPMRecordKit.h). Handles are record addresses;
    // Contains compares addresses only, so a stale handle is never read.
    bool Contains(const void* handle) const {
        if (!handle) return false;
        for (T* r = head; r; r = r->get_next())
            if (r == handle) return !r->is_dead();
        return false;
    }
    size_t CountOwnedBy(TVPMPluginID id) const {
        size_t n = 0;
        for (T* r = head; r; r = r->get_next())
            if (!r->is_dead() && r->plugin == id) ++n;
        return n;
    }
    // Removes (or, during a walk, kills) every live record of plugin id in one
    // pass; onRemove sees each record first. Returns how many.
    template <class F>
    size_t RemoveOwnedBy(TVPMPluginID id, F&& onRemove) {
        size_t n = 0;
        BeginIterate();
        for (T* r = head; r; r = r->get_next()) {
            if (r->is_dead() || r->plugin != id) continue;
            onRemove(r);
            Remove(r);
            ++n;
        }
        EndIterate();
        return n;
    }
    size_t RemoveOwnedBy(TVPMPluginID id) {
        return RemoveOwnedBy(id, [](T*) {});
    }

    // Read-only views for tests and diagnostics.
    T* Head() const { return head; }
    int IterationDepth() const { return in_iterate; }

private:
    enum CheckLine : int {
        kLineBeginIterate = 539,
        kLineEndIterate = 547,
        kLineHeadHasNoPrev = 581,
        kLinePrevLinksBack = 584,
        kLineNextLinksBack = 585,
        kLineDeadMatchesChain = 590,
        kLineDeadIsMarked = 595,
        kLineDeadIsLinked = 599,
    };

    static void Check(bool ok, const char* condition, int line) {
        TVPMCheckAssertion(ok, condition, kTVPMPrivateSource, line);
    }

    T* head = nullptr;
    T* dead = nullptr;
    int in_iterate = 0;
    bool needs_clean = false;
    Cursor* walkers = nullptr;
};

// Brackets a walk so that every exit path ends it (and purges), and keeps its
// cursor valid when callbacks re-link records. Forward walks go head to tail
// (newest or front-most first); records added during a walk land at the head
// and are not reached. Records killed during the walk are skipped unless the
// policy is TVPMVisit::kLiveAndRemoved.
// Usage: for (TVPMWalk<T> w(list); T* r = w.Next();) { ... }
template <class T, bool Backwards, TVPMVisit Visit = TVPMVisit::kLive>
class TVPMListWalk {
    using Cursor = typename TVPMResourceList<T>::Cursor;

public:
    explicit TVPMListWalk(TVPMResourceList<T>& l) : list(l) {
        cursor.next = Backwards ? l.BeginReverseIterate() : l.BeginIterate();
        cursor.backwards = Backwards;
        list.Attach(&cursor);
    }
    ~TVPMListWalk() {
        list.Detach(&cursor);
        list.EndIterate();
    }
    TVPMListWalk(const TVPMListWalk&) = delete;
    TVPMListWalk& operator=(const TVPMListWalk&) = delete;

    // The next live record, or null at the end.
    T* Next() {
        T*& cur = cursor.next;
        if (Visit == TVPMVisit::kLive)
            while (cur && cur->is_dead()) cur = Step(cur);
        T* r = cur;
        if (cur) cur = Step(cur);
        return r;
    }

private:
    static T* Step(T* r) { return Backwards ? r->get_prev() : r->get_next(); }

    TVPMResourceList<T>& list;
    Cursor cursor;
};

template <class T, TVPMVisit Visit = TVPMVisit::kLive>
using TVPMWalk = TVPMListWalk<T, false, Visit>;
// From the tail (back-most) towards the head (front-most).
template <class T, TVPMVisit Visit = TVPMVisit::kLive>
using TVPMReverseWalk = TVPMListWalk<T, true, Visit>;

#include "TVPMCallPlugin.h"
