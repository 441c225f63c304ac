// test_display_windows.cpp: window creation, geometry, visibility, stacking, keyboard focus, and the display side of a plugin's lifecycle.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "DisplayRig.h"

using namespace tvpmtest;

namespace {

using Strings = std::vector<std::string>;
TVPMWindowID g_other = nullptr;

std::string Hex(const void* p) { return FormatArg(p); }

// Records "<refcon>:<window arg>:<key>:<losing>"; the refcon is a label.
void RecordKey(TVPMWindowID w, char key, TVPMKeyFlags, char, void* refcon, int losing) {
    g_log.push_back(std::string(static_cast<const char*>(refcon)) + ":" + (w ? Hex(w) : "null") + ":" +
                     std::to_string(key) + ":" + std::to_string(losing));
}

TVPMCreateWindow_t GuiParams(int layer = tvpm_WindowLayerModal, TVPMHandleKey_f key = RecordKey) {
    return {TVPM_CREATE_WINDOW_SIZE_GUI, 10, 200, 300, 20, 1, nullptr, nullptr, key, nullptr, nullptr, (void*)"gui",
            tvpm_WindowDecorationRoundRectangle, layer, nullptr};
}

// Focus-loss calls that change the focus while it is being handed over.
void DestroyOtherOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int) { g_log.push_back("destroying"), TVPMDestroyWindow(g_other); }
void RetakeFocusOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int) {
    g_log.push_back("retake, focused " + std::to_string(TVPMHasKeyboardFocus(g_other))), TVPMTakeKeyboardFocus(g_other);
}
void HideOtherOnLoss(TVPMWindowID, char, TVPMKeyFlags, char, void*, int) { g_log.push_back("hiding"), TVPMSetWindowIsVisible(g_other, 0); }
int RecordMouse(TVPMWindowID, int x, int y, TVPMMouseStatus s, void*) {
    return g_log.push_back(std::to_string(s) + "@" + std::to_string(x) + "," + std::to_string(y)), 1;
}
int g_called = 0;
void CountHotKey(void*) { ++g_called; }
int CountDraw(TVPMDrawingPhase, int, void*) { return ++g_called; }
int CountSniff(char, TVPMKeyFlags, char, void*) { return ++g_called; }

class WindowTest : public ::testing::Test {
protected:
    TVPMWindowID Gui(const std::string& key, TVPMCreateWindow_t p = GuiParams()) {
        TVPMWindowID id = nullptr;
        rig.As(key, [&] { id = TVPMCreateWindowEx(&p); });
        return id;
    }
    TVPMWindowID Plain(TVPMHandleKey_f key = RecordKey, const char* label = "p") {
        return rig.Window("alpha.tvp", 0, 10, 10, 0, nullptr, key, nullptr, (void*)label);
    }
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
};

}  // namespace

TEST_F(WindowTest, CreationStructureSizeAndLayerDecideTheKind) {
    rig.As("alpha.tvp", [&] { EXPECT_EQ(TVPMCreateWindowEx(nullptr), nullptr); });
    const struct {
        int size, layer;
        const char* hostLayer;  // null: no simulator window
    } cases[] = {{0, 2, nullptr}, {71, 2, nullptr}, {80, 2, nullptr}, {96, 2, nullptr}, {72, 2, nullptr},
                 {88, 2, "2"},    {88, 0, "0"},     {88, 3, "3"},     {88, 4, "1"},     {88, -1, "1"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.size) + "/" + std::to_string(c.layer));
        TVPMCreateWindow_t p = GuiParams(c.layer);
        p.structSize = c.size;
        rig.host.ClearCalls();
        TVPMWindowID w = Gui("alpha.tvp", p);
        EXPECT_EQ(w != nullptr, c.size == 72 || c.size == 88);
        EXPECT_EQ(rig.host.SlotSequence().size(), c.hostLayer ? 2u : 0u);
        if (!c.hostLayer) continue;
        EXPECT_EQ(rig.CallLines()[0], "TVPMCreateGuiPluginWindow_f " + Hex(w) + " 1 " + c.hostLayer + " 1");
    }
}

