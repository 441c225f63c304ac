// SimAvionics.cpp: the simulator's avionics devices: its built-in screens and the devices plugins create, drawn each frame and given input.
#include <dlfcn.h>

#include <string>
#include <vector>

#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

// The simulator's built-in devices, by device number.
const char* const kBuiltInDevices[] = {"primary flight display", "multi-function display",
                                       "navigator 1", "navigator 2"};
constexpr int kBuiltInCount = sizeof kBuiltInDevices / sizeof kBuiltInDevices[0];
constexpr int kCreatedDeviceNumber = -1;
constexpr long kInputEveryFrames = 30;
float s_cockpitTint[3] = {0.9f, 0.85f, 0.8f};

struct Device {
    int number;
    void* display;  // null for built-in devices
};

struct Focus {
    int number = kCreatedDeviceNumber - 1;  // no device
    void* display = nullptr;
    bool Is(int n, void* d) const { return number == n && display == d; }
} s_focus;

// The library's avionics hooks, resolved once; null when it has none.
struct AvionicsHooks {
    decltype(&TVPMNeedsAvionicsBezelHook) needsBezel = nullptr;
    decltype(&TVPMDoAvionicsBezelHook) doBezel = nullptr;
    decltype(&TVPMNeedsAvionicsScreenHook) needsScreen = nullptr;
    decltype(&TVPMDoAvionicsScreenHook) doScreen = nullptr;
    decltype(&TVPMNeedsAvionicsBrightnessHook) needsBrightness = nullptr;
    decltype(&TVPMDoAvionicsBrightnessHook) doBrightness = nullptr;
    decltype(&TVPMDoAvionicsScreenClickHook) screenClick = nullptr;
    decltype(&TVPMDoAvionicsBezelScrollHook) bezelScroll = nullptr;
    decltype(&TVPMDoAvionicsScreenCursorHook) screenCursor = nullptr;
    decltype(&TVPMDoAvionicsKeyHook) key = nullptr;
    bool resolved = false;
    bool complete = false;
};

template <class F>
void Resolve(F& fn, const char* name, bool& complete) {
    fn = reinterpret_cast<F>(dlsym(Api().handle, name));
    complete = complete && fn;
}

const AvionicsHooks& Hooks() {
    static AvionicsHooks h;
    if (h.resolved || !Api().handle) return h;
    h.resolved = h.complete = true;
    Resolve(h.needsBezel, "TVPMNeedsAvionicsBezelHook", h.complete);
    Resolve(h.doBezel, "TVPMDoAvionicsBezelHook", h.complete);
    Resolve(h.needsScreen, "TVPMNeedsAvionicsScreenHook", h.complete);
    Resolve(h.doScreen, "TVPMDoAvionicsScreenHook", h.complete);
    Resolve(h.needsBrightness, "TVPMNeedsAvionicsBrightnessHook", h.complete);
    Resolve(h.doBrightness, "TVPMDoAvionicsBrightnessHook", h.complete);
    Resolve(h.screenClick, "TVPMDoAvionicsScreenClickHook", h.complete);
    Resolve(h.bezelScroll, "TVPMDoAvionicsBezelScrollHook", h.complete);
    Resolve(h.screenCursor, "TVPMDoAvionicsScreenCursorHook", h.complete);
    Resolve(h.key, "TVPMDoAvionicsKeyHook", h.complete);
    return h;
}

std::vector<Device> AllDevices() {
    std::vector<Device> out;
    for (int n = 0; n < kBuiltInCount; ++n) out.push_back({n, nullptr});
    for (auto& [display, r] : World().avionics)
        if (r.alive) out.push_back({kCreatedDeviceNumber, display});
    return out;
}

// Bezel, then the plugins' before-screen pass (which may suppress the
// simulator's own screen), then the after-screen pass.
void Draw(const AvionicsHooks& h, const Device& d) {
    if (h.needsBezel(d.number, d.display)) h.doBezel(d.number, d.display, s_cockpitTint);
    if (h.needsScreen(d.number, d.display, 1)) h.doScreen(d.number, d.display, 1);
    if (h.needsScreen(d.number, d.display, 0)) h.doScreen(d.number, d.display, 0);
    if (h.needsBrightness(d.number, d.display)) h.doBrightness(d.number, 1.0f, 0.5f, 1.0f, d.display);
}

