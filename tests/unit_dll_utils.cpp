// unit_dll_utils.cpp: opening libraries, finding symbols, telling which library holds some code, and listing folders.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"

namespace fs = std::filesystem;

namespace {
std::string s_log;
}

TVPM_API void TVPMDebugString(const char* text) { s_log += text; }

namespace {

using Names = std::vector<std::string>;

// A function of a system library that is certainly loaded (the maths library).
void* LibraryFunction() {
    void* libm = dlopen("libm.so.6", RTLD_NOW);
    void* f = libm ? dlsym(libm, "cbrt") : nullptr;
    if (libm) dlclose(libm);
    return f;
}

// That library's file, as the dynamic loader knows it.
std::string LoadedLibraryFile() {
    Dl_info info{};
    dladdr(LibraryFunction(), &info);
    return info.dli_fname ? info.dli_fname : "";
}

class TempDir {
public:
    TempDir() {
        char pattern[] = "/tmp/tvpm-dll-XXXXXX";
        path = mkdtemp(pattern);
    }
    ~TempDir() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
    std::string File(const std::string& name, const std::string& bytes = "x") const {
        std::ofstream(path + "/" + name) << bytes;
        return path + "/" + name;
    }
    std::string path;
};

Names Fetch(const std::string& dir, const char* pattern) {
    Names names;
    TVPMFetchDirectoryContents(dir.c_str(), pattern, names);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

TEST(DllUtils, MissingFileFailsSilentlyAndNonLibraryIsLogged) {
    TempDir dir;
    s_log.clear();
    EXPECT_EQ(TVPMLoadDLL((dir.path + "/absent.tvp").c_str()), nullptr);
    EXPECT_EQ(TVPMLoadDLL(nullptr), nullptr);
    EXPECT_EQ(s_log, "");

    const std::string junk = dir.File("junk.tvp", "not a library at all");
    EXPECT_EQ(TVPMLoadDLL(junk.c_str()), nullptr);
    dlerror();
    ASSERT_EQ(dlopen(junk.c_str(), RTLD_NOW), nullptr);
    EXPECT_EQ(s_log, std::string("dlerror:") + dlerror() + "\n");
}

TEST(DllUtils, SymbolsAreFoundAndMissingOnesLoggedOnlyWhenAsked) {
    const std::string file = LoadedLibraryFile();
    ASSERT_FALSE(file.empty());
    void* dll = TVPMLoadDLL(file.c_str());
    ASSERT_NE(dll, nullptr);
    s_log.clear();
    EXPECT_EQ(TVPMFindSymbol(dll, "cbrt", 1), LibraryFunction());
    EXPECT_EQ(TVPMFindSymbol(dll, "no_such_symbol_here", 0), nullptr);
    EXPECT_EQ(s_log, "");
    EXPECT_EQ(TVPMFindSymbol(dll, "no_such_symbol_here", 1), nullptr);
    EXPECT_EQ(s_log, "dlerror:" + file + ": undefined symbol: no_such_symbol_here\n");
    s_log.clear();
    EXPECT_EQ(TVPMFindSymbol(nullptr, "cbrt", 1), nullptr);
    EXPECT_EQ(TVPMFindSymbol(dll, nullptr, 1), nullptr);
    EXPECT_EQ(s_log, "");
    TVPMUnloadDLL(dll);
    TVPMUnloadDLL(nullptr);
}

TEST(DllUtils, CodeAddressesMapToTheLibraryHoldingThem) {
    const std::string file = LoadedLibraryFile();
    void* expected = dlopen(file.c_str(), RTLD_NOLOAD | RTLD_NOW);
    ASSERT_NE(expected, nullptr);
    dlclose(expected);
    EXPECT_EQ(TVPMGetDLLForInstruction(LibraryFunction()), expected);
    EXPECT_EQ(TVPMGetDLLForInstruction(nullptr), nullptr);
    // Walking the stack never reads outside what it captured.
    (void)TVPMGetDLLForCaller(-4);
    (void)TVPMGetDLLForCaller(0);
    (void)TVPMGetDLLForCaller(50);
}

TEST(DllUtils, SuffixPatternMatchesWithoutCaseAndDirListsFolders) {
    TempDir dir;
    for (const char* name : {"A.TVP", "b.tvp", "c.tvp.bak", "tvp", "x.tvpx"}) dir.File(name);
    for (const char* name : {"plain", "navdir", "folder.tvp"})
        fs::create_directory(dir.path + "/" + name);
    fs::create_symlink(dir.path + "/gone", dir.path + "/dangling");
    // Links are followed: one to a folder lists as a folder, one to a file not.
    fs::create_directory_symlink(dir.path + "/plain", dir.path + "/linked");
    fs::create_symlink(dir.path + "/b.tvp", dir.path + "/filelink");

    EXPECT_EQ(Fetch(dir.path, "*.tvp"), (Names{"A.TVP", "b.tvp", "folder.tvp"}));
    // A folder whose name ends in "dir" matches the suffix rule and the folder rule.
    EXPECT_EQ(Fetch(dir.path, "DIR"), (Names{"folder.tvp", "linked", "navdir", "navdir", "plain"}));
    EXPECT_EQ(Fetch(dir.path, "*.*").size(), 11u);
    EXPECT_TRUE(Fetch(dir.path + "/missing", "*.*").empty());
    Names none;
    TVPMFetchDirectoryContents(nullptr, "*.*", none);
    TVPMFetchDirectoryContents(dir.path.c_str(), nullptr, none);
    EXPECT_TRUE(none.empty());
}

TEST(DllUtils, StrcpytruncCutsToTheBufferAndAlwaysTerminates) {
    char buf[8];
    memset(buf, 'z', sizeof buf);
    strcpytrunc(buf, "short", 8);
    EXPECT_STREQ(buf, "short");
    strcpytrunc(buf, "exactly7", 8);
    EXPECT_STREQ(buf, "exactly");
    strcpytrunc(buf, "a much longer text", 8);
    EXPECT_STREQ(buf, "a much ");
    strcpytrunc(buf, "x", 1);
    EXPECT_STREQ(buf, "");
    buf[0] = 'q';
    strcpytrunc(buf, "x", 0);
    EXPECT_EQ(buf[0], 'q');
    strcpytrunc(nullptr, "x", 8);
}

TEST(DllUtils, ThreadSlotsAndPathConversions) {
    TVPMThreadKey key = TVPMAllocTLS();
    int value = 0;
    EXPECT_EQ(TVPMGetTLS(key), nullptr);
    TVPMSetTLS(key, &value);
    EXPECT_EQ(TVPMGetTLS(key), &value);
    EXPECT_TRUE(pthread_equal(TVPMGetCurrentThread(), pthread_self()));
    std::string path = "/sim/Résources/plugins";
    TVPMOldToUTF8(path);
    TVPMUTF8ToOld(path);
    EXPECT_EQ(path, "/sim/Résources/plugins");
}
