// test_sound.cpp: plugins' channel groups, PCM playback and completions, channel controls and their release.
#include <atomic>
#include <functional>
#include <thread>

#include "FMODStandIn.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMSound.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

// Completions as "<plugin id>:<refcon text>:<status>"; all are heard on the plugin thread.
Lines gCompletions;

// Each text as "<plugin id>:<text>", as completions and plugin errors are recorded.
Lines Tagged(TVPMPluginID id, Lines texts) {
    for (std::string& text : texts) text = std::to_string(id) + ":" + text;
    return texts;
}

void RecordCompletion(void* refcon, TVPMFMODResult status) {
    gCompletions.push_back(std::to_string(TVPMGetMyID()) + ":" + static_cast<const char*>(refcon) + ":" +
                           std::to_string(status));
}

// Plays 0.1 s of silence (800 mono 16-bit frames at 8000 Hz), by default with the recorder as completion.
TVPMFMODChannel* PlayTenth(TVPMAudioBus bus, const char* refcon, int loop = 0,
                           TVPMPCMComplete_f done = RecordCompletion) {
    static int16_t pcm[800];
    return TVPMPlayPCMOnBus(pcm, sizeof pcm, tvpm_FMOD_PCM16, 8000, 1, loop, bus, done, const_cast<char*>(refcon));
}

class SoundRig : public SimTest {
protected:
    void SetUp() override {
        fmodstandin::Reset();
        gCompletions.clear();
        PluginErrors().clear();
        AddScripted({"alpha.tvp", "beta.tvp"});
        for (const char* key : {"alpha.tvp", "beta.tvp"}) ReportErrorsOf(key);
        host.On<&TVPMHooks::TVPMGetFMODSystem_f>([] { return fmodstandin::System(); });
        host.On<&TVPMHooks::TVPMGetFMODStudio_f>([] { return fmodstandin::Studio(); });
        host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char* id) { return fmodstandin::Bus(id, id); });  // named by ID
        host.Start(sim.Root());
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }

    TVPMPluginID alpha = -1, beta = -1;
};

// The index of the first engine journal line that starts with prefix, or -1.
long Logged(const std::string& prefix) {
    const Lines journal = fmodstandin::Journal();
    for (size_t i = 0; i < journal.size(); ++i)
        if (journal[i].rfind(prefix, 0) == 0) return static_cast<long>(i);
    return -1;
}

TEST_F(SoundRig, EachPluginGetsOneNamedGroupPerBusUntilABankUnloads) {
    auto groupOf = [](const char* key) {
        return RunAs<TVPMFMODChannelGroup*>(key, [] { return TVPMGetFMODChannelGroup(tvpm_AudioUI); });
    };
    TVPMFMODChannelGroup* a = groupOf("alpha.tvp");
    EXPECT_EQ(groupOf("alpha.tvp"), a);
    EXPECT_EQ(fmodstandin::GroupName(a), "alpha.tvp - UI");
    EXPECT_EQ(fmodstandin::GroupName(groupOf("beta.tvp")), "beta.tvp - UI");
    EXPECT_GE(Logged("addGroup 77575f3b-b9cd-4bff-9056-637cff744a14 <- alpha.tvp - UI propagate=1"), 0);
    TVPMEventHook(tvpm_FMODBankUnloading, 0, 0, tvpm_RadioBank, 0);
    for (const char* group : {"release group alpha.tvp - UI", "release group beta.tvp - UI"})
        EXPECT_GE(Logged(group), 0) << group;
    EXPECT_NE(groupOf("alpha.tvp"), a);  // made again on the next use
}

TEST_F(SoundRig, ASoundIsCreatedFromRawPCMAndCompletesAtTheNextFrameAfterItEnds) {
    RunAs("alpha.tvp", [] { PlayTenth(tvpm_AudioRadioCom1, "once"); });
    EXPECT_GE(Logged("createSound mode=0x1801 cbsize=224 length=1600 channels=1 rate=8000 format=2"), 0);
    EXPECT_GE(Logged("playSound alpha.tvp - COM1"), 0);
    fmodstandin::Advance(0.2);
    EXPECT_TRUE(gCompletions.empty());
    host.RunFrame();  // the engine ended it; the plugin hears at the frame
    EXPECT_EQ(gCompletions, Tagged(alpha, {"once:0"}));
    EXPECT_GE(Logged("release sound"), 0);
}

TEST_F(SoundRig, AFailedPlayReportsAndCompletesAtOnce) {
    const struct Case {
        const char* what;
        TVPMAudioBus bus;
        const char* failing;  // the engine call that fails, with status
        int status;
        Lines errors;
        bool soundReleased;
    } cases[] = {
        {"bus 11", 11, nullptr, 31, {"The FMOD bus ID was invalid."}, false},
        {"createSound fails", tvpm_AudioUI, "FMOD_System_CreateSound", 38, {}, false},
        {"playSound fails", tvpm_AudioUI, "FMOD_System_PlaySound", 64, {}, true},
        {"simulator has no bus", tvpm_AudioGround, nullptr, 46,
         {"The FMOD bus could not be retrieved.", "TVPMPlayPCMOnBus was called when no FMOD system was available."},
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PluginErrors().clear();
        gCompletions.clear();
        fmodstandin::ClearJournal();
        if (c.failing) fmodstandin::FailNext(c.failing, c.status);
        if (c.bus == tvpm_AudioGround)  // the last row
            host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char*) -> FMOD_STUDIO_BUS* { return nullptr; });
        EXPECT_EQ(RunAs<TVPMFMODChannel*>("beta.tvp", [&] { return PlayTenth(c.bus, "x"); }), nullptr);
        EXPECT_EQ(PluginErrors(), Tagged(beta, c.errors));
        EXPECT_EQ(gCompletions, Tagged(beta, {"x:" + std::to_string(c.status)}));
        EXPECT_EQ(Logged("release sound") >= 0, c.soundReleased);
    }
}

