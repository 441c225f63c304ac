// test_discovery.cpp: plugins are found, filtered, loaded, started and refused in a fixed order, with every outcome logged word for word.
#include <dlfcn.h>
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;
namespace fs = std::filesystem;

namespace {

// The dynamic loader's own complaint about opening path, or about the symbol
// missing from it (empty when there is none).
std::string LoaderError(const std::string& path, const char* symbol = nullptr) {
    dlerror();
    void* dll = dlopen(path.c_str(), RTLD_NOW);
    if (!dll) {
        const char* e = dlerror();
        return e ? e : "";
    }
    std::string text;
    if (symbol && !dlsym(dll, symbol)) {
        const char* e = dlerror();
        text = e ? e : "";
    }
    dlclose(dll);
    return text;
}

std::string DlErrorLine(const std::string& path, const char* symbol = nullptr) {
    return "dlerror:" + LoaderError(path, symbol) + "\n";
}

// True while the library at path is mapped into the process.
bool IsMapped(const std::string& path) {
    void* dll = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (dll) dlclose(dll);
    return dll != nullptr;
}

std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

size_t TimesAsked(const FakeHost& host, const std::string& path) {
    size_t n = 0;
    for (const HostCall& c : host.CallsTo("TVPMShouldLoadPlugin_f")) n += c.args[0] == Quoted(path);
    return n;
}

std::vector<std::string> Starts() {
    std::vector<std::string> out;
    for (const std::string& line : Journal())
        if (line.size() > 6 && line.compare(line.size() - 6, 6, ":start") == 0)
            out.push_back(line.substr(0, line.size() - 6));
    return out;
}

std::string Loaded(const std::string& path, const std::string& signature) {
    return "Loaded: " + path + " (" + signature + ").\n\n";
}

std::string Fetching(const std::string& folder) {
    return "Fetching plugins for " + folder + "\n\n";
}

void SetSignature(const std::string& key, const std::string& signature) {
    Script(key).start = [signature](char*, char* sig, char*) {
        snprintf(sig, 256, "%s", signature.c_str());
        return 1;
    };
}

}  // namespace

TEST(Discovery, LooseFilesLoadInByteOrderBeforeFatFolders) {
    FakeHost host;
    SimFolder sim;
    const std::string scripted = BuiltPlugin("scripted.tvp");
    sim.AddFat("0fat", "lin_x64", scripted);
    sim.AddLoose("b.tvp", scripted);
    sim.AddLoose("a.tvp", scripted);
    sim.AddLoose("Z.tvp", scripted);  // upper case sorts before lower case, byte-wise
    sim.AddLoose("c.TVP", scripted);  // the extension matches in any case
    sim.AddLoose("d.tvp.bak", scripted);
    sim.AddFat("c", "lin_x64", scripted);
    ASSERT_EQ(host.Start(sim.Root()), 23);

    EXPECT_EQ(Starts(),
              (std::vector<std::string>{"Z.tvp", "a.tvp", "b.tvp", "c.TVP", "0fat", "c"}));
    EXPECT_EQ(TVPMCountPlugins(), 7);
    EXPECT_EQ(TVPMFindPluginBySignature("test.Z.tvp"), 1);
    EXPECT_EQ(TVPMFindPluginBySignature("test.a.tvp"), 2);
    EXPECT_EQ(TVPMFindPluginBySignature("test.b.tvp"), 3);
    EXPECT_EQ(TVPMFindPluginBySignature("test.c.TVP"), 4);
    EXPECT_EQ(TVPMFindPluginBySignature("test.0fat"), 5);
    EXPECT_EQ(TVPMFindPluginBySignature("test.c"), 6);
    EXPECT_EQ(TVPMFindPluginBySignature("norvel.torvane.torvane"), 0);
    host.Shutdown();
}

