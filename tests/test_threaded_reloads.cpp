// test_threaded_reloads.cpp: other threads name plugins safely while the plugin thread loads and unloads them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPMHost.h"

using namespace tvpmtest;
using ThreadedReloads = SimTest;

TEST_F(ThreadedReloads, AWorkerNamesItsPluginWhileEveryPluginIsReloaded) {
    const std::string worker = sim.AddLoose("worker_thread.tvp", BuiltPlugin("worker_thread.tvp"));
    AddScripted({"alpha.tvp", "beta.tvp"});
    ASSERT_EQ(host.Start(sim.Root()), 23);
    // The test's own reference keeps the plugin's code mapped between reloads.
    void* keep = dlopen(worker.c_str(), RTLD_NOW);
    ASSERT_NE(keep, nullptr);
    auto nameFromPlugin = reinterpret_cast<const char* (*)()>(dlsym(keep, "WorkerThreadName"));
    ASSERT_NE(nameFromPlugin, nullptr);

    std::atomic<bool> done{false};
    std::atomic<int> lookups{0};
    std::set<std::string> seen, seenOutsidePlugins;
    std::thread names([&] {
        while (!done) {
            seen.insert(nameFromPlugin());
            seenOutsidePlugins.insert(TVPMDebugGetCurrentPluginName());
            ++lookups;
        }
    });
    // A loaded machine may not schedule the worker at all during the
    // reloads; make sure it looks both during them and once they are over.
    for (int reload = 0; reload < 150 || lookups < 100; ++reload) {
        TVPMReloadPlugins();
        host.RunFrame();
    }
    for (const int after = lookups + 10; lookups < after;) std::this_thread::yield();
    done = true;
    names.join();
    dlclose(keep);
    // Between copies the plugin has no name, while it starts it has the one
    // taken from its file; never anything else.
    seen.erase("");
    seen.erase("worker_thread.tvp");
    EXPECT_EQ(seen, std::set<std::string>{"Worker"});
    EXPECT_EQ(seenOutsidePlugins, std::set<std::string>{""});
}
