// unit_resource_list.cpp: the plugin-owned record list against a reference model, under random walks and changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <memory>
#include <new>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "TVPMPrivate.h"

TVPMHooks* gHooks = nullptr;

// ---- allocation counting ---------------------------------------------------------

static long s_allocations = 0;

// Out of line, so that the optimiser does not pair malloc() and free() with
// new- and delete-expressions and call them mismatched.
__attribute__((noinline)) void* operator new(std::size_t size) {
    ++s_allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* p) noexcept { std::free(p); }
__attribute__((noinline)) void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

struct Rec : TVPMResource_t<Rec> {
    explicit Rec(int i) : id(i) { ++live; }
    ~Rec() { --live; }
    int id;
    static int live;
};
int Rec::live = 0;

using List = TVPMResourceList<Rec>;

struct Report {
    std::string condition, file;
    int line;
};
std::vector<Report> s_reports;

void RecordAssertion(const char* condition, const char* file, int line) {
    s_reports.push_back({condition, file, line});
}

class ResourceList : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.TVPMHandleAssertFailed_f = RecordAssertion;
        gHooks = &hooks;
        s_reports.clear();
        Rec::live = 0;
    }
    void TearDown() override {
        // Empty whatever the test left, outside any walk.
        while (list.IterationDepth() > 0) list.EndIterate();
        while (Rec* r = list.Head()) list.Remove(r);
        EXPECT_EQ(Rec::live, 0);
        gHooks = nullptr;
    }

    Rec* Add(int id) {
        Rec* r = new Rec(id);
        list.Add(r);
        return r;
    }
    // Ids of the whole chain, dead records included, head first.
    std::vector<int> Chain() const {
        std::vector<int> out;
        for (Rec* r = list.Head(); r; r = r->get_next()) out.push_back(r->id);
        return out;
    }
    std::vector<int> Walked() {
        std::vector<int> out;
        for (TVPMWalk<Rec> w(list); Rec* r = w.Next();) out.push_back(r->id);
        return out;
    }
    std::vector<int> WalkedBackwards() {
        std::vector<int> out;
        for (TVPMReverseWalk<Rec> w(list); Rec* r = w.Next();) out.push_back(r->id);
        return out;
    }

    TVPMHooks hooks{};
    List list;
};

// ---- the reference model -------------------------------------------------------------

// What the list should hold: the chain in order (dead records stay linked until
// the outermost walk ends) and which of them are dead.
struct Model {
    std::list<int> chain;
    std::set<int> dead;

    std::vector<int> Live() const {
        std::vector<int> out;
        for (int id : chain)
            if (!dead.count(id)) out.push_back(id);
        return out;
    }
    void Purge() {
        for (int id : dead) chain.remove(id);
        dead.clear();
    }
};

// An open walk and what it must still visit: the chain as it was when the walk
// began (records added later land at the head and are not reached).
struct OpenWalk {
    std::unique_ptr<TVPMWalk<Rec>> walk;
    std::vector<int> snapshot;
    size_t pos = 0;
    bool exact = true;  // cleared when the order is changed under the walk
};

class RandomOps : public ResourceList {
protected:
    Rec* Find(int id) {
        for (Rec* r = list.Head(); r; r = r->get_next())
            if (r->id == id) return r;
        return nullptr;
    }
    int PickLive() {
        std::vector<int> live = model.Live();
        if (live.empty()) return -1;
        return live[std::uniform_int_distribution<size_t>(0, live.size() - 1)(rng)];
    }
    void CheckAgainstModel(int step) {
        SCOPED_TRACE("step " + std::to_string(step));
        ASSERT_EQ(Chain(), std::vector<int>(model.chain.begin(), model.chain.end()));
        for (Rec* r = list.Head(); r; r = r->get_next())
            ASSERT_EQ(r->is_dead(), model.dead.count(r->id) == 1) << r->id;
        ASSERT_EQ(Rec::live, static_cast<int>(model.chain.size()));
        ASSERT_EQ(list.IterationDepth(), static_cast<int>(walks.size()));
        ASSERT_TRUE(s_reports.empty()) << s_reports.front().condition;
    }
    void StepWalk(OpenWalk& w) {
        Rec* got = w.walk->Next();
        if (!w.exact) {
            if (got) {
                ASSERT_FALSE(got->is_dead());
            }
            return;
        }
        while (w.pos < w.snapshot.size() && model.dead.count(w.snapshot[w.pos])) ++w.pos;
        if (w.pos == w.snapshot.size()) {
            ASSERT_EQ(got, nullptr);
        } else {
            ASSERT_NE(got, nullptr);
            ASSERT_EQ(got->id, w.snapshot[w.pos++]);
        }
    }
    void CloseWalk() {
        walks.pop_back();
        if (walks.empty()) model.Purge();
    }

