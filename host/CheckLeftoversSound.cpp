// CheckLeftoversSound.cpp: the sound audit after a plugin's unload: sounds still playing and channel groups not released.
#include <map>

#include "FMODStandIn.h"
#include "SimSound.h"

namespace tvpmhost {

std::vector<std::string> SoundLeftovers() {
    std::vector<std::string> out;
    std::map<std::string, int> playing;
    for (auto& p : fmodstandin::Plays())
        if (p.end < 0) ++playing[p.group];
    for (auto& [group, n] : playing)
        out.push_back(std::to_string(n) + " sound(s) still playing in channel group '" + group +
                      "' after unload (stop them, or let TVPM's disable stop them)");
    std::map<std::string, int> groups;
    for (auto& g : fmodstandin::Groups())
        if (g.alive && !g.bus && !g.parent.empty()) ++groups[g.name];
    for (auto& [name, n] : groups)
        out.push_back("channel group '" + name + "' was not released after unload" +
                      (n > 1 ? " (" + std::to_string(n) + " of them)" : ""));
    return out;
}

}  // namespace tvpmhost
