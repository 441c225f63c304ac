// TVPMInstance.cpp: instances of loaded objects, hidden while their plugin is disabled and destroyed when it is unloaded.
#include "TVPM/TVPMInstance.h"
#include "TVPMPrivate.h"
#include "TVPMUnitHooks.h"

namespace {

struct tvpm_instance_t {
    TVPMObjectRef model;
    TVPMPluginID plugin;
    void* instance;  // the simulator's
};

TVPMRecordSet<tvpm_instance_t> s_instances;

TVPM_FAMILY_RECORD_COUNT("instances", [](TVPMPluginID id) { return s_instances.CountOwnedBy(id); });

tvpm_instance_t* Live(TVPMInstanceRef handle) {
    return s_instances.Contains(handle) ? static_cast<tvpm_instance_t*>(handle) : nullptr;
}

void DestroyAtSimulator(tvpm_instance_t* r) { gHooks->TVPMDestroyInstance_f(r->instance); }

template <class F>
void ForEachOf(TVPMPluginID who, F&& f) {
    for (TVPMSetWalk<tvpm_instance_t> w(s_instances); tvpm_instance_t* r = w.Next();)
        if (r->plugin == who) f(r);
}

}  // namespace

TVPM_API TVPMInstanceRef TVPMCreateInstance(TVPMObjectRef obj, const char** datarefs) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    void* instance = gHooks->TVPMCreateInstance_f(datarefs, obj);
    return s_instances.Add(new tvpm_instance_t{obj, TVPMGetDispatchedPlugin(), instance});
}

TVPM_API void TVPMDestroyInstance(TVPMInstanceRef instance) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    tvpm_instance_t* r = Live(instance);
    if (!r) return;
    DestroyAtSimulator(r);
    s_instances.Remove(r);
}

TVPM_API void TVPMInstanceSetPosition(TVPMInstanceRef instance, const TVPMDrawInfo_t* position,
                                      const float* data) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    tvpm_instance_t* r = Live(instance);
    if (!r || !position) return;
    gHooks->TVPMInstanceSetData_f(r->instance, data);
    gHooks->TVPMInstanceSetPosition_f(r->instance, position->x, position->y, position->z,
                                      position->heading, position->pitch, position->roll);
}

TVPM_API void TVPMInstanceSetPositionDouble(TVPMInstanceRef instance,
                                            const TVPMDrawInfoDouble_t* position,
                                            const float* data) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    tvpm_instance_t* r = Live(instance);
    if (!r || !position) return;
    gHooks->TVPMInstanceSetData_f(r->instance, data);
    gHooks->TVPMInstanceSetPositionDouble_f(r->instance, position->x, position->y, position->z,
                                            position->heading, position->pitch, position->roll);
}

TVPM_API void TVPMInstanceSetAutoShift(TVPMInstanceRef instance) {
    TVPM_CHECK_THREAD_IF_DIAGNOSING();
    if (tvpm_instance_t* r = Live(instance)) gHooks->TVPMInstanceSetAutoShift_f(r->instance);
}

void TVPMInstanceEnableHook(TVPMPluginID id) {
    ForEachOf(id, [](tvpm_instance_t* r) { gHooks->TVPMInstanceEnable_f(r->instance); });
}

void TVPMInstanceDisableHook(TVPMPluginID id) {
    ForEachOf(id, [](tvpm_instance_t* r) { gHooks->TVPMInstanceDisable_f(r->instance); });
}

void TVPMInstanceCleanupHook(TVPMPluginID id) { s_instances.RemoveOwnedBy(id, DestroyAtSimulator); }
