// test_flight_loops.cpp: flight loops: due rules in seconds and passes, their arguments, ownership, re-entrancy, disabled owners and timing.
#include <gtest/gtest.h>

#include "FakeHost.h"
#include "Harness.h"
#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "data_test_util.h"

using namespace tvpmtest;
using namespace datatest;

namespace {

struct Call {
    std::string who;
    float sinceLast, now;
    int counter;
    TVPMPluginID current;
    bool operator==(const Call& o) const {
        return who == o.who && sinceLast == o.sinceLast && now == o.now && counter == o.counter &&
               current == o.current;
    }
};
std::ostream& operator<<(std::ostream& os, const Call& c) {
    return os << c.who << "(" << c.sinceLast << ", " << c.now << ", " << c.counter << ") as "
              << c.current;
}

std::vector<Call> s_calls;
float s_now = 0;
// What each loop returns, by name; loops not listed return their old answer.
std::map<std::string, float> s_next;
std::map<std::string, std::function<void()>> s_during;

float Loop(float sinceLast, float now, int counter, void* refcon) {
    const std::string who = static_cast<const char*>(refcon);
    s_calls.push_back({who, sinceLast, now, counter, TVPMGetMyID()});
    if (s_during.count(who)) s_during[who]();
    return s_next.count(who) ? s_next[who] : -1.0f;
}
float OtherLoop(float a, float b, int c, void* refcon) { return Loop(a, b, c, refcon); }

char kA[] = "a", kB[] = "b", kC[] = "c", kD[] = "d";

TVPMFlightLoopID Create(char* name, TVPMFlightLoopPhaseType phase = 0) {
    TVPMCreateFlightLoop_t params{24, phase, Loop, name};
    return TVPMCreateFlightLoop(&params);
}

std::vector<std::string> Names() {
    std::vector<std::string> out;
    for (const Call& c : s_calls) out.push_back(c.who);
    return out;
}

struct FlightLoops : SimTest {
    TVPMPluginID alpha = -1, beta = -1;
    void SetUp() override {
        host.On<&TVPMHooks::TVPMGetElapsedTime_f>([] { return s_now; });
        AddScripted({"alpha.tvp", "beta.tvp"});
        Script("alpha.tvp").enable = [] { ListenForErrors<1>(); return 1; };
        Script("beta.tvp").enable = [] { ListenForErrors<2>(); return 1; };
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }
    // One frame at simulator time t: both passes.
    void Frame(float t) {
        s_now = t;
        host.RunFrame(t);
    }
    TVPMFlightLoopID CreateAs(const char* key, char* name, float interval,
                              TVPMFlightLoopPhaseType phase = 0) {
        TVPMFlightLoopID id = nullptr;
        AsPlugin(key, [&] {
            id = Create(name, phase);
            TVPMScheduleFlightLoop(id, interval, 0);
        });
        return id;
    }
};

}  // namespace

TEST_F(FlightLoops, CycleIntervalsCountPassesOfTheirOwnPhase) {
    AsPlugin("alpha.tvp", [] { Create(kD); });  // never scheduled
    CreateAs("alpha.tvp", kA, -1, tvpm_FlightLoop_Phase_BeforeFlightModel);
    CreateAs("alpha.tvp", kB, -1, tvpm_FlightLoop_Phase_AfterFlightModel);
    s_next["c"] = -3;
    CreateAs("alpha.tvp", kC, -3);
    for (int frame = 1; frame <= 4; ++frame) Frame(static_cast<float>(frame));
    // The counter advances on both passes (before-passes see odd numbers), so
    // -1 and -2 both mean every frame and -3 every other frame.
    EXPECT_EQ(Names(), (std::vector<std::string>{"a", "b", "c", "a", "b", "a", "b", "c", "a", "b"}));
    EXPECT_EQ(s_calls[0].counter, 1);
    EXPECT_EQ(s_calls[1].counter, 2);
    EXPECT_EQ(s_calls[2].counter, 3);
    EXPECT_EQ(s_calls[2].now, 2.0f);
    EXPECT_EQ(TVPMGetCycleNumber(), 8);
}

TEST_F(FlightLoops, SecondsIntervalsAndTheirArguments) {
    s_now = 10;
    s_next["a"] = 0.5f;
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, 1.0f);
    Frame(10.75f);
    EXPECT_TRUE(s_calls.empty());
    Frame(11.0f);
    Frame(11.25f);
    Frame(11.5f);
    EXPECT_EQ(s_calls, (std::vector<Call>{{"a", 1.0f, 11.0f, 3, alpha}, {"a", 0.5f, 11.5f, 7, alpha}}));

    s_next["a"] = 0;  // stops
    Frame(12.0f);
    Frame(20.0f);
    ASSERT_EQ(s_calls.size(), 3u);
    s_now = 30;
    AsPlugin("alpha.tvp", [&] { TVPMScheduleFlightLoop(a, 0.5f, 1); });
    Frame(30.25f);
    Frame(30.5f);
    ASSERT_EQ(s_calls.size(), 4u);
    EXPECT_EQ(s_calls[3], (Call{"a", 0.5f, 30.5f, 15, alpha}));
}

