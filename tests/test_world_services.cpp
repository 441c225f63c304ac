// test_world_services.cpp: world services forwarded or refused with their text, weather's bulk-update lock and lifecycle, and map layers and map-creation callbacks.
#include <cmath>
#include <functional>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMGraphics.h"
#include "TVPM/TVPMMap.h"
#include "TVPM/TVPMNavigation.h"
#include "TVPM/TVPMPlanes.h"
#include "TVPM/TVPMScenery.h"
#include "TVPM/TVPMWeather.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

TVPMWeatherInfo_t Info(int size) {
    TVPMWeatherInfo_t info{};
    info.structSize = size;
    return info;
}

// Every map callback as "<phase> <owner name> <refcon text>".
std::vector<std::string> s_calls;

void Note(const char* phase, void* refcon) {
    char name[256] = "";
    TVPMGetPluginInfo(TVPMGetMyID(), name, nullptr, nullptr, nullptr);
    s_calls.push_back(std::string(phase) + " " + name + " " + static_cast<const char*>(refcon));
}
// The layer tagged "quitter" disables its own plugin while drawing.
template <int kPhase>
void OnDraw(TVPMMapLayerID, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID, void* r) {
    Note(kPhase == 0 ? "draw" : kPhase == 1 ? "icon" : "label", r);
    if (std::string(static_cast<const char*>(r)) == "quitter") TVPMDisablePlugin(TVPMGetMyID());
}
void OnPrep(TVPMMapLayerID, const float*, TVPMMapProjectionID, void* r) { Note("prep", r); }
void OnDeleted(TVPMMapLayerID, void* r) { Note("deleted", r); }
void OnMapCreated(const char* map, void* r) { Note(map, r); }

TVPMCreateMapLayer_t Params(const char* tag) {
    return {TVPM_CREATE_MAP_LAYER_SIZE, TVPM_MAP_USER_INTERFACE, tvpm_MapLayer_Markings, OnDeleted, OnPrep, OnDraw<0>,
            OnDraw<1>, OnDraw<2>, 1, tag, const_cast<char*>(tag)};
}

// alpha and beta report errors; the simulator makes layers on its user-interface map only.
class WorldServices : public SimTest {
protected:
    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        ASSERT_EQ(host.Start(sim.Root()), 23);
        host.On<&TVPMHooks::TVPMCreateMapLayer_f>([](void*, const char* map, TVPMMapLayerType, int, const char*) {
            return map && std::string(map) == TVPM_MAP_USER_INTERFACE ? 1 : 0;
        });
        PluginErrors().clear();
        host.ClearCalls();
        s_calls.clear();
    }
    std::string Error(const char* key, const std::string& text) { return std::to_string(IdOf(key)) + ":" + text; }
    TVPMMapLayerID Create(const std::string& key, TVPMCreateMapLayer_t p) {
        return RunAs<TVPMMapLayerID>(key, [&] { return TVPMCreateMapLayer(&p); });
    }
    void DrawAll(TVPMMapLayerID layer) { TVPMDoMapLayerDrawingHook(layer, kBounds, 1, 1, 0, nullptr); }
    const float kBounds[4] = {0, 1, 1, 0};
};

