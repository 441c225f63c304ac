// start_only.cpp: a plugin with TPluginStart and none of the optional entry points.
#include <cstring>

#include "TVPM/TVPMDefs.h"

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    strcpy(outName, "Start Only");
    strcpy(outSig, "test.start_only");
    strcpy(outDesc, "exports TPluginStart alone");
    return 1;
}
