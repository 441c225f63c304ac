// TVPMLoaderLifecycle.h: state shared by the loader's discovery and lifecycle files (aircraft plugin list, busy guard, deferred library closing).
#pragma once

#include <string>
#include <vector>

#include "TVPMPrivate.h"

// IDs of the plugins loaded from the user's aircraft folder, in load order.
extern std::vector<TVPMPluginID> gCurrentAircraftPluginIDS;

// True while a plugin record is being appended and started, or plugins are
// being stopped and unloaded. Requests that would reshape the plugin table
// from inside a plugin's own start or stop (an aircraft reload, an aircraft or
// scenery event sent by a plugin) are refused meanwhile: they would pull
// records away from under the loader.
bool TVPMLoaderBusy();

// Marks the loader busy for its lifetime.
class StLoaderBusy {
public:
    StLoaderBusy();
    ~StLoaderBusy();
    StLoaderBusy(const StLoaderBusy&) = delete;
    StLoaderBusy& operator=(const StLoaderBusy&) = delete;
};

// The loader's own call into a plugin's TPluginStart or TPluginStop: the
// plugin is current (the client plugin is left alone) and its library counts
// as on the stack, for the scope's lifetime.
class StLoaderCall {
public:
    StLoaderCall(TVPMPluginID id, const void* dll);
    ~StLoaderCall();
    StLoaderCall(const StLoaderCall&) = delete;
    StLoaderCall& operator=(const StLoaderCall&) = delete;

private:
    TVPMPluginID saved_;
    StPluginCodeOnStack onStack_;
};

// Tells every unit, in the fixed unload order, to release what the plugin owns.
void TVPMRunCleanupHooks(TVPMPluginID id);

// UnloadOnePlugin for a plugin known not to be running (one refused at start):
// its library is closed at once.
void TVPMUnloadStoppedPlugin(TVPMPluginID id);

// Closes the libraries of unloaded plugins whose code has left the stack;
// the others wait for a later call.
void TVPMCloseDeferredLibraries();

// The folder of the user's aircraft (its file path cut before the last "/");
// false when the path has no "/".
bool TVPMGetUserAircraftFolder(std::string& outFolder);
