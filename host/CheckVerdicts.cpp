// CheckVerdicts.cpp: turns what the child left (findings, TVPM's log, a crash report, timings) into the results of named checks.
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "CheckMode.h"
#include "CheckVerdicts.h"
#include "HostLog.h"

namespace tvpmhost {

namespace {

// How TVPM reports a plugin that wrote past a 256-byte buffer it handed out
// ("[name]: buffer overrun: ..."); the one place the host knows the text.
constexpr const char* kBufferOverrunMarker = "]: buffer overrun: ";
constexpr const char* kSimulatorDataPrefix = "sim/";

bool StartsWith(const std::string& s, const std::string& prefix) { return s.rfind(prefix, 0) == 0; }

// "Diagnostics: [name] kind text" -> text, when the line is of that kind.
bool DiagnosticText(const std::string& line, const char* kind, std::string& text) {
    if (!StartsWith(line, TVPM_DIAGNOSTICS_PREFIX)) return false;
    const size_t at = line.find(kind);
    if (at == std::string::npos) return false;
    text = line.substr(at + strlen(kind));
    return true;
}

// Once per check and key (by default the message itself).
void AddOnce(CheckResult& r, std::set<std::string>& seen, const char* check, Outcome o, const std::string& step,
             const std::string& message, const std::string& key = "") {
    if (seen.insert(std::string(check) + "\t" + (key.empty() ? message : key)).second)
        r.findings.push_back({check, step, o, message});
}

// The simulator's own items always exist: a miss there is a misspelt name.
// Other plugins' items may just not be loaded alongside: noted, not failed.
void JudgeUnknownData(CheckResult& r, std::set<std::string>& seen, const std::string& step, const std::string& name) {
    if (StartsWith(name, kSimulatorDataPrefix))
        AddOnce(r, seen, "unknown-data", Outcome::kFail, step,
                "looked up the data item '" + name + "', which the simulator does not publish: a misspelt name "
                "reads 0 forever (see --list-data)");
    else
        AddOnce(r, seen, "unknown-data", Outcome::kPass, step,
                "looked up the data item '" + name + "', which no plugin loaded with it publishes");
}

std::string FunctionAt(const std::string& file, const std::string& offset) {
    std::string name;
    FILE* p = popen(("addr2line -f -C -e '" + file + "' " + offset + " 2>/dev/null").c_str(), "r");
    if (!p) return name;
    char line[512];
    if (fgets(line, sizeof line, p)) name = line;
    pclose(p);
    name.erase(name.find_last_not_of('\n') + 1);
    return name == "??" ? "" : name;
}

bool IsPluginLibrary(const std::string& file, const std::string& library) {
    return file == library || (file.size() > 4 && file.compare(file.size() - 4, 4, ".tvp") == 0);
}

// "<count> <kind>". Weather a plugin set and the channel group TVPM made for
// its sounds stay its own until TVPM's clean-up drops them (no call releases
// them); what the simulator still holds of them is for the world-services and
// sound checks.
void JudgeLeftAtUnload(CheckResult& r, std::set<std::string>& seen, const std::string& step, const std::string& text) {
    const std::string kind = text.substr(text.find(' ') + 1);
    const bool keptByDesign = kind == "weather" || kind == "sound channel groups";
    AddOnce(r, seen, "leftovers", keptByDesign ? Outcome::kPass : Outcome::kFail, step,
            "still had " + text + " registered after TPluginStop; TVPM's clean-up released them", kind);
}

}  // namespace

std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> out;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');) out.push_back(field);
    return out;
}

CrashReport ReadCrash(const std::string& file, const std::string& library) {
    CrashReport c;
    std::istringstream in(FileText(file));
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> f = Fields(line);
        if (f.size() >= 5 && c.kind.empty() && (f[0] == "crash" || f[0] == "timeout"))
            c = {f[0], f[1], f[2], f[3], f[4], "", {}};
        if (f.size() == 2 && f[0] == "plugin") c.plugin = f[1];
        if (f.size() < 3 || f[0] != "frame" || !IsPluginLibrary(f[1], library)) continue;
        std::string function = f.size() > 3 ? f[3] : "";
        if (function.empty()) function = FunctionAt(f[1], f[2]);
        if (c.frames.empty() || c.frames.back().offset != f[2]) c.frames.push_back({f[1], f[2], function});
    }
    return c;
}

