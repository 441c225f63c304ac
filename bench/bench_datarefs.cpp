// bench_datarefs.cpp: typed reads through a handle against direct accessor calls, and lookup by name at growing registry sizes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "TVPM/TVPMDataAccess.h"
#include "bench_world.h"

namespace {

float s_value = 1.25f;
float s_array[64] = {};

// The accessors an owner would write: a scalar and an offset copy of 8 floats.
__attribute__((noinline)) float ReadFloat(void* ref) { return *static_cast<float*>(ref); }
__attribute__((noinline)) int ReadFloats(void* ref, float* out, int offset, int max) {
    const float* values = static_cast<const float*>(ref);
    const int total = 64;
    if (!out) return total;
    const int n = std::max(0, std::min(total - offset, max));
    memcpy(out, values + offset, static_cast<size_t>(n) * sizeof(float));
    return n;
}

TVPMDataRef s_scalar = nullptr;
TVPMDataRef s_vector = nullptr;

void RegisterItems() {
    bench::EnsureWorld();
    if (s_scalar) return;
    bench::AsBenchPlugin([] {
        s_scalar = TVPMRegisterDataAccessor("bench/scalar", tvpmType_Float, 0, nullptr, nullptr,
                                            ReadFloat, nullptr, nullptr, nullptr, nullptr, nullptr,
                                            nullptr, nullptr, nullptr, nullptr, &s_value, nullptr);
        s_vector = TVPMRegisterDataAccessor("bench/vector", tvpmType_FloatArray, 0, nullptr,
                                            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                            nullptr, ReadFloats, nullptr, nullptr, nullptr,
                                            s_array, nullptr);
    });
}

// ---- Typed reads ----------------------------------------------------------------

void BM_Direct_ReadFloat(benchmark::State& state) {
    float (*volatile accessor)(void*) = ReadFloat;
    for (auto _ : state) benchmark::DoNotOptimize(accessor(&s_value));
}
BENCHMARK(BM_Direct_ReadFloat);

void BM_TVPMGetDataf(benchmark::State& state) {
    RegisterItems();
    TVPMDataRef ref = s_scalar;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ref);
        benchmark::DoNotOptimize(TVPMGetDataf(ref));
    }
}
BENCHMARK(BM_TVPMGetDataf);

void BM_Direct_ReadFloats8(benchmark::State& state) {
    int (*volatile accessor)(void*, float*, int, int) = ReadFloats;
    float out[8];
    for (auto _ : state) {
        benchmark::DoNotOptimize(accessor(s_array, out, 4, 8));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Direct_ReadFloats8);

void BM_TVPMGetDatavf8(benchmark::State& state) {
    RegisterItems();
    TVPMDataRef ref = s_vector;
    float out[8];
    for (auto _ : state) {
        benchmark::DoNotOptimize(ref);
        benchmark::DoNotOptimize(TVPMGetDatavf(ref, out, 4, 8));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_TVPMGetDatavf8);

// ---- Lookup by name ---------------------------------------------------------------

int IntZero(void*) { return 0; }

std::vector<std::string>& Names() {
    static std::vector<std::string> names;
    return names;
}

// Grows the registry to n names shaped like a simulator's (long shared
// prefixes); the registry never shrinks, so sizes are visited in rising order.
void GrowRegistryTo(size_t n) {
    std::vector<std::string>& names = Names();
    char name[128];
    while (names.size() < n) {
        const size_t i = names.size();
        snprintf(name, sizeof name, "sim/cockpit/group%03zu/instrument%02zu/value_%06zu", i % 977,
                 i % 31, i);
        names.emplace_back(name);
        TVPMRegisterDataAccessor(name, tvpmType_Int, 0, IntZero, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr);
    }
}

void BM_TVPMFindDataRef(benchmark::State& state) {
    bench::EnsureWorld();
    const size_t n = static_cast<size_t>(state.range(0));
    GrowRegistryTo(n);
    // Look up existing names in random order, as plugins starting up do.
    std::vector<const char*> order;
    for (size_t i = 0; i < n; ++i) order.push_back(Names()[i].c_str());
    std::shuffle(order.begin(), order.end(), std::mt19937(42));
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TVPMFindDataRef(order[next]));
        if (++next == order.size()) next = 0;
    }
    state.counters["names"] = static_cast<double>(TVPMCountDataRefs());
}
BENCHMARK(BM_TVPMFindDataRef)->Arg(1000)->Arg(10000)->Arg(100000);

}  // namespace
