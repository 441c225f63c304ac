// test_lifecycle.cpp: plugins are enabled, disabled, unloaded and reloaded, including aircraft and scenery plugins.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;
using Lifecycle = SimTest;
namespace fs = std::filesystem;

namespace {

using Lines = std::vector<std::string>;

// Journal lines written since mark.
Lines JournalSince(size_t mark) {
    return Lines(Journal().begin() + static_cast<long>(mark), Journal().end());
}

// Makes key run action whenever it receives message 7777.
void OnPoke(const std::string& key, std::function<void()> action) {
    Script(key).message = [action](TVPMPluginID, int message, void*) {
        if (message == 7777) action();
    };
}
void Poke(const std::string& key) { TVPMSendMessageToPlugin(IdOf(key), 7777, nullptr); }

}  // namespace

TEST_F(Lifecycle, EnableAndDisableSemantics) {
    AddScripted({"alpha.tvp"});
    static int enabledInsideEnable = -1, enabledInsideDisable = -1, meInsideDisable = -1;
    Script("alpha.tvp").enable = [] {
        enabledInsideEnable = TVPMIsPluginEnabled(TVPMGetMyID());
        return 1;
    };
    Script("alpha.tvp").disable = [] {
        meInsideDisable = TVPMGetMyID();
        enabledInsideDisable = TVPMIsPluginEnabled(TVPMGetMyID());
    };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(enabledInsideEnable, 1);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 1);

    // The host's record is always on and cannot be switched; bad IDs are refused.
    EXPECT_EQ(TVPMIsPluginEnabled(0), 1);
    EXPECT_EQ(TVPMEnablePlugin(0), 0);
    TVPMDisablePlugin(0);
    EXPECT_EQ(TVPMIsPluginEnabled(0), 1);
    for (TVPMPluginID bad : {-1, -7, 2, 99}) {
        EXPECT_EQ(TVPMEnablePlugin(bad), 0);
        TVPMDisablePlugin(bad);
        EXPECT_EQ(TVPMIsPluginEnabled(bad), 0);
    }

    const size_t mark = Journal().size();
    TVPMDisablePlugin(1);
    TVPMDisablePlugin(1);  // a no-op
    EXPECT_EQ(JournalSince(mark), (Lines{"alpha.tvp:disable"}));
    EXPECT_EQ(meInsideDisable, 1);
    EXPECT_EQ(enabledInsideDisable, 0);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);

    EXPECT_EQ(TVPMEnablePlugin(1), 1);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);  // already on: TPluginEnable is not called again
    EXPECT_EQ(JournalSince(mark), (Lines{"alpha.tvp:disable", "alpha.tvp:enable"}));
    EXPECT_EQ(TVPMGetMyID(), 0);
    host.Shutdown();
    EXPECT_EQ(JournalOf("alpha.tvp").back(), "alpha.tvp:stop");
}

TEST_F(Lifecycle, PluginThatDeclinesToEnableStaysLoadedAndDisabled) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    Script("alpha.tvp").enable = [] { return 0; };
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
    EXPECT_EQ(TVPMIsPluginEnabled(2), 1);
    EXPECT_EQ(TVPMEnablePlugin(1), 0);
    EXPECT_EQ(JournalOf("alpha.tvp"),
              (Lines{"alpha.tvp:start", "alpha.tvp:enable", "alpha.tvp:enable"}));

    // It misses messages, others do not.
    TVPMSendMessageToPlugin(-1, 555, nullptr);
    EXPECT_EQ(JournalOf("alpha.tvp:message").size(), 0u);
    EXPECT_EQ(JournalOf("beta.tvp:message"), (Lines{"beta.tvp:message 555 from 0"}));

    // Never enabled, so shut-down only stops it.
    const size_t mark = Journal().size();
    host.Shutdown();
    EXPECT_EQ(JournalSince(mark), (Lines{"beta.tvp:disable", "alpha.tvp:stop", "beta.tvp:stop"}));
}

TEST_F(Lifecycle, PluginDisablesItselfFromItsOwnCallback) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    static TVPMPluginID meAfter = -9;
    OnPoke("alpha.tvp", [] {
        TVPMDisablePlugin(TVPMGetMyID());
        meAfter = TVPMGetMyID();
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    const size_t mark = Journal().size();
    Poke("alpha.tvp");
    EXPECT_EQ(JournalSince(mark), (Lines{"alpha.tvp:message 7777 from 0", "alpha.tvp:disable"}));
    EXPECT_EQ(meAfter, 1);
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);

    TVPMSendMessageToPlugin(-1, 556, nullptr);
    EXPECT_EQ(JournalSince(mark).back(), "beta.tvp:message 556 from 0");
    EXPECT_EQ(JournalOf("alpha.tvp:message 556").size(), 0u);
    EXPECT_EQ(TVPMEnablePlugin(1), 1);
}

