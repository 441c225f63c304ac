// test_display_input.cpp: mouse, cursor, scroll-wheel and key routing to windows, key sniffers and hot keys, as the simulator drives them.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "DisplayRig.h"

using namespace tvpmtest;

namespace {

using Log = std::vector<std::string>;
std::vector<TVPMWindowID> g_windows;  // in creation order
int g_consume = 1;

std::string Label(void* refcon) { return refcon ? static_cast<const char*>(refcon) : "?"; }
void Note(void* refcon, const std::string& what) { g_log.push_back(Label(refcon) + ":" + what); }
std::string At(int s, int x, int y) { return std::to_string(s) + "@" + std::to_string(x) + "," + std::to_string(y); }

int LeftClick(TVPMWindowID, int x, int y, TVPMMouseStatus s, void* r) { return Note(r, "L" + At(s, x, y)), g_consume; }
int RightClick(TVPMWindowID, int x, int y, TVPMMouseStatus s, void* r) { return Note(r, "R" + At(s, x, y)), g_consume; }
int Refuse(TVPMWindowID, int x, int y, TVPMMouseStatus s, void* r) { return Note(r, "refused" + At(s, x, y)), 0; }
// Mouse handlers that change the windows while they run.
int DestroySelfAndConsume(TVPMWindowID self, int, int, TVPMMouseStatus s, void* r) {
    return Note(r, "destroy" + std::to_string(s)), TVPMDestroyWindow(self), 1;
}
int DestroySelfOnDrag(TVPMWindowID self, int, int, TVPMMouseStatus s, void* r) {
    Note(r, "handler" + std::to_string(s));
    if (s == tvpm_MouseDrag) TVPMDestroyWindow(self);
    return 1;
}
int RaiseBackMostAndRefuse(TVPMWindowID, int, int, TVPMMouseStatus, void* r) {
    return Note(r, "raise"), TVPMBringWindowToFront(g_windows[0]), 0;
}
int DisableOwnPluginOnUp(TVPMWindowID, int, int, TVPMMouseStatus s, void* r) {
    Note(r, "handler" + std::to_string(s));
    if (s == tvpm_MouseUp) TVPMDisablePlugin(TVPMGetMyID());
    return 1;
}
void Key(TVPMWindowID, char key, TVPMKeyFlags, char, void* r, int losing) { Note(r, "key" + std::to_string(key) + (losing ? ":losing" : "")); }
TVPMCursorStatus Cursor(TVPMWindowID, int, int, void* r) { return Note(r, "cursor"), Label(r) == "text" ? tvpm_CursorText : tvpm_CursorDefault; }
int Wheel(TVPMWindowID, int x, int y, int wheel, int clicks, void* r) { return Note(r, "wheel" + At(wheel, x, y) + "," + std::to_string(clicks)), g_consume; }
int g_snifferAnswer = 1;
int Sniff(char key, TVPMKeyFlags flags, char vkey, void* r) {
    return Note(r, "sniff" + std::to_string(key) + "," + std::to_string(flags) + "," + std::to_string(vkey)), g_snifferAnswer;
}
void HotKey(void* r) { Note(r, "hotkey"); }
const char kVictim[] = "victim";
const char* const kKillers[] = {"k0", "k1"};  // by the timing of the victim they unregister
int UnregisterVictim(char, TVPMKeyFlags, char, void* r) {
    return Note(r, "killer"), TVPMUnregisterKeySniffer(Sniff, r == kKillers[1] ? 1 : 0, (void*)kVictim), 1;
}
TVPMHotKeyID g_selfKey = nullptr;
void UnregisterOwnHotKey(void* r) {
    Note(r, "self");
    TVPMUnregisterHotKey(g_selfKey);
    TVPMRegisterHotKey(TVPM_VK_F7, 0, "again", HotKey, (void*)"again");
}

struct WindowSpec {
    const char* label;
    TVPMHandleMouseClick_f left = LeftClick;
    TVPMHandleMouseClick_f right = RightClick;
    const char* plugin = "alpha.tvp";
    int l = 0, t = 100, r = 100, b = 0;
    int structSize = TVPM_CREATE_WINDOW_SIZE_PLAIN;
    int visible = 1;
    TVPMHandleCursor_f cursor = nullptr;
    TVPMHandleMouseWheel_f wheel = nullptr;
};

TVPMWindowID MakeWindow(DisplayRig& rig, const WindowSpec& s) {
    TVPMCreateWindow_t p{s.structSize, s.l, s.t, s.r, s.b, s.visible, nullptr, s.left, Key, s.cursor, s.wheel, (void*)s.label,
                         0, 0, s.right};
    TVPMWindowID id = nullptr;
    rig.As(s.plugin, [&] { id = TVPMCreateWindowEx(&p); });
    g_windows.push_back(id);
    return id;
}

// Sends one key event through the phases as the simulator does; returns the
// phase that consumed it, or 3 when none did.
int PressKey(char key, TVPMKeyFlags flags, char vkey, void* fixed = nullptr) {
    for (int phase = 0; phase < 3; ++phase)
        if (TVPMKeyPressHook(key, flags, vkey, phase, fixed) == 0) return phase;
    return 3;
}

class InputTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_windows.clear();
        g_consume = 1;
        // Drags follow the mouse; global coordinates are told apart by 1000.
        rig.host.On<&TVPMHooks::TVPMGetMouseLocation_f>([](int* x, int* y, int) { *x = s_x, *y = s_y; });
        rig.host.On<&TVPMHooks::TVPMGetMouseLocationGlobal_f>([](int* x, int* y, int) { *x = s_x + 1000, *y = s_y; });
    }
    TVPMWindowID Make(const WindowSpec& s) { return MakeWindow(rig, s); }
    static inline int s_x = 0, s_y = 0;
    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
};

