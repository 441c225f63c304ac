// CheckMode.cpp: runs the check of every plugin in a child process of its own and reports pass or fail.
#include "CheckMode.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "HostLog.h"
#include "Modes.h"
#include "Report.h"
#include "SimLayout.h"

namespace tvpmhost {

namespace {

constexpr unsigned kChildSeconds = 120;
constexpr long kDefaultStepFrames = 60;

std::vector<CheckUnit> FindUnits(const HostOptions& o) {
    std::vector<CheckUnit> units;
    for (auto& p : o.plugins) units.push_back({Absolute(p), false});
    const bool defaultRun = o.root.empty() && o.plugins.empty();
    if (o.plugins.empty())
        for (auto& p : GlobalPluginsOf(WithSlash(Absolute(o.root.empty() ? DefaultRoot() : o.root))))
            units.push_back({p, false});
    const std::string aircraft = !o.aircraft.empty() ? Absolute(o.aircraft)
                                 : defaultRun        ? DefaultAircraft(DefaultRoot())
                                                     : "";
    if (!aircraft.empty())
        for (auto& p : AircraftPluginsOf(aircraft)) units.push_back({p, true});
    return units;
}

std::string Slurp(const std::string& file) {
    std::ifstream in(file);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

void ReadFindings(const std::string& file, CheckResult& r) {
    std::istringstream in(Slurp(file));
    for (std::string line; std::getline(in, line);) {
        const size_t tab = line.find('\t');
        if (tab == std::string::npos) continue;
        const std::string kind = line.substr(0, tab), text = line.substr(tab + 1);
        if (kind == "problem") r.problems.push_back(text);
        if (kind == "warning") r.warnings.push_back(text);
        if (kind == "slowest") r.slowest.push_back(text);
        if (kind == "note") r.notes.push_back(text);
        if (kind == "name") r.name = text;
    }
}

// The first report line a sanitizer or the C++ runtime left on the child's output.
std::string CrashReport(const std::string& outFile) {
    std::istringstream in(Slurp(outFile));
    for (std::string line; std::getline(in, line);)
        if (line.find("ERROR: ") != std::string::npos || line.find("terminate called") != std::string::npos)
            return line.substr(line.find_first_not_of("= 0123456789"));
    return "";
}

// What a child that did not finish left in its log.
void ExplainDeath(int status, const std::string& logFile, const std::string& outFile, CheckResult& r) {
    HostLog log;
    std::istringstream in(Slurp(logFile));
    for (std::string line; std::getline(in, line);) ParseLogLine(line, log);
    for (auto& v : log.violations) {
        r.problems.push_back("threading violation: " + v);
        // "Violation by <name> (<signature> - <path>)": the only place the
        // name is known when the plugin died while starting.
        if (r.name.empty() && v.rfind("Violation by ", 0) == 0) r.name = v.substr(13, v.rfind(" (") - 13);
    }
    if (WIFSIGNALED(status)) {
        const int sig = WTERMSIG(status);
        r.problems.push_back(sig == SIGALRM ? "did not finish within " + std::to_string(kChildSeconds) + " s"
                                            : std::string("the simulator process died: ") + strsignal(sig));
    } else if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
        r.problems.push_back("the simulator process exited with status " + std::to_string(WEXITSTATUS(status)));
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        if (const std::string report = CrashReport(outFile); !report.empty()) r.problems.push_back(report);
}

void RunChild(const CheckUnit& unit, const std::string& root, const std::string& library,
              const std::string& plugin, const std::string& acf, long frames, double fps) {
    // The library prints thread-check reports on standard output: keep them
    // out of the report, they reach it through the log.
    const int quiet = open((root + "check.out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (quiet >= 0) {
        dup2(quiet, STDOUT_FILENO);
        dup2(quiet, STDERR_FILENO);
        close(quiet);
    }
    alarm(kChildSeconds);
    CheckInThisProcess(unit, root, library, plugin, acf, frames, fps, root + "check.result",
                       root + "check.log");
    fflush(nullptr);
    _exit(0);
}

CheckResult CheckOne(const CheckUnit& unit, const HostOptions& o, const std::string& library) {
    CheckResult r;
    r.unit = unit;
    TempFolder temp;
    std::string error;
    const std::string root = temp.Path();
    std::string acf;
    if (!temp.Ok() || !MakeSimulatorFolder(root, error)) {
        r.problems.push_back(error.empty() ? "cannot create a temporary simulator folder" : error);
        return r;
    }
    if (unit.aircraft) {
        acf = AddAircraftPlugin(root, unit.source, error);
        if (!acf.empty())
            for (auto& copied : AircraftPluginsOf(acf.substr(0, acf.rfind('/'))))
                r.library = FatLibraryOf(copied);
    } else {
        r.library = AddPlugin(root, unit.source, error);
        // An aircraft without plugins: the plugin only hears of its load and unload.
        acf = root + "Aircraft/Empty/Empty.acf";
    }
    if (!error.empty() || r.library.empty()) {
        r.problems.push_back(error.empty() ? unit.source + " holds no plugin library" : error);
        return r;
    }
    const long frames = o.frames > 0 ? o.frames : kDefaultStepFrames;
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) RunChild(unit, root, library, r.library, acf, frames, o.fps);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        r.problems.push_back("cannot start the simulator process");
        return r;
    }
    ReadFindings(root + "check.result", r);
    ExplainDeath(status, root + "check.log", root + "check.out", r);
    r.log = Slurp(root + "check.log");
    if (r.name.empty()) r.name = unit.source.substr(unit.source.rfind('/') + 1);
    return r;
}

void PrintResult(const CheckResult& r, bool strict) {
    printf("%s  %s%s\n", r.Passed(strict) ? "PASS" : "FAIL", r.name.c_str(), r.unit.aircraft ? " (aircraft)" : "");
    printf("      %s\n", r.unit.source.c_str());
    for (auto& p : r.problems) printf("      problem: %s\n", p.c_str());
    for (auto& w : r.warnings) printf("      warning: %s\n", w.c_str());
    for (auto& n : r.notes) printf("      note:    %s\n", n.c_str());
    for (auto& s : r.slowest) printf("      slowest: %s\n", s.c_str());
}

bool WriteCheckJson(const std::vector<CheckResult>& results, bool strict, bool ok, const std::string& file) {
    std::ofstream out(file);
    out << "{\"mode\":\"check\",\"strict\":" << (strict ? "true" : "false") << ",\"ok\":" << (ok ? "true" : "false")
        << ",\"plugins\":[";
    for (size_t i = 0; i < results.size(); ++i) {
        const CheckResult& r = results[i];
        out << (i ? "," : "") << "{\"source\":" << JsonString(r.unit.source) << ",\"name\":" << JsonString(r.name)
            << ",\"library\":" << JsonString(r.library) << ",\"aircraft\":" << (r.unit.aircraft ? "true" : "false")
            << ",\"passed\":" << (r.Passed(strict) ? "true" : "false") << ",\"problems\":" << JsonList(r.problems)
            << ",\"warnings\":" << JsonList(r.warnings) << ",\"slowest\":" << JsonList(r.slowest)
            << ",\"notes\":" << JsonList(r.notes) << "}";
    }
    out << "]}\n";
    return static_cast<bool>(out);
}

}  // namespace

int RunCheck(const HostOptions& o) {
    const std::vector<CheckUnit> units = FindUnits(o);
    if (units.empty()) {
        fprintf(stderr, "tvpm-host: no plugins to check\n");
        return 2;
    }
    const std::string library = Absolute(o.library.empty() ? DefaultLibrary() : o.library);
    std::vector<CheckResult> results;
    bool ok = true;
    printf("Checking %zu plugin%s with %s\n\n", units.size(), units.size() == 1 ? "" : "s", library.c_str());
    FILE* log = o.logFile.empty() ? nullptr : fopen(o.logFile.c_str(), "w");
    if (!o.logFile.empty() && !log) {
        fprintf(stderr, "tvpm-host: cannot write %s\n", o.logFile.c_str());
        return 2;
    }
    for (auto& unit : units) {
        results.push_back(CheckOne(unit, o, library));
        if (log) fprintf(log, "==== %s\n%s", unit.source.c_str(), results.back().log.c_str());
        ok = ok && results.back().Passed(o.strict);
        PrintResult(results.back(), o.strict);
    }
    if (log) fclose(log);
    size_t passed = 0;
    for (auto& r : results) passed += r.Passed(o.strict);
    printf("\n%zu of %zu plugins passed%s\n", passed, results.size(), o.strict ? " (strict)" : "");
    if (!o.reportFile.empty() && !WriteCheckJson(results, o.strict, ok, o.reportFile)) {
        fprintf(stderr, "tvpm-host: cannot write %s\n", o.reportFile.c_str());
        return 2;
    }
    return ok ? 0 : 1;
}

}  // namespace tvpmhost
