// SimSound.h: the headless simulator's sound: the stand-in engine's systems and buses, simulated playing time, the per-bus summary, WAV output and the leftover audit.
#pragma once

#include <string>
#include <vector>

namespace tvpmhost {

// Lets the engine's channels play for one frame's time.
void AdvanceSound(double seconds);
// One line per plugin group that played: "<group>: N sounds, T s, C completions delivered".
std::vector<std::string> SoundSummary();
// What plugins left in the engine after their unload: sounds still playing
// and channel groups not released, each as a sentence for the author.
std::vector<std::string> SoundLeftovers();
// Writes what each bus played, mixed, as DIR/<bus>.wav (16-bit PCM), making
// DIR when it is missing. Returns the files written; error set when one could
// not be written.
std::vector<std::string> WriteBusWavs(const std::string& dir, std::string& error);

}  // namespace tvpmhost
