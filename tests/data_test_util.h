// data_test_util.h: helpers shared by the data-item and flight-loop tests: running code as a plugin and collecting its error reports.
#pragma once

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Harness.h"
#include "TVPM/TVPMPlugin.h"

namespace datatest {

// Message number that makes a scripted plugin run the code handed to AsPlugin.
constexpr int kRunMessage = 0x7A11;

inline TVPMPluginID IdOf(const std::string& key) {
    return TVPMFindPluginBySignature(("test." + key).c_str());
}

// Runs f inside the plugin's own call context (as that plugin).
inline void AsPlugin(const std::string& key, const std::function<void()>& f) {
    static std::function<void()> pending;
    pending = f;
    auto& script = tvpmtest::Script(key);
    auto previous = script.message;
    script.message = [previous](TVPMPluginID from, int message, void* param) {
        if (message == kRunMessage) pending();
        else if (previous) previous(from, message, param);
    };
    TVPMSendMessageToPlugin(IdOf(key), kRunMessage, nullptr);
    script.message = previous;
}

// Error reports per plugin: a plugin's error callback is a plain function, so
// each of the first plugins gets its own.
inline std::map<int, std::vector<std::string>>& Errors() {
    static std::map<int, std::vector<std::string>> errors;
    return errors;
}
template <int N>
void CollectError(const char* message) {
    Errors()[N].push_back(message);
}
// Installs error collector N for the plugin (call from inside it).
template <int N>
void ListenForErrors() {
    TVPMSetErrorCallback(&CollectError<N>);
}

// Counts how often a text occurs in the simulator's log.
inline size_t Occurrences(const std::string& haystack, const std::string& needle) {
    size_t n = 0;
    for (size_t at = haystack.find(needle); at != std::string::npos;
         at = haystack.find(needle, at + needle.size()))
        ++n;
    return n;
}

}  // namespace datatest
