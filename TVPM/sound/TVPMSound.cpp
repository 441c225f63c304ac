// TVPMSound.cpp: the simulator's audio buses and each plugin's channel groups on them, and the family's lifecycle hooks.
#include <string>
#include <utility>
#include <vector>

#include "TVPMPrivate.h"
#include "TVPMSoundPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

// The buses of the simulator's Studio project, by GUID. kMainBus, kExtProcessedBus
// and kRadioBus have no bus value of their own.
const char* kMainBus = "9f08114d-36ec-44cc-b8bf-b2babda09f9e";
const char* kMasterBus = "7f7c05a4-e05a-4d44-94fe-d4691147a9b7";
const char* kCopilotBus = "e3492bec-f854-4fbb-b2bc-23586269032e";
const char* kExtProcessedBus = "a5a85a81-afd5-4425-9dc2-6e50f7776e6a";
const char* kExtProcessedAcfBus = "06db5351-0b2f-4648-b97a-a33b40a00e11";
const char* kExtProcessedEnvBus = "b6c156f1-9861-405c-a622-92b2ab8010a7";
const char* kExtUnprocessedBus = "8dbbc9d7-a954-4ed0-b1f1-f8111b03cbd1";
const char* kIntBus = "751f5066-4651-4afb-a410-4cb9db0894c9";
const char* kRadioBus = "d8526059-b27c-4eae-9b14-a1ee1cb3dfa1";
const char* kCOM1Bus = "fdebe6fb-b9d1-4739-a7ef-795062ed899d";
const char* kCOM2Bus = "9cf53f8a-68b5-4d4b-8136-d8b5d0971f10";
const char* kPilotBus = "c4c4d185-3205-4f8c-a8b3-32d8172f8806";
const char* kGNDBus = "0371a26e-638b-49cd-b8d5-cd8b85306782";
const char* kUIBus = "77575f3b-b9cd-4bff-9056-637cff744a14";
[[maybe_unused]] const char* const* kUnreachableBuses[] = {&kMainBus, &kExtProcessedBus, &kRadioBus};

// Each plugin's group per bus, plugin first in key order. Plugin thread only.
std::map<std::pair<TVPMPluginID, TVPMAudioBus>, FMOD_CHANNELGROUP*> created_chan_groups;

TVPM_FAMILY_RECORD_COUNT("sound channel groups", [](TVPMPluginID id) {
    size_t n = 0;
    for (auto& [key, group] : created_chan_groups) n += key.first == id;
    return n;
});

const ChanDescriptor* FindBus(TVPMAudioBus chan) {
    auto it = kChanMap.find(chan);
    return it == kChanMap.end() ? nullptr : &it->second;
}

const ChanDescriptor* ValidBusOrError(TVPMAudioBus chan) {
    const ChanDescriptor* row = FindBus(chan);
    if (!row) TVPMSendError("The FMOD bus ID was invalid.");
    return row;
}

// The bus's own group and its system; false when the engine has none.
bool BusGroupAndSystem(const TVPMFMODEngine& e, FMOD_STUDIO_BUS* bus, FMOD_CHANNELGROUP*& group,
                       FMOD_SYSTEM*& system) {
    group = nullptr;
    system = nullptr;
    if (e.busGetChannelGroup(bus, &group) != kFMOD_OK || !group) return false;
    return e.groupGetSystemObject(group, &system) == kFMOD_OK && system;
}

FMOD_CHANNELGROUP* CreatePluginGroup(TVPMAudioBus chan, TVPMPluginID plugin,
                                     const ChanDescriptor& row, FMOD_STUDIO_BUS* bus) {
    const TVPMFMODEngine* e = TVPMFMOD();
    FMOD_CHANNELGROUP* busGroup;
    FMOD_SYSTEM* system;
    if (!e || !BusGroupAndSystem(*e, bus, busGroup, system)) return nullptr;
    const std::string name = std::string(TVPMDebugGetCurrentPluginName()) + " - " + row.Name;
    FMOD_CHANNELGROUP* group = nullptr;
    e->createChannelGroup(system, name.c_str(), &group);
    if (!group) return nullptr;
    e->groupAddGroup(busGroup, group, 1, nullptr);
    created_chan_groups[{plugin, chan}] = group;
    return group;
}

