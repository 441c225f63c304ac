// data_test_util.h: two scripted plugins that keep the error texts they are sent, for the data-item and flight-loop tests.
#pragma once

#include <string>
#include <vector>

#include "PluginContext.h"
#include "SimTest.h"

namespace datatest {
using namespace tvpmtest;

// alpha.tvp and beta.tvp; each installs the error recorder when enabled unless
// a test replaces its enable script.
struct TwoPlugins : SimTest {
    TVPMPluginID alpha = -1, beta = -1;
    void SetUp() override {
        AddScripted({"alpha.tvp", "beta.tvp"});
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
    }
    void Start() {
        ASSERT_EQ(host.Start(sim.Root()), 23);
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }
    // The error texts plugin id was sent, in order.
    static std::vector<std::string> ErrorsOf(TVPMPluginID id) {
        const std::string prefix = std::to_string(id) + ":";
        std::vector<std::string> out;
        for (const std::string& e : PluginErrors())
            if (e.compare(0, prefix.size(), prefix) == 0) out.push_back(e.substr(prefix.size()));
        return out;
    }
};

// How often needle occurs in haystack (a log, say).
inline size_t Occurrences(const std::string& haystack, const std::string& needle) {
    size_t n = 0;
    for (size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
    return n;
}

}  // namespace datatest
