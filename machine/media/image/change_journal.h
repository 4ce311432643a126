// The journal of a change of an image: a file that holds what is about to be written and what it replaces.
// While it exists, the change may be on the image in part.
#pragma once

#include <optional>
#include <string>

#include "machine/media/device/image_access.h"
#include "machine/media/image/image_change.h"

namespace machine {

class ChangeJournal {
  public:
    // The journal of that image in the place that the user chose; without one it keeps and finds nothing.
    ChangeJournal(const std::string& image, const JournalPlace& place);

    // The file; empty without one.
    const std::string& Path() const { return path_; }
    // Throws ImageError if the file could not be made, or would not outlive a power cut that the image
    // outlives.
    void CheckPlace() const;
    // Puts the change on the medium, as a file that is complete as soon as it has its name. Returns what is
    // wrong, empty if nothing is.
    std::string Keep(const ImageChange& change, uint64_t imageSize) const;
    // The change that was kept last, if it was not dropped. Throws ImageError for a file that is no journal,
    // is damaged, or belongs to an image of another size.
    std::optional<ImageChange> Pending(uint64_t imageSize) const;
    // False, with errno set, if the file is still there.
    bool Drop() const;

  private:
    std::string image_;
    bool hasNoPlace_;  // beside the image, where it should be
    std::string path_;
};

}  // namespace machine
