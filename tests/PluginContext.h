// PluginContext.h: running test code as a given scripted plugin, and collecting what plugins are told through their error callbacks.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Harness.h"
#include "TVPM/TVPMPlugin.h"

namespace tvpmtest {

// A message number that no simulator event uses.
constexpr int kRunAsMessage = 0x7E57;

inline TVPMPluginID IdOf(const std::string& key) {
    return TVPMFindPluginBySignature(("test." + key).c_str());
}

// Runs f inside the (enabled) plugin's own call context, as that plugin.
inline void RunAs(const std::string& key, std::function<void()> f) {
    Script(key).message = [f](TVPMPluginID, int message, void*) {
        if (message == kRunAsMessage) f();
    };
    TVPMSendMessageToPlugin(IdOf(key), kRunAsMessage, nullptr);
}

template <class R>
R RunAs(const std::string& key, std::function<R()> f) {
    R result{};
    RunAs(key, [&] { result = f(); });
    return result;
}

// Error texts sent to plugins, each as "<plugin id>:<text>".
inline std::vector<std::string>& PluginErrors() {
    static std::vector<std::string> errors;
    return errors;
}

inline void RecordPluginError(const char* text) {
    PluginErrors().push_back(std::to_string(TVPMGetMyID()) + ":" + text);
}

// Makes the plugin install RecordPluginError when it is enabled.
inline void ReportErrorsOf(const std::string& key) {
    Script(key).enable = [] {
        TVPMSetErrorCallback(RecordPluginError);
        return 1;
    };
}

}  // namespace tvpmtest
