// test_dataref_access.cpp: typed reads and writes reach exactly one accessor in the owner's context and shared data between plugins.
#include <gtest/gtest.h>

#include "TVPM/TVPMDataAccess.h"
#include "data_test_util.h"

using namespace datatest;
using Texts = std::vector<std::string>;

namespace {

// Every accessor call as "name args", with the plugin current during it.
Texts s_calls;
std::vector<TVPMPluginID> s_callers;
int s_refTag = 7;

void Note(const std::string& what) {
    s_calls.push_back(what);
    s_callers.push_back(TVPMGetMyID());
}
std::string Args(const void* p, int offset, int n) {
    return std::string(p ? "buf " : "null ") + std::to_string(offset) + " " + std::to_string(n);
}
int GetI(void* ref) { Note("readInt " + std::to_string(*static_cast<int*>(ref))); return 41; }
void SetI(void*, int v) { Note("writeInt " + std::to_string(v)); }
float GetF(void*) { Note("readFloat"); return 1.5f; }
void SetF(void*, float v) { Note("writeFloat " + std::to_string(v)); }
double GetD(void*) { Note("readDouble"); return 2.25; }
void SetD(void*, double v) { Note("writeDouble " + std::to_string(v)); }
int GetVI(void*, int* out, int offset, int max) { Note("readIntArray " + Args(out, offset, max)); return 3; }
void SetVI(void*, int* in, int offset, int n) { Note("writeIntArray " + Args(in, offset, n)); }
int GetVF(void*, float* out, int offset, int max) { Note("readFloatArray " + Args(out, offset, max)); return 4; }
void SetVF(void*, float* in, int offset, int n) { Note("writeFloatArray " + Args(in, offset, n)); }
int GetB(void*, void* out, int offset, int max) { Note("readData " + Args(out, offset, max)); return 5; }
void SetB(void*, void* in, int offset, int n) { Note("writeData " + Args(in, offset, n)); }
int Throwing(void*) { throw 1; }

TVPMDataRef RegisterAll(const char* name, int writable) {
    return TVPMRegisterDataAccessor(name, 63, writable, GetI, SetI, GetF, SetF, GetD, SetD, GetVI,
                                    SetVI, GetVF, SetVF, GetB, SetB, &s_refTag, &s_refTag);
}

// Arguments go through unchecked, null buffers and negative offsets included.
std::vector<double> ReadAndWriteEverything(TVPMDataRef ref) {
    int ints[4] = {};
    char bytes[4] = {};
    std::vector<double> results{static_cast<double>(TVPMGetDatai(ref)), TVPMGetDataf(ref), TVPMGetDatad(ref),
                                static_cast<double>(TVPMGetDatavi(ref, ints, 1, 4)),
                                static_cast<double>(TVPMGetDatavf(ref, nullptr, -3, 0)),
                                static_cast<double>(TVPMGetDatab(ref, bytes, 3, 4))};
    TVPMSetDatai(ref, 9);
    TVPMSetDataf(ref, 0.5f);
    TVPMSetDatad(ref, 0.25);
    TVPMSetDatavi(ref, ints, 1, 2);
    TVPMSetDatavf(ref, nullptr, 2, 3);
    TVPMSetDatab(ref, bytes, -1, 1 << 30);
    return results;
}
const Texts kReads = {"readInt 7", "readFloat", "readDouble", "readIntArray buf 1 4", "readFloatArray null -3 0",
                      "readData buf 3 4"};
const std::vector<double> kNothing(6, 0);

struct TypedAccess : TwoPlugins {
    TVPMDataRef all = nullptr;
    void SetUp() override {
        TwoPlugins::SetUp();
        Script("alpha.tvp").enable = [this] {
            if (!all) all = RegisterAll("test/all", 1);
            return 1;
        };
        Start();
    }
};

}  // namespace

TEST_F(TypedAccess, EachCallReachesItsOwnAccessorInTheOwnersContext) {
    std::vector<double> results;
    RunAs("beta.tvp", [&] { results = ReadAndWriteEverything(all); });
    EXPECT_EQ(results, (std::vector<double>{41, 1.5, 2.25, 3, 4, 5}));
    Texts expected = kReads;
    expected.insert(expected.end(), {"writeInt 9", "writeFloat 0.500000", "writeDouble 0.250000",
                                     "writeIntArray buf 1 2", "writeFloatArray null 2 3",
                                     "writeData buf -1 1073741824"});
    EXPECT_EQ(s_calls, expected);
    EXPECT_EQ(s_callers, std::vector<TVPMPluginID>(12, alpha));
}

