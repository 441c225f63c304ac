// test_passthrough_services.cpp: navigation and graphics calls reach their simulator slot with their arguments and return its answer.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "FakeHost.h"
#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMGraphics.h"
#include "TVPM/TVPMNavigation.h"

using namespace tvpmtest;

namespace {

struct Forwarded {
    const char* slot;
    std::function<void()> call;
    const char* args;  // as the fake host records them, comma-separated
};

std::string Joined(const HostCall& c) {
    std::string out;
    for (const std::string& a : c.args) out += (out.empty() ? "" : ",") + a;
    return out;
}

class Passthrough : public SimTest {
protected:
    void SetUp() override {
        AddScripted({"alpha.tvp"});
        ASSERT_EQ(host.Start(sim.Root()), 23);
    }
    void ExpectEachReachesItsSlot(const std::vector<Forwarded>& table) {
        for (const Forwarded& f : table) {
            host.ClearCalls();
            RunAs("alpha.tvp", f.call);
            const auto calls = host.CallsTo(f.slot);
            ASSERT_EQ(calls.size(), 1u) << f.slot;
            EXPECT_EQ(Joined(calls[0]), f.args) << f.slot;
        }
    }
};

const char* const kId = "KSEA";

}  // namespace

TEST_F(Passthrough, NavigationCallsReachTheSlotOfTheirName) {
    ExpectEachReachesItsSlot({
        {"TVPMGetFirstNavAid_f", [] { TVPMGetFirstNavAid(); }, ""},
        {"TVPMGetNextNavAid_f", [] { TVPMGetNextNavAid(7); }, "7"},
        {"TVPMFindFirstNavAidOfType_f", [] { TVPMFindFirstNavAidOfType(4); }, "4"},
        {"TVPMFindLastNavAidOfType_f", [] { TVPMFindLastNavAidOfType(2); }, "2"},
        {"TVPMFindNavAid_f", [] { TVPMFindNavAid(nullptr, kId, nullptr, nullptr, nullptr, 1); },
         "null,\"KSEA\",null,null,null,1"},
        {"TVPMGetNavAidInfo_f",
         [] { TVPMGetNavAidInfo(3, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr, nullptr); },
         "3,null,null,null,null,null,null,null,null,null"},
        {"TVPMCountFMSEntries_f", [] { TVPMCountFMSEntries(); }, ""},
        {"TVPMGetDisplayedFMSEntry_f", [] { TVPMGetDisplayedFMSEntry(); }, ""},
        {"TVPMGetDestinationFMSEntry_f", [] { TVPMGetDestinationFMSEntry(); }, ""},
        {"TVPMSetDisplayedFMSEntry_f", [] { TVPMSetDisplayedFMSEntry(5); }, "5"},
        {"TVPMSetDestinationFMSEntry_f", [] { TVPMSetDestinationFMSEntry(6); }, "6"},
        {"TVPMGetFMSEntryInfo_f",
         [] { TVPMGetFMSEntryInfo(2, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
         "2,null,null,null,null,null,null"},
        {"TVPMSetFMSEntryInfo_f", [] { TVPMSetFMSEntryInfo(1, 9, 3000); }, "1,9,3000"},
        {"TVPMSetFMSEntryLatLon_f", [] { TVPMSetFMSEntryLatLon(1, 47.5f, -122.25f, 500); },
         "1,47.5,-122.25,500"},
        {"TVPMClearFMSEntry_f", [] { TVPMClearFMSEntry(4); }, "4"},
        {"TVPMCountFMSFlightPlanEntries_f", [] { TVPMCountFMSFlightPlanEntries(1); }, "1"},
        {"TVPMGetDisplayedFMSFlightPlanEntry_f", [] { TVPMGetDisplayedFMSFlightPlanEntry(1); },
         "1"},
        {"TVPMGetDestinationFMSFlightPlanEntry_f",
         [] { TVPMGetDestinationFMSFlightPlanEntry(2); }, "2"},
        {"TVPMSetDisplayedFMSFlightPlanEntry_f", [] { TVPMSetDisplayedFMSFlightPlanEntry(1, 3); },
         "1,3"},
        {"TVPMSetDestinationFMSFlightPlanEntry_f",
         [] { TVPMSetDestinationFMSFlightPlanEntry(1, 4); }, "1,4"},
        {"TVPMSetDirectToFMSFlightPlanEntry_f", [] { TVPMSetDirectToFMSFlightPlanEntry(0, 2); },
         "0,2"},
        {"TVPMGetFMSFlightPlanEntryInfo_f",
         [] { TVPMGetFMSFlightPlanEntryInfo(1, 2, nullptr, nullptr, nullptr, nullptr, nullptr,
                                            nullptr); },
         "1,2,null,null,null,null,null,null"},
        {"TVPMSetFMSFlightPlanEntryInfo_f", [] { TVPMSetFMSFlightPlanEntryInfo(1, 2, 3, 4); },
         "1,2,3,4"},
        {"TVPMSetFMSFlightPlanEntryLatLon_f",
         [] { TVPMSetFMSFlightPlanEntryLatLon(1, 2, 1.5f, 2.5f, 9); }, "1,2,1.5,2.5,9"},
        {"TVPMSetFMSFlightPlanEntryLatLonWithId_f",
         [] { TVPMSetFMSFlightPlanEntryLatLonWithId(1, 2, 1.5f, 2.5f, 9, kId, 4); },
         "1,2,1.5,2.5,9,\"KSEA\",4"},
        {"TVPMClearFMSFlightPlanEntry_f", [] { TVPMClearFMSFlightPlanEntry(1, 8); }, "1,8"},
        {"TVPMLoadFMSFlightPlan_f", [] { TVPMLoadFMSFlightPlan(0, kId, 4); }, "0,\"KSEA\",4"},
        {"TVPMSaveFMSFlightPlan_f", [] { TVPMSaveFMSFlightPlan(1, nullptr, 0); }, "1,null,0"},
        {"TVPMGetGPSDestinationType_f", [] { TVPMGetGPSDestinationType(); }, ""},
        {"TVPMGetGPSDestination_f", [] { TVPMGetGPSDestination(); }, ""},
    });
}

TEST_F(Passthrough, GraphicsCallsReachTheirSlotUncheckedEvenOffThePluginThread) {
    ExpectEachReachesItsSlot({
        {"TVPMSetGraphicsState_f", [] { TVPMSetGraphicsState(0, 1, 0, 1, 1, 0, 0); },
         "0,1,0,1,1,0,0"},
        {"TVPMBindTexture2d_f", [] { TVPMBindTexture2d(12, 1); }, "12,1"},
        {"TVPMGenerateTextureIDs_f", [] { TVPMGenerateTextureNumbers(nullptr, 3); }, "null,3"},
        {"TVPMGetTexture_f", [] { TVPMGetTexture(2); }, "2"},
        {"TVPMWorldToLocal_f", [] { TVPMWorldToLocal(47.5, 8.5, 400, nullptr, nullptr, nullptr); },
         "47.5,8.5,400,null,null,null"},
        {"TVPMLocalToWorld_f", [] { TVPMLocalToWorld(1, 2, 3, nullptr, nullptr, nullptr); },
         "1,2,3,null,null,null"},
        {"TVPMDrawTranslucentDarkBox_f", [] { TVPMDrawTranslucentDarkBox(1, 20, 30, 4); },
         "1,20,30,4"},
        {"TVPMDrawString_f", [] { TVPMDrawString(nullptr, 5, 6, kId, nullptr, 18); },
         "null,5,6,\"KSEA\",null,18"},
        {"TVPMDrawNumber_f", [] { TVPMDrawNumber(nullptr, 5, 6, 2.25, 4, 2, 1, 0); },
         "null,5,6,2.25,4,2,1,0"},
        {"TVPMGetFontDimensions_f", [] { TVPMGetFontDimensions(18, nullptr, nullptr, nullptr); },
         "18,null,null,null"},
        {"TVPMMeasureString_f", [] { TVPMMeasureString(0, kId, 2); }, "0,\"KSEA\",2"},
    });
    // No thread check: a worker thread reaches the slot without aborting.
    host.ClearCalls();
    std::thread([] { TVPMBindTexture2d(3, 0); }).join();
    EXPECT_EQ(host.Count("TVPMBindTexture2d_f"), 1u);
}

TEST_F(Passthrough, ResultsComeBackUnchanged) {
    host.On<&TVPMHooks::TVPMFindNavAid_f>(
        [](const char*, const char*, float*, float*, int*, TVPMNavType) { return 41; });
    host.On<&TVPMHooks::TVPMSaveFMSFlightPlan_f>([](int, char*, unsigned) { return 99u; });
    host.On<&TVPMHooks::TVPMMeasureString_f>([](TVPMFontID, const char*, int) { return 7.5f; });
    host.On<&TVPMHooks::TVPMGetTexture_f>([](TVPMTextureID) { return -3; });
    EXPECT_EQ(TVPMFindNavAid(nullptr, nullptr, nullptr, nullptr, nullptr, 0), 41);
    EXPECT_EQ(TVPMSaveFMSFlightPlan(0, nullptr, 0), 99u);
    EXPECT_EQ(TVPMMeasureString(0, "x", 1), 7.5f);
    EXPECT_EQ(TVPMGetTexture(1), -3);
}
