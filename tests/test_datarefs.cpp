// test_datarefs.cpp: the data-item registry: lookup, ownership, revival, deprecation warnings, enumeration, info, the build string and new-item notices.
#include <gtest/gtest.h>

#include <cstddef>
#include <thread>

#include "TVPM/TVPMDataAccess.h"
#include "data_test_util.h"

using namespace datatest;
using Texts = std::vector<std::string>;

namespace {

int ReadInt(void* ref) { return *static_cast<int*>(ref); }

TVPMDataRef RegisterInt(const std::string& name, int* storage, TVPMDataTypeID type = tvpmType_Int) {
    return RegisterIntItem(name, type, ReadInt, nullptr, storage);
}
TVPMDataRef RegisterIntAs(const char* key, const std::string& name, int* storage) {
    return RunAs<TVPMDataRef>(key, [&] { return RegisterInt(name, storage); });
}

int s_alpha = 11, s_beta = 22;
using DataRefs = TwoPlugins;

// An error callback may use the registry.
TVPMDataRef s_seenFromErrorCallback = nullptr;
void RecordAndLookUp(const char* text) {
    RecordPluginError(text);
    s_seenFromErrorCallback = TVPMFindDataRef("test/value");
}

}  // namespace

TEST_F(DataRefs, OwnershipRefusalsAndRevivalByName) {
    Start();
    EXPECT_EQ(TVPMFindDataRef("test/nobody"), nullptr);
    EXPECT_EQ(TVPMFindDataRef(nullptr), nullptr);
    TVPMDataRef item = RegisterIntAs("alpha.tvp", "test/value", &s_alpha);
    ASSERT_NE(item, nullptr);
    RunAs("beta.tvp", [] { TVPMSetErrorCallback(RecordAndLookUp); });
    EXPECT_EQ(RegisterIntAs("beta.tvp", "test/value", &s_beta), item) << "the owner's handle";
    EXPECT_EQ(s_seenFromErrorCallback, item);
    EXPECT_EQ(TVPMGetDatai(item), 11) << "the first owner's accessors are kept";

    int local = 0;
    void* const notItems[] = {nullptr, static_cast<char*>(item) + 8, &local};
    RunAs("beta.tvp", [&] {
        for (void* bad : notItems) TVPMUnregisterDataAccessor(bad);
        TVPMUnregisterDataAccessor(item);
    });
    for (void* bad : notItems) EXPECT_EQ(TVPMIsDataRefGood(bad), 0);
    EXPECT_EQ(TVPMIsDataRefGood(item), 1);

    const std::string notYours = "Dataref is not owned by you - you cannot unregsiter.";
    RunAs("alpha.tvp", [&] {
        TVPMUnregisterDataAccessor(item);
        TVPMUnregisterDataAccessor(item);
    });
    EXPECT_EQ(ErrorsOf(alpha), Texts{notYours}) << "a dead item belongs to nobody";
    EXPECT_EQ(TVPMIsDataRefGood(item), 0);
    EXPECT_EQ(TVPMGetDatai(item), 0);

    EXPECT_EQ(RegisterIntAs("beta.tvp", "test/value", &s_beta), item) << "revived";
    EXPECT_EQ(TVPMGetDatai(item), 22);
    EXPECT_EQ(InfoOf(item).owner, beta);
    const std::string illegal = "Dataref is illegal and cannot be unregistered.";
    EXPECT_EQ(ErrorsOf(beta), (Texts{"Dataref is already registered by someone else.", illegal,
                                     illegal, illegal, notYours}));
}

namespace {
std::string s_build;
int s_buildOffset = -1;
void WriteBuild(void*, void* bytes, int offset, int length) {
    s_build.assign(static_cast<const char*>(bytes), static_cast<size_t>(length));
    s_buildOffset = offset;
}
}  // namespace

// The simulator publishes its items before start-up (see also the deprecation tests).
TEST(DataRefsBeforeStart, TheBuildStringIsWrittenAtStart) {
    TVPMRegisterDataAccessor("sim/version/tvpm_build_string", tvpmType_Data, 1, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, WriteBuild, nullptr, nullptr);
    FakeHost host;
    SimFolder sim;
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(s_buildOffset, 0);
    EXPECT_EQ(s_build, std::string("Dec  8 2025 20:31:39", 21));
}

