// unit_utilities_log.cpp: the formatted log line is bounded, and nothing is written before the simulator is there.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"

TVPMHooks* gHooks = nullptr;
TVPMPluginTable gAllPlugins;
TVPMCurrentPlugins gCurrentPlugins = {0, 0};
bool gTVPMDiagnostics = false;
void __TVPMValidateThreadSafety(const char*, const char*, int) {}
void TVPMSendError(const char*) {}

namespace {

std::vector<std::string> s_lines;
void DebugSlot(const char* text) { s_lines.push_back(text); }
void VersionsSlot(int* version, TVPMHostApplicationID* app) {
    *version = 1207;
    *app = 2;
}

class Log : public ::testing::Test {
protected:
    void SetUp() override {
        hooks.TVPMDebugString_f = DebugSlot;
        hooks.TVPMGetVersions_f = VersionsSlot;
    }
    void TearDown() override {
        gHooks = nullptr;
        s_lines.clear();
    }
    TVPMHooks hooks{};
};

}  // namespace

TEST_F(Log, NothingIsWrittenBeforeTheSimulatorHandsOverItsTable) {
    EXPECT_EQ(TVPM_dprintf("early %d\n", 1), 0);
    TVPMDebugString("early\n");
    EXPECT_TRUE(s_lines.empty());
    int version = -1, mine = -1, app = -1;
    TVPMGetVersions(&version, &mine, &app);
    EXPECT_EQ(version, 0);
    EXPECT_EQ(mine, 421);
    EXPECT_EQ(app, 0);
    char path[512] = "unchanged";
    TVPMGetSystemPath(path);
    EXPECT_STREQ(path, "unchanged");
}

TEST_F(Log, FormattedLinesReachTheSimulatorWhole) {
    gHooks = &hooks;
    EXPECT_EQ(TVPM_dprintf("%s took %d ms\n", "alpha", 12), 0);
    EXPECT_EQ(s_lines, (std::vector<std::string>{"alpha took 12 ms\n"}));
    int version = 0, mine = 0, app = 0;
    TVPMGetVersions(&version, &mine, &app);
    EXPECT_EQ(version, 1207);
    EXPECT_EQ(app, 2);
}

TEST_F(Log, AnOverlongLineIsCutInsteadOfOverrunningTheBuffer) {
    gHooks = &hooks;
    const std::string longText(20000, 'x');
    EXPECT_EQ(TVPM_dprintf("[%s]", longText.c_str()), 0);
    ASSERT_EQ(s_lines.size(), 1u);
    EXPECT_EQ(s_lines[0].size(), 8191u);
    EXPECT_EQ(s_lines[0].substr(0, 3), "[xx");
    TVPM_dprintf("short\n");
    EXPECT_EQ(s_lines[1], "short\n");
}
