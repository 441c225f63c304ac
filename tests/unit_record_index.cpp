// unit_record_index.cpp: the flat duplicate index against a reference multiset, under random inserts and erases.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

#include "TVPMRecordIndex.h"

namespace {

struct Rec {
    Rec(TVPMRecordIndex<Rec>& index, uintptr_t k, bool counted)
        : counts(counted), indexed(index, TVPMRecordKey{k, k % 3, 0, 7}, this) {}
    bool counts;
    TVPMIndexedKey<Rec> indexed;
};

struct Case {
    unsigned seed;
    uintptr_t distinctKeys;  // few keys: long runs of equal and colliding hashes
    int steps;
};

class RecordIndex : public ::testing::TestWithParam<Case> {};

TEST_P(RecordIndex, AgreesWithAReferenceAfterEveryChange) {
    const Case c = GetParam();
    TVPMRecordIndex<Rec> index;
    std::vector<std::unique_ptr<Rec>> live;
    std::mt19937 rng(c.seed);
    for (int step = 0; step < c.steps; ++step) {
        // Grow for the first half, then mostly shrink, so the table grows and empties.
        const bool add = live.empty() || rng() % 100 < (step < c.steps / 2 ? 70u : 30u);
        if (add) {
            live.push_back(std::make_unique<Rec>(index, rng() % c.distinctKeys, rng() % 4 != 0));
        } else {
            std::swap(live[rng() % live.size()], live.back());
            live.pop_back();
        }
        std::map<uintptr_t, bool> expected;
        for (const auto& r : live) expected[r->indexed.key()[0]] |= r->counts;
        ASSERT_EQ(index.size(), live.size());
        for (uintptr_t k = 0; k < c.distinctKeys; ++k) {
            const bool any = index.Any(TVPMRecordKey{k, k % 3, 0, 7}, [](const Rec* r) { return r->counts; });
            ASSERT_EQ(any, expected.count(k) && expected[k]) << "step " << step << " key " << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, RecordIndex,
                         ::testing::Values(Case{1, 3, 400}, Case{2, 40, 1500}, Case{3, 500, 3000}));

}  // namespace
