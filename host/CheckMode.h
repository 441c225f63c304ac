// CheckMode.h: the plugin check: one plugin at a time, in a child process, through its whole life.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Checks.h"
#include "HostOptions.h"
#include "Simulator.h"
#include "TVPMHost.h"

namespace tvpmhost {

// One plugin to check: a loose file or fat folder of the simulator's plugins
// folder, or a fat folder of an aircraft.
struct CheckUnit {
    std::string source;
    bool aircraft = false;
};

// What the child is told.
struct CheckParams {
    CheckUnit unit;
    std::string root, library, pluginPath, acfPath;
    long frames = 60;
    double fps = 60;
    CheckSelection selection;
    unsigned timeoutSeconds = 10;
    uint64_t seed = 0;
    long fuzzRounds = 0;
    std::string resultFile, logFile;
};

// The plugin as the child's audits see it after shut-down.
struct CheckedPlugin {
    const CheckParams& params;
    const Simulator& sim;
    std::vector<std::string> fdsBefore, tasksBefore;  // before start-up
};

// One frame of a crash or hang report, symbolised.
struct CrashFrame {
    std::string file, offset, function;
};
struct CrashReport {
    std::string kind, signal, step, inFlight, address;
    std::string plugin;  // the plugin TVPM was calling, when it was calling one
    std::vector<CrashFrame> frames;  // in plugin libraries
};

struct CheckResult {
    CheckUnit unit;
    std::string library, name;
    std::vector<Finding> findings;
    std::vector<std::string> timing;  // "category\tcalls\ttotal\tmean\tp99\tmax\tshare" lines
    std::vector<std::string> frameSeries;  // "category\tframe\tus" lines
    std::string log;
    double seconds = 0;
    long frameCount = 0;  // frames the simulator ran
    // The worst outcome of a check; kSkipped when not selected, kPass when it found nothing.
    Outcome Of(const std::string& check, const CheckSelection& s) const;
    bool Passed(const CheckSelection& s, bool strict) const;
};

// Runs the check of one plugin in this process; writes its findings to
// params.resultFile and the log to params.logFile.
void CheckInThisProcess(const CheckParams& params);
// Drives the seeded fuzz rounds on the loaded plugin.
void FuzzPlugin(Simulator& sim, const CheckParams& params, std::vector<Finding>& out);

// Written to the child's log at the start of each step.
constexpr const char* kStepMarker = "---- step: ";

// A file's whole text ("" when unreadable) and a line's tab-separated fields.
std::string FileText(const std::string& file);
std::vector<std::string> Fields(const std::string& line);

// The entries of a folder, such as /proc/self/fd.
std::vector<std::string> DirectoryNames(const char* dir);

// Finding lines shared by the child's writer and the parent's reader.
std::string FindingLine(const Finding& f);
bool ParseFindingLine(const std::string& line, Finding& f);

}  // namespace tvpmhost
