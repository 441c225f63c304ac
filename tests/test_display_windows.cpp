// test_display_windows.cpp: window creation, geometry, visibility, stacking, keyboard focus, forwarders and the display side of a plugin's lifecycle.
#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "DisplayRig.h"

using namespace tvpmtest;

// The creation structure is part of the binary interface.
static_assert(sizeof(TVPMCreateWindow_t) == TVPM_CREATE_WINDOW_SIZE_GUI &&
                  offsetof(TVPMCreateWindow_t, visible) == 20 &&
                  offsetof(TVPMCreateWindow_t, drawWindowFunc) == 24 &&
                  offsetof(TVPMCreateWindow_t, refcon) == 64 &&
                  offsetof(TVPMCreateWindow_t, decorateAsFloatingWindow) == TVPM_CREATE_WINDOW_SIZE_PLAIN &&
                  offsetof(TVPMCreateWindow_t, layer) == 76 &&
                  offsetof(TVPMCreateWindow_t, handleRightClickFunc) == 80,
              "window creation structure layout");

namespace {

using Strings = std::vector<std::string>;
Strings g_keys;
TVPMWindowID g_other = nullptr;

std::string Hex(const void* p) { return FormatArg(p); }

// Records "<refcon>:<window arg>:<key>:<losing>"; the refcon is a label.
void RecordKey(TVPMWindowID w, char key, TVPMKeyFlags, char, void* refcon, int losing) {
    g_keys.push_back(std::string(static_cast<const char*>(refcon)) + ":" + (w ? Hex(w) : "null") +
                     ":" + std::to_string(key) + ":" + std::to_string(losing));
}

TVPMCreateWindow_t GuiParams(int layer = tvpm_WindowLayerModal, TVPMHandleKey_f key = RecordKey) {
    TVPMCreateWindow_t p{};
    p.structSize = TVPM_CREATE_WINDOW_SIZE_GUI;
    p.left = 10;
    p.top = 200;
    p.right = 300;
    p.bottom = 20;
    p.visible = 1;
    p.handleKeyFunc = key;
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
    TVPMWindowID Plain(TVPMHandleKey_f key = RecordKey, const char* label = "p") {
        return rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, key, nullptr, (void*)label);
    }
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
    std::vector<int> lastBounds;
};

}  // namespace

TEST_F(WindowTest, CreationStructureSizeAndLayerDecideTheKind) {
    rig.As("alpha.tvp", [&] { EXPECT_EQ(TVPMCreateWindowEx(nullptr), nullptr); });
    const struct {
        int size, layer;
        const char* hostLayer;  // null: no simulator window
    } cases[] = {{0, 2, nullptr},  {71, 2, nullptr}, {80, 2, nullptr}, {96, 2, nullptr},
                 {72, 2, nullptr}, {88, 2, "2"},     {88, 0, "0"},     {88, 3, "3"},
                 {88, 4, "1"},     {88, -1, "1"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.size) + "/" + std::to_string(c.layer));
        TVPMCreateWindow_t p = GuiParams(c.layer);
        p.structSize = c.size;
        rig.host.ClearCalls();
        lastBounds.clear();
        TVPMWindowID w = Gui("alpha.tvp", p);
        EXPECT_EQ(w != nullptr, c.size == 72 || c.size == 88);
        if (!c.hostLayer) {
            EXPECT_EQ(rig.host.Calls().size(), 0u);
            continue;
        }
        EXPECT_EQ(rig.host.SlotSequence(), (Strings{"TVPMCreateGuiPluginWindow_f", "TVPMSetGuiPluginWindowBounds_f"}));
        EXPECT_EQ(rig.host.CallsTo("TVPMCreateGuiPluginWindow_f")[0].args, (Strings{Hex(w), "1", c.hostLayer, "1"}));
        EXPECT_EQ(lastBounds, (std::vector<int>{10, 20, 300, 200}));  // left, bottom, right, top
    }
}