    void RunOne(int op) {
        switch (op) {
            case 0:
            case 1: {  // register
                Add(nextId);
                model.chain.push_front(nextId++);
                break;
            }
            case 2:
            case 3: {  // unregister a live record (during walks it only dies)
                int id = PickLive();
                if (id < 0) break;
                list.Remove(Find(id));
                if (walks.empty())
                    model.chain.remove(id);
                else
                    model.dead.insert(id);
                break;
            }
            case 4: {  // unregister a record that is already dead: chained once
                if (model.dead.empty()) break;
                int id = *model.dead.begin();
                list.Remove(Find(id));
                break;
            }
            case 5: {  // bring to front
                int id = PickLive();
                if (id < 0) break;
                list.MoveToFront(Find(id));
                model.chain.remove(id);
                model.chain.push_front(id);
                for (OpenWalk& w : walks) w.exact = false;
                break;
            }
            case 6: {  // begin a nested walk
                OpenWalk w;
                w.walk = std::make_unique<TVPMWalk<Rec>>(list);
                w.snapshot.assign(model.chain.begin(), model.chain.end());
                walks.push_back(std::move(w));
                break;
            }
            case 7:
            case 8: {  // advance one of the open walks
                if (walks.empty()) break;
                StepWalk(walks[std::uniform_int_distribution<size_t>(0, walks.size() - 1)(rng)]);
                break;
            }
            case 9: {  // end the innermost walk
                if (walks.empty()) break;
                CloseWalk();
                break;
            }
            case 10: {  // a complete walk nested in whatever is open
                EXPECT_EQ(Walked(), model.Live());
                if (walks.empty()) model.Purge();
                break;
            }
            case 11: {  // a complete walk from the back
                std::vector<int> expected = model.Live();
                std::reverse(expected.begin(), expected.end());
                EXPECT_EQ(WalkedBackwards(), expected);
                if (walks.empty()) model.Purge();
                break;
            }
        }
    }

    std::mt19937 rng;
    Model model;
    std::vector<OpenWalk> walks;
    int nextId = 1;
};

}  // namespace

TEST_F(RandomOps, MatchesTheReferenceModelUnderRandomWalksAndChanges) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        rng.seed(seed);
        for (int step = 0; step < 400; ++step) {
            RunOne(std::uniform_int_distribution<int>(0, 11)(rng));
            CheckAgainstModel(step);
            if (HasFatalFailure()) return;
        }
        while (!walks.empty()) {
            CloseWalk();
            CheckAgainstModel(-1);
        }
        ASSERT_TRUE(model.dead.empty());
        while (Rec* r = list.Head()) list.Remove(r);
        model.chain.clear();
        ASSERT_EQ(Rec::live, 0);
    }
}

