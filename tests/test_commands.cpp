// test_commands.cpp: commands as plugins and the simulator see them: finding and creating, handler chains, held commands, legacy keys and buttons.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "Harness.h"
#include "PluginContext.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMHost.h"

using namespace tvpmtest;

namespace {

// Host-side command objects: any distinct addresses will do.
int gCmdA, gCmdB;
TVPMCommandRef const kCmd = &gCmdA;
TVPMCommandRef const kOther = &gCmdB;

// What handlers saw, as "<refcon text>/<phase>/<current plugin>".
std::vector<std::string>& Seen() {
    static std::vector<std::string> seen;
    return seen;
}

std::string Text(void* refcon) { return refcon ? static_cast<const char*>(refcon) : "null"; }

int Note(TVPMCommandRef, TVPMCommandPhase phase, void* refcon) {
    Seen().push_back(Text(refcon) + "/" + std::to_string(phase) + "/" +
                     std::to_string(TVPMGetMyID()));
    return 1;
}

int NoteAndStop(TVPMCommandRef cmd, TVPMCommandPhase phase, void* refcon) {
    Note(cmd, phase, refcon);
    return 0;
}

char kA[] = "A", kB[] = "B", kC[] = "C";

std::string PtrArg(const void* p) { return FormatArg(p); }

// Two loose plugins, alpha and beta, started.
struct TwoPlugins {
    FakeHost host;
    SimFolder sim;
    TVPMPluginID alpha = -1, beta = -1;

    TwoPlugins() {
        sim.AddLoose("alpha.tvp", BuiltPlugin("scripted.tvp"));
        sim.AddLoose("beta.tvp", BuiltPlugin("scripted.tvp"));
        ReportErrorsOf("alpha.tvp");
        ReportErrorsOf("beta.tvp");
        host.On<&TVPMHooks::TVPMFindCreateCommand_f>(
            [](const char* name, const char*, int create) -> void* {
                if (std::string(name) == "known/cmd" || create) return kCmd;
                return nullptr;
            });
        host.Start(sim.Root());
        alpha = IdOf("alpha.tvp");
        beta = IdOf("beta.tvp");
    }
    ~TwoPlugins() { host.Shutdown(); }
    void Register(const std::string& key, TVPMCommandCallback_f cb, int before, char* refcon) {
        RunAs(key, [=] { TVPMRegisterCommandHandler(kCmd, cb, before, refcon); });
    }
};

}  // namespace

TEST(Commands, FindOnlyFindsAndCreateFindsOrCreates) {
    TwoPlugins t;
    t.host.ClearCalls();
    EXPECT_EQ(TVPMFindCommand("known/cmd"), kCmd);
    EXPECT_EQ(TVPMFindCommand("missing/cmd"), nullptr);
    EXPECT_EQ(TVPMCreateCommand("mine/cmd", "Does it"), kCmd);
    auto calls = t.host.CallsTo("TVPMFindCreateCommand_f");
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1].args, (std::vector<std::string>{"\"missing/cmd\"", "null", "0"}));
    EXPECT_EQ(calls[2].args, (std::vector<std::string>{"\"mine/cmd\"", "\"Does it\"", "1"}));
    EXPECT_TRUE(PluginErrors().empty());
}

TEST(Commands, ReservedPrefixWarnsButStillCreates) {
    TwoPlugins t;
    TVPMCommandRef made = nullptr;
    RunAs("alpha.tvp", [&] { made = TVPMCreateCommand("sim/lights/toggle", "mine"); });
    EXPECT_EQ(made, kCmd);
    EXPECT_EQ(PluginErrors(),
              (std::vector<std::string>{std::to_string(t.alpha) +
                                        ":Plugin is illegally registering a command with the "
                                        "prefix sim/"}));
    EXPECT_NE(t.host.Log().find(
                  "[alpha.tvp]: It is illegal to register a command starting with sim/\n"),
              std::string::npos);
    EXPECT_EQ(t.host.Count("TVPMFindCreateCommand_f"), 1u);
}

TEST(Commands, OnlyTheExactLowerCasePrefixWarns) {
    TwoPlugins t;
    RunAs("alpha.tvp", [] {
        TVPMCreateCommand("simx/thing", "");
        TVPMCreateCommand("Sim/thing", "");
        TVPMCreateCommand("sim", "");
    });
    EXPECT_TRUE(PluginErrors().empty());
    EXPECT_EQ(t.host.Log().find("illegal"), std::string::npos);
}

