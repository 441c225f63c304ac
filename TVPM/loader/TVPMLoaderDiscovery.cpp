// TVPMLoaderDiscovery.cpp: finding plugin files in the simulator, aircraft and scenery folders, loading and starting them.
#include <algorithm>
#include <memory>
#include <utility>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMGuardedText.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMLoaderNames.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;

namespace {

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

// The plugin table's signatures, each to the ID that took it. Only this unit
// gives records signatures, and it refuses duplicates, so a signature is on
// at most one record: the one indexed last. Trimming or clearing the table
// leaves entries behind, so a hit is checked against the table.
std::unordered_map<std::string, TVPMPluginID> s_signatureIndex;

void SetSignature(TVPMPluginID id, const char* signature) {
    gAllPlugins[static_cast<size_t>(id)].signature = signature;
    s_signatureIndex[signature] = id;
}

}  // namespace

// The plugin that holds a non-empty signature, or -1, without a scan.
TVPMPluginID TVPMIndexedSignatureOwner(const char* signature) {
    const auto it = s_signatureIndex.find(signature);
    if (it == s_signatureIndex.end()) return TVPM_NO_PLUGIN_ID;
    const PluginRecord* r = TVPMGetPluginRecord(it->second);
    if (r && r->signature == signature) return it->second;
    s_signatureIndex.erase(it);
    return TVPM_NO_PLUGIN_ID;
}

namespace {

void AddHostRecord() {
    PluginRecord& host = gAllPlugins.emplace_back();
    host.name = "Torvane";
    host.description = "Torvane flight simulator";
    host.receiveMessageFunc = gHooks->TorvaneReceiveMessage_f;
    host.enabled = true;
    SetSignature(TVPMCountPlugins() - 1, "norvel.torvane.torvane");
}

// The five entry points, resolved in this order; each missing one is logged.
struct EntryPoints {
    TVPMPluginStart_f start;
    TVPMPluginStop_f stop;
    TVPMPluginEnable_f enable;
    TVPMPluginDisable_f disable;
    TVPMPluginReceiveMessage_f receiveMessage;
};

template <class F>
F Resolve(void* dll, const char* symbol) {
    return reinterpret_cast<F>(TVPMFindSymbol(dll, symbol, 1));
}

EntryPoints ResolveEntryPoints(void* dll) {
    EntryPoints e;
    e.start = Resolve<TVPMPluginStart_f>(dll, "TPluginStart");
    e.stop = Resolve<TVPMPluginStop_f>(dll, "TPluginStop");
    e.enable = Resolve<TVPMPluginEnable_f>(dll, "TPluginEnable");
    e.disable = Resolve<TVPMPluginDisable_f>(dll, "TPluginDisable");
    e.receiveMessage = Resolve<TVPMPluginReceiveMessage_f>(dll, "TPluginReceiveMessage");
    return e;
}

void AppendPluginRecord(TVPMPluginID id, void* dll, const std::string& path,
                        const EntryPoints& e) {
    PluginRecord& r = gAllPlugins.emplace_back();
    r.dllRef = dll;
    r.name = NameFromPath(path);
    r.path = path;
    r.exitFunc = e.stop;
    r.enableFunc = e.enable;
    r.disableFunc = e.disable;
    r.receiveMessageFunc = e.receiveMessage;
    TVPMPublishPluginLibrary(r.generation, dll, id, r.name);
}

// Drops the table's last record (a plugin that never got going).
void DropLastRecord(bool isAircraftPlugin) {
    TVPMWithdrawPluginLibrary(gAllPlugins.back().generation);
    gAllPlugins.pop_back();
    if (isAircraftPlugin && !gCurrentAircraftPluginIDS.empty())
        gCurrentAircraftPluginIDS.pop_back();
}

// The three texts TPluginStart fills, each with a guard area behind it.
struct StartTexts {
    TVPMGuardedText name, signature, description;
};

// Calls TPluginStart with the new plugin current; a throw counts as a 0. The
// simulator is current again afterwards, whatever the plugin did.
bool CallPluginStart(TVPMPluginID id, void* dll, TVPMPluginStart_f start, StartTexts& texts) {
    int started = 0;
    {
        StLoaderCall call(id, dll);
        TVPMGuardPluginCall(id, TVPMCallSite::kStart, [&] {
            started = start(texts.name.data(), texts.signature.data(), texts.description.data());
        });
    }
    TVPMSetDispatchedPlugin(0);
    return started != 0;
}

// A plugin that filled a buffer to the brim still gets terminated text; one
// that wrote past it is reported.
void SealStartTexts(TVPMPluginID id, StartTexts& texts) {
    const std::pair<TVPMGuardedText*, const char*> all[] = {
        {&texts.name, "name"}, {&texts.signature, "signature"}, {&texts.description, "description"}};
    for (const auto& text : all)
        if (text.first->Seal()) TVPMReportBufferOverrun(id, "TPluginStart", text.second);
}

// TPluginStart said no: the plugin leaves nothing behind. Whatever it
// registered while starting is released too, since its code is about to go.
void RefuseStart(TVPMPluginID id, void* dll, const std::string& path, bool isAircraftPlugin) {
    LogOutcome("Failed: ", path,
               ". (The plugin refused to start by returning 0 from TPluginStart.)\n\n");
    TVPMSetDispatchedPlugin(0);
    TVPMRunCleanupHooks(id);
    DropLastRecord(isAircraftPlugin);
    TVPMUnloadDLL(dll);
}

void RefuseDuplicate(TVPMPluginID id, const std::string& path, const char* signature,
                     bool isAircraftPlugin) {
    TVPMSetDispatchedPlugin(id);
    TVPMUnloadStoppedPlugin(id);
    TVPMSetDispatchedPlugin(0);
    DropLastRecord(isAircraftPlugin);
    TVPMDebugString("Warning: ");
    TVPMDebugString(path.c_str());
    TVPMDebugString(" Signature: ");
    TVPMDebugString(signature);
    TVPMDebugString(". (A version of this plugin is already loaded.)\n");
}

}  // namespace

