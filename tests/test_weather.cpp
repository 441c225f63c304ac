// test_weather.cpp: weather reads and writes, their argument checks, the bulk-update lock between plugins and the report of an update left open.
#include <cmath>
#include <functional>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMWeather.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

TVPMWeatherInfo_t Info(int size) {
    TVPMWeatherInfo_t info{};
    info.structSize = size;
    return info;
}

class Weather : public SimTest {
protected:
    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        ASSERT_EQ(host.Start(sim.Root()), 23);
        PluginErrors().clear();
        host.ClearCalls();
    }
    std::string Error(const char* key, const std::string& text) { return std::to_string(IdOf(key)) + ":" + text; }
};

TEST_F(Weather, BadArgumentsGetTheirTextAndNeverReachTheSimulator) {
    static TVPMWeatherInfo_t full = Info(548), old = Info(424), odd = Info(1), none = Info(0);
    static TVPMFixedString150_t metar;
    const char* kMetar = "TVPMGetMETARForAirport requires both airport_id and outMETAR to be not null.";
    const char* kRead = "TVPMGetWeatherAtLocation requires valid coordinates and out_info with a valid structSize.";
    const char* kWrite =
        "TVPMSetWeatherAtLocation requires valid coordinates, radius and in_info with a valid structSize.";
    const char* kAirport = "TVPMSetWeatherAtAirport requires a valid ICAO code and in_info with a valid structSize.";
    const double nan = std::nan("");
    const struct Case {
        const char* what;
        std::function<void()> call;
        const char* slot;
        const char* error;  // null: accepted
    } cases[] = {
        {"METAR, null airport", [] { TVPMGetMETARForAirport(nullptr, &metar); }, "TVPMGetLastKnownMETAR_f", kMetar},
        {"METAR", [] { TVPMGetMETARForAirport("LSZH", &metar); }, "TVPMGetLastKnownMETAR_f", nullptr},
        {"read at the corner", [] { TVPMGetWeatherAtLocation(90.0, -180.0, 0, &full); }, "TVPMGetWeatherAtPt_f",
         nullptr},
        {"read, older size", [] { TVPMGetWeatherAtLocation(0, 0, 0, &old); }, "TVPMGetWeatherAtPt_f", nullptr},
        {"read beyond the pole", [] { TVPMGetWeatherAtLocation(90.0001, 0, 0, &full); }, "TVPMGetWeatherAtPt_f",
         kRead},
        {"read NaN", [nan] { TVPMGetWeatherAtLocation(0, nan, 0, &full); }, "TVPMGetWeatherAtPt_f", kRead},
        {"read, size 1", [] { TVPMGetWeatherAtLocation(0, 0, 0, &odd); }, "TVPMGetWeatherAtPt_f", kRead},
        {"write, size 1", [] { TVPMSetWeatherAtLocation(0, 0, 0, &odd); }, "TVPMSetWeatherAtPt_f", kWrite},
        {"erase at -90.5", [] { TVPMEraseWeatherAtLocation(-90.5, 0); }, "TVPMEraseWeatherAtPt_f",
         "TVPMEraseWeatherAtLocation requires valid coordinates and in_info with a valid structSize."},
        {"airport, size 1", [] { TVPMSetWeatherAtAirport("LSZH", &odd); }, "TVPMSetWeatherAtAirport_f", nullptr},
        {"airport, size 0", [] { TVPMSetWeatherAtAirport("LSZH", &none); }, "TVPMSetWeatherAtAirport_f", kAirport},
        {"airport, empty code", [] { TVPMSetWeatherAtAirport("", &full); }, "TVPMSetWeatherAtAirport_f", kAirport},
        {"erase airport, null", [] { TVPMEraseWeatherAtAirport(nullptr); }, "TVPMEraseWeatherAtAirport_f",
         "TVPMEraseWeatherAtAirport requires a valid ICAO code."},
        {"end without begin", [] { TVPMEndWeatherUpdate(1, 1); }, "TVPMEndWeatherUpdate_f",
         "TVPMEndWeatherUpdate() called inappropriately"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        host.ClearCalls();
        PluginErrors().clear();
        RunAs("alpha.tvp", c.call);
        EXPECT_EQ(host.Count(c.slot), c.error ? 0u : 1u);
        EXPECT_EQ(PluginErrors(), c.error ? Lines{Error("alpha.tvp", c.error)} : Lines{});
    }
}

TEST_F(Weather, WritesCarryTheCallerAndTheSimulatorsOwnWritesDoNothing) {
    TVPMWeatherInfo_t info = Info(424);
    float radiusSeen = 0;
    host.On<&TVPMHooks::TVPMSetWeatherAtPt_f>(
        [&](TVPMPluginID, float, float, float, TVPMWeatherInfo_t* in) { radiusSeen = in->radius_nm; });
    RunAs("alpha.tvp", [&] { TVPMSetWeatherAtLocation(47.25, 8.5, 1000, &info); });
    EXPECT_EQ(host.CallsTo("TVPMSetWeatherAtPt_f").at(0).args[0], std::to_string(IdOf("alpha.tvp")));
    EXPECT_EQ(radiusSeen, 30.0f);  // the newer fields' defaults, before the simulator reads
    EXPECT_EQ(info.max_altitude_msl_ft, 10000.0f);
    host.ClearCalls();
    TVPMSetWeatherAtLocation(0, 0, 0, &info);  // as the simulator itself
    TVPMSetWeatherAtAirport("LSZH", &info);
    TVPMEraseWeatherAtAirport("LSZH");
    TVPMBeginWeatherUpdate();
    EXPECT_TRUE(host.Calls().empty());
}

TEST_F(Weather, OnePluginAtATimeHoldsTheBulkUpdate) {
    static TVPMWeatherInfo_t info = Info(548);
    RunAs("alpha.tvp", [&] {
        TVPMBeginWeatherUpdate();
        TVPMBeginWeatherUpdate();  // twice: refused, the lock stays with alpha
        RunAs("beta.tvp", [] {
            TVPMSetWeatherAtLocation(1, 1, 0, &info);
            TVPMEraseWeatherAtLocation(1, 1);
            TVPMSetWeatherAtAirport("LSZH", &info);
            TVPMEraseWeatherAtAirport("LSZH");
            TVPMEndWeatherUpdate(0, 0);
        });
        TVPMSetWeatherAtLocation(1, 1, 0, &info);
        TVPMEndWeatherUpdate(1, 0);
    });
    const std::string bulk = " called when another plugin is bulk-updating";
    PluginErrors().resize(6);  // then beta's callback finds the update open
    EXPECT_EQ(PluginErrors(), (Lines{Error("alpha.tvp", "TVPMBeginWeatherUpdate() called twice"),
                                     Error("beta.tvp", "TVPMSetWeatherAtLocation" + bulk),
                                     Error("beta.tvp", "TVPMClearWeatherAtLocation" + bulk),
                                     Error("beta.tvp", "TVPMSetWeatherAtAirport" + bulk),
                                     Error("beta.tvp", "TVPMClearWeatherAtAirport" + bulk),
                                     Error("beta.tvp", "TVPMEndWeatherUpdate() called inappropriately")}));
    const std::string a = std::to_string(IdOf("alpha.tvp"));
    ASSERT_EQ(host.CallsTo("TVPMSetWeatherAtPt_f").size(), 1u);
    EXPECT_EQ(host.CallsTo("TVPMSetWeatherAtPt_f")[0].args[0], a);
    EXPECT_EQ(host.CallsTo("TVPMEndWeatherUpdate_f").back().args, (Lines{a, "1", "0"}));
}

TEST_F(Weather, AnUpdateLeftOpenIsReportedAfterEveryCallbackUntilItsHolderEndsIt) {
    const std::string line =
        "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate() from the same callback. "
        "This is a plugin bug.\n";
    const std::string error = "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate()";
    RunAs("alpha.tvp", [] { TVPMBeginWeatherUpdate(); });
    RunAs("beta.tvp", [] {});  // another plugin's callback still finds it open
    EXPECT_EQ(PluginErrors(), (Lines{Error("alpha.tvp", error), Error("beta.tvp", error)}));
    EXPECT_NE(host.Log().find("[alpha.tvp]: " + line), std::string::npos);
    EXPECT_NE(host.Log().find("[beta.tvp]: " + line), std::string::npos);
    RunAs("alpha.tvp", [] { TVPMEndWeatherUpdate(0, 1); });  // a later callback ends it
    PluginErrors().clear();
    RunAs("alpha.tvp", [] {});
    EXPECT_TRUE(PluginErrors().empty());
}

TEST_F(Weather, EnableAndDisableRefreshWritersAndUnloadDropsWeatherAndTheLock) {
    static TVPMWeatherInfo_t info = Info(548);
    const TVPMPluginID alpha = IdOf("alpha.tvp"), beta = IdOf("beta.tvp");
    RunAs("alpha.tvp", [] { TVPMSetWeatherAtAirport("LSZH", &info); });
    RunAs("beta.tvp", [] { TVPMEraseWeatherAtAirport("LSZH"); });  // erasing is not using
    host.ClearCalls();
    TVPMDisablePlugin(alpha);
    TVPMDisablePlugin(beta);
    TVPMEnablePlugin(alpha);
    const Lines refresh = {std::to_string(alpha), "1", "1"};
    EXPECT_EQ(host.SlotSequence({"TVPMBeginWeatherUpdate_f", "TVPMEndWeatherUpdate_f"}).size(), 4u);
    for (const HostCall& c : host.CallsTo("TVPMEndWeatherUpdate_f")) EXPECT_EQ(c.args, refresh);

    TVPMEnablePlugin(beta);
    RunAs("beta.tvp", [] { TVPMBeginWeatherUpdate(); });
    host.ClearCalls();
    TVPMReloadPlugins();  // unloads every plugin, then loads them again
    host.RunFrame();
    const Lines drop = {std::to_string(beta), "0", "1"};
    bool dropped = false;
    for (const HostCall& c : host.CallsTo("TVPMEndWeatherUpdate_f")) dropped |= c.args == drop;
    EXPECT_TRUE(dropped);
    PluginErrors().clear();
    RunAs("alpha.tvp", [] { TVPMSetWeatherAtAirport("LSZH", &info); });
    EXPECT_TRUE(PluginErrors().empty());
    EXPECT_EQ(host.Count("TVPMSetWeatherAtAirport_f"), 1u);
}

}  // namespace
