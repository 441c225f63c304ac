// Checks.cpp: the registry of named checks, the checks every plugin gets, and selection by name, pattern and level.
#include "Checks.h"

#include <fnmatch.h>

#include <algorithm>
#include <cstdio>

namespace tvpmhost {

namespace {

std::vector<CheckInfo>& Registry() {
    static std::vector<CheckInfo> checks;
    return checks;
}

const char* const kOutcomeNames[] = {"pass", "skipped", "warn", "fail", "crash", "timeout"};

bool Matches(const std::vector<std::string>& patterns, const char* name) {
    for (auto& p : patterns)
        if (fnmatch(p.c_str(), name, 0) == 0) return true;
    return false;
}

// The checks of the lifecycle itself; audits register next to their code.
const CheckRegistration s_builtIn[] = {
    CheckRegistration({"load", 1, "the plugin loads, starts and enables"}),
    CheckRegistration({"lifecycle", 1,
                       "it survives frames, disable, re-enable, a reload of all plugins, an aircraft "
                       "load and unload and shut-down without crashing or hanging"}),
    CheckRegistration({"threads", 1, "interface functions are called only on the plugin thread"}),
    CheckRegistration({"caller-buffers", 1, "nothing is written past a buffer TVPM hands to the plugin"}),
    CheckRegistration({"warnings", 1, "TVPM logged no warning about the plugin (a warning; fails at level 5)"}),
    CheckRegistration({"errors", 2, "no call is refused with an error sent to the plugin (bad index, "
                                    "unknown name, wrong structSize, null callback)"}),
    CheckRegistration({"unknown-data", 2, "every data item the plugin looks up exists (a misspelt name reads 0)"}),
    CheckRegistration({"fuzz", 3, "seeded rounds of menu picks, commands, data reads and writes, mouse, "
                                  "keys, messages, disable, enable and reload survive (--fuzz, --seed)"}),
    CheckRegistration({"timing", 3, "no callback takes more than a tenth of the frame budget (a warning; "
                                    "fails at level 4 and up when one takes longer than a frame)"}),
};

}  // namespace

CheckRegistration::CheckRegistration(const CheckInfo& info) { Registry().push_back(info); }

const char* OutcomeName(Outcome o) { return kOutcomeNames[static_cast<int>(o)]; }

Outcome OutcomeFromName(const std::string& name) {
    for (int i = 0; i < 6; ++i)
        if (name == kOutcomeNames[i]) return static_cast<Outcome>(i);
    return Outcome::kFail;
}

const std::vector<CheckInfo>& AllChecks() {
    std::vector<CheckInfo>& checks = Registry();
    std::stable_sort(checks.begin(), checks.end(), [](const CheckInfo& a, const CheckInfo& b) {
        return a.level != b.level ? a.level < b.level : std::string(a.name) < b.name;
    });
    return checks;
}

const CheckInfo* FindCheck(const std::string& name) {
    for (auto& c : AllChecks())
        if (name == c.name) return &c;
    return nullptr;
}

bool CheckSelection::Selected(const CheckInfo& check) const {
    if (!only.empty()) return Matches(only, check.name) && !Matches(skip, check.name);
    return check.level <= level && !Matches(skip, check.name);
}

bool CheckSelection::Selected(const std::string& name) const {
    const CheckInfo* c = FindCheck(name);
    return c && Selected(*c);
}

std::vector<std::string> UnmatchedPatterns(const CheckSelection& s) {
    std::vector<std::string> unmatched;
    for (const auto* list : {&s.only, &s.skip})
        for (auto& p : *list) {
            bool any = false;
            for (auto& c : AllChecks()) any = any || fnmatch(p.c_str(), c.name, 0) == 0;
            if (!any) unmatched.push_back(p);
        }
    return unmatched;
}

void PrintCheckList() {
    printf("%-22s %-6s %s\n", "check", "level", "what it looks for");
    for (auto& c : AllChecks()) printf("%-22s %-6d %s\n", c.name, c.level, c.description);
}

}  // namespace tvpmhost
