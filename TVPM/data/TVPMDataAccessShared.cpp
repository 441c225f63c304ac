// TVPMDataAccessShared.cpp: shared data: values owned by the library, published as items, with change subscribers.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "TVPMDataAccessPrivate.h"

std::vector<TVPMSharedDataRecord*>& gSharedData = *new std::vector<TVPMSharedDataRecord*>;

TVPM_FAMILY_RECORD_COUNT("shared-data subscriptions", [](TVPMPluginID id) {
    size_t n = 0;
    for (const TVPMSharedDataRecord* r : gSharedData) n += r->subscribers.CountOwnedBy(id);
    return n;
});

namespace {

constexpr int kItemBytes = 4;
// Largest storage one shared item may grow to, as the public header documents.
constexpr int64_t kMaxSharedDataBytes = int64_t(TVPM_SHARED_DATA_MAX_BYTES);

int InitialStorage(TVPMDataTypeID type) {
    switch (type) {
        case tvpmType_Double: return 8;
        case tvpmType_Data: return 1;
        default: return 4;
    }
}

TVPMSharedDataRecord* Shared(void* refcon) { return static_cast<TVPMSharedDataRecord*>(refcon); }

// Every write notifies, changed or not, each subscriber in its own context.
// Those who subscribe while being told hear from the next write on.
void Notify(TVPMSharedDataRecord* r) {
    for (TVPMSetWalk<TVPMSharedDataSubscriber> walk(r->subscribers);
         const TVPMSharedDataSubscriber* s = walk.Next();)
        TVPMCallPlugin(s->plugin, TVPMCallSite::kSharedData, [&] { s->cb(s->ref); });
}

template <class T>
T GetScalar(void* refcon, TVPMDataTypeID type) {
    const TVPMSharedDataRecord* r = Shared(refcon);
    if (r->type != type) return T();
    T value;
    memcpy(&value, r->data, sizeof value);
    return value;
}

template <class T>
void SetScalar(void* refcon, TVPMDataTypeID type, T value) {
    TVPMSharedDataRecord* r = Shared(refcon);
    if (r->type != type) return;
    memcpy(r->data, &value, sizeof value);
    Notify(r);
}

// Copies up to inMax items from item inOffset on; with no buffer, the length.
int GetItems(void* refcon, TVPMDataTypeID type, int itemBytes, void* out, int inOffset, int inMax) {
    const TVPMSharedDataRecord* r = Shared(refcon);
    if (r->type != type) return 0;
    const int items = r->size / itemBytes;
    if (!out) return items;
    if (inOffset < 0 || inOffset >= items || inMax <= 0) return 0;
    const int n = std::min(items - inOffset, inMax);
    memcpy(out, r->data + static_cast<size_t>(inOffset) * itemBytes, static_cast<size_t>(n) * itemBytes);
    return n;
}

// Grows the storage to hold bytes (never shrinks); new bytes are zeroed.
// Growth past the limit is refused and reported to the writer, which is the
// client plugin here: the library itself owns shared items.
bool Reserve(TVPMSharedDataRecord* r, int64_t bytes) {
    if (bytes <= r->size) return true;
    if (bytes > kMaxSharedDataBytes) {
        TVPMCallPluginEvenIfDisabled(gClientPlugin, TVPMCallSite::kErrorCallback, [] {
            TVPMSendError("Shared data cannot grow past 16 MB; the write was refused.");
        });
        return false;
    }
    char* grown = static_cast<char*>(realloc(r->data, static_cast<size_t>(bytes)));
    if (!grown) return false;
    memset(grown + r->size, 0, static_cast<size_t>(bytes - r->size));
    r->data = grown;
    r->size = static_cast<int>(bytes);
    return true;
}

void SetItems(void* refcon, TVPMDataTypeID type, int itemBytes, const void* in, int inOffset,
              int inCount) {
    TVPMSharedDataRecord* r = Shared(refcon);
    if (r->type != type || inOffset < 0 || inCount < 0 || (!in && inCount > 0)) return;
    if (!Reserve(r, (static_cast<int64_t>(inOffset) + inCount) * itemBytes)) return;
    if (inCount > 0)
        memcpy(r->data + static_cast<size_t>(inOffset) * itemBytes, in,
               static_cast<size_t>(inCount) * itemBytes);
    Notify(r);
}

int Geti(void* r) { return GetScalar<int>(r, tvpmType_Int); }
void Seti(void* r, int v) { SetScalar(r, tvpmType_Int, v); }
float Getf(void* r) { return GetScalar<float>(r, tvpmType_Float); }
void Setf(void* r, float v) { SetScalar(r, tvpmType_Float, v); }
double Getd(void* r) { return GetScalar<double>(r, tvpmType_Double); }
void Setd(void* r, double v) { SetScalar(r, tvpmType_Double, v); }
int Getvi(void* r, int* out, int offset, int max) {
    return GetItems(r, tvpmType_IntArray, kItemBytes, out, offset, max);
}
void Setvi(void* r, int* in, int offset, int count) {
    SetItems(r, tvpmType_IntArray, kItemBytes, in, offset, count);
}
int Getvf(void* r, float* out, int offset, int max) {
    return GetItems(r, tvpmType_FloatArray, kItemBytes, out, offset, max);
}
void Setvf(void* r, float* in, int offset, int count) {
    SetItems(r, tvpmType_FloatArray, kItemBytes, in, offset, count);
}
int Getb(void* r, void* out, int offset, int max) {
    return GetItems(r, tvpmType_Data, 1, out, offset, max);
}
void Setb(void* r, void* in, int offset, int count) {
    SetItems(r, tvpmType_Data, 1, in, offset, count);
}

// Publishes the record as an item owned by the library itself, so that no
// plugin's departure withdraws it. Only the accessor pair of its type is set.
void PublishShared(TVPMSharedDataRecord* r) {
    StActingAsSimulator asSimulator;
    const TVPMDataTypeID t = r->type;
    TVPMRegisterDataAccessor(
        r->name.c_str(), t, 1, t == tvpmType_Int ? Geti : nullptr, t == tvpmType_Int ? Seti : nullptr,
        t == tvpmType_Float ? Getf : nullptr, t == tvpmType_Float ? Setf : nullptr,
        t == tvpmType_Double ? Getd : nullptr, t == tvpmType_Double ? Setd : nullptr,
        t == tvpmType_IntArray ? Getvi : nullptr, t == tvpmType_IntArray ? Setvi : nullptr,
        t == tvpmType_FloatArray ? Getvf : nullptr, t == tvpmType_FloatArray ? Setvf : nullptr,
        t == tvpmType_Data ? Getb : nullptr, t == tvpmType_Data ? Setb : nullptr, r, r);
}

TVPMSharedDataRecord* FindShared(const char* name) {
    for (TVPMSharedDataRecord* r : gSharedData)
        if (r->name == name) return r;
    return nullptr;
}

TVPMSharedDataRecord* CreateShared(const char* name, TVPMDataTypeID type) {
    const int bytes = InitialStorage(type);
    char* data = static_cast<char*>(calloc(1, static_cast<size_t>(bytes)));
    if (!data) return nullptr;
    TVPMSharedDataRecord* r = new TVPMSharedDataRecord{name, type, data, bytes, {}};
    gSharedData.push_back(r);
    PublishShared(r);
    return r;
}

}  // namespace

