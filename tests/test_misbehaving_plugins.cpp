// test_misbehaving_plugins.cpp: plugins that throw, overrun buffers, reload from deep inside callbacks or sit in odd files cannot crash or wedge the simulator.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "DisplayRig.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "data_test_util.h"

using namespace tvpmtest;
using Misbehaving = SimTest;
using Lines = std::vector<std::string>;

namespace {

bool Logged(const FakeHost& host, const std::string& text) { return host.Log().find(text) != std::string::npos; }

}  // namespace

// A plugin reloading the aircraft from a callback that disabling it makes
// (the focus-loss key callback) must not be written to afterwards, and its
// reloaded copy must not be disabled on its behalf.
TEST(MisbehavingDisplay, ReloadFromTheFocusLossCallbackOfAPluginBeingDisabled) {
    DisplayRig rig({"alpha.tvp"});
    rig.LoadAircraftWithPlugin("jet");
    static int reloads = 0;
    TVPMHandleKey_f reloadOnLosingFocus = [](TVPMWindowID, char, TVPMKeyFlags, char, void*, int losing) {
        if (losing && reloads++ == 0) TVPMReloadACFPlugins();
    };
    TVPMWindowID window = rig.Window("jet", 0, 100, 100, 0, nullptr, reloadOnLosingFocus);
    rig.As("jet", [&] { TVPMTakeKeyboardFocus(window); });
    const size_t mark = Journal().size();
    TVPMDisablePlugin(IdOf("jet"));
    EXPECT_EQ(reloads, 1);
    EXPECT_EQ(Lines(Journal().begin() + static_cast<long>(mark), Journal().end()),
              (Lines{"jet:disable", "jet:stop", "jet:start", "jet:enable"}));
    EXPECT_EQ(TVPMIsPluginEnabled(IdOf("jet")), 1);
}

// A plugin three levels down the dispatch stack unloads all three; none of
// their libraries may go before their code has returned.
TEST_F(Misbehaving, LibrariesStayMappedWhileTheirCodeIsOnTheStack) {
    const std::string acf = sim.AddAircraft("Jet", {"a", "b", "c"}, BuiltPlugin("scripted.tvp"));
    static std::string folder;
    folder = acf.substr(0, acf.rfind('/')) + "/plugins/";
    host.userAircraftPath = acf;
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    // Message 7777 travels a -> b -> c; c reloads the aircraft, which loads nothing back.
    static bool mappedAfterReload = false;
    for (const auto& [key, next] : {std::pair<std::string, std::string>{"a", "b"}, {"b", "c"}, {"c", ""}})
        Script(key).message = [this, next = next](TVPMPluginID, int message, void*) {
            if (message != 7777) return;
            if (!next.empty()) return TVPMSendMessageToPlugin(IdOf(next), 7777, nullptr);
            host.userAircraftPath = "no-folder.acf";
            TVPMReloadACFPlugins();
            mappedAfterReload = IsMapped(folder + "a/lin_x64/a.tvp");
        };
    TVPMSendMessageToPlugin(IdOf("a"), 7777, nullptr);
    EXPECT_TRUE(mappedAfterReload);
    EXPECT_EQ(IdOf("a"), TVPM_NO_PLUGIN_ID);
    host.RunFrame();
    for (const char* key : {"a", "b", "c"})
        EXPECT_FALSE(IsMapped(folder + key + "/lin_x64/" + key + ".tvp")) << key;
}

// Overlong texts from TPluginStart land in the guard area, are reported
// under the plugin's name and are cut to 255 characters.
TEST_F(Misbehaving, StartTextsWrittenPastTheirBuffersAreCutAndReported) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    Script("alpha.tvp").start = [](char* name, char* signature, char* description) {
        for (char* text : {name, signature, description}) {
            memset(text, 'x', 400);
            text[400] = 0;
        }
        return 1;
    };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    for (const char* buffer : {"name", "signature", "description"})
        EXPECT_TRUE(Logged(host, std::string("[alpha.tvp]: buffer overrun: TPluginStart wrote past the end of the "
                                             "256-byte ") + buffer + " buffer; the text was cut to 255 characters.\n"))
            << buffer;
    char name[256] = "", signature[256] = "";
    TVPMGetPluginInfo(1, name, nullptr, signature, nullptr);
    EXPECT_EQ(std::string(name), std::string(255, 'x'));
    EXPECT_EQ(std::string(signature), std::string(255, 'x'));
    EXPECT_EQ(TVPMIsPluginEnabled(IdOf("beta.tvp")), 1);
}

