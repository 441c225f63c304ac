// SimSlotsCore.cpp: the simulator's core slots: start-up, clock, aircraft, paths, log, alerts, menus and commands.
#include <cstdio>
#include <cstring>
#include <string>

#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr int kSimulatorVersion = 1207;
constexpr int kHostApplicationID = 1;
constexpr int kPathBuffer = 512;

void CopyOut(char* out, const std::string& text, size_t size = 256) {
    if (!out) return;
    snprintf(out, size, "%s", text.c_str());
}

void FillLifecycleSlots(TVPMHooks& h) {
    h.TVPMHostReady_f = [] {};
    h.TVPMGetElapsedTime_f = [] { return World().ElapsedTime(); };
    h.TVPMGetVersions_f = [](int* version, TVPMHostApplicationID* app) {
        if (version) *version = kSimulatorVersion;
        if (app) *app = kHostApplicationID;
    };
    h.TVPMGetLanguage_f = [] { return 0; };
    h.TVPMFindSymbol_f = [](const char*) -> void* { return nullptr; };
    h.TorvaneReceiveMessage_f = [](TVPMPluginID, int, void*) {};
    h.TVPMShouldLoadPlugin_f = [](const char*) { return true; };
    h.TVPMGetSystemPath_f = [](char* out) { CopyOut(out, World().systemPath, kPathBuffer); };
    h.TVPMGetPrefsPath_f = [](char* out) {
        CopyOut(out, World().systemPath + "Output/preferences/Torvane.prf", kPathBuffer);
    };
    h.TVPMDebugString_f = [](const char* text) {
        if (text && gLogSink) gLogSink(text);
        if (text) NoteWorldLogLine(text);
    };
    h.TVPMDisplayInitString_f = [](const char*) {};
    h.TVPMHandleAssertFailed_f = [](const char* condition, const char* file, int line) {
        World().assertions.push_back(std::string(condition ? condition : "?") + " (" +
                                     (file ? file : "?") + ":" + std::to_string(line) + ")");
    };
}

void FillAlertSlots(TVPMHooks& h) {
    // Headless: an alert is answered at once, as if the user dismissed it.
    h.TVPMDisplayModalAlert_f = [](const char* a, const char* b, const char*, const char*) {
        World().Alert(std::string(a ? a : "") + " " + (b ? b : ""));
    };
    h.TVPMDisplayDismissableAlert_f = [](const char* path, const char* kind, const char* title,
                                         const char* item, const char*, const char*) {
        World().Alert(std::string(kind ? kind : "") + ": " + (title ? title : "") + " [" +
                      (item ? item : "") + "] " + (path ? path : ""));
    };
    h.TVPMSpeakString_f = [](char*) {};
}

void FillAircraftSlots(TVPMHooks& h) {
    h.TVPMGetPlaneName_f = [](int index, char* outFile, char* outPath) {
        const std::string path = index == 0 ? World().aircraftPath : "";
        // Both outputs carry the aircraft's file path; TVPM reads the first.
        CopyOut(outFile, path);
        CopyOut(outPath, path);
    };
    h.TVPMCountPlanes_f = [] { return AircraftSlots(); };
    h.TVPMLoadPlane_f = [](int index, const char* path, const char*) {
        if (index == 0 && path) World().aircraftPath = path;
    };
    h.TVPMDrawPlane_f = [](int, float, float, float, float, float, float, int,
                           TVPMPlaneDrawState_t*) {};
    h.TVPMLoadAirport_f = [](const char*) {};
    h.TVPMInitAtLocation_f = [](double, double, float, float, float) {};
    h.TVPMInitFlight_f = [](const char*, void (*)(const char*)) { return 1; };
    h.TVPMUpdateFlight_f = [](const char*, void (*)(const char*)) { return 1; };
    h.TVPMReinitFlight_f = [](int, int) {};
    h.TVPMLoadDataFile_f = [](TVPMDataFileType, const char* path) { return path ? 1 : 0; };
    h.TVPMSaveDataFile_f = [](TVPMDataFileType, const char* path) { return path ? 1 : 0; };
    h.TVPMSimulateKeyPress_f = [](int, int) {};
    h.TVPMCommandKeyStroke_f = [](TVPMCommandKeyID) {};
    h.TVPMCommandButtonPress_f = [](TVPMCommandButtonID*, int, int) {};
}

void FillMenuSlots(TVPMHooks& h) {
    h.TVPMCreateMenu_f = [](intptr_t parent, int item, const char* name) {
        return World().CreateMenu(parent, item, name);
    };
    h.TVPMAppendMenu_f = [](intptr_t menu, const char* name) {
        return World().AppendItem(menu, name, nullptr);
    };
    h.TVPMAppendMenuWithCommand_f = [](intptr_t menu, const char* name, TVPMCommandRef cmd) {
        return World().AppendItem(menu, name, cmd);
    };
    h.TVPMSetMenuTitle_f = [](intptr_t menu, int index, const char* name) {
        auto it = World().menus.find(menu);
        if (it == World().menus.end() || !name) return;
        auto& items = it->second.items;
        if (index >= 0 && index < static_cast<int>(items.size())) items[index].name = name;
    };
    h.TVPMDestroyMenu_f = [](intptr_t menu) { World().DestroyMenu(menu); };
    h.TVPMRemoveMenuItem_f = [](intptr_t menu, int index) { World().RemoveItem(menu, index); };
}

void FillCommandSlots(TVPMHooks& h) {
    h.TVPMFindCreateCommand_f = [](const char* name, const char* description, int create) {
        return World().FindCreateCommand(name, description, create);
    };
    h.TVPMDoCommandBegin_f = [](void* ref) { World().CommandPhase(ref, 0); };
    h.TVPMDoCommandContinue_f = [](void* ref) { World().CommandPhase(ref, 1); };
    h.TVPMDoCommandEnd_f = [](void* ref) { World().CommandPhase(ref, 2); };
}

}  // namespace

void FillCoreSlots(TVPMHooks& h) {
    FillLifecycleSlots(h);
    FillAlertSlots(h);
    FillAircraftSlots(h);
    FillMenuSlots(h);
    FillCommandSlots(h);
}

int EmptySlot(const TVPMHooks& h) {
    // The slots follow the two leading ints; FMOD's three may stay empty.
    constexpr int kSlots = 164, kFirstFMOD = 154, kLastFMOD = 156;
    using Slot = void (*)();
    Slot slots[kSlots];
    memcpy(slots, reinterpret_cast<const char*>(&h) + 2 * sizeof(int), sizeof slots);
    for (int n = 1; n <= kSlots; ++n)
        if (!slots[n - 1] && (n < kFirstFMOD || n > kLastFMOD)) return n;
    return 0;
}

void FillHooks(TVPMHooks& h) {
    h = TVPMHooks{};
    h.version = TVPM_HOOKS_VERSION;
    h.structSize = TVPM_HOOKS_SIZE;
    FillCoreSlots(h);
    FillDisplaySlots(h);
    FillWorldSlots(h);
    FillNavigationSlots(h);
    FillSoundSlots(h);
}

}  // namespace tvpmhost