TEST_F(SoundRig, ChannelControlsValidateThenSteerTheChannel) {
    TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("alpha.tvp", [] { return PlayTenth(tvpm_AudioUI, "c"); });
    static TVPMFMODVector v{1, 2, 3};
    const char* kNull = "Called with a null channel.";
    const struct Case {
        const char* what;
        std::function<int(TVPMFMODChannel*)> call;
        int result;
        Lines errors;
        Lines engine;  // what reached the engine, in order
    } cases[] = {
        {"stop null", [](auto) { return TVPMStopAudio(nullptr); }, 31, {kNull}, {}},
        {"null position", [](auto c) { return TVPMSetAudioPosition(c, nullptr, nullptr); }, 31, {kNull}, {}},
        {"null orientation", [](auto c) { return TVPMSetAudioCone(c, 1, 2, 1, nullptr); }, 31, {kNull}, {}},
        {"position on 2D", [](auto c) { return TVPMSetAudioPosition(c, &v, &v); }, 0, {},
         {"setMode 0x10", "set3DAttributes 1.000000 1.000000"}},
        {"fade both below 0", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, -1); }, 0, {}, {"setMode 0x8"}},
        {"fade -1 to 5", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, 5); }, 0, {},
         {"setMode 0x10", "set3DMinMaxDistance -1.000000 5.000000"}},
        {"volume", [](auto c) { return TVPMSetAudioVolume(c, 0.5f); }, 0, {}, {"setVolume 0.500000"}},
        {"cone", [](auto c) { return TVPMSetAudioCone(c, 30, 90, 0.25f, &v); }, 0, {},
         {"set3DConeSettings 30.000000 90.000000 0.250000", "set3DConeOrientation 3.000000"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PluginErrors().clear();
        fmodstandin::ClearJournal();
        EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return c.call(ch); }), c.result);
        EXPECT_EQ(fmodstandin::Journal(), c.engine);
        EXPECT_EQ(PluginErrors(), Tagged(alpha, c.errors));
    }
    EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMStopAudio(ch); }), 0);
    host.RunFrame();
    EXPECT_EQ(gCompletions, Tagged(alpha, {"c:0"}));
    EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMSetAudioVolume(ch, 1); }), 30);  // the channel is gone
}

// A completion callback runs under the queue lock: starting or stopping a
// sound there is refused, and disabling its own plugin does not hang.
TEST_F(SoundRig, DisableStopsOnlyThePluginsSoundsEvenFromItsCompletionAndUnloadReleasesChildGroupsFirst) {
    static TVPMFMODChannel *s_other, *s_started;
    RunAs("alpha.tvp", [] {
        FMOD_CHANNELGROUP* mine = TVPMGetFMODChannelGroup(tvpm_Master);
        for (const char* name : {"child", "second child"}) {
            FMOD_CHANNELGROUP* child = nullptr;
            FMOD_System_CreateChannelGroup(fmodstandin::System(), name, &child);
            FMOD_ChannelGroup_AddGroup(mine, child, 1, nullptr);
        }
        PlayTenth(tvpm_AudioUI, nullptr, 0, [](void*, TVPMFMODResult) {
            s_started = PlayTenth(tvpm_AudioUI, "again");
            TVPMStopAudio(s_other);
            TVPMDisablePlugin(TVPMGetMyID());
        });
        s_other = PlayTenth(tvpm_Master, "other", 1);  // looping: only a stop or a disable ends it
    });
    RunAs("beta.tvp", [] { PlayTenth(tvpm_AudioUI, "b", 1); });
    TVPMDisablePlugin(beta);
    EXPECT_EQ(gCompletions, Tagged(beta, {"b:65"}));  // before disable returns
    EXPECT_EQ(fmodstandin::PlayingChannels().size(), 2u);
    fmodstandin::Advance(0.5);
    host.RunFrame();
    EXPECT_EQ(s_started, nullptr);
    EXPECT_EQ(PluginErrors(),
              Tagged(alpha, {"TVPMPlayPCMOnBus was called from a completion callback, where sounds cannot start.",
                             "TVPMStopAudio was called from a completion callback, where sounds cannot stop."}));
    EXPECT_EQ(gCompletions, (Lines{std::to_string(beta) + ":b:65", std::to_string(alpha) + ":other:65"}));
    EXPECT_GE(Logged("stop group alpha.tvp - Master"), 0);
    EXPECT_TRUE(fmodstandin::PlayingChannels().empty());
    fmodstandin::ClearJournal();
    host.Shutdown();
    const long parent = Logged("release group alpha.tvp - Master");
    for (const char* child : {"release group child", "release group second child"}) {
        EXPECT_GE(Logged(child), 0) << child;
        EXPECT_LT(Logged(child), parent) << child;
    }
    EXPECT_GT(Logged("studio update"), parent);
}

// Every sound is heard exactly once, whichever thread ends it.
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
    EXPECT_EQ(gCompletions.size(), static_cast<size_t>(played));
    EXPECT_TRUE(fmodstandin::PlayingChannels().empty());
}

}  // namespace
