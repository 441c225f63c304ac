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

TEST_F(SoundRig, EachPluginGetsOneNamedGroupPerBusUnderTheBusAndTheStudioSystem) {
    auto groupOf = [](const char* key) {
        return RunAs<TVPMFMODChannelGroup*>(key, [] { return TVPMGetFMODChannelGroup(tvpm_AudioUI); });
    };
    TVPMFMODChannelGroup* a = groupOf("alpha.tvp");
    EXPECT_EQ(groupOf("alpha.tvp"), a);
    TVPMFMODChannelGroup* b = groupOf("beta.tvp");
    EXPECT_NE(b, a);
    EXPECT_EQ(fmodstandin::GroupName(a), "alpha.tvp - UI");
    EXPECT_EQ(fmodstandin::GroupName(b), "beta.tvp - UI");
    EXPECT_EQ(GroupParent("alpha.tvp - UI"), "UI");
    EXPECT_GE(Logged("addGroup UI <- alpha.tvp - UI propagate=1"), 0);
    EXPECT_EQ(RunAs<void*>("alpha.tvp", [] { return (void*)TVPMGetFMODStudio(); }), (void*)fmodstandin::Studio());
}

TEST_F(SoundRig, ASoundIsCreatedFromRawPCMAndCompletesAtTheNextFrame) {
    for (int loop : {0, 1}) {
        SCOPED_TRACE(loop);
        fmodstandin::ClearJournal();
        gCompletions.clear();
        TVPMFMODChannel* ch =
            RunAs<TVPMFMODChannel*>("alpha.tvp", [&] { return PlayTenth(tvpm_AudioRadioCom1, "tone", loop); });
        ASSERT_NE(ch, nullptr);
        EXPECT_GE(Logged(std::string("createSound mode=") + (loop ? "0x1802" : "0x1801") +
                         " cbsize=224 length=1600 channels=1 rate=8000 format=2"),
                  0);
        EXPECT_GE(Logged("playSound alpha.tvp - COM1"), 0);
        fmodstandin::Advance(0.2);  // a looping sound plays on until stopped
        if (loop) {
            EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMStopAudio(ch); }), 0);
        }
        EXPECT_TRUE(Completed().empty());
        host.RunFrame();  // the engine ended it; the plugin hears at the frame
        EXPECT_EQ(Completed(), Lines{std::to_string(alpha) + ":tone:0"});
        EXPECT_GE(Logged("release sound"), 0);
    }
}

TEST_F(SoundRig, AFailedPlayReportsAndCompletesAtOnce) {
    const char* kBusInvalid = "The FMOD bus ID was invalid.";
    const char* kNoSystem = "TVPMPlayPCMOnBus was called when no FMOD system was available.";
    const struct Case {
        const char* what;
        TVPMAudioBus bus;
        const char* failing;  // the engine call that fails, with failWith
        int failWith;
        const char* error;
        int status;
        bool channelReturned, soundReleased;
    } cases[] = {
        {"bus 11", 11, nullptr, 0, kBusInvalid, 31, false, false},
        {"bus -1", -1, nullptr, 0, kBusInvalid, 31, false, false},
        {"bus group missing", tvpm_AudioUI, "FMOD_Studio_Bus_GetChannelGroup", 76, kNoSystem, 46, false, false},
        {"createSound fails", tvpm_AudioUI, "FMOD_System_CreateSound", 38, nullptr, 38, false, false},
        {"playSound fails", tvpm_AudioUI, "FMOD_System_PlaySound", 64, nullptr, 64, false, true},
        {"setCallback fails after play", tvpm_AudioUI, "FMOD_Channel_SetCallback", 30, nullptr, 30, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PluginErrors().clear();
        gCompletions.clear();
        fmodstandin::ClearJournal();
        if (c.failing) fmodstandin::FailNext(c.failing, c.failWith);
        TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("beta.tvp", [&] { return PlayTenth(c.bus, "x"); });
        EXPECT_EQ(ch != nullptr, c.channelReturned);
        EXPECT_EQ(PluginErrors(), c.error ? Lines{std::to_string(beta) + ":" + c.error} : Lines{});
        EXPECT_EQ(Completed(), Lines{std::to_string(beta) + ":x:" + std::to_string(c.status)});
        EXPECT_EQ(Logged("release sound") >= 0, c.soundReleased);
    }
    host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char*) -> FMOD_STUDIO_BUS* { return nullptr; });
    PluginErrors().clear();
    EXPECT_EQ(RunAs<TVPMFMODChannel*>("alpha.tvp", [] { return PlayTenth(tvpm_AudioGround, "y"); }), nullptr);
    EXPECT_EQ(PluginErrors(), (Lines{std::to_string(alpha) + ":The FMOD bus could not be retrieved.",
                                     std::to_string(alpha) + ":" + kNoSystem}));
}

