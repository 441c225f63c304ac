// bench_world.cpp: the benchmarks' simulator (a quiet hook table) and the process-wide allocation counter.
#include "bench_world.h"

#include <cerrno>
#include <cstdlib>
#include <new>

#include "FakeHost.h"
#include "Harness.h"
#include "TVPM/TVPMPlugin.h"

// ---- Allocation counter ------------------------------------------------------
// The executable's definitions take the place of the C library's for the whole
// process, TVPM_64.so included.

namespace {
std::atomic<long> s_allocations{0};
void Count() { s_allocations.fetch_add(1, std::memory_order_relaxed); }
}  // namespace

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);

void* malloc(size_t n) {
    Count();
    return __libc_malloc(n);
}
void* calloc(size_t n, size_t size) {
    Count();
    return __libc_calloc(n, size);
}
void* realloc(void* p, size_t n) {
    Count();
    return __libc_realloc(p, n);
}
void* aligned_alloc(size_t alignment, size_t n) {
    Count();
    return __libc_memalign(alignment, n);
}
int posix_memalign(void** out, size_t alignment, size_t n) {
    Count();
    *out = __libc_memalign(alignment, n);
    return *out ? 0 : ENOMEM;
}
}

long bench::Allocations() { return s_allocations.load(std::memory_order_relaxed); }

// ---- The simulator -------------------------------------------------------------

namespace {

using namespace tvpmtest;

float s_now = 0;
constexpr int kRunMessage = 0x7A11;

// The recording table with the slots of a steady frame replaced by functions
// that record nothing, so that a frame's own allocations can be counted.
TVPMHooks QuietTable(const TVPMHooks& recording) {
    TVPMHooks quiet = recording;
    quiet.TVPMGetElapsedTime_f = [] { return s_now; };
    quiet.TVPMDebugString_f = [](const char*) {};
    quiet.TVPMCommandButtonPress_f = [](TVPMCommandButtonID*, int, int) {};
    quiet.TVPMGetFMODSystem_f = []() -> FMOD_SYSTEM* { return nullptr; };
    quiet.TVPMGetFMODStudio_f = []() -> FMOD_STUDIO_SYSTEM* { return nullptr; };
    quiet.TVPMGetFMODBus_f = [](const char*) -> FMOD_STUDIO_BUS* { return nullptr; };
    // No self-checks of the lists: they are quadratic by design.
    quiet.TVPMHandleAssertFailed_f = nullptr;
    return quiet;
}

struct World {
    FakeHost host;
    SimFolder sim;
    TVPMHooks quiet{};
    TVPMPluginID plugin = -1;
    World() {
        sim.AddLoose("bench.tvp", BuiltPlugin("scripted.tvp"));
        host.systemPath = sim.Root();
        quiet = QuietTable(host.hooks);
        if (TVPMInitializePlugins(sim.Root().c_str(), &quiet, nullptr) != 23) abort();
        plugin = TVPMFindPluginBySignature("test.bench.tvp");
        if (plugin <= 0 || !TVPMIsPluginEnabled(plugin)) abort();
    }
};

World& TheWorld() {
    static World* world = new World;  // lives until exit, like a simulator
    return *world;
}

}  // namespace

void bench::EnsureWorld() { TheWorld(); }

TVPMPluginID bench::BenchPlugin() { return TheWorld().plugin; }

void bench::SetNow(float t) { s_now = t; }

size_t bench::RecordedHostCalls() { return TheWorld().host.Calls().size(); }

void bench::AsBenchPlugin(const std::function<void()>& f) {
    static std::function<void()> pending;
    pending = f;
    Script("bench.tvp").message = [](TVPMPluginID, int message, void*) {
        if (message == kRunMessage) pending();
    };
    TVPMSendMessageToPlugin(BenchPlugin(), kRunMessage, nullptr);
}
