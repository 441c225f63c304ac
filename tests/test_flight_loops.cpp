// test_flight_loops.cpp: flight loops: due rules in seconds and passes, their arguments, ownership and re-entrancy.
#include <gtest/gtest.h>

#include <cstddef>
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

TEST_F(FlightLoops, SecondsIntervalsTheirArgumentsAndReschedulingRelativeToNow) {
    s_now = 10;
    s_next["a"] = 0.5f;
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, 1.0f);
    for (float t : {10.75f, 11.0f, 11.25f, 11.5f}) Frame(t);
    s_next["a"] = 0;  // stops
    for (float t : {12.0f, 20.0f}) Frame(t);
    s_now = 30;
    RunAs("alpha.tvp", [&] { TVPMScheduleFlightLoop(a, 0.5f, 1); });
    for (float t : {30.25f, 30.5f}) Frame(t);
    RunAs("alpha.tvp", [&] { TVPMScheduleFlightLoop(a, -6, 1); });  // passes still count from its last run
    for (float t : {31.0f, 32.0f, 33.0f}) Frame(t);
    EXPECT_EQ(s_calls, (Names{"a 1 11 3 as 1", "a 0.5 11.5 7 as 1", "a 0.5 12 9 as 1", "a 0.5 30.5 15 as 1",
                              "a 2.5 33 21 as 1"}));
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
}

TEST_F(FlightLoops, BadCreateParametersAreReportedButNeverRefusedAndSuchLoopsNeverRun) {
    RunAs("alpha.tvp", [] {
        TVPMCreateFlightLoop_t params{16, 2, Loop, kA};
        TVPMFlightLoopID unknownPhase = TVPMCreateFlightLoop(&params);
        EXPECT_NE(unknownPhase, nullptr);
        TVPMScheduleFlightLoop(unknownPhase, -1, 0);
        params = {24, 0, nullptr, kB};
        TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&params), -1, 0);
    });
    RunAs("beta.tvp", [] { TVPMRegisterFlightLoopCallback(nullptr, -1, kC); });  // the same checks
    Frame(1);
    EXPECT_TRUE(s_calls.empty());
    const std::string noCallback = "Null callback for TVPMCreateFlightLoop";
    EXPECT_EQ(ErrorsOf(alpha), (Names{"Illegal struct size for TVPMCreateFlightLoop",
                                      "Illegal phase type for TVPMCreateFlightLoop", noCallback}));
    EXPECT_EQ(ErrorsOf(beta), Names{noCallback});
}

TEST_F(FlightLoops, AReloadAskedForDuringAPassRunsAfterItAndRemovesThePluginsLoops) {
    TVPMScheduleFlightLoop(Create(kC), -1, 0);
    CreateAs("alpha.tvp", kA, -1);
    CreateAs("alpha.tvp", kB, -1);
    s_during["b"] = [] { TVPMReloadPlugins(); };
    Journal().clear();
    Frame(1);
    EXPECT_EQ(Called(), (Names{"b", "a", "c"}));
    EXPECT_EQ(s_calls[2], "c 1 1 1 as 0") << "the simulator's own loop runs as the simulator";
    EXPECT_EQ(JournalOf("alpha.tvp:stop").size(), 1u);
    s_during.clear();
    s_calls.clear();
    Frame(2);
    EXPECT_EQ(Called(), Names{"c"}) << "the reloaded plugin starts without loops";
}
