// CodeReservation.cpp: closes plugin libraries for TVPM and keeps their code range reserved and inaccessible, so a late call into one faults there.
#include <dlfcn.h>
#include <link.h>

#include <cstring>

#include "CheckSignals.h"

namespace {

bool s_reserving = false;

using DlcloseFn = int (*)(void*);

DlcloseFn RealDlclose() {
    static DlcloseFn real = reinterpret_cast<DlcloseFn>(dlsym(RTLD_NEXT, "dlclose"));
    return real;
}

bool IsPluginLibrary(const char* name) {
    const size_t n = name ? strlen(name) : 0;
    return n > 4 && strcmp(name + n - 4, ".tvp") == 0;
}

}  // namespace

namespace tvpmhost {

void ReserveCodeOnClose(bool on) { s_reserving = on; }

}  // namespace tvpmhost

// Interposes the C library's dlclose for TVPM_64.so (exported from the
// executable through its dynamic list): nothing else may be mapped where a
// plugin's code was, between its unload and the end of the process.
extern "C" int dlclose(void* handle) {
    link_map* map = nullptr;
    const bool plugin = s_reserving && dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map &&
                        IsPluginLibrary(map->l_name);
    if (plugin) tvpmhost::WatchPluginCode(map->l_name);
    const int result = RealDlclose()(handle);
    if (plugin) tvpmhost::ReserveUnloadedCode();
    return result;
}
