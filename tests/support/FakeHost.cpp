// FakeHost.cpp: the recording fake simulator used by the integration tests.
#include "FakeHost.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace tvpmtest {

namespace {

FakeHost* s_current = nullptr;

// How to drop each installed slot's override again.
std::vector<void (*)()> s_resets;

template <auto Slot>
void Install(TVPMHooks& hooks, const char* name) {
    SlotOf<Slot>::name = name;
    hooks.*Slot = &SlotOf<Slot>::Call;
    s_resets.push_back([] { SlotOf<Slot>::override = nullptr; });
}

void InstallAll(TVPMHooks& hooks) {
#define INSTALL(slot) Install<&TVPMHooks::slot>(hooks, #slot)
    INSTALL(TVPMHostReady_f);
    INSTALL(TVPMCreateAvionics_f);
    INSTALL(TVPMDestroyAvionics_f);
    INSTALL(TVPMIsAvionicsBound_f);
    INSTALL(TVPMSetAvionicsBrightness_f);
    INSTALL(TVPMGetAvionicsBrightness_f);
    INSTALL(TVPMGetAvionicsBusVolts_f);
    INSTALL(TVPMSetAvionicsPopupVisible_f);
    INSTALL(TVPMIsAvionicsPopupVisible_f);
    INSTALL(TVPMPopOutAvionics_f);
    INSTALL(TVPMIsAvionicsPoppedOut_f);
    INSTALL(TVPMIsMouseOverAvionics_f);
    INSTALL(TVPMAvionicsNeedsDrawing_f);
    INSTALL(TVPMTakeAvionicsKeyboardFocus_f);
    INSTALL(TVPMHasAvionicsKeyboardFocus_f);
    INSTALL(TVPMGetAvionicsWindowBounds_f);
    INSTALL(TVPMSetAvionicsWindowBounds_f);
    INSTALL(TVPMGetAvionicsWindowBoundsOS_f);
    INSTALL(TVPMSetAvionicsWindowBoundsOS_f);
    INSTALL(TVPMGetScreenSize_f);
    INSTALL(TVPMGetScreenBoundsGlobal_f);
    INSTALL(TVPMGetAllMonitorBoundsGlobal_f);
    INSTALL(TVPMGetAllMonitorBoundsOS_f);
    INSTALL(TVPMGetMouseLocation_f);
    INSTALL(TVPMGetMouseLocationGlobal_f);
    INSTALL(TVPMSetPluginMouseFocus_f);
    INSTALL(TVPMSetGraphicsState_f);
    INSTALL(TVPMBindTexture2d_f);
    INSTALL(TVPMGenerateTextureIDs_f);
    INSTALL(TVPMGetTexture_f);
    INSTALL(TVPMWorldToLocal_f);
    INSTALL(TVPMLocalToWorld_f);
    INSTALL(TVPMDrawTranslucentDarkBox_f);
    INSTALL(TVPMDrawString_f);
    INSTALL(TVPMDrawNumber_f);
    INSTALL(TVPMGetFontDimensions_f);
    INSTALL(TVPMMeasureString_f);
    INSTALL(TVPMCreateInstance_f);
    INSTALL(TVPMDestroyInstance_f);
    INSTALL(TVPMInstanceSetAutoShift_f);
    INSTALL(TVPMInstanceSetPosition_f);
    INSTALL(TVPMInstanceSetPositionDouble_f);
    INSTALL(TVPMInstanceSetData_f);
    INSTALL(TVPMInstanceEnable_f);
    INSTALL(TVPMInstanceDisable_f);
    INSTALL(TVPMGetElapsedTime_f);
    INSTALL(TVPMReadCameraPosition_f);
    INSTALL(TVPMDrawPlane_f);
    INSTALL(TVPMLoadPlane_f);
    INSTALL(TVPMGetPlaneName_f);
    INSTALL(TVPMCountPlanes_f);
    INSTALL(TVPMLoadAirport_f);
    INSTALL(TVPMInitAtLocation_f);
    INSTALL(TVPMInitFlight_f);
    INSTALL(TVPMUpdateFlight_f);
    INSTALL(TVPMSimulateKeyPress_f);
    INSTALL(TVPMSpeakString_f);
    INSTALL(TVPMCommandKeyStroke_f);
    INSTALL(TVPMCommandButtonPress_f);
    INSTALL(TVPMGetSystemPath_f);
    INSTALL(TVPMGetPrefsPath_f);
    INSTALL(TVPMGetVersions_f);
    INSTALL(TVPMGetLanguage_f);
    INSTALL(TVPMDebugString_f);
    INSTALL(TVPMFindSymbol_f);
    INSTALL(TVPMReinitFlight_f);
    INSTALL(TorvaneReceiveMessage_f);
    INSTALL(TVPMShouldLoadPlugin_f);
    INSTALL(TVPMCreateMenu_f);
    INSTALL(TVPMAppendMenu_f);
    INSTALL(TVPMAppendMenuWithCommand_f);
    INSTALL(TVPMSetMenuTitle_f);
    INSTALL(TVPMDestroyMenu_f);
    INSTALL(TVPMRemoveMenuItem_f);
    INSTALL(TVPMCreateGuiPluginWindow_f);
    INSTALL(TVPMDestroyGuiPluginWindow_f);
    INSTALL(TVPMGuiPluginWindowIsVisible_f);
    INSTALL(TVPMHideGuiPluginWindow_f);
    INSTALL(TVPMShowGuiPluginWindow_f);
    INSTALL(TVPMGetGuiPluginWindowBounds_f);
    INSTALL(TVPMSetGuiPluginWindowBounds_f);
    INSTALL(TVPMGetPopoutWindowOSBounds_f);
    INSTALL(TVPMSetPopoutWindowOSBounds_f);
    INSTALL(TVPMWindowIsPoppedOut_f);
    INSTALL(TVPMWindowIsInVr_f);
    INSTALL(TVPMBringGuiWindowToFront_f);
    INSTALL(TVPMGuiWindowIsInFront_f);
    INSTALL(TVPMSetWindowPositioningMode_f);
    INSTALL(TVPMSetWindowResizingLimits_f);
    INSTALL(TVPMSetWindowGravity_f);
    INSTALL(TVPMSetWindowTitle_f);
    INSTALL(TVPMGetWindowVrSize_f);
    INSTALL(TVPMSetWindowVrSize_f);
    INSTALL(TVPMCreateMapLayer_f);
    INSTALL(TVPMDrawMapIconFromSheet_f);
    INSTALL(TVPMDrawMapLabel_f);
    INSTALL(TVPMMapProject_f);
    INSTALL(TVPMMapUnproject_f);
    INSTALL(TVPMMapScaleMeter_f);
    INSTALL(TVPMMapGetNorthHeading_f);
    INSTALL(TVPMMapExists_f);
    INSTALL(TVPMDestroyMapLayer_f);
    INSTALL(TVPMGetFirstNavAid_f);
    INSTALL(TVPMGetNextNavAid_f);
    INSTALL(TVPMFindFirstNavAidOfType_f);
    INSTALL(TVPMFindLastNavAidOfType_f);
    INSTALL(TVPMFindNavAid_f);
    INSTALL(TVPMGetNavAidInfo_f);
    INSTALL(TVPMCountFMSEntries_f);
    INSTALL(TVPMGetDisplayedFMSEntry_f);
    INSTALL(TVPMGetDestinationFMSEntry_f);
    INSTALL(TVPMSetDisplayedFMSEntry_f);
    INSTALL(TVPMSetDestinationFMSEntry_f);
    INSTALL(TVPMGetFMSEntryInfo_f);
    INSTALL(TVPMSetFMSEntryInfo_f);
    INSTALL(TVPMSetFMSEntryLatLon_f);
    INSTALL(TVPMClearFMSEntry_f);
    INSTALL(TVPMCountFMSFlightPlanEntries_f);
    INSTALL(TVPMGetDisplayedFMSFlightPlanEntry_f);
    INSTALL(TVPMGetDestinationFMSFlightPlanEntry_f);
    INSTALL(TVPMSetDisplayedFMSFlightPlanEntry_f);
    INSTALL(TVPMSetDestinationFMSFlightPlanEntry_f);
    INSTALL(TVPMSetDirectToFMSFlightPlanEntry_f);
    INSTALL(TVPMGetFMSFlightPlanEntryInfo_f);
    INSTALL(TVPMSetFMSFlightPlanEntryInfo_f);
    INSTALL(TVPMSetFMSFlightPlanEntryLatLon_f);
    INSTALL(TVPMSetFMSFlightPlanEntryLatLonWithId_f);
    INSTALL(TVPMClearFMSFlightPlanEntry_f);
    INSTALL(TVPMLoadFMSFlightPlan_f);
    INSTALL(TVPMSaveFMSFlightPlan_f);
    INSTALL(TVPMGetGPSDestinationType_f);
    INSTALL(TVPMGetGPSDestination_f);
    INSTALL(TVPMDisplayModalAlert_f);
    INSTALL(TVPMDisplayDismissableAlert_f);
    INSTALL(TVPMDisplayInitString_f);
    INSTALL(TVPMHandleAssertFailed_f);
    INSTALL(TVPMFindCreateCommand_f);
    INSTALL(TVPMDoCommandBegin_f);
    INSTALL(TVPMDoCommandContinue_f);
    INSTALL(TVPMDoCommandEnd_f);
    INSTALL(TVPMAllocateProbe_f);
    INSTALL(TVPMProbeY_f);
    INSTALL(TVPMLoadObject_f);
    INSTALL(TVPMDrawObject_f);
    INSTALL(TVPMUnloadObject_f);
    INSTALL(TVPMLookupObjects_f);
    INSTALL(TVPMLoadObjectAsync_f);
    INSTALL(TVPMShiftScenery_f);
    INSTALL(TVPMGetMagneticVariation_f);
    INSTALL(TVPMDegTrueToDegMagnetic_f);
    INSTALL(TVPMDegMagneticToDegTrue_f);
    INSTALL(TVPMLoadDataFile_f);
    INSTALL(TVPMSaveDataFile_f);
    INSTALL(TVPMGetFMODSystem_f);
    INSTALL(TVPMGetFMODStudio_f);
    INSTALL(TVPMGetFMODBus_f);
    INSTALL(TVPMGetWeatherAtPt_f);
    INSTALL(TVPMGetLastKnownMETAR_f);
    INSTALL(TVPMSetWeatherAtPt_f);
    INSTALL(TVPMEraseWeatherAtPt_f);
    INSTALL(TVPMSetWeatherAtAirport_f);
    INSTALL(TVPMEraseWeatherAtAirport_f);
    INSTALL(TVPMBeginWeatherUpdate_f);
    INSTALL(TVPMEndWeatherUpdate_f);
#undef INSTALL
}

void ResetOverrides() {
    for (void (*reset)() : s_resets) reset();
    s_resets.clear();
}

void CopyOut(char* out, const std::string& text) {
    if (out) memcpy(out, text.c_str(), text.size() + 1);
}

}  // namespace

