// SimTest.h: a test fixture holding the fake simulator and its temporary folder (shut down after each test), and what loader tests ask of it.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "FakeHost.h"
#include "Harness.h"

namespace tvpmtest {

// True while the library at path is mapped into the process.
inline bool IsMapped(const std::string& path) {
    void* dll = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (dll) dlclose(dll);
    return dll != nullptr;
}

// The log line that opens the loading of a plugin folder.
inline std::string Fetching(const std::string& folder) {
    return "Fetching plugins for " + folder + "\n\n";
}

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