TEST_F(SoundRig, ChannelControlsValidateThenSteerTheChannel) {
    TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("alpha.tvp", [] { return PlayTenth(tvpm_AudioUI, "c"); });
    static TVPMFMODVector v{1, 2, 3};
    const char* kNull = "Called with a null channel.";
    const struct Case {
        const char* what;
        std::function<int(TVPMFMODChannel*)> call;
        bool nullChannel;
        int result;
        const char* error;
        Lines engine;  // what reached the engine, in order
    } cases[] = {
        {"stop null", [](auto c) { return TVPMStopAudio(c); }, true, 31, kNull, {}},
        {"null position", [](auto c) { return TVPMSetAudioPosition(c, nullptr, nullptr); }, false, 31, kNull, {}},
        {"null orientation", [](auto c) { return TVPMSetAudioCone(c, 1, 2, 1, nullptr); }, false, 31, kNull, {}},
        {"position on 2D", [](auto c) { return TVPMSetAudioPosition(c, &v, &v); }, false, 0, nullptr,
         {"setMode 0x10", "set3DAttributes 1.000000 1.000000"}},
        {"fade both below 0", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, -1); }, false, 0, nullptr,
         {"setMode 0x8"}},
        {"fade -1 to 5", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, 5); }, false, 0, nullptr,
         {"setMode 0x10", "set3DMinMaxDistance -1.000000 5.000000"}},
        {"fade NaN", [](auto c) { return TVPMSetAudioFadeDistance(c, std::nanf(""), -1); }, false, 0, nullptr,
         {"set3DMinMaxDistance nan -1.000000"}},
        {"volume", [](auto c) { return TVPMSetAudioVolume(c, 0.5f); }, false, 0, nullptr, {"setVolume 0.500000"}},
        {"pitch", [](auto c) { return TVPMSetAudioPitch(c, 2); }, false, 0, nullptr, {"setPitch 2.000000"}},
        {"cone", [](auto c) { return TVPMSetAudioCone(c, 30, 90, 0.25f, &v); }, false, 0, nullptr,
         {"set3DConeSettings 30.000000 90.000000 0.250000", "set3DConeOrientation 3.000000"}},
        {"stop", [](auto c) { return TVPMStopAudio(c); }, false, 0, nullptr, {"stop channel"}},
        {"stale channel", [](auto c) { return TVPMSetAudioVolume(c, 1); }, false, 30, nullptr, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PluginErrors().clear();
        fmodstandin::ClearJournal();
        EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return c.call(c.nullChannel ? nullptr : ch); }), c.result);
        Lines engine = fmodstandin::Journal();
        for (auto& line : engine)
            if (line.rfind("stop channel", 0) == 0) line = "stop channel";
        EXPECT_EQ(engine, c.engine);
        EXPECT_EQ(PluginErrors(), c.error ? Lines{std::to_string(alpha) + ":" + c.error} : Lines{});
    }
    host.On<&TVPMHooks::TVPMGetFMODSystem_f>([]() -> FMOD_SYSTEM* { return nullptr; });
    PluginErrors().clear();
    EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMSetAudioPitch(ch, 1); }), 67);
    EXPECT_EQ(PluginErrors(), Lines{std::to_string(alpha) + ":Called when no FMOD system was available."});
}

