// CheckSignals.cpp: the step timer and the fatal-signal handler that write where a checked plugin crashed or hung.
#include "CheckSignals.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr int kMaxFrames = 64;
constexpr int kMaxRanges = 16;
constexpr size_t kAltStackSize = 64 * 1024;
const int kFatalSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM};

const char* volatile s_step = "start";
const char* volatile s_inFlight = "";
int s_reportFd = -1;
unsigned s_timeout = 0;
long s_pluginThread = 0;
timer_t s_timer;
bool s_timerMade = false;

struct CodeRange {
    uintptr_t start, end, base;
    char path[512];
};
CodeRange s_ranges[kMaxRanges];
int s_rangeCount = 0;

void Write(const char* text) {
    if (s_reportFd >= 0 && write(s_reportFd, text, strlen(text)) < 0) return;
}

const CodeRange* WatchedRangeOf(uintptr_t address) {
    for (int i = 0; i < s_rangeCount; ++i)
        if (address >= s_ranges[i].start && address < s_ranges[i].end) return &s_ranges[i];
    return nullptr;
}

void WriteUnloadedFrame(const CodeRange& r, uintptr_t at) {
    char line[1024];
    snprintf(line, sizeof line, "frame\t%s\t0x%lx\t(unloaded)\n", r.path, static_cast<unsigned long>(at - r.base));
    Write(line);
}

void WriteFrame(void* address) {
    char line[1024];
    Dl_info info{};
    const auto at = reinterpret_cast<uintptr_t>(address);
    if (dladdr(address, &info) && info.dli_fname) {
        snprintf(line, sizeof line, "frame\t%s\t0x%lx\t%s\n", info.dli_fname,
                 static_cast<unsigned long>(at - reinterpret_cast<uintptr_t>(info.dli_fbase)),
                 info.dli_sname ? info.dli_sname : "");
    } else if (const CodeRange* r = WatchedRangeOf(at)) {
        WriteUnloadedFrame(*r, at);
        return;
    } else {
        snprintf(line, sizeof line, "frame\t?\t0x%lx\t\n", static_cast<unsigned long>(at));
    }
    Write(line);
}

// The plugin TVPM was calling: a frame of it may be missing (a tail call).
// Only the plugin thread may ask TVPM.
void WriteCurrentPlugin() {
    if (!Api().handle || syscall(SYS_gettid) != s_pluginThread) return;
    const TVPMPluginID id = Api().GetMyID();
    if (id <= 0 || id >= Api().CountPlugins()) return;
    char path[512] = "", line[600];
    Api().GetPluginInfo(id, nullptr, path, nullptr, nullptr);
    snprintf(line, sizeof line, "plugin\t%s\n", path);
    Write(line);
}

// Everything that shows a plugin's code or data was used after its unload,
// written before anything that asks the dynamic loader or the unwinder, either
// of which may fault again on the same stale addresses.
// Returns whether the faulting instruction itself was written.
bool WriteUnloadedAccess(int sig, const siginfo_t* info, const ucontext_t* uc) {
    if (sig != SIGSEGV) return false;
    const auto rip = static_cast<uintptr_t>(uc->uc_mcontext.gregs[REG_RIP]);
    const auto address = reinterpret_cast<uintptr_t>(info->si_addr);
    // Fetching an instruction from a plugin's old code range: it was unloaded,
    // whatever has been mapped there since.
    if (const CodeRange* old = WatchedRangeOf(rip); old && address == rip) {
        WriteUnloadedFrame(*old, rip);
        return true;
    }
    // A jump into nothing (a stale function pointer) left its caller on the stack.
    if (address == rip && !WatchedRangeOf(rip)) {
        const auto caller = *reinterpret_cast<const uintptr_t*>(uc->uc_mcontext.gregs[REG_RSP]);
        if (const CodeRange* old = WatchedRangeOf(caller)) WriteUnloadedFrame(*old, caller);
    }
    // Reading a plugin's old data (a thread's start routine, a vtable).
    if (const CodeRange* data = address != rip ? WatchedRangeOf(address) : nullptr) WriteUnloadedFrame(*data, address);
    return false;
}

// Only one thread writes the report; a fault inside the handler itself (the
// unwinder reading unmapped code) ends the process with what is written.
bool ClaimReport(int sig) {
    static std::atomic<long> writer{0};
    const long self = syscall(SYS_gettid);
    long expected = 0;
    if (writer.compare_exchange_strong(expected, self)) return true;
    if (expected == self) _exit(sig == SIGALRM ? kTimeoutExitStatus : kCrashExitStatus);
    return false;
}

