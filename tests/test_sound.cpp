// test_sound.cpp: channel groups per plugin and bus, PCM playback and its completions, channel controls, and release on disable, unload and bank unload, against the stand-in engine.
#include <cmath>
#include <thread>

#include "SoundRig.h"

using namespace tvpmtest;

namespace {

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
    ASSERT_NE(a, nullptr);
    EXPECT_NE(b, a);
    EXPECT_EQ(fmodstandin::GroupName(a), "alpha.tvp - UI");
    EXPECT_EQ(fmodstandin::GroupName(b), "beta.tvp - UI");
    EXPECT_EQ(GroupParent("alpha.tvp - UI"), "UI");
    EXPECT_TRUE(Contains(fmodstandin::Journal(), "addGroup UI <- alpha.tvp - UI propagate=1"));
    EXPECT_EQ(RunAs<void*>("alpha.tvp", [] { return (void*)TVPMGetFMODStudio(); }),
              (void*)fmodstandin::Studio());
}

TEST_F(SoundRig, ASoundIsCreatedFromRawPCMAndCompletesAtTheNextFrame) {
    struct Case {
        int loop;
        const char* createLine;
    } cases[] = {
        {0, "createSound mode=0x1801 cbsize=224 length=1600 channels=1 rate=8000 format=2"},
        {1, "createSound mode=0x1802 cbsize=224 length=1600 channels=1 rate=8000 format=2"},
    };
    for (const Case& c : cases) {
        fmodstandin::ClearJournal();
        TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("alpha.tvp", [&] {
            return PlayTenth(tvpm_AudioRadioCom1, "tone", c.loop);
        });
        ASSERT_NE(ch, nullptr);
        EXPECT_TRUE(Contains(fmodstandin::Journal(), c.createLine));
        EXPECT_GE(IndexOf(fmodstandin::Journal(), "playSound alpha.tvp - COM1"), 0);
        fmodstandin::Advance(0.2);  // a looping sound plays on until stopped
        if (c.loop) {
            EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMStopAudio(ch); }), 0);
        }
        EXPECT_TRUE(Completions::Seen().empty());
        host.RunFrame();  // the engine ended it; the plugin hears at the frame
        EXPECT_EQ(Completions::Seen(), std::vector<std::string>{std::to_string(alpha) + ":tone:0"});
        EXPECT_TRUE(Contains(fmodstandin::Journal(), "release sound"));
        Completions::All().seen.clear();
    }
}

