// test_host.cpp: tvpm-host as plugin authors use it: the default run, its options, the JSON report and the plugin check.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

struct Outcome {
    int status = -1;
    std::string output;
};

std::string BinaryDir() {
    if (const char* dir = getenv("TVPM_BINARY_DIR")) return dir;
    // The test program lives in <build>/tests.
    return fs::read_symlink("/proc/self/exe").parent_path().parent_path().string();
}

std::string Host() { return BinaryDir() + "/host/tvpm-host"; }
std::string TestPlugin(const std::string& name) { return std::string(TVPM_TEST_PLUGIN_DIR) + "/" + name; }


Outcome RunHost(const std::string& args) {
    Outcome o;
    FILE* p = popen(("'" + Host() + "' " + args + " 2>&1").c_str(), "r");
    if (!p) return o;
    char buf[4096];
    for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) o.output.append(buf, n);
    const int raw = pclose(p);
    o.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return o;
}

std::string Slurp(const std::string& file) {
    std::ifstream in(file);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

class TempDir {
public:
    TempDir() {
        std::string pattern = (fs::temp_directory_path() / "tvpm-host-test-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) ? pattern : "";
    }
    ~TempDir() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace

TEST(HostOptions, HelpListsEveryOption) {
    const Outcome o = RunHost("--help");
    EXPECT_EQ(o.status, 0) << o.output;
    for (const char* option : {"--root", "--plugin", "--aircraft", "--scenery", "--frames", "--fps",
                               "--log", "--report", "--quiet", "--check", "--strict"})
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
    EXPECT_NE(o.output.find("problem: did not load: The plugin refused to start by returning 0 from "
                            "TPluginStart."),
              std::string::npos)
        << o.output;
    EXPECT_NE(o.output.find("0 of 1 plugins passed"), std::string::npos);
}

TEST(HostCheck, EveryBundledExamplePasses) {
    TempDir dir;
    const Outcome o = RunHost("--check --frames 20 --report " + (dir / "check.json"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_EQ(o.output.find("FAIL"), std::string::npos) << o.output;
    const std::string json = Slurp(dir / "check.json");
    EXPECT_EQ(json.rfind("{\"mode\":\"check\",\"strict\":false,\"ok\":true", 0), 0u) << json;
}
