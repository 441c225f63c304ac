// test_host.cpp: tvpm-host as plugin authors use it: the default run, its options, the JSON report and the plugin check.
#include <gtest/gtest.h>

#include "HostRunner.h"

namespace fs = std::filesystem;
using Outcome = HostOutcome;

TEST(HostOptions, HelpListsEveryOption) {
    const Outcome o = RunHost("--help");
    EXPECT_EQ(o.status, 0) << o.output;
    for (const char* option : {"--root", "--plugin", "--aircraft", "--scenery", "--frames", "--fps",
                               "--log", "--report", "--quiet", "--check", "--strict", "--level", "--only", "--skip",
                               "--timeout SECONDS", "--fuzz", "--seed", "--junit", "--html", "--list-checks",
                               "--list-data", "--version", "3 a plugin crashed, 4 a plugin hung"})
        EXPECT_NE(o.output.find(option), std::string::npos) << option;
}

TEST(HostOptions, BadCommandLinesAreRefusedWithAReason) {
    Outcome o = RunHost("--frobnicate");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("unknown option '--frobnicate'"), std::string::npos);
    o = RunHost("--frames 0");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("--frames needs a positive whole number"), std::string::npos);
    o = RunHost("--frames");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("--frames needs a value"), std::string::npos);
    o = RunHost("--root /tmp --plugin x.tvp");
    EXPECT_EQ(o.status, 2);
    o = RunHost("--plugin /nonexistent/thing.tvp");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("/nonexistent/thing.tvp does not exist"), std::string::npos);
    o = RunHost("--plugin " + BinaryDir() + "/sim");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("is a folder without lin_x64/sim.tvp, 64/lin.tvp or lin.tvp"), std::string::npos)
        << o.output;
    o = RunHost("--plugin " + BinaryDir() + "/CMakeCache.txt");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("is not a .tvp plugin file"), std::string::npos) << o.output;
    o = RunHost("--strict");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("--strict only applies to --check"), std::string::npos) << o.output;
    o = RunHost("--root /nonexistent/sim");
    EXPECT_EQ(o.status, 2);
    EXPECT_NE(o.output.find("does not exist"), std::string::npos);
}

TEST(HostRun, DefaultRunLoadsTheExamplesAndSucceeds) {
    const Outcome o = RunHost("--quiet");
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("300 frames at 60 fps"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("failed: 0"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("Result: OK"), std::string::npos) << o.output;
    // --quiet keeps the log out of the output.
    EXPECT_EQ(o.output.find("  | Loaded: "), std::string::npos);
}

TEST(HostRun, WithoutQuietTheLogIsShown) {
    const Outcome o = RunHost("--frames 2");
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("  | Loaded: "), std::string::npos) << o.output;
}

