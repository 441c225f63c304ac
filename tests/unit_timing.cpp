// unit_timing.cpp: callback timing samples: their values, their collection, and no allocation once warmed up.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "../TVPM/UTL_timing.cpp"

TVPMHooks* gHooks = nullptr;

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

struct Sample {
    TVPMPluginID plugin;
    TVPMPluginCallbackType type;
    double microseconds;
};
std::vector<Sample> s_samples;
int s_collections = 0;
int s_reports = 0;

void Collect(uint64_t count, const TVPMPluginID* ids, const TVPMPluginCallbackType* types,
             const double* us) {
    ++s_collections;
    for (uint64_t i = 0; i < count; ++i) s_samples.push_back({ids[i], types[i], us[i]});
}

void CountAssertion(const char*, const char*, int) { ++s_reports; }

class Timing : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.TVPMHandleAssertFailed_f = CountAssertion;
        gHooks = &hooks;
        StCallbackTimer::get_plugin_timings(nullptr);  // start from no samples
        s_samples.clear();
        s_samples.reserve(64);
        s_collections = 0;
        s_reports = 0;
    }
    void TearDown() override { gHooks = nullptr; }
    TVPMHooks hooks{};
};

}  // namespace

TEST_F(Timing, OneTimedCallbackGivesOneSampleOfItsDuration) {
    {
        StCallbackTimer timer(tvpm_cb_flight_loop, 3);
        std::this_thread::sleep_for(std::chrono::microseconds(1500));
    }
    StCallbackTimer::get_plugin_timings(Collect);
    ASSERT_EQ(s_samples.size(), 1u);
    EXPECT_EQ(s_samples[0].plugin, 3);
    EXPECT_EQ(s_samples[0].type, tvpm_cb_flight_loop);
    EXPECT_GE(s_samples[0].microseconds, 1500.0);
    EXPECT_LT(s_samples[0].microseconds, 50000.0);
    EXPECT_EQ(s_samples[0].microseconds, static_cast<double>(static_cast<uint64_t>(
                                             s_samples[0].microseconds)));  // whole microseconds

    s_samples.clear();
    StCallbackTimer::get_plugin_timings(Collect);
    EXPECT_EQ(s_collections, 2);  // the host is called even with nothing to report
    EXPECT_TRUE(s_samples.empty());
    EXPECT_EQ(s_reports, 0);
}

TEST_F(Timing, SamplesKeepTheirOrderPluginsAndTypes) {
    { StCallbackTimer a(tvpm_cb_drawing_misc, 1); }
    {
        StCallbackTimer outer(tvpm_cb_drawing_window, 2);
        StCallbackTimer inner(tvpm_cb_drawing_avionics, 4);
    }
    StCallbackTimer::get_plugin_timings(Collect);
    ASSERT_EQ(s_samples.size(), 3u);
    EXPECT_EQ(s_samples[0].plugin, 1);
    EXPECT_EQ(s_samples[0].type, tvpm_cb_drawing_misc);
    EXPECT_EQ(s_samples[1].plugin, 4);  // the inner scope ends first
    EXPECT_EQ(s_samples[1].type, tvpm_cb_drawing_avionics);
    EXPECT_EQ(s_samples[2].plugin, 2);
    EXPECT_EQ(s_samples[2].type, tvpm_cb_drawing_window);
    EXPECT_GE(s_samples[2].microseconds, s_samples[1].microseconds);
}

TEST_F(Timing, SteadyStateTimingDoesNotAllocate) {
    auto frame = [] {
        for (int i = 0; i < 20; ++i) StCallbackTimer t(tvpm_cb_flight_loop, i);
        StCallbackTimer::get_plugin_timings(Collect);
    };
    frame();
    s_samples.clear();
    const long before = s_allocations;
    frame();
    frame();
    EXPECT_EQ(s_allocations, before);
    EXPECT_EQ(s_samples.size(), 40u);
}

TEST_F(Timing, CollectionWithoutAnAssertionHandlerStillWorks) {
    hooks.TVPMHandleAssertFailed_f = nullptr;
    { StCallbackTimer t(tvpm_cb_drawing_panel_legacy, 7); }
    StCallbackTimer::get_plugin_timings(Collect);
    ASSERT_EQ(s_samples.size(), 1u);
    EXPECT_EQ(s_samples[0].type, tvpm_cb_drawing_panel_legacy);
    gHooks = nullptr;
    StCallbackTimer::get_plugin_timings(Collect);
    EXPECT_EQ(s_collections, 2);
}
