// TVPMUtilitiesCommands.cpp: commands, their handler chains, commands held by plugins and legacy keys and buttons.
#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

struct TVPMCommandCB_t {
    TVPMCommandCallback_f callback;
    TVPMPluginID plugin;
    void* refcon;

    bool operator==(const TVPMCommandCB_t& o) const {
        return callback == o.callback && plugin == o.plugin && refcon == o.refcon;
    }
};

// One command's handlers in registration order. Before-handlers are walked
// newest first, after-handlers oldest first.
using TVPMCommandCBList = TVPMRecordSet<TVPMCommandCB_t>;
using TVPMCommandCBTable = std::map<TVPMCommandRef, TVPMCommandCBList>;
using TVPMCommandMap = std::map<TVPMPluginID, std::set<TVPMCommandRef>>;

TVPMCommandCBTable gPreHooks;
TVPMCommandCBTable gPostHooks;
TVPMCommandMap gCommandMap;
std::vector<int> gButtons;

size_t CountHandlersOf(TVPMPluginID id) {
    size_t n = 0;
    for (const TVPMCommandCBTable* table : {&gPreHooks, &gPostHooks})
        for (const auto& entry : *table) n += entry.second.CountOwnedBy(id);
    return n;
}

TVPM_FAMILY_RECORD_COUNT("command handlers", CountHandlersOf);
TVPM_FAMILY_RECORD_COUNT("held commands", [](TVPMPluginID id) {
    auto found = gCommandMap.find(id);
    return found == gCommandMap.end() ? size_t{0} : found->second.size();
});

constexpr const char* kSimPrefix = "sim/";
constexpr size_t kSimPrefixLength = 4;

TVPMCommandCBTable& TableFor(int inBefore) { return inBefore ? gPreHooks : gPostHooks; }

TVPMCommandPhase PhaseFor(int inDown, int inUp) {
    if (inUp) return tvpm_CommandEnd;
    if (inDown) return tvpm_CommandBegin;
    return tvpm_CommandContinue;
}

void DropPluginHandlers(TVPMCommandCBTable& table, TVPMPluginID id) {
    for (auto& entry : table) entry.second.RemoveOwnedBy(id);
}

bool IsHeldBy(TVPMPluginID id, TVPMCommandRef cmd) {
    auto found = gCommandMap.find(id);
    return found != gCommandMap.end() && found->second.count(cmd) != 0;
}

void PressButton(TVPMCommandButtonID button, int isRelease) {
    TVPMCommandButtonID list[2] = {button, 0};
    gHooks->TVPMCommandButtonPress_f(list, isRelease, 0);
    gHooks->TVPMCommandButtonPress_f(list, isRelease, 1);
}

}  // namespace

TVPM_API TVPMCommandRef TVPMFindCommand(const char* inName) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inName) return nullptr;
    return gHooks->TVPMFindCreateCommand_f(inName, nullptr, 0);
}

TVPM_API TVPMCommandRef TVPMCreateCommand(const char* inName, const char* inDescription) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inName) return nullptr;
    if (strncmp(inName, kSimPrefix, kSimPrefixLength) == 0) {
        // A warning only: the command is still created.
        TVPMSendError("Plugin is illegally registering a command with the prefix sim/");
        TVPMLogPluginWarning("It is illegal to register a command starting with sim/");
    }
    return gHooks->TVPMFindCreateCommand_f(inName, inDescription ? inDescription : "", 1);
}

TVPM_API void TVPMCommandBegin(TVPMCommandRef inCommand) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gCommandMap[gDispatchedPlugin].insert(inCommand);
    gHooks->TVPMDoCommandBegin_f(inCommand);
}

TVPM_API void TVPMCommandEnd(TVPMCommandRef inCommand) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    const TVPMPluginID me = gDispatchedPlugin;
    gHooks->TVPMDoCommandEnd_f(inCommand);
    gCommandMap[me].erase(inCommand);
}

TVPM_API void TVPMCommandOnce(TVPMCommandRef inCommand) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gHooks->TVPMDoCommandBegin_f(inCommand);
    gHooks->TVPMDoCommandEnd_f(inCommand);
}

