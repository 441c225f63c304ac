// unit_host_hooks.cpp: each of the simulator's forwarding hooks reaches its unit with its arguments and hands back the unit's answer.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"
#include "UTL_timing.h"

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

// ---- recording units: each records its name and arguments and gives a fixed answer ----

#define RECORDING_UNIT(R, name, answer, params, ...) \
    R name params {                                   \
        Rec(#name, ##__VA_ARGS__);                    \
        return answer;                                \
    }
RECORDING_UNIT(int, TVPMDisplayNeedsDrawingHook, 11, (TVPMDrawingHookKind k, int r), k, r)
RECORDING_UNIT(int, TVPMDisplayDoDrawingHook, 12, (TVPMDrawingHookKind k, int r, void* w), k, r, w)
RECORDING_UNIT(int, TVPMDisplayMouseClickHook, 13, (int x, int y, TVPMMouseStatus s, int b, void* w),
               x, y, s, b, w)
RECORDING_UNIT(int, TVPMDisplayKeyPressHook, 14, (char c, TVPMKeyFlags f, char v, int p, void* w),
               c, f, v, p, w)
RECORDING_UNIT(TVPMCursorStatus, TVPMDisplayCursorHook, 15, (int x, int y, void* w), x, y, w)
RECORDING_UNIT(int, TVPMDisplayScrollWheelHook, 16, (int x, int y, int wh, int c, void* w), x, y, wh,
               c, w)
RECORDING_UNIT(int, TVPMDisplayBezelClickHook, 21, (int d, int x, int y, TVPMMouseStatus s, void* w),
               d, x, y, s, w)
RECORDING_UNIT(int, TVPMDisplayBezelRightClickHook, 22,
               (int d, int x, int y, TVPMMouseStatus s, void* w), d, x, y, s, w)
RECORDING_UNIT(int, TVPMDisplayScreenClickHook, 23,
               (int d, int x, int y, TVPMMouseStatus s, void* w), d, x, y, s, w)
RECORDING_UNIT(int, TVPMDisplayScreenRightClickHook, 24,
               (int d, int x, int y, TVPMMouseStatus s, void* w), d, x, y, s, w)
RECORDING_UNIT(int, TVPMDisplayBezelScrollHook, 25, (int d, int x, int y, int wh, int c, void* w), d,
               x, y, wh, c, w)
RECORDING_UNIT(int, TVPMDisplayScreenScrollHook, 26, (int d, int x, int y, int wh, int c, void* w),
               d, x, y, wh, c, w)
RECORDING_UNIT(int, TVPMDisplayBezelCursorHook, 27, (int d, int x, int y, void* w), d, x, y, w)
RECORDING_UNIT(int, TVPMDisplayScreenCursorHook, 28, (int d, int x, int y, void* w), d, x, y, w)
RECORDING_UNIT(int, TVPMDisplayNeedsAvionicsBrightnessHook, 29, (int d, void* w), d, w)
RECORDING_UNIT(float, TVPMDisplayDoAvionicsBrightnessHook, 0.5f,
               (int d, float r, float c, float b, void* w), d, r, c, b, w)
RECORDING_UNIT(int, TVPMDisplayNeedsAvionicsBezelHook, 30, (int d, void* w), d, w)
RECORDING_UNIT(void, TVPMDisplayDoAvionicsBezelHook, void(), (int d, void* w, float* t), d, w, t)
RECORDING_UNIT(int, TVPMDisplayNeedsAvionicsScreenHook, 31, (int d, void* w, int b), d, w, b)
RECORDING_UNIT(int, TVPMDisplayDoAvionicsScreenHook, 32, (int d, void* w, int b), d, w, b)
RECORDING_UNIT(void, TVPMDisplayDoAvionicsKeyHook, void(),
               (int d, char k, TVPMKeyFlags f, char v, int l, void* w), d, k, f, v, l, w)
RECORDING_UNIT(int, TVPMMapNeedsLayerDrawingHooks, 41, ())
RECORDING_UNIT(void, TVPMMapDoLayerDrawingHook, void(),
               (void* h, const float* b, float z, float u, TVPMMapStyle s, TVPMMapProjectionID p), h,
               b, z, u, s, p)
RECORDING_UNIT(void, TVPMMapHandleCreation, void(), (const char* id), id)
RECORDING_UNIT(void, TVPMMapDoLayerWillBeDeletedHook, void(), (void* h), h)
RECORDING_UNIT(void, TVPMMapDoLayerPrepareCacheHook, void(),
               (void* h, const float* b, TVPMMapProjectionID p), h, b, p)
RECORDING_UNIT(int, TVPMAdjustCamera, 51,
               (float* x, float*, float*, float*, float*, float*, float* zoom), x, zoom)
RECORDING_UNIT(int, TVPMHandleMenuItemPick, 61, (int code), code)
RECORDING_UNIT(int, TVPMHandleMenuItemCheck, 62, (intptr_t m, int i, int* out), m, i, out)
RECORDING_UNIT(int, TVPMHandleMenuItemEnable, 63, (intptr_t m, int i), m, i)
RECORDING_UNIT(void, TVPMHandleUpdatePlaneNameAndPath, void(), (int i, char* n, char* p), i,
               static_cast<void*>(n), static_cast<void*>(p))
RECORDING_UNIT(int, TVPMHandleGetNumberPlanesToHandle, 71, (int n, int l), n, l)
RECORDING_UNIT(int, TVPMDispatchCommandHook, 81, (void* c, int d, int u, int b), c, d, u, b)
RECORDING_UNIT(void, StCallbackTimer::get_plugin_timings, void(), (tvpm_plugin_time_callback* cb),
               reinterpret_cast<void*>(cb))
#undef RECORDING_UNIT

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
    EXPECT_EQ(s_last, Expect("TVPMDisplayMouseClickHook", {"10", "20", "1", "1", Ptr(W)}));
    TVPMMouseClickHook(10, 20, -1, 0, W);
    EXPECT_EQ(s_last, Expect("TVPMDisplayMouseClickHook", {"10", "20", "1", "0", Ptr(W)}));
    TVPMMouseClickHook(10, 20, 0, 0, nullptr);
    EXPECT_EQ(s_last, Expect("TVPMDisplayMouseClickHook", {"10", "20", "3", "0", Ptr(nullptr)}));
}

