// test_display_input.cpp: mouse, cursor, scroll-wheel and key routing to windows, key sniffers and hot keys, as the simulator drives them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DisplayRig.h"

using namespace tvpmtest;

namespace {

std::vector<std::string> g_events;
int g_consume = 1;

std::string Label(void* refcon) { return refcon ? static_cast<const char*>(refcon) : "?"; }

int LeftClick(TVPMWindowID, int x, int y, TVPMMouseStatus s, void* refcon) {
    g_events.push_back(Label(refcon) + ":L" + std::to_string(s) + "@" + std::to_string(x) + "," +
                       std::to_string(y));
    return g_consume;
}
int RightClick(TVPMWindowID, int, int, TVPMMouseStatus s, void* refcon) {
    g_events.push_back(Label(refcon) + ":R" + std::to_string(s));
    return g_consume;
}
int Refuse(TVPMWindowID, int, int, TVPMMouseStatus s, void* refcon) {
    g_events.push_back(Label(refcon) + ":refused" + std::to_string(s));
    return 0;
}
void Key(TVPMWindowID, char key, TVPMKeyFlags, char, void* refcon, int losing) {
    g_events.push_back(Label(refcon) + ":key" + std::to_string(key) + (losing ? ":losing" : ""));
}

TVPMWindowID MakeWindow(DisplayRig& rig, const std::string& key, int l, int t, int r, int b,
                        const char* label, TVPMHandleMouseClick_f left = LeftClick,
                        TVPMHandleMouseClick_f right = RightClick,
                        TVPMHandleCursor_f cursor = nullptr,
                        TVPMHandleMouseWheel_f wheel = nullptr, int structSize = 72) {
    TVPMCreateWindow_t p{};
    p.structSize = structSize;
    p.left = l;
    p.top = t;
    p.right = r;
    p.bottom = b;
    p.visible = 1;
    p.handleMouseClickFunc = left;
    p.handleRightClickFunc = right;
    p.handleKeyFunc = Key;
    p.handleCursorFunc = cursor;
    p.handleMouseWheelFunc = wheel;
    p.refcon = (void*)label;
    TVPMWindowID id = nullptr;
    rig.As(key, [&] { id = TVPMCreateWindowEx(&p); });
    return id;
}

int g_mouseX = 0, g_mouseY = 0;

class InputTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_events.clear();
        g_consume = 1;
        auto where = [](int* x, int* y, int) {
            *x = g_mouseX;
            *y = g_mouseY;
        };
        rig.host.On<&TVPMHooks::TVPMGetMouseLocation_f>(where);
        rig.host.On<&TVPMHooks::TVPMGetMouseLocationGlobal_f>(where);
    }
    // One frame of the window phase with the mouse at x, y: the capturing
    // window, if any, gets its drag.
    void Frame(int x, int y, void* fixed = nullptr) {
        g_mouseX = x;
        g_mouseY = y;
        TVPMDoDrawingHook(21, 0, fixed);
    }
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
};

}  // namespace

// ---- Mouse --------------------------------------------------------------------------------

TEST_F(InputTest, ClickFallsThroughARefusingFrontWindowAndTheBackOneKeepsTheMouse) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "back");
    MakeWindow(rig, "beta.tvp", 50, 150, 150, 50, "front", Refuse);
    EXPECT_EQ(TVPMMouseClickHook(60, 60, 1, 0, nullptr), 0);
    Frame(500, 500);
    EXPECT_EQ(TVPMMouseClickHook(120, 120, 0, 0, nullptr), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"front:refused1", "back:L1@60,60", "back:L2@500,500",
                                                  "back:L3@120,120"}));
    g_events.clear();
    Frame(60, 60);  // capture ended
    EXPECT_TRUE(g_events.empty());
}

TEST_F(InputTest, LeftAndBottomEdgesAreInsideRightAndTopEdgesOutside) {
    MakeWindow(rig, "alpha.tvp", 10, 20, 30, 5, "w");
    g_consume = 0;  // no capture, every click is only a hit test
    const struct {
        int x, y;
        bool hit;
    } probes[] = {{10, 5, true}, {29, 19, true}, {30, 10, false}, {15, 20, false},
                  {9, 10, false}, {15, 4, false}};
    for (const auto& p : probes) {
        g_events.clear();
        TVPMMouseClickHook(p.x, p.y, 1, 0, nullptr);
        EXPECT_EQ(g_events.size(), p.hit ? 1u : 0u) << p.x << "," << p.y;
    }
}

