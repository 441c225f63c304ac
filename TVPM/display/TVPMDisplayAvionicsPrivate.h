// TVPMDisplayAvionicsPrivate.h: the avionics record and the lists shared by the avionics units.
#pragma once

#include "TVPM/TVPMDisplay.h"
#include "TVPMPrivate.h"

struct plugin_glass_data_t {
    int width;                 // created devices; 0 for customisations
    int height;
    char device_id_str[64];    // created devices
    void* glass_display;       // the simulator's display of a created device
    int device_id;             // built-in device number; -1 for created devices
    TVPMPluginID plugin;
    void* refcon;
};

struct plugin_glass_callbacks_t {
    TVPMAvionicsCallback_f draw_pre;
    TVPMAvionicsCallback_f draw_post;
    TVPMAvionicsScreenCallback_f draw_screen;
    TVPMAvionicsBezelCallback_f draw_bezel;
    TVPMAvionicsMouse_f click_bezel;
    TVPMAvionicsMouse_f right_click_bezel;
    TVPMAvionicsMouseWheel_f scroll_bezel;
    TVPMAvionicsCursor_f cursor_bezel;
    TVPMAvionicsMouse_f touch_screen;
    TVPMAvionicsMouse_f right_touch_screen;
    TVPMAvionicsMouseWheel_f scroll_screen;
    TVPMAvionicsCursor_f cursor_screen;
    TVPMAvionicsKeyboard_f keyboard;
    TVPMAvionicsBrightness_f brightness;
};

// Its address is the TVPMAvionicsID.
struct TVPMAvionicsRecord : TVPMResource_t<TVPMAvionicsRecord> {
    TVPMAvionicsRecord() = default;
    TVPMAvionicsRecord(const TVPMAvionicsRecord&) = delete;
    TVPMAvionicsRecord& operator=(const TVPMAvionicsRecord&) = delete;

    bool IsCreatedDevice() const { return data.device_id < 0; }
    // Every field of both parts, the whole identifier included.
    bool operator==(const TVPMAvionicsRecord& other) const;

    plugin_glass_data_t data{};
    plugin_glass_callbacks_t callbacks{};
    // The owner under the name every family's records use.
    const TVPMPluginID& plugin = data.plugin;
};

// Customisations and created devices, newest first.
extern TVPMResourceList<TVPMAvionicsRecord> gAvionics;

// The live record behind a handle: one of gAvionics or a handle-only record
// from TVPMGetAvionicsHandle; null for anything else.
const TVPMAvionicsRecord* TVPMFindAvionics(TVPMAvionicsID id);
