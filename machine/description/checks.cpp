#include "machine/description/checks.h"

#include <algorithm>
#include <map>

#include "machine/calls/call_table.h"
#include "machine/description/node.h"
#include "platform/partition_types.h"

namespace machine::description {

namespace {

// Values that must be unique, with the place of each.
template <typename Value>
using Places = std::map<Value, std::string>;

class Checks {
  public:
    Checks(const Pc& pc, const Source& source) : pc_(pc), source_(source) {}

    void Packs() const;
    void Disks();
    void VolumesWithoutDisk();
    void WmiOrder() const;
    void EncryptableVolumes() const;
    void Faults() const;

  private:
    void Require(bool holds, const std::string& place, const std::string& otherwise) const {
        if (!holds) source_.Report(place, otherwise);
    }
    // Whether the list is known, and that key of each entry.
    bool AreRight(const std::string& list, size_t entries, const std::string& key) const;
    template <typename Value>
    void Once(Places<Value>& places, const Value& value, const std::string& what,
              const std::string& place) const;
    void PackOf(const Disk& disk, const std::string& place) const;
    void Partitions(const Disk& disk, const std::string& place);
    void Style(const Disk& disk, const Partition& partition, const std::string& place) const;
    void Extents(const Disk& disk, const std::string& place) const;
    void Letters(const Volume& volume, const std::string& place);