TEST_F(InputTest, TheButtonOfEachEventChoosesTheHandler) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "w");
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 1, nullptr), 0);
    Frame(2, 2);
    EXPECT_EQ(TVPMMouseClickHook(3, 3, 0, 0, nullptr), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"w:R1", "w:R2", "w:L3@3,3"}));
}

TEST_F(InputTest, MissingHandlersAndHiddenWindowsDoNotTakeClicks) {
    TVPMWindowID hidden = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "hidden");
    rig.As("alpha.tvp", [&] { TVPMSetWindowIsVisible(hidden, 0); });
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "left-only", LeftClick, nullptr);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 1, nullptr), 1);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 2, nullptr), 1);  // no such button
    EXPECT_TRUE(g_events.empty());
}

TEST_F(InputTest, EveryFrameTheCapturingWindowGetsADragAtTheCurrentMousePosition) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "w");
    Frame(7, 8);
    EXPECT_TRUE(g_events.empty());
    TVPMMouseClickHook(1, 1, 1, 0, nullptr);
    Frame(7, 8);
    Frame(7, 8);
    TVPMMouseClickHook(1, 1, 0, 0, nullptr);
    Frame(7, 8);
    EXPECT_EQ(g_events, (std::vector<std::string>{"w:L1@1,1", "w:L2@7,8", "w:L2@7,8", "w:L3@1,1"}));
    EXPECT_EQ(rig.host.Count("TVPMGetMouseLocationGlobal_f"), 0u);
}

TEST_F(InputTest, SimulatorWindowsTakeEventsOnlyFromTheirOwnSurface) {
    TVPMWindowID gui = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "gui", LeftClick, RightClick,
                                  nullptr, nullptr, 88);
    int elsewhere = 0;
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 1);      // main surface
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, &elsewhere), 1);   // another window's surface
    EXPECT_EQ(TVPMMouseClickHook(500, 500, 1, 0, gui), 0);      // its own: no hit test
    Frame(900, 901, gui);
    Frame(3, 3);  // the main surface's frame: the drag belongs elsewhere
    EXPECT_EQ(TVPMMouseClickHook(3, 3, 0, 0, nullptr), 1);  // ... and the up ends the capture
    EXPECT_EQ(TVPMMouseClickHook(4, 4, 0, 0, gui), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"gui:L1@500,500", "gui:L2@900,901"}));
    // Its drags follow the mouse in global coordinates.
    EXPECT_EQ(rig.host.Count("TVPMGetMouseLocationGlobal_f"), 2u);
    EXPECT_EQ(rig.host.Count("TVPMGetMouseLocation_f"), 0u);
}

TEST_F(InputTest, DisablingTheOwnerOfACapturingSimulatorWindowEndsTheCapture) {
    TVPMWindowID gui = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "gui", LeftClick, RightClick,
                                  nullptr, nullptr, 88);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 1, gui), 0);
    rig.host.ClearCalls();
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(rig.host.Count("TVPMGetMouseLocationGlobal_f"), 1u);
    EXPECT_EQ(rig.host.Count("TVPMGetMouseLocation_f"), 0u);
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    Frame(5, 5, gui);
    EXPECT_EQ(TVPMMouseClickHook(5, 5, 0, 1, gui), 1);
    // The mouse-up made up at the disable belongs to the main surface, which
    // this window does not take events from.
    EXPECT_EQ(g_events, (std::vector<std::string>{"gui:R1"}));
}

TEST_F(InputTest, DestroyingTheCapturingWindowSendsTheMouseUpToTheSimulator) {
    TVPMWindowID w = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "w");
    TVPMMouseClickHook(1, 1, 1, 0, nullptr);
    rig.As("alpha.tvp", [&] { TVPMDestroyWindow(w); });
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 0, 0, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"w:L1@1,1"}));
}

TEST_F(InputTest, DisabledPluginsWindowsLetEventsThrough) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "back");
    MakeWindow(rig, "beta.tvp", 0, 100, 100, 0, "front");
    TVPMDisablePlugin(rig.Id("beta.tvp"));
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"back:L1@1,1"}));
}

