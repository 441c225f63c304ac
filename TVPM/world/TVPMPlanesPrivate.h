// TVPMPlanesPrivate.h: the AI-aircraft family's queries for other units.
#pragma once

#include "TVPMHost.h"

// The plugin that controls the AI aircraft, or -1.
TVPMPluginID TVPMGetTrafficControlPlugin();
