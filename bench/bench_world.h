// bench_world.h: the simulator every benchmark runs in: one started library with one enabled plugin, on a hook table that never allocates.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>

#include "TVPM/TVPMDefs.h"

namespace bench {

// Started once per process, on first use: a temporary simulator folder with
// one scripted plugin, "bench.tvp", loaded and enabled.
void EnsureWorld();
TVPMPluginID BenchPlugin();
// Runs f inside the bench plugin's call context.
void AsBenchPlugin(const std::function<void()>& f);
// The simulator time that the hook table reports.
void SetNow(float t);

// Calls that reached a recording slot of the host so far.
size_t RecordedHostCalls();

// Every heap allocation of the process (operator new and the malloc family).
long Allocations();

}  // namespace bench
