#include "tools/kestova/pc/disk_facts.h"

#include <algorithm>

#include "machine/facts/letters.h"

namespace {

std::optional<std::string> ConditionOf(machine::VolumeStore& store) {
    switch (store.Check()) {
        case machine::VolumeCondition::Clean:
            return volume_condition::clean;
        case machine::VolumeCondition::Dirty:
            return volume_condition::dirty;
        case machine::VolumeCondition::Unreplayed:
            return volume_condition::inconsistent;
        case machine::VolumeCondition::Hibernated:
            return volume_condition::hibernated;
        case machine::VolumeCondition::Damaged:
            return volume_condition::damaged;
        case machine::VolumeCondition::Unknown:
            break;
    }
    return std::nullopt;
}

std::optional<std::string> ConditionOf(const machine::Volume& volume) {
    const uint32_t error = machine::WhyUnreadable(volume);
    if (error == machine::errorLockedVolume || volume.label.error == machine::errorLockedVolume)
        return volume_condition::encrypted;
    if (error != ERROR_SUCCESS) return volume_condition::unreadable;
    return volume.store ? ConditionOf(*volume.store) : std::nullopt;
}

PartitionFacts FactsOf(const machine::Partition& partition) {
    PartitionFacts facts{.number = static_cast<int>(partition.number)};
    if (partition.slot) facts.slot = static_cast<int>(*partition.slot);
    if (!partition.volume) return facts;
    const machine::Volume& volume = *partition.volume;
    facts.condition = ConditionOf(volume);
    if (volume.fileSystem == "RAW") return facts;
    facts.fileSystem = volume.fileSystem;
    if (machine::WhyUnreadable(volume) == ERROR_SUCCESS) facts.label = volume.label.value;
    return facts;
}

}  // namespace

std::vector<PartitionFacts> PartitionFactsOf(const machine::Pc& pc, int disk) {
    std::vector<PartitionFacts> facts;
    const auto found = std::ranges::find(pc.disks, static_cast<uint32_t>(disk), &machine::Disk::number);
    if (found == pc.disks.end()) return facts;
    for (const machine::Partition& partition : found->partitions)
        facts.push_back(FactsOf(partition));
    return facts;
}
