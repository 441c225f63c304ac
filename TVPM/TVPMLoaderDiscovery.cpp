// TVPMLoaderDiscovery.cpp: finding plugin files in the simulator, aircraft and scenery folders, loading and starting them.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;

namespace {

constexpr int kTextBufferSize = 256;
constexpr int kMinVersionForInitString = 4;

std::vector<std::string> SortedListing(const std::string& folder, const char* pattern) {
    std::vector<std::string> names;
    TVPMFetchDirectoryContents(folder.c_str(), pattern, names);
    std::sort(names.begin(), names.end());
    return names;
}

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

void LogFetching(const std::string& folder) {
    TVPMDebugString("Fetching plugins for ");
    TVPMDebugString(folder.c_str());
    TVPMDebugString("\n\n");
}

void LogOutcome(const char* head, const std::string& path, const char* tail) {
    TVPMDebugString(head);
    TVPMDebugString(path.c_str());
    TVPMDebugString(tail);
}

// The plugin's name as the loader knows it: the path after "plugins" and the
// separator that follows, or the whole path.
std::string NameFromPath(const std::string& path) {
    size_t at = path.rfind("plugins");
    if (at == std::string::npos) return path;
    size_t start = at + strlen("plugins") + 1;
    return start <= path.size() ? path.substr(start) : std::string();
}

void AddHostRecord() {
    PluginRecord& host = gAllPlugins.emplace_back();
    host.name = "Torvane";
    host.signature = "norvel.torvane.torvane";
    host.description = "Torvane flight simulator";
    host.receiveMessageFunc = gHooks->TorvaneReceiveMessage_f;
    host.enabled = true;
}

PluginRecord& AppendPluginRecord(void* dll, const std::string& path) {
    PluginRecord& r = gAllPlugins.emplace_back();
    r.dllRef = dll;
    r.name = NameFromPath(path);
    r.path = path;
    r.exitFunc = reinterpret_cast<TVPMPluginStop_f>(TVPMFindSymbol(dll, "TPluginStop", 1));
    r.enableFunc = reinterpret_cast<TVPMPluginEnable_f>(TVPMFindSymbol(dll, "TPluginEnable", 1));
    r.disableFunc = reinterpret_cast<TVPMPluginDisable_f>(TVPMFindSymbol(dll, "TPluginDisable", 1));
    r.receiveMessageFunc = reinterpret_cast<TVPMPluginReceiveMessage_f>(
        TVPMFindSymbol(dll, "TPluginReceiveMessage", 1));
    return r;
}

// Drops the table's last record (a plugin that never got going).
void DropLastRecord(bool isAircraftPlugin) {
    gAllPlugins.pop_back();
    if (isAircraftPlugin && !gCurrentAircraftPluginIDS.empty()) gCurrentAircraftPluginIDS.pop_back();
}

// The first plugin whose signature equals signature, or -1.
TVPMPluginID FindSignature(const char* signature) {
    const size_t len = strlen(signature);
    for (size_t i = 0; i < gAllPlugins.size(); ++i) {
        const std::string& s = gAllPlugins[i].signature;
        if (s.size() == len && memcmp(s.data(), signature, len) == 0)
            return static_cast<TVPMPluginID>(i);
    }
    return TVPM_NO_PLUGIN_ID;
}

TVPMPluginID LoadOnePlugin(const std::string& inPluginPath, int inLegacyPlugin,
                           int isCurrentAcfPlugin) {
    if (!gHooks->TVPMShouldLoadPlugin_f(inPluginPath.c_str())) return TVPM_NO_PLUGIN_ID;
    void* dll = TVPMLoadDLL(inPluginPath.c_str());
    if (!dll) {
        if (inLegacyPlugin)
            LogOutcome("Failed: ", inPluginPath,
                       ".  (This file is missing, not a DLL or could not be loaded due to another "
                       "missing DLL.)\n\n");
        return TVPM_NO_PLUGIN_ID;
    }
    auto start = reinterpret_cast<TVPMPluginStart_f>(TVPMFindSymbol(dll, "TPluginStart", 1));
    if (!start) {
        LogOutcome("Failed: ", inPluginPath,
                   ".  (This file is a loadable DLL but is missing the TPluginStart callback.)\n\n");
        TVPMUnloadDLL(dll);
        return TVPM_NO_PLUGIN_ID;
    }
    const TVPMPluginID id = TVPMCountPlugins();
    const bool isAircraftPlugin = isCurrentAcfPlugin != 0;
    TVPMSetDispatchedPlugin(id);
    AppendPluginRecord(dll, inPluginPath);
    if (isAircraftPlugin) gCurrentAircraftPluginIDS.push_back(id);

    char name[kTextBufferSize] = "", signature[kTextBufferSize] = "",
         description[kTextBufferSize] = "";
    if (!start(name, signature, description)) {
        LogOutcome("Failed: ", inPluginPath,
                   ". (The plugin refused to start by returning 0 from TPluginStart.)\n\n");
        DropLastRecord(isAircraftPlugin);
        TVPMSetDispatchedPlugin(0);
        TVPMUnloadDLL(dll);
        return TVPM_NO_PLUGIN_ID;
    }
    name[kTextBufferSize - 1] = signature[kTextBufferSize - 1] = description[kTextBufferSize - 1] = 0;
    TVPMSetDispatchedPlugin(0);
    if (FindSignature(signature) != TVPM_NO_PLUGIN_ID) {
        TVPMSetDispatchedPlugin(id);
        UnloadOnePlugin(id);
        TVPMSetDispatchedPlugin(0);
        DropLastRecord(isAircraftPlugin);
        TVPMDebugString("Warning: ");
        TVPMDebugString(inPluginPath.c_str());
        TVPMDebugString(" Signature: ");
        TVPMDebugString(signature);
        TVPMDebugString(". (A version of this plugin is already loaded.)\n");
        return TVPM_NO_PLUGIN_ID;
    }
    PluginRecord& r = gAllPlugins[static_cast<size_t>(id)];
    r.name = name;
    r.signature = signature;
    r.description = description;
    TVPMDebugString("Loaded: ");
    TVPMDebugString(inPluginPath.c_str());
    TVPMDebugString(" (");
    TVPMDebugString(signature);
    TVPMDebugString(").\n\n");
    return id;
}

TVPMPluginID LoadFatPlugin(const std::string& inName, const std::string& inPath,
                           int isCurrentAcfPlugin) {
    const std::string candidates[] = {
        inPath + "/lin_x64/" + inName + ".tvp",
        inPath + "/64/lin.tvp",
        inPath + "/lin.tvp",
    };
    for (const std::string& candidate : candidates) {
        TVPMPluginID id = LoadOnePlugin(candidate, 0, isCurrentAcfPlugin);
        if (id != TVPM_NO_PLUGIN_ID) return id;
    }
    return TVPM_NO_PLUGIN_ID;
}

bool IsSkippedFatFolder(const std::string& name) {
    return Contains(name, "PluginAdmin") || Contains(name, "TVPM.framework") ||
           Contains(name, "TVWidgets.framework");
}

void LoadLooseFiles(const std::string& folder) {
    for (const std::string& name : SortedListing(folder, "*.tvp")) {
        if (Contains(name, "PluginAdmin")) continue;
        const std::string path = folder + "/" + name;
        if (!gHooks->TVPMShouldLoadPlugin_f(path.c_str())) continue;
        if (gHooks->version >= kMinVersionForInitString)
            gHooks->TVPMDisplayInitString_f(("Loading Plugin: " + name).c_str());
        LoadOnePlugin(path, 1, 0);
    }
}

}  // namespace