// One step of a mouse scenario: what the simulator (or a plugin) does, and,
// for a mouse event, its answer (1: not consumed).
enum Op { kDown, kUp, kFrame, kDisable, kEnable, kFocusKey };
enum Surface { kMain, kOwn, kOther };  // which surface the event comes from
struct Step {
    Op op;
    int x = 0, y = 0, button = 0;
    Surface surface = kMain;
    int answer = 0;
};
struct MouseCase {
    const char* name;
    std::vector<WindowSpec> windows;  // the last one is the surface of kOwn
    std::vector<Step> steps;
    Log events;
};

const MouseCase kMouseCases[] = {
    {"ClickFallsThroughARefusingWindowAndTheTakerHoldsTheMouseWithTheButtonOfEachEvent",
     {{"back"}, {"front", Refuse, Refuse, "beta.tvp", 50, 150, 150, 50}},
     {{kFrame, 9, 9}, {kDown, 60, 60, 1, kMain, 0}, {kFrame, 500, 500}, {kFrame, 500, 500},
      {kUp, 120, 120, 0, kMain, 0}, {kFrame, 60, 60}, {kUp, 60, 60, 0, kMain, 1}},
     {"front:refused1@60,60", "back:R1@60,60", "back:R2@500,500", "back:R2@500,500", "back:L3@120,120"}},
    {"LeftAndBottomEdgesAreInsideRightAndTopEdgesOutside", {{"w", Refuse, Refuse, "alpha.tvp", 10, 20, 30, 5}},
     {{kDown, 10, 5, 0, kMain, 1}, {kDown, 29, 19, 0, kMain, 1}, {kDown, 30, 10, 0, kMain, 1},
      {kDown, 15, 20, 0, kMain, 1}, {kDown, 9, 10, 0, kMain, 1}, {kDown, 15, 4, 0, kMain, 1}},
     {"w:refused1@10,5", "w:refused1@29,19"}},
    {"MissingHandlersHiddenWindowsAndDisabledPluginsTakeNoClicks",
     {{"hidden", LeftClick, RightClick, "alpha.tvp", 0, 100, 100, 0, 72, 0},
      {"left-only", LeftClick, nullptr}, {"disabled", LeftClick, RightClick, "beta.tvp"}},
     {{kDisable}, {kDown, 1, 1, 1, kMain, 1}, {kDown, 1, 1, 2, kMain, 1}, {kDown, 1, 1, 0, kMain, 0}, {kUp, 1, 1, 0, kMain, 0}},
     {"left-only:L1@1,1", "left-only:L3@1,1"}},
    {"SimulatorWindowsTakeEventsOnlyFromTheirOwnSurfaceAndDragGlobally", {{"gui", LeftClick, RightClick, "alpha.tvp", 0, 100, 100, 0, 88}},
     {{kDown, 1, 1, 0, kMain, 1}, {kDown, 1, 1, 0, kOther, 1}, {kDown, 500, 500, 0, kOwn, 0},
      {kFrame, 9, 1, 0, kOwn}, {kFrame, 3, 3}, {kUp, 3, 3, 0, kMain, 1}, {kUp, 4, 4, 0, kOwn, 1}},
     {"gui:L1@500,500", "gui:L2@1009,1"}},
    {"HandlerDestroyingItsOwnWindowConsumesWithoutCapture", {{"back"}, {"self", DestroySelfAndConsume}},
     {{kDown, 1, 1, 0, kMain, 0}, {kFrame, 1, 1}, {kDown, 1, 1, 0, kMain, 0}}, {"self:destroy1", "back:L1@1,1"}},
    {"ReorderingDuringTheHitTestAsksEveryWindowOnce",
     {{"back", Refuse}, {"middle", RaiseBackMostAndRefuse}, {"front", RaiseBackMostAndRefuse}},
     {{kDown, 1, 1, 0, kMain, 1}}, {"front:raise", "middle:raise", "back:refused1@1,1"}},
    {"MouseUpHandlerDisablingItsOwnPluginGetsOneMouseUp", {{"w", DisableOwnPluginOnUp}},
     {{kDown, 1, 1, 0, kMain, 0}, {kUp, 1, 1, 0, kMain, 0}, {kEnable}}, {"w:handler1", "w:handler3"}},
    {"WindowDestroyedWhileHoldingMouseAndKeyboardReleasesBoth", {{"w", DestroySelfOnDrag}},
     {{kFocusKey}, {kDown, 1, 1, 0, kMain, 0}, {kFrame, 2, 2}, {kFrame, 3, 3}, {kUp, 3, 3, 0, kMain, 1}},
     {"w:handler1", "w:handler2", "w:key0:losing"}},
};

