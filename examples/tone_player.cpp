// tone_player.cpp: example plugin: plays a generated tone on the simulator's UI bus when its command runs.
//
// The tone is raw PCM made by the plugin: one second of a 440 Hz sine,
// 16-bit mono at 22050 Hz. TVPMPlayPCMOnBus copies the samples, so the buffer
// could be freed right after the call. The sound plays in this plugin's own
// channel group on the bus ("Tone Player - UI"); TVPM stops it if the plugin
// is disabled and releases the group when the plugin is unloaded.
//
// The completion callback runs on the simulator's main thread at the first
// frame after the tone ended. It must not start or stop sounds: TVPM refuses
// that there. Start the next sound from a flight loop or command instead.
//
// In tvpm-host the menu item is picked half-way through a run; run
//   tvpm-host --audio-out /tmp/tones
// to hear the result in /tmp/tones/UI.wav.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMSound.h"
#include "TVPM/TVPMUtilities.h"

namespace {

const char* const kPlayCommand = "tvpm/examples/tone_player/play";
constexpr int kRateHz = 22050;
constexpr double kToneHz = 440, kSeconds = 1, kLevel = 0.3;

struct Player {
    std::vector<int16_t> tone;
    TVPMCommandRef play = nullptr;
    TVPMFMODChannel* channel = nullptr;  // the tone playing now, or null
    int completed = 0;
} g;

void Log(const char* text) {
    char line[256];
    snprintf(line, sizeof line, "Tone Player: %s\n", text);
    TVPMDebugString(line);
}

std::vector<int16_t> MakeTone() {
    const double pi = std::acos(-1.0);
    std::vector<int16_t> samples(static_cast<size_t>(kRateHz * kSeconds));
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<int16_t>(32767 * kLevel * std::sin(2 * pi * kToneHz * i / kRateHz));
    return samples;
}

// status: 0 when the tone played out (or was stopped), 65 when the plugin was
// disabled while it played, or the error that kept it from starting.
void OnToneDone(void*, TVPMFMODResult status) {
    g.channel = nullptr;
    ++g.completed;
    char text[64];
    snprintf(text, sizeof text, "tone finished with status %d", status);
    Log(text);
}

int OnPlayCommand(TVPMCommandRef, TVPMCommandPhase phase, void*) {
    if (phase != tvpm_CommandBegin || g.channel) return 0;  // one tone at a time
    g.channel = TVPMPlayPCMOnBus(g.tone.data(), static_cast<uint32_t>(g.tone.size() * sizeof(int16_t)),
                                 tvpm_FMOD_PCM16, kRateHz, 1, 0, tvpm_AudioUI, OnToneDone, nullptr);
    if (g.channel) TVPMSetAudioVolume(g.channel, 1.0f);
    return 0;
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    strcpy(outName, "Tone Player");
    strcpy(outSignature, "tvpm.examples.tone_player");
    strcpy(outDescription, "Plays a generated tone on the UI bus on a command.");
    g.tone = MakeTone();
    g.play = TVPMCreateCommand(kPlayCommand, "Play a 440 Hz tone");
    TVPMRegisterCommandHandler(g.play, OnPlayCommand, 1, nullptr);
    TVPMAppendMenuItemWithCommand(TVPMFindPluginsMenu(), "Play tone", g.play);
    return 1;
}

TVPM_PLUGIN_API void TPluginStop(void) {
    char text[64];
    snprintf(text, sizeof text, "%d tone(s) completed", g.completed);
    Log(text);
    TVPMClearAllMenuItems(TVPMFindPluginsMenu());
    TVPMUnregisterCommandHandler(g.play, OnPlayCommand, 1, nullptr);
    g = Player();
}

TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }

// TVPM stops a tone still playing right after this returns, and calls
// OnToneDone with 65 before the disable completes.
TVPM_PLUGIN_API void TPluginDisable(void) {}

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {}
