// FakeHost.h: a recording stand-in for the simulator: all 164 hook slots record their calls, and any slot can be overridden.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "TVPMHost.h"

namespace tvpmtest {

struct HostCall {
    std::string slot;
    std::vector<std::string> args;  // each argument as text: numbers, "null", 0x.., "\"text\""
};

class FakeHost {
public:
    FakeHost();
    ~FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    // The one live fake host of this process.
    static FakeHost& Current();

    TVPMHooks hooks{};
    // What TVPMGetSystemPath_f answers; Start() sets it to the simulator folder.
    std::string systemPath;
    // What TVPMGetPlaneName_f answers for aircraft 0 (the aircraft's file path).
    std::string userAircraftPath;

    // TVPMInitializePlugins with this table; root must end with "/".
    int Start(const std::string& root);
    void Shutdown();
    // One frame's worth of events: 0 then 10 (flight loops before and after).
    void RunFrame(float elapsed = 1.0f / 60.0f);

    // Replaces the slot's behaviour (the call is still recorded). Slot is a
    // member pointer, e.g. On<&TVPMHooks::TVPMGetLanguage_f>([] { return 3; }).
    template <auto Slot, class F>
    void On(F f);

    const std::vector<HostCall>& Calls() const { return calls_; }
    std::vector<HostCall> CallsTo(const std::string& slot) const;
    size_t Count(const std::string& slot) const;
    // Slot names in call order, optionally only those in the filter list.
    std::vector<std::string> SlotSequence(const std::vector<std::string>& only = {}) const;
    // Everything written through TVPMDebugString_f, concatenated.
    std::string Log() const;
    void ClearCalls() { calls_.clear(); }

    void Record(const char* slot, std::vector<std::string> args);

private:
    std::vector<HostCall> calls_;
};

// ---- argument formatting ----------------------------------------------------

std::string FormatArg(const char* s);
std::string FormatArg(char* s);  // an output buffer: where, not what
std::string FormatArg(const void* p);
template <class T, class = std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>>>
std::string FormatArg(T v) {
    if constexpr (std::is_same_v<T, bool>) {
        return v ? "true" : "false";
    } else if constexpr (std::is_floating_point_v<T>) {
        char text[64];
        snprintf(text, sizeof text, "%g", static_cast<double>(v));
        return text;
    } else if constexpr (std::is_enum_v<T>) {
        return std::to_string(static_cast<long long>(v));
    } else {
        return std::to_string(+v);  // + makes a char its number
    }
}
template <class T>
std::string FormatArg(T* p) {
    return FormatArg(static_cast<const void*>(p));
}
template <class R, class... A>
std::string FormatArg(R (*p)(A...)) {
    return FormatArg(reinterpret_cast<const void*>(p));
}

// ---- one recording function per slot ----------------------------------------

template <auto Slot, class Ptr>
struct SlotImpl;

template <auto Slot, class R, class... A>
struct SlotImpl<Slot, R (*)(A...)> {
    static inline std::function<R(A...)> override;
    static inline const char* name = "";
    static R Call(A... a) {
        FakeHost::Current().Record(name, {FormatArg(a)...});
        if (override) return override(a...);
        if constexpr (!std::is_void_v<R>) return R{};
    }
};

template <auto Slot>
using SlotOf = SlotImpl<Slot, std::remove_reference_t<decltype(std::declval<TVPMHooks&>().*Slot)>>;

template <auto Slot, class F>
void FakeHost::On(F f) {
    SlotOf<Slot>::override = std::move(f);
}

}  // namespace tvpmtest
