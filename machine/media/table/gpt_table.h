// A GUID partition table: which of its two copies to use, and what is wrong with it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/media/image/image_file.h"
#include "machine/media/table/gpt_copy.h"

namespace machine {

struct GptTable {
    // The primary copy, unless only the backup can be used; none if neither can.
    std::optional<GptCopy> used;
    // Sentences without a full stop, the most severe first: a copy that is missing or damaged, copies that
    // differ, a backup that is not at the end of the disk, a protective MBR that does not cover the disk.
    // Writing both copies and the protective MBR mends all of them.
    std::vector<std::string> problems = {};
};

// Reads both copies: the primary one behind the MBR; the backup where the primary one says, else where the
// protective MBR ends, else at the end of the disk.
GptTable ReadGptTable(const ImageFile& image, uint64_t sectorSize);

// Whether the MBR has an entry for a GUID partition table, of type 0xEE.
bool HasProtectiveMbr(const ImageFile& image);

// Whether the MBR has another partition beside that entry.
bool IsHybrid(const ImageFile& image);

}  // namespace machine
