// test_display_avionics.cpp: avionics customisations and created devices, driven through the simulator's avionics hooks.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "DisplayRig.h"
#include "TimingSamples.h"

using namespace tvpmtest;

namespace {

using Events = std::vector<std::string>;
std::set<std::string> g_consumers;  // labels whose input callbacks consume
int g_beforeAnswer = 1;

// "label:what@plugin name": who was called, for what, in whose context.
void Note(void* refcon, const std::string& what) {
    char name[256] = "";
    TVPMGetPluginInfo(TVPMGetMyID(), name, nullptr, nullptr, nullptr);
    g_log.push_back(std::string(static_cast<const char*>(refcon)) + ":" + what + "@" + name);
}
bool Consumes(void* refcon) { return g_consumers.count(static_cast<const char*>(refcon)) != 0; }
std::string Num(int n) { return std::to_string(n); }

int Draw(TVPMDeviceID device, int before, void* r) { return Note(r, (before ? "pre " : "post ") + Num(device)), g_beforeAnswer; }
void Screen(void* r) { Note(r, "screen"); }
void Bezel(float red, float green, float blue, void* r) { Note(r, "bezel " + Num(red * 4) + Num(green * 4) + Num(blue * 4)); }
int Mouse(int x, int y, TVPMMouseStatus s, void* r) { return Note(r, "mouse " + Num(x) + "," + Num(y) + "," + Num(s)), Consumes(r); }
int Wheel(int, int, int wheel, int clicks, void* r) { return Note(r, "wheel " + Num(wheel) + "," + Num(clicks)), Consumes(r); }
TVPMCursorStatus Cursor(int, int, void* r) { return Note(r, "cursor"), Consumes(r) ? tvpm_CursorArrow : tvpm_CursorDefault; }
int Key(char key, TVPMKeyFlags, char, void* r, int losing) { return Note(r, std::string("key ") + key + (losing ? " losing" : "")), Consumes(r); }
float Brightness(float rheo, float, float, void* r) { return Note(r, "brightness"), rheo / 2; }

TVPMCustomizeAvionics_t Customisation(int device, const char* label) {
    return {TVPM_CUSTOMIZE_AVIONICS_SIZE, device, Draw, Draw, Mouse, Mouse, Wheel, Cursor,
            Mouse, Mouse, Wheel, Cursor, Key, (void*)label};
}
// The short form: its refcon stands where the full form's click callback does.
TVPMCustomizeAvionics_t ShortForm(int device, TVPMAvionicsCallback_f before, const char* label) {
    TVPMCustomizeAvionics_t p{};
    p.structSize = TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE;
    p.deviceId = device;
    p.drawCallbackBefore = before;
    p.bezelClickCallback = reinterpret_cast<TVPMAvionicsMouse_f>(const_cast<char*>(label));
    return p;
}
TVPMCreateAvionics_t Creation(const char* label) {
    return {TVPM_CREATE_AVIONICS_SIZE, 320, 240, 400, 300, 40, 30, 0, Bezel, Screen, Mouse, Mouse,
            Wheel, Cursor, Mouse, Mouse, Wheel, Cursor, Key, Brightness, label, "Test device",
            (void*)label};
}
TVPMAvionicsID Customise(TVPMCustomizeAvionics_t p) { return TVPMRegisterAvionicsCallbacksEx(&p); }
TVPMAvionicsID Customise(int device, const char* label) { return Customise(Customisation(device, label)); }
TVPMAvionicsID Create(TVPMCreateAvionics_t p) { return TVPMCreateAvionicsEx(&p); }
TVPMAvionicsID Create(const char* label) { return Create(Creation(label)); }
template <class Params>
Params WithSize(Params p, int size) { return p.structSize = size, p; }

// Draw callbacks that disable their own plugin, or remove their own record, while drawn.
int DisableSelfWhileDrawing(TVPMDeviceID, int, void* r) { return Note(r, "disabling"), TVPMDisablePlugin(TVPMGetMyID()), 1; }
TVPMAvionicsID g_self = nullptr;
int UnregisterSelfWhileDrawing(TVPMDeviceID, int, void* r) {
    return Note(r, "unregistering"), TVPMUnregisterAvionicsCallbacks(g_self), TVPMDestroyAvionics(g_self), 1;
}

// Created devices' displays are their labels, so a hook call names its device.
const char kAlphaDevice[] = "A", kBetaDevice[] = "B";
void* const kNoDisplay = nullptr;

class AvionicsTest : public ::testing::Test {
protected:
    void SetUp() override {
        rig.host.On<&TVPMHooks::TVPMCreateAvionics_f>([](const TVPMCreateAvionics_t* p) { return (void*)p->deviceID; });
    }
    // alpha customises device 3 and creates A; then beta customises 3 and 4 and creates B.
    void RegisterBoth() {
        rig.As("alpha.tvp", [this] { Customise(3, "a3"), alphaDevice = Create(kAlphaDevice); });
        rig.As("beta.tvp", [] { Customise(3, "b3"), Customise(4, "b4"), Create(kBetaDevice); });
    }
    Events Take() { return std::exchange(g_log, {}); }

