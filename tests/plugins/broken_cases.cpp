// broken_cases.cpp: one test plugin that makes the mistake its file name names (copied as <case>.tvp), for the check's corpus.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>

#include "TVPM/TVPMCamera.h"
#include "TVPM/TVPMDataAccess.h"
#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMInstance.h"
#include "TVPM/TVPMMap.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMPlanes.h"
#include "TVPM/TVPMPlugin.h"
#include "TVPM/TVPMProcessing.h"
#include "TVPM/TVPMScenery.h"
#include "TVPM/TVPMSound.h"
#include "TVPM/TVPMUtilities.h"
#include "TVPM/TVPMWeather.h"

namespace {

std::string s_case;
// A field of a null record, as a handler that forgot a check reads it.
volatile uintptr_t s_nullField = 16;
volatile int s_sink = 0;
volatile unsigned s_spins = 0;

void Crash() { s_sink = *reinterpret_cast<volatile int*>(s_nullField); }
float Loop(float, float, int, void*) { return -1; }
float Spin(float, float, int, void*) {
    for (;;) s_spins = s_spins + 1;
}
float Slow(float, float, int, void*) {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return -1;
}
float BeginWeatherOnly(float, float, int, void*) {
    static TVPMWeatherInfo_t info;
    info.structSize = sizeof info;
    TVPMBeginWeatherUpdate();
    TVPMSetWeatherAtAirport("LSZH", &info);
    return 0;
}
int CrashingSniff(char, TVPMKeyFlags, char, void*) { return Crash(), 1; }
void CrashingMenu(void*, void*) { Crash(); }
void DrawWindow(TVPMWindowID, void*) {}
int CrashingClick(TVPMWindowID, int, int, TVPMMouseStatus, void*) { return Crash(), 1; }
int CrashingHandler(TVPMCommandRef, TVPMCommandPhase, void*) { return Crash(), 1; }
int CrashingRead(void*) { return Crash(), 0; }
void DrawScreen(void*) {}
void DrawLayer(TVPMMapLayerID, const float*, float, float, TVPMMapStyle, TVPMMapProjectionID, void*) {}
int KeepCamera(TVPMCameraPosition_t*, int, void*) { return 1; }
void Detached() {
    for (;;) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

TVPMWindowID Window(TVPMHandleMouseClick_f click) {
    TVPMCreateWindow_t p;
    memset(&p, 0, sizeof p);
    p.structSize = sizeof p;
    p.left = 100, p.bottom = 100, p.right = 400, p.top = 300;
    p.visible = 1;
    p.drawWindowFunc = DrawWindow;
    p.handleMouseClickFunc = click;
    p.layer = tvpm_WindowLayerFloatingWindows;
    return TVPMCreateWindowEx(&p);
}

void KeepAvionics() {
    TVPMCreateAvionics_t device;
    memset(&device, 0, sizeof device);
    device.structSize = sizeof device;
    device.screenWidth = device.screenHeight = 100;
    device.drawCallback = DrawScreen;
    device.deviceID = "test_forgotten";
    device.deviceName = "Forgotten display";
    TVPMCreateAvionicsEx(&device);
}

void KeepWeatherUpdateAndMapLayer() {
    TVPMCreateMapLayer_t layer;
    memset(&layer, 0, sizeof layer);
    layer.structSize = sizeof layer;
    layer.mapToCreateLayerIn = TVPM_MAP_USER_INTERFACE;
    layer.drawCallback = DrawLayer;
    layer.layerName = "Kept";
    TVPMCreateMapLayer(&layer);
    TVPMCreateFlightLoop_t loop = {sizeof loop, tvpm_FlightLoop_Phase_BeforeFlightModel, BeginWeatherOnly, nullptr};
    TVPMScheduleFlightLoop(TVPMCreateFlightLoop(&loop), -1, 1);
}

// One object per load; the other aircraft and the camera again at every enable.
void HoldWorld() {
    static bool loaded = false;
    if (!loaded) {
        // Any file will do as the simulator's object: this plugin's own library.
        char path[256] = "";
        TVPMGetPluginInfo(TVPMGetMyID(), nullptr, path, nullptr, nullptr);
        static const char* const kNoData[] = {nullptr};
        TVPMCreateInstance(TVPMLoadObject(path), const_cast<const char**>(kNoData));
        loaded = true;
    }
    TVPMAcquirePlanes(nullptr, nullptr, nullptr);
    TVPMControlCamera(tvpm_ControlCameraForever, KeepCamera, nullptr);
}

// A looping sound in a channel group the plugin makes with the engine itself.
struct ExInfo {
    int cbsize;
    unsigned length, fileoffset;
    int numchannels, defaultfrequency, format;
    unsigned char rest[200];
};
template <class F>
F Engine(const char* name) {
    return reinterpret_cast<F>(dlsym(RTLD_DEFAULT, name));
}
void KeepSound() {
    static short pcm[800];
    auto getSystem = Engine<int (*)(void*, void**)>("FMOD_ChannelGroup_GetSystemObject");
    auto createGroup = Engine<int (*)(void*, const char*, void**)>("FMOD_System_CreateChannelGroup");
    auto createSound = Engine<int (*)(void*, const void*, unsigned, ExInfo*, void**)>("FMOD_System_CreateSound");
    auto play = Engine<int (*)(void*, void*, void*, int, void**)>("FMOD_System_PlaySound");
    void *system = nullptr, *group = nullptr, *sound = nullptr, *channel = nullptr;
    TVPMFMODChannelGroup* mine = TVPMGetFMODChannelGroup(tvpm_AudioUI);
    if (!getSystem || !mine || getSystem(mine, &system) || createGroup(system, "own group", &group)) return;
    ExInfo info{};
    info.cbsize = sizeof info;
    info.length = sizeof pcm;
    info.numchannels = 1;
    info.defaultfrequency = 8000;
    info.format = tvpm_FMOD_PCM16;
    if (createSound(system, pcm, 0x1802, &info, &sound) == 0) play(system, sound, group, 0, &channel);
}

// What each case does when enabled; cases that act at another entry point do so below.
struct Case {
    const char* name;
    void (*enable)();
};
const Case kCases[] = {
    // What the simulator tracks itself, and a record TVPM's clean-up has to release.
    {"leak_window", [] {
         TVPMSetWindowTitle(Window(nullptr), "Forgotten");
         TVPMCommandBegin(TVPMCreateCommand("test/broken/held", "Held down forever"));
         TVPMRegisterFlightLoopCallback(Loop, -1, nullptr);
     }},
    {"hold_world", HoldWorld},
    {"leak_avionics", KeepAvionics},
    {"leak_weather", KeepWeatherUpdateAndMapLayer},
    {"leak_sound", KeepSound},
    {"crash_menu_handler", [] {
         TVPMMenuID m = TVPMCreateMenu("Crashing", TVPMFindPluginsMenu(), 0, CrashingMenu, nullptr);
         TVPMAppendMenuItem(m, "Crash", nullptr, 0);
     }},
    {"crash_mouse_handler", [] { Window(CrashingClick); }},
    {"crash_key_sniffer", [] { TVPMRegisterKeySniffer(CrashingSniff, 1, nullptr); }},
    {"crash_command_handler", [] { TVPMRegisterCommandHandler(TVPMCreateCommand("test/crash", "Crash"), CrashingHandler, 1, nullptr); }},
    {"crash_data_accessor", [] {
         TVPMRegisterDataAccessor("test/crash/item", tvpmType_Int, 0, CrashingRead, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                  nullptr);
     }},
    {"api_errors", [] { TVPMEnableFeature("TVPM_NO_SUCH_FEATURE", 1); }},
    {"misspelt_data", [] { s_sink = TVPMFindDataRef("sim/flightmodel/position/elevatoin") != nullptr; }},
    {"deprecated_data", [] { s_sink = TVPMFindDataRef("sim/graphics/view/legacy_frame_rate") != nullptr; }},
    {"detached_thread", [] { std::thread(Detached).detach(); }},
    {"thread_menu", [] {
         std::thread worker([] { s_sink = static_cast<int>(TVPMFindPluginsMenu() != nullptr); });
         worker.join();
     }},
    {"hang_flight_loop", [] { TVPMRegisterFlightLoopCallback(Spin, -1, nullptr); }},
    {"slow_flight_loop", [] { TVPMRegisterFlightLoopCallback(Slow, -1, nullptr); }},
    {"open_file", [] { s_sink = open("/dev/null", O_RDONLY); }},
    {"pinned_code", [] {
         // A reference to its own library that it never gives back.
         Dl_info self;
         if (dladdr(reinterpret_cast<void*>(&Crash), &self) && self.dli_fname)
             dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
     }},
    {"crash_message", [] {}},
    {"crash_fuzz_enable", [] {}},
    {"crash_disable", [] {}},
    {"name_overrun", [] {}},
    {"refuse_start", [] {}},
};

const Case* This() {
    for (const Case& c : kCases)
        if (s_case == c.name) return &c;
    return nullptr;
}

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSignature, char* outDescription) {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&This), &info);
    const std::string file = info.dli_fname ? info.dli_fname : "";
    s_case = file.substr(file.rfind('/') + 1, file.rfind('.') - file.rfind('/') - 1);
    strcpy(outName, ("Broken " + s_case).c_str());
    strcpy(outSignature, ("test.broken." + s_case).c_str());
    strcpy(outDescription, "Makes the mistake its file name names.");
    if (s_case == "name_overrun") memset(outName, 'x', 400);
    return This() != nullptr && s_case != "refuse_start";
}

TVPM_PLUGIN_API int TPluginEnable(void) {
    // Survives the check's own enables; fails once fuzzing toggles it on and off.
    static int enables = 0;
    if (s_case == "crash_fuzz_enable" && ++enables == 5) Crash();
    if (s_case.rfind("leak_", 0) == 0 || s_case == "open_file" || s_case == "detached_thread") {
        static bool once = false;  // leaks once per load, not at every enable
        if (once) return 1;
        once = true;
    }
    This()->enable();
    return 1;
}

TVPM_PLUGIN_API void TPluginDisable(void) {
    if (s_case == "crash_disable") raise(SIGSEGV);
}
TVPM_PLUGIN_API void TPluginStop(void) {}

TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int inMessage, void*) {
    if (s_case == "crash_message" && inMessage >= 0x01000000) Crash();
}
