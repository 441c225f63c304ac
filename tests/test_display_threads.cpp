// test_display_threads.cpp: every display entry point refuses, by aborting, to run on a thread other than the plugin thread, naming itself.
#include <gtest/gtest.h>

#include <cstdio>
#include <thread>
#include <unistd.h>

#include "DisplayRig.h"
#include "TVPMHost.h"

using namespace tvpmtest;

namespace {

struct EntryPoint {
    const char* name;
    void (*call)();
};

const EntryPoint kEntryPoints[] = {
    {"TVPMRegisterDrawCallback", [] { TVPMRegisterDrawCallback(nullptr, 0, 1, nullptr); }},
    {"TVPMUnregisterDrawCallback", [] { TVPMUnregisterDrawCallback(nullptr, 0, 1, nullptr); }},
    {"TVPMDisplayNeedsDrawingHook", [] { TVPMNeedsDrawingHook(1, 0); }},
    {"TVPMDisplayDoDrawingHook", [] { TVPMDoDrawingHook(1, 0, nullptr); }},
    {"TVPMRegisterKeySniffer", [] { TVPMRegisterKeySniffer(nullptr, 1, nullptr); }},
    {"TVPMUnregisterKeySniffer", [] { TVPMUnregisterKeySniffer(nullptr, 1, nullptr); }},
    {"TVPMDisplayMouseClickHook", [] { TVPMMouseClickHook(0, 0, 1, 0, nullptr); }},
    {"TVPMDisplayCursorHook", [] { TVPMCursorHook(0, 0, nullptr); }},
    {"TVPMDisplayScrollWheelHook", [] { TVPMScrollWheelHook(0, 0, 0, 1, nullptr); }},
    {"TVPMDisplayKeyPressHook", [] { TVPMKeyPressHook('a', 0, 0x41, 0, nullptr); }},
    {"TVPMCreateWindow", [] { TVPMCreateWindow(0, 1, 1, 0, 1, nullptr, nullptr, nullptr, nullptr); }},
    {"TVPMCreateWindowEx", [] { TVPMCreateWindowEx(nullptr); }},
    {"TVPMDestroyWindow", [] { TVPMDestroyWindow(nullptr); }},
    {"TVPMGetWindowGeometry", [] { TVPMGetWindowGeometry(nullptr, nullptr, nullptr, nullptr, nullptr); }},
    {"TVPMSetWindowGeometry", [] { TVPMSetWindowGeometry(nullptr, 0, 0, 0, 0); }},
    {"TVPMGetWindowGeometryOS", [] { TVPMGetWindowGeometryOS(nullptr, nullptr, nullptr, nullptr, nullptr); }},
    {"TVPMSetWindowGeometryOS", [] { TVPMSetWindowGeometryOS(nullptr, 0, 0, 0, 0); }},
    {"TVPMWindowIsPoppedOut", [] { TVPMWindowIsPoppedOut(nullptr); }},
    {"TVPMGetWindowGeometryVR", [] { TVPMGetWindowGeometryVR(nullptr, nullptr, nullptr); }},
    {"TVPMSetWindowGeometryVR", [] { TVPMSetWindowGeometryVR(nullptr, 0, 0); }},
    {"TVPMWindowIsInVR", [] { TVPMWindowIsInVR(nullptr); }},
    {"TVPMGetWindowIsVisible", [] { TVPMGetWindowIsVisible(nullptr); }},
    {"TVPMSetWindowIsVisible", [] { TVPMSetWindowIsVisible(nullptr, 1); }},
    {"TVPMGetWindowRefCon", [] { TVPMGetWindowRefCon(nullptr); }},
    {"TVPMSetWindowRefCon", [] { TVPMSetWindowRefCon(nullptr, nullptr); }},
    {"TVPMBringWindowToFront", [] { TVPMBringWindowToFront(nullptr); }},
    {"TVPMIsWindowInFront", [] { TVPMIsWindowInFront(nullptr); }},
    {"TVPMSetWindowGravity", [] { TVPMSetWindowGravity(nullptr, 0, 0, 0, 0); }},
    {"TVPMSetWindowResizingLimits", [] { TVPMSetWindowResizingLimits(nullptr, 0, 0, 0, 0); }},
    {"TVPMSetWindowPositioningMode", [] { TVPMSetWindowPositioningMode(nullptr, 0, 0); }},
    {"TVPMSetWindowTitle", [] { TVPMSetWindowTitle(nullptr, "t"); }},
    {"TVPMTakeKeyboardFocus", [] { TVPMTakeKeyboardFocus(nullptr); }},
    {"TVPMHasKeyboardFocus", [] { TVPMHasKeyboardFocus(nullptr); }},
    {"TVPMGetScreenSize", [] { TVPMGetScreenSize(nullptr, nullptr); }},
    {"TVPMGetScreenBoundsGlobal", [] { TVPMGetScreenBoundsGlobal(nullptr, nullptr, nullptr, nullptr); }},
    {"TVPMGetAllMonitorBoundsGlobal", [] { TVPMGetAllMonitorBoundsGlobal(nullptr, nullptr); }},
    {"TVPMGetAllMonitorBoundsOS", [] { TVPMGetAllMonitorBoundsOS(nullptr, nullptr); }},
    {"TVPMGetMouseLocation", [] { TVPMGetMouseLocation(nullptr, nullptr); }},
    {"TVPMGetMouseLocationGlobal", [] { TVPMGetMouseLocationGlobal(nullptr, nullptr); }},
    {"TVPMRegisterHotKey", [] { TVPMRegisterHotKey(0, 0, "", nullptr, nullptr); }},
    {"TVPMUnregisterHotKey", [] { TVPMUnregisterHotKey(nullptr); }},
    {"TVPMCountHotKeys", [] { TVPMCountHotKeys(); }},
    {"TVPMGetNthHotKey", [] { TVPMGetNthHotKey(0); }},
    {"TVPMGetHotKeyInfo", [] { TVPMGetHotKeyInfo(nullptr, nullptr, nullptr, nullptr, nullptr); }},
    {"TVPMSetHotKeyCombination", [] { TVPMSetHotKeyCombination(nullptr, 0, 0); }},
};

// Runs the call on a worker thread, with the violation report (printed to
// standard output) sent to standard error where the death test reads it.
void CallFromWorker(void (*call)()) {
    setvbuf(stdout, nullptr, _IONBF, 0);
    dup2(2, 1);
    std::thread(call).join();
}

void PrintTo(const EntryPoint& e, std::ostream* os) { *os << e.name; }

class WrongThread : public ::testing::TestWithParam<EntryPoint> {};

}  // namespace

TEST_P(WrongThread, AbortsNamingTheEntryPoint) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    DisplayRig rig{{"alpha.tvp"}};
    const EntryPoint& entry = GetParam();
    EXPECT_DEATH(CallFromWorker(entry.call),
                 std::string("Threading violation calling ") + entry.name + " \\(");
}

INSTANTIATE_TEST_SUITE_P(Display, WrongThread, ::testing::ValuesIn(kEntryPoints),
                         [](const ::testing::TestParamInfo<EntryPoint>& info) {
                             return std::string(info.param.name);
                         });
