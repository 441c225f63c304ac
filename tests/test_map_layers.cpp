// test_map_layers.cpp: map layers and map-creation callbacks across plugins: creation, drawing in the owner's context, destruction, and what unloading leaves.
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMMap.h"

using namespace tvpmtest;

namespace {

// Every map callback as "<phase> <owner name> <refcon text>".
std::vector<std::string> s_calls;

void Note(const char* phase, void* refcon) {
    char name[256] = "";
    TVPMGetPluginInfo(TVPMGetMyID(), name, nullptr, nullptr, nullptr);
    s_calls.push_back(std::string(phase) + " " + name + " " + static_cast<const char*>(refcon));
}
template <int kPhase>
void OnDraw(TVPMMapLayerID, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID, void* r) {
    Note(kPhase == 0 ? "draw" : kPhase == 1 ? "icon" : "label", r);
}
void OnPrep(TVPMMapLayerID, const float*, TVPMMapProjectionID, void* r) { Note("prep", r); }
void OnDeleted(TVPMMapLayerID, void* r) { Note("deleted", r); }
void OnMapCreated(const char* map, void* r) { Note(map, r); }
void DisableSelf(TVPMMapLayerID, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID, void* r) {
    Note("draw", r);
    TVPMDisablePlugin(TVPMGetMyID());
}

TVPMCreateMapLayer_t Params(const char* tag, TVPMMapDrawingCallback_f draw = OnDraw<0>) {
    return {TVPM_CREATE_MAP_LAYER_SIZE, TVPM_MAP_USER_INTERFACE, tvpm_MapLayer_Markings, OnDeleted, OnPrep, draw,
            OnDraw<1>, OnDraw<2>, 1, tag, const_cast<char*>(tag)};
}

class MapLayers : public SimTest {
protected:
    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ASSERT_EQ(host.Start(sim.Root()), 23);
        host.On<&TVPMHooks::TVPMCreateMapLayer_f>([](void*, const char* map, TVPMMapLayerType, int, const char*) {
            return map && std::string(map) == TVPM_MAP_USER_INTERFACE ? 1 : 0;
        });
        s_calls.clear();
    }
    TVPMMapLayerID Create(const std::string& key, TVPMCreateMapLayer_t p) {
        return RunAs<TVPMMapLayerID>(key, [&] { return TVPMCreateMapLayer(&p); });
    }
    void DrawAll(TVPMMapLayerID layer) { TVPMDoMapLayerDrawingHook(layer, kBounds, 1, 1, 0, nullptr); }
    const float kBounds[4] = {0, 1, 1, 0};
};

TEST_F(MapLayers, OnlyTheExactSizeOnAMapTheSimulatorAcceptsMakesALayer) {
    TVPMCreateMapLayer_t wrong = Params("a"), refused = Params("a"), labelOnly = Params("a", nullptr);
    wrong.structSize = 84;
    EXPECT_EQ(Create("alpha.tvp", wrong), nullptr);
    EXPECT_EQ(host.Count("TVPMCreateMapLayer_f"), 0u);
    refused.mapToCreateLayerIn = "NO_SUCH_MAP";
    EXPECT_EQ(Create("alpha.tvp", refused), nullptr);
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 0);  // the refused record is gone
    labelOnly.iconCallback = nullptr;
    labelOnly.prepCacheCallback = nullptr;
    ASSERT_NE(Create("alpha.tvp", labelOnly), nullptr);
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 0);  // labels alone ask for no drawing hooks
    ASSERT_NE(Create("beta.tvp", Params("b")), nullptr);
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 1);
}

TEST_F(MapLayers, HooksAndDestroyReachEachLayerInItsOwnersContextWhileItIsEnabled) {
    TVPMMapLayerID a = Create("alpha.tvp", Params("a"));
    TVPMMapLayerID b = Create("beta.tvp", Params("b"));
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
    TVPMDisablePlugin(IdOf("alpha.tvp"));
    DrawAll(a);  // a disabled owner is skipped
    TVPMDrawMapLabel(a, "still a layer", 0, 0, tvpm_MapOrientation_UI, 0);
    TVPMDrawMapLabel(&s_calls, "not a layer", 0, 0, tvpm_MapOrientation_UI, 0);
    TVPMDrawMapIconFromSheet(b, "icons.png", 0, 0, 1, 1, 0, 0, 0, 0, 1);  // destroyed, still a layer
    EXPECT_TRUE(s_calls.empty());
    EXPECT_EQ(host.Count("TVPMDrawMapLabel_f"), 1u);
    EXPECT_EQ(host.Count("TVPMDrawMapIconFromSheet_f"), 1u);
}

TEST_F(MapLayers, CreationCallbacksRunNewestFirstForTheTwoMapsOnly) {
    for (auto [key, tag] : {std::pair{"alpha.tvp", "1"}, {"beta.tvp", "2"}, {"alpha.tvp", "3"}})
        RunAs(key, [tag = tag] { TVPMRegisterMapCreationHook(OnMapCreated, const_cast<char*>(tag)); });
    for (const char* map : {TVPM_MAP_IOS, "TVPM_MAP_OTHER", "tvpm_map_ios"}) TVPMMapCreated(map);
    EXPECT_EQ(s_calls, (std::vector<std::string>{"TVPM_MAP_IOS alpha.tvp 3", "TVPM_MAP_IOS beta.tvp 2",
                                                 "TVPM_MAP_IOS alpha.tvp 1"}));
}

TEST_F(MapLayers, APluginDisablingItselfWhileDrawingGetsNoFurtherCalls) {
    TVPMMapLayerID a = Create("alpha.tvp", Params("a", DisableSelf));
    DrawAll(a);
    DrawAll(a);
    EXPECT_EQ(s_calls, (std::vector<std::string>{"draw alpha.tvp a"}));
}

TEST_F(MapLayers, AnUnloadedPluginsLayersAndCreationCallbacksAreNeverCalled) {
    TVPMMapLayerID a = Create("alpha.tvp", Params("a"));
    RunAs("alpha.tvp", [] { TVPMRegisterMapCreationHook(OnMapCreated, const_cast<char*>("1")); });
    TVPMReloadPlugins();  // unloads and loads again: the same ID, a new plugin
    host.RunFrame();
    ASSERT_EQ(IdOf("alpha.tvp"), 1);
    DrawAll(a);
    TVPMMapLayerWillBeDeleted(a);
    TVPMMapCreated(TVPM_MAP_USER_INTERFACE);
    EXPECT_TRUE(s_calls.empty());
}

}  // namespace
