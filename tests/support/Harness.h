// Harness.h: scripted test plugins and temporary simulator folders for the integration tests.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "TVPM/TVPMDefs.h"

namespace tvpmtest {

// What one scripted plugin does at each entry point. Every copy of
// scripted.tvp is told apart by its key: the path component after the last
// "plugins/" (the loose file name, e.g. "alpha.tvp", or the fat folder name).
// Each entry point runs inside the plugin's own call context, so TVPM calls
// made from these functions act on behalf of that plugin.
struct PluginScript {
    // Default: name = key, signature = "test." + key, returns 1.
    std::function<int(char* name, char* signature, char* description)> start;
    std::function<void()> stop;
    std::function<int()> enable;  // default: returns 1
    std::function<void()> disable;
    std::function<void(TVPMPluginID from, int message, void* param)> message;
};

// The script for key, created on first use.
PluginScript& Script(const std::string& key);
// Every entry-point call of every scripted plugin, in order, as "key:start",
// "key:enable", "key:disable", "key:stop", "key:message <n> from <id>".
std::vector<std::string>& Journal();
// The journal lines that start with prefix.
std::vector<std::string> JournalOf(const std::string& prefix);

// The directory holding the built test plugins (scripted.tvp, ...).
std::string BuiltPlugin(const std::string& file);

// A temporary simulator folder, removed at destruction.
class SimFolder {
public:
    SimFolder();
    ~SimFolder();
    SimFolder(const SimFolder&) = delete;
    SimFolder& operator=(const SimFolder&) = delete;

    // The simulator folder, ending with "/".
    const std::string& Root() const { return root_; }
    // Resources/plugins, without a trailing "/".
    std::string PluginsDir() const { return root_ + "Resources/plugins"; }

    // Copies a built plugin to Resources/plugins/<fileName>; returns the path.
    std::string AddLoose(const std::string& fileName, const std::string& built);
    // Copies a built plugin into a fat folder: layout "lin_x64" gives
    // <name>/lin_x64/<name>.tvp, "64" gives <name>/64/lin.tvp, "" <name>/lin.tvp.
    std::string AddFat(const std::string& name, const std::string& layout,
                       const std::string& built);
    // Writes arbitrary bytes to a file below the root (relative path).
    std::string WriteFile(const std::string& relative, const std::string& bytes);
    // Creates an aircraft folder Aircraft/<acf> with fat plugins; returns the
    // aircraft's file path (<folder>/<acf>.acf).
    std::string AddAircraft(const std::string& acf, const std::vector<std::string>& plugins,
                            const std::string& built);
    // Creates a scenery pack Custom Scenery/<pack>/ with fat plugins; returns
    // the pack folder ending with "/".
    std::string AddSceneryPack(const std::string& pack, const std::vector<std::string>& plugins,
                               const std::string& built);
    std::string MakeDir(const std::string& relative);

private:
    std::string root_;
};

}  // namespace tvpmtest