void OnFatalSignal(int sig, siginfo_t* info, void* context) {
    if (!ClaimReport(sig))
        for (;;) pause();  // the thread writing the report ends the process
    char line[1024];
    snprintf(line, sizeof line, "%s\t%s\t%s\t%s\t0x%lx\n", sig == SIGALRM ? "timeout" : "crash", strsignal(sig),
             s_step, s_inFlight, reinterpret_cast<unsigned long>(info->si_addr));
    Write(line);
    const auto* uc = static_cast<const ucontext_t*>(context);
    const bool ripWritten = WriteUnloadedAccess(sig, info, uc);
    WriteCurrentPlugin();
    // The faulting instruction first: the unwinder may not get past it.
    if (!ripWritten) WriteFrame(reinterpret_cast<void*>(uc->uc_mcontext.gregs[REG_RIP]));
    void* frames[kMaxFrames];
    const int count = backtrace(frames, kMaxFrames);
    for (int i = 0; i < count; ++i) WriteFrame(frames[i]);
    _exit(sig == SIGALRM ? kTimeoutExitStatus : kCrashExitStatus);
}

void MakeStepTimer() {
    sigevent event{};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = SIGALRM;
    event._sigev_un._tid = static_cast<pid_t>(syscall(SYS_gettid));
    s_timerMade = timer_create(CLOCK_MONOTONIC, &event, &s_timer) == 0;
}

void ArmStepTimer() {
    if (!s_timerMade || !s_timeout) return;
    itimerspec deadline{};
    deadline.it_value.tv_sec = s_timeout;
    timer_settime(s_timer, 0, &deadline, nullptr);
}

int RememberRange(dl_phdr_info* info, size_t, void* wanted) {
    if (!info->dlpi_name || strcmp(info->dlpi_name, static_cast<const char*>(wanted)) != 0) return 0;
    for (int i = 0; i < info->dlpi_phnum && s_rangeCount < kMaxRanges; ++i) {
        const ElfW(Phdr)& ph = info->dlpi_phdr[i];
        if (ph.p_type != PT_LOAD) continue;
        const uintptr_t start = info->dlpi_addr + ph.p_vaddr, end = start + ph.p_memsz;
        if (WatchedRangeOf(start)) continue;
        CodeRange& r = s_ranges[s_rangeCount++];
        r.start = start & ~static_cast<uintptr_t>(getpagesize() - 1);
        r.end = end;
        r.base = info->dlpi_addr;
        snprintf(r.path, sizeof r.path, "%s", static_cast<const char*>(wanted));
    }
    return 1;
}

}  // namespace

void SetStep(const char* step) {
    s_step = step;
    ArmStepTimer();
}

const char* CurrentStep() { return s_step; }

InFlight::InFlight(const char* what) : previous_(s_inFlight) { s_inFlight = what; }
InFlight::~InFlight() { s_inFlight = previous_; }

void InstallCrashReport(int fd, unsigned timeoutSeconds) {
    s_reportFd = fd;
    s_timeout = timeoutSeconds;
    s_pluginThread = syscall(SYS_gettid);
    void* warm[1];
    backtrace(warm, 1);  // loads the unwinder now, not inside the handler
    static char altStack[kAltStackSize];
    stack_t ss{};
    ss.ss_sp = altStack;
    ss.ss_size = sizeof altStack;
    sigaltstack(&ss, nullptr);
    struct sigaction action {};
    action.sa_sigaction = OnFatalSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (int sig : kFatalSignals) sigaction(sig, &action, nullptr);
    MakeStepTimer();
    ArmStepTimer();
    ReserveCodeOnClose(true);
}

void WatchPluginCode(const std::string& libraryPath) {
    dl_iterate_phdr(RememberRange, const_cast<char*>(libraryPath.c_str()));
}

void ReserveUnloadedCode() {
    const uintptr_t page = static_cast<uintptr_t>(getpagesize());
    for (int i = 0; i < s_rangeCount; ++i) {
        const CodeRange& r = s_ranges[i];
        const size_t length = (r.end - r.start + page - 1) & ~(page - 1);
        // Fails harmlessly where the library, or anything else, is mapped.
        mmap(reinterpret_cast<void*>(r.start), length, PROT_NONE,
             MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE | MAP_NORESERVE, -1, 0);
    }
}

}  // namespace tvpmhost
