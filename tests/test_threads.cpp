// test_threads.cpp: interface calls off the plugin thread: the fatal thread check, and naming the calling plugin, also while every plugin is reloaded.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <set>
#include <string>
#include <thread>

#include "SimTest.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPMHost.h"

using namespace tvpmtest;

namespace {

// Messages of worker_thread.tvp.
constexpr int kNameFromWorker = 1;
constexpr int kNameOnMainThread = 2;
constexpr int kCallFromWorker = 3;

// An interface function that checks its thread first: unregistering a draw
// callback that was never registered does nothing else.
constexpr const char* kCheckedFunction = "TVPMUnregisterDrawCallback";

class Threads : public SimTest {
protected:
    void SetUp() override {
        workerFile = sim.AddLoose("worker_thread.tvp", BuiltPlugin("worker_thread.tvp"));
        AddScripted({"alpha.tvp", "beta.tvp"});
        ASSERT_EQ(host.Start(sim.Root()), 23);
        worker = TVPMFindPluginBySignature("test.worker_thread");
    }

    std::string Ask(int message) {
        char name[256] = "unset";
        TVPMSendMessageToPlugin(worker, message, name);
        return name;
    }

    std::string workerFile;
    TVPMPluginID worker = -1;
};

}  // namespace

TEST_F(Threads, APluginsThreadsAreNamedAfterThePluginAlsoWhileEveryPluginIsReloaded) {
    EXPECT_EQ(Ask(kNameFromWorker), "Worker");
    EXPECT_EQ(Ask(kNameOnMainThread), "Worker");
    EXPECT_STREQ(TVPMDebugGetCurrentPluginName(), "[TVPM_PLUGIN_TORVANE]");
    // The test's own reference keeps the plugin's code mapped between reloads.
    void* keep = dlopen(workerFile.c_str(), RTLD_NOW);
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
    // taken from its file; never anything else. Other threads have no name.
    seen.erase("");
    seen.erase("worker_thread.tvp");
    EXPECT_EQ(seen, std::set<std::string>{"Worker"});
    EXPECT_EQ(seenOutsidePlugins, std::set<std::string>{""});
}

using ThreadsDeathTest = Threads;

// The report goes to the plugin's error callback, to standard output and to the log.
TEST_F(ThreadsDeathTest, ACallFromAWorkerThreadIsReportedAndAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string violation = std::string("Threading violation calling ") + kCheckedFunction;
    EXPECT_DEATH(
        {
            fflush(stdout);
            dup2(STDERR_FILENO, STDOUT_FILENO);
            TVPMSendMessageToPlugin(worker, kCallFromWorker, const_cast<char*>(kCheckedFunction));
        },
        "worker plugin was told: " + violation + " \\([^:]+:[0-9]+\\)\n" + violation + " \\([^:]+:[0-9]+\\)\n" +
            "Violation by Worker \\(test.worker_thread - /[^ ]*/worker_thread.tvp\\)\n");
    host.On<&TVPMHooks::TVPMDebugString_f>([](const char* text) { fprintf(stderr, "log: %s", text); });
    EXPECT_DEATH(
        {
            if (!freopen("/dev/null", "w", stdout)) abort();
            TVPMSendMessageToPlugin(worker, kCallFromWorker, const_cast<char*>(kCheckedFunction));
        },
        "log: " + violation + ".*\nlog: Violation by Worker \\(test.worker_thread - ");
}
