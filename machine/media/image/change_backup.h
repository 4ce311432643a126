// The backup of what was changed on an image since it was opened: what takes all of it back.
#pragma once

#include <string>

#include "machine/media/device/image_access.h"
#include "machine/media/image/change_file.h"
#include "machine/media/image/image_change.h"

namespace machine {

class ChangeBackup {
  public:
    // Beside the image it is what BackupBeside says when a change is made.
    ChangeBackup(const std::string& image, const JournalPlace& place);

    // Throws ImageError for a named file that exists, or whose folder cannot be written.
    void CheckPlace() const;
    // Adds a change, which is about to be written, to the file. Returns what is wrong, empty if nothing is.
    std::string Add(const ImageChange& change, uint64_t imageSize);
    // The change that was added last was not made. The file serves also if that cannot be written into it.
    void TakeBack(uint64_t imageSize);
    // The file; empty if there is none.
    std::string Path() const { return changes_.empty() ? "" : path_; }

  private:
    std::string image_;
    JournalPlace place_;
    std::string path_;
    std::vector<ImageChange> changes_;  // the last, and before it all earlier ones as one
};

// One change of the same effect.
ImageChange Joined(const ImageChange& first, const ImageChange& second);

// What a backup holds: one change, or two, of which the last was perhaps not made, since the program was
// killed while it was being written. Throws ImageError for a file that cannot be read, is no backup or is
// damaged.
ChangesOfImage ReadBackup(const std::string& path);

// The file beside the image that its next backup is: the first free one of IMAGE.kestova-backup-1, -2, ...
std::string BackupBeside(const std::string& image);

// The image of a backup that is named after it; empty if it is not.
std::string ImageOfBackup(const std::string& backup);

}  // namespace machine