TEST_F(SoundRig, AFailedPlayReportsAndCompletesAtOnce) {
    const std::string kBusInvalid = "The FMOD bus ID was invalid.";
    const std::string kNoSystem = "TVPMPlayPCMOnBus was called when no FMOD system was available.";
    struct Case {
        const char* name;
        TVPMAudioBus bus;
        std::function<void()> arrange;
        std::vector<std::string> errors;
        int status;
        bool channelReturned, soundReleased;
    } cases[] = {
        {"bus 11", 11, [] {}, {kBusInvalid}, 31, false, false},
        {"bus -1", -1, [] {}, {kBusInvalid}, 31, false, false},
        {"bus group missing", tvpm_AudioUI,
         [] { fmodstandin::FailNext("FMOD_Studio_Bus_GetChannelGroup", 76); }, {kNoSystem}, 46, false, false},
        {"createSound fails", tvpm_AudioUI,
         [] { fmodstandin::FailNext("FMOD_System_CreateSound", 38); }, {}, 38, false, false},
        {"playSound fails", tvpm_AudioUI,
         [] { fmodstandin::FailNext("FMOD_System_PlaySound", 64); }, {}, 64, false, true},
        {"setCallback fails after play", tvpm_AudioUI,
         [] { fmodstandin::FailNext("FMOD_Channel_SetCallback", 30); }, {}, 30, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PluginErrors().clear();
        Completions::All().seen.clear();
        fmodstandin::ClearJournal();
        c.arrange();
        TVPMFMODChannel* ch =
            RunAs<TVPMFMODChannel*>("beta.tvp", [&] { return PlayTenth(c.bus, "x"); });
        EXPECT_EQ(ch != nullptr, c.channelReturned);
        std::vector<std::string> errors;
        for (auto& e : c.errors) errors.push_back(std::to_string(beta) + ":" + e);
        EXPECT_EQ(PluginErrors(), errors);
        EXPECT_EQ(Completions::Seen(),
                  std::vector<std::string>{std::to_string(beta) + ":x:" + std::to_string(c.status)});
        EXPECT_EQ(Contains(fmodstandin::Journal(), "release sound"), c.soundReleased);
    }
    host.On<&TVPMHooks::TVPMGetFMODBus_f>([](const char*) -> FMOD_STUDIO_BUS* { return nullptr; });
    PluginErrors().clear();
    EXPECT_EQ(RunAs<TVPMFMODChannel*>("alpha.tvp", [] { return PlayTenth(tvpm_AudioGround, "y"); }),
              nullptr);
    EXPECT_EQ(PluginErrors(), (std::vector<std::string>{
                                  std::to_string(alpha) + ":The FMOD bus could not be retrieved.",
                                  std::to_string(alpha) + ":" + kNoSystem}));
}

TEST_F(SoundRig, ChannelControlsValidateThenSteerTheChannel) {
    TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("alpha.tvp", [] { return PlayTenth(tvpm_AudioUI, "c"); });
    TVPMFMODVector v{1, 2, 3};
    const float nan = std::nanf("");
    struct Case {
        const char* name;
        std::function<int(TVPMFMODChannel*)> call;
        bool nullChannel;
        int result;
        const char* error;
        std::vector<std::string> engine;  // what reached the engine, in order
    } cases[] = {
        {"stop null", [](auto c) { return TVPMStopAudio(c); }, true, 31, "Called with a null channel.", {}},
        {"volume null", [](auto c) { return TVPMSetAudioVolume(c, 1); }, true, 31, "Called with a null channel.", {}},
        {"null position", [](auto c) { return TVPMSetAudioPosition(c, nullptr, nullptr); }, false, 31,
         "Called with a null channel.", {}},
        {"null orientation", [](auto c) { return TVPMSetAudioCone(c, 1, 2, 1, nullptr); }, false, 31,
         "Called with a null channel.", {}},
        {"position on 2D", [&](auto c) { return TVPMSetAudioPosition(c, &v, &v); }, false, 0, nullptr,
         {"setMode 0x10", "set3DAttributes 1.000000 1.000000"}},
        {"fade both below 0", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, -1); }, false, 0, nullptr,
         {"setMode 0x8"}},
        {"fade -1 to 5", [](auto c) { return TVPMSetAudioFadeDistance(c, -1, 5); }, false, 0, nullptr,
         {"setMode 0x10", "set3DMinMaxDistance -1.000000 5.000000"}},
        {"fade NaN", [&](auto c) { return TVPMSetAudioFadeDistance(c, nan, -1); }, false, 0, nullptr,
         {"set3DMinMaxDistance nan -1.000000"}},
        {"volume", [](auto c) { return TVPMSetAudioVolume(c, 0.5f); }, false, 0, nullptr, {"setVolume 0.500000"}},
        {"pitch", [](auto c) { return TVPMSetAudioPitch(c, 2); }, false, 0, nullptr, {"setPitch 2.000000"}},
        {"cone", [&](auto c) { return TVPMSetAudioCone(c, 30, 90, 0.25f, &v); }, false, 0, nullptr,
         {"set3DConeSettings 30.000000 90.000000 0.250000", "set3DConeOrientation 3.000000"}},
        {"stop", [](auto c) { return TVPMStopAudio(c); }, false, 0, nullptr, {"stop channel"}},
        {"stale channel", [](auto c) { return TVPMSetAudioVolume(c, 1); }, false, 30, nullptr, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PluginErrors().clear();
        fmodstandin::ClearJournal();
        EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return c.call(c.nullChannel ? nullptr : ch); }), c.result);
        std::vector<std::string> engine = fmodstandin::Journal();
        for (auto& line : engine)
            if (line.rfind("stop channel", 0) == 0) line = "stop channel";
        EXPECT_EQ(engine, c.engine);
        EXPECT_EQ(PluginErrors(), c.error ? std::vector<std::string>{std::to_string(alpha) + ":" + c.error}
                                          : std::vector<std::string>{});
    }
    host.On<&TVPMHooks::TVPMGetFMODSystem_f>([]() -> FMOD_SYSTEM* { return nullptr; });
    PluginErrors().clear();
    EXPECT_EQ(RunAs<int>("alpha.tvp", [&] { return TVPMSetAudioPitch(ch, 1); }), 67);
    EXPECT_EQ(PluginErrors(),
              std::vector<std::string>{std::to_string(alpha) + ":Called when no FMOD system was available."});
}

TEST_F(SoundRig, DisablingAPluginStopsItsSoundsWithStatus65BeforeDisableReturns) {
    RunAs("alpha.tvp", [] { PlayTenth(tvpm_AudioUI, "loop", 1); });
    RunAs("beta.tvp", [] { PlayTenth(tvpm_AudioUI, "other", 1); });
    TVPMDisablePlugin(alpha);
    EXPECT_EQ(Completions::Seen(), std::vector<std::string>{std::to_string(alpha) + ":loop:65"});
    EXPECT_TRUE(Contains(fmodstandin::Journal(), "stop group alpha.tvp - UI"));
    EXPECT_EQ(GroupParent("alpha.tvp - UI"), "UI");  // kept until unload
    EXPECT_EQ(fmodstandin::PlayingChannels().size(), 1u);
}

