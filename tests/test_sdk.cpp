// test_sdk.cpp: an installed copy of TVPM is a working plugin SDK: find_package(TVPM) and tvpm_add_plugin build a loadable plugin out of tree.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "HostRunner.h"

namespace fs = std::filesystem;

namespace {

// A value of the build's CMakeCache.txt, e.g. CMAKE_COMMAND.
std::string CacheValue(const std::string& key) {
    std::ifstream in(BinaryDir() + "/CMakeCache.txt");
    for (std::string line; std::getline(in, line);)
        if (line.rfind(key + ":", 0) == 0) return line.substr(line.find('=') + 1);
    return "";
}

std::string Quote(const std::string& s) { return "'" + s + "'"; }
HostOutcome CMake(const std::string& args) { return RunShell(Quote(CacheValue("CMAKE_COMMAND")) + " " + args); }

}  // namespace

TEST(Sdk, InstalledCopyBuildsAnExamplePluginOutOfTree) {
    TempDir dir;
    const std::string prefix = dir / "prefix";
    HostOutcome o = CMake("--install " + Quote(BinaryDir()) + " --prefix " + Quote(prefix));
    ASSERT_EQ(o.status, 0) << o.output;

    const std::string source = dir / "src";
    fs::create_directories(source);
    fs::copy_file(CacheValue("CMAKE_HOME_DIRECTORY") + "/examples/panel_clock.cpp", source + "/panel_clock.cpp");
    // A helper the author exported by mistake must stay hidden in the plugin.
    std::ofstream(source + "/helper.cpp") << "__attribute__((visibility(\"default\"))) int my_helper() { return 1; }\n";
    // Plugins do not see the simulator's header; a simulator gets it through TVPM::HostHeaders.
    std::ofstream(source + "/no_host.cpp") << "#if __has_include(<TVPMHost.h>)\n#error plugin sees TVPMHost.h\n#endif\n";
    std::ofstream(source + "/host_side.cpp") << "#include <TVPMHost.h>\n"
                                                "static_assert(sizeof(TVPMHooks) == TVPM_HOOKS_SIZE, \"\");\n";
    std::ofstream(source + "/CMakeLists.txt") << "cmake_minimum_required(VERSION 3.16)\n"
                                                 "project(sdk_user CXX)\n"
                                                 "find_package(TVPM 4.2 REQUIRED)\n"
                                                 "tvpm_add_plugin(my_panel SOURCES panel_clock.cpp helper.cpp)\n"
                                                 "tvpm_add_plugin(flat_panel SOURCES panel_clock.cpp LAYOUT flat\n"
                                                 "                OUTPUT_DIR ${CMAKE_BINARY_DIR}/loose)\n"
                                                 "target_sources(my_panel PRIVATE no_host.cpp)\n"
                                                 "add_library(host_side OBJECT host_side.cpp)\n"
                                                 "target_link_libraries(host_side PRIVATE TVPM::HostHeaders)\n";
    const std::string build = dir / "build";
    o = CMake("-S " + Quote(source) + " -B " + Quote(build) + " -DCMAKE_PREFIX_PATH=" + Quote(prefix));
    ASSERT_EQ(o.status, 0) << o.output;
    o = CMake("--build " + Quote(build));
    ASSERT_EQ(o.status, 0) << o.output;

    // The fat layout the plugin manager loads, and nothing but the entry points exported.
    const std::string plugin = build + "/plugins/my_panel/lin_x64/my_panel.tvp";
    ASSERT_TRUE(fs::exists(plugin));
    EXPECT_EQ(RunShell("nm -D --defined-only --format=just-symbols " + Quote(plugin)).output,
              "TPluginDisable\nTPluginEnable\nTPluginReceiveMessage\nTPluginStart\nTPluginStop\n");
    EXPECT_TRUE(fs::exists(build + "/loose/flat_panel.tvp"));

    // The installed headless simulator finds the installed library and passes the plugin.
    o = RunShell(Quote(prefix + "/bin/tvpm-host") + " --check --frames 5 --plugin " + Quote(build + "/plugins/my_panel"));
    EXPECT_EQ(o.status, 0) << o.output;
    EXPECT_NE(o.output.find("PASS"), std::string::npos) << o.output;
    EXPECT_NE(o.output.find(prefix + "/lib/TVPM_64.so"), std::string::npos) << o.output;
}
