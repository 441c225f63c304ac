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

/* The phase of a command as its handlers see it. */
typedef int TVPMCommandPhase;
enum {
    tvpm_CommandBegin = 0,    /* the command was pressed */
    tvpm_CommandContinue = 1, /* it is being held */
    tvpm_CommandEnd = 2       /* it was released */
};

/* A command handler. Return 1 to let processing go on (later handlers and,
 * for a handler registered to run before, the simulator's own action), 0 to
 * consume the command. */
typedef int (*TVPMCommandCallback_f)(TVPMCommandRef inCommand, TVPMCommandPhase inPhase,
                                     void* inRefcon);

/* Finds a command by name; null when the simulator has no such command. */
TVPM_API TVPMCommandRef TVPMFindCommand(const char* inName);
/* Finds or creates a command. Names starting with "sim/" belong to the
 * simulator: such a name is reported to the current plugin's error callback
 * and logged, and the command is created anyway. */
TVPM_API TVPMCommandRef TVPMCreateCommand(const char* inName, const char* inDescription);
/* Presses a command and keeps it held for the current plugin: the simulator
 * repeats it until TVPMCommandEnd, and releases it when the plugin is
 * unloaded. Repeats pause while the plugin is disabled. */
TVPM_API void TVPMCommandBegin(TVPMCommandRef inCommand);
/* Releases a command held by the current plugin. */
TVPM_API void TVPMCommandEnd(TVPMCommandRef inCommand);
/* Presses and releases a command at once. */
TVPM_API void TVPMCommandOnce(TVPMCommandRef inCommand);
/* Adds a handler for a command, owned by the current plugin; refcon is passed
 * back to it. A handler registered to run before the simulator (inBefore 1)
 * runs ahead of the handlers registered earlier; one registered to run after
 * (inBefore 0) runs behind them. Registering the same handler twice makes it
 * run twice. Handlers of a disabled plugin are skipped; all of a plugin's
 * handlers are removed when it is unloaded. */
TVPM_API void TVPMRegisterCommandHandler(TVPMCommandRef inCommand,
                                         TVPMCommandCallback_f inHandler, int inBefore,
                                         void* inRefcon);
/* Removes one registration of the current plugin matching all arguments;
 * nothing happens when there is none. A handler may remove itself while it
 * runs. */
TVPM_API void TVPMUnregisterCommandHandler(TVPMCommandRef inCommand,
                                           TVPMCommandCallback_f inHandler, int inBefore,
                                           void* inRefcon);
/* Sends a legacy key stroke to the simulator. */
TVPM_API void TVPMCommandKeyStroke(TVPMCommandKeyID inKey);
/* Presses a legacy button; the simulator sees it held every frame until
 * TVPMCommandButtonRelease. */
TVPM_API void TVPMCommandButtonPress(TVPMCommandButtonID inButton);
/* Releases a legacy button pressed with TVPMCommandButtonPress. */
TVPM_API void TVPMCommandButtonRelease(TVPMCommandButtonID inButton);

/* ---- Key names ----------------------------------------------------------------- */

/* A short English name for a virtual key code (TVPM_VK_...), such as "A",
 * "F1" or "Numpad-0"; "Unknown" for codes without a name [static-text].
 * The key is compared as the signed char it is: codes from 0x80 up (F17 to
 * F24, and TVPM_VK_EQUAL to TVPM_VK_NUMPAD_EQ) are negative as char and
 * yield "Unknown". */
TVPM_API const char* TVPMGetVirtualKeyDescription(char inVirtualKey);

#ifdef __cplusplus
}
#endif

#endif /* TVPMUtilities_h */
