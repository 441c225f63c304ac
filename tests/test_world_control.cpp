// test_world_control.cpp: AI-aircraft control passed between plugins through its queue, the user-aircraft operations, and camera control with its releases.
#include <map>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMCamera.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMPlanes.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

// Integer items of the simulator, as the ATC plugin publishes them here.
std::map<std::string, int> s_items;
int ReadItem(void* name) { return s_items[static_cast<const char*>(name)]; }
void WriteItem(void* name, int v) { s_items[static_cast<const char*>(name)] = v; }

// Callbacks as "<what>@<current plugin>".
Lines s_heard;
void Hear(const std::string& what) { s_heard.push_back(what + "@" + std::to_string(TVPMGetMyID())); }
void PlanesFree(void*) { Hear("free"); }

class WorldControl : public SimTest {
protected:
    TVPMPluginID alpha = -1, beta = -1;

    void SetUp() override {
        AddScripted({"alpha.tvp", "atc.tvp", "beta.tvp"});
        s_heard.clear();
        s_items.clear();
        host.On<&TVPMHooks::TVPMCountPlanes_f>([] { return 20; });
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
        RunAs("atc.tvp", [] {
            for (const char* n : {"sim/operation/override/override_TCAS", "sim/private/net_disables/ai_loc[1]",
                                  "sim/private/net_disables/ai_loc[2]", "sim/private/net_disables/ai_loc[19]"}) {
                TVPMRegisterDataAccessor(n, tvpmType_Int, 1, ReadItem, WriteItem, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                         const_cast<char*>(n), const_cast<char*>(n));
                s_items[n] = 1;
            }
        });
    }
    int Acquire(const std::string& key, char** models = nullptr) {
        return RunAs<int>(key, [=] { return TVPMAcquirePlanes(models, PlanesFree, nullptr); });
    }
    TVPMPluginID Controller() {
        TVPMPluginID id = -7;
        TVPMCountAircraft(nullptr, nullptr, &id);
        return id;
    }
};

TEST_F(WorldControl, WaitingPluginsAreCalledBackWhenTheHolderReleases) {
    char m0[] = "", m1[] = "Aircraft/A/a.acf";
    char* models[] = {m0, m1, nullptr};
    EXPECT_EQ(Acquire("alpha.tvp", models), 1);
    EXPECT_EQ(Acquire("alpha.tvp"), 1);  // already held: nothing changes
    EXPECT_EQ(TVPMGetNumberPlanesToHandle(20, 0), 20);
    char path[512] = "host choice";
    TVPMUpdatePlaneNameAndPath(1, nullptr, path);
    EXPECT_STREQ(path, "Aircraft/A/a.acf");
    EXPECT_EQ(Acquire("beta.tvp"), 0);
    EXPECT_EQ(Acquire("beta.tvp"), 0);  // queued twice
    EXPECT_EQ(JournalOf("alpha.tvp:message 111").size(), 2u);
    char name[256] = "";
    EXPECT_EQ(TVPMGetTrafficControlPluginInfo(name, nullptr), alpha);
    EXPECT_STREQ(name, "alpha.tvp");
    RunAs("beta.tvp", [] {  // not the holder: all ignored
        TVPMReleasePlanes();
        TVPMSetActiveAircraftCount(1);
        TVPMReinitUsersPlane();
        TVPMDrawAircraft(1, 0, 0, 0, 0, 0, 0, 1, nullptr);
    });
    EXPECT_EQ(Controller(), alpha);
    EXPECT_EQ(host.Count("TVPMReinitFlight_f") + host.Count("TVPMDrawPlane_f"), 0u);
    const std::string logBefore = host.Log();
    RunAs("alpha.tvp", [] { TVPMReleasePlanes(); });
    EXPECT_EQ(host.Log().substr(logBefore.size()), "The plugin alpha.tvp is releasing control of AI aircraft.\n");
    EXPECT_EQ(s_heard, (Lines{"free@" + std::to_string(beta), "free@" + std::to_string(beta)}));
    for (auto& [item, value] : s_items) EXPECT_EQ(value, 0) << item;
    EXPECT_EQ(Controller(), -1);
    EXPECT_EQ(Acquire("beta.tvp"), 1);
}

