#include "tests/sweep/engine/difference.h"

namespace sweep {

namespace {

using machine::Partition;
using machine::Pc;

// Moves what differs of the two into words and makes the left one equal in that.
template <typename Fact>
void Compare(Fact& left, const Fact& right, const char* word, std::set<std::string>& words) {
    if (left == right) return;
    words.insert(word);
    left = right;
}

void Compare(Partition left, const Partition& right, std::set<std::string>& words) {
    Compare(left.bootIndicator, right.bootIndicator, "active flag", words);
    Compare(left.mbrType, right.mbrType, "type", words);
    if (left.volume && right.volume) {
        Compare(left.volume->letters, right.volume->letters, "letter", words);
        Compare(left.volume->files, right.volume->files, "file", words);
    }
    Compare(left, right, "other", words);
}

bool HaveSamePartitions(const Pc& left, const Pc& right) {
    if (left.disks.size() != right.disks.size()) return false;
    for (size_t disk = 0; disk < left.disks.size(); ++disk) {
        if (left.disks[disk].partitions.size() != right.disks[disk].partitions.size()) return false;
    }
    return true;
}

}  // namespace

std::set<std::string> Differences(const Pc& left, const Pc& right) {
    std::set<std::string> words;
    if (left == right) return words;
    if (!HaveSamePartitions(left, right)) return {"other"};
    Pc rest = left;
    for (size_t disk = 0; disk < left.disks.size(); ++disk) {
        for (size_t at = 0; at < left.disks[disk].partitions.size(); ++at)
            Compare(left.disks[disk].partitions[at], right.disks[disk].partitions[at], words);
        rest.disks[disk].partitions = right.disks[disk].partitions;
    }
    Compare(rest.registry, right.registry, "registry", words);
    Compare(rest.volumes, right.volumes, "file", words);
    Compare(rest, right, "other", words);
    return words;
}

std::set<uint32_t> DifferentDisks(const Pc& left, const Pc& right) {
    std::set<uint32_t> numbers;
    for (size_t disk = 0; disk < left.disks.size() && disk < right.disks.size(); ++disk) {
        if (left.disks[disk] != right.disks[disk]) numbers.insert(left.disks[disk].number);
    }
    return numbers;
}

Flags ActiveFlags(const Pc& pc) {
    Flags flags;
    for (const machine::Disk& disk : pc.disks) {
        for (const Partition& partition : disk.partitions) {
            if (partition.bootIndicator != 0) flags.emplace(disk.number, partition.number);
        }
    }
    return flags;
}

}  // namespace sweep