TEST_F(FlightLoops, RescheduleRelativeToNowKeepsTheCycleBase) {
    CreateAs("alpha.tvp", kA, 0);
    Frame(1);
    Frame(2);
    TVPMFlightLoopID id = nullptr;
    AsPlugin("alpha.tvp", [&] { id = Create(kB); });  // created at pass 4
    Frame(3);
    Frame(4);
    AsPlugin("alpha.tvp", [&] { TVPMScheduleFlightLoop(id, -6, 1); });
    Frame(5);  // pass 9 < 4 + 6
    EXPECT_TRUE(s_calls.empty());
    Frame(6);
    ASSERT_EQ(s_calls.size(), 1u);
    EXPECT_EQ(s_calls[0].counter, 11);
}

TEST_F(FlightLoops, NewestLoopRunsFirst) {
    CreateAs("alpha.tvp", kA, -1);
    CreateAs("beta.tvp", kB, -1);
    CreateAs("alpha.tvp", kC, -1);
    Frame(1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"c", "b", "a"}));
    EXPECT_EQ(s_calls[1].current, beta);
}

TEST_F(FlightLoops, AnotherPluginsLoopCannotBeScheduledOrDestroyed) {
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, -1);
    AsPlugin("beta.tvp", [&] {
        TVPMScheduleFlightLoop(a, 0, 1);
        TVPMDestroyFlightLoop(a);
    });
    EXPECT_EQ(Errors()[2], (std::vector<std::string>{
                               "Attempt to schedule a flight loop callback owned by another plugin.",
                               "Attempt to remove a flight loop callback owned by another plugin."}));
    Frame(1);
    EXPECT_EQ(Names(), std::vector<std::string>{"a"});
}

TEST_F(FlightLoops, StaleAndNullHandlesAreIgnored) {
    TVPMFlightLoopID a = CreateAs("alpha.tvp", kA, -1);
    int notALoop = 0;
    AsPlugin("alpha.tvp", [&] {
        TVPMDestroyFlightLoop(a);
        TVPMDestroyFlightLoop(a);
        TVPMScheduleFlightLoop(a, -1, 0);
        TVPMDestroyFlightLoop(nullptr);
        TVPMScheduleFlightLoop(&notALoop, -1, 0);
    });
    Frame(1);
    EXPECT_TRUE(s_calls.empty());
    EXPECT_TRUE(Errors()[1].empty());
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
    EXPECT_EQ(Names(), (std::vector<std::string>{"c", "b"}));
    s_during.clear();
    s_calls.clear();
    Frame(2);
    EXPECT_EQ(Names(), (std::vector<std::string>{"d", "c"}));
}

TEST_F(FlightLoops, DisabledOwnersLoopsWaitAndFireAtOnceWhenReEnabled) {
    s_now = 0;
    s_next["a"] = s_next["b"] = 1.0f;
    CreateAs("alpha.tvp", kA, 1.0f);
    CreateAs("beta.tvp", kB, 1.0f);
    TVPMDisablePlugin(alpha);
    Frame(1);
    Frame(2);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "b"}));
    TVPMEnablePlugin(alpha);
    s_calls.clear();
    Frame(2.5f);
    ASSERT_EQ(s_calls.size(), 1u);
    EXPECT_EQ(s_calls[0], (Call{"a", 2.5f, 2.5f, 5, alpha}));
}

TEST_F(FlightLoops, AnOwnerDisabledDuringThePassIsSkippedForTheRestOfIt) {
    CreateAs("alpha.tvp", kA, -1);
    CreateAs("beta.tvp", kB, -1);
    CreateAs("alpha.tvp", kC, -1);
    s_during["c"] = [] { TVPMDisablePlugin(TVPMGetMyID()); };
    Frame(1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"c", "b"}));
    s_during.clear();
    TVPMEnablePlugin(alpha);
    s_calls.clear();
    Frame(2);
    EXPECT_EQ(Names(), (std::vector<std::string>{"c", "b", "a"}));
    EXPECT_EQ(s_calls[2].sinceLast, 2.0f) << "a waited since its creation";
}

TEST_F(FlightLoops, LegacyCallsMatchCallbackAndRefcon) {
    AsPlugin("alpha.tvp", [] {
        TVPMRegisterFlightLoopCallback(Loop, -1, kA);
        TVPMRegisterFlightLoopCallback(Loop, -1, kB);
        TVPMRegisterFlightLoopCallback(Loop, -1, kA);
    });
    Frame(1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"a", "b", "a"}));
    AsPlugin("beta.tvp", [] { TVPMUnregisterFlightLoopCallback(Loop, kA); });
    s_calls.clear();
    Frame(2);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "a"})) << "only the newer one went";

    AsPlugin("beta.tvp", [] { TVPMSetFlightLoopCallbackInterval(Loop, 0, 0, kA); });
    s_calls.clear();
    Frame(3);
    EXPECT_EQ(Names(), std::vector<std::string>{"b"});
    EXPECT_TRUE(Errors()[2].empty()) << "legacy calls never report";

    s_now = 3;
    AsPlugin("alpha.tvp", [] { TVPMRegisterFlightLoopCallback(Loop, 2.0f, kC); });
    s_calls.clear();
    Frame(4.5f);
    Frame(5.0f);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "c", "b"}));
    EXPECT_EQ(s_calls[1].sinceLast, 2.0f);
}