TEST_F(WindowTest, GeometryOfPlainWindowsIsKeptAndOfSimulatorWindowsAsked) {
    TVPMCreateWindow_t plainParams = GuiParams();
    plainParams.structSize = TVPM_CREATE_WINDOW_SIZE_PLAIN;
    TVPMWindowID plain = Gui("alpha.tvp", plainParams), gui = Gui("alpha.tvp");
    static int poppedOut = 0;
    rig.host.On<&TVPMHooks::TVPMWindowIsPoppedOut_f>([](void*) { return poppedOut; });
    rig.host.On<&TVPMHooks::TVPMWindowIsInVr_f>([](void*) { return poppedOut; });
    rig.host.On<&TVPMHooks::TVPMGetGuiPluginWindowBounds_f>([](void*, int* b) { b[0] = 1, b[1] = 2, b[2] = 3, b[3] = 4; });
    rig.host.On<&TVPMHooks::TVPMGetPopoutWindowOSBounds_f>([](void*, int* b) { b[0] = 5, b[1] = 6, b[2] = 7, b[3] = 8; });
    auto geometry = [](TVPMWindowID w, void (*get)(TVPMWindowID, int*, int*, int*, int*)) {
        std::vector<int> ltrb(4, -1);
        get(w, &ltrb[0], &ltrb[1], &ltrb[2], &ltrb[3]);
        get(w, nullptr, nullptr, nullptr, nullptr);
        return ltrb;
    };
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(geometry(plain, TVPMGetWindowGeometry), (std::vector<int>{10, 200, 300, 20}));
        TVPMSetWindowGeometry(plain, 1, 40, 30, 2);
        EXPECT_EQ(geometry(plain, TVPMGetWindowGeometry), (std::vector<int>{1, 40, 30, 2}));
        EXPECT_EQ(geometry(gui, TVPMGetWindowGeometry), (std::vector<int>{1, 4, 3, 2}));
        TVPMSetWindowGeometry(gui, 5, 60, 70, 8);
        EXPECT_EQ(lastBounds, (std::vector<int>{5, 8, 70, 60}));
        EXPECT_EQ(geometry(gui, TVPMGetWindowGeometryOS), (std::vector<int>(4, -1)));
        EXPECT_EQ(TVPMWindowIsPoppedOut(gui) + TVPMWindowIsInVR(gui), 0);
        poppedOut = 1;
        EXPECT_EQ(TVPMWindowIsPoppedOut(plain) + TVPMWindowIsInVR(plain), 0);
        EXPECT_EQ(TVPMWindowIsPoppedOut(gui) + TVPMWindowIsInVR(gui), 2);
        EXPECT_EQ(geometry(gui, TVPMGetWindowGeometryOS), (std::vector<int>{5, 8, 7, 6}));
        TVPMSetWindowGeometryOS(plain, 1, 2, 3, 4);  // never for plain windows
        TVPMSetWindowGeometryOS(gui, 1, 2, 3, 4);
        TVPMSetWindowGeometryVR(plain, 5, 6);
        TVPMSetWindowGeometryVR(gui, 7, 8);
        TVPMGetWindowGeometryVR(plain, nullptr, nullptr);
        TVPMGetWindowGeometryVR(gui, nullptr, nullptr);
    });
    EXPECT_EQ(rig.host.CallsTo("TVPMSetPopoutWindowOSBounds_f").size(), 1u);
    EXPECT_EQ(rig.host.CallsTo("TVPMGetWindowVrSize_f").size(), 1u);
    auto vr = rig.host.CallsTo("TVPMSetWindowVrSize_f");
    ASSERT_EQ(vr.size(), 1u);
    EXPECT_EQ(vr[0].args, (Strings{Hex(gui), "7", "8"}));
}

