// StandInCore.cpp: the core engine's C entry points (libfmod.so.13) over the stand-in model.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "StandInModel.h"

using namespace fmodstandin;

namespace {

// Every entry point: the lock, then an injected failure if one is pending.
#define STANDIN_ENTER()                                  \
    Engine& e = TheEngine();                             \
    std::lock_guard<std::mutex> lock(e.mx);              \
    if (FMOD_RESULT injected = e.TakeFailure(__func__))  \
        return injected

int BytesPerSample(int format) {
    switch (format) {
        case kFMOD_SOUND_FORMAT_PCM8: return 1;
        case kFMOD_SOUND_FORMAT_PCM16: return 2;
        case kFMOD_SOUND_FORMAT_PCM24: return 3;
        case kFMOD_SOUND_FORMAT_PCM32:
        case kFMOD_SOUND_FORMAT_PCMFLOAT: return 4;
        default: return 0;
    }
}

std::string Hex(unsigned v) {
    char text[16];
    snprintf(text, sizeof text, "0x%x", v);
    return text;
}

bool IsRawPCM(FMOD_MODE mode, const FMOD_CREATESOUNDEXINFO* info) {
    return (mode & kFMOD_OPENMEMORY) && (mode & kFMOD_OPENRAW) && info &&
           info->cbsize == static_cast<int>(sizeof(FMOD_CREATESOUNDEXINFO)) && info->numchannels > 0 &&
           info->defaultfrequency > 0 && BytesPerSample(info->format) > 0;
}

Channel* FindChannel(Engine& e, FMOD_CHANNEL* channel) {
    auto it = e.channels.find(Id(channel));
    return it == e.channels.end() ? nullptr : &it->second;
}

Group* FindGroup(Engine& e, FMOD_CHANNELGROUP* group) {
    auto it = e.groups.find(Id(group));
    return it == e.groups.end() || !it->second.alive ? nullptr : &it->second;
}

// The 3D settings a 2D channel refuses.
FMOD_RESULT Needs3D(Engine& e, FMOD_CHANNEL* channel, const std::string& line) {
    Channel* c = FindChannel(e, channel);
    if (!c) return kFMOD_ERR_INVALID_HANDLE;
    if (!c->is3D) return kFMOD_ERR_NEEDS3D;
    e.Log(line);
    return kFMOD_OK;
}

}  // namespace

