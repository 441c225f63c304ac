// test_host.cpp: tvpm-host as plugin authors use it: the default run, its options, its log and JSON report.
#include <gtest/gtest.h>

#include <vector>

#include "HostRunner.h"

namespace fs = std::filesystem;

namespace {

void ExpectAll(const std::string& text, const std::vector<std::string>& parts) {
    for (const std::string& part : parts) EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
}

}  // namespace

TEST(HostOptions, HelpListsEveryOptionAndBadCommandLinesAreRefusedWithAReason) {
    HostOutcome o = RunHost("--help");
    EXPECT_EQ(o.status, 0) << o.output;
    ExpectAll(o.output, {"--plugin", "--check", "--timeout SECONDS", "3 a plugin crashed, 4 a plugin hung"});
    TempDir empty;
    fs::create_directories(empty / "Resources/plugins");
    const std::pair<std::string, const char*> kRefused[] = {
        {"--frobnicate", "unknown option '--frobnicate'"},
        {"--frames 0", "--frames needs a positive whole number"},
        {"--frames", "--frames needs a value"},
        {"--root /tmp --plugin x.tvp", ""},
        {"--plugin /nonexistent/thing.tvp", "/nonexistent/thing.tvp does not exist"},
        {"--plugin " + BinaryDir() + "/sim", "is a folder without lin_x64/sim.tvp, 64/lin.tvp or lin.tvp"},
        {"--plugin " + BinaryDir() + "/CMakeCache.txt", "is not a .tvp plugin file"},
        {"--strict", "--strict only applies to --check"},
        {"--root /nonexistent/sim", "does not exist"},
        {"--check --root " + empty.Path(), "no plugins to check"},
    };
    for (const auto& [args, reason] : kRefused) {
        o = RunHost(args);
        EXPECT_EQ(o.status, 2) << args;
        EXPECT_NE(o.output.find(reason), std::string::npos) << args << "\n" << o.output;
    }
}

TEST(HostRun, TheExamplesSeeACoherentSimulatedWorldAndTheSummaryShowsWhatTheyRegistered) {
    // 300 frames at 60 fps: the shared tick reaches 2 s while the airspeed
    // item (80 kt plus the clock) reads 82 kt; half-way the menu item runs
    // the panel clock's command, which hides its window (drawn 151 times),
    // and "Reset Clock" restarts the clock, which ends 149 frames later.
    HostOutcome o = RunHost("");
    EXPECT_EQ(o.status, 0) << o.output;
    ExpectAll(o.output,
              {"  | Loaded: ", "Result: OK", "Plugins loaded: 6, failed: 0", "the user's aircraft was unloaded",
               "Example Avionics         tvpm.examples.example_avionics  (aircraft)",
               "data items   2: tvpm/examples/panel_clock/elapsed_sec, tvpm/examples/panel_clock/window_visible",
               "menu items   1: <Aircraft> > Toggle TCAS override", "hot keys     1: Show or hide the panel clock",
               "Panel Clock              flight loop                   300",
               "Clock Listener: tick 2, panel clock at 2.00 s, airspeed 82.0 kt",
               "Example Avionics: timer drawn 300 times, 10 touches, 10 keys; display overlay drawn 300 times",
               "Panel Clock: stopped after 2.5 s, window drawn 151 times"});
    EXPECT_EQ(o.output.find("Left behind"), std::string::npos) << o.output;
}

