// TVPMFMODApi.h: the sound engine's C entry points, types and values that the library uses, declared by hand (the engine's headers are not shipped).
#pragma once

#include <cstddef>

extern "C" {

typedef int FMOD_BOOL;
typedef unsigned int FMOD_MODE;
typedef unsigned int FMOD_TIMEUNIT;
typedef struct FMOD_SYSTEM FMOD_SYSTEM;
typedef struct FMOD_SOUND FMOD_SOUND;
typedef struct FMOD_CHANNELCONTROL FMOD_CHANNELCONTROL;
typedef struct FMOD_CHANNEL FMOD_CHANNEL;
typedef struct FMOD_CHANNELGROUP FMOD_CHANNELGROUP;
typedef struct FMOD_DSPCONNECTION FMOD_DSPCONNECTION;
typedef struct FMOD_STUDIO_SYSTEM FMOD_STUDIO_SYSTEM;
typedef struct FMOD_STUDIO_BUS FMOD_STUDIO_BUS;
typedef struct FMOD_VECTOR {
    float x, y, z;
} FMOD_VECTOR;

// FMOD_RESULT, FMOD_SOUND_FORMAT and the callback enums are 32-bit ints.
typedef int FMOD_RESULT;
typedef int FMOD_SOUND_FORMAT;
typedef int FMOD_CHANNELCONTROL_TYPE;
typedef int FMOD_CHANNELCONTROL_CALLBACK_TYPE;

typedef FMOD_RESULT (*FMOD_CHANNELCONTROL_CALLBACK)(FMOD_CHANNELCONTROL* control,
                                                    FMOD_CHANNELCONTROL_TYPE controlType,
                                                    FMOD_CHANNELCONTROL_CALLBACK_TYPE callbackType,
                                                    void* commandData1, void* commandData2);

// Only the fields the library sets are named; the rest stay zero.
struct FMOD_CREATESOUNDEXINFO {
    int cbsize;
    unsigned int length;
    unsigned int fileoffset;
    int numchannels;
    int defaultfrequency;
    FMOD_SOUND_FORMAT format;
    unsigned char unnamed[200];
};

FMOD_RESULT FMOD_Studio_System_Update(FMOD_STUDIO_SYSTEM* system);
FMOD_RESULT FMOD_Studio_Bus_GetChannelGroup(FMOD_STUDIO_BUS* bus, FMOD_CHANNELGROUP** group);
FMOD_RESULT FMOD_System_CreateSound(FMOD_SYSTEM* system, const char* nameOrData, FMOD_MODE mode,
                                    FMOD_CREATESOUNDEXINFO* exinfo, FMOD_SOUND** sound);
FMOD_RESULT FMOD_System_CreateChannelGroup(FMOD_SYSTEM* system, const char* name,
                                           FMOD_CHANNELGROUP** group);
FMOD_RESULT FMOD_System_PlaySound(FMOD_SYSTEM* system, FMOD_SOUND* sound, FMOD_CHANNELGROUP* group,
                                  FMOD_BOOL paused, FMOD_CHANNEL** channel);
FMOD_RESULT FMOD_Sound_Release(FMOD_SOUND* sound);
FMOD_RESULT FMOD_Channel_Stop(FMOD_CHANNEL* channel);
FMOD_RESULT FMOD_Channel_SetVolume(FMOD_CHANNEL* channel, float volume);
FMOD_RESULT FMOD_Channel_SetPitch(FMOD_CHANNEL* channel, float pitch);
FMOD_RESULT FMOD_Channel_SetMode(FMOD_CHANNEL* channel, FMOD_MODE mode);
FMOD_RESULT FMOD_Channel_SetCallback(FMOD_CHANNEL* channel, FMOD_CHANNELCONTROL_CALLBACK callback);
FMOD_RESULT FMOD_Channel_SetUserData(FMOD_CHANNEL* channel, void* userdata);
FMOD_RESULT FMOD_Channel_Set3DAttributes(FMOD_CHANNEL* channel, const FMOD_VECTOR* pos,
                                         const FMOD_VECTOR* vel);
FMOD_RESULT FMOD_Channel_Set3DMinMaxDistance(FMOD_CHANNEL* channel, float minDistance,
                                             float maxDistance);
FMOD_RESULT FMOD_Channel_Set3DConeSettings(FMOD_CHANNEL* channel, float insideAngle,
                                           float outsideAngle, float outsideVolume);
FMOD_RESULT FMOD_Channel_Set3DConeOrientation(FMOD_CHANNEL* channel, FMOD_VECTOR* orientation);
FMOD_RESULT FMOD_ChannelGroup_GetSystemObject(FMOD_CHANNELGROUP* group, FMOD_SYSTEM** system);
FMOD_RESULT FMOD_ChannelGroup_Stop(FMOD_CHANNELGROUP* group);
FMOD_RESULT FMOD_ChannelGroup_Release(FMOD_CHANNELGROUP* group);
FMOD_RESULT FMOD_ChannelGroup_AddGroup(FMOD_CHANNELGROUP* group, FMOD_CHANNELGROUP* child,
                                       FMOD_BOOL propagateDSPClock, FMOD_DSPCONNECTION** connection);
FMOD_RESULT FMOD_ChannelGroup_GetNumGroups(FMOD_CHANNELGROUP* group, int* numGroups);
FMOD_RESULT FMOD_ChannelGroup_GetGroup(FMOD_CHANNELGROUP* group, int index,
                                       FMOD_CHANNELGROUP** child);

}  // extern "C"

static_assert(sizeof(FMOD_CREATESOUNDEXINFO) == 224, "the engine checks cbsize against this");
static_assert(offsetof(FMOD_CREATESOUNDEXINFO, format) == 20, "engine layout");

// The values the library and the stand-in engine use.
enum : int {
    kFMOD_OK = 0,
    kFMOD_ERR_INVALID_HANDLE = 30,
    kFMOD_ERR_INVALID_PARAM = 31,
    kFMOD_ERR_NEEDS3D = 40,
    kFMOD_ERR_NOTREADY = 46,
    kFMOD_ERR_TRUNCATED = 65,
    kFMOD_ERR_UNINITIALIZED = 67,
    kFMOD_ERR_STUDIO_NOT_LOADED = 76,
};
enum : FMOD_MODE {
    kFMOD_LOOP_OFF = 0x1,
    kFMOD_LOOP_NORMAL = 0x2,
    kFMOD_2D = 0x8,
    kFMOD_3D = 0x10,
    kFMOD_OPENMEMORY = 0x800,
    kFMOD_OPENRAW = 0x1000,
};
enum : int { kFMOD_CHANNELCONTROL_CHANNEL = 0, kFMOD_CHANNELCONTROL_CALLBACK_END = 0 };
enum : int {
    kFMOD_SOUND_FORMAT_PCM8 = 1,
    kFMOD_SOUND_FORMAT_PCM16 = 2,
    kFMOD_SOUND_FORMAT_PCM24 = 3,
    kFMOD_SOUND_FORMAT_PCM32 = 4,
    kFMOD_SOUND_FORMAT_PCMFLOAT = 5,
};
