// StandInModel.h: the stand-in engine's state: handles, groups, sounds and channels under one lock.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "FMODStandIn.h"

namespace fmodstandin {

struct Group {
    std::string name;
    uint64_t parent = 0;
    std::vector<uint64_t> children;
    std::string bus;  // the bus this group plays into, "" above the buses
    bool isBus = false;  // the bus's own group, owned by the Studio system
    bool alive = true;
};

struct Sound {
    std::shared_ptr<const std::vector<uint8_t>> pcm;
    int rate = 0, channels = 0, format = 0;
    bool looping = false;
    double duration = 0;
    std::vector<size_t> plays;  // indices in Engine::plays
};

struct Channel {
    uint64_t sound = 0, group = 0;
    size_t play = 0;  // index in Engine::plays
    FMOD_CHANNELCONTROL_CALLBACK callback = nullptr;
    bool is3D = false;
};

// END callbacks collected under the lock and fired after it is released, so a
// callback may take its own locks and call back into the engine.
class EndCallbacks {
public:
    EndCallbacks() = default;
    EndCallbacks(const EndCallbacks&) = delete;
    EndCallbacks& operator=(const EndCallbacks&) = delete;
    ~EndCallbacks();
    void Add(FMOD_CHANNELCONTROL_CALLBACK callback, uint64_t channel);

private:
    std::vector<std::pair<FMOD_CHANNELCONTROL_CALLBACK, uint64_t>> pending_;
};

struct Engine {
    std::mutex mx;
    uint64_t next = 1;
    uint64_t system = 0, studio = 0, master = 0;
    std::map<uint64_t, Group> groups;
    std::map<uint64_t, Sound> sounds;
    std::map<uint64_t, Channel> channels;  // playing channels only
    std::map<std::string, uint64_t> busesById;
    std::map<uint64_t, uint64_t> busGroups;  // bus handle -> its group
    std::map<std::string, FMOD_RESULT> failNext;
    std::vector<std::string> journal;
    std::vector<PlayInfo> plays;
    double now = 0;

    uint64_t NewId() { return next++; }
    // Creates the systems and the master group on first use.
    void EnsureSystems();
    // The injected failure for function, once; 0 when none.
    FMOD_RESULT TakeFailure(const char* function);
    void Log(std::string line) { journal.push_back(std::move(line)); }
    // Ends a playing channel now; stopped when cut short.
    void End(uint64_t channel, bool stopped, EndCallbacks& out);
    // Ends every channel of the group and its subgroups.
    void StopGroup(uint64_t group, EndCallbacks& out);
};

Engine& TheEngine();

template <class T>
T* Handle(uint64_t id) {
    return reinterpret_cast<T*>(static_cast<uintptr_t>(id) << 4);
}
template <class T>
uint64_t Id(T* handle) {
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(handle) >> 4);
}

}  // namespace fmodstandin
