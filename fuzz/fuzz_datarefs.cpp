// fuzz_datarefs.cpp: data-item names through registration, lookup, withdrawal and enumeration, checked against a plain model.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "TVPM/TVPMDataAccess.h"
#include "TVPMPluginTable.h"

namespace {

struct Item {
    TVPMDataRef ref;
    TVPMPluginID owner;  // -1 once withdrawn
};

// The registry lives for the process, and so does its model.
std::map<std::string, Item>& Model() {
    static std::map<std::string, Item> model;
    return model;
}

void Require(bool ok) {
    if (!ok) abort();
}

int ReadInt(void*) { return 0; }

TVPMDataRef Register(const std::string& name) {
    return TVPMRegisterDataAccessor(name.c_str(), tvpmType_Int, 0, ReadInt, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr);
}

void CheckItem(const std::string& name, const Item& item) {
    Require(TVPMFindDataRef(name.c_str()) == (item.owner == -1 ? nullptr : item.ref));
    Require(TVPMIsDataRefGood(item.ref) == (item.owner == -1 ? 0 : 1));
    TVPMDataRefInfo_t info{};
    info.structSize = sizeof info;
    TVPMGetDataRefInfo(item.ref, &info);
    Require(info.name && name == info.name);
    Require(info.owner == item.owner);
}

void CheckEnumeration() {
    const int count = TVPMCountDataRefs();
    Require(count >= static_cast<int>(Model().size()));
    std::vector<TVPMDataRef> all(static_cast<size_t>(count));
    TVPMGetDataRefsByIndex(0, count, all.data());
    std::map<TVPMDataRef, const std::string*> byRef;
    for (const auto& [name, item] : Model()) byRef[item.ref] = &name;
    size_t found = 0;
    for (TVPMDataRef ref : all) {
        Require(ref != nullptr);
        found += byRef.count(ref);
    }
    Require(found == Model().size());  // every item we made, once
}

}  // namespace

// Input: a sequence of operations, each an op byte followed, for the ones that
// take a name, by a length byte and that many name bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    size_t at = 0;
    while (at < size) {
        const uint8_t op = data[at++];
        gDispatchedPlugin = (op >> 4) & 3;
        std::string name;
        if (op % 4 != 3) {
            const size_t length = at < size ? data[at++] % 24 : 0;
            for (size_t i = 0; i < length && at < size; ++i) name += static_cast<char>(data[at++] ? data[at - 1] : 'x');
        }
        auto found = Model().find(name);
        switch (op % 4) {
            case 0: {
                TVPMDataRef ref = Register(name);
                Require(ref != nullptr);
                if (found == Model().end())
                    found = Model().emplace(name, Item{ref, gDispatchedPlugin}).first;
                Require(found->second.ref == ref);
                if (found->second.owner == -1) found->second.owner = gDispatchedPlugin;
                break;
            }
            case 1:
                if (found != Model().end()) {
                    TVPMUnregisterDataAccessor(found->second.ref);
                    if (found->second.owner == gDispatchedPlugin) found->second.owner = -1;
                }
                break;
            case 2:
                if (found == Model().end()) Require(TVPMFindDataRef(name.c_str()) == nullptr);
                break;
            case 3: CheckEnumeration(); break;
        }
        if (found != Model().end()) CheckItem(found->first, found->second);
    }
    gDispatchedPlugin = 0;
    return 0;
}
