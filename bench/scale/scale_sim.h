// scale_sim.h: simulators with many plugins for the benchmarks that start and stop the library.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"

namespace bench {

// A fake host whose logging and menu slots record nothing, so that the
// library's own cost is measured.
struct QuietHost {
    tvpmtest::FakeHost host;
    TVPMHooks quiet{};
    QuietHost();
    int Start(const std::string& root);
};

// Copies the minimal plugin count times as loose files; returns their paths.
std::vector<std::string> AddMinimalPlugins(tvpmtest::SimFolder& sim, int count);

// Runs f inside the call context of the started scripted plugin with this key.
void AsPlugin(const std::string& key, const std::function<void()>& f);

}  // namespace bench
