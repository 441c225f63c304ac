// FakeHost.cpp: the recording fake simulator used by the integration tests.
#include "FakeHost.h"

#include <algorithm>
#include <cinttypes>
#include <cstddef>
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

// Every slot of the table, in its order.
#define TVPM_FAKE_HOST_SLOTS(X)                                                                                   \
    X(TVPMHostReady_f) X(TVPMCreateAvionics_f) X(TVPMDestroyAvionics_f) X(TVPMIsAvionicsBound_f)                  \
    X(TVPMSetAvionicsBrightness_f) X(TVPMGetAvionicsBrightness_f) X(TVPMGetAvionicsBusVolts_f)                    \
    X(TVPMSetAvionicsPopupVisible_f) X(TVPMIsAvionicsPopupVisible_f) X(TVPMPopOutAvionics_f)                      \
    X(TVPMIsAvionicsPoppedOut_f) X(TVPMIsMouseOverAvionics_f) X(TVPMAvionicsNeedsDrawing_f)                       \
    X(TVPMTakeAvionicsKeyboardFocus_f) X(TVPMHasAvionicsKeyboardFocus_f) X(TVPMGetAvionicsWindowBounds_f)         \
    X(TVPMSetAvionicsWindowBounds_f) X(TVPMGetAvionicsWindowBoundsOS_f) X(TVPMSetAvionicsWindowBoundsOS_f)        \
    X(TVPMGetScreenSize_f) X(TVPMGetScreenBoundsGlobal_f) X(TVPMGetAllMonitorBoundsGlobal_f)                      \
    X(TVPMGetAllMonitorBoundsOS_f) X(TVPMGetMouseLocation_f) X(TVPMGetMouseLocationGlobal_f)                      \
    X(TVPMSetPluginMouseFocus_f) X(TVPMSetGraphicsState_f) X(TVPMBindTexture2d_f) X(TVPMGenerateTextureIDs_f)     \
    X(TVPMGetTexture_f) X(TVPMWorldToLocal_f) X(TVPMLocalToWorld_f) X(TVPMDrawTranslucentDarkBox_f)               \
    X(TVPMDrawString_f) X(TVPMDrawNumber_f) X(TVPMGetFontDimensions_f) X(TVPMMeasureString_f)                     \
    X(TVPMCreateInstance_f) X(TVPMDestroyInstance_f) X(TVPMInstanceSetAutoShift_f) X(TVPMInstanceSetPosition_f)   \
    X(TVPMInstanceSetPositionDouble_f) X(TVPMInstanceSetData_f) X(TVPMInstanceEnable_f) X(TVPMInstanceDisable_f)  \
    X(TVPMGetElapsedTime_f) X(TVPMReadCameraPosition_f) X(TVPMDrawPlane_f) X(TVPMLoadPlane_f)                     \
    X(TVPMGetPlaneName_f) X(TVPMCountPlanes_f) X(TVPMLoadAirport_f) X(TVPMInitAtLocation_f) X(TVPMInitFlight_f)   \
    X(TVPMUpdateFlight_f) X(TVPMSimulateKeyPress_f) X(TVPMSpeakString_f) X(TVPMCommandKeyStroke_f)                \
    X(TVPMCommandButtonPress_f) X(TVPMGetSystemPath_f) X(TVPMGetPrefsPath_f) X(TVPMGetVersions_f)                 \
    X(TVPMGetLanguage_f) X(TVPMDebugString_f) X(TVPMFindSymbol_f) X(TVPMReinitFlight_f)                           \
    X(TorvaneReceiveMessage_f) X(TVPMShouldLoadPlugin_f) X(TVPMCreateMenu_f) X(TVPMAppendMenu_f)                  \
    X(TVPMAppendMenuWithCommand_f) X(TVPMSetMenuTitle_f) X(TVPMDestroyMenu_f) X(TVPMRemoveMenuItem_f)             \
    X(TVPMCreateGuiPluginWindow_f) X(TVPMDestroyGuiPluginWindow_f) X(TVPMGuiPluginWindowIsVisible_f)              \
    X(TVPMHideGuiPluginWindow_f) X(TVPMShowGuiPluginWindow_f) X(TVPMGetGuiPluginWindowBounds_f)                   \
    X(TVPMSetGuiPluginWindowBounds_f) X(TVPMGetPopoutWindowOSBounds_f) X(TVPMSetPopoutWindowOSBounds_f)           \
    X(TVPMWindowIsPoppedOut_f) X(TVPMWindowIsInVr_f) X(TVPMBringGuiWindowToFront_f) X(TVPMGuiWindowIsInFront_f)   \
    X(TVPMSetWindowPositioningMode_f) X(TVPMSetWindowResizingLimits_f) X(TVPMSetWindowGravity_f)                  \
    X(TVPMSetWindowTitle_f) X(TVPMGetWindowVrSize_f) X(TVPMSetWindowVrSize_f) X(TVPMCreateMapLayer_f)             \
    X(TVPMDrawMapIconFromSheet_f) X(TVPMDrawMapLabel_f) X(TVPMMapProject_f) X(TVPMMapUnproject_f)                 \
    X(TVPMMapScaleMeter_f) X(TVPMMapGetNorthHeading_f) X(TVPMMapExists_f) X(TVPMDestroyMapLayer_f)                \
    X(TVPMGetFirstNavAid_f) X(TVPMGetNextNavAid_f) X(TVPMFindFirstNavAidOfType_f) X(TVPMFindLastNavAidOfType_f)   \
    X(TVPMFindNavAid_f) X(TVPMGetNavAidInfo_f) X(TVPMCountFMSEntries_f) X(TVPMGetDisplayedFMSEntry_f)             \
    X(TVPMGetDestinationFMSEntry_f) X(TVPMSetDisplayedFMSEntry_f) X(TVPMSetDestinationFMSEntry_f)                 \
    X(TVPMGetFMSEntryInfo_f) X(TVPMSetFMSEntryInfo_f) X(TVPMSetFMSEntryLatLon_f) X(TVPMClearFMSEntry_f)           \
    X(TVPMCountFMSFlightPlanEntries_f) X(TVPMGetDisplayedFMSFlightPlanEntry_f)                                    \
    X(TVPMGetDestinationFMSFlightPlanEntry_f) X(TVPMSetDisplayedFMSFlightPlanEntry_f)                             \
    X(TVPMSetDestinationFMSFlightPlanEntry_f) X(TVPMSetDirectToFMSFlightPlanEntry_f)                              \
    X(TVPMGetFMSFlightPlanEntryInfo_f) X(TVPMSetFMSFlightPlanEntryInfo_f) X(TVPMSetFMSFlightPlanEntryLatLon_f)    \
    X(TVPMSetFMSFlightPlanEntryLatLonWithId_f) X(TVPMClearFMSFlightPlanEntry_f) X(TVPMLoadFMSFlightPlan_f)        \
    X(TVPMSaveFMSFlightPlan_f) X(TVPMGetGPSDestinationType_f) X(TVPMGetGPSDestination_f)                          \
    X(TVPMDisplayModalAlert_f) X(TVPMDisplayDismissableAlert_f) X(TVPMDisplayInitString_f)                        \
    X(TVPMHandleAssertFailed_f) X(TVPMFindCreateCommand_f) X(TVPMDoCommandBegin_f) X(TVPMDoCommandContinue_f)     \
    X(TVPMDoCommandEnd_f) X(TVPMAllocateProbe_f) X(TVPMProbeY_f) X(TVPMLoadObject_f) X(TVPMDrawObject_f)          \
    X(TVPMUnloadObject_f) X(TVPMLookupObjects_f) X(TVPMLoadObjectAsync_f) X(TVPMShiftScenery_f)                   \
    X(TVPMGetMagneticVariation_f) X(TVPMDegTrueToDegMagnetic_f) X(TVPMDegMagneticToDegTrue_f)                     \
    X(TVPMLoadDataFile_f) X(TVPMSaveDataFile_f) X(TVPMGetFMODSystem_f) X(TVPMGetFMODStudio_f)                     \
    X(TVPMGetFMODBus_f) X(TVPMGetWeatherAtPt_f) X(TVPMGetLastKnownMETAR_f) X(TVPMSetWeatherAtPt_f)                \
    X(TVPMEraseWeatherAtPt_f) X(TVPMSetWeatherAtAirport_f) X(TVPMEraseWeatherAtAirport_f)                         \
    X(TVPMBeginWeatherUpdate_f) X(TVPMEndWeatherUpdate_f)

#define TVPM_COUNT_SLOT(slot) +1
static_assert(offsetof(TVPMHooks, TVPMHostReady_f) + (0 TVPM_FAKE_HOST_SLOTS(TVPM_COUNT_SLOT)) * sizeof(void*) ==
                  sizeof(TVPMHooks),
              "the fake host lists every slot of the table");
#undef TVPM_COUNT_SLOT

void InstallAll(TVPMHooks& hooks) {
#define INSTALL(slot) Install<&TVPMHooks::slot>(hooks, #slot);
    TVPM_FAKE_HOST_SLOTS(INSTALL)
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
    for (const HostCall& c : calls_)
        if (only.empty() || std::find(only.begin(), only.end(), c.slot) != only.end()) out.push_back(c.slot);
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
std::string FormatArg(char* s) { return FormatArg(static_cast<const void*>(s)); }
std::string FormatArg(const void* p) {
    if (!p) return "null";
    char text[32];
    snprintf(text, sizeof text, "0x%" PRIxPTR, reinterpret_cast<uintptr_t>(p));
    return text;
}

}  // namespace tvpmtest
