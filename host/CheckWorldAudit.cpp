// CheckWorldAudit.cpp: the world services' and the sound engine's audits (weather, maps, graphics, probes, sounds) as named checks.
#include "CheckMode.h"
#include "CheckSignals.h"
#include "SimServices.h"
#include "SimSound.h"
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

void AuditSound(const CheckedPlugin&, std::vector<Finding>& out) {
    for (auto& s : SoundLeftovers()) out.push_back({"sound", CurrentStep(), Outcome::kFail, "left behind: " + s});
}

const CheckRegistration s_sound({"sound", 1, "sounds still playing and channel groups not released after unload",
                                 &AuditSound});

const CheckRegistration s_world({"world-services", 1,
                                 "weather the plugin left and bulk weather updates left open; map layers, "
                                 "terrain probes and graphics use are noted",
                                 &AuditWorld});

}  // namespace

}  // namespace tvpmhost
