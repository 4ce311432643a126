// The files of a UDF disc that lies in an image.
#pragma once

#include "machine/media/device/volume_bytes.h"
#include "machine/media/volumes/read_only_volume.h"

namespace machine {

// UDF 1.02 to 2.01 as mastering writes it: sectors of 2048 bytes, one partition, files of recorded extents.
// Discs written in packets, and those with a metadata partition (2.50 and above), count as damaged.
class UdfVolume final : public ReadOnlyVolume {
  public:
    // Reads the volume descriptors; without those that lead to a root folder the disc counts as damaged.
    explicit UdfVolume(VolumeBytes bytes);

  protected:
    Entry Root() const override { return root_; }
    std::optional<std::vector<Entry>> List(const Entry& folder) const override;
    std::optional<std::string> Content(const Entry& file) const override;

  private:
    // What a file entry says of its file.
    struct FileEntry;

    void ReadDescriptors();
    bool ReadSequence(uint64_t first, uint64_t count);
    bool ReadRoot(std::string_view logicalVolume, std::string_view partition);
    std::optional<std::string> ReadSector(uint64_t sector, uint16_t tag) const;
    std::optional<std::string> ReadBlocks(uint64_t block, uint64_t length) const;
    std::optional<FileEntry> ReadFileEntry(uint64_t block) const;
    std::optional<std::string> ReadContent(const FileEntry& entry) const;

    VolumeBytes bytes_;
    // The partition, in sectors.
    uint64_t start_ = 0;
    uint64_t sectors_ = 0;
    Entry root_;
};

}  // namespace machine
