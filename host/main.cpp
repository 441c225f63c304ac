// main.cpp: tvpm-host, the headless stand-in for the simulator that loads TVPM_64.so and runs plugins.
#include <cstdio>

#include "Modes.h"

int main(int argc, char** argv) {
    tvpmhost::HostOptions options;
    std::string error;
    if (!tvpmhost::ParseOptions(argc, argv, options, error)) {
        fprintf(stderr, "tvpm-host: %s\n", error.c_str());
        return 2;
    }
    if (options.help) {
        tvpmhost::PrintHelp();
        return 0;
    }
    if (options.version || options.listChecks || options.listData) return tvpmhost::RunInformation(options);
    return options.check ? tvpmhost::RunCheck(options) : tvpmhost::RunHost(options);
}
