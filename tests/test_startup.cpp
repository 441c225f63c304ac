// test_startup.cpp: the host table is accepted or refused, and start-up runs in its fixed order.
#include <gtest/gtest.h>

#include "FakeHost.h"
#include "Harness.h"
#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;
using Startup = SimTest;

TEST_F(Startup, RefusesTableOneSlotShortButCountsAsInitialized) {
    AddScripted({"alpha.tvp"});
    host.hooks.structSize = 1312;
    EXPECT_EQ(TVPMInitialized(), 0);
    EXPECT_EQ(host.Start(sim.Root()), 0);
    EXPECT_EQ(TVPMInitialized(), 1);
    EXPECT_TRUE(host.Calls().empty());
    EXPECT_TRUE(Journal().empty());
}

TEST_F(Startup, RefusesOtherTableVersion) {
    host.hooks.version = 24;
    EXPECT_EQ(host.Start(sim.Root()), 0);
    EXPECT_TRUE(host.Calls().empty());
}

TEST_F(Startup, HostReadyComesBeforeTheFirstPluginStarts) {
    AddScripted({"alpha.tvp"});
    bool readyBeforeStart = false;
    Script("alpha.tvp").start = [&](char*, char*, char*) {
        readyBeforeStart = host.Count("TVPMHostReady_f") == 1;
        return 1;
    };
    EXPECT_EQ(host.Start(sim.Root()), 23);
    EXPECT_TRUE(readyBeforeStart);
    EXPECT_EQ(host.Count("TVPMHostReady_f"), 1u);
    EXPECT_EQ(Journal(), (std::vector<std::string>{"alpha.tvp:start", "alpha.tvp:enable"}));
    host.Shutdown();
    EXPECT_EQ(JournalOf("alpha.tvp").back(), "alpha.tvp:stop");
}

TEST_F(Startup, VersionsReportTheLibraryAndTheHost) {
    host.On<&TVPMHooks::TVPMGetVersions_f>([](int* v, TVPMHostApplicationID* id) {
        *v = 1207;
        *id = 1;
    });
    host.Start(sim.Root());
    int mine = 0;
    TVPMGetVersions(nullptr, &mine, nullptr);
    EXPECT_EQ(mine, 421);
    EXPECT_EQ(host.Count("TVPMGetVersions_f"), 1u);
    int sim_version = 0, tvpm = 0, app = 0;
    TVPMGetVersions(&sim_version, &tvpm, &app);
    EXPECT_EQ(sim_version, 1207);
    EXPECT_EQ(app, 1);
}
