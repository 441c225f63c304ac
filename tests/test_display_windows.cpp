// test_display_windows.cpp: window creation, geometry, visibility, stacking, keyboard focus, forwarders and the display side of a plugin's lifecycle.
#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "DisplayRig.h"

using namespace tvpmtest;

static_assert(sizeof(TVPMCreateWindow_t) == 88, "creation structure size");
static_assert(offsetof(TVPMCreateWindow_t, structSize) == 0, "");
static_assert(offsetof(TVPMCreateWindow_t, left) == 4, "");
static_assert(offsetof(TVPMCreateWindow_t, top) == 8, "");
static_assert(offsetof(TVPMCreateWindow_t, right) == 12, "");
static_assert(offsetof(TVPMCreateWindow_t, bottom) == 16, "");
static_assert(offsetof(TVPMCreateWindow_t, visible) == 20, "");
static_assert(offsetof(TVPMCreateWindow_t, drawWindowFunc) == 24, "");
static_assert(offsetof(TVPMCreateWindow_t, handleMouseClickFunc) == 32, "");
static_assert(offsetof(TVPMCreateWindow_t, handleKeyFunc) == 40, "");
static_assert(offsetof(TVPMCreateWindow_t, handleCursorFunc) == 48, "");
static_assert(offsetof(TVPMCreateWindow_t, handleMouseWheelFunc) == 56, "");
static_assert(offsetof(TVPMCreateWindow_t, refcon) == 64, "");
static_assert(offsetof(TVPMCreateWindow_t, decorateAsFloatingWindow) == 72, "");
static_assert(offsetof(TVPMCreateWindow_t, layer) == 76, "");
static_assert(offsetof(TVPMCreateWindow_t, handleRightClickFunc) == 80, "");

namespace {

std::vector<std::string> g_keys;

std::string Hex(const void* p) { return FormatArg(p); }

// Records "<refcon>:<window arg>:<key>:<losing>"; the refcon is a label.
void RecordKey(TVPMWindowID w, char key, TVPMKeyFlags, char, void* refcon, int losing) {
    g_keys.push_back(std::string(static_cast<const char*>(refcon)) + ":" +
                     (w ? Hex(w) : "null") + ":" + std::to_string(key) + ":" +
                     std::to_string(losing));
}

TVPMCreateWindow_t GuiParams(int layer = tvpm_WindowLayerModal) {
    TVPMCreateWindow_t p{};
    p.structSize = 88;
    p.left = 10;
    p.top = 200;
    p.right = 300;
    p.bottom = 20;
    p.visible = 1;
    p.handleKeyFunc = RecordKey;
    p.refcon = (void*)"gui";
    p.decorateAsFloatingWindow = tvpm_WindowDecorationRoundRectangle;
    p.layer = layer;
    return p;
}

class WindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_keys.clear();
        static std::vector<int>* bounds = &lastBounds;
        rig.host.On<&TVPMHooks::TVPMSetGuiPluginWindowBounds_f>([](void*, int* b) {
            bounds->assign(b, b + 4);
            return 1;
        });
    }
    TVPMWindowID Gui(const std::string& key, TVPMCreateWindow_t p = GuiParams()) {
        TVPMWindowID id = nullptr;
        rig.As(key, [&] { id = TVPMCreateWindowEx(&p); });
        return id;
    }
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
    std::vector<int> lastBounds;
};

}  // namespace

TEST_F(WindowTest, CreationStructureSizeDecidesTheKind) {
    TVPMCreateWindow_t p = GuiParams();
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMCreateWindowEx(nullptr), nullptr);
        for (int bad : {0, 80, 96, 71}) {
            p.structSize = bad;
            EXPECT_EQ(TVPMCreateWindowEx(&p), nullptr) << bad;
        }
    });
    EXPECT_EQ(rig.host.Count("TVPMCreateGuiPluginWindow_f"), 0u);

    p.structSize = 72;
    TVPMWindowID plain = Gui("alpha.tvp", p);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(rig.host.Count("TVPMCreateGuiPluginWindow_f"), 0u);
    int l = 0, t = 0, r = 0, b = 0;
    rig.As("alpha.tvp", [&] { TVPMGetWindowGeometry(plain, &l, &t, &r, &b); });
    EXPECT_EQ(std::vector<int>({l, t, r, b}), std::vector<int>({10, 200, 300, 20}));

    TVPMWindowID gui = Gui("alpha.tvp");
    auto create = rig.host.CallsTo("TVPMCreateGuiPluginWindow_f");
    ASSERT_EQ(create.size(), 1u);
    EXPECT_EQ(create[0].args, (std::vector<std::string>{Hex(gui), "1", "2", "1"}));
    EXPECT_EQ(lastBounds, (std::vector<int>{10, 20, 300, 200}));  // left, bottom, right, top
    EXPECT_EQ(rig.host.SlotSequence({"TVPMCreateGuiPluginWindow_f", "TVPMSetGuiPluginWindowBounds_f"}),
              (std::vector<std::string>{"TVPMCreateGuiPluginWindow_f", "TVPMSetGuiPluginWindowBounds_f"}));
}

