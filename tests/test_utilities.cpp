// test_utilities.cpp: the log, paths, path splitting, directory listings and data files, as plugins see them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;
namespace fs = std::filesystem;

namespace {

using Lines = std::vector<std::string>;

std::vector<std::string> s_errors;
void CollectError(const char* text) { s_errors.push_back(text); }

// Runs action as the plugin alpha.tvp (its message handler), with an error callback installed.
void AsPlugin(std::function<void()> action) {
    static std::function<void()> pending;
    pending = std::move(action);
    Script("alpha.tvp").message = [](TVPMPluginID, int, void*) {
        TVPMSetErrorCallback(CollectError);
        pending();
    };
    TVPMSendMessageToPlugin(TVPMFindPluginBySignature("test.alpha.tvp"), 1, nullptr);
}

std::string Split(const std::string& path, std::string& folder) {
    std::vector<char> buf(path.begin(), path.end());
    buf.push_back(0);
    const std::string file = TVPMExtractFileAndPath(buf.data());
    folder = buf.data();
    return file;
}

Lines Sorted(Lines v) {
    std::sort(v.begin(), v.end());
    return v;
}

}  // namespace

TEST(Utilities, LogGoesToTheSimulatorUntouchedAndNeverBeforeStartUp) {
    TVPMDebugString("before start-up\n");  // no table yet: dropped
    FakeHost host;
    SimFolder sim;
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    TVPMDebugString("one line\n");
    TVPMDebugString("");
    TVPMDebugString(nullptr);
    EXPECT_EQ(host.Count("TVPMDebugString_f"), 2u);
    EXPECT_EQ(host.Log(), "one line\n");
    EXPECT_STREQ(TVPMGetDirectorySeparator(), "/");
    host.Shutdown();
}

TEST(Utilities, SystemAndPrefsPathsComeFromTheSimulator) {
    FakeHost host;
    SimFolder sim;
    host.On<&TVPMHooks::TVPMGetPrefsPath_f>([](char* out) { strcpy(out, "/prefs/Torvane.prf"); });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    char path[512] = "";
    TVPMGetSystemPath(path);
    EXPECT_EQ(std::string(path), sim.Root());
    TVPMGetPrefsPath(path);
    EXPECT_STREQ(path, "/prefs/Torvane.prf");
    host.ClearCalls();
    TVPMGetSystemPath(nullptr);
    TVPMGetPrefsPath(nullptr);
    EXPECT_EQ(host.Calls().size(), 0u);
    host.Shutdown();
}

TEST(Utilities, ExtractFileAndPathSplitsInPlace) {
    std::string folder;
    EXPECT_EQ(Split("a/b/c.txt", folder), "c.txt");
    EXPECT_EQ(folder, "a/b");
    EXPECT_EQ(Split("a/b/", folder), "b");
    EXPECT_EQ(folder, "a");
    EXPECT_EQ(Split("name", folder), "name");
    EXPECT_EQ(folder, "name");  // no separator: the whole string is the file
    EXPECT_EQ(Split("/x", folder), "x");
    EXPECT_EQ(folder, "");
    EXPECT_EQ(Split("/", folder), "");
    EXPECT_EQ(Split("", folder), "");
    EXPECT_EQ(TVPMExtractFileAndPath(nullptr), nullptr);
}

TEST(Utilities, DirectoryContentsArePackedUntilTheBufferIsFull) {
    SimFolder sim;
    const std::string dir = sim.MakeDir("list");
    for (const char* name : {"aaaa", "bb", "cccccc"})
        sim.WriteFile(std::string("list/") + name, "x");
    sim.MakeDir("list/sub");

    char buf[64];
    char* index[8] = {};
    int total = -1, returned = -1;
    EXPECT_EQ(
        TVPMGetDirectoryContents(dir.c_str(), 0, buf, sizeof buf, index, 8, &total, &returned), 1);
    EXPECT_EQ(total, 4);
    ASSERT_EQ(returned, 4);
    Lines names;
    for (int i = 0; i < returned; ++i) names.push_back(index[i]);
    EXPECT_EQ(Sorted(names), (Lines{"aaaa", "bb", "cccccc", "sub"}));
    // Packed back to back, each with its zero.
    EXPECT_EQ(index[0], buf);
    for (int i = 1; i < returned; ++i) EXPECT_EQ(index[i], index[i - 1] + strlen(index[i - 1]) + 1);
    const Lines order = names;  // the fetch order, used below

    // A buffer too small for the first name: nothing returned, the true total, 0.
    const size_t firstLen = order[0].size();
    EXPECT_EQ(TVPMGetDirectoryContents(dir.c_str(), 0, buf, static_cast<int>(firstLen), index, 8,
                                       &total, &returned),
              0);
    EXPECT_EQ(total, 4);
    EXPECT_EQ(returned, 0);

    // Exactly the first name fits.
    EXPECT_EQ(TVPMGetDirectoryContents(dir.c_str(), 0, buf, static_cast<int>(firstLen + 1), nullptr,
                                       0, &total, &returned),
              0);
    EXPECT_EQ(returned, 1);
    EXPECT_EQ(std::string(buf), order[0]);

    // The index array limits too; a later start continues the listing.
    EXPECT_EQ(
        TVPMGetDirectoryContents(dir.c_str(), 1, buf, sizeof buf, index, 2, &total, &returned), 0);
    EXPECT_EQ(returned, 2);
    EXPECT_EQ(std::string(index[0]), order[1]);
    EXPECT_EQ(
        TVPMGetDirectoryContents(dir.c_str(), 3, buf, sizeof buf, index, 8, nullptr, &returned), 1);
    EXPECT_EQ(returned, 1);
    EXPECT_EQ(std::string(index[0]), order[3]);
    EXPECT_EQ(
        TVPMGetDirectoryContents(dir.c_str(), 4, buf, sizeof buf, index, 8, &total, &returned), 1);
    EXPECT_EQ(returned, 0);

    // Missing folder and null arguments: an empty listing, no crash.
    EXPECT_EQ(TVPMGetDirectoryContents((dir + "/none").c_str(), 0, buf, sizeof buf, index, 8,
                                       &total, &returned),
              1);
    EXPECT_EQ(total, 0);
    EXPECT_EQ(TVPMGetDirectoryContents(nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr), 1);
    EXPECT_EQ(TVPMGetDirectoryContents(dir.c_str(), 0, nullptr, 100, nullptr, 0, &total, &returned),
              0);
    EXPECT_EQ(total, 4);
    EXPECT_EQ(returned, 0);
}

