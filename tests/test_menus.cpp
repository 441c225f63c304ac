// test_menus.cpp: the shared menus, plugin menus and items with plugin-relative indices, and picks, check marks and enabled states as the simulator sees them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPMHost.h"

using namespace tvpmtest;

namespace {

constexpr intptr_t kAircraftHandle = 100;
constexpr intptr_t kPluginsHandle = 101;
constexpr int kFirstItemCode = 1000;

int s_nextMenu = kAircraftHandle;
int s_nextItem = kFirstItemCode;

// Picks as "<menu refcon>/<item refcon>/<current plugin>".
std::vector<std::string>& Picks() {
    static std::vector<std::string> picks;
    return picks;
}

std::string Text(void* refcon) { return refcon ? static_cast<const char*>(refcon) : "null"; }

void RecordPick(void* menuRef, void* itemRef) {
    Picks().push_back(Text(menuRef) + "/" + Text(itemRef) + "/" + std::to_string(TVPMGetMyID()));
}

char kTools[] = "tools", kFirst[] = "first", kSecond[] = "second";

std::vector<std::string> Args(std::initializer_list<std::string> a) { return a; }
std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

// Two loose plugins, alpha and beta, started with a host that hands out menu
// handles from 100 and item codes from 1000.
struct MenuHost {
    FakeHost host;
    SimFolder sim;
    TVPMPluginID alpha = -1, beta = -1;

    MenuHost() {
        sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
        sim.AddLoose("beta.tvp", BuiltPlugin("scripted.tvp"));
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        host.On<&TVPMHooks::TVPMCreateMenu_f>(
            [](intptr_t, int, const char*) -> intptr_t { return s_nextMenu++; });
        host.On<&TVPMHooks::TVPMAppendMenu_f>([](intptr_t, const char*) { return s_nextItem++; });
        host.On<&TVPMHooks::TVPMAppendMenuWithCommand_f>(
            [](intptr_t, const char*, TVPMCommandRef) { return s_nextItem++; });
        host.Start(sim.Root());
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }
    ~MenuHost() { host.Shutdown(); }

    int Append(const std::string& key, TVPMMenuID menu, const std::string& name,
               void* ref = nullptr) {
        return RunAs<int>(key, [=] { return TVPMAppendMenuItem(menu, name.c_str(), ref, 0); });
    }
    TVPMMenuID Create(const std::string& key, const std::string& name, TVPMMenuID parent,
                      int parentItem, void* ref) {
        return RunAs<TVPMMenuID>(key, [=] {
            return TVPMCreateMenu(name.c_str(), parent, parentItem, RecordPick, ref);
        });
    }
    std::string Err(TVPMPluginID id, const std::string& text) {
        return std::to_string(id) + ":" + text;
    }
};

}  // namespace

TEST(Menus, SharedMenusAreCreatedAtStartAircraftFirst) {
    MenuHost t;
    auto made = t.host.CallsTo("TVPMCreateMenu_f");
    ASSERT_EQ(made.size(), 2u);
    EXPECT_EQ(made[0].args, Args({"0", "0", Quoted("<Aircraft>")}));
    EXPECT_EQ(made[1].args, Args({"0", "0", Quoted("Plugins")}));
    EXPECT_NE(TVPMFindPluginsMenu(), nullptr);
    EXPECT_EQ(RunAs<TVPMMenuID>("beta.tvp", [] { return TVPMFindPluginsMenu(); }),
              TVPMFindPluginsMenu());
}

