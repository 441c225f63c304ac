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
TVPMPluginID gDispatchedPlugin = 0;
TVPMPluginID gClientPlugin = 0;
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

class EventHook : public ::testing::Test {
protected:
    void SetUp() override {
        gHooks = &hooks;
        gAllPlugins.resize(4);
    }
    void TearDown() override {
        gHooks = nullptr;
        gAllPlugins.clear();
    }
    static Steps Send(TVPMEventKind kind, intptr_t param) {
        s_steps.clear();
        EXPECT_EQ(TVPMEventHook(kind, 0.25f, 9.0f, param, 99), 1);
        EXPECT_EQ(gDispatchedPlugin, 0);
        return s_steps;
    }
    TVPMHooks hooks{};
};

}  // namespace

TEST_F(EventHook, NothingIsRoutedWithoutAPluginTableOrHostTable) {
    gAllPlugins.clear();
    EXPECT_EQ(Send(tvpm_FlightLoopEvent, 0), Steps{});
    gAllPlugins.resize(4);
    gHooks = nullptr;
    EXPECT_EQ(Send(tvpm_PlaneLoaded, 0), Steps{});
}

TEST_F(EventHook, EachEventRunsItsUnitsInOrderAfterClosingDeferredLibraries) {
    const intptr_t pack = reinterpret_cast<intptr_t>("/pack/");
    struct Case {
        TVPMEventKind kind;
        intptr_t param;
        bool loaderBusy;
        Steps steps;
    };
    const Case kCases[] = {
        {tvpm_FlightLoopEvent, 0, false, {"repeated buttons", "sound housekeeping", "flight loops 0.25 0"}},
        {tvpm_FlightLoopDoneEvent, 0, false, {"flight loops 0.25 10"}},
        {tvpm_CameraChangedHook, 0, false, {"release camera"}},
        {tvpm_CommandRepeat, 0, false, {"command repeat"}},
        {tvpm_ATCInstruction, 5, false, {}},  // no unit, no message
        {static_cast<TVPMEventKind>(20), 5, false, {}},
        {tvpm_PlaneLoaded, 0, false, {"send -1 102 (nil) as 0", "load aircraft /sim/Aircraft/Jet", "enable aircraft"}},
        {tvpm_PlaneUnloaded, 0, false, {"send -1 106 (nil) as 0", "disable aircraft", "unload aircraft"}},
        {tvpm_PlaneUnloaded, 2, false, {"send -1 106 0x2 as 0"}},
        {tvpm_RegisterScenery, pack, false, {"scenery /pack/"}},
        {tvpm_FMODBankUnloading, 6, false, {"send -1 113 0x6 as 0", "clear bank -1 6 as 0"}},
        // Events sent while plugins are loading only broadcast.
        {tvpm_PlaneLoaded, 0, true, {"send -1 102 (nil) as 0"}},
        {tvpm_PlaneUnloaded, 0, true, {"send -1 106 (nil) as 0"}},
        {tvpm_RegisterScenery, pack, true, {}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << "event " << c.kind << " busy " << c.loaderBusy);
        s_busy = c.loaderBusy;
        Steps expected{"close deferred"};
        expected.insert(expected.end(), c.steps.begin(), c.steps.end());
        EXPECT_EQ(Send(c.kind, c.param), expected);
    }
}
