// TVPMLoaderNames.h: which plugin owns a library, answerable from any thread while the plugin thread loads and unloads.
#pragma once

#include <cstdint>
#include <string>

#include "TVPMPluginTable.h"

// Plugin thread: the record of this generation now holds library dll under
// name (added, or renamed when it already holds it).
void TVPMPublishPluginLibrary(uint64_t generation, const void* dll, TVPMPluginID id,
                              const std::string& name);
// Plugin thread: the record of this generation no longer holds a library.
void TVPMWithdrawPluginLibrary(uint64_t generation);

// Any thread: the plugin holding dll, or -1. When outName is given it gets
// the plugin's name; that text stays valid for the life of the process.
TVPMPluginID TVPMPublishedPluginForLibrary(const void* dll, const char** outName);