TEST(Menus, PluginsSeeOnlyTheirOwnItemsInASharedMenu) {
    MenuHost t;
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    EXPECT_EQ(t.Append("alpha.tvp", plugins, "a0"), 0);
    EXPECT_EQ(t.Append("beta.tvp", plugins, "b0"), 0);
    EXPECT_EQ(t.Append("alpha.tvp", plugins, "a1"), 1);
    EXPECT_EQ(t.Append("beta.tvp", plugins, "b1"), 1);

    t.host.ClearCalls();
    RunAs("alpha.tvp", [plugins] { TVPMRemoveMenuItem(plugins, 0); });
    RunAs("beta.tvp", [plugins] {
        TVPMSetMenuItemName(plugins, 0, "b0 renamed", 0);
        TVPMSetMenuItemName(plugins, 1, "b1 renamed", 0);
    });
    RunAs("alpha.tvp", [plugins] { TVPMSetMenuItemName(plugins, 0, "a1 renamed", 0); });
    // Host order is now b0 a1 b1.
    EXPECT_EQ(t.host.CallsTo("TVPMRemoveMenuItem_f").at(0).args, Args({"101", "0"}));
    auto titles = t.host.CallsTo("TVPMSetMenuTitle_f");
    ASSERT_EQ(titles.size(), 3u);
    EXPECT_EQ(titles[0].args, Args({"101", "0", Quoted("b0 renamed")}));
    EXPECT_EQ(titles[1].args, Args({"101", "2", Quoted("b1 renamed")}));
    EXPECT_EQ(titles[2].args, Args({"101", "1", Quoted("a1 renamed")}));
    EXPECT_EQ(t.Append("alpha.tvp", plugins, "a2"), 1);
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
    const TVPMPluginID a = t.alpha;
    EXPECT_EQ(PluginErrors(),
              (std::vector<std::string>{
                  t.Err(a, "TVPMRemoveMenuItem was passed an out of range item index."),
                  t.Err(a, "TVPMSetMenuItemName was passed an out of range item index."),
                  t.Err(a, "TVPMCheckMenuItem was passed an out of range item index."),
                  t.Err(a, "TVPMCheckMenuItemState was passed an out of range item index."),
                  t.Err(a, "TVPMCheckMenuItemState was passed an out of range item index."),
                  t.Err(a, "TVPMRemoveMenuItem was passed an out of range item index."),
                  t.Err(a, "TVPMCheckMenuItemState was passed an out of range item index."),
              }));
    EXPECT_TRUE(t.host.Calls().empty());
    EXPECT_EQ(TVPMMenuItemEnabled(kPluginsHandle, 0), 1) << "beta's item untouched";
    int check = 5;
    EXPECT_EQ(TVPMCheckMenuHook(kPluginsHandle, 0, &check), 0);
    EXPECT_EQ(check, -1);
}

TEST(Menus, OnlyAircraftPluginsGetTheAircraftMenuOthersAreLoggedOnce) {
    MenuHost t;
    t.host.userAircraftPath = t.sim.AddAircraft("glider", {"acfp"}, BuiltPlugin("scripted.tvp"));
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_GT(IdOf("acfp"), 0);
    TVPMMenuID acf = RunAs<TVPMMenuID>("acfp", [] { return TVPMFindAircraftMenu(); });
    EXPECT_NE(acf, nullptr);
    EXPECT_NE(acf, TVPMFindPluginsMenu());
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(RunAs<TVPMMenuID>("alpha.tvp", [] { return TVPMFindAircraftMenu(); }), nullptr);
    EXPECT_EQ(RunAs<TVPMMenuID>("beta.tvp", [] { return TVPMFindAircraftMenu(); }), nullptr);
    const std::string log = t.host.Log();
    const std::string line = "Error: Non-aircraft plugin alpha.tvp failed to access the aircraft menu.\n";
    ASSERT_NE(log.find(line), std::string::npos);
    EXPECT_EQ(log.find(line, log.find(line) + 1), std::string::npos);
    EXPECT_NE(log.find("Error: Non-aircraft plugin beta.tvp failed"), std::string::npos);

    t.host.ClearCalls();
    EXPECT_EQ(t.Append("acfp", acf, "Doors"), 0);
    EXPECT_EQ(t.host.CallsTo("TVPMAppendMenu_f").at(0).args,
              Args({std::to_string(kAircraftHandle), Quoted("Doors")}));
}

TEST(Menus, AMenuWithoutParentHangsOnItsOwnItemInThePluginsMenu) {
    MenuHost t;
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    t.Append("beta.tvp", plugins, "b0");
    t.host.ClearCalls();
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 5, kTools);
    ASSERT_NE(tools, nullptr);
    EXPECT_EQ(t.host.SlotSequence(), (std::vector<std::string>{"TVPMAppendMenu_f", "TVPMCreateMenu_f"}));
    EXPECT_EQ(t.host.Calls()[0].args, Args({"101", Quoted("Tools")}));
    EXPECT_EQ(t.host.Calls()[1].args, Args({"101", "1", Quoted("Tools")}))
        << "alpha's item 0 is the host's item 1";

    // A submenu of a plugin menu: the parent item is translated the same way.
    t.Append("alpha.tvp", tools, "first");
    t.Append("alpha.tvp", tools, "second");
    t.host.ClearCalls();
    t.Create("alpha.tvp", "Sub", tools, 1, nullptr);
    EXPECT_EQ(t.host.CallsTo("TVPMCreateMenu_f").at(0).args, Args({"102", "1", Quoted("Sub")}));

    // An unknown parent, or an item the plugin does not have, gives item -1.
    int bogus = 0;
    t.host.ClearCalls();
    t.Create("alpha.tvp", "Lost", &bogus, 0, nullptr);
    t.Create("beta.tvp", "Foreign", tools, 0, nullptr);
    auto made = t.host.CallsTo("TVPMCreateMenu_f");
    ASSERT_EQ(made.size(), 2u);
    EXPECT_EQ(made[0].args, Args({"0", "-1", Quoted("Lost")}));
    EXPECT_EQ(made[1].args, Args({"102", "-1", Quoted("Foreign")}));
}

