// test_discovery.cpp: plugins are found, filtered, loaded, started and refused in a fixed order, with every outcome logged word for word.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"

using namespace tvpmtest;
using Discovery = SimTest;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace {

// The dynamic loader's own complaints about opening path, or about each
// symbol missing from it, as the log shows them.
std::string DlErrorLines(const std::string& path, std::initializer_list<const char*> symbols = {nullptr}) {
    std::string lines;
    for (const char* symbol : symbols) {
        dlerror();
        void* dll = dlopen(path.c_str(), RTLD_NOW);
        if (dll && symbol) dlsym(dll, symbol);
        const char* text = dlerror();
        lines += std::string("dlerror:") + (text ? text : "") + "\n";
        if (dll) dlclose(dll);
    }
    return lines;
}

std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

// The first argument of every call to slot, in order.
Lines FirstArgs(const FakeHost& host, const char* slot) {
    Lines out;
    for (const HostCall& c : host.CallsTo(slot)) out.push_back(c.args[0]);
    return out;
}

size_t TimesAsked(const FakeHost& host, const std::string& path) {
    const Lines asked = FirstArgs(host, "TVPMShouldLoadPlugin_f");
    return static_cast<size_t>(std::count(asked.begin(), asked.end(), Quoted(path)));
}

std::string Loaded(const std::string& path, const std::string& signature) {
    return "Loaded: " + path + " (" + signature + ").\n\n";
}

void SetSignature(const std::string& key, const std::string& signature) {
    Script(key).start = [signature](char*, char* sig, char*) {
        snprintf(sig, 256, "%s", signature.c_str());
        return 1;
    };
}

int s_loopCalls = 0;
float CountingLoop(float, float, int, void*) {
    ++s_loopCalls;
    return -1;
}

}  // namespace

// A fat folder may lay its library out in three ways, may be a link to a
// folder, and one with no library is passed over silently. A folder whose
// name ends in "dir" is listed twice: its second copy is a duplicate.
TEST_F(Discovery, PluginAdminThenLooseFilesInByteOrderThenFatFoldersWithoutFrameworks) {
    const std::string scripted = BuiltPlugin("scripted.tvp");
    const std::string admin = sim.AddFat("PluginAdmin", "lin_x64", scripted);
    const std::string fat0 = sim.AddFat("0fat", "64", scripted);
    const std::string b = sim.AddLoose("b.tvp", scripted);
    const std::string a = sim.AddLoose("a.tvp", scripted);
    const std::string z = sim.AddLoose("Z.tvp", scripted);  // upper case sorts first, byte-wise
    const std::string c = sim.AddLoose("c.TVP", scripted);  // the extension matches in any case
    sim.AddLoose("d.tvp.bak", scripted);
    const std::string fatC = sim.AddFat("c", "", scripted);
    const std::string navdir = sim.AddFat("navdir", "lin_x64", scripted);
    const std::string linked = sim.AddFat("linked", "", scripted);
    fs::rename(sim.PluginsDir() + "/linked", sim.Root() + "linked");
    fs::create_directory_symlink(sim.Root() + "linked", sim.PluginsDir() + "/linked");
    fs::create_symlink(sim.Root() + "gone", sim.PluginsDir() + "/gone");
    sim.MakeDir("Resources/plugins/hollow/lin_x64");
    const Lines filtered = {sim.AddLoose("myPluginAdminTool.tvp", scripted),
                            sim.AddFat("TVPM.framework", "lin_x64", scripted),
                            sim.AddFat("TVWidgets.framework", "", scripted),
                            sim.AddFat("OldPluginAdminBackup", "", scripted)};
    ASSERT_EQ(host.Start(sim.Root()), 23);

    const Lines order = {"PluginAdmin", "Z.tvp", "a.tvp", "b.tvp", "c.TVP", "0fat", "c", "linked", "navdir"};
    EXPECT_EQ(TVPMCountPlugins(), 10);
    for (size_t i = 0; i < order.size(); ++i)
        EXPECT_EQ(TVPMFindPluginBySignature(("test." + order[i]).c_str()), static_cast<int>(i + 1));
    // Filtered names are dropped before the host is even asked.
    for (const std::string& path : filtered) EXPECT_EQ(TimesAsked(host, path), 0u) << path;
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) + Loaded(admin, "test.PluginAdmin") +
                              Loaded(z, "test.Z.tvp") + Loaded(a, "test.a.tvp") + Loaded(b, "test.b.tvp") +
                              Loaded(c, "test.c.TVP") + Loaded(fat0, "test.0fat") + Loaded(fatC, "test.c") +
                              Loaded(linked, "test.linked") + Loaded(navdir, "test.navdir") + "Warning: " + navdir +
                              " Signature: test.navdir. (A version of this plugin is already loaded.)\n");
    // The first copy keeps running on the shared library.
    EXPECT_EQ(TVPMIsPluginEnabled(9), 1);
    EXPECT_TRUE(IsMapped(navdir));
    host.Shutdown();
    EXPECT_FALSE(IsMapped(navdir));
}

