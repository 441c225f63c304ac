// test_sound.cpp: channel groups per plugin and bus, PCM playback and its completions, channel controls, and release on disable, unload and bank unload, against the stand-in engine.
#include <cmath>
#include <functional>

#include "SoundRig.h"

using namespace tvpmtest;

namespace {

using Lines = std::vector<std::string>;

// The index of the first engine journal line that starts with prefix, or -1.
long Logged(const std::string& prefix) {
    const Lines journal = fmodstandin::Journal();
    for (size_t i = 0; i < journal.size(); ++i)
        if (journal[i].rfind(prefix, 0) == 0) return static_cast<long>(i);
    return -1;
}

std::string GroupParent(const std::string& name) {
    for (auto& g : fmodstandin::Groups())
        if (g.name == name && g.alive) return g.parent;
    return "(none)";
}

TEST_F(SoundRig, EachPluginGetsOneNamedGroupPerBusUntilABankUnloads) {
    auto groupOf = [](const char* key) {
        return RunAs<TVPMFMODChannelGroup*>(key, [] { return TVPMGetFMODChannelGroup(tvpm_AudioUI); });
    };
    TVPMFMODChannelGroup* a = groupOf("alpha.tvp");
    EXPECT_EQ(groupOf("alpha.tvp"), a);
    EXPECT_EQ(fmodstandin::GroupName(a), "alpha.tvp - UI");
    EXPECT_EQ(fmodstandin::GroupName(groupOf("beta.tvp")), "beta.tvp - UI");
    EXPECT_GE(Logged("addGroup UI <- alpha.tvp - UI propagate=1"), 0);
    EXPECT_EQ(RunAs<void*>("alpha.tvp", [] { return (void*)TVPMGetFMODStudio(); }), (void*)fmodstandin::Studio());
    TVPMEventHook(tvpm_FMODBankUnloading, 0, 0, tvpm_RadioBank, 0);
    EXPECT_EQ(GroupParent("alpha.tvp - UI"), "(none)");
    EXPECT_EQ(GroupParent("beta.tvp - UI"), "(none)");
    groupOf("alpha.tvp");  // made again on the next use
    EXPECT_EQ(GroupParent("alpha.tvp - UI"), "UI");
}

TEST_F(SoundRig, ASoundIsCreatedFromRawPCMAndCompletesAtTheNextFrameAfterItEnds) {
    TVPMFMODChannel* looping = RunAs<TVPMFMODChannel*>("alpha.tvp", [] {
        PlayTenth(tvpm_AudioRadioCom1, "once");
        return PlayTenth(tvpm_AudioRadioCom1, "looping", 1);
    });
    for (const char* mode : {"0x1801", "0x1802"})
        EXPECT_GE(Logged(std::string("createSound mode=") + mode + " cbsize=224 length=1600 channels=1 rate=8000 format=2"),
                  0);
    EXPECT_GE(Logged("playSound alpha.tvp - COM1"), 0);
    fmodstandin::Advance(0.2);
    EXPECT_TRUE(Completed().empty());
    host.RunFrame();  // the engine ended it; the plugin hears at the frame
    EXPECT_EQ(Completed(), Lines{Tagged(alpha, "once:0")});
    EXPECT_GE(Logged("release sound"), 0);
    EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMStopAudio(looping); }), 0);
    host.RunFrame();
    EXPECT_EQ(Completed(), (Lines{Tagged(alpha, "once:0"), Tagged(alpha, "looping:0")}));
}

