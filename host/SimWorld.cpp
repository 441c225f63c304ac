// SimWorld.cpp: the headless simulator's stores and the actions that keep them consistent.
#include "SimWorld.h"

#include <cstdio>

#include "TVPMApi.h"

namespace tvpmhost {

std::function<void(const char*)> gLogSink;

SimWorld& World() {
    static SimWorld world;
    return world;
}

void* SimWorld::NewToken() {
    // Distinct non-null handles that are never dereferenced.
    return reinterpret_cast<void*>(static_cast<intptr_t>(0x10000 + 16 * nextToken++));
}

void SimWorld::Released(const std::string& kind, const std::string& name,
                        const std::string& owner) {
    if (owner.empty()) return;
    const std::string by = CurrentPluginPath();
    if (by != owner) leftBehind.push_back({owner, kind, name, "clean-up"});
}

// ---- commands ---------------------------------------------------------------

void* SimWorld::FindCreateCommand(const char* name, const char* description, int create) {
    if (!name) return nullptr;
    auto found = commandsByName.find(name);
    if (found != commandsByName.end()) return found->second;
    if (!create) return nullptr;
    void* ref = NewToken();
    SimCommand& c = commands[ref];
    c.name = name;
    c.description = description ? description : "";
    c.creator = CurrentPluginPath();
    c.created = true;
    commandsByName[name] = ref;
    return ref;
}

void SimWorld::CommandPhase(void* ref, int phase) {
    const int down = phase == 0, up = phase == 2;
    // Before-handlers may consume the command: then the simulator's own
    // action (here: counting it) does not happen. After-handlers always run.
    const bool act = Api().CommandHook(ref, down, up, 1) != 0;
    auto it = commands.find(ref);
    if (it != commands.end()) {
        SimCommand& c = it->second;
        if (act) ++(phase == 0 ? c.begins : phase == 1 ? c.continues : c.ends);
        if (phase == 0 && !c.held) {
            c.held = true;
            c.heldBy = CurrentPluginPath();
        } else if (phase == 2 && c.held) {
            Released("command held", c.name, c.heldBy);
            c.held = false;
            c.heldBy.clear();
        }
    }
    Api().CommandHook(ref, down, up, 0);
}

void SimWorld::AddSimulatorCommands() {
    static const char* const kCommands[][2] = {
        {"sim/operation/pause_toggle", "Pause the simulation"},
        {"sim/flight_controls/flaps_down", "Flaps down a notch"},
        {"sim/flight_controls/flaps_up", "Flaps up a notch"},
        {"sim/flight_controls/landing_gear_toggle", "Landing gear up or down"},
        {"sim/view/default_view", "The default view"},
    };
    for (auto& [name, description] : kCommands) {
        FindCreateCommand(name, description, 1);
        SimCommand& c = commands[commandsByName[name]];
        c.created = false;
        c.creator.clear();
    }
}

void SimWorld::Alert(const std::string& text) {
    alerts.push_back(text);
    if (echoAlerts) printf("  ! alert: %s\n", text.c_str());
}

void SimWorld::RunCommandOnce(void* ref) {
    CommandPhase(ref, 0);
    CommandPhase(ref, 2);
}

// ---- menus -------------------------------------------------------------------

intptr_t SimWorld::CreateMenu(intptr_t parent, int parentItem, const char* name) {
    const intptr_t handle = nextMenu++;
    SimMenu& m = menus[handle];
    m.name = name ? name : "";
    m.owner = CurrentPluginPath();
    m.parent = parent;
    m.parentItem = parentItem;
    return handle;
}

int SimWorld::AppendItem(intptr_t menu, const char* name, void* command) {
    auto it = menus.find(menu);
    if (it == menus.end() || !it->second.alive) return -1;
    SimMenuItem item{name ? name : "", nextItemCode++, command, CurrentPluginPath()};
    it->second.items.push_back(item);
    menuItemHistory.push_back({"menu item", it->second.name + " > " + item.name, item.owner, true});
    return item.code;
}

void SimWorld::RemoveItem(intptr_t menu, int index) {
    auto it = menus.find(menu);
    if (it == menus.end()) return;
    auto& items = it->second.items;
    if (index < 0 || index >= static_cast<int>(items.size())) return;
    Released("menu item", it->second.name + " > " + items[index].name, items[index].owner);
    items.erase(items.begin() + index);
}

void SimWorld::DestroyMenu(intptr_t menu) {
    auto it = menus.find(menu);
    if (it == menus.end() || !it->second.alive) return;
    Released("menu", it->second.name, it->second.owner);
    it->second.alive = false;
}

void SimWorld::PickPluginMenuItems() {
    std::vector<SimMenuItem> picks;
    for (auto& [handle, menu] : menus)
        if (menu.alive)
            for (auto& item : menu.items)
                if (!item.owner.empty() && item.name != "-") picks.push_back(item);
    for (auto& item : picks) {
        if (item.command)
            RunCommandOnce(item.command);
        else
            Api().MenuHook(item.code);
    }
}

// ---- scenery -------------------------------------------------------------------

void* SimWorld::LoadObject(const char* path) {
    if (!ObjectFileExists(path)) return nullptr;
    void* obj = NewToken();
    objects[obj] = {"object", path, CurrentPluginPath(), true};
    return obj;
}

void SimWorld::CompleteAsyncLoads() {
    std::vector<AsyncLoad> due;
    due.swap(asyncLoads);
    for (auto& load : due) {
        if (!ObjectFileExists(load.path.c_str())) {
            load.callback(nullptr, load.refcon);
            continue;
        }
        void* obj = NewToken();
        // The object belongs to whoever the library hands it to.
        objects[obj] = {"object", load.path, "", true};
        load.callback(obj, load.refcon);
    }
}

// ---- what is left ------------------------------------------------------------

std::vector<SimResource> SimWorld::AliveOf(const std::string& path) const {
    std::vector<SimResource> out;
    for (auto& [ref, c] : commands)
        if (c.held && c.heldBy == path) out.push_back({"command held", c.name, path, true});
    for (auto& [h, m] : menus) {
        if (m.alive && m.owner == path) out.push_back({"menu", m.name, path, true});
        if (!m.alive) continue;
        for (auto& item : m.items)
            if (item.owner == path) out.push_back({"menu item", m.name + " > " + item.name, path, true});
    }
    for (auto& [id, w] : windows)
        if (w.alive && w.owner == path) out.push_back({"window", w.title, path, true});
    // Map layers stay registered after unload by design: the check notes them.
    for (auto* store : {&avionics, &objects, &instances})
        for (auto& [ref, r] : *store)
            if (r.alive && r.owner == path) out.push_back(r);
    for (auto& [id, who] : openWeatherUpdates)
        if (who == path) out.push_back({"weather update", "open bulk update", path, true});
    return out;
}

void SimWorld::ReportAliveOf(const std::string& path) {
    for (auto& r : AliveOf(path)) leftBehind.push_back({path, r.kind, r.name, ""});
}

}  // namespace tvpmhost