TEST(Menus, PicksReachTheMenusPluginWithItsItemRefcon) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 0, kTools);
    t.host.ClearCalls();
    t.Append("alpha.tvp", tools, "first", kFirst);
    t.Append("alpha.tvp", tools, "second", kSecond);
    RunAs("alpha.tvp", [tools] { TVPMAppendMenuSeparator(tools); });
    auto codes = t.host.CallsTo("TVPMAppendMenu_f");
    ASSERT_EQ(codes.size(), 3u);
    EXPECT_EQ(codes[2].args[1], Quoted("-"));
    const int first = s_nextItem - 3, second = s_nextItem - 2;

    EXPECT_EQ(TVPMMenuHook(second), 0);
    EXPECT_EQ(TVPMMenuHook(first), 0);
    const std::string a = std::to_string(t.alpha);
    EXPECT_EQ(Picks(), (std::vector<std::string>{"tools/second/" + a, "tools/first/" + a}));
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(TVPMMenuHook(99999), 1) << "not ours: the host handles it";
}

TEST(Menus, DisabledItemsAndDisabledPluginsSwallowPicks) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 0, kTools);
    t.Append("alpha.tvp", tools, "first", kFirst);
    t.Append("alpha.tvp", tools, "second", kSecond);
    const int first = s_nextItem - 2, second = s_nextItem - 1;
    const intptr_t handle = s_nextMenu - 1;

    RunAs("alpha.tvp", [tools] { TVPMEnableMenuItem(tools, 0, 0); });
    EXPECT_EQ(TVPMMenuHook(first), 0);
    EXPECT_EQ(TVPMMenuItemEnabled(handle, 0), 0);
    EXPECT_EQ(TVPMMenuItemEnabled(handle, 1), 1);

    TVPMDisablePlugin(t.alpha);
    EXPECT_EQ(TVPMMenuHook(second), 0);
    EXPECT_EQ(TVPMMenuItemEnabled(handle, 1), 0) << "a disabled plugin's items are greyed";
    EXPECT_TRUE(Picks().empty());

    TVPMEnablePlugin(t.alpha);
    EXPECT_EQ(TVPMMenuItemEnabled(handle, 1), 1);
    EXPECT_EQ(TVPMMenuHook(second), 0);
    EXPECT_EQ(Picks(), (std::vector<std::string>{"tools/second/" + std::to_string(t.alpha)}));
    EXPECT_EQ(TVPMMenuItemEnabled(handle, 2), 1) << "out of range";
    EXPECT_EQ(TVPMMenuItemEnabled(555, 0), 1) << "unknown menu";
}

TEST(Menus, ItemsOfTheSharedMenuHaveNoHandler) {
    MenuHost t;
    t.Append("alpha.tvp", TVPMFindPluginsMenu(), "plain", kFirst);
    EXPECT_EQ(TVPMMenuHook(s_nextItem - 1), 0);
    EXPECT_TRUE(Picks().empty());
}