namespace {
int DestroyOwnWindowAndConsume(TVPMWindowID self, int, int, TVPMMouseStatus s, void*) {
    g_events.push_back("destroy" + std::to_string(s));
    TVPMDestroyWindow(self);
    return 1;
}
TVPMWindowID g_back = nullptr;
int RaiseBackAndRefuse(TVPMWindowID, int, int, TVPMMouseStatus, void* refcon) {
    g_events.push_back(Label(refcon));
    TVPMBringWindowToFront(g_back);
    return 0;
}
int DisableOwnPluginOnUp(TVPMWindowID, int, int, TVPMMouseStatus s, void*) {
    g_events.push_back("up-handler" + std::to_string(s));
    if (s == tvpm_MouseUp) TVPMDisablePlugin(TVPMGetMyID());
    return 1;
}
}  // namespace

TEST_F(InputTest, HandlerDestroyingItsOwnWindowConsumesWithoutCapture) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "back");
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "self", DestroyOwnWindowAndConsume);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 0);
    Frame(1, 1);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"destroy1", "back:L1@1,1"}));
}

TEST_F(InputTest, ReorderingDuringTheHitTestAsksEveryWindowOnce) {
    g_back = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "back", Refuse);
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "middle", RaiseBackAndRefuse);
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "front", RaiseBackAndRefuse);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"front", "middle", "back:refused1"}));
}

TEST_F(InputTest, MouseUpHandlerDisablingItsOwnPluginGetsOneMouseUp) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "w", DisableOwnPluginOnUp);
    TVPMMouseClickHook(1, 1, 1, 0, nullptr);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 0, 0, nullptr), 0);
    EXPECT_EQ(TVPMIsPluginEnabled(rig.Id("alpha.tvp")), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"up-handler1", "up-handler3"}));
}

// ---- Cursor and wheel ----------------------------------------------------------------------

namespace {
TVPMCursorStatus DefaultCursor(TVPMWindowID, int, int, void*) {
    g_events.push_back("default-cursor");
    return tvpm_CursorDefault;
}
TVPMCursorStatus TextCursor(TVPMWindowID, int, int, void*) {
    g_events.push_back("text-cursor");
    return tvpm_CursorText;
}
int Wheel(TVPMWindowID, int x, int y, int wheel, int clicks, void* refcon) {
    g_events.push_back(Label(refcon) + ":wheel" + std::to_string(x) + "," + std::to_string(y) + "," +
                       std::to_string(wheel) + "," + std::to_string(clicks));
    return g_consume;
}
}  // namespace

TEST_F(InputTest, CursorComesFromTheFirstWindowThatCares) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "far", LeftClick, RightClick, DefaultCursor);
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "back", LeftClick, RightClick, TextCursor);
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "front", LeftClick, RightClick, DefaultCursor);
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "no-handler");
    EXPECT_EQ(TVPMCursorHook(5, 5, nullptr), tvpm_CursorText);
    EXPECT_EQ(g_events, (std::vector<std::string>{"default-cursor", "text-cursor"}));
    EXPECT_EQ(TVPMCursorHook(500, 5, nullptr), tvpm_CursorDefault);
}

TEST_F(InputTest, WheelIsConsumedByTheFirstWindowThatWantsIt) {
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "back", LeftClick, RightClick, nullptr, Wheel);
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "front", LeftClick, RightClick, nullptr, Wheel);
    EXPECT_EQ(TVPMScrollWheelHook(3, 4, 1, -2, nullptr), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"front:wheel3,4,1,-2"}));
    g_events.clear();
    g_consume = 0;
    EXPECT_EQ(TVPMScrollWheelHook(3, 4, 0, 1, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"front:wheel3,4,0,1", "back:wheel3,4,0,1"}));
}

// ---- Keys ---------------------------------------------------------------------------------

namespace {
int g_snifferAnswer = 1;
int Sniff(char key, TVPMKeyFlags flags, char vkey, void* refcon) {
    g_events.push_back(Label(refcon) + ":sniff" + std::to_string(key) + "," +
                       std::to_string(flags) + "," + std::to_string(vkey));
    return g_snifferAnswer;
}
void HotKey(void* refcon) { g_events.push_back(Label(refcon) + ":hotkey"); }

// Sends one key event through the phases as the simulator does; returns the
// phase that consumed it, or 3 when none did.
int PressKey(char key, TVPMKeyFlags flags, char vkey, void* fixed = nullptr) {
    for (int phase = 0; phase < 3; ++phase)
        if (TVPMKeyPressHook(key, flags, vkey, phase, fixed) == 0) return phase;
    return 3;
}
}  // namespace