    DisplayRig rig{{"alpha.tvp", "beta.tvp"}};
    TVPMAvionicsID alphaDevice = nullptr;
};

}  // namespace

TEST_F(AvionicsTest, DrawingReachesEveryServingRecordNewestFirstTimedInItsOwnersContextAndMayChangeTheWalk) {
    RegisterBoth();
    TVPMGetPluginCallbackTimings(CollectTimings);
    s_samples.clear();
    float tint[3] = {0.25f, 0.5f, 1.0f};
    const struct {
        std::function<int()> hook;
        int answer;
        Events events;
    } rows[] = {
        {[] { return TVPMNeedsAvionicsScreenHook(3, kNoDisplay, 1); }, 1, {}},
        {[] { return TVPMNeedsAvionicsScreenHook(5, kNoDisplay, 0); }, 0, {}},
        {[] { return TVPMNeedsAvionicsScreenHook(-1, (void*)kAlphaDevice, 1); }, 1, {}},
        {[] { return TVPMNeedsAvionicsBezelHook(-1, (void*)kBetaDevice); }, 1, {}},
        {[] { return TVPMNeedsAvionicsBezelHook(3, kNoDisplay); }, 0, {}},
        {[] { return TVPMDoAvionicsScreenHook(3, kNoDisplay, 1); }, 1, {"b3:pre 3@beta.tvp", "a3:pre 3@alpha.tvp"}},
        {[] { return TVPMDoAvionicsScreenHook(4, kNoDisplay, 0); }, 1, {"b4:post 4@beta.tvp"}},
        {[] { return TVPMDoAvionicsScreenHook(-1, (void*)kAlphaDevice, 1); }, 1, {"A:screen@alpha.tvp"}},
        {[] { return TVPMDoAvionicsScreenHook(-1, (void*)kAlphaDevice, 0); }, 1, {}},
        // A created device is reached by its display only, never by number -1.
        {[] { return TVPMDoAvionicsScreenHook(-1, kNoDisplay, 1); }, 1, {}},
        {[&] { return TVPMDoAvionicsBezelHook(-1, (void*)kBetaDevice, tint), 1; }, 1, {"B:bezel 124@beta.tvp"}},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(rows[i].hook(), rows[i].answer) << i;
        EXPECT_EQ(Take(), rows[i].events) << i;
    }
    TVPMGetPluginCallbackTimings(CollectTimings);
    EXPECT_EQ(s_samples.size(), 5u);
    for (const TimingSample& s : s_samples) EXPECT_EQ(s.type, tvpm_cb_drawing_avionics);
    g_beforeAnswer = 0;  // any before callback answering 0 suppresses the screen
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, kNoDisplay, 1), 0);
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, kNoDisplay, 0), 1);
    g_beforeAnswer = 1;
    Take();
    // Callbacks may disable their plugin, or remove their own record, while drawn.
    rig.As("beta.tvp", [] { Customise(ShortForm(3, DisableSelfWhileDrawing, "b-off")); });
    rig.As("alpha.tvp", [] { g_self = Customise(ShortForm(3, UnregisterSelfWhileDrawing, "a-self")); });
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, kNoDisplay, 1), 1);
    EXPECT_EQ(Take(), (Events{"a-self:unregistering@alpha.tvp", "b-off:disabling@beta.tvp", "a3:pre 3@alpha.tvp"}));
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, kNoDisplay, 1), 1);
    EXPECT_EQ(Take(), Events{"a3:pre 3@alpha.tvp"});
}

