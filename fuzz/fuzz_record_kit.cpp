// fuzz_record_kit.cpp: operation sequences on TVPMRecordSet and TVPMResourceList, with nested walks and removal during walks, checked against a plain model.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <vector>

#include "TVPMResourceList.h"

namespace {

struct SetRecord {
    TVPMPluginID plugin;
    int serial;
};
struct ListRecord : TVPMResource_t<ListRecord> {
    TVPMPluginID plugin;
    int serial;
};

void Require(bool ok) {
    if (!ok) abort();
}

// The model: every record ever made, by serial, with its owner and whether it
// is still live. Both containers are driven by the same operations.
struct Model {
    std::vector<TVPMPluginID> owner;
    std::vector<bool> live;
    std::vector<SetRecord*> inSet;
    std::vector<ListRecord*> inList;
};

// Internal checks of the list report here; any report is a failure.
void FailOnAssertion(const char*, const char*, int) { abort(); }

class Fuzz {
public:
    Fuzz(const uint8_t* data, size_t size) : data_(data), size_(size) {
        static TVPMHooks hooks{};
        hooks.TVPMHandleAssertFailed_f = FailOnAssertion;
        gHooks = &hooks;
    }
    ~Fuzz() {
        for (TVPMPluginID id = 0; id < 4; ++id) list_.RemoveOwnedBy(id);
    }

    void Run() {
        Ops(0);
        CheckCounts();
    }

private:
    bool More() const { return at_ < size_; }
    uint8_t Byte() { return More() ? data_[at_++] : 0; }

    // Runs operations until the input ends or an "end walk" op at this depth.
    void Ops(int depth) {
        while (More()) {
            const uint8_t op = Byte();
            switch (op % 6) {
                case 0: Add(op >> 3); break;
                case 1: Remove(Byte()); break;
                case 2: RemoveOwnedBy(op >> 3); break;
                case 3:
                    if (depth < 6) Walk(depth, (op >> 3) & 1);
                    break;
                case 4:
                    if (depth > 0) return;
                    break;
                case 5: CheckCounts(); break;
            }
        }
    }

    void Add(int owner) {
        const int serial = static_cast<int>(m_.owner.size());
        const TVPMPluginID plugin = owner % 4;
        m_.owner.push_back(plugin);
        m_.live.push_back(true);
        m_.inSet.push_back(set_.Add(new SetRecord{plugin, serial}));
        auto* l = new ListRecord;
        l->plugin = plugin;
        l->serial = serial;
        list_.Add(l);
        m_.inList.push_back(l);
    }

    void Remove(uint8_t pick) {
        if (m_.owner.empty()) return;
        const size_t serial = pick % m_.owner.size();
        // Callers check Contains first: a stale handle's address may belong
        // to a newer record by now.
        if (!m_.live[serial]) return;
        Require(set_.Contains(m_.inSet[serial]) && list_.Contains(m_.inList[serial]));
        set_.Remove(m_.inSet[serial]);
        list_.Remove(m_.inList[serial]);
        m_.live[serial] = false;
    }

    void RemoveOwnedBy(int owner) {
        const TVPMPluginID plugin = owner % 4;
        size_t expected = 0;
        for (size_t i = 0; i < m_.owner.size(); ++i)
            if (m_.live[i] && m_.owner[i] == plugin) {
                m_.live[i] = false;
                ++expected;
            }
        Require(set_.RemoveOwnedBy(plugin) == expected);
        Require(list_.RemoveOwnedBy(plugin) == expected);
    }

    // Walks both containers a step at a time, running nested operations
    // between steps; checks every visit against the model.
    void Walk(int depth, bool backwards) {
        std::set<int> liveAtStart;
        for (size_t i = 0; i < m_.live.size(); ++i)
            if (m_.live[i]) liveAtStart.insert(static_cast<int>(i));
        std::set<int> seenInSet, seenInList;
        int lastSet = backwards ? INT32_MAX : -1;
        {
            TVPMSetWalk<SetRecord> setWalk(set_, backwards);
            TVPMWalk<ListRecord> listWalk(list_);
            int lastList = INT32_MAX;
            bool setDone = false, listDone = false;
            while (!(setDone && listDone)) {
                if (!setDone) {
                    if (SetRecord* r = setWalk.Next()) {
                        Require(m_.live[static_cast<size_t>(r->serial)]);
                        Require(liveAtStart.count(r->serial));  // not added during the walk
                        Require(seenInSet.insert(r->serial).second);
                        Require(backwards ? r->serial < lastSet : r->serial > lastSet);
                        lastSet = r->serial;
                    } else {
                        setDone = true;
                    }
                }
                if (!listDone) {
                    if (ListRecord* r = listWalk.Next()) {
                        Require(m_.live[static_cast<size_t>(r->serial)]);
                        Require(liveAtStart.count(r->serial));
                        Require(seenInList.insert(r->serial).second);
                        Require(r->serial < lastList);  // newest first
                        lastList = r->serial;
                    } else {
                        listDone = true;
                    }
                }
                if (!More()) break;
                Ops(depth + 1);
            }
            if (setDone && listDone)
                for (int serial : liveAtStart)
                    if (m_.live[static_cast<size_t>(serial)])
                        Require(seenInSet.count(serial) && seenInList.count(serial));
        }
        CheckCounts();
    }

    void CheckCounts() {
        size_t live = 0;
        size_t perOwner[4] = {0, 0, 0, 0};
        for (size_t i = 0; i < m_.owner.size(); ++i) {
            if (!m_.live[i]) continue;
            ++live;
            ++perOwner[m_.owner[i]];
            Require(set_.Contains(m_.inSet[i]));
            Require(list_.Contains(m_.inList[i]));
        }
        Require(set_.size() == live);
        for (TVPMPluginID id = 0; id < 4; ++id) {
            Require(set_.CountOwnedBy(id) == perOwner[id]);
            Require(list_.CountOwnedBy(id) == perOwner[id]);
        }
    }

    const uint8_t* data_;
    size_t size_;
    size_t at_ = 0;
    Model m_;
    TVPMRecordSet<SetRecord> set_;
    TVPMResourceList<ListRecord> list_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Fuzz(data, size).Run();
    return 0;
}
