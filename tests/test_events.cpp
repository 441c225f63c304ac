// test_events.cpp: the simulator's events reach plugins and the simulator's own record as the right messages.
#include <gtest/gtest.h>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"

using namespace tvpmtest;
using Events = SimTest;
using Lines = std::vector<std::string>;

namespace {

struct Received {
    int message;
    void* param;
    size_t hostCallsBefore;  // the simulator's record (ID 0) comes first
    TVPMPluginID current;
};
std::vector<Received> s_received;

void Record(TVPMPluginID, int message, void* param) {
    s_received.push_back({message, param, FakeHost::Current().Count("TorvaneReceiveMessage_f"), TVPMGetMyID()});
}

}  // namespace

TEST_F(Events, EachBroadcastCarriesItsMessageAndParameterFromTheSimulatorToEnabledPlugins) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    Script("alpha.tvp").message = Record;
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMDisablePlugin(2);
    struct Broadcast {
        TVPMEventKind kind;
        int message;
        bool carriesParameter;
    };
    const Broadcast kBroadcasts[] = {
        {tvpm_PlaneCrashed, 101, false}, {tvpm_PlaneLoaded, 102, true},     {tvpm_AirportLoaded, 103, false},
        {tvpm_SceneryLoaded, 104, false}, {tvpm_AirplaneCountChanged, 105, false}, {tvpm_PlaneUnloaded, 106, true},
        {tvpm_WritePrefs, 107, false},   {tvpm_LiveryChanged, 108, true},   {tvpm_EnteredVR, 109, true},
        {tvpm_ExitingVR, 110, true},     {tvpm_FMODBankLoaded, 112, true},  {tvpm_FMODBankUnloading, 113, true},
    };
    for (const Broadcast& b : kBroadcasts) {
        SCOPED_TRACE(b.kind);
        host.ClearCalls();
        s_received.clear();
        Journal().clear();
        EXPECT_EQ(TVPMEventHook(b.kind, 0.5f, 3.0f, 7, 9), 1);
        void* param = b.carriesParameter ? reinterpret_cast<void*>(7) : nullptr;
        EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message " + std::to_string(b.message) + " from 0"}));
        ASSERT_EQ(s_received.size(), 1u);
        EXPECT_EQ(s_received[0].message, b.message);
        EXPECT_EQ(s_received[0].param, param);
        EXPECT_EQ(s_received[0].hostCallsBefore, 1u);
        EXPECT_EQ(s_received[0].current, 1);
        const auto toHost = host.CallsTo("TorvaneReceiveMessage_f");
        ASSERT_EQ(toHost.size(), 1u);
        EXPECT_EQ(toHost[0].args, (Lines{"0", std::to_string(b.message), param ? "0x7" : "null"}));
        EXPECT_EQ(TVPMGetMyID(), 0);
    }
}

TEST_F(Events, QuietUnknownEarlyAndLateEventsReturnOneAndSendNothing) {
    AddScripted({"alpha.tvp"});
    Script("alpha.tvp").start = [](char*, char*, char*) {
        TVPMEnableFeature("TVPM_WANTS_DATAREF_NOTIFICATIONS", 1);
        return 1;
    };
    const std::string aircraft = sim.AddAircraft("Jet", {"fms"}, BuiltPlugin("scripted.tvp"));
    host.userAircraftPath = aircraft;
    for (int kind = 0; kind <= 20; ++kind) EXPECT_EQ(TVPMEventHook(static_cast<TVPMEventKind>(kind), 0, 0, 0, 0), 1);
    TVPMReloadACFPlugins();
    EXPECT_TRUE(Journal().empty()) << "before start-up";
    host.userAircraftPath.clear();

    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    Journal().clear();
    // No new data items were published, so even the plugin that asked hears nothing.
    for (int kind : {0, 1, 5, 9, 10, 18, 19, 20, 21, -1, 1000}) {
        SCOPED_TRACE(kind);
        EXPECT_EQ(TVPMEventHook(static_cast<TVPMEventKind>(kind), 0.1f, 0, 7, 0), 1);
    }
    EXPECT_TRUE(Journal().empty());
    EXPECT_EQ(host.Count("TorvaneReceiveMessage_f"), 0u);
    EXPECT_EQ(TVPMCountPlugins(), 2);

    host.Shutdown();
    host.userAircraftPath = aircraft;
    host.ClearCalls();
    Journal().clear();
    EXPECT_EQ(TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0), 1);
    EXPECT_EQ(TVPMEventHook(tvpm_AirportLoaded, 0, 0, 0, 0), 1);
    TVPMReloadACFPlugins();
    EXPECT_TRUE(Journal().empty()) << "after shut-down";
    EXPECT_TRUE(host.Calls().empty());
    EXPECT_EQ(TVPMCountPlugins(), 0);
}
