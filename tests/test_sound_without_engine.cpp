// test_sound_without_engine.cpp: in a process with no sound engine loaded, every sound function answers "no system" and nothing crashes.
#include <dlfcn.h>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMSound.h"

using namespace tvpmtest;

namespace {

TEST_F(SimTest, WithoutASoundEngineEverySoundFunctionSaysThereIsNoSystem) {
    ASSERT_EQ(dlopen("libfmod.so.13", RTLD_NOLOAD | RTLD_NOW), nullptr);
    static int fake;  // what a simulator would hand out; never dereferenced
    static int completed = -1;
    host.On<&TVPMHooks::TVPMGetFMODSystem_f>([] { return reinterpret_cast<FMOD_SYSTEM*>(&fake); });
    host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char*) { return reinterpret_cast<FMOD_STUDIO_BUS*>(&fake); });
    AddScripted({"alpha.tvp"});
    ReportErrorsOf("alpha.tvp");
    host.Start(sim.Root());
    RunAs("alpha.tvp", [] {
        int16_t pcm[8] = {};
        auto done = [](void*, TVPMFMODResult status) { completed = status; };
        EXPECT_EQ(TVPMPlayPCMOnBus(pcm, sizeof pcm, tvpm_FMOD_PCM16, 8000, 1, 0, tvpm_AudioUI, done, nullptr), nullptr);
        EXPECT_EQ(TVPMSetAudioVolume(reinterpret_cast<TVPMFMODChannel*>(&fake), 1), 67);
    });
    EXPECT_EQ(completed, 46);
    const std::string id = std::to_string(IdOf("alpha.tvp"));
    EXPECT_EQ(PluginErrors(), (std::vector<std::string>{id + ":TVPMPlayPCMOnBus was called when no FMOD system was available.",
                                                        id + ":Called when no FMOD system was available."}));
    TVPMEventHook(tvpm_FMODBankUnloading, 0, 0, 0, 0);
    host.RunFrame();
}

}  // namespace
