// TVPMLoader.cpp: the plugin table and its queries, error reporting, messages, deliveries and feature flags.
#include <cstring>
#include <string>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMLoaderNames.h"
#include "TVPMPrivate.h"


namespace {

constexpr const char* kFeatureNames[kFeatureCount] = {
    "TVPM_WANTS_REFLECTIONS",
    "TVPM_USE_NATIVE_PATHS",
    "TVPM_USE_NATIVE_WIDGET_WINDOWS",
    "TVPM_WANTS_DATAREF_NOTIFICATIONS",
};

int FeatureIndex(const char* name) {
    if (!name) return -1;
    for (int i = 0; i < kFeatureCount; ++i)
        if (strcmp(name, kFeatureNames[i]) == 0) return i;
    return -1;
}

// Looks up a feature for the current plugin, reporting an unknown name.
PluginRecord* FeatureOwner(const char* name, int& index) {
    index = FeatureIndex(name);
    if (index < 0) {
        TVPMSendError("Illegal feature name passed to TVPMEnableFeature");
        return nullptr;
    }
    return TVPMGetPluginRecord(gDispatchedPlugin);
}

void CopyField(char* out, const std::string& value) {
    if (out) strcpytrunc(out, value, 256);
}

}  // namespace

// ---- Error reporting ------------------------------------------------------------

TVPM_API void TVPMSetErrorCallback(TVPMError_f inCallback) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    PluginRecord* r = TVPMGetPluginRecord(gDispatchedPlugin);
    if (r) r->errorFunc = inCallback;
}

// ---- Queries ---------------------------------------------------------------------

TVPM_API TVPMPluginID TVPMGetMyID(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gDispatchedPlugin;
}

TVPM_API int TVPMCountPlugins(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return static_cast<int>(gAllPlugins.size());
}

TVPM_API TVPMPluginID TVPMGetNthPlugin(int inIndex) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return inIndex;
}

TVPM_API TVPMPluginID TVPMFindPluginByPath(const char* inPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inPath) return TVPM_NO_PLUGIN_ID;
    std::string path(inPath);
    if (!TVPMCurrentPluginWantsNativePaths()) TVPMOldToUTF8(path);
    for (size_t i = 0; i < gAllPlugins.size(); ++i)
        if (gAllPlugins[i].path == path) return static_cast<TVPMPluginID>(i);
    return TVPM_NO_PLUGIN_ID;
}

TVPM_API TVPMPluginID TVPMFindPluginBySignature(const char* inSignature) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inSignature) return TVPM_NO_PLUGIN_ID;
    if (*inSignature) return TVPMIndexedSignatureOwner(inSignature);
    for (size_t i = 0; i < gAllPlugins.size(); ++i)
        if (gAllPlugins[i].signature == inSignature) return static_cast<TVPMPluginID>(i);
    return TVPM_NO_PLUGIN_ID;
}

TVPM_API void TVPMGetPluginInfo(TVPMPluginID inPlugin, char* outName, char* outFilePath,
                                char* outSignature, char* outDescription) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const PluginRecord* r = TVPMGetPluginRecord(inPlugin);
    if (!r) return;
    std::string path = r->path;
    if (!TVPMCurrentPluginWantsNativePaths()) TVPMUTF8ToOld(path);
    CopyField(outName, r->name);
    CopyField(outFilePath, path);
    CopyField(outSignature, r->signature);
    CopyField(outDescription, r->description);
}

TVPMPluginID TVPMPluginFromDLL(void* dll) {
    if (!dll) return TVPM_NO_PLUGIN_ID;
    // Other threads (the thread check's culprit search) must not walk the
    // table while the plugin thread reshapes it.
    if (!pthread_equal(pthread_self(), gPluginThread))
        return TVPMPublishedPluginForLibrary(dll, nullptr);
    for (size_t i = 0; i < gAllPlugins.size(); ++i)
        if (gAllPlugins[i].dllRef == dll) return static_cast<TVPMPluginID>(i);
    return TVPM_NO_PLUGIN_ID;
}

TVPM_API const char* TVPMFindPluginForIP(void* ip, TVPMPluginID* out_id) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMPluginID id = TVPMPluginFromDLL(TVPMGetDLLForInstruction(ip));
    const PluginRecord* r = TVPMGetPluginRecord(id);
    if (!r) return nullptr;
    if (out_id) *out_id = id;
    return r->name.c_str();
}

// Off the plugin thread the current plugin means nothing: name the first
// plugin whose code is on the caller's stack.
TVPM_API const char* TVPMDebugGetCurrentPluginName(void) {
    if (pthread_equal(pthread_self(), gPluginThread)) return DebugCurrentPluginName();
    for (int depth = 0; depth < 10; ++depth) {
        const char* name = nullptr;
        if (TVPMPublishedPluginForLibrary(TVPMGetDLLForCaller(depth), &name) != TVPM_NO_PLUGIN_ID)
            return name;
    }
    return "";
}


// ---- Messages ----------------------------------------------------------------------

TVPM_API void TVPMSendMessageToPlugin(TVPMPluginID inPlugin, int inMessage, void* inParam) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID count = TVPMCountPlugins();
    if (inPlugin < TVPM_NO_PLUGIN_ID || inPlugin >= count) return;
    const TVPMPluginID sender = gDispatchedPlugin;
    const TVPMPluginID first = inPlugin == TVPM_NO_PLUGIN_ID ? 0 : inPlugin;
    const TVPMPluginID last = inPlugin == TVPM_NO_PLUGIN_ID ? count - 1 : inPlugin;
    for (TVPMPluginID id = first; id <= last && id < TVPMCountPlugins(); ++id) {
        TVPMPluginReceiveMessage_f receive = gAllPlugins[static_cast<size_t>(id)].receiveMessageFunc;
        if (!receive) continue;
        TVPMCallPlugin(id, TVPMCallSite::kMessage, [&] { receive(sender, inMessage, inParam); });
    }
}

// ---- Features ----------------------------------------------------------------------

int TVPMHasFeatureInternal(TVPMPluginID id, int index) {
    const PluginRecord* r = TVPMGetPluginRecord(id);
    return r && index >= 0 && index < kFeatureCount ? r->features[index] : 0;
}

TVPM_API int TVPMHasFeature(const char* inFeature) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return FeatureIndex(inFeature) >= 0 ? 1 : 0;
}

TVPM_API int TVPMIsFeatureEnabled(const char* inFeature) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    int index;
    const PluginRecord* r = FeatureOwner(inFeature, index);
    return r ? r->features[index] : 0;
}

TVPM_API void TVPMEnableFeature(const char* inFeature, int inEnable) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    int index;
    PluginRecord* r = FeatureOwner(inFeature, index);
    if (r) r->features[index] = inEnable;
}

TVPM_API void TVPMEnumerateFeatures(TVPMFeatureEnumerator_f inEnumerator, void* inRef) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inEnumerator) return;
    for (const char* name : kFeatureNames) inEnumerator(name, inRef);
}
