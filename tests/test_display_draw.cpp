// test_display_draw.cpp: draw callbacks through the simulator's drawing hooks: order, results, reflections, timing and the window pass.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "DisplayRig.h"
#include "TimingSamples.h"

using namespace tvpmtest;

namespace {

using Calls = std::vector<std::string>;

// A registration whose refcon is itself: the callback records
// "label:phase:before" and answers `answer`.
struct Reg {
    const char* plugin;
    TVPMDrawingPhase phase;
    int before, answer;
    const char* label;
};
int Record(TVPMDrawingPhase phase, int before, void* refcon) {
    const Reg* r = static_cast<const Reg*>(refcon);
    return g_log.push_back(std::string(r->label) + ":" + std::to_string(phase) + ":" + std::to_string(before)), r->answer;
}
void DrawLabel(TVPMWindowID, void* refcon) { g_log.push_back(static_cast<const char*>(refcon)); }

void Register(DisplayRig& rig, const Reg& r) {
    rig.As(r.plugin, [&] { EXPECT_EQ(TVPMRegisterDrawCallback(Record, r.phase, r.before, (void*)&r), 1); });
}
TVPMWindowID Window(TVPMDrawWindow_f draw, const char* label, int visible = 1) {
    return TVPMCreateWindow(0, 10, 10, 0, visible, draw, nullptr, nullptr, (void*)label);
}

class DrawTest : public ::testing::Test {
protected:
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
};

// One hook call: the kind, the render type, whether into a fixed window, and
// what the needs and do hooks answer and which callbacks run.
struct Probe {
    int kind, renderType;
    bool fixed;
    int needs, answer;
    Calls calls;
};
// Registered in this order; beta sees reflections.
const Reg kRegs[] = {
    {"alpha.tvp", tvpm_Phase_Objects, 1, 1, "a"},        {"beta.tvp", tvpm_Phase_Objects, 1, 1, "b"},
    {"alpha.tvp", tvpm_Phase_Panel, 1, 1, "one"},        {"alpha.tvp", tvpm_Phase_Panel, 1, 2, "two"},
    {"alpha.tvp", tvpm_Phase_Panel, 1, 1, "again"},      {"alpha.tvp", tvpm_Phase_Terrain, 0, 0, "after"},
    {"alpha.tvp", tvpm_Phase_LastScene, 1, 0, "last"},   {"alpha.tvp", tvpm_Phase_FirstScene, 1, 0, "pre"},
    {"alpha.tvp", tvpm_Phase_FirstScene, 0, 1, "post"},  {"alpha.tvp", tvpm_Phase_Airports, 0, 1, "x"},
    {"alpha.tvp", tvpm_Phase_FirstCockpit, 0, 1, "y"},   {"alpha.tvp", tvpm_Phase_Gauges, 2, 0, "two"},
    {"alpha.tvp", tvpm_Phase_LastCockpit, 1, 1, "z"},    {"alpha.tvp", tvpm_Phase_LocalMapProfile, 0, 0, "p"},
    {"alpha.tvp", tvpm_Phase_Airplanes, 1, 1, "a"},      {"beta.tvp", tvpm_Phase_Airplanes, 1, 1, "b"},
    {"alpha.tvp", tvpm_Phase_Vectors, 0, 1, "v"},        {"alpha.tvp", tvpm_Phase_Modern3D, 1, 0, "a"},
    {"alpha.tvp", tvpm_Phase_LocalMap3D, 0, 1, "m"},     {"beta.tvp", tvpm_Phase_Modern3D, 0, 1, "b"},
};
const Probe kProbes[] = {
    // Newest first across plugins; before answers combine by bitwise and; after kinds answer one.
    {8, 0, false, 1, 1, {"b:20:1", "a:20:1"}}, {9, 0, false, 0, 1, {}},
    {15, 0, false, 1, 0, {"again:40:1", "two:40:1", "one:40:1"}},
    {2, 0, false, 0, 1, {}}, {3, 0, false, 1, 1, {"after:5:0"}}, {12, 0, false, 1, 1, {"last:30:1"}},
    // A kind with both timings answers the before result; an after callback needs only its kind.
    {1, 0, false, 1, 0, {"pre:0:1", "post:0:0"}}, {1, 0, true, 1, 0, {"pre:0:1"}},
    // ...unless the kind always answers one.
    {13, 0, false, 1, 1, {"a:31:1", "b:31:0"}},
    {4, 0, false, 0, 1, {}}, {5, 0, false, 1, 1, {"x:10:0"}}, {6, 0, false, 0, 1, {}}, {14, 0, false, 1, 1, {"y:35:0"}},
    // Before other than 0 or 1 is never called; unknown kinds call nothing.
    {17, 0, false, 0, 1, {}}, {18, 0, false, 0, 1, {}}, {19, 0, false, 1, 1, {"z:55:1"}},
    {0, 0, false, 0, 1, {}}, {28, 0, false, 0, 1, {}}, {-1, 0, false, 0, 1, {}}, {27, 0, false, 1, 1, {"p:102:0"}},
    // Reflection passes reach only plugins with the feature.
    {10, 1, false, 1, 1, {"b:25:1"}}, {10, 0, false, 1, 1, {"b:25:1", "a:25:1"}},
    {7, 1, false, 0, 1, {}}, {7, 0, false, 1, 1, {"v:15:0"}},
};
// With alpha disabled: its callbacks are skipped and not needed.
const Probe kProbesAlphaDisabled[] = {{13, 0, false, 1, 1, {"b:31:0"}}, {25, 0, false, 0, 1, {}}};

const Reg kLate{"alpha.tvp", tvpm_Phase_Objects, 1, 1, "late"};
// Unregisters itself (still a registration until the walk ends, so it cannot
// register again meanwhile) and registers "late", which waits for the next pass.
int UnregisterSelfRegisterLate(TVPMDrawingPhase phase, int before, void*) {
    g_log.push_back("self");
    EXPECT_EQ(TVPMUnregisterDrawCallback(UnregisterSelfRegisterLate, phase, before, nullptr), 1);
    EXPECT_EQ(TVPMRegisterDrawCallback(UnregisterSelfRegisterLate, phase, before, nullptr), 0);
    TVPMRegisterDrawCallback(Record, phase, before, (void*)&kLate);
    return 1;
}
}  // namespace

