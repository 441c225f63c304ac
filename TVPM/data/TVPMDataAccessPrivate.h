// TVPMDataAccessPrivate.h: the records and globals of the data-item registry and of shared data.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "TVPM/TVPMDataAccess.h"
#include "TVPMPrivate.h"

enum eDrefDeprecations : uint8_t {
    Current = 0,
    Deprecated = 1,
    Replaced = 2,
};

// What an owner registers for an item: its accessors and their refcons.
struct TVPMAccessors {
    TVPMGetDatai_f readInt;
    TVPMSetDatai_f writeInt;
    TVPMGetDataf_f readFloat;
    TVPMSetDataf_f writeFloat;
    TVPMGetDatad_f readDouble;
    TVPMSetDatad_f writeDouble;
    TVPMGetDatavi_f readIntArray;
    TVPMSetDatavi_f writeIntArray;
    TVPMGetDatavf_f readFloatArray;
    TVPMSetDatavf_f writeFloatArray;
    TVPMGetDatab_f readData;
    TVPMSetDatab_f writeData;
    void* readRef;
    void* writeRef;
};

// One data item. Plain data, so that a block of them can be zero-filled and
// handed out by address for the life of the process.
struct TVPMData_t : TVPMAccessors {
    const char* name;  // the key of its gDataRefs entry, which is never erased
    TVPMDataTypeID type;
    bool writable;
    eDrefDeprecations deprecated;
    const char* replaced_by;
    TVPMPluginID plugin;  // -1: dead (unregistered or its owner went away)
    const PluginRecord* ownerPlace;  // gAllPlugins.PlaceOf(plugin): set with it
};

// Sets the item's owner and the owner's record place together.
inline void SetDataOwner(TVPMData_t* d, TVPMPluginID id) {
    d->plugin = id;
    d->ownerPlace = &gAllPlugins.PlaceOf(id);
}

constexpr int kDataRefsPerBlock = 102;
constexpr TVPMDataTypeID kDataTypeMask = 0x7FFFFF;
constexpr int kDeprecationShift = 24;

struct TVPMDataBlock_t {
    TVPMData_t drefs[kDataRefsPerBlock];
};

// Block pointers by allocation order. Grows in segments that are never moved,
// so that readers may index it without the lock while a registration on
// another thread appends.
class TVPMBlockTable {
public:
    // Number of blocks published so far.
    int size() const { return count_.load(std::memory_order_acquire); }
    TVPMDataBlock_t* at(int i) const;
    // Appends under gDataLock.
    void push_back(TVPMDataBlock_t* block);

private:
    static constexpr int kFirstSegment = 64;
    static constexpr int kSegments = 24;
    static void Locate(int i, int& segment, int& offset);

    std::atomic<TVPMDataBlock_t**> segments_[kSegments] = {};
    std::atomic<int> count_{0};
};

using TVPMDataMap = std::map<std::string, TVPMData_t*, std::less<>>;
// The same entries, keyed by views of the map's own keys, so that lookup by
// name does not walk a tree of long, mostly shared prefixes.
using TVPMDataIndex = std::unordered_map<std::string_view, TVPMData_t*>;

// The registry. Everything here lives until the process exits: handles are
// addresses of records, so nothing may ever be freed or moved.
extern TVPMBlockTable& gBlockTable;
extern TVPMDataBlock_t* gDataFree;
extern std::atomic<int> gDataCount;
extern int gPrevDataCount;
extern TVPMDataMap& gDataRefs;
extern TVPMDataIndex& gDataIndex;
extern std::mutex& gDataLock;
extern std::map<TVPMPluginID, std::set<std::string>>& usedOldDatarefs;

// True when p is the address of a record (live or dead).
bool IsDataRecordAddress(const void* p);
// True when p is the address of a live record.
bool DataIsValid(TVPMDataRef p);
// The next free record (a new block when the current one is full); counted by
// PublishDataRef once it is filled in.
TVPMData_t* AllocDataRef();
void PublishDataRef();
TVPMDataBlock_t* AllocDataBlock();
TVPMData_t* get_dataref_by_index(int global_idx);

// ---- Shared data ------------------------------------------------------------

typedef void (*TVPMDataChangedCallback)(void* inRefcon);

struct TVPMSharedDataSubscriber {
    TVPMDataChangedCallback cb;
    void* ref;
    TVPMPluginID plugin;
    bool operator==(const TVPMSharedDataSubscriber& o) const {
        return cb == o.cb && ref == o.ref && plugin == o.plugin;
    }
};

struct TVPMSharedDataRecord {
    std::string name;
    TVPMDataTypeID type;
    char* data;  // C allocator; grows, never shrinks, never freed
    int size;    // bytes allocated
    // In subscription order; a walk survives subscribers leaving under it.
    TVPMRecordSet<TVPMSharedDataSubscriber> subscribers;
};

// In creation order; records are never removed.
extern std::vector<TVPMSharedDataRecord*>& gSharedData;

// Drops every subscription of a departing plugin.
void TVPMSharedDataForgetPlugin(TVPMPluginID id);

// ---- Queries for other units --------------------------------------------------
// Writes text (with its terminating zero) into "sim/version/tvpm_build_string"
// when that item exists.
void TVPMPublishBuildString(const char* text);
// True when items were published since the last check; outCount gets the total.
bool TVPMDataRefsCheckForNew(int& outCount);
