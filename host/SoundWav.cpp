// SoundWav.cpp: mixes what each bus of the stand-in engine played into a 16-bit WAV file per bus, so an author can listen to a headless run.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "FMODStandIn.h"
#include "SimSound.h"

namespace tvpmhost {

namespace {

using fmodstandin::PlayInfo;

int BytesPerSample(int format) {
    static const int sizes[] = {0, 1, 2, 3, 4, 4};
    return format > 0 && format <= 5 ? sizes[format] : 0;
}

// One sample as -1..1, from little-endian PCM of the play's format.
float Sample(const PlayInfo& p, size_t frame, int channel) {
    const int bps = BytesPerSample(p.format);
    const uint8_t* s = p.pcm->data() + (frame * p.channels + std::min(channel, p.channels - 1)) * bps;
    switch (p.format) {
        case 1: return static_cast<int8_t>(s[0]) / 128.0f;
        case 2: return static_cast<int16_t>(s[0] | s[1] << 8) / 32768.0f;
        case 3: return static_cast<int32_t>(uint32_t(s[0]) << 8 | uint32_t(s[1]) << 16 | uint32_t(s[2]) << 24) / 2147483648.0f;
        case 4: return static_cast<int32_t>(s[0] | s[1] << 8 | s[2] << 16 | uint32_t(s[3]) << 24) / 2147483648.0f;
        default: {
            float f;
            memcpy(&f, s, sizeof f);
            return f;
        }
    }
}

struct Mix {
    int rate = 0, channels = 1;
    double start = 0;
    std::vector<float> samples;  // interleaved
};

void AddPlay(Mix& mix, const PlayInfo& p, double now) {
    const size_t sourceFrames = p.pcm->size() / (size_t(p.channels) * BytesPerSample(p.format));
    if (!sourceFrames) return;
    const double end = p.end < 0 ? now : p.end;
    const long first = std::lround((p.start - mix.start) * mix.rate);
    const long last = std::lround((end - mix.start) * mix.rate);
    for (long out = first; out < last; ++out) {
        size_t in = static_cast<size_t>(double(out - first) * p.rate / mix.rate);
        if (p.looping) in %= sourceFrames;
        if (in >= sourceFrames) break;
        for (int c = 0; c < mix.channels; ++c)
            mix.samples[size_t(out) * mix.channels + c] += Sample(p, in, c) * p.volume;
    }
}

Mix MixBus(const std::vector<PlayInfo>& plays, double now) {
    Mix mix;
    mix.rate = plays.front().rate;
    mix.start = plays.front().start;
    double end = 0;
    for (auto& p : plays) {
        mix.channels = std::max(mix.channels, std::min(p.channels, 2));
        mix.start = std::min(mix.start, p.start);
        end = std::max(end, p.end < 0 ? now : p.end);
    }
    mix.samples.assign(size_t(std::lround((end - mix.start) * mix.rate)) * mix.channels, 0.0f);
    for (auto& p : plays)
        if (BytesPerSample(p.format) && p.channels > 0 && p.rate > 0) AddPlay(mix, p, now);
    return mix;
}

template <class T>
void Put(std::ofstream& out, T value) {
    out.write(reinterpret_cast<const char*>(&value), sizeof value);
}

bool WriteWav(const std::string& file, const Mix& mix) {
    std::ofstream out(file, std::ios::binary);
    const uint32_t dataBytes = static_cast<uint32_t>(mix.samples.size() * 2);
    const uint16_t blockAlign = static_cast<uint16_t>(mix.channels * 2);
    out.write("RIFF", 4);
    Put<uint32_t>(out, 36 + dataBytes);
    out.write("WAVEfmt ", 8);
    Put<uint32_t>(out, 16);
    Put<uint16_t>(out, 1);  // integer PCM
    Put<uint16_t>(out, static_cast<uint16_t>(mix.channels));
    Put<uint32_t>(out, static_cast<uint32_t>(mix.rate));
    Put<uint32_t>(out, static_cast<uint32_t>(mix.rate) * blockAlign);
    Put<uint16_t>(out, blockAlign);
    Put<uint16_t>(out, 16);
    out.write("data", 4);
    Put<uint32_t>(out, dataBytes);
    for (float s : mix.samples)
        Put<int16_t>(out, static_cast<int16_t>(std::lround(std::clamp(s, -1.0f, 1.0f) * 32767)));
    return static_cast<bool>(out);
}

std::string FileNameOf(std::string bus) {
    std::replace(bus.begin(), bus.end(), ' ', '_');
    return bus + ".wav";
}

}  // namespace

std::vector<std::string> WriteBusWavs(const std::string& dir, std::string& error) {
    std::map<std::string, std::vector<PlayInfo>> byBus;
    for (auto& p : fmodstandin::Plays())
        if (!p.bus.empty() && p.rate > 0) byBus[p.bus].push_back(p);
    std::vector<std::string> written;
    std::error_code ec;
    if (!byBus.empty()) std::filesystem::create_directories(dir, ec);  // an existing one is fine
    const double now = fmodstandin::Now();
    for (auto& [bus, plays] : byBus) {
        const std::string file = dir + "/" + FileNameOf(bus);
        if (!WriteWav(file, MixBus(plays, now))) {
            error = "cannot write " + file;
            break;
        }
        written.push_back(file);
    }
    return written;
}

}  // namespace tvpmhost
