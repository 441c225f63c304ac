// TVPMSoundPlay.cpp: playing PCM on a bus, the engine's end-of-channel callback, and delivering completions on the plugin thread.
#include <vector>

#include "TVPMPrivate.h"
#include "TVPMSoundPrivate.h"
#include "TVPMUnitHooks.h"

std::recursive_mutex mxSoundQueue;
std::map<FMOD_CHANNEL*, PluginFMODSound> active_sounds;
std::deque<PluginFMODSound> sounds_to_kill;

namespace {

// Depth of completion delivery on the plugin thread.
int s_delivering = 0;
// The plugin whose disable is delivering its last completions, or -1.
TVPMPluginID s_disabling = TVPM_NO_PLUGIN_ID;

TVPM_FAMILY_RECORD_COUNT("sounds", [](TVPMPluginID id) {
    std::lock_guard<std::recursive_mutex> lock(mxSoundQueue);
    size_t n = 0;
    for (auto& [channel, sound] : active_sounds) n += sound.plugin == id;
    for (auto& sound : sounds_to_kill) n += sound.plugin == id;
    return n;
});

// The engine's END callback. It may run on the engine's own thread, so it only
// moves the record to the kill list; the plugin hears of it at the next frame.
FMOD_RESULT SoundEnded(FMOD_CHANNELCONTROL* control, FMOD_CHANNELCONTROL_TYPE controlType,
                       FMOD_CHANNELCONTROL_CALLBACK_TYPE callbackType, void*, void*) noexcept {
    if (controlType != kFMOD_CHANNELCONTROL_CHANNEL ||
        callbackType != kFMOD_CHANNELCONTROL_CALLBACK_END || !control)
        return kFMOD_OK;
    std::lock_guard<std::recursive_mutex> lock(mxSoundQueue);
    auto it = active_sounds.find(reinterpret_cast<FMOD_CHANNEL*>(control));
    if (it != active_sounds.end()) {
        sounds_to_kill.push_back(it->second);
        active_sounds.erase(it);
    }
    return kFMOD_OK;
}

void CallCompletion(const PluginFMODSound& s) {
    auto complete = [&] { s.callback(s.callback_data, s.callback_result); };
    if (s.plugin == s_disabling)
        TVPMCallPluginEvenIfDisabled(s.plugin, TVPMCallSite::kSound, complete);
    else
        TVPMCallPlugin(s.plugin, TVPMCallSite::kSound, complete);
}

// Queues the sound as playing on channel, or withdraws it (sound null).
void Queue(FMOD_CHANNEL* channel, const PluginFMODSound* sound) {
    std::lock_guard<std::recursive_mutex> lock(mxSoundQueue);
    if (sound)
        active_sounds[channel] = *sound;
    else
        active_sounds.erase(channel);
}

// Plays the created sound in the plugin's group on the bus; the first failure
// is the result. On success the sound is queued as playing.
FMOD_RESULT PlaySoundOnBus(TVPMAudioBus on_bus, const PluginFMODSound& plugin_details,
                           FMOD_CHANNEL*& fmod_chan) {
    const TVPMFMODEngine& e = *TVPMFMOD();
    if (!gHooks->TVPMGetFMODBus_f || !gHooks->TVPMGetFMODBus_f(kChanMap.at(on_bus).GUID))
        return kFMOD_ERR_UNINITIALIZED;
    FMOD_CHANNELGROUP* group = GetCGForPlugin(on_bus, plugin_details.plugin);
    FMOD_SYSTEM* system = nullptr;
    if (!group || e.groupGetSystemObject(group, &system) != kFMOD_OK || !system)
        return kFMOD_ERR_UNINITIALIZED;
    FMOD_RESULT r = e.playSound(system, plugin_details.fmod_sound, group, 0, &fmod_chan);
    if (r != kFMOD_OK) return r;
    // Queued before the callback is set: the engine may end the channel on its
    // own thread as soon as the callback is in place.
    Queue(fmod_chan, &plugin_details);
    r = e.setUserData(fmod_chan, plugin_details.callback_data);
    if (r == kFMOD_OK) r = e.setCallback(fmod_chan, &SoundEnded);
    if (r != kFMOD_OK) Queue(fmod_chan, nullptr);
    return r;
}

// The plugin's group on the bus and the system behind it, or false.
bool PluginGroupSystem(TVPMAudioBus chan, TVPMPluginID plugin, FMOD_SYSTEM*& system) {
    FMOD_CHANNELGROUP* group = GetCGForPlugin(chan, plugin);
    system = nullptr;
    return group && TVPMFMOD()->groupGetSystemObject(group, &system) == kFMOD_OK && system;
}

FMOD_CREATESOUNDEXINFO RawPCMInfo(uint32_t bytes, int format, int rateHz, int channels) {
    FMOD_CREATESOUNDEXINFO info{};
    info.cbsize = sizeof(FMOD_CREATESOUNDEXINFO);
    info.length = bytes;
    info.numchannels = channels;
    info.defaultfrequency = rateHz;
    info.format = format;
    return info;
}

// Erases who's records from a queue container, releasing their sounds.
template <class Container, class RecordOf>
void DropOwnedBy(Container& records, TVPMPluginID who, RecordOf recordOf) {
    const TVPMFMODEngine* e = TVPMFMOD();
    for (auto it = records.begin(); it != records.end();) {
        const PluginFMODSound& s = recordOf(*it);
        if (s.plugin != who) {
            ++it;
            continue;
        }
        if (e && s.fmod_sound) e->soundRelease(s.fmod_sound);
        it = records.erase(it);
    }
}

}  // namespace