TEST_F(WindowTest, FocusMovesWithTheLosingWindowToldWhoTakesIt) {
    TVPMWindowID a = Plain(RecordKey, "a"), gui = Gui("beta.tvp");
    rig.host.On<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>([](void*) { return 7; });
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        EXPECT_EQ(TVPMHasKeyboardFocus((void*)&g_keys), 1);  // unknown ID while nobody has focus
        TVPMTakeKeyboardFocus(a);
        EXPECT_EQ(TVPMHasKeyboardFocus(a), 1);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 0);
        TVPMTakeKeyboardFocus(a);  // already focused: nothing happens
        TVPMTakeKeyboardFocus(gui);
        EXPECT_EQ(TVPMGetWindowIsVisible(gui), 7);
        TVPMSetWindowIsVisible(gui, 1);
        EXPECT_EQ(TVPMHasKeyboardFocus(gui), 1);
        TVPMSetWindowIsVisible(gui, 0);  // hiding drops the focus
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        TVPMTakeKeyboardFocus(a);
        TVPMTakeKeyboardFocus((void*)&g_keys);  // unknown: back to the simulator
    });
    EXPECT_EQ(g_keys, (Strings{"a:" + Hex(gui) + ":0:1", "gui:null:0:1", "a:null:0:1"}));
    auto focus = rig.host.CallsTo("TVPMSetPluginMouseFocus_f");
    ASSERT_EQ(focus.size(), 5u);
    EXPECT_EQ(focus[0].args, (Strings{"1", "null"}));
    EXPECT_EQ(focus[1].args, (Strings{"0", Hex(gui)}));
    EXPECT_EQ(focus[2].args, (Strings{"0", "null"}));
    EXPECT_EQ(rig.host.SlotSequence({"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              (Strings{"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}));

    rig.host.ClearCalls();
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    rig.As("beta.tvp", [&] {
        TVPMTakeKeyboardFocus(a);  // a disabled plugin's window cannot take it
        EXPECT_EQ(TVPMHasKeyboardFocus(a), 0);
    });
    EXPECT_EQ(rig.host.Count("TVPMSetPluginMouseFocus_f"), 0u);
}

TEST_F(WindowTest, InFrontMeansFirstVisibleFromTheFront) {
    TVPMWindowID gui = Gui("alpha.tvp"), back = Plain(), front = Plain();
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

TEST_F(WindowTest, RefconsAndDestroyedOrUnknownWindows) {
    TVPMWindowID w = Plain(), gui = Gui("alpha.tvp");
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMGetWindowRefCon(w), (void*)"p");
        TVPMSetWindowRefCon(w, (void*)&g_keys);
        EXPECT_EQ(TVPMGetWindowRefCon(w), (void*)&g_keys);
        TVPMTakeKeyboardFocus(gui);
        for (TVPMWindowID gone : {w, gui}) TVPMDestroyWindow(gone);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        for (TVPMWindowID gone : {w, gui, TVPMWindowID(nullptr)}) {
            int l = 42;
            TVPMGetWindowGeometry(gone, &l, nullptr, nullptr, nullptr);
            TVPMSetWindowGeometry(gone, 1, 2, 3, 4);
            EXPECT_EQ(l, 42);
            EXPECT_EQ(TVPMGetWindowRefCon(gone), nullptr);
            EXPECT_EQ(TVPMGetWindowIsVisible(gone) + TVPMIsWindowInFront(gone) + TVPMWindowIsPoppedOut(gone), 0);
            TVPMSetWindowIsVisible(gone, 1);
            TVPMBringWindowToFront(gone);
            TVPMDestroyWindow(gone);
        }
    });
    EXPECT_EQ(g_keys, (Strings{"gui:null:0:1"}));
    auto destroyed = rig.host.CallsTo("TVPMDestroyGuiPluginWindow_f");
    ASSERT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(destroyed[0].args, (Strings{Hex(gui)}));
    EXPECT_EQ(rig.host.SlotSequence({"TVPMSetPluginMouseFocus_f", "TVPMDestroyGuiPluginWindow_f"}).back(),
              "TVPMDestroyGuiPluginWindow_f");
    EXPECT_EQ(rig.host.Count("TVPMShowGuiPluginWindow_f") + rig.host.Count("TVPMBringGuiWindowToFront_f"), 0u);
    EXPECT_EQ(rig.host.Count("TVPMSetGuiPluginWindowBounds_f"), 1u);  // at its creation
}

