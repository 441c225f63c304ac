// unit_resource_list.cpp: the plugin-owned record list against a reference model, under random walks and changes.
#include <gtest/gtest.h>

#include <iterator>
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

// Assertion reports as "condition file:line".
std::vector<std::string> s_reports;
void RecordAssertion(const char* condition, const char* file, int line) {
    s_reports.push_back(std::string(condition) + " " + file + ":" + std::to_string(line));
}

class ResourceList : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.TVPMHandleAssertFailed_f = RecordAssertion;
        gHooks = &hooks;
    }
    void TearDown() override {
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
    TVPMHooks hooks{};
    TVPMResourceList<Rec> list;
};

// An open walk and the ids it must still visit, in order.
struct OpenWalk {
    std::unique_ptr<TVPMWalk<Rec>> walk;
    std::list<int> ahead;
};

// The model: the chain (dead records stay linked until the outermost walk
// ends), which of them are dead, and what each open walk has ahead of it:
// records added or moved to the head are behind every walk.
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
    void CheckAgainstModel() {
        std::vector<int> ids;  // the whole chain, dead records included, head first
        for (Rec* r = list.Head(); r; r = r->get_next()) {
            ids.push_back(r->id);
            ASSERT_EQ(r->is_dead(), dead.count(r->id) == 1) << r->id;
        }
        ASSERT_EQ(ids, std::vector<int>(chain.begin(), chain.end()));
        ASSERT_EQ(Rec::live, static_cast<int>(chain.size()));
        ASSERT_EQ(list.IterationDepth(), static_cast<int>(walks.size()));
        ASSERT_TRUE(s_reports.empty()) << s_reports.front();
    }
    void StepWalk(OpenWalk& w) {
        while (!w.ahead.empty() && dead.count(w.ahead.front())) w.ahead.pop_front();
        Rec* got = w.walk->Next();
        ASSERT_EQ(got ? got->id : -1, w.ahead.empty() ? -1 : w.ahead.front());
        if (got) w.ahead.pop_front();
    }
    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); }
    void CloseWalk() {
        walks.pop_back();
        if (walks.empty()) Purge();
    }

    void RunOne(int op) {
        std::vector<int> live = Live();
        const int id = live.empty() ? -1 : live[Pick(live.size())];
        switch (op) {
            case 0:  // register
                Add(nextId);
                chain.push_front(nextId++);
                break;
            case 1: {  // unregister a live record (during walks it only dies, allocating nothing)
                if (id < 0) break;
                const long before = s_allocations;
                list.Remove(Find(id));
                EXPECT_EQ(s_allocations, before);
                if (walks.empty())
                    chain.remove(id);
                else
                    dead.insert(id);
                break;
            }
            case 2:  // unregister a record that is already dead: it stays chained once
                if (!dead.empty()) list.Remove(Find(*dead.begin()));
                break;
            case 3: {  // bring to front: neither the head nor a dead record moves
                if (chain.empty()) break;
                const int any = *std::next(chain.begin(), Pick(chain.size()));
                list.MoveToFront(Find(any));
                if (any == chain.front() || dead.count(any)) break;
                chain.remove(any);
                chain.push_front(any);
                for (OpenWalk& w : walks) w.ahead.remove(any);
                break;
            }
            case 4:  // begin a nested walk
                walks.push_back({std::make_unique<TVPMWalk<Rec>>(list), {chain.begin(), chain.end()}});
                break;
            case 5:  // advance one of the open walks
                if (!walks.empty()) StepWalk(walks[Pick(walks.size())]);
                break;
            case 6:  // end the innermost walk
                if (!walks.empty()) CloseWalk();
                break;
            case 7: {  // complete walks, forward and back, nested in whatever is open, allocating nothing
                std::vector<int> forward, backward;
                forward.reserve(live.size());
                backward.reserve(live.size());
                const long before = s_allocations;
                for (TVPMWalk<Rec> w(list); Rec* r = w.Next();) forward.push_back(r->id);
                for (TVPMReverseWalk<Rec> w(list); Rec* r = w.Next();) backward.insert(backward.begin(), r->id);
                EXPECT_EQ(s_allocations, before);
                EXPECT_EQ(forward, live);
                EXPECT_EQ(backward, live);
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
// removed twice staying chained once, dead records never brought to the front,
// records added or brought to the front during a walk not being reached by it,
// forward and reverse walk order, and walks and removals allocating nothing.
TEST_F(RandomOps, MatchesTheReferenceModelUnderRandomWalksAndChanges) {
    const int kWeights[] = {0, 0, 1, 1, 2, 3, 4, 5, 5, 6, 7};  // registering and walking more often
    for (unsigned seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        rng.seed(seed);
        for (int step = 0; step < 400; ++step) {
            RunOne(kWeights[Pick(std::size(kWeights))]);
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

TEST_F(ResourceList, AReverseWalkReachesTheRecordItWasAboutToVisitWhenThatIsBroughtToTheFront) {
    Add(3);
    Add(1);
    Add(2);  // chain 2 1 3
    std::vector<int> backward;
    for (TVPMReverseWalk<Rec> walk(list); Rec* r = walk.Next();) {
        backward.push_back(r->id);
        if (r->id == 3) list.MoveToFront(r->get_prev());  // 1 jumps to the far end
    }
    EXPECT_EQ(backward, (std::vector<int>{3, 2, 1}));
}

TEST_F(ResourceList, SelfChecksReportWithTheirFixedTextsAndLinesOnlyToAHandler) {
    Rec* r = Add(1);
    list.EndIterate();  // unmatched: reported, and the depth stays at zero
    EXPECT_EQ(list.IterationDepth(), 0);
    Rec *otherHead = nullptr, *otherDead = nullptr;
    bool needsClean = false;
    TVPMResource_t<Rec>::TVPMKillResource(otherHead, otherDead, r, needsClean);  // dead, but not on this list's chain
    list.Validate();
    hooks.TVPMHandleAssertFailed_f = nullptr;
    list.Validate();
    list.EndIterate();
    EXPECT_EQ(s_reports, (std::vector<std::string>{"in_iterate > 0 TVPM/TVPMPrivate.h:547",
                                                   "h->is_dead() == (d != NULL) TVPM/TVPMPrivate.h:590"}));
}
