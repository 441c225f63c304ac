// test_registry.cpp: the plugin table as plugins see it: queries, error callbacks, messages and the simulator's events, feature flags, who is current while plugins call each other, and callback timing.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "PluginContext.h"
#include "SimTest.h"
#include "TimingSamples.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;
using Texts = std::vector<std::string>;

namespace {

Texts s_errors;
void OnError(const char* text) { s_errors.push_back(text); }

// What the simulator saw of its caller each time a plugin wrote to the log, as "id name signature".
Texts s_seen;

// alpha.tvp, beta.tvp and gamma.tvp, started.
struct Registry : SimTest {
    void SetUp() override {
        for (const char* key : {"alpha.tvp", "beta.tvp", "gamma.tvp"})
            paths.push_back(sim.AddLoose(key, BuiltPlugin("scripted.tvp")));
        host.On<&TVPMHooks::TVPMDebugString_f>([](const char*) {
            char name[256] = "?", signature[256] = "?";
            int id = TVPMGetCurrentPluginInfo(name, signature);
            s_seen.push_back(std::to_string(id) + " " + name + " " + signature);
        });
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
        gamma = IdOf("gamma.tvp");
    }
    Texts HostMessages() const {
        Texts out;
        for (const HostCall& c : host.CallsTo("TorvaneReceiveMessage_f"))
            out.push_back(c.args[0] + " " + c.args[1] + " " + c.args[2]);
        return out;
    }
    Texts paths;
    TVPMPluginID alpha = -1, beta = -1, gamma = -1;
};

struct Info {
    char name[300], path[300], signature[300], description[300];
    Info() {
        for (char* buffer : {name, path, signature, description}) memset(buffer, 'x', 300);
    }
    Texts Of(TVPMPluginID id) {
        TVPMGetPluginInfo(id, name, path, signature, description);
        return {name, path, signature, description};
    }
};

}  // namespace

TEST_F(Registry, PluginsAreFoundByExactPathAndSignatureAndTheSimulatorIsPluginZero) {
    EXPECT_EQ(TVPMCountPlugins(), 4);
    EXPECT_EQ(Info().Of(0), (Texts{"Torvane", "", "norvel.torvane.torvane", "Torvane flight simulator"}));
    EXPECT_EQ(Info().Of(beta), (Texts{"beta.tvp", paths[1], "test.beta.tvp", "scripted test plugin"}));
    EXPECT_EQ(TVPMIsPluginEnabled(0), 1);
    EXPECT_EQ(TVPMGetNthPlugin(3), 3);
    EXPECT_EQ(TVPMGetNthPlugin(-5), -5) << "the index itself";
    struct Case { std::string key; bool byPath; TVPMPluginID id; };
    const Case kCases[] = {
        {paths[0], true, alpha}, {paths[2], true, gamma}, {paths[0].substr(0, paths[0].size() - 1), true, -1},
        {paths[0] + "x", true, -1}, {"", true, 0}, {"test.beta.tvp", false, beta}, {"test.beta", false, -1},
        {"TEST.BETA.TVP", false, -1}, {"norvel.torvane.torvane", false, 0}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(c.byPath ? TVPMFindPluginByPath(c.key.c_str()) : TVPMFindPluginBySignature(c.key.c_str()), c.id);
    }
    Info some;
    TVPMGetPluginInfo(alpha, nullptr, nullptr, some.signature, nullptr);
    EXPECT_STREQ(some.signature, "test.alpha.tvp");
    Info untouched;
    for (TVPMPluginID id : {-1, 4, 1000})
        TVPMGetPluginInfo(id, untouched.name, untouched.path, untouched.signature, untouched.description);
    EXPECT_EQ(std::string(untouched.name, 4) + std::string(untouched.description, 4), "xxxxxxxx");
}