TEST(HostRun, APluginThatRefusesToStartFailsTheRunWithTheLoadersReason) {
    const Outcome o = RunHost("--quiet --frames 5 --plugin " + TestPlugin("broken_start.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("failed: 1"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("broken_start.tvp: The plugin refused to start by returning 0 from TPluginStart."),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("Result: FAILED"), std::string::npos);
}

TEST(HostRun, LogAndJsonReportAreWritten) {
    TempDir dir;
    const Outcome o = RunHost("--quiet --frames 10 --fps 30 --log " + (dir / "run.log") + " --report " +
                          (dir / "run.json"));
    EXPECT_EQ(o.status, 0) << o.output;
    const std::string log = Slurp(dir / "run.log");
    EXPECT_NE(log.find("Loaded: "), std::string::npos) << log;
    const std::string json = Slurp(dir / "run.json");
    EXPECT_EQ(json.rfind("{\"mode\":\"run\",\"ok\":true", 0), 0u) << json;
    EXPECT_NE(json.find("\"frames\":10"), std::string::npos);
    EXPECT_NE(json.find("\"fps\":30"), std::string::npos);
    EXPECT_NE(json.find("\"failed\":[]"), std::string::npos);
}

TEST(HostRun, JsonReportNamesAFailedPluginAndItsReason) {
    TempDir dir;
    const Outcome o = RunHost("--quiet --frames 1 --plugin " + TestPlugin("broken_start.tvp") + " --report " +
                          (dir / "run.json"));
    EXPECT_EQ(o.status, 1);
    const std::string json = Slurp(dir / "run.json");
    EXPECT_NE(json.find("\"ok\":false"), std::string::npos) << json;
    EXPECT_NE(json.find("\"reason\":\"The plugin refused to start by returning 0 from TPluginStart.\""),
              std::string::npos)
        << json;
}

TEST(HostCheck, APluginThatRefusesToStartFailsTheCheck) {
    const Outcome o = RunHost("--check --plugin " + TestPlugin("broken_start.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  broken_start.tvp"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("fail    load             [start] did not load: The plugin refused to start by "
                            "returning 0 from TPluginStart."),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("0 of 1 plugins passed"), std::string::npos);
}

TEST(HostCheck, EveryBundledExamplePasses) {
    TempDir dir;
    const Outcome o = RunHost("--check --frames 20 --report " + (dir / "check.json"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_EQ(o.output.find("FAIL"), std::string::npos) << o.output;
    for (const char* expected : {"PASS  Panel Clock", "PASS  Clock Listener", "PASS  World Tour",
                                 "PASS  Example Avionics (aircraft)"})
        EXPECT_NE(o.output.find(expected), std::string::npos) << expected << "\n" << o.output;
    const std::string json = Slurp(dir / "check.json");
    EXPECT_EQ(json.rfind("{\"schemaVersion\":2,\"mode\":\"check\",\"level\":3,\"strict\":false,\"ok\":true", 0), 0u)
        << json;
}

TEST(HostCheck, APluginThatLeavesAWindowAndAHeldCommandBehindFails) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_leak.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Leak"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("left behind: window 'Forgotten' was not released by the plugin"), std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("left behind: command held 'test/broken/held' was not released by the plugin"),
              std::string::npos)
        << o.output;
}

TEST(HostCheck, APluginThatKeepsObjectsInstancesAircraftOrTheCameraFails) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_world_leak.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    for (const char* expected :
         {"FAIL  Broken World Leak", "left behind: object '", "left behind: instance '",
          "left behind: AI aircraft control 'the other aircraft' was not released by the plugin",
          "note    world-services   [aircraft unload] the plugin still controlled the camera at shut-down"})
        EXPECT_NE(o.output.find(expected), std::string::npos) << expected << "\n" << o.output;
}

TEST(HostCheck, APluginThatLeavesAnAvionicsDeviceBehindFails) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_avionics_leak.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("left behind: avionics device 'Forgotten display' was not released by the plugin"),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("timing  avionics drawing"), std::string::npos) << o.output;
}

TEST(HostCheck, ABulkWeatherUpdateLeftOpenFailsAndAKeptMapLayerIsANote) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_weather.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Weather"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("fail    world-services   [shut-down] left a bulk weather update open at the end of a "
                            "callback"),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("map layer(s) stay registered after unload"), std::string::npos)
        << o.output;
}

TEST(HostCheck, APluginThatCallsTVPMFromAWorkerThreadFailsWithTheViolation) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_thread.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Thread"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("threads          [start] Threading violation calling TVPMRegisterDrawCallback"),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("threads          [start] Violation by Broken Thread (test.broken.thread - "),
              std::string::npos)
        << o.output;
    // The library's abort after the report is not a crash of the plugin.
    EXPECT_EQ(o.output.find("crash "), std::string::npos) << o.output;
}

TEST(HostCheck, EachPluginIsJudgedOnItsOwn) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_thread.tvp") + " --plugin " +
                              BinaryDir() + "/sim/Resources/plugins/panel_clock/");
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("fail    threads"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("PASS  Panel Clock"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("1 of 2 plugins passed"), std::string::npos) << o.output;
}

TEST(HostCheck, WarningsPassUnlessStrict) {
    Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_deprecated.tvp"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("PASS  Broken Deprecated"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("warn    warnings         [start] [broken_deprecated.tvp]: Dataref "
                            "'sim/graphics/view/legacy_frame_rate' is deprecated and will be removed in a future "
                            "version."),
              std::string::npos)
        << o.output;
    o = RunHost("--check --strict --frames 5 --plugin " + TestPlugin("broken_deprecated.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Deprecated"), std::string::npos) << o.output;
}

TEST(HostRun, SummaryShowsWhatTheExamplesRegistered) {
    const Outcome o = RunHost("--quiet");
    EXPECT_EQ(o.status, 0) << o.output;
    for (const char* expected :
         {"Plugins loaded: 6, failed: 0", "Example Avionics         tvpm.examples.example_avionics  (aircraft)",
          "data items   2: tvpm/examples/panel_clock/elapsed_sec, tvpm/examples/panel_clock/window_visible",
          "commands     1: tvpm/examples/panel_clock/toggle_window", "menus        1: Panel Clock",
          "menu items   1: <Aircraft> > Toggle TCAS override", "windows      1: Panel Clock",
          "hot keys     1: Show or hide the panel clock", "flight loops 300 calls",
          "published 13 simulator data items", "commands     1: tvpm/examples/world_tour/fly_by"})
        EXPECT_NE(o.output.find(expected), std::string::npos) << expected << "\n" << o.output;
    EXPECT_NE(o.output.find("Panel Clock              flight loop                   300"), std::string::npos)
        << o.output;
    // Nothing was left behind by the examples.
    EXPECT_EQ(o.output.find("Left behind"), std::string::npos) << o.output;
}

