// TVPMDataAccess.cpp: the registry of data items: records that never move, lookup by name with deprecation warnings, registration, enumeration and clean-up.
#include <cstdio>
#include <cstring>

#include "TVPM/TVPMPlugin.h"
#include "TVPMDataAccessPrivate.h"
#include "TVPMDiagnostics.h"
#include "TVPMUnitHooks.h"

// Never destroyed: records must outlive every static destructor that might
// still hold a handle, and nothing here may be freed before the process ends.
TVPMBlockTable& gBlockTable = *new TVPMBlockTable;
TVPMDataBlock_t* gDataFree = nullptr;
std::atomic<int> gDataCount{0};
int gPrevDataCount = 0;
TVPMDataMap& gDataRefs = *new TVPMDataMap;
TVPMDataIndex& gDataIndex = *new TVPMDataIndex;
std::mutex& gDataLock = *new std::mutex;
std::map<TVPMPluginID, std::set<std::string>>& usedOldDatarefs =
    *new std::map<TVPMPluginID, std::set<std::string>>;

// Items outlive their owners; what must go is the owner's claim on them.
TVPM_FAMILY_RECORD_COUNT("data items", [](TVPMPluginID id) {
    std::lock_guard<std::mutex> lock(gDataLock);
    size_t n = 0;
    for (const auto& entry : gDataRefs) n += entry.second->plugin == id;
    return n;
});

namespace {

constexpr const char* kBuildStringItem = "sim/version/tvpm_build_string";
constexpr const char* kDataRefEditorSignature = "torvanesdk.examples.DataRefEditor";
constexpr int kMinVersionForDeprecationAlert = 19;
constexpr size_t kMessageSize = 512;

// ---- Deprecation warnings ---------------------------------------------------

const char* DeprecationFormat(eDrefDeprecations kind) {
    return kind == Replaced ? "Dataref '%s' has been replaced. Please use the new name."
                            : "Dataref '%s' is deprecated and will be removed in a future version.";
}

void RaiseDeprecationAlert(TVPMPluginID who, const char* requested) {
    if (!gHooks || gHooks->version < kMinVersionForDeprecationAlert) return;
    char path[256] = "";
    TVPMGetPluginInfo(who, nullptr, path, nullptr, nullptr);
    const PluginRecord* r = TVPMGetPluginRecord(who);
    char title[kMessageSize];
    snprintf(title, sizeof title, "Deprecated dataref use by %s", r ? r->name.c_str() : "");
    gHooks->TVPMDisplayDismissableAlert_f(
        path, "Deprecation", title, requested,
        "The author should update this to ensure future compatibility.",
        "Please see the log for more details.");
}

// Warns the current plugin, once per name, that it looked up an item on its
// way out. The lookup's result never depends on this.
void WarnDeprecatedUse(const TVPMData_t* d, const char* requested, TVPMPluginID who) {
    bool firstForPlugin = false;
    {
        // Lookups may come from any thread; the messages go out unlocked.
        std::lock_guard<std::mutex> lock(gDataLock);
        auto entry = usedOldDatarefs.try_emplace(who);
        firstForPlugin = entry.second;
        if (!entry.first->second.insert(requested).second) return;
    }
    char message[kMessageSize];
    snprintf(message, sizeof message, DeprecationFormat(d->deprecated), requested);
    TVPMSendError(message);
    const PluginRecord* r = TVPMGetPluginRecord(who);
    // That plugin looks every item up by design: it only gets the callback.
    if (r && r->signature == kDataRefEditorSignature) return;
    TVPMLogPluginWarning(message);
    if (firstForPlugin) RaiseDeprecationAlert(who, requested);
}

// ---- Registration -----------------------------------------------------------

void FillRecord(TVPMData_t* d, TVPMDataTypeID type, int writable, const TVPMAccessors& a) {
    const TVPMPluginID owner = TVPMGetDispatchedPlugin();
    d->type = type & kDataTypeMask;
    d->writable = writable != 0;
    // Only the simulator may publish items that are on their way out.
    d->deprecated = owner == 0 ? static_cast<eDrefDeprecations>(
                                     (static_cast<unsigned>(type) >> kDeprecationShift) & 0xFF)
                               : Current;
    static_cast<TVPMAccessors&>(*d) = a;
    SetDataOwner(d, owner);
}

// Finds or makes the record for name (fresh tells which). When the name is
// live under an owner it returns null and existing gets that owner's record.
TVPMData_t* RecordForRegistration(const char* name, TVPMData_t*& existing, bool& fresh) {
    fresh = false;
    auto found = gDataIndex.find(std::string_view(name));
    if (found != gDataIndex.end()) {
        if (found->second->plugin == -1) return found->second;
        existing = found->second;
        return nullptr;
    }
    fresh = true;
    TVPMData_t* d = AllocDataRef();
    auto inserted = gDataRefs.emplace(name, d).first;
    d->name = inserted->first.c_str();
    gDataIndex.emplace(inserted->first, d);
    return d;
}

}  // namespace