extern "C" {

FMOD_RESULT FMOD_System_CreateSound(FMOD_SYSTEM* system, const char* data, FMOD_MODE mode,
                                    FMOD_CREATESOUNDEXINFO* info, FMOD_SOUND** sound) {
    STANDIN_ENTER();
    if (!sound || Id(system) != e.system || !e.system || !data) return kFMOD_ERR_INVALID_PARAM;
    *sound = nullptr;
    e.Log("createSound mode=" + Hex(mode) + " cbsize=" + std::to_string(info ? info->cbsize : 0) +
          " length=" + std::to_string(info ? info->length : 0) +
          " channels=" + std::to_string(info ? info->numchannels : 0) +
          " rate=" + std::to_string(info ? info->defaultfrequency : 0) +
          " format=" + std::to_string(info ? info->format : 0));
    if (!IsRawPCM(mode, info)) return kFMOD_ERR_INVALID_PARAM;
    Sound s;
    const auto* bytes = reinterpret_cast<const uint8_t*>(data);
    s.pcm = std::make_shared<const std::vector<uint8_t>>(bytes, bytes + info->length);
    s.rate = info->defaultfrequency;
    s.channels = info->numchannels;
    s.format = info->format;
    s.looping = (mode & kFMOD_LOOP_NORMAL) != 0;
    const double frames = double(info->length) / (s.channels * BytesPerSample(s.format));
    s.duration = frames / s.rate;
    const uint64_t id = e.NewId();
    e.sounds[id] = std::move(s);
    *sound = Handle<FMOD_SOUND>(id);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Sound_Release(FMOD_SOUND* sound) {
    EndCallbacks ended;
    STANDIN_ENTER();
    if (!e.sounds.count(Id(sound))) return kFMOD_ERR_INVALID_HANDLE;
    std::vector<uint64_t> playing;
    for (auto& [id, c] : e.channels)
        if (c.sound == Id(sound)) playing.push_back(id);
    for (uint64_t id : playing) e.End(id, true, ended);
    for (size_t play : e.sounds[Id(sound)].plays) e.plays[play].released = true;
    e.sounds.erase(Id(sound));
    e.Log("release sound");
    return kFMOD_OK;
}

FMOD_RESULT FMOD_System_CreateChannelGroup(FMOD_SYSTEM* system, const char* name,
                                           FMOD_CHANNELGROUP** group) {
    STANDIN_ENTER();
    if (!group || !e.system || Id(system) != e.system) return kFMOD_ERR_INVALID_PARAM;
    const uint64_t id = e.NewId();
    e.groups[id] = Group{name ? name : "", e.master, {}, "", false, true};
    e.groups[e.master].children.push_back(id);
    e.Log(std::string("createChannelGroup ") + (name ? name : ""));
    *group = Handle<FMOD_CHANNELGROUP>(id);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_System_PlaySound(FMOD_SYSTEM* system, FMOD_SOUND* sound, FMOD_CHANNELGROUP* group,
                                  FMOD_BOOL paused, FMOD_CHANNEL** channel) {
    STANDIN_ENTER();
    auto s = e.sounds.find(Id(sound));
    Group* g = FindGroup(e, group);
    if (!channel || Id(system) != e.system || s == e.sounds.end() || !g || paused)
        return kFMOD_ERR_INVALID_PARAM;
    PlayInfo play;
    play.bus = g->bus;
    play.group = g->name;
    play.start = e.now;
    play.looping = s->second.looping;
    play.rate = s->second.rate;
    play.channels = s->second.channels;
    play.format = s->second.format;
    play.pcm = s->second.pcm;
    const uint64_t id = e.NewId();
    s->second.plays.push_back(e.plays.size());
    e.channels[id] = Channel{Id(sound), Id(group), e.plays.size(), nullptr, false};
    e.plays.push_back(std::move(play));
    e.Log("playSound " + g->name + " channel " + std::to_string(id));
    *channel = Handle<FMOD_CHANNEL>(id);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Channel_Stop(FMOD_CHANNEL* channel) {
    EndCallbacks ended;
    STANDIN_ENTER();
    if (!FindChannel(e, channel)) return kFMOD_ERR_INVALID_HANDLE;
    e.Log("stop channel " + std::to_string(Id(channel)));
    e.End(Id(channel), true, ended);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Channel_SetVolume(FMOD_CHANNEL* channel, float volume) {
    STANDIN_ENTER();
    Channel* c = FindChannel(e, channel);
    if (!c) return kFMOD_ERR_INVALID_HANDLE;
    e.plays[c->play].volume = volume;
    e.Log("setVolume " + std::to_string(volume));
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Channel_SetPitch(FMOD_CHANNEL* channel, float pitch) {
    STANDIN_ENTER();
    if (!FindChannel(e, channel)) return kFMOD_ERR_INVALID_HANDLE;
    e.Log("setPitch " + std::to_string(pitch));
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Channel_SetMode(FMOD_CHANNEL* channel, FMOD_MODE mode) {
    STANDIN_ENTER();
    Channel* c = FindChannel(e, channel);
    if (!c) return kFMOD_ERR_INVALID_HANDLE;
    if (mode & kFMOD_3D) c->is3D = true;
    if (mode & kFMOD_2D) c->is3D = false;
    e.Log("setMode " + Hex(mode));
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Channel_SetCallback(FMOD_CHANNEL* channel, FMOD_CHANNELCONTROL_CALLBACK callback) {
    STANDIN_ENTER();
    Channel* c = FindChannel(e, channel);
    if (!c) return kFMOD_ERR_INVALID_HANDLE;
    c->callback = callback;
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Channel_SetUserData(FMOD_CHANNEL* channel, void*) {
    STANDIN_ENTER();
    return FindChannel(e, channel) ? kFMOD_OK : kFMOD_ERR_INVALID_HANDLE;
}

FMOD_RESULT FMOD_Channel_Set3DAttributes(FMOD_CHANNEL* channel, const FMOD_VECTOR* pos,
                                         const FMOD_VECTOR* vel) {
    STANDIN_ENTER();
    if (!pos || !vel) return kFMOD_ERR_INVALID_PARAM;
    return Needs3D(e, channel,
                   "set3DAttributes " + std::to_string(pos->x) + " " + std::to_string(vel->x));
}

FMOD_RESULT FMOD_Channel_Set3DMinMaxDistance(FMOD_CHANNEL* channel, float minDistance,
                                             float maxDistance) {
    STANDIN_ENTER();
    return Needs3D(e, channel,
                   "set3DMinMaxDistance " + std::to_string(minDistance) + " " + std::to_string(maxDistance));
}

FMOD_RESULT FMOD_Channel_Set3DConeSettings(FMOD_CHANNEL* channel, float insideAngle,
                                           float outsideAngle, float outsideVolume) {
    STANDIN_ENTER();
    return Needs3D(e, channel,
                   "set3DConeSettings " + std::to_string(insideAngle) + " " +
                       std::to_string(outsideAngle) + " " + std::to_string(outsideVolume));
}

FMOD_RESULT FMOD_Channel_Set3DConeOrientation(FMOD_CHANNEL* channel, FMOD_VECTOR* orientation) {
    STANDIN_ENTER();
    if (!orientation) return kFMOD_ERR_INVALID_PARAM;
    return Needs3D(e, channel, "set3DConeOrientation " + std::to_string(orientation->z));
}

FMOD_RESULT FMOD_ChannelGroup_GetSystemObject(FMOD_CHANNELGROUP* group, FMOD_SYSTEM** system) {
    STANDIN_ENTER();
    if (!system || !FindGroup(e, group)) return kFMOD_ERR_INVALID_HANDLE;
    *system = Handle<FMOD_SYSTEM>(e.system);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_ChannelGroup_Stop(FMOD_CHANNELGROUP* group) {
    EndCallbacks ended;
    STANDIN_ENTER();
    Group* g = FindGroup(e, group);
    if (!g) return kFMOD_ERR_INVALID_HANDLE;
    e.Log("stop group " + g->name);
    e.StopGroup(Id(group), ended);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_ChannelGroup_Release(FMOD_CHANNELGROUP* group) {
    EndCallbacks ended;
    STANDIN_ENTER();
    Group* g = FindGroup(e, group);
    if (!g || Id(group) == e.master || g->isBus) return kFMOD_ERR_INVALID_HANDLE;
    e.StopGroup(Id(group), ended);
    // Children left behind move to the master group.
    for (uint64_t child : g->children) {
        e.groups[child].parent = e.master;
        e.groups[e.master].children.push_back(child);
    }
    auto& siblings = e.groups[g->parent].children;
    siblings.erase(std::remove(siblings.begin(), siblings.end(), Id(group)), siblings.end());
    g->children.clear();
    g->alive = false;
    e.Log("release group " + g->name);
    return kFMOD_OK;
}

FMOD_RESULT FMOD_ChannelGroup_AddGroup(FMOD_CHANNELGROUP* group, FMOD_CHANNELGROUP* child,
                                       FMOD_BOOL propagateDSPClock, FMOD_DSPCONNECTION** connection) {
    STANDIN_ENTER();
    Group* parent = FindGroup(e, group);
    Group* g = FindGroup(e, child);
    if (!parent || !g || group == child) return kFMOD_ERR_INVALID_PARAM;
    auto& siblings = e.groups[g->parent].children;
    siblings.erase(std::remove(siblings.begin(), siblings.end(), Id(child)), siblings.end());
    g->parent = Id(group);
    g->bus = parent->bus;
    parent->children.push_back(Id(child));
    if (connection) *connection = nullptr;
    e.Log("addGroup " + parent->name + " <- " + g->name +
          " propagate=" + std::to_string(propagateDSPClock));
    return kFMOD_OK;
}

FMOD_RESULT FMOD_ChannelGroup_GetNumGroups(FMOD_CHANNELGROUP* group, int* numGroups) {
    STANDIN_ENTER();
    Group* g = FindGroup(e, group);
    if (!g || !numGroups) return kFMOD_ERR_INVALID_HANDLE;
    *numGroups = static_cast<int>(g->children.size());
    return kFMOD_OK;
}

FMOD_RESULT FMOD_ChannelGroup_GetGroup(FMOD_CHANNELGROUP* group, int index, FMOD_CHANNELGROUP** child) {
    STANDIN_ENTER();
    Group* g = FindGroup(e, group);
    if (!g || !child) return kFMOD_ERR_INVALID_HANDLE;
    if (index < 0 || static_cast<size_t>(index) >= g->children.size()) return kFMOD_ERR_INVALID_PARAM;
    *child = Handle<FMOD_CHANNELGROUP>(g->children[static_cast<size_t>(index)]);
    return kFMOD_OK;
}

}  // extern "C"
