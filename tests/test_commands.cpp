// test_commands.cpp: commands as plugins and the simulator see them: finding and creating, handler chains, held commands, legacy keys and buttons.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AlphaBeta.h"
#include "TVPM/TVPMUtilities.h"

using namespace tvpmtest;

namespace {

// Host-side command objects: any distinct addresses will do.
int gCmdA, gCmdB;
TVPMCommandRef const kCmd = &gCmdA;
TVPMCommandRef const kOther = &gCmdB;
const std::string kCmdArg = FormatArg(kCmd), kOtherArg = FormatArg(kOther);

using Lines = std::vector<std::string>;

// What handlers saw, as "<refcon><phase>@<current plugin's name>".
Lines s_seen;
int Note(TVPMCommandRef, TVPMCommandPhase phase, void* refcon) {
    char name[256] = "";
    TVPMGetPluginInfo(TVPMGetMyID(), name, nullptr, nullptr, nullptr);
    s_seen.push_back(static_cast<const char*>(refcon) + std::to_string(phase) + "@" + name);
    return 1;
}
int NoteAndStop(TVPMCommandRef cmd, TVPMCommandPhase phase, void* refcon) {
    Note(cmd, phase, refcon);
    return 0;
}

char kA[] = "A", kB[] = "B", kC[] = "C";

struct TwoPlugins : AlphaBeta {
    void Register(const std::string& key, TVPMCommandCallback_f cb, int before, char* refcon) {
        RunAs(key, [=] { TVPMRegisterCommandHandler(kCmd, cb, before, refcon); });
    }
    // The first argument of every call to slot, in order.
    Lines FirstArgs(const std::string& slot) const {
        Lines refs;
        for (const HostCall& c : host.CallsTo(slot)) refs.push_back(c.args[0]);
        return refs;
    }
    // One repeat pass: the commands the host is asked to continue, in order.
    Lines RepeatPass() {
        host.ClearCalls();
        TVPMEventHook(tvpm_CommandRepeat, 0, 0, 0, 0);
        return FirstArgs("TVPMDoCommandContinue_f");
    }
};

}  // namespace

TEST(Commands, FindOnlyFindsAndCreatingWarnsOnlyForTheExactSimPrefix) {
    TwoPlugins t;
    t.host.On<&TVPMHooks::TVPMFindCreateCommand_f>([](const char* name, const char*, int create) -> void* {
        return std::string(name) == "known/cmd" || create ? kCmd : nullptr;
    });
    EXPECT_EQ(TVPMFindCommand("known/cmd"), kCmd);
    EXPECT_EQ(TVPMFindCommand("missing/cmd"), nullptr);
    EXPECT_EQ(TVPMFindCommand(nullptr), nullptr);
    const struct {
        const char *name, *description, *passedDescription;
        bool warns;
    } cases[] = {
        {"mine/cmd", "Does it", "\"Does it\"", false}, {"mine/cmd", nullptr, "\"\"", false},
        {"sim/lights/toggle", "mine", "\"mine\"", true}, {"simx/thing", "", "\"\"", false},
        {"Sim/thing", "", "\"\"", false},                {"sim", "", "\"\"", false},
        {nullptr, nullptr, nullptr, false},
    };
    const std::string error =
        std::to_string(t.alpha) + ":Plugin is illegally registering a command with the prefix sim/";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name ? c.name : "null");
        t.host.ClearCalls();
        PluginErrors().clear();
        EXPECT_EQ(RunAs<TVPMCommandRef>("alpha.tvp", [&] { return TVPMCreateCommand(c.name, c.description); }),
                  c.name ? kCmd : nullptr);
        const Lines passed = c.name ? Lines{FormatArg(c.name), c.passedDescription, "1"} : Lines{};
        auto calls = t.host.CallsTo("TVPMFindCreateCommand_f");
        EXPECT_EQ(calls.empty() ? Lines{} : calls[0].args, passed);
        EXPECT_EQ(PluginErrors(), c.warns ? Lines{error} : Lines{});
        EXPECT_EQ(t.host.Log(), c.warns ? "[alpha.tvp]: It is illegal to register a command starting with sim/\n" : "");
    }
}

