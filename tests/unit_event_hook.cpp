// unit_event_hook.cpp: each simulator event reaches the right units in the right order, as seen from inside the library (what plugins see of it is in test_events and test_lifecycle).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDataAccessPrivate.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMPlanesPrivate.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#include "support/UnitSteps.h"

namespace {
bool s_busy = false;
}  // namespace

TVPMHooks* gHooks = nullptr;
void* gSelf = nullptr;
void TVPMReadDiagnosticsSwitch() {}
char gDirSeparator[2] = {0, 0};
pthread_t gPluginThread;
TVPMPluginTable gAllPlugins;
TVPMCurrentPlugins gCurrentPlugins = {0, 0};
TVPMPluginID gPendingWeatherUpdate = -1;
const TVPMCodeOnStack* gCodeOnStack = nullptr;
void TVPMReportUnclosedWeatherUpdate() {}

TVPM_API void TVPMSendMessageToPlugin(TVPMPluginID to, int message, void* param) {
    Step("send %d %d %p as %d", to, message, param, gDispatchedPlugin);
}
TVPM_API int TVPMCountPlugins(void) { return 4; }
TVPM_API TVPMPluginID TVPMGetNthPlugin(int n) { return n; }
int TVPMHasFeatureInternal(TVPMPluginID, int) { return 0; }
void TVPMInitMenus() {}
void TVPMPublishBuildString(const char*) {}
void TVPMFindAndLoadPlugins(const char*) {}
void TVPMEnableAllPlugins() {}
void TVPMDisableAllPlugins() {}
void TVPMUnloadPlugins() {}
TVPMPluginID TVPMGetTrafficControlPlugin() { return -1; }
void TVPMDoRepeatedButtons() { Step("repeated buttons"); }
void TVPMDoFMODHousekeeping() { Step("sound housekeeping"); }
void TVPMDoFlightLoopProcessing(float dt, int event) { Step("flight loops %g %d", dt, event); }
void TVPMReleaseCamera() { Step("release camera"); }
void TVPMCommandRepeatHook() { Step("command repeat"); }
void TVPMFindAndLoadSceneryPlugins(const char* pack) { Step("scenery %s", pack ? pack : "(null)"); }
void TVPMFMODClearChannelGroupsInBank(TVPMPluginID id, int bank) {
    Step("clear bank %d %d as %d", id, bank, gDispatchedPlugin);
}
bool TVPMDataRefsCheckForNew(int& outCount) {
    outCount = 0;
    return false;
}
bool TVPMLoaderBusy() { return s_busy; }
bool TVPMGetUserAircraftFolder(std::string& out) {
    out = "/sim/Aircraft/Jet";
    return true;
}
void TVPMFindAndLoadAcfPlugins(const char* folder) { Step("load aircraft %s", folder); }
void TVPMEnableACFPlugins() { Step("enable aircraft"); }
void TVPMDisableACFPlugins() { Step("disable aircraft"); }
void TVPMUnloadAcfPlugin() { Step("unload aircraft"); }
void TVPMCloseDeferredLibraries() { Step("close deferred"); }

namespace {

using Steps = std::vector<std::string>;

Steps Send(TVPMEventKind kind, intptr_t param, float dt = 0.25f) {
    s_steps.clear();
    EXPECT_EQ(TVPMEventHook(kind, dt, 9.0f, param, 99), 1);
    EXPECT_EQ(gDispatchedPlugin, 0);
    return s_steps;
}

class EventHook : public ::testing::Test {
protected:
    void SetUp() override {
        gHooks = &hooks;
        gAllPlugins.resize(4);
    }
    void TearDown() override {
        gHooks = nullptr;
        gAllPlugins.clear();
        s_busy = false;
    }
    TVPMHooks hooks{};
};

}  // namespace

TEST_F(EventHook, NothingIsRoutedWithoutAPluginTable) {
    gAllPlugins.clear();
    EXPECT_EQ(Send(tvpm_FlightLoopEvent, 0), Steps{});
    EXPECT_EQ(Send(tvpm_PlaneLoaded, 0), Steps{});
    gHooks = nullptr;
    EXPECT_EQ(Send(tvpm_PlaneLoaded, 0), Steps{});
}

TEST_F(EventHook, FrameEventsRunTheirUnitsInOrder) {
    EXPECT_EQ(Send(tvpm_FlightLoopEvent, 0), (Steps{"close deferred", "repeated buttons",
                                                    "sound housekeeping", "flight loops 0.25 0"}));
    EXPECT_EQ(Send(tvpm_FlightLoopDoneEvent, 0), (Steps{"close deferred", "flight loops 0.25 10"}));
    EXPECT_EQ(Send(tvpm_CameraChangedHook, 0), (Steps{"close deferred", "release camera"}));
    EXPECT_EQ(Send(tvpm_CommandRepeat, 0), (Steps{"close deferred", "command repeat"}));
    EXPECT_EQ(Send(tvpm_ATCInstruction, 5), (Steps{"close deferred"}));
    EXPECT_EQ(Send(tvpm_FMODSoundEnded, 5), (Steps{"close deferred"}));
    EXPECT_EQ(Send(static_cast<TVPMEventKind>(20), 5), (Steps{"close deferred"}));
}

TEST_F(EventHook, EventsSentWhilePluginsAreLoadingOnlyBroadcast) {
    s_busy = true;
    EXPECT_EQ(Send(tvpm_PlaneLoaded, 0), (Steps{"close deferred", "send -1 102 (nil) as 0"}));
    EXPECT_EQ(Send(tvpm_PlaneUnloaded, 0), (Steps{"close deferred", "send -1 106 (nil) as 0"}));
    EXPECT_EQ(Send(tvpm_RegisterScenery, reinterpret_cast<intptr_t>("/pack/")),
              (Steps{"close deferred"}));
}

TEST_F(EventHook, BankUnloadingBroadcastsThenClearsTheBankAsTheSimulator) {
    EXPECT_EQ(Send(tvpm_FMODBankUnloading, 6),
              (Steps{"close deferred", "send -1 113 0x6 as 0", "clear bank -1 6 as 0"}));
}
