// Modes.h: tvpm-host's two modes: a headless run with a summary, and the plugin check.
#pragma once

#include "HostOptions.h"

namespace tvpmhost {

// Each returns the process exit status.
int RunHost(const HostOptions& options);
int RunCheck(const HostOptions& options);
// --version, --list-checks, --list-data.
int RunInformation(const HostOptions& options);

}  // namespace tvpmhost