TEST_F(ResourceList, NewRecordsComeFirstAndReverseWalksStartAtTheBack) {
    Add(1);
    Add(2);
    Add(3);
    EXPECT_EQ(Walked(), (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(WalkedBackwards(), (std::vector<int>{1, 2, 3}));
    list.MoveToFront(list.Head()->get_next()->get_next());
    EXPECT_EQ(Walked(), (std::vector<int>{1, 3, 2}));
    EXPECT_TRUE(s_reports.empty());
}

TEST_F(ResourceList, RemovingTheRunningRecordDefersItsFreeToTheEndOfTheWalk) {
    Add(3);
    Rec* running = Add(2);
    Add(1);
    std::vector<int> visited;
    {
        TVPMWalk<Rec> w(list);
        while (Rec* r = w.Next()) {
            visited.push_back(r->id);
            if (r == running) {
                list.Remove(r);  // unregistering itself from inside its callback
                EXPECT_TRUE(running->is_dead());
                EXPECT_EQ(Chain(), (std::vector<int>{1, 2, 3}));
                EXPECT_EQ(Rec::live, 3);
            }
        }
        EXPECT_EQ(Rec::live, 3);
    }
    EXPECT_EQ(visited, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(Rec::live, 2);
    EXPECT_EQ(Chain(), (std::vector<int>{1, 3}));
    EXPECT_TRUE(s_reports.empty());
}

TEST_F(ResourceList, RecordRemovedInAnInnerWalkLivesUntilTheOuterWalkEnds) {
    Rec* victim = Add(2);
    Add(1);
    {
        TVPMWalk<Rec> outer(list);
        ASSERT_EQ(outer.Next()->id, 1);
        {
            TVPMWalk<Rec> inner(list);
            EXPECT_EQ(list.IterationDepth(), 2);
            list.Remove(victim);
            list.Remove(victim);  // twice in one walk: still chained once
        }
        EXPECT_EQ(list.IterationDepth(), 1);
        EXPECT_EQ(Rec::live, 2);
        EXPECT_EQ(outer.Next(), nullptr);  // the dead record is skipped
    }
    EXPECT_EQ(Rec::live, 1);
    EXPECT_EQ(Chain(), (std::vector<int>{1}));
    EXPECT_TRUE(s_reports.empty());
}

TEST_F(ResourceList, RecordAddedDuringAWalkIsNotReachedByIt) {
    Add(1);
    std::vector<int> visited;
    for (TVPMWalk<Rec> w(list); Rec* r = w.Next();) {
        visited.push_back(r->id);
        if (r->id == 1) Add(2);
    }
    EXPECT_EQ(visited, (std::vector<int>{1}));
    EXPECT_EQ(Walked(), (std::vector<int>{2, 1}));
}

TEST_F(ResourceList, RemovalOutsideAWalkFreesAtOnce) {
    Rec* r = Add(1);
    list.Remove(r);
    EXPECT_EQ(Rec::live, 0);
    EXPECT_EQ(list.Head(), nullptr);
}

TEST_F(ResourceList, EarlyExitFromAWalkStillEndsIt) {
    Rec* victim = Add(2);
    Add(1);
    auto findFirst = [&]() -> Rec* {
        for (TVPMWalk<Rec> w(list); Rec* r = w.Next();) {
            list.Remove(victim);
            return r;
        }
        return nullptr;
    };
    EXPECT_EQ(findFirst()->id, 1);
    EXPECT_EQ(list.IterationDepth(), 0);
    EXPECT_EQ(Rec::live, 1);
}

TEST_F(ResourceList, UnmatchedEndIterateReportsOnceAndStaysAtZero) {
    list.EndIterate();
    ASSERT_EQ(s_reports.size(), 1u);
    EXPECT_EQ(s_reports[0].condition, "in_iterate > 0");
    EXPECT_EQ(s_reports[0].file, "TVPM/TVPMPrivate.h");
    EXPECT_EQ(s_reports[0].line, 547);
    EXPECT_EQ(list.IterationDepth(), 0);
    list.BeginIterate();
    EXPECT_EQ(list.IterationDepth(), 1);
    list.EndIterate();
    EXPECT_EQ(s_reports.size(), 1u);
}

TEST_F(ResourceList, WithoutAHandlerNothingIsReported) {
    hooks.TVPMHandleAssertFailed_f = nullptr;
    list.EndIterate();
    EXPECT_EQ(list.IterationDepth(), 0);
    gHooks = nullptr;
    list.EndIterate();
    Add(1);
    EXPECT_EQ(Walked(), (std::vector<int>{1}));
    gHooks = &hooks;
    hooks.TVPMHandleAssertFailed_f = RecordAssertion;
    EXPECT_TRUE(s_reports.empty());
}

// The record's links in their fixed order, to break them on purpose.
struct Links {
    Rec* next;
    bool dead;
    Rec* prev;
    Rec* next_dead;
};
static_assert(sizeof(TVPMResource_t<Rec>) == sizeof(Links), "links are the whole base");

TEST_F(ResourceList, SelfCheckReportsBrokenLinksWithTheirFixedLines) {
    Add(3);
    Rec* middle = Add(2);
    Add(1);
    Links* links = reinterpret_cast<Links*>(static_cast<TVPMResource_t<Rec>*>(middle));
    Rec* savedPrev = links->prev;
    links->prev = nullptr;
    list.Validate();
    ASSERT_EQ(s_reports.size(), 1u);
    EXPECT_EQ(s_reports[0].condition, "h->get_next() == NULL || h->get_next()->get_prev() == h");
    EXPECT_EQ(s_reports[0].line, 585);
    links->prev = savedPrev;

    s_reports.clear();
    links->dead = true;  // dead but not on the dead chain
    list.Validate();
    ASSERT_EQ(s_reports.size(), 1u);
    EXPECT_EQ(s_reports[0].condition, "h->is_dead() == (d != NULL)");
    EXPECT_EQ(s_reports[0].file, "TVPM/TVPMPrivate.h");
    EXPECT_EQ(s_reports[0].line, 590);

    s_reports.clear();
    hooks.TVPMHandleAssertFailed_f = nullptr;
    list.Validate();  // no handler: no walk, no report
    hooks.TVPMHandleAssertFailed_f = RecordAssertion;
    links->dead = false;
    list.Validate();
    EXPECT_TRUE(s_reports.empty());
}

TEST_F(ResourceList, WalksDoNotAllocate) {
    for (int i = 0; i < 8; ++i) Add(i);
    Rec* victim = list.Head()->get_next();
    const long before = s_allocations;
    {
        TVPMWalk<Rec> outer(list);
        while (Rec* r = outer.Next())
            if (r == victim) list.Remove(r);
        for (TVPMReverseWalk<Rec> back(list); back.Next();) {
        }
    }
    EXPECT_EQ(s_allocations, before);
    EXPECT_EQ(Rec::live, 7);
}

TEST_F(ResourceList, MovingTheUpcomingRecordToTheFrontNeitherRepeatsNorSkips) {
    Add(3);
    Add(2);
    Add(1);  // chain 1 2 3
    std::vector<int> forward;
    {
        TVPMWalk<Rec> walk(list);
        while (Rec* r = walk.Next()) {
            forward.push_back(r->id);
            if (r->id == 1) list.MoveToFront(r->get_next());  // 2 jumps behind the cursor
        }
    }
    EXPECT_EQ(forward, (std::vector<int>{1, 3}));
    EXPECT_EQ(Chain(), (std::vector<int>{2, 1, 3}));

    std::vector<int> backward;
    {
        TVPMReverseWalk<Rec> walk(list);
        while (Rec* r = walk.Next()) {
            backward.push_back(r->id);
            if (r->id == 3) list.MoveToFront(r->get_prev());  // 1 jumps to the far end
        }
    }
    EXPECT_EQ(backward, (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(Chain(), (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(s_reports.empty());
}

TEST_F(ResourceList, ADeadRecordIsNotMovedAndIsStillPurged) {
    Add(2);
    Rec* one = Add(1);
    {
        TVPMWalk<Rec> walk(list);
        list.Remove(one);
        list.MoveToFront(list.Head()->get_next());
        list.MoveToFront(one);
        EXPECT_TRUE(one->is_dead());
    }
    EXPECT_EQ(Chain(), (std::vector<int>{2}));
    EXPECT_EQ(Rec::live, 1);
    EXPECT_TRUE(s_reports.empty());
}
