// HostLog.cpp: splits TVPM's log into lines and recognises the loader's and plugins' reports.
#include "HostLog.h"

namespace tvpmhost {

namespace {

bool StartsWith(const std::string& s, const char* prefix) { return s.rfind(prefix, 0) == 0; }

// "Failed: <path>.  (<reason>)" — one or two blanks, depending on the failure.
LoaderFailure ParseFailure(const std::string& line) {
    const std::string body = line.substr(8);
    size_t open = body.find(". (");
    size_t gap = 2;
    if (const size_t two = body.find(".  ("); two != std::string::npos && two <= open) {
        open = two;
        gap = 3;
    }
    if (open == std::string::npos) return {body, ""};
    std::string reason = body.substr(open + gap + 1);
    if (!reason.empty() && reason.back() == ')') reason.pop_back();
    return {body.substr(0, open), reason};
}

}  // namespace

void ParseLogLine(const std::string& line, HostLog& into) {
    if (StartsWith(line, "Loaded: ")) {
        const size_t sig = line.rfind(" (");
        into.loaded.push_back(line.substr(8, sig == std::string::npos ? std::string::npos : sig - 8));
    } else if (StartsWith(line, "Failed: ")) {
        into.failed.push_back(ParseFailure(line));
    } else if (StartsWith(line, "Warning: ") || StartsWith(line, "Error: ")) {
        into.loaderWarnings.push_back(line);
    } else if (StartsWith(line, "Threading violation calling ") || StartsWith(line, "Violation by ")) {
        into.violations.push_back(line);
    } else if (StartsWith(line, "[") && line.find("]: ") != std::string::npos) {
        into.pluginWarnings.push_back(line);
    }
}

void HostLog::Write(const char* text) {
    for (const char* p = text; *p; ++p) {
        if (*p == '\n') {
            Line(partial_);
            partial_.clear();
        } else {
            partial_ += *p;
        }
    }
}

void HostLog::Flush() {
    if (!partial_.empty()) Line(partial_);
    partial_.clear();
}

void HostLog::Line(const std::string& line) {
    if (line.empty()) return;
    lines.push_back(line);
    ParseLogLine(line, *this);
    if (echo) printf("  | %s\n", line.c_str());
    if (file) {
        fprintf(file, "%s\n", line.c_str());
        fflush(file);
    }
}

}  // namespace tvpmhost