// ---- Blocks -------------------------------------------------------------------

void TVPMBlockTable::Locate(int i, int& segment, int& offset) {
    const unsigned slot = static_cast<unsigned>(i) / kFirstSegment + 1;
    segment = 31 - __builtin_clz(slot);
    offset = i - kFirstSegment * ((1 << segment) - 1);
}

TVPMDataBlock_t* TVPMBlockTable::at(int i) const {
    int segment, offset;
    Locate(i, segment, offset);
    return segments_[segment].load(std::memory_order_acquire)[offset];
}

void TVPMBlockTable::push_back(TVPMDataBlock_t* block) {
    const int i = count_.load(std::memory_order_relaxed);
    int segment, offset;
    Locate(i, segment, offset);
    if (offset == 0)
        segments_[segment].store(new TVPMDataBlock_t*[static_cast<size_t>(kFirstSegment) << segment],
                                 std::memory_order_release);
    segments_[segment].load(std::memory_order_relaxed)[offset] = block;
    count_.store(i + 1, std::memory_order_release);
}

TVPMDataBlock_t* AllocDataBlock() {
    TVPMDataBlock_t* block = new TVPMDataBlock_t();
    gBlockTable.push_back(block);
    gDataFree = block;
    return block;
}

TVPMData_t* AllocDataRef() {
    const int n = gDataCount.load(std::memory_order_relaxed);
    if (!gDataFree || n % kDataRefsPerBlock == 0) AllocDataBlock();
    return &gDataFree->drefs[n % kDataRefsPerBlock];
}

void PublishDataRef() { gDataCount.fetch_add(1, std::memory_order_release); }

TVPMData_t* get_dataref_by_index(int global_idx) {
    return &gBlockTable.at(global_idx / kDataRefsPerBlock)->drefs[global_idx % kDataRefsPerBlock];
}

bool IsDataRecordAddress(const void* p) {
    if (!p) return false;
    const uintptr_t a = reinterpret_cast<uintptr_t>(p);
    const int blocks = gBlockTable.size();
    for (int i = 0; i < blocks; ++i) {
        const uintptr_t start = reinterpret_cast<uintptr_t>(gBlockTable.at(i)->drefs);
        if (a < start || a >= start + sizeof(TVPMDataBlock_t)) continue;
        return (a - start) % sizeof(TVPMData_t) == 0;
    }
    return false;
}

bool DataIsValid(TVPMDataRef p) {
    return IsDataRecordAddress(p) && static_cast<TVPMData_t*>(p)->plugin != -1;
}

// ---- Interface ------------------------------------------------------------------

TVPM_API TVPMDataRef TVPMFindDataRef(const char* inDataRefName) {
    if (!inDataRefName) return nullptr;
    const TVPMPluginID who = TVPMGetDispatchedPlugin();
    TVPMData_t* d = nullptr;
    {
        std::lock_guard<std::mutex> lock(gDataLock);
        auto found = gDataIndex.find(std::string_view(inDataRefName));
        if (found != gDataIndex.end()) d = found->second;
    }
    if (!d || d->plugin == -1) {
        TVPMDiagnoseUnknownDataRef(inDataRefName, who);
        return nullptr;
    }
    if (d->deprecated != Current && who != 0) WarnDeprecatedUse(d, inDataRefName, who);
    return d;
}

TVPM_API TVPMDataRef TVPMRegisterDataAccessor(
    const char* inDataName, TVPMDataTypeID inDataType, int inIsWritable,
    TVPMGetDatai_f inReadInt, TVPMSetDatai_f inWriteInt, TVPMGetDataf_f inReadFloat,
    TVPMSetDataf_f inWriteFloat, TVPMGetDatad_f inReadDouble, TVPMSetDatad_f inWriteDouble,
    TVPMGetDatavi_f inReadIntArray, TVPMSetDatavi_f inWriteIntArray,
    TVPMGetDatavf_f inReadFloatArray, TVPMSetDatavf_f inWriteFloatArray,
    TVPMGetDatab_f inReadData, TVPMSetDatab_f inWriteData, void* inReadRefcon,
    void* inWriteRefcon) {
    if (!inDataName) {
        TVPMSendError("Argument 'inDataName' is null");
        return nullptr;
    }
    const TVPMAccessors accessors{inReadInt,      inWriteInt,        inReadFloat,      inWriteFloat,
                                  inReadDouble,   inWriteDouble,     inReadIntArray,   inWriteIntArray,
                                  inReadFloatArray, inWriteFloatArray, inReadData,     inWriteData,
                                  inReadRefcon,   inWriteRefcon};
    TVPMData_t* existing = nullptr;
    {
        std::lock_guard<std::mutex> lock(gDataLock);
        bool fresh = false;
        TVPMData_t* d = RecordForRegistration(inDataName, existing, fresh);
        if (d) {
            FillRecord(d, inDataType, inIsWritable, accessors);
            // Counted only once complete: the count is read without the lock.
            if (fresh) PublishDataRef();
            return d;
        }
    }
    // Reported outside the lock: the error callback may well look items up.
    TVPMSendError("Dataref is already registered by someone else.");
    return existing;
}

