// FMODStandIn.h: the control and inspection side of the stand-in sound engine, for the tests and the headless host.
//
// The stand-in engine is a small library of the project's own that exports the
// engine's C entry points as libfmod.so.13 and libfmodstudio.so.13. It keeps
// one system, one Studio system, buses with their channel groups, a group
// tree, sounds holding a copy of their PCM, and channels that play for the
// sound's real duration in the simulated time the caller advances. A channel
// that ends or is stopped fires its END callback, on whatever thread ended it.
// Every function here may be called from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "TVPMFMODApi.h"

namespace fmodstandin {

// The engine's systems, created on first use.
FMOD_SYSTEM* System();
FMOD_STUDIO_SYSTEM* Studio();
// The Studio bus with this ID (a GUID string), created on first use under the
// master group; its channel group is named name.
FMOD_STUDIO_BUS* Bus(const std::string& id, const std::string& name);

// Advances simulated time: channels whose sound has played out end.
void Advance(double seconds);
double Now();
// Ends a channel as if its sound had run out; false for a handle not playing.
bool EndChannel(FMOD_CHANNEL* channel);
// The channels playing now, oldest first.
std::vector<FMOD_CHANNEL*> PlayingChannels();

// The next call of the named entry point ("FMOD_System_PlaySound") returns result.
void FailNext(const std::string& function, FMOD_RESULT result);

// Every call that changed the engine, in order, as text:
// "createChannelGroup Alpha - UI", "addGroup UI <- Alpha - UI propagate=1",
// "createSound mode=0x1801 cbsize=224 length=.. channels=.. rate=.. format=..",
// "playSound Alpha - UI", "stop channel 3", "setMode 0x10", "release group Alpha - UI"...
std::vector<std::string> Journal();
void ClearJournal();

// A channel group: its name, its parent's name ("" for the master group),
// whether it is a bus's own group, whether it is still alive.
struct GroupInfo {
    std::string name, parent;
    bool bus, alive;
};
std::vector<GroupInfo> Groups();
std::string GroupName(FMOD_CHANNELGROUP* group);

// One played channel, kept for the life of the process.
struct PlayInfo {
    std::string bus, group;  // the bus's name; the channel's group
    double start = 0, end = -1;  // end -1: still playing
    bool looping = false, stopped = false;  // stopped: ended before its sound ran out
    bool released = false;  // its sound was released after it ended
    int rate = 0, channels = 0, format = 0;
    float volume = 1;
    std::shared_ptr<const std::vector<uint8_t>> pcm;
};
std::vector<PlayInfo> Plays();

// Forgets everything: systems, buses, groups, sounds, channels, journal.
void Reset();

}  // namespace fmodstandin
