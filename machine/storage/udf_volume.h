// The files of a UDF disc that lies in an image.
#pragma once

#include "machine/storage/read_only_volume.h"
#include "machine/storage/volume_bytes.h"

namespace machine {

// UDF 1.02 to 2.60 as pressed and written discs have it: sectors of 2048 bytes, one partition, its metadata
// in a partition of their own or not. Packet-written discs (sparable and virtual partitions) count as
// damaged.
class UdfVolume final : public ReadOnlyVolume {
  public:
    // Reads the volume descriptors; without those that lead to a root folder the disc counts as damaged.
    explicit UdfVolume(VolumeBytes bytes);

  protected:
    Entry Root() const override { return root_; }
    std::optional<std::vector<Entry>> List(const Entry& folder) const override;
    std::optional<std::string> Content(const Entry& file) const override;

  private:
    // A run of blocks, by the partition that their numbers count in, or of zeros.
    struct Extent {
        uint64_t length = 0;  // bytes
        uint32_t block = 0;
        uint16_t partition = 0;
        bool isRecorded = true;
    };

    // What a file entry says of its file.
    struct FileEntry {
        uint8_t type = 0;
        uint64_t size = 0;  // bytes
        bool isInside = false;
        std::string inside;  // the content, when it is small enough to lie in the entry
        std::vector<Extent> extents;
    };

    // A logical partition: blocks of the disc from `start` on, or of a metadata file on it.
    struct Partition {
        uint64_t start = 0;  // sector
        uint64_t sectors = 0;
        std::vector<Extent> metadata;
    };

    void ReadDescriptors();
    bool ReadPartitions(std::string_view logicalVolume, std::string_view physicalPartition);
    bool ReadRoot(std::string_view logicalVolume);
    std::optional<std::string> ReadSector(uint64_t sector, uint16_t tag) const;
    std::optional<std::string> ReadBlock(uint16_t partition, uint64_t block) const;
    std::optional<FileEntry> ReadFileEntry(uint16_t partition, uint32_t block) const;
    bool ReadExtents(std::string_view descriptors, uint8_t form, uint16_t partition,
                     std::vector<Extent>& extents) const;
    std::optional<std::string> ReadContent(const FileEntry& entry) const;
    std::optional<std::string> ReadExtent(const Extent& extent, uint64_t length) const;

    VolumeBytes bytes_;
    std::vector<Partition> partitions_;
    Entry root_;
};

}  // namespace machine
