// CheckMode.h: the plugin check: one plugin at a time, in a child process, through its whole life.
#pragma once

#include <string>
#include <vector>

#include "HostOptions.h"

namespace tvpmhost {

// One plugin to check: a loose file or fat folder of the simulator's plugins
// folder, or a fat folder of an aircraft.
struct CheckUnit {
    std::string source;
    bool aircraft = false;
};

struct CheckResult {
    CheckUnit unit;
    std::string library, name;
    std::vector<std::string> problems, warnings, slowest, notes;
    std::string log;  // TVPM's log during the check
    bool Passed(bool strict) const { return problems.empty() && (!strict || warnings.empty()); }
};

// Runs the check of one plugin in this process; writes its findings to
// resultFile (one "kind\ttext" line each) and the log to logFile.
void CheckInThisProcess(const CheckUnit& unit, const std::string& root, const std::string& library,
                        const std::string& pluginPath, const std::string& acfPath, long frames,
                        double fps, const std::string& resultFile, const std::string& logFile);

}  // namespace tvpmhost
