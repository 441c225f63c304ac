// unit_lifecycle_order.cpp: every unit is told of enable, disable, unload and reload in the fixed order, around the plugin's own entry points.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDLLUtils.h"
#include "TVPMLoader.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#define TVPM_RECORD_LIFECYCLE_HOOKS
#include "support/UnitSteps.h"

// ---- the world the lifecycle code lives in, every step recorded -----------------

TVPMHooks* gHooks = nullptr;
TVPMPluginTable gAllPlugins;
TVPMCurrentPlugins gCurrentPlugins = {0, 0};
TVPMDeliveryHead orphaned;
TVPMPluginID gPendingWeatherUpdate = -1;
bool gTVPMDiagnostics = false;
void __TVPMValidateThreadSafety(const char*, const char*, int) {}
std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;

const TVPMCodeOnStack* gCodeOnStack = nullptr;

void TVPMReportUnclosedWeatherUpdate() { gPendingWeatherUpdate = -1; }
bool TVPMIsLibraryOnStack(const void* library) {
    for (const TVPMCodeOnStack* link = gCodeOnStack; link; link = link->below)
        if (link->library == library) return true;
    return false;
}
void TVPMReportPluginThrow(TVPMPluginID id, TVPMCallSite, const char*) { Step("threw %d", id); }
void TVPMWithdrawPluginLibrary(uint64_t) {}
TVPM_API int TVPMCountPlugins(void) { return static_cast<int>(gAllPlugins.size()); }
void TVPMLogPluginWarning(const char* msg) { Step("warning %s", msg); }
void TVPMUnloadDLL(void* dll) { Step("close %p", dll); }

// A stand-in for the discovery file: one plugin in the simulator's folder, one per aircraft.
void TVPMFindAndLoadPlugins(const char* inSystemPath) {
    Step("FindAndLoadPlugins %s", inSystemPath);
    gAllPlugins.emplace_back().enabled = true;
    gAllPlugins.emplace_back().dllRef = reinterpret_cast<void*>(0x10);
}
void TVPMFindAndLoadAcfPlugins(const char* inAircraftPath) {
    Step("FindAndLoadAcfPlugins %s", inAircraftPath);
    gAllPlugins.emplace_back().dllRef = reinterpret_cast<void*>(0x20);
    gCurrentAircraftPluginIDS.push_back(TVPMCountPlugins() - 1);
}

namespace {

// The plugin's own entry points report whether they run as the plugin, and
// whether it counts as enabled at that moment.
int s_enableResult = 1;
void Entry(const char* what) {
    Step("%s current=%d enabled=%d", what, gDispatchedPlugin,
         TVPMIsPluginEnabled(gDispatchedPlugin));
}
int PluginEnable() {
    Entry("TPluginEnable");
    return s_enableResult;
}
void PluginDisable() { Entry("TPluginDisable"); }
void PluginStop() { Entry("TPluginStop"); }

class RecordingDelivery : public TVPMDelivery {
public:
    explicit RecordingDelivery(const char* n) : name(n) {}
    void DeliverToPlugin(bool targetGone) override {
        Step("deliver %s gone=%d current=%d", name, targetGone ? 1 : 0, gDispatchedPlugin);
    }
    const char* name;
};

void AlertSlot(const char* a, const char* b, const char* c, const char* d) {
    Step("alert [%s] [%s] [%s] [%s]", a, b, c, d);
}
void SystemPathSlot(char* out) {
    Step("system path");
    strcpy(out, "/sim/");
}
void PlaneNameSlot(int index, char* path, char* name) {
    Step("plane name %d", index);
    strcpy(path, "/sim/Aircraft/Jet/Jet.acf");
    strcpy(name, "Jet");
}

class LifecycleOrder : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.version = TVPM_HOOKS_VERSION;
        hooks.TVPMDisplayModalAlert_f = AlertSlot;
        hooks.TVPMGetSystemPath_f = SystemPathSlot;
        hooks.TVPMGetPlaneName_f = PlaneNameSlot;
        gHooks = &hooks;
        gAllPlugins.emplace_back().enabled = true;  // the simulator's own record
        PluginRecord& r = gAllPlugins.emplace_back();
        r.dllRef = reinterpret_cast<void*>(0x1);
        r.enableFunc = PluginEnable;
        r.disableFunc = PluginDisable;
        r.exitFunc = PluginStop;
    }
    void TearDown() override {
        gAllPlugins.clear();
        gCurrentAircraftPluginIDS.clear();
        orphaned.next = nullptr;
        s_steps.clear();
        s_weatherRefuses = false;
        s_enableResult = 1;
        gHooks = nullptr;
    }
    PluginRecord& Plugin() { return gAllPlugins[1]; }
    TVPMHooks hooks{};
};

