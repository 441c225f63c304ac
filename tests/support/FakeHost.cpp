// FakeHost.cpp: the recording fake simulator used by the integration tests.
#include "FakeHost.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace tvpmtest {

namespace {

FakeHost* s_current = nullptr;

template <auto Slot>
void Install(TVPMHooks& hooks, const char* name) {
    SlotOf<Slot>::name = name;
    hooks.*Slot = &SlotOf<Slot>::Call;
}

void InstallAll(TVPMHooks& hooks) {
    Install<&TVPMHooks::TVPMHostReady_f>(hooks, "TVPMHostReady_f");
    Install<&TVPMHooks::TVPMCreateAvionics_f>(hooks, "TVPMCreateAvionics_f");
    Install<&TVPMHooks::TVPMDestroyAvionics_f>(hooks, "TVPMDestroyAvionics_f");
    Install<&TVPMHooks::TVPMIsAvionicsBound_f>(hooks, "TVPMIsAvionicsBound_f");
    Install<&TVPMHooks::TVPMSetAvionicsBrightness_f>(hooks, "TVPMSetAvionicsBrightness_f");
    Install<&TVPMHooks::TVPMGetAvionicsBrightness_f>(hooks, "TVPMGetAvionicsBrightness_f");
    Install<&TVPMHooks::TVPMGetAvionicsBusVolts_f>(hooks, "TVPMGetAvionicsBusVolts_f");
    Install<&TVPMHooks::TVPMSetAvionicsPopupVisible_f>(hooks, "TVPMSetAvionicsPopupVisible_f");
    Install<&TVPMHooks::TVPMIsAvionicsPopupVisible_f>(hooks, "TVPMIsAvionicsPopupVisible_f");
    Install<&TVPMHooks::TVPMPopOutAvionics_f>(hooks, "TVPMPopOutAvionics_f");
    Install<&TVPMHooks::TVPMIsAvionicsPoppedOut_f>(hooks, "TVPMIsAvionicsPoppedOut_f");
    Install<&TVPMHooks::TVPMIsMouseOverAvionics_f>(hooks, "TVPMIsMouseOverAvionics_f");
    Install<&TVPMHooks::TVPMAvionicsNeedsDrawing_f>(hooks, "TVPMAvionicsNeedsDrawing_f");
    Install<&TVPMHooks::TVPMTakeAvionicsKeyboardFocus_f>(hooks, "TVPMTakeAvionicsKeyboardFocus_f");
    Install<&TVPMHooks::TVPMHasAvionicsKeyboardFocus_f>(hooks, "TVPMHasAvionicsKeyboardFocus_f");
    Install<&TVPMHooks::TVPMGetAvionicsWindowBounds_f>(hooks, "TVPMGetAvionicsWindowBounds_f");
    Install<&TVPMHooks::TVPMSetAvionicsWindowBounds_f>(hooks, "TVPMSetAvionicsWindowBounds_f");
    Install<&TVPMHooks::TVPMGetAvionicsWindowBoundsOS_f>(hooks, "TVPMGetAvionicsWindowBoundsOS_f");
    Install<&TVPMHooks::TVPMSetAvionicsWindowBoundsOS_f>(hooks, "TVPMSetAvionicsWindowBoundsOS_f");
    Install<&TVPMHooks::TVPMGetScreenSize_f>(hooks, "TVPMGetScreenSize_f");
    Install<&TVPMHooks::TVPMGetScreenBoundsGlobal_f>(hooks, "TVPMGetScreenBoundsGlobal_f");
    Install<&TVPMHooks::TVPMGetAllMonitorBoundsGlobal_f>(hooks, "TVPMGetAllMonitorBoundsGlobal_f");
    Install<&TVPMHooks::TVPMGetAllMonitorBoundsOS_f>(hooks, "TVPMGetAllMonitorBoundsOS_f");
    Install<&TVPMHooks::TVPMGetMouseLocation_f>(hooks, "TVPMGetMouseLocation_f");
    Install<&TVPMHooks::TVPMGetMouseLocationGlobal_f>(hooks, "TVPMGetMouseLocationGlobal_f");
    Install<&TVPMHooks::TVPMSetPluginMouseFocus_f>(hooks, "TVPMSetPluginMouseFocus_f");
    Install<&TVPMHooks::TVPMSetGraphicsState_f>(hooks, "TVPMSetGraphicsState_f");
    Install<&TVPMHooks::TVPMBindTexture2d_f>(hooks, "TVPMBindTexture2d_f");
    Install<&TVPMHooks::TVPMGenerateTextureIDs_f>(hooks, "TVPMGenerateTextureIDs_f");
    Install<&TVPMHooks::TVPMGetTexture_f>(hooks, "TVPMGetTexture_f");
    Install<&TVPMHooks::TVPMWorldToLocal_f>(hooks, "TVPMWorldToLocal_f");
    Install<&TVPMHooks::TVPMLocalToWorld_f>(hooks, "TVPMLocalToWorld_f");
    Install<&TVPMHooks::TVPMDrawTranslucentDarkBox_f>(hooks, "TVPMDrawTranslucentDarkBox_f");
    Install<&TVPMHooks::TVPMDrawString_f>(hooks, "TVPMDrawString_f");
    Install<&TVPMHooks::TVPMDrawNumber_f>(hooks, "TVPMDrawNumber_f");
    Install<&TVPMHooks::TVPMGetFontDimensions_f>(hooks, "TVPMGetFontDimensions_f");
    Install<&TVPMHooks::TVPMMeasureString_f>(hooks, "TVPMMeasureString_f");
    Install<&TVPMHooks::TVPMCreateInstance_f>(hooks, "TVPMCreateInstance_f");
    Install<&TVPMHooks::TVPMDestroyInstance_f>(hooks, "TVPMDestroyInstance_f");
    Install<&TVPMHooks::TVPMInstanceSetAutoShift_f>(hooks, "TVPMInstanceSetAutoShift_f");
    Install<&TVPMHooks::TVPMInstanceSetPosition_f>(hooks, "TVPMInstanceSetPosition_f");
    Install<&TVPMHooks::TVPMInstanceSetPositionDouble_f>(hooks, "TVPMInstanceSetPositionDouble_f");
    Install<&TVPMHooks::TVPMInstanceSetData_f>(hooks, "TVPMInstanceSetData_f");
    Install<&TVPMHooks::TVPMInstanceEnable_f>(hooks, "TVPMInstanceEnable_f");
    Install<&TVPMHooks::TVPMInstanceDisable_f>(hooks, "TVPMInstanceDisable_f");
    Install<&TVPMHooks::TVPMGetElapsedTime_f>(hooks, "TVPMGetElapsedTime_f");
    Install<&TVPMHooks::TVPMReadCameraPosition_f>(hooks, "TVPMReadCameraPosition_f");
    Install<&TVPMHooks::TVPMDrawPlane_f>(hooks, "TVPMDrawPlane_f");
    Install<&TVPMHooks::TVPMLoadPlane_f>(hooks, "TVPMLoadPlane_f");
    Install<&TVPMHooks::TVPMGetPlaneName_f>(hooks, "TVPMGetPlaneName_f");
    Install<&TVPMHooks::TVPMCountPlanes_f>(hooks, "TVPMCountPlanes_f");
    Install<&TVPMHooks::TVPMLoadAirport_f>(hooks, "TVPMLoadAirport_f");
    Install<&TVPMHooks::TVPMInitAtLocation_f>(hooks, "TVPMInitAtLocation_f");
    Install<&TVPMHooks::TVPMInitFlight_f>(hooks, "TVPMInitFlight_f");
    Install<&TVPMHooks::TVPMUpdateFlight_f>(hooks, "TVPMUpdateFlight_f");
    Install<&TVPMHooks::TVPMSimulateKeyPress_f>(hooks, "TVPMSimulateKeyPress_f");
    Install<&TVPMHooks::TVPMSpeakString_f>(hooks, "TVPMSpeakString_f");
    Install<&TVPMHooks::TVPMCommandKeyStroke_f>(hooks, "TVPMCommandKeyStroke_f");
    Install<&TVPMHooks::TVPMCommandButtonPress_f>(hooks, "TVPMCommandButtonPress_f");
    Install<&TVPMHooks::TVPMGetSystemPath_f>(hooks, "TVPMGetSystemPath_f");
    Install<&TVPMHooks::TVPMGetPrefsPath_f>(hooks, "TVPMGetPrefsPath_f");
    Install<&TVPMHooks::TVPMGetVersions_f>(hooks, "TVPMGetVersions_f");
    Install<&TVPMHooks::TVPMGetLanguage_f>(hooks, "TVPMGetLanguage_f");
    Install<&TVPMHooks::TVPMDebugString_f>(hooks, "TVPMDebugString_f");
    Install<&TVPMHooks::TVPMFindSymbol_f>(hooks, "TVPMFindSymbol_f");
    Install<&TVPMHooks::TVPMReinitFlight_f>(hooks, "TVPMReinitFlight_f");
    Install<&TVPMHooks::TorvaneReceiveMessage_f>(hooks, "TorvaneReceiveMessage_f");
    Install<&TVPMHooks::TVPMShouldLoadPlugin_f>(hooks, "TVPMShouldLoadPlugin_f");
    Install<&TVPMHooks::TVPMCreateMenu_f>(hooks, "TVPMCreateMenu_f");
    Install<&TVPMHooks::TVPMAppendMenu_f>(hooks, "TVPMAppendMenu_f");
    Install<&TVPMHooks::TVPMAppendMenuWithCommand_f>(hooks, "TVPMAppendMenuWithCommand_f");
    Install<&TVPMHooks::TVPMSetMenuTitle_f>(hooks, "TVPMSetMenuTitle_f");
    Install<&TVPMHooks::TVPMDestroyMenu_f>(hooks, "TVPMDestroyMenu_f");
    Install<&TVPMHooks::TVPMRemoveMenuItem_f>(hooks, "TVPMRemoveMenuItem_f");
    Install<&TVPMHooks::TVPMCreateGuiPluginWindow_f>(hooks, "TVPMCreateGuiPluginWindow_f");
    Install<&TVPMHooks::TVPMDestroyGuiPluginWindow_f>(hooks, "TVPMDestroyGuiPluginWindow_f");
    Install<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>(hooks, "TVPMGuiPluginWindowIsVisible_f");
    Install<&TVPMHooks::TVPMHideGuiPluginWindow_f>(hooks, "TVPMHideGuiPluginWindow_f");
    Install<&TVPMHooks::TVPMShowGuiPluginWindow_f>(hooks, "TVPMShowGuiPluginWindow_f");
    Install<&TVPMHooks::TVPMGetGuiPluginWindowBounds_f>(hooks, "TVPMGetGuiPluginWindowBounds_f");
    Install<&TVPMHooks::TVPMSetGuiPluginWindowBounds_f>(hooks, "TVPMSetGuiPluginWindowBounds_f");
    Install<&TVPMHooks::TVPMGetPopoutWindowOSBounds_f>(hooks, "TVPMGetPopoutWindowOSBounds_f");
    Install<&TVPMHooks::TVPMSetPopoutWindowOSBounds_f>(hooks, "TVPMSetPopoutWindowOSBounds_f");
    Install<&TVPMHooks::TVPMWindowIsPoppedOut_f>(hooks, "TVPMWindowIsPoppedOut_f");
    Install<&TVPMHooks::TVPMWindowIsInVr_f>(hooks, "TVPMWindowIsInVr_f");
    Install<&TVPMHooks::TVPMBringGuiWindowToFront_f>(hooks, "TVPMBringGuiWindowToFront_f");
    Install<&TVPMHooks::TVPMGuiWindowIsInFront_f>(hooks, "TVPMGuiWindowIsInFront_f");
    Install<&TVPMHooks::TVPMSetWindowPositioningMode_f>(hooks, "TVPMSetWindowPositioningMode_f");
    Install<&TVPMHooks::TVPMSetWindowResizingLimits_f>(hooks, "TVPMSetWindowResizingLimits_f");
    Install<&TVPMHooks::TVPMSetWindowGravity_f>(hooks, "TVPMSetWindowGravity_f");
    Install<&TVPMHooks::TVPMSetWindowTitle_f>(hooks, "TVPMSetWindowTitle_f");
    Install<&TVPMHooks::TVPMGetWindowVrSize_f>(hooks, "TVPMGetWindowVrSize_f");
    Install<&TVPMHooks::TVPMSetWindowVrSize_f>(hooks, "TVPMSetWindowVrSize_f");
    Install<&TVPMHooks::TVPMCreateMapLayer_f>(hooks, "TVPMCreateMapLayer_f");
    Install<&TVPMHooks::TVPMDrawMapIconFromSheet_f>(hooks, "TVPMDrawMapIconFromSheet_f");
    Install<&TVPMHooks::TVPMDrawMapLabel_f>(hooks, "TVPMDrawMapLabel_f");
    Install<&TVPMHooks::TVPMMapProject_f>(hooks, "TVPMMapProject_f");
    Install<&TVPMHooks::TVPMMapUnproject_f>(hooks, "TVPMMapUnproject_f");
    Install<&TVPMHooks::TVPMMapScaleMeter_f>(hooks, "TVPMMapScaleMeter_f");
    Install<&TVPMHooks::TVPMMapGetNorthHeading_f>(hooks, "TVPMMapGetNorthHeading_f");
    Install<&TVPMHooks::TVPMMapExists_f>(hooks, "TVPMMapExists_f");
    Install<&TVPMHooks::TVPMDestroyMapLayer_f>(hooks, "TVPMDestroyMapLayer_f");
    Install<&TVPMHooks::TVPMGetFirstNavAid_f>(hooks, "TVPMGetFirstNavAid_f");
    Install<&TVPMHooks::TVPMGetNextNavAid_f>(hooks, "TVPMGetNextNavAid_f");
    Install<&TVPMHooks::TVPMFindFirstNavAidOfType_f>(hooks, "TVPMFindFirstNavAidOfType_f");
    Install<&TVPMHooks::TVPMFindLastNavAidOfType_f>(hooks, "TVPMFindLastNavAidOfType_f");
    Install<&TVPMHooks::TVPMFindNavAid_f>(hooks, "TVPMFindNavAid_f");
    Install<&TVPMHooks::TVPMGetNavAidInfo_f>(hooks, "TVPMGetNavAidInfo_f");
    Install<&TVPMHooks::TVPMCountFMSEntries_f>(hooks, "TVPMCountFMSEntries_f");
    Install<&TVPMHooks::TVPMGetDisplayedFMSEntry_f>(hooks, "TVPMGetDisplayedFMSEntry_f");
    Install<&TVPMHooks::TVPMGetDestinationFMSEntry_f>(hooks, "TVPMGetDestinationFMSEntry_f");
    Install<&TVPMHooks::TVPMSetDisplayedFMSEntry_f>(hooks, "TVPMSetDisplayedFMSEntry_f");
    Install<&TVPMHooks::TVPMSetDestinationFMSEntry_f>(hooks, "TVPMSetDestinationFMSEntry_f");
    Install<&TVPMHooks::TVPMGetFMSEntryInfo_f>(hooks, "TVPMGetFMSEntryInfo_f");
    Install<&TVPMHooks::TVPMSetFMSEntryInfo_f>(hooks, "TVPMSetFMSEntryInfo_f");
    Install<&TVPMHooks::TVPMSetFMSEntryLatLon_f>(hooks, "TVPMSetFMSEntryLatLon_f");
    Install<&TVPMHooks::TVPMClearFMSEntry_f>(hooks, "TVPMClearFMSEntry_f");
    Install<&TVPMHooks::TVPMCountFMSFlightPlanEntries_f>(hooks, "TVPMCountFMSFlightPlanEntries_f");
    Install<&TVPMHooks::TVPMGetDisplayedFMSFlightPlanEntry_f>(hooks, "TVPMGetDisplayedFMSFlightPlanEntry_f");
    Install<&TVPMHooks::TVPMGetDestinationFMSFlightPlanEntry_f>(hooks, "TVPMGetDestinationFMSFlightPlanEntry_f");
    Install<&TVPMHooks::TVPMSetDisplayedFMSFlightPlanEntry_f>(hooks, "TVPMSetDisplayedFMSFlightPlanEntry_f");
    Install<&TVPMHooks::TVPMSetDestinationFMSFlightPlanEntry_f>(hooks, "TVPMSetDestinationFMSFlightPlanEntry_f");
    Install<&TVPMHooks::TVPMSetDirectToFMSFlightPlanEntry_f>(hooks, "TVPMSetDirectToFMSFlightPlanEntry_f");
    Install<&TVPMHooks::TVPMGetFMSFlightPlanEntryInfo_f>(hooks, "TVPMGetFMSFlightPlanEntryInfo_f");
    Install<&TVPMHooks::TVPMSetFMSFlightPlanEntryInfo_f>(hooks, "TVPMSetFMSFlightPlanEntryInfo_f");
    Install<&TVPMHooks::TVPMSetFMSFlightPlanEntryLatLon_f>(hooks, "TVPMSetFMSFlightPlanEntryLatLon_f");
    Install<&TVPMHooks::TVPMSetFMSFlightPlanEntryLatLonWithId_f>(hooks, "TVPMSetFMSFlightPlanEntryLatLonWithId_f");
    Install<&TVPMHooks::TVPMClearFMSFlightPlanEntry_f>(hooks, "TVPMClearFMSFlightPlanEntry_f");
    Install<&TVPMHooks::TVPMLoadFMSFlightPlan_f>(hooks, "TVPMLoadFMSFlightPlan_f");
    Install<&TVPMHooks::TVPMSaveFMSFlightPlan_f>(hooks, "TVPMSaveFMSFlightPlan_f");
    Install<&TVPMHooks::TVPMGetGPSDestinationType_f>(hooks, "TVPMGetGPSDestinationType_f");
    Install<&TVPMHooks::TVPMGetGPSDestination_f>(hooks, "TVPMGetGPSDestination_f");
    Install<&TVPMHooks::TVPMDisplayModalAlert_f>(hooks, "TVPMDisplayModalAlert_f");
    Install<&TVPMHooks::TVPMDisplayDismissableAlert_f>(hooks, "TVPMDisplayDismissableAlert_f");
    Install<&TVPMHooks::TVPMDisplayInitString_f>(hooks, "TVPMDisplayInitString_f");
    Install<&TVPMHooks::TVPMHandleAssertFailed_f>(hooks, "TVPMHandleAssertFailed_f");
    Install<&TVPMHooks::TVPMFindCreateCommand_f>(hooks, "TVPMFindCreateCommand_f");
    Install<&TVPMHooks::TVPMDoCommandBegin_f>(hooks, "TVPMDoCommandBegin_f");
    Install<&TVPMHooks::TVPMDoCommandContinue_f>(hooks, "TVPMDoCommandContinue_f");
    Install<&TVPMHooks::TVPMDoCommandEnd_f>(hooks, "TVPMDoCommandEnd_f");
    Install<&TVPMHooks::TVPMAllocateProbe_f>(hooks, "TVPMAllocateProbe_f");
    Install<&TVPMHooks::TVPMProbeY_f>(hooks, "TVPMProbeY_f");
    Install<&TVPMHooks::TVPMLoadObject_f>(hooks, "TVPMLoadObject_f");
    Install<&TVPMHooks::TVPMDrawObject_f>(hooks, "TVPMDrawObject_f");
    Install<&TVPMHooks::TVPMUnloadObject_f>(hooks, "TVPMUnloadObject_f");
    Install<&TVPMHooks::TVPMLookupObjects_f>(hooks, "TVPMLookupObjects_f");
    Install<&TVPMHooks::TVPMLoadObjectAsync_f>(hooks, "TVPMLoadObjectAsync_f");
    Install<&TVPMHooks::TVPMShiftScenery_f>(hooks, "TVPMShiftScenery_f");
    Install<&TVPMHooks::TVPMGetMagneticVariation_f>(hooks, "TVPMGetMagneticVariation_f");
    Install<&TVPMHooks::TVPMDegTrueToDegMagnetic_f>(hooks, "TVPMDegTrueToDegMagnetic_f");
    Install<&TVPMHooks::TVPMDegMagneticToDegTrue_f>(hooks, "TVPMDegMagneticToDegTrue_f");
    Install<&TVPMHooks::TVPMLoadDataFile_f>(hooks, "TVPMLoadDataFile_f");
    Install<&TVPMHooks::TVPMSaveDataFile_f>(hooks, "TVPMSaveDataFile_f");
    Install<&TVPMHooks::TVPMGetFMODSystem_f>(hooks, "TVPMGetFMODSystem_f");
    Install<&TVPMHooks::TVPMGetFMODStudio_f>(hooks, "TVPMGetFMODStudio_f");
    Install<&TVPMHooks::TVPMGetFMODBus_f>(hooks, "TVPMGetFMODBus_f");
    Install<&TVPMHooks::TVPMGetWeatherAtPt_f>(hooks, "TVPMGetWeatherAtPt_f");
    Install<&TVPMHooks::TVPMGetLastKnownMETAR_f>(hooks, "TVPMGetLastKnownMETAR_f");
    Install<&TVPMHooks::TVPMSetWeatherAtPt_f>(hooks, "TVPMSetWeatherAtPt_f");
    Install<&TVPMHooks::TVPMEraseWeatherAtPt_f>(hooks, "TVPMEraseWeatherAtPt_f");
    Install<&TVPMHooks::TVPMSetWeatherAtAirport_f>(hooks, "TVPMSetWeatherAtAirport_f");
    Install<&TVPMHooks::TVPMEraseWeatherAtAirport_f>(hooks, "TVPMEraseWeatherAtAirport_f");
    Install<&TVPMHooks::TVPMBeginWeatherUpdate_f>(hooks, "TVPMBeginWeatherUpdate_f");
    Install<&TVPMHooks::TVPMEndWeatherUpdate_f>(hooks, "TVPMEndWeatherUpdate_f");
}

void ResetOverrides() {
    SlotOf<&TVPMHooks::TVPMHostReady_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCreateAvionics_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDestroyAvionics_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMIsAvionicsBound_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetAvionicsBrightness_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetAvionicsBrightness_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetAvionicsBusVolts_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetAvionicsPopupVisible_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMIsAvionicsPopupVisible_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMPopOutAvionics_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMIsAvionicsPoppedOut_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMIsMouseOverAvionics_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMAvionicsNeedsDrawing_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMTakeAvionicsKeyboardFocus_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMHasAvionicsKeyboardFocus_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetAvionicsWindowBounds_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetAvionicsWindowBounds_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetAvionicsWindowBoundsOS_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetAvionicsWindowBoundsOS_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetScreenSize_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetScreenBoundsGlobal_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetAllMonitorBoundsGlobal_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetAllMonitorBoundsOS_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetMouseLocation_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetMouseLocationGlobal_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetPluginMouseFocus_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetGraphicsState_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMBindTexture2d_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGenerateTextureIDs_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetTexture_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMWorldToLocal_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLocalToWorld_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawTranslucentDarkBox_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawString_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawNumber_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFontDimensions_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMMeasureString_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCreateInstance_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDestroyInstance_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInstanceSetAutoShift_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInstanceSetPosition_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInstanceSetPositionDouble_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInstanceSetData_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInstanceEnable_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInstanceDisable_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetElapsedTime_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMReadCameraPosition_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawPlane_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLoadPlane_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetPlaneName_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCountPlanes_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLoadAirport_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInitAtLocation_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMInitFlight_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMUpdateFlight_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSimulateKeyPress_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSpeakString_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCommandKeyStroke_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCommandButtonPress_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetSystemPath_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetPrefsPath_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetVersions_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetLanguage_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDebugString_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMFindSymbol_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMReinitFlight_f>::override = nullptr;
    SlotOf<&TVPMHooks::TorvaneReceiveMessage_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMShouldLoadPlugin_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCreateMenu_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMAppendMenu_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMAppendMenuWithCommand_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetMenuTitle_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDestroyMenu_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMRemoveMenuItem_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCreateGuiPluginWindow_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDestroyGuiPluginWindow_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGuiPluginWindowIsVisible_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMHideGuiPluginWindow_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMShowGuiPluginWindow_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetGuiPluginWindowBounds_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetGuiPluginWindowBounds_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetPopoutWindowOSBounds_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetPopoutWindowOSBounds_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMWindowIsPoppedOut_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMWindowIsInVr_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMBringGuiWindowToFront_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGuiWindowIsInFront_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWindowPositioningMode_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWindowResizingLimits_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWindowGravity_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWindowTitle_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetWindowVrSize_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWindowVrSize_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCreateMapLayer_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawMapIconFromSheet_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawMapLabel_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMMapProject_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMMapUnproject_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMMapScaleMeter_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMMapGetNorthHeading_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMMapExists_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDestroyMapLayer_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFirstNavAid_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetNextNavAid_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMFindFirstNavAidOfType_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMFindLastNavAidOfType_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMFindNavAid_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetNavAidInfo_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCountFMSEntries_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetDisplayedFMSEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetDestinationFMSEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetDisplayedFMSEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetDestinationFMSEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFMSEntryInfo_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetFMSEntryInfo_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetFMSEntryLatLon_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMClearFMSEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMCountFMSFlightPlanEntries_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetDisplayedFMSFlightPlanEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetDestinationFMSFlightPlanEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetDisplayedFMSFlightPlanEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetDestinationFMSFlightPlanEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetDirectToFMSFlightPlanEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFMSFlightPlanEntryInfo_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetFMSFlightPlanEntryInfo_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetFMSFlightPlanEntryLatLon_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetFMSFlightPlanEntryLatLonWithId_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMClearFMSFlightPlanEntry_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLoadFMSFlightPlan_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSaveFMSFlightPlan_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetGPSDestinationType_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetGPSDestination_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDisplayModalAlert_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDisplayDismissableAlert_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDisplayInitString_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMHandleAssertFailed_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMFindCreateCommand_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDoCommandBegin_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDoCommandContinue_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDoCommandEnd_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMAllocateProbe_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMProbeY_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLoadObject_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDrawObject_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMUnloadObject_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLookupObjects_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLoadObjectAsync_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMShiftScenery_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetMagneticVariation_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDegTrueToDegMagnetic_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMDegMagneticToDegTrue_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMLoadDataFile_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSaveDataFile_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFMODSystem_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFMODStudio_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetFMODBus_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetWeatherAtPt_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMGetLastKnownMETAR_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWeatherAtPt_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMEraseWeatherAtPt_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMSetWeatherAtAirport_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMEraseWeatherAtAirport_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMBeginWeatherUpdate_f>::override = nullptr;
    SlotOf<&TVPMHooks::TVPMEndWeatherUpdate_f>::override = nullptr;
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