TEST(HostHooks, DrawingAndInputHooksForwardUnchanged) {
    EXPECT_EQ(TVPMNeedsDrawingHook(4, 2), 11);
    EXPECT_EQ(s_last, "TVPMDisplayNeedsDrawingHook 4 2");
    EXPECT_EQ(TVPMDoDrawingHook(5, 1, W), 12);
    EXPECT_EQ(s_last, Expect("TVPMDisplayDoDrawingHook", {"5", "1", Ptr(W)}));
    EXPECT_EQ(TVPMKeyPressHook('a', 3, 'A', 2, W), 14);
    EXPECT_EQ(s_last, Expect("TVPMDisplayKeyPressHook", {"97", "3", "65", "2", Ptr(W)}));
    EXPECT_EQ(TVPMCursorHook(1, 2, W), 15);
    EXPECT_EQ(s_last, Expect("TVPMDisplayCursorHook", {"1", "2", Ptr(W)}));
    EXPECT_EQ(TVPMScrollWheelHook(1, 2, 1, -3, W), 16);
    EXPECT_EQ(s_last, Expect("TVPMDisplayScrollWheelHook", {"1", "2", "1", "-3", Ptr(W)}));
}

TEST(HostHooks, AvionicsHooksForwardUnchanged) {
    EXPECT_EQ(TVPMDoAvionicsBezelClickHook(1, 2, 3, 2, W), 21);
    EXPECT_EQ(s_last, Expect("TVPMDisplayBezelClickHook", {"1", "2", "3", "2", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBezelRightClickHook(1, 2, 3, 3, W), 22);
    EXPECT_EQ(s_last, Expect("TVPMDisplayBezelRightClickHook", {"1", "2", "3", "3", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenClickHook(4, 5, 6, 1, W), 23);
    EXPECT_EQ(s_last, Expect("TVPMDisplayScreenClickHook", {"4", "5", "6", "1", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenRightClickHook(4, 5, 6, 2, W), 24);
    EXPECT_EQ(s_last, Expect("TVPMDisplayScreenRightClickHook", {"4", "5", "6", "2", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBezelScrollHook(1, 2, 3, 0, 4, W), 25);
    EXPECT_EQ(s_last, Expect("TVPMDisplayBezelScrollHook", {"1", "2", "3", "0", "4", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenScrollHook(1, 2, 3, 1, -4, W), 26);
    EXPECT_EQ(s_last, Expect("TVPMDisplayScreenScrollHook", {"1", "2", "3", "1", "-4", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBezelCursorHook(7, 8, 9, W), 27);
    EXPECT_EQ(s_last, Expect("TVPMDisplayBezelCursorHook", {"7", "8", "9", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsScreenCursorHook(7, 8, 9, W), 28);
    EXPECT_EQ(s_last, Expect("TVPMDisplayScreenCursorHook", {"7", "8", "9", Ptr(W)}));
    EXPECT_EQ(TVPMNeedsAvionicsBrightnessHook(3, W), 29);
    EXPECT_EQ(s_last, Expect("TVPMDisplayNeedsAvionicsBrightnessHook", {"3", Ptr(W)}));
    EXPECT_EQ(TVPMDoAvionicsBrightnessHook(3, 0.25f, 0.75f, 28.5f, W), 0.5f);
    EXPECT_EQ(s_last, Expect("TVPMDisplayDoAvionicsBrightnessHook", {"3", "0.25", "0.75", "28.5", Ptr(W)}));
    EXPECT_EQ(TVPMNeedsAvionicsBezelHook(3, W), 30);
    EXPECT_EQ(s_last, Expect("TVPMDisplayNeedsAvionicsBezelHook", {"3", Ptr(W)}));
    TVPMDoAvionicsBezelHook(3, W, s_tint);
    EXPECT_EQ(s_last, Expect("TVPMDisplayDoAvionicsBezelHook", {"3", Ptr(W), Ptr(s_tint)}));
    EXPECT_EQ(TVPMNeedsAvionicsScreenHook(3, W, 1), 31);
    EXPECT_EQ(s_last, Expect("TVPMDisplayNeedsAvionicsScreenHook", {"3", Ptr(W), "1"}));
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, W, 0), 32);
    EXPECT_EQ(s_last, Expect("TVPMDisplayDoAvionicsScreenHook", {"3", Ptr(W), "0"}));
    TVPMDoAvionicsKeyHook(3, 'k', 1, 'K', 1, W);
    EXPECT_EQ(s_last, Expect("TVPMDisplayDoAvionicsKeyHook", {"3", "107", "1", "75", "1", Ptr(W)}));
}

TEST(HostHooks, MapCameraMenuPlaneCommandAndTimingHooksForwardUnchanged) {
    EXPECT_EQ(TVPMNeedsMapLayerDrawingHooks(), 41);
    EXPECT_EQ(s_last, "TVPMMapNeedsLayerDrawingHooks");
    TVPMDoMapLayerDrawingHook(W, s_bounds, 2.0f, 0.5f, 1, P);
    EXPECT_EQ(s_last, Expect("TVPMMapDoLayerDrawingHook", {Ptr(W), Ptr(s_bounds), "2", "0.5", "1", Ptr(P)}));
    TVPMMapCreated("Main Map");
    EXPECT_EQ(s_last, "TVPMMapHandleCreation Main Map");
    TVPMMapLayerWillBeDeleted(W);
    EXPECT_EQ(s_last, Expect("TVPMMapDoLayerWillBeDeletedHook", {Ptr(W)}));
    TVPMDoMapLayerPrepareCacheHook(W, s_bounds, P);
    EXPECT_EQ(s_last, Expect("TVPMMapDoLayerPrepareCacheHook", {Ptr(W), Ptr(s_bounds), Ptr(P)}));
    float v[7];
    EXPECT_EQ(TVPMCameraHook(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6]), 51);
    EXPECT_EQ(s_last, Expect("TVPMAdjustCamera", {Ptr(&v[0]), Ptr(&v[6])}));
    EXPECT_EQ(TVPMMenuHook(1234), 61);
    EXPECT_EQ(s_last, "TVPMHandleMenuItemPick 1234");
    int check = 0;
    EXPECT_EQ(TVPMCheckMenuHook(99, 3, &check), 62);
    EXPECT_EQ(s_last, Expect("TVPMHandleMenuItemCheck", {"99", "3", Ptr(&check)}));
    EXPECT_EQ(TVPMMenuItemEnabled(98, 2), 63);
    EXPECT_EQ(s_last, "TVPMHandleMenuItemEnable 98 2");
    char name[256], path[256];
    TVPMUpdatePlaneNameAndPath(4, name, path);
    EXPECT_EQ(s_last, Expect("TVPMHandleUpdatePlaneNameAndPath", {"4", Ptr(name), Ptr(path)}));
    EXPECT_EQ(TVPMGetNumberPlanesToHandle(6, 1), 71);
    EXPECT_EQ(s_last, "TVPMHandleGetNumberPlanesToHandle 6 1");
    EXPECT_EQ(TVPMCommandHook(W, 1, 0, 1), 81);
    EXPECT_EQ(s_last, Expect("TVPMDispatchCommandHook", {Ptr(W), "1", "0", "1"}));
    TVPMGetPluginCallbackTimings(TimingSink);
    EXPECT_EQ(s_last, Expect("StCallbackTimer::get_plugin_timings", {Ptr(reinterpret_cast<void*>(TimingSink))}));
}
