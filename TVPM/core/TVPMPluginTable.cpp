// TVPMPluginTable.cpp: the plugin table, the host globals, naming the current plugin and error reporting to plugins.
#include <string>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMCallPlugin.h"
#include "TVPMDiagnostics.h"
#include "TVPMDispatch.h"
#include "TVPMPluginTable.h"

TVPMHooks* gHooks = nullptr;
void* gSelf = nullptr;
char gDirSeparator[2] = {0, 0};
pthread_t gPluginThread;
TVPMPluginTable gAllPlugins;
TVPMCurrentPlugins gCurrentPlugins = {0, 0};

namespace {

const char* DebugPluginField(std::string PluginRecord::*field) {
    TVPMPluginID id = gDispatchedPlugin;
    if (id == -1) return "[NO_PLUGIN_ID]";
    if (id == 0) return "[TVPM_PLUGIN_TORVANE]";
    if (id < 0) return "[Bad plugin ID low]";
    if (id >= TVPMCountPlugins()) return "[Bad plugin ID high]";
    return (gAllPlugins[static_cast<size_t>(id)].*field).c_str();
}

}  // namespace

const char* DebugCurrentPluginName() { return DebugPluginField(&PluginRecord::name); }
const char* DebugCurrentPluginSignature() { return DebugPluginField(&PluginRecord::signature); }

void TVPMSendErrorTo(const char* msg, TVPMPluginID who) {
    TVPMDiagnoseError(msg, who);
    const PluginRecord* r = TVPMGetPluginRecord(who);
    if (!r || !r->errorFunc) return;
    // Called in the misusing caller's own context, enabled or not (errors
    // during TPluginStart reach it too), so no dispatch scope of its own.
    const TVPMErrorCallback_f report = r->errorFunc;
    TVPMGuardPluginCall(who, TVPMCallSite::kErrorCallback, [&] { report(msg); });
}

void TVPMSendError(const char* msg) { TVPMSendErrorTo(msg, gDispatchedPlugin); }

int TVPMHasError() {
    const PluginRecord* r = TVPMGetPluginRecord(gDispatchedPlugin);
    // Under diagnostics every check runs, so that its error reaches the log.
    return r && (r->errorFunc || gTVPMDiagnostics) ? 1 : 0;
}

void TVPMLogPluginWarning(const char* msg) {
    const PluginRecord* r = TVPMGetPluginRecord(gDispatchedPlugin);
    if (r) {
        TVPMDebugString("[");
        TVPMDebugString(r->name.c_str());
        TVPMDebugString("]: ");
    } else {
        TVPMDebugString("[unknown]: ");
    }
    TVPMDebugString(msg);
    TVPMDebugString("\n");
}