TEST_F(WorldServices, CallsReachTheSlotOfTheirNameWithTheirArgumentsOrGetTheirErrorText) {
    static TVPMWeatherInfo_t full = Info(548), odd = Info(1), none = Info(0);
    static TVPMFixedString150_t metar;
    const char* kRead = "TVPMGetWeatherAtLocation requires valid coordinates and out_info with a valid structSize.";
    const double nan = std::nan("");
    const struct Case {
        std::function<void()> call;
        const char* slot;
        const char* args;   // as the fake host records them, comma-separated; null: not compared
        const char* error;  // null: accepted
    } cases[] = {
        {[] { TVPMGetMETARForAirport(nullptr, &metar); }, "TVPMGetLastKnownMETAR_f", nullptr,
         "TVPMGetMETARForAirport requires both airport_id and outMETAR to be not null."},
        {[] { TVPMGetMETARForAirport("LSZH", &metar); }, "TVPMGetLastKnownMETAR_f", nullptr, nullptr},
        {[] { TVPMGetWeatherAtLocation(90.0, -180.0, 0, &full); }, "TVPMGetWeatherAtPt_f", nullptr, nullptr},
        {[] { TVPMGetWeatherAtLocation(90.0001, 0, 0, &full); }, "TVPMGetWeatherAtPt_f", nullptr, kRead},
        {[nan] { TVPMGetWeatherAtLocation(0, nan, 0, &full); }, "TVPMGetWeatherAtPt_f", nullptr, kRead},
        {[] { TVPMSetWeatherAtLocation(0, 0, 0, &odd); }, "TVPMSetWeatherAtPt_f", nullptr,
         "TVPMSetWeatherAtLocation requires valid coordinates, radius and in_info with a valid structSize."},
        {[] { TVPMEraseWeatherAtLocation(-90.5, 0); }, "TVPMEraseWeatherAtPt_f", nullptr,
         "TVPMEraseWeatherAtLocation requires valid coordinates and in_info with a valid structSize."},
        {[] { TVPMSetWeatherAtAirport("LSZH", &odd); }, "TVPMSetWeatherAtAirport_f", nullptr, nullptr},
        {[] { TVPMSetWeatherAtAirport("LSZH", &none); }, "TVPMSetWeatherAtAirport_f", nullptr,
         "TVPMSetWeatherAtAirport requires a valid ICAO code and in_info with a valid structSize."},
        {[] { TVPMEraseWeatherAtAirport(nullptr); }, "TVPMEraseWeatherAtAirport_f", nullptr,
         "TVPMEraseWeatherAtAirport requires a valid ICAO code."},
        // Navigation and graphics calls are generated from one forwarding list each, so one stands for the rest.
        {[] { TVPMFindNavAid(nullptr, "KSEA", nullptr, nullptr, nullptr, 1); }, "TVPMFindNavAid_f",
         "null,\"KSEA\",null,null,null,1", nullptr},
        {[] { TVPMBindTexture2d(12, 1); }, "TVPMBindTexture2d_f", "12,1", nullptr},
        {[] { TVPMMapProject(nullptr, 1, 2, nullptr, nullptr); }, "TVPMMapProject_f", "null,1,2,null,null", nullptr},
        {[] { TVPMMapScaleMeter(nullptr, 3, 4); }, "TVPMMapScaleMeter_f", "null,3,4", nullptr},
        {[] { TVPMMapGetNorthHeading(nullptr, 5, 6); }, "TVPMMapGetNorthHeading_f", "null,5,6", nullptr},
        {[] { TVPMGetMagneticVariation(47.5, 8.5); }, "TVPMGetMagneticVariation_f", "47.5,8.5", nullptr},
        {[] { TVPMPlaceUserAtAirport("KSEA"); }, "TVPMLoadAirport_f", "\"KSEA\"", nullptr},
        {[] { TVPMPlaceUserAtLocation(47.5, -122.3, 3, 4, 5); }, "TVPMInitAtLocation_f", "47.5,-122.3,3,4,5", nullptr},
        // The file name is what follows the last '/', or the path less its first character.
        {[] { TVPMSetUsersAircraft("J/jet.acf"); }, "TVPMLoadPlane_f", "0,\"J/jet.acf\",\"jet.acf\"", nullptr},
        {[] { TVPMSetUsersAircraft("plane.acf"); }, "TVPMLoadPlane_f", "0,\"plane.acf\",\"lane.acf\"", nullptr},
        {[] { TVPMLookupObjects("KSEA", 1.5f, 2.5f, nullptr, nullptr); }, "TVPMLookupObjects_f",
         "\"KSEA\",1.5,2.5,null,null", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        host.ClearCalls();
        PluginErrors().clear();
        RunAs("alpha.tvp", c.call);
        EXPECT_EQ(host.SlotSequence(), c.error ? Lines{} : Lines{c.slot});
        EXPECT_EQ(PluginErrors(), c.error ? Lines{Error("alpha.tvp", c.error)} : Lines{});
        if (!c.args || host.Calls().empty()) continue;
        std::string args;
        for (const std::string& a : host.Calls()[0].args) args += (args.empty() ? "" : ",") + a;
        EXPECT_EQ(args, c.args);
    }
}

TEST_F(WorldServices, OnePluginAtATimeHoldsTheBulkWeatherUpdateAndEveryCallbackReportsItOpenUntilItsHolderEndsIt) {
    static TVPMWeatherInfo_t info = Info(548);
    TVPMWeatherInfo_t older = Info(424);
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
        TVPMSetWeatherAtLocation(1, 1, 0, &older);
    });
    RunAs("alpha.tvp", [] { TVPMEndWeatherUpdate(1, 0); });  // a later callback may end it
    RunAs("beta.tvp", [] {});
    const std::string bulk = " called when another plugin is bulk-updating";
    const std::string open = "TVPMBeginWeatherUpdate() called without matching TVPMEndWeatherUpdate()";
    EXPECT_EQ(PluginErrors(), (Lines{Error("alpha.tvp", "TVPMBeginWeatherUpdate() called twice"),
                                     Error("beta.tvp", "TVPMSetWeatherAtLocation" + bulk),
                                     Error("beta.tvp", "TVPMClearWeatherAtLocation" + bulk),
                                     Error("beta.tvp", "TVPMSetWeatherAtAirport" + bulk),
                                     Error("beta.tvp", "TVPMClearWeatherAtAirport" + bulk),
                                     Error("beta.tvp", "TVPMEndWeatherUpdate() called inappropriately"),
                                     Error("beta.tvp", open), Error("alpha.tvp", open)}));
    EXPECT_NE(host.Log().find("[alpha.tvp]: " + open + " from the same callback. This is a plugin bug.\n"),
              std::string::npos);
    const std::string a = std::to_string(IdOf("alpha.tvp"));
    EXPECT_EQ(host.CallsTo("TVPMSetWeatherAtPt_f").at(0).args.at(0), a);  // beta's went nowhere
    EXPECT_EQ(host.CallsTo("TVPMEndWeatherUpdate_f").back().args, (Lines{a, "1", "0"}));
    EXPECT_EQ(older.radius_nm, 30.0f);  // the newer fields' defaults
    EXPECT_EQ(older.max_altitude_msl_ft, 10000.0f);
}

