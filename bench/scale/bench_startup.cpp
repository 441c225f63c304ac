// bench_startup.cpp: start-up of many plugins against bare loads of the same files, and one host event broadcast to them.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdlib>

#include "TVPM/TVPMPlugin.h"
#include "scale_sim.h"

extern "C" {
// Read by the minimal plugin: while set, its start registers nothing.
__attribute__((visibility("default"))) int tvpm_bench_bare_loads = 0;
}

namespace {

using StartFn = int (*)(char*, char*, char*);
using EnableFn = int (*)();
using MessageFn = void (*)(TVPMPluginID, int, void*);

// The library's whole start-up: discovery, load, start (one flight loop and
// one draw callback each), enable.
void BM_StartUp(benchmark::State& state) {
    tvpmtest::SimFolder sim;
    bench::AddMinimalPlugins(sim, static_cast<int>(state.range(0)));
    bench::QuietHost host;
    for (auto _ : state) {
        if (host.Start(sim.Root()) != 23) state.SkipWithError("start-up failed");
        state.PauseTiming();
        if (TVPMCountPlugins() != state.range(0) + 1) state.SkipWithError("plugins missing");
        TVPMShutdownPlugins();
        state.ResumeTiming();
    }
    state.counters["us_per_plugin"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * 1e-6,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_StartUp)->Arg(100)->Arg(400)->Unit(benchmark::kMillisecond);

// The loader's own floor: dlopen, dlsym, start and enable of the same files.
void BM_StartUpBareLoads(benchmark::State& state) {
    tvpmtest::SimFolder sim;
    const auto paths = bench::AddMinimalPlugins(sim, static_cast<int>(state.range(0)));
    std::vector<void*> handles;
    tvpm_bench_bare_loads = 1;
    for (auto _ : state) {
        for (const std::string& path : paths) {
            void* dll = dlopen(path.c_str(), RTLD_NOW);
            auto start = reinterpret_cast<StartFn>(dlsym(dll, "TPluginStart"));
            auto enable = reinterpret_cast<EnableFn>(dlsym(dll, "TPluginEnable"));
            char name[256], signature[256], description[256];
            if (!start || !start(name, signature, description) || !enable()) abort();
            handles.push_back(dll);
        }
        state.PauseTiming();
        for (void* dll : handles) dlclose(dll);
        handles.clear();
        state.ResumeTiming();
    }
    tvpm_bench_bare_loads = 0;
    state.counters["us_per_plugin"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * 1e-6,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_StartUpBareLoads)->Arg(100)->Arg(400)->Unit(benchmark::kMillisecond);

constexpr int kBroadcastPlugins = 100;
constexpr TVPMEventKind kAirportLoaded = 4;

// One host event that every plugin receives as a message.
void BM_Broadcast(benchmark::State& state) {
    tvpmtest::SimFolder sim;
    bench::AddMinimalPlugins(sim, kBroadcastPlugins);
    bench::QuietHost host;
    host.Start(sim.Root());
    for (auto _ : state) TVPMEventHook(kAirportLoaded, 0, 0, 0, 0);
    state.counters["ns_per_plugin"] = benchmark::Counter(
        kBroadcastPlugins * 1e-9,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    TVPMShutdownPlugins();
}
BENCHMARK(BM_Broadcast);

// The same receive functions called directly, one after the other.
void BM_BroadcastDirectCalls(benchmark::State& state) {
    tvpmtest::SimFolder sim;
    const auto paths = bench::AddMinimalPlugins(sim, kBroadcastPlugins);
    std::vector<void*> handles;
    std::vector<MessageFn> receivers;
    for (const std::string& path : paths) {
        handles.push_back(dlopen(path.c_str(), RTLD_NOW));
        receivers.push_back(reinterpret_cast<MessageFn>(dlsym(handles.back(), "TPluginReceiveMessage")));
    }
    for (auto _ : state)
        for (MessageFn receive : receivers) receive(0, TVPM_MSG_AIRPORT_LOADED, nullptr);
    state.counters["ns_per_plugin"] = benchmark::Counter(
        kBroadcastPlugins * 1e-9,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    for (void* dll : handles) dlclose(dll);
}
BENCHMARK(BM_BroadcastDirectCalls);

}  // namespace
