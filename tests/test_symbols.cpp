// test_symbols.cpp: the binary interface of TVPM_64.so: its file name and soname, its exported symbols, and the host table's layout.
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPMHost.h"

// ---- the host table's layout: two ints, then 164 pointers -------------------------------

constexpr size_t SlotOffset(int number) { return 8 + static_cast<size_t>(number - 1) * 8; }

static_assert(sizeof(TVPMHooks) == 1320, "table size");
static_assert(alignof(TVPMHooks) == 8, "table alignment");
static_assert(offsetof(TVPMHooks, version) == 0, "version first");
static_assert(offsetof(TVPMHooks, structSize) == 4, "then structSize");
static_assert(offsetof(TVPMHooks, TVPMHostReady_f) == SlotOffset(1), "slot 1");
static_assert(offsetof(TVPMHooks, TVPMGetTexture_f) == SlotOffset(30), "slot 30");
static_assert(offsetof(TVPMHooks, TVPMDebugString_f) == SlotOffset(64), "slot 64");
static_assert(offsetof(TVPMHooks, TorvaneReceiveMessage_f) == SlotOffset(67), "slot 67");
static_assert(offsetof(TVPMHooks, TVPMShouldLoadPlugin_f) == SlotOffset(68), "slot 68");
static_assert(offsetof(TVPMHooks, TVPMCreateMapLayer_f) == SlotOffset(94), "slot 94");
static_assert(offsetof(TVPMHooks, TVPMHandleAssertFailed_f) == SlotOffset(136), "slot 136");
static_assert(offsetof(TVPMHooks, TVPMGetFMODSystem_f) == SlotOffset(154), "slot 154");
static_assert(offsetof(TVPMHooks, TVPMEndWeatherUpdate_f) == SlotOffset(164), "slot 164");
static_assert(TVPM_HOOKS_VERSION == 25 && TVPM_HOOKS_SIZE == 1320, "accepted table");
static_assert(TVPM_INTERFACE_VERSION == 421, "interface version");

// Slots whose types callers rely on beyond "a function pointer".
static_assert(std::is_same_v<decltype(TVPMHooks::TVPMShouldLoadPlugin_f), bool (*)(const char*)>);
static_assert(std::is_same_v<decltype(TVPMHooks::TVPMCreateMenu_f),
                             intptr_t (*)(intptr_t, int, const char*)>);
static_assert(std::is_same_v<decltype(TVPMHooks::TorvaneReceiveMessage_f),
                             void (*)(TVPMPluginID, int, void*)>);
static_assert(std::is_same_v<decltype(TVPMHooks::TVPMHandleAssertFailed_f),
                             void (*)(const char*, const char*, int)>);
static_assert(std::is_same_v<decltype(TVPMHooks::TVPMSaveFMSFlightPlan_f),
                             unsigned int (*)(int, char*, unsigned int)>);
static_assert(std::is_same_v<decltype(TVPMHooks::TVPMEndWeatherUpdate_f),
                             void (*)(TVPMPluginID, int, int)>);
static_assert(sizeof(TVPMPluginID) == 4 && std::is_signed_v<TVPMPluginID>);
static_assert(sizeof(TVPMPluginCallbackType) == 4);

// ---- the library file ------------------------------------------------------------------------

namespace {

std::string LibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&TVPMInitializePlugins), &info) == 0 || !info.dli_fname)
        return "";
    return info.dli_fname;
}

struct DynamicSymbol {
    std::string name;
    unsigned type, binding;
};