TEST_F(WindowTest, LayerOutsideTheKnownOnesFallsBackToFloatingWindows) {
    TVPMWindowID gui = Gui("alpha.tvp", GuiParams(7));
    auto create = rig.host.CallsTo("TVPMCreateGuiPluginWindow_f");
    ASSERT_EQ(create.size(), 1u);
    EXPECT_EQ(create[0].args, (std::vector<std::string>{Hex(gui), "1", "1", "1"}));
}

TEST_F(WindowTest, SimulatorWindowGeometryTravelsThroughTheSimulator) {
    TVPMWindowID gui = Gui("alpha.tvp");
    rig.host.On<&TVPMHooks::TVPMGetGuiPluginWindowBounds_f>([](void*, int* b) {
        b[0] = 1;  // left
        b[1] = 2;  // bottom
        b[2] = 3;  // right
        b[3] = 4;  // top
    });
    int l = 0, t = 0, r = 0, b = 0;
    rig.As("alpha.tvp", [&] {
        TVPMGetWindowGeometry(gui, &l, &t, &r, &b);
        TVPMGetWindowGeometry(gui, nullptr, nullptr, nullptr, nullptr);
        TVPMSetWindowGeometry(gui, 5, 60, 70, 8);
    });
    EXPECT_EQ(std::vector<int>({l, t, r, b}), std::vector<int>({1, 4, 3, 2}));
    EXPECT_EQ(lastBounds, (std::vector<int>{5, 8, 70, 60}));
}

TEST_F(WindowTest, PoppedOutAndVrQueriesAskTheSimulatorOnlyWhenItApplies) {
    TVPMWindowID plain = rig.Window("alpha.tvp", 0, 10, 10, 0);
    TVPMWindowID gui = Gui("alpha.tvp");
    static int poppedOut = 0;
    rig.host.On<&TVPMHooks::TVPMWindowIsPoppedOut_f>([](void*) { return poppedOut; });
    rig.host.On<&TVPMHooks::TVPMWindowIsInVr_f>([](void*) { return poppedOut; });
    rig.host.On<&TVPMHooks::TVPMGetPopoutWindowOSBounds_f>([](void*, int* b) {
        b[0] = 100;
        b[1] = 200;
        b[2] = 300;
        b[3] = 400;
    });
    int l = -1, t = -1, r = -1, b = -1;
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMWindowIsPoppedOut(plain), 0);
        TVPMGetWindowGeometryOS(gui, &l, &t, &r, &b);
        EXPECT_EQ(l, -1);
        poppedOut = 1;
        EXPECT_EQ(TVPMWindowIsPoppedOut(plain), 0);
        EXPECT_EQ(TVPMWindowIsPoppedOut(gui), 1);
        EXPECT_EQ(TVPMWindowIsInVR(plain), 0);
        EXPECT_EQ(TVPMWindowIsInVR(gui), 1);
        TVPMGetWindowGeometryOS(plain, &l, nullptr, &r, nullptr);  // asked for plain windows too
        TVPMSetWindowGeometryOS(plain, 1, 2, 3, 4);                // never for plain windows
        TVPMSetWindowGeometryOS(gui, 1, 2, 3, 4);
        TVPMSetWindowGeometryVR(plain, 5, 6);
        TVPMSetWindowGeometryVR(gui, 7, 8);
    });
    EXPECT_EQ(l, 100);
    EXPECT_EQ(r, 300);
    EXPECT_EQ(t, -1);
    EXPECT_EQ(rig.host.Count("TVPMSetPopoutWindowOSBounds_f"), 1u);
    auto vr = rig.host.CallsTo("TVPMSetWindowVrSize_f");
    ASSERT_EQ(vr.size(), 1u);
    EXPECT_EQ(vr[0].args, (std::vector<std::string>{Hex(gui), "7", "8"}));
}

