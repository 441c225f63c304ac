// TVPMScenery.cpp: terrain probes with reused simulator probe slots, objects held per plugin, and background loads delivered in the plugin's context.
#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "TVPM/TVPMScenery.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

struct TVPMProbe_t {
    TVPMPluginID plugin;
    TVPMProbeType probeType;
    int simProbe;
};

TVPMRecordSet<TVPMProbe_t> gProbes;
// Simulator probe slots of destroyed probes; the simulator never gets them back.
std::set<int> gFreeProbes;
// The objects each plugin holds; an object loaded twice is listed twice.
std::map<TVPMPluginID, std::vector<TVPMObjectRef>> gObjects;

TVPM_FAMILY_RECORD_COUNT("probes", [](TVPMPluginID id) { return gProbes.CountOwnedBy(id); });
TVPM_FAMILY_RECORD_COUNT("objects", [](TVPMPluginID id) {
    const auto it = gObjects.find(id);
    return it == gObjects.end() ? size_t{0} : it->second.size();
});

bool Holds(TVPMPluginID id, TVPMObjectRef obj) {
    const auto it = gObjects.find(id);
    return it != gObjects.end() && std::find(it->second.begin(), it->second.end(), obj) != it->second.end();
}

void ReleaseProbeSlot(TVPMProbe_t* p) { gFreeProbes.insert(p->simProbe); }

// A background load: filled in by the simulator's completion, then handed to
// the plugin through the delivery queue.
class TVPMObjectCompletion_t : public TVPMDelivery {
public:
    TVPMObjectCompletion_t(TVPMPluginID target, TVPMObjectLoaded_f callback, void* ref)
        : cb(callback), refcon(ref) {
        plugin = target;
    }

    static void AsyncCB(void* loaded, void* ref) {
        auto* d = static_cast<TVPMObjectCompletion_t*>(ref);
        d->obj = loaded;
        TVPMSendDelivery(d);
    }

    void DeliverToPlugin(bool targetGone) override {
        if (targetGone) {
            if (obj) gHooks->TVPMUnloadObject_f(obj);
        } else {
            const TVPMPluginIncarnation target(plugin);
            const PluginRecord* before = target.Get();
            void* const library = before ? before->dllRef : nullptr;
            TVPMCallPlugin(target.id(), TVPMCallSite::kObjectLoaded, [&] {
                if (cb) cb(obj, refcon);
            });
            // An aircraft plugin may have reloaded itself from the callback:
            // then nobody is left to hold the object.
            const PluginRecord* after = target.Get();
            if (obj && after && after->dllRef == library)
                gObjects[target.id()].push_back(obj);
            else if (obj)
                gHooks->TVPMUnloadObject_f(obj);
        }
        delete this;
    }

private:
    TVPMObjectLoaded_f cb;
    void* refcon;
    void* obj = nullptr;
};

}  // namespace

// ---- Probes -------------------------------------------------------------------

TVPM_API TVPMProbeRef TVPMCreateProbe(TVPMProbeType inProbeType) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    int slot;
    if (!gFreeProbes.empty()) {
        slot = *gFreeProbes.begin();
        gFreeProbes.erase(gFreeProbes.begin());
    } else {
        slot = gHooks->TVPMAllocateProbe_f();
    }
    return gProbes.Add(new TVPMProbe_t{TVPMGetDispatchedPlugin(), inProbeType, slot});
}

TVPM_API void TVPMDestroyProbe(TVPMProbeRef inProbe) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!gProbes.Contains(inProbe)) return;
    auto* p = static_cast<TVPMProbe_t*>(inProbe);
    ReleaseProbeSlot(p);
    gProbes.Remove(p);
}

