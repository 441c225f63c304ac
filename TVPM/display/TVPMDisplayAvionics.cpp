// TVPMDisplayAvionics.cpp: avionics customisations and created devices: their records, registration, destruction and clean-up.
#include <cstring>
#include <memory>

#include "TVPMDisplayAvionicsPrivate.h"
#include "TVPMUnitHooks.h"

TVPMResourceList<TVPMAvionicsRecord> gAvionics;

namespace {

// Handles from TVPMGetAvionicsHandle that name a device the plugin did not
// customise; kept apart so that they never serve a hook, and freed with
// their plugin.
TVPMRecordSet<TVPMAvionicsRecord> s_handleOnly;

constexpr size_t kDeviceIdBytes = sizeof(plugin_glass_data_t::device_id_str);

bool SameData(const plugin_glass_data_t& a, const plugin_glass_data_t& b) {
    return a.width == b.width && a.height == b.height &&
           std::memcmp(a.device_id_str, b.device_id_str, kDeviceIdBytes) == 0 &&
           a.glass_display == b.glass_display && a.device_id == b.device_id &&
           a.plugin == b.plugin && a.refcon == b.refcon;
}

static_assert(sizeof(plugin_glass_callbacks_t) == 14 * sizeof(void*),
              "callbacks are plain pointers without padding");

TVPMAvionicsRecord* FindEqual(TVPMResourceList<TVPMAvionicsRecord>& list,
                              const TVPMAvionicsRecord& wanted) {
    for (TVPMWalk<TVPMAvionicsRecord> walk(list); TVPMAvionicsRecord* r = walk.Next();)
        if (*r == wanted) return r;
    return nullptr;
}

TVPMAvionicsRecord* FindEqual(TVPMRecordSet<TVPMAvionicsRecord>& set,
                              const TVPMAvionicsRecord& wanted) {
    for (TVPMSetWalk<TVPMAvionicsRecord> walk(set); TVPMAvionicsRecord* r = walk.Next();)
        if (*r == wanted) return r;
    return nullptr;
}

// Both parameter structures name their input callbacks alike.
template <class Params>
void CopyInputCallbacks(const Params& p, plugin_glass_callbacks_t& c) {
    c.click_bezel = p.bezelClickCallback;
    c.right_click_bezel = p.bezelRightClickCallback;
    c.scroll_bezel = p.bezelScrollCallback;
    c.cursor_bezel = p.bezelCursorCallback;
    c.touch_screen = p.screenTouchCallback;
    c.right_touch_screen = p.screenRightTouchCallback;
    c.scroll_screen = p.screenScrollCallback;
    c.cursor_screen = p.screenCursorCallback;
    c.keyboard = p.keyboardCallback;
}

// The short form holds only its first 32 bytes; its refcon sits where the
// full form has bezelClickCallback.
bool ReadCustomization(const TVPMCustomizeAvionics_t* in, TVPMAvionicsRecord& r) {
    TVPMCustomizeAvionics_t p{};
    if (in->structSize == TVPM_CUSTOMIZE_AVIONICS_SIZE) {
        p = *in;
    } else if (in->structSize == TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE) {
        std::memcpy(&p, in, TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE - sizeof(void*));
        std::memcpy(&p.refcon, reinterpret_cast<const char*>(in) + offsetof(TVPMCustomizeAvionics_t, bezelClickCallback),
                    sizeof p.refcon);
    } else {
        return false;
    }
    r.data.device_id = p.deviceId;
    r.data.plugin = gDispatchedPlugin;
    r.data.refcon = p.refcon;
    plugin_glass_callbacks_t& c = r.callbacks;
    c.draw_pre = p.drawCallbackBefore;
    c.draw_post = p.drawCallbackAfter;
    CopyInputCallbacks(p, c);
    return true;
}

void ReadCreation(const TVPMCreateAvionics_t& p, TVPMAvionicsRecord& r) {
    r.data.width = p.screenWidth;
    r.data.height = p.screenHeight;
    if (p.deviceID) std::strncpy(r.data.device_id_str, p.deviceID, kDeviceIdBytes - 1);
    r.data.device_id = -1;
    r.data.plugin = gDispatchedPlugin;
    r.data.refcon = p.refcon;
    plugin_glass_callbacks_t& c = r.callbacks;
    c.draw_screen = p.drawCallback;
    c.draw_bezel = p.bezelDrawCallback;
    CopyInputCallbacks(p, c);
    c.brightness = p.brightnessCallback;
}

void DestroyHostDisplay(const TVPMAvionicsRecord& r) {
    if (r.data.glass_display && gHooks->TVPMDestroyAvionics_f)
        gHooks->TVPMDestroyAvionics_f(r.data.glass_display);
}

// Ignores anything but a live record of gAvionics.
void DestroyRecord(TVPMAvionicsID id) {
    if (!gAvionics.Contains(id)) return;
    auto* r = static_cast<TVPMAvionicsRecord*>(id);
    DestroyHostDisplay(*r);
    // The simulator may have called back into the library meanwhile.
    if (gAvionics.Contains(r)) gAvionics.Remove(r);
}

}  // namespace

