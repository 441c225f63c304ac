// AlphaBeta.h: a started simulator with two loose scripted plugins, alpha and beta, that record the errors they are told of.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "TVPM/TVPMPlugin.h"

namespace tvpmtest {

struct AlphaBeta {
    FakeHost host;
    SimFolder sim;
    TVPMPluginID alpha = -1, beta = -1;

    // beforeStart may set up the host's slots that start-up already calls.
    explicit AlphaBeta(const std::function<void(FakeHost&)>& beforeStart = {}) {
        for (const char* key : {"alpha.tvp", "beta.tvp"}) {
            sim.AddLoose(key, BuiltPlugin("scripted.tvp"));
            ReportErrorsOf(key);
        }
        if (beforeStart) beforeStart(host);
        host.Start(sim.Root());
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }
    ~AlphaBeta() { host.Shutdown(); }

    // Loads the user's aircraft, which brings one scripted plugin, "acfp".
    void LoadAircraftPlugin() {
        host.userAircraftPath = sim.AddAircraft("glider", {"acfp"}, BuiltPlugin("scripted.tvp"));
        TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
        ASSERT_GT(IdOf("acfp"), 0);
    }
};

}  // namespace tvpmtest