TEST(Menus, CheckMarksAsTheHostAsksForThem) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 0, kTools);
    const intptr_t handle = s_nextMenu - 1;
    t.Append("alpha.tvp", tools, "first");
    t.Append("alpha.tvp", tools, "second");
    int out = 42;
    EXPECT_EQ(TVPMCheckMenuHook(handle, 0, &out), 0);
    EXPECT_EQ(out, -1) << "no check mark by default";

    TVPMMenuCheck state = -5;
    RunAs("alpha.tvp", [&] {
        TVPMCheckMenuItem(tools, 1, tvpm_Menu_Checked);
        TVPMCheckMenuItem(tools, 0, tvpm_Menu_Unchecked);
        TVPMCheckMenuItemState(tools, 1, &state);
    });
    EXPECT_EQ(state, tvpm_Menu_Checked);
    EXPECT_EQ(TVPMCheckMenuHook(handle, 1, &out), 0);
    EXPECT_EQ(out, 1);
    EXPECT_EQ(TVPMCheckMenuHook(handle, 0, &out), 0);
    EXPECT_EQ(out, 0);

    RunAs("alpha.tvp", [&] { TVPMCheckMenuItem(tools, 0, 3); });
    out = 42;
    EXPECT_EQ(TVPMCheckMenuHook(handle, 0, &out), 1) << "not a check value the host knows";
    EXPECT_EQ(TVPMCheckMenuHook(handle, 2, &out), 1);
    EXPECT_EQ(TVPMCheckMenuHook(777, 0, &out), 1);
    EXPECT_EQ(out, 42);
    EXPECT_EQ(t.host.Count("TVPMSetMenuTitle_f"), 0u) << "checking never calls the host";
}

TEST(Menus, CommandItemsCarryTheirCommand) {
    MenuHost t;
    int cmd = 0;
    TVPMCommandRef ref = &cmd;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 0, kTools);
    t.host.ClearCalls();
    EXPECT_EQ(RunAs<int>("alpha.tvp",
                         [=] { return TVPMAppendMenuItemWithCommand(tools, "Run", ref); }),
              0);
    auto calls = t.host.CallsTo("TVPMAppendMenuWithCommand_f");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].args, Args({"102", Quoted("Run"), FormatArg(static_cast<const void*>(ref))}));
    EXPECT_EQ(TVPMMenuHook(s_nextItem - 1), 0);
    EXPECT_EQ(Picks(), (std::vector<std::string>{"tools/null/" + std::to_string(t.alpha)}));
}

TEST(Menus, OnlyTheCreatorClearsOrDestroysAMenu) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 0, kTools);
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
    EXPECT_EQ(t.host.CallsTo("TVPMRemoveMenuItem_f").at(0).args, Args({"102", "0"}));
    EXPECT_EQ(t.Append("beta.tvp", tools, "guest 2"), 1) << "beta's item stays";

    t.host.ClearCalls();
    RunAs("alpha.tvp", [tools] { TVPMDestroyMenu(tools); });
    EXPECT_EQ(t.host.SlotSequence(), (std::vector<std::string>{"TVPMDestroyMenu_f"}))
        << "only the creator's own items are removed first";
    EXPECT_EQ(t.host.Calls()[0].args, Args({"102"}));
    EXPECT_EQ(t.Append("alpha.tvp", tools, "late"), -1) << "the ID is gone";
    EXPECT_EQ(TVPMMenuItemEnabled(102, 0), 1);
}

TEST(Menus, AShortHostTableNeverHasAMenuDestroyedButUnloadStillDoes) {
    MenuHost t;
    TVPMMenuID tools = t.Create("alpha.tvp", "Tools", nullptr, 0, kTools);
    t.Append("alpha.tvp", tools, "first");
    t.Create("alpha.tvp", "Kept", nullptr, 0, nullptr);
    const intptr_t kept = s_nextMenu - 1;
    t.host.hooks.structSize = 1312;
    t.host.ClearCalls();
    RunAs("alpha.tvp", [tools] { TVPMDestroyMenu(tools); });
    EXPECT_EQ(t.host.SlotSequence(), (std::vector<std::string>{"TVPMRemoveMenuItem_f"}));
    EXPECT_EQ(t.Append("alpha.tvp", tools, "late"), -1) << "forgotten all the same";

    t.host.ClearCalls();
    t.host.Shutdown();
    auto destroyed = t.host.CallsTo("TVPMDestroyMenu_f");
    ASSERT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(destroyed[0].args, Args({std::to_string(kept)}));
}

TEST(Menus, AnyPluginClearsItsOwnItemsFromThePluginsMenuOnly) {
    MenuHost t;
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    t.Append("alpha.tvp", plugins, "a0");
    t.Append("beta.tvp", plugins, "b0");
    t.Append("alpha.tvp", plugins, "a1");
    t.host.ClearCalls();
    RunAs("alpha.tvp", [plugins] {
        TVPMClearAllMenuItems(plugins);
        TVPMDestroyMenu(plugins);  // not the creator: nothing
    });
    auto removed = t.host.CallsTo("TVPMRemoveMenuItem_f");
    ASSERT_EQ(removed.size(), 2u);
    EXPECT_EQ(removed[0].args, Args({"101", "0"}));
    EXPECT_EQ(removed[1].args, Args({"101", "1"})) << "a1 moved down when a0 went";
    EXPECT_EQ(t.host.Count("TVPMDestroyMenu_f"), 0u);
    EXPECT_EQ(TVPMFindPluginsMenu(), plugins);
    RunAs("beta.tvp", [plugins] { TVPMSetMenuItemName(plugins, 0, "still here", 0); });
    EXPECT_EQ(t.host.CallsTo("TVPMSetMenuTitle_f").at(0).args,
              Args({"101", "0", Quoted("still here")}));
}