TVPM_API void TVPMUnregisterDataAccessor(TVPMDataRef inDataRef) {
    if (!IsDataRecordAddress(inDataRef)) {
        TVPMSendError("Dataref is illegal and cannot be unregistered.");
        return;
    }
    TVPMData_t* d = static_cast<TVPMData_t*>(inDataRef);
    if (d->plugin != TVPMGetDispatchedPlugin()) {
        TVPMSendError("Dataref is not owned by you - you cannot unregsiter.");
        return;
    }
    SetDataOwner(d, -1);
}

TVPM_API int TVPMIsDataRefGood(TVPMDataRef inDataRef) { return DataIsValid(inDataRef) ? 1 : 0; }

TVPM_API int TVPMCanWriteDataRef(TVPMDataRef inDataRef) {
    return IsDataRecordAddress(inDataRef) && static_cast<TVPMData_t*>(inDataRef)->writable ? 1 : 0;
}

TVPM_API TVPMDataTypeID TVPMGetDataRefTypes(TVPMDataRef inDataRef) {
    return IsDataRecordAddress(inDataRef) ? static_cast<TVPMData_t*>(inDataRef)->type : 0;
}

TVPM_API int TVPMCountDataRefs(void) { return gDataCount.load(std::memory_order_acquire); }

TVPM_API void TVPMGetDataRefsByIndex(int offset, int count, TVPMDataRef* outDataRefs) {
    const int total = gDataCount.load(std::memory_order_acquire);
    if (offset < 0 || offset >= total) {
        TVPMSendError("Argument 'offset' is out of range");
        return;
    }
    if (static_cast<int64_t>(offset) + count > total) {
        TVPMSendError("Argument 'count' is too large");
        return;
    }
    // Reported but not fatal: the rest of the call still runs (and, having
    // nowhere to write, stores nothing).
    if (!outDataRefs) TVPMSendError("Argument 'out_memory' is null");
    for (int i = 0; outDataRefs && i < count; ++i) outDataRefs[i] = get_dataref_by_index(offset + i);
}

TVPM_API void TVPMGetDataRefInfo(TVPMDataRef inDataRef, TVPMDataRefInfo_t* outInfo) {
    if (!outInfo) {
        TVPMSendError("Argument 'outInfo' is null");
        return;
    }
    if (outInfo->structSize != TVPM_DATAREF_INFO_SIZE) {
        TVPMSendError("Argument 'outInfo' needs a structSize set to a legal and known value");
        return;
    }
    if (!IsDataRecordAddress(inDataRef)) return;
    const TVPMData_t* d = static_cast<const TVPMData_t*>(inDataRef);
    outInfo->name = d->name;
    outInfo->type = d->type;
    outInfo->writable = d->writable ? 1 : 0;
    outInfo->owner = d->plugin;
}

// ---- Unit hooks ---------------------------------------------------------------------

void TVPMPublishBuildString(const char* text) {
    TVPMDataRef item = TVPMFindDataRef(kBuildStringItem);
    if (!item || !text) return;
    TVPMSetDatab(item, const_cast<char*>(text), 0, static_cast<int>(strlen(text)) + 1);
}

bool TVPMDataRefsCheckForNew(int& outCount) {
    outCount = gDataCount.load(std::memory_order_acquire);
    if (outCount == gPrevDataCount) return false;
    gPrevDataCount = outCount;
    return true;
}

void TVPMDataRefsCleanupHook(TVPMPluginID id) {
    {
        std::lock_guard<std::mutex> lock(gDataLock);
        for (auto& entry : gDataRefs)
            if (entry.second->plugin == id) SetDataOwner(entry.second, -1);
    }
    TVPMSharedDataForgetPlugin(id);
}
