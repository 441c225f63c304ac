// no_start.cpp: a loadable library that lacks TPluginStart (only TPluginStop is there).
#include "TVPM/TVPMDefs.h"

TVPM_PLUGIN_API void TPluginStop(void) {}