TEST(Commands, NullNamesNeverReachTheHost) {
    TwoPlugins t;
    t.host.ClearCalls();
    EXPECT_EQ(TVPMFindCommand(nullptr), nullptr);
    EXPECT_EQ(TVPMCreateCommand(nullptr, nullptr), nullptr);
    EXPECT_EQ(TVPMCreateCommand("mine/cmd", nullptr), kCmd);
    EXPECT_EQ(t.host.Count("TVPMFindCreateCommand_f"), 1u);
}

TEST(Commands, BeforeHandlersRunNewestFirstAndAfterHandlersInOrder) {
    TwoPlugins t;
    t.Register("alpha.tvp", Note, 1, kA);
    t.Register("beta.tvp", Note, 1, kB);
    t.Register("alpha.tvp", Note, 0, kA);
    t.Register("beta.tvp", Note, 0, kB);
    const std::string a = std::to_string(t.alpha), b = std::to_string(t.beta);

    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 1);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"B/0/" + b, "A/0/" + a}));
    Seen().clear();
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 1);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"A/0/" + a, "B/0/" + b}));
    EXPECT_EQ(TVPMGetMyID(), 0) << "the host's context is restored";
}

TEST(Commands, PhaseFollowsDownAndUpWithUpWinning) {
    TwoPlugins t;
    t.Register("alpha.tvp", Note, 0, kA);
    TVPMCommandHook(kCmd, 1, 0, 0);
    TVPMCommandHook(kCmd, 0, 0, 0);
    TVPMCommandHook(kCmd, 0, 1, 0);
    TVPMCommandHook(kCmd, 1, 1, 0);
    const std::string a = "/" + std::to_string(t.alpha);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"A/0" + a, "A/1" + a, "A/2" + a, "A/2" + a}));
}

TEST(Commands, AHandlerReturningZeroConsumesTheCommand) {
    TwoPlugins t;
    t.Register("alpha.tvp", Note, 1, kA);
    t.Register("beta.tvp", NoteAndStop, 1, kB);  // newest: runs first
    t.Register("alpha.tvp", NoteAndStop, 0, kA);
    t.Register("beta.tvp", Note, 0, kB);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 0);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 0);
    const std::string a = std::to_string(t.alpha), b = std::to_string(t.beta);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"B/0/" + b, "A/0/" + a}));
}

TEST(Commands, CommandsWithoutHandlersGoOn) {
    TwoPlugins t;
    t.Register("alpha.tvp", NoteAndStop, 1, kA);
    EXPECT_EQ(TVPMCommandHook(kOther, 1, 0, 1), 1);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 1) << "only a before-handler exists";
    RunAs("alpha.tvp", [] { TVPMUnregisterCommandHandler(kCmd, NoteAndStop, 1, kA); });
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 1) << "an emptied chain";
    EXPECT_TRUE(Seen().empty());
}

TEST(Commands, ChainSurvivesAPluginDisabledBetweenPhases) {
    TwoPlugins t;
    t.Register("alpha.tvp", Note, 1, kA);
    t.Register("beta.tvp", NoteAndStop, 1, kB);
    const std::string a = std::to_string(t.alpha), b = std::to_string(t.beta);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 0);
    TVPMDisablePlugin(t.beta);
    EXPECT_EQ(TVPMCommandHook(kCmd, 0, 0, 1), 1) << "beta's stop is skipped with beta";
    TVPMEnablePlugin(t.beta);
    EXPECT_EQ(TVPMCommandHook(kCmd, 0, 1, 1), 0);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"B/0/" + b, "A/1/" + a, "B/2/" + b}));
}

TEST(Commands, UnregisterRemovesOneOwnMatchingRegistration) {
    TwoPlugins t;
    t.Register("alpha.tvp", Note, 0, kA);
    t.Register("alpha.tvp", Note, 0, kA);  // no duplicate check: runs twice
    t.Register("alpha.tvp", Note, 0, kC);
    TVPMCommandHook(kCmd, 1, 0, 0);
    EXPECT_EQ(Seen().size(), 3u);

    // Someone else's, a wrong table and a wrong refcon remove nothing.
    RunAs("beta.tvp", [] { TVPMUnregisterCommandHandler(kCmd, Note, 0, kA); });
    RunAs("alpha.tvp", [] {
        TVPMUnregisterCommandHandler(kCmd, Note, 1, kA);
        TVPMUnregisterCommandHandler(kCmd, Note, 0, kB);
    });
    Seen().clear();
    TVPMCommandHook(kCmd, 1, 0, 0);
    EXPECT_EQ(Seen().size(), 3u);

    RunAs("alpha.tvp", [] { TVPMUnregisterCommandHandler(kCmd, Note, 0, kA); });
    Seen().clear();
    TVPMCommandHook(kCmd, 1, 0, 0);
    const std::string a = "/0/" + std::to_string(t.alpha);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"A" + a, "C" + a}));
}

