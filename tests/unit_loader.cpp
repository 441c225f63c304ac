// unit_loader.cpp: what plugins cannot see: every unit is told of enable, disable and unload in the fixed order around the plugin's entry points and its deliveries, and the debug names of special IDs.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#define TVPM_RECORD_LIFECYCLE_HOOKS
#include "support/UnitSteps.h"

// ---- the rest of the library, as stand-ins ------------------------------------------------

std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;
void TVPMReportUnclosedWeatherUpdate() {}
std::string s_log;
void TVPMDebugString(const char* text) { s_log += text; }
void TVPMFindAndLoadPlugins(const char*) {}
void TVPMFindAndLoadAcfPlugins(const char*) {}
TVPMPluginID TVPMIndexedSignatureOwner(const char*) { return TVPM_NO_PLUGIN_ID; }

namespace {

using Steps = std::vector<std::string>;

// ---- a plugin made of plain functions ------------------------------------------------

int s_enableResult = 1;
Steps s_errors;

int PluginEnable() {
    Step("TPluginEnable as %d", TVPMGetMyID());
    return s_enableResult;
}
void PluginDisable() { Step("TPluginDisable as %d enabled=%d", TVPMGetMyID(), TVPMIsPluginEnabled(1)); }
void PluginStop() { Step("TPluginStop as %d", TVPMGetMyID()); }
void PluginError(const char* text) { s_errors.push_back(text); }

int s_liveDeliveries = 0;

struct Result : TVPMDelivery {
    Result(const std::string& t, TVPMPluginID to) : tag(t) { plugin = to; ++s_liveDeliveries; }
    ~Result() override { --s_liveDeliveries; }
    void DeliverToPlugin(bool targetGone) override {
        Step("%s %s %d", tag.c_str(), targetGone ? "released" : "delivered as", TVPMGetMyID());
        delete this;
    }
    std::string tag;
};

// Work for Alpha that finished: delivered at once if it is enabled, else kept.
void Finish(const char* tag) {
    Result* d = new Result(tag, 1);
    TVPMQueueDelivery(d);
    TVPMSendDelivery(d);
}

struct Transition {
    const char* name;
    std::function<void()> act;
    Steps expected;
};

class Loader : public ::testing::Test {
protected:
    void SetUp() override {
        gHooks = &hooks;
        gPluginThread = pthread_self();
        FreshTable();
    }
    void TearDown() override {
        ReleaseDeliveries();
        EXPECT_EQ(s_liveDeliveries, 0);
    }
    // The simulator's own record, then Alpha, disabled.
    void FreshTable() {
        gAllPlugins.clear();
        gAllPlugins.emplace_back().name = "Torvane";
        gAllPlugins[0].enabled = true;
        PluginRecord& p = gAllPlugins.emplace_back();
        p.dllRef = dlopen(nullptr, RTLD_NOW);  // any open library stands in for the plugin's
        p.name = "Alpha";
        p.signature = "test.alpha";
        p.enableFunc = PluginEnable;
        p.disableFunc = PluginDisable;
        p.exitFunc = PluginStop;
        p.errorFunc = PluginError;
    }
    void ReleaseDeliveries() {
        for (TVPMDeliveryHead* q : {&orphaned, &gAllPlugins[1].pending, &gAllPlugins[1].outstanding})
            while (TVPMDelivery* d = q->first()) {
                d->Unlink();
                d->DeliverToPlugin(true);
            }
    }

