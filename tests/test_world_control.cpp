// test_world_control.cpp: AI-aircraft control passed between plugins through its queue, the user-aircraft operations, and camera control with its releases.
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMCamera.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMPlanes.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

// Simulator items that hand aircraft to the simulator's own traffic when control is released.
const char* const kAiItems[] = {"sim/operation/override/override_TCAS", "sim/private/net_disables/ai_loc[1]",
                                "sim/private/net_disables/ai_loc[19]"};

// Callbacks as "<what>@<current plugin>".
Lines s_heard;
void Hear(const std::string& what) { s_heard.push_back(what + "@" + std::to_string(TVPMGetMyID())); }
void PlanesFree(void*) { Hear("free"); }

class WorldControl : public SimTest {
protected:
    const TVPMPluginID alpha = 1, beta = 3;  // the plugin folder's order

    void SetUp() override {
        AddScripted({"alpha.tvp", "atc.tvp", "beta.tvp"});
        s_heard.clear();
        host.On<&TVPMHooks::TVPMCountPlanes_f>([] { return 20; });
        ASSERT_EQ(host.Start(sim.Root()), 23);
        RunAs("atc.tvp", [] {
            for (const char* n : kAiItems) {
                TVPMShareData(n, tvpmType_Int, nullptr, nullptr);
                TVPMSetDatai(TVPMFindDataRef(n), 1);
            }
        });
    }
    int Acquire(const std::string& key, char** models = nullptr) {
        return RunAs<int>(key, [=] { return TVPMAcquirePlanes(models, PlanesFree, nullptr); });
    }
};

TEST_F(WorldControl, EnabledWaitingPluginsAreCalledBackWhenTheHolderReleasesOrIsDisabled) {
    EXPECT_EQ(Acquire("alpha.tvp"), 1);
    EXPECT_EQ(Acquire("alpha.tvp"), 1);  // already held: nothing changes
    EXPECT_EQ(TVPMGetNumberPlanesToHandle(20, 0), 20);
    EXPECT_EQ(Acquire("beta.tvp"), 0);
    EXPECT_EQ(Acquire("beta.tvp"), 0);  // queued twice
    EXPECT_EQ(JournalOf("alpha.tvp:message 111").size(), 2u);
    RunAs("beta.tvp", [] {  // not the holder: all ignored
        TVPMReleasePlanes();
        TVPMReinitUsersPlane();
        TVPMDrawAircraft(1, 0, 0, 0, 0, 0, 0, 1, nullptr);
    });
    char name[256] = "";
    EXPECT_EQ(TVPMGetTrafficControlPluginInfo(name, nullptr), alpha);
    EXPECT_STREQ(name, "alpha.tvp");
    EXPECT_EQ(host.Count("TVPMReinitFlight_f") + host.Count("TVPMDrawPlane_f"), 0u);
    RunAs("alpha.tvp", [] { TVPMReleasePlanes(); });
    EXPECT_NE(host.Log().find("The plugin alpha.tvp is releasing control of AI aircraft.\n"), std::string::npos);
    EXPECT_EQ(s_heard, (Lines{"free@" + std::to_string(beta), "free@" + std::to_string(beta)}));
    for (const char* n : kAiItems) EXPECT_EQ(TVPMGetDatai(TVPMFindDataRef(n)), 0) << n;
    EXPECT_EQ(TVPMGetTrafficControlPluginInfo(nullptr, nullptr), -1);
    EXPECT_EQ(Acquire("beta.tvp"), 1);
    Acquire("atc.tvp");
    Acquire("alpha.tvp");
    s_heard.clear();
    TVPMDisablePlugin(alpha);
    TVPMDisablePlugin(beta);  // the holder's disable ends its control; a disabled plugin is not called
    EXPECT_EQ(s_heard, (Lines{"free@" + std::to_string(IdOf("atc.tvp"))}));
}

