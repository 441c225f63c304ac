// bench_records.cpp: registering many records of one kind, and unloading a plugin that holds a tenth of all records.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "scale_sim.h"

namespace {

constexpr int kKinds = 5;
constexpr TVPMEventKind kPlaneLoaded = 3;
constexpr TVPMEventKind kPlaneUnloaded = 8;

float Loop(float, float, int, void*) { return 0; }
int Draw(TVPMDrawingPhase, int, void*) { return 1; }
void HotKey(void*) {}
int Sniff(char, TVPMKeyFlags, char, void*) { return 1; }

void* Ref(intptr_t i) { return reinterpret_cast<void*>(i); }

// Registers count records of one kind for the current plugin, each distinct
// under that kind's duplicate rule.
using Registrar = void (*)(intptr_t count);
const Registrar kRegistrars[kKinds] = {
    [](intptr_t n) {
        for (intptr_t i = 0; i < n; ++i) TVPMRegisterDrawCallback(Draw, tvpm_Phase_Objects, 1, Ref(i));
    },
    [](intptr_t n) {
        for (intptr_t i = 0; i < n; ++i) TVPMRegisterFlightLoopCallback(Loop, 1.0f, Ref(i));
    },
    [](intptr_t n) {
        const TVPMMenuID menu = TVPMFindPluginsMenu();
        for (intptr_t i = 0; i < n; ++i) TVPMAppendMenuItem(menu, "item", Ref(i), 0);
    },
    [](intptr_t n) {
        for (intptr_t i = 0; i < n; ++i) TVPMRegisterHotKey(TVPM_VK_A, 0, "key", HotKey, Ref(i));
    },
    [](intptr_t n) {
        for (intptr_t i = 0; i < n; ++i) TVPMRegisterKeySniffer(Sniff, 1, Ref(i));
    },
};
const char* const kKindNames[kKinds] = {"draw callbacks", "flight loops", "menu items",
                                        "hot keys", "key sniffers"};

// Registering range(1) records of kind range(0) from one plugin.
void BM_Register(benchmark::State& state) {
    const Registrar registrar = kRegistrars[state.range(0)];
    const intptr_t count = state.range(1);
    tvpmtest::SimFolder sim;
    sim.AddLoose("reg.tvp", tvpmtest::BuiltPlugin("scripted.tvp"));
    bench::QuietHost host;
    for (auto _ : state) {
        state.PauseTiming();
        host.Start(sim.Root());
        state.ResumeTiming();
        bench::AsPlugin("reg.tvp", [&] { registrar(count); });
        state.PauseTiming();
        TVPMShutdownPlugins();
        state.ResumeTiming();
    }
    state.SetLabel(kKindNames[state.range(0)]);
}
BENCHMARK(BM_Register)
    ->ArgsProduct({{0, 1, 2, 3, 4}, {100000, 200000}})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

// Ten plugins hold range(0) records between them, a fifth of each plugin's of
// every kind; the one that is an aircraft plugin is unloaded with its aircraft.
void BM_UnloadTenthOfRecords(benchmark::State& state) {
    const intptr_t perKind = state.range(0) / 10 / kKinds;
    tvpmtest::SimFolder sim;
    bench::QuietHost host;
    auto holdRecords = [perKind] {
        for (Registrar registrar : kRegistrars) registrar(perKind);
        return 1;
    };
    for (int i = 0; i < 9; ++i) {
        const std::string key = "p" + std::to_string(i) + ".tvp";
        sim.AddLoose(key, tvpmtest::BuiltPlugin("scripted.tvp"));
        tvpmtest::Script(key).enable = holdRecords;
    }
    host.host.userAircraftPath =
        sim.AddAircraft("Jet", {"fms"}, tvpmtest::BuiltPlugin("scripted.tvp"));
    tvpmtest::Script("fms").enable = holdRecords;
    host.Start(sim.Root());
    for (auto _ : state) {
        state.PauseTiming();
        TVPMEventHook(kPlaneLoaded, 0, 0, 0, 0);
        if (TVPMFindPluginBySignature("test.fms") < 0) state.SkipWithError("no aircraft plugin");
        state.ResumeTiming();
        TVPMEventHook(kPlaneUnloaded, 0, 0, 0, 0);
    }
    TVPMShutdownPlugins();
}
BENCHMARK(BM_UnloadTenthOfRecords)
    ->Arg(100000)
    ->Arg(200000)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
