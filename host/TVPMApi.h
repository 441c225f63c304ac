// TVPMApi.h: the plugin manager's exported functions, resolved by name from the loaded TVPM_64.so.
#pragma once

#include <string>

#include "TVPMHost.h"
#include "TVPM/TVPMCamera.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"

namespace tvpmhost {

template <auto& Fn>
using FnPtr = decltype(&Fn);

// Every function the host calls. Required ones make loading fail when
// missing; optional ones (units that a library build may not export) are null.
struct TVPMApi {
    void* handle = nullptr;
    std::string path;

    // required: the host interface
    FnPtr<TVPMInitializePlugins> InitializePlugins = nullptr;
    FnPtr<TVPMShutdownPlugins> ShutdownPlugins = nullptr;
    FnPtr<TVPMEventHook> EventHook = nullptr;
    FnPtr<TVPMNeedsDrawingHook> NeedsDrawingHook = nullptr;
    FnPtr<TVPMDoDrawingHook> DoDrawingHook = nullptr;
    FnPtr<TVPMGetPluginCallbackTimings> GetPluginCallbackTimings = nullptr;
    FnPtr<TVPMCommandHook> CommandHook = nullptr;
    FnPtr<TVPMMenuHook> MenuHook = nullptr;
    // required: plugin management, used to attribute what the host sees
    FnPtr<TVPMGetMyID> GetMyID = nullptr;
    FnPtr<TVPMCountPlugins> CountPlugins = nullptr;
    FnPtr<TVPMGetPluginInfo> GetPluginInfo = nullptr;
    FnPtr<TVPMFindPluginByPath> FindPluginByPath = nullptr;
    FnPtr<TVPMIsPluginEnabled> IsPluginEnabled = nullptr;
    FnPtr<TVPMEnablePlugin> EnablePlugin = nullptr;
    FnPtr<TVPMDisablePlugin> DisablePlugin = nullptr;
    FnPtr<TVPMReloadPlugins> ReloadPlugins = nullptr;

    // optional: what plugins registered, and the simulator's own data items
    FnPtr<TVPMRegisterDataAccessor> RegisterDataAccessor = nullptr;
    FnPtr<TVPMCountDataRefs> CountDataRefs = nullptr;
    FnPtr<TVPMGetDataRefsByIndex> GetDataRefsByIndex = nullptr;
    FnPtr<TVPMGetDataRefInfo> GetDataRefInfo = nullptr;
    FnPtr<TVPMCountHotKeys> CountHotKeys = nullptr;
    FnPtr<TVPMGetNthHotKey> GetNthHotKey = nullptr;
    FnPtr<TVPMGetHotKeyInfo> GetHotKeyInfo = nullptr;
    // optional: what the check's fuzzing drives
    FnPtr<TVPMGetDatai> GetDatai = nullptr;
    FnPtr<TVPMSetDatai> SetDatai = nullptr;
    FnPtr<TVPMGetDataf> GetDataf = nullptr;
    FnPtr<TVPMSetDataf> SetDataf = nullptr;
    FnPtr<TVPMGetDatad> GetDatad = nullptr;
    FnPtr<TVPMSetDatad> SetDatad = nullptr;
    FnPtr<TVPMGetDatavi> GetDatavi = nullptr;
    FnPtr<TVPMSetDatavi> SetDatavi = nullptr;
    FnPtr<TVPMGetDatavf> GetDatavf = nullptr;
    FnPtr<TVPMSetDatavf> SetDatavf = nullptr;
    FnPtr<TVPMGetDatab> GetDatab = nullptr;
    FnPtr<TVPMSetDatab> SetDatab = nullptr;
    FnPtr<TVPMMouseClickHook> MouseClickHook = nullptr;
    FnPtr<TVPMKeyPressHook> KeyPressHook = nullptr;
    FnPtr<TVPMScrollWheelHook> ScrollWheelHook = nullptr;
    FnPtr<TVPMSendMessageToPlugin> SendMessageToPlugin = nullptr;
    // optional: the world hooks (camera, the other aircraft)
    FnPtr<TVPMCameraHook> CameraHook = nullptr;
    FnPtr<TVPMIsCameraBeingControlled> IsCameraBeingControlled = nullptr;
    FnPtr<TVPMGetNumberPlanesToHandle> GetNumberPlanesToHandle = nullptr;
    FnPtr<TVPMUpdatePlaneNameAndPath> UpdatePlaneNameAndPath = nullptr;

    // Loads the library (RTLD_NOW | RTLD_GLOBAL, so plugins resolve against
    // it) and resolves every function. On failure error says why.
    bool Load(const std::string& libraryPath, std::string& error);
};

// The one loaded library of this process (slots have no context pointer).
TVPMApi& Api();

// The plugin the library is calling on behalf of right now, as a file path
// ("" for the simulator itself or no plugin).
std::string CurrentPluginPath();
// A plugin's file path and name by ID ("" when not loaded).
std::string PluginPath(TVPMPluginID id);
std::string PluginName(TVPMPluginID id);

}  // namespace tvpmhost
