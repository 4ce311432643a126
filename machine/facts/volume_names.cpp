#include "machine/facts/volume_names.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <set>

#include "base/guid.h"
#include "base/text_case.h"

namespace machine {

namespace {

constexpr std::string_view namePrefix = "Volume{";
constexpr std::string_view devicePrefix = "GLOBALROOT\\Device\\Harddisk";
constexpr std::string_view partitionWord = "\\Partition";
constexpr uint64_t hiddenFromMountManager = 0x4000000000000000;

bool Begins(std::string_view text, std::string_view prefix) {
    return SameName(text.substr(0, prefix.size()), prefix);
}

// Takes a number from the beginning of the text. False if there is none.
bool TakeNumber(std::string_view& text, uint32_t& number) {
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<size_t>(rest - text.data()));
    return true;
}

struct PartitionNumbers {
    uint32_t disk = 0;
    uint32_t partition = 0;
};

// Takes the device path of a partition from the beginning of the text. False if there is none.
bool TakePartition(std::string_view& text, PartitionNumbers& numbers) {
    if (!Begins(text, devicePrefix)) return false;
    text.remove_prefix(devicePrefix.size());
    if (!TakeNumber(text, numbers.disk) || !Begins(text, partitionWord)) return false;
    text.remove_prefix(partitionWord.size());
    return TakeNumber(text, numbers.partition);
}

LocatedVolume VolumeOfPartition(Pc& pc, const PartitionNumbers& numbers) {
    for (Disk& disk : pc.disks) {
        if (disk.number != numbers.disk) continue;
        for (Partition& partition : disk.partitions) {
            if (partition.number == numbers.partition && partition.volume)
                return {&*partition.volume, &partition, &disk};
        }
    }
    return {};
}

Guid GuidOf(const Disk& disk, const Partition& partition) {
    if (disk.style == PartitionStyle::Gpt) return partition.gptId;
    Guid guid;
    guid.Data1 = disk.signature;
    std::memcpy(guid.Data4, &partition.offset, sizeof guid.Data4);
    return guid;
}

}  // namespace

DividedPath DividePath(std::string_view path) {
    const bool hasPrefix = path.starts_with("\\\\?\\");
    if (hasPrefix || path.starts_with("\\\\.\\")) path.remove_prefix(4);
    size_t length = 0;
    if (path.size() >= 2 && path[1] == ':') {
        length = 2;
    } else if (hasPrefix && Begins(path, namePrefix)) {
        length = path.find('}') + 1;
    } else if (hasPrefix) {
        std::string_view rest = path;
        PartitionNumbers numbers;
        if (TakePartition(rest, numbers)) length = path.size() - rest.size();
    }
    return {path.substr(0, length), path.substr(length)};
}

LocatedVolume FindVolume(Pc& pc, std::string_view name) {
    if (name.size() == 2) return FindLetter(pc, name[0]);
    std::string_view rest = name;
    PartitionNumbers numbers;
    if (TakePartition(rest, numbers)) return VolumeOfPartition(pc, numbers);
    for (const NamedVolume& named : NamedVolumes(pc)) {
        if (SameName(named.name, name)) return named.volume;
    }
    return {};
}

bool IsHidden(const Partition& partition) {
    return (partition.attributes & hiddenFromMountManager) != 0;
}

std::vector<NamedVolume> NamedVolumes(Pc& pc) {
    std::vector<NamedVolume> volumes;
    std::set<std::string> names;
    const auto add = [&](Guid guid, const LocatedVolume& volume) {
        std::string name;
        // Two disks with the same signature would have the same names.
        do {
            name = "Volume{" + GuidText(guid) + "}";
            ++guid.Data3;
        } while (!names.insert(name).second);
        volumes.push_back({name, volume});
    };
    for (Disk& disk : pc.disks) {
        for (Partition& partition : disk.partitions) {
            if (partition.volume && !IsHidden(partition))
                add(GuidOf(disk, partition), {&*partition.volume, &partition, &disk});
        }
    }
    for (Volume& volume : pc.volumes) {
        if (volume.driveType != DriveType::Remote) add(Guid(), {&volume, nullptr, nullptr});
    }
    return volumes;
}

}  // namespace machine
