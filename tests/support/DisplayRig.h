// DisplayRig.h: a started simulator with scripted plugins, and a way to run test code as one of them.
#pragma once

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMPlugin.h"

namespace tvpmtest {

// What the test's callbacks did, in order; every rig starts it empty.
inline std::vector<std::string> g_log;

// Starts a simulator whose plugin folder holds one scripted plugin per key.
class DisplayRig {
public:
    explicit DisplayRig(const std::vector<std::string>& keys) {
        // Every list self-check runs while a handler is installed: a broken
        // link or a mis-kept walk count anywhere in a test fails that test.
        Failures().clear();
        g_log.clear();
        host.On<&TVPMHooks::TVPMHandleAssertFailed_f>(
            [](const char* condition, const char*, int line) {
                Failures().push_back(std::string(condition) + " @" + std::to_string(line));
            });
        for (const std::string& key : keys) sim.AddLoose(key, BuiltPlugin("scripted.tvp"));
        host.Start(sim.Root());
    }
    ~DisplayRig() {
        host.Shutdown();
        EXPECT_EQ(Failures(), std::vector<std::string>{});
    }
    DisplayRig(const DisplayRig&) = delete;
    DisplayRig& operator=(const DisplayRig&) = delete;

    // Loads the user's aircraft with one aircraft plugin (its key is name);
    // UnloadAircraft() then disables and unloads exactly that plugin.
    void LoadAircraftWithPlugin(const std::string& name) {
        host.userAircraftPath = sim.AddAircraft("Jet", {name}, BuiltPlugin("scripted.tvp"));
        TVPMEventHook(3, 0, 0, 0, 0);
    }
    void UnloadAircraft() { TVPMEventHook(8, 0, 0, 0, 0); }

    TVPMPluginID Id(const std::string& key) const { return IdOf(key); }

    // Runs f inside the plugin's own call context (the plugin must be enabled).
    void As(const std::string& key, std::function<void()> f) { RunAs(key, std::move(f)); }

    // Convenience wrappers that run as a plugin and hand back the result.
    TVPMWindowID Window(const std::string& key, int l, int t, int r, int b,
                        TVPMHandleMouseClick_f mouse = nullptr, TVPMHandleKey_f keyCb = nullptr,
                        TVPMDrawWindow_f draw = nullptr, void* refcon = nullptr) {
        TVPMWindowID id = nullptr;
        As(key, [&] { id = TVPMCreateWindow(l, t, r, b, 1, draw, keyCb, mouse, refcon); });
        return id;
    }

    // The simulator calls to these slots (to all when empty), each as "slot arg arg ...".
    std::vector<std::string> CallLines(const std::vector<std::string>& slots = {}) const {
        std::vector<std::string> lines;
        for (const HostCall& c : host.Calls()) {
            if (!slots.empty() && std::find(slots.begin(), slots.end(), c.slot) == slots.end()) continue;
            lines.push_back(c.slot);
            for (const std::string& arg : c.args) lines.back() += " " + arg;
        }
        return lines;
    }

    FakeHost host;
    SimFolder sim;

private:
    static std::vector<std::string>& Failures() {
        static std::vector<std::string> failures;
        return failures;
    }
};

}  // namespace tvpmtest
