// TVPMSoundControls.cpp: steering a playing channel: stop, 3D position, fade distances, volume, pitch and cone.
#include "TVPMPrivate.h"
#include "TVPMSoundPrivate.h"

namespace {

FMOD_RESULT ValidateBasicParameters(FMOD_CHANNEL* channel) {
    if (!channel) {
        TVPMSendError("Called with a null channel.");
        return kFMOD_ERR_INVALID_PARAM;
    }
    const bool hasSystem = gHooks && gHooks->TVPMGetFMODSystem_f && gHooks->TVPMGetFMODSystem_f();
    if (!hasSystem || !TVPMFMOD()) {
        TVPMSendError("Called when no FMOD system was available.");
        return kFMOD_ERR_UNINITIALIZED;
    }
    return kFMOD_OK;
}

// A 2D channel refuses 3D settings with 40: it is switched to 3D and asked again.
template <class F>
FMOD_RESULT With3D(FMOD_CHANNEL* channel, F&& set) {
    const FMOD_RESULT r = set();
    if (r != kFMOD_ERR_NEEDS3D) return r;
    TVPMFMOD()->setMode(channel, kFMOD_3D);
    return set();
}

FMOD_VECTOR* EngineVector(TVPMFMODVector* v) { return reinterpret_cast<FMOD_VECTOR*>(v); }

}  // namespace

TVPM_API FMOD_RESULT TVPMStopAudio(FMOD_CHANNEL* fmod_channel) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (const FMOD_RESULT r = ValidateBasicParameters(fmod_channel)) return r;
    if (TVPMDeliveringSoundCallbacks()) {
        // The queue lock is held around completion callbacks.
        TVPMSendError("TVPMStopAudio was called from a completion callback, where sounds cannot stop.");
        return kFMOD_ERR_NOTREADY;
    }
    return TVPMFMOD()->channelStop(fmod_channel);
}

TVPM_API FMOD_RESULT TVPMSetAudioPosition(FMOD_CHANNEL* fmod_channel, TVPMFMODVector* pos,
                                          TVPMFMODVector* vel) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (const FMOD_RESULT r = ValidateBasicParameters(fmod_channel)) return r;
    if (!pos || !vel) {
        TVPMSendError("Called with a null channel.");
        return kFMOD_ERR_INVALID_PARAM;
    }
    return With3D(fmod_channel, [&] {
        return TVPMFMOD()->set3DAttributes(fmod_channel, EngineVector(pos), EngineVector(vel));
    });
}

TVPM_API FMOD_RESULT TVPMSetAudioFadeDistance(FMOD_CHANNEL* fmod_channel, float min_fade_distance,
                                              float max_fade_distance) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (const FMOD_RESULT r = ValidateBasicParameters(fmod_channel)) return r;
    // NaN is not below zero, so it reaches the engine.
    if (min_fade_distance < 0 && max_fade_distance < 0) {
        TVPMFMOD()->setMode(fmod_channel, kFMOD_2D);
        return kFMOD_OK;
    }
    return With3D(fmod_channel, [&] {
        return TVPMFMOD()->set3DMinMaxDistance(fmod_channel, min_fade_distance, max_fade_distance);
    });
}

TVPM_API FMOD_RESULT TVPMSetAudioVolume(FMOD_CHANNEL* fmod_channel, float source_volume) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (const FMOD_RESULT r = ValidateBasicParameters(fmod_channel)) return r;
    return TVPMFMOD()->setVolume(fmod_channel, source_volume);
}

TVPM_API FMOD_RESULT TVPMSetAudioPitch(FMOD_CHANNEL* fmod_channel, float pitch_hz) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (const FMOD_RESULT r = ValidateBasicParameters(fmod_channel)) return r;
    return TVPMFMOD()->setPitch(fmod_channel, pitch_hz);
}

TVPM_API FMOD_RESULT TVPMSetAudioCone(FMOD_CHANNEL* fmod_channel, float inside_angle,
                                      float outside_angle, float outside_volume,
                                      TVPMFMODVector* orientation) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (const FMOD_RESULT r = ValidateBasicParameters(fmod_channel)) return r;
    if (!orientation) {
        // The engine would be handed a null vector: refused like a null position.
        TVPMSendError("Called with a null channel.");
        return kFMOD_ERR_INVALID_PARAM;
    }
    const FMOD_RESULT r = With3D(fmod_channel, [&] {
        return TVPMFMOD()->set3DConeSettings(fmod_channel, inside_angle, outside_angle,
                                             outside_volume);
    });
    if (r != kFMOD_OK) return r;
    return TVPMFMOD()->set3DConeOrientation(fmod_channel, EngineVector(orientation));
}
