// test_datarefs.cpp: the data-item registry: lookup, ownership, revival, deprecation warnings, enumeration, info, the build string and new-item notices.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "FakeHost.h"
#include "Harness.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMPlugin.h"
#include "data_test_util.h"

using namespace tvpmtest;
using namespace datatest;

namespace {

int ReadInt(void* ref) { return *static_cast<int*>(ref); }
void WriteInt(void* ref, int v) { *static_cast<int*>(ref) = v; }

TVPMDataRef RegisterInt(const char* name, int* storage, TVPMDataTypeID type = tvpmType_Int) {
    return TVPMRegisterDataAccessor(name, type, 1, ReadInt, WriteInt, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    storage, storage);
}

// A simulator folder with scripted plugins alpha and beta, each listening for
// errors (collector 1 and 2).
struct TwoPlugins : ::testing::Test {
    FakeHost host;
    SimFolder sim;
    void SetUp() override {
        sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
        sim.AddLoose("beta.tvp", BuiltPlugin("scripted.tvp"));
        Script("alpha.tvp").enable = [] { ListenForErrors<1>(); return 1; };
        Script("beta.tvp").enable = [] { ListenForErrors<2>(); return 1; };
    }
    void Start() { ASSERT_EQ(host.Start(sim.Root()), 23); }
};

int s_alpha = 11, s_beta = 22;

}  // namespace

TEST_F(TwoPlugins, HandlesSurviveUnregistrationAndAreRevivedByName) {
    Start();
    EXPECT_EQ(TVPMFindDataRef("test/nobody"), nullptr);
    EXPECT_EQ(TVPMFindDataRef(nullptr), nullptr);
    TVPMDataRef first = nullptr;
    AsPlugin("alpha.tvp", [&] { first = RegisterInt("test/value", &s_alpha); });
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(TVPMFindDataRef("test/value"), first);
    EXPECT_EQ(TVPMIsDataRefGood(first), 1);

    AsPlugin("alpha.tvp", [&] { TVPMUnregisterDataAccessor(first); });
    EXPECT_EQ(TVPMFindDataRef("test/value"), nullptr);
    EXPECT_EQ(TVPMIsDataRefGood(first), 0);
    EXPECT_EQ(TVPMGetDatai(first), 0);

    TVPMDataRef again = nullptr;
    AsPlugin("beta.tvp", [&] { again = RegisterInt("test/value", &s_beta); });
    EXPECT_EQ(again, first);
    EXPECT_EQ(TVPMGetDatai(first), 22);
    TVPMDataRefInfo_t info{};
    info.structSize = sizeof info;
    TVPMGetDataRefInfo(first, &info);
    EXPECT_EQ(info.owner, IdOf("beta.tvp"));
    EXPECT_TRUE(Errors().empty());
}

TEST_F(TwoPlugins, RegisteringALiveNameReturnsTheOwnersHandle) {
    Start();
    TVPMDataRef mine = nullptr, theirs = nullptr;
    AsPlugin("alpha.tvp", [&] { mine = RegisterInt("test/taken", &s_alpha); });
    AsPlugin("beta.tvp", [&] { theirs = RegisterInt("test/taken", &s_beta); });
    EXPECT_EQ(theirs, mine);
    EXPECT_EQ(Errors()[2], std::vector<std::string>{"Dataref is already registered by someone else."});
    EXPECT_EQ(TVPMGetDatai(mine), 11) << "the first owner's accessors are kept";
}

