// TVPMDisplayAvionicsHooks.cpp: the simulator's avionics drawing and input hooks, routed to the customisations and devices that serve the device.
#include "TVPMDisplayAvionicsPrivate.h"
#include "TVPMDisplayPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

using Callbacks = plugin_glass_callbacks_t;

// A customisation serves its built-in device number; a created device serves
// only its own display (created devices all carry number -1).
bool Serves(const TVPMAvionicsRecord& r, int device, void* display) {
    if (r.IsCreatedDevice()) return r.data.glass_display && r.data.glass_display == display;
    return r.data.device_id == device;
}

// True when an enabled owner's record serves the device with that callback.
template <class Cb>
bool AnyServes(int device, void* display, Cb Callbacks::*callback) {
    for (TVPMWalk<TVPMAvionicsRecord> walk(gAvionics); TVPMAvionicsRecord* r = walk.Next();)
        if (r->callbacks.*callback && Serves(*r, device, display) &&
            TVPMDisplayPluginEnabled(r->plugin))
            return true;
    return false;
}

// Calls fn(callback, refcon) for each record serving the device with that
// callback, newest first, inside its owner's context, until fn returns true.
// The callback and refcon are read before the call: the record may be
// removed during it.
template <bool Timed, class Cb, class F>
void Offer(int device, void* display, Cb Callbacks::*callback, F&& fn) {
    for (TVPMWalk<TVPMAvionicsRecord> walk(gAvionics); TVPMAvionicsRecord* r = walk.Next();) {
        const Cb cb = r->callbacks.*callback;
        if (!cb || !Serves(*r, device, display)) continue;
        void* const refcon = r->data.refcon;
        bool done = false;
        auto call = [&] { done = fn(cb, refcon); };
        if (Timed)
            TVPMCallPluginTimed(r->plugin, TVPMCallSite::kAvionics, tvpm_cb_drawing_avionics, call);
        else
            TVPMCallPlugin(r->plugin, TVPMCallSite::kAvionics, call);
        if (done) return;
    }
}

constexpr bool kTimed = true, kUntimed = false;

// Mouse and scroll hooks answer 0 when a callback consumed the event, 1 when
// the simulator should handle it.
template <class Cb, class... A>
int OfferInput(int device, void* display, Cb Callbacks::*callback, A... args) {
    int answer = 1;
    Offer<kUntimed>(device, display, callback, [&](Cb cb, void* refcon) {
        if (!cb(args..., refcon)) return false;
        answer = 0;
        return true;
    });
    return answer;
}

TVPMCursorStatus OfferCursor(int device, void* display, TVPMAvionicsCursor_f Callbacks::*callback,
                             int x, int y) {
    TVPMCursorStatus answer = tvpm_CursorDefault;
    Offer<kUntimed>(device, display, callback, [&](TVPMAvionicsCursor_f cb, void* refcon) {
        answer = cb(x, y, refcon);
        return answer != tvpm_CursorDefault;
    });
    return answer;
}

// A customisation's before or after callback; a created device draws its
// screen in the before pass.
TVPMAvionicsCallback_f Callbacks::*ScreenCallback(int before) {
    return before ? &Callbacks::draw_pre : &Callbacks::draw_post;
}

}  // namespace

int TVPMDisplayBezelClickHook(int device, int x, int y, TVPMMouseStatus status, void* display) {
    return OfferInput(device, display, &Callbacks::click_bezel, x, y, status);
}
int TVPMDisplayBezelRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                   void* display) {
    return OfferInput(device, display, &Callbacks::right_click_bezel, x, y, status);
}
int TVPMDisplayScreenClickHook(int device, int x, int y, TVPMMouseStatus status, void* display) {
    return OfferInput(device, display, &Callbacks::touch_screen, x, y, status);
}
int TVPMDisplayScreenRightClickHook(int device, int x, int y, TVPMMouseStatus status,
                                    void* display) {
    return OfferInput(device, display, &Callbacks::right_touch_screen, x, y, status);
}
int TVPMDisplayBezelScrollHook(int device, int x, int y, int wheel, int clicks, void* display) {
    return OfferInput(device, display, &Callbacks::scroll_bezel, x, y, wheel, clicks);
}
int TVPMDisplayScreenScrollHook(int device, int x, int y, int wheel, int clicks, void* display) {
    return OfferInput(device, display, &Callbacks::scroll_screen, x, y, wheel, clicks);
}
int TVPMDisplayBezelCursorHook(int device, int x, int y, void* display) {
    return OfferCursor(device, display, &Callbacks::cursor_bezel, x, y);
}
int TVPMDisplayScreenCursorHook(int device, int x, int y, void* display) {
    return OfferCursor(device, display, &Callbacks::cursor_screen, x, y);
}

void TVPMDisplayDoAvionicsKeyHook(int device, char key, TVPMKeyFlags flags, char vkey, int losing,
                                  void* display) {
    Offer<kUntimed>(device, display, &Callbacks::keyboard,
                    [&](TVPMAvionicsKeyboard_f cb, void* refcon) {
                        return cb(key, flags, vkey, refcon, losing) != 0;
                    });
}

int TVPMDisplayNeedsAvionicsBrightnessHook(int device, void* display) {
    return AnyServes(device, display, &Callbacks::brightness) ? 1 : 0;
}

// Without a brightness callback the rheostat stands.
float TVPMDisplayDoAvionicsBrightnessHook(int device, float rheo, float cell, float bus,
                                          void* display) {
    float answer = rheo;
    Offer<kUntimed>(device, display, &Callbacks::brightness,
                    [&](TVPMAvionicsBrightness_f cb, void* refcon) {
                        answer = cb(rheo, cell, bus, refcon);
                        return true;
                    });
    return answer;
}

int TVPMDisplayNeedsAvionicsBezelHook(int device, void* display) {
    return AnyServes(device, display, &Callbacks::draw_bezel) ? 1 : 0;
}

void TVPMDisplayDoAvionicsBezelHook(int device, void* display, float* tint) {
    const float r = tint ? tint[0] : 0.0f, g = tint ? tint[1] : 0.0f, b = tint ? tint[2] : 0.0f;
    Offer<kTimed>(device, display, &Callbacks::draw_bezel,
                  [&](TVPMAvionicsBezelCallback_f cb, void* refcon) {
                      cb(r, g, b, refcon);
                      return false;
                  });
}

int TVPMDisplayNeedsAvionicsScreenHook(int device, void* display, int before) {
    if (before && AnyServes(device, display, &Callbacks::draw_screen)) return 1;
    return AnyServes(device, display, ScreenCallback(before)) ? 1 : 0;
}

// Before: the AND of the before callbacks (0 suppresses the simulator's
// screen). After: always 1, nothing is left to suppress.
int TVPMDisplayDoAvionicsScreenHook(int device, void* display, int before) {
    int answer = 1;
    if (before)
        Offer<kTimed>(device, display, &Callbacks::draw_screen,
                      [](TVPMAvionicsScreenCallback_f cb, void* refcon) {
                          cb(refcon);
                          return false;
                      });
    Offer<kTimed>(device, display, ScreenCallback(before),
                  [&](TVPMAvionicsCallback_f cb, void* refcon) {
                      answer &= cb(device, before, refcon);
                      return false;
                  });
    return before ? answer : 1;
}
