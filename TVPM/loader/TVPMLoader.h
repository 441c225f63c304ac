// TVPMLoader.h: the loader's queries that other units use: features, aircraft plugins, scheduled reloads, and which plugin a library or code address belongs to.
#pragma once

#include "TVPMHost.h"

int TVPMHasFeatureInternal(TVPMPluginID id, int index);
// The plugin that holds a non-empty signature, or -1 (the loader refuses
// duplicates, so there is at most one).
TVPMPluginID TVPMIndexedSignatureOwner(const char* signature);
// The plugin whose library handle is dll, or -1.
TVPMPluginID TVPMPluginFromDLL(void* dll);
// TVPMFindPluginForIP, which names the plugin whose library holds a code
// address, is exported: TVPM/TVPMPlugin.h.

// True when the plugin was loaded from the user's aircraft folder.
bool TVPMIsAcfPlugin(TVPMPluginID id);
// Set by TVPMReloadPlugins; the flight-loop pass runs the reload at its end.
extern bool gScheduleReload;
// Reloads every plugin: disables, stops and unloads them all, then loads again.
void TVPMReloadPluginsInternal();
