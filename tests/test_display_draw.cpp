// test_display_draw.cpp: draw callbacks through the simulator's drawing hooks: order, results, reflections, timing and the window pass.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DisplayRig.h"

using namespace tvpmtest;

namespace {

std::vector<std::string> g_calls;
int g_answer = 1;

// Records "label:phase:before" and answers g_answer; the refcon is the label.
int Record(TVPMDrawingPhase phase, int before, void* refcon) {
    g_calls.push_back(std::string(static_cast<const char*>(refcon)) + ":" + std::to_string(phase) +
                      ":" + std::to_string(before));
    return g_answer;
}
int AnswerZero(TVPMDrawingPhase, int, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    return 0;
}
int AnswerTwo(TVPMDrawingPhase, int, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    return 2;
}
int UnregisterSelf(TVPMDrawingPhase phase, int before, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    EXPECT_EQ(TVPMUnregisterDrawCallback(UnregisterSelf, phase, before, refcon), 1);
    return 1;
}

void DrawLabel(TVPMWindowID, void* refcon) { g_calls.push_back(static_cast<const char*>(refcon)); }

struct Sample {
    TVPMPluginID plugin;
    TVPMPluginCallbackType type;
};
std::vector<Sample> g_samples;
void CollectSamples(uint64_t n, const TVPMPluginID* ids, const TVPMPluginCallbackType* types,
                    const double*) {
    for (uint64_t i = 0; i < n; ++i) g_samples.push_back({ids[i], types[i]});
}

class DrawTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_calls.clear();
        g_samples.clear();
        g_answer = 1;
    }
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
};

}  // namespace

TEST_F(DrawTest, NewestRegistrationIsCalledFirstAcrossPlugins) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_Objects, 1, (void*)"a"); });
    rig.As("beta.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_Objects, 1, (void*)"b"); });
    EXPECT_EQ(TVPMDoDrawingHook(8, 0, nullptr), 1);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"b:20:1", "a:20:1"}));
}

TEST_F(DrawTest, BeforeResultsCombineByBitwiseAndAndEveryCallbackRuns) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Panel, 1, (void*)"one");
        TVPMRegisterDrawCallback(AnswerZero, tvpm_Phase_Panel, 1, (void*)"zero");
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Panel, 1, (void*)"one-again");
    });
    EXPECT_EQ(TVPMDoDrawingHook(15, 0, nullptr), 0);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"one-again:40:1", "zero", "one:40:1"}));
}

TEST_F(DrawTest, AnswerTwoSuppressesThePhaseLikeZero) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(AnswerTwo, tvpm_Phase_Terrain, 1, (void*)"x"); });
    EXPECT_EQ(TVPMDoDrawingHook(2, 0, nullptr), 0);
}

TEST_F(DrawTest, AfterKindsAlwaysAnswerOne) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterDrawCallback(AnswerZero, tvpm_Phase_Terrain, 0, (void*)"after");
        TVPMRegisterDrawCallback(AnswerZero, tvpm_Phase_LastScene, 1, (void*)"last-before");
    });
    EXPECT_EQ(TVPMDoDrawingHook(3, 0, nullptr), 1);
    EXPECT_EQ(TVPMDoDrawingHook(12, 0, nullptr), 1);  // both flags, forced to 1
    EXPECT_EQ(g_calls, (std::vector<std::string>{"after", "last-before"}));
}

TEST_F(DrawTest, KindWithBothTimingsRunsBeforeThenAfterAndAnswersTheBeforeResult) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterDrawCallback(AnswerZero, tvpm_Phase_FirstScene, 1, (void*)"before");
        TVPMRegisterDrawCallback(Record, tvpm_Phase_FirstScene, 0, (void*)"after");
    });
    EXPECT_EQ(TVPMDoDrawingHook(1, 0, nullptr), 0);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"before", "after:0:0"}));
    g_calls.clear();
    int fixedWindow = 0;
    EXPECT_EQ(TVPMDoDrawingHook(1, 0, &fixedWindow), 0);  // no after pass into a fixed window
    EXPECT_EQ(g_calls, (std::vector<std::string>{"before"}));
}

TEST_F(DrawTest, WantsBeforeOtherThanZeroOrOneIsNeverCalledNorNeeded) {
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMRegisterDrawCallback(Record, tvpm_Phase_Gauges, 2, (void*)"two"), 1);
    });
    EXPECT_EQ(TVPMNeedsDrawingHook(17, 0), 0);
    EXPECT_EQ(TVPMNeedsDrawingHook(18, 0), 0);
    EXPECT_EQ(TVPMDoDrawingHook(17, 0, nullptr), 1);
    EXPECT_EQ(TVPMDoDrawingHook(18, 0, nullptr), 1);
    EXPECT_TRUE(g_calls.empty());
}

