// CheckMode.cpp: runs the check of every plugin in a child process of its own, judges it and reports.
#include "CheckMode.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "CheckReports.h"
#include "CheckSignals.h"
#include "CheckVerdicts.h"
#include "Modes.h"
#include "SimLayout.h"

namespace tvpmhost {

namespace {

constexpr long kDefaultStepFrames = 60;
constexpr long kDefaultFuzzRounds = 200;
constexpr int kFuzzDefaultLevel = 3;
// Steps a child goes through; the parent's own limit is this many step timeouts.
constexpr unsigned kStepsPerChild = 12;

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

void ReadFindings(const std::string& file, CheckResult& r) {
    std::istringstream in(FileText(file));
    for (std::string line; std::getline(in, line);) {
        Finding f;
        if (ParseFindingLine(line, f)) r.findings.push_back(f);
        else if (line.rfind("name\t", 0) == 0) r.name = line.substr(5);
        else if (line.rfind("timing\t", 0) == 0) r.timing.push_back(line.substr(7));
        else if (line.rfind("frame\t", 0) == 0) r.frameSeries.push_back(line.substr(6));
        else if (line.rfind("framecount\t", 0) == 0) r.frameCount = std::stol(line.substr(11));
    }
}

// "Violation by <name> (<signature> - <path>)": the only place the name is
// known when the plugin died while starting.
std::string NameFromViolation(const CheckResult& r) {
    for (auto& f : r.findings)
        if (f.check == "threads" && f.message.rfind("Violation by ", 0) == 0)
            return f.message.substr(13, f.message.rfind(" (") - 13);
    return "";
}

void RunChild(const CheckParams& p) {
    // The library prints thread-check reports on standard output: keep them
    // out of the report, they reach it through the log.
    const int quiet = open((p.root + "check.out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (quiet >= 0) {
        dup2(quiet, STDOUT_FILENO);
        dup2(quiet, STDERR_FILENO);
        close(quiet);
    }
    const int crash = open((p.root + "check.crash").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    InstallCrashReport(crash, p.timeoutSeconds);
    CheckInThisProcess(p);
    fflush(nullptr);
    _exit(0);
}

// Waits for the child; kills it when it outlives every step's timeout (a
// hang the step timer could not report).
int WaitForChild(pid_t child, unsigned timeoutSeconds, bool& killed) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds * kStepsPerChild);
    int status = 0;
    for (;;) {
        const pid_t done = waitpid(child, &status, WNOHANG);
        if (done == child) return status;
        if (done < 0) return -1;
        if (timeoutSeconds && std::chrono::steady_clock::now() > deadline && !killed) {
            kill(child, SIGKILL);
            killed = true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void ExplainExit(int status, bool killed, CheckResult& r) {
    if (killed) {
        r.findings.push_back({"lifecycle", "?", Outcome::kTimeout, "the simulator process did not finish and was killed"});
    } else if (WIFSIGNALED(status)) {
        r.findings.push_back({"lifecycle", "?", Outcome::kCrash,
                              std::string("the simulator process died: ") + strsignal(WTERMSIG(status))});
    } else if (WIFEXITED(status) && WEXITSTATUS(status) != 0 && WEXITSTATUS(status) != kCrashExitStatus &&
               WEXITSTATUS(status) != kTimeoutExitStatus) {
        r.findings.push_back({"lifecycle", "?", Outcome::kCrash,
                              "the simulator process exited with status " + std::to_string(WEXITSTATUS(status))});
    }
}

bool Prepare(const CheckUnit& unit, const std::string& root, CheckParams& p, CheckResult& r) {
    std::string error;
    if (!MakeSimulatorFolder(root, error)) {
        r.findings.push_back({"load", "start", Outcome::kFail, error});
        return false;
    }
    if (unit.aircraft) {
        p.acfPath = AddAircraftPlugin(root, unit.source, error);
        if (!p.acfPath.empty())
            for (auto& copied : AircraftPluginsOf(p.acfPath.substr(0, p.acfPath.rfind('/'))))
                r.library = FatLibraryOf(copied);
    } else {
        r.library = AddPlugin(root, unit.source, error);
        // An aircraft without plugins: the plugin only hears of its load and unload.
        p.acfPath = root + "Aircraft/Empty/Empty.acf";
    }
    if (!error.empty() || r.library.empty()) {
        r.findings.push_back({"load", "start", Outcome::kFail, error.empty() ? unit.source + " holds no plugin library" : error});
        return false;
    }
    return true;
}

CheckResult CheckOne(const CheckUnit& unit, CheckParams p) {
    CheckResult r;
    r.unit = unit;
    const auto began = std::chrono::steady_clock::now();
    TempFolder temp;
    p.unit = unit;
    p.root = temp.Path();
    p.resultFile = p.root + "check.result";
    p.logFile = p.root + "check.log";
    if (!temp.Ok()) {
        r.findings.push_back({"load", "start", Outcome::kFail, "cannot create a temporary simulator folder"});
        return r;
    }
    if (Prepare(unit, p.root, p, r)) {
        p.pluginPath = r.library;
        fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) RunChild(p);
        bool killed = false;
        const int status = child < 0 ? -1 : WaitForChild(child, p.timeoutSeconds, killed);
        ReadFindings(p.resultFile, r);
        r.log = FileText(p.logFile);
        JudgeLog(r);
        const CrashReport crash = ReadCrash(p.root + "check.crash", r.library);
        JudgeCrash(r, crash, p.seed, p.fuzzRounds > 0);
        if (crash.kind.empty()) ExplainExit(status, killed, r);
        JudgeTiming(r, p.fps, p.selection.level);
    }
    if (r.name.empty()) r.name = NameFromViolation(r);
    if (r.name.empty()) r.name = unit.source.substr(unit.source.find_last_of('/', unit.source.size() - 2) + 1);
    r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    return r;
}

CheckParams ParamsFrom(const HostOptions& o) {
    CheckParams p;
    p.library = Absolute(o.library.empty() ? DefaultLibrary() : o.library);
    p.frames = o.frames > 0 ? o.frames : kDefaultStepFrames;
    p.fps = o.fps;
    p.selection = {o.only, o.skip, o.level > 0 ? o.level : kDefaultLevel};
    p.timeoutSeconds = static_cast<unsigned>(o.timeoutSeconds);
    p.seed = o.seedGiven ? o.seed : static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) % 1000000007ULL;
    p.fuzzRounds = o.fuzzRounds >= 0 ? o.fuzzRounds : p.selection.level >= kFuzzDefaultLevel ? kDefaultFuzzRounds : 0;
    return p;
}

// 4 when a plugin hung, else 3 when one crashed, else 1 when one failed.
int ExitStatus(const std::vector<CheckResult>& results, const CheckSelection& s, bool strict) {
    int status = 0;
    for (auto& r : results)
        for (auto& f : r.findings) {
            if (f.outcome == Outcome::kTimeout) status = std::max(status, 4);
            if (f.outcome == Outcome::kCrash) status = std::max(status, 3);
        }
    if (status) return status;
    for (auto& r : results)
        if (!r.Passed(s, strict)) return 1;
    return 0;
}

}  // namespace

std::string FileText(const std::string& file) {
    std::ifstream in(file);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string FindingLine(const Finding& f) {
    std::string message = f.message;
    for (auto& c : message)
        if (c == '\n') c = '\r';
    return "finding\t" + f.check + "\t" + f.step + "\t" + OutcomeName(f.outcome) + "\t" + message;
}

bool ParseFindingLine(const std::string& line, Finding& f) {
    const std::vector<std::string> fields = Fields(line);
    if (fields.size() < 5 || fields[0] != "finding") return false;
    f = {fields[1], fields[2], OutcomeFromName(fields[3]), fields[4]};
    for (auto& c : f.message)
        if (c == '\r') c = '\n';
    return true;
}

// A crash or hang counts even in a check left out: it ended the process.
Outcome CheckResult::Of(const std::string& check, const CheckSelection& s) const {
    Outcome worst = Outcome::kPass;
    for (auto& f : findings)
        if (f.check == check && f.outcome > worst) worst = f.outcome;
    return s.Selected(check) || worst >= Outcome::kCrash ? worst : Outcome::kSkipped;
}

bool CheckResult::Passed(const CheckSelection& s, bool strict) const {
    for (auto& c : AllChecks()) {
        const Outcome o = Of(c.name, s);
        if (o >= Outcome::kFail || (o == Outcome::kWarn && strict)) return false;
    }
    return true;
}

int RunCheck(const HostOptions& o) {
    for (auto& p : o.plugins)
        if (access(p.c_str(), F_OK) != 0) {
            fprintf(stderr, "tvpm-host: %s does not exist\n", p.c_str());
            return 2;
        }
    const std::vector<CheckUnit> units = FindUnits(o);
    if (units.empty()) {
        fprintf(stderr, "tvpm-host: no plugins to check\n");
        return 2;
    }
    const CheckParams params = ParamsFrom(o);
    if (const auto unmatched = UnmatchedPatterns(params.selection); !unmatched.empty()) {
        fprintf(stderr, "tvpm-host: no check is called '%s' (see --list-checks)\n", unmatched[0].c_str());
        return 2;
    }
    const bool strict = o.strict || params.selection.level >= kWarningsFailLevel;
    FILE* log = o.logFile.empty() ? nullptr : fopen(o.logFile.c_str(), "w");
    if (!o.logFile.empty() && !log) {
        fprintf(stderr, "tvpm-host: cannot write %s\n", o.logFile.c_str());
        return 2;
    }
    printf("Checking %zu plugin%s at level %d with %s\n", units.size(), units.size() == 1 ? "" : "s",
           params.selection.level, params.library.c_str());
    if (params.fuzzRounds > 0 && params.selection.Selected("fuzz"))
        printf("Fuzzing %ld rounds with seed %llu (replay with --seed %llu)\n", params.fuzzRounds,
               static_cast<unsigned long long>(params.seed), static_cast<unsigned long long>(params.seed));
    printf("\n");
    std::vector<CheckResult> results;
    for (auto& unit : units) {
        results.push_back(CheckOne(unit, params));
        if (log) fprintf(log, "==== %s\n%s", unit.source.c_str(), results.back().log.c_str());
        PrintResult(results.back(), params.selection, strict);
    }
    if (log) fclose(log);
    const int status = ExitStatus(results, params.selection, strict);
    PrintTotals(results, params.selection, strict, status);
    const ReportContext context{params, strict, status};
    std::string error;
    if ((!o.reportFile.empty() && !WriteCheckJson(results, context, o.reportFile)) ||
        (!o.junitFile.empty() && !WriteJUnit(results, context, o.junitFile)) ||
        (!o.htmlFile.empty() && !WriteHtml(results, context, o.htmlFile))) {
        fprintf(stderr, "tvpm-host: cannot write a report file\n");
        return 2;
    }
    return status;
}

}  // namespace tvpmhost
