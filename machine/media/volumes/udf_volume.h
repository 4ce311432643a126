// The files of a UDF disc on an image.
#pragma once

#include "machine/media/device/volume_bytes.h"
#include "machine/media/volumes/read_only_volume.h"

namespace machine {

// Whether the sequence of volume structures names UDF, which it may do beside ISO 9660.
bool IsNamedUdf(const VolumeBytes& bytes);

// UDF 1.02 to 2.01 as written by mastering software: one partition, recorded extents. Packet-written discs,
// and those with a metadata partition (2.50 and above), count as damaged.
class UdfVolume final : public ReadOnlyVolume {
  public:
    // Reads the volume descriptors; a disc without those that lead to a root folder counts as damaged.
    explicit UdfVolume(VolumeBytes bytes);

    // UTF-8, or empty; nothing on a disc without an anchor.
    const std::optional<std::string>& Label() const { return label_; }

  protected:
    Item Root() const override { return root_; }
    std::optional<std::vector<Entry>> List(const Item& folder) const override;
    std::optional<std::string> Content(const Item& file) const override;

  private:
    // The contents of a file entry.
    struct FileEntry;

    bool ReadDescriptors();
    bool ReadSequence(uint64_t first, uint64_t count);
    bool ReadRoot(std::string_view logicalVolume, std::string_view partition);
    std::optional<std::string> ReadDescriptor(uint64_t sector, uint16_t tag) const;
    std::optional<std::string> ReadBlocks(uint64_t block, uint64_t length) const;
    std::optional<FileEntry> ReadFileEntry(uint64_t block) const;
    std::optional<std::string> ReadContent(const FileEntry& entry) const;

    uint64_t blockSize_ = 0;  // also that of sectors
    // The extent of the partition, in blocks.
    uint64_t start_ = 0;
    uint64_t blocks_ = 0;
    std::optional<std::string> label_;
    Item root_;
};

}  // namespace machine
