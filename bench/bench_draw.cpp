// bench_draw.cpp: the cost of one do-drawing hook that calls 1,000 registered draw callbacks, timing included.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "FakeHost.h"
#include "Harness.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPMHost.h"

namespace {

constexpr int kCallbacks = 1000;
constexpr TVPMDrawingHookKind kObjectsBefore = 8;

int Draw(TVPMDrawingPhase, int, void*) { return 1; }
void DiscardTimings(uint64_t, const TVPMPluginID*, const TVPMPluginCallbackType*, const double*) {}
void IgnoreAssertion(const char*, const char*, int) {}

// One enabled plugin with kCallbacks callbacks on the same phase. The fake
// host records calls (and allocates) only during start-up: nothing on the
// measured path reaches a recording slot, and the one slot it reads, the
// assertion handler, is replaced by a silent one.
struct DrawWorld {
    DrawWorld() {
        sim.AddLoose("bench.tvp", tvpmtest::BuiltPlugin("scripted.tvp"));
        tvpmtest::Script("bench.tvp").enable = [] {
            for (intptr_t i = 0; i < kCallbacks; ++i)
                TVPMRegisterDrawCallback(Draw, tvpm_Phase_Objects, 1, reinterpret_cast<void*>(i));
            return 1;
        };
        host.Start(sim.Root());
        host.hooks.TVPMHandleAssertFailed_f = IgnoreAssertion;
        host.ClearCalls();
    }
    ~DrawWorld() { host.Shutdown(); }

    tvpmtest::FakeHost host;
    tvpmtest::SimFolder sim;
};

void BM_DoDrawingHook_1000Callbacks(benchmark::State& state) {
    static DrawWorld world;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TVPMDoDrawingHook(kObjectsBefore, 0, nullptr));
        // The host collects the samples once per frame.
        TVPMGetPluginCallbackTimings(DiscardTimings);
    }
    if (!world.host.Calls().empty()) state.SkipWithError("the measured path reached the host");
    state.counters["ns_per_callback"] = benchmark::Counter(
        kCallbacks, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_DoDrawingHook_1000Callbacks)->Unit(benchmark::kMicrosecond);

}  // namespace
