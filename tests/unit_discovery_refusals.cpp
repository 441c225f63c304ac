// unit_discovery_refusals.cpp: entry points are resolved in a fixed order, and a plugin refused at start leaves nothing registered and the simulator current.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMLoaderLifecycle.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#include "support/UnitSteps.h"

namespace {

// What the fake plugin file exports, and what its TPluginStart does.
std::map<std::string, void*> s_exports;
int s_startResult = 1;
std::string s_signature = "test.one";
TVPMPluginID s_currentInStart = -9;

int FakeStart(char* name, char* signature, char* description) {
    s_currentInStart = gDispatchedPlugin;
    strcpy(name, "One");
    strcpy(signature, s_signature.c_str());
    strcpy(description, "");
    Step("TPluginStart");
    return s_startResult;
}
void FakeStop() {}

void* const kDll = reinterpret_cast<void*>(0x5);

}  // namespace

// ---- the world around the discovery file ---------------------------------------------

TVPMHooks* gHooks = nullptr;
TVPMPluginTable gAllPlugins;
TVPMCurrentPlugins gCurrentPlugins = {0, 0};
TVPM_API int TVPMCountPlugins(void) { return static_cast<int>(gAllPlugins.size()); }
TVPM_API TVPMPluginID TVPMFindPluginBySignature(const char* signature) {
    for (size_t i = 0; i < gAllPlugins.size(); ++i)
        if (gAllPlugins[i].signature == signature) return static_cast<TVPMPluginID>(i);
    return TVPM_NO_PLUGIN_ID;
}
TVPM_API void TVPMDebugString(const char* text) { Step("log %s", text); }
TVPM_API int TVPMEnablePlugin(TVPMPluginID id) {
    Step("enable %d", id);
    return 1;
}
TVPMFileKind TVPMLookAtFile(const char*, const char** outWhyNot) {
    *outWhyNot = nullptr;
    return TVPMFileKind::kRegular;
}
void* TVPMOpenDLL(const char* path) {
    return std::string(path) == "/sim/Resources/plugins/one.tvp" ? kDll : nullptr;
}
void TVPMUnloadDLL(void* dll) { Step("close %p", dll); }
void* TVPMFindSymbol(void*, const char* symbol, int inLogErrors) {
    Step("find %s %d", symbol, inLogErrors);
    auto it = s_exports.find(symbol);
    return it == s_exports.end() ? nullptr : it->second;
}
void TVPMFetchDirectoryContents(const char* path, const char* pattern,
                                std::vector<std::string>& out) {
    if (std::string(path) == "/sim/Resources/plugins" && std::string(pattern) == "*.tvp")
        out.push_back("one.tvp");
}
const TVPMCodeOnStack* gCodeOnStack = nullptr;
StLoaderCall::StLoaderCall(TVPMPluginID id, const void* dll)
    : saved_(gDispatchedPlugin), onStack_(dll) {
    gDispatchedPlugin = id;
}
StLoaderCall::~StLoaderCall() { gDispatchedPlugin = saved_; }
void TVPMPublishPluginLibrary(uint64_t, const void*, TVPMPluginID, const std::string&) {}
void TVPMWithdrawPluginLibrary(uint64_t) {}
void TVPMReportBufferOverrun(TVPMPluginID, const char*, const char*) {}
void TVPMReportPluginThrow(TVPMPluginID, TVPMCallSite, const char*) {}
StLoaderBusy::StLoaderBusy() {}
StLoaderBusy::~StLoaderBusy() {}
void TVPMRunCleanupHooks(TVPMPluginID id) { Step("cleanup %d", id); }
void TVPMUnloadStoppedPlugin(TVPMPluginID id) {
    Step("unload %d current=%d", id, gDispatchedPlugin);
    TVPMUnloadDLL(gAllPlugins[static_cast<size_t>(id)].dllRef);
}

