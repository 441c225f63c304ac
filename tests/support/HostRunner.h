// HostRunner.h: runs the built tvpm-host as a user would and captures its output, for the host's black-box tests.
#pragma once

#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

struct HostOutcome {
    int status = -1;
    std::string output;
};

inline std::string BinaryDir() {
    if (const char* dir = getenv("TVPM_BINARY_DIR")) return dir;
    // The test program lives in <build>/tests.
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().string();
}

inline std::string TestPlugin(const std::string& name) { return std::string(TVPM_TEST_PLUGIN_DIR) + "/" + name; }

// Runs a shell command; its exit status (-1 when it did not exit) and what it printed.
inline HostOutcome RunShell(const std::string& command) {
    HostOutcome o;
    FILE* p = popen((command + " 2>&1").c_str(), "r");
    if (!p) return o;
    char buf[4096];
    for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) o.output.append(buf, n);
    const int raw = pclose(p);
    o.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return o;
}

inline HostOutcome RunHost(const std::string& args) { return RunShell("'" + BinaryDir() + "/host/tvpm-host' " + args); }

inline std::string Slurp(const std::string& file) {
    std::stringstream s;
    s << std::ifstream(file).rdbuf();
    return s.str();
}

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tvpm-host-test-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) ? pattern : "";
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    const std::string& Path() const { return path_; }

    // A copy of broken_cases.tvp named for one of its cases, which it then acts out.
    std::string BrokenCase(const std::string& name) const {
        const std::string file = *this / (name + ".tvp");
        std::filesystem::copy_file(TestPlugin("broken_cases.tvp"), file,
                                   std::filesystem::copy_options::overwrite_existing);
        return file;
    }

private:
    std::string path_;
};