// The pilot taps the middle of the screen, turns a knob on the bezel, moves
// the mouse over the screen and, when the device has the keyboard, types.
void Touch(const AvionicsHooks& h, const Device& d) {
    h.screenCursor(d.number, 10, 10, d.display);
    if (h.screenClick(d.number, 10, 10, tvpm_MouseDown, d.display) == 0)
        h.screenClick(d.number, 10, 10, tvpm_MouseUp, d.display);
    h.bezelScroll(d.number, 0, 0, 0, 1, d.display);
    if (s_focus.Is(d.number, d.display)) h.key(d.number, '1', 0, '1', 0, d.display);
}

void FillDeviceSlots(TVPMHooks& h) {
    h.TVPMCreateAvionics_f = [](const TVPMCreateAvionics_t* p) -> void* {
        void* display = World().NewToken();
        const char* name = p && p->deviceName ? p->deviceName : p && p->deviceID ? p->deviceID : "";
        World().avionics[display] = {"avionics device", name, CurrentPluginPath(), true};
        return display;
    };
    h.TVPMDestroyAvionics_f = [](void* display) {
        auto it = World().avionics.find(display);
        if (it == World().avionics.end() || !it->second.alive) return;
        World().Released("avionics device", it->second.name, it->second.owner);
        it->second.alive = false;
        if (s_focus.display == display) s_focus = Focus();
    };
    h.TVPMIsAvionicsBound_f = [](int n, void* display) {
        return display || (n >= 0 && n < kBuiltInCount) ? 1 : 0;
    };
    h.TVPMTakeAvionicsKeyboardFocus_f = [](int n, void* display) { s_focus = {n, display}; };
    h.TVPMHasAvionicsKeyboardFocus_f = [](int n, void* display) { return s_focus.Is(n, display) ? 1 : 0; };
}

void FillQuerySlots(TVPMHooks& h) {
    h.TVPMSetAvionicsBrightness_f = [](int, void*, float) {};
    h.TVPMGetAvionicsBrightness_f = [](int, void*) { return 1.0f; };
    h.TVPMGetAvionicsBusVolts_f = [](int, void*) { return 1.0f; };
    h.TVPMSetAvionicsPopupVisible_f = [](int, void*, int) {};
    h.TVPMIsAvionicsPopupVisible_f = [](int, void*) { return 0; };
    h.TVPMPopOutAvionics_f = [](int, void*) {};
    h.TVPMIsAvionicsPoppedOut_f = [](int, void*) { return 0; };
    h.TVPMIsMouseOverAvionics_f = [](int, void*, int*, int*) { return 0; };
    h.TVPMAvionicsNeedsDrawing_f = [](int, void*) {};
    auto noBounds = [](int, void*, int* lbrt) {
        if (lbrt) lbrt[0] = lbrt[1] = lbrt[2] = lbrt[3] = 0;
    };
    h.TVPMGetAvionicsWindowBounds_f = noBounds;
    h.TVPMSetAvionicsWindowBounds_f = [](int, void*, int*) {};
    h.TVPMGetAvionicsWindowBoundsOS_f = noBounds;
    h.TVPMSetAvionicsWindowBoundsOS_f = [](int, void*, int*) {};
}

}  // namespace

void FillAvionicsSlots(TVPMHooks& h) {
    FillDeviceSlots(h);
    FillQuerySlots(h);
}

void RunAvionicsFrame(long frame) {
    const AvionicsHooks& h = Hooks();
    if (!h.complete) return;
    for (const Device& d : AllDevices()) Draw(h, d);
    if (frame % kInputEveryFrames != 0) return;
    for (const Device& d : AllDevices()) Touch(h, d);
}

}  // namespace tvpmhost
