// One of the two copies of a GUID partition table: its header, and the entries that it leads to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/guid.h"
#include "machine/media/image/image_file.h"

namespace machine {

struct GptEntry {
    Guid type;
    Guid id;
    uint64_t first = 0;  // sectors, as are all numbers here
    uint64_t last = 0;
    uint64_t attributes = 0;
    std::string name = {};  // UTF-8
    uint32_t slot = 0;      // in the table, from 1

    bool operator==(const GptEntry&) const = default;
};

struct GptCopy {
    uint64_t place = 0;  // of the header
    uint64_t otherPlace = 0;
    uint64_t firstUsable = 0;
    uint64_t lastUsable = 0;
    Guid disk;
    uint64_t entriesPlace = 0;
    uint32_t entrySize = 0;                             // bytes
    uint32_t entryCount = 0;                            // used or not
    std::string entryBytes = {};                        // of all entries
    std::vector<GptEntry> entries = {};                 // the used ones
    std::optional<std::string> problem = std::nullopt;  // why the copy cannot be used: "has a wrong checksum"

    // Whether both say the same about the disk.
    bool Agrees(const GptCopy& other) const;
};

// The copy with its header in that sector, of sectorSize bytes. The problem is that of the first check that
// fails: the signature, the length and the checksum of the header, its own place, the length and the checksum
// of the entries.
GptCopy ReadGptCopy(const ImageFile& image, uint64_t place, uint64_t sectorSize);

// The bytes of a whole header sector, with its checksums.
std::string GptHeaderSector(const GptCopy& copy, uint64_t sectorSize);

}  // namespace machine