TEST_F(SoundRig, DisableStopsThePluginsSoundsAndUnloadReleasesChildGroupsBeforeTheirParent) {
    RunAs("alpha.tvp", [] {
        FMOD_CHANNELGROUP* mine = TVPMGetFMODChannelGroup(tvpm_Master);
        for (const char* name : {"child", "second child"}) {
            FMOD_CHANNELGROUP* child = nullptr;
            FMOD_System_CreateChannelGroup(fmodstandin::System(), name, &child);
            FMOD_ChannelGroup_AddGroup(mine, child, 1, nullptr);
        }
        PlayTenth(tvpm_Master, "m", 1);
    });
    RunAs("beta.tvp", [] { PlayTenth(tvpm_AudioUI, "other", 1); });
    TVPMDisablePlugin(alpha);
    EXPECT_EQ(Completed(), Lines{std::to_string(alpha) + ":m:65"});  // before disable returns
    EXPECT_GE(Logged("stop group alpha.tvp - Master"), 0);
    EXPECT_NE(GroupParent("alpha.tvp - Master"), "(none)");  // kept until unload
    EXPECT_EQ(fmodstandin::PlayingChannels().size(), 1u);
    fmodstandin::ClearJournal();
    host.Shutdown();
    const long parent = Logged("release group alpha.tvp - Master");
    for (const char* child : {"release group child", "release group second child"}) {
        EXPECT_GE(Logged(child), 0) << child;
        EXPECT_LT(Logged(child), parent) << child;
    }
    EXPECT_GT(Logged("studio update"), parent);
}

TEST_F(SoundRig, BankEventsTellEveryPluginAndUnloadingClearsEveryGroup) {
    for (const char* key : {"alpha.tvp", "beta.tvp"}) RunAs(key, [] { TVPMGetFMODChannelGroup(tvpm_AudioRadioCom1); });
    Journal().clear();
    TVPMEventHook(tvpm_FMODBankLoaded, 0, 0, tvpm_RadioBank, 0);
    EXPECT_EQ(GroupParent("alpha.tvp - COM1"), "COM1");
    TVPMEventHook(tvpm_FMODBankUnloading, 0, 0, tvpm_RadioBank, 0);
    EXPECT_EQ(GroupParent("alpha.tvp - COM1"), "(none)");
    EXPECT_EQ(GroupParent("beta.tvp - COM1"), "(none)");
    for (const std::string key : {"alpha.tvp", "beta.tvp"}) {
        EXPECT_EQ(JournalOf(key + ":message 112").size(), 1u) << key;
        EXPECT_EQ(JournalOf(key + ":message 113").size(), 1u) << key;
    }
    // A new group is made on the next use.
    EXPECT_NE(RunAs<void*>("alpha.tvp", [] { return (void*)TVPMGetFMODChannelGroup(tvpm_AudioRadioCom1); }), nullptr);
}

// A completion callback runs under the queue lock: starting or stopping a
// sound there is refused, and disabling its own plugin does not hang.
TEST_F(SoundRig, ACompletionCallbackCannotStartOrStopSoundsAndMayDisableItsPlugin) {
    static TVPMFMODChannel *s_other, *s_started;
    RunAs("alpha.tvp", [&] {
        static int16_t pcm[800];
        TVPMPlayPCMOnBus(pcm, sizeof pcm, tvpm_FMOD_PCM16, 8000, 1, 0, tvpm_AudioUI,
                         [](void*, TVPMFMODResult) {
                             s_started = PlayTenth(tvpm_AudioUI, "again");
                             TVPMStopAudio(s_other);
                             TVPMDisablePlugin(TVPMGetMyID());
                         },
                         nullptr);
        s_other = PlayTenth(tvpm_AudioUI, "other", 1);
    });
    fmodstandin::Advance(0.5);
    host.RunFrame();
    EXPECT_EQ(s_started, nullptr);
    const std::string id = std::to_string(alpha);
    EXPECT_EQ(PluginErrors(),
              (Lines{id + ":TVPMPlayPCMOnBus was called from a completion callback, where sounds cannot start.",
                     id + ":TVPMStopAudio was called from a completion callback, where sounds cannot stop."}));
    EXPECT_EQ(Completed(), Lines{id + ":other:65"});
    EXPECT_TRUE(fmodstandin::PlayingChannels().empty());
}

}  // namespace