TEST_F(AvionicsTest, InputGoesNewestFirstAndStopsAtTheFirstConsumer) {
    RegisterBoth();
    const struct {
        std::function<int(int device, void* display)> hook;
        std::string what;
        int consumed, passed;  // the answer when b3 consumes, and when nobody does
    } rows[] = {
        {[](int d, void* w) { return TVPMDoAvionicsBezelClickHook(d, 1, 2, tvpm_MouseDown, w); }, "mouse 1,2,1", 0, 1},
        {[](int d, void* w) { return TVPMDoAvionicsBezelRightClickHook(d, 1, 2, tvpm_MouseUp, w); }, "mouse 1,2,3", 0, 1},
        {[](int d, void* w) { return TVPMDoAvionicsScreenClickHook(d, 5, 6, tvpm_MouseDrag, w); }, "mouse 5,6,2", 0, 1},
        {[](int d, void* w) { return TVPMDoAvionicsScreenRightClickHook(d, 5, 6, tvpm_MouseDown, w); }, "mouse 5,6,1", 0, 1},
        {[](int d, void* w) { return TVPMDoAvionicsBezelScrollHook(d, 0, 0, 1, -2, w); }, "wheel 1,-2", 0, 1},
        {[](int d, void* w) { return TVPMDoAvionicsScreenScrollHook(d, 0, 0, 0, 3, w); }, "wheel 0,3", 0, 1},
        {[](int d, void* w) { return TVPMDoAvionicsBezelCursorHook(d, 0, 0, w); }, "cursor", tvpm_CursorArrow, tvpm_CursorDefault},
        {[](int d, void* w) { return TVPMDoAvionicsScreenCursorHook(d, 0, 0, w); }, "cursor", tvpm_CursorArrow, tvpm_CursorDefault},
        {[](int d, void* w) { return TVPMDoAvionicsKeyHook(d, 'k', 0, 'K', 1, w), -1; }, "key k losing", -1, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        g_consumers = {"b3"};
        EXPECT_EQ(row.hook(3, kNoDisplay), row.consumed);
        EXPECT_EQ(Take(), Events{"b3:" + row.what + "@beta.tvp"});
        g_consumers.clear();
        EXPECT_EQ(row.hook(3, kNoDisplay), row.passed);
        EXPECT_EQ(Take(), (Events{"b3:" + row.what + "@beta.tvp", "a3:" + row.what + "@alpha.tvp"}));
        EXPECT_EQ(row.hook(-1, (void*)kAlphaDevice), row.passed);
        EXPECT_EQ(Take(), Events{"A:" + row.what + "@alpha.tvp"});
    }
    EXPECT_EQ(TVPMNeedsAvionicsBrightnessHook(-1, (void*)kBetaDevice), 1);
    EXPECT_EQ(TVPMDoAvionicsBrightnessHook(-1, 0.8f, 0, 1, (void*)kBetaDevice), 0.4f);
    EXPECT_EQ(TVPMNeedsAvionicsBrightnessHook(3, kNoDisplay), 0);  // customisations have none
    EXPECT_EQ(TVPMDoAvionicsBrightnessHook(3, 0.8f, 0, 1, kNoDisplay), 0.8f);
    EXPECT_EQ(Take(), Events{"B:brightness@beta.tvp"});
    // Disabled owners are skipped and not needed.
    TVPMDisablePlugin(rig.Id("beta.tvp"));
    EXPECT_EQ(TVPMDoAvionicsScreenHook(3, kNoDisplay, 1), 1);
    EXPECT_EQ(TVPMDoAvionicsBezelClickHook(3, 0, 0, tvpm_MouseDown, kNoDisplay), 1);
    EXPECT_EQ(Take(), (Events{"a3:pre 3@alpha.tvp", "a3:mouse 0,0,1@alpha.tvp"}));
    EXPECT_EQ(TVPMNeedsAvionicsScreenHook(4, kNoDisplay, 0) + TVPMNeedsAvionicsBezelHook(-1, (void*)kBetaDevice) +
                  TVPMNeedsAvionicsBrightnessHook(-1, (void*)kBetaDevice), 0);
}

TEST_F(AvionicsTest, OnlyTheListedStructSizesAreAccepted) {
    rig.As("alpha.tvp", [] {
        EXPECT_EQ(TVPMRegisterAvionicsCallbacksEx(nullptr), nullptr);
        EXPECT_EQ(TVPMCreateAvionicsEx(nullptr), nullptr);
        for (int size : {0, 24, 31, 33, 96, 103, 105, 152})
            EXPECT_EQ(Customise(WithSize(Customisation(1, "x"), size)), nullptr) << size;
        for (int size : {0, 32, 104, 151, 153, 160}) EXPECT_EQ(Create(WithSize(Creation("x"), size)), nullptr) << size;
        // The short form in a buffer of exactly its size; it takes no input.
        auto shortForm = std::make_unique<char[]>(TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE);
        const TVPMCustomizeAvionics_t head = ShortForm(7, Draw, "s7");
        memcpy(shortForm.get(), &head, TVPM_CUSTOMIZE_AVIONICS_SHORT_SIZE);
        auto* p = reinterpret_cast<TVPMCustomizeAvionics_t*>(shortForm.get());
        EXPECT_NE(TVPMRegisterAvionicsCallbacksEx(p), nullptr);
        EXPECT_EQ(TVPMRegisterAvionicsCallbacksEx(p), nullptr);  // the same customisation again
        TVPMCreateAvionics_t noDisplay = Creation("w");  // the simulator gives it no display
        noDisplay.deviceID = nullptr;
        EXPECT_NE(Create(noDisplay), nullptr);
        EXPECT_EQ(Create(noDisplay), nullptr);  // the same device again; a wider one is another
        EXPECT_NE((noDisplay.screenWidth += 1, Create(noDisplay)), nullptr);
    });
    EXPECT_EQ(TVPMDoAvionicsScreenHook(7, kNoDisplay, 1), 1);
    EXPECT_EQ(TVPMDoAvionicsBezelClickHook(7, 0, 0, tvpm_MouseDown, kNoDisplay), 1);
    EXPECT_EQ(Take(), Events{"s7:pre 7@alpha.tvp"});
}

TEST_F(AvionicsTest, ForwardersPassTheDeviceAndDisplayFirstAndIgnoreStaleHandles) {
    TVPMAvionicsID builtIn = nullptr, second = nullptr;
    RegisterBoth();
    rig.As("alpha.tvp", [&] {
        builtIn = TVPMGetAvionicsHandle(9);
        EXPECT_EQ(TVPMGetAvionicsHandle(9), builtIn);
        second = Create("second");
    });
    rig.host.On<&TVPMHooks::TVPMGetAvionicsWindowBounds_f>([](int, void*, int* b) { b[0] = 1, b[1] = 2, b[2] = 3, b[3] = 4; });
    int out[4] = {};
    // The forwarders are generated alike: the bounds pair stands for all.
    auto forward = [&](TVPMAvionicsID h) {
        TVPMGetAvionicsGeometry(h, out, out + 1, out + 2, out + 3);
        TVPMSetAvionicsGeometry(h, 1, 2, 3, 4);
    };
    rig.host.ClearCalls();
    forward(alphaDevice);
    forward(builtIn);
    EXPECT_EQ(std::vector<int>(out, out + 4), (std::vector<int>{1, 2, 3, 4}));
    Events heads;
    for (const HostCall& c : rig.host.Calls()) heads.push_back(c.slot + " " + c.args[0] + " " + c.args[1]);
    const std::string a = FormatArg(static_cast<const void*>(kAlphaDevice));
    EXPECT_EQ(heads, (Events{"TVPMGetAvionicsWindowBounds_f -1 " + a, "TVPMSetAvionicsWindowBounds_f -1 " + a,
                             "TVPMGetAvionicsWindowBounds_f 9 null", "TVPMSetAvionicsWindowBounds_f 9 null"}));
    // Either call takes a created device from the simulator, whoever makes it.
    rig.host.ClearCalls();
    rig.As("beta.tvp", [&] { TVPMDestroyAvionics(alphaDevice), TVPMUnregisterAvionicsCallbacks(second); });
    EXPECT_EQ(rig.host.Count("TVPMDestroyAvionics_f"), 2u);
    rig.host.ClearCalls();
    TVPMDestroyAvionics(alphaDevice);
    TVPMUnregisterAvionicsCallbacks(second);
    for (TVPMAvionicsID stale : {alphaDevice, second, TVPMAvionicsID(nullptr), TVPMAvionicsID(&out)}) forward(stale);
    EXPECT_EQ(rig.host.Calls().size(), 0u);
}

TEST_F(AvionicsTest, UnloadingAPluginDestroysItsDevicesAndEndsItsCustomisations) {
    rig.LoadAircraftWithPlugin("jet");
    rig.As("jet", [] { Customise(3, "j3"), Create(kAlphaDevice), TVPMGetAvionicsHandle(2); });
    rig.host.ClearCalls();
    rig.UnloadAircraft();
    const auto destroyed = rig.host.CallsTo("TVPMDestroyAvionics_f");
    ASSERT_EQ(destroyed.size(), 1u);
    EXPECT_EQ(destroyed[0].args, std::vector<std::string>{FormatArg(static_cast<const void*>(kAlphaDevice))});
    EXPECT_EQ(TVPMNeedsAvionicsScreenHook(3, kNoDisplay, 1) + TVPMNeedsAvionicsBezelHook(-1, (void*)kAlphaDevice), 0);
}