TEST_F(TwoPlugins, UnregisterRefusesWhatIsNotAnItemOrNotYours) {
    Start();
    TVPMDataRef item = nullptr;
    AsPlugin("alpha.tvp", [&] { item = RegisterInt("test/owned", &s_alpha); });
    int local = 0;
    AsPlugin("beta.tvp", [&] {
        TVPMUnregisterDataAccessor(nullptr);
        TVPMUnregisterDataAccessor(static_cast<char*>(item) + 8);
        TVPMUnregisterDataAccessor(&local);
        TVPMUnregisterDataAccessor(item);
    });
    const std::string illegal = "Dataref is illegal and cannot be unregistered.";
    EXPECT_EQ(Errors()[2], (std::vector<std::string>{
                               illegal, illegal, illegal,
                               "Dataref is not owned by you - you cannot unregsiter."}));
    EXPECT_EQ(TVPMIsDataRefGood(item), 1);
    EXPECT_EQ(TVPMIsDataRefGood(static_cast<char*>(item) + 8), 0);
    EXPECT_EQ(TVPMIsDataRefGood(&local), 0);

    AsPlugin("alpha.tvp", [&] {
        TVPMUnregisterDataAccessor(item);
        TVPMUnregisterDataAccessor(item);
    });
    EXPECT_EQ(Errors()[1], std::vector<std::string>{
                               "Dataref is not owned by you - you cannot unregsiter."})
        << "a dead item belongs to nobody";
}

TEST(DataRefsBeforeStart, RegistrationsWorkBeforeTheHostTableArrives) {
    int value = 5;
    TVPMDataRef early = RegisterInt("sim/early", &value);
    ASSERT_NE(early, nullptr);
    EXPECT_EQ(TVPMGetDatai(early), 5);
    EXPECT_EQ(TVPMFindDataRef("sim/early"), early);
    EXPECT_EQ(RegisterInt("sim/early", &value), early);
    EXPECT_EQ(TVPMCountDataRefs(), 1);
}

// ---- Build string -----------------------------------------------------------

namespace {
std::string s_build;
int s_buildOffset = -1, s_buildLength = -1;
void WriteBuild(void*, void* bytes, int offset, int length) {
    s_build.assign(static_cast<const char*>(bytes), static_cast<size_t>(length));
    s_buildOffset = offset;
    s_buildLength = length;
}
}  // namespace

TEST(BuildString, WrittenAtStartUpWhenTheHostPublishedTheItem) {
    FakeHost host;
    SimFolder sim;
    TVPMRegisterDataAccessor("sim/version/tvpm_build_string", tvpmType_Data, 1, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, WriteBuild, nullptr, nullptr);
    ASSERT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(s_buildOffset, 0);
    EXPECT_EQ(s_buildLength, 21);
    EXPECT_EQ(s_build, std::string("Dec  8 2025 20:31:39", 21));
}

TEST(BuildString, MissingItemIsSkipped) {
    FakeHost host;
    SimFolder sim;
    EXPECT_EQ(host.Start(sim.Root()), 23);
    EXPECT_EQ(TVPMCountDataRefs(), 0);
}

// ---- Deprecation ------------------------------------------------------------

namespace {
int s_old = 1;
struct Deprecations : TwoPlugins {
    void SetUp() override {
        TwoPlugins::SetUp();
        // The simulator publishes before start-up, with no plugin current.
        RegisterInt("sim/old/deprecated", &s_old, tvpmType_Int | tvpm_DataRefDeprecatedFlag);
        RegisterInt("sim/old/replaced", &s_old, tvpmType_Int | tvpm_DataRefReplacedFlag);
        RegisterInt("sim/old/also_deprecated", &s_old, tvpmType_Int | tvpm_DataRefDeprecatedFlag);
    }
    std::vector<HostCall> Alerts() const { return host.CallsTo("TVPMDisplayDismissableAlert_f"); }
};
const char* kDeprecatedText =
    "Dataref 'sim/old/deprecated' is deprecated and will be removed in a future version.";
const char* kReplacedText = "Dataref 'sim/old/replaced' has been replaced. Please use the new name.";
}  // namespace