TEST(Discovery, PluginAdminComesFirstAndFrameworksAreNeverLoaded) {
    FakeHost host;
    SimFolder sim;
    const std::string scripted = BuiltPlugin("scripted.tvp");
    sim.AddLoose("a.tvp", scripted);
    const std::string tool = sim.AddLoose("myPluginAdminTool.tvp", scripted);
    sim.AddFat("PluginAdmin", "lin_x64", scripted);
    const std::string tvpm = sim.AddFat("TVPM.framework", "lin_x64", scripted);
    const std::string widgets = sim.AddFat("TVWidgets.framework", "", scripted);
    const std::string adminCopy = sim.AddFat("OldPluginAdminBackup", "", scripted);
    ASSERT_EQ(host.Start(sim.Root()), 23);

    EXPECT_EQ(Starts(), (std::vector<std::string>{"PluginAdmin", "a.tvp"}));
    EXPECT_EQ(TVPMFindPluginBySignature("test.PluginAdmin"), 1);
    // Filtered names are dropped before the host is even asked.
    EXPECT_EQ(TimesAsked(host, tool), 0u);
    EXPECT_EQ(TimesAsked(host, tvpm), 0u);
    EXPECT_EQ(TimesAsked(host, widgets), 0u);
    EXPECT_EQ(TimesAsked(host, adminCopy), 0u);
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) +
                              Loaded(sim.PluginsDir() + "/PluginAdmin/lin_x64/PluginAdmin.tvp",
                                     "test.PluginAdmin") +
                              Loaded(sim.PluginsDir() + "/a.tvp", "test.a.tvp"));
    host.Shutdown();
}

TEST(Discovery, FatFoldersProbeThreeLayoutsSilently) {
    FakeHost host;
    SimFolder sim;
    const std::string scripted = BuiltPlugin("scripted.tvp");
    const std::string x64 = sim.AddFat("alpha", "lin_x64", scripted);
    const std::string sixtyFour = sim.AddFat("beta", "64", scripted);
    const std::string plain = sim.AddFat("gamma", "", scripted);
    sim.MakeDir("Resources/plugins/hollow/lin_x64");
    ASSERT_EQ(host.Start(sim.Root()), 23);

    EXPECT_EQ(Starts(), (std::vector<std::string>{"alpha", "beta", "gamma"}));
    EXPECT_EQ(TVPMCountPlugins(), 4);
    // The failed probes write nothing: the log is the fetch line and three loads.
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) + Loaded(x64, "test.alpha") +
                              Loaded(sixtyFour, "test.beta") + Loaded(plain, "test.gamma"));
    const std::string dir = sim.PluginsDir();
    std::vector<std::string> asked;
    for (const HostCall& c : host.CallsTo("TVPMShouldLoadPlugin_f")) asked.push_back(c.args[0]);
    EXPECT_EQ(asked, (std::vector<std::string>{
                         Quoted(dir + "/PluginAdmin/lin_x64/PluginAdmin.tvp"),
                         Quoted(dir + "/PluginAdmin/64/lin.tvp"),
                         Quoted(dir + "/PluginAdmin/lin.tvp"),
                         Quoted(x64),
                         Quoted(dir + "/beta/lin_x64/beta.tvp"),
                         Quoted(sixtyFour),
                         Quoted(dir + "/gamma/lin_x64/gamma.tvp"),
                         Quoted(dir + "/gamma/64/lin.tvp"),
                         Quoted(plain),
                         Quoted(dir + "/hollow/lin_x64/hollow.tvp"),
                         Quoted(dir + "/hollow/64/lin.tvp"),
                         Quoted(dir + "/hollow/lin.tvp"),
                     }));
    host.Shutdown();
}