void PrintTo(const MouseCase& c, std::ostream* os) { *os << c.name; }

class MouseRouting : public InputTest, public ::testing::WithParamInterface<MouseCase> {};

}  // namespace

TEST_P(MouseRouting, DeliversTheEventsAndAnswers) {
    for (const WindowSpec& w : GetParam().windows) Make(w);
    TVPMWindowID own = g_windows.back();
    const char* owner = GetParam().windows.back().plugin;
    int elsewhere = 0;
    for (const Step& s : GetParam().steps) {
        void* surface = s.surface == kOwn ? own : s.surface == kOther ? &elsewhere : nullptr;
        s_x = s.x, s_y = s.y;
        switch (s.op) {
            case kDown:
            case kUp: EXPECT_EQ(TVPMMouseClickHook(s.x, s.y, s.op == kDown, s.button, surface), s.answer) << s.x << "," << s.y; break;
            case kFrame: TVPMDoDrawingHook(21, 0, surface); break;
            case kDisable: TVPMDisablePlugin(rig.Id(owner)); break;
            case kEnable: TVPMEnablePlugin(rig.Id(owner)); break;
            case kFocusKey: rig.As(owner, [&] { TVPMTakeKeyboardFocus(own); }); break;
        }
    }
    EXPECT_EQ(PressKey('q', 0, TVPM_VK_Q), 3);  // nobody kept the keyboard focus
    EXPECT_EQ(g_log, GetParam().events);
}

INSTANTIATE_TEST_SUITE_P(Display, MouseRouting, ::testing::ValuesIn(kMouseCases),
                         [](const ::testing::TestParamInfo<MouseCase>& info) { return info.param.name; });

// ---- Cursor and wheel ----------------------------------------------------------------------

