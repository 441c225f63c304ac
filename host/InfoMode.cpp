// InfoMode.cpp: the information options: --version, --list-checks and --list-data.
#include <cstdio>

#include "Checks.h"
#include "Modes.h"
#include "SimLayout.h"
#include "Simulator.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr const char* kHostVersion = "1.1";
constexpr int kInterfaceVersion = 421, kHooksVersion = 25;

std::string TypeNames(int type) {
    static const std::pair<int, const char*> kNames[] = {
        {tvpmType_Int, "int"},          {tvpmType_Float, "float"},          {tvpmType_Double, "double"},
        {tvpmType_FloatArray, "float[]"}, {tvpmType_IntArray, "int[]"}, {tvpmType_Data, "bytes"}};
    std::string out;
    for (auto& [bit, name] : kNames)
        if (type & bit) out += (out.empty() ? "" : "|") + std::string(name);
    return out;
}

int ListData(const HostOptions& o) {
    TempFolder temp;
    std::string error;
    Simulator sim;
    if (!temp.Ok() || !MakeSimulatorFolder(temp.Path(), error) ||
        !sim.Start(o.library.empty() ? DefaultLibrary() : o.library, temp.Path(), o.fps, error)) {
        fprintf(stderr, "tvpm-host: %s\n", error.empty() ? "cannot start the simulator" : error.c_str());
        return 2;
    }
    printf("%-48s %-8s %-9s %s\n", "data item", "type", "writable", "status");
    for (auto& d : HostDataItems())
        printf("%-48s %-8s %-9s %s\n", d.name.c_str(), TypeNames(d.type).c_str(), d.writable ? "yes" : "no",
               d.deprecated ? "deprecated" : d.replaced ? "replaced" : "");
    sim.Shutdown();
    return 0;
}

}  // namespace

int RunInformation(const HostOptions& o) {
    if (o.version) {
        printf("tvpm-host %s (plugin interface %d, hook table %d)\n", kHostVersion, kInterfaceVersion, kHooksVersion);
        return 0;
    }
    if (o.listChecks) {
        PrintCheckList();
        return 0;
    }
    return ListData(o);
}

}  // namespace tvpmhost
