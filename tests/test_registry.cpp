// test_registry.cpp: the plugin table as plugins see it: queries, error callbacks, messages and feature flags.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "TVPM/TVPMPlugin.h"

using namespace tvpmtest;

namespace {

std::vector<std::string> s_errors;
void OnError(const char* text) { s_errors.push_back(text); }

// Three scripted plugins.
class Registry : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* key : {"alpha.tvp", "beta.tvp", "gamma.tvp"})
            paths.push_back(sim.AddLoose(key, BuiltPlugin("scripted.tvp")));
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
        gamma = IdOf("gamma.tvp");
        ASSERT_GT(alpha, 0);
        ASSERT_GT(beta, 0);
        ASSERT_GT(gamma, 0);
        s_errors.clear();
    }
    void TearDown() override { host.Shutdown(); }

    std::vector<std::string> HostMessages() const {
        std::vector<std::string> out;
        for (const HostCall& c : host.CallsTo("TorvaneReceiveMessage_f"))
            out.push_back(c.args[0] + " " + c.args[1]);
        return out;
    }

    FakeHost host;
    SimFolder sim;
    std::vector<std::string> paths;
    TVPMPluginID alpha = -1, beta = -1, gamma = -1;
};

struct Info {
    char name[300], path[300], signature[300], description[300];
    Info() {
        memset(name, 'x', sizeof name);
        memset(path, 'x', sizeof path);
        memset(signature, 'x', sizeof signature);
        memset(description, 'x', sizeof description);
    }
};

}  // namespace

TEST_F(Registry, TheSimulatorIsPluginZero) {
    EXPECT_EQ(TVPMCountPlugins(), 4);
    Info info;
    TVPMGetPluginInfo(0, info.name, info.path, info.signature, info.description);
    EXPECT_STREQ(info.name, "Torvane");
    EXPECT_STREQ(info.path, "");
    EXPECT_STREQ(info.signature, "norvel.torvane.torvane");
    EXPECT_STREQ(info.description, "Torvane flight simulator");
    EXPECT_EQ(TVPMFindPluginBySignature("norvel.torvane.torvane"), 0);
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(TVPMIsPluginEnabled(0), 1);
}

TEST_F(Registry, PluginsAreFoundByExactPathAndSignature) {
    EXPECT_EQ(TVPMFindPluginByPath(paths[0].c_str()), alpha);
    EXPECT_EQ(TVPMFindPluginByPath(paths[2].c_str()), gamma);
    EXPECT_EQ(TVPMFindPluginByPath(paths[0].substr(0, paths[0].size() - 1).c_str()), -1);
    EXPECT_EQ(TVPMFindPluginByPath((paths[0] + "x").c_str()), -1);
    EXPECT_EQ(TVPMFindPluginByPath(""), 0);  // the simulator's record has an empty path
    EXPECT_EQ(TVPMFindPluginBySignature("test.beta.tvp"), beta);
    EXPECT_EQ(TVPMFindPluginBySignature("test.beta"), -1);
    EXPECT_EQ(TVPMFindPluginBySignature("TEST.BETA.TVP"), -1);

    Info info;
    TVPMGetPluginInfo(beta, info.name, info.path, info.signature, info.description);
    EXPECT_STREQ(info.name, "beta.tvp");
    EXPECT_EQ(info.path, paths[1]);
    EXPECT_STREQ(info.signature, "test.beta.tvp");
    EXPECT_STREQ(info.description, "scripted test plugin");
}

TEST_F(Registry, InfoFillsOnlyTheBuffersGivenAndIgnoresUnknownIDs) {
    Info info;
    TVPMGetPluginInfo(alpha, nullptr, nullptr, info.signature, nullptr);
    EXPECT_STREQ(info.signature, "test.alpha.tvp");
    Info untouched;
    for (TVPMPluginID id : {-1, -2, 4, 1000})
        TVPMGetPluginInfo(id, untouched.name, untouched.path, untouched.signature,
                          untouched.description);
    EXPECT_EQ(std::string(untouched.name, 4), "xxxx");
    EXPECT_EQ(std::string(untouched.description, 4), "xxxx");
}

