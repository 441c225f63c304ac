// TVPMSoundEngine.cpp: finds the sound engine's C entry points in the engine libraries the simulator's process has already loaded.
#include <dlfcn.h>

#include "TVPMSoundPrivate.h"

namespace {

// Opens an already-loaded library by soname; never loads one.
void* LoadedLibrary(const char* soname) { return dlopen(soname, RTLD_NOLOAD | RTLD_NOW); }

template <class F>
bool Find(void* lib, const char* name, F& out) {
    out = reinterpret_cast<F>(dlsym(lib, name));
    return out != nullptr;
}

bool FindCore(void* core, TVPMFMODEngine& e) {
    return Find(core, "FMOD_System_CreateSound", e.createSound) &&
           Find(core, "FMOD_System_CreateChannelGroup", e.createChannelGroup) &&
           Find(core, "FMOD_System_PlaySound", e.playSound) &&
           Find(core, "FMOD_Sound_Release", e.soundRelease) &&
           Find(core, "FMOD_Channel_Stop", e.channelStop) &&
           Find(core, "FMOD_Channel_SetVolume", e.setVolume) &&
           Find(core, "FMOD_Channel_SetPitch", e.setPitch) &&
           Find(core, "FMOD_Channel_SetMode", e.setMode) &&
           Find(core, "FMOD_Channel_SetCallback", e.setCallback) &&
           Find(core, "FMOD_Channel_SetUserData", e.setUserData) &&
           Find(core, "FMOD_Channel_Set3DAttributes", e.set3DAttributes) &&
           Find(core, "FMOD_Channel_Set3DMinMaxDistance", e.set3DMinMaxDistance) &&
           Find(core, "FMOD_Channel_Set3DConeSettings", e.set3DConeSettings) &&
           Find(core, "FMOD_Channel_Set3DConeOrientation", e.set3DConeOrientation) &&
           Find(core, "FMOD_ChannelGroup_GetSystemObject", e.groupGetSystemObject) &&
           Find(core, "FMOD_ChannelGroup_Stop", e.groupStop) &&
           Find(core, "FMOD_ChannelGroup_Release", e.groupRelease) &&
           Find(core, "FMOD_ChannelGroup_AddGroup", e.groupAddGroup) &&
           Find(core, "FMOD_ChannelGroup_GetNumGroups", e.groupGetNumGroups) &&
           Find(core, "FMOD_ChannelGroup_GetGroup", e.groupGetGroup);
}

bool FindStudio(void* studio, TVPMFMODEngine& e) {
    return Find(studio, "FMOD_Studio_System_Update", e.studioUpdate) &&
           Find(studio, "FMOD_Studio_Bus_GetChannelGroup", e.busGetChannelGroup);
}

// The libraries stay referenced for the process: the simulator keeps them.
const TVPMFMODEngine* LookUpEngine() {
    static TVPMFMODEngine engine{};
    void* core = LoadedLibrary("libfmod.so.13");
    void* studio = LoadedLibrary("libfmodstudio.so.13");
    const bool found = core && studio && FindCore(core, engine) && FindStudio(studio, engine);
    return found ? &engine : nullptr;
}

}  // namespace

const TVPMFMODEngine* TVPMFMOD() {
    static const TVPMFMODEngine* const engine = LookUpEngine();
    return engine;
}
