// Reads the partition table of an image into the facts of a disk, and changes it in place.
#pragma once

#include <functional>
#include <memory>

#include "machine/facts/partition_table.h"
#include "machine/facts/pc.h"
#include "machine/media/device/image_file.h"

namespace machine {

class FdiskSession;

// Whether the image has a partition table that Windows knows, valid or not.
bool HasTable(const ImageFile& image);

// Sets the disk's size, style, signature or GUID, and its partitions without their volumes. They are
// numbered as in Windows: used entries from 1, logical partitions after the primary ones, without the
// extended partition. Throws ImageError if there is no table, or if it does not fit the disk, overlaps or
// is damaged.
void ReadTable(const ImageFile& image, Disk& disk);

// On a dry run, changes are checked as usual and then dropped; only the disk's facts contain them.
class ImageTable : public PartitionTable {
  public:
    explicit ImageTable(std::shared_ptr<ImageFile> image) : image_(std::move(image)) {}
    uint32_t SetActive(uint64_t partitionOffset, bool active, OtherFlags others) override;
    uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) override;
    std::vector<TableEntry> Entries() override;

  private:
    // Applies a change in libfdisk's memory; false if the partition cannot have that value.
    using Edit = std::function<bool(const FdiskSession& session, size_t slot)>;
    uint32_t Change(uint64_t partitionOffset, const Edit& edit);

    std::shared_ptr<ImageFile> image_;
};

}  // namespace machine