TEST_F(Deprecations, WarnedOncePerNameAndAlertedOncePerPlugin) {
    Start();
    TVPMDataRef found[3] = {};
    AsPlugin("alpha.tvp", [&] {
        found[0] = TVPMFindDataRef("sim/old/deprecated");
        found[1] = TVPMFindDataRef("sim/old/deprecated");
        found[2] = TVPMFindDataRef("sim/old/replaced");
    });
    EXPECT_NE(found[0], nullptr);
    EXPECT_EQ(found[1], found[0]);
    EXPECT_NE(found[2], nullptr);
    EXPECT_EQ(Errors()[1], (std::vector<std::string>{kDeprecatedText, kReplacedText}));
    const std::string log = host.Log();
    EXPECT_EQ(Occurrences(log, std::string("[alpha.tvp]: ") + kDeprecatedText + "\n"), 1u);
    EXPECT_EQ(Occurrences(log, std::string("[alpha.tvp]: ") + kReplacedText + "\n"), 1u);

    const std::vector<HostCall> alerts = Alerts();
    ASSERT_EQ(alerts.size(), 1u);
    const std::vector<std::string>& args = alerts[0].args;
    ASSERT_EQ(args.size(), 6u);
    EXPECT_EQ(args[0], "\"" + sim.PluginsDir() + "/alpha.tvp\"");
    EXPECT_EQ(args[1], "\"Deprecation\"");
    EXPECT_EQ(args[2], "\"Deprecated dataref use by alpha.tvp\"");
    EXPECT_EQ(args[3], "\"sim/old/deprecated\"");
    EXPECT_EQ(args[4], "\"The author should update this to ensure future compatibility.\"");
    EXPECT_EQ(args[5], "\"Please see the log for more details.\"");

    AsPlugin("beta.tvp", [&] { TVPMFindDataRef("sim/old/replaced"); });
    EXPECT_EQ(Errors()[2], std::vector<std::string>{kReplacedText});
    EXPECT_EQ(Alerts().size(), 2u) << "every plugin gets its own first alert";
}

TEST_F(Deprecations, TheSimulatorItselfIsNeverWarned) {
    Start();
    EXPECT_NE(TVPMFindDataRef("sim/old/deprecated"), nullptr);
    EXPECT_EQ(Occurrences(host.Log(), "deprecated"), 0u);
    EXPECT_TRUE(Alerts().empty());
}

TEST_F(Deprecations, PluginsCannotPublishDeprecatedItems) {
    Start();
    TVPMDataRef item = nullptr;
    AsPlugin("alpha.tvp", [&] {
        item = RegisterInt("test/plugin_flags", &s_alpha, tvpmType_Int | tvpm_DataRefReplacedFlag);
    });
    EXPECT_EQ(TVPMGetDataRefTypes(item), tvpmType_Int);
    AsPlugin("beta.tvp", [&] { EXPECT_EQ(TVPMFindDataRef("test/plugin_flags"), item); });
    EXPECT_TRUE(Errors()[2].empty());
}

TEST_F(Deprecations, TheItemEditorGetsTheCallbackButNoLogLineOrAlert) {
    Script("alpha.tvp").start = [](char*, char* signature, char*) {
        strcpy(signature, "torvanesdk.examples.DataRefEditor");
        return 1;
    };
    Start();
    AsPlugin("alpha.tvp", [] {
        TVPMFindDataRef("sim/old/deprecated");
        TVPMFindDataRef("sim/old/deprecated");
    });
    EXPECT_EQ(Errors()[1], std::vector<std::string>{kDeprecatedText});
    EXPECT_EQ(Occurrences(host.Log(), "deprecated"), 0u);
    EXPECT_TRUE(Alerts().empty());
}

TEST_F(Deprecations, NoAlertFromAnOlderHostTable) {
    Start();
    host.hooks.version = 18;
    AsPlugin("alpha.tvp", [] { TVPMFindDataRef("sim/old/also_deprecated"); });
    host.hooks.version = TVPM_HOOKS_VERSION;
    EXPECT_EQ(Occurrences(host.Log(), "[alpha.tvp]: Dataref 'sim/old/also_deprecated'"), 1u);
    EXPECT_TRUE(Alerts().empty());
    AsPlugin("alpha.tvp", [] { TVPMFindDataRef("sim/old/deprecated"); });
    EXPECT_TRUE(Alerts().empty()) << "the one alert per plugin was due at its first lookup";
}