TEST_F(WindowTest, GeometryOfPlainWindowsIsKeptAndOfSimulatorWindowsAsked) {
    TVPMCreateWindow_t plainParams = GuiParams();
    plainParams.structSize = TVPM_CREATE_WINDOW_SIZE_PLAIN;
    TVPMWindowID plain = Gui("alpha.tvp", plainParams), gui = Gui("alpha.tvp");
    static int poppedOut = 0;
    static std::vector<int> setBounds;
    rig.host.On<&TVPMHooks::TVPMWindowIsPoppedOut_f>([](void*) { return poppedOut; });
    rig.host.On<&TVPMHooks::TVPMWindowIsInVr_f>([](void*) { return poppedOut; });
    rig.host.On<&TVPMHooks::TVPMGetGuiPluginWindowBounds_f>([](void*, int* b) { b[0] = 1, b[1] = 2, b[2] = 3, b[3] = 4; });
    rig.host.On<&TVPMHooks::TVPMGetPopoutWindowOSBounds_f>([](void*, int* b) { b[0] = 5, b[1] = 6, b[2] = 7, b[3] = 8; });
    rig.host.On<&TVPMHooks::TVPMSetGuiPluginWindowBounds_f>([](void*, int* b) { return setBounds.assign(b, b + 4), 1; });
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
        EXPECT_EQ(setBounds, (std::vector<int>{5, 8, 70, 60}));
        // Outside the simulator's window only while popped out.
        EXPECT_EQ(geometry(gui, TVPMGetWindowGeometryOS), (std::vector<int>(4, -1)));
        EXPECT_EQ(TVPMWindowIsPoppedOut(gui) + TVPMWindowIsInVR(gui), 0);
        poppedOut = 1;
        EXPECT_EQ(TVPMWindowIsPoppedOut(plain) + TVPMWindowIsInVR(plain), 0);
        EXPECT_EQ(TVPMWindowIsPoppedOut(gui) + TVPMWindowIsInVR(gui), 2);
        EXPECT_EQ(geometry(gui, TVPMGetWindowGeometryOS), (std::vector<int>{5, 8, 7, 6}));
    });
}

TEST_F(WindowTest, FocusMovesWithTheLosingWindowToldWhoTakesIt) {
    TVPMWindowID a = Plain(RecordKey, "a"), gui = Gui("beta.tvp");
    rig.host.ClearCalls();
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr) + TVPMHasKeyboardFocus(&g_log), 2);  // unknown while nobody has it
        TVPMTakeKeyboardFocus(a);
        EXPECT_EQ(TVPMHasKeyboardFocus(a) - TVPMHasKeyboardFocus(nullptr), 1);
        TVPMTakeKeyboardFocus(a);  // already focused: nothing happens
        TVPMTakeKeyboardFocus(gui);
        TVPMSetWindowIsVisible(gui, 1);
        EXPECT_EQ(TVPMHasKeyboardFocus(gui), 1);
        TVPMSetWindowIsVisible(gui, 0);  // hiding drops the focus
        EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1);
        TVPMTakeKeyboardFocus(a);
        TVPMTakeKeyboardFocus(&g_log);  // unknown: back to the simulator
    });
    EXPECT_EQ(g_log, (Strings{"a:" + Hex(gui) + ":0:1", "gui:null:0:1", "a:null:0:1"}));
    EXPECT_EQ(rig.CallLines({"TVPMSetPluginMouseFocus_f", "TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"}),
              (Strings{"TVPMSetPluginMouseFocus_f 1 null", "TVPMSetPluginMouseFocus_f 0 " + Hex(gui),
                       "TVPMShowGuiPluginWindow_f " + Hex(gui), "TVPMSetPluginMouseFocus_f 0 null",
                       "TVPMHideGuiPluginWindow_f " + Hex(gui), "TVPMSetPluginMouseFocus_f 1 null",
                       "TVPMSetPluginMouseFocus_f 0 null"}));
    rig.host.ClearCalls();
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    rig.As("beta.tvp", [&] { TVPMTakeKeyboardFocus(a); });  // a disabled plugin's window cannot take it
    EXPECT_EQ(rig.CallLines({"TVPMSetPluginMouseFocus_f"}), Strings{});
}

