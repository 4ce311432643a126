// The files of a FAT12, FAT16 or FAT32 volume on an image, read only.
#pragma once

#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/fat_layout.h"
#include "machine/media/volumes/read_only_volume.h"

namespace machine {

// Files are found by long names and by short ones, which are in the emulated PC's OEM code page. An entry
// that cannot be is lost; the others are found.
class FatVolume final : public ReadOnlyVolume {
  public:
    // Reads the boot sector; a volume with an implausible one counts as damaged.
    explicit FatVolume(VolumeBytes bytes);

    // That of the root folder, or else of the boot sector, in UTF-8. Empty if there is none.
    std::string Label() const;
    // By the bits of its allocation table; FAT12 has none.
    VolumeCondition Check() override;

  protected:
    Item Root() const override;
    std::optional<std::vector<Entry>> List(const Item& folder) const override;
    std::optional<std::string> Content(const Item& file) const override;

  private:
    std::optional<std::string> FolderBytes(const Item& folder) const;

    std::optional<FatLayout> layout_;
};

}  // namespace machine