    const Pc& pc_;
    const Source& source_;
    Places<std::string> letters_;
};

template <typename Value>
void Checks::Once(Places<Value>& places, const Value& value, const std::string& what,
                  const std::string& place) const {
    if (!source_.IsRight(place)) return;
    const auto [first, added] = places.try_emplace(value, place);
    Require(added, place, what + " is taken by " + first->second);
}

bool Checks::AreRight(const std::string& list, size_t entries, const std::string& key) const {
    for (size_t index = 0; index < entries; ++index)
        if (!source_.IsRight(PlaceOfEntry(list, index) + key)) return false;
    return entries > 0 || source_.IsRight(list);
}

void Checks::Packs() const {
    Places<std::string> names;
    for (size_t index = 0; index < pc_.packs.size(); ++index) {
        const std::string place = PlaceOfKey(PlaceOfEntry("packs", index), "name");
        const std::string& name = pc_.packs[index].name;
        Require(!name.empty(), place, "must not be empty");
        Once(names, name, "\"" + name + "\"", place);
    }
}

void Checks::Disks() {
    Places<uint32_t> numbers;
    for (size_t index = 0; index < pc_.disks.size(); ++index) {
        const Disk& disk = pc_.disks[index];
        const std::string place = PlaceOfEntry("disks", index);
        Once(numbers, disk.number, std::to_string(disk.number), place + ".number");
        PackOf(disk, place + ".pack");
        const uint32_t descriptor = disk.storageDescriptorSize.value_or(fewestDescriptorBytes);
        Require(descriptor >= fewestDescriptorBytes && descriptor <= mostDescriptorBytes,
                place + ".storageDescriptorSize", "must be from 8 to 65536 bytes");
        Require(disk.style == PartitionStyle::Gpt || disk.guid == Guid(), place + ".guid",
                "is for disks of style \"gpt\"");
        Require(disk.style == PartitionStyle::Mbr || disk.signature == 0, place + ".signature",
                "is for disks of style \"mbr\"");
        Partitions(disk, place + ".partitions");
        if (disk.image.empty()) Extents(disk, place + ".partitions");
    }
}

void Checks::PackOf(const Disk& disk, const std::string& place) const {
    const auto isNamed = [&](const Pack& pack) { return pack.name == disk.pack; };
    if (disk.pack.empty() || !AreRight("packs", pc_.packs.size(), ".name")) return;
    if (std::any_of(pc_.packs.begin(), pc_.packs.end(), isNamed)) return;
    std::vector<std::string> names;
    for (const Pack& pack : pc_.packs)
        names.push_back(pack.name);
    Require(false, place, "unknown pack " + Unknown(disk.pack, names) + "; list it under packs");
}

void Checks::Partitions(const Disk& disk, const std::string& place) {
    Places<uint32_t> numbers;
    for (size_t index = 0; index < disk.partitions.size(); ++index) {
        const Partition& partition = disk.partitions[index];
        const std::string here = PlaceOfEntry(place, index);
        Once(numbers, partition.number, std::to_string(partition.number), here + ".number");
        Style(disk, partition, here);
        if (partition.volume) Letters(*partition.volume, here + ".volume.letters");
    }
}

void Checks::Style(const Disk& disk, const Partition& partition, const std::string& place) const {
    if (disk.style == PartitionStyle::Mbr) {
        Require(partition.gptType == Guid() && partition.gptId == Guid(), place,
                "gptType and gptId are for disks of style \"gpt\"");
        Require(partition.attributes == 0 && partition.name.empty(), place,
                "attributes and name are for disks of style \"gpt\"");
    } else if (disk.style == PartitionStyle::Gpt) {
        Require(partition.mbrType == 0 && partition.bootIndicator == 0, place,
                "mbrType and bootIndicator are for disks of style \"mbr\"");
    }
}

bool IsExtended(const Partition& partition) {
    return PartitionTypeOf(partition.mbrType).extended;
}

bool Overlap(const Partition& left, const Partition& right) {
    return left.offset < right.offset + right.size && right.offset < left.offset + left.size;
}

// Logical partitions are inside an extended one.
bool IsInside(const Partition& inner, const Partition& outer) {
    return IsExtended(outer) && inner.offset > outer.offset &&
           inner.offset + inner.size <= outer.offset + outer.size;
}

constexpr uint64_t smallestSector = 512;

void Checks::Extents(const Disk& disk, const std::string& place) const {
    for (size_t index = 0; index < disk.partitions.size(); ++index) {
        const Partition& partition = disk.partitions[index];
        const std::string here = PlaceOfEntry(place, index);

        Require(partition.size > 0, here + ".size", "must not be 0");
        Require(partition.offset < disk.size, here + ".offset", "lies beyond the end of the disk");
        Require(partition.size <= disk.size - partition.offset, here + ".size",
                "reaches beyond the end of the disk");
        for (size_t before = 0; before < index; ++before) {
            const Partition& other = disk.partitions[before];
            const bool apart =
                !Overlap(partition, other) || IsInside(partition, other) || IsInside(other, partition);
            if (apart) continue;
            Require(false, here + ".offset", "the partition overlaps " + PlaceOfEntry(place, before));
            break;
        }
        Require(partition.offset % smallestSector == 0, here + ".offset",
                "must be a multiple of 512, the size of a sector");
    }
}

void Checks::VolumesWithoutDisk() {
    for (size_t index = 0; index < pc_.volumes.size(); ++index)
        Letters(pc_.volumes[index], PlaceOfEntry("volumes", index) + ".letters");
}

void Checks::Letters(const Volume& volume, const std::string& place) {
    for (const char letter : volume.letters)
        Once(letters_, std::string(1, letter), std::string(1, letter), place);
}

void Checks::WmiOrder() const {
    const bool areDisksKnown = AreRight("disks", pc_.disks.size(), ".number");
    Places<uint32_t> numbers;
    for (size_t index = 0; index < pc_.wmiOrder.size(); ++index) {
        const std::string place = PlaceOfEntry("wmiOrder", index);
        const uint32_t number = pc_.wmiOrder[index];
        Once(numbers, number, std::to_string(number), place);
        const bool exists = std::any_of(pc_.disks.begin(), pc_.disks.end(),
                                        [&](const Disk& disk) { return disk.number == number; });
        Require(exists || !areDisksKnown || !source_.IsRight(place), place,
                "there is no disk " + std::to_string(number));
    }
}

void Checks::EncryptableVolumes() const {
    if (!pc_.encryptableVolumes) return;
    Places<std::string> ids;
    Places<std::string> drives;
    for (size_t index = 0; index < pc_.encryptableVolumes->size(); ++index) {
        const EncryptableVolume& volume = (*pc_.encryptableVolumes)[index];
        const std::string place = PlaceOfEntry("encryptableVolumes", index);
        if (volume.deviceId) Once(ids, *volume.deviceId, *volume.deviceId, place + ".deviceId");
        const bool hasLetter = !volume.driveLetter.value_or("").empty();
        if (hasLetter) Once(drives, *volume.driveLetter, *volume.driveLetter, place + ".driveLetter");
    }
}

void Checks::Faults() const {
    std::vector<std::string> names;
    for (const CallInfo& call : AllCalls())
        names.emplace_back(call.name);
    for (size_t index = 0; index < pc_.faults.size(); ++index) {
        const std::string& call = pc_.faults[index].call;
        const std::string place = PlaceOfEntry("faults", index);
        Require(!pc_.faults[index].count || call.ends_with("::Next"), place + ".count",
                "is for the Next of an enumerator");
        if (call != anyCall && FindCall(call) == nullptr)
            Require(false, place + ".call", "unknown call " + Unknown(call, names));
    }
}

}  // namespace

void CheckDescription(const Pc& pc, const Source& source) {
    Checks checks(pc, source);
    checks.Packs();
    checks.Disks();
    checks.VolumesWithoutDisk();
    checks.WmiOrder();
    checks.EncryptableVolumes();
    checks.Faults();
}

}  // namespace machine::description