TEST_F(WindowTest, VisibilityOfSimulatorWindowsIsTheSimulatorsAndHidingDropsFocus) {
    TVPMWindowID gui = Gui("alpha.tvp");
    rig.host.On<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>([](void*) { return 7; });
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMGetWindowIsVisible(gui), 7);
        TVPMTakeKeyboardFocus(gui);
        TVPMSetWindowIsVisible(gui, 1);
        EXPECT_EQ(TVPMHasKeyboardFocus(gui), 1);
        TVPMSetWindowIsVisible(gui, 0);
        EXPECT_EQ(TVPMHasKeyboardFocus(gui), 0);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"gui:null:0:1"}));
    EXPECT_EQ(rig.host.SlotSequence({"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              (std::vector<std::string>{"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}));
}

TEST_F(WindowTest, FocusMovesWithTheLosingWindowToldWhoTakesIt) {
    TVPMWindowID a = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RecordKey, nullptr, (void*)"a");
    TVPMWindowID gui = Gui("beta.tvp");
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        EXPECT_EQ(TVPMHasKeyboardFocus((void*)&g_keys), 1);  // unknown ID while nobody has focus
        TVPMTakeKeyboardFocus(a);
        EXPECT_EQ(TVPMHasKeyboardFocus(a), 1);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 0);
        TVPMTakeKeyboardFocus(a);  // already focused: nothing happens
        TVPMTakeKeyboardFocus(gui);
        TVPMTakeKeyboardFocus((void*)&g_keys);  // unknown: back to the simulator
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"a:" + Hex(gui) + ":0:1", "gui:null:0:1"}));
    auto focus = rig.host.CallsTo("TVPMSetPluginMouseFocus_f");
    ASSERT_EQ(focus.size(), 3u);
    EXPECT_EQ(focus[0].args, (std::vector<std::string>{"1", "null"}));
    EXPECT_EQ(focus[1].args, (std::vector<std::string>{"0", Hex(gui)}));
    EXPECT_EQ(focus[2].args, (std::vector<std::string>{"0", "null"}));
}

TEST_F(WindowTest, DisabledPluginsWindowCannotTakeFocus) {
    TVPMWindowID a = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RecordKey, nullptr, (void*)"a");
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    rig.As("beta.tvp", [&] {
        TVPMTakeKeyboardFocus(a);
        EXPECT_EQ(TVPMHasKeyboardFocus(a), 0);
    });
    EXPECT_EQ(rig.host.Count("TVPMSetPluginMouseFocus_f"), 0u);
}

TEST_F(WindowTest, InFrontMeansFirstVisibleFromTheFront) {
    TVPMWindowID gui = Gui("alpha.tvp");
    TVPMWindowID back = rig.Window("alpha.tvp", 0, 10, 10, 0);
    TVPMWindowID front = rig.Window("alpha.tvp", 0, 10, 10, 0);
    rig.host.On<&TVPMHooks::TVPMGuiWindowIsInFront_f>([](void*) { return true; });
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMIsWindowInFront(front), 1);
        EXPECT_EQ(TVPMIsWindowInFront(back), 0);
        EXPECT_EQ(TVPMIsWindowInFront(gui), 1);
        TVPMSetWindowIsVisible(front, 0);
        EXPECT_EQ(TVPMIsWindowInFront(front), 0);  // still first in the list, but hidden
        EXPECT_EQ(TVPMIsWindowInFront(back), 1);
        TVPMSetWindowIsVisible(front, 1);
        TVPMBringWindowToFront(back);
        EXPECT_EQ(TVPMIsWindowInFront(back), 1);
        EXPECT_EQ(TVPMIsWindowInFront(front), 0);
        TVPMBringWindowToFront(gui);
    });
    EXPECT_EQ(rig.host.Count("TVPMBringGuiWindowToFront_f"), 1u);
}

TEST_F(WindowTest, RefconsAndUnknownWindowsAreIgnored) {
    TVPMWindowID w = rig.Window("alpha.tvp", 1, 2, 3, 4, nullptr, nullptr, nullptr, (void*)"r");
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMGetWindowRefCon(w), (void*)"r");
        TVPMSetWindowRefCon(w, (void*)&g_keys);
        EXPECT_EQ(TVPMGetWindowRefCon(w), (void*)&g_keys);
        TVPMDestroyWindow(w);
        int l = 42;
        TVPMGetWindowGeometry(w, &l, nullptr, nullptr, nullptr);
        EXPECT_EQ(l, 42);
        EXPECT_EQ(TVPMGetWindowRefCon(w), nullptr);
        EXPECT_EQ(TVPMGetWindowIsVisible(w), 0);
        TVPMSetWindowIsVisible(w, 1);
        TVPMBringWindowToFront(w);
        TVPMDestroyWindow(w);
        TVPMDestroyWindow(nullptr);
    });
}