FakeHost::FakeHost() {
    if (s_current) throw std::logic_error("one FakeHost per process");
    s_current = this;
    hooks.version = TVPM_HOOKS_VERSION;
    hooks.structSize = TVPM_HOOKS_SIZE;
    InstallAll(hooks);
    // Defaults that make a plain simulator: load every plugin, answer paths.
    On<&TVPMHooks::TVPMShouldLoadPlugin_f>([](const char*) { return true; });
    On<&TVPMHooks::TVPMGetSystemPath_f>([this](char* out) { CopyOut(out, systemPath); });
    On<&TVPMHooks::TVPMGetPlaneName_f>([this](int index, char* path, char* name) {
        CopyOut(path, index == 0 ? userAircraftPath : std::string());
        CopyOut(name, "");
    });
}

FakeHost::~FakeHost() {
    ResetOverrides();
    s_current = nullptr;
}

FakeHost& FakeHost::Current() {
    if (!s_current) {
        fprintf(stderr, "a hook slot was called with no FakeHost alive\n");
        abort();
    }
    return *s_current;
}

int FakeHost::Start(const std::string& root) {
    systemPath = root;
    return TVPMInitializePlugins(root.c_str(), &hooks, nullptr);
}

void FakeHost::Shutdown() { TVPMShutdownPlugins(); }