TEST_F(InputTest, KeysGoToBeforeSniffersHotKeysFocusWindowAndAfterSniffersInTurn) {
    TVPMWindowID w = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "win");
    rig.As("alpha.tvp", [] {
        TVPMRegisterKeySniffer(Sniff, 1, (void*)"before");
        TVPMRegisterKeySniffer(Sniff, 0, (void*)"after");
        TVPMRegisterHotKey(TVPM_VK_F1, tvpm_ControlFlag, "help", HotKey, (void*)"F1");
    });
    EXPECT_EQ(PressKey('a', 0, TVPM_VK_A), 3);
    EXPECT_EQ(PressKey(0, tvpm_ControlFlag, TVPM_VK_F1), 0);
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(w); });
    EXPECT_EQ(PressKey('b', tvpm_ShiftFlag, TVPM_VK_B), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{
                            "before:sniff97,0,65", "after:sniff97,0,65",
                            "before:sniff0,4,112", "F1:hotkey",
                            "before:sniff98,1,66", "win:key98"}));
}

TEST_F(InputTest, FocusedWindowConsumesKeysEvenWithoutAKeyCallback) {
    rig.As("alpha.tvp", [] {
        TVPMWindowID mute = TVPMCreateWindow(0, 10, 10, 0, 1, nullptr, nullptr, nullptr, nullptr);
        TVPMRegisterKeySniffer(Sniff, 0, (void*)"after");
        TVPMTakeKeyboardFocus(mute);
    });
    EXPECT_EQ(PressKey('m', 0, TVPM_VK_M), 1);
    EXPECT_TRUE(g_events.empty());
}

TEST_F(InputTest, BeforeSnifferConsumingTheKeyHidesItFromEveryoneElse) {
    TVPMWindowID w = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "win");
    rig.As("alpha.tvp", [&] {
        TVPMRegisterKeySniffer(Sniff, 1, (void*)"older");
        TVPMRegisterKeySniffer(Sniff, 1, (void*)"newer");
        TVPMTakeKeyboardFocus(w);
    });
    g_snifferAnswer = 0;
    EXPECT_EQ(PressKey('x', 0, TVPM_VK_X), 0);
    g_snifferAnswer = 1;
    EXPECT_EQ(g_events, (std::vector<std::string>{"newer:sniff120,0,88"}));
}

TEST_F(InputTest, EmptyKeyReachesNobody) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterKeySniffer(Sniff, 1, (void*)"s");
        TVPMRegisterHotKey(0, 0, "nothing", HotKey, (void*)"h");
    });
    EXPECT_EQ(PressKey(0, 0, 0), 3);
    EXPECT_EQ(TVPMKeyPressHook('a', 0, TVPM_VK_A, 3, nullptr), 1);
    EXPECT_EQ(TVPMKeyPressHook('a', 0, TVPM_VK_A, -1, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{}));
}

TEST_F(InputTest, FocusChangesAreSeenByKeyCallbacks) {
    TVPMWindowID a = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "a");
    TVPMWindowID b = MakeWindow(rig, "beta.tvp", 0, 100, 100, 0, "b");
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(a); });
    PressKey('1', 0, TVPM_VK_1);
    rig.As("beta.tvp", [&] { TVPMTakeKeyboardFocus(b); });
    PressKey('2', 0, TVPM_VK_2);
    int other = 0;
    EXPECT_EQ(TVPMKeyPressHook('3', 0, TVPM_VK_3, 1, &other), 1);  // another surface's key
    EXPECT_EQ(TVPMKeyPressHook('4', 0, TVPM_VK_4, 1, b), 0);
    TVPMDisablePlugin(rig.Id("beta.tvp"));
    EXPECT_EQ(TVPMKeyPressHook('5', 0, TVPM_VK_5, 1, nullptr), 1);  // focus went with the disable
    EXPECT_EQ(g_events, (std::vector<std::string>{"a:key49", "a:key0:losing", "b:key50", "b:key52",
                                                  "b:key0:losing"}));
}

namespace {
int TakeFocusOnMouseUp(TVPMWindowID self, int, int, TVPMMouseStatus s, void*) {
    if (s == tvpm_MouseUp) TVPMTakeKeyboardFocus(self);
    return 1;
}
}  // namespace

TEST_F(InputTest, FocusWindowOfADisabledPluginLetsTheKeyThrough) {
    // The mouse-up made up while the plugin is being disabled comes after its
    // focus was taken away, and the window takes the focus again.
    MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "w", TakeFocusOnMouseUp);
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 0);
    TVPMDisablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(TVPMKeyPressHook('z', 0, TVPM_VK_Z, 1, nullptr), 1);
    TVPMEnablePlugin(rig.Id("alpha.tvp"));
    EXPECT_EQ(TVPMKeyPressHook('z', 0, TVPM_VK_Z, 1, nullptr), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"w:key122"}));
}

