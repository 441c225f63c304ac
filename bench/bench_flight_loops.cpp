// bench_flight_loops.cpp: one flight-loop pass over many records with few due, and the allocations of steady-state frames.
#include <benchmark/benchmark.h>

#include <vector>

#include "TVPM/TVPMProcessing.h"
#include "TVPMHost.h"
#include "bench_world.h"

namespace {

constexpr int kRecords = 10000;
constexpr int kDueEvery = 10;  // 1,000 of 10,000 due on every pass
constexpr float kFarFuture = 1.0e9f;

__attribute__((noinline)) float EveryPass(float, float, int, void*) { return -1.0f; }

void IgnoreTimings(uint64_t, const TVPMPluginID*, const TVPMPluginCallbackType*, const double*) {}

// A set of the bench plugin's flight loops, created and destroyed as the plugin.
class LoopSet {
public:
    // records loops in the given phase; one in dueEvery runs every pass (none
    // when dueEvery is 0), the others wait for a time that never comes.
    LoopSet(int records, int dueEvery, TVPMFlightLoopPhaseType phase) {
        bench::EnsureWorld();
        bench::AsBenchPlugin([&] {
            for (int i = 0; i < records; ++i) {
                TVPMCreateFlightLoop_t params{sizeof params, phase, EveryPass, nullptr};
                TVPMFlightLoopID id = TVPMCreateFlightLoop(&params);
                const bool due = dueEvery > 0 && i % dueEvery == 0;
                TVPMScheduleFlightLoop(id, due ? -1.0f : kFarFuture, 1);
                ids_.push_back(id);
            }
        });
    }
    ~LoopSet() {
        bench::AsBenchPlugin([&] {
            for (TVPMFlightLoopID id : ids_) TVPMDestroyFlightLoop(id);
        });
    }
    LoopSet(const LoopSet&) = delete;
    LoopSet& operator=(const LoopSet&) = delete;

private:
    std::vector<TVPMFlightLoopID> ids_;
};

// One after-flight-model pass (the event that runs nothing but the loops),
// with the frame's timing samples collected as a simulator does.
inline void Pass(float now) {
    TVPMEventHook(tvpm_FlightLoopDoneEvent, now, 0, 0, 0);
    TVPMGetPluginCallbackTimings(IgnoreTimings);
}

void RunPasses(benchmark::State& state) {
    float now = 100.0f;
    for (int i = 0; i < 10; ++i) Pass(now += 0.01f);  // samples reach their capacity
    for (auto _ : state) Pass(now += 0.01f);
}

// Whole pass, 10,000 records of which 1,000 run; time per due callback (the
// skipped records included: see the README for the split).
void BM_FlightLoopPass_10000_1000Due(benchmark::State& state) {
    LoopSet loops(kRecords, kDueEvery, tvpm_FlightLoop_Phase_AfterFlightModel);
    RunPasses(state);
    state.counters["per_due_callback"] = benchmark::Counter(
        kRecords / kDueEvery, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_FlightLoopPass_10000_1000Due);

// Nothing due: the cost of skipping a record.
void BM_FlightLoopPass_10000_NoneDue(benchmark::State& state) {
    LoopSet loops(kRecords, 0, tvpm_FlightLoop_Phase_AfterFlightModel);
    RunPasses(state);
    state.counters["per_skipped_record"] = benchmark::Counter(
        kRecords, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_FlightLoopPass_10000_NoneDue);

// Every record due: scope, timer and call per callback, nothing skipped.
void BM_FlightLoopPass_1000_AllDue(benchmark::State& state) {
    LoopSet loops(kRecords / kDueEvery, 1, tvpm_FlightLoop_Phase_AfterFlightModel);
    RunPasses(state);
    state.counters["per_due_callback"] = benchmark::Counter(
        kRecords / kDueEvery, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_FlightLoopPass_1000_AllDue);

// Baseline: the same 1,000 callbacks called directly through a pointer.
void BM_Direct_1000_Callbacks(benchmark::State& state) {
    float (*volatile callback)(float, float, int, void*) = EveryPass;
    for (auto _ : state)
        for (int i = 0; i < kRecords / kDueEvery; ++i)
            benchmark::DoNotOptimize(callback(0.01f, 100.0f, i, nullptr));
    state.counters["per_callback"] = benchmark::Counter(
        kRecords / kDueEvery, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_Direct_1000_Callbacks);

// Allocations of 1,000 whole frames (both flight-loop events and the timing
// collection) once the process is warm; must be 0.
void BM_SteadyStateFrameAllocations(benchmark::State& state) {
    LoopSet before(kRecords / 2, kDueEvery, tvpm_FlightLoop_Phase_BeforeFlightModel);
    LoopSet after(kRecords / 2, kDueEvery, tvpm_FlightLoop_Phase_AfterFlightModel);
    float now = 100.0f;
    auto frame = [&now] {
        now += 1.0f / 60.0f;
        bench::SetNow(now);
        TVPMEventHook(tvpm_FlightLoopEvent, now, 0, 0, 0);
        TVPMEventHook(tvpm_FlightLoopDoneEvent, now, 0, 0, 0);
        TVPMGetPluginCallbackTimings(IgnoreTimings);
    };
    for (int i = 0; i < 10; ++i) frame();
    long allocations = 0;
    for (auto _ : state) {
        const long start = bench::Allocations();
        for (int i = 0; i < 1000; ++i) frame();
        allocations += bench::Allocations() - start;
    }
    state.counters["allocations_per_1000_frames"] =
        benchmark::Counter(static_cast<double>(allocations), benchmark::Counter::kAvgIterations);
    if (allocations != 0) state.SkipWithError("steady-state frames allocated");
}
BENCHMARK(BM_SteadyStateFrameAllocations)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
