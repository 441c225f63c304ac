// TVPMRecordIndex.h: a hash index of the keys that a family's duplicate rule compares, kept by the records themselves.
//
// A family whose registration refuses a duplicate (same callback, phase and
// refcon, say) would otherwise scan every record on every registration. The
// record instead carries a TVPMIndexedKey member: its key is in the index for
// exactly as long as the record's memory exists, which is what the scan saw
// (a record removed during a walk still counts until the walk frees it).
//
// The index is one flat table of 8-byte slots with linear probing and
// backward-shift deletion: no allocation per record, and a lookup reads one
// run of adjacent slots, so registering stays linear in time and memory
// traffic as the families grow. Equal keys may share the table.
// Plugin thread only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

// Up to four words of whatever the duplicate rule compares.
using TVPMRecordKey = std::array<uintptr_t, 4>;

inline uint64_t TVPMHashRecordKey(const TVPMRecordKey& key) {
    uint64_t h = 0x9E3779B97F4A7C15ull;
    for (uintptr_t word : key) h = (h ^ word) * 0xFF51AFD7ED558CCDull, h ^= h >> 29;
    return h;
}

template <class T>
class TVPMIndexedKey;

// The existing records of one family by key.
template <class T>
class TVPMRecordIndex {
public:
    // Whether a record with key exists for which counts(record) holds.
    template <class Pred>
    bool Any(const TVPMRecordKey& key, Pred counts) const {
        if (slots_.empty()) return false;
        const uint64_t hash = TVPMHashRecordKey(key);
        for (size_t i = Home(hash); slots_[i]; i = Next(i)) {
            if (Tag(slots_[i]) != Tag(hash)) continue;
            const TVPMIndexedKey<T>* entry = Entry(slots_[i]);
            if (entry->key() == key && counts(entry->record())) return true;
        }
        return false;
    }
    size_t size() const { return count_; }

private:
    friend class TVPMIndexedKey<T>;
    // A slot is the entry's address with the top 16 bits of its key's hash
    // in the address's unused top bits (user addresses are below 2^47), so
    // that a slot takes 8 bytes and most mismatches never touch the entry.
    // 0: free.
    using Slot = uint64_t;
    static_assert(sizeof(void*) == 8, "slots keep a tag in the top bits of an address");
    static constexpr int kTagShift = 48;
    static uint64_t Tag(uint64_t word) { return word >> kTagShift; }
    static Slot MakeSlot(const TVPMIndexedKey<T>* entry, uint64_t hash) {
        return reinterpret_cast<uintptr_t>(entry) | Tag(hash) << kTagShift;
    }
    static const TVPMIndexedKey<T>* Entry(Slot slot) {
        return reinterpret_cast<const TVPMIndexedKey<T>*>(slot & ((uint64_t{1} << kTagShift) - 1));
    }

    size_t Home(uint64_t hash) const { return static_cast<size_t>(hash) & (slots_.size() - 1); }
    size_t Next(size_t i) const { return (i + 1) & (slots_.size() - 1); }

    void Insert(const TVPMIndexedKey<T>* entry, uint64_t hash) {
        if ((count_ + 1) * 2 > slots_.size()) Grow();
        Place(MakeSlot(entry, hash), hash);
        ++count_;
    }
    void Place(Slot slot, uint64_t hash) {
        size_t i = Home(hash);
        while (slots_[i]) i = Next(i);
        slots_[i] = slot;
    }
    void Grow() {
        std::vector<Slot> old(slots_.empty() ? 16 : slots_.size() * 2, Slot{0});
        old.swap(slots_);
        for (Slot s : old)
            if (s) Place(s, Entry(s)->hash());
    }
    // Frees the entry's slot and moves each later slot of the run back into
    // the gap when its home allows, so that no run is ever broken.
    void Erase(const TVPMIndexedKey<T>* entry, uint64_t hash) {
        const Slot mine = MakeSlot(entry, hash);
        size_t gap = Home(hash);
        while (slots_[gap] != mine) gap = Next(gap);
        const size_t mask = slots_.size() - 1;
        for (size_t j = Next(gap); slots_[j]; j = Next(j)) {
            if (((j - Home(Entry(slots_[j])->hash())) & mask) < ((j - gap) & mask)) continue;
            slots_[gap] = slots_[j];
            gap = j;
        }
        slots_[gap] = Slot{0};
        --count_;
    }

    std::vector<Slot> slots_;  // a power of two in size, at most half full
    size_t count_ = 0;
};

// A record's entry in an index, from its construction to its destruction.
// The index must outlive every record that uses it.
template <class T>
class TVPMIndexedKey {
public:
    TVPMIndexedKey(TVPMRecordIndex<T>& index, const TVPMRecordKey& key, const T* record)
        : index_(index), key_(key), hash_(TVPMHashRecordKey(key)), record_(record) {
        index_.Insert(this, hash_);
    }
    ~TVPMIndexedKey() { index_.Erase(this, hash_); }
    TVPMIndexedKey(const TVPMIndexedKey&) = delete;
    TVPMIndexedKey& operator=(const TVPMIndexedKey&) = delete;

    const TVPMRecordKey& key() const { return key_; }
    const T* record() const { return record_; }
    uint64_t hash() const { return hash_; }

private:
    TVPMRecordIndex<T>& index_;
    TVPMRecordKey key_;
    uint64_t hash_;
    const T* record_;
};
