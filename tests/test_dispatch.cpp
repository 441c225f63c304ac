// test_dispatch.cpp: who is the current plugin while plugins call each other, what the simulator learns about its caller, and timing collection.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "SimTest.h"
#include "TimingSamples.h"
#include "PluginContext.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;

namespace {

// What the simulator saw of its caller each time a plugin wrote to the log.
struct CallerSeen {
    int id;
    std::string name, signature;
};
std::vector<CallerSeen> s_seen;

class Dispatch : public SimTest {
protected:
    void SetUp() override {
        for (const char* key : {"alpha.tvp", "beta.tvp", "gamma.tvp"}) {
            sim.AddLoose(key, BuiltPlugin("scripted.tvp"));
            Script(key).message = RunAsHandler{};
        }
        host.On<&TVPMHooks::TVPMDebugString_f>([](const char*) {
            char name[256] = "?", signature[256] = "?";
            int id = TVPMGetCurrentPluginInfo(name, signature);
            s_seen.push_back({id, name, signature});
        });
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
        gamma = IdOf("gamma.tvp");
        s_seen.clear();
    }

    // Runs code as plugin id. The code travels with the message rather than in
    // the plugin's script, so a plugin can be re-entered while it runs.
    static void As(TVPMPluginID id, std::function<void()> code) {
        TVPMSendMessageToPlugin(id, kRunAsMessage, &code);
    }

    TVPMPluginID alpha = -1, beta = -1, gamma = -1;
};

}  // namespace

TEST_F(Dispatch, TheReceiverIsCurrentAndTheSenderIsItsClient) {
    As(alpha, [&] {
        EXPECT_EQ(TVPMGetMyID(), alpha);
        As(beta, [&] {
            EXPECT_EQ(TVPMGetMyID(), beta);
            TVPMDebugString("inside beta");
        });
        EXPECT_EQ(TVPMGetMyID(), alpha);
        TVPMDebugString("back in alpha");
    });
    EXPECT_EQ(TVPMGetMyID(), 0);
    ASSERT_EQ(s_seen.size(), 2u);
    EXPECT_EQ(s_seen[0].id, alpha);  // beta was called by alpha
    EXPECT_EQ(s_seen[0].name, "alpha.tvp");
    EXPECT_EQ(s_seen[0].signature, "test.alpha.tvp");
    EXPECT_EQ(s_seen[1].id, 0);  // alpha was called by the simulator
    EXPECT_EQ(s_seen[1].name, "Torvane");
    EXPECT_EQ(s_seen[1].signature, "norvel.torvane.torvane");
}

TEST_F(Dispatch, DeepNestingUnwindsLevelByLevel) {
    std::vector<int> ids;
    As(alpha, [&] {
        As(beta, [&] {
            As(gamma, [&] { ids.push_back(TVPMGetMyID()); });
            ids.push_back(TVPMGetMyID());
            As(beta, [&] { ids.push_back(TVPMGetMyID()); });  // to itself
            ids.push_back(TVPMGetMyID());
        });
        ids.push_back(TVPMGetMyID());
    });
    EXPECT_EQ(ids, (std::vector<int>{gamma, beta, beta, beta, alpha}));
    EXPECT_EQ(JournalOf("gamma.tvp:message").back(),
              "gamma.tvp:message " + std::to_string(kRunAsMessage) + " from " +
                  std::to_string(beta));
}

TEST_F(Dispatch, CallerStaysKnownWhileADisabledPluginIsSkipped) {
    TVPMDisablePlugin(beta);
    bool ran = false;
    As(alpha, [&] {
        As(beta, [&] { ran = true; });
        EXPECT_EQ(TVPMGetMyID(), alpha);
        TVPMDebugString("after the skipped call");
    });
    EXPECT_FALSE(ran);
    ASSERT_EQ(s_seen.size(), 1u);
    EXPECT_EQ(s_seen[0].id, 0);
}

TEST_F(Dispatch, TheSimulatorCalledDirectlySeesItselfAsCaller) {
    TVPMDebugString("from the simulator");
    ASSERT_EQ(s_seen.size(), 1u);
    EXPECT_EQ(s_seen[0].id, 0);
    EXPECT_EQ(s_seen[0].name, "Torvane");
}

TEST_F(Dispatch, NoTrafficControllerMeansNoInfo) {
    char name[256] = "untouched", signature[256] = "untouched";
    EXPECT_EQ(TVPMGetTrafficControlPluginInfo(name, signature), -1);
    EXPECT_STREQ(name, "untouched");
    EXPECT_STREQ(signature, "untouched");
}

// ---- timing collection --------------------------------------------------------------------

namespace {
int s_assertions = 0;

float SlowLoop(float, float, int, void*) {
    std::this_thread::sleep_for(std::chrono::microseconds(1500));
    return 0;  // once
}
}  // namespace

TEST(DispatchTimings, ATimedCallbackReportsItsOwnerKindAndDurationOnce) {
    FakeHost host;
    host.On<&TVPMHooks::TVPMHandleAssertFailed_f>(
        [](const char*, const char*, int) { ++s_assertions; });
    SimFolder sim;
    sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
    Script("alpha.tvp").enable = [] {
        TVPMRegisterFlightLoopCallback(SlowLoop, -1.0f, nullptr);
        return 1;
    };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    const TVPMPluginID alpha = IdOf("alpha.tvp");
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

    s_samples.clear();
    TVPMGetPluginCallbackTimings(CollectTimings);
    EXPECT_EQ(s_collections, 3);  // called even with nothing to report
    EXPECT_TRUE(s_samples.empty());
    EXPECT_EQ(s_assertions, 0);
    host.Shutdown();
}
