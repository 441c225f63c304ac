// test_lifecycle.cpp: plugins are enabled, disabled, unloaded and reloaded, including aircraft and scenery plugins.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"

using namespace tvpmtest;
using Lifecycle = SimTest;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace {

// Makes key run action whenever it receives message 7777.
void OnPoke(const std::string& key, std::function<void()> action) {
    Script(key).message = [action](TVPMPluginID, int message, void*) {
        if (message == 7777) action();
    };
}
void Poke(const std::string& key) { TVPMSendMessageToPlugin(IdOf(key), 7777, nullptr); }

std::string Loaded(const std::string& path, const std::string& signature) {
    return "Loaded: " + path + " (" + signature + ").\n\n";
}

}  // namespace

TEST_F(Lifecycle, EnableAndDisableSemantics) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    static int enabledInsideEnable = -1, enabledInsideDisable = -1, meInsideDisable = -1;
    Script("alpha.tvp").enable = [] {
        enabledInsideEnable = TVPMIsPluginEnabled(TVPMGetMyID());
        return 1;
    };
    Script("alpha.tvp").disable = [] {
        meInsideDisable = TVPMGetMyID();
        enabledInsideDisable = TVPMIsPluginEnabled(TVPMGetMyID());
    };
    Script("beta.tvp").enable = [] { return 0; };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(enabledInsideEnable, 1);

    // The host's record is always on and cannot be switched; bad IDs are refused.
    for (TVPMPluginID id : {0, -1, -7, 3, 99}) {
        EXPECT_EQ(TVPMEnablePlugin(id), 0) << id;
        TVPMDisablePlugin(id);
        EXPECT_EQ(TVPMIsPluginEnabled(id), id == 0 ? 1 : 0) << id;
    }

    // A plugin that declines stays loaded and off, is asked again, and misses messages.
    EXPECT_EQ(TVPMIsPluginEnabled(2), 0);
    EXPECT_EQ(TVPMEnablePlugin(2), 0);
    EXPECT_EQ(JournalOf("beta.tvp"), (Lines{"beta.tvp:start", "beta.tvp:enable", "beta.tvp:enable"}));
    TVPMSendMessageToPlugin(-1, 555, nullptr);
    EXPECT_EQ(JournalOf("beta.tvp:message").size(), 0u);
    EXPECT_EQ(JournalOf("alpha.tvp:message"), (Lines{"alpha.tvp:message 555 from 0"}));

    Journal().clear();
    TVPMDisablePlugin(1);
    TVPMDisablePlugin(1);  // a no-op
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:disable"}));
    EXPECT_EQ(meInsideDisable, 1);
    EXPECT_EQ(enabledInsideDisable, 0);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);  // already on: TPluginEnable is not called again
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:disable", "alpha.tvp:enable"}));

    // Shut-down disables what is on, then stops everything.
    Journal().clear();
    host.Shutdown();
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:disable", "alpha.tvp:stop", "beta.tvp:stop"}));
}

TEST_F(Lifecycle, PluginDisablesItselfFromItsOwnCallback) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    static TVPMPluginID meAfter = -9;
    OnPoke("alpha.tvp", [] {
        TVPMDisablePlugin(TVPMGetMyID());
        meAfter = TVPMGetMyID();
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    Journal().clear();
    Poke("alpha.tvp");
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message 7777 from 0", "alpha.tvp:disable"}));
    EXPECT_EQ(meAfter, 1);
    TVPMSendMessageToPlugin(-1, 556, nullptr);
    EXPECT_EQ(Journal().back(), "beta.tvp:message 556 from 0");
    EXPECT_EQ(JournalOf("alpha.tvp:message 556").size(), 0u);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
}

TEST_F(Lifecycle, AircraftPluginsComeAndGoWithTheUserAircraft) {
    AddScripted({"alpha.tvp"});
    const std::string acf = sim.AddAircraft("Jet", {"wx", "fms"}, BuiltPlugin("scripted.tvp"));
    const std::string acfPlugins = sim.Root() + "Aircraft/Jet/plugins";
    fs::copy_file(BuiltPlugin("scripted.tvp"), acfPlugins + "/loose.tvp");
    host.userAircraftPath = acf;
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMCountPlugins(), 2);  // aircraft plugins wait for the aircraft

    // Another aircraft than the user's: only the message.
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 2, 0), 1);
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message 102 from 0"}));

    host.ClearCalls();
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(Journal(),
              (Lines{"alpha.tvp:message 102 from 0", "fms:start", "wx:start", "fms:enable", "wx:enable"}));
    const std::string fmsPath = acfPlugins + "/fms/lin_x64/fms.tvp";
    EXPECT_EQ(host.Log(), Fetching(acfPlugins) + Loaded(fmsPath, "test.fms") +
                              Loaded(acfPlugins + "/wx/lin_x64/wx.tvp", "test.wx"));
    EXPECT_TRUE(IsMapped(fmsPath));

    // Aircraft plugins hear about the unload before they are switched off.
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message 106 from 0", "fms:message 106 from 0",
                                         "wx:message 106 from 0", "fms:disable", "wx:disable", "fms:stop", "wx:stop"}));
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_FALSE(IsMapped(fmsPath));

    // Unloading another aircraft leaves the plugins alone.
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 1, 0);
    EXPECT_EQ(TVPMCountPlugins(), 4);
}

