// TVPMSoundPrivate.h: what the sound family's units share: the engine's entry points found at run time, the bus table, channel groups and the sound queue.
#pragma once

#include <deque>
#include <map>
#include <mutex>

#include "TVPMFMODApi.h"
#include "TVPMHost.h"
#include "TVPMSound.h"

// The engine's entry points, found in the copies of the engine's libraries the
// process has already loaded. The library never links against the engine.
struct TVPMFMODEngine {
    decltype(&FMOD_Studio_System_Update) studioUpdate;
    decltype(&FMOD_Studio_Bus_GetChannelGroup) busGetChannelGroup;
    decltype(&FMOD_System_CreateSound) createSound;
    decltype(&FMOD_System_CreateChannelGroup) createChannelGroup;
    decltype(&FMOD_System_PlaySound) playSound;
    decltype(&FMOD_Sound_Release) soundRelease;
    decltype(&FMOD_Channel_Stop) channelStop;
    decltype(&FMOD_Channel_SetVolume) setVolume;
    decltype(&FMOD_Channel_SetPitch) setPitch;
    decltype(&FMOD_Channel_SetMode) setMode;
    decltype(&FMOD_Channel_SetCallback) setCallback;
    decltype(&FMOD_Channel_SetUserData) setUserData;
    decltype(&FMOD_Channel_Set3DAttributes) set3DAttributes;
    decltype(&FMOD_Channel_Set3DMinMaxDistance) set3DMinMaxDistance;
    decltype(&FMOD_Channel_Set3DConeSettings) set3DConeSettings;
    decltype(&FMOD_Channel_Set3DConeOrientation) set3DConeOrientation;
    decltype(&FMOD_ChannelGroup_GetSystemObject) groupGetSystemObject;
    decltype(&FMOD_ChannelGroup_Stop) groupStop;
    decltype(&FMOD_ChannelGroup_Release) groupRelease;
    decltype(&FMOD_ChannelGroup_AddGroup) groupAddGroup;
    decltype(&FMOD_ChannelGroup_GetNumGroups) groupGetNumGroups;
    decltype(&FMOD_ChannelGroup_GetGroup) groupGetGroup;
};

// The engine, or null when the process has not loaded both of its libraries
// (a simulator started without sound, the headless host without its engine).
// Looked up once, on first use. Plugin thread.
const TVPMFMODEngine* TVPMFMOD();

// One row of the bus table.
struct ChanDescriptor {
    const char* const& GUID;
    const char* Name;
};
// The bus table: a bus value is valid exactly when it is a key.
extern const std::map<TVPMAudioBus, ChanDescriptor> kChanMap;

// The current plugin's group on the bus, created on first use; null when the
// simulator or the engine cannot give one.
FMOD_CHANNELGROUP* GetCGForPlugin(TVPMAudioBus chan, TVPMPluginID plugin);

// A playing sound, kept from play until its completion is delivered.
struct PluginFMODSound {
    FMOD_SOUND* fmod_sound;
    TVPMPCMComplete_f callback;
    void* callback_data;
    FMOD_RESULT callback_result;
    TVPMPluginID plugin;
};

// The sound queue. Every access takes mxSoundQueue; the engine's END callback
// takes it on whatever thread the engine runs it. It is recursive so that a
// completion callback that disables a plugin re-enters it on the same thread
// instead of hanging; other threads are excluded exactly as by a plain mutex.
extern std::recursive_mutex mxSoundQueue;
extern std::map<FMOD_CHANNEL*, PluginFMODSound> active_sounds;
extern std::deque<PluginFMODSound> sounds_to_kill;

// Stops and delivers the plugin's sounds with status 65, then stops its groups.
void StopPluginSounds(TVPMPluginID who);
// True while completion callbacks are being delivered on this thread.
bool TVPMDeliveringSoundCallbacks();
// Releases what is left of who's sounds (an END that never came, a group
// cleared after its disable) without calling the plugin.
void ForgetPluginSounds(TVPMPluginID who);
