// TVPMDisplayAvionicsForward.cpp: device queries and settings, passed to the simulator with the device's number and display.
#include <type_traits>

#include "TVPMDisplayAvionicsPrivate.h"

namespace {

template <class>
struct SlotResult;
template <class R, class... A>
struct SlotResult<R (*)(A...)> {
    using type = R;
};

// Calls the slot with the device's number and display first; a null or
// unknown handle, or a slot the simulator lacks, answers 0.
template <auto Slot, class... A>
auto Forward(TVPMAvionicsID id, A... args) {
    using R = typename SlotResult<std::remove_reference_t<decltype(gHooks->*Slot)>>::type;
    const TVPMAvionicsRecord* r = TVPMFindAvionics(id);
    if (!r || !(gHooks->*Slot)) return R();
    return (gHooks->*Slot)(r->data.device_id, r->data.glass_display, args...);
}

// Bounds travel as {left, top, right, bottom}.
template <auto Slot>
void GetBounds(TVPMAvionicsID id, int* left, int* top, int* right, int* bottom) {
    int lbrt[4] = {0, 0, 0, 0};
    if (!TVPMFindAvionics(id) || !(gHooks->*Slot)) return;
    Forward<Slot>(id, lbrt);
    if (left) *left = lbrt[0];
    if (top) *top = lbrt[1];
    if (right) *right = lbrt[2];
    if (bottom) *bottom = lbrt[3];
}

template <auto Slot>
void SetBounds(TVPMAvionicsID id, int left, int top, int right, int bottom) {
    int lbrt[4] = {left, top, right, bottom};
    Forward<Slot>(id, lbrt);
}

}  // namespace

TVPM_API int TVPMIsAvionicsBound(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMIsAvionicsBound_f>(inHandle);
}
TVPM_API void TVPMSetAvionicsBrightnessRheo(TVPMAvionicsID inHandle, float brightness) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    Forward<&TVPMHooks::TVPMSetAvionicsBrightness_f>(inHandle, brightness);
}
TVPM_API float TVPMGetAvionicsBrightnessRheo(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMGetAvionicsBrightness_f>(inHandle);
}
TVPM_API float TVPMGetAvionicsBusVoltsRatio(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMGetAvionicsBusVolts_f>(inHandle);
}
TVPM_API void TVPMSetAvionicsPopupVisible(TVPMAvionicsID inHandle, int inVisible) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    Forward<&TVPMHooks::TVPMSetAvionicsPopupVisible_f>(inHandle, inVisible);
}
TVPM_API int TVPMIsAvionicsPopupVisible(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMIsAvionicsPopupVisible_f>(inHandle);
}
TVPM_API void TVPMPopOutAvionics(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    Forward<&TVPMHooks::TVPMPopOutAvionics_f>(inHandle);
}
TVPM_API int TVPMIsAvionicsPoppedOut(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMIsAvionicsPoppedOut_f>(inHandle);
}
TVPM_API int TVPMIsCursorOverAvionics(TVPMAvionicsID inHandle, int* outX, int* outY) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMIsMouseOverAvionics_f>(inHandle, outX, outY);
}
TVPM_API void TVPMAvionicsNeedsDrawing(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    Forward<&TVPMHooks::TVPMAvionicsNeedsDrawing_f>(inHandle);
}
TVPM_API void TVPMTakeAvionicsKeyboardFocus(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    Forward<&TVPMHooks::TVPMTakeAvionicsKeyboardFocus_f>(inHandle);
}
TVPM_API int TVPMHasAvionicsKeyboardFocus(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return Forward<&TVPMHooks::TVPMHasAvionicsKeyboardFocus_f>(inHandle);
}
TVPM_API void TVPMGetAvionicsGeometry(TVPMAvionicsID inHandle, int* outLeft, int* outTop,
                                      int* outRight, int* outBottom) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    GetBounds<&TVPMHooks::TVPMGetAvionicsWindowBounds_f>(inHandle, outLeft, outTop, outRight,
                                                         outBottom);
}
TVPM_API void TVPMSetAvionicsGeometry(TVPMAvionicsID inHandle, int inLeft, int inTop, int inRight,
                                      int inBottom) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    SetBounds<&TVPMHooks::TVPMSetAvionicsWindowBounds_f>(inHandle, inLeft, inTop, inRight,
                                                         inBottom);
}
TVPM_API void TVPMGetAvionicsGeometryOS(TVPMAvionicsID inHandle, int* outLeft, int* outTop,
                                        int* outRight, int* outBottom) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    GetBounds<&TVPMHooks::TVPMGetAvionicsWindowBoundsOS_f>(inHandle, outLeft, outTop, outRight,
                                                           outBottom);
}
TVPM_API void TVPMSetAvionicsGeometryOS(TVPMAvionicsID inHandle, int inLeft, int inTop,
                                        int inRight, int inBottom) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    SetBounds<&TVPMHooks::TVPMSetAvionicsWindowBoundsOS_f>(inHandle, inLeft, inTop, inRight,
                                                           inBottom);
}