// An aircraft reload runs at once; a full reload, even asked twice from inside
// a callback, runs once at the end of the next flight-loop pass.
TEST_F(Lifecycle, ReloadsRestartTheAircraftPluginsAtOnceOrAllPluginsAfterTheFrame) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms", "wx"}, BuiltPlugin("scripted.tvp"));
    OnPoke("alpha.tvp", [] {
        TVPMReloadPlugins();
        TVPMReloadPlugins();
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    Journal().clear();
    TVPMReloadACFPlugins();
    EXPECT_EQ(Journal(), (Lines{"fms:disable", "wx:disable", "fms:stop", "wx:stop", "fms:start", "wx:start",
                                "fms:enable", "wx:enable"}));
    EXPECT_EQ(IdOf("fms"), 2);

    Journal().clear();
    Poke("alpha.tvp");
    Poke("alpha.tvp");
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message 7777 from 0", "alpha.tvp:message 7777 from 0"}));
    host.ClearCalls();
    Journal().clear();
    host.RunFrame();
    EXPECT_EQ(Journal(),
              (Lines{"alpha.tvp:disable", "fms:disable", "wx:disable", "fms:stop", "wx:stop", "alpha.tvp:stop",
                     "alpha.tvp:start", "fms:start", "wx:start", "alpha.tvp:enable", "fms:enable", "wx:enable"}));
    const auto alerts = host.CallsTo("TVPMDisplayModalAlert_f");
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].args, (Lines{"\"Please place your new plugin in the plugins folder.\"",
                                     "\"I will then reload all plugins.\"", "\"\"", "\"\""}));
    const std::string acfPlugins = sim.Root() + "Aircraft/Jet/plugins";
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) + Loaded(sim.PluginsDir() + "/alpha.tvp", "test.alpha.tvp") +
                              Fetching(acfPlugins) + Loaded(acfPlugins + "/fms/lin_x64/fms.tvp", "test.fms") +
                              Loaded(acfPlugins + "/wx/lin_x64/wx.tvp", "test.wx"));
    Journal().clear();
    host.RunFrame();
    EXPECT_EQ(Journal(), Lines{});
    EXPECT_EQ(host.Count("TVPMDisplayModalAlert_f"), 1u);

    // Still known as aircraft plugins; with no aircraft folder a reload only unloads them.
    host.userAircraftPath = "Jet.acf";
    TVPMReloadACFPlugins();
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(JournalOf("fms").back(), "fms:stop");
    host.ClearCalls();
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(host.Log(), "");
}

// Whoever asks, and however the reload ends, the simulator is current
// afterwards until the asking callback returns.
TEST_F(Lifecycle, PluginsReloadTheAircraftPluginsFromTheirOwnCallbacks) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    const std::string fmsPath = sim.Root() + "Aircraft/Jet/plugins/fms/lin_x64/fms.tvp";
    static std::vector<TVPMPluginID> seen;
    for (const char* key : {"alpha.tvp", "fms"})
        OnPoke(key, [] {
            TVPMReloadACFPlugins();
            seen.push_back(TVPMGetMyID());
        });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    Journal().clear();
    Poke("fms");  // returns into the plugin's code after it was unloaded: it must still be there
    EXPECT_EQ(Journal(), (Lines{"fms:message 7777 from 0", "fms:disable", "fms:stop", "fms:start", "fms:enable"}));
    Poke("alpha.tvp");  // the aircraft plugin starts again
    Script("fms").start = [](char*, char*, char*) { return 0; };
    Poke("alpha.tvp");  // it refuses to start
    Script("fms").start = [](char*, char* signature, char*) {
        snprintf(signature, 256, "test.alpha.tvp");
        return 1;
    };
    Poke("alpha.tvp");  // it is refused as a second copy of alpha
    EXPECT_EQ(seen, (std::vector<TVPMPluginID>{0, 0, 0, 0}));
    EXPECT_EQ(TVPMCountPlugins(), 2);
    host.RunFrame();
    EXPECT_FALSE(IsMapped(fmsPath));
}