bool TVPMDeliveringSoundCallbacks() { return s_delivering != 0; }

TVPM_API FMOD_CHANNEL* TVPMPlayPCMOnBus(void* buf, uint32_t buf_bytes, TVPMFMODSoundFormat snd_format,
                                        int freq_hz, int num_chans, int loop, TVPMAudioBus chan,
                                        TVPMPCMComplete_f optional_completion_cb, void* pluginData) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (s_delivering) {
        // The queue lock is held around completion callbacks.
        TVPMSendError("TVPMPlayPCMOnBus was called from a completion callback, where sounds cannot start.");
        return nullptr;
    }
    PluginFMODSound sound{nullptr, optional_completion_cb, pluginData, kFMOD_OK,
                          TVPMGetDispatchedPlugin()};
    FMOD_CHANNEL* channel = nullptr;
    FMOD_RESULT status = kFMOD_OK;
    FMOD_SYSTEM* system = nullptr;
    if (!kChanMap.count(chan)) {
        TVPMSendError("The FMOD bus ID was invalid.");
        status = kFMOD_ERR_INVALID_PARAM;
    } else if (!PluginGroupSystem(chan, sound.plugin, system)) {
        TVPMSendError("TVPMPlayPCMOnBus was called when no FMOD system was available.");
        status = kFMOD_ERR_NOTREADY;
    } else {
        FMOD_CREATESOUNDEXINFO info = RawPCMInfo(buf_bytes, snd_format, freq_hz, num_chans);
        const FMOD_MODE mode =
            kFMOD_OPENMEMORY | kFMOD_OPENRAW | (loop ? kFMOD_LOOP_NORMAL : kFMOD_LOOP_OFF);
        status = TVPMFMOD()->createSound(system, static_cast<const char*>(buf), mode, &info,
                                         &sound.fmod_sound);
        if (status == kFMOD_OK && !sound.fmod_sound) return nullptr;
        if (status == kFMOD_OK) status = PlaySoundOnBus(chan, sound, channel);
        if (status == kFMOD_OK) return channel;
    }
    // A channel that played but could not be set up is still returned.
    if (sound.fmod_sound) TVPMFMOD()->soundRelease(sound.fmod_sound);
    if (optional_completion_cb)
        TVPMGuardPluginCall(sound.plugin, TVPMCallSite::kSound,
                            [&] { optional_completion_cb(pluginData, status); });
    return channel;
}

void TVPMKillUsedSounds() {
    std::lock_guard<std::recursive_mutex> lock(mxSoundQueue);
    ++s_delivering;
    // Popped one at a time: a callback that disables a plugin delivers the
    // rest of the queue from inside this loop.
    while (!sounds_to_kill.empty()) {
        PluginFMODSound s = sounds_to_kill.front();
        sounds_to_kill.pop_front();
        if (s.callback) CallCompletion(s);
        if (const TVPMFMODEngine* e = TVPMFMOD(); e && s.fmod_sound) e->soundRelease(s.fmod_sound);
    }
    --s_delivering;
}

void TVPMDoFMODHousekeeping() { TVPMKillUsedSounds(); }

void StopPluginSounds(TVPMPluginID who) {
    std::vector<FMOD_CHANNEL*> channels;
    {
        std::lock_guard<std::recursive_mutex> lock(mxSoundQueue);
        for (auto& [channel, sound] : active_sounds)
            if (sound.plugin == who) {
                sound.callback_result = kFMOD_ERR_TRUNCATED;
                channels.push_back(channel);
            }
    }
    // Each stop runs SoundEnded, which takes the lock.
    if (const TVPMFMODEngine* e = TVPMFMOD())
        for (FMOD_CHANNEL* channel : channels) e->channelStop(channel);
    const TVPMPluginID outer = s_disabling;
    s_disabling = who;
    TVPMKillUsedSounds();
    s_disabling = outer;
}

void ForgetPluginSounds(TVPMPluginID who) {
    std::lock_guard<std::recursive_mutex> lock(mxSoundQueue);
    DropOwnedBy(active_sounds, who, [](auto& entry) -> PluginFMODSound& { return entry.second; });
    // An ID can name another plugin later: nothing queued may call this one.
    DropOwnedBy(sounds_to_kill, who, [](PluginFMODSound& s) -> PluginFMODSound& { return s; });
}