TEST_F(DrawTest, DrawingHooksAnswerAndCallTheRegisteredCallbacks) {
    rig.As("beta.tvp", [] { TVPMEnableFeature("TVPM_WANTS_REFLECTIONS", 1); });
    for (const Reg& r : kRegs) Register(rig, r);
    int fixedWindow = 0;
    auto check = [&](const Probe& p) {
        SCOPED_TRACE(p.kind);
        g_log.clear();
        EXPECT_EQ(TVPMNeedsDrawingHook(p.kind, p.renderType), p.needs);
        EXPECT_EQ(TVPMDoDrawingHook(p.kind, p.renderType, p.fixed ? &fixedWindow : nullptr), p.answer);
        EXPECT_EQ(g_log, p.calls);
    };
    for (const Probe& p : kProbes) check(p);
    // A registration is its callback, phase, timing and refcon together.
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMRegisterDrawCallback(Record, kRegs[0].phase, 1, (void*)&kRegs[0]), 0);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, kRegs[0].phase, 1, (void*)&kLate), 0);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, kRegs[0].phase, 0, (void*)&kRegs[0]), 0);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, kRegs[0].phase, 1, (void*)&kRegs[0]), 1);
        EXPECT_EQ(TVPMUnregisterDrawCallback(Record, kRegs[0].phase, 1, (void*)&kRegs[0]), 0);
        EXPECT_EQ(TVPMRegisterDrawCallback(nullptr, kRegs[0].phase, 1, nullptr), 0);
    });
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    for (const Probe& p : kProbesAlphaDisabled) check(p);
}

TEST_F(DrawTest, ChangesDuringTheWalkTakeEffectOnTheNextPass) {
    static const Reg older{"alpha.tvp", tvpm_Phase_Objects, 1, 1, "older"}, newer{"alpha.tvp", tvpm_Phase_Objects, 1, 1, "newer"};
    Register(rig, older);
    rig.As("alpha.tvp", [] { TVPMRegisterDrawCallback(UnregisterSelfRegisterLate, tvpm_Phase_Objects, 1, nullptr); });
    Register(rig, newer);
    TVPMDoDrawingHook(8, 0, nullptr);
    TVPMDoDrawingHook(8, 0, nullptr);
    EXPECT_EQ(g_log, (Calls{"newer:20:1", "self", "older:20:1", "late:20:1", "newer:20:1", "older:20:1"}));
    rig.As("alpha.tvp", [] { EXPECT_EQ(TVPMRegisterDrawCallback(UnregisterSelfRegisterLate, tvpm_Phase_Objects, 1, nullptr), 1); });
}

TEST_F(DrawTest, CallbacksAreTimedByTheCategoryOfTheirPhase) {
    static const Reg regs[] = {{"beta.tvp", tvpm_Phase_Panel, 1, 1, "p"},
                               {"beta.tvp", tvpm_Phase_Window, 1, 1, "w"},
                               {"beta.tvp", tvpm_Phase_LocalMap2D, 0, 1, "m"}};
    for (const Reg& r : regs) Register(rig, r);
    rig.As("beta.tvp", [] { Window(DrawLabel, "win"); });
    TVPMGetPluginCallbackTimings(CollectTimings);
    s_samples.clear();
    for (int kind : {15, 20, 23, 21}) TVPMDoDrawingHook(kind, 0, nullptr);
    TVPMGetPluginCallbackTimings(CollectTimings);
    std::vector<TVPMPluginCallbackType> types;
    for (const TimingSample& s : s_samples) types.push_back(s.type);
    EXPECT_EQ(types, (std::vector<TVPMPluginCallbackType>{tvpm_cb_drawing_panel_legacy, tvpm_cb_drawing_window_legacy,
                                                         tvpm_cb_drawing_misc, tvpm_cb_drawing_window}));
}

