// test_passthrough_services.cpp: navigation, graphics, map-projection and magnetic-variation calls reach their simulator slot with their arguments.
#include <functional>
#include <thread>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMGraphics.h"
#include "TVPM/TVPMMap.h"
#include "TVPM/TVPMNavigation.h"
#include "TVPM/TVPMScenery.h"

using namespace tvpmtest;

namespace {

struct Forwarded {
    const char* slot;
    std::function<void()> call;
    const char* args;  // as the fake host records them, comma-separated
};

const char* const kId = "KSEA";

const Forwarded kForwarded[] = {
    {"TVPMGetFirstNavAid_f", [] { TVPMGetFirstNavAid(); }, ""},
    {"TVPMGetNextNavAid_f", [] { TVPMGetNextNavAid(7); }, "7"},
    {"TVPMFindFirstNavAidOfType_f", [] { TVPMFindFirstNavAidOfType(4); }, "4"},
    {"TVPMFindLastNavAidOfType_f", [] { TVPMFindLastNavAidOfType(2); }, "2"},
    {"TVPMFindNavAid_f", [] { TVPMFindNavAid(nullptr, kId, nullptr, nullptr, nullptr, 1); },
     "null,\"KSEA\",null,null,null,1"},
    {"TVPMGetNavAidInfo_f",
     [] { TVPMGetNavAidInfo(3, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
     "3,null,null,null,null,null,null,null,null,null"},
    {"TVPMCountFMSEntries_f", [] { TVPMCountFMSEntries(); }, ""},
    {"TVPMGetDisplayedFMSEntry_f", [] { TVPMGetDisplayedFMSEntry(); }, ""},
    {"TVPMGetDestinationFMSEntry_f", [] { TVPMGetDestinationFMSEntry(); }, ""},
    {"TVPMSetDisplayedFMSEntry_f", [] { TVPMSetDisplayedFMSEntry(5); }, "5"},
    {"TVPMSetDestinationFMSEntry_f", [] { TVPMSetDestinationFMSEntry(6); }, "6"},
    {"TVPMGetFMSEntryInfo_f", [] { TVPMGetFMSEntryInfo(2, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
     "2,null,null,null,null,null,null"},
    {"TVPMSetFMSEntryInfo_f", [] { TVPMSetFMSEntryInfo(1, 9, 3000); }, "1,9,3000"},
    {"TVPMSetFMSEntryLatLon_f", [] { TVPMSetFMSEntryLatLon(1, 47.5f, -122.25f, 500); }, "1,47.5,-122.25,500"},
    {"TVPMClearFMSEntry_f", [] { TVPMClearFMSEntry(4); }, "4"},
    {"TVPMCountFMSFlightPlanEntries_f", [] { TVPMCountFMSFlightPlanEntries(1); }, "1"},
    {"TVPMGetDisplayedFMSFlightPlanEntry_f", [] { TVPMGetDisplayedFMSFlightPlanEntry(1); }, "1"},
    {"TVPMGetDestinationFMSFlightPlanEntry_f", [] { TVPMGetDestinationFMSFlightPlanEntry(2); }, "2"},
    {"TVPMSetDisplayedFMSFlightPlanEntry_f", [] { TVPMSetDisplayedFMSFlightPlanEntry(1, 3); }, "1,3"},
    {"TVPMSetDestinationFMSFlightPlanEntry_f", [] { TVPMSetDestinationFMSFlightPlanEntry(1, 4); }, "1,4"},
    {"TVPMSetDirectToFMSFlightPlanEntry_f", [] { TVPMSetDirectToFMSFlightPlanEntry(0, 2); }, "0,2"},
    {"TVPMGetFMSFlightPlanEntryInfo_f",
     [] { TVPMGetFMSFlightPlanEntryInfo(1, 2, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
     "1,2,null,null,null,null,null,null"},
    {"TVPMSetFMSFlightPlanEntryInfo_f", [] { TVPMSetFMSFlightPlanEntryInfo(1, 2, 3, 4); }, "1,2,3,4"},
    {"TVPMSetFMSFlightPlanEntryLatLon_f", [] { TVPMSetFMSFlightPlanEntryLatLon(1, 2, 1.5f, 2.5f, 9); },
     "1,2,1.5,2.5,9"},
    {"TVPMSetFMSFlightPlanEntryLatLonWithId_f",
     [] { TVPMSetFMSFlightPlanEntryLatLonWithId(1, 2, 1.5f, 2.5f, 9, kId, 4); }, "1,2,1.5,2.5,9,\"KSEA\",4"},
    {"TVPMClearFMSFlightPlanEntry_f", [] { TVPMClearFMSFlightPlanEntry(1, 8); }, "1,8"},
    {"TVPMLoadFMSFlightPlan_f", [] { TVPMLoadFMSFlightPlan(0, kId, 4); }, "0,\"KSEA\",4"},
    {"TVPMSaveFMSFlightPlan_f", [] { TVPMSaveFMSFlightPlan(1, nullptr, 0); }, "1,null,0"},
    {"TVPMGetGPSDestinationType_f", [] { TVPMGetGPSDestinationType(); }, ""},
    {"TVPMGetGPSDestination_f", [] { TVPMGetGPSDestination(); }, ""},
    {"TVPMSetGraphicsState_f", [] { TVPMSetGraphicsState(0, 1, 0, 1, 1, 0, 0); }, "0,1,0,1,1,0,0"},
    {"TVPMBindTexture2d_f", [] { TVPMBindTexture2d(12, 1); }, "12,1"},
    {"TVPMGenerateTextureIDs_f", [] { TVPMGenerateTextureNumbers(nullptr, 3); }, "null,3"},
    {"TVPMGetTexture_f", [] { TVPMGetTexture(2); }, "2"},
    {"TVPMWorldToLocal_f", [] { TVPMWorldToLocal(47.5, 8.5, 400, nullptr, nullptr, nullptr); },
     "47.5,8.5,400,null,null,null"},
    {"TVPMLocalToWorld_f", [] { TVPMLocalToWorld(1, 2, 3, nullptr, nullptr, nullptr); }, "1,2,3,null,null,null"},
    {"TVPMDrawTranslucentDarkBox_f", [] { TVPMDrawTranslucentDarkBox(1, 20, 30, 4); }, "1,20,30,4"},
    {"TVPMDrawString_f", [] { TVPMDrawString(nullptr, 5, 6, kId, nullptr, 18); }, "null,5,6,\"KSEA\",null,18"},
    {"TVPMDrawNumber_f", [] { TVPMDrawNumber(nullptr, 5, 6, 2.25, 4, 2, 1, 0); }, "null,5,6,2.25,4,2,1,0"},
    {"TVPMGetFontDimensions_f", [] { TVPMGetFontDimensions(18, nullptr, nullptr, nullptr); }, "18,null,null,null"},
    {"TVPMMeasureString_f", [] { TVPMMeasureString(0, kId, 2); }, "0,\"KSEA\",2"},
    {"TVPMMapExists_f", [] { TVPMMapExists(kId); }, "\"KSEA\""},
    {"TVPMMapProject_f", [] { TVPMMapProject(nullptr, 47.5, 8.5, nullptr, nullptr); }, "null,47.5,8.5,null,null"},
    {"TVPMMapUnproject_f", [] { TVPMMapUnproject(nullptr, 1.5f, 2.5f, nullptr, nullptr); }, "null,1.5,2.5,null,null"},
    {"TVPMMapScaleMeter_f", [] { TVPMMapScaleMeter(nullptr, 3, 4); }, "null,3,4"},
    {"TVPMMapGetNorthHeading_f", [] { TVPMMapGetNorthHeading(nullptr, 5, 6); }, "null,5,6"},
    {"TVPMGetMagneticVariation_f", [] { TVPMGetMagneticVariation(47.5, 8.5); }, "47.5,8.5"},
    {"TVPMDegTrueToDegMagnetic_f", [] { TVPMDegTrueToDegMagnetic(90); }, "90"},
    {"TVPMDegMagneticToDegTrue_f", [] { TVPMDegMagneticToDegTrue(270); }, "270"},
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
