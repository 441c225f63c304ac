// StandInStudio.cpp: the Studio engine's C entry points (libfmodstudio.so.13) over the stand-in model.
#include "StandInModel.h"

using namespace fmodstandin;

extern "C" {

FMOD_RESULT FMOD_Studio_System_Update(FMOD_STUDIO_SYSTEM* system) {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    if (FMOD_RESULT injected = e.TakeFailure(__func__)) return injected;
    if (!e.studio || Id(system) != e.studio) return kFMOD_ERR_INVALID_HANDLE;
    e.Log("studio update");
    return kFMOD_OK;
}

FMOD_RESULT FMOD_Studio_Bus_GetChannelGroup(FMOD_STUDIO_BUS* bus, FMOD_CHANNELGROUP** group) {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    if (FMOD_RESULT injected = e.TakeFailure(__func__)) return injected;
    auto it = e.busGroups.find(Id(bus));
    if (!group || it == e.busGroups.end()) return kFMOD_ERR_INVALID_HANDLE;
    *group = Handle<FMOD_CHANNELGROUP>(it->second);
    return kFMOD_OK;
}

}  // extern "C"
