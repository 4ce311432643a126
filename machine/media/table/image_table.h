// The partition table of an image: read into the facts of a disk, and changed in place.
#pragma once

#include <functional>
#include <memory>

#include "machine/facts/partition_table.h"
#include "machine/facts/pc.h"
#include "machine/media/device/image_file.h"

namespace machine {

class FdiskSession;

// Whether there is a partition table that Windows knows, sound or not.
bool HasTable(const ImageFile& image);

// Sets the disk's size, style, signature or GUID, and its partitions without their volumes, numbered as
// Windows does: used entries from 1, logical ones after the primary ones, the extended partition itself left
// out. Throws ImageError when there is no table, or one that does not fit the disk, overlaps or is damaged.
void ReadTable(const ImageFile& image, Disk& disk);

// On a dry run changes are checked as usual and then dropped; the disk's facts are what remembers them.
class ImageTable : public PartitionTable {
  public:
    explicit ImageTable(std::shared_ptr<ImageFile> image) : image_(std::move(image)) {}
    uint32_t SetActive(uint64_t partitionOffset, bool active, OtherFlags others) override;
    uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) override;
    std::vector<TableEntry> Entries() override;

  private:
    // Makes a change in libfdisk's memory; false when the partition cannot have that value.
    using Edit = std::function<bool(const FdiskSession& session, size_t slot)>;
    uint32_t Change(uint64_t partitionOffset, const Edit& edit);

    std::shared_ptr<ImageFile> image_;
};

}  // namespace machine