TEST_F(InputTest, CursorAndWheelGoToTheFirstWindowThatCares) {
    for (const char* label : {"far", "text", "front"}) Make({label, LeftClick, RightClick, "alpha.tvp", 0, 100, 100, 0, 72, 1, Cursor, Wheel});
    Make({"no-handler"});
    EXPECT_EQ(TVPMCursorHook(5, 5, nullptr), tvpm_CursorText);
    EXPECT_EQ(TVPMCursorHook(500, 5, nullptr), tvpm_CursorDefault);
    EXPECT_EQ(TVPMScrollWheelHook(3, 4, 1, -2, nullptr), 0);
    g_consume = 0;
    EXPECT_EQ(TVPMScrollWheelHook(3, 4, 0, 1, nullptr), 1);
    EXPECT_EQ(g_log, (Log{"front:cursor", "text:cursor", "front:wheel1@3,4,-2", "front:wheel0@3,4,1",
                             "text:wheel0@3,4,1", "far:wheel0@3,4,1"}));
}

// ---- Keys ---------------------------------------------------------------------------------

TEST_F(InputTest, KeysGoToBeforeSniffersHotKeysFocusWindowAndAfterSniffersInTurn) {
    TVPMWindowID w = Make({"win"}), gui = Make({"gui", LeftClick, RightClick, "beta.tvp", 0, 100, 100, 0, 88});
    TVPMWindowID mute = rig.Window("alpha.tvp", 0, 10, 10, 0);  // no key callback
    rig.As("alpha.tvp", [] {
        TVPMRegisterKeySniffer(Sniff, 1, (void*)"before");
        TVPMRegisterKeySniffer(Sniff, 0, (void*)"after");
        TVPMRegisterHotKey(TVPM_VK_F1, tvpm_ControlFlag, "help", HotKey, (void*)"F1");
    });
    EXPECT_EQ(PressKey('a', 0, TVPM_VK_A), 3);
    EXPECT_EQ(PressKey(0, tvpm_ControlFlag, TVPM_VK_F1), 0);
    EXPECT_EQ(PressKey(0, 0, 0), 3);  // an empty key reaches nobody
    EXPECT_EQ(TVPMKeyPressHook('a', 0, TVPM_VK_A, 3, nullptr) + TVPMKeyPressHook('a', 0, TVPM_VK_A, -1, nullptr), 2);
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(mute); });
    EXPECT_EQ(PressKey('m', 0, TVPM_VK_M), 1);  // the focus window consumes even without a key callback
    rig.As("alpha.tvp", [&] { TVPMTakeKeyboardFocus(w); });
    EXPECT_EQ(PressKey('b', tvpm_ShiftFlag, TVPM_VK_B), 1);
    // A simulator window takes keys only from its own surface.
    rig.As("beta.tvp", [&] { TVPMTakeKeyboardFocus(gui); });
    int other = 0;
    EXPECT_EQ(TVPMKeyPressHook('3', 0, TVPM_VK_3, 1, &other), 1);
    EXPECT_EQ(TVPMKeyPressHook('4', 0, TVPM_VK_4, 1, gui), 0);
    g_snifferAnswer = 0;  // a consuming before sniffer hides the key from everyone else
    rig.As("alpha.tvp", [] { TVPMRegisterKeySniffer(Sniff, 1, (void*)"newer"); });
    EXPECT_EQ(PressKey('x', 0, TVPM_VK_X), 0);
    g_snifferAnswer = 1;
    EXPECT_EQ(g_log, (Log{"before:sniff97,0,65", "after:sniff97,0,65", "before:sniff0,4,112", "F1:hotkey",
                             "before:sniff109,0,77", "before:sniff98,1,66", "win:key98", "win:key0:losing",
                             "gui:key52", "newer:sniff120,0,88"}));
}

TEST_F(InputTest, SniffersUnregisteredDuringTheWalkAreAskedAfterWindowsOnly) {
    rig.As("alpha.tvp", [] {
        for (int before : {0, 1}) {
            EXPECT_EQ(TVPMRegisterKeySniffer(Sniff, before, (void*)kVictim), 1);
            EXPECT_EQ(TVPMRegisterKeySniffer(Sniff, before, (void*)kVictim), 0);
            EXPECT_EQ(TVPMRegisterKeySniffer(UnregisterVictim, before, (void*)kKillers[before]), 1);
        }
        EXPECT_EQ(TVPMRegisterKeySniffer(nullptr, 0, nullptr), 0);
    });
    EXPECT_EQ(TVPMKeyPressHook('k', 0, TVPM_VK_K, 0, nullptr), 1);
    EXPECT_EQ(TVPMKeyPressHook('k', 0, TVPM_VK_K, 2, nullptr), 1);
    EXPECT_EQ(TVPMKeyPressHook('k', 0, TVPM_VK_K, 2, nullptr), 1);
    EXPECT_EQ(g_log, (Log{"k1:killer", "k0:killer", "victim:sniff107,0,75", "k0:killer"}));
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMUnregisterKeySniffer(UnregisterVictim, 1, (void*)kKillers[0]), 0);
        EXPECT_EQ(TVPMUnregisterKeySniffer(UnregisterVictim, 1, (void*)kKillers[1]), 1);
        EXPECT_EQ(TVPMUnregisterKeySniffer(UnregisterVictim, 1, (void*)kKillers[1]), 0);
        EXPECT_EQ(TVPMRegisterKeySniffer(Sniff, 1, (void*)kVictim), 1);
    });
}

