// CheckVerdicts.h: the parent's judgement of a child's log, crash report and timings.
#pragma once

#include <cstdint>
#include <string>

#include "CheckMode.h"

namespace tvpmhost {

// The crash report a child left in file, with the frames inside library
// (or, when library is "", inside any plugin), symbolised where it can be.
CrashReport ReadCrash(const std::string& file, const std::string& library);

// Log lines of diagnostics, thread violations, buffer overruns and warnings.
void JudgeLog(CheckResult& r);
// A crash or hang, attributed to the step and the check that was running.
void JudgeCrash(CheckResult& r, const CrashReport& crash, uint64_t seed, bool fuzzing);
// Callbacks against the frame budget.
void JudgeTiming(CheckResult& r, double fps, int level);

}  // namespace tvpmhost
