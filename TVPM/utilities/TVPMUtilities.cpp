// TVPMUtilities.cpp: the log, paths, versions, data files and the other small forwarders to the simulator.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "TVPM/TVPMUtilities.h"
#include "TVPMDLLUtils.h"
#include "TVPMPrivate.h"

namespace {

constexpr int kLibraryVersion = TVPM_INTERFACE_VERSION;
constexpr int kPathBufferSize = 512;

bool PluginWantsNativePaths() {
    const PluginRecord* r = TVPMGetPluginRecord(gDispatchedPlugin);
    return r && r->features[kFeatureUseNativePaths];
}

void ConvertPathForPlugin(char* ioPath) {
    if (!ioPath || PluginWantsNativePaths()) return;
    std::string path(ioPath);
    TVPMUTF8ToOld(path);
    strcpytrunc(ioPath, path, kPathBufferSize);
}

bool IsKnownDataFileType(TVPMDataFileType type) {
    return type == tvpm_DataFile_Situation || type == tvpm_DataFile_ReplayMovie;
}

}  // namespace

int TVPM_dprintf(const char* fmt, ...) {
    // One shared buffer: the log is written on the plugin thread only.
    static char buf[8192];
    if (!gHooks) return 0;
    va_list args;
    va_start(args, fmt);
    vsnprintf(buf, sizeof buf, fmt, args);
    va_end(args);
    gHooks->TVPMDebugString_f(buf);
    return 0;
}

TVPM_API void TVPMDebugString(const char* inString) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (gHooks && inString) gHooks->TVPMDebugString_f(inString);
}

TVPM_API void TVPMGetVersions(int* outTorvaneVersion, int* outTVPMVersion,
                              TVPMHostApplicationID* outHostID) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    int hostVersion = 0;
    TVPMHostApplicationID hostID = 0;
    if (gHooks) gHooks->TVPMGetVersions_f(&hostVersion, &hostID);
    if (outHostID) *outHostID = hostID;
    if (outTorvaneVersion) *outTorvaneVersion = hostVersion;
    if (outTVPMVersion) *outTVPMVersion = kLibraryVersion;
}

TVPM_API void TVPMGetSystemPath(char* outSystemPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!outSystemPath || !gHooks) return;
    gHooks->TVPMGetSystemPath_f(outSystemPath);
    ConvertPathForPlugin(outSystemPath);
}

TVPM_API void TVPMGetPrefsPath(char* outPrefsPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!outPrefsPath || !gHooks) return;
    gHooks->TVPMGetPrefsPath_f(outPrefsPath);
    ConvertPathForPlugin(outPrefsPath);
}

TVPM_API const char* TVPMGetDirectorySeparator(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return "/";
}

TVPM_API char* TVPMExtractFileAndPath(char* inFullPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inFullPath) return nullptr;
    int len = static_cast<int>(strlen(inFullPath));
    if (len > 0 && inFullPath[len - 1] == '/') inFullPath[--len] = 0;
    for (int i = len - 1; i >= 1; --i) {
        if (inFullPath[i] == '/') {
            inFullPath[i] = 0;
            return inFullPath + i + 1;
        }
    }
    if (inFullPath[0] == '/') {
        inFullPath[0] = 0;
        return inFullPath + 1;
    }
    return inFullPath;
}

TVPM_API int TVPMGetDirectoryContents(const char* inDirectoryPath, int inFirstReturn,
                                      char* outFileNames, int inFileNameBufSize, char** outIndices,
                                      int inIndexCount, int* outTotalFiles, int* outReturnedFiles) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    std::vector<std::string> names;
    TVPMFetchDirectoryContents(inDirectoryPath, "*.*", names);
    if (!PluginWantsNativePaths())
        for (std::string& name : names) TVPMUTF8ToOld(name);
    const int total = static_cast<int>(names.size());
    if (outTotalFiles) *outTotalFiles = total;
    int returned = 0;
    int next = inFirstReturn < 0 ? 0 : inFirstReturn;
    int room = outFileNames ? inFileNameBufSize : 0;
    char* cursor = outFileNames;
    for (; next < total; ++next) {
        const std::string& name = names[static_cast<size_t>(next)];
        const int need = static_cast<int>(name.size()) + 1;
        if (need > room) break;
        if (outIndices && returned >= inIndexCount) break;
        memcpy(cursor, name.c_str(), static_cast<size_t>(need));
        if (outIndices) outIndices[returned] = cursor;
        cursor += need;
        room -= need;
        ++returned;
    }
    if (outReturnedFiles) *outReturnedFiles = returned;
    return next >= total ? 1 : 0;
}

TVPM_API int TVPMLoadDataFile(TVPMDataFileType inFileType, const char* inFilePath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!IsKnownDataFileType(inFileType)) {
        TVPMSendError("Illegal file type passed to TVPMLoadDataFile.");
        return 0;
    }
    if (!gHooks) return 0;
    std::string path(inFilePath ? inFilePath : "");
    return gHooks->TVPMLoadDataFile_f(inFileType, path.c_str());
}

TVPM_API int TVPMSaveDataFile(TVPMDataFileType inFileType, const char* inFilePath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!IsKnownDataFileType(inFileType)) {
        TVPMSendError("Illegal file type passed to TVPMSaveDataFile.");
        return 0;
    }
    if (!gHooks) return 0;
    std::string path(inFilePath ? inFilePath : "");
    return gHooks->TVPMSaveDataFile_f(inFileType, path.c_str());
}

// Before start-up there is no simulator to forward to, and a null text means
// nothing to the simulator: such calls do nothing.
TVPM_API void TVPMSpeakString(const char* inString) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (gHooks && inString) gHooks->TVPMSpeakString_f(const_cast<char*>(inString));
}
TVPM_API void TVPMSimulateKeyPress(int inKeyType, int inKey) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (gHooks) gHooks->TVPMSimulateKeyPress_f(inKeyType, inKey);
}
TVPM_API int TVPMGetLanguage(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks ? gHooks->TVPMGetLanguage_f() : 0;
}
TVPM_API void* TVPMFindSymbol(const char* inString) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks && inString ? gHooks->TVPMFindSymbol_f(inString) : nullptr;
}
TVPM_API void TVPMReloadScenery(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (gHooks) gHooks->TVPMShiftScenery_f();
}