TEST_F(Registry, NthPluginIsTheIndexItself) {
    EXPECT_EQ(TVPMGetNthPlugin(0), 0);
    EXPECT_EQ(TVPMGetNthPlugin(3), 3);
    EXPECT_EQ(TVPMGetNthPlugin(99), 99);
    EXPECT_EQ(TVPMGetNthPlugin(-5), -5);
}

TEST(RegistryLongPath, InfoCutsLongTextTo255Characters) {
    FakeHost host;
    SimFolder sim;
    const std::string name(130, 'p');
    const std::string path = sim.AddFat(name, "lin_x64", BuiltPlugin("scripted.tvp"));
    ASSERT_GT(path.size(), 300u);
    ASSERT_EQ(host.Start(sim.Root()), 23);
    const TVPMPluginID id = TVPMFindPluginByPath(path.c_str());
    ASSERT_EQ(id, 1);
    Info info;
    TVPMGetPluginInfo(id, info.name, info.path, info.signature, info.description);
    EXPECT_EQ(strlen(info.path), 255u);
    EXPECT_EQ(std::string(info.path), path.substr(0, 255));
    EXPECT_EQ(info.path[256], 'x');  // nothing written past the 256-byte buffer
    host.Shutdown();
}

// ---- error callbacks ----------------------------------------------------------------

TEST_F(Registry, MisuseIsReportedToTheCurrentPluginsOwnCallbackOnly) {
    RunAs("alpha.tvp", [] { TVPMSetErrorCallback(OnError); });
    RunAs("beta.tvp", [] { EXPECT_EQ(TVPMIsFeatureEnabled("NO_SUCH_FEATURE"), 0); });
    EXPECT_TRUE(s_errors.empty());  // beta has no callback; alpha's is not beta's

    RunAs("alpha.tvp", [] { EXPECT_EQ(TVPMIsFeatureEnabled("NO_SUCH_FEATURE"), 0); });
    EXPECT_EQ(s_errors,
              (std::vector<std::string>{"Illegal feature name passed to TVPMEnableFeature"}));
    EXPECT_EQ(host.Log().find("Illegal feature"), std::string::npos);  // never logged

    RunAs("alpha.tvp", [] { TVPMSetErrorCallback(nullptr); });
    RunAs("alpha.tvp", [] { TVPMEnableFeature("NO_SUCH_FEATURE", 1); });
    EXPECT_EQ(s_errors.size(), 1u);
}

TEST_F(Registry, TheSimulatorMayListenForErrorsToo) {
    TVPMSetErrorCallback(OnError);
    TVPMEnableFeature("tvpm_wants_reflections", 1);
    EXPECT_EQ(s_errors,
              (std::vector<std::string>{"Illegal feature name passed to TVPMEnableFeature"}));
    RunAs("alpha.tvp", [] { TVPMEnableFeature("bogus", 1); });
    EXPECT_EQ(s_errors.size(), 1u);
}

TEST_F(Registry, ErrorCallbackSurvivesDisableAndEnable) {
    RunAs("alpha.tvp", [] { TVPMSetErrorCallback(OnError); });
    TVPMDisablePlugin(alpha);
    EXPECT_EQ(TVPMEnablePlugin(alpha), 1);
    RunAs("alpha.tvp", [] { TVPMEnableFeature("bogus", 1); });
    EXPECT_EQ(s_errors.size(), 1u);
}

// ---- messages -------------------------------------------------------------------------

TEST_F(Registry, BroadcastReachesTheSimulatorAndEveryEnabledPluginFromTheSender) {
    TVPMDisablePlugin(gamma);
    Journal().clear();
    int param = 0;
    RunAs("beta.tvp", [&] { TVPMSendMessageToPlugin(TVPM_NO_PLUGIN_ID, 4242, &param); });
    EXPECT_EQ(HostMessages(), (std::vector<std::string>{std::to_string(beta) + " 4242"}));
    EXPECT_EQ(host.CallsTo("TorvaneReceiveMessage_f")[0].args[2],
              FormatArg(static_cast<const void*>(&param)));
    std::vector<std::string> got;
    for (const std::string& line : Journal())
        if (line.find(" 4242 ") != std::string::npos) got.push_back(line);
    const std::string from = " from " + std::to_string(beta);
    EXPECT_EQ(got, (std::vector<std::string>{"alpha.tvp:message 4242" + from,
                                             "beta.tvp:message 4242" + from}));
}

