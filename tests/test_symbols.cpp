// test_symbols.cpp: the binary interface of TVPM_64.so: its file name and soname, exactly the declared interface exported, and the host table's layout.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "HostRunner.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPMHost.h"

// The host table: two ints, then 164 pointers in a fixed order.
constexpr size_t SlotOffset(int number) { return 8 + static_cast<size_t>(number - 1) * 8; }
static_assert(sizeof(TVPMHooks) == 1320 && alignof(TVPMHooks) == 8);
static_assert(offsetof(TVPMHooks, version) == 0 && offsetof(TVPMHooks, structSize) == 4);
static_assert(offsetof(TVPMHooks, TVPMHostReady_f) == SlotOffset(1));
static_assert(offsetof(TVPMHooks, TVPMDebugString_f) == SlotOffset(64));
static_assert(offsetof(TVPMHooks, TVPMShouldLoadPlugin_f) == SlotOffset(68));
static_assert(offsetof(TVPMHooks, TVPMGetFMODSystem_f) == SlotOffset(154));
static_assert(offsetof(TVPMHooks, TVPMEndWeatherUpdate_f) == SlotOffset(164));
static_assert(TVPM_HOOKS_VERSION == 25 && TVPM_HOOKS_SIZE == 1320 && TVPM_INTERFACE_VERSION == 421);

namespace {

std::string LibraryPath() {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&TVPMInitializePlugins), &info);
    return info.dli_fname ? info.dli_fname : "";
}

// Every function a public header declares with TVPM_API.
std::set<std::string> DeclaredInterface() {
    const std::string source = getenv("TVPM_SOURCE_DIR") ? getenv("TVPM_SOURCE_DIR") : "";
    const std::regex declaration(R"(TVPM_API\s+[^;(]*?\b(TVPM\w+)\s*\()");
    std::set<std::string> names;
    for (const char* folder : {"/Headers/TVPM", "/TVPM/include"})
        for (const auto& header : std::filesystem::directory_iterator(source + folder)) {
            const std::string text = Slurp(header.path().string());
            for (std::sregex_iterator m(text.begin(), text.end(), declaration), end; m != end; ++m)
                names.insert((*m)[1]);
        }
    return names;
}

}  // namespace

TEST(Symbols, TVPM_64soWithThatSonameExportsExactlyTheDeclaredInterfaceAsFunctions) {
    const std::string path = LibraryPath();
    EXPECT_EQ(std::filesystem::path(path).filename(), "TVPM_64.so");
    const HostOutcome elf = RunShell("readelf -d '" + path + "'");
    EXPECT_NE(elf.output.find("Library soname: [TVPM_64.so]"), std::string::npos) << elf.output;
    const std::set<std::string> declared = DeclaredInterface();
    ASSERT_GT(declared.size(), 250u);
    std::set<std::string> exported;
    std::istringstream in(RunShell("nm -D --defined-only '" + path + "'").output);
    for (std::string address, type, name; in >> address >> type >> name;) {
        EXPECT_EQ(type, "T") << name << " is not a global function";
        exported.insert(name);
    }
    EXPECT_EQ(exported, declared);
}
