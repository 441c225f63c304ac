// PluginContext.h: running test code as a given scripted plugin, and collecting what plugins are told through their error callbacks.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Harness.h"
#include "TVPM/TVPMPlugin.h"

namespace tvpmtest {

// A message number that no simulator event uses; its parameter is the code to run.
constexpr int kRunAsMessage = 0x7E57;

inline TVPMPluginID IdOf(const std::string& key) {
    return TVPMFindPluginBySignature(("test." + key).c_str());
}

// The message script RunAs installs: runs the code a kRunAsMessage carries and
// hands every other message to the script that was there before.
struct RunAsHandler {
    std::function<void(TVPMPluginID, int, void*)> next;
    void operator()(TVPMPluginID from, int message, void* param) const {
        if (message == kRunAsMessage)
            (*static_cast<std::function<void()>*>(param))();
        else if (next)
            next(from, message, param);
    }
};

// Runs f inside the (enabled) plugin's own call context, as that plugin. The
// code travels with the message, so RunAs may nest, even for the same plugin.
inline void RunAs(const std::string& key, std::function<void()> f) {
    auto& script = Script(key).message;
    if (!script.target<RunAsHandler>()) script = RunAsHandler{script};
    TVPMSendMessageToPlugin(IdOf(key), kRunAsMessage, &f);
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
