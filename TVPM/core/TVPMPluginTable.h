// TVPMPluginTable.h: the plugin table, the host globals, the current plugin and error reporting to plugins.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "TVPMDeliveries.h"
#include "TVPMHost.h"

// Marks a library global's declaration as internal to the library, so that
// code reaches it directly rather than through the global offset table (the
// hidden default covers definitions only).
#define TVPM_INTERNAL __attribute__((visibility("hidden")))

// ---------------------------------------------------------------------------
// Host globals, written once by TVPMInitializePlugins.

extern TVPMHooks* gHooks;
extern void* gSelf;
extern char gDirSeparator[2];
extern pthread_t gPluginThread;

// ---------------------------------------------------------------------------
// The plugin table.

typedef int (*TVPMPluginStart_f)(char* outName, char* outSignature, char* outDescription);
typedef void (*TVPMPluginStop_f)(void);
typedef int (*TVPMPluginEnable_f)(void);
typedef void (*TVPMPluginDisable_f)(void);
typedef void (*TVPMPluginReceiveMessage_f)(TVPMPluginID inFrom, int inMessage, void* inParam);
typedef void (*TVPMErrorCallback_f)(const char* inMessage);

enum TVPMFeatureIndex {
    kFeatureWantsReflections = 0,
    kFeatureUseNativePaths = 1,
    kFeatureUseNativeWidgetWindows = 2,
    kFeatureWantsDatarefNotifications = 3,
    kFeatureCount = 4,
};

struct PluginRecord {
    void* dllRef = nullptr;
    std::string name, path, signature, description;
    TVPMPluginStop_f exitFunc = nullptr;
    TVPMPluginEnable_f enableFunc = nullptr;
    TVPMPluginDisable_f disableFunc = nullptr;
    TVPMPluginReceiveMessage_f receiveMessageFunc = nullptr;
    TVPMErrorCallback_f errorFunc = nullptr;
    bool enabled = false;
    int features[kFeatureCount] = {0, 0, 0, 0};
    bool weatherUpdatePending = false;
    // TVPMCallSite bits whose caught exception was already logged.
    uint32_t reportedThrows = 0;
    // Unique per record ever made: tells a reused ID from the plugin that had
    // it before, for records that outlive their plugin (map layers).
    uint64_t generation = 0;
    TVPMDeliveryHead outstanding;
    TVPMDeliveryHead pending;
};

// The plugin table, indexed by TVPMPluginID. Records are held by pointer so
// that they (and the delivery queue heads inside them) never move while
// plugins are appended or trimmed, and so that finding a record on the hot
// paths is one indexed load. An ID's record keeps its address for the
// table's lifetime: trimming blanks it (disabled, nothing held) rather than
// freeing it, and the next plugin to take the ID takes the same record. So a
// record that names an owner can keep the owner's place and learn whether it
// may be called in one load, with no bounds check.
class TVPMPluginTable {
public:
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    PluginRecord& operator[](size_t id) const { return *places_[id]; }
    PluginRecord& back() const { return *places_[size_ - 1]; }
    PluginRecord& emplace_back() {
        if (size_ == places_.size()) places_.push_back(std::make_unique<PluginRecord>());
        PluginRecord& r = *places_[size_++];
        r.generation = ++generations_;
        return r;
    }
    void pop_back() { Blank(*places_[--size_]); }
    void clear() {
        while (size_) pop_back();
    }
    void resize(size_t n) {
        while (size_ > n) pop_back();
        while (size_ < n) emplace_back();
    }
    // The record place of id, live or blank; a negative id gets a blank place
    // of its own. Not for the plugin thread's hot paths: it may allocate.
    const PluginRecord& PlaceOf(TVPMPluginID id) {
        static const PluginRecord nobody;
        if (id < 0) return nobody;
        while (places_.size() <= static_cast<size_t>(id))
            places_.push_back(std::make_unique<PluginRecord>());
        return *places_[static_cast<size_t>(id)];
    }

    class iterator {
    public:
        explicit iterator(const std::unique_ptr<PluginRecord>* p) : p_(p) {}
        PluginRecord& operator*() const { return **p_; }
        iterator& operator++() {
            ++p_;
            return *this;
        }
        bool operator!=(const iterator& o) const { return p_ != o.p_; }

