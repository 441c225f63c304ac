// TVPMDataAccessTyped.cpp: the twelve typed reads and writes, each a guarded forward to one accessor of the item's owner.
#include <type_traits>

#include "TVPMDataAccessPrivate.h"

namespace {

inline TVPMData_t* Record(TVPMDataRef ref) { return static_cast<TVPMData_t*>(ref); }

// Hands call a function that runs the accessor and keeps its result; the
// neutral value stands when call does not run it or it throws.
template <class R, class Call, class Accessor, class... Args>
inline R Forward(Call call, Accessor accessor, void* refcon, Args... args) {
    if constexpr (std::is_void_v<R>) {
        call([&] { accessor(refcon, args...); });
    } else {
        R result = R();
        call([&] { result = accessor(refcon, args...); });
        return result;
    }
}

// The accessor through the call helper's guard: a throw is logged once per
// plugin.
template <class R, class Accessor, class... Args>
inline R CallGuarded(TVPMPluginID owner, Accessor accessor, void* refcon, Args... args) {
    auto guard = [owner](auto&& fn) { TVPMGuardPluginCall(owner, TVPMCallSite::kDataAccessor, fn); };
    return Forward<R>(guard, accessor, refcon, args...);
}

// The general path, for an owner that is disabled, gone or the simulator
// before start-up: the call helper decides.
template <class R, class Accessor, class... Args>
__attribute__((noinline, cold)) R CallThroughHelper(TVPMPluginID owner, Accessor accessor,
                                                    void* refcon, Args... args) {
    auto helper = [owner](auto&& fn) { TVPMCallPlugin(owner, TVPMCallSite::kDataAccessor, fn); };
    return Forward<R>(helper, accessor, refcon, args...);
}

// What the dispatch scope keeps, in one frame: the chain link must live in
// memory anyway, and keeping the saved plugins beside it costs fewer stores
// than holding them in callee-saved registers.
struct OwnerFrame {
    TVPMCodeOnStack link;
    TVPMPluginID dispatched, client;
};

// What the dispatch scope does for an enabled owner, written out: this is the
// one path hot enough for the difference to show.
inline void EnterOwner(TVPMPluginID owner, OwnerFrame& frame) {
    frame.dispatched = gDispatchedPlugin;
    frame.client = gClientPlugin;
    frame.link.below = gCodeOnStack;
    gCodeOnStack = &frame.link;
    gClientPlugin = frame.dispatched;
    gDispatchedPlugin = owner;
}

inline void LeaveOwner(const OwnerFrame& frame) {
    if (__builtin_expect(gPendingWeatherUpdate != -1, 0)) TVPMReportUnclosedWeatherUpdate();
    gDispatchedPlugin = frame.dispatched;
    gClientPlugin = frame.client;
    gCodeOnStack = frame.link.below;
}

// Calls one accessor with the owner as the current plugin. No lookup, lock or
// allocation: this runs for every item a plugin reads every frame. A disabled
// or departed owner (-1) is not called and the result is 0.
template <class R, class Accessor, class... Args>
inline R CallOwner(TVPMPluginID owner, Accessor accessor, void* refcon, Args... args) {
    const PluginRecord* r = TVPMGetPluginRecord(owner);
    if (__builtin_expect(!r || !r->enabled, 0))
        return CallThroughHelper<R>(owner, accessor, refcon, args...);
    OwnerFrame frame;
    frame.link.library = r->dllRef;
    EnterOwner(owner, frame);
    if constexpr (std::is_void_v<R>) {
        CallGuarded<R>(owner, accessor, refcon, args...);
        LeaveOwner(frame);
    } else {
        const R result = CallGuarded<R>(owner, accessor, refcon, args...);
        LeaveOwner(frame);
        return result;
    }
}

template <class R, class Accessor, class... Args>
inline R Read(TVPMDataRef ref, Accessor TVPMAccessors::*slot, Args... args) {
    const TVPMData_t* d = Record(ref);
    if (!d || !(d->*slot)) return R();
    return CallOwner<R>(d->plugin, d->*slot, d->readRef, args...);
}

template <class Accessor, class... Args>
inline void Write(TVPMDataRef ref, Accessor TVPMAccessors::*slot, Args... args) {
    const TVPMData_t* d = Record(ref);
    if (!d || !d->writable || !(d->*slot)) return;
    CallOwner<void>(d->plugin, d->*slot, d->writeRef, args...);
}

}  // namespace

TVPM_API int TVPMGetDatai(TVPMDataRef inDataRef) {
    return Read<int>(inDataRef, &TVPMData_t::readInt);
}
TVPM_API void TVPMSetDatai(TVPMDataRef inDataRef, int inValue) {
    Write(inDataRef, &TVPMData_t::writeInt, inValue);
}
TVPM_API float TVPMGetDataf(TVPMDataRef inDataRef) {
    return Read<float>(inDataRef, &TVPMData_t::readFloat);
}
TVPM_API void TVPMSetDataf(TVPMDataRef inDataRef, float inValue) {
    Write(inDataRef, &TVPMData_t::writeFloat, inValue);
}
TVPM_API double TVPMGetDatad(TVPMDataRef inDataRef) {
    return Read<double>(inDataRef, &TVPMData_t::readDouble);
}
TVPM_API void TVPMSetDatad(TVPMDataRef inDataRef, double inValue) {
    Write(inDataRef, &TVPMData_t::writeDouble, inValue);
}
TVPM_API int TVPMGetDatavi(TVPMDataRef inDataRef, int* outValues, int inOffset, int inMax) {
    return Read<int>(inDataRef, &TVPMData_t::readIntArray, outValues, inOffset, inMax);
}
TVPM_API void TVPMSetDatavi(TVPMDataRef inDataRef, int* inValues, int inOffset, int inCount) {
    Write(inDataRef, &TVPMData_t::writeIntArray, inValues, inOffset, inCount);
}
TVPM_API int TVPMGetDatavf(TVPMDataRef inDataRef, float* outValues, int inOffset, int inMax) {
    return Read<int>(inDataRef, &TVPMData_t::readFloatArray, outValues, inOffset, inMax);
}
TVPM_API void TVPMSetDatavf(TVPMDataRef inDataRef, float* inValues, int inOffset, int inCount) {
    Write(inDataRef, &TVPMData_t::writeFloatArray, inValues, inOffset, inCount);
}
TVPM_API int TVPMGetDatab(TVPMDataRef inDataRef, void* outValue, int inOffset, int inMaxLength) {
    return Read<int>(inDataRef, &TVPMData_t::readData, outValue, inOffset, inMaxLength);
}
TVPM_API void TVPMSetDatab(TVPMDataRef inDataRef, void* inValue, int inOffset, int inLength) {
    Write(inDataRef, &TVPMData_t::writeData, inValue, inOffset, inLength);
}