void FakeHost::RunFrame(float elapsed) {
    TVPMEventHook(tvpm_FlightLoopEvent, elapsed, 0, 0, 0);
    TVPMEventHook(tvpm_FlightLoopDoneEvent, elapsed, 0, 0, 0);
}

void FakeHost::Record(const char* slot, std::vector<std::string> args) {
    calls_.push_back(HostCall{slot, std::move(args)});
}

std::vector<HostCall> FakeHost::CallsTo(const std::string& slot) const {
    std::vector<HostCall> out;
    for (const HostCall& c : calls_)
        if (c.slot == slot) out.push_back(c);
    return out;
}

size_t FakeHost::Count(const std::string& slot) const { return CallsTo(slot).size(); }

std::vector<std::string> FakeHost::SlotSequence(const std::vector<std::string>& only) const {
    std::vector<std::string> out;
    for (const HostCall& c : calls_) {
        bool keep = only.empty();
        for (const std::string& s : only) keep = keep || s == c.slot;
        if (keep) out.push_back(c.slot);
    }
    return out;
}

std::string FakeHost::Log() const {
    std::string log;
    for (const HostCall& c : calls_) {
        if (c.slot != "TVPMDebugString_f" || c.args.empty()) continue;
        const std::string& a = c.args[0];
        if (a.size() >= 2 && a.front() == '"') log += a.substr(1, a.size() - 2);
    }
    return log;
}

std::string FormatArg(const char* s) { return s ? "\"" + std::string(s) + "\"" : "null"; }
// Non-const char* slots are output buffers: record where, not what.
std::string FormatArg(char* s) { return FormatArg(static_cast<const void*>(s)); }
std::string FormatArg(const void* p) {
    if (!p) return "null";
    char text[32];
    snprintf(text, sizeof text, "0x%" PRIxPTR, reinterpret_cast<uintptr_t>(p));
    return text;
}
std::string FormatArg(bool v) { return v ? "true" : "false"; }
std::string FormatArg(char v) { return std::to_string(static_cast<int>(v)); }
std::string FormatArg(int v) { return std::to_string(v); }
std::string FormatArg(unsigned v) { return std::to_string(v); }
std::string FormatArg(long v) { return std::to_string(v); }
std::string FormatArg(unsigned long v) { return std::to_string(v); }
std::string FormatArg(float v) { return FormatArg(static_cast<double>(v)); }
std::string FormatArg(double v) {
    char text[64];
    snprintf(text, sizeof text, "%g", v);
    return text;
}

}  // namespace tvpmtest
