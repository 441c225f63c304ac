// SimTest.h: a test fixture holding the fake simulator and its temporary folder; the simulator is shut down after each test.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "FakeHost.h"
#include "Harness.h"

namespace tvpmtest {

class SimTest : public ::testing::Test {
protected:
    // Shutting down twice, or without a start, does nothing.
    void TearDown() override { host.Shutdown(); }

    // Copies the scripted plugin into the plugin folder once for each loose file name.
    void AddScripted(std::initializer_list<std::string> keys) {
        for (const std::string& key : keys) sim.AddLoose(key, BuiltPlugin("scripted.tvp"));
    }

    FakeHost host;
    SimFolder sim;
};

}  // namespace tvpmtest
