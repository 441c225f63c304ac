// StandInModel.cpp: the stand-in engine's state, time and the control and inspection functions.
#include "StandInModel.h"

#include <algorithm>

namespace fmodstandin {

EndCallbacks::~EndCallbacks() {
    for (auto& [callback, channel] : pending_)
        callback(Handle<FMOD_CHANNELCONTROL>(channel), kFMOD_CHANNELCONTROL_CHANNEL,
                 kFMOD_CHANNELCONTROL_CALLBACK_END, nullptr, nullptr);
}

void EndCallbacks::Add(FMOD_CHANNELCONTROL_CALLBACK callback, uint64_t channel) {
    if (callback) pending_.emplace_back(callback, channel);
}

Engine& TheEngine() {
    static Engine engine;
    return engine;
}

void Engine::EnsureSystems() {
    if (system) return;
    system = NewId();
    studio = NewId();
    master = NewId();
    groups[master].name = "Master";
}

FMOD_RESULT Engine::TakeFailure(const char* function) {
    auto it = failNext.find(function);
    if (it == failNext.end()) return kFMOD_OK;
    const FMOD_RESULT r = it->second;
    failNext.erase(it);
    return r;
}

void Engine::End(uint64_t channel, bool stopped, EndCallbacks& out) {
    auto it = channels.find(channel);
    if (it == channels.end()) return;
    PlayInfo& play = plays[it->second.play];
    const double runsOut = play.start + sounds[it->second.sound].duration;
    play.end = stopped || play.looping ? now : std::min(now, runsOut);
    play.stopped = stopped;
    out.Add(it->second.callback, channel);
    channels.erase(it);
}

void Engine::StopGroup(uint64_t group, EndCallbacks& out) {
    std::vector<uint64_t> inGroup;
    for (auto& [id, c] : channels)
        if (c.group == group) inGroup.push_back(id);
    for (uint64_t id : inGroup) End(id, true, out);
    for (uint64_t child : groups[group].children) StopGroup(child, out);
}

FMOD_SYSTEM* System() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    e.EnsureSystems();
    return Handle<FMOD_SYSTEM>(e.system);
}

FMOD_STUDIO_SYSTEM* Studio() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    e.EnsureSystems();
    return Handle<FMOD_STUDIO_SYSTEM>(e.studio);
}

FMOD_STUDIO_BUS* Bus(const std::string& id, const std::string& name) {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    e.EnsureSystems();
    auto found = e.busesById.find(id);
    if (found != e.busesById.end()) return Handle<FMOD_STUDIO_BUS>(found->second);
    const uint64_t bus = e.NewId(), group = e.NewId();
    e.busesById[id] = bus;
    e.busGroups[bus] = group;
    e.groups[group] = Group{name, e.master, {}, name, true, true};
    e.groups[e.master].children.push_back(group);
    return Handle<FMOD_STUDIO_BUS>(bus);
}

void Advance(double seconds) {
    Engine& e = TheEngine();
    EndCallbacks ended;
    std::lock_guard<std::mutex> lock(e.mx);
    e.now += seconds;
    std::vector<uint64_t> done;
    for (auto& [id, c] : e.channels) {
        const Sound& s = e.sounds[c.sound];
        if (!s.looping && e.plays[c.play].start + s.duration <= e.now + 1e-9) done.push_back(id);
    }
    for (uint64_t id : done) e.End(id, false, ended);
}

double Now() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    return e.now;
}

bool EndChannel(FMOD_CHANNEL* channel) {
    Engine& e = TheEngine();
    EndCallbacks ended;
    std::lock_guard<std::mutex> lock(e.mx);
    if (!e.channels.count(Id(channel))) return false;
    e.End(Id(channel), false, ended);
    return true;
}

std::vector<FMOD_CHANNEL*> PlayingChannels() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    std::vector<FMOD_CHANNEL*> out;
    for (auto& [id, c] : e.channels) out.push_back(Handle<FMOD_CHANNEL>(id));
    return out;
}

void FailNext(const std::string& function, FMOD_RESULT result) {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    e.failNext[function] = result;
}

std::vector<std::string> Journal() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    return e.journal;
}

void ClearJournal() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    e.journal.clear();
}

std::vector<GroupInfo> Groups() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    std::vector<GroupInfo> out;
    for (auto& [id, g] : e.groups) {
        auto parent = e.groups.find(g.parent);
        out.push_back({g.name, parent == e.groups.end() ? "" : parent->second.name, g.isBus, g.alive});
    }
    return out;
}

std::string GroupName(FMOD_CHANNELGROUP* group) {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    auto it = e.groups.find(Id(group));
    return it == e.groups.end() ? "" : it->second.name;
}

std::vector<PlayInfo> Plays() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    return e.plays;
}

void Reset() {
    Engine& e = TheEngine();
    std::lock_guard<std::mutex> lock(e.mx);
    e.system = e.studio = e.master = 0;
    e.groups.clear();
    e.sounds.clear();
    e.channels.clear();
    e.busesById.clear();
    e.busGroups.clear();
    e.failNext.clear();
    e.journal.clear();
    e.plays.clear();
    e.now = 0;
}

}  // namespace fmodstandin