// Stops and releases a group, its children first.
void ClearGroup(const TVPMFMODEngine& e, FMOD_CHANNELGROUP* group) {
    e.groupStop(group);
    int count = 0;
    e.groupGetNumGroups(group, &count);
    // All children are listed before any is released: a release renumbers the rest.
    std::vector<FMOD_CHANNELGROUP*> children;
    for (int i = 0; i < count; ++i) {
        FMOD_CHANNELGROUP* child = nullptr;
        if (e.groupGetGroup(group, i, &child) == kFMOD_OK && child) children.push_back(child);
    }
    for (FMOD_CHANNELGROUP* child : children) ClearGroup(e, child);
    e.groupRelease(group);
}

}  // namespace

const std::map<TVPMAudioBus, ChanDescriptor> kChanMap = {
    {tvpm_AudioRadioCom1, {kCOM1Bus, "COM1"}},
    {tvpm_AudioRadioCom2, {kCOM2Bus, "COM2"}},
    {tvpm_AudioRadioPilot, {kPilotBus, "Pilot"}},
    {tvpm_AudioRadioCopilot, {kCopilotBus, "Copilot"}},
    {tvpm_AudioExteriorAircraft, {kExtProcessedAcfBus, "Exterior Aircraft"}},
    {tvpm_AudioExteriorEnvironment, {kExtProcessedEnvBus, "Exterior Environment"}},
    {tvpm_AudioExteriorUnprocessed, {kExtUnprocessedBus, "Exterior Unprocessed"}},
    {tvpm_AudioInterior, {kIntBus, "Interior"}},
    {tvpm_AudioUI, {kUIBus, "UI"}},
    {tvpm_AudioGround, {kGNDBus, "Ground Vehicles"}},
    {tvpm_Master, {kMasterBus, "Master"}},
};

FMOD_CHANNELGROUP* GetCGForPlugin(TVPMAudioBus chan, TVPMPluginID plugin) {
    auto found = created_chan_groups.find({plugin, chan});
    if (found != created_chan_groups.end()) return found->second;
    if (!gHooks || !gHooks->TVPMGetFMODBus_f) return nullptr;
    const ChanDescriptor* row = ValidBusOrError(chan);
    if (!row) return nullptr;
    FMOD_STUDIO_BUS* bus = gHooks->TVPMGetFMODBus_f(row->GUID);
    if (!bus) {
        TVPMSendError("The FMOD bus could not be retrieved.");
        return nullptr;
    }
    return CreatePluginGroup(chan, plugin, *row, bus);
}

TVPM_API FMOD_CHANNELGROUP* TVPMGetFMODChannelGroup(TVPMAudioBus chan) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!ValidBusOrError(chan)) return nullptr;
    return GetCGForPlugin(chan, TVPMGetDispatchedPlugin());
}

TVPM_API FMOD_STUDIO_SYSTEM* TVPMGetFMODStudio(void) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks && gHooks->TVPMGetFMODStudio_f ? gHooks->TVPMGetFMODStudio_f() : nullptr;
}

void TVPMFMODClearChannelGroupsInBank(TVPMPluginID who, int /*bankID: groups are kept per bus*/) {
    const TVPMFMODEngine* e = TVPMFMOD();
    for (auto it = created_chan_groups.begin(); it != created_chan_groups.end();) {
        if (who != TVPM_NO_PLUGIN_ID && it->first.first != who) {
            ++it;
            continue;
        }
        FMOD_CHANNELGROUP* group = it->second;
        it = created_chan_groups.erase(it);
        if (e) ClearGroup(*e, group);
    }
}

void TVPMFMODDisableHook(TVPMPluginID who) {
    StopPluginSounds(who);
    const TVPMFMODEngine* e = TVPMFMOD();
    if (!e) return;
    for (auto& [key, group] : created_chan_groups)
        if (key.first == who) e->groupStop(group);
}

void TVPMFMODCleanupHook(TVPMPluginID who) {
    TVPMFMODDisableHook(who);
    TVPMFMODClearChannelGroupsInBank(who, tvpm_MasterBank);
    TVPMFMODClearChannelGroupsInBank(who, tvpm_RadioBank);
    ForgetPluginSounds(who);
    const TVPMFMODEngine* e = TVPMFMOD();
    FMOD_STUDIO_SYSTEM* studio = TVPMGetFMODStudio();
    if (e && studio) e->studioUpdate(studio);
}