TEST(HostRun, QuietKeepsTheLogForTheLogFileAndTheJsonReportListsRegistrationsAndTimings) {
    TempDir dir;
    const HostOutcome o =
        RunHost("--quiet --fps 30 --log " + (dir / "run.log") + " --report " + (dir / "run.json"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_EQ(o.output.find("  | Loaded: "), std::string::npos) << o.output;
    // Half the frame rate: the same frames cover twice the time.
    ExpectAll(Slurp(dir / "run.log"), {"Loaded: ", "Panel Clock: stopped after 5.0 s, window drawn 151 times"});
    const std::string json = Slurp(dir / "run.json");
    EXPECT_EQ(json.rfind("{\"mode\":\"run\",\"ok\":true", 0), 0u) << json;
    ExpectAll(json, {"\"fps\":30", "\"name\":\"Panel Clock\",\"signature\":\"tvpm.examples.panel_clock\"",
                     "\"windows\":[\"Panel Clock\"]", "{\"category\":\"flight loop\",\"calls\":300,"});
}

TEST(HostRun, ABrokenPluginIsReportedInTheSummaryAndTheJsonReport) {
    const struct {
        const char* brokenCase;
        int status;
        std::vector<std::string> output, json;
    } kCases[] = {
        {"refuse_start", 1,
         {"failed: 1", "refuse_start.tvp: The plugin refused to start by returning 0 from TPluginStart.",
          "Result: FAILED"},
         {"\"ok\":false", "\"reason\":\"The plugin refused to start by returning 0 from TPluginStart.\""}},
        {"crash_disable", 3,
         {"Segmentation fault in step 'shut-down' during TPluginDisable and TPluginStop at shut-down, in plugin /"},
         {"{\"mode\":\"run\",\"ok\":false,\"crash\":{\"signal\":\"Segmentation fault\",\"step\":\"shut-down\""}},
        // What a plugin left behind is listed but does not fail the run.
        {"leak_window", 0,
         {"Left behind at unload (2)", "window 'Forgotten' released only by TVPM's clean-up"},
         {"\"ok\":true"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.brokenCase);
        TempDir dir;
        const HostOutcome o = RunHost("--quiet --frames 5 --report " + (dir / "run.json") + " --plugin " +
                                      dir.BrokenCase(c.brokenCase));
        EXPECT_EQ(o.status, c.status) << o.output;
        ExpectAll(o.output, c.output);
        ExpectAll(Slurp(dir / "run.json"), c.json);
    }
}

TEST(HostRun, PluginsOfAGivenAircraftAndSceneryPackLoadAndASecondCopyIsRefusedWithTheLoadersWarning) {
    TempDir dir;
    const std::string examples = BinaryDir() + "/sim";
    fs::copy(examples + "/Aircraft/Example", dir / "Cessna", fs::copy_options::recursive);
    for (const char* folder : {"sim/Resources/plugins/panel_clock", "Pack/plugins/panel_clock"}) {
        fs::create_directories(dir / folder);
        fs::copy(examples + "/Resources/plugins/panel_clock", dir / folder, fs::copy_options::recursive);
    }
    const HostOutcome o = RunHost("--frames 30 --root " + (dir / "sim") + " --aircraft " + (dir / "Cessna") +
                                  " --scenery " + (dir / "Pack"));
    EXPECT_EQ(o.status, 0) << o.output;
    ExpectAll(o.output, {"Plugins loaded: 2, failed: 0", "Cessna/plugins/example_avionics/lin_x64/example_avionics.tvp",
                         "Pack/plugins/panel_clock/lin_x64/panel_clock.tvp", "Loader warnings (1)",
                         "Signature: tvpm.examples.panel_clock. (A version of this plugin is already loaded.)"});
}

TEST(HostRun, AudioOutWritesWhatEachBusPlayedAsAWavFile) {
    TempDir dir;
    const HostOutcome o = RunHost("--quiet --audio-out " + dir.Path());
    EXPECT_EQ(o.status, 0) << o.output;
    ExpectAll(o.output, {"Tone Player - UI: 1 sound, 1.00 s played, 1 completion delivered"});
    if (system("sox --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "sox is not installed";
    // Rate, samples (one second) and channels.
    const HostOutcome info = RunShell("sox --i -r '" + (dir / "UI.wav") + "'; sox --i -s '" + (dir / "UI.wav") +
                                      "'; sox --i -c '" + (dir / "UI.wav") + "'");
    EXPECT_EQ(info.output, "22050\n22050\n1\n");
}
