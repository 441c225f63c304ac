// test_scenery.cpp: probes, objects held per plugin, background loads across disable and reload, instances, and which plugin owns a code address.
#include <dlfcn.h>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMInstance.h"
#include "TVPM/TVPMScenery.h"

using namespace tvpmtest;

namespace {

using Args = std::vector<std::string>;

void* Token(int n) { return reinterpret_cast<void*>(static_cast<intptr_t>(0x1000 * n)); }
std::string Hex(int n) { return FormatArg(Token(n)); }

// Background-load completions as "<object or null>@<current plugin>".
std::vector<std::string> s_loaded;
void RecordLoaded(TVPMObjectRef obj, void*) { s_loaded.push_back(FormatArg(obj) + "@" + std::to_string(TVPMGetMyID())); }

// alpha and beta report errors; the simulator hands out probe slots 0, 1, 2...,
// loads every object as token 1, 2, ... and keeps background loads pending.
class Scenery : public SimTest {
protected:
    std::vector<std::pair<void (*)(void*, void*), void*>> pending;
    int nextProbe = 0, nextObject = 1;

    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        PluginErrors().clear();
        host.On<&TVPMHooks::TVPMAllocateProbe_f>([this] { return nextProbe++; });
        host.On<&TVPMHooks::TVPMLoadObject_f>(
            [this](const char* path) { return std::string(path) == "missing" ? nullptr : Token(nextObject++); });
        host.On<&TVPMHooks::TVPMLoadObjectAsync_f>(
            [this](const char*, void (*done)(void*, void*), void* ref) { pending.push_back({done, ref}); });
        host.On<&TVPMHooks::TVPMCreateInstance_f>([this](const char**, void*) { return Token(100 + nextObject++); });
        ASSERT_EQ(host.Start(sim.Root()), 23);
    }
    std::vector<Args> ArgsOf(const std::string& slot) const {
        std::vector<Args> out;
        for (const HostCall& c : host.CallsTo(slot)) out.push_back(c.args);
        return out;
    }
    std::string Err(const std::string& key, const std::string& text) { return std::to_string(IdOf(key)) + ":" + text; }
};

TEST_F(Scenery, ProbesReuseFreedSlotsAndRefuseWhatTheyCannotProbe) {
    struct Case {
        const char* what;
        int hostAnswer, structSize, type;
        bool destroyed, nullInfo;
        TVPMProbeResult expected;
    } cases[] = {
        {"hit", 1, 44, tvpm_ProbeY, false, false, tvpm_ProbeHitTerrain},
        {"missed", 0, 44, tvpm_ProbeY, false, false, tvpm_ProbeMissed},
        {"short structure", 1, 40, tvpm_ProbeY, false, false, tvpm_ProbeError},
        {"null output", 1, 44, tvpm_ProbeY, false, true, tvpm_ProbeError},
        {"destroyed probe", 1, 44, tvpm_ProbeY, true, false, tvpm_ProbeError},
        {"unknown type", 1, 44, 3, false, false, tvpm_ProbeError},
    };
    int answer = 0;  // the simulator's, also whether the point is wet
    host.On<&TVPMHooks::TVPMProbeY_f>([&](int, float*, float*, float*, float*, int* wet) { return *wet = answer; });
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        host.ClearCalls();
        answer = c.hostAnswer;
        TVPMProbeInfo_t info{};
        info.structSize = c.structSize;
        EXPECT_EQ(RunAs<TVPMProbeResult>("alpha.tvp", [&] {
                      TVPMProbeRef p = TVPMCreateProbe(c.type);
                      if (c.destroyed) TVPMDestroyProbe(p);
                      const TVPMProbeResult r = TVPMProbeTerrainXYZ(p, 10, 20, 30, c.nullInfo ? nullptr : &info);
                      TVPMDestroyProbe(p);
                      return r;
                  }),
                  c.expected);
        EXPECT_EQ(host.Count("TVPMProbeY_f"), c.expected != tvpm_ProbeError ? 1u : 0u);
        EXPECT_EQ(info.is_wet, c.expected != tvpm_ProbeError ? answer : 0);
    }
    EXPECT_EQ(nextProbe, 1);  // each case reused the slot the one before freed
    for (int i = 0; i < 2; ++i) RunAs("alpha.tvp", [] { TVPMCreateProbe(tvpm_ProbeY); });
    EXPECT_EQ(nextProbe, 2);  // a freed slot goes to one live probe only
}

TEST_F(Scenery, ObjectsBelongToThePluginThatLoadedThem) {
    TVPMDrawInfo_t at[2] = {{28, 1, 2, 3, 10, 20, 30}, {28, 4, 5, 6, 40, 50, 60}};
    RunAs("alpha.tvp", [&] {
        EXPECT_EQ(TVPMLoadObject("missing"), nullptr);
        TVPMLoadObject("tower.obj");
        TVPMLoadObject("crane.obj");
    });
    TVPMObjectRef tower = Token(1);
    RunAs("beta.tvp", [&] {
        TVPMUnloadObject(tower);  // not beta's
        TVPMDrawObjects(tower, 2, at, 0, 0);
    });
    RunAs("alpha.tvp", [&] {
        TVPMDrawObjects(tower, 2, at, 1, 0);
        at[1].structSize = 24;
        TVPMDrawObjects(tower, 2, at, 1, 0);
        TVPMUnloadObject(tower);
        TVPMUnloadObject(tower);  // the only hold of this token is gone
    });
    EXPECT_EQ(PluginErrors(), (Args{Err("beta.tvp", "Unknown object for TVPMUnloadObject"),
                                    Err("beta.tvp", "Illegal object, or object not owned by this plugin."),
                                    Err("alpha.tvp", "Struct size mismatch for TVPMDrawObjects"),
                                    Err("alpha.tvp", "Unknown object for TVPMUnloadObject")}));
    // Heading goes to the simulator before pitch.
    EXPECT_EQ(ArgsOf("TVPMDrawObject_f"), (std::vector<Args>{{Hex(1), "1", "2", "3", "20", "10", "30", "1", "0"},
                                                             {Hex(1), "4", "5", "6", "50", "40", "60", "1", "0"}}));
    host.Shutdown();  // unloads what is still held
    EXPECT_EQ(ArgsOf("TVPMUnloadObject_f"), (std::vector<Args>{{Hex(1)}, {Hex(2)}}));
}

