// HostOptions.h: tvpm-host's command line.
#pragma once

#include <cstdint>
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
    // --check
    std::vector<std::string> only, skip;  // check names or patterns
    int level = -1;                       // -1: the default level
    long timeoutSeconds = 10;             // per step
    unsigned long long seed = 0;
    bool seedGiven = false;
    long fuzzRounds = -1;                 // -1: the default for the level
    std::string junitFile, htmlFile;
    // information
    bool listChecks = false, version = false, listData = false;
};

// Parses argv; false with error set for a bad command line.
bool ParseOptions(int argc, char** argv, HostOptions& out, std::string& error);
void PrintHelp();

}  // namespace tvpmhost
