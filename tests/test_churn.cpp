// test_churn.cpp: a thousand full reloads of plugins holding every kind of record leave memory where it was.
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "SimTest.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMHost.h"

using namespace tvpmtest;
using Churn = SimTest;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMeasureMemory = false;  // sanitizers keep freed memory on purpose
#else
constexpr bool kMeasureMemory = true;
#endif

long ResidentKB() {
    long pages = 0, resident = 0;
    FILE* f = fopen("/proc/self/statm", "r");
    if (f && fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    if (f) fclose(f);
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

float Loop(float, float, int, void*) { return -1.0f; }

// Registers one record of every kind the library keeps for a plugin.
int HoldEveryKindOfRecord(const std::string& key) {
    TVPMRegisterDataAccessor(("test/churn/" + key).c_str(), tvpmType_Int, 0, [](void*) { return 0; }, nullptr,
                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr);
    TVPMShareData("test/churn/shared", tvpmType_Int, [](void*) {}, nullptr);
    TVPMCreateFlightLoop_t loop = {sizeof loop, tvpm_FlightLoop_Phase_BeforeFlightModel, Loop, nullptr};
    TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&loop), -1, 1);
    TVPMRegisterFlightLoopCallback(Loop, -1, nullptr);
    TVPMRegisterCommandHandler(TVPMCreateCommand(("test/churn/" + key).c_str(), "churn"),
                               [](TVPMCommandRef, TVPMCommandPhase, void*) { return 1; }, 1, nullptr);
    TVPMRegisterDrawCallback([](TVPMDrawingPhase, int, void*) { return 1; }, tvpm_Phase_Window, 0, nullptr);
    TVPMRegisterKeySniffer([](char, TVPMKeyFlags, char, void*) { return 1; }, 1, nullptr);
    TVPMCreateWindow(0, 100, 100, 0, 1, nullptr, nullptr, nullptr, nullptr);
    TVPMRegisterHotKey(TVPM_VK_F1, tvpm_ShiftFlag, "churn", [](void*) {}, nullptr);
    TVPMAppendMenuItem(TVPMCreateMenu(key.c_str(), nullptr, 0, [](void*, void*) {}, nullptr), "item", nullptr, 0);
    return 1;
}

}  // namespace

TEST_F(Churn, AThousandFullReloadsLeaveResidentMemoryFlat) {
    for (const std::string key : {"alpha.tvp", "beta.tvp", "gamma.tvp"}) {
        sim.AddLoose(key, BuiltPlugin("scripted.tvp"));
        Script(key).enable = [key] { return HoldEveryKindOfRecord(key); };
    }
    ASSERT_EQ(host.Start(sim.Root()), 23);
    long warm = 0;
    for (int reload = 1; reload <= 1000; ++reload) {
        TVPMReloadPlugins();
        host.RunFrame();
        // The simulator collects callback timings every frame; so does this test.
        TVPMGetPluginCallbackTimings([](uint64_t, const TVPMPluginID*, const TVPMPluginCallbackType*, const double*) {});
        host.ClearCalls();  // the fake host's own recording is not ours to measure
        Journal().clear();
        if (reload == 200) warm = ResidentKB();  // after the warm-up
    }
    EXPECT_EQ(TVPMCountPlugins(), 4);
    if (kMeasureMemory) { EXPECT_LE(ResidentKB() - warm, 256) << "warm " << warm; }
}
