#include "tests/support/application/application.h"

#include <stdexcept>

Application::Application(machine::Pc facts) : pc(std::move(facts)) {
    if (com.Result() != S_OK) throw std::runtime_error("no COM");
    if (!kestova.Initialize(false)) throw std::runtime_error("not initialised");
    pc.journal.Clear();
}

std::vector<uint32_t> ActivePartitions(const machine::EmulatedPc& pc) {
    std::vector<uint32_t> active;
    for (const machine::Partition& partition : pc.facts.disks.front().partitions) {
        if (partition.bootIndicator != 0) active.push_back(partition.number);
    }
    return active;
}

machine::Partition& PartitionOf(machine::Pc& pc, uint32_t number) {
    for (machine::Partition& partition : pc.disks.front().partitions) {
        if (partition.number == number) return partition;
    }
    throw std::out_of_range("no partition " + std::to_string(number));
}

std::optional<std::string> SystemVolumeIni(machine::EmulatedPc& pc) {
    const machine::FileTree::Entry* const entry =
        PartitionOf(pc.facts, 1).volume->files.Find("SystemVolume.ini");
    return entry != nullptr ? std::optional(entry->content) : std::nullopt;
}