TEST(HostRun, PluginsOfAGivenAircraftAndSceneryPackLoad) {
    TempDir dir;
    const std::string examples = BinaryDir() + "/sim";
    fs::create_directories(dir / "sim/Resources/plugins");
    fs::copy(examples + "/Aircraft/Example", dir / "Cessna", fs::copy_options::recursive);
    fs::create_directories(dir / "Pack/plugins");
    fs::copy(examples + "/Resources/plugins/panel_clock", dir / "Pack/plugins/panel_clock",
             fs::copy_options::recursive);
    const Outcome o = RunHost("--frames 30 --root " + (dir / "sim") + " --aircraft " + (dir / "Cessna") +
                              " --scenery " + (dir / "Pack"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("Plugins loaded: 2, failed: 0"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("Cessna/plugins/example_avionics/lin_x64/example_avionics.tvp"), std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("Pack/plugins/panel_clock/lin_x64/panel_clock.tvp"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("Example Avionics: started in a TVX1"), std::string::npos) << o.output;
}

TEST(HostCheck, APluginWhoseCodeStaysMappedAfterUnloadFails) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_pinned.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Pinned"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("fail    code-unmapped    [shut-down] plugin code still mapped after it was unloaded"),
              std::string::npos)
        << o.output;
}

TEST(HostCheck, TheLogOfEveryCheckedPluginGoesToTheLogFile) {
    TempDir dir;
    const Outcome o = RunHost("--check --frames 5 --log " + (dir / "check.log") + " --plugin " +
                              TestPlugin("broken_start.tvp") + " --plugin " + TestPlugin("broken_pinned.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    const std::string log = Slurp(dir / "check.log");
    EXPECT_NE(log.find("==== " + TestPlugin("broken_start.tvp") + "\n"), std::string::npos) << log;
    EXPECT_NE(log.find("Failed: "), std::string::npos) << log;
    EXPECT_NE(log.find("==== " + TestPlugin("broken_pinned.tvp") + "\n"), std::string::npos) << log;
    EXPECT_NE(log.find("Loaded: "), std::string::npos) << log;
}

TEST(HostRun, JsonReportListsEachPluginsRegistrationsAndTimings) {
    TempDir dir;
    const Outcome o = RunHost("--quiet --frames 60 --report " + (dir / "run.json"));
    EXPECT_EQ(o.status, 0) << o.output;
    const std::string json = Slurp(dir / "run.json");
    for (const char* expected :
         {"\"name\":\"Panel Clock\",\"signature\":\"tvpm.examples.panel_clock\"",
          "\"commands\":[\"tvpm/examples/panel_clock/toggle_window\"]", "\"windows\":[\"Panel Clock\"]",
          "\"hotKeys\":[\"Show or hide the panel clock\"]", "\"flightLoopCalls\":60",
          "{\"category\":\"flight loop\",\"calls\":60,", "\"aircraft\":true", "\"leftBehind\":[]"})
        EXPECT_NE(json.find(expected), std::string::npos) << expected << "\n" << json;
}

TEST(HostRun, TheExamplesSeeACoherentSimulatedWorld) {
    // 300 frames at 60 fps: the shared tick reaches 2 s while the airspeed
    // item (80 kt plus the clock) reads 82 kt; half-way the menu item runs
    // the panel clock's command, which hides its window (drawn 151 times),
    // and "Reset Clock" restarts the clock, which ends 149 frames later.
    Outcome o = RunHost("");
    EXPECT_EQ(o.status, 0) << o.output;
    for (const char* expected :
         {"Clock Listener: tick 2, panel clock at 2.00 s, airspeed 82.0 kt", "Example Avionics: started in a TVX1",
          "Example Avionics: rotate speed reached",
          "Example Avionics: timer drawn 300 times, 10 touches, 10 keys; display overlay drawn 300 times",
          "Clock Listener: the user's aircraft was loaded",
          "Clock Listener: the user's aircraft was unloaded",
          "Panel Clock: stopped after 2.5 s, window drawn 151 times"})
        EXPECT_NE(o.output.find(expected), std::string::npos) << expected << "\n" << o.output;
    // Half the frame rate: the same frames cover twice the time.
    o = RunHost("--fps 30");
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("Panel Clock: stopped after 5.0 s, window drawn 151 times"), std::string::npos)
        << o.output;
}

TEST(HostRun, WhatAPluginLeftBehindIsListedButDoesNotFailTheRun) {
    const Outcome o = RunHost("--quiet --frames 5 --plugin " + TestPlugin("broken_leak.tvp"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("Left behind at unload (2)"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("window 'Forgotten' released only by TVPM's clean-up"), std::string::npos) << o.output;
}

TEST(HostCheck, APluginThatRefusesToBeEnabledFails) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_enable.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Enable"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("fail    load             [enable] did not enable: TPluginEnable returned 0"),
              std::string::npos)
        << o.output;
}

TEST(HostCheck, ACrashIsReportedAndTheNextPluginIsStillChecked) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_crash.tvp") + " --plugin " +
                              BinaryDir() + "/sim/Resources/plugins/clock_listener");
    EXPECT_EQ(o.status, 3) << o.output;
    EXPECT_NE(o.output.find("FAIL  Broken Crash"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("crash   lifecycle        [disable] Segmentation fault during TPluginDisable"),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("PASS  Clock Listener"), std::string::npos) << o.output;
}

TEST(HostCheck, NothingToCheckIsAnError) {
    TempDir dir;
    fs::create_directories(dir / "Resources/plugins");
    const Outcome o = RunHost("--check --root " + dir.Path());
    EXPECT_EQ(o.status, 2) << o.output;
    EXPECT_NE(o.output.find("no plugins to check"), std::string::npos) << o.output;
}

TEST(HostRun, ASecondCopyOfAPluginIsRefusedWithTheLoadersWarning) {
    TempDir dir;
    const std::string fat = BinaryDir() + "/sim/Resources/plugins/panel_clock";
    fs::copy_file(fat + "/lin_x64/panel_clock.tvp", dir / "panel_clock.tvp");
    const Outcome o = RunHost("--quiet --frames 5 --plugin " + (dir / "panel_clock.tvp") + " --plugin " + fat);
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("Plugins loaded: 1, failed: 0"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("Loader warnings (1)"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("Signature: tvpm.examples.panel_clock. (A version of this plugin is already loaded.)"),
              std::string::npos)
        << o.output;
}

TEST(HostCheck, JsonReportCarriesEachPluginsProblems) {
    TempDir dir;
    const Outcome o = RunHost("--check --frames 5 --report " + (dir / "check.json") + " --plugin " +
                              TestPlugin("broken_leak.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    const std::string json = Slurp(dir / "check.json");
    EXPECT_NE(json.find("\"ok\":false"), std::string::npos) << json;
    EXPECT_NE(json.find("\"name\":\"Broken Leak\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"passed\":false,"), std::string::npos) << json;
    EXPECT_NE(json.find("{\"name\":\"leftovers\",\"level\":1,\"outcome\":\"fail\",\"findings\":[{\"step\":\"shut-down\","
                        "\"outcome\":\"fail\",\"message\":\"left behind: "),
              std::string::npos)
        << json;
}

TEST(HostRun, AudioOutWritesWhatEachBusPlayedAsAWavFile) {
    TempDir dir;
    const Outcome o = RunHost("--quiet --audio-out " + dir.Path());
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("Tone Player - UI: 1 sound, 1.00 s played, 1 completion delivered"),
              std::string::npos)
        << o.output;
    if (system("sox --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "sox is not installed";
    auto soxInfo = [&](const char* flag) {
        FILE* p = popen(("sox --i " + std::string(flag) + " '" + (dir / "UI.wav") + "'").c_str(), "r");
        char line[64] = {};
        if (p && !fgets(line, sizeof line, p)) line[0] = 0;
        if (p) pclose(p);
        return std::string(line);
    };
    EXPECT_EQ(soxInfo("-r"), "22050\n");
    EXPECT_EQ(soxInfo("-s"), "22050\n");  // samples: one second
    EXPECT_EQ(soxInfo("-c"), "1\n");
}

TEST(HostCheck, APluginThatLeavesSoundInTheEngineFails) {
    const Outcome o = RunHost("--check --frames 5 --plugin " + TestPlugin("broken_sound_leak.tvp"));
    EXPECT_EQ(o.status, 1) << o.output;
    EXPECT_NE(o.output.find("sound(s) still playing in channel group 'own group' after unload"),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("left behind: channel group 'own group' was not released after unload"),
              std::string::npos)
        << o.output;
}
