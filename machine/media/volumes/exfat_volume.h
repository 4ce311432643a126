// The files of an exFAT volume on an image, read only.
#pragma once

#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/cluster_chain.h"
#include "machine/media/volumes/read_only_volume.h"

namespace machine {

// A file whose entries are damaged, by their checksum, is not found; the others are.
class ExfatVolume final : public ReadOnlyVolume {
  public:
    // Reads the boot sector; a volume with an implausible one, or one that is cut off, counts as damaged.
    explicit ExfatVolume(VolumeBytes bytes);

    // UTF-8, or empty; nothing without the boot sector of an exFAT volume.
    std::optional<std::string> Label() const;
    VolumeCondition Check() override;

  protected:
    Item Root() const override;
    std::optional<std::vector<Entry>> List(const Item& folder) const override;
    std::optional<std::string> Content(const Item& file) const override;

  private:
    struct Layout : ClusterLayout {
        uint32_t rootCluster = 0;
    };

    // Nothing if it is not a boot sector of exFAT, or the checksum of the boot area is wrong: Windows mounts
    // no such volume. Its parts may be beyond the end of what is there.
    static std::optional<Layout> ReadLayout(const VolumeBytes& bytes);
    std::optional<std::string> FolderBytes(const Item& folder) const;
    std::optional<std::string> RecordedBytes(const Item& item) const;

    std::optional<Layout> layout_;
};

}  // namespace machine