TEST(Discovery, EveryRefusalIsLoggedWordForWordAndLeavesNothingBehind) {
    FakeHost host;
    SimFolder sim;
    const std::string scripted = BuiltPlugin("scripted.tvp");
    const std::string dir = sim.PluginsDir();
    const std::string good = sim.AddLoose("a_good.tvp", scripted);
    const std::string junk = sim.WriteFile("Resources/plugins/b_junk.tvp", "this is not a library");
    const std::string ghost = dir + "/c_ghost.tvp";
    fs::create_symlink(dir + "/nowhere.bin", ghost);
    const std::string noStart = sim.AddLoose("d_nostart.tvp", BuiltPlugin("no_start.tvp"));
    const std::string refuses = sim.AddLoose("e_refuses.tvp", scripted);
    const std::string dup = sim.AddLoose("f_dup.tvp", scripted);
    const std::string host_sig = sim.AddLoose("g_host.tvp", scripted);
    const std::string empty_sig = sim.AddLoose("h_empty.tvp", scripted);
    const std::string minimal = sim.AddLoose("i_minimal.tvp", BuiltPlugin("start_only.tvp"));
    const std::string fatNoStart = sim.AddFat("y_nostart", "64", BuiltPlugin("no_start.tvp"));
    const std::string fatJunk =
        sim.WriteFile("Resources/plugins/z_junk/lin_x64/z_junk.tvp", "junk");
    Script("e_refuses.tvp").start = [](char*, char*, char*) { return 0; };
    SetSignature("f_dup.tvp", "test.a_good.tvp");
    SetSignature("g_host.tvp", "norvel.torvane.torvane");
    SetSignature("h_empty.tvp", "");

    // Expected texts come from the dynamic loader itself, before anything loads.
    std::string expected = Fetching(dir) + Loaded(good, "test.a_good.tvp");
    expected += DlErrorLine(junk) + "Failed: " + junk +
                ".  (This file is missing, not a DLL or could not be loaded due to another missing "
                "DLL.)\n\n";
    expected += "Failed: " + ghost +
                ".  (This file is missing, not a DLL or could not be loaded due to another missing "
                "DLL.)\n\n";
    for (const char* symbol :
         {"TPluginStart", "TPluginEnable", "TPluginDisable", "TPluginReceiveMessage"})
        expected += DlErrorLine(noStart, symbol);
    expected += "Failed: " + noStart +
                ".  (This file is a loadable DLL but is missing the TPluginStart callback.)\n\n";
    expected += "Failed: " + refuses +
                ". (The plugin refused to start by returning 0 from TPluginStart.)\n\n";
    expected += "Warning: " + dup +
                " Signature: test.a_good.tvp. (A version of this plugin is already loaded.)\n";
    expected +=
        "Warning: " + host_sig +
        " Signature: norvel.torvane.torvane. (A version of this plugin is already loaded.)\n";
    expected +=
        "Warning: " + empty_sig + " Signature: . (A version of this plugin is already loaded.)\n";
    for (const char* symbol :
         {"TPluginStop", "TPluginEnable", "TPluginDisable", "TPluginReceiveMessage"})
        expected += DlErrorLine(minimal, symbol);
    expected += Loaded(minimal, "test.start_only");
    for (const char* symbol :
         {"TPluginStart", "TPluginEnable", "TPluginDisable", "TPluginReceiveMessage"})
        expected += DlErrorLine(fatNoStart, symbol);
    expected += "Failed: " + fatNoStart +
                ".  (This file is a loadable DLL but is missing the TPluginStart callback.)\n\n";
    // Inside a fat folder a bad library still gets its loader line, but no "Failed:".
    expected += DlErrorLine(fatJunk);

    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(host.Log(), expected);
    EXPECT_EQ(TVPMCountPlugins(), 3);
    EXPECT_EQ(TVPMFindPluginByPath(good.c_str()), 1);
    EXPECT_EQ(TVPMFindPluginByPath(minimal.c_str()), 2);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 1);
    EXPECT_EQ(TVPMIsPluginEnabled(2), 1);

    // A refused start is not stopped; a refused duplicate is.
    EXPECT_EQ(JournalOf("e_refuses.tvp"), (std::vector<std::string>{"e_refuses.tvp:start"}));
    for (const char* key : {"f_dup.tvp", "g_host.tvp", "h_empty.tvp"})
        EXPECT_EQ(JournalOf(key), (std::vector<std::string>{std::string(key) + ":start",
                                                            std::string(key) + ":stop"}));
    for (const std::string& path : {noStart, refuses, dup, host_sig, empty_sig, fatNoStart})
        EXPECT_FALSE(IsMapped(path)) << path;
    EXPECT_TRUE(IsMapped(good));
    EXPECT_TRUE(IsMapped(minimal));

    host.Shutdown();
    EXPECT_EQ(TVPMCountPlugins(), 0);
    EXPECT_FALSE(IsMapped(good));
    EXPECT_FALSE(IsMapped(minimal));
}

