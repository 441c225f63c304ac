// Harness.cpp: the test executable's side of the scripted plugins, and temporary simulator folders.
#include "Harness.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace tvpmtest {

namespace {

std::string KeyOf(const char* path) {
    std::string p(path ? path : "");
    size_t at = p.rfind("plugins/");
    std::string rest = at == std::string::npos ? p : p.substr(at + strlen("plugins/"));
    return rest.substr(0, rest.find('/'));
}

void Copy(char* out, const std::string& text) { snprintf(out, 256, "%s", text.c_str()); }

std::string CopyPlugin(const std::string& built, const std::string& to) {
    fs::create_directories(fs::path(to).parent_path());
    fs::copy_file(built, to, fs::copy_options::overwrite_existing);
    return to;
}

// Fat plugins <folder>plugins/<name>/lin_x64/<name>.tvp, as aircraft and scenery packs hold them.
void AddFatPlugins(const std::string& folder, const std::vector<std::string>& plugins, const std::string& built) {
    for (const std::string& name : plugins) CopyPlugin(built, folder + "plugins/" + name + "/lin_x64/" + name + ".tvp");
}

}  // namespace

PluginScript& Script(const std::string& key) {
    static std::map<std::string, PluginScript> scripts;
    return scripts[key];
}

std::vector<std::string>& Journal() {
    static std::vector<std::string> journal;
    return journal;
}

std::vector<std::string> JournalOf(const std::string& prefix) {
    std::vector<std::string> out;
    for (const std::string& line : Journal())
        if (line.compare(0, prefix.size(), prefix) == 0) out.push_back(line);
    return out;
}

std::string BuiltPlugin(const std::string& file) { return std::string(TVPM_TEST_PLUGIN_DIR) + "/" + file; }

SimFolder::SimFolder() {
    char pattern[] = "/tmp/tvpm-sim-XXXXXX";
    if (!mkdtemp(pattern)) abort();
    root_ = std::string(pattern) + "/";
    fs::create_directories(PluginsDir());
}

SimFolder::~SimFolder() {
    std::error_code ec;
    fs::remove_all(root_, ec);
}

std::string SimFolder::MakeDir(const std::string& relative) {
    fs::create_directories(root_ + relative);
    return root_ + relative;
}

std::string SimFolder::AddLoose(const std::string& fileName, const std::string& built) {
    return CopyPlugin(built, PluginsDir() + "/" + fileName);
}

std::string SimFolder::AddFat(const std::string& name, const std::string& layout, const std::string& built) {
    const std::string dir = PluginsDir() + "/" + name;
    if (layout == "lin_x64") return CopyPlugin(built, dir + "/lin_x64/" + name + ".tvp");
    return CopyPlugin(built, dir + (layout == "64" ? "/64/lin.tvp" : "/lin.tvp"));
}

std::string SimFolder::WriteFile(const std::string& relative, const std::string& bytes) {
    std::string to = root_ + relative;
    fs::create_directories(fs::path(to).parent_path());
    std::ofstream(to, std::ios::binary) << bytes;
    return to;
}

std::string SimFolder::AddAircraft(const std::string& acf, const std::vector<std::string>& plugins,
                                   const std::string& built) {
    const std::string folder = MakeDir("Aircraft/" + acf);
    AddFatPlugins(folder + "/", plugins, built);
    return folder + "/" + acf + ".acf";
}

std::string SimFolder::AddSceneryPack(const std::string& pack, const std::vector<std::string>& plugins,
                                      const std::string& built) {
    const std::string folder = MakeDir("Custom Scenery/" + pack) + "/";
    AddFatPlugins(folder, plugins, built);
    return folder;
}

}  // namespace tvpmtest

// ---- entry points called by scripted.tvp (exported from the test executable) ----

#define TVPM_HARNESS_ENTRY extern "C" __attribute__((visibility("default")))
using tvpmtest::Journal;
using tvpmtest::KeyOf;
using tvpmtest::Script;

TVPM_HARNESS_ENTRY int TestHarness_Start(const char* path, char* name, char* signature, char* description) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":start");
    tvpmtest::Copy(name, key);
    tvpmtest::Copy(signature, "test." + key);
    tvpmtest::Copy(description, "scripted test plugin");
    auto& f = Script(key).start;
    return f ? f(name, signature, description) : 1;
}

TVPM_HARNESS_ENTRY void TestHarness_Stop(const char* path) {
    Journal().push_back(KeyOf(path) + ":stop");
    if (auto& f = Script(KeyOf(path)).stop) f();
}

TVPM_HARNESS_ENTRY int TestHarness_Enable(const char* path) {
    Journal().push_back(KeyOf(path) + ":enable");
    auto& f = Script(KeyOf(path)).enable;
    return f ? f() : 1;
}

TVPM_HARNESS_ENTRY void TestHarness_Disable(const char* path) {
    Journal().push_back(KeyOf(path) + ":disable");
    if (auto& f = Script(KeyOf(path)).disable) f();
}

TVPM_HARNESS_ENTRY void TestHarness_Message(const char* path, TVPMPluginID from, int message, void* param) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":message " + std::to_string(message) + " from " + std::to_string(from));
    // A copy: the handler may replace the script while it runs.
    if (auto f = Script(key).message) f(from, message, param);
}
