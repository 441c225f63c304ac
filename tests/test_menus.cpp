// test_menus.cpp: the shared menus, plugin menus and items with plugin-relative indices, and picks, check marks and enabled states as the simulator sees them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AlphaBeta.h"
#include "TVPM/TVPMMenus.h"

using namespace tvpmtest;

namespace {

// The host hands out menu handles from 100 ("<Aircraft>" 100, "Plugins" 101)
// and item codes from 1000.
constexpr intptr_t kPluginsHandle = 101;
int s_nextMenu = 100;
int s_nextItem = 1000;

using Lines = std::vector<std::string>;
using ArgLists = std::vector<Lines>;

// Picks as "<menu refcon>/<item refcon>/<current plugin>".
Lines s_picks;
std::string Text(void* refcon) { return refcon ? static_cast<const char*>(refcon) : "null"; }
char kTools[] = "tools", kFirst[] = "first", kSecond[] = "second", kClose[] = "close";
TVPMMenuID s_closable = nullptr;  // picking its kClose item destroys it
void RecordPick(void* menuRef, void* itemRef) {
    s_picks.push_back(Text(menuRef) + "/" + Text(itemRef) + "/" + std::to_string(TVPMGetMyID()));
    if (itemRef == kClose) TVPMDestroyMenu(s_closable);
}

// Started with a host that hands out menu handles and item codes.
struct MenuHost : AlphaBeta {
    MenuHost()
        : AlphaBeta([](FakeHost& host) {
              host.On<&TVPMHooks::TVPMCreateMenu_f>(
                  [](intptr_t, int, const char*) -> intptr_t { return s_nextMenu++; });
              host.On<&TVPMHooks::TVPMAppendMenu_f>([](intptr_t, const char*) { return s_nextItem++; });
              host.On<&TVPMHooks::TVPMAppendMenuWithCommand_f>(
                  [](intptr_t, const char*, TVPMCommandRef) { return s_nextItem++; });
          }) {}
    int Append(const std::string& key, TVPMMenuID menu, const std::string& name, void* ref = nullptr) {
        return RunAs<int>(key, [=] { return TVPMAppendMenuItem(menu, name.c_str(), ref, 0); });
    }
    TVPMMenuID Create(const std::string& key, const std::string& name, TVPMMenuID parent = nullptr, int parentItem = 0,
                      void* ref = kTools) {
        return RunAs<TVPMMenuID>(key,
                                 [=] { return TVPMCreateMenu(name.c_str(), parent, parentItem, RecordPick, ref); });
    }
    ArgLists ArgsOf(const std::string& slot) const {
        ArgLists out;
        for (const HostCall& c : host.CallsTo(slot)) out.push_back(c.args);
        return out;
    }
};

std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

}  // namespace

TEST(Menus, PluginsSeeAndClearOnlyTheirOwnItemsInASharedMenu) {
    MenuHost t;
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    EXPECT_EQ(t.Append("alpha.tvp", plugins, "a0"), 0);
    EXPECT_EQ(t.Append("beta.tvp", plugins, "b0"), 0);
    EXPECT_EQ(t.Append("alpha.tvp", plugins, "a1"), 1);
    EXPECT_EQ(t.Append("beta.tvp", plugins, "b1"), 1);

    t.host.ClearCalls();
    RunAs("alpha.tvp", [plugins] { TVPMRemoveMenuItem(plugins, 0); });
    RunAs("beta.tvp", [plugins] {
        TVPMSetMenuItemName(plugins, 0, "b0'", 0);
        TVPMSetMenuItemName(plugins, 1, nullptr, 0);
    });
    RunAs("alpha.tvp", [plugins] { TVPMSetMenuItemName(plugins, 0, "a1'", 0); });
    // Host order is now b0 a1 b1.
    EXPECT_EQ(t.ArgsOf("TVPMRemoveMenuItem_f"), (ArgLists{{"101", "0"}}));
    EXPECT_EQ(t.ArgsOf("TVPMSetMenuTitle_f"),
              (ArgLists{{"101", "0", Quoted("b0'")}, {"101", "2", Quoted("")}, {"101", "1", Quoted("a1'")}}));
    EXPECT_EQ(t.Append("alpha.tvp", plugins, "a2"), 1);

    // Any plugin clears its own items from the shared menu; none destroys it.
    t.host.ClearCalls();
    RunAs("alpha.tvp", [plugins] {
        TVPMClearAllMenuItems(plugins);
        TVPMDestroyMenu(plugins);
    });
    EXPECT_EQ(t.ArgsOf("TVPMRemoveMenuItem_f"), (ArgLists{{"101", "1"}, {"101", "2"}})) << "a2 moved down when a1 went";
    EXPECT_EQ(t.host.Count("TVPMDestroyMenu_f"), 0u);
    RunAs("beta.tvp", [plugins] { TVPMSetMenuItemName(plugins, 1, "b1", 0); });
    EXPECT_EQ(t.ArgsOf("TVPMSetMenuTitle_f"), (ArgLists{{"101", "1", Quoted("b1")}}));
    EXPECT_TRUE(PluginErrors().empty());
}