TEST(RegistryLongPath, InfoCutsLongTextTo255Characters) {
    FakeHost host;
    SimFolder sim;
    const std::string path = sim.AddFat(std::string(130, 'p'), "lin_x64", BuiltPlugin("scripted.tvp"));
    ASSERT_EQ(host.Start(sim.Root()), 23);
    Info info;
    EXPECT_EQ(info.Of(TVPMFindPluginByPath(path.c_str()))[1], path.substr(0, 255));
    EXPECT_EQ(info.path[256], 'x') << "nothing written past the 256-byte buffer";
    host.Shutdown();
}

TEST_F(Registry, MisuseIsReportedOnlyToTheCurrentPluginsOwnCallbackAndSurvivesDisable) {
    RunAs("alpha.tvp", [] { TVPMSetErrorCallback(OnError); });
    RunAs("beta.tvp", [] { EXPECT_EQ(TVPMIsFeatureEnabled("NO_SUCH_FEATURE"), 0); });
    EXPECT_TRUE(s_errors.empty()) << "beta has no callback; alpha's is not beta's";
    TVPMDisablePlugin(alpha);
    EXPECT_EQ(TVPMEnablePlugin(alpha), 1);
    RunAs("alpha.tvp", [] { EXPECT_EQ(TVPMIsFeatureEnabled("NO_SUCH_FEATURE"), 0); });
    const std::string illegal = "Illegal feature name passed to TVPMEnableFeature";
    EXPECT_EQ(s_errors, Texts{illegal});
    EXPECT_EQ(host.Log().find("Illegal feature"), std::string::npos) << "never logged";
    RunAs("alpha.tvp", [] {
        TVPMSetErrorCallback(nullptr);
        TVPMEnableFeature("NO_SUCH_FEATURE", 1);
    });
    TVPMSetErrorCallback(OnError);  // the simulator may listen too
    TVPMEnableFeature("tvpm_wants_reflections", 1);
    EXPECT_EQ(s_errors, (Texts{illegal, illegal}));
}

TEST_F(Registry, MessagesReachTheirEnabledAddresseesFromTheSender) {
    TVPMDisablePlugin(gamma);
    Journal().clear();
    int param = 0;
    RunAs("beta.tvp", [&] { TVPMSendMessageToPlugin(TVPM_NO_PLUGIN_ID, 4242, &param); });
    EXPECT_EQ(HostMessages(), Texts{std::to_string(beta) + " 4242 " + FormatArg(&param)});
    const std::string from = " from " + std::to_string(beta);
    EXPECT_EQ(Journal(), (Texts{"beta.tvp:message " + std::to_string(kRunAsMessage) + " from 0",
                                "alpha.tvp:message 4242" + from, "beta.tvp:message 4242" + from}));

    host.ClearCalls();
    Journal().clear();
    TVPMSendMessageToPlugin(gamma, 76, nullptr);
    EXPECT_EQ(TVPMEnablePlugin(gamma), 1);
    for (TVPMPluginID nobody : {-2, 4}) TVPMSendMessageToPlugin(nobody, 1, nullptr);
    TVPMSendMessageToPlugin(gamma, 77, nullptr);
    TVPMSendMessageToPlugin(0, 78, nullptr);
    EXPECT_EQ(Journal(), (Texts{"gamma.tvp:enable", "gamma.tvp:message 77 from 0"}))
        << "a disabled plugin misses messages for good";
    EXPECT_EQ(HostMessages(), Texts{"0 78 null"});
}

namespace {
// What alpha received of an event, as "<parameter> <messages the simulator had by then> <current plugin>".
Texts s_received;
void Record(TVPMPluginID, int, void* param) {
    const size_t toHost = FakeHost::Current().Count("TorvaneReceiveMessage_f");
    s_received.push_back(FormatArg(param) + " " + std::to_string(toHost) + " " + std::to_string(TVPMGetMyID()));
}
}  // namespace

