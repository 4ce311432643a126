// The files of an ISO 9660 disc on an image, with the long names of Joliet if present.
#pragma once

#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/read_only_volume.h"

namespace machine {

// Names are as Windows shows them: without version (";1"), and without the dot of an empty extension. A file
// can have several sections, of one record each. One whose sections are interleaved, or not complete, is
// found, but counts as damaged when read.
class IsoVolume final : public ReadOnlyVolume {
  public:
    // Reads the volume descriptors; a disc without a plausible one counts as damaged.
    explicit IsoVolume(VolumeBytes bytes);

    // That of Joliet, unless it is only the beginning of the other one, in UTF-8; or empty.
    std::string Label() const;

  protected:
    Item Root() const override { return root_; }
    std::optional<std::vector<Entry>> List(const Item& folder) const override;
    std::optional<std::string> Content(const Item& file) const override;

  private:
    void ReadDescriptors();
    Entry EntryOf(std::string_view record) const;
    uint64_t StartOf(std::string_view record) const;

    uint64_t blockSize_ = 0;  // 0: no valid descriptor
    bool isJoliet_ = false;
    std::string label_;
    std::string jolietLabel_;
    Item root_;
};

}  // namespace machine