TEST_F(TypedAccess, SilentZeroForNullHandlesMissingAccessorsReadOnlyItemsThrowsAndOwnersThatCannotRun) {
    TVPMDataRef readOnly = nullptr, intOnly = nullptr, throwing = nullptr;
    RunAs("alpha.tvp", [&] {
        readOnly = RegisterAll("test/read_only", 0);
        intOnly = RegisterIntItem("test/int_only", tvpmType_Int, GetI, SetI, &s_refTag);
        throwing = RegisterIntItem("test/throws", tvpmType_Int, Throwing, SetI, nullptr);
    });
    RunAs("beta.tvp", [&] {
        EXPECT_EQ(ReadAndWriteEverything(nullptr), kNothing);
        EXPECT_TRUE(s_calls.empty());
        ReadAndWriteEverything(readOnly);
        EXPECT_EQ(s_calls, kReads) << "only the reads ran";
        s_calls.clear();
        EXPECT_EQ(ReadAndWriteEverything(intOnly), (std::vector<double>{41, 0, 0, 0, 0, 0}));
        EXPECT_EQ(s_calls, (Texts{"readInt 7", "writeInt 9"}));
        s_calls.clear();
        EXPECT_EQ(ReadAndWriteEverything(throwing), kNothing);
        EXPECT_EQ(s_calls, Texts{"writeInt 9"});
        EXPECT_EQ(TVPMGetMyID(), beta) << "the caller is current again";
    });
    EXPECT_TRUE(ErrorsOf(beta).empty()) << "no messages on this path";

    s_calls.clear();
    TVPMDisablePlugin(alpha);
    EXPECT_EQ(ReadAndWriteEverything(all), kNothing);
    EXPECT_TRUE(s_calls.empty());
    EXPECT_EQ(TVPMGetMyID(), 0);
    TVPMEnablePlugin(alpha);
    EXPECT_EQ(TVPMGetDatavf(all, nullptr, 0, 0), 4);
}

// ---- Shared data ---------------------------------------------------------------

namespace {

Texts s_notified;
void Changed(void* refcon) {
    s_notified.push_back(std::string(static_cast<const char*>(refcon)) + " as " + std::to_string(TVPMGetMyID()));
}
char kAlphaTag[] = "alpha", kBetaTag[] = "beta", kOtherTag[] = "other", kLateTag[] = "late";

struct SharedData : TwoPlugins {
    void SetUp() override {
        TwoPlugins::SetUp();
        Start();
    }
    void Share(const char* key, const char* name, TVPMDataTypeID type, TVPMDataChanged_f cb, char* tag) {
        RunAs(key, [&] { TVPMShareData(name, type, cb, tag); });
    }
    std::string Told(const char* tag, TVPMPluginID as) const { return std::string(tag) + " as " + std::to_string(as); }
};

}  // namespace

TEST_F(SharedData, PluginsShareAValueThatOutlivesThemAndAreToldOfEveryWriteInOrder) {
    RunAs("alpha.tvp", [] { EXPECT_EQ(TVPMShareData("shared/x", tvpmType_Int, Changed, kAlphaTag), 1); });
    RunAs("beta.tvp", [] {
        EXPECT_EQ(TVPMShareData("shared/x", tvpmType_Int, Changed, kBetaTag), 1);
        EXPECT_EQ(TVPMShareData("shared/x", tvpmType_Float, Changed, kBetaTag), 0);
    });
    TVPMDataRef x = TVPMFindDataRef("shared/x");
    RunAs("alpha.tvp", [&] {
        TVPMSetDatai(x, 42);
        TVPMSetDatai(x, 42);
    });
    const std::string a = Told("alpha", alpha), b = Told("beta", beta);
    EXPECT_EQ(s_notified, (Texts{a, b, a, b}));
    EXPECT_EQ(TVPMGetDatai(x), 42);
    EXPECT_EQ(TVPMGetDataf(x), 0.0f) << "no conversion";
    EXPECT_EQ(TVPMCanWriteDataRef(x), 1);
    EXPECT_EQ(InfoOf(x).owner, 0) << "the library owns shared items";

    s_notified.clear();
    TVPMDisablePlugin(alpha);
    TVPMSetDatai(x, 1);
    EXPECT_EQ(s_notified, Texts{b}) << "a disabled subscriber is skipped";
    TVPMEnablePlugin(alpha);

    s_notified.clear();
    RunAs("beta.tvp", [] {
        EXPECT_EQ(TVPMUnshareData(nullptr, tvpmType_Int, Changed, kBetaTag), 0);
        EXPECT_EQ(TVPMUnshareData("shared/x", tvpmType_Int, Changed, kOtherTag), 0);
        EXPECT_EQ(TVPMUnshareData("shared/x", tvpmType_Float, Changed, kBetaTag), 0);
        EXPECT_EQ(TVPMUnshareData("shared/x", tvpmType_Int, Changed, kAlphaTag), 0) << "only one's own";
        EXPECT_EQ(TVPMUnshareData("shared/x", tvpmType_Int, Changed, kBetaTag), 1);
        EXPECT_EQ(TVPMUnshareData("shared/x", tvpmType_Int, Changed, kBetaTag), 0);
    });
    TVPMSetDatai(x, 2);
    EXPECT_EQ(s_notified, Texts{a});

    host.Shutdown();
    s_notified.clear();
    EXPECT_EQ(TVPMGetDatai(x), 2) << "the value outlives its sharers";
    TVPMSetDatai(x, 3);
    EXPECT_TRUE(s_notified.empty()) << "departed subscribers are forgotten";
}