TEST_F(Misbehaving, SharedDataRefusesToGrowPastItsLimit) {
    AddScripted({"alpha.tvp"});
    ReportErrorsOf("alpha.tvp");
    ASSERT_EQ(host.Start(sim.Root()), 23);
    constexpr int kLimitItems = TVPM_SHARED_DATA_MAX_BYTES / 4;
    const struct {
        int offset, count, itemsAfter;
        bool refused;
    } kWrites[] = {
        {2, 3, 5, false},                          // the ordinary growth rule
        {kLimitItems - 1, 1, kLimitItems, false},  // right up to the limit
        {kLimitItems, 1, kLimitItems, true},
        {INT_MAX / 4, 0, kLimitItems, true},
        {INT_MAX - 1, 1, kLimitItems, true},
    };
    RunAs("alpha.tvp", [&] {
        ASSERT_EQ(TVPMShareData("test/shared/ints", tvpmType_IntArray, nullptr, nullptr), 1);
        TVPMDataRef ref = TVPMFindDataRef("test/shared/ints");
        int values[3] = {1, 2, 3};
        for (const auto& w : kWrites) {
            PluginErrors().clear();
            TVPMSetDatavi(ref, w.count ? values : nullptr, w.offset, w.count);
            EXPECT_EQ(TVPMGetDatavi(ref, nullptr, 0, 0), w.itemsAfter) << w.offset;
            EXPECT_EQ(PluginErrors(), w.refused ? Lines{"1:Shared data cannot grow past 16 MB; the write was refused."}
                                                : Lines{})
                << w.offset;
        }
    });
}