    private:
        const std::unique_ptr<PluginRecord>* p_;
    };
    iterator begin() const { return iterator(places_.data()); }
    iterator end() const { return iterator(places_.data() + size_); }

private:
    static void Blank(PluginRecord& r) {
        r.~PluginRecord();
        new (&r) PluginRecord();
    }

    // Every place an ID has had; the first size_ hold the plugins.
    std::vector<std::unique_ptr<PluginRecord>> places_;
    size_t size_ = 0;
    uint64_t generations_ = 0;
};

extern TVPMPluginTable gAllPlugins TVPM_INTERNAL;

// The plugin being called now (0 the host, -1 none) and the one that was
// current when it was entered, in one word: a dispatch scope saves and
// restores both with one load and one store.
struct alignas(8) TVPMCurrentPlugins {
    TVPMPluginID dispatched;
    TVPMPluginID client;
};
static_assert(sizeof(TVPMCurrentPlugins) == 8 && offsetof(TVPMCurrentPlugins, dispatched) == 0 &&
                  offsetof(TVPMCurrentPlugins, client) == 4,
              "the current plugins are saved and restored as one word");
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "entering a scope shifts the dispatched plugin into the client's half of the word");
extern TVPMCurrentPlugins gCurrentPlugins TVPM_INTERNAL;
inline constexpr TVPMPluginID& gDispatchedPlugin = gCurrentPlugins.dispatched;
inline constexpr TVPMPluginID& gClientPlugin = gCurrentPlugins.client;

inline bool TVPMIsValidPluginID(TVPMPluginID id) {
    return id >= 0 && static_cast<size_t>(id) < gAllPlugins.size();
}
inline PluginRecord* TVPMGetPluginRecord(TVPMPluginID id) {
    return TVPMIsValidPluginID(id) ? &gAllPlugins[static_cast<size_t>(id)] : nullptr;
}

// True when the plugin exists and is enabled.
inline bool TVPMPluginIsEnabled(TVPMPluginID id) {
    const PluginRecord* r = TVPMGetPluginRecord(id);
    return r && r->enabled;
}
// True when the current plugin asked for native paths (TVPM_USE_NATIVE_PATHS).
inline bool TVPMCurrentPluginWantsNativePaths() {
    const PluginRecord* r = TVPMGetPluginRecord(gDispatchedPlugin);
    return r && r->features[kFeatureUseNativePaths];
}

// One plugin as it was when taken: Get() finds its record again after a call
// into plugin code, or null when that plugin has since been unloaded, trimmed
// or replaced by a reloaded copy at the same ID. Code that calls into a
// plugin keeps this, never a PluginRecord pointer or reference.
class TVPMPluginIncarnation {
public:
    explicit TVPMPluginIncarnation(TVPMPluginID id) : id_(id) {
        const PluginRecord* r = TVPMGetPluginRecord(id);
        generation_ = r ? r->generation : 0;
    }
    PluginRecord* Get() const {
        PluginRecord* r = TVPMGetPluginRecord(id_);
        return r && r->generation == generation_ ? r : nullptr;
    }
    TVPMPluginID id() const { return id_; }

private:
    TVPMPluginID id_;
    uint64_t generation_;
};

inline void TVPMSetDispatchedPlugin(int id) { gDispatchedPlugin = id; }
inline int TVPMGetDispatchedPlugin() { return gDispatchedPlugin; }
inline void TVPMSetClientPlugin(int id) { gClientPlugin = id; }
inline int TVPMGetClientPlugin() { return gClientPlugin; }

// Error reporting to the current plugin's error callback (nothing is logged).
void TVPMSendError(const char* msg);
int TVPMHasError();
void TVPMSendErrorTo(const char* msg, TVPMPluginID who);
// Logs "[name]: msg" for the current plugin.
void TVPMLogPluginWarning(const char* msg);
// The current plugin's name and signature for log lines, or a bracketed
// placeholder for the host, no plugin or a bad ID.
const char* DebugCurrentPluginName();
const char* DebugCurrentPluginSignature();
