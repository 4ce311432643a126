// The files of a UDF disc on an image.
#pragma once

#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/read_only_volume.h"
#include "machine/media/volumes/udf_partition.h"

namespace machine {

// Whether the sequence of volume structures names UDF, which it may do beside ISO 9660.
bool IsNamedUdf(const VolumeBytes& bytes);

// UDF 1.02 to 2.60, also as written in packets: with a virtual or sparable partition, or with one for
// metadata. Not read are named streams, further volumes of a set, and what other sessions than the last one
// have alone.
class UdfVolume final : public ReadOnlyVolume {
  public:
    // Reads the volume descriptors; a disc without those that lead to a root folder counts as damaged.
    explicit UdfVolume(VolumeBytes bytes);

    // UTF-8, or empty; nothing on a disc without an anchor.
    const std::optional<std::string>& Label() const { return label_; }
    // Bytes; meaningful only with a label.
    uint64_t BlockSize() const { return blockSize_; }

  protected:
    Item Root() const override { return root_; }
    std::optional<std::vector<Entry>> List(const Item& folder) const override;
    std::optional<uint64_t> Length(const Item& file) const override;
    std::optional<std::string> Content(const Item& file) const override;

  private:
    struct Extent;
    struct FileEntry;

    bool ReadDescriptors();
    bool ReadSequence(uint64_t first, uint64_t count);
    bool ReadRoot(std::string_view logicalVolume);
    void ReadPartitions(std::string_view logicalVolume, const std::map<uint16_t, UdfRun>& physical);
    UdfPartition ReadPartition(std::string_view map, const UdfRun& physical, uint64_t base) const;
    UdfPartition ReadSparable(std::string_view map, const UdfRun& physical) const;
    UdfPartition ReadVirtual(uint64_t base, uint64_t start) const;
    std::optional<std::string> ReadVirtualTable(const FileEntry& entry) const;
    UdfPartition ReadMetadata(std::string_view map, uint64_t base) const;
    std::optional<std::string> ReadDescriptor(uint64_t sector, uint16_t tag) const;
    // A place is the number of a block and, in the upper half, that of its partition.
    std::optional<std::string> ReadPlace(uint64_t place, uint64_t length) const;
    std::optional<FileEntry> ReadFileEntry(uint64_t place) const;
    // In the order of the content; nothing if they are damaged.
    std::optional<std::vector<Extent>> ReadExtents(const FileEntry& entry) const;
    std::optional<std::string> ReadContent(const FileEntry& entry) const;

    uint64_t blockSize_ = 0;  // also that of sectors
    std::vector<UdfPartition> partitions_;
    std::optional<std::string> label_;
    Item root_;
};

}  // namespace machine
