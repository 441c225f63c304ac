// HostOptions.h: tvpm-host's command line.
#pragma once

#include <string>
#include <vector>

namespace tvpmhost {

struct HostOptions {
    std::string root;      // simulator folder; "" = the one the build prepared
    std::string library;   // TVPM_64.so; "" = the built one
    std::vector<std::string> plugins;  // plugin files or fat folders
    std::string aircraft;  // aircraft folder
    std::vector<std::string> sceneries;
    long frames = -1;      // -1: 300 for a run, 60 per step for a check
    double fps = 60;
    std::string logFile, reportFile;
    std::string audioOut;  // folder for one WAV per bus; "" = none
    bool quiet = false, check = false, strict = false, help = false;
};

// Parses argv; false with error set for a bad command line.
bool ParseOptions(int argc, char** argv, HostOptions& out, std::string& error);
void PrintHelp();

}  // namespace tvpmhost
