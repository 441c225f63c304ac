// test_weather.cpp: weather reads and writes, their argument checks, the bulk-update lock between plugins and the report of an update left open.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMWeather.h"

using namespace tvpmtest;

namespace {

const char* const kOpenLine =
    "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate() from the same "
    "callback. This is a plugin bug.\n";
const char* const kOpenError =
    "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate()";

TVPMWeatherInfo_t Info(int size) {
    TVPMWeatherInfo_t info{};
    info.structSize = size;
    return info;
}

size_t Occurrences(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

class Weather : public SimTest {
protected:
    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
        PluginErrors().clear();
        host.ClearCalls();
    }
    std::string Error(TVPMPluginID id, const std::string& text) {
        return std::to_string(id) + ":" + text;
    }
    TVPMPluginID alpha = -1, beta = -1;
};

}  // namespace

TEST_F(Weather, BadArgumentsGetTheirTextAndNeverReachTheSimulator) {
    struct Case {
        const char* what;
        std::function<void()> call;
        const char* slot;
        const char* error;  // null: accepted
    };
    static TVPMWeatherInfo_t full = Info(548), old = Info(424), odd = Info(1), none = Info(0);
    static TVPMFixedString150_t metar;
    const double nan = std::nan("");
    const std::vector<Case> cases = {
        {"METAR, null airport", [] { TVPMGetMETARForAirport(nullptr, &metar); },
         "TVPMGetLastKnownMETAR_f",
         "TVPMGetMETARForAirport requires both airport_id and outMETAR to be not null."},
        {"METAR, null output", [] { TVPMGetMETARForAirport("LSZH", nullptr); },
         "TVPMGetLastKnownMETAR_f",
         "TVPMGetMETARForAirport requires both airport_id and outMETAR to be not null."},
        {"METAR", [] { TVPMGetMETARForAirport("LSZH", &metar); }, "TVPMGetLastKnownMETAR_f",
         nullptr},
        {"read at the corner", [] { TVPMGetWeatherAtLocation(90.0, -180.0, 0, &full); },
         "TVPMGetWeatherAtPt_f", nullptr},
        {"read, older size", [] { TVPMGetWeatherAtLocation(0, 0, 0, &old); },
         "TVPMGetWeatherAtPt_f", nullptr},
        {"read beyond the pole", [] { TVPMGetWeatherAtLocation(90.0001, 0, 0, &full); },
         "TVPMGetWeatherAtPt_f",
         "TVPMGetWeatherAtLocation requires valid coordinates and out_info with a valid "
         "structSize."},
        {"read NaN", [nan] { TVPMGetWeatherAtLocation(0, nan, 0, &full); },
         "TVPMGetWeatherAtPt_f",
         "TVPMGetWeatherAtLocation requires valid coordinates and out_info with a valid "
         "structSize."},
        {"read, size 1", [] { TVPMGetWeatherAtLocation(0, 0, 0, &odd); }, "TVPMGetWeatherAtPt_f",
         "TVPMGetWeatherAtLocation requires valid coordinates and out_info with a valid "
         "structSize."},
        {"write, size 1", [] { TVPMSetWeatherAtLocation(0, 0, 0, &odd); },
         "TVPMSetWeatherAtPt_f",
         "TVPMSetWeatherAtLocation requires valid coordinates, radius and in_info with a valid "
         "structSize."},
        {"write, null", [] { TVPMSetWeatherAtLocation(0, 0, 0, nullptr); },
         "TVPMSetWeatherAtPt_f",
         "TVPMSetWeatherAtLocation requires valid coordinates, radius and in_info with a valid "
         "structSize."},
        {"write, longitude 181", [] { TVPMSetWeatherAtLocation(0, 181, 0, &full); },
         "TVPMSetWeatherAtPt_f",
         "TVPMSetWeatherAtLocation requires valid coordinates, radius and in_info with a valid "
         "structSize."},
        {"erase at -90.5", [] { TVPMEraseWeatherAtLocation(-90.5, 0); }, "TVPMEraseWeatherAtPt_f",
         "TVPMEraseWeatherAtLocation requires valid coordinates and in_info with a valid "
         "structSize."},
        {"airport, size 1", [] { TVPMSetWeatherAtAirport("LSZH", &odd); },
         "TVPMSetWeatherAtAirport_f", nullptr},
        {"airport, size 0", [] { TVPMSetWeatherAtAirport("LSZH", &none); },
         "TVPMSetWeatherAtAirport_f",
         "TVPMSetWeatherAtAirport requires a valid ICAO code and in_info with a valid "
         "structSize."},
        {"airport, empty code", [] { TVPMSetWeatherAtAirport("", &full); },
         "TVPMSetWeatherAtAirport_f",
         "TVPMSetWeatherAtAirport requires a valid ICAO code and in_info with a valid "
         "structSize."},
        {"erase airport, null", [] { TVPMEraseWeatherAtAirport(nullptr); },
         "TVPMEraseWeatherAtAirport_f", "TVPMEraseWeatherAtAirport requires a valid ICAO code."},
        {"end without begin", [] { TVPMEndWeatherUpdate(1, 1); }, "TVPMEndWeatherUpdate_f",
         "TVPMEndWeatherUpdate() called inappropriately"},
    };
    for (const Case& c : cases) {
        host.ClearCalls();
        PluginErrors().clear();
        RunAs("alpha.tvp", c.call);
        EXPECT_EQ(host.Count(c.slot), c.error ? 0u : 1u) << c.what;
        EXPECT_EQ(PluginErrors(), c.error ? std::vector<std::string>{Error(alpha, c.error)}
                                          : std::vector<std::string>{})
            << c.what;
    }
}