TEST_F(DrawTest, UnknownKindsAreNeverNeededAndCallNothing) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(AnswerZero, tvpm_Phase_FirstScene, 1, (void*)"x"); });
    for (int kind : {0, 28, -1}) {
        EXPECT_EQ(TVPMNeedsDrawingHook(kind, 0), 0);
        EXPECT_EQ(TVPMDoDrawingHook(kind, 0, nullptr), 1);
    }
    EXPECT_TRUE(g_calls.empty());
}

TEST_F(DrawTest, NeedsHookMatchesTimingOfTheKind) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_Airports, 0, (void*)"x"); });
    EXPECT_EQ(TVPMNeedsDrawingHook(4, 0), 0);  // before kind
    EXPECT_EQ(TVPMNeedsDrawingHook(5, 0), 1);  // after kind
    EXPECT_EQ(TVPMNeedsDrawingHook(6, 0), 0);  // another phase
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_LastCockpit, 1, (void*)"y"); });
    EXPECT_EQ(TVPMNeedsDrawingHook(19, 0), 1);  // kind with both timings
    EXPECT_EQ(TVPMNeedsDrawingHook(14, 0), 0);
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_FirstCockpit, 0, (void*)"z"); });
    EXPECT_EQ(TVPMNeedsDrawingHook(14, 0), 1);  // ... also needed by an after callback
}

TEST_F(DrawTest, ReflectionPassesReachOnlyPluginsWithTheFeature) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_Airplanes, 1, (void*)"a"); });
    rig.As("beta.tvp", [] {
        TVPMEnableFeature("TVPM_WANTS_REFLECTIONS", 1);
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Airplanes, 1, (void*)"b");
    });
    TVPMDoDrawingHook(10, 1, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"b:25:1"}));
    g_calls.clear();
    TVPMDoDrawingHook(10, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"b:25:1", "a:25:1"}));

    rig.As("beta.tvp", [] { TVPMUnregisterDrawCallback(Record, tvpm_Phase_Airplanes, 1, (void*)"b"); });
    EXPECT_EQ(TVPMNeedsDrawingHook(10, 1), 0);
    EXPECT_EQ(TVPMNeedsDrawingHook(10, 0), 1);
}

TEST_F(DrawTest, DuplicatesAreRefusedAndUnknownUnregistrationsAnswerZero) {
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMRegisterDrawCallback(Record, tvpm_Phase_Vectors, 1, (void*)"x"), 1);
        EXPECT_EQ(TVPMRegisterDrawCallback(Record, tvpm_Phase_Vectors, 1, (void*)"x"), 0);
        EXPECT_EQ(TVPMRegisterDrawCallback(Record, tvpm_Phase_Vectors, 0, (void*)"x"), 1);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, tvpm_Phase_Vectors, 1, (void*)"y"), 0);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, tvpm_Phase_Vectors, 1, (void*)"x"), 1);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, tvpm_Phase_Vectors, 1, (void*)"x"), 0);
        EXPECT_EQ(TVPMRegisterDrawCallback(Record, tvpm_Phase_Vectors, 1, (void*)"x"), 1);
        EXPECT_EQ(TVPMRegisterDrawCallback(nullptr, tvpm_Phase_Vectors, 1, nullptr), 0);
    });
    TVPMDoDrawingHook(6, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"x:15:1"}));
}

TEST_F(DrawTest, CallbackUnregisteringItselfIsNotCalledAgainAndTheWalkGoesOn) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Objects, 1, (void*)"older");
        TVPMRegisterDrawCallback(UnregisterSelf, tvpm_Phase_Objects, 1, (void*)"self");
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Objects, 1, (void*)"newer");
    });
    TVPMDoDrawingHook(8, 0, nullptr);
    TVPMDoDrawingHook(8, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"newer:20:1", "self", "older:20:1", "newer:20:1",
                                                 "older:20:1"}));
}

namespace {
int ReregisterSelf(TVPMDrawingPhase phase, int before, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    EXPECT_EQ(TVPMUnregisterDrawCallback(ReregisterSelf, phase, before, refcon), 1);
    // The removed record stays in the list until the walk ends, and it still
    // counts as the same registration.
    EXPECT_EQ(TVPMRegisterDrawCallback(ReregisterSelf, phase, before, refcon), 0);
    return 1;
}
}  // namespace

