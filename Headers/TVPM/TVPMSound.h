/*
 * TVPMSound.h: raw PCM sound on the simulator's audio buses, and control of
 * the channels that play it.
 *
 * The simulator's sound engine plays the sounds; TVPM never creates an engine
 * of its own. Every plugin gets one private channel group per bus it uses,
 * created on first use under the bus's own group and named
 * "<plugin name> - <bus name>". Everything a plugin plays is stopped and
 * released when the plugin is disabled or unloaded, and its groups are
 * cleared when the simulator unloads a sound bank.
 *
 * The engine's handle types appear here as opaque types of TVPM's own, so a
 * plugin compiles without the engine's headers. They are the engine's own
 * handles: a plugin that uses the engine's API directly may cast them to the
 * engine's types (TVPMFMODChannel* to FMOD_CHANNEL*, and so on).
 *
 * Results are the engine's result codes (tvpm_FMOD_OK and the values below).
 * Misuse is also reported to the current plugin's error callback.
 *
 * Completion callbacks run on the plugin thread, at the first frame after the
 * sound ended (or at once when the play call fails), while TVPM holds its
 * sound-queue lock. A completion callback must not start or stop sounds: such
 * calls are refused and reported to the plugin's error callback.
 *
 * Every function here is [plugin-thread] and acts for the [current plugin].
 * Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMSound_h
#define TVPMSound_h

#include <stddef.h>

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The engine's handles, opaque: a playing channel, a channel group and the
 * simulator's Studio system. Owned by the engine. */
typedef struct FMOD_CHANNEL TVPMFMODChannel;
typedef struct FMOD_CHANNELGROUP TVPMFMODChannelGroup;
typedef struct FMOD_STUDIO_SYSTEM TVPMFMODStudioSystem;

/* A position, velocity or direction, laid out as the engine's vector. */
typedef struct TVPMFMODVector {
    float x;
    float y;
    float z;
} TVPMFMODVector;
#define TVPM_FMOD_VECTOR_SIZE 12

/* The engine's result code. */
typedef int TVPMFMODResult;
enum {
    tvpm_FMOD_OK = 0,
    tvpm_FMOD_ErrInvalidParam = 31, /* a bad bus or a null channel or vector */
    tvpm_FMOD_ErrNeeds3D = 40,
    tvpm_FMOD_ErrNotReady = 46,     /* no sound system to play on */
    tvpm_FMOD_ErrTruncated = 65,    /* the sound was stopped: its plugin was disabled */
    tvpm_FMOD_ErrUninitialized = 67 /* no sound system */
};

/* The sample format of raw PCM data, as the engine numbers it. */
typedef int TVPMFMODSoundFormat;
enum {
    tvpm_FMOD_PCM8 = 1,
    tvpm_FMOD_PCM16 = 2,
    tvpm_FMOD_PCM24 = 3,
    tvpm_FMOD_PCM32 = 4,
    tvpm_FMOD_PCMFloat = 5
};

/* The simulator's audio buses. */
typedef int TVPMAudioBus;
enum {
    tvpm_AudioRadioCom1 = 0,
    tvpm_AudioRadioCom2 = 1,
    tvpm_AudioRadioPilot = 2,
    tvpm_AudioRadioCopilot = 3,
    tvpm_AudioExteriorAircraft = 4,
    tvpm_AudioExteriorEnvironment = 5,
    tvpm_AudioExteriorUnprocessed = 6,
    tvpm_AudioInterior = 7,
    tvpm_AudioUI = 8,
    tvpm_AudioGround = 9,
    tvpm_Master = 10
};

/* The simulator's sound banks, as named by the bank messages
 * (TVPM_MSG_FMOD_BANK_LOADED and TVPM_MSG_FMOD_BANK_UNLOADING). */
enum { tvpm_MasterBank = 0, tvpm_RadioBank = 1 };

/* Called once per played sound with its refcon and final status: tvpm_FMOD_OK
 * when it played to its end or was stopped, tvpm_FMOD_ErrTruncated when its
 * plugin was disabled, or the error that made the play call fail. */
typedef void (*TVPMPCMComplete_f)(void* inRefcon, TVPMFMODResult status);

/* Plays inBytes bytes of raw little-endian PCM at inBuffer (inChannels
 * interleaved channels of inFormat samples at inRateHz) on a bus, in the
 * current plugin's group on it, once or looping (inLoop non-zero). The engine
 * copies the data: the caller may free inBuffer when the call returns.
 * Returns the playing channel, valid until the sound ends, or null when the
 * play failed; onComplete (may be null) is then called at once with the
 * error. A looping sound plays until it is stopped. */
TVPM_API TVPMFMODChannel* TVPMPlayPCMOnBus(void* inBuffer, uint32_t inBytes,
                                           TVPMFMODSoundFormat inFormat, int inRateHz,
                                           int inChannels, int inLoop, TVPMAudioBus inBus,
                                           TVPMPCMComplete_f onComplete, void* inRefcon);
/* Stops a channel; its completion callback follows at the next frame. */
TVPM_API TVPMFMODResult TVPMStopAudio(TVPMFMODChannel* inChannel);
/* Places a channel in the world (metres, metres per second; neither may be
 * null). A 2D channel is switched to 3D. */
TVPM_API TVPMFMODResult TVPMSetAudioPosition(TVPMFMODChannel* inChannel, TVPMFMODVector* inPos,
                                             TVPMFMODVector* inVel);
/* Sets the distances over which a 3D channel fades. Both below zero switch the
 * channel to 2D instead. */
TVPM_API TVPMFMODResult TVPMSetAudioFadeDistance(TVPMFMODChannel* inChannel, float inMinDistance,
                                                 float inMaxDistance);
/* Sets a channel's volume (1 is unchanged). */
TVPM_API TVPMFMODResult TVPMSetAudioVolume(TVPMFMODChannel* inChannel, float inVolume);
/* Sets a channel's pitch, as the engine's relative pitch (1 is unchanged). */
TVPM_API TVPMFMODResult TVPMSetAudioPitch(TVPMFMODChannel* inChannel, float inPitch);
/* Sets a 3D channel's cone (angles in degrees) and then its direction
 * (inOrientation may not be null). */
TVPM_API TVPMFMODResult TVPMSetAudioCone(TVPMFMODChannel* inChannel, float inInsideAngle,
                                         float inOutsideAngle, float inOutsideVolume,
                                         TVPMFMODVector* inOrientation);
/* The current plugin's own group on a bus, created on first use; owned by
 * TVPM and released when the plugin is unloaded or the bank is unloaded.
 * Null for a bad bus or without a sound system. */
TVPM_API TVPMFMODChannelGroup* TVPMGetFMODChannelGroup(TVPMAudioBus inBus);
/* The simulator's Studio system, owned by the simulator; null without one. */
TVPM_API TVPMFMODStudioSystem* TVPMGetFMODStudio(void);

#ifdef __cplusplus
}
#endif

/* The vector's layout is the engine's: checked when this header compiles. */
TVPM_PIN_LAYOUT(fmod_vector_size, sizeof(TVPMFMODVector) == TVPM_FMOD_VECTOR_SIZE);
TVPM_PIN_LAYOUT(fmod_vector_z, offsetof(TVPMFMODVector, z) == 8);

#endif
