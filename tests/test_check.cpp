// test_check.cpp: tvpm-host --check against a corpus of deliberately broken plugins, its selection options and its reports.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <filesystem>
#include <regex>
#include <vector>

#include "HostRunner.h"

namespace {

struct BrokenCase {
    const char* plugin;  // a case of broken_cases.tvp, or a plugin file of its own (*.tvp)
    const char* args;    // beyond --check --frames 5 --seed 1
    int status;
    std::vector<const char*> findings;  // "<outcome> <check> ... <message part>", as printed
};

// One line per mistake plugin authors make; each must fail with its named check.
const BrokenCase kCorpus[] = {
    {"leak_window", "", 1, {"fail    leftovers.*left behind: window 'Forgotten' was not released by the plugin",
                            "left behind: command held 'test/broken/held' was not released by the plugin",
                            "fail    leftovers.*still had 1 flight loops registered after TPluginStop"}},
    {"hold_world", "", 1, {"left behind: object '", "left behind: instance '",
                           "left behind: AI aircraft control 'the other aircraft' was not released by the plugin",
                           "note    world-services   \\[aircraft unload\\] the plugin still controlled the camera at "
                           "shut-down"}},
    {"leak_avionics", "", 1, {"left behind: avionics device 'Forgotten display' was not released by the plugin"}},
    {"leak_weather", "", 1, {"fail    world-services   \\[shut-down\\] left a bulk weather update open at the end "
                             "of a callback", "map layer\\(s\\) stay registered after unload"}},
    {"leak_sound", "", 1, {"sound\\(s\\) still playing in channel group 'own group' after unload",
                           "left behind: channel group 'own group' was not released after unload"}},
    {"crash_menu_handler", "", 3, {"crash   fuzz.*\\[fuzz round \\d+: menu pick 'Crash'\\] Segmentation fault during "
                                   "menu handler \\(replay with --seed 1\\)\n    at [^\n]*crash_menu_handler.tvp "
                                   "\\+0x[0-9a-f]+ [\\s\\S]*CrashingMenu"}},
    {"crash_mouse_handler", "", 3, {"crash   fuzz.*mouse click, drag and scroll"}},
    {"crash_key_sniffer", "", 3, {"crash   fuzz.*key .* down and up"}},
    {"crash_command_handler", "", 3, {"crash   fuzz.*command 'test/crash' begin, hold and end"}},
    {"crash_data_accessor", "", 3, {"crash   fuzz.*read and write of data item 'test/crash/item'"}},
    {"crash_message", "", 3, {"crash   fuzz.*message \\d+\\] Segmentation fault during TPluginReceiveMessage"}},
    {"crash_fuzz_enable", "--seed 7", 3, {"crash   fuzz.*\\[fuzz round \\d+: disable, a frame, enable\\] Segmentation "
                                          "fault during TPluginDisable and TPluginEnable \\(replay with --seed 7\\)"}},
    {"crash_disable", "", 3, {"crash   lifecycle        \\[disable\\] Segmentation fault during TPluginDisable"}},
    {"api_errors", "", 1, {"fail    errors.*\"Illegal feature name passed to TVPMEnableFeature\""}},
    {"misspelt_data", "", 1, {"fail    unknown-data.*'sim/flightmodel/position/elevatoin', which the simulator "
                              "does not publish"}},
    {"broken_hidden_entry.tvp", "", 1, {"fail    entry-points.*TPluginEnable is defined but not exported"}},
    {"detached_thread", "--fuzz 0", 3, {"late-threads.*(still running after TPluginStop|used its code or data after "
                                        "the plugin was unloaded\n    at .*detached_thread.tvp \\+0x[0-9a-f]+ "
                                        "\\(unloaded\\))"}},
    {"thread_menu", "", 1, {"fail    threads.*Threading violation calling TVPMFindPluginsMenu",
                            "threads          \\[start\\] Violation by Broken thread_menu \\(test.broken.thread_menu - "}},
    {"hang_flight_loop", "--timeout 2", 4, {"timeout lifecycle        \\[frames\\] did not finish the step within the "
                                            "timeout, stuck during flight loops before the flight model\n.*Spin"}},
    {"slow_flight_loop", "--fuzz 0 --level 4", 1, {"fail    timing.*a flight loop callback took \\d+ us, more than "
                                                   "the frame budget of 16667 us at 60 fps"}},
    {"open_file", "", 1, {"fail    file-descriptors.*opened by the plugin still open after it was unloaded: \\d+ "
                          "\\(/dev/null\\)"}},
    {"pinned_code", "", 1, {"fail    code-unmapped    \\[shut-down\\] plugin code still mapped after it was unloaded"}},
    {"name_overrun", "", 1, {"fail    caller-buffers   \\[start\\] \\[name_overrun.tvp\\]: buffer overrun: TPluginStart "
                             "wrote past the end of the 256-byte name buffer"}},
    {"refuse_start", "", 1, {"fail    load             \\[start\\] did not load: The plugin refused to start by "
                             "returning 0 from TPluginStart\\."}},
    // A warning passes the plugin, unless the check is strict or at level 5.
    {"deprecated_data", "", 0, {"PASS  Broken deprecated_data", "warn    warnings         \\[start\\] "
                                "\\[Broken deprecated_data\\]: Dataref 'sim/graphics/view/legacy_frame_rate' is "
                                "deprecated and will be removed in a future version\\."}},
    {"deprecated_data", "--strict", 1, {"FAIL  Broken deprecated_data"}},
    {"deprecated_data", "--level 5", 1, {"warn    warnings.*is deprecated"}},
};

void PrintTo(const BrokenCase& c, std::ostream* os) { *os << c.plugin << " " << c.args; }

class CheckCorpus : public testing::TestWithParam<BrokenCase> {};

TEST_P(CheckCorpus, FailsWithItsNamedCheckAndAMessage) {
    const BrokenCase& c = GetParam();
    TempDir dir;
    const std::string plugin = strstr(c.plugin, ".tvp") ? TestPlugin(c.plugin) : dir.BrokenCase(c.plugin);
    const HostOutcome o = RunHost("--check --frames 5 --seed 1 " + std::string(c.args) + " --plugin " + plugin);
    EXPECT_EQ(o.status, c.status) << o.output;
    for (const char* finding : c.findings)
        EXPECT_TRUE(std::regex_search(o.output, std::regex(finding))) << finding << "\n" << o.output;
    EXPECT_NE(o.output.find(c.status ? "0 of 1 plugins passed" : "1 of 1 plugins passed"), std::string::npos)
        << o.output;
}

INSTANTIATE_TEST_SUITE_P(Broken, CheckCorpus, testing::ValuesIn(kCorpus), [](const auto& info) {
    std::string name = std::string(info.param.plugin).substr(0, std::string(info.param.plugin).find('.'));
    if (*info.param.args) name += "_";
    for (const char* a = info.param.args; *a; ++a)
        if (isalnum(static_cast<unsigned char>(*a))) name += *a;
    return name;
});

std::string Examples() { return BinaryDir() + "/sim/Resources/plugins/"; }

TEST(CheckOptions, ChecksAreListedSelectedByNamePatternAndLevelAndMisuseIsAUsageError) {
    HostOutcome o = RunHost("--version");
    EXPECT_TRUE(std::regex_search(o.output, std::regex("^tvpm-host [0-9.]+ \\(plugin interface 421, hook table 25\\)")));
    o = RunHost("--list-data");
    EXPECT_TRUE(std::regex_search(o.output, std::regex("\\nsim/graphics/view/legacy_frame_rate +float +no +deprecated\\n")))
        << o.output;
    o = RunHost("--list-checks");
    EXPECT_EQ(o.status, 0);
    for (const char* check : {"load", "lifecycle", "threads", "leftovers", "errors", "unknown-data", "fuzz", "timing",
                              "entry-points", "file-descriptors", "late-threads", "code-unmapped", "caller-buffers"})
        EXPECT_TRUE(std::regex_search(o.output, std::regex(std::string("\n") + check + " +[1-5] +\\w"))) << check;
    TempDir dir;
    const std::string leaky = " --frames 5 --plugin " + dir.BrokenCase("leak_window");
    const struct {
        std::string args;
        int status;
    } kRuns[] = {{"--check --skip 'left*'" + leaky, 0},
                 {"--check --only load,lifecycle" + leaky, 0},
                 {"--check --only leftovers" + leaky, 1},
                 {"--check --only nonesuch" + leaky, 2},
                 {"--check --level 6" + leaky, 2},
                 {"--check --skip lifecycle --frames 5 --plugin " + dir.BrokenCase("crash_disable"), 3},
                 {"--level 2", 2}};
    for (auto& run : kRuns) EXPECT_EQ(RunHost(run.args).status, run.status) << run.args;
}

TEST(CheckReplay, ASeededCrashReplaysTheSameRoundAndTheSeedIsPrinted) {
    TempDir dir;
    const std::string plugin = dir.BrokenCase("crash_key_sniffer");
    const HostOutcome first = RunHost("--check --frames 5 --plugin " + plugin);
    std::smatch seed, round;
    ASSERT_TRUE(std::regex_search(first.output, seed, std::regex("Fuzzing 200 rounds with seed (\\d+)")))
        << first.output;
    ASSERT_TRUE(std::regex_search(first.output, round, std::regex("\\[fuzz round [^\\n]*"))) << first.output;
    const HostOutcome again = RunHost("--check --frames 5 --seed " + seed[1].str() + " --plugin " + plugin);
    EXPECT_EQ(again.status, 3);
    EXPECT_NE(again.output.find(round.str()), std::string::npos) << round.str() << "\n" << again.output;
}

// Callback times under a sanitizer say nothing about the examples.
#ifdef __SANITIZE_ADDRESS__
constexpr const char* kHighest = "--level 5 --skip timing";
#else
constexpr const char* kHighest = "--level 5";
#endif

TEST(CheckExamples, PassAtTheDefaultAndTheHighestLevel) {
    for (const std::string level : {"", kHighest}) {
        const HostOutcome o = RunHost("--check --frames 20 " + level);
        EXPECT_EQ(o.status, 0) << level << "\n" << o.output;
        EXPECT_TRUE(std::regex_search(o.output, std::regex("\\n(\\d+) of \\1 plugins passed( \\(strict\\))?: all passed"))) << o.output;
        EXPECT_NE(o.output.find("PASS  Example Avionics (aircraft)"), std::string::npos) << o.output;
    }
}

TEST(CheckReports, EachPluginIsJudgedOnItsOwnInTheOutputTheLogTheJsonAndTheJUnitReport) {
    TempDir dir;
    const std::string plugins[] = {dir.BrokenCase("crash_disable"), dir.BrokenCase("leak_window"),
                                   dir.BrokenCase("refuse_start"), Examples() + "panel_clock"};
    std::string args = "--check --frames 5 --seed 1 --level 2 --junit " + (dir / "check.xml") + " --report " +
                       (dir / "check.json") + " --log " + (dir / "check.log");
    for (const std::string& plugin : plugins) args += " --plugin " + plugin;
    const HostOutcome o = RunHost(args);
    EXPECT_EQ(o.status, 3) << o.output;
    EXPECT_NE(o.output.find("PASS  Panel Clock"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find("1 of 4 plugins passed"), std::string::npos) << o.output;
    const std::string log = Slurp(dir / "check.log");
    for (const std::string& plugin : plugins)
        EXPECT_NE(log.find("==== " + plugin + "\n"), std::string::npos) << plugin << "\n" << log;
    const std::string json = Slurp(dir / "check.json");
    for (const char* expected :
         {"\"ok\":false", "\"name\":\"Broken leak_window\"", "\"passed\":false,",
          "{\"name\":\"leftovers\",\"level\":1,\"outcome\":\"fail\",\"findings\":[{\"step\":\"shut-down\","
          "\"outcome\":\"fail\",\"message\":\"left behind: "})
        EXPECT_NE(json.find(expected), std::string::npos) << expected << "\n" << json;
    const std::string xml = dir / "check.xml";
    auto count = [&](const std::string& xpath) {
        const std::string out = RunShell("xmllint --xpath 'count(" + xpath + ")' '" + xml + "'").output;
        return out.substr(0, out.find('\n'));
    };
    EXPECT_EQ(system(("xmllint --noout '" + xml + "'").c_str()), 0) << Slurp(xml);
    EXPECT_EQ(count("/testsuites[@name and @tests and @failures and @errors and @time]"), "1");
    EXPECT_EQ(count("/testsuites/testsuite[@name and @tests and @failures and @errors and @time]"), "4");
    EXPECT_EQ(count("//testsuite[@name=\"Broken crash_disable\"]/testcase[@name=\"lifecycle\"]/error[@message]"), "1");
    EXPECT_EQ(count("//testsuite[@name=\"Broken leak_window\"]/testcase[@name=\"leftovers\"]/failure[@message]"), "1");
    EXPECT_EQ(count("//testsuite[@name=\"Panel Clock\"]/testcase[@name=\"fuzz\"]/skipped"), "1");
    EXPECT_EQ(count("//testsuite[@name=\"Panel Clock\"]//failure | //testsuite[@name=\"Panel Clock\"]//error"), "0");
}

TEST(CheckReports, TheHtmlChartRendersEachCategoryAndTheFrameBudgetInABrowser) {
    if (system("command -v chromium >/dev/null") != 0) GTEST_SKIP() << "chromium is not installed";
    TempDir dir;
    const HostOutcome o = RunHost("--check --frames 20 --fuzz 0 --html " + (dir / "check.html") + " --plugin " +
                                  Examples() + "panel_clock");
    EXPECT_EQ(o.status, 0) << o.output;
    const std::string dom =
        RunShell("{ chromium --headless --no-sandbox --disable-gpu --no-first-run --disable-background-networking "
                 "--disable-component-update --disable-sync --user-data-dir='" + (dir / "profile") +
                 "' --dump-dom 'file://" + (dir / "check.html") + "' 2>/dev/null; }").output;
    EXPECT_NE(dom.find("PASS Panel Clock"), std::string::npos) << dom;
    // Panel Clock runs a flight loop and draws its window: one band each, stacked.
    for (const char* category : {"flight loop", "window drawing"})
        EXPECT_TRUE(std::regex_search(dom, std::regex(std::string("<polygon class=\"series\" data-category=\"") +
                                                      category + "\" fill=\"#[0-9a-f]{6}\" points=\"0,[0-9.]+ ")))
            << category << "\n" << dom;
    EXPECT_TRUE(std::regex_search(dom, std::regex("<line class=\"budget\" x1=\"0\" x2=\"720\" y1=\"([0-9.]+)\" "
                                                  "y2=\"\\1\"")))
        << dom;
    EXPECT_EQ(dom.find("http"), dom.find("http://www.w3.org/2000/svg")) << "no network";
}

}  // namespace
