// test_dispatch.cpp: who is the current plugin while plugins call each other, what the simulator learns about its caller, and timing collection.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "SimTest.h"
#include "TimingSamples.h"
#include "PluginContext.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

// What the simulator saw of its caller each time a plugin wrote to the log, as "id name signature".
Lines s_seen;

class Dispatch : public SimTest {
protected:
    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp", "gamma.tvp"});
        host.On<&TVPMHooks::TVPMDebugString_f>([](const char*) {
            char name[256] = "?", signature[256] = "?";
            int id = TVPMGetCurrentPluginInfo(name, signature);
            s_seen.push_back(std::to_string(id) + " " + name + " " + signature);
        });
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
        gamma = IdOf("gamma.tvp");
        s_seen.clear();
    }

    TVPMPluginID alpha = -1, beta = -1, gamma = -1;
};

}  // namespace

TEST_F(Dispatch, TheReceiverIsCurrentAndTheSenderIsItsClientAtEveryLevel) {
    std::vector<int> ids;
    TVPMDebugString("from the simulator");
    RunAs("alpha.tvp", [&] {
        RunAs("beta.tvp", [&] {
            RunAs("gamma.tvp", [&] { ids.push_back(TVPMGetMyID()); });
            ids.push_back(TVPMGetMyID());
            RunAs("beta.tvp", [&] { TVPMDebugString("beta from beta"); });
            TVPMDebugString("inside beta");
        });
        ids.push_back(TVPMGetMyID());
        TVPMDebugString("back in alpha");
    });
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(ids, (std::vector<int>{gamma, beta, alpha}));
    const std::string simulator = "0 Torvane norvel.torvane.torvane";
    EXPECT_EQ(s_seen, (Lines{simulator, std::to_string(beta) + " beta.tvp test.beta.tvp",
                             std::to_string(alpha) + " alpha.tvp test.alpha.tvp", simulator}));
    EXPECT_EQ(JournalOf("gamma.tvp:message").back(),
              "gamma.tvp:message " + std::to_string(kRunAsMessage) + " from " + std::to_string(beta));

    TVPMDisablePlugin(beta);
    s_seen.clear();
    bool ran = false;
    RunAs("alpha.tvp", [&] {
        RunAs("beta.tvp", [&] { ran = true; });
        EXPECT_EQ(TVPMGetMyID(), alpha);
        TVPMDebugString("after the skipped call");
    });
    EXPECT_FALSE(ran);
    EXPECT_EQ(s_seen, Lines{simulator}) << "the caller stays known while a disabled plugin is skipped";
}

TEST_F(Dispatch, NoTrafficControllerMeansNoInfo) {
    char name[256] = "untouched", signature[256] = "untouched";
    EXPECT_EQ(TVPMGetTrafficControlPluginInfo(name, signature), -1);
    EXPECT_STREQ(name, "untouched");
    EXPECT_STREQ(signature, "untouched");
}

namespace {
float SlowLoop(float, float, int, void*) {
    std::this_thread::sleep_for(std::chrono::microseconds(1500));
    return 0;  // once
}
}  // namespace

TEST_F(Dispatch, ATimedCallbackReportsItsOwnerKindAndWholeMicrosecondsOnce) {
    RunAs("alpha.tvp", [] { TVPMRegisterFlightLoopCallback(SlowLoop, -1.0f, nullptr); });
    TVPMGetPluginCallbackTimings(CollectTimings);
    s_samples.clear();
    TVPMSendMessageToPlugin(TVPM_NO_PLUGIN_ID, 1, nullptr);  // messages are not timed
    host.RunFrame();
    host.RunFrame();
    TVPMGetPluginCallbackTimings(CollectTimings);
    ASSERT_EQ(s_samples.size(), 1u);
    EXPECT_EQ(s_samples[0].plugin, alpha);
    EXPECT_EQ(s_samples[0].type, tvpm_cb_flight_loop);
    EXPECT_GE(s_samples[0].microseconds, 1500.0);
    EXPECT_LT(s_samples[0].microseconds, 100000.0);
    EXPECT_EQ(s_samples[0].microseconds, static_cast<double>(static_cast<uint64_t>(s_samples[0].microseconds)));

    s_samples.clear();
    TVPMGetPluginCallbackTimings(CollectTimings);
    EXPECT_EQ(s_collections, 3) << "called even with nothing to report";
    EXPECT_TRUE(s_samples.empty());
    EXPECT_EQ(host.Count("TVPMHandleAssertFailed_f"), 0u);
}
