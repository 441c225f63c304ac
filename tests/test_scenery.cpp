// test_scenery.cpp: probes, objects held per plugin, background loads across disable and reload, instances, and which plugin owns a code address.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMInstance.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMScenery.h"
#include "TVPMHost.h"

using namespace tvpmtest;

namespace {

using Args = std::vector<std::string>;

void* Token(int n) { return reinterpret_cast<void*>(static_cast<intptr_t>(0x1000 * n)); }
std::string Hex(int n) { return FormatArg(Token(n)); }

// Background-load completions as "<object or null>@<current plugin>".
std::vector<std::string>& Loaded() {
    static std::vector<std::string> loaded;
    return loaded;
}
void RecordLoaded(TVPMObjectRef obj, void*) {
    Loaded().push_back(FormatArg(obj) + "@" + std::to_string(TVPMGetMyID()));
}

// alpha and beta report errors; the simulator hands out probe slots 0, 1, 2...,
// loads every object as token 1, 2, ... and keeps background loads pending.
class Scenery : public SimTest {
protected:
    struct PendingLoad {
        std::string path;
        void (*done)(void*, void*);
        void* ref;
    };
    std::vector<PendingLoad> pending;
    int nextProbe = 0, nextObject = 1;

    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        PluginErrors().clear();
        Loaded().clear();
        host.On<&TVPMHooks::TVPMAllocateProbe_f>([this] { return nextProbe++; });
        host.On<&TVPMHooks::TVPMLoadObject_f>(
            [this](const char* path) { return std::string(path) == "missing" ? nullptr : Token(nextObject++); });
        host.On<&TVPMHooks::TVPMLoadObjectAsync_f>(
            [this](const char* path, void (*done)(void*, void*), void* ref) { pending.push_back({path, done, ref}); });
        host.On<&TVPMHooks::TVPMCreateInstance_f>([this](const char**, void*) { return Token(100 + nextObject++); });
        ASSERT_EQ(host.Start(sim.Root()), 23);
    }
    void Complete(void* obj) {
        for (PendingLoad& p : pending) p.done(obj, p.ref);
        pending.clear();
    }
    std::vector<Args> ArgsOf(const std::string& slot) const {
        std::vector<Args> out;
        for (const HostCall& c : host.CallsTo(slot)) out.push_back(c.args);
        return out;
    }
    std::string Err(const std::string& key, const std::string& text) {
        return std::to_string(IdOf(key)) + ":" + text;
    }
};

TEST_F(Scenery, ProbeSlotsAreReusedSmallestFirstAndNeverGivenBack) {
    RunAs("alpha.tvp", [] {
        TVPMProbeRef p[3] = {TVPMCreateProbe(tvpm_ProbeY), TVPMCreateProbe(tvpm_ProbeY),
                             TVPMCreateProbe(tvpm_ProbeY)};
        TVPMDestroyProbe(p[2]);
        TVPMDestroyProbe(p[1]);
        TVPMDestroyProbe(p[1]);  // already gone: nothing
        TVPMProbeInfo_t info{};
        info.structSize = TVPM_PROBE_INFO_SIZE;
        TVPMProbeTerrainXYZ(TVPMCreateProbe(tvpm_ProbeY), 1, 2, 3, &info);
        TVPMProbeTerrainXYZ(TVPMCreateProbe(tvpm_ProbeY), 1, 2, 3, &info);
    });
    EXPECT_EQ(host.Count("TVPMAllocateProbe_f"), 3u);
    const std::vector<Args> probes = ArgsOf("TVPMProbeY_f");
    ASSERT_EQ(probes.size(), 2u);
    EXPECT_EQ(probes[0][0], "1");
    EXPECT_EQ(probes[1][0], "2");
}

