// HostOptions.cpp: parses and explains tvpm-host's command line.
#include "HostOptions.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tvpmhost {

namespace {

bool ParseNumber(const std::string& text, double& out) {
    char* end = nullptr;
    out = strtod(text.c_str(), &end);
    return !text.empty() && end && *end == 0;
}

void SplitInto(const std::string& list, std::vector<std::string>& into) {
    size_t start = 0;
    for (size_t comma; (comma = list.find(',', start)) != std::string::npos; start = comma + 1)
        if (comma > start) into.push_back(list.substr(start, comma - start));
    if (start < list.size()) into.push_back(list.substr(start));
}

}  // namespace

void PrintHelp() {
    printf(
        "usage: tvpm-host [options]\n"
        "\n"
        "Loads TVPM_64.so as the simulator does, runs its plugins through a headless\n"
        "frame loop and reports what happened. With no options it runs the bundled\n"
        "example plugins and example aircraft.\n"
        "\n"
        "  --root DIR          simulator folder (plugins in DIR/Resources/plugins)\n"
        "  --plugin PATH       a plugin file (.tvp) or fat plugin folder; may repeat.\n"
        "                      The plugins are laid out in a temporary simulator folder\n"
        "  --aircraft DIR      aircraft folder whose plugins/ load with the aircraft\n"
        "  --scenery DIR       scenery pack whose plugins/ load; may repeat\n"
        "  --frames N          frames to run (default 300; with --check, per step 60)\n"
        "  --fps F             simulated frame rate (default 60)\n"
        "  --log FILE          write TVPM's log to FILE\n"
        "  --report FILE.json  write the summary as JSON\n"
        "  --quiet             print only the summary, not the log\n"
        "  --audio-out DIR     write what each sound bus played, mixed, as DIR/<bus>.wav\n"
        "  --check             validate each plugin: start, enable, disable, re-enable,\n"
        "                      reload, aircraft load and unload, shut-down\n"
        "  --strict            with --check: warnings fail too (as at --level 5)\n"
        "  --level N           with --check: strictness 1-5 (default 3); a check runs\n"
        "                      when N reaches its level, see --list-checks\n"
        "  --only LIST         with --check: run only these checks (names or shell\n"
        "                      patterns, comma-separated; may repeat)\n"
        "  --skip LIST         with --check: leave these checks out\n"
        "  --timeout SECONDS   with --check: limit per step (default 10; 0 none); a\n"
        "                      step that runs longer is reported as a hang\n"
        "  --fuzz N            with --check: fuzz rounds after the lifecycle (default\n"
        "                      200 from level 3, else 0)\n"
        "  --seed S            with --check: replay the fuzz rounds of seed S\n"
        "  --junit FILE.xml    with --check: write the results as JUnit XML\n"
        "  --html FILE.html    with --check: write a self-contained HTML report\n"
        "  --list-checks       print every check with its level and stop\n"
        "  --list-data         print the simulated world's data items and stop\n"
        "  --version           print the version and stop\n"
        "  --library FILE      the TVPM_64.so to load\n"
        "  --help              this text\n"
        "\n"
        "Exit status: 0 all passed, 1 a check failed, 2 usage error or nothing to\n"
        "check, 3 a plugin crashed, 4 a plugin hung.\n");
}

bool ParseOptions(int argc, char** argv, HostOptions& out, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= argc) {
                error = arg + " needs a value";
                return false;
            }
            into = argv[++i];
            return true;
        };
        std::string v;
        if (arg == "--help" || arg == "-h") {
            out.help = true;
        } else if (arg == "--quiet") {
            out.quiet = true;
        } else if (arg == "--check") {
            out.check = true;
        } else if (arg == "--strict") {
            out.strict = true;
        } else if (arg == "--list-checks" || arg == "--list-data" || arg == "--version") {
            (arg == "--list-checks" ? out.listChecks : arg == "--list-data" ? out.listData : out.version) = true;
        } else if (arg == "--only" || arg == "--skip") {
            if (!value(v)) return false;
            SplitInto(v, arg == "--only" ? out.only : out.skip);
        } else if (arg == "--junit" || arg == "--html") {
            if (!value(v)) return false;
            (arg == "--junit" ? out.junitFile : out.htmlFile) = v;
        } else if (arg == "--level" || arg == "--timeout" || arg == "--fuzz" || arg == "--seed") {
            double n = 0;
            if (!value(v)) return false;
            const bool ok = ParseNumber(v, n) && n >= 0 && n == static_cast<double>(static_cast<long long>(n)) &&
                            (arg != "--level" || (n >= 1 && n <= 5));
            if (!ok) {
                error = arg + (arg == "--level" ? " needs a level from 1 to 5" : " needs a whole number of 0 or more") +
                        ", not '" + v + "'";
                return false;
            }
            if (arg == "--level") out.level = static_cast<int>(n);
            if (arg == "--timeout") out.timeoutSeconds = static_cast<long>(n);
            if (arg == "--fuzz") out.fuzzRounds = static_cast<long>(n);
            if (arg == "--seed") {
                out.seed = std::stoull(v);
                out.seedGiven = true;
            }
        } else if (arg == "--root" || arg == "--aircraft" || arg == "--log" || arg == "--report" ||
                   arg == "--library" || arg == "--audio-out") {
            if (!value(v)) return false;
            if (arg == "--root") out.root = v;
            if (arg == "--aircraft") out.aircraft = v;
            if (arg == "--log") out.logFile = v;
            if (arg == "--report") out.reportFile = v;
            if (arg == "--library") out.library = v;
            if (arg == "--audio-out") out.audioOut = v;
        } else if (arg == "--plugin" || arg == "--scenery") {
            if (!value(v)) return false;
            (arg == "--plugin" ? out.plugins : out.sceneries).push_back(v);
        } else if (arg == "--frames" || arg == "--fps") {
            double n = 0;
            if (!value(v)) return false;
            if (!ParseNumber(v, n) || n <= 0 || (arg == "--frames" && n != static_cast<long>(n))) {
                error = arg + " needs a positive " + (arg == "--frames" ? "whole " : "") +
                        "number, not '" + v + "'";
                return false;
            }
            if (arg == "--frames") out.frames = static_cast<long>(n);
            if (arg == "--fps") out.fps = n;
        } else {
            error = "unknown option '" + arg + "' (see --help)";
            return false;
        }
    }
    if (!out.root.empty() && !out.plugins.empty()) {
        error = "--root and --plugin cannot be combined: --plugin builds its own simulator folder";
        return false;
    }
    if (out.strict && !out.check) {
        error = "--strict only applies to --check";
        return false;
    }
    const bool checkOnly = !out.only.empty() || !out.skip.empty() || out.level > 0 || out.fuzzRounds >= 0 ||
                           out.seedGiven || !out.junitFile.empty() || !out.htmlFile.empty();
    if (checkOnly && !out.check) {
        error = "--level, --only, --skip, --fuzz, --seed, --junit and --html only apply to --check";
        return false;
    }
    return true;
}

}  // namespace tvpmhost
