// The objects of the Virtual Disk Service by what they stand for. Ids are made when an object is first
// needed, and last as long as it: they mean nothing on another PC.
#pragma once

#include <compare>
#include <map>

#include "machine/api/com/object.h"
#include "platform/vds.h"

namespace machine {

class VdsDisk;
class VdsPack;
class VdsProvider;
class VdsService;
class VdsVolume;

// The partition whose contents a volume is.
struct VolumePlace {
    uint32_t disk = 0;
    uint64_t offset = 0;
    auto operator<=>(const VolumePlace&) const = default;
};

// A pack that the PC names, or the own pack of one disk.
struct PackKey {
    std::string name;
    uint32_t disk = 0;  // of an own pack
    auto operator<=>(const PackKey&) const = default;
};

class VdsObjects {
  public:
    // Of the PC that lives now.
    static VdsObjects& Of(EmulatedPc& pc) { return pc.State<VdsObjects>(); }

    VdsService& Service(EmulatedPc& pc);
    VdsProvider& Provider(EmulatedPc& pc, bool dynamic);
    VdsPack& PackObject(EmulatedPc& pc, const PackKey& key);
    VdsDisk& DiskObject(EmulatedPc& pc, uint32_t number);
    VdsVolume& VolumeObject(EmulatedPc& pc, VolumePlace place);

    // The volume at the place, or null when none has been seen there.
    VdsVolume* FindVolume(VolumePlace place) const;
    // What is at the place later is another volume.
    void ForgetVolume(VolumePlace place) { volumes_.erase(place); }

    // Null: no disk that the PC has bears the id, or no volume that exists.
    VdsDisk* FindDisk(const Pc& pc, const Guid& id) const;
    VdsVolume* FindVolume(const Guid& id) const;

  private:
    Guid NextId();

    uint32_t lastId_ = 0;
    VdsService* service_ = nullptr;
    std::map<bool, VdsProvider*> providers_;
    std::map<PackKey, VdsPack*> packs_;
    std::map<uint32_t, VdsDisk*> disks_;
    std::map<VolumePlace, VdsVolume*> volumes_;
};

// The disk of that number, or null.
Disk* FindDisk(Pc& pc, uint32_t number);
// The first partition that begins there, or null.
Partition* FindPartition(Disk& disk, uint64_t offset);
// The text of the journal.
std::string DiskText(uint32_t number);

}  // namespace machine
