// unit_loader.cpp: the loader's internal machinery: deferred deliveries across enable and unload, dispatch scopes, plugin warnings.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMLoader.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#define TVPM_RECORD_LIFECYCLE_HOOKS
#include "support/UnitSteps.h"

// ---- the rest of the library, as recording stand-ins ------------------------------------

std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;
// The weather family reports an update left open; its own tests cover that.
void TVPMReportUnclosedWeatherUpdate() {}

namespace {
std::string s_log;
}  // namespace

void TVPMDebugString(const char* text) { s_log += text; }
void TVPMFindAndLoadPlugins(const char*) {}
void TVPMFindAndLoadAcfPlugins(const char*) {}
TVPMPluginID TVPMIndexedSignatureOwner(const char*) { return TVPM_NO_PLUGIN_ID; }

namespace {

// ---- a plugin made of plain functions ------------------------------------------------

int s_enableResult = 1;
std::vector<std::string> s_errors;

int PluginEnable() {
    Step("enable as %d", TVPMGetMyID());
    return s_enableResult;
}
void PluginDisable() { Step("disable as %d", TVPMGetMyID()); }
void PluginStop() { Step("stop as %d", TVPMGetMyID()); }
void PluginError(const char* text) { s_errors.push_back(text); }

int s_liveDeliveries = 0;

class Result : public TVPMDelivery {
public:
    Result(const std::string& tag, TVPMPluginID to) : tag_(tag) {
        plugin = to;
        ++s_liveDeliveries;
    }
    ~Result() override { --s_liveDeliveries; }
    void DeliverToPlugin(bool targetGone) override {
        Step("%s %s %d", tag_.c_str(), targetGone ? "released" : "delivered as", TVPMGetMyID());
        delete this;
    }

private:
    std::string tag_;
};

class Loader : public ::testing::Test {
protected:
    void SetUp() override {
        gHooks = &hooks;
        gPluginThread = pthread_self();
        gAllPlugins.clear();
        gAllPlugins.emplace_back();  // the simulator's own record
        gAllPlugins[0].name = "simulator";
        gAllPlugins[0].enabled = true;
        PluginRecord& p = gAllPlugins.emplace_back();
        p.dllRef = dlopen(nullptr, RTLD_NOW);  // any open library stands in for the plugin's
        p.name = "Alpha";
        p.signature = "test.alpha";
        p.enableFunc = PluginEnable;
        p.disableFunc = PluginDisable;
        p.exitFunc = PluginStop;
        p.errorFunc = PluginError;
        TVPMSetDispatchedPlugin(0);
        TVPMSetClientPlugin(0);
        s_enableResult = 1;
        s_steps.clear();
        s_errors.clear();
        s_log.clear();
        s_liveDeliveries = 0;
    }
    void TearDown() override {
        while (TVPMDelivery* d = orphaned.first()) {
            d->Unlink();
            d->DeliverToPlugin(true);
        }
        for (PluginRecord& r : gAllPlugins)
            for (TVPMDeliveryHead* q : {&r.pending, &r.outstanding})
                while (TVPMDelivery* d = q->first()) {
                    d->Unlink();
                    d->DeliverToPlugin(true);
                }
        gAllPlugins.clear();
        EXPECT_EQ(s_liveDeliveries, 0);
        gHooks = nullptr;
    }
    void EnableAlpha() {
        ASSERT_EQ(TVPMEnablePlugin(1), 1);
        s_steps.clear();
    }

    TVPMHooks hooks{};
};

using Steps = std::vector<std::string>;

}  // namespace

TEST_F(Loader, FinishedWorkReachesAnEnabledPluginAtOnceWithThePluginCurrent) {
    EnableAlpha();
    Result* d = new Result("result", 1);
    TVPMQueueDelivery(d);
    EXPECT_EQ(gAllPlugins[1].outstanding.first(), d);
    TVPMSendDelivery(d);
    EXPECT_EQ(s_steps, (Steps{"result delivered as 1"}));
    EXPECT_TRUE(gAllPlugins[1].outstanding.empty());
    EXPECT_EQ(TVPMGetMyID(), 0);
}

TEST_F(Loader, FinishedWorkWaitsForADisabledPluginAndArrivesBeforeTheWindowSync) {
    Result* first = new Result("first", 1);
    Result* second = new Result("second", 1);
    TVPMQueueDelivery(first);
    TVPMQueueDelivery(second);
    TVPMSendDelivery(first);
    TVPMSendDelivery(second);
    EXPECT_TRUE(s_steps.empty());
    EXPECT_TRUE(gAllPlugins[1].outstanding.empty());
    EXPECT_EQ(s_liveDeliveries, 2);

    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    // Each finished delivery was put at the front of the queue: the later one comes first.
    EXPECT_EQ(s_steps, (Steps{"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1", "enable as 1",
                                  "TVPMWeatherEnableHook 1", "second delivered as 1",
                                  "first delivered as 1", "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 1"}));
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_TRUE(gAllPlugins[1].pending.empty());
}

TEST_F(Loader, PendingWorkStaysQueuedWhenThePluginRefusesToEnable) {
    Result* d = new Result("result", 1);
    TVPMQueueDelivery(d);
    TVPMSendDelivery(d);
    s_enableResult = 0;
    EXPECT_EQ(TVPMEnablePlugin(1), 0);
    EXPECT_EQ(s_steps,
              (Steps{"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1", "enable as 1", "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 0"}));
    EXPECT_EQ(gAllPlugins[1].pending.first(), d);
    s_steps.clear();
    s_enableResult = 1;
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(s_steps.at(4), "result delivered as 1");
}

