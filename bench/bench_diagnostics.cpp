// bench_diagnostics.cpp: what the plugin diagnostics switch costs a plugin-thread call when it is off, and when on.
#include <benchmark/benchmark.h>

#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPMHost.h"
#include "bench_world.h"

namespace {

int ReadCounter(int* counter) { return *counter; }

// The baseline: a call through a pointer that reads one global, as
// TVPMGetCycleNumber does without its thread check.
void BM_Direct_ReadInt(benchmark::State& state) {
    static int counter = 7;
    int (*volatile call)(int*) = ReadCounter;
    for (auto _ : state) benchmark::DoNotOptimize(call(&counter));
}
BENCHMARK(BM_Direct_ReadInt);

// An exported call without a thread check that reads one atomic counter:
// what a checked call costs less the check.
void BM_TVPMCountDataRefs_Unchecked(benchmark::State& state) {
    bench::EnsureWorld();
    for (auto _ : state) benchmark::DoNotOptimize(TVPMCountDataRefs());
}
BENCHMARK(BM_TVPMCountDataRefs_Unchecked);

void CycleNumber(benchmark::State& state, int diagnostics) {
    bench::EnsureWorld();
    TVPMSetPluginDiagnostics(diagnostics);
    for (auto _ : state) benchmark::DoNotOptimize(TVPMGetCycleNumber());
    TVPMSetPluginDiagnostics(0);
}
BENCHMARK_CAPTURE(CycleNumber, diagnostics_off, 0);
BENCHMARK_CAPTURE(CycleNumber, diagnostics_on, 1);

}  // namespace
