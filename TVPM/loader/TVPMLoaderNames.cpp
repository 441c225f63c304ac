// TVPMLoaderNames.cpp: the thread-safe library-to-plugin map behind off-thread plugin naming.
//
// The plugin thread takes the lock only when a library joins or leaves the
// table; other threads take it to look one up. Names are interned for the life
// of the process, so the text handed out never dangles, and reloading the same
// plugins does not grow the pool.
#include "TVPMLoaderNames.h"

#include <mutex>
#include <unordered_set>
#include <vector>

namespace {

struct PublishedLibrary {
    uint64_t generation;
    const void* dll;
    TVPMPluginID id;
    const char* name;
};

std::mutex s_mutex;
std::vector<PublishedLibrary> s_libraries;
std::unordered_set<std::string> s_names;

const char* Intern(const std::string& name) { return s_names.insert(name).first->c_str(); }

}  // namespace

void TVPMPublishPluginLibrary(uint64_t generation, const void* dll, TVPMPluginID id,
                              const std::string& name) {
    std::lock_guard<std::mutex> lock(s_mutex);
    const char* interned = Intern(name);
    // Newest first: a library is published again right after its start.
    for (auto entry = s_libraries.rbegin(); entry != s_libraries.rend(); ++entry)
        if (entry->generation == generation) {
            *entry = {generation, dll, id, interned};
            return;
        }
    s_libraries.push_back({generation, dll, id, interned});
}

void TVPMWithdrawPluginLibrary(uint64_t generation) {
    std::lock_guard<std::mutex> lock(s_mutex);
    for (size_t i = s_libraries.size(); i-- > 0;)
        if (s_libraries[i].generation == generation) {
            s_libraries.erase(s_libraries.begin() + static_cast<long>(i));
            return;
        }
}

TVPMPluginID TVPMPublishedPluginForLibrary(const void* dll, const char** outName) {
    if (!dll) return TVPM_NO_PLUGIN_ID;
    std::lock_guard<std::mutex> lock(s_mutex);
    for (const PublishedLibrary& entry : s_libraries)
        if (entry.dll == dll) {
            if (outName) *outName = entry.name;
            return entry.id;
        }
    return TVPM_NO_PLUGIN_ID;
}
