// A recovery application on an emulated PC, as the library's tests need it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/com_apartment.h"
#include "machine/journal/emulated_pc.h"
#include "manager/kestova.h"
#include "tests/support/leftovers.h"
#include "tests/support/print_pc.h"

// Has made its object, initialised it, and starts with an empty journal.
class Application {
  public:
    explicit Application(machine::Pc facts);

    machine::EmulatedPc pc;
    ComApartment com;
    Kestova kestova;
};

// Numbers of the active partitions of the first described disk.
std::vector<uint32_t> ActivePartitions(const machine::EmulatedPc& pc);

// That partition of the first described disk.
machine::Partition& PartitionOf(machine::Pc& pc, uint32_t number);

// SystemVolume.ini on partition 1 of the first described disk; nothing when there is none.
std::optional<std::string> SystemVolumeIni(machine::EmulatedPc& pc);
