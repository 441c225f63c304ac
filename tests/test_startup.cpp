// test_startup.cpp: the host table is accepted or refused, and start-up runs in its fixed order.
#include <gtest/gtest.h>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"

using namespace tvpmtest;
using Startup = SimTest;

// A table of another version, or one slot short, is refused before any call,
// yet the library counts as initialized.
TEST_F(Startup, RefusesATableOfAnotherVersionOrSize) {
    AddScripted({"alpha.tvp"});
    EXPECT_EQ(TVPMInitialized(), 0);
    for (const auto& [version, size] : {std::pair{24, 1320}, std::pair{25, 1312}}) {
        host.hooks.version = version;
        host.hooks.structSize = size;
        EXPECT_EQ(host.Start(sim.Root()), 0) << version << " " << size;
        EXPECT_EQ(TVPMInitialized(), 1);
    }
    EXPECT_TRUE(host.Calls().empty());
    EXPECT_TRUE(Journal().empty());
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
}
