// Reads the partition table of an image into the facts of a disk, and changes it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "machine/facts/partition_table.h"
#include "machine/facts/pc.h"
#include "machine/media/image/image_file.h"
#include "machine/media/table/mbr_entries.h"

namespace machine {

// What is wrong with a table that can be read all the same, in sentences without a full stop.
struct TableFindings {
    // As long as there is one, nothing on the disk may be changed.
    std::vector<std::string> problems = {};
    // What the user should know, but bars nothing.
    std::vector<std::string> remarks = {};
    // Whether writing the GUID partition table anew ends all problems.
    bool canBeRepaired = false;
};

// Whether the image has a partition table that Windows knows, valid or not.
bool HasTable(const ImageFile& image);

// Why an image without one is not taken for a disk, without a full stop.
std::string WhyNoDisk(const ImageFile& image);

// Sets the facts of a disk without a partition table: its size and that of its sectors.
void ReadBlank(const ImageFile& image, Disk& disk);

// Sets the disk's size, style, signature or GUID, and its partitions without their volumes. They are
// numbered as in Windows: used entries from 1, logical partitions after the primary ones, the first extended
// partition 0; it lists no further one. A table that is damaged in part is read as far as it can be. Throws
// ImageError if there is no table, or neither copy of a GUID partition table can be used.
TableFindings ReadTable(const ImageFile& image, Disk& disk);

// Changes are written by the image's next commit.
class ImageTable : public PartitionTable {
  public:
    ImageTable(std::shared_ptr<ImageFile> image, PartitionStyle style)
        : image_(std::move(image)), style_(style) {}
    uint32_t SetActive(uint64_t partitionOffset, bool active, OtherFlags others) override;
    uint32_t SetMbrType(uint64_t partitionOffset, uint8_t type) override;
    std::vector<TableEntry> Entries() override;

  private:
    // Changes the entry of the partition; false if the image cannot be read there.
    using Edit = std::function<bool(const std::vector<MbrEntry>& entries, const MbrEntry& chosen)>;
    uint32_t Change(uint64_t partitionOffset, const Edit& edit);
    bool Put(uint64_t place, uint8_t value);

    std::shared_ptr<ImageFile> image_;
    PartitionStyle style_;
};

}  // namespace machine
