// SimWorld.h: the state of the headless simulator: clock, aircraft, commands, menus, windows and the other stores its slots answer from.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "TVPMHost.h"

namespace tvpmhost {

// Something a plugin asked the simulator for. owner is the plugin's file
// path ("" when TVPM itself or the simulator asked).
struct SimResource {
    std::string kind;  // "window", "menu", "menu item", "command held", ...
    std::string name;
    std::string owner;
    bool alive = true;
};

// A resource the owner did not release itself: TVPM's clean-up released it
// (releasedBy "clean-up"), or it is still alive in the simulator after the
// plugin went away (releasedBy "").
struct LeftBehind {
    std::string owner, kind, name, releasedBy;
};

struct SimCommand {
    std::string name, description, creator;
    bool created = false;  // by a plugin, through find-or-create
    std::string heldBy;    // plugin that began it and has not ended it
    bool held = false;
    int begins = 0, continues = 0, ends = 0;
};

struct SimMenuItem {
    std::string name;
    int code = 0;
    void* command = nullptr;
    std::string owner;
};

struct SimMenu {
    std::string name, owner;
    intptr_t parent = 0;
    int parentItem = 0;
    bool alive = true;
    std::vector<SimMenuItem> items;
};

struct SimWindow {
    std::string owner, title;
    int decoration = 0, layer = 0;
    bool visible = false, alive = true;
    int bounds[4] = {100, 100, 400, 300};  // left, bottom, right, top
};

struct SimAlert {
    std::string text;
};

class SimWorld {
public:
    // ---- clock and aircraft ----
    double fps = 60;
    long frame = 0;
    float ElapsedTime() const { return static_cast<float>(frame / fps); }
    std::string systemPath;   // ends with "/"
    std::string aircraftPath; // the user aircraft's file path, "" when none

    // ---- commands ----
    std::map<void*, SimCommand> commands;
    std::map<std::string, void*> commandsByName;
    void* FindCreateCommand(const char* name, const char* description, int create);
    void CommandPhase(void* ref, int phase);  // 0 begin, 1 continue, 2 end
    // Runs a command as the simulator does for a key or menu pick: begin and end.
    void RunCommandOnce(void* ref);
    // The simulator's own commands, which plugins find by name.
    void AddSimulatorCommands();

    // ---- menus ----
    std::map<intptr_t, SimMenu> menus;
    intptr_t nextMenu = 1;
    int nextItemCode = 1000;
    std::vector<SimResource> menuItemHistory;  // every item ever appended
    intptr_t CreateMenu(intptr_t parent, int parentItem, const char* name);
    int AppendItem(intptr_t menu, const char* name, void* command);
    void RemoveItem(intptr_t menu, int index);
    void DestroyMenu(intptr_t menu);
    // Picks every item that a plugin added: command items run their command,
    // plain items go to TVPM's menu hook.
    void PickPluginMenuItems();

    // ---- windows, avionics, maps ----
    std::map<void*, SimWindow> windows;
    std::map<void*, SimResource> avionics, mapLayers;
    int nextToken = 1;
    void* NewToken();

    // ---- scenery, instances, weather ----
    std::map<std::string, int> probesAllocated;  // per plugin; never released
    int nextProbe = 0;
    std::map<void*, SimResource> objects, instances;
    struct AsyncLoad {
        std::string path;
        void (*callback)(void*, void*);
        void* refcon;
    };
    std::vector<AsyncLoad> asyncLoads;  // completed at the start of the next frame
    void* LoadObject(const char* path);
    void CompleteAsyncLoads();
    long cameraFramesByPlugin = 0;  // frames a plugin drove the camera
    std::map<int, std::string> openWeatherUpdates;  // plugin ID -> plugin path
    std::map<std::string, int> weatherWrites;

    // ---- diagnostics ----
    std::vector<LeftBehind> leftBehind;
    std::vector<std::string> alerts, assertions;
    bool echoAlerts = false;  // print alerts as they are raised
    void Alert(const std::string& text);
    // Records how a resource owned by owner went away.
    void Released(const std::string& kind, const std::string& name, const std::string& owner);
    // Everything still alive that belongs to plugin path.
    std::vector<SimResource> AliveOf(const std::string& path) const;
    // Adds a LeftBehind entry for everything of path still alive.
    void ReportAliveOf(const std::string& path);
};

SimWorld& World();

// Fills all slots of the hook table with the headless simulator.
void FillHooks(TVPMHooks& hooks);
// The number (1-164) of a slot left empty that should not be, or 0.
int EmptySlot(const TVPMHooks& hooks);
void FillDisplaySlots(TVPMHooks& hooks);
void FillAvionicsSlots(TVPMHooks& hooks);
// Draws every avionics device and, now and then, gives it the pilot's input.
void RunAvionicsFrame(long frame);
void FillWorldSlots(TVPMHooks& hooks);
void FillNavigationSlots(TVPMHooks& hooks);
void FillCoreSlots(TVPMHooks& hooks);
// The sound slots hand out the stand-in engine's systems and buses (SimSound.h).
void FillSoundSlots(TVPMHooks& hooks);

// Terrain, the other aircraft and the camera (SimWorldServices.cpp).
int ProbeTerrain(const float* point, float* location, float* normal, float* velocity, int* wet);
bool ObjectFileExists(const char* path);  // absolute, or below the simulator folder
int AircraftSlots();                      // the user's included; 0 without an aircraft
int PublishTrafficItems();
void WorldServicesFrame();
void NoteWorldLogLine(const char* text);
// What a plugin still holds of the world's controls, as check warnings.
std::vector<std::string> WorldControlsStillHeld();

// Where the library's log goes (set by the run).
extern std::function<void(const char*)> gLogSink;

}  // namespace tvpmhost