TEST_F(Registry, EachEventReachesTheSimulatorFirstThenTheEnabledPluginsWithItsMessageAndParameter) {
    Script("alpha.tvp").message = Record;
    TVPMDisablePlugin(beta);
    TVPMDisablePlugin(gamma);
    struct Broadcast {
        int kind;
        int message;  // 0: none, the event is handled quietly or unknown
        bool carriesParameter;
    };
    const Broadcast kBroadcasts[] = {
        {tvpm_PlaneCrashed, 101, false}, {tvpm_PlaneLoaded, 102, true},     {tvpm_AirportLoaded, 103, false},
        {tvpm_SceneryLoaded, 104, false}, {tvpm_AirplaneCountChanged, 105, false}, {tvpm_PlaneUnloaded, 106, true},
        {tvpm_WritePrefs, 107, false},   {tvpm_LiveryChanged, 108, true},   {tvpm_EnteredVR, 109, true},
        {tvpm_ExitingVR, 110, true},     {tvpm_FMODBankLoaded, 112, true},  {tvpm_FMODBankUnloading, 113, true},
        {tvpm_FlightLoopEvent, 0, false}, {tvpm_CameraChangedHook, 0, false}, {tvpm_ATCInstruction, 0, false},
        {tvpm_CommandRepeat, 0, false},  {tvpm_FlightLoopDoneEvent, 0, false}, {tvpm_FMODSoundEnded, 0, false},
        {tvpm_CheckNewDatarefs, 0, false}, {20, 0, false}, {21, 0, false}, {-1, 0, false}, {1000, 0, false},
    };
    for (const Broadcast& b : kBroadcasts) {
        SCOPED_TRACE(b.kind);
        host.ClearCalls();
        s_received.clear();
        Journal().clear();
        EXPECT_EQ(TVPMEventHook(static_cast<TVPMEventKind>(b.kind), 0.5f, 3.0f, 7, 9), 1);
        const std::string param = b.carriesParameter ? "0x7" : "null", message = std::to_string(b.message);
        EXPECT_EQ(Journal(), b.message ? Texts{"alpha.tvp:message " + message + " from 0"} : Texts{});
        EXPECT_EQ(s_received, b.message ? Texts{param + " 1 " + std::to_string(alpha)} : Texts{});
        EXPECT_EQ(HostMessages(), b.message ? Texts{"0 " + message + " " + param} : Texts{});
    }
}

TEST(Events, EventsBeforeStartUpAndAfterShutDownReturnOneAndDoNothing) {
    FakeHost host;
    SimFolder sim;
    sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
    const std::string aircraft = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    auto nothingHappens = [&](const char* when) {
        SCOPED_TRACE(when);
        host.userAircraftPath = aircraft;
        host.ClearCalls();
        Journal().clear();
        for (int kind = 0; kind <= 20; ++kind)
            EXPECT_EQ(TVPMEventHook(static_cast<TVPMEventKind>(kind), 0, 0, 0, 0), 1) << kind;
        TVPMReloadACFPlugins();
        EXPECT_TRUE(Journal().empty());
        EXPECT_TRUE(host.Calls().empty());
        EXPECT_EQ(TVPMCountPlugins(), 0);
    };
    nothingHappens("before start-up");
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.Shutdown();
    nothingHappens("after shut-down");
}

namespace {
void CollectName(const char* name, void* ref) { static_cast<Texts*>(ref)->push_back(name); }
}  // namespace