TEST_F(Loader, DisablingKeepsLaterResultsForTheNextEnable) {
    EnableAlpha();
    TVPMDisablePlugin(1);
    Result* d = new Result("result", 1);
    TVPMQueueDelivery(d);
    TVPMSendDelivery(d);
    EXPECT_EQ(s_steps.size(), 8u);  // the disable transition only
    s_steps.clear();
    TVPMEnablePlugin(1);
    EXPECT_EQ(s_steps.at(4), "result delivered as 1");
}

TEST_F(Loader, WorkFinishingAfterItsPluginWasUnloadedIsReleased) {
    Result* inFlight = new Result("in-flight", 1);
    TVPMQueueDelivery(inFlight);
    UnloadOnePlugin(1);
    EXPECT_EQ(orphaned.first(), inFlight);
    s_steps.clear();
    TVPMSendDelivery(inFlight);
    EXPECT_EQ(s_steps, (Steps{"in-flight released 0"}));
    EXPECT_TRUE(orphaned.empty());
}

TEST_F(Loader, QueueingForAnInvalidPluginReportsToTheCurrentPlugin) {
    Result d("stray", 7);
    {
        StDispatchCallback scope(1);
        TVPMQueueDelivery(&d);
    }
    EXPECT_EQ(s_errors,
              (std::vector<std::string>{
                  "Internal error: async queue pending but the plugin ID is invalid."}));
    EXPECT_EQ(d.next, nullptr);
    TVPMQueueDelivery(&d);  // the simulator has no error callback
    EXPECT_EQ(s_errors.size(), 1u);
    TVPMSendDelivery(new Result("unknown", 7));
    EXPECT_EQ(s_steps, (Steps{"unknown released 0"}));
}

TEST_F(Loader, DispatchScopesNestAndRestoreEvenForPluginsThatMayNotBeCalled) {
    EnableAlpha();
    {
        StDispatchCallback alpha(1);
        EXPECT_TRUE(alpha());
        EXPECT_EQ(TVPMGetDispatchedPlugin(), 1);
        EXPECT_EQ(TVPMGetClientPlugin(), 0);
        {
            StDispatchCallback missing(7);
            EXPECT_FALSE(missing());
            EXPECT_EQ(TVPMGetDispatchedPlugin(), 7);
            EXPECT_EQ(TVPMGetClientPlugin(), 1);
            EXPECT_STREQ(DebugCurrentPluginName(), "[Bad plugin ID high]");
        }
        EXPECT_EQ(TVPMGetDispatchedPlugin(), 1);
        EXPECT_EQ(TVPMGetClientPlugin(), 0);
        EXPECT_STREQ(DebugCurrentPluginName(), "Alpha");
        EXPECT_STREQ(DebugCurrentPluginSignature(), "test.alpha");
    }
    TVPMDisablePlugin(1);
    StDispatchCallback disabled(1);
    EXPECT_FALSE(disabled());
}

TEST_F(Loader, DebugNamesForSpecialIDs) {
    const std::pair<TVPMPluginID, const char*> cases[] = {{-1, "[NO_PLUGIN_ID]"},
                                                          {0, "[TVPM_PLUGIN_TORVANE]"},
                                                          {-2, "[Bad plugin ID low]"},
                                                          {2, "[Bad plugin ID high]"}};
    for (const auto& [id, text] : cases) {
        StDispatchCallback scope(id);
        EXPECT_STREQ(DebugCurrentPluginName(), text);
        EXPECT_STREQ(DebugCurrentPluginSignature(), text);
        EXPECT_STREQ(TVPMDebugGetCurrentPluginName(), text);
    }
}

TEST_F(Loader, WithAnEmptyTableOnlyTheSimulatorMayBeCalled) {
    gAllPlugins.clear();
    EXPECT_TRUE(StDispatchCallback(0)());
    EXPECT_FALSE(StDispatchCallback(1)());
    EXPECT_FALSE(StDispatchCallback(-1)());
}

TEST_F(Loader, PluginWarningsNameTheCurrentPlugin) {
    {
        StDispatchCallback scope(1);
        TVPMLogPluginWarning("careful");
    }
    TVPMSetDispatchedPlugin(-1);
    TVPMLogPluginWarning("who?");
    TVPMSetDispatchedPlugin(0);
    EXPECT_EQ(s_log, "[Alpha]: careful\n[unknown]: who?\n");
    EXPECT_TRUE(s_errors.empty());
}

TEST_F(Loader, ErrorsGoOnlyToAValidCurrentPluginThatListens) {
    EXPECT_EQ(TVPMHasError(), 0);  // the simulator installed no callback
    {
        StDispatchCallback scope(1);
        EXPECT_EQ(TVPMHasError(), 1);
        TVPMSendError("first");
        TVPMSetErrorCallback(nullptr);
        EXPECT_EQ(TVPMHasError(), 0);
        TVPMSendError("lost");
        TVPMSetErrorCallback(PluginError);
    }
    TVPMSendErrorTo("second", 1);
    TVPMSendErrorTo("nobody", 5);
    TVPMSendErrorTo("nobody", -1);
    {
        StDispatchCallback scope(-1);
        EXPECT_EQ(TVPMHasError(), 0);
        TVPMSetErrorCallback(PluginError);  // no plugin to install it for
        TVPMSendError("nobody");
    }
    EXPECT_EQ(gAllPlugins[0].errorFunc, nullptr);
    EXPECT_EQ(s_errors, (std::vector<std::string>{"first", "second"}));
}
