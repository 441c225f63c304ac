// unit_timing.cpp: callback timing samples from nested timers, and no allocation once warmed up.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "TVPMPrivate.h"
#include "UTL_timing.h"
#include "support/CountingNew.h"
#include "support/TimingSamples.h"

using tvpmtest::CollectTimings;
using tvpmtest::s_samples;
using tvpmtest::TimingSample;

TVPMHooks* gHooks = nullptr;

namespace {

class Timing : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.TVPMHandleAssertFailed_f = [](const char*, const char*, int) { ADD_FAILURE() << "timer assertion"; };
        gHooks = &hooks;
        StCallbackTimer::get_plugin_timings(nullptr);  // start from no samples
        s_samples.reserve(64);
    }
    void TearDown() override { gHooks = nullptr; }
    TVPMHooks hooks{};
};

}  // namespace

TEST_F(Timing, NestedTimersReportInnerFirstEachForItsOwnPluginAndType) {
    { StCallbackTimer a(tvpm_cb_drawing_misc, 1); }
    {
        StCallbackTimer outer(tvpm_cb_drawing_window, 2);
        StCallbackTimer inner(tvpm_cb_drawing_avionics, 4);
        std::this_thread::sleep_for(std::chrono::microseconds(1500));
    }
    StCallbackTimer::get_plugin_timings(CollectTimings);
    std::vector<std::pair<TVPMPluginID, TVPMPluginCallbackType>> reported;
    for (const TimingSample& s : s_samples) reported.emplace_back(s.plugin, s.type);
    ASSERT_EQ(reported, (decltype(reported){{1, tvpm_cb_drawing_misc}, {4, tvpm_cb_drawing_avionics},
                                            {2, tvpm_cb_drawing_window}}));
    EXPECT_GE(s_samples[1].microseconds, 1500.0);
    EXPECT_GE(s_samples[2].microseconds, s_samples[1].microseconds);
}

TEST_F(Timing, SteadyStateTimingDoesNotAllocate) {
    auto frame = [] {
        for (int i = 0; i < 20; ++i) StCallbackTimer t(tvpm_cb_flight_loop, i);
        StCallbackTimer::get_plugin_timings(CollectTimings);
    };
    frame();
    s_samples.clear();
    const long before = s_allocations;
    frame();
    frame();
    EXPECT_EQ(s_allocations, before);
    EXPECT_EQ(s_samples.size(), 40u);
}