TVPM_FAMILY_RECORD_COUNT("avionics records", [](TVPMPluginID id) { return gAvionics.CountOwnedBy(id); });
TVPM_FAMILY_RECORD_COUNT("avionics handles", [](TVPMPluginID id) { return s_handleOnly.CountOwnedBy(id); });

bool TVPMAvionicsRecord::operator==(const TVPMAvionicsRecord& other) const {
    return SameData(data, other.data) &&
           std::memcmp(&callbacks, &other.callbacks, sizeof callbacks) == 0;
}

const TVPMAvionicsRecord* TVPMFindAvionics(TVPMAvionicsID id) {
    if (gAvionics.Contains(id) || s_handleOnly.Contains(id))
        return static_cast<const TVPMAvionicsRecord*>(id);
    return nullptr;
}

void TVPMDisplayAvionicsCleanupHook(TVPMPluginID id) {
    gAvionics.RemoveOwnedBy(id, [](TVPMAvionicsRecord* r) { DestroyHostDisplay(*r); });
    s_handleOnly.RemoveOwnedBy(id);
}

// ---- Registration --------------------------------------------------------------------

TVPM_API TVPMAvionicsID TVPMRegisterAvionicsCallbacksEx(TVPMCustomizeAvionics_t* inParams) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inParams) return nullptr;
    auto r = std::make_unique<TVPMAvionicsRecord>();
    if (!ReadCustomization(inParams, *r) || FindEqual(gAvionics, *r)) return nullptr;
    gAvionics.Add(r.get());
    return r.release();
}

// A created device goes from the simulator too, so that none outlives its record.
TVPM_API void TVPMUnregisterAvionicsCallbacks(TVPMAvionicsID inAvionicsId) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    DestroyRecord(inAvionicsId);
}

TVPM_API TVPMAvionicsID TVPMGetAvionicsHandle(TVPMDeviceID inDeviceID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    auto r = std::make_unique<TVPMAvionicsRecord>();
    r->data.device_id = inDeviceID;
    r->data.plugin = gDispatchedPlugin;
    if (TVPMAvionicsRecord* found = FindEqual(gAvionics, *r)) return found;
    if (TVPMAvionicsRecord* found = FindEqual(s_handleOnly, *r)) return found;
    return s_handleOnly.Add(r.release());
}

TVPM_API TVPMAvionicsID TVPMCreateAvionicsEx(TVPMCreateAvionics_t* inParams) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inParams || inParams->structSize != TVPM_CREATE_AVIONICS_SIZE) return nullptr;
    auto r = std::make_unique<TVPMAvionicsRecord>();
    ReadCreation(*inParams, *r);
    if (FindEqual(gAvionics, *r)) return nullptr;
    if (gHooks->TVPMCreateAvionics_f) r->data.glass_display = gHooks->TVPMCreateAvionics_f(inParams);
    gAvionics.Add(r.get());
    return r.release();
}

TVPM_API void TVPMDestroyAvionics(TVPMAvionicsID inHandle) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    DestroyRecord(inHandle);
}