// ---- Deprecation ------------------------------------------------------------

TEST_F(DataRefs, DeprecatedItemsAreWarnedOncePerNameAndAlertedOncePerPlugin) {
    static int old = 1;  // the simulator publishes before start-up, with no plugin current
    RegisterInt("sim/old/deprecated", &old, tvpmType_Int | tvpm_DataRefDeprecatedFlag);
    RegisterInt("sim/old/replaced", &old, tvpmType_Int | tvpm_DataRefReplacedFlag);
    const std::string kDeprecated =
        "Dataref 'sim/old/deprecated' is deprecated and will be removed in a future version.";
    const std::string kReplaced = "Dataref 'sim/old/replaced' has been replaced. Please use the new name.";
    Start();
    EXPECT_NE(TVPMFindDataRef("sim/old/deprecated"), nullptr);
    EXPECT_EQ(Occurrences(host.Log(), "deprecated"), 0u) << "the simulator is never warned";
    RunAs("alpha.tvp", [] {
        EXPECT_NE(TVPMFindDataRef("sim/old/deprecated"), nullptr);
        TVPMFindDataRef("sim/old/deprecated");
        TVPMFindDataRef("sim/old/replaced");
    });
    EXPECT_EQ(ErrorsOf(alpha), (Texts{kDeprecated, kReplaced}));
    EXPECT_EQ(Occurrences(host.Log(), "[alpha.tvp]: " + kDeprecated + "\n"), 1u);
    EXPECT_EQ(Occurrences(host.Log(), "[alpha.tvp]: " + kReplaced + "\n"), 1u);
    const std::vector<HostCall> alerts = host.CallsTo("TVPMDisplayDismissableAlert_f");
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].args, (Texts{"\"" + sim.PluginsDir() + "/alpha.tvp\"", "\"Deprecation\"",
                                     "\"Deprecated dataref use by alpha.tvp\"",
                                     "\"sim/old/deprecated\"",
                                     "\"The author should update this to ensure future compatibility.\"",
                                     "\"Please see the log for more details.\""}));

    TVPMDataRef own = nullptr;
    RunAs("beta.tvp", [&] {
        TVPMFindDataRef("sim/old/replaced");
        own = RegisterInt("test/flags", &s_beta, tvpmType_Int | tvpm_DataRefReplacedFlag);
        TVPMFindDataRef("test/flags");
    });
    EXPECT_EQ(ErrorsOf(beta), Texts{kReplaced}) << "plugins cannot publish deprecated items";
    EXPECT_EQ(TVPMGetDataRefTypes(own), tvpmType_Int);
    EXPECT_EQ(host.Count("TVPMDisplayDismissableAlert_f"), 2u) << "every plugin gets its own first alert";
}

// ---- Enumeration and info ------------------------------------------------------

TEST_F(DataRefs, EnumerationFillsTheCallersArrayAndReportsBadArguments) {
    int storage = 0;
    const TVPMDataRef made = RegisterInt("sim/a", &storage);
    Start();
    TVPMDataRef all = nullptr;
    std::vector<TVPMDataRef> none(2, nullptr);
    RunAs("beta.tvp", [&] {
        TVPMGetDataRefsByIndex(0, 1, &all);
        TVPMGetDataRefsByIndex(1, 0, none.data());
        TVPMGetDataRefsByIndex(-1, 1, none.data());
        TVPMGetDataRefsByIndex(0, 2, none.data());
        TVPMGetDataRefsByIndex(0, 1, nullptr);
        TVPMGetDataRefsByIndex(0, -4, none.data());
    });
    EXPECT_EQ(all, made);
    EXPECT_EQ(none, std::vector<TVPMDataRef>(2, nullptr));
    EXPECT_EQ(ErrorsOf(beta), (Texts{"Argument 'offset' is out of range", "Argument 'offset' is out of range",
                                     "Argument 'count' is too large", "Argument 'out_memory' is null"}));
}

