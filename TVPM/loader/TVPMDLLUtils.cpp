// TVPMDLLUtils.cpp: thin layer over the dynamic loader, directory listing, thread-local slots and path conversion.
#include "TVPMDLLUtils.h"

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "TVPM/TVPMUtilities.h"

namespace {

void LogDlError() {
    TVPMDebugString("dlerror:");
    if (const char* text = dlerror()) TVPMDebugString(text);
    TVPMDebugString("\n");
}

// The handle of an already loaded library containing addr, without loading
// anything. glibc refuses RTLD_NOLOAD on its own, so a binding mode goes with it.
void* LoadedLibraryContaining(void* addr) {
    Dl_info info;
    if (!addr || dladdr(addr, &info) == 0 || !info.dli_fname) return nullptr;
    void* handle = dlopen(info.dli_fname, RTLD_NOLOAD | RTLD_NOW);
    if (handle) dlclose(handle);
    return handle;
}

bool EndsWithNoCase(const char* name, const char* suffix) {
    size_t n = strlen(name), s = strlen(suffix);
    if (n < s) return false;
    for (size_t i = 0; i < s; ++i)
        if (toupper(static_cast<unsigned char>(name[n - s + i])) !=
            toupper(static_cast<unsigned char>(suffix[i])))
            return false;
    return true;
}

const char* WhatItIs(mode_t mode) {
    if (S_ISDIR(mode)) return "a folder";
    if (S_ISFIFO(mode)) return "a named pipe";
    if (S_ISSOCK(mode)) return "a socket";
    if (S_ISCHR(mode) || S_ISBLK(mode)) return "a device";
    return "not a regular file";
}

// Whether a listed entry is a folder: the entry's own type where the file
// system gives it, else (and for links, which may lead to a folder) a stat.
bool IsFolderEntry(const char* folder, const dirent* entry) {
    if (entry->d_type == DT_DIR) return true;
    if (entry->d_type != DT_UNKNOWN && entry->d_type != DT_LNK) return false;
    const std::string full = std::string(folder) + "/" + entry->d_name;
    struct stat st;
    if (stat(full.c_str(), &st) == 0) return S_ISDIR(st.st_mode);
    return false;
}

}  // namespace

TVPMFileKind TVPMLookAtFile(const char* path, const char** outWhyNot) {
    struct stat st;
    if (outWhyNot) *outWhyNot = nullptr;
    if (!path || stat(path, &st) != 0) return TVPMFileKind::kMissing;
    if (S_ISREG(st.st_mode)) return TVPMFileKind::kRegular;
    if (outWhyNot) *outWhyNot = WhatItIs(st.st_mode);
    return TVPMFileKind::kOther;
}

const char* TVPMWhyNotAPluginFile(const char* path) {
    const char* why = nullptr;
    TVPMLookAtFile(path, &why);
    return why;
}

void* TVPMOpenDLL(const char* inName) {
    void* handle = dlopen(inName, RTLD_NOW);
    if (!handle) LogDlError();
    return handle;
}

// Only regular files are opened: opening a named pipe or a device could block
// start-up for ever.
void* TVPMLoadDLL(const char* inName) {
    return TVPMLookAtFile(inName, nullptr) == TVPMFileKind::kRegular ? TVPMOpenDLL(inName)
                                                                     : nullptr;
}

void TVPMUnloadDLL(void* dll) {
    if (dll) dlclose(dll);
}

void* TVPMFindSymbol(void* inDLL, const char* inSymbol, int inLogErrors) {
    if (!inDLL || !inSymbol) return nullptr;
    dlerror();
    void* symbol = dlsym(inDLL, inSymbol);
    if (!symbol && inLogErrors) LogDlError();
    return symbol;
}

// Kept out of line so that the frame count up to the caller holds.
__attribute__((noinline)) void* TVPMGetDLLForCaller(int num_frames) {
    const int depth = std::max(0, std::min(num_frames, 9));
    void* frames[10] = {};
    int got = backtrace(frames, depth + 1);
    void* handle = got > depth ? LoadedLibraryContaining(frames[depth]) : nullptr;
    asm volatile("" ::: "memory");  // no tail call: this frame must stay on the stack
    return handle;
}

void* TVPMGetDLLForInstruction(void* ip) { return LoadedLibraryContaining(ip); }

bool TVPMNameMatchesPattern(const char* name, const char* pattern) {
    if (strcmp(pattern, "*.*") == 0) return true;
    return EndsWithNoCase(name, pattern[0] == '*' ? pattern + 1 : pattern);
}

void TVPMFetchDirectoryContents(const char* inPath, const char* inSuffixPattern,
                                std::vector<std::string>& outFileList) {
    if (!inPath || !inSuffixPattern) return;
    DIR* dir = opendir(inPath);
    if (!dir) return;
    const bool dirs = strcmp(inSuffixPattern, "DIR") == 0;
    while (dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (strcmp(name, ".") == 0 || strcmp(name, "..") == 0) continue;
        if (TVPMNameMatchesPattern(name, inSuffixPattern)) outFileList.push_back(name);
        if (dirs && IsFolderEntry(inPath, entry)) outFileList.push_back(name);
    }
    closedir(dir);
}

void strcpytrunc(char* out_buf, const std::string& in_str, int size_with_null) {
    if (!out_buf || size_with_null <= 0) return;
    size_t limit = static_cast<size_t>(size_with_null) - 1;
    size_t n = std::min(in_str.size(), limit);
    memcpy(out_buf, in_str.data(), n);
    out_buf[n] = 0;
}

TVPMThreadKey TVPMAllocTLS() {
    TVPMThreadKey key;
    pthread_key_create(&key, nullptr);
    return key;
}
void* TVPMGetTLS(TVPMThreadKey key) { return pthread_getspecific(key); }
void TVPMSetTLS(TVPMThreadKey key, void* value) { pthread_setspecific(key, value); }
pthread_t TVPMGetCurrentThread() { return pthread_self(); }

void TVPMOldToUTF8(std::string&) {}
void TVPMUTF8ToOld(std::string&) {}
