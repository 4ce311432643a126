// A disk of the Virtual Disk Service on which calls that change it are tried.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/owners.h"
#include "base/wide_string.h"
#include "platform/vds.h"

struct TrialPartition {
    ULONG number = 0;
    ULONGLONG offset = 0;
    BYTE type = 0;
    bool isActive = false;
    bool holdsVolume = false;
    WideString letters = {};

    bool operator==(const TrialPartition&) const = default;
};

struct TrialDisk {
    int number = 0;
    std::string name;   // as the service calls it
    std::string words;  // "\\?\PhysicalDrive1, 10.0 GiB, 2 partitions, letters E: F:"
    ComPtr<IVdsDisk> disk = {};
    ComPtr<IVdsAdvancedDisk> advanced = {};
    ComPtr<IVdsAdvancedDisk2> types = {};
    // Its partitions, without an extended one.
    std::vector<TrialPartition> partitions = {};
};

// The disk of that number. Throws WrongUse for one that is not there or on which nothing may be tried: it
// holds the running Windows, or where that is could not be told, or a page file; it is the first internal
// disk, or no MBR disk with partitions.
TrialDisk FindTrialDisk(int number, int firstInternal);

// As they are now; nothing if the service does not say so.
std::optional<std::vector<TrialPartition>> PartitionsNow(TrialDisk& disk);