// ---- Enumeration and info ------------------------------------------------------

TEST_F(TwoPlugins, EnumerationCoversDeadItemsAndReportsBadArguments) {
    int storage = 0;
    std::vector<TVPMDataRef> made;
    for (int i = 0; i < 250; ++i)  // more than two blocks
        made.push_back(RegisterInt(("sim/many/" + std::to_string(i)).c_str(), &storage));
    Start();
    AsPlugin("alpha.tvp", [&] { made.push_back(RegisterInt("test/dies", &storage)); });
    AsPlugin("alpha.tvp", [&] { TVPMUnregisterDataAccessor(made.back()); });
    const int total = TVPMCountDataRefs();
    ASSERT_EQ(total, 251);

    std::vector<TVPMDataRef> all(static_cast<size_t>(total));
    std::vector<TVPMDataRef> none(2, nullptr);
    AsPlugin("beta.tvp", [&] {
        TVPMGetDataRefsByIndex(0, total, all.data());
        TVPMGetDataRefsByIndex(total, 0, none.data());
        TVPMGetDataRefsByIndex(-1, 1, none.data());
        TVPMGetDataRefsByIndex(total - 1, 2, none.data());
        TVPMGetDataRefsByIndex(0, 1, nullptr);
        TVPMGetDataRefsByIndex(3, -4, none.data());
    });
    EXPECT_EQ(all, made);
    EXPECT_EQ(none, std::vector<TVPMDataRef>(2, nullptr));
    EXPECT_EQ(Errors()[2], (std::vector<std::string>{
                               "Argument 'offset' is out of range", "Argument 'offset' is out of range",
                               "Argument 'count' is too large", "Argument 'out_memory' is null"}));
    AsPlugin("alpha.tvp", [&] { RegisterInt("test/dies", &storage); });
    EXPECT_EQ(TVPMCountDataRefs(), total) << "revival allocates nothing";
}

TEST_F(TwoPlugins, InfoNeedsTheKnownStructSize) {
    Start();
    TVPMDataRef item = nullptr;
    AsPlugin("alpha.tvp", [&] {
        item = TVPMRegisterDataAccessor("test/info", tvpmType_Float | tvpmType_Double, 0, nullptr,
                                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        nullptr);
    });
    TVPMDataRefInfo_t info{};
    AsPlugin("beta.tvp", [&] {
        for (int size : {24, 40}) {
            info.structSize = size;
            TVPMGetDataRefInfo(item, &info);
        }
        TVPMGetDataRefInfo(item, nullptr);
    });
    const std::string bad = "Argument 'outInfo' needs a structSize set to a legal and known value";
    EXPECT_EQ(Errors()[2], (std::vector<std::string>{bad, bad, "Argument 'outInfo' is null"}));
    EXPECT_EQ(info.name, nullptr);

    info.structSize = 32;
    TVPMGetDataRefInfo(item, &info);
    EXPECT_STREQ(info.name, "test/info");
    EXPECT_EQ(info.type, tvpmType_Float | tvpmType_Double);
    EXPECT_EQ(info.writable, 0);
    EXPECT_EQ(info.owner, IdOf("alpha.tvp"));
    EXPECT_EQ(TVPMCanWriteDataRef(item), 0);

    host.Shutdown();
    TVPMGetDataRefInfo(item, &info);
    EXPECT_EQ(info.owner, -1) << "unloading the owner withdraws its items";
    EXPECT_STREQ(info.name, "test/info");
    EXPECT_EQ(TVPMIsDataRefGood(item), 0);
}

// ---- New-item notices -----------------------------------------------------------

