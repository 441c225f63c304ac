// test_utilities.cpp: the log, versions, paths, path splitting, directory listings, data files and forwarders, as plugins see them.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;
using Utilities = SimTest;
using Lines = std::vector<std::string>;

TEST_F(Utilities, ForwardersPassThroughAndDropNullsAndNothingGoesOutBeforeStartUp) {
    TVPMDebugString("before start-up\n");
    int version = -1, mine = -1, app = -1;
    TVPMGetVersions(&version, &mine, &app);
    EXPECT_EQ((std::vector<int>{version, mine, app}), (std::vector<int>{0, 421, 0}));
    EXPECT_EQ(TVPMLoadDataFile(tvpm_DataFile_Situation, "a.sit"), 0);
    EXPECT_TRUE(host.Calls().empty());
    host.On<&TVPMHooks::TVPMGetPrefsPath_f>([](char* out) { strcpy(out, "/prefs/Torvane.prf"); });
    host.On<&TVPMHooks::TVPMGetLanguage_f>([] { return 3; });
    static int marker;
    host.On<&TVPMHooks::TVPMFindSymbol_f>([](const char*) { return static_cast<void*>(&marker); });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    char path[512] = "";
    TVPMGetSystemPath(path);
    EXPECT_EQ(std::string(path), sim.Root());
    TVPMGetPrefsPath(path);
    EXPECT_STREQ(path, "/prefs/Torvane.prf");
    host.ClearCalls();
    TVPMDebugString("one line\n");
    TVPMSpeakString("hello");
    TVPMSimulateKeyPress(1, 65);
    EXPECT_EQ(TVPMGetLanguage(), 3);
    EXPECT_EQ(TVPMFindSymbol("HostFunc"), &marker);
    TVPMReloadScenery();
    TVPMDebugString(nullptr);
    TVPMSpeakString(nullptr);
    TVPMGetSystemPath(nullptr);
    TVPMGetPrefsPath(nullptr);
    EXPECT_EQ(TVPMFindSymbol(nullptr), nullptr);
    EXPECT_EQ(host.SlotSequence(),
              (Lines{"TVPMDebugString_f", "TVPMSpeakString_f", "TVPMSimulateKeyPress_f",
                     "TVPMGetLanguage_f", "TVPMFindSymbol_f", "TVPMShiftScenery_f"}));
    EXPECT_EQ(host.Log(), "one line\n");
    EXPECT_EQ(host.Calls()[2].args, (Lines{"1", "65"}));
    EXPECT_EQ(host.Calls()[4].args, (Lines{"\"HostFunc\""}));
}

