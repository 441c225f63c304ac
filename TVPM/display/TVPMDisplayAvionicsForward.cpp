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
    int ltrb[4] = {0, 0, 0, 0};
    if (!TVPMFindAvionics(id) || !(gHooks->*Slot)) return;
    Forward<Slot>(id, ltrb);
    if (left) *left = ltrb[0];
    if (top) *top = ltrb[1];
    if (right) *right = ltrb[2];
    if (bottom) *bottom = ltrb[3];
}

template <auto Slot>
void SetBounds(TVPMAvionicsID id, int left, int top, int right, int bottom) {
    int ltrb[4] = {left, top, right, bottom};
    Forward<Slot>(id, ltrb);
}

}  // namespace

// X(return type, exported name, slot, (parameters), (arguments)); the handle
// comes first in both lists.
#define TVPM_AVIONICS_FORWARDERS(X)                                                           \
    X(int, TVPMIsAvionicsBound, TVPMIsAvionicsBound_f, (TVPMAvionicsID h), (h))                \
    X(void, TVPMSetAvionicsBrightnessRheo, TVPMSetAvionicsBrightness_f,                       \
      (TVPMAvionicsID h, float brightness), (h, brightness))                                  \
    X(float, TVPMGetAvionicsBrightnessRheo, TVPMGetAvionicsBrightness_f, (TVPMAvionicsID h),   \
      (h))                                                                                    \
    X(float, TVPMGetAvionicsBusVoltsRatio, TVPMGetAvionicsBusVolts_f, (TVPMAvionicsID h), (h)) \
    X(void, TVPMSetAvionicsPopupVisible, TVPMSetAvionicsPopupVisible_f,                       \
      (TVPMAvionicsID h, int visible), (h, visible))                                          \
    X(int, TVPMIsAvionicsPopupVisible, TVPMIsAvionicsPopupVisible_f, (TVPMAvionicsID h), (h))  \
    X(void, TVPMPopOutAvionics, TVPMPopOutAvionics_f, (TVPMAvionicsID h), (h))                 \
    X(int, TVPMIsAvionicsPoppedOut, TVPMIsAvionicsPoppedOut_f, (TVPMAvionicsID h), (h))        \
    X(int, TVPMIsCursorOverAvionics, TVPMIsMouseOverAvionics_f,                               \
      (TVPMAvionicsID h, int* outX, int* outY), (h, outX, outY))                              \
    X(void, TVPMAvionicsNeedsDrawing, TVPMAvionicsNeedsDrawing_f, (TVPMAvionicsID h), (h))     \
    X(void, TVPMTakeAvionicsKeyboardFocus, TVPMTakeAvionicsKeyboardFocus_f, (TVPMAvionicsID h), \
      (h))                                                                                    \
    X(int, TVPMHasAvionicsKeyboardFocus, TVPMHasAvionicsKeyboardFocus_f, (TVPMAvionicsID h),   \
      (h))

#define TVPM_AVIONICS_FORWARDER(ret, name, slot, params, args) \
    TVPM_API ret name params {                                 \
        TVPM_CHECK_THREAD_IF_DIAGNOSING();                     \
        return Forward<&TVPMHooks::slot> args;                 \
    }
TVPM_AVIONICS_FORWARDERS(TVPM_AVIONICS_FORWARDER)
#undef TVPM_AVIONICS_FORWARDER

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
