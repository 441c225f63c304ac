// test_flight_loops.cpp: flight loops: due rules in seconds and passes, their arguments, ownership, re-entrancy and disabled owners.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "TVPM/TVPMProcessing.h"
#include "data_test_util.h"

using namespace datatest;
using Names = std::vector<std::string>;

namespace {

// Every call as "who sinceLast now counter as current".
Names s_calls;
float s_now = 0;
// What each loop returns, by name (-1 if not listed), and what it does first.
std::map<std::string, float> s_next;
std::map<std::string, std::function<void()>> s_during;

float Loop(float sinceLast, float now, int counter, void* refcon) {
    const std::string who = static_cast<const char*>(refcon);
    std::ostringstream call;
    call << who << " " << sinceLast << " " << now << " " << counter << " as " << TVPMGetMyID();
    s_calls.push_back(call.str());
    if (s_during.count(who)) s_during[who]();
    return s_next.count(who) ? s_next[who] : -1.0f;
}
float OtherLoop(float a, float b, int c, void* refcon) { return Loop(a, b, c, refcon); }

char kA[] = "a", kB[] = "b", kC[] = "c", kD[] = "d";

TVPMFlightLoopID Create(char* name, TVPMFlightLoopPhaseType phase = 0) {
    TVPMCreateFlightLoop_t params{24, phase, Loop, name};
    return TVPMCreateFlightLoop(&params);
}

Names Called() {
    Names out;
    for (const std::string& c : s_calls) out.push_back(c.substr(0, c.find(' ')));
    return out;
}

struct FlightLoops : TwoPlugins {
    void SetUp() override {
        host.On<&TVPMHooks::TVPMGetElapsedTime_f>([] { return s_now; });
        TwoPlugins::SetUp();
        Start();
    }
    // One frame at simulator time t: both passes.
    void Frame(float t) {
        s_now = t;
        host.RunFrame(t);
    }
    TVPMFlightLoopID CreateAs(const char* key, char* name, float interval, TVPMFlightLoopPhaseType phase = 0) {
        return RunAs<TVPMFlightLoopID>(key, [&] {
            TVPMFlightLoopID id = Create(name, phase);
            TVPMScheduleFlightLoop(id, interval, 0);
            return id;
        });
    }
};

}  // namespace

TEST_F(FlightLoops, CycleIntervalsCountPassesOfTheirOwnPhase) {
    RunAs("alpha.tvp", [] { Create(kD); });  // never scheduled
    CreateAs("alpha.tvp", kA, -1, tvpm_FlightLoop_Phase_BeforeFlightModel);
    CreateAs("alpha.tvp", kB, -1, tvpm_FlightLoop_Phase_AfterFlightModel);
    s_next["c"] = -3;
    CreateAs("alpha.tvp", kC, -3);
    for (int frame = 1; frame <= 4; ++frame) Frame(static_cast<float>(frame));
    // The counter advances on both passes (before-passes see odd numbers), so
    // -1 and -2 both mean every frame and -3 every other frame.
    EXPECT_EQ(Called(), (Names{"a", "b", "c", "a", "b", "a", "b", "c", "a", "b"}));
    EXPECT_EQ(s_calls[1], "b 1 1 2 as " + std::to_string(alpha));
    EXPECT_EQ(s_calls[2], "c 2 2 3 as " + std::to_string(alpha));
    EXPECT_EQ(TVPMGetCycleNumber(), 8);
}

TEST_F(FlightLoops, SecondsIntervalsAndTheirArguments) {
    s_now = 10;
    s_next["a"] = 0.5f;
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, 1.0f);
    for (float t : {10.75f, 11.0f, 11.25f, 11.5f}) Frame(t);
    EXPECT_EQ(s_calls, (Names{"a 1 11 3 as 1", "a 0.5 11.5 7 as 1"}));

    s_next["a"] = 0;  // stops
    Frame(12.0f);
    Frame(20.0f);
    ASSERT_EQ(s_calls.size(), 3u);
    s_now = 30;
    RunAs("alpha.tvp", [&] { TVPMScheduleFlightLoop(a, 0.5f, 1); });
    Frame(30.25f);
    Frame(30.5f);
    ASSERT_EQ(s_calls.size(), 4u);
    EXPECT_EQ(s_calls[3], "a 0.5 30.5 15 as 1");
}

