// test_sound_threads.cpp: channels ended on the engine's own thread while the plugin thread plays, stops and disables: every sound is heard exactly once.
#include <atomic>
#include <thread>

#include "SoundRig.h"

using namespace tvpmtest;

namespace {

TEST_F(SoundRig, ChannelsEndingOnTheEngineThreadRaceNothing) {
    std::atomic<bool> done{false};
    std::thread engine([&] {
        while (!done)
            for (FMOD_CHANNEL* ch : fmodstandin::PlayingChannels()) fmodstandin::EndChannel(ch);
    });
    int played = 0;
    for (int round = 0; round < 200; ++round) {
        RunAs("alpha.tvp", [&] {
            for (int i = 0; i < 3; ++i) played += PlayTenth(tvpm_AudioUI, "s", i == 2) != nullptr;
            for (FMOD_CHANNEL* ch : fmodstandin::PlayingChannels()) TVPMStopAudio(ch);
        });
        RunAs("beta.tvp", [&] { played += PlayTenth(tvpm_AudioUI, "s", 1) != nullptr; });
        if (round % 2 == 0) {  // the engine may end beta's sound while disable stops it
            TVPMDisablePlugin(beta);
            TVPMEnablePlugin(beta);
        }
        host.RunFrame();
    }
    done = true;
    engine.join();
    TVPMDisablePlugin(alpha);
    TVPMDisablePlugin(beta);
    EXPECT_EQ(Completed().size(), static_cast<size_t>(played));
    EXPECT_TRUE(fmodstandin::PlayingChannels().empty());
}

}  // namespace