// Reads the defined dynamic symbols and the soname straight from the ELF file.
class ElfFile {
public:
    explicit ElfFile(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    bool Valid() const {
        return bytes.size() > sizeof(Elf64_Ehdr) && memcmp(bytes.data(), ELFMAG, SELFMAG) == 0 &&
               bytes[EI_CLASS] == ELFCLASS64;
    }
    std::vector<DynamicSymbol> DefinedSymbols() const {
        std::vector<DynamicSymbol> out;
        const Elf64_Shdr* dynsym = Section(SHT_DYNSYM);
        if (!dynsym) return out;
        const Elf64_Shdr& strtab = Sections()[dynsym->sh_link];
        const auto* syms = At<Elf64_Sym>(dynsym->sh_offset);
        for (size_t i = 1; i < dynsym->sh_size / sizeof(Elf64_Sym); ++i) {
            if (syms[i].st_shndx == SHN_UNDEF) continue;
            out.push_back({Str(strtab, syms[i].st_name), ELF64_ST_TYPE(syms[i].st_info),
                           ELF64_ST_BIND(syms[i].st_info)});
        }
        return out;
    }
    std::string Soname() const {
        const Elf64_Shdr* dynamic = Section(SHT_DYNAMIC);
        if (!dynamic) return "";
        const Elf64_Shdr& strtab = Sections()[dynamic->sh_link];
        const auto* entries = At<Elf64_Dyn>(dynamic->sh_offset);
        for (size_t i = 0; i < dynamic->sh_size / sizeof(Elf64_Dyn); ++i)
            if (entries[i].d_tag == DT_SONAME) return Str(strtab, entries[i].d_un.d_val);
        return "";
    }

private:
    template <class T>
    const T* At(size_t offset) const {
        return reinterpret_cast<const T*>(bytes.data() + offset);
    }
    const Elf64_Shdr* Sections() const {
        return At<Elf64_Shdr>(At<Elf64_Ehdr>(0)->e_shoff);
    }
    const Elf64_Shdr* Section(uint32_t type) const {
        for (size_t i = 0; i < At<Elf64_Ehdr>(0)->e_shnum; ++i)
            if (Sections()[i].sh_type == type) return &Sections()[i];
        return nullptr;
    }
    std::string Str(const Elf64_Shdr& table, size_t offset) const {
        return std::string(At<char>(table.sh_offset + offset));
    }
    std::vector<char> bytes;
};

bool IsLinkerDefined(const std::string& name) {
    static const std::set<std::string> names = {"_init", "_fini", "__bss_start", "_edata",
                                                "_end", "__end__"};
    return names.count(name) == 1;
}

}  // namespace

TEST(Symbols, TheFileIsTVPM_64soWithThatSoname) {
    const std::string path = LibraryPath();
    ASSERT_FALSE(path.empty());
    const std::string file = path.substr(path.rfind('/') + 1);
    EXPECT_EQ(file, "TVPM_64.so");
    if (const char* binaryDir = getenv("TVPM_BINARY_DIR")) {
        EXPECT_TRUE(std::ifstream(std::string(binaryDir) + "/TVPM/TVPM_64.so").good());
    }
    ElfFile elf(path);
    ASSERT_TRUE(elf.Valid());
    EXPECT_EQ(elf.Soname(), "TVPM_64.so");
}

