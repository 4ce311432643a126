// Maps disks, packs and volumes to their objects in the Virtual Disk Service. An id is created with its
// object and is not valid on another PC.
#pragma once

#include <compare>
#include <map>

#include "machine/api/com/object.h"
#include "machine/facts/find_disk.h"
#include "platform/vds.h"

namespace machine {

class VdsDisk;
class VdsPack;
class VdsProvider;
class VdsService;
class VdsVolume;

// Identifies a volume by its partition.
struct VolumePlace {
    uint32_t disk = 0;
    uint64_t offset = 0;
    auto operator<=>(const VolumePlace&) const = default;
};

// A pack listed by the PC, or the implicit pack of one disk.
struct PackKey {
    std::string name;
    uint32_t disk = 0;  // of an implicit pack
    auto operator<=>(const PackKey&) const = default;
};

class VdsObjects {
  public:
    // The objects of that PC.
    static VdsObjects& Of(EmulatedPc& pc) { return pc.State<VdsObjects>(); }

    VdsService& Service(EmulatedPc& pc);
    VdsProvider& Provider(EmulatedPc& pc, bool dynamic);
    VdsPack& PackObject(EmulatedPc& pc, const PackKey& key);
    VdsDisk& DiskObject(EmulatedPc& pc, uint32_t number);
    VdsVolume& VolumeObject(EmulatedPc& pc, VolumePlace place);

    // The volume at the place, or null if none was created there.
    VdsVolume* FindVolume(VolumePlace place) const;
    // The next volume at the place gets a new object.
    void ForgetVolume(VolumePlace place) { volumes_.erase(place); }

    // Null if no disk of the PC, or no existing volume, has the id.
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

// The disk as an argument in the journal.
std::string DiskText(uint32_t number);

}  // namespace machine
