#include "machine/api/vds/pack.h"

#include <algorithm>

#include "machine/api/com/memory.h"
#include "machine/api/vds/disk.h"
#include "machine/api/vds/enumerator.h"

namespace machine {

namespace {

// An unallocated disk belongs to a pack only if it names one.
bool IsInPack(const Disk& disk) {
    return !disk.unallocated || !disk.pack.empty();
}

PackKey KeyOf(const Disk& disk) {
    return disk.pack.empty() ? PackKey{"", disk.number} : PackKey{disk.pack, 0};
}

// The PC's entry for a named pack; an online basic pack if it is not listed.
Pack FactsOf(const Pc& pc, const std::string& name) {
    const auto pack =
        std::find_if(pc.packs.begin(), pc.packs.end(), [&](const Pack& known) { return known.name == name; });
    return pack != pc.packs.end() ? *pack : Pack{name};
}

std::vector<PackKey> PacksOf(const Pc& pc, bool dynamic) {
    std::vector<PackKey> packs;
    const auto add = [&](const PackKey& key) {
        if (FactsOf(pc, key.name).dynamic == dynamic &&
            std::find(packs.begin(), packs.end(), key) == packs.end())
            packs.push_back(key);
    };
    for (const Disk& disk : pc.disks) {
        if (IsInPack(disk)) add(KeyOf(disk));
    }
    for (const Pack& pack : pc.packs)
        add({pack.name, 0});
    return packs;
}

std::string PackText(const PackKey& key) {
    return key.name.empty() ? "pack of " + DiskText(key.disk) : "pack " + key.name;
}

}  // namespace

HRESULT VdsProvider::GetProperties(VDS_PROVIDER_PROP* properties) {
    Empty(properties);
    return AsProvider::Call("IVdsProvider::GetProperties", {dynamic_ ? "dynamic" : "basic"},
                            [&](EmulatedPc& pc) {
                                if (properties == nullptr) return E_POINTER;
                                const auto lend = [&](const char* text) {
                                    return LendText(pc, "VDS_PROVIDER_PROP string", text);
                                };
                                properties->id = id_;
                                properties->pwszName = lend(dynamic_ ? "Dynamic provider" : "Basic provider");
                                properties->pwszVersion = lend("10.0");
                                properties->type = VDS_PT_SOFTWARE;
                                properties->ulFlags = dynamic_ ? VDS_PF_DYNAMIC : 0;
                                return S_OK;
                            });
}

HRESULT VdsProvider::QueryPacks(IEnumVdsObject** enumerator) {
    Empty(enumerator);
    return AsSwProvider::Call("IVdsSwProvider::QueryPacks", {dynamic_ ? "dynamic" : "basic"},
                              [&](EmulatedPc& pc) {
                                  std::vector<ComObject*> packs;
                                  for (const PackKey& key : PacksOf(pc.facts, dynamic_))
                                      packs.push_back(&VdsObjects::Of(pc).PackObject(pc, key));
                                  return HandOutList(pc, std::move(packs), enumerator);
                              });
}

HRESULT VdsPack::GetProperties(VDS_PACK_PROP* properties) {
    Empty(properties);
    return Call("IVdsPack::GetProperties", {PackText(key_)}, [&](EmulatedPc& pc) {
        if (properties == nullptr) return E_POINTER;
        properties->id = id_;
        properties->status = static_cast<VDS_PACK_STATUS>(FactsOf(pc.facts, key_.name).status);
        if (!key_.name.empty()) properties->pwszName = LendText(pc, "VDS_PACK_PROP name", key_.name);
        return S_OK;
    });
}

HRESULT VdsPack::QueryDisks(IEnumVdsObject** enumerator) {
    Empty(enumerator);
    return Call("IVdsPack::QueryDisks", {PackText(key_)}, [&](EmulatedPc& pc) {
        std::vector<ComObject*> disks;
        for (const Disk& disk : pc.facts.disks) {
            if (IsInPack(disk) && KeyOf(disk) == key_)
                disks.push_back(&VdsObjects::Of(pc).DiskObject(pc, disk.number));
        }
        return HandOutList(pc, std::move(disks), enumerator);
    });
}

bool IsDynamic(const Pc& pc, const Disk& disk) {
    return FactsOf(pc, disk.pack).dynamic;
}

}  // namespace machine