TVPM_API void TVPMRegisterCommandHandler(TVPMCommandRef inCommand, TVPMCommandCallback_f inHandler,
                                         int inBefore, void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inHandler) return;
    TableFor(inBefore)[inCommand].Add(new TVPMCommandCB_t{inHandler, gDispatchedPlugin, inRefcon});
}

TVPM_API void TVPMUnregisterCommandHandler(TVPMCommandRef inCommand,
                                           TVPMCommandCallback_f inHandler, int inBefore,
                                           void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    TVPMCommandCBList& list = TableFor(inBefore)[inCommand];
    const TVPMCommandCB_t wanted{inHandler, gDispatchedPlugin, inRefcon};
    TVPMCommandCB_t* found = nullptr;
    for (TVPMSetWalk<TVPMCommandCB_t> walk(list, inBefore != 0); TVPMCommandCB_t* cb = walk.Next();)
        if (*cb == wanted) {
            found = cb;
            break;
        }
    if (found) list.Remove(found);
}

int TVPMDispatchCommandHook(void* inCmdRef, int inDown, int inUp, int inBefore) {
    TVPMCommandCBTable& table = TableFor(inBefore);
    auto found = table.find(inCmdRef);
    if (found == table.end() || found->second.empty()) return 1;
    const TVPMCommandPhase phase = PhaseFor(inDown, inUp);
    for (TVPMSetWalk<TVPMCommandCB_t> walk(found->second, inBefore != 0);
         TVPMCommandCB_t* cb = walk.Next();) {
        int passOn = 1;
        TVPMCallPlugin(cb->plugin, TVPMCallSite::kCommand,
                       [&] { passOn = cb->callback(inCmdRef, phase, cb->refcon); });
        if (passOn == 0) return 0;
    }
    return 1;
}

void TVPMCommandRepeatHook() {
    // Continue calls may reach handlers that begin or end commands or disable
    // plugins, so the held commands are collected first, and each plugin's
    // state and each command are re-checked when the pass reaches them. The
    // scratch list keeps its capacity between frames.
    static std::vector<std::pair<TVPMPluginID, TVPMCommandRef>> s_toRepeat;
    static bool s_repeating = false;
    if (s_repeating) return;
    s_repeating = true;
    s_toRepeat.clear();
    for (const auto& entry : gCommandMap)
        for (TVPMCommandRef cmd : entry.second) s_toRepeat.emplace_back(entry.first, cmd);
    TVPMPluginID plugin = TVPM_NO_PLUGIN_ID;
    bool pluginEnabled = false;
    for (const auto& held : s_toRepeat) {
        if (held.first != plugin) {  // -1 never is enabled
            plugin = held.first;
            pluginEnabled = TVPMIsPluginEnabled(plugin) != 0;
        }
        if (pluginEnabled && IsHeldBy(held.first, held.second))
            gHooks->TVPMDoCommandContinue_f(held.second);
    }
    s_repeating = false;
}

TVPM_API void TVPMCommandKeyStroke(TVPMCommandKeyID inKey) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    gHooks->TVPMCommandKeyStroke_f(inKey);
}

TVPM_API void TVPMCommandButtonPress(TVPMCommandButtonID inButton) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    PressButton(inButton, 0);
    gButtons.push_back(inButton);
}

TVPM_API void TVPMCommandButtonRelease(TVPMCommandButtonID inButton) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    PressButton(inButton, 1);
    auto found = std::find(gButtons.begin(), gButtons.end(), inButton);
    if (found != gButtons.end()) gButtons.erase(found);
}

void TVPMDoRepeatedButtons() {
    if (gButtons.empty()) return;
    // The host gets a zero-terminated copy, so that a press or release made
    // while it works on the list cannot move it.
    static std::vector<TVPMCommandButtonID> s_held;
    s_held.assign(gButtons.begin(), gButtons.end());
    s_held.push_back(0);
    gHooks->TVPMCommandButtonPress_f(s_held.data(), 0, 1);
}

void TVPMCommandCleanupHook(TVPMPluginID id) {
    auto found = gCommandMap.find(id);
    if (found != gCommandMap.end()) {
        std::set<TVPMCommandRef> held = std::move(found->second);
        gCommandMap.erase(found);
        for (TVPMCommandRef cmd : held) gHooks->TVPMDoCommandEnd_f(cmd);
    }
    DropPluginHandlers(gPreHooks, id);
    DropPluginHandlers(gPostHooks, id);
}