namespace {

bool AllowEverything(const char*) { return true; }
void Ignore(const char*) {}

class DiscoveryRefusals : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.version = TVPM_HOOKS_VERSION;
        hooks.TVPMShouldLoadPlugin_f = AllowEverything;
        hooks.TVPMDisplayInitString_f = Ignore;
        gHooks = &hooks;
        s_exports = {{"TPluginStart", reinterpret_cast<void*>(FakeStart)},
                     {"TPluginStop", reinterpret_cast<void*>(FakeStop)}};
    }
    void TearDown() override {
        gAllPlugins.clear();
        gCurrentAircraftPluginIDS.clear();
        s_steps.clear();
        s_startResult = 1;
        s_signature = "test.one";
        gDispatchedPlugin = 0;
        gHooks = nullptr;
    }
    // The steps from the first entry-point lookup on, without the log pieces.
    std::vector<std::string> LoadSteps() const {
        std::vector<std::string> out;
        for (const std::string& s : s_steps)
            if (s.compare(0, 4, "log ") != 0) out.push_back(s);
        return out;
    }
    TVPMHooks hooks{};
};

using Steps = std::vector<std::string>;

}  // namespace

TEST_F(DiscoveryRefusals, AllFiveEntryPointsAreLookedUpBeforeStarting) {
    TVPMFindAndLoadPlugins("/sim/");
    EXPECT_EQ(LoadSteps(),
              (Steps{"find TPluginStart 1", "find TPluginStop 1", "find TPluginEnable 1",
                     "find TPluginDisable 1", "find TPluginReceiveMessage 1", "TPluginStart"}));
    ASSERT_EQ(TVPMCountPlugins(), 2);
    EXPECT_EQ(gAllPlugins[1].exitFunc, FakeStop);
    EXPECT_EQ(gAllPlugins[1].enableFunc, nullptr);
    EXPECT_EQ(s_currentInStart, 1);
    EXPECT_EQ(gDispatchedPlugin, 0);
}

TEST_F(DiscoveryRefusals, WithoutTPluginStartTheOthersAreStillLookedUpThenTheLibraryCloses) {
    s_exports.erase("TPluginStart");
    TVPMFindAndLoadPlugins("/sim/");
    EXPECT_EQ(LoadSteps(),
              (Steps{"find TPluginStart 1", "find TPluginStop 1", "find TPluginEnable 1",
                     "find TPluginDisable 1", "find TPluginReceiveMessage 1", "close 0x5"}));
    EXPECT_EQ(TVPMCountPlugins(), 1);
}

TEST_F(DiscoveryRefusals, RefusedStartReleasesWhatThePluginRegisteredAndLeavesTheSimulatorCurrent) {
    s_startResult = 0;
    gAllPlugins.emplace_back();  // a table that already holds the simulator's record
    gAllPlugins.emplace_back();  // and one plugin, which is loading others
    gDispatchedPlugin = 1;
    const TVPMPluginID id = LoadOnePlugin("/sim/Resources/plugins/one.tvp", 1, 1);
    EXPECT_EQ(id, -1);
    const Steps steps = LoadSteps();
    ASSERT_GE(steps.size(), 3u);
    EXPECT_EQ(Steps(steps.end() - 3, steps.end()),
              (Steps{"TPluginStart", "cleanup 2", "close 0x5"}));
    EXPECT_EQ(s_currentInStart, 2);
    EXPECT_EQ(gDispatchedPlugin, 0);
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_TRUE(gCurrentAircraftPluginIDS.empty());
}

TEST_F(DiscoveryRefusals, DuplicateIsUnloadedAsItselfThenDropped) {
    s_signature = "";
    gAllPlugins.emplace_back();
    gAllPlugins.emplace_back();  // a plugin that is loading others
    gDispatchedPlugin = 1;
    const TVPMPluginID id = LoadOnePlugin("/sim/Resources/plugins/one.tvp", 1, 1);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(LoadSteps().back(), "close 0x5");
    EXPECT_EQ(*(LoadSteps().end() - 2), "unload 2 current=2");
    EXPECT_EQ(gDispatchedPlugin, 0);
    EXPECT_EQ(TVPMCountPlugins(), 2);
    EXPECT_TRUE(gCurrentAircraftPluginIDS.empty());
    EXPECT_EQ(s_steps.back(), "log . (A version of this plugin is already loaded.)\n");
}