TEST(Menus, UnloadingAPluginTakesItsMenusAndSharedItemsAlong) {
    MenuHost t;
    t.host.userAircraftPath = t.sim.AddAircraft("glider", {"acfp"}, BuiltPlugin("scripted.tvp"));
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    TVPMMenuID plugins = TVPMFindPluginsMenu();
    TVPMMenuID acf = RunAs<TVPMMenuID>("acfp", [] { return TVPMFindAircraftMenu(); });
    t.Append("alpha.tvp", plugins, "a0");
    TVPMMenuID panel = t.Create("acfp", "Panel", nullptr, 0, kTools);  // item in Plugins
    const intptr_t panelHandle = s_nextMenu - 1;
    t.Append("acfp", acf, "Doors");
    t.Append("acfp", panel, "Lights", kFirst);
    const int lights = s_nextItem - 1;
    t.Append("alpha.tvp", plugins, "a1");

    t.host.ClearCalls();
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    auto destroyed = t.host.CallsTo("TVPMDestroyMenu_f");
    ASSERT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(destroyed[0].args, Args({std::to_string(panelHandle)}));
    auto removed = t.host.CallsTo("TVPMRemoveMenuItem_f");
    ASSERT_EQ(removed.size(), 2u);
    EXPECT_EQ(removed[0].args, Args({"101", "1"}));
    EXPECT_EQ(removed[1].args, Args({"100", "0"}));

    EXPECT_EQ(TVPMMenuHook(lights), 1) << "the menu is gone";
    RunAs("alpha.tvp", [plugins] { TVPMSetMenuItemName(plugins, 1, "a1", 0); });
    EXPECT_EQ(t.host.CallsTo("TVPMSetMenuTitle_f").at(0).args, Args({"101", "1", Quoted("a1")}));
    EXPECT_TRUE(PluginErrors().empty());
}

TEST(Menus, NullNamesReachTheHostAsEmptyText) {
    MenuHost t;
    t.host.ClearCalls();
    TVPMMenuID menu = t.Create("alpha.tvp", std::string(), nullptr, 0, nullptr);
    static int cmd;
    RunAs("alpha.tvp", [menu] {
        TVPMAppendMenuItem(menu, nullptr, nullptr, 0);
        TVPMAppendMenuItemWithCommand(menu, nullptr, &cmd);
        TVPMSetMenuItemName(menu, 0, nullptr, 0);
        TVPMCreateMenu(nullptr, menu, 0, nullptr, nullptr);
    });
    for (const HostCall& c : t.host.Calls())
        for (const std::string& arg : c.args) EXPECT_NE(arg, "null") << c.slot;
    EXPECT_EQ(t.host.Count("TVPMCreateMenu_f"), 2u);
}

namespace {
TVPMMenuID s_pickedMenu = nullptr;
void DestroyPickedMenu(void*, void*) { TVPMDestroyMenu(s_pickedMenu); }
}  // namespace

TEST(Menus, AHandlerMayDestroyItsOwnMenuWhilePicked) {
    MenuHost t;
    s_pickedMenu = RunAs<TVPMMenuID>("alpha.tvp", [] {
        TVPMMenuID menu = TVPMCreateMenu("Once", nullptr, 0, DestroyPickedMenu, nullptr);
        TVPMAppendMenuItem(menu, "Close me", nullptr, 0);
        TVPMAppendMenuItem(menu, "Other", nullptr, 0);
        return menu;
    });
    const int closeMe = s_nextItem - 2;
    t.host.ClearCalls();
    EXPECT_EQ(TVPMMenuHook(closeMe), 0);
    EXPECT_EQ(t.host.Count("TVPMDestroyMenu_f"), 1u);
    EXPECT_EQ(t.host.Count("TVPMRemoveMenuItem_f"), 2u);
    EXPECT_EQ(TVPMMenuHook(closeMe), 1);
}