TEST(Utilities, DataFilesCheckTheirTypeBeforeReachingTheSimulator) {
    FakeHost host;
    SimFolder sim;
    sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
    host.On<&TVPMHooks::TVPMLoadDataFile_f>([](TVPMDataFileType, const char*) { return 1; });
    host.On<&TVPMHooks::TVPMSaveDataFile_f>([](TVPMDataFileType, const char*) { return 1; });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    static int results[6];
    AsPlugin([] {
        results[0] = TVPMLoadDataFile(3, "Output/situations/a.sit");
        results[1] = TVPMSaveDataFile(0, "Output/situations/a.sit");
        results[2] = TVPMLoadDataFile(tvpm_DataFile_Situation, "Output/situations/a.sit");
        results[3] = TVPMSaveDataFile(tvpm_DataFile_ReplayMovie, "Output/replays/b.rep");
        results[4] = TVPMLoadDataFile(-1, nullptr);
        results[5] = TVPMSaveDataFile(tvpm_DataFile_Situation, nullptr);
    });
    EXPECT_EQ(results[0], 0);
    EXPECT_EQ(results[1], 0);
    EXPECT_EQ(results[2], 1);
    EXPECT_EQ(results[3], 1);
    EXPECT_EQ(results[4], 0);
    EXPECT_EQ(results[5], 1);
    EXPECT_EQ(s_errors, (Lines{"Illegal file type passed to TVPMLoadDataFile.",
                               "Illegal file type passed to TVPMSaveDataFile.",
                               "Illegal file type passed to TVPMLoadDataFile."}));
    const auto loads = host.CallsTo("TVPMLoadDataFile_f");
    ASSERT_EQ(loads.size(), 1u);
    EXPECT_EQ(loads[0].args, (Lines{"1", "\"Output/situations/a.sit\""}));
    const auto saves = host.CallsTo("TVPMSaveDataFile_f");
    ASSERT_EQ(saves.size(), 2u);
    EXPECT_EQ(saves[0].args, (Lines{"2", "\"Output/replays/b.rep\""}));
    EXPECT_EQ(saves[1].args, (Lines{"1", "\"\""}));
    // Nothing of this reaches the log.
    EXPECT_EQ(host.Log(), "");
    host.Shutdown();
}

TEST(Utilities, ForwardersPassThrough) {
    FakeHost host;
    SimFolder sim;
    host.On<&TVPMHooks::TVPMGetLanguage_f>([] { return 3; });
    static int marker;
    host.On<&TVPMHooks::TVPMFindSymbol_f>([](const char*) { return static_cast<void*>(&marker); });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    TVPMSpeakString("hello");
    TVPMSimulateKeyPress(1, 65);
    EXPECT_EQ(TVPMGetLanguage(), 3);
    EXPECT_EQ(TVPMFindSymbol("HostFunc"), &marker);
    TVPMReloadScenery();
    TVPMSpeakString(nullptr);
    EXPECT_EQ(TVPMFindSymbol(nullptr), nullptr);
    EXPECT_EQ(host.SlotSequence(),
              (Lines{"TVPMSpeakString_f", "TVPMSimulateKeyPress_f", "TVPMGetLanguage_f",
                     "TVPMFindSymbol_f", "TVPMShiftScenery_f"}));
    EXPECT_EQ(host.Calls()[1].args, (Lines{"1", "65"}));
    EXPECT_EQ(host.Calls()[3].args, (Lines{"\"HostFunc\""}));
    host.Shutdown();
}
