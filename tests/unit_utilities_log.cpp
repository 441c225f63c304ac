// unit_utilities_log.cpp: the library's formatted log line is whole, bounded, and never written before the simulator is there.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TVPMPrivate.h"
#include "TVPMUtilitiesPrivate.h"

TVPMHooks* gHooks = nullptr;
TVPMPluginTable gAllPlugins;
TVPMCurrentPlugins gCurrentPlugins = {0, 0};
bool gTVPMDiagnostics = false;
void __TVPMValidateThreadSafety(const char*, const char*, int) {}
void TVPMSendError(const char*) {}

namespace {
std::vector<std::string> s_lines;
void DebugSlot(const char* text) { s_lines.push_back(text); }
}  // namespace

TEST(Log, FormattedLinesReachTheSimulatorWholeOrCutButNeverBeforeItIsThere) {
    EXPECT_EQ(TVPM_dprintf("early %d\n", 1), 0);
    TVPMHooks hooks{};
    hooks.TVPMDebugString_f = DebugSlot;
    gHooks = &hooks;
    EXPECT_EQ(TVPM_dprintf("%s took %d ms\n", "alpha", 12), 0);
    EXPECT_EQ(TVPM_dprintf("[%s]", std::string(20000, 'x').c_str()), 0);
    EXPECT_EQ(s_lines, (std::vector<std::string>{"alpha took 12 ms\n", "[" + std::string(8190, 'x')}));
    gHooks = nullptr;
}