void TVPMFindAndLoadPlugins(const char* inSystemPath) {
    TVPMSetDispatchedPlugin(0);
    AddHostRecord();
    const std::string folder = std::string(inSystemPath) + "Resources/plugins";
    LogFetching(folder);
    LoadFatPlugin("PluginAdmin", folder + "/PluginAdmin", 0);
    LoadLooseFiles(folder);
    for (const std::string& name : SortedListing(folder, "DIR"))
        if (!IsSkippedFatFolder(name)) LoadFatPlugin(name, folder + "/" + name, 0);
}

void TVPMFindAndLoadAcfPlugins(const char* inAircraftPath) {
    const std::string folder = std::string(inAircraftPath) + "/plugins";
    const std::vector<std::string> names = SortedListing(folder, "DIR");
    LogFetching(folder);
    for (const std::string& name : names) LoadFatPlugin(name, folder + "/" + name, 1);
}

void TVPMFindAndLoadSceneryPlugins(const char* inSceneryPack) {
    if (!inSceneryPack) return;
    const std::string folder = std::string(inSceneryPack) + "plugins";
    const std::vector<std::string> names = SortedListing(folder, "DIR");
    LogFetching(folder);
    std::vector<TVPMPluginID> loaded;
    for (const std::string& name : names) {
        TVPMPluginID id = LoadFatPlugin(name, folder + "/" + name, 0);
        if (id != TVPM_NO_PLUGIN_ID) loaded.push_back(id);
    }
    for (TVPMPluginID id : loaded) TVPMEnablePlugin(id);
}