TEST_F(Discovery, EveryRefusalIsLoggedWordForWordAndLeavesNothingBehind) {
    const std::string scripted = BuiltPlugin("scripted.tvp");
    const std::string dir = sim.PluginsDir();
    const std::string good = sim.AddLoose("a_good.tvp", scripted);
    const std::string junk = sim.WriteFile("Resources/plugins/b_junk.tvp", "this is not a library");
    const std::string ghost = dir + "/c_ghost.tvp";
    fs::create_symlink(dir + "/nowhere.bin", ghost);
    const std::string noStart = sim.AddLoose("d_nostart.tvp", BuiltPlugin("no_start.tvp"));
    const std::string refuses = sim.AddLoose("e_refuses.tvp", scripted);
    const std::string dup = sim.AddLoose("f_dup.tvp", scripted);
    const std::string empty_sig = sim.AddLoose("h_empty.tvp", scripted);
    const std::string minimal = sim.AddLoose("i_minimal.tvp", BuiltPlugin("start_only.tvp"));
    const std::string fatNoStart = sim.AddFat("y_nostart", "64", BuiltPlugin("no_start.tvp"));
    const std::string fatJunk = sim.WriteFile("Resources/plugins/z_junk/lin_x64/z_junk.tvp", "junk");
    // What a refused plugin registered while starting goes with it.
    Script("e_refuses.tvp").start = [](char*, char*, char*) {
        TVPMRegisterFlightLoopCallback(CountingLoop, -1, nullptr);
        return 0;
    };
    SetSignature("f_dup.tvp", "test.a_good.tvp");
    static TVPMPluginID duplicateStoppedAs = -9;
    Script("f_dup.tvp").stop = [] { duplicateStoppedAs = TVPMGetMyID(); };
    SetSignature("h_empty.tvp", "");

    // Expected texts come from the dynamic loader itself, before anything loads.
    const std::string notADll =
        ".  (This file is missing, not a DLL or could not be loaded due to another missing DLL.)\n\n";
    const std::string noTPluginStart =
        ".  (This file is a loadable DLL but is missing the TPluginStart callback.)\n\n";
    const std::string already = ". (A version of this plugin is already loaded.)\n";
    std::string expected = Fetching(dir) + Loaded(good, "test.a_good.tvp");
    expected += DlErrorLines(junk) + "Failed: " + junk + notADll;
    expected += "Failed: " + ghost + notADll;
    expected += DlErrorLines(noStart, {"TPluginStart", "TPluginEnable", "TPluginDisable", "TPluginReceiveMessage"});
    expected += "Failed: " + noStart + noTPluginStart;
    expected += "Failed: " + refuses + ". (The plugin refused to start by returning 0 from TPluginStart.)\n\n";
    expected += "Warning: " + dup + " Signature: test.a_good.tvp" + already;
    expected += "Warning: " + empty_sig + " Signature: " + already;
    expected += DlErrorLines(minimal, {"TPluginStop", "TPluginEnable", "TPluginDisable", "TPluginReceiveMessage"});
    expected += Loaded(minimal, "test.start_only");
    expected += DlErrorLines(fatNoStart, {"TPluginStart", "TPluginEnable", "TPluginDisable", "TPluginReceiveMessage"});
    expected += "Failed: " + fatNoStart + noTPluginStart;
    // Inside a fat folder a bad library still gets its loader line, but no "Failed:".
    expected += DlErrorLines(fatJunk);

    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(host.Log(), expected);
    EXPECT_EQ(TVPMCountPlugins(), 3);
    EXPECT_EQ(TVPMIsPluginEnabled(TVPMFindPluginByPath(minimal.c_str())), 1);
    host.RunFrame();
    EXPECT_EQ(s_loopCalls, 0);

    // A refused start is not stopped; a refused duplicate is, as itself.
    EXPECT_EQ(JournalOf("e_refuses.tvp"), Lines{"e_refuses.tvp:start"});
    EXPECT_EQ(duplicateStoppedAs, 2);
    for (const char* key : {"f_dup.tvp", "h_empty.tvp"})
        EXPECT_EQ(JournalOf(key), (Lines{std::string(key) + ":start", std::string(key) + ":stop"}));
    for (const std::string& path : {noStart, refuses, dup, empty_sig, fatNoStart})
        EXPECT_FALSE(IsMapped(path)) << path;
}

TEST_F(Discovery, HostFilterIsAskedTwiceForLooseFilesAndEachLooseFileIsAnnounced) {
    const std::string scripted = BuiltPlugin("scripted.tvp");
    const std::string keep = sim.AddLoose("keep.tvp", scripted);
    const std::string skip = sim.AddLoose("skip.tvp", scripted);
    sim.WriteFile("Resources/plugins/two.tvp", "junk");
    const std::string fat = sim.AddFat("fat", "lin_x64", scripted);
    host.On<&TVPMHooks::TVPMShouldLoadPlugin_f>(
        [skip, fat](const char* path) { return path != skip && path != fat; });
    ASSERT_EQ(host.Start(sim.Root()), 23);

    EXPECT_EQ(TVPMCountPlugins(), 2);
    for (const auto& [path, times] : {std::pair{keep, 2u}, std::pair{skip, 1u}, std::pair{fat, 1u}})
        EXPECT_EQ(TimesAsked(host, path), times) << path;
    EXPECT_EQ(host.Log().find("skip.tvp"), std::string::npos);
    // Only loose files that passed the filter are announced, even one that then fails to load.
    EXPECT_EQ(FirstArgs(host, "TVPMDisplayInitString_f"),
              (Lines{Quoted("Loading Plugin: keep.tvp"), Quoted("Loading Plugin: two.tvp")}));
}

TEST_F(Discovery, WithoutAPluginFolderOnlyTheHostRecordStarts) {
    fs::remove_all(sim.PluginsDir());
    sim.WriteFile("Resources/plugins", "a file where the folder should be");
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMCountPlugins(), 1);
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()));
}