TEST_F(FlightLoops, RescheduleRelativeToNowKeepsTheCycleBase) {
    CreateAs("alpha.tvp", kA, 0);
    Frame(1);
    Frame(2);
    TVPMFlightLoopID id = RunAs<TVPMFlightLoopID>("alpha.tvp", [] { return Create(kB); });  // at pass 4
    Frame(3);
    Frame(4);
    RunAs("alpha.tvp", [&] { TVPMScheduleFlightLoop(id, -6, 1); });
    Frame(5);  // pass 9 < 4 + 6
    EXPECT_TRUE(s_calls.empty());
    Frame(6);
    ASSERT_EQ(s_calls.size(), 1u);
    EXPECT_EQ(s_calls[0], "b 2 6 11 as 1") << "passes counted from its creation";
}

TEST_F(FlightLoops, NewestRunsFirstAndOnlyItsOwnerMayChangeItWhileStaleHandlesAreIgnored) {
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, -1);
    CreateAs("beta.tvp", kB, -1);
    TVPMFlightLoopID c = CreateAs("alpha.tvp", kC, -1, tvpm_FlightLoop_Phase_AfterFlightModel);
    RunAs("beta.tvp", [&] {
        TVPMScheduleFlightLoop(a, 0, 1);
        TVPMDestroyFlightLoop(a);
    });
    EXPECT_EQ(ErrorsOf(beta), (Names{"Attempt to schedule a flight loop callback owned by another plugin.",
                                     "Attempt to remove a flight loop callback owned by another plugin."}));
    Frame(1);
    EXPECT_EQ(Called(), (Names{"b", "a", "c"}));
    EXPECT_EQ(s_calls[0], "b 1 1 1 as 2");

    int notALoop = 0;
    RunAs("alpha.tvp", [&] {
        TVPMDestroyFlightLoop(c);
        TVPMDestroyFlightLoop(c);
        TVPMScheduleFlightLoop(c, -1, 0);
        TVPMDestroyFlightLoop(nullptr);
        TVPMScheduleFlightLoop(&notALoop, -1, 0);
    });
    s_calls.clear();
    Frame(2);
    EXPECT_EQ(Called(), (Names{"b", "a"}));
    EXPECT_TRUE(ErrorsOf(alpha).empty());
}

TEST_F(FlightLoops, LoopsKeepTheirScheduleWhenRemovalsCompactTheirPhase) {
    static char names[4][2] = {"0", "1", "2", "3"};
    std::vector<TVPMFlightLoopID> ids;
    for (char* name : names) ids.push_back(CreateAs("alpha.tvp", name, -1));
    RunAs("alpha.tvp", [&] {
        TVPMDestroyFlightLoop(ids[0]);
        TVPMDestroyFlightLoop(ids[1]);  // half the phase is gone
        TVPMScheduleFlightLoop(ids[2], 0, 0);
    });
    Frame(1);
    EXPECT_EQ(Called(), Names{"3"});
}

TEST_F(FlightLoops, ALoopMayDestroyOrReRegisterItselfFromItsOwnCallback) {
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, -1);
    CreateAs("alpha.tvp", kB, -1);
    CreateAs("alpha.tvp", kC, -1);
    s_during["b"] = [&] {
        TVPMDestroyFlightLoop(a);  // an older loop, not yet reached this pass
        TVPMUnregisterFlightLoopCallback(Loop, kB);
        TVPMRegisterFlightLoopCallback(OtherLoop, -1, kD);
    };
    Frame(1);
    s_during.clear();
    Frame(2);
    EXPECT_EQ(Called(), (Names{"c", "b", "d", "c"}));
}

TEST_F(FlightLoops, DisabledOwnersAreSkippedAtOnceAndTheirLoopsFireWhenReEnabled) {
    s_next["b"] = 1.0f;
    CreateAs("alpha.tvp", kA, 1.0f);
    CreateAs("beta.tvp", kB, 1.0f);
    CreateAs("alpha.tvp", kC, -1);
    s_during["c"] = [] { TVPMDisablePlugin(TVPMGetMyID()); };
    Frame(1);
    Frame(2);
    EXPECT_EQ(Called(), (Names{"c", "b", "b"})) << "a, due, is skipped in the pass that disabled its owner";
    s_during.clear();
    TVPMEnablePlugin(alpha);
    s_calls.clear();
    Frame(2.5f);
    EXPECT_EQ(s_calls, (Names{"c 1.5 2.5 5 as 1", "a 2.5 2.5 5 as 1"}))
        << "a waited since its creation";
}