TEST_F(Registry, FourFeaturesByExactNameWithPerPluginValuesThatSurviveDisable) {
    Texts names;
    TVPMEnumerateFeatures(CollectName, &names);
    EXPECT_EQ(names, (Texts{"TVPM_WANTS_REFLECTIONS", "TVPM_USE_NATIVE_PATHS", "TVPM_USE_NATIVE_WIDGET_WINDOWS",
                            "TVPM_WANTS_DATAREF_NOTIFICATIONS"}));
    for (const std::string& n : names) EXPECT_EQ(TVPMHasFeature(n.c_str()), 1) << n;
    for (const char* n : {"tvpm_wants_reflections", "TVPM_WANTS_REFLECTIONS ", ""}) EXPECT_EQ(TVPMHasFeature(n), 0);

    RunAs("alpha.tvp", [&] {
        for (const std::string& n : names) EXPECT_EQ(TVPMIsFeatureEnabled(n.c_str()), 0) << n;
        TVPMEnableFeature("TVPM_USE_NATIVE_WIDGET_WINDOWS", 5);
        TVPMEnableFeature("TVPM_WANTS_REFLECTIONS", -1);
    });
    RunAs("beta.tvp", [] { EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_USE_NATIVE_WIDGET_WINDOWS"), 0); });
    EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_USE_NATIVE_WIDGET_WINDOWS"), 0) << "the simulator's own";
    TVPMDisablePlugin(alpha);
    TVPMEnablePlugin(alpha);
    RunAs("alpha.tvp", [this] {
        EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_USE_NATIVE_WIDGET_WINDOWS"), 5);
        EXPECT_EQ(TVPMIsFeatureEnabled("TVPM_WANTS_REFLECTIONS"), -1);
        TVPMEnableFeature("TVPM_USE_NATIVE_PATHS", 1);  // changes nothing on this platform
        EXPECT_EQ(TVPMFindPluginByPath(paths[1].c_str()), beta);
        EXPECT_EQ(Info().Of(beta)[1], paths[1]);
    });
}

TEST_F(Registry, TheReceiverIsCurrentAndTheSenderIsItsClientAtEveryLevel) {
    std::vector<int> ids;
    s_seen.clear();
    TVPMDebugString("from the simulator");
    RunAs("alpha.tvp", [&] {
        RunAs("beta.tvp", [&] {
            RunAs("gamma.tvp", [&] { ids.push_back(TVPMGetMyID()); });
            ids.push_back(TVPMGetMyID());
            RunAs("beta.tvp", [&] { TVPMDebugString("beta from beta"); });
            TVPMDebugString("inside beta");
        });
        ids.push_back(TVPMGetMyID());
        TVPMDebugString("back in alpha");
    });
    EXPECT_EQ(TVPMGetMyID(), 0);
    EXPECT_EQ(ids, (std::vector<int>{gamma, beta, alpha}));
    const std::string simulator = "0 Torvane norvel.torvane.torvane";
    EXPECT_EQ(s_seen, (Texts{simulator, std::to_string(beta) + " beta.tvp test.beta.tvp",
                             std::to_string(alpha) + " alpha.tvp test.alpha.tvp", simulator}));

    TVPMDisablePlugin(beta);
    s_seen.clear();
    RunAs("alpha.tvp", [&] {
        RunAs("beta.tvp", [] { ADD_FAILURE() << "beta is disabled"; });
        EXPECT_EQ(TVPMGetMyID(), alpha);
        TVPMDebugString("after the skipped call");
    });
    EXPECT_EQ(s_seen, Texts{simulator}) << "the caller stays known while a disabled plugin is skipped";
}

namespace {
float SlowLoop(float, float, int, void*) {
    std::this_thread::sleep_for(std::chrono::microseconds(1500));
    return 0;  // once
}
}  // namespace

TEST_F(Registry, ATimedCallbackReportsItsOwnerKindAndWholeMicrosecondsOnce) {
    RunAs("alpha.tvp", [] { TVPMRegisterFlightLoopCallback(SlowLoop, -1.0f, nullptr); });
    TVPMGetPluginCallbackTimings(CollectTimings);
    s_samples.clear();
    TVPMSendMessageToPlugin(TVPM_NO_PLUGIN_ID, 1, nullptr);  // messages are not timed
    host.RunFrame();
    host.RunFrame();
    TVPMGetPluginCallbackTimings(CollectTimings);
    TVPMGetPluginCallbackTimings(CollectTimings);
    EXPECT_EQ(s_collections, 3) << "called even with nothing to report";
    ASSERT_EQ(s_samples.size(), 1u);
    EXPECT_EQ(s_samples[0].plugin, alpha);
    EXPECT_EQ(s_samples[0].type, tvpm_cb_flight_loop);
    EXPECT_GE(s_samples[0].microseconds, 1500.0);
    EXPECT_LT(s_samples[0].microseconds, 100000.0);
    EXPECT_EQ(s_samples[0].microseconds, static_cast<double>(static_cast<uint64_t>(s_samples[0].microseconds)));
}