// ---- Hot keys -----------------------------------------------------------------------------

TEST_F(InputTest, NewestMatchingHotKeyFiresAndAnyPluginMayListAndRebindIt) {
    TVPMHotKeyID older = nullptr, newer = nullptr;
    const std::string description(600, 'd');
    rig.As("alpha.tvp", [&] {
        older = TVPMRegisterHotKey(TVPM_VK_F5, tvpm_ControlFlag, description.c_str(), HotKey, (void*)"alpha");
        g_selfKey = TVPMRegisterHotKey(TVPM_VK_F7, 0, "once", UnregisterOwnHotKey, (void*)"f7");
    });
    rig.As("beta.tvp", [&] { newer = TVPMRegisterHotKey(TVPM_VK_F5, tvpm_ControlFlag, "b", HotKey, (void*)"beta"); });
    EXPECT_EQ((std::vector<TVPMHotKeyID>{TVPMGetNthHotKey(-1), TVPMGetNthHotKey(0), TVPMGetNthHotKey(2), TVPMGetNthHotKey(3)}),
              (std::vector<TVPMHotKeyID>{nullptr, newer, older, nullptr}));
    EXPECT_EQ(PressKey(0, tvpm_ControlFlag, TVPM_VK_F5), 0);
    EXPECT_EQ(PressKey(0, tvpm_ControlFlag | tvpm_ShiftFlag, TVPM_VK_F5), 3);  // flags must match exactly
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F5), 3);
    TVPMDisablePlugin(rig.Id("beta.tvp"));
    EXPECT_EQ(PressKey('x', tvpm_ControlFlag, TVPM_VK_F5), 0);  // the character plays no part
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F7), 0);  // unregisters itself and registers another
    EXPECT_EQ(PressKey(0, 0, TVPM_VK_F7), 0);
    TVPMEnablePlugin(rig.Id("beta.tvp"));
    rig.As("alpha.tvp", [&] { TVPMUnregisterHotKey(newer); });  // another plugin's
    rig.As("beta.tvp", [&] {
        EXPECT_EQ(TVPMCountHotKeys(), 2);
        char vkey = 0;
        TVPMKeyFlags flags = -1;
        std::vector<char> text(600, 'x');  // the description comes back cut to 511 characters
        TVPMPluginID owner = -5;
        TVPMGetHotKeyInfo(older, &vkey, &flags, text.data(), &owner);
        EXPECT_EQ(std::make_tuple(vkey, flags, std::string(text.data()), text[512], owner),
                  std::make_tuple(char(TVPM_VK_F5), TVPMKeyFlags(tvpm_ControlFlag), description.substr(0, 511), 'x', rig.Id("alpha.tvp")));
        TVPMGetHotKeyInfo(older, nullptr, nullptr, nullptr, nullptr);
        TVPMSetHotKeyCombination(older, TVPM_VK_F2, tvpm_OptionAltFlag);
        TVPMSetHotKeyCombination(text.data(), TVPM_VK_F3, 0);  // unknown: ignored
    });
    EXPECT_EQ(PressKey(0, tvpm_ControlFlag, TVPM_VK_F5), 3);
    EXPECT_EQ(PressKey(0, tvpm_OptionAltFlag, TVPM_VK_F2), 0);
    EXPECT_EQ(g_log, (Log{"beta:hotkey", "alpha:hotkey", "f7:self", "again:hotkey", "alpha:hotkey"}));
}
