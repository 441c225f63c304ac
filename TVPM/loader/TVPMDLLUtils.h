// TVPMDLLUtils.h: dynamic libraries, directory listings, thread-local slots and path conversions.
#pragma once

#include <pthread.h>

#include <string>
#include <vector>

// Opens a plugin library with immediate binding; null (logged as "dlerror:")
// when it cannot be loaded, null without a log line when the file is missing
// or is not a regular file (which is never opened).
void* TVPMLoadDLL(const char* inName);
void TVPMUnloadDLL(void* dll);
// What is at path when it exists but is not a regular file ("a named pipe",
// "a device", ...), or null. Looks without opening.
const char* TVPMWhyNotAPluginFile(const char* path);
// What is at path, found without opening it; outWhyNot (may be null) gets the
// text of TVPMWhyNotAPluginFile.
enum class TVPMFileKind { kMissing, kRegular, kOther };
TVPMFileKind TVPMLookAtFile(const char* path, const char** outWhyNot);
// dlopen with immediate binding of a file known to be regular; null (logged
// as "dlerror:") when it cannot be loaded.
void* TVPMOpenDLL(const char* inName);
// dlsym on inDLL; a missing symbol is logged when inLogErrors is non-zero.
void* TVPMFindSymbol(void* inDLL, const char* inSymbol, int inLogErrors);
// The loaded library holding the code num_frames frames up the caller's stack.
void* TVPMGetDLLForCaller(int num_frames);
// The loaded library holding the code at ip.
void* TVPMGetDLLForInstruction(void* ip);
// The listing's name rule: any name for "*.*", else the name ends with the
// pattern's text after one leading "*", compared case-insensitively.
bool TVPMNameMatchesPattern(const char* name, const char* pattern);
// Appends the names in inPath matching "*.ext" (case-insensitive), every name
// for "*.*", and subfolder names for "DIR".
void TVPMFetchDirectoryContents(const char* inPath, const char* inSuffixPattern,
                                std::vector<std::string>& outFileList);
// Copies in_str into out_buf, cut to size_with_null - 1 characters and a zero.
void strcpytrunc(char* out_buf, const std::string& in_str, int size_with_null);

typedef pthread_key_t TVPMThreadKey;
TVPMThreadKey TVPMAllocTLS();
void* TVPMGetTLS(TVPMThreadKey key);
void TVPMSetTLS(TVPMThreadKey key, void* value);
pthread_t TVPMGetCurrentThread();

// Paths are UTF-8 on this platform; both conversions leave text unchanged.
void TVPMOldToUTF8(std::string& ioPath);
void TVPMUTF8ToOld(std::string& ioPath);
