// CheckFuzz.cpp: seeded rounds that exercise everything a checked plugin registered: menus, commands, data items, windows, keys, messages, disable, enable and reload.
#include <algorithm>
#include <cstdio>
#include <random>
#include <tuple>

#include "CheckMode.h"
#include "CheckSignals.h"
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

namespace {

constexpr int kArrayRoom = 1024;
constexpr int kHugeOffset = 1 << 30;
constexpr int kUserMessageBase = 0x01000000;
// Offsets and counts that catch accessors trusting their arguments.
const int kOffsets[] = {0, 1, 3, 7, kArrayRoom - 1, kHugeOffset};
const int kCounts[] = {0, 1, 5, kArrayRoom};

class Fuzzer {
public:
    Fuzzer(Simulator& sim, const CheckParams& p) : sim_(sim), p_(p), random_(p.seed) {}
    void Round(long round);

private:
    template <class T>
    const T& Pick(const std::vector<T>& v) { return v[Below(v.size())]; }
    size_t Below(size_t n) { return static_cast<size_t>(random_() % (n ? n : 1)); }
    TVPMPluginID Id() const { return Api().FindPluginByPath(p_.pluginPath.c_str()); }

    bool MenuPick();
    bool Command();
    bool DataItem();
    bool Mouse();
    bool Keys();
    bool HotKeyOrAnyKey(char& vkey, TVPMKeyFlags& flags);
    bool Message();
    bool DisableEnable();
    bool Reload();
    void ReadAndWrite(TVPMDataRef item, int types);
    void Describe(const std::string& what);