TEST_F(WorldControl, TheHoldersLimitAndModelsReachTheSimulator) {
    struct Case {
        int limit, slots, loading, expectedSlots, expectedActive;
    } cases[] = {{3, 20, 0, 3, 3}, {3, 20, 1, 20, 3}, {30, 20, 0, 20, 20}, {-1, 20, 0, 20, 20}};
    Acquire("alpha.tvp");
    for (const Case& c : cases) {
        RunAs("alpha.tvp", [&] { TVPMSetActiveAircraftCount(c.limit); });
        EXPECT_EQ(TVPMGetNumberPlanesToHandle(c.slots, c.loading), c.expectedSlots) << c.limit;
        int total = 0, active = 0;
        TVPMCountAircraft(&total, &active, nullptr);
        EXPECT_EQ(total, 20);
        EXPECT_EQ(active, c.expectedActive) << c.limit;
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
    char path[512] = "untouched";
    TVPMUpdatePlaneNameAndPath(0, nullptr, path);  // the user's slot is never replaced
    TVPMUpdatePlaneNameAndPath(2, nullptr, path);  // nothing chosen
    EXPECT_STREQ(path, "untouched");
}

TEST_F(WorldControl, ControlEndsWithTheHoldersDisableAndDisabledPluginsAreNotCalledBack) {
    Acquire("alpha.tvp");
    Acquire("beta.tvp");
    TVPMDisablePlugin(alpha);
    EXPECT_EQ(s_heard, (Lines{"free@" + std::to_string(beta)}));
    EXPECT_EQ(Controller(), -1);
    TVPMEnablePlugin(alpha);
    Acquire("beta.tvp");
    Acquire("alpha.tvp");  // alpha waits
    host.Shutdown();       // alpha is disabled before beta releases: it is not called
    EXPECT_EQ(s_heard, (Lines{"free@" + std::to_string(beta)}));
    EXPECT_EQ(TVPMGetTrafficControlPluginInfo(nullptr, nullptr), -1);
}

struct CameraScript {
    int keep = 1;  // the answer while in control
    bool disableSelf = false;
};

int Steer(TVPMCameraPosition_t* pos, int losing, void* ref) {
    Hear((pos ? "frame" : "null") + std::string(losing ? " losing" : ""));
    if (pos) pos->x += 100;
    if (static_cast<CameraScript*>(ref)->disableSelf && pos) TVPMDisablePlugin(TVPMGetMyID());
    return static_cast<CameraScript*>(ref)->keep;
}

TEST_F(WorldControl, TheCameraControllerIsCalledEachFrameAndToldOnceWhenItLosesControl) {
    enum Then { kNothing, kViewChange, kDisable, kDontControl };
    struct Case {
        const char* what;
        TVPMCameraControlDuration duration;
        CameraScript script;
        Then then;
        Lines heard;
        int hookResult;
        bool controlledAfter;
    } cases[] = {
        {"kept", tvpm_ControlCameraForever, {}, kNothing, {"frame@1", "null losing@1"}, 0, true},
        {"given up", tvpm_ControlCameraForever, {0, false}, kNothing, {"frame@1"}, 1, false},
        {"view change ends until-change", tvpm_ControlCameraUntilViewChanges, {}, kViewChange, {"null losing@1"}, 1,
         false},
        {"view change keeps forever", tvpm_ControlCameraForever, {}, kViewChange, {"frame@1", "null losing@1"}, 0, true},
        {"disable ends forever", tvpm_ControlCameraForever, {}, kDisable, {"null losing@1"}, 1, false},
        {"released without a call", tvpm_ControlCameraForever, {}, kDontControl, {}, 1, false},
        {"controller disables itself", tvpm_ControlCameraForever, {1, true}, kNothing, {"frame@1", "null losing@1"},
         1, false},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.what);
        s_heard.clear();
        TVPMEnablePlugin(alpha);
        RunAs("alpha.tvp", [&] { TVPMControlCamera(c.duration, Steer, &c.script); });
        if (c.then == kViewChange) TVPMEventHook(tvpm_CameraChangedHook, 0, 0, 0, 0);
        if (c.then == kDisable) TVPMDisablePlugin(alpha);
        if (c.then == kDontControl) RunAs("beta.tvp", [] { TVPMDontControlCamera(); });
        float x = 1, y = 2, z = 3, pitch = 0, heading = 0, roll = 0, zoom = 1;
        EXPECT_EQ(TVPMCameraHook(&x, &y, &z, &pitch, &heading, &roll, &zoom), c.hookResult);
        EXPECT_EQ(x, c.hookResult ? 1 : 101);
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
