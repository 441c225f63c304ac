// TVPMDiagnostics.h: the log lines plugin diagnostics add for misuse a plugin may never see.
#pragma once

#include "TVPMHost.h"

// Reads the environment switch; called once at start-up.
void TVPMReadDiagnosticsSwitch();
// Each logs only while diagnostics are on.
void TVPMDiagnoseError(const char* text, TVPMPluginID who);
void TVPMDiagnoseUnknownDataRef(const char* name, TVPMPluginID who);
void TVPMDiagnoseLeftAtUnload(TVPMPluginID id);