TEST_F(WindowTest, ForwardersPassEverythingThrough) {
    void* anyId = (void*)&g_keys;
    static const char* title = "Title";
    rig.As("alpha.tvp", [&] {
        TVPMSetWindowGravity(anyId, 0.0f, 1.0f, 0.5f, 0.25f);
        TVPMSetWindowResizingLimits(anyId, 1, 2, 3, 4);
        TVPMSetWindowPositioningMode(anyId, 5, -1);
        TVPMSetWindowTitle(anyId, title);
        TVPMGetScreenSize(nullptr, nullptr);
        TVPMGetScreenBoundsGlobal(nullptr, nullptr, nullptr, nullptr);
        TVPMGetAllMonitorBoundsGlobal(nullptr, anyId);
        TVPMGetAllMonitorBoundsOS(nullptr, anyId);
        TVPMGetMouseLocation(nullptr, nullptr);
        TVPMGetMouseLocationGlobal(nullptr, nullptr);
    });
    const std::vector<std::pair<std::string, std::vector<std::string>>> expected = {
        {"TVPMSetWindowGravity_f", {Hex(anyId), "0", "1", "0.5", "0.25"}},
        {"TVPMSetWindowResizingLimits_f", {Hex(anyId), "1", "2", "3", "4"}},
        {"TVPMSetWindowPositioningMode_f", {Hex(anyId), "5", "-1"}},
        {"TVPMSetWindowTitle_f", {Hex(anyId), "\"Title\""}},
        {"TVPMGetScreenSize_f", {"null", "null"}},
        {"TVPMGetScreenBoundsGlobal_f", {"null", "null", "null", "null"}},
        {"TVPMGetAllMonitorBoundsGlobal_f", {"null", Hex(anyId)}},
        {"TVPMGetAllMonitorBoundsOS_f", {"null", Hex(anyId)}},
        {"TVPMGetMouseLocation_f", {"null", "null", "0"}},
        {"TVPMGetMouseLocationGlobal_f", {"null", "null", "0"}},
    };
    for (const auto& [slot, args] : expected) {
        auto calls = rig.host.CallsTo(slot);
        ASSERT_EQ(calls.size(), 1u) << slot;
        EXPECT_EQ(calls[0].args, args) << slot;
    }
}

// ---- Destruction and re-entrancy ----------------------------------------------------------

namespace {
TVPMWindowID g_other = nullptr;
void DestroySelfOnFocusLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
    g_keys.push_back("destroying");
    if (losing) TVPMDestroyWindow(g_other);
}
void RetakeFocusOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
    g_keys.push_back("retake, focused " + std::to_string(TVPMHasKeyboardFocus(g_other)));
    if (losing) TVPMTakeKeyboardFocus(g_other);
}
void HideSelfOnFocusLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
    g_keys.push_back("hiding");
    if (losing) TVPMSetWindowIsVisible(g_other, 0);
}
}  // namespace

TEST_F(WindowTest, DestroyingTheFocusWindowTellsItAndTheSimulator) {
    TVPMWindowID gui = Gui("alpha.tvp");
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(gui);
        TVPMDestroyWindow(gui);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"gui:null:0:1"}));
    auto destroyed = rig.host.CallsTo("TVPMDestroyGuiPluginWindow_f");
    ASSERT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(destroyed[0].args, (std::vector<std::string>{Hex(gui)}));
    EXPECT_EQ(rig.host.SlotSequence({"TVPMSetPluginMouseFocus_f", "TVPMDestroyGuiPluginWindow_f"}).back(),
              "TVPMDestroyGuiPluginWindow_f");
}

TEST_F(WindowTest, WindowDestroyedByItsOwnFocusLossCallbackIsFreedOnce) {
    TVPMCreateWindow_t p = GuiParams();
    p.handleKeyFunc = DestroySelfOnFocusLoss;
    g_other = Gui("alpha.tvp", p);
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(g_other);
        TVPMDestroyWindow(g_other);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        EXPECT_EQ(TVPMGetWindowRefCon(g_other), nullptr);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"destroying"}));
    EXPECT_EQ(rig.host.Count("TVPMDestroyGuiPluginWindow_f"), 1u);
}