TEST_F(WorldServices, EnableAndDisableRefreshWeatherWritersAndUnloadDropsTheirWeatherAndTheLock) {
    static TVPMWeatherInfo_t info = Info(548);
    const std::string a = std::to_string(IdOf("alpha.tvp")), b = std::to_string(IdOf("beta.tvp"));
    RunAs("alpha.tvp", [] { TVPMSetWeatherAtAirport("LSZH", &info); });
    RunAs("beta.tvp", [] { TVPMEraseWeatherAtAirport("LSZH"); });  // erasing is not using
    for (const char* key : {"alpha.tvp", "beta.tvp"}) TVPMDisablePlugin(IdOf(key));
    TVPMEnablePlugin(IdOf("alpha.tvp"));
    TVPMReloadPlugins();  // disables and unloads every plugin, then loads them again
    host.RunFrame();
    // A refresh is an incremental, immediate update; a drop a full one with nothing written.
    std::vector<Lines> ends;
    for (const HostCall& c : host.CallsTo("TVPMEndWeatherUpdate_f")) ends.push_back(c.args);
    EXPECT_EQ(ends, (std::vector<Lines>{{a, "1", "1"}, {a, "1", "1"}, {a, "1", "1"}, {a, "0", "1"}, {b, "0", "1"}}));
    RunAs("beta.tvp", [] { TVPMBeginWeatherUpdate(); });
    TVPMReloadPlugins();
    host.RunFrame();
    PluginErrors().clear();
    RunAs("alpha.tvp", [] { TVPMSetWeatherAtAirport("LSZH", &info); });
    EXPECT_TRUE(PluginErrors().empty());  // beta's lock went with it
}

