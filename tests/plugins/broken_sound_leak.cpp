// broken_sound_leak.cpp: a plugin that plays a looping sound in a channel group it makes with the engine itself and never releases.
#include <dlfcn.h>

#include <cstring>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMSound.h"

namespace {

struct ExInfo {
    int cbsize;
    unsigned length, fileoffset;
    int numchannels, defaultfrequency, format;
    unsigned char rest[200];
};

template <class F>
F Engine(const char* name) {
    return reinterpret_cast<F>(dlsym(RTLD_DEFAULT, name));
}

short s_pcm[800];

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    strcpy(outName, "Broken Sound Leak");
    strcpy(outSig, "test.broken.sound_leak");
    strcpy(outDesc, "Leaves a sound and a channel group in the engine.");
    return 1;
}

TVPM_PLUGIN_API int TPluginEnable(void) {
    auto getSystem = Engine<int (*)(void*, void**)>("FMOD_ChannelGroup_GetSystemObject");
    auto createGroup = Engine<int (*)(void*, const char*, void**)>("FMOD_System_CreateChannelGroup");
    auto createSound = Engine<int (*)(void*, const void*, unsigned, ExInfo*, void**)>("FMOD_System_CreateSound");
    auto play = Engine<int (*)(void*, void*, void*, int, void**)>("FMOD_System_PlaySound");
    void *system = nullptr, *group = nullptr, *sound = nullptr, *channel = nullptr;
    TVPMFMODChannelGroup* mine = TVPMGetFMODChannelGroup(tvpm_AudioUI);
    if (!getSystem || !mine || getSystem(mine, &system) || createGroup(system, "own group", &group))
        return 1;
    ExInfo info{};
    info.cbsize = sizeof info;
    info.length = sizeof s_pcm;
    info.numchannels = 1;
    info.defaultfrequency = 8000;
    info.format = tvpm_FMOD_PCM16;
    if (createSound(system, s_pcm, 0x1802, &info, &sound) == 0) play(system, sound, group, 0, &channel);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
TVPM_PLUGIN_API void TPluginDisable(void) {}
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
