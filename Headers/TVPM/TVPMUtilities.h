/*
 * TVPMUtilities.h: services of the simulator for plugins: the log, paths,
 * versions, data files and other small utilities; commands and their
 * handlers; key names.
 *
 * Every function here is [plugin-thread] unless marked otherwise. Terms are
 * defined in TVPMDefs.h.
 */
#ifndef TVPMUtilities_h
#define TVPMUtilities_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Log, versions and paths ----------------------------------------------- */

/* Writes text to the simulator's log exactly as given (add your own "\n");
 * null is ignored. Nothing is written before the simulator has started TVPM. */
TVPM_API void TVPMDebugString(const char* inString);
/* Fills the simulator's version, TVPM's interface version (always 421) and
 * the host application ID; each pointer may be null. */
TVPM_API void TVPMGetVersions(int* outTorvaneVersion, int* outTVPMVersion,
                              TVPMHostApplicationID* outHostID);
/* The simulator's root folder, ending with the separator [caller-buffer of
 * 512 bytes]; null is ignored. */
TVPM_API void TVPMGetSystemPath(char* outSystemPath);
/* The full path of the simulator's preferences file [caller-buffer of 512
 * bytes]; null is ignored. */
TVPM_API void TVPMGetPrefsPath(char* outPrefsPath);
/* The directory separator, "/" [static-text]. */
TVPM_API const char* TVPMGetDirectorySeparator(void);
/* Splits inFullPath in place at its last separator (a trailing separator is
 * dropped first): returns a pointer into inFullPath to the file part and
 * leaves the folder part in inFullPath. Without a separator the whole string
 * is the file part. Null gives null. */
TVPM_API char* TVPMExtractFileAndPath(char* inFullPath);
/* Lists a folder's entries in the file system's order. From entry
 * inFirstReturn on, copies zero-terminated names one after another into
 * outFileNames (inFileNameBufSize bytes, owned by the caller) and a pointer to
 * each into outIndices (room for inIndexCount; may be null), stopping at the
 * first name that does not fit. outTotalFiles gets the number of entries,
 * outReturnedFiles the number copied (each may be null). Returns 1 when the
 * listing reached the last entry, 0 when more remain. */
TVPM_API int TVPMGetDirectoryContents(const char* inDirectoryPath, int inFirstReturn,
                                      char* outFileNames, int inFileNameBufSize,
                                      char** outIndices, int inIndexCount, int* outTotalFiles,
                                      int* outReturnedFiles);

/* ---- Simulator services ------------------------------------------------------ */

enum {
    tvpm_DataFile_Situation = 1,
    tvpm_DataFile_ReplayMovie = 2
};

/* Loads or saves a situation or replay file and returns the simulator's
 * result. Any other file type is reported to the [current plugin]'s error
 * callback and returns 0 without reaching the simulator. */
TVPM_API int TVPMLoadDataFile(TVPMDataFileType inFileType, const char* inFilePath);
TVPM_API int TVPMSaveDataFile(TVPMDataFileType inFileType, const char* inFilePath);
/* Speaks text through the simulator's speech output. */
TVPM_API void TVPMSpeakString(const char* inString);
/* Simulates a key press in the simulator. */
TVPM_API void TVPMSimulateKeyPress(int inKeyType, int inKey);
/* The simulator's user-interface language. */
TVPM_API int TVPMGetLanguage(void);
/* Finds a function exported by the simulator itself, or null. */
TVPM_API void* TVPMFindSymbol(const char* inString);
/* Reloads the scenery around the aircraft. */
TVPM_API void TVPMReloadScenery(void);

/* ---- Commands ------------------------------------------------------------------ */
/* (declared by the commands section below) */

#ifdef __cplusplus
}
#endif

#endif /* TVPMUtilities_h */