TEST_F(WorldServices, MapLayersNeedTheExactSizeAndAnAcceptingMapAndGetTheirHooksInTheirOwnersContextWhileEnabled) {
    TVPMCreateMapLayer_t wrong = Params("x"), refused = Params("x");
    wrong.structSize = 84;
    refused.mapToCreateLayerIn = "NO_SUCH_MAP";
    EXPECT_EQ(Create("alpha.tvp", wrong), nullptr);
    EXPECT_EQ(Create("alpha.tvp", refused), nullptr);
    EXPECT_EQ(host.Count("TVPMCreateMapLayer_f"), 1u);  // only the right size reaches the simulator
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 0);      // and the refused record is gone
    TVPMMapLayerID a = Create("alpha.tvp", Params("a"));
    TVPMMapLayerID b = Create("beta.tvp", Params("b"));
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 1);
    DrawAll(a);
    DrawAll(b);
    TVPMDoMapLayerPrepareCacheHook(b, kBounds, nullptr);
    TVPMMapLayerWillBeDeleted(a);
    DrawAll(&s_calls);  // not a layer: ignored
    EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMDestroyMapLayer(b); }), 1);
    EXPECT_EQ(TVPMDestroyMapLayer(&s_calls), 0);  // never a layer
    EXPECT_EQ(s_calls, (std::vector<std::string>{"draw alpha.tvp a", "icon alpha.tvp a", "label alpha.tvp a",
                                                 "draw beta.tvp b", "icon beta.tvp b", "label beta.tvp b",
                                                 "prep beta.tvp b", "deleted alpha.tvp a", "deleted beta.tvp b"}));
    EXPECT_EQ(host.Count("TVPMDestroyMapLayer_f"), 1u);

    s_calls.clear();
    DrawAll(Create("alpha.tvp", Params("quitter")));
    DrawAll(a);  // a disabled owner is skipped
    TVPMDrawMapLabel(a, "still a layer", 0, 0, tvpm_MapOrientation_UI, 0);
    TVPMDrawMapLabel(&s_calls, "not a layer", 0, 0, tvpm_MapOrientation_UI, 0);
    TVPMDrawMapIconFromSheet(b, "icons.png", 0, 0, 1, 1, 0, 0, 0, 0, 1);  // destroyed, still a layer
    EXPECT_EQ(s_calls, (std::vector<std::string>{"draw alpha.tvp quitter"}));
    EXPECT_EQ(host.SlotSequence({"TVPMDrawMapLabel_f", "TVPMDrawMapIconFromSheet_f"}),
              (Lines{"TVPMDrawMapLabel_f", "TVPMDrawMapIconFromSheet_f"}));
}

TEST_F(WorldServices, MapCreationCallbacksRunNewestFirstForTheTwoMapsOnlyAndNothingRunsAfterUnload) {
    for (auto [key, tag] : {std::pair{"alpha.tvp", "1"}, {"beta.tvp", "2"}, {"alpha.tvp", "3"}})
        RunAs(key, [tag = tag] { TVPMRegisterMapCreationHook(OnMapCreated, const_cast<char*>(tag)); });
    for (const char* map : {TVPM_MAP_IOS, "TVPM_MAP_OTHER", "tvpm_map_ios"}) TVPMMapCreated(map);
    EXPECT_EQ(s_calls, (std::vector<std::string>{"TVPM_MAP_IOS alpha.tvp 3", "TVPM_MAP_IOS beta.tvp 2",
                                                 "TVPM_MAP_IOS alpha.tvp 1"}));
    TVPMMapLayerID a = Create("alpha.tvp", Params("a"));
    s_calls.clear();
    TVPMReloadPlugins();  // unloads and loads again: the same ID, a new plugin
    host.RunFrame();
    DrawAll(a);
    TVPMMapLayerWillBeDeleted(a);
    TVPMMapCreated(TVPM_MAP_USER_INTERFACE);
    EXPECT_TRUE(s_calls.empty());
}

}  // namespace
