// test_threads.cpp: interface calls from the wrong thread: the fatal thread check and naming the calling plugin off the plugin thread.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>

#include "FakeHost.h"
#include "Harness.h"
#include "TVPM/TVPMPlugin.h"

using namespace tvpmtest;

namespace {

// Messages of worker_thread.tvp.
constexpr int kNameFromWorker = 1;
constexpr int kNameOnMainThread = 2;
constexpr int kCallFromWorker = 3;

// An interface function that checks its thread first: unregistering a draw
// callback that was never registered does nothing else.
constexpr const char* kCheckedFunction = "TVPMUnregisterDrawCallback";

class Threads : public ::testing::Test {
protected:
    void SetUp() override {
        sim.AddLoose("worker_thread.tvp", BuiltPlugin("worker_thread.tvp"));
        ASSERT_EQ(host.Start(sim.Root()), 23);
        worker = TVPMFindPluginBySignature("test.worker_thread");
        ASSERT_GT(worker, 0);
    }
    void TearDown() override { host.Shutdown(); }

    std::string Ask(int message) {
        char name[256] = "unset";
        TVPMSendMessageToPlugin(worker, message, name);
        return name;
    }

    FakeHost host;
    SimFolder sim;
    TVPMPluginID worker = -1;
};

}  // namespace

TEST_F(Threads, APluginsWorkerThreadIsNamedAfterThePlugin) {
    EXPECT_EQ(Ask(kNameFromWorker), "Worker");
    EXPECT_EQ(Ask(kNameOnMainThread), "Worker");
}

TEST_F(Threads, OtherThreadsHaveNoPluginName) {
    std::string seen = "unset";
    std::thread([&] { seen = TVPMDebugGetCurrentPluginName(); }).join();
    EXPECT_EQ(seen, "");
    EXPECT_STREQ(TVPMDebugGetCurrentPluginName(), "[TVPM_PLUGIN_TORVANE]");
}

using ThreadsDeathTest = Threads;

TEST_F(ThreadsDeathTest, ACallFromAWorkerThreadIsReportedAndAborts) {
    if (!dlsym(RTLD_DEFAULT, kCheckedFunction)) GTEST_SKIP() << kCheckedFunction << " not built yet";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string expected = std::string("worker plugin was told: Threading violation calling ") +
                                 kCheckedFunction + " \\([^:]+:[0-9]+\\)\n" +
                                 "Threading violation calling " + kCheckedFunction +
                                 " \\([^:]+:[0-9]+\\)\n" +
                                 "Violation by Worker \\(test.worker_thread - /[^ ]*/worker_thread.tvp\\)\n";
    EXPECT_DEATH(
        {
            fflush(stdout);
            dup2(STDERR_FILENO, STDOUT_FILENO);  // the report is printed to standard output
            TVPMSendMessageToPlugin(worker, kCallFromWorker, const_cast<char*>(kCheckedFunction));
        },
        expected);
}

TEST_F(ThreadsDeathTest, TheReportAlsoGoesToTheLog) {
    if (!dlsym(RTLD_DEFAULT, kCheckedFunction)) GTEST_SKIP() << kCheckedFunction << " not built yet";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    host.On<&TVPMHooks::TVPMDebugString_f>([](const char* text) { fprintf(stderr, "log: %s", text); });
    EXPECT_DEATH(
        {
            if (!freopen("/dev/null", "w", stdout)) abort();
            TVPMSendMessageToPlugin(worker, kCallFromWorker, const_cast<char*>(kCheckedFunction));
        },
        std::string("log: Threading violation calling ") + kCheckedFunction +
            ".*\nlog: Violation by Worker \\(test.worker_thread - ");
}