// ---- The window pass ---------------------------------------------------------------------

TEST_F(DrawTest, WindowsAreDrawnBackToFrontIntoTheirOwnSurfaceWhenVisible) {
    static const Reg after{"alpha.tvp", tvpm_Phase_Window, 0, 1, "after"};
    rig.As("alpha.tvp", [&] { Window(DrawLabel, "hidden", 0); });
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 0);
    TVPMWindowID a = nullptr, gui = nullptr;
    rig.As("alpha.tvp", [&] {
        a = Window(DrawLabel, "A");
        Window(DrawLabel, "B");
        Window(DrawLabel, "C");
        TVPMCreateWindow_t p{TVPM_CREATE_WINDOW_SIZE_GUI, 0, 0, 0, 0, 1, DrawLabel, nullptr, nullptr, nullptr, nullptr, (void*)"gui", 0, 0, nullptr};
        gui = TVPMCreateWindowEx(&p);
    });
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 1);
    EXPECT_EQ(TVPMNeedsDrawingHook(20, 0), 0);  // only the after kind draws windows
    Register(rig, after);
    EXPECT_EQ(TVPMDoDrawingHook(21, 0, nullptr), 1);
    EXPECT_EQ(g_log, (Calls{"A", "B", "C", "after:50:0"}));
    g_log.clear();
    rig.As("beta.tvp", [&] { TVPMBringWindowToFront(a); });
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(TVPMDoDrawingHook(21, 0, gui), 1);
    EXPECT_EQ(g_log, (Calls{"B", "C", "A", "after:50:0", "gui"}));
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(TVPMNeedsDrawingHook(21, 0), 0);
}

// ---- Windows changed by their own draw callbacks ------------------------------------------

namespace {
TVPMWindowID g_backMost = nullptr;
bool g_reloadNow = false;
void DrawAndRaiseBackMost(TVPMWindowID, void* refcon) { DrawLabel(nullptr, refcon), TVPMBringWindowToFront(g_backMost); }
void DrawAndReplaceSelf(TVPMWindowID self, void* refcon) {
    DrawLabel(nullptr, refcon);
    TVPMDestroyWindow(self);
    TVPMDestroyWindow(self);  // a stale ID is ignored
    Window(DrawLabel, "new");
}
void DrawAndReloadAircraft(TVPMWindowID, void* refcon) {
    DrawLabel(nullptr, refcon);
    if (std::exchange(g_reloadNow, false)) TVPMReloadACFPlugins();
}
void DrawAndDisableBeta(TVPMWindowID, void* refcon) {
    DrawLabel(nullptr, refcon), TVPMDisablePlugin(TVPMFindPluginBySignature("test.beta.tvp"));
}
}  // namespace

TEST_F(DrawTest, WindowsReorderedReplacedOrDisabledDuringThePassAreDrawnOnceOrNotAtAll) {
    rig.As("alpha.tvp", [] {
        g_backMost = Window(DrawLabel, "0");
        Window(DrawAndReplaceSelf, "self");
        Window(DrawAndRaiseBackMost, "2");
        Window(DrawAndRaiseBackMost, "3");
        Window(DrawAndDisableBeta, "disabler");
    });
    rig.As("beta.tvp", [] {
        Window(DrawLabel, "beta");
        TVPMCreateWindow_t p{};
        p.structSize = TVPM_CREATE_WINDOW_SIZE_GUI;
        p.visible = 1;
        TVPMTakeKeyboardFocus(TVPMCreateWindowEx(&p));
    });
    rig.host.ClearCalls();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_log, (Calls{"0", "self", "2", "3", "disabler"}));
    EXPECT_EQ(rig.host.Count("TVPMHideGuiPluginWindow_f"), 1u);
    EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
    g_log.clear();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_log, (Calls{"2", "3", "disabler", "new", "0"}));
}

TEST_F(DrawTest, AircraftPluginsReloadedDuringThePassLoseTheirOldWindowsSafely) {
    static const Reg after{"gamma", tvpm_Phase_Window, 0, 1, "gamma-after"};
    rig.As("alpha.tvp", [] { Window(DrawAndReloadAircraft, "reloader"); });
    Script("gamma").enable = [] {
        Window(DrawLabel, "gamma");
        TVPMRegisterDrawCallback(Record, after.phase, after.before, (void*)&after);
        return 1;
    };
    rig.LoadAircraftWithPlugin("gamma");
    g_reloadNow = true;
    TVPMDoDrawingHook(21, 0, nullptr);
    // The old gamma window was destroyed by the reload before its turn and the
    // new one was created during the pass; the new after-callback is in time
    // for the after walk, which starts later.
    EXPECT_EQ(g_log, (Calls{"reloader", "gamma-after:50:0"}));
    g_log.clear();
    TVPMDoDrawingHook(21, 0, nullptr);
    EXPECT_EQ(g_log, (Calls{"reloader", "gamma", "gamma-after:50:0"}));
}
