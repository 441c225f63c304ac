// UTL_timing.cpp: storage and collection of callback timing samples.
#include "UTL_timing.h"

#include <vector>

#include "TVPMPrivate.h"

namespace {
std::vector<TVPMPluginID> s_plugin_times_ids;
std::vector<TVPMPluginCallbackType> s_plugin_times_types;
std::vector<double> s_plugin_times_microseconds;

// Assertion reports name this file and fixed lines, like the resource lists.
constexpr const char* kTimingSource = "UTL_timing.cpp";
constexpr int kLineTypesMatch = 10;
constexpr int kLineDurationsMatch = 11;
}  // namespace

void StCallbackTimer::record(TVPMPluginID plugin, TVPMPluginCallbackType type, uint64_t elapsed) {
    s_plugin_times_ids.push_back(plugin);
    s_plugin_times_types.push_back(type);
    s_plugin_times_microseconds.push_back(static_cast<double>(elapsed));
}

void StCallbackTimer::get_plugin_timings(tvpm_plugin_time_callback* callback) {
    TVPMCheckAssertion(s_plugin_times_ids.size() == s_plugin_times_types.size(),
                       "s_plugin_times_ids.size() == s_plugin_times_types.size()", kTimingSource,
                       kLineTypesMatch);
    TVPMCheckAssertion(s_plugin_times_ids.size() == s_plugin_times_microseconds.size(),
                       "s_plugin_times_ids.size() == s_plugin_times_microseconds.size()",
                       kTimingSource, kLineDurationsMatch);
    if (callback)
        callback(s_plugin_times_ids.size(), s_plugin_times_ids.data(), s_plugin_times_types.data(),
                 s_plugin_times_microseconds.data());
    s_plugin_times_ids.clear();
    s_plugin_times_types.clear();
    s_plugin_times_microseconds.clear();
}
