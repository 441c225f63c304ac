// TVPMUtilitiesPrivate.h: the library's own log line helper.
#pragma once

// printf-style line to the simulator's log; a no-op before start-up.
int TVPM_dprintf(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
