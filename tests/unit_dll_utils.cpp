// unit_dll_utils.cpp: folder listings follow links to folders, and the bounded copy always terminates.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"

namespace fs = std::filesystem;

TVPM_API void TVPMDebugString(const char*) {}

TEST(DllUtils, FolderListingsFollowLinksToFolders) {
    char pattern[] = "/tmp/tvpm-dll-XXXXXX";
    const std::string dir = mkdtemp(pattern);
    fs::create_directory(dir + "/plain");
    fs::create_directory_symlink(dir + "/plain", dir + "/linked");
    fs::create_symlink(dir + "/gone", dir + "/dangling");
    std::vector<std::string> names;
    TVPMFetchDirectoryContents(dir.c_str(), "DIR", names);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"linked", "plain"}));
    fs::remove_all(dir);
}

TEST(DllUtils, StrcpytruncCutsToTheBufferAndAlwaysTerminates) {
    const struct {
        const char* in;
        int size;
        const char* out;
    } cases[] = {{"short", 8, "short"}, {"exactly7", 8, "exactly"}, {"x", 1, ""}, {"x", 0, "qzzzzzz"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        char buf[8] = "qzzzzzz";
        strcpytrunc(buf, c.in, c.size);
        EXPECT_STREQ(buf, c.out);
    }
    strcpytrunc(nullptr, "x", 8);
}