namespace {
int UnregisterSelf(TVPMCommandRef cmd, TVPMCommandPhase phase, void* refcon) {
    Note(cmd, phase, refcon);
    TVPMUnregisterCommandHandler(cmd, UnregisterSelf, 0, refcon);
    return 1;
}
}  // namespace

TEST(Commands, AHandlerMayUnregisterItselfWhileRunning) {
    TwoPlugins t;
    t.Register("alpha.tvp", UnregisterSelf, 0, kA);
    t.Register("beta.tvp", Note, 0, kB);
    TVPMCommandHook(kCmd, 1, 0, 0);
    TVPMCommandHook(kCmd, 0, 1, 0);
    const std::string a = std::to_string(t.alpha), b = std::to_string(t.beta);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"A/0/" + a, "B/0/" + b, "B/2/" + b}));
}

TEST(Commands, BeginEndAndOnceReachTheHost) {
    TwoPlugins t;
    t.host.ClearCalls();
    RunAs("alpha.tvp", [] {
        TVPMCommandOnce(kCmd);
        TVPMCommandBegin(kOther);
        TVPMCommandEnd(kOther);
    });
    EXPECT_EQ(t.host.SlotSequence({"TVPMDoCommandBegin_f", "TVPMDoCommandEnd_f"}),
              (std::vector<std::string>{"TVPMDoCommandBegin_f", "TVPMDoCommandEnd_f",
                                        "TVPMDoCommandBegin_f", "TVPMDoCommandEnd_f"}));
    for (const HostCall& c : t.host.CallsTo("TVPMDoCommandBegin_f"))
        EXPECT_TRUE(c.args[0] == PtrArg(kCmd) || c.args[0] == PtrArg(kOther));
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 0u) << "nothing is held";
}

TEST(Commands, HeldCommandRepeatsPausesWhileDisabledAndIsReleasedAtUnload) {
    TwoPlugins t;
    RunAs("alpha.tvp", [] { TVPMCommandBegin(kCmd); });
    RunAs("beta.tvp", [] { TVPMCommandBegin(kOther); });
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 2u);

    TVPMDisablePlugin(t.alpha);
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    auto repeats = t.host.CallsTo("TVPMDoCommandContinue_f");
    ASSERT_EQ(repeats.size(), 1u);
    EXPECT_EQ(repeats[0].args[0], PtrArg(kOther));
    EXPECT_EQ(t.host.Count("TVPMDoCommandEnd_f"), 0u) << "disabling does not release";

    TVPMEnablePlugin(t.alpha);
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 2u) << "repeats resume";

    t.host.ClearCalls();
    t.host.Shutdown();
    auto ends = t.host.CallsTo("TVPMDoCommandEnd_f");
    ASSERT_EQ(ends.size(), 2u);
    // Plugins are unloaded in ID order.
    const bool alphaFirst = t.alpha < t.beta;
    EXPECT_EQ(ends[0].args[0], PtrArg(alphaFirst ? kCmd : kOther));
    EXPECT_EQ(ends[1].args[0], PtrArg(alphaFirst ? kOther : kCmd));
}

TEST(Commands, APluginDisabledDuringTheRepeatPassIsNotRepeatedInIt) {
    TwoPlugins t;
    // The map is walked in ascending ID: the first plugin's repeat disables the second.
    static TVPMPluginID s_second;
    const TVPMPluginID first = std::min(t.alpha, t.beta);
    s_second = std::max(t.alpha, t.beta);
    const std::string firstKey = first == t.alpha ? "alpha.tvp" : "beta.tvp";
    const std::string secondKey = first == t.alpha ? "beta.tvp" : "alpha.tvp";
    RunAs(firstKey, [] { TVPMCommandBegin(kCmd); });
    RunAs(secondKey, [] { TVPMCommandBegin(kOther); });
    t.host.On<&TVPMHooks::TVPMDoCommandContinue_f>([](void* cmd) {
        if (cmd == kCmd) TVPMDisablePlugin(s_second);
    });
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    auto repeats = t.host.CallsTo("TVPMDoCommandContinue_f");
    ASSERT_EQ(repeats.size(), 1u);
    EXPECT_EQ(repeats[0].args[0], PtrArg(kCmd));
}