TEST_F(Lifecycle, AircraftReloadFromInsideTPluginStartIsRefused) {
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    Script("fms").start = [](char*, char*, char*) {
        TVPMReloadACFPlugins();
        return 1;
    };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    EXPECT_EQ(JournalOf("fms"), (Lines{"fms:start", "fms:enable"}));
    const std::string acfPlugins = sim.Root() + "Aircraft/Jet/plugins";
    EXPECT_EQ(host.Log(), Fetching(acfPlugins) +
                              "[fms/lin_x64/fms.tvp]: TVPMReloadACFPlugins called while plugins are "
                              "being loaded or unloaded; ignored.\n" +
                              Loaded(acfPlugins + "/fms/lin_x64/fms.tvp", "test.fms"));
}

TEST_F(Lifecycle, SceneryPackPluginsAreAllLoadedThenThoseStartedAreEnabled) {
    AddScripted({"alpha.tvp"});
    const std::string pack = sim.AddSceneryPack("City", {"trams", "lights", "b"}, BuiltPlugin("scripted.tvp"));
    fs::copy_file(BuiltPlugin("scripted.tvp"), pack + "plugins/loose.tvp");
    Script("lights").start = [](char*, char*, char*) { return 0; };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0), 1);
    EXPECT_EQ(Journal(), (Lines{"b:start", "lights:start", "trams:start", "b:enable", "trams:enable"}));
    const std::string dir = pack + "plugins";
    EXPECT_EQ(host.Log(), Fetching(dir) + Loaded(dir + "/b/lin_x64/b.tvp", "test.b") + "Failed: " + dir +
                              "/lights/lin_x64/lights.tvp. (The plugin refused to start by returning 0 "
                              "from TPluginStart.)\n\n" +
                              Loaded(dir + "/trams/lin_x64/trams.tvp", "test.trams"));
    EXPECT_EQ(TVPMFindPluginBySignature("test.trams"), 3);
    EXPECT_FALSE(IsMapped(dir + "/lights/lin_x64/lights.tvp"));
    // No folder at all: nothing happens.
    EXPECT_EQ(TVPMEventHook(tvpm_RegisterScenery, 0, 0, 0, 0), 1);
    EXPECT_EQ(TVPMCountPlugins(), 4);
}

TEST_F(Lifecycle, UnloadedAircraftPluginsBelowAnotherPluginKeepTheirRecordsButStayOff) {
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    const std::string pack = sim.AddSceneryPack("City", {"lights"}, BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0);
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    EXPECT_EQ(TVPMCountPlugins(), 3);  // the scenery plugin sits above it: no trimming
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
    EXPECT_EQ(TVPMEnablePlugin(1), 0);  // its library is gone
    Journal().clear();
    TVPMSendMessageToPlugin(-1, 600, nullptr);
    EXPECT_EQ(Journal(), (Lines{"lights:message 600 from 0"}));

    // Its record still carries its path and signature: loading the aircraft
    // again finds the plugin already there, and the new copy is refused.
    const std::string fmsPath = sim.Root() + "Aircraft/Jet/plugins/fms/lin_x64/fms.tvp";
    EXPECT_EQ(TVPMFindPluginBySignature("test.fms"), 1);
    EXPECT_EQ(TVPMFindPluginByPath(fmsPath.c_str()), 1);
    host.ClearCalls();
    Journal().clear();
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    EXPECT_EQ(Journal(), (Lines{"lights:message 102 from 0", "fms:start", "fms:stop"}));
    EXPECT_EQ(host.Log(), Fetching(sim.Root() + "Aircraft/Jet/plugins") + "Warning: " + fmsPath +
                              " Signature: test.fms. (A version of this plugin is already loaded.)\n");
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
}
