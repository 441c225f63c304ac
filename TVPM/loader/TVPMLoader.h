// TVPMLoader.h: the loader's queries that other units use: features, and which plugin a library or code address belongs to.
#pragma once

#include "TVPMHost.h"

int TVPMHasFeatureInternal(TVPMPluginID id, int index);
// The plugin whose library handle is dll, or -1.
TVPMPluginID TVPMPluginFromDLL(void* dll);
// TVPMFindPluginForIP, which names the plugin whose library holds a code
// address, is exported: TVPM/TVPMPlugin.h.
