// CheckSignals.h: where a checked simulator process is (step, call in flight), and the report it leaves when it crashes or hangs.
#pragma once

#include <string>

namespace tvpmhost {

// The step of the plugin's life the process is in; re-arms the step timer.
void SetStep(const char* step);
const char* CurrentStep();

// Names the call into TVPM in flight (the kind of callback it leads to) for
// the scope's lifetime; scopes nest. what must outlive the scope.
class InFlight {
public:
    explicit InFlight(const char* what);
    ~InFlight();
    InFlight(const InFlight&) = delete;
    InFlight& operator=(const InFlight&) = delete;

private:
    const char* previous_;
};

// From here on a fatal signal, or a step that runs longer than timeoutSeconds
// (0: no limit), writes a report to fd and ends the process: a first line
// "crash|timeout \t signal \t step \t in flight \t fault address", then one
// "frame \t file \t offset \t symbol" line per stack frame.
void InstallCrashReport(int fd, unsigned timeoutSeconds);
// Remembers where a plugin library is mapped now, so that frames in it are
// found even after it was unloaded.
void WatchPluginCode(const std::string& libraryPath);
// Keeps the watched code ranges that are no longer mapped reserved and
// inaccessible, so that a late call into them faults at once and is
// attributed to the plugin.
void ReserveUnloadedCode();
// From now on every plugin library closed in this process has its code range
// reserved at once (tvpm-host interposes dlclose).
void ReserveCodeOnClose(bool on);

constexpr int kCrashExitStatus = 97, kTimeoutExitStatus = 98;

}  // namespace tvpmhost
