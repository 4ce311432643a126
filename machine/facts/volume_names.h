// The names by which a volume is reached: its drive letter, its volume name, which needs no letter, and the
// device path of its partition.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machine/facts/letters.h"

namespace machine {

// A path divided behind the name of its volume: "C:", "Volume{...}" or
// "GLOBALROOT\\Device\\Harddisk0\\Partition1"; the last two only behind the prefix "\\\\?\\". The volume is
// empty for any other path.
struct DividedPath {
    std::string_view volume;
    std::string_view rest;  // "\\dir\\file"
};

DividedPath DividePath(std::string_view path);

// The volume of that name, without regard to case; none if there is no such volume.
LocatedVolume FindVolume(Pc& pc, std::string_view name);

// Whether the mount manager ignores the partition, by its attributes: its volume has neither a name nor, by
// itself, a letter.
bool IsHidden(const Partition& partition);

struct NamedVolume {
    std::string name;  // "Volume{b2f6b2f6-0000-0000-0000-100000000000}"
    LocatedVolume volume;
};

// Every volume that has a name: not those of partitions that the mount manager ignores, nor network drives.
// The name of a volume of a GPT disk holds the partition's GUID, that of an MBR disk the disk's signature and
// the partition's offset.
std::vector<NamedVolume> NamedVolumes(Pc& pc);

}  // namespace machine