    Simulator& sim_;
    const CheckParams& p_;
    std::mt19937_64 random_;
    std::string doing_;
    long round_ = 0;
};

// The round and its action become the step, so a crash or hang names them.
void Fuzzer::Describe(const std::string& what) {
    doing_ = "fuzz round " + std::to_string(round_) + ": " + what;
    SetStep(doing_.c_str());
}

bool Fuzzer::MenuPick() {
    std::vector<SimMenuItem> items;
    for (auto& [h, m] : World().menus)
        if (m.alive)
            for (auto& i : m.items)
                if (i.owner == p_.pluginPath && i.name != "-") items.push_back(i);
    if (items.empty()) return false;
    const SimMenuItem item = Pick(items);
    Describe("menu pick '" + item.name + "'");
    InFlight f("menu handler");
    if (item.command) World().RunCommandOnce(item.command);
    else Api().MenuHook(item.code);
    return true;
}

bool Fuzzer::Command() {
    std::vector<std::pair<void*, std::string>> mine;
    for (auto& [ref, c] : World().commands)
        if (c.creator == p_.pluginPath) mine.push_back({ref, c.name});
    if (mine.empty()) return false;
    const auto command = Pick(mine);
    Describe("command '" + command.second + "' begin, hold and end");
    InFlight f("command handlers");
    World().CommandPhase(command.first, 0);
    sim_.Frame();
    World().CommandPhase(command.first, 1);
    World().CommandPhase(command.first, 2);
    return true;
}

void Fuzzer::ReadAndWrite(TVPMDataRef item, int types) {
    TVPMApi& a = Api();
    static int ints[kArrayRoom];
    static float floats[kArrayRoom];
    static char bytes[kArrayRoom];
    const int offset = kOffsets[Below(std::size(kOffsets))], count = kCounts[Below(std::size(kCounts))];
    const int room = std::min(count, offset >= kArrayRoom ? count : kArrayRoom - offset);
    if (types & tvpmType_Int) a.SetDatai(item, a.GetDatai(item) + static_cast<int>(Below(3)) - 1);
    if (types & tvpmType_Float) a.SetDataf(item, a.GetDataf(item) * -1.5f);
    if (types & tvpmType_Double) a.SetDatad(item, a.GetDatad(item) + 1e9);
    if (types & tvpmType_IntArray) {
        a.GetDatavi(item, nullptr, offset, count);
        a.GetDatavi(item, ints, offset, room);
        a.SetDatavi(item, ints, offset, room);
    }
    if (types & tvpmType_FloatArray) {
        a.GetDatavf(item, nullptr, offset, count);
        a.GetDatavf(item, floats, offset, room);
        a.SetDatavf(item, floats, offset, room);
    }
    if (types & tvpmType_Data) {
        a.GetDatab(item, nullptr, offset, count);
        a.GetDatab(item, bytes, offset, room);
        a.SetDatab(item, bytes, offset, room);
    }
}

bool Fuzzer::DataItem() {
    TVPMApi& a = Api();
    if (!a.CountDataRefs || !a.GetDatai || !a.SetDatab) return false;
    const int n = a.CountDataRefs();
    std::vector<TVPMDataRef> all(static_cast<size_t>(n)), mine;
    a.GetDataRefsByIndex(0, n, all.data());
    const TVPMPluginID id = Id();
    std::vector<std::string> names;
    for (TVPMDataRef d : all) {
        TVPMDataRefInfo_t info{};
        info.structSize = sizeof info;
        a.GetDataRefInfo(d, &info);
        if (info.owner == id && id > 0) {
            mine.push_back(d);
            names.push_back(info.name ? info.name : "?");
        }
    }
    if (mine.empty()) return false;
    const size_t i = Below(mine.size());
    TVPMDataRefInfo_t info{};
    info.structSize = sizeof info;
    a.GetDataRefInfo(mine[i], &info);
    Describe("read and write of data item '" + names[i] + "'");
    InFlight f("data accessors");
    ReadAndWrite(mine[i], info.type);
    return true;
}

bool Fuzzer::Mouse() {
    std::vector<std::pair<void*, SimWindow>> mine;
    for (auto& [id, w] : World().windows)
        if (w.alive && w.owner == p_.pluginPath) mine.push_back({id, w});
    if (mine.empty() || !Api().MouseClickHook) return false;
    const auto& [window, w] = Pick(mine);
    const int x = w.bounds[0] + static_cast<int>(Below(static_cast<size_t>(std::max(1, w.bounds[2] - w.bounds[0]))));
    const int y = w.bounds[1] + static_cast<int>(Below(static_cast<size_t>(std::max(1, w.bounds[3] - w.bounds[1]))));
    const int button = static_cast<int>(Below(2));
    Describe("mouse click, drag and scroll at " + std::to_string(x) + "," + std::to_string(y) + " on window '" +
             w.title + "'");
    InFlight f("window mouse and scroll handlers");
    Api().MouseClickHook(x, y, 1, button, window);
    sim_.Frame();
    Api().MouseClickHook(x + 3, y - 2, 0, button, window);
    Api().ScrollWheelHook(x, y, static_cast<int>(Below(2)), static_cast<int>(Below(7)) - 3, window);
    return true;
}

// Half the time one of the plugin's hot keys, else any key.
bool Fuzzer::HotKeyOrAnyKey(char& vkey, TVPMKeyFlags& flags) {
    vkey = static_cast<char>(Below(0x80));
    flags = static_cast<TVPMKeyFlags>(Below(8));
    TVPMApi& a = Api();
    if (!a.CountHotKeys || Below(2)) return true;
    std::vector<std::pair<char, TVPMKeyFlags>> mine;
    for (int i = 0, n = a.CountHotKeys(); i < n; ++i) {
        char key = 0;
        TVPMKeyFlags keyFlags = 0;
        TVPMPluginID owner = -1;
        a.GetHotKeyInfo(a.GetNthHotKey(i), &key, &keyFlags, nullptr, &owner);
        if (owner == Id()) mine.push_back({key, keyFlags & ~(tvpm_DownFlag | tvpm_UpFlag)});
    }
    if (!mine.empty()) std::tie(vkey, flags) = Pick(mine);
    return true;
}

bool Fuzzer::Keys() {
    if (!Api().KeyPressHook) return false;
    const char key = static_cast<char>(0x20 + Below(0x5f));
    char vkey = 0;
    TVPMKeyFlags flags = 0;
    HotKeyOrAnyKey(vkey, flags);
    Describe("key '" + std::string(1, key) + "' (virtual key " + std::to_string(vkey) + ", flags " +
             std::to_string(flags) + ") down and up");
    InFlight f("key sniffers and hot keys");
    Api().KeyPressHook(key, flags | tvpm_DownFlag, vkey, 0, nullptr);
    Api().KeyPressHook(key, flags | tvpm_UpFlag, vkey, 2, nullptr);
    return true;
}

bool Fuzzer::Message() {
    if (!Api().SendMessageToPlugin) return false;
    const int message = kUserMessageBase + static_cast<int>(Below(1000));
    Describe("message " + std::to_string(message));
    InFlight f("TPluginReceiveMessage");
    Api().SendMessageToPlugin(Id(), message, nullptr);
    return true;
}

bool Fuzzer::DisableEnable() {
    Describe("disable, a frame, enable");
    InFlight f("TPluginDisable and TPluginEnable");
    Api().DisablePlugin(Id());
    sim_.Frame();
    Api().EnablePlugin(Id());
    return true;
}

bool Fuzzer::Reload() {
    Describe("reload of all plugins");
    InFlight f("TPluginStop, TPluginStart and TPluginEnable of the reload");
    Api().ReloadPlugins();
    sim_.Frame();
    WatchPluginCode(p_.pluginPath);
    return true;
}

void Fuzzer::Round(long round) {
    round_ = round;
    using Action = bool (Fuzzer::*)();
    static const Action kActions[] = {&Fuzzer::MenuPick, &Fuzzer::Command, &Fuzzer::DataItem, &Fuzzer::Mouse,
                                      &Fuzzer::Keys,     &Fuzzer::Message, &Fuzzer::DisableEnable};
    // Reloads are rarer: each costs a whole unload and load.
    const bool reload = Below(50) == 0;
    if (reload) Reload();
    else
        for (int tries = 0; tries < 8 && !(this->*kActions[Below(std::size(kActions))])(); ++tries) {}
    sim_.Frame();
}

}  // namespace

void FuzzPlugin(Simulator& sim, const CheckParams& p, std::vector<Finding>&) {
    Fuzzer fuzzer(sim, p);
    for (long round = 1; round <= p.fuzzRounds; ++round) {
        if (Api().FindPluginByPath(p.pluginPath.c_str()) < 0) return;
        fuzzer.Round(round);
    }
}

}  // namespace tvpmhost
