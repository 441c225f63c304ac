// Checks.h: the named checks of --check: what each looks for, from which strictness level, and how one is selected.
#pragma once

#include <string>
#include <vector>

namespace tvpmhost {

// Worst last: a check's result is the worst of its findings.
enum class Outcome { kPass, kSkipped, kWarn, kFail, kCrash, kTimeout };
const char* OutcomeName(Outcome o);
Outcome OutcomeFromName(const std::string& name);

constexpr int kLowestLevel = 1, kHighestLevel = 5, kDefaultLevel = 3;
// From this level a warning fails the plugin.
constexpr int kWarningsFailLevel = 5;

// Something a check found in the child, written as one line of the findings file.
struct Finding {
    std::string check, step;
    Outcome outcome = Outcome::kFail;
    std::string message;
};

// Where the child is in the plugin's life; every finding is stamped with it.
struct CheckedPlugin;
// Runs after the plugin was unloaded at shut-down, in the child: looks at
// what the plugin left (the simulated world, the log) and adds findings.
using AuditFn = void (*)(const CheckedPlugin& plugin, std::vector<Finding>& out);

struct CheckInfo {
    const char* name;
    int level;  // runs at --level N when N >= level
    const char* description;
    AuditFn audit = nullptr;
};

// Every check, ordered by level, then name. A family's audit is one
// registration at namespace scope in its own file:
//   static const CheckRegistration s_weather{{"weather-leftovers", 1, "...", &AuditWeather}};
const std::vector<CheckInfo>& AllChecks();
const CheckInfo* FindCheck(const std::string& name);
struct CheckRegistration {
    explicit CheckRegistration(const CheckInfo& info);
};

// --only, --skip and --level.
struct CheckSelection {
    std::vector<std::string> only, skip;  // names or shell patterns
    int level = kDefaultLevel;
    bool Selected(const CheckInfo& check) const;
    bool Selected(const std::string& name) const;
};
// Patterns that match no check: a usage error.
std::vector<std::string> UnmatchedPatterns(const CheckSelection& s);

void PrintCheckList();

}  // namespace tvpmhost
