// SimLayout.cpp: prepares simulator folders and finds the plugins in them.
#include "SimLayout.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace tvpmhost {

namespace {

// The library looks for these three layouts inside a fat plugin folder.
std::string FatLibrary(const fs::path& folder) {
    const std::string name = folder.filename().string();
    for (const fs::path& candidate : {folder / "lin_x64" / (name + ".tvp"), folder / "64" / "lin.tvp",
                                     folder / "lin.tvp"}) {
        std::error_code ec;
        if (fs::is_regular_file(candidate, ec)) return candidate.string();
    }
    return "";
}

// "a/b/" and "a/b" name the same folder.
fs::path Normal(const std::string& path) {
    fs::path p = fs::path(path).lexically_normal();
    return p.has_filename() ? p : p.parent_path();
}

std::vector<std::string> SortedEntries(const fs::path& dir) {
    std::vector<std::string> out;
    std::error_code ec;
    for (auto it = fs::directory_iterator(dir, ec); !ec && it != fs::directory_iterator();
         it.increment(ec))
        out.push_back(it->path().string());
    std::sort(out.begin(), out.end());
    return out;
}

}  // namespace

std::string DefaultRoot() { return WithSlash(TVPM_HOST_SIM_DIR); }

std::string DefaultAircraft(const std::string& root) {
    const std::string folder = root + "Aircraft/Example";
    return IsDirectory(folder) ? folder : "";
}

std::string DefaultLibrary() {
    if (const char* env = getenv("TVPM_LIBRARY")) return env;
    // An installed tvpm-host uses the library installed with it (bin/ next
    // to lib/); in the build tree, the one built alongside it.
    std::error_code ec;
    const fs::path self = fs::read_symlink("/proc/self/exe", ec);
    const fs::path installed = self.parent_path().parent_path() / "lib" / "TVPM_64.so";
    return !ec && fs::is_regular_file(installed, ec) ? installed.string() : TVPM_HOST_LIBRARY;
}

TempFolder::TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "tvpm-host-XXXXXX").string();
    if (mkdtemp(pattern.data())) path_ = pattern + "/";
}

TempFolder::~TempFolder() {
    std::error_code ec;
    if (!path_.empty()) fs::remove_all(path_, ec);
}

bool MakeSimulatorFolder(const std::string& root, std::string& error) {
    std::error_code ec;
    fs::create_directories(root + "Resources/plugins", ec);
    if (ec) error = "cannot create " + root + "Resources/plugins: " + ec.message();
    return !ec;
}

std::string AddPlugin(const std::string& root, const std::string& plugin, std::string& error) {
    std::error_code ec;
    const fs::path source = Normal(plugin);
    const fs::path name = source.filename();
    const fs::path target = fs::path(root) / "Resources/plugins" / name;
    if (fs::is_directory(source, ec)) {
        if (FatLibrary(source).empty()) {
            error = plugin + " is a folder without lin_x64/" + name.string() + ".tvp, 64/lin.tvp or lin.tvp";
            return "";
        }
        fs::copy(source, target, fs::copy_options::recursive, ec);
        if (ec) error = "cannot copy " + plugin + ": " + ec.message();
        return ec ? "" : FatLibrary(target);
    }
    if (!fs::is_regular_file(source, ec)) {
        error = plugin + " does not exist";
        return "";
    }
    if (source.extension() != ".tvp") {
        error = plugin + " is not a .tvp plugin file";
        return "";
    }
    fs::copy_file(source, target, ec);
    if (ec) error = "cannot copy " + plugin + ": " + ec.message();
    return ec ? "" : target.string();
}

std::string AddAircraftPlugin(const std::string& root, const std::string& plugin,
                              std::string& error) {
    const fs::path source = Normal(plugin);
    const fs::path aircraft = fs::path(root) / "Aircraft" / "Checked";
    const fs::path target = aircraft / "plugins" / source.filename();
    std::error_code ec;
    fs::create_directories(target.parent_path(), ec);
    if (!ec) fs::copy(source, target, fs::copy_options::recursive, ec);
    if (ec) {
        error = "cannot copy " + plugin + ": " + ec.message();
        return "";
    }
    std::ofstream(aircraft / "Checked.acf") << "A\n1000 Version\n";
    return (aircraft / "Checked.acf").string();
}

std::string AircraftFile(const std::string& folder) {
    for (const auto& entry : SortedEntries(folder))
        if (fs::path(entry).extension() == ".acf") return entry;
    const fs::path f = Normal(folder);
    return (f / (f.filename().string() + ".acf")).string();
}

std::string FatLibraryOf(const std::string& folder) { return FatLibrary(folder); }

std::string WithSlash(const std::string& dir) {
    return dir.empty() || dir.back() == '/' ? dir : dir + "/";
}

bool IsDirectory(const std::string& path) {
    std::error_code ec;
    return fs::is_directory(path, ec);
}

std::string Absolute(const std::string& path) {
    std::error_code ec;
    const fs::path p = fs::absolute(path, ec);
    return ec ? path : p.lexically_normal().string();
}

std::vector<std::string> GlobalPluginsOf(const std::string& root) {
    std::vector<std::string> loose, fat;
    for (const auto& entry : SortedEntries(root + "Resources/plugins")) {
        if (fs::path(entry).extension() == ".tvp" && fs::is_regular_file(entry))
            loose.push_back(entry);
        else if (IsDirectory(entry) && !FatLibrary(entry).empty())
            fat.push_back(entry);
    }
    loose.insert(loose.end(), fat.begin(), fat.end());
    return loose;
}

std::vector<std::string> AircraftPluginsOf(const std::string& aircraftFolder) {
    std::vector<std::string> out;
    for (const auto& entry : SortedEntries(fs::path(aircraftFolder) / "plugins"))
        if (IsDirectory(entry) && !FatLibrary(entry).empty()) out.push_back(entry);
    return out;
}

}  // namespace tvpmhost