TEST_F(WindowTest, WindowTakingFocusDestroyedByTheLosingWindowLeavesNoFocus) {
    TVPMWindowID losing = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, DestroySelfOnFocusLoss);
    g_other = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RecordKey, nullptr, (void*)"other");
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(losing);
        TVPMTakeKeyboardFocus(g_other);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"destroying"}));
}

TEST_F(WindowTest, LosingWindowKeepsTheFocusWhileToldButCannotHoldOnToIt) {
    TVPMWindowID target = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RecordKey, nullptr, (void*)"t");
    g_other = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RetakeFocusOnLoss);
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(g_other);
        TVPMTakeKeyboardFocus(target);
        EXPECT_EQ(TVPMHasKeyboardFocus(target), 1);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"retake, focused 1"}));
    auto focus = rig.host.CallsTo("TVPMSetPluginMouseFocus_f");
    EXPECT_EQ(focus.size(), 2u);
}

TEST_F(WindowTest, WindowHidingItselfWhenToldOfTheLossIsToldOnce) {
    TVPMWindowID target = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RecordKey, nullptr, (void*)"t");
    g_other = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, HideSelfOnFocusLoss);
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(g_other);
        TVPMTakeKeyboardFocus(target);
        EXPECT_EQ(TVPMHasKeyboardFocus(target), 1);
        EXPECT_EQ(TVPMGetWindowIsVisible(g_other), 0);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"hiding"}));
}

TEST_F(WindowTest, WindowDestroyingItselfWhenToldOfTheLossStillHandsTheFocusOver) {
    TVPMWindowID target = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, RecordKey, nullptr, (void*)"t");
    g_other = rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, DestroySelfOnFocusLoss);
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(g_other);
        TVPMTakeKeyboardFocus(target);
        EXPECT_EQ(TVPMHasKeyboardFocus(target), 1);
        EXPECT_EQ(TVPMGetWindowRefCon(g_other), nullptr);
    });
    EXPECT_EQ(g_keys, (std::vector<std::string>{"destroying"}));
}

// ---- Lifecycle ----------------------------------------------------------------------------

namespace {
std::vector<std::string> g_mouse;
int RecordMouse(TVPMWindowID, int x, int y, TVPMMouseStatus s, void*) {
    g_mouse.push_back(std::to_string(s) + "@" + std::to_string(x) + "," + std::to_string(y));
    return 1;
}
int g_hotKeyFired = 0;
void CountHotKey(void*) { ++g_hotKeyFired; }
int g_drawn = 0;
int CountDraw(TVPMDrawingPhase, int, void*) { return ++g_drawn, 1; }
int g_sniffed = 0;
int CountSniff(char, TVPMKeyFlags, char, void*) { return ++g_sniffed, 1; }
}  // namespace

TEST_F(WindowTest, DisableReleasesFocusAndMouseAndHidesSimulatorWindows) {
    g_mouse.clear();
    TVPMWindowID plain = rig.Window("alpha.tvp", 0, 100, 100, 0, RecordMouse, RecordKey, nullptr, (void*)"p");
    TVPMCreateWindow_t hiddenParams = GuiParams();
    hiddenParams.visible = 0;
    TVPMWindowID shown = Gui("alpha.tvp");
    TVPMWindowID hidden = Gui("alpha.tvp", hiddenParams);
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(plain); });
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);
    rig.host.On<&TVPMHooks::TVPMGetMouseLocation_f>([](int* x, int* y, int) {
        *x = 42;
        *y = 43;
    });
    rig.host.ClearCalls();

    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(g_keys, (std::vector<std::string>{"p:null:0:1"}));
    EXPECT_EQ(g_mouse, (std::vector<std::string>{"1@5,5", "3@42,43"}));
    EXPECT_EQ(TVPMMouseClickHook(6, 6, 0, 0, nullptr), 1);  // capture ended
    auto hides = rig.host.CallsTo("TVPMHideGuiPluginWindow_f");
    ASSERT_EQ(hides.size(), 2u);
    EXPECT_EQ(JournalOf("alpha.tvp:disable").size(), 1u);

    // From here on the simulator remembers what it shows.
    static std::set<void*> hostShows;
    rig.host.On<&TVPMHooks::TVPMShowGuiPluginWindow_f>([](void* w) { hostShows.insert(w); });
    rig.host.On<&TVPMHooks::TVPMHideGuiPluginWindow_f>([](void* w) { hostShows.erase(w); });
    rig.host.On<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>(
        [](void* w) { return hostShows.count(w) ? 1 : 0; });
    rig.host.ClearCalls();
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    auto shows = rig.host.CallsTo("TVPMShowGuiPluginWindow_f");
    ASSERT_EQ(shows.size(), 1u);  // only the window the plugin left visible
    EXPECT_EQ(shows[0].args, (std::vector<std::string>{Hex(shown)}));
    EXPECT_EQ(rig.host.Count("TVPMHideGuiPluginWindow_f"), 0u);

    // The sync after enabling hides what the simulator shows against the plugin's wish.
    hostShows.insert(hidden);
    rig.host.ClearCalls();
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    auto syncHides = rig.host.CallsTo("TVPMHideGuiPluginWindow_f");
    ASSERT_EQ(syncHides.size(), 1u);
    EXPECT_EQ(syncHides[0].args, (std::vector<std::string>{Hex(hidden)}));
    EXPECT_EQ(rig.host.Count("TVPMShowGuiPluginWindow_f"), 0u);
}