namespace {
int UnregisterSelf(TVPMCommandRef cmd, TVPMCommandPhase phase, void* refcon) {
    Note(cmd, phase, refcon);
    TVPMUnregisterCommandHandler(cmd, UnregisterSelf, 0, refcon);
    return 1;
}
}  // namespace

TEST(Commands, BeforeHandlersRunNewestFirstAfterHandlersInOrderAndZeroConsumes) {
    TwoPlugins t;
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 1) << "no handlers";
    t.Register("alpha.tvp", Note, 1, kA);
    t.Register("beta.tvp", Note, 1, kB);
    t.Register("alpha.tvp", Note, 0, kA);
    t.Register("alpha.tvp", Note, 0, kA);  // no duplicate check
    t.Register("beta.tvp", UnregisterSelf, 0, kB);
    t.Register("alpha.tvp", Note, 0, kC);
    // Someone else's, a wrong table and a wrong refcon remove nothing; a match removes one.
    RunAs("beta.tvp", [] { TVPMUnregisterCommandHandler(kCmd, Note, 0, kA); });
    RunAs("alpha.tvp", [] {
        TVPMUnregisterCommandHandler(kCmd, Note, 1, kC);
        TVPMUnregisterCommandHandler(kCmd, Note, 0, kB);
        TVPMUnregisterCommandHandler(kCmd, Note, 0, kA);
    });
    s_seen.clear();
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 1);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 1);
    EXPECT_EQ(TVPMGetMyID(), 0) << "the host's context is restored";
    EXPECT_EQ(TVPMCommandHook(kOther, 1, 0, 1), 1);
    // Held, up, and up winning over down; beta's handler removed itself while running.
    TVPMCommandHook(kCmd, 0, 0, 0);
    TVPMCommandHook(kCmd, 0, 1, 0);
    TVPMCommandHook(kCmd, 1, 1, 0);
    EXPECT_EQ(s_seen, (Lines{"B0@beta.tvp", "A0@alpha.tvp", "A0@alpha.tvp", "B0@beta.tvp", "C0@alpha.tvp",
                             "A1@alpha.tvp", "C1@alpha.tvp", "A2@alpha.tvp", "C2@alpha.tvp", "A2@alpha.tvp",
                             "C2@alpha.tvp"}));

    t.Register("beta.tvp", NoteAndStop, 1, kC);  // newest: runs first
    t.Register("alpha.tvp", NoteAndStop, 0, kB);
    s_seen.clear();
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 1), 0);
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 0);
    EXPECT_EQ(s_seen, (Lines{"C0@beta.tvp", "A0@alpha.tvp", "C0@alpha.tvp", "B0@alpha.tvp"}));
}

namespace {
TVPMPluginID s_beta;
// Ends its command from within the command's own repeat and disables beta, as
// a plugin reacting to the continue phase may.
int EndAndDisableBetaOnContinue(TVPMCommandRef cmd, TVPMCommandPhase phase, void*) {
    if (phase == tvpm_CommandContinue) {
        TVPMCommandEnd(cmd);
        TVPMDisablePlugin(s_beta);
    }
    return 1;
}
}  // namespace

TEST(Commands, HeldCommandsRepeatInPluginOrderPauseWhileDisabledAndAreReleasedAtUnload) {
    TwoPlugins t;
    t.host.ClearCalls();
    RunAs("alpha.tvp", [] {
        TVPMCommandOnce(kOther);
        TVPMCommandBegin(kCmd);
        TVPMCommandBegin(kCmd);  // held commands are a set
    });
    RunAs("beta.tvp", [] {
        TVPMCommandBegin(kOther);
        TVPMCommandEnd(kCmd);  // not beta's: passed on, alpha's stays held
    });
    EXPECT_EQ(t.host.SlotSequence({"TVPMDoCommandBegin_f", "TVPMDoCommandEnd_f"}),
              (Lines{"TVPMDoCommandBegin_f", "TVPMDoCommandEnd_f", "TVPMDoCommandBegin_f", "TVPMDoCommandBegin_f",
                     "TVPMDoCommandBegin_f", "TVPMDoCommandEnd_f"}));
    EXPECT_EQ(t.FirstArgs("TVPMDoCommandBegin_f").at(0), kOtherArg);
    EXPECT_EQ(t.RepeatPass(), (Lines{kCmdArg, kOtherArg})) << "alpha's, then beta's";
    TVPMDisablePlugin(t.alpha);
    EXPECT_EQ(t.RepeatPass(), Lines{kOtherArg});
    EXPECT_EQ(t.host.Count("TVPMDoCommandEnd_f"), 0u) << "disabling does not release";
    TVPMEnablePlugin(t.alpha);
    t.host.ClearCalls();
    t.host.RunFrame();
    EXPECT_EQ(t.host.Count("TVPMDoCommandContinue_f"), 0u) << "only the repeat event repeats";

    // The pass rechecks what each continue changed: alpha's ends its own command and disables beta.
    s_beta = t.beta;
    t.host.On<&TVPMHooks::TVPMDoCommandContinue_f>([](void* cmd) { TVPMCommandHook(cmd, 0, 0, 1); });
    t.Register("alpha.tvp", EndAndDisableBetaOnContinue, 1, nullptr);
    EXPECT_EQ(t.RepeatPass(), Lines{kCmdArg}) << "alpha's repeats resumed";
    TVPMEnablePlugin(t.beta);
    EXPECT_EQ(t.RepeatPass(), Lines{kOtherArg});
    t.host.ClearCalls();
    t.host.Shutdown();
    EXPECT_EQ(t.FirstArgs("TVPMDoCommandEnd_f"), Lines{kOtherArg});
}