TEST_F(WindowTest, ForwardersPassEverythingThrough) {
    void* anyId = (void*)&g_keys;
    rig.As("alpha.tvp", [&] {
        TVPMSetWindowGravity(anyId, 0.0f, 1.0f, 0.5f, 0.25f);
        TVPMSetWindowResizingLimits(anyId, 1, 2, 3, 4);
        TVPMSetWindowPositioningMode(anyId, 5, -1);
        TVPMSetWindowTitle(anyId, "Title");
        TVPMGetScreenSize(nullptr, nullptr);
        TVPMGetScreenBoundsGlobal(nullptr, nullptr, nullptr, nullptr);
        TVPMGetAllMonitorBoundsGlobal(nullptr, anyId);
        TVPMGetAllMonitorBoundsOS(nullptr, anyId);
        TVPMGetMouseLocation(nullptr, nullptr);
        TVPMGetMouseLocationGlobal(nullptr, nullptr);
    });
    const std::vector<std::pair<std::string, Strings>> expected = {
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

// ---- Focus changed by the focus-loss call ---------------------------------------------------

namespace {
void DestroyOtherOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
    g_keys.push_back("destroying");
    if (losing) TVPMDestroyWindow(g_other);
}
void RetakeFocusOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
    g_keys.push_back("retake, focused " + std::to_string(TVPMHasKeyboardFocus(g_other)));
    if (losing) TVPMTakeKeyboardFocus(g_other);
}
void HideOtherOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
    g_keys.push_back("hiding");
    if (losing) TVPMSetWindowIsVisible(g_other, 0);
}
}  // namespace

