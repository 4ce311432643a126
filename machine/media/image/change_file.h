// A file that holds changes of an image: what is written, and what it replaces.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machine/media/image/image_change.h"

namespace machine {

// What such a file begins with, by the purpose that it has.
inline constexpr std::string_view journalMagic = "KESTOVA JOURNAL 1\n";
inline constexpr std::string_view backupMagic = "KESTOVA BACKUP 1\n";

// One or more, in the order in which they are made.
struct ChangesOfImage {
    uint64_t imageSize = 0;  // bytes
    std::vector<ImageChange> changes = {};
};

// Puts the changes on the medium, as a file that is complete as soon as it has its name. False, with errno
// set, if that fails; an earlier file of the name can then still be there.
bool WriteChangeFile(const std::string& path, std::string_view magic, const ChangesOfImage& changes);

enum class ChangeFileState { Sound, Unreadable, Damaged };

struct ReadChanges {
    ChangeFileState state = ChangeFileState::Sound;
    ChangesOfImage content = {};  // if it is sound
};

// Damaged is also a file of another kind.
ReadChanges ReadChangeFile(const std::string& path, std::string_view magic);

// Deletes the file. False, with errno set, if it is still there.
bool DropChangeFile(const std::string& path);

// The image's path with that ending: of the image itself, not of a link to it. Empty for a disk of this
// computer.
std::string BesideImage(const std::string& image, std::string_view ending);

// The folder of a file, "." if its path has none.
std::string FolderOfFile(const std::string& path);

}  // namespace machine
