// unit_host_hooks.cpp: each of the simulator's forwarding hooks reaches its unit with its arguments and hands back the unit's answer.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "../TVPM/TVPMHostHooks.cpp"

namespace {

std::string s_last;

void Put(std::ostringstream&) {}
template <class T, class... Rest>
void Put(std::ostringstream& out, T first, Rest... rest) {
    if constexpr (std::is_same_v<T, char>)
        out << ' ' << static_cast<int>(first);
    else
        out << ' ' << first;
    Put(out, rest...);
}
template <class... A>
void Rec(const char* name, A... args) {
    std::ostringstream out;
    out << name;
    Put(out, args...);
    s_last = out.str();
}

void* const W = reinterpret_cast<void*>(0x77);
float s_tint[3];
float s_bounds[4];
TVPMMapProjectionID const P = reinterpret_cast<TVPMMapProjectionID>(0x88);

}  // namespace

// ---- recording units ------------------------------------------------------------------

int TVPMDisplayNeedsDrawingHook(TVPMDrawingHookKind k, int r) {
    Rec("NeedsDrawing", k, r);
    return 11;
}
int TVPMDisplayDoDrawingHook(TVPMDrawingHookKind k, int r, void* w) {
    Rec("DoDrawing", k, r, w);
    return 12;
}
int TVPMDisplayMouseClickHook(int x, int y, TVPMMouseStatus s, int b, void* w) {
    Rec("MouseClick", x, y, s, b, w);
    return 13;
}
int TVPMDisplayKeyPressHook(char c, TVPMKeyFlags f, char v, int p, void* w) {
    Rec("KeyPress", c, f, v, p, w);
    return 14;
}
TVPMCursorStatus TVPMDisplayCursorHook(int x, int y, void* w) {
    Rec("Cursor", x, y, w);
    return 15;
}
int TVPMDisplayScrollWheelHook(int x, int y, int wh, int c, void* w) {
    Rec("Scroll", x, y, wh, c, w);
    return 16;
}
int TVPMDisplayBezelClickHook(int d, int x, int y, TVPMMouseStatus s, void* w) {
    Rec("BezelClick", d, x, y, s, w);
    return 21;
}
int TVPMDisplayBezelRightClickHook(int d, int x, int y, TVPMMouseStatus s, void* w) {
    Rec("BezelRightClick", d, x, y, s, w);
    return 22;
}
int TVPMDisplayScreenClickHook(int d, int x, int y, TVPMMouseStatus s, void* w) {
    Rec("ScreenClick", d, x, y, s, w);
    return 23;
}
int TVPMDisplayScreenRightClickHook(int d, int x, int y, TVPMMouseStatus s, void* w) {
    Rec("ScreenRightClick", d, x, y, s, w);
    return 24;
}
int TVPMDisplayBezelScrollHook(int d, int x, int y, int wh, int c, void* w) {
    Rec("BezelScroll", d, x, y, wh, c, w);
    return 25;
}
int TVPMDisplayScreenScrollHook(int d, int x, int y, int wh, int c, void* w) {
    Rec("ScreenScroll", d, x, y, wh, c, w);
    return 26;
}
int TVPMDisplayBezelCursorHook(int d, int x, int y, void* w) {
    Rec("BezelCursor", d, x, y, w);
    return 27;
}
int TVPMDisplayScreenCursorHook(int d, int x, int y, void* w) {
    Rec("ScreenCursor", d, x, y, w);
    return 28;
}
int TVPMDisplayNeedsAvionicsBrightnessHook(int d, void* w) {
    Rec("NeedsBrightness", d, w);
    return 29;
}
float TVPMDisplayDoAvionicsBrightnessHook(int d, float r, float c, float b, void* w) {
    Rec("DoBrightness", d, r, c, b, w);
    return 0.5f;
}
int TVPMDisplayNeedsAvionicsBezelHook(int d, void* w) {
    Rec("NeedsBezel", d, w);
    return 30;
}
void TVPMDisplayDoAvionicsBezelHook(int d, void* w, float* t) { Rec("DoBezel", d, w, t); }
int TVPMDisplayNeedsAvionicsScreenHook(int d, void* w, int b) {
    Rec("NeedsScreen", d, w, b);
    return 31;
}
int TVPMDisplayDoAvionicsScreenHook(int d, void* w, int b) {
    Rec("DoScreen", d, w, b);
    return 32;
}
void TVPMDisplayDoAvionicsKeyHook(int d, char k, TVPMKeyFlags f, char v, int l, void* w) {
    Rec("AvionicsKey", d, k, f, v, l, w);
}
int TVPMMapNeedsLayerDrawingHooks() {
    Rec("MapNeeds");
    return 41;
}
void TVPMMapDoLayerDrawingHook(void* h, const float* b, float z, float u, TVPMMapStyle s,
                               TVPMMapProjectionID p) {
    Rec("MapDraw", h, b, z, u, s, p);
}
void TVPMMapHandleCreation(const char* id) { Rec("MapCreated", id); }
void TVPMMapDoLayerWillBeDeletedHook(void* h) { Rec("MapLayerDeleted", h); }
void TVPMMapDoLayerPrepareCacheHook(void* h, const float* b, TVPMMapProjectionID p) {
    Rec("MapCache", h, b, p);
}
int TVPMAdjustCamera(float* x, float*, float*, float*, float*, float*, float* zoom) {
    Rec("Camera", x, zoom);
    return 51;
}
int TVPMHandleMenuItemPick(int code) {
    Rec("MenuPick", code);
    return 61;
}
int TVPMHandleMenuItemCheck(intptr_t m, int i, int* out) {
    Rec("MenuCheck", m, i, out);
    return 62;
}
int TVPMHandleMenuItemEnable(intptr_t m, int i) {
    Rec("MenuEnable", m, i);
    return 63;
}
void TVPMHandleUpdatePlaneNameAndPath(int i, char* n, char* p) {
    Rec("PlaneName", i, static_cast<void*>(n), static_cast<void*>(p));
}
int TVPMHandleGetNumberPlanesToHandle(int n, int l) {
    Rec("PlanesToHandle", n, l);
    return 71;
}
int TVPMDispatchCommandHook(void* c, int d, int u, int b) {
    Rec("Command", c, d, u, b);
    return 81;
}
void StCallbackTimer::get_plugin_timings(tvpm_plugin_time_callback* cb) {
    Rec("Timings", reinterpret_cast<void*>(cb));
}

