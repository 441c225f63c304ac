// SoundRig.h: a simulator whose sound slots hand out the stand-in engine's systems and buses, with two scripted plugins and a completion recorder.
#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "FMODStandIn.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMSound.h"

namespace tvpmtest {

// Completions as "<plugin id>:<refcon text>:<status>"; the engine's thread may add some.
inline std::mutex gCompletionsMutex;
inline std::vector<std::string> gCompletions;

// "<plugin id>:<text>", as completions and plugin errors are recorded.
inline std::string Tagged(TVPMPluginID id, const std::string& text) { return std::to_string(id) + ":" + text; }

inline void RecordCompletion(void* refcon, TVPMFMODResult status) {
    std::lock_guard<std::mutex> lock(gCompletionsMutex);
    gCompletions.push_back(Tagged(TVPMGetMyID(), static_cast<const char*>(refcon) + (":" + std::to_string(status))));
}

inline std::vector<std::string> Completed() {
    std::lock_guard<std::mutex> lock(gCompletionsMutex);
    return gCompletions;
}

// Plays 0.1 s of silence (800 mono 16-bit frames at 8000 Hz) with the recorder as completion.
inline TVPMFMODChannel* PlayTenth(TVPMAudioBus bus, const char* refcon, int loop = 0) {
    static int16_t pcm[800];
    return TVPMPlayPCMOnBus(pcm, sizeof pcm, tvpm_FMOD_PCM16, 8000, 1, loop, bus, &RecordCompletion,
                            const_cast<char*>(refcon));
}

class SoundRig : public SimTest {
protected:
    void SetUp() override {
        fmodstandin::Reset();
        gCompletions.clear();
        PluginErrors().clear();
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        host.On<&TVPMHooks::TVPMGetFMODSystem_f>([] { return fmodstandin::System(); });
        host.On<&TVPMHooks::TVPMGetFMODStudio_f>([] { return fmodstandin::Studio(); });
        host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char* id) {
            const std::string bus = id;  // the simulator's names for two buses of its project
            return fmodstandin::Bus(id, bus == "77575f3b-b9cd-4bff-9056-637cff744a14"   ? "UI"
                                        : bus == "fdebe6fb-b9d1-4739-a7ef-795062ed899d" ? "COM1"
                                                                                        : bus);
        });
        host.Start(sim.Root());
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }

    TVPMPluginID alpha = -1, beta = -1;
};

}  // namespace tvpmtest