TVPMPluginID LoadOnePlugin(const std::string& inPluginPath, int inLegacyPlugin,
                           int isCurrentAcfPlugin) {
    if (!gHooks->TVPMShouldLoadPlugin_f(inPluginPath.c_str())) return TVPM_NO_PLUGIN_ID;
    const char* what = nullptr;
    const TVPMFileKind kind = TVPMLookAtFile(inPluginPath.c_str(), &what);
    if (kind == TVPMFileKind::kOther) {
        LogOutcome("Failed: ", inPluginPath,
                   (std::string(".  (This is ") + what +
                    ", not a plugin file; it was not opened.)\n\n").c_str());
        return TVPM_NO_PLUGIN_ID;
    }
    void* dll = kind == TVPMFileKind::kRegular ? TVPMOpenDLL(inPluginPath.c_str()) : nullptr;
    if (!dll) {
        if (inLegacyPlugin)
            LogOutcome("Failed: ", inPluginPath,
                       ".  (This file is missing, not a DLL or could not be loaded due to another "
                       "missing DLL.)\n\n");
        return TVPM_NO_PLUGIN_ID;
    }
    const EntryPoints entry = ResolveEntryPoints(dll);
    if (!entry.start) {
        LogOutcome(
            "Failed: ", inPluginPath,
            ".  (This file is a loadable DLL but is missing the TPluginStart callback.)\n\n");
        TVPMUnloadDLL(dll);
        return TVPM_NO_PLUGIN_ID;
    }
    StLoaderBusy busy;
    // Every load ends with the simulator current, even one that a plugin
    // asked for (an aircraft reload): that plugin is current again only once
    // its own callback returns.
    const TVPMPluginID id = TVPMCountPlugins();
    const bool isAircraftPlugin = isCurrentAcfPlugin != 0;
    AppendPluginRecord(id, dll, inPluginPath, entry);
    if (isAircraftPlugin) gCurrentAircraftPluginIDS.push_back(id);

    const std::unique_ptr<StartTexts> texts(new StartTexts);
    const bool started = CallPluginStart(id, dll, entry.start, *texts);
    SealStartTexts(id, *texts);
    const char* name = texts->name.c_str();
    const char* signature = texts->signature.c_str();
    const char* description = texts->description.c_str();
    if (!started) {
        RefuseStart(id, dll, inPluginPath, isAircraftPlugin);
        return TVPM_NO_PLUGIN_ID;
    }
    TVPMSetDispatchedPlugin(0);
    if (TVPMFindPluginBySignature(signature) != TVPM_NO_PLUGIN_ID) {
        RefuseDuplicate(id, inPluginPath, signature, isAircraftPlugin);
        return TVPM_NO_PLUGIN_ID;
    }
    PluginRecord& r = gAllPlugins[static_cast<size_t>(id)];
    r.name = name;
    SetSignature(id, signature);
    r.description = description;
    TVPMPublishPluginLibrary(r.generation, dll, id, r.name);
    TVPMDebugString("Loaded: ");
    TVPMDebugString(inPluginPath.c_str());
    TVPMDebugString(" (");
    TVPMDebugString(signature);
    TVPMDebugString(").\n\n");
    return id;
}

namespace {

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

void LoadLooseFiles(const std::string& folder, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
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
    StLoaderBusy busy;
    TVPMSetDispatchedPlugin(0);
    AddHostRecord();
    const std::string folder = std::string(inSystemPath ? inSystemPath : "") + "Resources/plugins";
    LogFetching(folder);
    const std::vector<std::string> looseFiles = SortedListing(folder, "*.tvp");
    LoadFatPlugin("PluginAdmin", folder + "/PluginAdmin", 0);
    LoadLooseFiles(folder, looseFiles);
    for (const std::string& name : SortedListing(folder, "DIR"))
        if (!IsSkippedFatFolder(name)) LoadFatPlugin(name, folder + "/" + name, 0);
}

void TVPMFindAndLoadAcfPlugins(const char* inAircraftPath) {
    if (!inAircraftPath) return;
    StLoaderBusy busy;
    const std::string folder = std::string(inAircraftPath) + "/plugins";
    const std::vector<std::string> names = SortedListing(folder, "DIR");
    LogFetching(folder);
    for (const std::string& name : names) LoadFatPlugin(name, folder + "/" + name, 1);
}

void TVPMFindAndLoadSceneryPlugins(const char* inSceneryPack) {
    if (!inSceneryPack) return;
    std::vector<TVPMPluginID> loaded;
    {
        StLoaderBusy busy;
        const std::string folder = std::string(inSceneryPack) + "plugins";
        const std::vector<std::string> names = SortedListing(folder, "DIR");
        LogFetching(folder);
        for (const std::string& name : names) {
            TVPMPluginID id = LoadFatPlugin(name, folder + "/" + name, 0);
            if (id != TVPM_NO_PLUGIN_ID) loaded.push_back(id);
        }
    }
    for (TVPMPluginID id : loaded) TVPMEnablePlugin(id);
}
