// TVPMDisplayDraw.cpp: draw callbacks and the drawing hooks the simulator calls at each hook point of its frame.
#include "TVPMDisplayPrivate.h"
#include "TVPMUnitHooks.h"
#include "UTL_timing.h"

// Never destroyed: records still listed at exit erase themselves from it.
TVPMRecordIndex<TVPMDrawCallbackRecord>& TVPMDrawCallbackKeys() {
    static auto* keys = new TVPMRecordIndex<TVPMDrawCallbackRecord>;
    return *keys;
}
TVPMResourceList<TVPMDrawCallbackRecord> gDrawCallbacks;

TVPM_FAMILY_RECORD_COUNT("draw callbacks",
                         [](TVPMPluginID id) { return gDrawCallbacks.CountOwnedBy(id); });

namespace {

constexpr int kReflectionPass = 1;
constexpr TVPMDrawingHookKind kWindowAfterKind = 21;

struct DrawingHookCallSpec {
    TVPMDrawingPhase phase;
    int doBefore;
    int doAfter;
    int forceReturn1;
};

// Indexed by hook kind; an after kind cannot suppress what is already drawn,
// so its answer is forced to 1.
constexpr DrawingHookCallSpec kHookKinds[] = {
    {0, 0, 0, 0},  // 0: not a kind
    {tvpm_Phase_FirstScene, 1, 1, 0},
    {tvpm_Phase_Terrain, 1, 0, 0},
    {tvpm_Phase_Terrain, 0, 1, 1},
    {tvpm_Phase_Airports, 1, 0, 0},
    {tvpm_Phase_Airports, 0, 1, 1},
    {tvpm_Phase_Vectors, 1, 0, 0},
    {tvpm_Phase_Vectors, 0, 1, 1},
    {tvpm_Phase_Objects, 1, 0, 0},
    {tvpm_Phase_Objects, 0, 1, 1},
    {tvpm_Phase_Airplanes, 1, 0, 0},
    {tvpm_Phase_Airplanes, 0, 1, 1},
    {tvpm_Phase_LastScene, 1, 1, 1},
    {tvpm_Phase_Modern3D, 1, 1, 1},
    {tvpm_Phase_FirstCockpit, 1, 1, 0},
    {tvpm_Phase_Panel, 1, 0, 0},
    {tvpm_Phase_Panel, 0, 1, 1},
    {tvpm_Phase_Gauges, 1, 0, 0},
    {tvpm_Phase_Gauges, 0, 1, 1},
    {tvpm_Phase_LastCockpit, 1, 1, 1},
    {tvpm_Phase_Window, 1, 0, 0},
    {tvpm_Phase_Window, 0, 1, 1},
    {tvpm_Phase_LocalMap2D, 1, 0, 0},
    {tvpm_Phase_LocalMap2D, 0, 1, 1},
    {tvpm_Phase_LocalMap3D, 1, 0, 0},
    {tvpm_Phase_LocalMap3D, 0, 1, 1},
    {tvpm_Phase_LocalMapProfile, 1, 0, 0},
    {tvpm_Phase_LocalMapProfile, 0, 1, 1},
};
constexpr int kHookKindCount = static_cast<int>(sizeof(kHookKinds) / sizeof(kHookKinds[0]));

bool drawingHookKindToCallSpec(TVPMDrawingHookKind kind, DrawingHookCallSpec& callSpec) {
    if (kind < 1 || kind >= kHookKindCount) return false;
    callSpec = kHookKinds[kind];
    return true;
}

TVPMPluginCallbackType CategoryOfPhase(TVPMDrawingPhase phase) {
    if (phase == tvpm_Phase_Panel || phase == tvpm_Phase_Gauges) return tvpm_cb_drawing_panel_legacy;
    if (phase == tvpm_Phase_Window) return tvpm_cb_drawing_window_legacy;
    return tvpm_cb_drawing_misc;
}

bool SeesRenderType(TVPMPluginID plugin, int renderType) {
    return renderType != kReflectionPass ||
           TVPMHasFeatureInternal(plugin, kFeatureWantsReflections) != 0;
}

bool AnyCallbackNeeds(const DrawingHookCallSpec& callSpec, int renderType) {
    for (TVPMWalk<TVPMDrawCallbackRecord> walk(gDrawCallbacks); auto* r = walk.Next();) {
        if (r->phase != callSpec.phase) continue;
        if (r->preCallback != callSpec.doBefore && !(callSpec.doAfter && r->preCallback == 0)) continue;
        if (!SeesRenderType(r->plugin, renderType)) continue;
        if (TVPMPluginIsEnabled(r->plugin)) return true;
    }
    return false;
}

bool AnyWindowNeedsDrawing() {
    TVPMReverseWalk<TVPMWindowCallbackRecord> walk(gWindows);
    while (TVPMWindow* w = walk.Next())
        if (w->visible && TVPMPluginIsEnabled(w->plugin)) return true;
    return false;
}

void DrawWindow(TVPMWindow* w) {
    if (!w->drawCallback) return;
    TVPMCallPluginTimed(w->plugin, TVPMCallSite::kWindow, tvpm_cb_drawing_window,
                        [&] { w->drawCallback(w, w->refcon); });
}

// Back-most first, so that front windows are drawn last. With a fixed window
// the simulator is drawing that one window into its own surface.
void DrawWindows(void* inFixedWindow) {
    for (TVPMWindowWalk walk(TVPMWindowWalk::kBackToFront); TVPMWindow* w = walk.Next();) {
        if (!w->visible) continue;
        if (inFixedWindow ? w != inFixedWindow : w->isGuiBacked != 0) continue;
        DrawWindow(w);
    }
}

int DoWindowAfterHook(int renderType, void* inFixedWindow) {
    TVPMDisplayMouseDragHook(inFixedWindow);
    DrawWindows(inFixedWindow);
    if (!inFixedWindow) TVPMDispatchDrawingHook(tvpm_Phase_Window, 0, renderType);
    return 1;
}

}  // namespace

