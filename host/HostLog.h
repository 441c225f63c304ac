// HostLog.h: the simulator's log sink: collects what TVPM writes and reads the loader's and plugins' lines out of it.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace tvpmhost {

struct LoaderFailure {
    std::string path, reason;
};

class HostLog {
public:
    bool echo = false;     // print each line as it comes
    FILE* file = nullptr;  // also write each line here (flushed per line)

    // Text as TVPM hands it over: any piece of a line, or several lines.
    void Write(const char* text);
    // Ends a line left open.
    void Flush();

    std::vector<std::string> lines;
    std::vector<std::string> loaded;  // "Loaded: " paths
    std::vector<LoaderFailure> failed;
    std::vector<std::string> loaderWarnings;  // "Warning: " and "Error: " lines
    std::vector<std::string> pluginWarnings;  // "[name]: text" lines
    std::vector<std::string> violations;      // thread-check reports

private:
    void Line(const std::string& line);
    std::string partial_;
};

// Parses one log line; exposed for the check mode, which reads a child's log file.
void ParseLogLine(const std::string& line, HostLog& into);

}  // namespace tvpmhost