TEST_F(SoundRig, AFailedPlayReportsAndCompletesAtOnce) {
    const struct Case {
        const char* what;
        TVPMAudioBus bus;
        const char* failing;  // the engine call that fails, with status
        int status;
        Lines errors;
        bool channelReturned, soundReleased;
    } cases[] = {
        {"bus 11", 11, nullptr, 31, {"The FMOD bus ID was invalid."}, false, false},
        {"createSound fails", tvpm_AudioUI, "FMOD_System_CreateSound", 38, {}, false, false},
        {"playSound fails", tvpm_AudioUI, "FMOD_System_PlaySound", 64, {}, false, true},
        {"setCallback fails after play", tvpm_AudioUI, "FMOD_Channel_SetCallback", 30, {}, true, true},
        {"simulator has no bus", tvpm_AudioGround, nullptr, 46,
         {"The FMOD bus could not be retrieved.", "TVPMPlayPCMOnBus was called when no FMOD system was available."},
         false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PluginErrors().clear();
        gCompletions.clear();
        fmodstandin::ClearJournal();
        if (c.failing) fmodstandin::FailNext(c.failing, c.status);
        if (c.bus == tvpm_AudioGround)  // the last row
            host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char*) -> FMOD_STUDIO_BUS* { return nullptr; });
        TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("beta.tvp", [&] { return PlayTenth(c.bus, "x"); });
        EXPECT_EQ(ch != nullptr, c.channelReturned);
        Lines errors;
        for (const std::string& e : c.errors) errors.push_back(Tagged(beta, e));
        EXPECT_EQ(PluginErrors(), errors);
        EXPECT_EQ(Completed(), Lines{Tagged(beta, "x:" + std::to_string(c.status))});
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
        const char* error;
        Lines engine;  // what reached the engine, in order
    } cases[] = {
        {"stop null", [](auto) { return TVPMStopAudio(nullptr); }, 31, kNull, {}},
        {"null position", [](auto c) { return TVPMSetAudioPosition(c, nullptr, nullptr); }, 31, kNull, {}},
        {"null orientation", [](auto c) { return TVPMSetAudioCone(c, 1, 2, 1, nullptr); }, 31, kNull, {}},
        {"position on 2D", [](auto c) { return TVPMSetAudioPosition(c, &v, &v); }, 0, nullptr,
         {"setMode 0x10", "set3DAttributes 1.000000 1.000000"}},
        {"fade both below 0", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, -1); }, 0, nullptr, {"setMode 0x8"}},
        {"fade -1 to 5", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, 5); }, 0, nullptr,
         {"setMode 0x10", "set3DMinMaxDistance -1.000000 5.000000"}},
        {"volume", [](auto c) { return TVPMSetAudioVolume(c, 0.5f); }, 0, nullptr, {"setVolume 0.500000"}},
        {"pitch", [](auto c) { return TVPMSetAudioPitch(c, 2); }, 0, nullptr, {"setPitch 2.000000"}},
        {"cone", [](auto c) { return TVPMSetAudioCone(c, 30, 90, 0.25f, &v); }, 0, nullptr,
         {"set3DConeSettings 30.000000 90.000000 0.250000", "set3DConeOrientation 3.000000"}},
        {"stop", [](auto c) { return TVPMStopAudio(c); }, 0, nullptr, {"stop channel"}},
        {"stale channel", [](auto c) { return TVPMSetAudioVolume(c, 1); }, 30, nullptr, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PluginErrors().clear();
        fmodstandin::ClearJournal();
        EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return c.call(ch); }), c.result);
        Lines engine = fmodstandin::Journal();
        for (auto& line : engine)
            if (line.rfind("stop channel", 0) == 0) line = "stop channel";  // channel IDs run on across tests
        EXPECT_EQ(engine, c.engine);
        EXPECT_EQ(PluginErrors(), c.error ? Lines{Tagged(alpha, c.error)} : Lines{});
    }
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
        static int16_t pcm[800];
        TVPMPlayPCMOnBus(pcm, sizeof pcm, tvpm_FMOD_PCM16, 8000, 1, 0, tvpm_AudioUI,
                         [](void*, TVPMFMODResult) {
                             s_started = PlayTenth(tvpm_AudioUI, "again");
                             TVPMStopAudio(s_other);
                             TVPMDisablePlugin(TVPMGetMyID());
                         },
                         nullptr);
        s_other = PlayTenth(tvpm_Master, "other", 1);
    });
    RunAs("beta.tvp", [] { PlayTenth(tvpm_AudioUI, "b", 1); });
    TVPMDisablePlugin(beta);
    EXPECT_EQ(Completed(), Lines{Tagged(beta, "b:65")});  // before disable returns
    EXPECT_EQ(fmodstandin::PlayingChannels().size(), 2u);
    fmodstandin::Advance(0.5);
    host.RunFrame();
    EXPECT_EQ(s_started, nullptr);
    EXPECT_EQ(PluginErrors(),
              (Lines{Tagged(alpha, "TVPMPlayPCMOnBus was called from a completion callback, where sounds cannot start."),
                     Tagged(alpha, "TVPMStopAudio was called from a completion callback, where sounds cannot stop.")}));
    EXPECT_EQ(Completed(), (Lines{Tagged(beta, "b:65"), Tagged(alpha, "other:65")}));
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

}  // namespace
