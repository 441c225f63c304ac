// test_lifecycle.cpp: start-up, and plugins enabled, disabled, unloaded and reloaded, including aircraft and scenery plugins.
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

std::string Loaded(const std::string& path, const std::string& signature) {
    return "Loaded: " + path + " (" + signature + ").\n\n";
}

// The journal line of the message that RunAs sends.
const std::string kRanAs = ":message " + std::to_string(kRunAsMessage) + " from 0";

}  // namespace

// A table of another version, or one slot short, is refused before any call,
// yet the library counts as initialized.
TEST_F(Lifecycle, AHostTableOfAnotherVersionOrSizeIsRefused) {
    AddScripted({"alpha.tvp"});
    EXPECT_EQ(TVPMInitialized(), 0);
    for (const auto& [version, size] : {std::pair{24, 1320}, std::pair{25, 1312}}) {
        host.hooks.version = version;
        host.hooks.structSize = size;
        EXPECT_EQ(host.Start(sim.Root()), 0) << version << " " << size;
        EXPECT_EQ(TVPMInitialized(), 1);
    }
    EXPECT_TRUE(host.Calls().empty());
}

TEST_F(Lifecycle, EnableAndDisableSemantics) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    static int enabledInsideEnable = -1, enabledInsideDisable = -1, meInsideDisable = -1;
    bool hostReadyBeforeStart = false;
    Script("alpha.tvp").start = [&](char*, char*, char*) {
        hostReadyBeforeStart = host.Count("TVPMHostReady_f") == 1;
        return 1;
    };
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
    EXPECT_TRUE(hostReadyBeforeStart);
    EXPECT_EQ(enabledInsideEnable, 1);

    // The host's record is always on and cannot be switched; bad IDs are refused.
    for (TVPMPluginID id : {0, -1, -7, 3, 99}) {
        EXPECT_EQ(TVPMEnablePlugin(id), 0) << id;
        TVPMDisablePlugin(id);
        EXPECT_EQ(TVPMIsPluginEnabled(id), id == 0 ? 1 : 0) << id;
    }

    // A plugin that declines stays loaded and off, is asked again, and misses messages.
    EXPECT_EQ(TVPMEnablePlugin(2), 0);
    TVPMSendMessageToPlugin(-1, 555, nullptr);
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:start", "beta.tvp:start", "alpha.tvp:enable", "beta.tvp:enable",
                                "beta.tvp:enable", "alpha.tvp:message 555 from 0"}));

    // A plugin may switch itself off from its own callback, and stays the current plugin.
    Journal().clear();
    RunAs("alpha.tvp", [] {
        TVPMDisablePlugin(TVPMGetMyID());
        EXPECT_EQ(TVPMGetMyID(), 1);
    });
    TVPMDisablePlugin(1);  // a no-op
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp" + kRanAs, "alpha.tvp:disable"}));
    EXPECT_EQ(meInsideDisable, 1);
    EXPECT_EQ(enabledInsideDisable, 0);
    Journal().clear();
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);  // already on: TPluginEnable is not called again
    EXPECT_EQ(Journal(), Lines{"alpha.tvp:enable"});

    // Shut-down disables what is on, then stops everything.
    Journal().clear();
    host.Shutdown();
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:disable", "alpha.tvp:stop", "beta.tvp:stop"}));
}

TEST_F(Lifecycle, AircraftPluginsComeAndGoWithTheUserAircraft) {
    AddScripted({"alpha.tvp"});
    const std::string acf = sim.AddAircraft("Jet", {"wx", "fms"}, BuiltPlugin("scripted.tvp"));
    const std::string acfPlugins = sim.Root() + "Aircraft/Jet/plugins";
    fs::copy_file(BuiltPlugin("scripted.tvp"), acfPlugins + "/loose.tvp");
    // An aircraft reload asked while plugins load is refused.
    Script("fms").start = [](char*, char*, char*) {
        TVPMReloadACFPlugins();
        return 1;
    };
    host.userAircraftPath = acf;
    ASSERT_EQ(host.Start(sim.Root()), 23);

    // Aircraft plugins wait for the aircraft; another aircraft than the user's brings only the message.
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 2, 0), 1);
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message 102 from 0"}));

    host.ClearCalls();
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(Journal(),
              (Lines{"alpha.tvp:message 102 from 0", "fms:start", "wx:start", "fms:enable", "wx:enable"}));
    const std::string fmsPath = acfPlugins + "/fms/lin_x64/fms.tvp";
    EXPECT_EQ(host.Log(), Fetching(acfPlugins) +
                              "[fms/lin_x64/fms.tvp]: TVPMReloadACFPlugins called while plugins are "
                              "being loaded or unloaded; ignored.\n" +
                              Loaded(fmsPath, "test.fms") + Loaded(acfPlugins + "/wx/lin_x64/wx.tvp", "test.wx"));

    // Aircraft plugins hear about the unload before they are switched off.
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message 106 from 0", "fms:message 106 from 0", "wx:message 106 from 0",
                                "fms:disable", "wx:disable", "fms:stop", "wx:stop"}));
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_FALSE(IsMapped(fmsPath));

    // Unloading another aircraft leaves the plugins alone.
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 1, 0);
    EXPECT_EQ(TVPMCountPlugins(), 4);
}