using Steps = std::vector<std::string>;

}  // namespace

TEST_F(LifecycleOrder, EnableTellsUnitsAroundThePluginThenDeliversThenSyncsWindows) {
    RecordingDelivery waiting("waiting");
    waiting.plugin = 1;
    Plugin().pending.PushFront(&waiting);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(s_steps, (Steps{"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1",
                              "TPluginEnable current=1 enabled=1", "TVPMWeatherEnableHook 1",
                              "deliver waiting gone=0 current=1",
                              "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 1"}));
    EXPECT_TRUE(Plugin().pending.empty());
    EXPECT_EQ(gDispatchedPlugin, 0);

    // Enabled already: only the deliveries and the window sync.
    RecordingDelivery late("late");
    late.plugin = 1;
    Plugin().pending.PushFront(&late);
    s_steps.clear();
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(s_steps, (Steps{"deliver late gone=0 current=1",
                              "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 1"}));
}

TEST_F(LifecycleOrder, WeatherUnitCanStillRefuseTheEnable) {
    s_weatherRefuses = true;
    EXPECT_EQ(TVPMEnablePlugin(1), 0);
    EXPECT_EQ(s_steps, (Steps{"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1",
                              "TPluginEnable current=1 enabled=1", "TVPMWeatherEnableHook 1",
                              "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 0"}));
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
}

TEST_F(LifecycleOrder, PluginWithoutTPluginEnableIsSimplyMarkedOn) {
    Plugin().enableFunc = nullptr;
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(s_steps, (Steps{"TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1",
                              "TVPMWeatherEnableHook 1",
                              "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 1"}));
}

TEST_F(LifecycleOrder, TheSimulatorsRecordAndBadIdsCallNoHook) {
    EXPECT_EQ(TVPMEnablePlugin(0), 0);
    EXPECT_EQ(TVPMEnablePlugin(2), 0);
    EXPECT_EQ(TVPMEnablePlugin(-1), 0);
    TVPMDisablePlugin(0);
    TVPMDisablePlugin(1);  // not enabled yet
    TVPMDisablePlugin(5);
    EXPECT_TRUE(s_steps.empty());
}

TEST_F(LifecycleOrder, DisableMarksThePluginOffBeforeItsOwnEntryPoint) {
    Plugin().enabled = true;
    TVPMDisablePlugin(1);
    EXPECT_EQ(s_steps,
              (Steps{"TVPMDisplayDisablePrePluginDisableHook 1", "TVPMInstanceDisableHook 1",
                     "TVPMCameraDisableHook 1", "TPluginDisable current=1 enabled=0",
                     "TVPMPlaneDisableHook 1", "TVPMDisplayDisablePostPluginDisableHook 1",
                     "TVPMFMODDisableHook 1", "TVPMWeatherDisableHook 1"}));
    EXPECT_EQ(gDispatchedPlugin, 0);
}

