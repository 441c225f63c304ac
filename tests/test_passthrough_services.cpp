// test_passthrough_services.cpp: navigation, graphics, map-projection, magnetic-variation and user-aircraft placement calls reach their simulator slot with their arguments.
#include <functional>
#include <thread>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMGraphics.h"
#include "TVPM/TVPMMap.h"
#include "TVPM/TVPMNavigation.h"
#include "TVPM/TVPMPlanes.h"
#include "TVPM/TVPMScenery.h"

using namespace tvpmtest;

namespace {

struct Forwarded {
    const char* slot;
    std::function<void()> call;
    const char* args;  // as the fake host records them, comma-separated
};

const char* const kId = "KSEA";

// Navigation and graphics calls are generated from one forwarding list each, so a
// few stand for the rest; the map and magnetic calls are written one by one.
const Forwarded kForwarded[] = {
    {"TVPMFindNavAid_f", [] { TVPMFindNavAid(nullptr, kId, nullptr, nullptr, nullptr, 1); },
     "null,\"KSEA\",null,null,null,1"},
    {"TVPMBindTexture2d_f", [] { TVPMBindTexture2d(12, 1); }, "12,1"},
    {"TVPMDrawString_f", [] { TVPMDrawString(nullptr, 5, 6, kId, nullptr, 18); }, "null,5,6,\"KSEA\",null,18"},
    {"TVPMMapExists_f", [] { TVPMMapExists(kId); }, "\"KSEA\""},
    {"TVPMMapProject_f", [] { TVPMMapProject(nullptr, 47.5, 8.5, nullptr, nullptr); }, "null,47.5,8.5,null,null"},
    {"TVPMMapUnproject_f", [] { TVPMMapUnproject(nullptr, 1.5f, 2.5f, nullptr, nullptr); }, "null,1.5,2.5,null,null"},
    {"TVPMMapScaleMeter_f", [] { TVPMMapScaleMeter(nullptr, 3, 4); }, "null,3,4"},
    {"TVPMMapGetNorthHeading_f", [] { TVPMMapGetNorthHeading(nullptr, 5, 6); }, "null,5,6"},
    {"TVPMGetMagneticVariation_f", [] { TVPMGetMagneticVariation(47.5, 8.5); }, "47.5,8.5"},
    {"TVPMDegTrueToDegMagnetic_f", [] { TVPMDegTrueToDegMagnetic(90); }, "90"},
    {"TVPMDegMagneticToDegTrue_f", [] { TVPMDegMagneticToDegTrue(270); }, "270"},
    {"TVPMLoadAirport_f", [] { TVPMPlaceUserAtAirport(kId); }, "\"KSEA\""},
    {"TVPMInitAtLocation_f", [] { TVPMPlaceUserAtLocation(47.5, -122.3, 1000, 90, 100); }, "47.5,-122.3,1000,90,100"},
    // The file name is what follows the last '/', or the path less its first character.
    {"TVPMLoadPlane_f", [] { TVPMSetUsersAircraft("Aircraft/Jet/jet.acf"); }, "0,\"Aircraft/Jet/jet.acf\",\"jet.acf\""},
    {"TVPMLoadPlane_f", [] { TVPMSetUsersAircraft("plane.acf"); }, "0,\"plane.acf\",\"lane.acf\""},
    {"TVPMLookupObjects_f", [] { TVPMLookupObjects(kId, 1.5f, 2.5f, nullptr, nullptr); }, "\"KSEA\",1.5,2.5,null,null"},
};

TEST_F(SimTest, ForwardedCallsReachTheSlotOfTheirNameWithTheirArguments) {
    AddScripted({"alpha.tvp"});
    ASSERT_EQ(host.Start(sim.Root()), 23);
    for (const Forwarded& f : kForwarded) {
        SCOPED_TRACE(f.slot);
        host.ClearCalls();
        RunAs("alpha.tvp", f.call);
        ASSERT_EQ(host.Calls().size(), 1u);
        EXPECT_EQ(host.Calls()[0].slot, f.slot);
        std::string args;
        for (const std::string& a : host.Calls()[0].args) args += (args.empty() ? "" : ",") + a;
        EXPECT_EQ(args, f.args);
    }
    // Graphics calls are unchecked: a worker thread reaches the slot without aborting.
    host.ClearCalls();
    std::thread([] { TVPMBindTexture2d(3, 0); }).join();
    EXPECT_EQ(host.Count("TVPMBindTexture2d_f"), 1u);
}

}  // namespace