TEST_F(DataRefs, InfoNeedsTheKnownStructSize) {
    Start();
    TVPMDataRef item = RunAs<TVPMDataRef>("alpha.tvp", [] {
        return RegisterIntItem("test/info", tvpmType_Float | tvpmType_Double, nullptr, nullptr, nullptr);
    });
    TVPMDataRefInfo_t info{};
    RunAs("beta.tvp", [&] {
        for (int size : {24, 40}) {
            info.structSize = size;
            TVPMGetDataRefInfo(item, &info);
        }
        TVPMGetDataRefInfo(item, nullptr);
    });
    const std::string bad = "Argument 'outInfo' needs a structSize set to a legal and known value";
    EXPECT_EQ(ErrorsOf(beta), (Texts{bad, bad, "Argument 'outInfo' is null"}));
    EXPECT_EQ(info.name, nullptr);

    info = InfoOf(item);
    EXPECT_STREQ(info.name, "test/info");
    EXPECT_EQ(info.type, tvpmType_Float | tvpmType_Double);
    EXPECT_EQ(info.writable, 0);
    EXPECT_EQ(info.owner, alpha);
    EXPECT_EQ(TVPMCanWriteDataRef(item), 0);

    host.Shutdown();
    info = InfoOf(item);
    EXPECT_EQ(info.owner, -1) << "unloading the owner withdraws its items";
    EXPECT_EQ(TVPMIsDataRefGood(item), 0);
}

// ---- New-item notices -----------------------------------------------------------

TEST_F(DataRefs, NewItemNoticeGoesOnlyToPluginsThatAskedWithTheTotal) {
    static std::vector<std::pair<std::string, int>> notices;
    for (const char* who : {"alpha.tvp", "beta.tvp"})
        Script(who).message = [who](TVPMPluginID from, int message, void* param) {
            if (message == TVPM_MSG_DATAREFS_ADDED && from == 0) notices.emplace_back(who, *static_cast<int*>(param));
        };
    Script("alpha.tvp").enable = [] {
        TVPMEnableFeature("TVPM_WANTS_DATAREF_NOTIFICATIONS", 1);
        return 1;
    };
    int storage = 0;
    RegisterInt("sim/a", &storage);
    Start();
    TVPMEventHook(tvpm_CheckNewDatarefs, 0, 0, 0, 0);
    TVPMEventHook(tvpm_CheckNewDatarefs, 0, 0, 0, 0);  // nothing new, no notice
    RegisterInt("sim/b", &storage);
    RegisterInt("sim/c", &storage);
    TVPMEventHook(tvpm_CheckNewDatarefs, 0, 0, 0, 0);
    EXPECT_EQ(notices, (std::vector<std::pair<std::string, int>>{{"alpha.tvp", 1}, {"alpha.tvp", 3}}))
        << "the total, not the number added";
}

TEST(DataRefsAtScale, ReadersSeeEveryPublishedItemWhileAnotherThreadRegistersAndHandlesStayPut) {
    constexpr int kItems = 30000;
    std::vector<TVPMDataRef> made(kItems);
    int storage = 0;
    std::thread writer([&] {
        for (int i = 0; i < kItems; ++i)
            made[static_cast<size_t>(i)] = RegisterInt("sim/threaded/" + std::to_string(i), &storage);
    });
    std::vector<TVPMDataRef> seen;
    int count = 0, incomplete = 0;
    while (count < kItems) {
        count = TVPMCountDataRefs();
        if (count == 0) continue;
        seen.resize(static_cast<size_t>(count));
        TVPMGetDataRefsByIndex(0, count, seen.data());
        if (TVPMGetDataRefTypes(seen.back()) != tvpmType_Int) ++incomplete;
    }
    writer.join();
    EXPECT_EQ(incomplete, 0) << "an item is counted only once complete";
    EXPECT_EQ(seen, made);
    // Far more blocks than the table's first segment holds: handles stay put and findable.
    for (size_t i = 0; i < made.size(); i += 97) {
        EXPECT_EQ(TVPMIsDataRefGood(made[i]), 1);
        EXPECT_EQ(TVPMIsDataRefGood(static_cast<char*>(made[i]) + 1), 0);
        EXPECT_EQ(TVPMFindDataRef(("sim/threaded/" + std::to_string(i)).c_str()), made[i]);
    }
    EXPECT_EQ(TVPMIsDataRefGood(static_cast<char*>(made.back()) + 4096), 0);
}