namespace {
void TimingSink(uint64_t, const TVPMPluginID*, const TVPMPluginCallbackType*, const double*) {}

std::string Expect(const char* name, std::initializer_list<std::string> args) {
    std::string s = name;
    for (const std::string& a : args) s += " " + a;
    return s;
}
std::string Ptr(const void* p) {
    std::ostringstream out;
    out << p;
    return out.str();
}
}  // namespace

TEST(HostHooks, MouseClickTurnsAnyDownFlagIntoMouseDownAndZeroIntoMouseUp) {
    EXPECT_EQ(TVPMMouseClickHook(10, 20, 5, 1, W), 13);
    EXPECT_EQ(s_last, Expect("MouseClick", {"10", "20", "1", "1", Ptr(W)}));
    TVPMMouseClickHook(10, 20, -1, 0, W);
    EXPECT_EQ(s_last, Expect("MouseClick", {"10", "20", "1", "0", Ptr(W)}));
    TVPMMouseClickHook(10, 20, 0, 0, nullptr);
    EXPECT_EQ(s_last, Expect("MouseClick", {"10", "20", "3", "0", Ptr(nullptr)}));
}

TEST(HostHooks, DrawingAndInputHooksForwardUnchanged) {
    EXPECT_EQ(TVPMNeedsDrawingHook(4, 2), 11);
    EXPECT_EQ(s_last, "NeedsDrawing 4 2");
    EXPECT_EQ(TVPMDoDrawingHook(5, 1, W), 12);
    EXPECT_EQ(s_last, Expect("DoDrawing", {"5", "1", Ptr(W)}));
    EXPECT_EQ(TVPMKeyPressHook('a', 3, 'A', 2, W), 14);
    EXPECT_EQ(s_last, Expect("KeyPress", {"97", "3", "65", "2", Ptr(W)}));
    EXPECT_EQ(TVPMCursorHook(1, 2, W), 15);
    EXPECT_EQ(s_last, Expect("Cursor", {"1", "2", Ptr(W)}));
    EXPECT_EQ(TVPMScrollWheelHook(1, 2, 1, -3, W), 16);
    EXPECT_EQ(s_last, Expect("Scroll", {"1", "2", "1", "-3", Ptr(W)}));
}

