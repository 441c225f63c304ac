// TVPMDataAccessTyped.cpp: the twelve typed reads and writes, each a guarded forward to one accessor of the item's owner.
#include <type_traits>

#include "TVPMDataAccessPrivate.h"

namespace {

inline TVPMData_t* Record(TVPMDataRef ref) { return static_cast<TVPMData_t*>(ref); }

// What an accessor call yields here: writes count as returning 0.
template <class R>
using Yield = std::conditional_t<std::is_void_v<R>, int, R>;

template <class R, class Accessor, class... Args>
inline Yield<R> Invoke(Accessor accessor, void* refcon, Args... args) {
    if constexpr (std::is_void_v<R>) {
        accessor(refcon, args...);
        return 0;
    } else {
        return accessor(refcon, args...);
    }
}

// The general path, for an owner that is disabled, gone or the simulator
// before start-up: the call helper decides. Out of line and with its
// arguments in registers, so the hot path builds nothing for it.
template <class R, class Accessor, class... Args>
__attribute__((noinline, cold)) Yield<R> CallThroughHelper(TVPMPluginID owner, Accessor accessor,
                                                           void* refcon, Args... args) {
    Yield<R> result = Yield<R>();
    TVPMCallPlugin(owner, TVPMCallSite::kDataAccessor,
                   [&] { result = Invoke<R>(accessor, refcon, args...); });
    return result;
}

// Calls one accessor with the owner as the current plugin; the result stays 0
// when the owner may not be called (disabled or departed) or the accessor
// throws. No lookup, lock or allocation: this runs for every item a plugin
// reads every frame.
template <class R, class Accessor, class... Args>
inline Yield<R> CallOwner(const TVPMData_t* d, Accessor accessor, void* refcon, Args... args) {
    const PluginRecord& owner = *d->ownerPlace;
    if (__builtin_expect(!owner.enabled, 0))
        return CallThroughHelper<R>(d->plugin, accessor, refcon, args...);
    return TVPMCallEnabledPlugin<Yield<R>>(owner, d->plugin, TVPMCallSite::kDataAccessor,
                                           [&] { return Invoke<R>(accessor, refcon, args...); });
}

template <class R, class Accessor, class... Args>
inline R Read(TVPMDataRef ref, Accessor TVPMAccessors::*slot, Args... args) {
    const TVPMData_t* d = Record(ref);
    if (!d || !(d->*slot)) return R();
    return CallOwner<R>(d, d->*slot, d->readRef, args...);
}

template <class Accessor, class... Args>
inline void Write(TVPMDataRef ref, Accessor TVPMAccessors::*slot, Args... args) {
    const TVPMData_t* d = Record(ref);
    if (!d || !d->writable || !(d->*slot)) return;
    CallOwner<void>(d, d->*slot, d->writeRef, args...);
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
