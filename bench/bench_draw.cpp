// bench_draw.cpp: the cost of one do-drawing hook that calls 1,000 registered draw callbacks, timing included.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "TVPM/TVPMDisplay.h"
#include "TVPMHost.h"
#include "bench_world.h"

namespace {

constexpr int kCallbacks = 1000;
constexpr TVPMDrawingHookKind kObjectsBefore = 8;

int Draw(TVPMDrawingPhase, int, void*) { return 1; }
void DiscardTimings(uint64_t, const TVPMPluginID*, const TVPMPluginCallbackType*, const double*) {}

// One enabled plugin with kCallbacks callbacks on the same phase, in the
// benchmarks' shared simulator. Nothing on the measured path may reach a
// recording slot of the host.
void RegisterDrawCallbacks() {
    static bool registered = false;
    if (registered) return;
    registered = true;
    bench::AsBenchPlugin([] {
        for (intptr_t i = 0; i < kCallbacks; ++i)
            TVPMRegisterDrawCallback(Draw, tvpm_Phase_Objects, 1, reinterpret_cast<void*>(i));
    });
}

void BM_DoDrawingHook_1000Callbacks(benchmark::State& state) {
    RegisterDrawCallbacks();
    const size_t hostCalls = bench::RecordedHostCalls();
    for (auto _ : state) {
        benchmark::DoNotOptimize(TVPMDoDrawingHook(kObjectsBefore, 0, nullptr));
        // The host collects the samples once per frame.
        TVPMGetPluginCallbackTimings(DiscardTimings);
    }
    if (bench::RecordedHostCalls() != hostCalls)
        state.SkipWithError("the measured path reached the host");
    state.counters["ns_per_callback"] = benchmark::Counter(
        kCallbacks, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_DoDrawingHook_1000Callbacks)->Unit(benchmark::kMicrosecond);

}  // namespace
