// Simulator.cpp: the frame loop and the simulator events sent to TVPM.
#include "Simulator.h"

#include <algorithm>

#include "CheckSignals.h"
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
        s.samplesUs.push_back(microseconds[i]);
        s.usByFrame[World().frame] += microseconds[i];
        if (microseconds[i] > s.maxUs) s.maxUs = microseconds[i];
    }
}

}  // namespace

double TimingStat::PercentileUs(double p) const {
    if (samplesUs.empty()) return 0;
    std::vector<double> sorted(samplesUs);
    const size_t at = std::min(sorted.size() - 1, static_cast<size_t>(p / 100 * sorted.size()));
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<long>(at), sorted.end());
    return sorted[at];
}

double TimingStat::MaxAfterFirstUs() const {
    return samplesUs.size() < 2 ? 0 : *std::max_element(samplesUs.begin() + 1, samplesUs.end());
}

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
    InFlight f("TPluginStart and TPluginEnable at start-up");
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
    {
        InFlight f("flight loops before the flight model");
        Api().EventHook(tvpm_FlightLoopEvent, now, 0, 0, 0);
    }
    {
        InFlight f("draw callbacks");
        for (int kind = kFirstDrawingHook; kind <= kLastDrawingHook; ++kind)
            if (Api().NeedsDrawingHook(kind, 0)) Api().DoDrawingHook(kind, 0, nullptr);
    }
    {
        InFlight f("avionics drawing and input");
        RunAvionicsFrame(w.frame);
    }
    DrawGuiWindows();
    {
        InFlight f("map layer drawing");
        DrawMapLayers();
    }
    {
        InFlight f("camera and AI aircraft");
        WorldServicesFrame();
    }
    {
        InFlight f("flight loops after the flight model");
        Api().EventHook(tvpm_FlightLoopDoneEvent, now, 0, 0, 0);
    }
    {
        InFlight f("new data item check");
        Api().EventHook(tvpm_CheckNewDatarefs, now, 0, 0, 0);
    }
    CollectTimings();
    log.Flush();
}

void Simulator::DrawGuiWindows() {
    // The simulator draws its own windows: each visible plugin window is
    // drawn by a window-phase pass of its own.
    std::vector<void*> visible;
    for (auto& [id, w] : World().windows)
        if (w.alive && w.visible) visible.push_back(id);
    InFlight f("window drawing");
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
    InFlight f("aircraft-loaded message");
    Api().EventHook(tvpm_PlaneLoaded, World().ElapsedTime(), 0, kUserAircraft, 0);
    log.Flush();
}

void Simulator::UnloadAircraft() {
    InFlight f("aircraft-unloaded message");
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
    InFlight f("TPluginDisable and TPluginStop at shut-down");
    Api().ShutdownPlugins();
    started = false;
    log.Flush();
}

}  // namespace tvpmhost
