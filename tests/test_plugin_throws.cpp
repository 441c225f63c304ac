// test_plugin_throws.cpp: a plugin whose callbacks throw C++ exceptions leaves the simulator running, with one log line per kind of callback.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPMHost.h"
#include "data_test_util.h"

using namespace tvpmtest;
using datatest::Occurrences;

namespace {

int* const kThrowCommand = reinterpret_cast<int*>(0x7001);
constexpr int kFirstItemCode = 1000;
int s_nextItemCode = kFirstItemCode;

class PluginThrows : public SimTest {
protected:
    void SetUp() override {
        sim.AddLoose("thrower.tvp", BuiltPlugin("thrower.tvp"));
        host.On<&TVPMHooks::TVPMFindCreateCommand_f>(
            [](const char*, const char*, int) -> TVPMCommandRef { return kThrowCommand; });
        host.On<&TVPMHooks::TVPMAppendMenu_f>([](intptr_t, const char*) { return s_nextItemCode++; });
        host.Start(sim.Root());
        thrower = TVPMFindPluginBySignature("test.thrower");
        ASSERT_NE(thrower, TVPM_NO_PLUGIN_ID);
    }

    TVPMPluginID thrower = TVPM_NO_PLUGIN_ID;
};

TEST_F(PluginThrows, EachKindIsCaughtAndReportedOnceAndTheSimulatorCarriesOn) {
    // The plugin's menu item is the second one appended: its menu's own entry
    // in the Plugins menu comes first.
    const int throwItem = s_nextItemCode - 1;
    struct Case {
        const char* site;
        std::function<int()> drive;
        int neutralAnswer;
    };
    const Case cases[] = {
        {"draw callback", [] { return TVPMDoDrawingHook(1, 0, nullptr); }, 1},
        {"menu handler", [&] { return TVPMMenuHook(throwItem); }, 0},
        {"command handler", [] { return TVPMCommandHook(kThrowCommand, 1, 0, 1); }, 1},
        {"TPluginReceiveMessage", [] { return TVPMEventHook(tvpm_AirportLoaded, 0, 0, 0, 0); }, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.site);
        for (int round = 0; round < 2; ++round) EXPECT_EQ(c.drive(), c.neutralAnswer);
        EXPECT_EQ(Occurrences(host.Log(),
                              std::string("[thrower]: a C++ exception escaped from its ") + c.site),
                  1u);
    }
    EXPECT_EQ(Occurrences(host.Log(), "[thrower]: "), 4u);
    EXPECT_EQ(TVPMIsPluginEnabled(thrower), 1);
    host.RunFrame();
}

}  // namespace
