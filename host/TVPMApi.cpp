// TVPMApi.cpp: loads TVPM_64.so and resolves the functions the host calls.
#include "TVPMApi.h"

#include <dlfcn.h>

namespace tvpmhost {

namespace {

template <class F>
bool Resolve(void* handle, F& fn, const char* name, bool required, std::string& missing) {
    fn = reinterpret_cast<F>(dlsym(handle, name));
    if (!fn && required) missing += std::string(missing.empty() ? "" : ", ") + name;
    return fn != nullptr;
}

}  // namespace

TVPMApi& Api() {
    static TVPMApi api;
    return api;
}

bool TVPMApi::Load(const std::string& libraryPath, std::string& error) {
    handle = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!handle) {
        const char* why = dlerror();
        error = "cannot load " + libraryPath + ": " + (why ? why : "unknown error");
        return false;
    }
    path = libraryPath;
    std::string missing;
#define TVPM_REQUIRE(field) Resolve(handle, field, "TVPM" #field, true, missing)
#define TVPM_OPTIONAL(field) Resolve(handle, field, "TVPM" #field, false, missing)
    TVPM_REQUIRE(InitializePlugins);
    TVPM_REQUIRE(ShutdownPlugins);
    TVPM_REQUIRE(EventHook);
    TVPM_REQUIRE(NeedsDrawingHook);
    TVPM_REQUIRE(DoDrawingHook);
    TVPM_REQUIRE(GetPluginCallbackTimings);
    TVPM_REQUIRE(CommandHook);
    TVPM_REQUIRE(MenuHook);
    TVPM_REQUIRE(GetMyID);
    TVPM_REQUIRE(CountPlugins);
    TVPM_REQUIRE(GetPluginInfo);
    TVPM_REQUIRE(FindPluginByPath);
    TVPM_REQUIRE(IsPluginEnabled);
    TVPM_REQUIRE(EnablePlugin);
    TVPM_REQUIRE(DisablePlugin);
    TVPM_REQUIRE(ReloadPlugins);
    TVPM_OPTIONAL(RegisterDataAccessor);
    TVPM_OPTIONAL(CountDataRefs);
    TVPM_OPTIONAL(GetDataRefsByIndex);
    TVPM_OPTIONAL(GetDataRefInfo);
    TVPM_OPTIONAL(CountHotKeys);
    TVPM_OPTIONAL(GetNthHotKey);
    TVPM_OPTIONAL(GetHotKeyInfo);
    TVPM_OPTIONAL(GetDatai);
    TVPM_OPTIONAL(SetDatai);
    TVPM_OPTIONAL(GetDataf);
    TVPM_OPTIONAL(SetDataf);
    TVPM_OPTIONAL(GetDatad);
    TVPM_OPTIONAL(SetDatad);
    TVPM_OPTIONAL(GetDatavi);
    TVPM_OPTIONAL(SetDatavi);
    TVPM_OPTIONAL(GetDatavf);
    TVPM_OPTIONAL(SetDatavf);
    TVPM_OPTIONAL(GetDatab);
    TVPM_OPTIONAL(SetDatab);
    TVPM_OPTIONAL(MouseClickHook);
    TVPM_OPTIONAL(KeyPressHook);
    TVPM_OPTIONAL(ScrollWheelHook);
    TVPM_OPTIONAL(SendMessageToPlugin);
    TVPM_OPTIONAL(CameraHook);
    TVPM_OPTIONAL(IsCameraBeingControlled);
    TVPM_OPTIONAL(GetNumberPlanesToHandle);
    TVPM_OPTIONAL(UpdatePlaneNameAndPath);
#undef TVPM_REQUIRE
#undef TVPM_OPTIONAL
    if (!missing.empty()) {
        error = libraryPath + " does not export: " + missing;
        return false;
    }
    return true;
}

std::string PluginPath(TVPMPluginID id) {
    if (id <= 0 || id >= Api().CountPlugins()) return "";
    char path[256] = {0};
    Api().GetPluginInfo(id, nullptr, path, nullptr, nullptr);
    return path;
}

std::string PluginName(TVPMPluginID id) {
    if (id <= 0 || id >= Api().CountPlugins()) return "";
    char name[256] = {0};
    Api().GetPluginInfo(id, name, nullptr, nullptr, nullptr);
    return name;
}

std::string CurrentPluginPath() { return Api().handle ? PluginPath(Api().GetMyID()) : ""; }

}  // namespace tvpmhost