TEST_F(FlightLoops, BadCreateParametersAreReportedOnlyToListenersAndNeverRefused) {
    TVPMFlightLoopID made[2] = {};
    AsPlugin("alpha.tvp", [&] {
        TVPMCreateFlightLoop_t params{16, 2, nullptr, kA};
        made[0] = TVPMCreateFlightLoop(&params);
        TVPMScheduleFlightLoop(made[0], -1, 0);
        TVPMSetErrorCallback(nullptr);
        made[1] = TVPMCreateFlightLoop(&params);
    });
    EXPECT_NE(made[0], nullptr);
    EXPECT_NE(made[1], nullptr);
    EXPECT_EQ(Errors()[1], (std::vector<std::string>{"Illegal struct size for TVPMCreateFlightLoop",
                                                     "Illegal phase type for TVPMCreateFlightLoop",
                                                     "Null callback for TVPMCreateFlightLoop"}));
    Frame(1);  // a loop of no known phase is never run
    AsPlugin("alpha.tvp", [&] {
        TVPMCreateFlightLoop_t params{24, 0, nullptr, kA};
        TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&params), -1, 0);
    });
    Frame(2);  // nor is one without a callback
    EXPECT_TRUE(s_calls.empty());

    // The older call creates through the same checks.
    AsPlugin("beta.tvp", [] { TVPMRegisterFlightLoopCallback(nullptr, -1, kA); });
    Frame(3);
    EXPECT_EQ(Errors()[2], std::vector<std::string>{"Null callback for TVPMCreateFlightLoop"});
}

namespace {
std::vector<std::pair<TVPMPluginID, TVPMPluginCallbackType>> s_samples;
void CollectTimings(uint64_t count, const TVPMPluginID* ids, const TVPMPluginCallbackType* types,
                    const double*) {
    for (uint64_t i = 0; i < count; ++i) s_samples.emplace_back(ids[i], types[i]);
}
}  // namespace

TEST_F(FlightLoops, EachCallIsTimedForItsOwner) {
    TVPMGetPluginCallbackTimings(CollectTimings);
    s_samples.clear();
    CreateAs("alpha.tvp", kA, -1);
    CreateAs("beta.tvp", kB, -1, tvpm_FlightLoop_Phase_AfterFlightModel);
    Frame(1);
    TVPMGetPluginCallbackTimings(CollectTimings);
    EXPECT_EQ(s_samples, (std::vector<std::pair<TVPMPluginID, TVPMPluginCallbackType>>{
                             {alpha, tvpm_cb_flight_loop}, {beta, tvpm_cb_flight_loop}}));
}

TEST_F(FlightLoops, UnloadingAPluginRemovesItsLoops) {
    host.userAircraftPath = sim.AddAircraft("Cessna", {"acfplug"}, BuiltPlugin("scripted.tvp"));
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_GT(IdOf("acfplug"), 0);
    CreateAs("acfplug", kA, -1);
    CreateAs("alpha.tvp", kC, -1);
    TVPMFlightLoopID hostLoop = Create(kB);
    TVPMScheduleFlightLoop(hostLoop, -1, 0);
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    Frame(1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "c"}));
    ASSERT_EQ(s_calls.size(), 2u);
    EXPECT_EQ(s_calls[0].current, 0) << "the simulator's own loop runs as the simulator";
}

TEST_F(FlightLoops, AReloadAskedForDuringAPassRunsAfterIt) {
    CreateAs("alpha.tvp", kA, -1);
    CreateAs("alpha.tvp", kB, -1);
    s_during["b"] = [] { TVPMReloadPlugins(); };
    Journal().clear();
    Frame(1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(JournalOf("alpha.tvp:stop").size(), 1u);
    s_calls.clear();
    s_during.clear();
    Frame(2);
    EXPECT_TRUE(s_calls.empty()) << "the reloaded plugin starts without loops";
}

TEST_F(FlightLoops, LegacyUnregisterDuringAPassStopsAtTheFirstMatchEvenIfAlreadyGone) {
    AsPlugin("alpha.tvp", [] {
        TVPMRegisterFlightLoopCallback(Loop, -1, kA);
        TVPMRegisterFlightLoopCallback(Loop, -1, kA);
        TVPMRegisterFlightLoopCallback(Loop, -1, kB);
    });
    s_during["b"] = [] {
        TVPMUnregisterFlightLoopCallback(Loop, kA);
        TVPMUnregisterFlightLoopCallback(Loop, kA);  // finds the one just removed
    };
    Frame(1);
    EXPECT_EQ(Names(), (std::vector<std::string>{"b", "a"}));
}
