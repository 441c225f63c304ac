// unit_resource_list.cpp: the plugin-owned record list against a reference model, under random walks and changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "TVPMPrivate.h"
#include "support/CountingNew.h"

TVPMHooks* gHooks = nullptr;

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

// An open walk and what it must still visit: the chain as it was when the walk
// began (records added later land at the head and are not reached).
struct OpenWalk {
    std::unique_ptr<TVPMWalk<Rec>> walk;
    std::vector<int> snapshot;
    size_t pos = 0;
    bool exact = true;  // cleared when the order is changed under the walk
};

// The model: the chain in order (dead records stay linked until the outermost
// walk ends) and which of them are dead.
class RandomOps : public ResourceList {
protected:
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
    Rec* Find(int id) {
        Rec* r = list.Head();
        while (r && r->id != id) r = r->get_next();
        return r;
    }
    int PickLive() {
        std::vector<int> live = Live();
        return live.empty() ? -1 : live[std::uniform_int_distribution<size_t>(0, live.size() - 1)(rng)];
    }
    void CheckAgainstModel() {
        ASSERT_EQ(Chain(), std::vector<int>(chain.begin(), chain.end()));
        for (Rec* r = list.Head(); r; r = r->get_next()) ASSERT_EQ(r->is_dead(), dead.count(r->id) == 1) << r->id;
        ASSERT_EQ(Rec::live, static_cast<int>(chain.size()));
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
        while (w.pos < w.snapshot.size() && dead.count(w.snapshot[w.pos])) ++w.pos;
        ASSERT_EQ(got ? got->id : -1, w.pos == w.snapshot.size() ? -1 : w.snapshot[w.pos++]);
    }
    void CloseWalk() {
        walks.pop_back();
        if (walks.empty()) Purge();
    }

    void RunOne(int op) {
        const int id = PickLive();
        switch (op) {
            case 0:  // register
                Add(nextId);
                chain.push_front(nextId++);
                break;
            case 1:  // unregister a live record (during walks it only dies)
                if (id < 0) break;
                list.Remove(Find(id));
                if (walks.empty()) chain.remove(id);
                else dead.insert(id);
                break;
            case 2:  // unregister a record that is already dead: it stays chained once
                if (!dead.empty()) list.Remove(Find(*dead.begin()));
                break;
            case 3:  // bring to front
                if (id < 0) break;
                list.MoveToFront(Find(id));
                chain.remove(id);
                chain.push_front(id);
                for (OpenWalk& w : walks) w.exact = false;
                break;
            case 4:  // begin a nested walk
                walks.push_back({std::make_unique<TVPMWalk<Rec>>(list), {chain.begin(), chain.end()}});
                break;
            case 5:  // advance one of the open walks
                if (!walks.empty()) StepWalk(walks[std::uniform_int_distribution<size_t>(0, walks.size() - 1)(rng)]);
                break;
            case 6:  // end the innermost walk
                if (!walks.empty()) CloseWalk();
                break;
            case 7: {  // complete walks, forward and back, nested in whatever is open
                std::vector<int> expected = Live();
                EXPECT_EQ(Walked(), expected);
                std::reverse(expected.begin(), expected.end());
                EXPECT_EQ(WalkedBackwards(), expected);
                if (walks.empty()) Purge();
                break;
            }
        }
    }

    std::mt19937 rng;
    std::list<int> chain;
    std::set<int> dead;
    std::vector<OpenWalk> walks;
    int nextId = 1;
};

}  // namespace

// Pins, step by step, new records at the head, removal freeing at once outside
// walks and only at the end of the outermost walk inside them, a record
// removed twice staying chained once, records added during a walk not being
// reached by it, and forward and reverse walk order.
TEST_F(RandomOps, MatchesTheReferenceModelUnderRandomWalksAndChanges) {
    const int kWeights[] = {0, 0, 1, 1, 2, 3, 4, 5, 5, 6, 7};  // registering and walking more often
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        rng.seed(seed);
        for (int step = 0; step < 400; ++step) {
            RunOne(kWeights[std::uniform_int_distribution<size_t>(0, std::size(kWeights) - 1)(rng)]);
            CheckAgainstModel();
            if (HasFatalFailure()) return;
        }
        while (!walks.empty()) {
            CloseWalk();
            CheckAgainstModel();
        }
        while (Rec* r = list.Head()) list.Remove(r);
        chain.clear();
        ASSERT_EQ(Rec::live, 0);
    }
}

// The record's links in their fixed order, to break them on purpose.
struct Links {
    Rec* next;
    bool dead;
    Rec* prev;
    Rec* next_dead;
};
static_assert(sizeof(TVPMResource_t<Rec>) == sizeof(Links), "links are the whole base");

TEST_F(ResourceList, SelfChecksReportWithTheirFixedTextsAndLinesOnlyToAHandler) {
    Add(3);
    Rec* middle = Add(2);
    Add(1);
    Links* links = reinterpret_cast<Links*>(static_cast<TVPMResource_t<Rec>*>(middle));
    list.EndIterate();  // unmatched: reported, and the depth stays at zero
    EXPECT_EQ(list.IterationDepth(), 0);
    Rec* savedPrev = links->prev;
    links->prev = nullptr;
    list.Validate();
    links->prev = savedPrev;
    links->dead = true;  // dead but not on the dead chain
    list.Validate();
    hooks.TVPMHandleAssertFailed_f = nullptr;
    list.Validate();
    list.EndIterate();
    links->dead = false;
    std::vector<std::string> got;
    for (const Report& r : s_reports) got.push_back(r.condition + " " + r.file + ":" + std::to_string(r.line));
    EXPECT_EQ(got, (std::vector<std::string>{
                       "in_iterate > 0 TVPM/TVPMPrivate.h:547",
                       "h->get_next() == NULL || h->get_next()->get_prev() == h TVPM/TVPMPrivate.h:585",
                       "h->is_dead() == (d != NULL) TVPM/TVPMPrivate.h:590"}));
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

TEST_F(ResourceList, MovingTheUpcomingRecordToTheFrontNeitherRepeatsNorSkipsAndADeadOneStays) {
    Add(3);
    Add(2);
    Add(1);  // chain 1 2 3
    std::vector<int> forward, backward;
    for (TVPMWalk<Rec> walk(list); Rec* r = walk.Next();) {
        forward.push_back(r->id);
        if (r->id == 1) list.MoveToFront(r->get_next());  // 2 jumps behind the cursor
    }
    EXPECT_EQ(forward, (std::vector<int>{1, 3}));
    EXPECT_EQ(Chain(), (std::vector<int>{2, 1, 3}));
    for (TVPMReverseWalk<Rec> walk(list); Rec* r = walk.Next();) {
        backward.push_back(r->id);
        if (r->id == 3) list.MoveToFront(r->get_prev());  // 1 jumps to the far end
    }
    EXPECT_EQ(backward, (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(Chain(), (std::vector<int>{1, 2, 3}));
    {
        TVPMWalk<Rec> walk(list);
        Rec* one = list.Head();
        list.Remove(one);
        list.MoveToFront(one->get_next()->get_next());
        list.MoveToFront(one);
        EXPECT_EQ(Chain(), (std::vector<int>{3, 1, 2})) << "dead, it is not moved but still purged";
    }
    EXPECT_EQ(Chain(), (std::vector<int>{3, 2}));
    EXPECT_TRUE(s_reports.empty());
}