TEST_F(Lifecycle, ReloadAskedInsideACallbackRunsOnceAtTheEndOfTheFlightLoopPass) {
    AddScripted({"alpha.tvp"});
    sim.AddFat("beta", "lin_x64", BuiltPlugin("scripted.tvp"));
    static Lines journalAfterRequest;
    OnPoke("alpha.tvp", [] {
        TVPMReloadPlugins();
        TVPMReloadPlugins();
        journalAfterRequest = Journal();
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);

    size_t mark = Journal().size();
    Poke("alpha.tvp");
    Poke("alpha.tvp");
    // Nothing happened inside the callbacks.
    EXPECT_EQ(JournalSince(mark),
              (Lines{"alpha.tvp:message 7777 from 0", "alpha.tvp:message 7777 from 0"}));
    EXPECT_EQ(journalAfterRequest.back(), "alpha.tvp:message 7777 from 0");
    EXPECT_EQ(host.Count("TVPMDisplayModalAlert_f"), 0u);

    host.ClearCalls();
    host.RunFrame();
    EXPECT_EQ(JournalSince(mark + 2),
              (Lines{"alpha.tvp:disable", "beta:disable", "alpha.tvp:stop", "beta:stop",
                     "alpha.tvp:start", "beta:start", "alpha.tvp:enable", "beta:enable"}));
    const auto alerts = host.CallsTo("TVPMDisplayModalAlert_f");
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].args, (Lines{"\"Please place your new plugin in the plugins folder.\"",
                                     "\"I will then reload all plugins.\"", "\"\"", "\"\""}));
    EXPECT_EQ(host.Count("TVPMGetSystemPath_f"), 1u);
    EXPECT_EQ(host.Log(), Fetching(sim.PluginsDir()) + "Loaded: " + sim.PluginsDir() +
                              "/alpha.tvp (test.alpha.tvp).\n\n" + "Loaded: " + sim.PluginsDir() +
                              "/beta/lin_x64/beta.tvp (test.beta).\n\n");
    EXPECT_EQ(TVPMCountPlugins(), 3);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 1);
    EXPECT_EQ(TVPMIsPluginEnabled(2), 1);

    mark = Journal().size();
    host.RunFrame();
    EXPECT_EQ(JournalSince(mark), Lines{});
    EXPECT_EQ(host.Count("TVPMDisplayModalAlert_f"), 1u);
}

TEST_F(Lifecycle, FullReloadAlsoReloadsTheAircraftPlugins) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_EQ(TVPMCountPlugins(), 3);
    const size_t mark = Journal().size();
    TVPMReloadPlugins();
    host.RunFrame();
    EXPECT_EQ(JournalSince(mark),
              (Lines{"alpha.tvp:disable", "fms:disable", "fms:stop", "alpha.tvp:stop",
                     "alpha.tvp:start", "fms:start", "alpha.tvp:enable", "fms:enable"}));
    EXPECT_EQ(TVPMCountPlugins(), 3);
    // Still known as an aircraft plugin: the aircraft's unload removes it.
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    EXPECT_EQ(TVPMCountPlugins(), 2);
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
    size_t mark = Journal().size();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 2, 0), 1);
    EXPECT_EQ(JournalSince(mark), (Lines{"alpha.tvp:message 102 from 0"}));
    EXPECT_EQ(TVPMCountPlugins(), 2);

    host.ClearCalls();
    mark = Journal().size();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(JournalSince(mark), (Lines{"alpha.tvp:message 102 from 0", "fms:start", "wx:start",
                                         "fms:enable", "wx:enable"}));
    EXPECT_EQ(host.Log(), Fetching(acfPlugins) + "Loaded: " + acfPlugins +
                              "/fms/lin_x64/fms.tvp (test.fms).\n\n" + "Loaded: " + acfPlugins +
                              "/wx/lin_x64/wx.tvp (test.wx).\n\n");
    EXPECT_EQ(IdOf("fms"), 2);
    EXPECT_EQ(IdOf("wx"), 3);
    const std::string fmsPath = acfPlugins + "/fms/lin_x64/fms.tvp";
    EXPECT_TRUE(IsMapped(fmsPath));

    // Aircraft plugins hear about the unload before they are switched off.
    mark = Journal().size();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(JournalSince(mark),
              (Lines{"alpha.tvp:message 106 from 0", "fms:message 106 from 0",
                     "wx:message 106 from 0", "fms:disable", "wx:disable", "fms:stop", "wx:stop"}));
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_FALSE(IsMapped(fmsPath));

    // Unloading another aircraft leaves the plugins alone.
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    mark = Journal().size();
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 1, 0);
    EXPECT_EQ(JournalSince(mark), (Lines{"alpha.tvp:message 106 from 0", "fms:message 106 from 0",
                                         "wx:message 106 from 0"}));
    EXPECT_EQ(TVPMCountPlugins(), 4);
    host.Shutdown();
    EXPECT_FALSE(IsMapped(fmsPath));
}