TVPM_API TVPMProbeResult TVPMProbeTerrainXYZ(TVPMProbeRef inProbe, float inX, float inY,
                                             float inZ, TVPMProbeInfo_t* outInfo) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    // An unknown handle would be read through: refuse it like a bad type.
    if (!gProbes.Contains(inProbe)) return tvpm_ProbeError;
    const auto* p = static_cast<const TVPMProbe_t*>(inProbe);
    if (p->probeType != tvpm_ProbeY) return tvpm_ProbeError;
    if (!outInfo || outInfo->structSize != TVPM_PROBE_INFO_SIZE) return tvpm_ProbeError;
    float point[3] = {inX, inY, inZ};
    const int hit = gHooks->TVPMProbeY_f(p->simProbe, point, &outInfo->locationX,
                                         &outInfo->normalX, &outInfo->velocityX, &outInfo->is_wet);
    return hit ? tvpm_ProbeHitTerrain : tvpm_ProbeMissed;
}

// ---- Magnetic variation --------------------------------------------------------

TVPM_API float TVPMGetMagneticVariation(double latitude, double longitude) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMGetMagneticVariation_f(static_cast<float>(latitude),
                                              static_cast<float>(longitude));
}

TVPM_API float TVPMDegTrueToDegMagnetic(float headingDegreesTrue) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMDegTrueToDegMagnetic_f(headingDegreesTrue);
}

TVPM_API float TVPMDegMagneticToDegTrue(float headingDegreesMagnetic) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMDegMagneticToDegTrue_f(headingDegreesMagnetic);
}

// ---- Objects -------------------------------------------------------------------

TVPM_API TVPMObjectRef TVPMLoadObject(const char* inPath) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inPath) return nullptr;
    TVPMObjectRef obj = gHooks->TVPMLoadObject_f(inPath);
    if (obj) gObjects[TVPMGetDispatchedPlugin()].push_back(obj);
    return obj;
}

TVPM_API void TVPMLoadObjectAsync(const char* inPath, TVPMObjectLoaded_f inCallback,
                                  void* inRefcon) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (!inPath) return;
    auto* d = new TVPMObjectCompletion_t(TVPMGetDispatchedPlugin(), inCallback, inRefcon);
    TVPMQueueDelivery(d);
    if (!d->next && !d->prev) {  // refused: no plugin to deliver to
        delete d;
        return;
    }
    gHooks->TVPMLoadObjectAsync_f(inPath, &TVPMObjectCompletion_t::AsyncCB, d);
}

TVPM_API void TVPMDrawObjects(TVPMObjectRef inObject, int inCount, TVPMDrawInfo_t* inLocations,
                              int lighting, int earth_relative) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (TVPMHasError()) {
        if (!Holds(TVPMGetDispatchedPlugin(), inObject)) {
            TVPMSendError("Illegal object, or object not owned by this plugin.");
            return;
        }
        for (int i = 0; inLocations && i < inCount; ++i)
            if (inLocations[i].structSize != TVPM_DRAW_INFO_SIZE) {
                TVPMSendError("Struct size mismatch for TVPMDrawObjects");
                return;
            }
    }
    if (!inLocations) return;
    for (int i = 0; i < inCount; ++i) {
        const TVPMDrawInfo_t& at = inLocations[i];
        gHooks->TVPMDrawObject_f(inObject, at.x, at.y, at.z, at.heading, at.pitch, at.roll,
                                 lighting, earth_relative);
    }
}

TVPM_API void TVPMUnloadObject(TVPMObjectRef inObject) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    std::vector<TVPMObjectRef>& held = gObjects[TVPMGetDispatchedPlugin()];
    const auto it = std::find(held.begin(), held.end(), inObject);
    if (it == held.end()) {
        TVPMSendError("Unknown object for TVPMUnloadObject");
        return;
    }
    held.erase(it);
    gHooks->TVPMUnloadObject_f(inObject);
}

TVPM_API int TVPMLookupObjects(const char* inPath, float inLatitude, float inLongitude,
                               TVPMLibraryEnumerator_f enumerator, void* ref) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    return gHooks->TVPMLookupObjects_f(inPath, inLatitude, inLongitude, enumerator, ref);
}

// ---- Lifecycle -------------------------------------------------------------------

void TVPMSceneryCleanupHook(TVPMPluginID id) {
    gProbes.RemoveOwnedBy(id, ReleaseProbeSlot);
    std::vector<TVPMObjectRef> held;
    held.swap(gObjects[id]);
    for (TVPMObjectRef obj : held) gHooks->TVPMUnloadObject_f(obj);
}
