// SoundRig.h: a simulator whose sound slots hand out the stand-in engine's systems and buses, with two scripted plugins and a completion recorder.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "FMODStandIn.h"
#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMSound.h"

namespace tvpmtest {

constexpr const char* kUIBusID = "77575f3b-b9cd-4bff-9056-637cff744a14";
constexpr const char* kCOM1BusID = "fdebe6fb-b9d1-4739-a7ef-795062ed899d";

// The simulator's name for a bus of its Studio project.
inline std::string BusName(const char* id) {
    if (std::string(id) == kUIBusID) return "UI";
    if (std::string(id) == kCOM1BusID) return "COM1";
    return id;
}

// One completion: "<plugin id>:<refcon text>:<status>".
struct Completions {
    std::mutex mx;
    std::vector<std::string> seen;
    static Completions& All() {
        static Completions c;
        return c;
    }
    static void Record(void* refcon, TVPMFMODResult status) {
        std::lock_guard<std::mutex> lock(All().mx);
        All().seen.push_back(std::to_string(TVPMGetMyID()) + ":" +
                             (refcon ? static_cast<const char*>(refcon) : "null") + ":" +
                             std::to_string(status));
    }
    static std::vector<std::string> Seen() {
        std::lock_guard<std::mutex> lock(All().mx);
        return All().seen;
    }
};

// 0.1 s of silence: 800 mono 16-bit frames at 8000 Hz.
inline std::vector<int16_t>& TenthOfASecond() {
    static std::vector<int16_t> pcm(800);
    return pcm;
}

inline TVPMFMODChannel* PlayTenth(TVPMAudioBus bus, const char* refcon, int loop = 0) {
    auto& pcm = TenthOfASecond();
    return TVPMPlayPCMOnBus(pcm.data(), static_cast<uint32_t>(pcm.size() * 2), tvpm_FMOD_PCM16,
                            8000, 1, loop, bus, &Completions::Record, const_cast<char*>(refcon));
}

inline bool Contains(const std::vector<std::string>& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// The index of the first line that starts with prefix, or -1.
inline long IndexOf(const std::vector<std::string>& lines, const std::string& prefix) {
    for (size_t i = 0; i < lines.size(); ++i)
        if (lines[i].rfind(prefix, 0) == 0) return static_cast<long>(i);
    return -1;
}

class SoundRig : public ::testing::Test {
protected:
    void SetUp() override {
        fmodstandin::Reset();
        Completions::All().seen.clear();
        PluginErrors().clear();
        for (const char* key : {"alpha.tvp", "beta.tvp"}) {
            sim.AddLoose(key, BuiltPlugin("scripted.tvp"));
            ReportErrorsOf(key);
        }
        host.On<&TVPMHooks::TVPMGetFMODSystem_f>([] { return fmodstandin::System(); });
        host.On<&TVPMHooks::TVPMGetFMODStudio_f>([] { return fmodstandin::Studio(); });
        host.On<&TVPMHooks::TVPMGetFMODBus_f>(
            [](const char* id) { return fmodstandin::Bus(id, BusName(id)); });
        host.Start(sim.Root());
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }
    void TearDown() override { host.Shutdown(); }

    FakeHost host;
    SimFolder sim;
    TVPMPluginID alpha = -1, beta = -1;
};

}  // namespace tvpmtest