TEST(Commands, HeldCommandsRepeatOnTheRepeatEventAndButtonsOnTheFrame) {
    TwoPlugins t;
    RunAs("alpha.tvp", [] {
        TVPMCommandBegin(kCmd);
        TVPMCommandButtonPress(4);
    });
    t.host.ClearCalls();
    t.host.RunFrame();
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 0u);
    EXPECT_EQ(t.host.Count("TVPMCommandButtonPress_f"), 1u);
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 1u);
    EXPECT_EQ(t.host.Count("TVPMCommandButtonPress_f"), 0u);
}

TEST(Commands, HeldCommandsAreASet) {
    TwoPlugins t;
    RunAs("alpha.tvp", [] {
        TVPMCommandBegin(kCmd);
        TVPMCommandBegin(kCmd);
    });
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 1u);
    RunAs("alpha.tvp", [] { TVPMCommandEnd(kCmd); });
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 0u);
    t.host.Shutdown();
    EXPECT_EQ(t.host.Count("TVPMDoCommandEnd_f"), 0u) << "nothing is left to release";
}

TEST(Commands, AnotherPluginsEndDoesNotReleaseMyCommand) {
    TwoPlugins t;
    RunAs("alpha.tvp", [] { TVPMCommandBegin(kCmd); });
    RunAs("beta.tvp", [] { TVPMCommandEnd(kCmd); });  // passed to the host all the same
    EXPECT_EQ(t.host.Count("TVPMDoCommandEnd_f"), 1u);
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 1u);
}

namespace {
// Releases the command from within its own repeat, as a plugin reacting to
// the continue phase would.
int EndOnContinue(TVPMCommandRef cmd, TVPMCommandPhase phase, void*) {
    if (phase == tvpm_CommandContinue) TVPMCommandEnd(cmd);
    return 1;
}
}  // namespace

TEST(Commands, ACommandEndedDuringItsOwnRepeatIsNotRepeatedAgain) {
    TwoPlugins t;
    t.host.On<&TVPMHooks::TVPMDoCommandContinue_f>([](void* cmd) {
        if (TVPMCommandHook(cmd, 0, 0, 1)) TVPMCommandHook(cmd, 0, 0, 0);
    });
    RunAs("alpha.tvp", [] {
        TVPMRegisterCommandHandler(kCmd, EndOnContinue, 1, nullptr);
        TVPMCommandBegin(kCmd);
        TVPMCommandBegin(kOther);
    });
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    auto repeats = t.host.CallsTo("TVPMDoCommandContinue_f");
    ASSERT_EQ(repeats.size(), 1u);
    EXPECT_EQ(repeats[0].args[0], PtrArg(kOther));
}

TEST(Commands, UnknownRefsPassThroughUnchanged) {
    TwoPlugins t;
    int stranger = 0;
    void* ref = &stranger;
    t.host.ClearCalls();
    RunAs("alpha.tvp", [ref] {
        TVPMCommandBegin(ref);
        TVPMCommandEnd(ref);
        TVPMCommandOnce(ref);
    });
    for (const HostCall& c : t.host.Calls()) EXPECT_EQ(c.args.at(0), PtrArg(ref)) << c.slot;
    EXPECT_EQ(t.host.Calls().size(), 4u);
    EXPECT_EQ(TVPMCommandHook(ref, 1, 0, 1), 1);
    EXPECT_EQ(TVPMCommandHook(nullptr, 0, 1, 0), 1);
}

TEST(Commands, UnloadingAnAircraftPluginReleasesItsCommandsAndDropsItsHandlers) {
    TwoPlugins t;
    t.host.userAircraftPath = t.sim.AddAircraft("glider", {"acfp"}, BuiltPlugin("scripted.tvp"));
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    ASSERT_GT(IdOf("acfp"), 0);
    t.Register("acfp", Note, 1, kC);
    t.Register("acfp", Note, 0, kC);
    t.Register("alpha.tvp", Note, 0, kA);
    RunAs("acfp", [] { TVPMCommandBegin(kOther); });

    t.host.ClearCalls();
    TVPMEventHook(tvpm_PlaneUnloaded, 0, 0, 0, 0);
    auto ends = t.host.CallsTo("TVPMDoCommandEnd_f");
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_EQ(ends[0].args[0], PtrArg(kOther));

    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 1);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 1);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"A/0/" + std::to_string(t.alpha)}));
    t.host.ClearCalls();
    TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 0u);
}

