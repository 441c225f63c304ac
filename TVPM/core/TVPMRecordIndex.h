// TVPMRecordIndex.h: a hash index of the keys that a family's duplicate rule compares, kept by the records themselves.
//
// A family whose registration refuses a duplicate (same callback, phase and
// refcon, say) would otherwise scan every record on every registration. The
// record instead carries a TVPMIndexedKey member: its key is in the index for
// exactly as long as the record's memory exists, which is what the scan saw
// (a record removed during a walk still counts until the walk frees it).
// Plugin thread only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

// Up to four words of whatever the duplicate rule compares.
using TVPMRecordKey = std::array<uintptr_t, 4>;

struct TVPMRecordKeyHash {
    size_t operator()(const TVPMRecordKey& key) const {
        uint64_t h = 0x9E3779B97F4A7C15ull;
        for (uintptr_t word : key) h = (h ^ word) * 0xFF51AFD7ED558CCDull, h ^= h >> 29;
        return static_cast<size_t>(h);
    }
};

// The existing records of one family by key.
template <class T>
class TVPMRecordIndex {
public:
    // Whether a record with key exists for which counts(record) holds.
    template <class Pred>
    bool Any(const TVPMRecordKey& key, Pred counts) const {
        auto range = records_.equal_range(key);
        for (auto it = range.first; it != range.second; ++it)
            if (counts(it->second)) return true;
        return false;
    }
    void Insert(const TVPMRecordKey& key, const T* record) { records_.emplace(key, record); }
    void Erase(const TVPMRecordKey& key, const T* record) {
        auto range = records_.equal_range(key);
        for (auto it = range.first; it != range.second; ++it)
            if (it->second == record) {
                records_.erase(it);
                return;
            }
    }

private:
    std::unordered_multimap<TVPMRecordKey, const T*, TVPMRecordKeyHash> records_;
};

// A record's entry in an index, from its construction to its destruction.
// The index must outlive every record that uses it.
template <class T>
class TVPMIndexedKey {
public:
    TVPMIndexedKey(TVPMRecordIndex<T>& index, const TVPMRecordKey& key, const T* record)
        : index_(index), key_(key), record_(record) {
        index_.Insert(key_, record_);
    }
    ~TVPMIndexedKey() { index_.Erase(key_, record_); }
    TVPMIndexedKey(const TVPMIndexedKey&) = delete;
    TVPMIndexedKey& operator=(const TVPMIndexedKey&) = delete;

private:
    TVPMRecordIndex<T>& index_;
    TVPMRecordKey key_;
    const T* record_;
};