TEST(Menus, OutOfRangeIndicesAndUnknownMenusAreReportedAndChangeNothing) {
    MenuHost t;
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    t.Append("beta.tvp", plugins, "b0");  // not alpha's: alpha has no item 0
    int bogus = 0;
    TVPMMenuID unknown = &bogus;
    t.host.ClearCalls();
    RunAs("alpha.tvp", [=] {
        TVPMMenuCheck check = 7;
        TVPMRemoveMenuItem(plugins, 0);
        TVPMSetMenuItemName(plugins, -1, "x", 0);
        TVPMCheckMenuItem(plugins, 0, tvpm_Menu_Checked);
        TVPMCheckMenuItemState(plugins, 0, &check);
        TVPMEnableMenuItem(plugins, 0, 0);
        TVPMRemoveMenuItem(unknown, 0);
        TVPMEnableMenuItem(nullptr, 0, 1);
        EXPECT_EQ(check, 7);
        EXPECT_EQ(TVPMAppendMenuItem(unknown, "x", nullptr, 0), -1);
        EXPECT_EQ(TVPMAppendMenuItemWithCommand(nullptr, "x", nullptr), -1);
        TVPMAppendMenuSeparator(unknown);
    });
    const std::string a = std::to_string(t.alpha) + ":";
    const std::string remove = a + "TVPMRemoveMenuItem was passed an out of range item index.";
    const std::string state = a + "TVPMCheckMenuItemState was passed an out of range item index.";
    EXPECT_EQ(PluginErrors(),
              (Lines{remove, a + "TVPMSetMenuItemName was passed an out of range item index.",
                     a + "TVPMCheckMenuItem was passed an out of range item index.", state, state, remove, state}));
    EXPECT_TRUE(t.host.Calls().empty());
    EXPECT_EQ(TVPMMenuItemEnabled(kPluginsHandle, 0), 1) << "beta's item untouched";
}

TEST(Menus, TheSharedAircraftMenuIsForAircraftPluginsAndLeavesWithThem) {
    MenuHost t;
    EXPECT_EQ(t.ArgsOf("TVPMCreateMenu_f"),
              (ArgLists{{"0", "0", Quoted("<Aircraft>")}, {"0", "0", Quoted("Plugins")}}));
    t.LoadAircraftPlugin();
    TVPMMenuID acf = RunAs<TVPMMenuID>("acfp", [] { return TVPMFindAircraftMenu(); });
    t.host.ClearCalls();
    for (const char* key : {"alpha.tvp", "alpha.tvp", "beta.tvp"})
        EXPECT_EQ(RunAs<TVPMMenuID>(key, [] { return TVPMFindAircraftMenu(); }), nullptr);
    EXPECT_EQ(t.host.Log(),
              "Error: Non-aircraft plugin alpha.tvp failed to access the aircraft menu.\n"
              "Error: Non-aircraft plugin beta.tvp failed to access the aircraft menu.\n");

    // Unloading takes the plugin's own menus and its items in both shared menus.
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    t.Append("alpha.tvp", plugins, "a0");
    TVPMMenuID panel = t.Create("acfp", "Panel");  // hangs on an item in Plugins
    const intptr_t panelHandle = s_nextMenu - 1;
    t.host.ClearCalls();
    EXPECT_EQ(t.Append("acfp", acf, "Doors"), 0);
    EXPECT_EQ(t.ArgsOf("TVPMAppendMenu_f"), (ArgLists{{"100", Quoted("Doors")}}));
    t.Append("acfp", panel, "Lights", kFirst);
    const int lights = s_nextItem - 1;
    t.Append("alpha.tvp", plugins, "a1");

    t.host.ClearCalls();
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    EXPECT_EQ(t.ArgsOf("TVPMDestroyMenu_f"), (ArgLists{{std::to_string(panelHandle)}}));
    EXPECT_EQ(t.ArgsOf("TVPMRemoveMenuItem_f"), (ArgLists{{"101", "1"}, {"100", "0"}}));
    EXPECT_EQ(TVPMMenuHook(lights), 1) << "the menu is gone";
    RunAs("alpha.tvp", [plugins] { TVPMSetMenuItemName(plugins, 1, "a1", 0); });
    EXPECT_EQ(t.ArgsOf("TVPMSetMenuTitle_f"), (ArgLists{{"101", "1", Quoted("a1")}}));
    EXPECT_TRUE(PluginErrors().empty());
}

