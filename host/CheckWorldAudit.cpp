// CheckWorldAudit.cpp: the world services' audit (weather, maps, graphics, probes) as a named check.
#include "CheckMode.h"
#include "CheckSignals.h"
#include "SimServices.h"
#include "SimWorld.h"

namespace tvpmhost {

namespace {

void AuditWorld(const CheckedPlugin& p, std::vector<Finding>& out) {
    const std::string& path = p.params.pluginPath;
    AuditWorldServices(path, p.sim.log.pluginWarnings, [&](const char* kind, const std::string& text) {
        out.push_back({"world-services", CurrentStep(),
                       std::string(kind) == "problem" ? Outcome::kFail : Outcome::kPass, text});
    });
    for (auto& [owner, n] : World().probesAllocated)
        if (owner == path)
            out.push_back({"world-services", CurrentStep(), Outcome::kPass,
                           "allocated " + std::to_string(n) + " terrain probe slots"});
}

const CheckRegistration s_world({"world-services", 1,
                                 "weather the plugin left and bulk weather updates left open; map layers, "
                                 "terrain probes and graphics use are noted",
                                 &AuditWorld});

}  // namespace

}  // namespace tvpmhost