TEST(Discovery, HostFilterIsAskedTwiceForLooseFilesAndFalseSkipsSilently) {
    FakeHost host;
    SimFolder sim;
    const std::string scripted = BuiltPlugin("scripted.tvp");
    const std::string keep = sim.AddLoose("keep.tvp", scripted);
    const std::string skip = sim.AddLoose("skip.tvp", scripted);
    const std::string fat = sim.AddFat("fat", "lin_x64", scripted);
    host.On<&TVPMHooks::TVPMShouldLoadPlugin_f>([skip, fat](const char* path) {
        return std::string(path) != skip && std::string(path) != fat;
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);

    EXPECT_EQ(Starts(), (std::vector<std::string>{"keep.tvp"}));
    EXPECT_EQ(TimesAsked(host, keep), 2u);
    EXPECT_EQ(TimesAsked(host, skip), 1u);
    EXPECT_EQ(TimesAsked(host, fat), 1u);
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) + Loaded(keep, "test.keep.tvp"));
    // Only a loose file that passed the filter is announced on the start-up screen.
    std::vector<std::string> shown;
    for (const HostCall& c : host.CallsTo("TVPMDisplayInitString_f")) shown.push_back(c.args[0]);
    EXPECT_EQ(shown, (std::vector<std::string>{Quoted("Loading Plugin: keep.tvp")}));
    host.Shutdown();
}

TEST(Discovery, StartUpScreenNamesEachLooseFileEvenOneThatFailsToLoad) {
    FakeHost host;
    SimFolder sim;
    sim.AddLoose("one.tvp", BuiltPlugin("scripted.tvp"));
    sim.WriteFile("Resources/plugins/two.tvp", "junk");
    sim.AddFat("three", "lin_x64", BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    std::vector<std::string> shown;
    for (const HostCall& c : host.CallsTo("TVPMDisplayInitString_f")) shown.push_back(c.args[0]);
    EXPECT_EQ(shown, (std::vector<std::string>{Quoted("Loading Plugin: one.tvp"),
                                               Quoted("Loading Plugin: two.tvp")}));
    host.Shutdown();
}

TEST(Discovery, TPluginStartRunsAsTheNewPluginWithAProvisionalRecord) {
    FakeHost host;
    SimFolder sim;
    sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
    sim.AddFat("beta", "lin_x64", BuiltPlugin("scripted.tvp"));
    struct Seen {
        TVPMPluginID me = -9;
        int count = 0;
        std::string name, signature, path;
    };
    static Seen alpha, beta;
    auto look = [](Seen& seen) {
        return [&seen](char* name, char*, char*) {
            seen.me = TVPMGetMyID();
            seen.count = TVPMCountPlugins();
            char n[256], p[256], s[256];
            TVPMGetPluginInfo(seen.me, n, p, s, nullptr);
            seen.name = n;
            seen.path = p;
            seen.signature = s;
            snprintf(name, 256, "Pretty Name");
            return 1;
        };
    };
    Script("alpha.tvp").start = look(alpha);
    Script("beta").start = look(beta);
    ASSERT_EQ(host.Start(sim.Root()), 23);

    EXPECT_EQ(alpha.me, 1);
    EXPECT_EQ(alpha.count, 2);
    EXPECT_EQ(alpha.name, "alpha.tvp");  // the path after "plugins/" until TPluginStart returns
    EXPECT_EQ(alpha.signature, "");
    EXPECT_EQ(alpha.path, sim.PluginsDir() + "/alpha.tvp");
    EXPECT_EQ(beta.me, 2);
    EXPECT_EQ(beta.name, "beta/lin_x64/beta.tvp");
    EXPECT_EQ(TVPMGetMyID(), 0);
    char name[256];
    TVPMGetPluginInfo(1, name, nullptr, nullptr, nullptr);
    EXPECT_STREQ(name, "Pretty Name");
    host.Shutdown();
}

TEST(Discovery, FolderEndingInDirIsListedTwiceAndItsSecondCopyIsADuplicate) {
    FakeHost host;
    SimFolder sim;
    const std::string path = sim.AddFat("navdir", "lin_x64", BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) + Loaded(path, "test.navdir") +
                              "Warning: " + path +
                              " Signature: test.navdir. (A version of this plugin is already "
                              "loaded.)\n");
    // The first copy keeps running on the shared library.
    EXPECT_EQ(TVPMIsPluginEnabled(1), 1);
    EXPECT_TRUE(IsMapped(path));
    host.Shutdown();
    EXPECT_FALSE(IsMapped(path));
}