int TVPMDispatchDrawingHook(TVPMDrawingPhase inPhase, int isBefore, int render_type) {
    int result = 1;
    const TVPMPluginCallbackType category = CategoryOfPhase(inPhase);
    for (TVPMWalk<TVPMDrawCallbackRecord> walk(gDrawCallbacks); auto* r = walk.Next();) {
        if (r->phase != inPhase || r->preCallback != isBefore) continue;
        if (!SeesRenderType(r->plugin, render_type)) continue;
        // A bitwise AND: a callback answering 2 suppresses the phase like 0.
        TVPMCallPluginTimed(r->plugin, TVPMCallSite::kDraw, category,
                            [&] { result &= r->callback(inPhase, isBefore, r->refcon); });
    }
    return result;
}

int TVPMDisplayNeedsDrawingHook(TVPMDrawingHookKind inKind, int inRenderType) {
    TVPM_CHECK_THREAD();
    DrawingHookCallSpec callSpec;
    if (!drawingHookKindToCallSpec(inKind, callSpec)) return 0;
    if (AnyCallbackNeeds(callSpec, inRenderType)) return 1;
    return inKind == kWindowAfterKind && AnyWindowNeedsDrawing() ? 1 : 0;
}

int TVPMDisplayDoDrawingHook(TVPMDrawingHookKind inKind, int inRenderType, void* inFixedWindow) {
    TVPM_CHECK_THREAD();
    DrawingHookCallSpec callSpec;
    if (!drawingHookKindToCallSpec(inKind, callSpec)) return 1;
    const int result = callSpec.doBefore ? TVPMDispatchDrawingHook(callSpec.phase, 1, inRenderType) : 1;
    if (inKind == kWindowAfterKind) return DoWindowAfterHook(inRenderType, inFixedWindow);
    if (callSpec.doAfter && !inFixedWindow) TVPMDispatchDrawingHook(callSpec.phase, 0, inRenderType);
    return callSpec.forceReturn1 ? 1 : result;
}

// ---- Registration -------------------------------------------------------------------

TVPM_API int TVPMRegisterDrawCallback(TVPMDrawCallback_f inCallback, TVPMDrawingPhase inPhase,
                                      int inWantsBefore, void* inRefcon) {
    TVPM_CHECK_THREAD();
    if (!inCallback) return 0;
    // Held over the scan and the insertion; the scan also sees records removed
    // during a walk, which count as registered until the walk ends.
    TVPMWalk<TVPMDrawCallbackRecord, TVPMVisit::kLiveAndRemoved> walk(gDrawCallbacks);
    if (TVPMDrawCallbackKeys().Any(TVPMCallbackKey(inCallback, inPhase, inWantsBefore, inRefcon),
                                   [](const TVPMDrawCallbackRecord*) { return true; }))
        return 0;
    gDrawCallbacks.Add(
        new TVPMDrawCallbackRecord(inCallback, gDispatchedPlugin, inPhase, inWantsBefore, inRefcon));
    return 1;
}

TVPM_API int TVPMUnregisterDrawCallback(TVPMDrawCallback_f inCallback, TVPMDrawingPhase inPhase,
                                        int inWantsBefore, void* inRefcon) {
    TVPM_CHECK_THREAD();
    TVPMDrawCallbackRecord* found = nullptr;
    for (TVPMWalk<TVPMDrawCallbackRecord> walk(gDrawCallbacks); auto* r = walk.Next();) {
        if (r->callback == inCallback && r->phase == inPhase && r->preCallback == inWantsBefore &&
            r->refcon == inRefcon) {
            found = r;
            break;
        }
    }
    if (!found) return 0;
    gDrawCallbacks.Remove(found);
    return 1;
}