    TVPMHooks hooks{};
};

const char* const kStaysOff = "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 0";
const Steps kEnableSteps = {"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1", "TPluginEnable as 1",
                            "TVPMWeatherEnableHook 1"};
Steps Concat(std::initializer_list<Steps> parts) {
    Steps all;
    for (const Steps& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

const Transition kTransitions[] = {
    {"EnableKeepsTheWorkThroughRefusalsByThePluginOrTheWeatherUnitThenDeliversItNewestFirst",
     [] {
         Finish("first");
         Finish("second");
         s_enableResult = 0;
         TVPMEnablePlugin(1);
         s_enableResult = 1;
         s_weatherRefuses = true;
         TVPMEnablePlugin(1);
         s_weatherRefuses = false;
         TVPMEnablePlugin(1);
     },
     Concat({{"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1", "TPluginEnable as 1", kStaysOff}, kEnableSteps,
             {kStaysOff}, kEnableSteps,
             {"second delivered as 1", "first delivered as 1", "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 1"}})},
    {"DisableMarksItOffBeforeItsOwnEntryPoint",
     [] {
         TVPMEnablePlugin(1);
         s_steps.clear();
         TVPMDisablePlugin(1);
     },
     {"TVPMDisplayDisablePrePluginDisableHook 1", "TVPMInstanceDisableHook 1", "TVPMCameraDisableHook 1",
      "TPluginDisable as 1 enabled=0", "TVPMPlaneDisableHook 1", "TVPMDisplayDisablePostPluginDisableHook 1",
      "TVPMFMODDisableHook 1", "TVPMWeatherDisableHook 1"}},
    {"UnloadCancelsWaitingWorkThenStopsThenCleansUp",
     [] {
         Finish("received");
         TVPMQueueDelivery(new Result("sent", 1));
         UnloadOnePlugin(1);
     },
     {"received released 0", "TPluginStop as 1", "TVPMCommandCleanupHook 1", "TVPMDisplayCleanupHook 1",
      "TVPMInstanceCleanupHook 1", "TVPMProcessingCleanupHook 1", "TVPMCameraCleanupHook 1",
      "TVPMMenuCleanupHook 1", "TVPMPlaneCleanupHook 1", "TVPMDataRefsCleanupHook 1",
      "TVPMSceneryCleanupHook 1", "TVPMFMODCleanupHook 1", "TVPMWeatherCleanupHook 1"}},
};

}  // namespace

TEST_F(Loader, TellsEveryUnitOfEachTransitionInTheFixedOrder) {
    for (const Transition& t : kTransitions) {
        SCOPED_TRACE(t.name);
        ReleaseDeliveries();
        FreshTable();
        s_steps.clear();
        t.act();
        EXPECT_EQ(s_steps, t.expected);
        EXPECT_EQ(TVPMGetMyID(), 0);
    }
}

TEST_F(Loader, WorkForABadUnloadedOrUnknownPluginIsReportedOrReleased) {
    // Queueing for a bad ID is reported to the current plugin, if it listens.
    Result stray("stray", 7);
    {
        StDispatchCallback scope(1);
        TVPMQueueDelivery(&stray);
    }
    TVPMQueueDelivery(&stray);  // the simulator has no error callback
    EXPECT_EQ(s_errors, Steps{"Internal error: async queue pending but the plugin ID is invalid."});
    EXPECT_EQ(stray.next, nullptr);

    Result* inFlight = new Result("in-flight", 1);
    TVPMQueueDelivery(inFlight);
    UnloadOnePlugin(1);
    EXPECT_EQ(orphaned.first(), inFlight);
    s_steps.clear();
    TVPMSendDelivery(inFlight);
    TVPMSendDelivery(new Result("unknown", 7));
    EXPECT_EQ(s_steps, (Steps{"in-flight released 0", "unknown released 0"}));
    EXPECT_TRUE(orphaned.empty());
}

TEST_F(Loader, SpecialIDsHaveDebugNamesAndWarningsNameTheirPlugin) {
    const std::pair<TVPMPluginID, const char*> cases[] = {
        {-1, "[NO_PLUGIN_ID]"}, {0, "[TVPM_PLUGIN_TORVANE]"}, {-2, "[Bad plugin ID low]"}, {2, "[Bad plugin ID high]"}};
    for (const auto& [id, text] : cases) {
        StDispatchCallback scope(id);
        EXPECT_STREQ(TVPMDebugGetCurrentPluginName(), text);
        EXPECT_STREQ(DebugCurrentPluginSignature(), text);
        TVPMLogPluginWarning("careful");
    }
    StDispatchCallback alpha(1);
    EXPECT_STREQ(TVPMDebugGetCurrentPluginName(), "Alpha");
    EXPECT_STREQ(DebugCurrentPluginSignature(), "test.alpha");
    TVPMLogPluginWarning("careful");
    EXPECT_EQ(s_log, "[unknown]: careful\n[Torvane]: careful\n[unknown]: careful\n[unknown]: careful\n[Alpha]: careful\n");
}