TEST_F(FlightLoops, LegacyCallsMatchCallbackAndRefconAndNeverReport) {
    RunAs("alpha.tvp", [] {
        TVPMRegisterFlightLoopCallback(Loop, -1, kA);
        TVPMRegisterFlightLoopCallback(Loop, -1, kB);
        TVPMRegisterFlightLoopCallback(Loop, -1, kA);
    });
    Frame(1);
    RunAs("beta.tvp", [] { TVPMUnregisterFlightLoopCallback(Loop, kA); });
    Frame(2);  // only the newer one went
    RunAs("beta.tvp", [] { TVPMSetFlightLoopCallbackInterval(Loop, 0, 0, kA); });
    Frame(3);
    EXPECT_EQ(Called(), (Names{"a", "b", "a", "b", "a", "b"}));
    EXPECT_TRUE(ErrorsOf(beta).empty());

    s_now = 3;
    RunAs("alpha.tvp", [] { TVPMRegisterFlightLoopCallback(Loop, 2.0f, kC); });
    s_calls.clear();
    Frame(4.5f);
    Frame(5.0f);
    EXPECT_EQ(Called(), (Names{"b", "c", "b"}));
    EXPECT_EQ(s_calls[1], "c 2 5 9 as 1");

    RunAs("alpha.tvp", [] { TVPMRegisterFlightLoopCallback(Loop, -1, kA); });
    s_during["a"] = [] {
        TVPMUnregisterFlightLoopCallback(Loop, kB);
        TVPMUnregisterFlightLoopCallback(Loop, kB);  // finds the one just removed, and stops there
    };
    RunAs("alpha.tvp", [] { TVPMRegisterFlightLoopCallback(Loop, -1, kB); });
    s_calls.clear();
    Frame(6.0f);
    EXPECT_EQ(Called(), (Names{"b", "a", "c", "b"}));
}

TEST_F(FlightLoops, BadCreateParametersAreReportedOnlyToListenersAndNeverRefused) {
    TVPMFlightLoopID made[2] = {};
    RunAs("alpha.tvp", [&] {
        TVPMCreateFlightLoop_t params{16, 2, nullptr, kA};
        made[0] = TVPMCreateFlightLoop(&params);
        TVPMScheduleFlightLoop(made[0], -1, 0);
        TVPMSetErrorCallback(nullptr);
        made[1] = TVPMCreateFlightLoop(&params);
    });
    EXPECT_NE(made[0], nullptr);
    EXPECT_NE(made[1], nullptr);
    EXPECT_EQ(ErrorsOf(alpha), (Names{"Illegal struct size for TVPMCreateFlightLoop",
                                      "Illegal phase type for TVPMCreateFlightLoop",
                                      "Null callback for TVPMCreateFlightLoop"}));
    Frame(1);  // a loop of no known phase is never run
    RunAs("alpha.tvp", [&] {
        TVPMCreateFlightLoop_t params{24, 0, nullptr, kA};
        TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&params), -1, 0);
    });
    RunAs("beta.tvp", [] { TVPMRegisterFlightLoopCallback(nullptr, -1, kA); });  // the same checks
    Frame(2);  // nor is one without a callback
    EXPECT_TRUE(s_calls.empty());
    EXPECT_EQ(ErrorsOf(beta), Names{"Null callback for TVPMCreateFlightLoop"});
}

TEST_F(FlightLoops, UnloadingAPluginRemovesItsLoops) {
    host.userAircraftPath = sim.AddAircraft("Cessna", {"acfplug"}, BuiltPlugin("scripted.tvp"));
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_GT(IdOf("acfplug"), 0);
    CreateAs("acfplug", kA, -1);
    CreateAs("alpha.tvp", kC, -1);
    TVPMScheduleFlightLoop(Create(kB), -1, 0);
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    Frame(1);
    EXPECT_EQ(Called(), (Names{"b", "c"}));
    EXPECT_EQ(s_calls[0], "b 1 1 1 as 0") << "the simulator's own loop runs as the simulator";
}

TEST_F(FlightLoops, AReloadAskedForDuringAPassRunsAfterIt) {
    CreateAs("alpha.tvp", kA, -1);
    CreateAs("alpha.tvp", kB, -1);
    s_during["b"] = [] { TVPMReloadPlugins(); };
    Journal().clear();
    Frame(1);
    EXPECT_EQ(Called(), (Names{"b", "a"}));
    EXPECT_EQ(JournalOf("alpha.tvp:stop").size(), 1u);
    s_during.clear();
    Frame(2);
    EXPECT_EQ(s_calls.size(), 2u) << "the reloaded plugin starts without loops";
}