TEST_F(Scenery, ProbeResultsAndRefusals) {
    struct Case {
        const char* what;
        int structSize, hostAnswer;
        bool destroyed, nullInfo, wrongType;
        TVPMProbeResult expected;
        bool asksHost;
    } cases[] = {
        {"hit", 44, 1, false, false, false, tvpm_ProbeHitTerrain, true},
        {"any non-zero answer is a hit", 44, 7, false, false, false, tvpm_ProbeHitTerrain, true},
        {"missed", 44, 0, false, false, false, tvpm_ProbeMissed, true},
        {"short structure", 40, 1, false, false, false, tvpm_ProbeError, false},
        {"null output", 44, 1, false, true, false, tvpm_ProbeError, false},
        {"destroyed probe", 44, 1, true, false, false, tvpm_ProbeError, false},
        {"unknown type", 44, 1, false, false, true, tvpm_ProbeError, false},
    };
    for (const Case& c : cases) {
        host.ClearCalls();
        host.On<&TVPMHooks::TVPMProbeY_f>([&](int, float* at, float* loc, float*, float*, int* wet) {
            loc[0] = at[0], loc[1] = 5, loc[2] = at[2], *wet = 1;
            return c.hostAnswer;
        });
        TVPMProbeInfo_t info{};
        info.structSize = c.structSize;
        const TVPMProbeResult got = RunAs<TVPMProbeResult>("alpha.tvp", [&] {
            TVPMProbeRef p = TVPMCreateProbe(c.wrongType ? 3 : tvpm_ProbeY);
            if (c.destroyed) TVPMDestroyProbe(p);
            return TVPMProbeTerrainXYZ(p, 10, 20, 30, c.nullInfo ? nullptr : &info);
        });
        EXPECT_EQ(got, c.expected) << c.what;
        EXPECT_EQ(host.Count("TVPMProbeY_f"), c.asksHost ? 1u : 0u) << c.what;
        EXPECT_EQ(info.is_wet, c.asksHost ? 1 : 0) << c.what;
    }
}

TEST_F(Scenery, ObjectsBelongToThePluginThatLoadedThem) {
    TVPMDrawInfo_t at[2] = {{28, 1, 2, 3, 10, 20, 30}, {28, 4, 5, 6, 40, 50, 60}};
    RunAs("alpha.tvp", [&] {
        EXPECT_EQ(TVPMLoadObject("missing"), nullptr);
        TVPMLoadObject("tower.obj");
        TVPMLoadObject("tower.obj");  // a second token stands for a second hold
        TVPMLoadObject("crane.obj");
    });
    TVPMObjectRef tower = Token(1), crane = Token(3);
    RunAs("beta.tvp", [&] {
        TVPMUnloadObject(tower);           // not beta's
        TVPMDrawObjects(tower, 2, at, 0, 0);
    });
    RunAs("alpha.tvp", [&] {
        TVPMDrawObjects(tower, 2, at, 1, 0);
        at[1].structSize = 24;
        TVPMDrawObjects(tower, 2, at, 1, 0);
        TVPMDrawObjects(tower, 0, nullptr, 1, 0);
        TVPMUnloadObject(tower);
        TVPMUnloadObject(tower);  // the only hold of this token is gone
    });
    EXPECT_EQ(PluginErrors(), (std::vector<std::string>{
                                  Err("beta.tvp", "Unknown object for TVPMUnloadObject"),
                                  Err("beta.tvp", "Illegal object, or object not owned by this plugin."),
                                  Err("alpha.tvp", "Struct size mismatch for TVPMDrawObjects"),
                                  Err("alpha.tvp", "Unknown object for TVPMUnloadObject")}));
    // Heading goes to the simulator before pitch.
    EXPECT_EQ(ArgsOf("TVPMDrawObject_f"),
              (std::vector<Args>{{Hex(1), "1", "2", "3", "20", "10", "30", "1", "0"},
                                 {Hex(1), "4", "5", "6", "50", "40", "60", "1", "0"}}));
    host.ClearCalls();
    RunAs("beta.tvp", [] { TVPMSetErrorCallback(nullptr); });
    RunAs("beta.tvp", [&] { TVPMDrawObjects(crane, 1, at, 0, 0); });  // unchecked without a callback
    EXPECT_EQ(host.Count("TVPMDrawObject_f"), 1u);
    TVPMDisablePlugin(IdOf("alpha.tvp"));
    host.Shutdown();
    EXPECT_EQ(ArgsOf("TVPMUnloadObject_f"), (std::vector<Args>{{Hex(2)}, {Hex(3)}}));
}

TEST_F(Scenery, BackgroundLoadsReachThePluginOnlyWhenItCanTakeThem) {
    struct Case {
        const char* what;
        bool disableFirst, reloadFirst, fails;
        std::vector<std::string> beforeEnable, afterEnable;
        size_t unloadsAtSimulator;
    } cases[] = {
        {"enabled", false, false, false, {Hex(9) + "@1"}, {Hex(9) + "@1"}, 0},
        {"failed load", false, false, true, {"null@1"}, {"null@1"}, 0},
        {"disabled", true, false, false, {}, {Hex(9) + "@1"}, 0},
        {"reloaded", false, true, false, {}, {}, 1},
    };
    for (const Case& c : cases) {
        Loaded().clear();
        host.ClearCalls();
        RunAs("alpha.tvp", [] { TVPMLoadObjectAsync("barn.obj", RecordLoaded, nullptr); });
        ASSERT_EQ(pending.size(), 1u) << c.what;
        if (c.disableFirst) TVPMDisablePlugin(IdOf("alpha.tvp"));
        if (c.reloadFirst) {
            RunAs("alpha.tvp", [] { TVPMReloadPlugins(); });
            host.RunFrame();
        }
        Complete(c.fails ? nullptr : Token(9));
        EXPECT_EQ(Loaded(), c.beforeEnable) << c.what;
        TVPMEnablePlugin(IdOf("alpha.tvp"));
        EXPECT_EQ(Loaded(), c.afterEnable) << c.what;
        EXPECT_EQ(host.Count("TVPMUnloadObject_f"), c.unloadsAtSimulator) << c.what;
        // A delivered object is the plugin's own to unload.
        if (!c.afterEnable.empty() && !c.fails) {
            RunAs("alpha.tvp", [] { TVPMUnloadObject(Token(9)); });
            EXPECT_EQ(host.Count("TVPMUnloadObject_f"), 1u) << c.what;
        }
    }
    EXPECT_TRUE(PluginErrors().empty());
}

