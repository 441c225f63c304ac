// test_events.cpp: the simulator's events reach plugins and the simulator's own record as the right messages.
#include <gtest/gtest.h>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"

using namespace tvpmtest;
using Events = SimTest;
using Lines = std::vector<std::string>;

namespace {

// What alpha received, as "<parameter> <messages the simulator had by then> <current plugin>".
Lines s_received;
void Record(TVPMPluginID, int, void* param) {
    const size_t toHost = FakeHost::Current().Count("TorvaneReceiveMessage_f");
    s_received.push_back(FormatArg(param) + " " + std::to_string(toHost) + " " + std::to_string(TVPMGetMyID()));
}

}  // namespace

TEST_F(Events, EachBroadcastCarriesItsMessageAndParameterFromTheSimulatorToEnabledPlugins) {
    AddScripted({"alpha.tvp", "beta.tvp"});
    Script("alpha.tvp").message = Record;
    ASSERT_EQ(host.Start(sim.Root()), 23);
    TVPMDisablePlugin(2);
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
        EXPECT_EQ(TVPMGetMyID(), 0);
        if (!b.message) {
            EXPECT_TRUE(Journal().empty());
            EXPECT_EQ(host.Count("TorvaneReceiveMessage_f"), 0u);
            continue;
        }
        const std::string param = b.carriesParameter ? "0x7" : "null", message = std::to_string(b.message);
        EXPECT_EQ(Journal(), (Lines{"alpha.tvp:message " + message + " from 0"}));
        EXPECT_EQ(s_received, Lines{param + " 1 1"}) << "the simulator's record (ID 0) comes first";
        EXPECT_EQ(host.CallsTo("TorvaneReceiveMessage_f").at(0).args, (Lines{"0", message, param}));
    }
}

TEST_F(Events, EventsBeforeStartUpAndAfterShutDownReturnOneAndDoNothing) {
    AddScripted({"alpha.tvp"});
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