namespace {
std::vector<std::pair<std::string, int>> s_notices;
void RecordNotices(const char* who) {
    Script(who).message = [who](TVPMPluginID from, int message, void* param) {
        if (message == TVPM_MSG_DATAREFS_ADDED) {
            EXPECT_EQ(from, 0);
            s_notices.emplace_back(who, *static_cast<int*>(param));
        }
    };
}
}  // namespace

TEST_F(TwoPlugins, NewItemNoticeGoesOnlyToPluginsThatAskedWithTheTotal) {
    int storage = 0;
    RegisterInt("sim/a", &storage);
    Script("alpha.tvp").enable = [] {
        TVPMEnableFeature("TVPM_WANTS_DATAREF_NOTIFICATIONS", 1);
        return 1;
    };
    RecordNotices("alpha.tvp");
    RecordNotices("beta.tvp");
    Start();
    TVPMEventHook(tvpm_CheckNewDatarefs, 0, 0, 0, 0);
    EXPECT_EQ(s_notices, (std::vector<std::pair<std::string, int>>{{"alpha.tvp", 1}}));
    TVPMEventHook(tvpm_CheckNewDatarefs, 0, 0, 0, 0);
    EXPECT_EQ(s_notices.size(), 1u) << "nothing new, no notice";

    RegisterInt("sim/b", &storage);
    RegisterInt("sim/c", &storage);
    TVPMEventHook(tvpm_CheckNewDatarefs, 0, 0, 0, 0);
    ASSERT_EQ(s_notices.size(), 2u);
    EXPECT_EQ(s_notices[1].second, 3) << "the total, not the number added";
}

TEST(DataRefsAtScale, HandlesStayPutAndEnumerableAsTheTableGrows) {
    int storage = 0;
    std::vector<TVPMDataRef> made;
    for (int i = 0; i < 20000; ++i)  // far more blocks than the table's first segment holds
        made.push_back(RegisterInt(("sim/scale/" + std::to_string(i)).c_str(), &storage));
    std::vector<TVPMDataRef> all(made.size());
    TVPMGetDataRefsByIndex(0, static_cast<int>(all.size()), all.data());
    EXPECT_EQ(all, made);
    for (size_t i = 0; i < made.size(); i += 97) {
        EXPECT_EQ(TVPMIsDataRefGood(made[i]), 1);
        EXPECT_EQ(TVPMIsDataRefGood(static_cast<char*>(made[i]) + 1), 0);
        EXPECT_EQ(TVPMFindDataRef(("sim/scale/" + std::to_string(i)).c_str()), made[i]);
    }
    EXPECT_EQ(TVPMIsDataRefGood(static_cast<char*>(made.back()) + 4096), 0);
}

namespace {
TVPMDataRef s_seenFromErrorCallback = nullptr;
void LookUpWhileReporting(const char*) { s_seenFromErrorCallback = TVPMFindDataRef("test/taken"); }
}  // namespace

TEST_F(TwoPlugins, AnErrorCallbackMayUseTheRegistry) {
    Start();
    TVPMDataRef mine = nullptr;
    AsPlugin("alpha.tvp", [&] { mine = RegisterInt("test/taken", &s_alpha); });
    AsPlugin("beta.tvp", [] {
        TVPMSetErrorCallback(LookUpWhileReporting);
        RegisterInt("test/taken", &s_beta);
    });
    EXPECT_EQ(s_seenFromErrorCallback, mine);
}

TEST(DataRefsAcrossThreads, ReadersSeeEveryPublishedItemWhileAnotherThreadRegisters) {
    constexpr int kItems = 30000;
    std::vector<TVPMDataRef> made(kItems);
    int storage = 0;
    std::thread writer([&] {
        for (int i = 0; i < kItems; ++i)
            made[static_cast<size_t>(i)] = RegisterInt(("sim/threaded/" + std::to_string(i)).c_str(), &storage);
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
}