TEST(Discovery, MissingOrUnreadablePluginFolderLoadsNothing) {
    FakeHost host;
    SimFolder sim;
    sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
    const std::string dir = sim.PluginsDir();
    ASSERT_EQ(chmod(dir.c_str(), 0), 0);
    if (DIR* d = opendir(dir.c_str())) {  // running as root: permissions do not bite
        closedir(d);
        chmod(dir.c_str(), 0755);
        GTEST_SKIP() << "the plugin folder stays readable for this user";
    }
    const int started = host.Start(sim.Root());
    chmod(dir.c_str(), 0755);
    EXPECT_EQ(started, 23);
    EXPECT_EQ(TVPMCountPlugins(), 1);
    EXPECT_TRUE(Journal().empty());
    EXPECT_EQ(host.Log(), Fetching(dir));
    host.Shutdown();
}

TEST(Discovery, NoPluginFolderAtAllStillStartsTheHostRecord) {
    FakeHost host;
    SimFolder sim;
    fs::remove_all(sim.PluginsDir());
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMCountPlugins(), 1);
    EXPECT_EQ(TVPMIsPluginEnabled(0), 1);
    char name[256], sig[256], desc[256], path[256] = "x";
    TVPMGetPluginInfo(0, name, path, sig, desc);
    EXPECT_STREQ(name, "Torvane");
    EXPECT_STREQ(sig, "norvel.torvane.torvane");
    EXPECT_STREQ(desc, "Torvane flight simulator");
    EXPECT_STREQ(path, "");
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()));
    host.Shutdown();
}

TEST(Discovery, PluginFolderThatIsNotAFolderLoadsNothing) {
    FakeHost host;
    SimFolder sim;
    fs::remove_all(sim.PluginsDir());
    sim.WriteFile("Resources/plugins", "a file where the folder should be");
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMCountPlugins(), 1);
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()));
    host.Shutdown();
}

TEST(Discovery, SceneryPluginThatRefusesToStartLeavesTheOthersRunning) {
    FakeHost host;
    SimFolder sim;
    const std::string pack =
        sim.AddSceneryPack("City", {"a", "b", "c"}, BuiltPlugin("scripted.tvp"));
    Script("b").start = [](char*, char*, char*) { return 0; };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    Journal().clear();
    TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0);
    EXPECT_EQ(Journal(),
              (std::vector<std::string>{"a:start", "b:start", "c:start", "a:enable", "c:enable"}));
    EXPECT_EQ(host.Log(),
              Fetching(pack + "plugins") + Loaded(pack + "plugins/a/lin_x64/a.tvp", "test.a") +
                  "Failed: " + pack +
                  "plugins/b/lin_x64/b.tvp. (The plugin refused to start by returning 0 "
                  "from TPluginStart.)\n\n" +
                  Loaded(pack + "plugins/c/lin_x64/c.tvp", "test.c"));
    EXPECT_EQ(TVPMFindPluginBySignature("test.c"), 2);
    EXPECT_FALSE(IsMapped(pack + "plugins/b/lin_x64/b.tvp"));
    host.Shutdown();
}