TEST_F(Utilities, ExtractFileAndPathSplitsInPlace) {
    const struct {
        const char *path, *file, *folder;
    } cases[] = {
        {"a/b/c.txt", "c.txt", "a/b"}, {"a/b/", "b", "a"}, {"name", "name", "name"},
        {"/x", "x", ""},               {"/", "", ""},       {"", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        std::vector<char> buf(c.path, c.path + strlen(c.path) + 1);
        EXPECT_STREQ(TVPMExtractFileAndPath(buf.data()), c.file);
        EXPECT_STREQ(buf.data(), c.folder);
    }
    EXPECT_EQ(TVPMExtractFileAndPath(nullptr), nullptr);
}

TEST_F(Utilities, DirectoryContentsArePackedUntilTheBufferOrIndexIsFull) {
    const std::string dir = sim.MakeDir("list");
    for (const char* name : {"aaaa", "bb", "cccccc"}) sim.WriteFile(std::string("list/") + name, "x");
    sim.MakeDir("list/sub");
    char buf[64];
    char* index[8] = {};
    int total = -1, returned = -1;
    EXPECT_EQ(TVPMGetDirectoryContents(dir.c_str(), 0, buf, sizeof buf, index, 8, &total, &returned), 1);
    ASSERT_EQ(returned, 4);
    const Lines order(index, index + 4);  // the fetch order
    EXPECT_EQ(std::set<std::string>(order.begin(), order.end()),
              (std::set<std::string>{"aaaa", "bb", "cccccc", "sub"}));
    for (int i = 1; i < 4; ++i) EXPECT_EQ(index[i], index[i - 1] + strlen(index[i - 1]) + 1);

    const int firstSize = static_cast<int>(order[0].size()) + 1;
    const int allSize = 5 + 3 + 7 + 4;
    const struct {
        const char* why;
        std::string folder;
        int first, bufSize, indexCount, done, total, returned;
        const char* firstName;
    } cases[] = {
        {"no room for the first name", dir, 0, firstSize - 1, 8, 0, 4, 0, nullptr},
        {"exactly the first name fits", dir, 0, firstSize, 8, 0, 4, 1, order[0].c_str()},
        {"one byte short of all four", dir, 0, allSize - 1, 8, 0, 4, 3, order[0].c_str()},
        {"the index array limits too", dir, 1, 64, 2, 0, 4, 2, order[1].c_str()},
        {"a later start continues", dir, 3, 64, 8, 1, 4, 1, order[3].c_str()},
        {"a missing folder is empty", dir + "/none", 0, 64, 8, 1, 0, 0, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        total = returned = -1;
        EXPECT_EQ(TVPMGetDirectoryContents(c.folder.c_str(), c.first, buf, c.bufSize, index,
                                           c.indexCount, &total, &returned),
                  c.done);
        EXPECT_EQ(total, c.total);
        EXPECT_EQ(returned, c.returned);
        if (c.firstName) {
            EXPECT_STREQ(index[0], c.firstName);
        }
    }
    EXPECT_EQ(TVPMGetDirectoryContents(nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr), 1);
    EXPECT_EQ(TVPMGetDirectoryContents(dir.c_str(), 0, nullptr, 100, nullptr, 0, &total, &returned), 0);
    EXPECT_EQ(returned, 0);
}

TEST_F(Utilities, DataFilesCheckTheirTypeBeforeReachingTheSimulator) {
    AddScripted({"alpha.tvp"});
    ReportErrorsOf("alpha.tvp");
    host.On<&TVPMHooks::TVPMLoadDataFile_f>([](TVPMDataFileType, const char*) { return 1; });
    host.On<&TVPMHooks::TVPMSaveDataFile_f>([](TVPMDataFileType, const char*) { return 1; });
    ASSERT_EQ(host.Start(sim.Root()), 23);
    host.ClearCalls();
    std::vector<int> results;
    RunAs("alpha.tvp", [&] {
        results = {TVPMLoadDataFile(3, "a.sit"), TVPMSaveDataFile(0, "a.sit"),
                   TVPMLoadDataFile(-1, nullptr), TVPMLoadDataFile(tvpm_DataFile_Situation, "a.sit"),
                   TVPMSaveDataFile(tvpm_DataFile_ReplayMovie, "b.rep"),
                   TVPMSaveDataFile(tvpm_DataFile_Situation, nullptr)};
    });
    EXPECT_EQ(results, (std::vector<int>{0, 0, 0, 1, 1, 1}));
    const std::string error = std::to_string(IdOf("alpha.tvp")) + ":Illegal file type passed to ";
    EXPECT_EQ(PluginErrors(), (Lines{error + "TVPMLoadDataFile.", error + "TVPMSaveDataFile.",
                                     error + "TVPMLoadDataFile."}));
    Lines passed;
    for (const HostCall& c : host.Calls()) passed.push_back(c.slot + " " + c.args.at(0) + " " + c.args.at(1));
    EXPECT_EQ(passed, (Lines{"TVPMLoadDataFile_f 1 \"a.sit\"", "TVPMSaveDataFile_f 2 \"b.rep\"",
                             "TVPMSaveDataFile_f 1 \"\""}));
}
