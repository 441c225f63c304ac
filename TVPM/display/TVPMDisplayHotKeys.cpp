// TVPMDisplayHotKeys.cpp: hot keys: key combinations bound to plugin callbacks, listed and rebound globally.
#include "TVPMDLLUtils.h"
#include "TVPMDisplayPrivate.h"

TVPMResourceList<TVPMHotKeyInfoRecord> gHotKeys;

TVPM_FAMILY_RECORD_COUNT("hot keys", [](TVPMPluginID id) { return gHotKeys.CountOwnedBy(id); });

namespace {

constexpr int kDescriptionBufferSize = 512;

TVPMHotKeyInfoRecord* FindHotKey(TVPMHotKeyID id) {
    return gHotKeys.Contains(id) ? static_cast<TVPMHotKeyInfoRecord*>(id) : nullptr;
}

}  // namespace

// Newest first; only one hot key fires per key event.
bool TVPMDisplayFireHotKey(TVPMKeyFlags flags, char virtualCode) {
    for (TVPMWalk<TVPMHotKeyInfoRecord> walk(gHotKeys); auto* r = walk.Next();) {
        if (r->vkey != virtualCode || r->flags != flags) continue;
        const auto callback = r->callback;
        const auto refcon = r->refcon;
        const TVPMCalled called = TVPMCallPlugin(r->plugin, TVPMCallSite::kHotKey, [&] {
            if (callback) callback(refcon);
        });
        if (called != TVPMCalled::kNo) return true;
    }
    return false;
}

TVPM_API TVPMHotKeyID TVPMRegisterHotKey(char inVirtualKey, TVPMKeyFlags inFlags,
                                         const char* inDescription, TVPMHotKey_f inCallback,
                                         void* inRefcon) {
    TVPM_CHECK_THREAD();
    auto* r = new TVPMHotKeyInfoRecord(gDispatchedPlugin, inVirtualKey, inFlags, inDescription,
                                       inCallback, inRefcon);
    gHotKeys.Add(r);
    return r;
}

TVPM_API void TVPMUnregisterHotKey(TVPMHotKeyID inHotKey) {
    TVPM_CHECK_THREAD();
    if (TVPMHotKeyInfoRecord* r = FindHotKey(inHotKey)) gHotKeys.Remove(r);
}

TVPM_API int TVPMCountHotKeys(void) {
    TVPM_CHECK_THREAD();
    int count = 0;
    for (TVPMWalk<TVPMHotKeyInfoRecord> walk(gHotKeys); walk.Next();) ++count;
    return count;
}

TVPM_API TVPMHotKeyID TVPMGetNthHotKey(int inIndex) {
    TVPM_CHECK_THREAD();
    if (inIndex < 0) return nullptr;
    for (TVPMWalk<TVPMHotKeyInfoRecord> walk(gHotKeys); auto* r = walk.Next();)
        if (inIndex-- == 0) return r;
    return nullptr;
}

TVPM_API void TVPMGetHotKeyInfo(TVPMHotKeyID inHotKey, char* outVirtualKey,
                                TVPMKeyFlags* outFlags, char* outDescription,
                                TVPMPluginID* outPlugin) {
    TVPM_CHECK_THREAD();
    const TVPMHotKeyInfoRecord* r = FindHotKey(inHotKey);
    if (!r) return;
    if (outVirtualKey) *outVirtualKey = r->vkey;
    if (outFlags) *outFlags = r->flags;
    if (outDescription) strcpytrunc(outDescription, r->description, kDescriptionBufferSize);
    if (outPlugin) *outPlugin = r->plugin;
}

TVPM_API void TVPMSetHotKeyCombination(TVPMHotKeyID inHotKey, char inVirtualKey,
                                       TVPMKeyFlags inFlags) {
    TVPM_CHECK_THREAD();
    if (TVPMHotKeyInfoRecord* r = FindHotKey(inHotKey)) {
        r->vkey = inVirtualKey;
        r->flags = inFlags;
    }
}