namespace {
int UnregisterVictim(char, TVPMKeyFlags, char, void* refcon) {
    g_events.push_back(Label(refcon));
    TVPMUnregisterKeySniffer(Sniff, 0, (void*)"victim");
    TVPMUnregisterKeySniffer(Sniff, 1, (void*)"victim");
    return 1;
}
}  // namespace

TEST_F(InputTest, AfterWindowsSniffersUnregisteredDuringTheWalkAreStillAsked) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterKeySniffer(Sniff, 0, (void*)"victim");
        TVPMRegisterKeySniffer(UnregisterVictim, 0, (void*)"killer");
    });
    EXPECT_EQ(TVPMKeyPressHook('k', 0, TVPM_VK_K, 2, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"killer", "victim:sniff107,0,75"}));
    g_events.clear();
    EXPECT_EQ(TVPMKeyPressHook('k', 0, TVPM_VK_K, 2, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"killer"}));
}

TEST_F(InputTest, BeforeWindowsSniffersUnregisteredDuringTheWalkAreSkipped) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterKeySniffer(Sniff, 1, (void*)"victim");
        TVPMRegisterKeySniffer(UnregisterVictim, 1, (void*)"killer");
    });
    EXPECT_EQ(TVPMKeyPressHook('k', 0, TVPM_VK_K, 0, nullptr), 1);
    EXPECT_EQ(g_events, (std::vector<std::string>{"killer"}));
}

TEST_F(InputTest, SniffersAreUniquePerCallbackTimingAndRefcon) {
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMRegisterKeySniffer(Sniff, 1, (void*)"s"), 1);
        EXPECT_EQ(TVPMRegisterKeySniffer(Sniff, 1, (void*)"s"), 0);
        EXPECT_EQ(TVPMRegisterKeySniffer(Sniff, 0, (void*)"s"), 1);
        EXPECT_EQ(TVPMRegisterKeySniffer(nullptr, 0, nullptr), 0);
        EXPECT_EQ(TVPMUnregisterKeySniffer(Sniff, 1, (void*)"t"), 0);
        EXPECT_EQ(TVPMUnregisterKeySniffer(Sniff, 1, (void*)"s"), 1);
        EXPECT_EQ(TVPMUnregisterKeySniffer(Sniff, 1, (void*)"s"), 0);
    });
}

// ---- Hot keys -----------------------------------------------------------------------------

TEST_F(InputTest, NewestHotKeyWinsAndTheOlderOneFiresOnceItIsGone) {
    TVPMHotKeyID older = nullptr, newer = nullptr;
    rig.As("alpha.tvp", [&] { older = TVPMRegisterHotKey(TVPM_VK_F5, 0, "a", HotKey, (void*)"alpha"); });
    rig.As("beta.tvp", [&] { newer = TVPMRegisterHotKey(TVPM_VK_F5, 0, "b", HotKey, (void*)"beta"); });
    EXPECT_EQ(TVPMGetNthHotKey(0), newer);
    EXPECT_EQ(TVPMGetNthHotKey(1), older);
    EXPECT_EQ(TVPMGetNthHotKey(2), nullptr);
    EXPECT_EQ(TVPMGetNthHotKey(-1), nullptr);
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F5), 0);
    TVPMDisablePlugin(rig.Id("beta.tvp"));
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F5), 0);
    TVPMEnablePlugin(rig.Id("beta.tvp"));
    rig.As("alpha.tvp", [&] { TVPMUnregisterHotKey(newer); });  // anyone's hot key
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F5), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"beta:hotkey", "alpha:hotkey", "alpha:hotkey"}));
    EXPECT_EQ(TVPMCountHotKeys(), 1);
}

TEST_F(InputTest, HotKeyFlagsMustMatchExactly) {
    rig.As("alpha.tvp", [] {
        TVPMRegisterHotKey(TVPM_VK_S, tvpm_ControlFlag | tvpm_ShiftFlag, "save", HotKey, (void*)"s");
    });
    EXPECT_EQ(PressKey('s', tvpm_ControlFlag, TVPM_VK_S), 3);
    EXPECT_EQ(PressKey('s', tvpm_ControlFlag | tvpm_ShiftFlag | tvpm_OptionAltFlag, TVPM_VK_S), 3);
    EXPECT_EQ(PressKey('x', tvpm_ControlFlag | tvpm_ShiftFlag, TVPM_VK_S), 0);  // char plays no part
    EXPECT_EQ(g_events, (std::vector<std::string>{"s:hotkey"}));
}