namespace {
// Each button-slot call as "<ids up to the terminator>|<isRelease>|<phase>".
std::vector<std::string>& ButtonCalls() {
    static std::vector<std::string> calls;
    return calls;
}
}  // namespace

TEST(Commands, LegacyButtonsArePressedHeldEveryFrameAndReleased) {
    TwoPlugins t;
    t.host.On<&TVPMHooks::TVPMCommandButtonPress_f>(
        [](TVPMCommandButtonID* list, int isRelease, int phase) {
            std::string ids;
            for (const TVPMCommandButtonID* b = list; *b; ++b) ids += std::to_string(*b) + ",";
            ButtonCalls().push_back(ids + "|" + std::to_string(isRelease) + "|" +
                                    std::to_string(phase));
        });
    t.host.RunFrame();
    EXPECT_TRUE(ButtonCalls().empty()) << "nothing held, nothing sent";

    RunAs("alpha.tvp", [] { TVPMCommandButtonPress(5); });
    RunAs("beta.tvp", [] { TVPMCommandButtonPress(7); });
    EXPECT_EQ(ButtonCalls(), (std::vector<std::string>{"5,|0|0", "5,|0|1", "7,|0|0", "7,|0|1"}));
    ButtonCalls().clear();
    t.host.RunFrame();
    EXPECT_EQ(ButtonCalls(), (std::vector<std::string>{"5,7,|0|1"}));

    ButtonCalls().clear();
    TVPMCommandButtonRelease(5);
    EXPECT_EQ(ButtonCalls(), (std::vector<std::string>{"5,|1|0", "5,|1|1"}));
    ButtonCalls().clear();
    t.host.RunFrame();
    t.host.RunFrame();
    EXPECT_EQ(ButtonCalls(), (std::vector<std::string>{"7,|0|1", "7,|0|1"}));

    ButtonCalls().clear();
    TVPMCommandButtonRelease(7);
    TVPMCommandButtonRelease(9);  // never pressed: still sent, nothing else changes
    t.host.RunFrame();
    EXPECT_EQ(ButtonCalls(),
              (std::vector<std::string>{"7,|1|0", "7,|1|1", "9,|1|0", "9,|1|1"}));
}

TEST(Commands, AButtonPressedTwiceNeedsTwoReleases) {
    TwoPlugins t;
    TVPMCommandButtonPress(3);
    TVPMCommandButtonPress(3);
    TVPMCommandButtonRelease(3);
    t.host.ClearCalls();
    t.host.RunFrame();
    EXPECT_EQ(t.host.Count("TVPMCommandButtonPress_f"), 1u);
    TVPMCommandButtonRelease(3);
    t.host.ClearCalls();
    t.host.RunFrame();
    EXPECT_EQ(t.host.Count("TVPMCommandButtonPress_f"), 0u);
}

namespace {
// An aircraft plugin's handler that reloads the aircraft plugins, its own
// plugin included, from within the dispatch.
int ReloadAircraftPlugins(TVPMCommandRef cmd, TVPMCommandPhase phase, void* refcon) {
    Note(cmd, phase, refcon);
    TVPMReloadACFPlugins();
    return 1;
}
}  // namespace

TEST(Commands, AHandlerWhosePluginIsUnloadedDuringDispatchIsNotCalledAgain) {
    TwoPlugins t;
    t.host.userAircraftPath = t.sim.AddAircraft("glider", {"acfp"}, BuiltPlugin("scripted.tvp"));
    TVPMEventHook(tvpm_PlaneLoaded, 0, 0, 0, 0);
    t.Register("alpha.tvp", Note, 0, kA);
    t.Register("acfp", ReloadAircraftPlugins, 0, kC);
    t.Register("beta.tvp", Note, 0, kB);
    const std::string a = std::to_string(t.alpha), b = std::to_string(t.beta);
    const std::string c = std::to_string(IdOf("acfp"));

    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 1);
    ASSERT_GT(IdOf("acfp"), 0) << "reloaded";
    EXPECT_EQ(TVPMCommandHook(kCmd, 0, 1, 0), 1);
    EXPECT_EQ(Seen(), (std::vector<std::string>{"A/0/" + a, "C/0/" + c, "B/0/" + b, "A/2/" + a,
                                                "B/2/" + b}));
}