TEST_F(SoundRig, UnloadReleasesChildGroupsBeforeTheirParentThenUpdatesStudio) {
    RunAs("alpha.tvp", [] {
        FMOD_CHANNELGROUP* mine = TVPMGetFMODChannelGroup(tvpm_Master);
        for (const char* name : {"child", "second child"}) {
            FMOD_CHANNELGROUP* child = nullptr;
            FMOD_System_CreateChannelGroup(fmodstandin::System(), name, &child);
            FMOD_ChannelGroup_AddGroup(mine, child, 1, nullptr);
        }
        PlayTenth(tvpm_Master, "m");
    });
    fmodstandin::ClearJournal();
    host.Shutdown();
    const auto journal = fmodstandin::Journal();
    const long parent = IndexOf(journal, "release group alpha.tvp - Master");
    for (const char* child : {"release group child", "release group second child"}) {
        ASSERT_GE(IndexOf(journal, child), 0) << child;
        EXPECT_LT(IndexOf(journal, child), parent) << child;
    }
    EXPECT_GT(IndexOf(journal, "studio update"), parent);
    EXPECT_EQ(Completions::Seen(), std::vector<std::string>{std::to_string(alpha) + ":m:65"});
}

TEST_F(SoundRig, BankEventsTellEveryPluginAndUnloadingClearsEveryGroup) {
    for (const char* key : {"alpha.tvp", "beta.tvp"})
        RunAs(key, [] { TVPMGetFMODChannelGroup(tvpm_AudioRadioCom1); });
    Journal().clear();
    TVPMEventHook(tvpm_FMODBankLoaded, 0, 0, tvpm_RadioBank, 0);
    EXPECT_EQ(GroupParent("alpha.tvp - COM1"), "COM1");
    TVPMEventHook(tvpm_FMODBankUnloading, 0, 0, tvpm_RadioBank, 0);
    EXPECT_EQ(GroupParent("alpha.tvp - COM1"), "(none)");
    EXPECT_EQ(GroupParent("beta.tvp - COM1"), "(none)");
    for (const char* key : {"alpha.tvp", "beta.tvp"}) {
        EXPECT_EQ(JournalOf(std::string(key) + ":message 112").size(), 1u) << key;
        EXPECT_EQ(JournalOf(std::string(key) + ":message 113").size(), 1u) << key;
    }
    // A new group is made on the next use.
    EXPECT_NE(RunAs<void*>("alpha.tvp", [] { return (void*)TVPMGetFMODChannelGroup(tvpm_AudioRadioCom1); }),
              nullptr);
}

// A completion callback runs under the queue lock: starting or stopping a
// sound there is refused, and disabling its own plugin does not hang.
TEST_F(SoundRig, ACompletionCallbackCannotStartOrStopSoundsAndMayDisableItsPlugin) {
    static TVPMFMODChannel* s_other;
    static TVPMFMODChannel* s_started;
    auto misbehave = [](void*, TVPMFMODResult) {
        s_started = PlayTenth(tvpm_AudioUI, "again");
        TVPMStopAudio(s_other);
        TVPMDisablePlugin(TVPMGetMyID());
    };
    RunAs("alpha.tvp", [&] {
        auto& pcm = TenthOfASecond();
        TVPMPlayPCMOnBus(pcm.data(), 1600, tvpm_FMOD_PCM16, 8000, 1, 0, tvpm_AudioUI, misbehave, nullptr);
        s_other = PlayTenth(tvpm_AudioUI, "other", 1);
    });
    fmodstandin::Advance(0.5);
    host.RunFrame();
    EXPECT_EQ(s_started, nullptr);
    const std::string id = std::to_string(alpha);
    EXPECT_EQ(PluginErrors(),
              (std::vector<std::string>{
                  id + ":TVPMPlayPCMOnBus was called from a completion callback, where sounds cannot start.",
                  id + ":TVPMStopAudio was called from a completion callback, where sounds cannot stop."}));
    EXPECT_EQ(Completions::Seen(), std::vector<std::string>{id + ":other:65"});
    EXPECT_TRUE(fmodstandin::PlayingChannels().empty());
}

TEST_F(SoundRig, APluginDisabledWhileItsSoundEndsOnTheEngineThreadHearsOnce) {
    for (int round = 0; round < 20; ++round) {
        TVPMEnablePlugin(alpha);
        Completions::All().seen.clear();
        TVPMFMODChannel* ch = RunAs<TVPMFMODChannel*>("alpha.tvp", [] { return PlayTenth(tvpm_AudioUI, "r", 1); });
        std::thread engine([ch] { fmodstandin::EndChannel(ch); });
        TVPMDisablePlugin(alpha);
        engine.join();
        host.RunFrame();
        const auto seen = Completions::Seen();
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_TRUE(seen[0] == std::to_string(alpha) + ":r:0" || seen[0] == std::to_string(alpha) + ":r:65")
            << seen[0];
    }
}

}  // namespace
