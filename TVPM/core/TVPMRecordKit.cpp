// TVPMRecordKit.cpp: the registry of per-family record counts and the check that a plugin's clean-up left nothing behind.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "TVPMPrivate.h"

std::vector<TVPMFamilyRecordCount>& TVPMFamilyRecordCounts() {
    static std::vector<TVPMFamilyRecordCount> counts;
    return counts;
}

#ifdef NDEBUG
void TVPMCheckNothingOwnedBy(TVPMPluginID) {}
#else
void TVPMCheckNothingOwnedBy(TVPMPluginID id) {
    for (const TVPMFamilyRecordCount& f : TVPMFamilyRecordCounts()) {
        const size_t left = f.count(id);
        if (left == 0) continue;
        const std::string what = std::string("clean-up left ") + std::to_string(left) + " " +
                                 f.family + " owned by plugin " + std::to_string(id);
        if (TVPMHasAssertHandler()) {
            TVPMFailAssertion(what.c_str(), __FILE__, __LINE__);
        } else {
            std::fprintf(stderr, "TVPM: %s\n", what.c_str());
            std::abort();
        }
    }
}
#endif
