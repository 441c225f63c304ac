// TimingSamples.h: a host-side receiver for callback timings that keeps every sample it is handed.
#pragma once

#include <cstdint>
#include <vector>

#include "TVPMHost.h"

namespace tvpmtest {

struct TimingSample {
    TVPMPluginID plugin;
    TVPMPluginCallbackType type;
    double microseconds;
};

inline std::vector<TimingSample> s_samples;
inline int s_collections = 0;

// Pass to TVPMGetPluginCallbackTimings (or get_plugin_timings).
inline void CollectTimings(uint64_t count, const TVPMPluginID* ids,
                           const TVPMPluginCallbackType* types, const double* us) {
    ++s_collections;
    for (uint64_t i = 0; i < count; ++i) s_samples.push_back({ids[i], types[i], us[i]});
}

}  // namespace tvpmtest
