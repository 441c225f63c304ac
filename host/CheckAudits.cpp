// CheckAudits.cpp: what a plugin left behind after shut-down: simulator resources, mapped code, threads, open files, hidden entry points.
#include <dirent.h>
#include <dlfcn.h>
#include <elf.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "CheckMode.h"
#include "CheckSignals.h"
#include "SimWorld.h"

namespace tvpmhost {

namespace {

const char* const kEntryPoints[] = {"TPluginStart", "TPluginStop", "TPluginEnable", "TPluginDisable",
                                    "TPluginReceiveMessage"};

void Add(std::vector<Finding>& out, const char* check, Outcome o, const std::string& message) {
    out.push_back({check, CurrentStep(), o, message});
}

std::vector<std::string> NewSince(const std::vector<std::string>& before, const char* dir) {
    const std::set<std::string> old(before.begin(), before.end());
    std::vector<std::string> added;
    for (auto& name : DirectoryNames(dir))
        if (!old.count(name)) added.push_back(name);
    return added;
}

void AuditLeftBehind(const CheckedPlugin& p, std::vector<Finding>& out) {
    std::map<std::string, int> seen;
    for (auto& l : World().leftBehind)
        if (l.owner == p.params.pluginPath)
            ++seen[l.kind + " '" + l.name + "' " +
                   (l.releasedBy.empty() ? "was still in the simulator after unload"
                                         : "was not released by the plugin (TVPM's clean-up did it)")];
    for (auto& [text, count] : seen)
        Add(out, "leftovers", Outcome::kFail,
            "left behind: " + text + (count > 1 ? " (at each of " + std::to_string(count) + " unloads)" : ""));
}

void AuditStillMapped(const CheckedPlugin& p, std::vector<Finding>& out) {
    void* h = dlopen(p.params.pluginPath.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (!h) return;
    dlclose(h);
    Add(out, "code-unmapped", Outcome::kFail,
        "plugin code still mapped after it was unloaded: its library was not closed (a thread still "
        "running, or symbols that pin it, such as C++ unique globals)");
}

void AuditThreads(const CheckedPlugin& p, std::vector<Finding>& out) {
    const std::vector<std::string> extra = NewSince(p.tasksBefore, "/proc/self/task");
    if (extra.empty()) return;
    Add(out, "late-threads", Outcome::kFail,
        std::to_string(extra.size()) + " thread" + (extra.size() == 1 ? "" : "s") +
            " started by the plugin still running after TPluginStop: stop and join them in TPluginStop");
}

void AuditFiles(const CheckedPlugin& p, std::vector<Finding>& out) {
    std::string open;
    int count = 0;
    for (auto& fd : NewSince(p.fdsBefore, "/proc/self/fd")) {
        char target[512] = "";
        const ssize_t n = readlink(("/proc/self/fd/" + fd).c_str(), target, sizeof target - 1);
        if (n <= 0) continue;  // the listing's own descriptor, closed by now
        target[n] = 0;
        open += (count++ ? ", " : "") + fd + " (" + target + ")";
    }
    if (count)
        Add(out, "file-descriptors", Outcome::kFail,
            std::to_string(count) + " file descriptor" + (count == 1 ? "" : "s") +
                " opened by the plugin still open after it was unloaded: " + open);
}

void AuditAssertions(const CheckedPlugin&, std::vector<Finding>& out) {
    for (auto& a : World().assertions) Add(out, "assertions", Outcome::kFail, "TVPM assertion failed: " + a);
    for (auto& a : World().alerts)
        if (a.rfind("Please place your new plugin", 0) != 0) Add(out, "warnings", Outcome::kWarn, "alert: " + a);
}

// Names of defined functions in one symbol table section of an ELF file.
std::set<std::string> DefinedFunctions(const std::string& image, const Elf64_Shdr& section,
                                       const Elf64_Shdr& strings, bool exportedOnly) {
    std::set<std::string> names;
    const auto* symbols = reinterpret_cast<const Elf64_Sym*>(image.data() + section.sh_offset);
    const size_t count = section.sh_size / sizeof(Elf64_Sym);
    for (size_t i = 0; i < count; ++i) {
        const Elf64_Sym& s = symbols[i];
        if (ELF64_ST_TYPE(s.st_info) != STT_FUNC || s.st_shndx == SHN_UNDEF) continue;
        const bool exported = ELF64_ST_BIND(s.st_info) != STB_LOCAL && ELF64_ST_VISIBILITY(s.st_other) == STV_DEFAULT;
        if (exportedOnly && !exported) continue;
        if (s.st_name < strings.sh_size) names.insert(image.data() + strings.sh_offset + s.st_name);
    }
    return names;
}

void AuditEntryPoints(const CheckedPlugin& p, std::vector<Finding>& out) {
    std::ifstream in(p.params.pluginPath, std::ios::binary);
    const std::string image((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (image.size() < sizeof(Elf64_Ehdr) || image.compare(0, 4, ELFMAG) != 0) return;
    const auto* header = reinterpret_cast<const Elf64_Ehdr*>(image.data());
    if (header->e_shoff + header->e_shnum * sizeof(Elf64_Shdr) > image.size()) return;
    const auto* sections = reinterpret_cast<const Elf64_Shdr*>(image.data() + header->e_shoff);
    std::set<std::string> defined, exported;
    for (int i = 0; i < header->e_shnum; ++i) {
        const Elf64_Shdr& s = sections[i];
        if ((s.sh_type != SHT_SYMTAB && s.sh_type != SHT_DYNSYM) || s.sh_link >= header->e_shnum) continue;
        if (s.sh_offset + s.sh_size > image.size()) continue;
        auto names = DefinedFunctions(image, s, sections[s.sh_link], s.sh_type == SHT_DYNSYM);
        (s.sh_type == SHT_DYNSYM ? exported : defined).insert(names.begin(), names.end());
    }
    for (const char* entry : kEntryPoints)
        if (defined.count(entry) && !exported.count(entry))
            Add(out, "entry-points", Outcome::kFail,
                std::string(entry) + " is defined but not exported, so TVPM never calls it: declare it "
                                     "with TVPM_PLUGIN_API");
}

const CheckRegistration s_audits[] = {
    CheckRegistration({"leftovers", 1,
                       "everything the plugin registered is released by the time it is unloaded: flight "
                       "loops, command handlers, data accessors, shared data, draw callbacks, key sniffers, "
                       "hot keys, windows, menus, held commands, objects, instances and the rest",
                       &AuditLeftBehind}),
    CheckRegistration({"code-unmapped", 1, "the plugin's library is really closed after unload",
                       &AuditStillMapped}),
    CheckRegistration({"late-threads", 1, "no thread the plugin started is still running after TPluginStop",
                       &AuditThreads}),
    CheckRegistration({"assertions", 1, "TVPM's internal checks held and the simulator raised no alert "
                                        "(alerts count as warnings)",
                       &AuditAssertions}),
    CheckRegistration({"file-descriptors", 2, "every file the plugin opened is closed after unload", &AuditFiles}),
    CheckRegistration({"entry-points", 2, "every entry point the plugin defines is exported", &AuditEntryPoints}),
};

}  // namespace

std::vector<std::string> DirectoryNames(const char* dir) {
    std::vector<std::string> names;
    if (DIR* d = opendir(dir)) {
        while (dirent* e = readdir(d))
            if (e->d_name[0] != '.') names.push_back(e->d_name);
        closedir(d);
    }
    return names;
}

}  // namespace tvpmhost