TEST_F(WindowTest, EnableRefusedByThePluginHidesItsSimulatorWindows) {
    Gui("alpha.tvp");
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    Script("alpha.tvp").enable = [] { return 0; };
    rig.host.On<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>([](void*) { return 1; });
    rig.host.ClearCalls();
    EXPECT_EQ(TVPMEnablePlugin(rig.Id("alpha.tvp")), 0);
    EXPECT_EQ(rig.host.SlotSequence({"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              (std::vector<std::string>{"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}));
}

TEST_F(WindowTest, UnloadRemovesEverythingThePluginOwnedAndNothingElse) {
    g_hotKeyFired = g_drawn = g_sniffed = 0;
    g_mouse.clear();
    rig.LoadAircraftWithPlugin("gamma");
    ASSERT_GT(rig.Id("gamma"), 0);
    TVPMWindowID kept = rig.Window("beta.tvp", 0, 100, 100, 0, RecordMouse, RecordKey, nullptr, (void*)"kept");
    rig.As("beta.tvp", [] { TVPMRegisterHotKey(TVPM_VK_F2, 0, "beta's", CountHotKey, nullptr); });
    TVPMWindowID gui = Gui("gamma");
    TVPMWindowID plain = rig.Window("gamma", 0, 100, 100, 0, RecordMouse);
    rig.As("gamma", [&] {
        TVPMRegisterDrawCallback(CountDraw, tvpm_Phase_Objects, 1, nullptr);
        TVPMRegisterKeySniffer(CountSniff, 1, nullptr);
        TVPMRegisterHotKey(TVPM_VK_F1, 0, "gamma's", CountHotKey, nullptr);
        TVPMTakeKeyboardFocus(gui);
    });
    EXPECT_EQ(TVPMCountHotKeys(), 2);
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);  // gamma's window takes the mouse
    rig.host.ClearCalls();

    rig.UnloadAircraft();
    EXPECT_EQ(JournalOf("gamma:").back(), "gamma:stop");
    EXPECT_EQ(g_keys, (std::vector<std::string>{"gui:null:0:1"}));
    auto destroyed = rig.host.CallsTo("TVPMDestroyGuiPluginWindow_f");
    ASSERT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(destroyed[0].args, (std::vector<std::string>{Hex(gui)}));
    EXPECT_EQ(TVPMCountHotKeys(), 1);
    char description[512] = "";
    TVPMGetHotKeyInfo(TVPMGetNthHotKey(0), nullptr, nullptr, description, nullptr);
    EXPECT_STREQ(description, "beta's");
    EXPECT_EQ(TVPMDoDrawingHook(8, 0, nullptr), 1);
    EXPECT_EQ(TVPMKeyPressHook('a', 0, TVPM_VK_A, 0, nullptr), 1);
    EXPECT_EQ(g_drawn + g_sniffed, 0);

    // Only beta's window is left, in front, and it has no capture.
    rig.As("beta.tvp", [&] {
        EXPECT_EQ(TVPMIsWindowInFront(kept), 1);
        EXPECT_EQ(TVPMGetWindowRefCon(plain), nullptr);
    });
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 0, 0, nullptr), 1);
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);
    // gamma's window got the down and, at the disable, a synthetic up.
    EXPECT_EQ(g_mouse, (std::vector<std::string>{"1@5,5", "3@0,0", "1@5,5"}));
}