TEST_F(WorldControl, TheHoldersLimitAndModelsReachTheSimulator) {
    struct Case {
        int limit, slots, loading, expectedSlots, expectedActive;
    } cases[] = {{3, 20, 0, 3, 3}, {3, 20, 1, 20, 3}, {30, 20, 0, 20, 20}, {-1, 20, 0, 20, 20}};
    char m0[] = "", m1[] = "Aircraft/A/a.acf";
    char* models[] = {m0, m1, nullptr};
    Acquire("alpha.tvp", models);
    for (const Case& c : cases) {
        RunAs("alpha.tvp", [&] { TVPMSetActiveAircraftCount(c.limit); });
        EXPECT_EQ(TVPMGetNumberPlanesToHandle(c.slots, c.loading), c.expectedSlots) << c.limit;
        int active = 0;
        TVPMPluginID controller = -1;
        TVPMCountAircraft(nullptr, &active, &controller);
        EXPECT_EQ(active, c.expectedActive) << c.limit;
        EXPECT_EQ(controller, alpha);
    }
    RunAs("alpha.tvp", [] {
        TVPMSetAircraftModel(3, "Aircraft/C/c.acf");   // a slot the simulator has: loaded now
        TVPMSetAircraftModel(40, "Aircraft/D/d.acf");  // kept for later
        TVPMReinitUsersPlane();
        TVPMDrawAircraft(2, 1, 2, 3, 4, 5, 6, 1, nullptr);
    });
    EXPECT_EQ(host.CallsTo("TVPMLoadPlane_f").at(0).args, (Lines{"3", "\"Aircraft/C/c.acf\"", "\"Aircraft/C/c.acf\""}));
    EXPECT_EQ(host.Count("TVPMLoadPlane_f"), 1u);
    EXPECT_EQ(host.CallsTo("TVPMReinitFlight_f").at(0).args, (Lines{"208", "201"}));
    EXPECT_EQ(host.CallsTo("TVPMDrawPlane_f").at(0).args[6], "6");
    char path[512] = "untouched", chosen[512] = "host choice";
    TVPMUpdatePlaneNameAndPath(0, nullptr, path);  // the user's slot is never replaced
    TVPMUpdatePlaneNameAndPath(2, nullptr, path);  // nothing chosen
    TVPMUpdatePlaneNameAndPath(1, nullptr, chosen);
    EXPECT_STREQ(path, "untouched");
    EXPECT_STREQ(chosen, "Aircraft/A/a.acf");
}

// What the camera controller does with a frame.
enum Steering { kKeep, kGiveUp, kDisableSelf };

int Steer(TVPMCameraPosition_t* pos, int losing, void* ref) {
    Hear((pos ? "frame" : "null") + std::string(losing ? " losing" : ""));
    if (!pos) return 1;
    pos->x += 100;
    if (*static_cast<Steering*>(ref) == kDisableSelf) TVPMDisablePlugin(TVPMGetMyID());
    return *static_cast<Steering*>(ref) != kGiveUp;
}

TEST_F(WorldControl, TheCameraControllerIsCalledEachFrameAndToldOnceWhenItLosesControl) {
    enum Then { kNothing, kViewChange, kDontControl };
    struct Case {
        const char* what;
        TVPMCameraControlDuration duration;
        Steering steering;
        Then then;
        Lines heard;
        bool controlledAfter;  // then the frame is the controller's; else the simulator's own
    } cases[] = {
        {"kept on view change", tvpm_ControlCameraForever, kKeep, kViewChange, {"frame@1", "null losing@1"}, true},
        {"given up", tvpm_ControlCameraForever, kGiveUp, kNothing, {"frame@1"}, false},
        {"view change ends until-change", tvpm_ControlCameraUntilViewChanges, kKeep, kViewChange, {"null losing@1"},
         false},
        {"released without a call", tvpm_ControlCameraForever, kKeep, kDontControl, {}, false},
        {"controller disables itself", tvpm_ControlCameraForever, kDisableSelf, kNothing, {"frame@1", "null losing@1"},
         false},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.what);
        s_heard.clear();
        TVPMEnablePlugin(alpha);
        RunAs("alpha.tvp", [&] { TVPMControlCamera(c.duration, Steer, &c.steering); });
        if (c.then == kViewChange) TVPMEventHook(tvpm_CameraChangedHook, 0, 0, 0, 0);
        if (c.then == kDontControl) RunAs("beta.tvp", [] { TVPMDontControlCamera(); });
        float x = 1, y = 2, z = 3, pitch = 0, heading = 0, roll = 0, zoom = 1;
        EXPECT_EQ(TVPMCameraHook(&x, &y, &z, &pitch, &heading, &roll, &zoom), c.controlledAfter ? 0 : 1);
        EXPECT_EQ(x, c.controlledAfter ? 101 : 1);
        TVPMCameraControlDuration d = -1;
        EXPECT_EQ(TVPMIsCameraBeingControlled(&d), c.controlledAfter);
        EXPECT_EQ(d, c.controlledAfter ? c.duration : -1);
        // Disabling releases what is still held; a released controller hears nothing more.
        TVPMDisablePlugin(alpha);
        TVPMCameraHook(&x, &y, &z, &pitch, &heading, &roll, &zoom);
        EXPECT_EQ(s_heard, c.heard);
    }
}

}  // namespace
