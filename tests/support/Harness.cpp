// Harness.cpp: the test executable's side of the scripted plugins, and temporary simulator folders.
#include "Harness.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace tvpmtest {

namespace {

std::map<std::string, PluginScript>& Scripts() {
    static std::map<std::string, PluginScript> scripts;
    return scripts;
}

std::string KeyOf(const char* path) {
    std::string p(path ? path : "");
    size_t at = p.rfind("plugins/");
    std::string rest = at == std::string::npos ? p : p.substr(at + strlen("plugins/"));
    return rest.substr(0, rest.find('/'));
}

void Copy(char* out, const std::string& text) { snprintf(out, 256, "%s", text.c_str()); }

}  // namespace

PluginScript& Script(const std::string& key) { return Scripts()[key]; }

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
    char* made = mkdtemp(pattern);
    if (!made) abort();
    root_ = std::string(made) + "/";
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
    std::string to = PluginsDir() + "/" + fileName;
    fs::copy_file(built, to, fs::copy_options::overwrite_existing);
    return to;
}

std::string SimFolder::AddFat(const std::string& name, const std::string& layout,
                              const std::string& built) {
    std::string dir = PluginsDir() + "/" + name;
    std::string file;
    if (layout == "lin_x64")
        file = dir + "/lin_x64/" + name + ".tvp";
    else if (layout == "64")
        file = dir + "/64/lin.tvp";
    else
        file = dir + "/lin.tvp";
    fs::create_directories(fs::path(file).parent_path());
    fs::copy_file(built, file, fs::copy_options::overwrite_existing);
    return file;
}

std::string SimFolder::WriteFile(const std::string& relative, const std::string& bytes) {
    std::string to = root_ + relative;
    fs::create_directories(fs::path(to).parent_path());
    std::ofstream(to, std::ios::binary) << bytes;
    return to;
}

std::string SimFolder::AddAircraft(const std::string& acf, const std::vector<std::string>& plugins,
                                   const std::string& built) {
    std::string folder = MakeDir("Aircraft/" + acf);
    for (const std::string& name : plugins) {
        std::string file = folder + "/plugins/" + name + "/lin_x64/" + name + ".tvp";
        fs::create_directories(fs::path(file).parent_path());
        fs::copy_file(built, file, fs::copy_options::overwrite_existing);
    }
    return folder + "/" + acf + ".acf";
}

std::string SimFolder::AddSceneryPack(const std::string& pack,
                                      const std::vector<std::string>& plugins,
                                      const std::string& built) {
    std::string folder = MakeDir("Custom Scenery/" + pack) + "/";
    for (const std::string& name : plugins) {
        std::string file = folder + "plugins/" + name + "/lin_x64/" + name + ".tvp";
        fs::create_directories(fs::path(file).parent_path());
        fs::copy_file(built, file, fs::copy_options::overwrite_existing);
    }
    return folder;
}

}  // namespace tvpmtest

// ---- entry points called by scripted.tvp (exported from the test executable) ----

using tvpmtest::Journal;
using tvpmtest::KeyOf;
using tvpmtest::Script;

extern "C" __attribute__((visibility("default"))) int TestHarness_Start(const char* path, char* name,
                                                                       char* signature,
                                                                       char* description) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":start");
    auto& s = Script(key);
    tvpmtest::Copy(name, key);
    tvpmtest::Copy(signature, "test." + key);
    tvpmtest::Copy(description, "scripted test plugin");
    return s.start ? s.start(name, signature, description) : 1;
}

extern "C" __attribute__((visibility("default"))) void TestHarness_Stop(const char* path) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":stop");
    if (auto& f = Script(key).stop) f();
}

extern "C" __attribute__((visibility("default"))) int TestHarness_Enable(const char* path) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":enable");
    auto& f = Script(key).enable;
    return f ? f() : 1;
}

extern "C" __attribute__((visibility("default"))) void TestHarness_Disable(const char* path) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":disable");
    if (auto& f = Script(key).disable) f();
}

extern "C" __attribute__((visibility("default"))) void TestHarness_Message(const char* path,
                                                                          TVPMPluginID from,
                                                                          int message, void* param) {
    const std::string key = KeyOf(path);
    Journal().push_back(key + ":message " + std::to_string(message) + " from " +
                        std::to_string(from));
    // A copy: the handler may replace the script while it runs.
    if (auto f = Script(key).message) f(from, message, param);
}