// Things in the plugins folder named like plugins but not regular files are
// never opened (a named pipe would block the open for ever).
TEST_F(Misbehaving, OnlyRegularFilesAreOpenedAsPlugins) {
    AddScripted({"alpha.tvp"});
    const std::string dir = sim.PluginsDir() + "/";
    ASSERT_EQ(mkfifo((dir + "pipe.tvp").c_str(), 0600), 0);
    int sock = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "%s", (dir + "sock.tvp").c_str());
    ASSERT_EQ(bind(sock, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(symlink("/dev/null", (dir + "device.tvp").c_str()), 0);
    ASSERT_EQ(host.Start(sim.Root()), 23);
    close(sock);
    for (const auto& [file, what] : {std::pair<const char*, const char*>{"pipe.tvp", "a named pipe"},
                                     {"sock.tvp", "a socket"}, {"device.tvp", "a device"}})
        EXPECT_TRUE(Logged(host, "Failed: " + dir + file + ".  (This is " + what + ", not a plugin file; it was "
                                 "not opened.)\n\n")) << file;
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(TVPMIsPluginEnabled(IdOf("alpha.tvp")), 1);
}

// A throw from an entry point counts as that entry point failing, one from a
// callback as its neutral answer; each is logged once per plugin and site, and
// the loader and the simulator carry on.
TEST_F(Misbehaving, AThrowCountsAsTheCallsFailureOrNeutralAnswerAndIsLoggedOncePerSite) {
    static TVPMCommandRef const kThrowCommand = reinterpret_cast<TVPMCommandRef>(0x7001);
    static int nextItem = 1000;
    host.On<&TVPMHooks::TVPMFindCreateCommand_f>([](const char*, const char*, int) { return kThrowCommand; });
    host.On<&TVPMHooks::TVPMAppendMenu_f>([](intptr_t, const char*) { return nextItem++; });
    AddScripted({"alpha.tvp", "beta.tvp", "gamma.tvp"});
    static TVPMPluginID currentAfterStart = -9;
    Script("alpha.tvp").start = [](char*, char*, char*) -> int { throw std::runtime_error("no start"); };
    Script("beta.tvp").enable = []() -> int { throw 7; };
    Script("beta.tvp").stop = [] { throw std::runtime_error("no stop"); };
    Script("gamma.tvp").start = [](char*, char*, char*) {
        currentAfterStart = TVPMGetMyID();
        return 1;
    };
    Script("gamma.tvp").enable = [] {
        TVPMRegisterDrawCallback([](TVPMDrawingPhase, int, void*) -> int { throw std::runtime_error("draw"); },
                                 tvpm_Phase_FirstScene, 1, nullptr);
        TVPMMenuID menu = TVPMCreateMenu("Thrower", nullptr, 0, [](void*, void*) { throw std::logic_error("menu"); },
                                         nullptr);
        TVPMAppendMenuItem(menu, "Throw", nullptr, 0);
        TVPMRegisterCommandHandler(TVPMFindCommand("test/throw"),
                                   [](TVPMCommandRef, TVPMCommandPhase, void*) -> int { throw 42; }, 1, nullptr);
        return 1;
    };
    Script("gamma.tvp").disable = [] { throw std::runtime_error("no disable"); };
    Script("gamma.tvp").message = [](TVPMPluginID, int, void*) { throw std::runtime_error("no message"); };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(TVPMCountPlugins(), 3);  // alpha refused, like a 0 from TPluginStart
    EXPECT_EQ(currentAfterStart, 2);
    EXPECT_EQ(TVPMIsPluginEnabled(IdOf("beta.tvp")), 0);  // like a 0 from TPluginEnable
    const int throwItem = nextItem - 1;  // after the menu's own entry in the Plugins menu
    const struct {
        const char* site;
        std::function<int()> drive;
        int neutralAnswer;
    } kCallbacks[] = {
        {"draw callback (draw)", [] { return TVPMDoDrawingHook(1, 0, nullptr); }, 1},
        {"menu handler (menu)", [&] { return TVPMMenuHook(throwItem); }, 0},
        {"command handler (not a std::exception)", [] { return TVPMCommandHook(kThrowCommand, 1, 0, 1); }, 1},
        {"TPluginReceiveMessage (no message)", [] { return TVPMEventHook(tvpm_AirportLoaded, 0, 0, 0, 0); }, 1},
    };
    for (const auto& c : kCallbacks) {
        for (int round = 0; round < 2; ++round) EXPECT_EQ(c.drive(), c.neutralAnswer) << c.site;
        EXPECT_EQ(datatest::Occurrences(host.Log(), std::string("[gamma.tvp]: a C++ exception escaped from its ") +
                                                        c.site), 1u) << c.site;
    }
    EXPECT_EQ(TVPMIsPluginEnabled(IdOf("gamma.tvp")), 1);
    host.RunFrame();
    TVPMDisablePlugin(IdOf("gamma.tvp"));
    EXPECT_EQ(TVPMIsPluginEnabled(IdOf("gamma.tvp")), 0);
    EXPECT_EQ(TVPMGetMyID(), 0);
    host.Shutdown();
    for (const char* line : {"[alpha.tvp]: a C++ exception escaped from its TPluginStart (no start)",
                             "[beta.tvp]: a C++ exception escaped from its TPluginEnable (not a std::exception)",
                             "[beta.tvp]: a C++ exception escaped from its TPluginStop (no stop)",
                             "[gamma.tvp]: a C++ exception escaped from its TPluginDisable (no disable)"})
        EXPECT_TRUE(Logged(host, line)) << line;
    EXPECT_EQ(datatest::Occurrences(host.Log(), "a C++ exception escaped"), 8u);
    EXPECT_TRUE(Logged(host, "Failed: " + sim.PluginsDir() + "/alpha.tvp. (The plugin refused to start by returning 0"));
}

// What a TPluginEnable may do at start-up it may also do during a full
// reload: reload the aircraft plugins, or have the simulator load scenery.
TEST_F(Misbehaving, EnablingDuringAReloadAllowsWhatStartUpAllows) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"jet"}, BuiltPlugin("scripted.tvp"));
    static std::string pack;
    pack = sim.AddSceneryPack("Town", {"town"}, BuiltPlugin("scripted.tvp"));
    Script("alpha.tvp").enable = [] {
        TVPMReloadACFPlugins();
        TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0);
        return 1;
    };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    for (const char* when : {"at start-up", "after a reload"}) {
        SCOPED_TRACE(when);
        EXPECT_EQ(TVPMIsPluginEnabled(IdOf("jet")), 1);
        EXPECT_EQ(TVPMIsPluginEnabled(IdOf("town")), 1);
        EXPECT_FALSE(Logged(host, "ignored"));
        TVPMReloadPlugins();
        host.RunFrame();
    }
}