TEST_F(LifecycleOrder, UnloadOrphansCancelsStopsCleansAndCloses) {
    RecordingDelivery sent("sent"), received("received");
    sent.plugin = 1;
    received.plugin = 1;
    Plugin().outstanding.PushFront(&sent);
    Plugin().pending.PushFront(&received);
    UnloadOnePlugin(1);
    EXPECT_EQ(
        s_steps,
        (Steps{"deliver received gone=1 current=0", "TPluginStop current=1 enabled=0",
               "TVPMCommandCleanupHook 1", "TVPMDisplayCleanupHook 1", "TVPMInstanceCleanupHook 1",
               "TVPMProcessingCleanupHook 1", "TVPMCameraCleanupHook 1", "TVPMMenuCleanupHook 1",
               "TVPMPlaneCleanupHook 1", "TVPMDataRefsCleanupHook 1", "TVPMSceneryCleanupHook 1",
               "TVPMFMODCleanupHook 1", "TVPMWeatherCleanupHook 1", "close 0x1"}));
    EXPECT_EQ(received.plugin, -1);
    EXPECT_EQ(sent.plugin, -1);
    EXPECT_EQ(orphaned.first(), &sent);
    sent.Unlink();
    EXPECT_EQ(Plugin().dllRef, nullptr);
    EXPECT_EQ(TVPMCountPlugins(), 2);  // the record stays; IDs do not move
}

TEST_F(LifecycleOrder, PluginUnloadedFromInsideItsOwnCodeKeepsItsLibraryUntilItReturns) {
    {
        StPluginCodeOnStack running(Plugin().dllRef);
        UnloadOnePlugin(1);
        TVPMCloseDeferredLibraries();
    }
    EXPECT_EQ(s_steps.back(), "TVPMWeatherCleanupHook 1");
    TVPMCloseDeferredLibraries();
    EXPECT_EQ(s_steps.back(), "close 0x1");
}

TEST_F(LifecycleOrder, ReloadRunsEveryStepInOrder) {
    Plugin().enabled = true;
    gScheduleReload = true;
    TVPMReloadPluginsInternal();
    EXPECT_FALSE(gScheduleReload);
    EXPECT_EQ(
        s_steps,
        (Steps{
            "TVPMDisplayDisablePrePluginDisableHook 1", "TVPMInstanceDisableHook 1",
            "TVPMCameraDisableHook 1", "TPluginDisable current=1 enabled=0",
            "TVPMPlaneDisableHook 1", "TVPMDisplayDisablePostPluginDisableHook 1",
            "TVPMFMODDisableHook 1", "TVPMWeatherDisableHook 1", "TPluginStop current=1 enabled=0",
            "TVPMCommandCleanupHook 1", "TVPMDisplayCleanupHook 1", "TVPMInstanceCleanupHook 1",
            "TVPMProcessingCleanupHook 1", "TVPMCameraCleanupHook 1", "TVPMMenuCleanupHook 1",
            "TVPMPlaneCleanupHook 1", "TVPMDataRefsCleanupHook 1", "TVPMSceneryCleanupHook 1",
            "TVPMFMODCleanupHook 1", "TVPMWeatherCleanupHook 1", "close 0x1",
            "alert [Please place your new plugin in the plugins folder.] [I will then reload all "
            "plugins.] [] []",
            "system path", "FindAndLoadPlugins /sim/", "plane name 0",
            "FindAndLoadAcfPlugins /sim/Aircraft/Jet",
            // the stand-in plugins have no entry points of their own
            "TVPMDisplayEnableHook 1", "TVPMInstanceEnableHook 1", "TVPMWeatherEnableHook 1",
            "TVPMDisplaySyncGuiWindowStateWithPluginHook 1 1", "TVPMDisplayEnableHook 2",
            "TVPMInstanceEnableHook 2", "TVPMWeatherEnableHook 2",
            "TVPMDisplaySyncGuiWindowStateWithPluginHook 2 1"}));
    EXPECT_EQ(gCurrentAircraftPluginIDS, (std::vector<TVPMPluginID>{2}));
}

TEST_F(LifecycleOrder, AircraftUnloadTrimsOnlyTrailingAircraftRecords) {
    for (int i = 0; i < 2; ++i) {
        gAllPlugins.emplace_back().dllRef = reinterpret_cast<void*>(0x30 + i);
        gCurrentAircraftPluginIDS.push_back(TVPMCountPlugins() - 1);
    }
    TVPMUnloadAcfPlugin();
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_TRUE(gCurrentAircraftPluginIDS.empty());
    EXPECT_EQ(s_steps.back(), "close 0x31");
    EXPECT_TRUE(TVPMIsAcfPlugin(2) == false);
}