TEST(Menus, AMenuWithoutParentHangsOnItsOwnItemInThePluginsMenu) {
    MenuHost t;
    t.Append("beta.tvp", TVPMFindPluginsMenu(), "b0");
    t.host.ClearCalls();
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 5);
    EXPECT_EQ(t.host.SlotSequence(), (Lines{"TVPMAppendMenu_f", "TVPMCreateMenu_f"}));
    EXPECT_EQ(t.host.Calls()[0].args, (Lines{"101", Quoted("Tools")}));
    EXPECT_EQ(t.host.Calls()[1].args, (Lines{"101", "1", Quoted("Tools")})) << "alpha's item 0 is the host's item 1";

    // A submenu's parent item is translated the same way; an unknown parent,
    // or an item the plugin does not have, gives item -1.
    t.Append("alpha.tvp", tools, "first");
    t.Append("alpha.tvp", tools, "second");
    int bogus = 0;
    t.host.ClearCalls();
    t.Create("alpha.tvp", "Sub", tools, 1);
    t.Create("alpha.tvp", "Lost", &bogus, 0);
    t.Create("beta.tvp", "Foreign", tools, 0);
    EXPECT_EQ(t.ArgsOf("TVPMCreateMenu_f"),
              (ArgLists{{"102", "1", Quoted("Sub")}, {"0", "-1", Quoted("Lost")}, {"102", "-1", Quoted("Foreign")}}));
}

TEST(Menus, PicksReachTheMenusPluginUnlessItemOrPluginIsDisabled) {
    MenuHost t;
    t.Append("alpha.tvp", TVPMFindPluginsMenu(), "no handler", kFirst);
    const int shared = s_nextItem - 1;
    static int cmd;
    TVPMMenuID tools = s_closable = t.Create("alpha.tvp", "Tools");
    const intptr_t handle = s_nextMenu - 1;
    t.host.ClearCalls();
    t.Append("alpha.tvp", tools, "first", kFirst);
    t.Append("alpha.tvp", tools, "second", kSecond);
    RunAs("alpha.tvp", [tools] {
        TVPMAppendMenuSeparator(tools);
        TVPMAppendMenuItemWithCommand(tools, nullptr, &cmd);
    });
    t.Append("alpha.tvp", tools, "close", kClose);
    const int first = s_nextItem - 5, second = s_nextItem - 4, command = s_nextItem - 2, close = s_nextItem - 1;
    EXPECT_EQ(t.ArgsOf("TVPMAppendMenu_f").at(2), (Lines{"102", Quoted("-")}));
    EXPECT_EQ(t.ArgsOf("TVPMAppendMenuWithCommand_f"), (ArgLists{{"102", Quoted(""), FormatArg(&cmd)}}));

    const std::string a = "/" + std::to_string(t.alpha);
    for (int code : {second, first, command, shared}) EXPECT_EQ(TVPMMenuHook(code), 0);
    EXPECT_EQ(s_picks, (Lines{"tools/second" + a, "tools/first" + a, "tools/null" + a}));
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(TVPMMenuHook(99999), 1) << "not ours: the host handles it";

    s_picks.clear();
    RunAs("alpha.tvp", [tools] { TVPMEnableMenuItem(tools, 0, 0); });
    EXPECT_EQ(TVPMMenuHook(first), 0);
    TVPMDisablePlugin(t.alpha);
    EXPECT_EQ(TVPMMenuHook(second), 0);
    EXPECT_EQ(TVPMMenuItemEnabled(handle, 1), 0) << "a disabled plugin's items are greyed";
    TVPMEnablePlugin(t.alpha);
    EXPECT_EQ(TVPMMenuHook(second), 0);
    EXPECT_EQ(s_picks, (Lines{"tools/second" + a}));
    // Enabled states of items 0, 1 and 5 (out of range), and of an unknown menu.
    EXPECT_EQ((std::vector<int>{TVPMMenuItemEnabled(handle, 0), TVPMMenuItemEnabled(handle, 1),
                                TVPMMenuItemEnabled(handle, 5), TVPMMenuItemEnabled(555, 0)}),
              (std::vector<int>{0, 1, 1, 1}));

    // The handler may destroy its own menu while it is picked.
    t.host.ClearCalls();
    EXPECT_EQ(TVPMMenuHook(close), 0);
    Lines removeAllThenDestroy(5, "TVPMRemoveMenuItem_f");
    removeAllThenDestroy.push_back("TVPMDestroyMenu_f");
    EXPECT_EQ(t.host.SlotSequence(), removeAllThenDestroy);
    EXPECT_EQ(TVPMMenuHook(close), 1);
}

