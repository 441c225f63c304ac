// SimLayout.h: simulator folders on disk: the prepared default, temporary ones for given plugins, aircraft files.
#pragma once

#include <string>
#include <vector>

namespace tvpmhost {

// The simulator folder the build prepared with the example plugins ("/" at the end).
std::string DefaultRoot();
// Its example aircraft folder ("" when it has none).
std::string DefaultAircraft(const std::string& root);
// The TVPM_64.so the build produced.
std::string DefaultLibrary();

// A folder removed when the object goes away.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::string& Path() const { return path_; }  // ends with "/"
    bool Ok() const { return !path_.empty(); }

private:
    std::string path_;
};

// Makes root a simulator folder (Resources/plugins).
bool MakeSimulatorFolder(const std::string& root, std::string& error);
// Copies a plugin file or fat folder into root's Resources/plugins; returns
// the library path TVPM will load it from ("" with error on failure).
std::string AddPlugin(const std::string& root, const std::string& plugin, std::string& error);
// Copies a fat plugin folder into a new aircraft folder below root; returns
// the aircraft's file path.
std::string AddAircraftPlugin(const std::string& root, const std::string& plugin,
                              std::string& error);
// The aircraft file of an aircraft folder: its first .acf, or <folder>/<name>.acf.
std::string AircraftFile(const std::string& folder);
// The library inside a fat plugin folder, in the first layout TVPM tries that exists ("" if none).
std::string FatLibraryOf(const std::string& folder);

std::string WithSlash(const std::string& dir);
bool IsDirectory(const std::string& path);
std::string Absolute(const std::string& path);

// The plugins a simulator folder would load: loose .tvp files and fat
// folders of Resources/plugins (paths to copy), in load order.
std::vector<std::string> GlobalPluginsOf(const std::string& root);
// The fat plugin folders of an aircraft folder.
std::vector<std::string> AircraftPluginsOf(const std::string& aircraftFolder);

}  // namespace tvpmhost