TEST_F(DrawTest, RegistrationRemovedDuringTheWalkStillCountsAsADuplicateUntilItEnds) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(ReregisterSelf, tvpm_Phase_Objects, 1, (void*)"cycle"); });
    TVPMDoDrawingHook(8, 0, nullptr);
    TVPMDoDrawingHook(8, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"cycle"}));
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMRegisterDrawCallback(ReregisterSelf, tvpm_Phase_Objects, 1, (void*)"cycle"), 1);
    });
}

namespace {
int RegisterAnother(TVPMDrawingPhase, int, void*) {
    g_calls.push_back("registrar");
    TVPMRegisterDrawCallback(Record, tvpm_Phase_Objects, 1, (void*)"late");
    return 1;
}
}  // namespace

TEST_F(DrawTest, RegistrationDuringTheWalkWaitsForTheNextPass) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(RegisterAnother, tvpm_Phase_Objects, 1, nullptr); });
    TVPMDoDrawingHook(8, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"registrar"}));
    TVPMDoDrawingHook(8, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"registrar", "late:20:1", "registrar"}));
}

TEST_F(DrawTest, DisabledPluginsAreSkippedAndNotNeededButKeepTheirCallbacks) {
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(Record, tvpm_Phase_Modern3D, 1, (void*)"a"); });
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(TVPMNeedsDrawingHook(13, 0), 0);
    TVPMDoDrawingHook(13, 0, nullptr);
    EXPECT_TRUE(g_calls.empty());
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(TVPMNeedsDrawingHook(13, 0), 1);
    TVPMDoDrawingHook(13, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"a:31:1"}));
}

TEST_F(DrawTest, CallbacksRunAsTheirPluginAndAreTimedByCategory) {
    static TVPMPluginID seen = -5;
    rig.As("beta.tvp", [] {
        TVPMRegisterDrawCallback([](TVPMDrawingPhase, int, void*) { seen = TVPMGetMyID(); return 1; },
                                 tvpm_Phase_Panel, 1, nullptr);
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Window, 1, (void*)"w");
        TVPMRegisterDrawCallback(Record, tvpm_Phase_LocalMap2D, 0, (void*)"m");
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"win");
    });
    TVPMGetPluginCallbackTimings(CollectSamples);
    g_samples.clear();
    TVPMDoDrawingHook(15, 0, nullptr);
    TVPMDoDrawingHook(20, 0, nullptr);
    TVPMDoDrawingHook(23, 0, nullptr);
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(seen, rig.Id("beta.tvp"));
    EXPECT_EQ(TVPMGetMyID(), 0);
    TVPMGetPluginCallbackTimings(CollectSamples);
    ASSERT_EQ(g_samples.size(), 4u);
    const TVPMPluginCallbackType expected[] = {tvpm_cb_drawing_panel_legacy,
                                               tvpm_cb_drawing_window_legacy, tvpm_cb_drawing_misc,
                                               tvpm_cb_drawing_window};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(g_samples[i].type, expected[i]) << i;
        EXPECT_EQ(g_samples[i].plugin, rig.Id("beta.tvp"));
    }
}

// ---- The window pass ---------------------------------------------------------------------

TEST_F(DrawTest, WindowsAreDrawnBackToFrontAndBringToFrontDrawsLast) {
    TVPMWindowID a = nullptr;
    rig.As("alpha.tvp", [&] {
        a = TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"A");
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"B");
        TVPMCreateWindow(0, 10, 10, 0, 0, DrawLabel, nullptr, nullptr, (void*)"hidden");
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"C");
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Window, 0, (void*)"after");
    });
    EXPECT_EQ(TVPMDoDrawingHook(21, 0, nullptr), 1);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"A", "B", "C", "after:50:0"}));
    g_calls.clear();
    rig.As("beta.tvp", [&] { TVPMBringWindowToFront(a); });
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"B", "C", "A", "after:50:0"}));
}

TEST_F(DrawTest, SimulatorWindowsAreDrawnOnlyIntoTheirOwnSurface) {
    TVPMWindowID gui = nullptr;
    rig.As("alpha.tvp", [&] {
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"plain");
        TVPMCreateWindow_t p{};
        p.structSize = sizeof p;
        p.visible = 1;
        p.drawWindowFunc = DrawLabel;
        p.refcon = (void*)"gui";
        gui = TVPMCreateWindowEx(&p);
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Window, 0, (void*)"after");
    });
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"plain", "after:50:0"}));
    g_calls.clear();
    EXPECT_EQ(TVPMDoDrawingHook(21, 0, gui), 1);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"gui"}));
}