TEST(Symbols, OnlyInterfaceFunctionsAreExported) {
    ElfFile elf(LibraryPath());
    ASSERT_TRUE(elf.Valid());
    std::vector<DynamicSymbol> symbols = elf.DefinedSymbols();
    std::set<std::string> exported;
    for (const DynamicSymbol& s : symbols) {
        if (IsLinkerDefined(s.name)) continue;
        EXPECT_EQ(s.name.rfind("TVPM", 0), 0u) << s.name << " is not an interface name";
        EXPECT_EQ(s.type, static_cast<unsigned>(STT_FUNC)) << s.name;
        EXPECT_EQ(s.binding, static_cast<unsigned>(STB_GLOBAL)) << s.name << " (weak?)";
        exported.insert(s.name);
    }
    for (const char* name :
         {"TVPMInitializePlugins", "TVPMShutdownPlugins", "TVPMInitialized", "TVPMGetVersions",
          "TVPMEventHook", "TVPMGetPluginCallbackTimings", "TVPMGetCurrentPluginInfo",
          "TVPMGetTrafficControlPluginInfo", "TVPMDebugGetCurrentPluginName", "TVPMGetMyID",
          "TVPMCountPlugins", "TVPMGetNthPlugin", "TVPMFindPluginByPath",
          "TVPMFindPluginBySignature", "TVPMGetPluginInfo", "TVPMSendMessageToPlugin",
          "TVPMSetErrorCallback", "TVPMHasFeature", "TVPMIsFeatureEnabled", "TVPMEnableFeature",
          "TVPMEnumerateFeatures", "TVPMGetMETARForAirport", "TVPMGetWeatherAtLocation",
          "TVPMBeginWeatherUpdate", "TVPMEndWeatherUpdate", "TVPMSetWeatherAtLocation",
          "TVPMEraseWeatherAtLocation", "TVPMSetWeatherAtAirport", "TVPMEraseWeatherAtAirport",
          "TVPMCreateMapLayer", "TVPMDestroyMapLayer", "TVPMRegisterMapCreationHook",
          "TVPMMapExists", "TVPMDrawMapIconFromSheet", "TVPMDrawMapLabel", "TVPMMapProject",
          "TVPMMapUnproject", "TVPMMapScaleMeter", "TVPMMapGetNorthHeading",
          "TVPMGetFirstNavAid", "TVPMGetGPSDestination", "TVPMSetGraphicsState",
          "TVPMMeasureString", "TVPMFindPluginForIP", "TVPMRegisterAvionicsCallbacksEx",
          "TVPMCreateAvionicsEx", "TVPMGetAvionicsHandle", "TVPMDestroyAvionics",
          "TVPMSetAvionicsGeometryOS"})
        EXPECT_EQ(exported.count(name), 1u) << name;
    // The world services: probes and objects, instances, aircraft, camera.
    for (const char* name :
         {"TVPMCreateProbe", "TVPMDestroyProbe", "TVPMProbeTerrainXYZ", "TVPMGetMagneticVariation",
          "TVPMDegTrueToDegMagnetic", "TVPMDegMagneticToDegTrue", "TVPMLoadObject",
          "TVPMLoadObjectAsync", "TVPMDrawObjects", "TVPMUnloadObject", "TVPMLookupObjects",
          "TVPMCreateInstance", "TVPMDestroyInstance", "TVPMInstanceSetPosition",
          "TVPMInstanceSetPositionDouble", "TVPMInstanceSetAutoShift", "TVPMSetUsersAircraft",
          "TVPMPlaceUserAtAirport", "TVPMPlaceUserAtLocation", "TVPMCountAircraft",
          "TVPMGetNthAircraftModel", "TVPMAcquirePlanes", "TVPMReleasePlanes",
          "TVPMSetActiveAircraftCount", "TVPMSetAircraftModel", "TVPMDisableAIForPlane",
          "TVPMDrawAircraft", "TVPMReinitUsersPlane", "TVPMControlCamera", "TVPMDontControlCamera",
          "TVPMIsCameraBeingControlled", "TVPMReadCameraPosition"})
        EXPECT_EQ(exported.count(name), 1u) << name;
    for (const char* internal : {"__TVPMValidateThreadSafety", "gHooks", "gAllPlugins",
                                 "gDispatchedPlugin", "TVPMSendError", "TVPMHasFeatureInternal"})
        EXPECT_EQ(exported.count(internal), 0u) << internal;
}

TEST(Symbols, AHostCanOpenTheLibraryAndFindItsHooks) {
    void* lib = dlopen(LibraryPath().c_str(), RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    using Init = int (*)(const char*, TVPMHooks*, void*);
    auto init = reinterpret_cast<Init>(dlsym(lib, "TVPMInitializePlugins"));
    EXPECT_EQ(init, &TVPMInitializePlugins);
    for (const char* name : {"TVPMShutdownPlugins", "TVPMEventHook", "TVPMInitialized",
                             "TVPMGetPluginCallbackTimings"})
        EXPECT_NE(dlsym(lib, name), nullptr) << name;
    EXPECT_EQ(dlsym(lib, "__TVPMValidateThreadSafety"), nullptr);
    EXPECT_EQ(dlsym(lib, "gHooks"), nullptr);
    dlclose(lib);
}

TEST(Symbols, TheSoundFunctionsAreExported) {
    void* lib = dlopen(LibraryPath().c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(lib, nullptr);
    for (const char* name : {"TVPMPlayPCMOnBus", "TVPMStopAudio", "TVPMSetAudioPosition",
                             "TVPMSetAudioFadeDistance", "TVPMSetAudioVolume", "TVPMSetAudioPitch",
                             "TVPMSetAudioCone", "TVPMGetFMODChannelGroup", "TVPMGetFMODStudio"})
        EXPECT_NE(dlsym(lib, name), nullptr) << name;
    dlclose(lib);
}