TEST_F(Lifecycle, AircraftPathWithoutFolderLoadsNothing) {
    sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    host.userAircraftPath = "Jet.acf";
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    TVPMReloadACFPlugins();
    EXPECT_EQ(TVPMCountPlugins(), 1);
    EXPECT_EQ(host.Log(), "");
}

TEST_F(Lifecycle, ReloadACFPluginsRestartsOnlyTheAircraftPlugins) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms", "wx"}, BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    const size_t mark = Journal().size();
    TVPMReloadACFPlugins();
    EXPECT_EQ(JournalSince(mark), (Lines{"fms:disable", "wx:disable", "fms:stop", "wx:stop",
                                         "fms:start", "wx:start", "fms:enable", "wx:enable"}));
    EXPECT_EQ(TVPMCountPlugins(), 4);
    EXPECT_EQ(IdOf("fms"), 2);

    // The aircraft left: a reload unloads them and loads nothing.
    host.userAircraftPath = "";
    TVPMReloadACFPlugins();
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(JournalOf("fms").back(), "fms:stop");
}

TEST_F(Lifecycle, AircraftPluginCanReloadItselfFromItsOwnCallback) {
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    const std::string fmsPath = sim.Root() + "Aircraft/Jet/plugins/fms/lin_x64/fms.tvp";
    static TVPMPluginID meAfter = -9;
    OnPoke("fms", [] {
        TVPMReloadACFPlugins();
        meAfter = TVPMGetMyID();
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    const size_t mark = Journal().size();
    Poke("fms");  // returns into the plugin's code after it was unloaded: it must still be there
    EXPECT_EQ(JournalSince(mark), (Lines{"fms:message 7777 from 0", "fms:disable", "fms:stop",
                                         "fms:start", "fms:enable"}));
    EXPECT_EQ(meAfter, 0);  // loading leaves the simulator current until the callback returns
    EXPECT_EQ(TVPMIsPluginEnabled(1), 1);
    host.RunFrame();
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    host.RunFrame();
    EXPECT_FALSE(IsMapped(fmsPath));
}

TEST_F(Lifecycle, APluginThatReloadsTheAircraftPluginsFindsTheSimulatorCurrentAfterwards) {
    AddScripted({"alpha.tvp"});
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    static std::vector<TVPMPluginID> seen;
    seen.clear();
    OnPoke("alpha.tvp", [] {
        TVPMReloadACFPlugins();
        seen.push_back(TVPMGetMyID());
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_EQ(IdOf("fms"), 2);

    Poke("alpha.tvp");  // the aircraft plugin starts again
    Script("fms").start = [](char*, char*, char*) { return 0; };
    Poke("alpha.tvp");  // it refuses to start
    Script("fms").start = [](char*, char* signature, char*) {
        snprintf(signature, 256, "test.alpha.tvp");
        return 1;
    };
    Poke("alpha.tvp");  // it is refused as a second copy of alpha
    EXPECT_EQ(seen, (std::vector<TVPMPluginID>{0, 0, 0}));
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(TVPMGetMyID(), 0);
}

TEST_F(Lifecycle, AircraftPluginUnloadedFromItsOwnCallbackKeepsItsCodeUntilItReturns) {
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    static std::string fmsPath;
    fmsPath = sim.Root() + "Aircraft/Jet/plugins/fms/lin_x64/fms.tvp";
    static bool mappedAfterUnload = false;
    OnPoke("fms", [] {
        FakeHost::Current().userAircraftPath = "";  // no aircraft folder: nothing comes back
        TVPMReloadACFPlugins();
        mappedAfterUnload = IsMapped(fmsPath);
    });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_TRUE(IsMapped(fmsPath));
    Poke("fms");
    EXPECT_EQ(JournalOf("fms"), (Lines{"fms:start", "fms:enable", "fms:message 7777 from 0",
                                       "fms:disable", "fms:stop"}));
    EXPECT_TRUE(mappedAfterUnload);
    EXPECT_EQ(TVPMCountPlugins(), 1);
    // The next call from the simulator finds no plugin code running: now it goes.
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
    EXPECT_EQ(TVPMCountPlugins(), 2);
    const std::string acfPlugins = sim.Root() + "Aircraft/Jet/plugins";
    EXPECT_EQ(host.Log(),
              Fetching(acfPlugins) +
                  "[fms/lin_x64/fms.tvp]: TVPMReloadACFPlugins called while plugins are "
                  "being loaded or unloaded; ignored.\n" +
                  "Loaded: " + acfPlugins + "/fms/lin_x64/fms.tvp (test.fms).\n\n");
}

TEST_F(Lifecycle, UnloadedAircraftPluginsBelowAnotherPluginKeepTheirRecordsButStayOff) {
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    const std::string pack = sim.AddSceneryPack("City", {"lights"}, BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0);
    ASSERT_EQ(IdOf("fms"), 1);
    ASSERT_EQ(IdOf("lights"), 2);

    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    EXPECT_EQ(TVPMCountPlugins(), 3);  // the scenery plugin sits above it: no trimming
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
    EXPECT_EQ(TVPMEnablePlugin(1), 0);  // its library is gone
    const size_t mark = Journal().size();
    TVPMSendMessageToPlugin(-1, 600, nullptr);
    EXPECT_EQ(JournalSince(mark), (Lines{"lights:message 600 from 0"}));

    // Its record still carries its path and signature: loading the aircraft
    // again finds the plugin already there, and the new copy is refused.
    const std::string fmsPath = sim.Root() + "Aircraft/Jet/plugins/fms/lin_x64/fms.tvp";
    EXPECT_EQ(TVPMFindPluginBySignature("test.fms"), 1);
    EXPECT_EQ(TVPMFindPluginByPath(fmsPath.c_str()), 1);
    host.ClearCalls();
    const size_t again = Journal().size();
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    EXPECT_EQ(JournalSince(again),
              (Lines{"lights:message 102 from 0", "fms:start", "fms:stop"}));
    EXPECT_EQ(host.Log(), Fetching(sim.Root() + "Aircraft/Jet/plugins") + "Warning: " + fmsPath +
                              " Signature: test.fms. (A version of this plugin is already loaded.)\n");
    EXPECT_EQ(TVPMCountPlugins(), 3);
    EXPECT_EQ(TVPMIsPluginEnabled(1), 0);
    EXPECT_EQ(TVPMIsPluginEnabled(2), 1);
}

TEST_F(Lifecycle, SceneryPackPluginsAreLoadedThenEnabled) {
    AddScripted({"alpha.tvp"});
    const std::string pack =
        sim.AddSceneryPack("City", {"trams", "lights"}, BuiltPlugin("scripted.tvp"));
    fs::copy_file(BuiltPlugin("scripted.tvp"), pack + "plugins/loose.tvp");
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    const size_t mark = Journal().size();
    EXPECT_EQ(
        TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0), 1);
    EXPECT_EQ(JournalSince(mark),
              (Lines{"lights:start", "trams:start", "lights:enable", "trams:enable"}));
    EXPECT_EQ(host.Log(), Fetching(pack + "plugins") + "Loaded: " + pack +
                              "plugins/lights/lin_x64/lights.tvp (test.lights).\n\n" + "Loaded: " +
                              pack + "plugins/trams/lin_x64/trams.tvp (test.trams).\n\n");
    EXPECT_EQ(TVPMCountPlugins(), 4);

    // No folder at all: nothing happens.
    EXPECT_EQ(TVPMEventHook(tvpm_RegisterScenery, 0, 0, 0, 0), 1);
    EXPECT_EQ(TVPMCountPlugins(), 4);
}

TEST_F(Lifecycle, AFullSessionRunsClean) {
    const std::string scripted = BuiltPlugin("scripted.tvp");
    sim.AddLoose("alpha.tvp", scripted);
    sim.AddLoose("beta.tvp", scripted);
    sim.AddFat("gamma", "64", scripted);
    host.userAircraftPath = sim.AddAircraft("Jet", {"fms", "wx"}, scripted);
    const std::string pack = sim.AddSceneryPack("City", {"lights"}, scripted);
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMEventHook(tvpm_RegisterScenery, 0, 0, reinterpret_cast<intptr_t>(pack.c_str()), 0);
    for (int frame = 0; frame < 100; ++frame) {
        host.RunFrame();
        for (int kind = 1; kind <= 20; ++kind) {
            if (kind == tvpm_FlightLoopEvent || kind == tvpm_FlightLoopDoneEvent ||
                kind == tvpm_RegisterScenery)
                continue;
            TVPMEventHook(static_cast<TVPMEventKind>(kind), 0.1f, 0, frame % 3, 0);
        }
        if (frame == 50) TVPMReloadPlugins();
        if (frame == 70) TVPMReloadACFPlugins();
    }
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    host.Shutdown();
    EXPECT_EQ(TVPMCountPlugins(), 0);
    EXPECT_EQ(host.Count("TVPMDisplayModalAlert_f"), 1u);
    for (const char* key : {"alpha.tvp", "beta.tvp", "gamma", "lights"})
        EXPECT_EQ(JournalOf(key).back(), std::string(key) + ":stop");
    EXPECT_EQ(JournalOf("alpha.tvp:start").size(), 2u);
}