TEST_F(SharedData, ArraysGrowToTheHighestItemWritten) {
    Share("alpha.tvp", "shared/ints", tvpmType_IntArray, nullptr, nullptr);
    TVPMDataRef ints = TVPMFindDataRef("shared/ints");
    EXPECT_EQ(TVPMGetDatavi(ints, nullptr, 0, 0), 1);
    int three[3] = {7, 8, 9}, back[8] = {};
    TVPMSetDatavi(ints, three, 2, 3);
    TVPMSetDatavi(ints, three, -1, 3);
    TVPMSetDatavi(ints, three, 1, 1);
    EXPECT_EQ(TVPMGetDatavi(ints, nullptr, 0, 0), 5) << "never shrinks";
    EXPECT_EQ(TVPMGetDatavi(ints, back, 1, 8), 4);
    EXPECT_EQ(std::vector<int>(back, back + 4), (std::vector<int>{7, 7, 8, 9}));
    EXPECT_EQ(TVPMGetDatavi(ints, back, 2, 2), 2);
    EXPECT_EQ(TVPMGetDatavi(ints, back, 9, 2), 0) << "past the end";
    EXPECT_EQ(TVPMGetDatavi(ints, back, -1, 2), 0);

    Share("alpha.tvp", "shared/bytes", tvpmType_Data, nullptr, nullptr);
    TVPMDataRef bytes = TVPMFindDataRef("shared/bytes");
    char text[] = "hello", out[16] = {};
    TVPMSetDatab(bytes, text, 0, 6);
    EXPECT_EQ(TVPMGetDatab(bytes, out, 0, 16), 6);
    EXPECT_STREQ(out, "hello");

    // Sharing a plugin's item name succeeds and leaves the item alone.
    RunAs("alpha.tvp", [] { RegisterIntItem("test/owned", tvpmType_Int, GetI, nullptr, &s_refTag); });
    RunAs("beta.tvp", [] { EXPECT_EQ(TVPMShareData("test/owned", tvpmType_Int, nullptr, nullptr), 1); });
    EXPECT_EQ(InfoOf(TVPMFindDataRef("test/owned")).owner, alpha);
}

namespace {
// Alpha's subscription leaves when first told and brings in a new one.
void LeavesWhenTold(void* refcon) {
    Changed(refcon);
    TVPMUnshareData("shared/turnover", tvpmType_Int, LeavesWhenTold, refcon);
    TVPMShareData("shared/turnover", tvpmType_Int, Changed, kLateTag);
}
}  // namespace

TEST_F(SharedData, SubscribersLeavingOrJoiningWhileToldLoseNobody) {
    Share("alpha.tvp", "shared/turnover", tvpmType_Int, LeavesWhenTold, kAlphaTag);
    Share("beta.tvp", "shared/turnover", tvpmType_Int, Changed, kBetaTag);
    TVPMDataRef n = TVPMFindDataRef("shared/turnover");
    TVPMSetDatai(n, 1);
    EXPECT_EQ(s_notified, (Texts{Told("alpha", alpha), Told("beta", beta)}));
    s_notified.clear();
    TVPMSetDatai(n, 2);
    EXPECT_EQ(s_notified, (Texts{Told("beta", beta), Told("late", alpha)}));
}