TVPM_API int TVPMShareData(const char* inDataName, TVPMDataTypeID inDataType,
                           TVPMDataChanged_f inNotificationFunc, void* inNotificationRefcon) {
    if (!inDataName) return 0;
    TVPMSharedDataRecord* r = FindShared(inDataName);
    if (r && r->type != inDataType) return 0;
    if (!r) r = CreateShared(inDataName, inDataType);
    if (!r) return 0;
    if (inNotificationFunc)
        r->subscribers.Add(new TVPMSharedDataSubscriber{inNotificationFunc, inNotificationRefcon,
                                                        TVPMGetDispatchedPlugin()});
    return 1;
}

TVPM_API int TVPMUnshareData(const char* inDataName, TVPMDataTypeID inDataType,
                             TVPMDataChanged_f inNotificationFunc, void* inNotificationRefcon) {
    if (!inDataName || !inNotificationFunc) return 0;
    for (TVPMSharedDataRecord* r : gSharedData) {
        if (r->name != inDataName || r->type != inDataType) continue;
        const TVPMSharedDataSubscriber wanted{inNotificationFunc, inNotificationRefcon,
                                              TVPMGetDispatchedPlugin()};
        for (TVPMSetWalk<TVPMSharedDataSubscriber> walk(r->subscribers);
             TVPMSharedDataSubscriber* s = walk.Next();)
            if (*s == wanted) {
                r->subscribers.Remove(s);
                return 1;
            }
        return 0;
    }
    return 0;
}

void TVPMSharedDataForgetPlugin(TVPMPluginID id) {
    for (TVPMSharedDataRecord* r : gSharedData) r->subscribers.RemoveOwnedBy(id);
}