// An aircraft reload runs at once, and whoever asks and however it ends, the
// simulator is current afterwards until the asking callback returns. A full
// reload, even asked twice, runs once at the end of the next flight-loop pass.
TEST_F(Lifecycle, ReloadsRestartTheAircraftPluginsAtOnceOrAllPluginsAfterTheFrame) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms", "wx"}, BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    const auto reloadAsAlpha = [] {
        RunAs("alpha.tvp", [] {
            TVPMReloadACFPlugins();
            EXPECT_EQ(TVPMGetMyID(), 0);
        });
    };
    Journal().clear();
    reloadAsAlpha();
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp" + kRanAs, "fms:disable", "wx:disable", "fms:stop", "wx:stop",
                                "fms:start", "wx:start", "fms:enable", "wx:enable"}));
    EXPECT_EQ(IdOf("fms"), 2);
    Script("fms").start = [](char*, char*, char*) { return 0; };
    reloadAsAlpha();  // it refuses to start
    Script("fms").start = [](char*, char* signature, char*) {
        snprintf(signature, 256, "test.alpha.tvp");
        return 1;
    };
    reloadAsAlpha();  // it is refused as a second copy of alpha
    EXPECT_EQ(TVPMCountPlugins(), 3);
    Script("fms").start = nullptr;

    RunAs("alpha.tvp", [] {
        TVPMReloadPlugins();
        TVPMReloadPlugins();
    });
    host.ClearCalls();
    Journal().clear();
    host.RunFrame();
    EXPECT_EQ(Journal(), (Lines{"alpha.tvp:disable", "wx:disable", "wx:stop", "alpha.tvp:stop", "alpha.tvp:start",
                                "fms:start", "wx:start", "alpha.tvp:enable", "fms:enable", "wx:enable"}));
    const auto alerts = host.CallsTo("TVPMDisplayModalAlert_f");
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].args, (Lines{"\"Please place your new plugin in the plugins folder.\"",
                                     "\"I will then reload all plugins.\"", "\"\"", "\"\""}));
    Journal().clear();
    host.RunFrame();
    EXPECT_EQ(Journal(), Lines{});

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

// Scenery plugins are all loaded, then those that started are enabled. An
// unloaded aircraft plugin below them keeps its record, path and signature
// but stays off, and a second copy of it is refused.
TEST_F(Lifecycle, SceneryPluginsLoadThenEnableAndKeepUnloadedAircraftPluginsBelowThemOnRecord) {
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    const std::string pack = sim.AddSceneryPack("City", {"trams", "lights", "b"}, BuiltPlugin("scripted.tvp"));
    Script("lights").start = [](char*, char*, char*) { return 0; };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
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
    EXPECT_EQ(TVPMEventHook(tvpm_RegisterScenery, 0, 0, 0, 0), 1);  // no folder: nothing happens

    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    EXPECT_EQ(TVPMCountPlugins(), 4);
    EXPECT_EQ(TVPMEnablePlugin(1), 0);  // its library is gone
    const std::string fmsPath = sim.Root() + "Aircraft/Jet/plugins/fms/lin_x64/fms.tvp";
    EXPECT_EQ(TVPMFindPluginByPath(fmsPath.c_str()), 1);
    host.ClearCalls();
    Journal().clear();
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    EXPECT_EQ(Journal(), (Lines{"b:message 102 from 0", "trams:message 102 from 0", "fms:start", "fms:stop"}));
    EXPECT_EQ(host.Log(), Fetching(sim.Root() + "Aircraft/Jet/plugins") + "Warning: " + fmsPath +
                              " Signature: test.fms. (A version of this plugin is already loaded.)\n");
}
