// TVPMCamera.cpp: one plugin at a time controls the simulator's camera through a per-frame callback.
#include "TVPM/TVPMCamera.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

int gIsControlled = 0;
TVPMCameraControlDuration gControlDuration = 0;
TVPMCameraControl_f gCurrentControlFunc = nullptr;
TVPMPluginID gCurrentControlPlugin = TVPM_NO_PLUGIN_ID;
void* gCameraControlRef = nullptr;

// Tells the controller, once, that it lost the camera; then nobody holds it.
void LoseControl() {
    const TVPMPluginID controller = gCurrentControlPlugin;
    const TVPMCameraControl_f func = gCurrentControlFunc;
    void* const refcon = gCameraControlRef;
    gIsControlled = 0;
    gCurrentControlPlugin = TVPM_NO_PLUGIN_ID;
    if (func)
        TVPMCallPlugin(controller, TVPMCallSite::kCamera, [&] { func(nullptr, 1, refcon); });
}

void ReleaseIfControlledBy(TVPMPluginID id) {
    if (gIsControlled && id == gCurrentControlPlugin) LoseControl();
}

}  // namespace

TVPM_API void TVPMControlCamera(TVPMCameraControlDuration inHowLong,
                                TVPMCameraControl_f inControlFunc, void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gIsControlled = 1;
    gControlDuration = inHowLong;
    gCurrentControlFunc = inControlFunc;
    gCurrentControlPlugin = TVPMGetDispatchedPlugin();
    gCameraControlRef = inRefcon;
}

TVPM_API void TVPMDontControlCamera(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gIsControlled = 0;
}

TVPM_API int TVPMIsCameraBeingControlled(TVPMCameraControlDuration* outCameraControlDuration) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (gIsControlled && outCameraControlDuration) *outCameraControlDuration = gControlDuration;
    return gIsControlled;
}

TVPM_API void TVPMReadCameraPosition(TVPMCameraPosition_t* outCameraPosition) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!outCameraPosition) return;
    TVPMCameraPosition_t& p = *outCameraPosition;
    gHooks->TVPMReadCameraPosition_f(&p.x, &p.y, &p.z, &p.pitch, &p.heading, &p.roll, &p.zoom);
}

int TVPMAdjustCamera(float* ioX, float* ioY, float* ioZ, float* ioPitch, float* ioHeading,
                     float* ioRoll, float* ioZoom) {
    if (!gIsControlled || !gCurrentControlFunc) return 1;
    float* const io[] = {ioX, ioY, ioZ, ioPitch, ioHeading, ioRoll, ioZoom};
    float values[7] = {};
    for (int i = 0; i < 7; ++i) values[i] = io[i] ? *io[i] : 0.0f;
    TVPMCameraPosition_t position{values[0], values[1], values[2], values[3],
                                  values[4], values[5], values[6]};
    const TVPMPluginID controller = gCurrentControlPlugin;
    const TVPMCameraControl_f func = gCurrentControlFunc;
    void* const refcon = gCameraControlRef;
    int keep = 0;  // a controller that throws gives the camera back
    const TVPMCalled called = TVPMCallPlugin(controller, TVPMCallSite::kCamera,
                                             [&] { keep = func(&position, 0, refcon); });
    if (called == TVPMCalled::kNo) {  // gone or disabled: it loses control silently
        gIsControlled = 0;
        gCurrentControlPlugin = TVPM_NO_PLUGIN_ID;
        return 1;
    }
    // The callback may have given the camera away or taken it anew (disabled
    // itself, another controller): then this answer no longer counts.
    if (!gIsControlled || gCurrentControlPlugin != controller || gCurrentControlFunc != func ||
        gCameraControlRef != refcon)
        return 1;
    if (!keep) {
        gIsControlled = 0;
        return 1;
    }
    const float out[] = {position.x, position.y, position.z, position.pitch,
                         position.heading, position.roll, position.zoom};
    for (int i = 0; i < 7; ++i)
        if (io[i]) *io[i] = out[i];
    return 1 - keep;
}

void TVPMReleaseCamera() {
    if (gIsControlled && gControlDuration == tvpm_ControlCameraUntilViewChanges) LoseControl();
}

void TVPMCameraDisableHook(TVPMPluginID id) { ReleaseIfControlledBy(id); }

void TVPMCameraCleanupHook(TVPMPluginID id) { ReleaseIfControlledBy(id); }