TEST_F(Weather, WritesCarryTheCallerAndTheSimulatorsOwnWritesDoNothing) {
    TVPMWeatherInfo_t info = Info(424);
    info.radius_nm = -1;
    float radiusSeen = 0;
    host.On<&TVPMHooks::TVPMSetWeatherAtPt_f>(
        [&](TVPMPluginID, float, float, float, TVPMWeatherInfo_t* in) { radiusSeen = in->radius_nm; });
    RunAs("alpha.tvp", [&] { TVPMSetWeatherAtLocation(47.25, 8.5, 1000, &info); });
    ASSERT_EQ(host.CallsTo("TVPMSetWeatherAtPt_f").size(), 1u);
    EXPECT_EQ(host.CallsTo("TVPMSetWeatherAtPt_f")[0].args[0], std::to_string(alpha));
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
    const std::vector<std::string> refused = {
        Error(alpha, "TVPMBeginWeatherUpdate() called twice"),
        Error(beta, "TVPMSetWeatherAtLocation called when another plugin is bulk-updating"),
        Error(beta, "TVPMClearWeatherAtLocation called when another plugin is bulk-updating"),
        Error(beta, "TVPMSetWeatherAtAirport called when another plugin is bulk-updating"),
        Error(beta, "TVPMClearWeatherAtAirport called when another plugin is bulk-updating"),
        Error(beta, "TVPMEndWeatherUpdate() called inappropriately"),
    };
    ASSERT_GE(PluginErrors().size(), refused.size());
    EXPECT_EQ(std::vector<std::string>(PluginErrors().begin(), PluginErrors().begin() + 6),
              refused);
    const auto writes = host.CallsTo("TVPMSetWeatherAtPt_f");
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0].args[0], std::to_string(alpha));
    const auto ends = host.CallsTo("TVPMEndWeatherUpdate_f");
    ASSERT_FALSE(ends.empty());
    EXPECT_EQ(ends.back().args, (std::vector<std::string>{std::to_string(alpha), "1", "0"}));
}

TEST_F(Weather, AnUpdateLeftOpenIsReportedAfterEveryCallbackUntilItsHolderEndsIt) {
    RunAs("alpha.tvp", [] { TVPMBeginWeatherUpdate(); });
    RunAs("alpha.tvp", [] {});
    RunAs("beta.tvp", [] {});  // another plugin's callback still finds it open
    EXPECT_EQ(Occurrences(host.Log(), std::string("[alpha.tvp]: ") + kOpenLine), 2u);
    EXPECT_EQ(Occurrences(host.Log(), std::string("[beta.tvp]: ") + kOpenLine), 1u);
    EXPECT_EQ(PluginErrors(), (std::vector<std::string>{Error(alpha, kOpenError),
                                                       Error(alpha, kOpenError),
                                                       Error(beta, kOpenError)}));

    RunAs("alpha.tvp", [] { TVPMEndWeatherUpdate(0, 1); });  // a later callback ends it
    host.ClearCalls();
    PluginErrors().clear();
    RunAs("alpha.tvp", [] {});
    EXPECT_EQ(Occurrences(host.Log(), kOpenLine), 0u);
    EXPECT_TRUE(PluginErrors().empty());
}

TEST_F(Weather, EnablingAndDisablingRefreshOnlyPluginsThatWroteWeather) {
    static TVPMWeatherInfo_t info = Info(548);
    RunAs("alpha.tvp", [] { TVPMSetWeatherAtAirport("LSZH", &info); });
    RunAs("beta.tvp", [] { TVPMEraseWeatherAtAirport("LSZH"); });  // erasing is not using
    host.ClearCalls();
    TVPMDisablePlugin(alpha);
    TVPMDisablePlugin(beta);
    TVPMEnablePlugin(alpha);
    const std::string a = std::to_string(alpha);
    EXPECT_EQ(host.SlotSequence({"TVPMBeginWeatherUpdate_f", "TVPMEndWeatherUpdate_f"}),
              (std::vector<std::string>{"TVPMBeginWeatherUpdate_f", "TVPMEndWeatherUpdate_f",
                                        "TVPMBeginWeatherUpdate_f", "TVPMEndWeatherUpdate_f"}));
    for (const HostCall& c : host.CallsTo("TVPMEndWeatherUpdate_f"))
        EXPECT_EQ(c.args, (std::vector<std::string>{a, "1", "1"}));
}

TEST_F(Weather, UnloadingDropsThePluginsWeatherAndReleasesItsLock) {
    static TVPMWeatherInfo_t info = Info(548);
    RunAs("alpha.tvp", [] { TVPMBeginWeatherUpdate(); });
    host.ClearCalls();
    TVPMReloadPlugins();  // unloads every plugin, then loads them again
    host.RunFrame();
    bool droppedAlpha = false;
    for (const HostCall& c : host.CallsTo("TVPMEndWeatherUpdate_f"))
        droppedAlpha |= c.args == std::vector<std::string>{std::to_string(alpha), "0", "1"};
    EXPECT_TRUE(droppedAlpha);
    PluginErrors().clear();
    RunAs("beta.tvp", [] { TVPMSetWeatherAtAirport("LSZH", &info); });
    EXPECT_TRUE(PluginErrors().empty());
    EXPECT_EQ(host.Count("TVPMSetWeatherAtAirport_f"), 1u);
}