TEST_F(WindowTest, FocusLossCallbacksThatChangeTheFocusAreToldOnce) {
    // The focus goes from `losing` to `taking`; g_other names one of them.
    const struct {
        const char* name;
        TVPMHandleKey_f loser;
        bool otherIsTaker;
        bool takerEndsFocused;
        Strings told;
    } cases[] = {
        {"loser destroys itself", DestroyOtherOnLoss, false, true, {"destroying"}},
        {"loser destroys the taker", DestroyOtherOnLoss, true, false, {"destroying"}},
        {"loser takes the focus back", RetakeFocusOnLoss, false, true, {"retake, focused 1"}},
        {"loser hides itself", HideOtherOnLoss, false, true, {"hiding"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        g_keys.clear();
        TVPMWindowID losing = Plain(c.loser), taking = Plain(RecordKey, "t");
        g_other = c.otherIsTaker ? taking : losing;
        rig.As("alpha.tvp", [&] {
            TVPMTakeKeyboardFocus(losing);
            TVPMTakeKeyboardFocus(taking);
            EXPECT_EQ(TVPMHasKeyboardFocus(c.takerEndsFocused ? taking : nullptr), 1);
            TVPMTakeKeyboardFocus(nullptr);
        });
        Strings told = c.told;
        if (c.takerEndsFocused) told.push_back("t:null:0:1");  // released at the end
        EXPECT_EQ(g_keys, told);
    }
    // A window destroyed from its own focus-loss call while being destroyed.
    TVPMCreateWindow_t p = GuiParams(tvpm_WindowLayerModal, DestroyOtherOnLoss);
    g_other = Gui("alpha.tvp", p);
    g_keys.clear();
    rig.host.ClearCalls();
    rig.As("alpha.tvp", [&] {
        TVPMTakeKeyboardFocus(g_other);
        TVPMDestroyWindow(g_other);
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        EXPECT_EQ(TVPMGetWindowRefCon(g_other), nullptr);
    });
    EXPECT_EQ(g_keys, (Strings{"destroying"}));
    EXPECT_EQ(rig.host.Count("TVPMDestroyGuiPluginWindow_f"), 1u);
}

// ---- Lifecycle ----------------------------------------------------------------------------

namespace {
Strings g_mouse;
int RecordMouse(TVPMWindowID, int x, int y, TVPMMouseStatus s, void*) {
    g_mouse.push_back(std::to_string(s) + "@" + std::to_string(x) + "," + std::to_string(y));
    return 1;
}
int g_called = 0;
void CountHotKey(void*) { ++g_called; }
int CountDraw(TVPMDrawingPhase, int, void*) { return ++g_called, 1; }
int CountSniff(char, TVPMKeyFlags, char, void*) { return ++g_called, 1; }
}  // namespace

TEST_F(WindowTest, DisableReleasesFocusAndMouseAndHidesSimulatorWindowsEnableShowsThem) {
    g_mouse.clear();
    TVPMWindowID plain = rig.Window("alpha.tvp", 0, 100, 100, 0, RecordMouse, RecordKey, nullptr, (void*)"p");
    TVPMCreateWindow_t hiddenParams = GuiParams();
    hiddenParams.visible = 0;
    TVPMWindowID shown = Gui("alpha.tvp"), hidden = Gui("alpha.tvp", hiddenParams);
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(plain); });
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);
    rig.host.On<&TVPMHooks::TVPMGetMouseLocation_f>([](int* x, int* y, int) { *x = 42, *y = 43; });
    rig.host.ClearCalls();

    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(g_keys, (Strings{"p:null:0:1"}));
    EXPECT_EQ(g_mouse, (Strings{"1@5,5", "3@42,43"}));
    EXPECT_EQ(TVPMMouseClickHook(6, 6, 0, 0, nullptr), 1);  // capture ended
    EXPECT_EQ(rig.host.CallsTo("TVPMHideGuiPluginWindow_f").size(), 2u);

    // From here on the simulator remembers what it shows.
    static std::set<void*> hostShows;
    rig.host.On<&TVPMHooks::TVPMShowGuiPluginWindow_f>([](void* w) { hostShows.insert(w); });
    rig.host.On<&TVPMHooks::TVPMHideGuiPluginWindow_f>([](void* w) { hostShows.erase(w); });
    rig.host.On<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>([](void* w) { return hostShows.count(w) ? 1 : 0; });
    rig.host.ClearCalls();
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(rig.host.SlotSequence({"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              Strings{"TVPMShowGuiPluginWindow_f"});  // only the window the plugin left visible
    EXPECT_EQ(rig.host.CallsTo("TVPMShowGuiPluginWindow_f")[0].args, Strings{Hex(shown)});

    // The sync after enabling hides what the simulator shows against the plugin's wish.
    hostShows.insert(hidden);
    rig.host.ClearCalls();
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(rig.host.SlotSequence({"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              Strings{"TVPMHideGuiPluginWindow_f"});
    EXPECT_EQ(rig.host.CallsTo("TVPMHideGuiPluginWindow_f")[0].args, Strings{Hex(hidden)});

    // An enable the plugin refuses hides its windows again.
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    Script("alpha.tvp").enable = [] { return 0; };
    rig.host.ClearCalls();
    EXPECT_EQ(TVPMEnablePlugin(rig.Id("alpha.tvp")), 0);
    EXPECT_EQ(rig.host.SlotSequence({"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              (Strings{"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}));
}

TEST_F(WindowTest, UnloadRemovesEverythingThePluginOwnedAndNothingElse) {
    g_called = 0;
    g_mouse.clear();
    rig.LoadAircraftWithPlugin("gamma");
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
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);  // gamma's window takes the mouse
    rig.host.ClearCalls();

    rig.UnloadAircraft();
    EXPECT_EQ(JournalOf("gamma:").back(), "gamma:stop");
    EXPECT_EQ(g_keys, (Strings{"gui:null:0:1"}));
    EXPECT_EQ(rig.host.CallsTo("TVPMDestroyGuiPluginWindow_f").at(0).args, (Strings{Hex(gui)}));
    EXPECT_EQ(TVPMCountHotKeys(), 1);
    char description[512] = "";
    TVPMGetHotKeyInfo(TVPMGetNthHotKey(0), nullptr, nullptr, description, nullptr);
    EXPECT_STREQ(description, "beta's");
    EXPECT_EQ(TVPMDoDrawingHook(8, 0, nullptr), 1);
    EXPECT_EQ(TVPMKeyPressHook('a', 0, TVPM_VK_A, 0, nullptr), 1);
    EXPECT_EQ(g_called, 0);
    // Only beta's window is left, in front, and it has no capture.
    rig.As("beta.tvp", [&] {
        EXPECT_EQ(TVPMIsWindowInFront(kept), 1);
        EXPECT_EQ(TVPMGetWindowRefCon(plain), nullptr);
    });
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 0, 0, nullptr), 1);
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);
    // gamma's window got the down and, at the disable, a synthetic up.
    EXPECT_EQ(g_mouse, (Strings{"1@5,5", "3@0,0", "1@5,5"}));
}