TEST_F(Scenery, BackgroundLoadsReachThePluginOnlyWhenItCanTakeThem) {
    const std::string delivered = Hex(9) + "@1";
    struct Case {
        const char* what;
        bool disableFirst, reloadFirst, fails;
        Args beforeEnable, afterEnable;
        size_t unloadsAtSimulator;
    } cases[] = {
        {"enabled", false, false, false, {delivered}, {delivered}, 0},
        {"failed load", false, false, true, {"null@1"}, {"null@1"}, 0},
        {"disabled", true, false, false, {}, {delivered}, 0},
        {"reloaded", false, true, false, {}, {}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        s_loaded.clear();
        host.ClearCalls();
        RunAs("alpha.tvp", [] { TVPMLoadObjectAsync("barn.obj", RecordLoaded, nullptr); });
        if (c.disableFirst) TVPMDisablePlugin(IdOf("alpha.tvp"));
        if (c.reloadFirst) TVPMReloadPlugins();
        host.RunFrame();  // where a requested reload runs
        pending.at(0).first(c.fails ? nullptr : Token(9), pending.at(0).second);
        pending.clear();
        EXPECT_EQ(s_loaded, c.beforeEnable);
        TVPMEnablePlugin(IdOf("alpha.tvp"));
        EXPECT_EQ(s_loaded, c.afterEnable);
        EXPECT_EQ(host.Count("TVPMUnloadObject_f"), c.unloadsAtSimulator);
        if (!c.afterEnable.empty() && !c.fails) {  // a delivered object is the plugin's own to unload
            RunAs("alpha.tvp", [] { TVPMUnloadObject(Token(9)); });
            EXPECT_EQ(host.Count("TVPMUnloadObject_f"), 1u);
        }
    }
    EXPECT_TRUE(PluginErrors().empty());
}

TEST_F(Scenery, InstancesHideWithTheirPluginAndGoWithIt) {
    TVPMInstanceRef a = RunAs<TVPMInstanceRef>("alpha.tvp", [] { return TVPMCreateInstance(Token(1), nullptr); });
    TVPMInstanceRef b = RunAs<TVPMInstanceRef>("beta.tvp", [] { return TVPMCreateInstance(Token(1), nullptr); });
    const TVPMDrawInfo_t at{28, 1, 2, 3, 10, 20, 30};
    const float data[] = {0.5f};
    RunAs("beta.tvp", [&] {  // any plugin may use or destroy any instance
        TVPMInstanceSetPosition(a, &at, data);
        TVPMInstanceSetPosition(a, nullptr, data);  // ignored
        TVPMDestroyInstance(b);
        TVPMDestroyInstance(b);
        TVPMInstanceSetAutoShift(b);  // stale: ignored
    });
    TVPMDisablePlugin(IdOf("alpha.tvp"));
    TVPMEnablePlugin(IdOf("alpha.tvp"));
    host.Shutdown();
    EXPECT_EQ(host.SlotSequence({"TVPMInstanceSetData_f", "TVPMInstanceSetPosition_f", "TVPMInstanceDisable_f",
                                 "TVPMInstanceEnable_f", "TVPMDestroyInstance_f", "TVPMInstanceSetAutoShift_f"}),
              (Args{"TVPMInstanceSetData_f", "TVPMInstanceSetPosition_f", "TVPMDestroyInstance_f",
                    "TVPMInstanceDisable_f", "TVPMInstanceEnable_f", "TVPMInstanceDisable_f",
                    "TVPMDestroyInstance_f"}));
    EXPECT_EQ(ArgsOf("TVPMInstanceSetPosition_f")[0], (Args{Hex(101), "1", "2", "3", "20", "10", "30"}));
    EXPECT_EQ(ArgsOf("TVPMInstanceEnable_f")[0], Args{Hex(101)});
    EXPECT_EQ(ArgsOf("TVPMDestroyInstance_f"), (std::vector<Args>{{Hex(102)}, {Hex(101)}}));
}

TEST_F(Scenery, ACodeAddressNamesThePluginWhoseLibraryHoldsIt) {
    void* lib = dlopen((sim.PluginsDir() + "/beta.tvp").c_str(), RTLD_NOLOAD | RTLD_LAZY);
    ASSERT_NE(lib, nullptr);
    void* inBeta = dlsym(lib, "TPluginStart");
    dlclose(lib);
    // The library's own code, the simulator's, and no code at all belong to no plugin.
    void* const ips[] = {inBeta, reinterpret_cast<void*>(&TVPMCreateProbe), reinterpret_cast<void*>(&Token), nullptr};
    for (void* ip : ips) {
        TVPMPluginID id = -7;
        const char* name = TVPMFindPluginForIP(ip, &id);
        EXPECT_EQ(name ? std::string(name) : "null", ip == inBeta ? "beta.tvp" : "null");
        EXPECT_EQ(id, ip == inBeta ? IdOf("beta.tvp") : -7);
    }
}

}  // namespace