TEST_F(WindowTest, InFrontMeansFirstVisibleFromTheFront) {
    TVPMWindowID gui = Gui("alpha.tvp"), back = Plain(), front = Plain();
    rig.host.On<&TVPMHooks::TVPMGuiWindowIsInFront_f>([](void*) { return true; });
    auto inFront = [&] { return std::vector<int>{TVPMIsWindowInFront(back), TVPMIsWindowInFront(front), TVPMIsWindowInFront(gui)}; };
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(inFront(), (std::vector<int>{0, 1, 1}));
        TVPMSetWindowIsVisible(front, 0);
        EXPECT_EQ(inFront(), (std::vector<int>{1, 0, 1}));  // still first in the list, but hidden
        TVPMSetWindowIsVisible(front, 1);
        TVPMBringWindowToFront(back);
        EXPECT_EQ(inFront(), (std::vector<int>{1, 0, 1}));
        TVPMBringWindowToFront(gui);
    });
    EXPECT_EQ(rig.host.Count("TVPMBringGuiWindowToFront_f"), 1u);
}

TEST_F(WindowTest, DestroyedOrUnknownWindowsAreIgnored) {
    TVPMWindowID w = Plain(), gui = Gui("alpha.tvp");
    rig.host.ClearCalls();
    rig.As("alpha.tvp", [&] {
        EXPECT_EQ(TVPMGetWindowRefCon(w), (void*)"p");
        for (TVPMWindowID gone : {w, gui}) TVPMDestroyWindow(gone);
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
    EXPECT_EQ(rig.CallLines(), Strings{"TVPMDestroyGuiPluginWindow_f " + Hex(gui)});
}

// ---- Focus changed by the focus-loss call ---------------------------------------------------

TEST_F(WindowTest, FocusLossCallbacksThatChangeTheFocusAreToldOnce) {
    // The focus goes from the loser to the taker "t", or the loser is destroyed; g_other is one of them.
    const struct {
        TVPMHandleKey_f loser;
        bool otherIsTaker, destroyLoser;
        Strings told;  // "t:null:0:1": the taker got the focus and is told when it is released
    } cases[] = {
        {DestroyOtherOnLoss, false, false, {"destroying", "t:null:0:1"}},
        {DestroyOtherOnLoss, true, false, {"destroying"}},
        {DestroyOtherOnLoss, false, true, {"destroying"}},
        {RetakeFocusOnLoss, false, false, {"retake, focused 1", "t:null:0:1"}},
        {HideOtherOnLoss, false, false, {"hiding", "t:null:0:1"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.told[0] + (c.otherIsTaker ? " the taker" : " itself") + (c.destroyLoser ? " destroyed" : ""));
        g_log.clear();
        TVPMWindowID losing = Plain(c.loser), taking = Plain(RecordKey, "t");
        g_other = c.otherIsTaker ? taking : losing;
        rig.As("alpha.tvp", [&] {
            TVPMTakeKeyboardFocus(losing);
            if (c.destroyLoser)
                TVPMDestroyWindow(losing);
            else
                TVPMTakeKeyboardFocus(taking);
            TVPMTakeKeyboardFocus(nullptr);
        });
        EXPECT_EQ(g_log, c.told);
    }
}

// ---- Lifecycle ----------------------------------------------------------------------------

TEST_F(WindowTest, DisableReleasesFocusAndMouseAndHidesSimulatorWindowsEnableShowsThem) {
    TVPMWindowID plain = rig.Window("alpha.tvp", 0, 100, 100, 0, RecordMouse, RecordKey, nullptr, (void*)"p");
    TVPMCreateWindow_t hiddenParams = GuiParams();
    hiddenParams.visible = 0;
    TVPMWindowID shown = Gui("alpha.tvp"), hidden = Gui("alpha.tvp", hiddenParams);
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(plain); });
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 0);
    rig.host.On<&TVPMHooks::TVPMGetMouseLocation_f>([](int* x, int* y, int) { *x = 42, *y = 43; });
    // From here on the simulator remembers what it shows.
    static std::set<void*> hostShows{shown};
    rig.host.On<&TVPMHooks::TVPMShowGuiPluginWindow_f>([](void* w) { hostShows.insert(w); });
    rig.host.On<&TVPMHooks::TVPMHideGuiPluginWindow_f>([](void* w) { hostShows.erase(w); });
    rig.host.On<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>([](void* w) { return hostShows.count(w) ? 1 : 0; });
    const Strings showAndHide{"TVPMShowGuiPluginWindow_f", "TVPMHideGuiPluginWindow_f"};
    rig.host.ClearCalls();
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(g_log, (Strings{"1@5,5", "p:null:0:1", "3@42,43"}));  // focus released before the capture
    EXPECT_EQ(TVPMMouseClickHook(6, 6, 0, 0, nullptr), 1);  // capture ended
    EXPECT_EQ(rig.CallLines(showAndHide), (Strings{"TVPMHideGuiPluginWindow_f " + Hex(hidden), "TVPMHideGuiPluginWindow_f " + Hex(shown)}));
    rig.host.ClearCalls();
    TVPMEnablePlugin(rig.Id("alpha.tvp"));  // shows only the window the plugin left visible
    EXPECT_EQ(rig.CallLines(showAndHide), Strings{"TVPMShowGuiPluginWindow_f " + Hex(shown)});
    // An enable the plugin refuses hides its windows again.
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    Script("alpha.tvp").enable = [] { return 0; };
    rig.host.ClearCalls();
    EXPECT_EQ(TVPMEnablePlugin(rig.Id("alpha.tvp")), 0);
    EXPECT_EQ(rig.CallLines(showAndHide), (Strings{"TVPMShowGuiPluginWindow_f " + Hex(shown), "TVPMHideGuiPluginWindow_f " + Hex(shown)}));
}