TEST_F(Registry, MessagesToNoOneAreIgnored) {
    Journal().clear();
    TVPMSendMessageToPlugin(-2, 1, nullptr);
    TVPMSendMessageToPlugin(TVPMCountPlugins(), 1, nullptr);
    EXPECT_TRUE(Journal().empty());
    EXPECT_EQ(host.Count("TorvaneReceiveMessage_f"), 0u);
}

TEST_F(Registry, AMessageToOnePluginReachesOnlyIt) {
    Journal().clear();
    TVPMSendMessageToPlugin(gamma, 77, nullptr);
    TVPMSendMessageToPlugin(0, 78, nullptr);
    EXPECT_EQ(Journal(), (std::vector<std::string>{"gamma.tvp:message 77 from 0"}));
    EXPECT_EQ(HostMessages(), (std::vector<std::string>{"0 78"}));
}

TEST_F(Registry, ADisabledPluginMissesMessagesForGood) {
    TVPMDisablePlugin(gamma);
    Journal().clear();
    TVPMSendMessageToPlugin(gamma, 77, nullptr);
    EXPECT_EQ(TVPMEnablePlugin(gamma), 1);
    EXPECT_EQ(JournalOf("gamma.tvp:message").size(), 0u);
}

// ---- features ----------------------------------------------------------------------------

namespace {
void CollectName(const char* name, void* ref) {
    static_cast<std::vector<std::string>*>(ref)->push_back(name);
}
}  // namespace

TEST_F(Registry, TheFourFeaturesAreKnownByExactName) {
    std::vector<std::string> names;
    TVPMEnumerateFeatures(CollectName, &names);
    EXPECT_EQ(names, (std::vector<std::string>{
                         "TVPM_WANTS_REFLECTIONS", "TVPM_USE_NATIVE_PATHS",
                         "TVPM_USE_NATIVE_WIDGET_WINDOWS", "TVPM_WANTS_DATAREF_NOTIFICATIONS"}));
    for (const std::string& n : names) EXPECT_EQ(TVPMHasFeature(n.c_str()), 1) << n;
    EXPECT_EQ(TVPMHasFeature("tvpm_wants_reflections"), 0);
    EXPECT_EQ(TVPMHasFeature("TVPM_WANTS_REFLECTIONS "), 0);
    EXPECT_EQ(TVPMHasFeature(""), 0);
}

TEST_F(Registry, FeatureValuesArePerPluginKeptAsGivenAndSurviveDisable) {
    RunAs("alpha.tvp", [] {
        for (const char* n : {"TVPM_WANTS_REFLECTIONS", "TVPM_USE_NATIVE_PATHS",
                              "TVPM_USE_NATIVE_WIDGET_WINDOWS", "TVPM_WANTS_DATAREF_NOTIFICATIONS"})
            EXPECT_EQ(TVPMIsFeatureEnabled(n), 0) << n;
        TVPMEnableFeature("TVPM_USE_NATIVE_WIDGET_WINDOWS", 5);
        TVPMEnableFeature("TVPM_WANTS_REFLECTIONS", -1);
    });
    RunAs("beta.tvp", [] { EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_USE_NATIVE_WIDGET_WINDOWS"), 0); });
    EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_USE_NATIVE_WIDGET_WINDOWS"), 0);  // the simulator's own

    TVPMDisablePlugin(alpha);
    TVPMEnablePlugin(alpha);
    RunAs("alpha.tvp", [] {
        EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_USE_NATIVE_WIDGET_WINDOWS"), 5);
        EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_WANTS_REFLECTIONS"), -1);
        TVPMEnableFeature("TVPM_WANTS_REFLECTIONS", 0);
        EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_WANTS_REFLECTIONS"), 0);
    });
}

TEST_F(Registry, NativePathsChangeNothingOnThisPlatform) {
    RunAs("alpha.tvp", [this] {
        TVPMEnableFeature("TVPM_USE_NATIVE_PATHS", 1);
        EXPECT_EQ(TVPMFindPluginByPath(paths[1].c_str()), beta);
        char path[256];
        TVPMGetPluginInfo(beta, nullptr, path, nullptr, nullptr);
        EXPECT_EQ(path, paths[1]);
    });
}