TEST(HostHooks, AvionicsHooksForwardUnchanged) {
    EXPECT_EQ(TVPMDoAvionicsBezelClickHook(1, 2, 3, 2, W), 21);
    EXPECT_EQ(s_last, Expect("BezelClick", {"1", "2", "3", "2", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBezelRightClickHook(1, 2, 3, 3, W), 22);
    EXPECT_EQ(s_last, Expect("BezelRightClick", {"1", "2", "3", "3", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenClickHook(4, 5, 6, 1, W), 23);
    EXPECT_EQ(s_last, Expect("ScreenClick", {"4", "5", "6", "1", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenRightClickHook(4, 5, 6, 2, W), 24);
    EXPECT_EQ(s_last, Expect("ScreenRightClick", {"4", "5", "6", "2", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBezelScrollHook(1, 2, 3, 0, 4, W), 25);
    EXPECT_EQ(s_last, Expect("BezelScroll", {"1", "2", "3", "0", "4", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenScrollHook(1, 2, 3, 1, -4, W), 26);
    EXPECT_EQ(s_last, Expect("ScreenScroll", {"1", "2", "3", "1", "-4", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBezelCursorHook(7, 8, 9, W), 27);
    EXPECT_EQ(s_last, Expect("BezelCursor", {"7", "8", "9", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenCursorHook(7, 8, 9, W), 28);
    EXPECT_EQ(s_last, Expect("ScreenCursor", {"7", "8", "9", Ptr(W)}));
    EXPECT_EQ(TVPMNeedsAvionicsBrightnessHook(3, W), 29);
    EXPECT_EQ(s_last, Expect("NeedsBrightness", {"3", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBrightnessHook(3, 0.25f, 0.75f, 28.5f, W), 0.5f);
    EXPECT_EQ(s_last, Expect("DoBrightness", {"3", "0.25", "0.75", "28.5", Ptr(W)}));
    EXPECT_EQ(TVPMNeedsAvionicsBezelHook(3, W), 30);
    EXPECT_EQ(s_last, Expect("NeedsBezel", {"3", Ptr(W)}));
    TVPMDoAvionicsBezelHook(3, W, s_tint);
    EXPECT_EQ(s_last, Expect("DoBezel", {"3", Ptr(W), Ptr(s_tint)}));
    EXPECT_EQ(TVPMNeedsAvionicsScreenHook(3, W, 1), 31);
    EXPECT_EQ(s_last, Expect("NeedsScreen", {"3", Ptr(W), "1"}));
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, W, 0), 32);
    EXPECT_EQ(s_last, Expect("DoScreen", {"3", Ptr(W), "0"}));
    TVPMDoAvionicsKeyHook(3, 'k', 1, 'K', 1, W);
    EXPECT_EQ(s_last, Expect("AvionicsKey", {"3", "107", "1", "75", "1", Ptr(W)}));
}

TEST(HostHooks, MapCameraMenuPlaneCommandAndTimingHooksForwardUnchanged) {
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 41);
    EXPECT_EQ(s_last, "MapNeeds");
    TVPMDoMapLayerDrawingHook(W, s_bounds, 2.0f, 0.5f, 1, P);
    EXPECT_EQ(s_last, Expect("MapDraw", {Ptr(W), Ptr(s_bounds), "2", "0.5", "1", Ptr(P)}));
    TVPMMapCreated("Main Map");
    EXPECT_EQ(s_last, "MapCreated Main Map");
    TVPMMapLayerWillBeDeleted(W);
    EXPECT_EQ(s_last, Expect("MapLayerDeleted", {Ptr(W)}));
    TVPMDoMapLayerPrepareCacheHook(W, s_bounds, P);
    EXPECT_EQ(s_last, Expect("MapCache", {Ptr(W), Ptr(s_bounds), Ptr(P)}));
    float v[7];
    EXPECT_EQ(TVPMCameraHook(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]), 51);
    EXPECT_EQ(s_last, Expect("Camera", {Ptr(&v[0]), Ptr(&v[6])}));
    EXPECT_EQ(TVPMMenuHook(1234), 61);
    EXPECT_EQ(s_last, "MenuPick 1234");
    int check = 0;
    EXPECT_EQ(TVPMCheckMenuHook(99, 3, &check), 62);
    EXPECT_EQ(s_last, Expect("MenuCheck", {"99", "3", Ptr(&check)}));
    EXPECT_EQ(TVPMMenuItemEnabled(98, 2), 63);
    EXPECT_EQ(s_last, "MenuEnable 98 2");
    char name[256], path[256];
    TVPMUpdatePlaneNameAndPath(4, name, path);
    EXPECT_EQ(s_last, Expect("PlaneName", {"4", Ptr(name), Ptr(path)}));
    EXPECT_EQ(TVPMGetNumberPlanesToHandle(6, 1), 71);
    EXPECT_EQ(s_last, "PlanesToHandle 6 1");
    EXPECT_EQ(TVPMCommandHook(W, 1, 0, 1), 81);
    EXPECT_EQ(s_last, Expect("Command", {Ptr(W), "1", "0", "1"}));
    TVPMGetPluginCallbackTimings(TimingSink);
    EXPECT_EQ(s_last, Expect("Timings", {Ptr(reinterpret_cast<void*>(TimingSink))}));
}