TEST_F(WindowTest, UnloadRemovesEverythingThePluginOwnedAndNothingElse) {
    g_called = 0;
    rig.LoadAircraftWithPlugin("gamma");
    TVPMWindowID kept = Plain();
    rig.As("beta.tvp", [] { TVPMRegisterHotKey(TVPM_VK_F2, 0, "beta's", CountHotKey, nullptr); });
    TVPMWindowID gui = Gui("gamma"), plain = rig.Window("gamma", 0, 100, 100, 0, RecordMouse);
    rig.As("gamma", [&] {
        TVPMRegisterDrawCallback(CountDraw, tvpm_Phase_Objects, 1, nullptr);
        TVPMRegisterKeySniffer(CountSniff, 1, nullptr);
        TVPMRegisterHotKey(TVPM_VK_F1, 0, "gamma's", CountHotKey, nullptr);
    });
    rig.host.ClearCalls();
    rig.UnloadAircraft();
    EXPECT_EQ(rig.CallLines({"TVPMDestroyGuiPluginWindow_f"}), Strings{"TVPMDestroyGuiPluginWindow_f " + Hex(gui)});
    EXPECT_EQ(TVPMCountHotKeys(), 1);
    EXPECT_EQ(TVPMDoDrawingHook(8, 0, nullptr) + TVPMKeyPressHook(0, 0, TVPM_VK_F1, 0, nullptr), 2);
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 1, 0, nullptr), 1);
    EXPECT_EQ(g_called, 0);
    rig.As("beta.tvp", [&] { EXPECT_EQ(TVPMIsWindowInFront(kept) + (TVPMGetWindowRefCon(plain) == nullptr), 2); });
}
