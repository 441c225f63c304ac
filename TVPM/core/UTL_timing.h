// UTL_timing.h: timing of plugin callbacks, collected by the host once per frame.
#pragma once

#include <time.h>

#include <cstdint>

#include "TVPMHost.h"

// Monotonic time in microseconds; 0 when the clock cannot be read.
inline uint64_t UTL_MonotonicMicroseconds() {
    timespec ts;
    if (clock_gettime(CLOCK_MONOTONIC, &ts) != 0) return 0;
    return static_cast<uint64_t>(ts.tv_sec) * 1000000u + static_cast<uint64_t>(ts.tv_nsec) / 1000u;
}

// Times one callback from construction to destruction and keeps the sample
// until the host collects it.
class StCallbackTimer {
public:
    StCallbackTimer(TVPMPluginCallbackType inCallback, TVPMPluginID inPlugin)
        : m_start_time(UTL_MonotonicMicroseconds()), m_plugin(inPlugin), m_callback(inCallback) {}
    ~StCallbackTimer() { record(m_plugin, m_callback, UTL_MonotonicMicroseconds() - m_start_time); }
    StCallbackTimer(const StCallbackTimer&) = delete;
    StCallbackTimer& operator=(const StCallbackTimer&) = delete;

    // Hands every sample to callback, then forgets them (capacity is kept).
    static void get_plugin_timings(tvpm_plugin_time_callback* callback);

private:
    static void record(TVPMPluginID plugin, TVPMPluginCallbackType type, uint64_t elapsed);

    const uint64_t m_start_time;
    const TVPMPluginID m_plugin;
    const TVPMPluginCallbackType m_callback;
};