void JudgeLog(CheckResult& r) {
    std::istringstream in(r.log);
    std::set<std::string> seen, warned;
    // Texts TVPM also logs as a warning (a deprecated item) are warnings, not refusals.
    for (std::string line; std::getline(in, line);)
        if (StartsWith(line, "[") && line.find("]: ") != std::string::npos) warned.insert(line.substr(line.find("]: ") + 3));
    in.clear();
    in.seekg(0);
    std::string step = "start", text;
    for (std::string line; std::getline(in, line);) {
        if (DiagnosticText(line, TVPM_DIAGNOSTICS_ERROR, text) && warned.count(text)) continue;
        if (DiagnosticText(line, TVPM_DIAGNOSTICS_ERROR, text))
            AddOnce(r, seen, "errors", Outcome::kFail, step, "TVPM refused a call with the error \"" + text + "\"");
        else if (DiagnosticText(line, TVPM_DIAGNOSTICS_UNKNOWN_DATA, text))
            JudgeUnknownData(r, seen, step, text);
        else if (DiagnosticText(line, TVPM_DIAGNOSTICS_LEFT_AT_UNLOAD, text))
            JudgeLeftAtUnload(r, seen, step, text);
        else if (StartsWith(line, "Threading violation calling ") || StartsWith(line, "Violation by "))
            AddOnce(r, seen, "threads", Outcome::kFail, step, line);
        else if (line.find(kBufferOverrunMarker) != std::string::npos)
            AddOnce(r, seen, "caller-buffers", Outcome::kFail, step, line);
        else if (StartsWith(line, "Warning: ") || StartsWith(line, "Error: ") ||
                 (StartsWith(line, "[") && line.find("]: ") != std::string::npos))
            AddOnce(r, seen, "warnings", Outcome::kWarn, step, line);
        else if (StartsWith(line, kStepMarker))
            step = line.substr(strlen(kStepMarker));
    }
}

void JudgeCrash(CheckResult& r, const CrashReport& c, uint64_t seed, bool fuzzing) {
    if (c.kind.empty()) return;
    // A thread violation is reported as such; the abort that follows is the library's.
    for (auto& f : r.findings)
        if (f.check == "threads" && c.signal.find("Abort") != std::string::npos) return;
    bool unloaded = false;
    for (auto& f : c.frames) unloaded = unloaded || f.function == "(unloaded)";
    std::string where = c.inFlight.empty() ? "" : " during " + c.inFlight;
    const bool inFuzz = c.step.rfind("fuzz", 0) == 0;
    if (fuzzing && inFuzz) where += " (replay with --seed " + std::to_string(seed) + ")";
    std::string message = c.kind == "timeout" ? "did not finish the step within the timeout, stuck" + where
                                              : c.signal + where;
    if (unloaded) message += ": a thread of the plugin used its code or data after the plugin was unloaded";
    for (auto& f : c.frames)
        message += "\n    at " + f.file + " +" + f.offset + (f.function.empty() ? "" : " " + f.function);
    const char* check = unloaded ? "late-threads" : inFuzz ? "fuzz" : "lifecycle";
    r.findings.push_back({check, c.step, c.kind == "timeout" ? Outcome::kTimeout : Outcome::kCrash, message});
}

void JudgeTiming(CheckResult& r, double fps, int level) {
    const double budgetUs = 1e6 / fps;
    for (auto& row : r.timing) {
        std::istringstream in(row);
        std::string category;
        long calls = 0;
        double total = 0, mean = 0, p99 = 0, allMax = 0, share = 0, max = 0;
        std::getline(in, category, '\t');
        in >> calls >> total >> mean >> p99 >> allMax >> share >> max;  // judged without the first call
        char text[300];
        snprintf(text, sizeof text, "a %s callback took %.0f us, %s the frame budget of %.0f us at %g fps",
                 category.c_str(), max, max > budgetUs ? "more than" : "over a tenth of", budgetUs, fps);
        if (max > budgetUs && level >= 4)
            r.findings.push_back({"timing", "frames", Outcome::kFail, text});
        else if (max > budgetUs / 10)
            r.findings.push_back({"timing", "frames", Outcome::kWarn, text});
    }
}

}  // namespace tvpmhost
