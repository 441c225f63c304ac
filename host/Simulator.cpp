// Simulator.cpp: the frame loop and the simulator events sent to TVPM.
#include "Simulator.h"

#include "SimServices.h"
#include "SimSound.h"
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr int kFirstDrawingHook = 1, kLastDrawingHook = 27;
constexpr int kWindowAfterKind = 21;
constexpr int kStartedOK = 23;
constexpr int kUserAircraft = 0;

TimingTable* s_collecting = nullptr;

void ReceiveTimings(uint64_t count, const TVPMPluginID* ids, const TVPMPluginCallbackType* types,
                    const double* microseconds) {
    if (!s_collecting) return;
    for (uint64_t i = 0; i < count; ++i) {
        TimingStat& s = (*s_collecting)[PluginPath(ids[i])][types[i]];
        ++s.calls;
        s.totalUs += microseconds[i];
        if (microseconds[i] > s.maxUs) s.maxUs = microseconds[i];
    }
}

}  // namespace

const char* CategoryName(int category) {
    switch (category) {
        case tvpm_cb_drawing_misc: return "drawing";
        case tvpm_cb_drawing_panel_legacy: return "panel drawing";
        case tvpm_cb_drawing_window_legacy: return "window drawing (legacy)";
        case tvpm_cb_drawing_avionics: return "avionics drawing";
        case tvpm_cb_drawing_window: return "window drawing";
        case tvpm_cb_flight_loop: return "flight loop";
        default: return "other";
    }
}

bool Simulator::Start(const std::string& libraryPath, const std::string& root, double fps,
                      std::string& error) {
    if (!Api().handle && !Api().Load(libraryPath, error)) return false;
    World().fps = fps;
    World().systemPath = root;
    gLogSink = [this](const char* text) { log.Write(text); };
    World().echoAlerts = log.echo;
    World().AddSimulatorCommands();
    FillHooks(hooks);
    if (const int empty = EmptySlot(hooks)) {
        error = "internal error: hook slot " + std::to_string(empty) + " is empty";
        return false;
    }
    hostDataItems = PublishHostDataItems();
    const int result = Api().InitializePlugins(root.c_str(), &hooks, nullptr);
    log.Flush();
    if (result != kStartedOK) {
        error = "TVPM refused to start (TVPMInitializePlugins returned " + std::to_string(result) + ")";
        return false;
    }
    started = true;
    AnnounceMaps();
    return true;
}

void Simulator::Frame() {
    SimWorld& w = World();
    ++w.frame;
    w.CompleteAsyncLoads();
    const float now = w.ElapsedTime();
    AdvanceSound(1.0 / w.fps);
    Api().EventHook(tvpm_FlightLoopEvent, now, 0, 0, 0);
    for (int kind = kFirstDrawingHook; kind <= kLastDrawingHook; ++kind)
        if (Api().NeedsDrawingHook(kind, 0)) Api().DoDrawingHook(kind, 0, nullptr);
    RunAvionicsFrame(w.frame);
    DrawGuiWindows();
    DrawMapLayers();
    WorldServicesFrame();
    Api().EventHook(tvpm_FlightLoopDoneEvent, now, 0, 0, 0);
    Api().EventHook(tvpm_CheckNewDatarefs, now, 0, 0, 0);
    CollectTimings();
    log.Flush();
}

void Simulator::DrawGuiWindows() {
    // The simulator draws its own windows: each visible plugin window is
    // drawn by a window-phase pass of its own.
    std::vector<void*> visible;
    for (auto& [id, w] : World().windows)
        if (w.alive && w.visible) visible.push_back(id);
    for (void* id : visible) Api().DoDrawingHook(kWindowAfterKind, 0, id);
}

void Simulator::Frames(long count) {
    for (long i = 0; i < count; ++i) Frame();
}

void Simulator::CollectTimings() {
    s_collecting = &timings;
    Api().GetPluginCallbackTimings(&ReceiveTimings);
    s_collecting = nullptr;
}

void Simulator::LoadAircraft(const std::string& acfPath) {
    World().aircraftPath = acfPath;
    Api().EventHook(tvpm_PlaneLoaded, World().ElapsedTime(), 0, kUserAircraft, 0);
    log.Flush();
}

void Simulator::UnloadAircraft() {
    Api().EventHook(tvpm_PlaneUnloaded, World().ElapsedTime(), 0, kUserAircraft, 0);
    World().aircraftPath.clear();
    log.Flush();
}

void Simulator::RegisterScenery(const std::string& packFolder) {
    Api().EventHook(tvpm_RegisterScenery, World().ElapsedTime(), 0,
                    reinterpret_cast<intptr_t>(packFolder.c_str()), 0);
    log.Flush();
}

void Simulator::Shutdown() {
    if (!started) return;
    Api().ShutdownPlugins();
    started = false;
    log.Flush();
}

}  // namespace tvpmhost