TEST_F(DrawTest, WindowPhaseIsNeededForAVisibleWindowOfAnEnabledPlugin) {
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 0);
    TVPMWindowID w = rig.Window("alpha.tvp", 0, 10, 10, 0);
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 1);
    EXPECT_EQ(TVPMNeedsDrawingHook(20, 0), 0);  // only the after kind draws windows
    rig.As("alpha.tvp", [&] { TVPMSetWindowIsVisible(w, 0); });
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 0);
    rig.As("alpha.tvp", [&] { TVPMSetWindowIsVisible(w, 1); });
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 0);
}

// ---- Windows changed by their own draw callbacks ------------------------------------------

namespace {
TVPMWindowID g_windows[4];

void DrawAndRaiseBackMost(TVPMWindowID, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    TVPMBringWindowToFront(g_windows[0]);
}
void DrawAndReplaceSelf(TVPMWindowID self, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    TVPMDestroyWindow(self);
    TVPMDestroyWindow(self);  // a stale ID is ignored
    g_windows[3] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"new");
}
}  // namespace

TEST_F(DrawTest, ReorderingDuringThePassDrawsEveryWindowOnce) {
    rig.As("alpha.tvp", [] {
        g_windows[0] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"0");
        g_windows[1] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"1");
        g_windows[2] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawAndRaiseBackMost, nullptr, nullptr, (void*)"2");
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawAndRaiseBackMost, nullptr, nullptr, (void*)"3");
    });
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"0", "1", "2", "3"}));
    g_calls.clear();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"1", "2", "3", "0"}));
}

TEST_F(DrawTest, WindowDestroyingItselfWhileDrawnIsReplacedOnTheNextPass) {
    rig.As("alpha.tvp", [] {
        g_windows[0] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"back");
        g_windows[1] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawAndReplaceSelf, nullptr, nullptr, (void*)"self");
        g_windows[2] = TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"front");
    });
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"back", "self", "front"}));
    g_calls.clear();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"back", "front", "new"}));
}

namespace {
bool g_reloadNow = false;
void DrawAndReloadAircraft(TVPMWindowID, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    if (g_reloadNow) TVPMReloadACFPlugins();
    g_reloadNow = false;
}
void DrawAndDisableBeta(TVPMWindowID, void* refcon) {
    g_calls.push_back(static_cast<const char*>(refcon));
    TVPMDisablePlugin(TVPMFindPluginBySignature("test.beta.tvp"));
}
}  // namespace

TEST_F(DrawTest, AircraftPluginsReloadedDuringThePassLoseTheirOldWindowsSafely) {
    rig.As("alpha.tvp", [] {
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawAndReloadAircraft, nullptr, nullptr, (void*)"reloader");
    });
    Script("gamma").enable = [] {
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"gamma");
        TVPMRegisterDrawCallback(Record, tvpm_Phase_Window, 0, (void*)"gamma-after");
        return 1;
    };
    rig.LoadAircraftWithPlugin("gamma");
    g_reloadNow = true;
    TVPMDoDrawingHook(21, 0, nullptr);
    // The old gamma window was destroyed by the reload before its turn and the
    // new one was created during the pass; the new after-callback is in time
    // for the after walk, which starts later.
    EXPECT_EQ(g_calls, (std::vector<std::string>{"reloader", "gamma-after:50:0"}));
    g_calls.clear();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"reloader", "gamma", "gamma-after:50:0"}));
}

TEST_F(DrawTest, PluginDisabledDuringThePassIsNotDrawnAndItsSimulatorWindowsHide) {
    rig.As("alpha.tvp", [] {
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawAndDisableBeta, nullptr, nullptr, (void*)"disabler");
    });
    rig.As("beta.tvp", [] {
        TVPMCreateWindow(0, 10, 10, 0, 1, DrawLabel, nullptr, nullptr, (void*)"beta");
        TVPMCreateWindow_t p{};
        p.structSize = 88;
        p.visible = 1;
        TVPMTakeKeyboardFocus(TVPMCreateWindowEx(&p));
    });
    rig.host.ClearCalls();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"disabler"}));
    EXPECT_EQ(rig.host.Count("TVPMHideGuiPluginWindow_f"), 1u);
    EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
}
