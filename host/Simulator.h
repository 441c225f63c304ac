// Simulator.h: drives TVPM as the simulator does: start-up, the frame, aircraft and scenery events, shut-down, callback timings.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "HostLog.h"
#include "TVPMHost.h"

namespace tvpmhost {

struct TimingStat {
    long calls = 0;
    double totalUs = 0, maxUs = 0;
    std::vector<double> samplesUs;           // every call, for percentiles
    std::map<long, double> usByFrame;        // frame number -> time spent in it
    double MeanUs() const { return calls ? totalUs / calls : 0; }
    double PercentileUs(double p) const;
    // The longest call after the first, which often loads and warms up.
    double MaxAfterFirstUs() const;
};

// Callback time per plugin file path and callback category.
using TimingTable = std::map<std::string, std::map<int, TimingStat>>;

const char* CategoryName(int category);

class Simulator {
public:
    HostLog log;
    TimingTable timings;
    TVPMHooks hooks{};

    // Loads the library and starts TVPM on root (ending with "/"). False with
    // error set when the library cannot be loaded or refuses the table.
    bool Start(const std::string& libraryPath, const std::string& root, double fps,
               std::string& error);
    // One frame: flight loops before the flight model, every drawing hook
    // point, flight loops after, the new-data-items check, timings.
    void Frame();
    void Frames(long count);
    // The user's aircraft: its file path (folder/name.acf).
    void LoadAircraft(const std::string& acfPath);
    void UnloadAircraft();
    // A scenery pack folder (ending with "/").
    void RegisterScenery(const std::string& packFolder);
    // The user picks another view: a plugin's until-the-view-changes camera ends.
    void ChangeView();
    void Shutdown();

    bool started = false;
    int hostDataItems = 0;

private:
    void CollectTimings();
    void DrawGuiWindows();
};

// The data items the simulator publishes before TVPM starts (when the
// library has the data-access unit). Returns how many were published.
int PublishHostDataItems();

struct HostDataItem {
    std::string name;
    int type;
    bool writable, deprecated, replaced;
};
// What PublishHostDataItems published.
std::vector<HostDataItem>& HostDataItems();

}  // namespace tvpmhost
