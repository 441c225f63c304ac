// scale_sim.cpp: the quiet host and plugin folders shared by the scale benchmarks.
#include "scale_sim.h"

#include <cstdio>

#include "TVPM/TVPMPlugin.h"

namespace bench {

namespace {
constexpr int kRunMessage = 0x7A12;
}

QuietHost::QuietHost() {
    quiet = host.hooks;
    quiet.TVPMDebugString_f = [](const char*) {};
    quiet.TVPMDisplayInitString_f = [](const char*) {};
    quiet.TVPMCreateMenu_f = [](intptr_t, int, const char*) -> intptr_t { return 1; };
    quiet.TVPMAppendMenu_f = [](intptr_t, const char*) { return 0; };
    quiet.TVPMAppendMenuWithCommand_f = [](intptr_t, const char*, TVPMCommandRef) { return 0; };
    quiet.TVPMSetMenuTitle_f = [](intptr_t, int, const char*) {};
    quiet.TVPMDestroyMenu_f = [](intptr_t) {};
    quiet.TVPMRemoveMenuItem_f = [](intptr_t, int) {};
    quiet.TVPMShouldLoadPlugin_f = [](const char*) { return true; };
    quiet.TVPMGetElapsedTime_f = [] { return 0.0f; };
    quiet.TVPMHandleAssertFailed_f = nullptr;  // the lists' self-checks are quadratic
}

int QuietHost::Start(const std::string& root) {
    host.systemPath = root;
    return TVPMInitializePlugins(root.c_str(), &quiet, nullptr);
}

std::vector<std::string> AddMinimalPlugins(tvpmtest::SimFolder& sim, int count) {
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i) {
        char name[32];
        snprintf(name, sizeof name, "m%04d.tvp", i);
        paths.push_back(sim.AddLoose(name, TVPM_BENCH_PLUGIN_DIR "/minimal.tvp"));
    }
    return paths;
}

void AsPlugin(const std::string& key, const std::function<void()>& f) {
    static std::function<void()> pending;
    pending = f;
    tvpmtest::Script(key).message = [](TVPMPluginID, int message, void*) {
        if (message == kRunMessage) pending();
    };
    TVPMSendMessageToPlugin(TVPMFindPluginBySignature(("test." + key).c_str()), kRunMessage,
                            nullptr);
}

}  // namespace bench
