// broken_pinned.cpp: a test plugin that pins its own library in memory, so unloading it leaves its code mapped.
#include <dlfcn.h>

#include <cstring>

#include "TVPM/TVPMPlugin.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Broken Pinned");
    strcpy(outSignature, "test.broken.pinned");
    strcpy(outDescription, "Takes a reference to its own library that it never gives back.");
    Dl_info self;
    if (dladdr(reinterpret_cast<void*>(&TPluginStart), &self) && self.dli_fname)
        dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {}