TEST_F(InputTest, AnyPluginMayListAndRebindEveryHotKey) {
    TVPMHotKeyID id = nullptr;
    rig.As("alpha.tvp", [&] { id = TVPMRegisterHotKey(TVPM_VK_F1, 0, "alpha help", HotKey, (void*)"a"); });
    rig.As("beta.tvp", [&] {
        ASSERT_EQ(TVPMCountHotKeys(), 1);
        char vkey = 0;
        TVPMKeyFlags flags = -1;
        char description[512] = "";
        TVPMPluginID owner = -5;
        TVPMGetHotKeyInfo(TVPMGetNthHotKey(0), &vkey, &flags, description, &owner);
        EXPECT_EQ(vkey, TVPM_VK_F1);
        EXPECT_EQ(flags, 0);
        EXPECT_STREQ(description, "alpha help");
        EXPECT_EQ(owner, rig.Id("alpha.tvp"));
        TVPMGetHotKeyInfo(id, nullptr, nullptr, nullptr, nullptr);
        TVPMSetHotKeyCombination(id, TVPM_VK_F2, tvpm_OptionAltFlag);
        TVPMSetHotKeyCombination((void*)description, TVPM_VK_F3, 0);  // unknown: ignored
    });
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F1), 3);
    EXPECT_EQ(PressKey(0, tvpm_OptionAltFlag, TVPM_VK_F2), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"a:hotkey"}));
}

TEST_F(InputTest, LongHotKeyDescriptionsComeBackCutTo511Characters) {
    const std::string text(600, 'd');
    TVPMHotKeyID id = nullptr;
    rig.As("alpha.tvp", [&] { id = TVPMRegisterHotKey(TVPM_VK_F9, 0, text.c_str(), HotKey, nullptr); });
    std::vector<char> out(600, 'x');
    TVPMGetHotKeyInfo(id, nullptr, nullptr, out.data(), nullptr);
    EXPECT_EQ(std::string(out.data()), std::string(511, 'd'));
    EXPECT_EQ(out[512], 'x');
}

namespace {
TVPMHotKeyID g_selfKey = nullptr;
void UnregisterOwnHotKey(void*) {
    g_events.push_back("self");
    TVPMUnregisterHotKey(g_selfKey);
    TVPMRegisterHotKey(TVPM_VK_F7, 0, "again", HotKey, (void*)"again");
}
}  // namespace

TEST_F(InputTest, HotKeyMayUnregisterItselfAndRegisterAnotherWhileFiring) {
    rig.As("alpha.tvp", [] { g_selfKey = TVPMRegisterHotKey(TVPM_VK_F7, 0, "once", UnregisterOwnHotKey, nullptr); });
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F7), 0);
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F7), 0);
    EXPECT_EQ(g_events, (std::vector<std::string>{"self", "again:hotkey"}));
    EXPECT_EQ(TVPMCountHotKeys(), 1);
}

namespace {
int DestroySelfOnDrag(TVPMWindowID self, int, int, TVPMMouseStatus s, void*) {
    g_events.push_back("handler" + std::to_string(s));
    if (s == tvpm_MouseDrag) TVPMDestroyWindow(self);
    return 1;
}
}  // namespace

TEST_F(InputTest, WindowDestroyedWhileHoldingMouseAndKeyboardReleasesBoth) {
    TVPMWindowID w = MakeWindow(rig, "alpha.tvp", 0, 100, 100, 0, "w", DestroySelfOnDrag);
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(w); });
    EXPECT_EQ(TVPMMouseClickHook(1, 1, 1, 0, nullptr), 0);
    Frame(2, 2);
    Frame(3, 3);
    EXPECT_EQ(TVPMMouseClickHook(3, 3, 0, 0, nullptr), 1);
    EXPECT_EQ(PressKey('q', 0, TVPM_VK_Q), 3);
    EXPECT_EQ(g_events, (std::vector<std::string>{"handler1", "handler2", "w:key0:losing"}));
    rig.As("alpha.tvp", [] { EXPECT_EQ(TVPMHasKeyboardFocus(nullptr), 1); });
}
