// TVPMResourceList.h: the intrusive list of plugin-owned records that tolerates removal during a walk.
#pragma once

#include "TVPMAssert.h"
#include "TVPMRecordKit.h"

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

// Holds a list without walking it: while held nothing is freed, so a record
// looked up before a callback is still readable after it (check is_dead()).
// Usage: TVPMListHold<T> hold(list);
template <class T>
class TVPMListHold {
public:
    explicit TVPMListHold(TVPMResourceList<T>& l) : list(l) { list.BeginIterate(); }
    ~TVPMListHold() { list.EndIterate(); }
    TVPMListHold(const TVPMListHold&) = delete;
    TVPMListHold& operator=(const TVPMListHold&) = delete;

private:
    TVPMResourceList<T>& list;
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
