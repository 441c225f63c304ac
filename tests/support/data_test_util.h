// data_test_util.h: two scripted plugins that keep the error texts they are sent, and helpers for data items.
#pragma once

#include <string>
#include <vector>

#include "PluginContext.h"
#include "SimTest.h"
#include "TVPM/TVPMDataAccess.h"

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

// Registers an item with only int accessors (either may be null; writable if it has a write), both given ref.
inline TVPMDataRef RegisterIntItem(const std::string& name, TVPMDataTypeID type, int (*read)(void*),
                                   void (*write)(void*, int), void* ref) {
    return TVPMRegisterDataAccessor(name.c_str(), type, write != nullptr, read, write, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, ref, ref);
}

// What TVPMGetDataRefInfo reports for ref.
inline TVPMDataRefInfo_t InfoOf(TVPMDataRef ref) {
    TVPMDataRefInfo_t info{};
    info.structSize = TVPM_DATAREF_INFO_SIZE;
    TVPMGetDataRefInfo(ref, &info);
    return info;
}

// How often needle occurs in haystack (a log, say).
inline size_t Occurrences(const std::string& haystack, const std::string& needle) {
    size_t n = 0;
    for (size_t at = haystack.find(needle); at != std::string::npos; at = haystack.find(needle, at + 1)) ++n;
    return n;
}

}  // namespace datatest
