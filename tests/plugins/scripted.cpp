// ScriptedPlugin.cpp: a plugin whose entry points do whatever the running test scripted for it.
#include <dlfcn.h>

#include "TVPM/TVPMDefs.h"

extern "C" {
int TestHarness_Start(const char* path, char* name, char* signature, char* description);
void TestHarness_Stop(const char* path);
int TestHarness_Enable(const char* path);
void TestHarness_Disable(const char* path);
void TestHarness_Message(const char* path, TVPMPluginID from, int message, void* param);
}

namespace {
// This copy's own file path, which tells the harness which script to run.
const char* SelfPath() {
    static Dl_info info;
    dladdr(reinterpret_cast<void*>(&SelfPath), &info);
    return info.dli_fname;
}
}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    return TestHarness_Start(SelfPath(), outName, outSig, outDesc);
}
TVPM_PLUGIN_API void TPluginStop(void) { TestHarness_Stop(SelfPath()); }
TVPM_PLUGIN_API int TPluginEnable(void) { return TestHarness_Enable(SelfPath()); }
TVPM_PLUGIN_API void TPluginDisable(void) { TestHarness_Disable(SelfPath()); }
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID inFrom, int inMsg, void* inParam) {
    TestHarness_Message(SelfPath(), inFrom, inMsg, inParam);
}
