// A volume of the PC as the user names it, and its files.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "machine/facts/pc.h"
#include "tools/kestova/common/errors.h"

// By its letter in the running system, or by its partition.
struct VolumePlace {
    char letter = '\0';  // '\0': by its partition
    int disk = 0;
    int partition = 0;
};

struct FoundVolume {
    std::optional<int> disk = {};  // none for a disc, a stick or a network drive
    std::optional<int> partition = {};
    std::string letters = {};
    std::shared_ptr<machine::VolumeStore> files = {};  // as long as the PC; never null
};

// The PC that the program runs on is not looked into.
struct NotLookedInto : Failed {
    using Failed::Failed;
};

// Throws Failed, with what is there instead, for a place without a volume whose files can be read.
FoundVolume FindVolume(machine::Pc& pc, const VolumePlace& place);