TEST_F(Scenery, InstancesHideWithTheirPluginAndGoWithIt) {
    static const char* drefs[] = {"sim/test/beacon", nullptr};
    TVPMInstanceRef a = RunAs<TVPMInstanceRef>("alpha.tvp", [] { return TVPMCreateInstance(Token(1), drefs); });
    TVPMInstanceRef b = RunAs<TVPMInstanceRef>("beta.tvp", [] { return TVPMCreateInstance(Token(1), nullptr); });
    const std::string simA = Hex(101);
    const std::string simB = Hex(102);
    const TVPMDrawInfo_t at{28, 1, 2, 3, 10, 20, 30};
    const TVPMDrawInfoDouble_t atDouble{0, 1, 2, 3, 10, 20, 30};
    const float data[] = {0.5f};
    host.ClearCalls();
    RunAs("beta.tvp", [&] {
        TVPMInstanceSetPosition(a, &at, data);
        TVPMInstanceSetPositionDouble(a, &atDouble, data);
        TVPMInstanceSetPosition(a, nullptr, data);  // ignored
        TVPMInstanceSetAutoShift(a);
    });
    EXPECT_EQ(host.SlotSequence(), (std::vector<std::string>{
                                       "TVPMInstanceSetData_f", "TVPMInstanceSetPosition_f",
                                       "TVPMInstanceSetData_f", "TVPMInstanceSetPositionDouble_f",
                                       "TVPMInstanceSetAutoShift_f"}));
    EXPECT_EQ(ArgsOf("TVPMInstanceSetPosition_f")[0], (Args{simA, "1", "2", "3", "20", "10", "30"}));
    host.ClearCalls();
    TVPMDisablePlugin(IdOf("alpha.tvp"));
    TVPMEnablePlugin(IdOf("alpha.tvp"));
    EXPECT_EQ(ArgsOf("TVPMInstanceDisable_f"), (std::vector<Args>{{simA}}));
    EXPECT_EQ(ArgsOf("TVPMInstanceEnable_f"), (std::vector<Args>{{simA}}));
    RunAs("alpha.tvp", [&] {
        TVPMDestroyInstance(b);  // any plugin may
        TVPMDestroyInstance(b);
        TVPMInstanceSetPosition(b, &at, data);  // stale: ignored
    });
    EXPECT_EQ(ArgsOf("TVPMDestroyInstance_f"), (std::vector<Args>{{simB}}));
    EXPECT_EQ(host.Count("TVPMInstanceSetPosition_f"), 0u);
    host.Shutdown();
    EXPECT_EQ(ArgsOf("TVPMDestroyInstance_f"), (std::vector<Args>{{simB}, {simA}}));
}

TEST_F(Scenery, ACodeAddressNamesThePluginWhoseLibraryHoldsIt) {
    void* lib = dlopen((sim.PluginsDir() + "/beta.tvp").c_str(), RTLD_NOLOAD | RTLD_LAZY);
    ASSERT_NE(lib, nullptr);
    void* inBeta = dlsym(lib, "TPluginStart");
    dlclose(lib);
    struct Case {
        void* ip;
        const char* name;
        TVPMPluginID id;
    } cases[] = {
        {inBeta, "beta.tvp", IdOf("beta.tvp")},
        {reinterpret_cast<void*>(&TVPMCreateProbe), nullptr, -7},  // the library's own code
        {reinterpret_cast<void*>(&Token), nullptr, -7},            // the simulator's
        {nullptr, nullptr, -7},
    };
    for (const Case& c : cases) {
        TVPMPluginID id = -7;
        const char* name = TVPMFindPluginForIP(c.ip, &id);
        EXPECT_EQ(name ? std::string(name) : "null", c.name ? c.name : "null");
        EXPECT_EQ(id, c.id);
    }
}

}  // namespace
