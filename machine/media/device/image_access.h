// How an image is opened, and the exception for one that cannot be used.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace machine {

// Overlay is a dry run: changes stay in memory and never reach the file.
enum class ImageAccess { Read, Write, Overlay };

// Where the journal of an image's changes is: beside the image, in a file that was named, or nowhere. Without
// one a power cut can leave a change half written.
struct JournalPlace {
    enum class Kind { Beside, Named, None };
    Kind kind = Kind::Beside;
    std::string path = {};  // of Named
};

// The file of Kind::Beside: beside the image itself, not a link to it. Empty for a disk of this computer,
// which has no place beside it.
std::string JournalBeside(const std::string& image);

struct ImageUse {
    ImageUse(ImageAccess wanted, JournalPlace place = {}) : access(wanted), journal(std::move(place)) {}

    ImageAccess access;
    JournalPlace journal;
    // Where a backup of what was changed stays.
    JournalPlace backup = {JournalPlace::Kind::None};
    // Whether an NTFS volume that is merely marked dirty may be changed.
    bool forceDirty = false;
    // Whether the user has confirmed that what is changed may be a disk of this computer.
    bool changesDisks = false;
    // In bytes, 512 or 4096; absent: what the device says, or the table shows.
    std::optional<uint32_t> sectorSize = std::nullopt;
    // Whether a disk with a damaged table is opened for changes of other disks; those of itself are refused.
    bool mayBeDamaged = false;
    // Whether a disk without a partition table is opened, as one beside others.
    bool mayBeBlank = false;
    // Called before a change is written to the image, or one that was interrupted is ended on it.
    std::function<void()> beforeWriting = [] {};
};

// The image file cannot be used. what() reads "FILE: what is wrong[, where]".
class ImageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace machine