TEST(Menus, CheckMarksAsTheHostAsksForThem) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools");
    const intptr_t handle = s_nextMenu - 1;
    for (const char* name : {"none", "checked", "unchecked", "odd"}) t.Append("alpha.tvp", tools, name);
    TVPMMenuCheck state = -5;
    RunAs("alpha.tvp", [&] {
        TVPMCheckMenuItem(tools, 1, tvpm_Menu_Checked);
        TVPMCheckMenuItem(tools, 2, tvpm_Menu_Unchecked);
        TVPMCheckMenuItem(tools, 3, 3);
        TVPMCheckMenuItemState(tools, 1, &state);
    });
    EXPECT_EQ(state, tvpm_Menu_Checked);
    // As "<answer>:<mark>": the host counts -1 no mark, 0 unchecked, 1 checked; anything else is its own.
    auto ask = [](intptr_t menu, int item) {
        int mark = 42;
        const int answer = TVPMCheckMenuHook(menu, item, &mark);
        return std::to_string(answer) + ":" + std::to_string(mark);
    };
    EXPECT_EQ((Lines{ask(handle, 0), ask(handle, 1), ask(handle, 2), ask(handle, 3), ask(handle, 4), ask(777, 0)}),
              (Lines{"0:-1", "0:1", "0:0", "1:42", "1:42", "1:42"}));
    EXPECT_EQ(t.host.Count("TVPMSetMenuTitle_f"), 0u) << "checking never calls the host";
}

TEST(Menus, OnlyTheCreatorClearsOrDestroysAMenuEvenWithAShortHostTable) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools");
    t.Append("alpha.tvp", tools, "first");
    t.Append("beta.tvp", tools, "guest");
    t.host.ClearCalls();
    RunAs("beta.tvp", [tools] {
        TVPMClearAllMenuItems(tools);
        TVPMDestroyMenu(tools);
    });
    EXPECT_TRUE(t.host.Calls().empty());
    EXPECT_TRUE(PluginErrors().empty()) << "refused silently";

    RunAs("alpha.tvp", [tools] { TVPMClearAllMenuItems(tools); });
    EXPECT_EQ(t.ArgsOf("TVPMRemoveMenuItem_f"), (ArgLists{{"102", "0"}}));
    EXPECT_EQ(t.Append("beta.tvp", tools, "guest 2"), 1) << "beta's items stay";
    t.Append("alpha.tvp", tools, "second");

    t.Create("alpha.tvp", "Kept");
    t.host.hooks.structSize = 1312;  // a host without the destroy slot
    t.host.ClearCalls();
    RunAs("alpha.tvp", [tools] { TVPMDestroyMenu(tools); });
    EXPECT_EQ(t.host.SlotSequence(), (Lines{"TVPMRemoveMenuItem_f"})) << "only the creator's own items are removed";
    EXPECT_EQ(t.Append("alpha.tvp", tools, "late"), -1) << "forgotten all the same";
    EXPECT_EQ(TVPMMenuItemEnabled(102, 0), 1);

    t.host.ClearCalls();
    t.host.Shutdown();
    EXPECT_EQ(t.ArgsOf("TVPMDestroyMenu_f"), (ArgLists{{"103"}})) << "unload still destroys";
}
