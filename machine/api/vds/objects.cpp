#include "machine/api/vds/objects.h"

#include <algorithm>

#include "machine/api/vds/disk.h"
#include "machine/api/vds/pack.h"
#include "machine/api/vds/service.h"
#include "machine/api/vds/volume.h"

namespace machine {

VdsService& VdsObjects::Service(EmulatedPc& pc) {
    if (service_ == nullptr) service_ = &MakeObject<VdsService>(pc);
    return *service_;
}

VdsProvider& VdsObjects::Provider(EmulatedPc& pc, bool dynamic) {
    VdsProvider*& provider = providers_[dynamic];
    if (provider == nullptr) provider = &MakeObject<VdsProvider>(pc, dynamic, NextId());
    return *provider;
}

VdsPack& VdsObjects::PackObject(EmulatedPc& pc, const PackKey& key) {
    VdsPack*& pack = packs_[key];
    if (pack == nullptr) pack = &MakeObject<VdsPack>(pc, key, NextId());
    return *pack;
}

VdsDisk& VdsObjects::DiskObject(EmulatedPc& pc, uint32_t number) {
    VdsDisk*& disk = disks_[number];
    if (disk == nullptr) disk = &MakeObject<VdsDisk>(pc, number, NextId());
    return *disk;
}

VdsVolume& VdsObjects::VolumeObject(EmulatedPc& pc, VolumePlace place) {
    VdsVolume*& volume = volumes_[place];
    if (volume == nullptr) volume = &MakeObject<VdsVolume>(pc, place, NextId());
    return *volume;
}

VdsVolume* VdsObjects::FindVolume(VolumePlace place) const {
    const auto volume = volumes_.find(place);
    return volume != volumes_.end() ? volume->second : nullptr;
}

VdsDisk* VdsObjects::FindDisk(const Pc& pc, const Guid& id) const {
    for (const Disk& disk : pc.disks) {
        const auto object = disks_.find(disk.number);
        if (object != disks_.end() && object->second->Id() == id) return object->second;
    }
    return nullptr;
}

VdsVolume* VdsObjects::FindVolume(const Guid& id) const {
    const auto volume = std::find_if(volumes_.begin(), volumes_.end(),
                                     [&](const auto& entry) { return entry.second->Id() == id; });
    return volume != volumes_.end() ? volume->second : nullptr;
}

Guid VdsObjects::NextId() {
    return GUID{++lastId_, 0x0000, 0x4000, {0x80, 0x00, 0x76, 0x64, 0x73, 0x00, 0x00, 0x00}};
}

std::string DiskText(uint32_t number) {
    return "disk " + std::to_string(number);
}

}  // namespace machine
