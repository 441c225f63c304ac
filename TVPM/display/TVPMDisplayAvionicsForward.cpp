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

#define TVPM_ARGS(...) __VA_ARGS__

// One exported function per row: its result, name, host slot, and the
// parameters after the handle with the arguments they pass on.
#define TVPM_AVIONICS_FORWARDER(Result, Name, Slot, Params, Args) \
    TVPM_API Result Name(TVPMAvionicsID inHandle Params) {        \
        TVPM_CHECK_THREAD_IF_DIAGNOSING();                        \
        return Forward<&TVPMHooks::Slot>(inHandle Args);          \
    }
#define TVPM_NONE
TVPM_AVIONICS_FORWARDER(int, TVPMIsAvionicsBound, TVPMIsAvionicsBound_f, TVPM_NONE, TVPM_NONE)
TVPM_AVIONICS_FORWARDER(void, TVPMSetAvionicsBrightnessRheo, TVPMSetAvionicsBrightness_f,
                        TVPM_ARGS(, float brightness), TVPM_ARGS(, brightness))
TVPM_AVIONICS_FORWARDER(float, TVPMGetAvionicsBrightnessRheo, TVPMGetAvionicsBrightness_f,
                        TVPM_NONE, TVPM_NONE)
TVPM_AVIONICS_FORWARDER(float, TVPMGetAvionicsBusVoltsRatio, TVPMGetAvionicsBusVolts_f, TVPM_NONE,
                        TVPM_NONE)
TVPM_AVIONICS_FORWARDER(void, TVPMSetAvionicsPopupVisible, TVPMSetAvionicsPopupVisible_f,
                        TVPM_ARGS(, int inVisible), TVPM_ARGS(, inVisible))
TVPM_AVIONICS_FORWARDER(int, TVPMIsAvionicsPopupVisible, TVPMIsAvionicsPopupVisible_f, TVPM_NONE,
                        TVPM_NONE)
TVPM_AVIONICS_FORWARDER(void, TVPMPopOutAvionics, TVPMPopOutAvionics_f, TVPM_NONE, TVPM_NONE)
TVPM_AVIONICS_FORWARDER(int, TVPMIsAvionicsPoppedOut, TVPMIsAvionicsPoppedOut_f, TVPM_NONE,
                        TVPM_NONE)
TVPM_AVIONICS_FORWARDER(int, TVPMIsCursorOverAvionics, TVPMIsMouseOverAvionics_f,
                        TVPM_ARGS(, int* outX, int* outY), TVPM_ARGS(, outX, outY))
TVPM_AVIONICS_FORWARDER(void, TVPMAvionicsNeedsDrawing, TVPMAvionicsNeedsDrawing_f, TVPM_NONE,
                        TVPM_NONE)
TVPM_AVIONICS_FORWARDER(void, TVPMTakeAvionicsKeyboardFocus, TVPMTakeAvionicsKeyboardFocus_f,
                        TVPM_NONE, TVPM_NONE)
TVPM_AVIONICS_FORWARDER(int, TVPMHasAvionicsKeyboardFocus, TVPMHasAvionicsKeyboardFocus_f,
                        TVPM_NONE, TVPM_NONE)
#undef TVPM_NONE
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
#undef TVPM_ARGS