namespace {
// Each button-slot call as "<ids up to the terminator>|<isRelease>|<phase>".
Lines s_buttons;
void RecordButtons(TVPMCommandButtonID* list, int isRelease, int phase) {
    std::string ids;
    for (const TVPMCommandButtonID* b = list; *b; ++b) ids += std::to_string(*b) + ",";
    s_buttons.push_back(ids + "|" + std::to_string(isRelease) + "|" + std::to_string(phase));
}
}  // namespace

TEST(Commands, LegacyButtonsArePressedHeldEveryFrameAndReleasedOncePerPress) {
    TwoPlugins t;
    t.host.On<&TVPMHooks::TVPMCommandButtonPress_f>(RecordButtons);
    t.host.RunFrame();
    RunAs("alpha.tvp", [] { TVPMCommandButtonPress(5); });
    RunAs("beta.tvp", [] { TVPMCommandButtonPress(7); });
    TVPMCommandButtonPress(7);
    t.host.RunFrame();
    EXPECT_EQ(s_buttons, (Lines{"5,|0|0", "5,|0|1", "7,|0|0", "7,|0|1", "7,|0|0", "7,|0|1", "5,7,7,|0|1"}));
    s_buttons.clear();
    TVPMCommandButtonRelease(5);
    TVPMCommandButtonRelease(7);
    t.host.RunFrame();
    TVPMCommandButtonRelease(7);
    TVPMCommandButtonRelease(9);  // never pressed: still sent, nothing else changes
    t.host.RunFrame();
    EXPECT_EQ(s_buttons,
              (Lines{"5,|1|0", "5,|1|1", "7,|1|0", "7,|1|1", "7,|0|1", "7,|1|0", "7,|1|1", "9,|1|0", "9,|1|1"}));
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

TEST(Commands, UnloadingAPluginDuringDispatchDropsItsHandlersAndReleasesItsCommands) {
    TwoPlugins t;
    t.LoadAircraftPlugin();
    t.Register("alpha.tvp", Note, 0, kA);
    t.Register("acfp", ReloadAircraftPlugins, 0, kC);
    t.Register("acfp", Note, 1, kC);
    t.Register("beta.tvp", Note, 0, kB);
    RunAs("acfp", [] { TVPMCommandBegin(kOther); });

    t.host.ClearCalls();
    EXPECT_EQ(TVPMCommandHook(kCmd, 1, 0, 0), 1);
    ASSERT_GT(IdOf("acfp"), 0) << "reloaded";
    EXPECT_EQ(t.FirstArgs("TVPMDoCommandEnd_f"), Lines{kOtherArg});
    EXPECT_TRUE(t.RepeatPass().empty());
    EXPECT_EQ(TVPMCommandHook(kCmd, 0, 1, 1), 1);
    EXPECT_EQ(TVPMCommandHook(kCmd, 0, 1, 0), 1);
    EXPECT_EQ(s_seen, (Lines{"A0@alpha.tvp", "C0@acfp", "B0@beta.tvp", "A2@alpha.tvp",
                             "B2@beta.tvp"}));
}
