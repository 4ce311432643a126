// A file that holds a change of an image: what is written, and what it replaces.
#pragma once

#include <string>
#include <string_view>

#include "machine/media/image/image_change.h"

namespace machine {

// Puts the change on the medium, as a file that is complete as soon as it has its name. False, with errno set
// and no such file, if that fails.
bool WriteChangeFile(const std::string& path, const ImageChange& change, uint64_t imageSize);

enum class ChangeFileState { Sound, Unreadable, Damaged, OfAnotherSize };

struct ReadChange {
    ChangeFileState state = ChangeFileState::Sound;
    ImageChange change = {};  // if it is sound
};

// Damaged is also a file of another kind; OfAnotherSize a sound one of another image.
ReadChange ReadChangeFile(const std::string& path, uint64_t imageSize);

// Deletes the file. False, with errno set, if it is still there.
bool DropChangeFile(const std::string& path);

// The image's path with that ending: of the image itself, not of a link to it.
std::string BesideImage(const std::string& image, std::string_view ending);

// The folder of a file, "." if its path has none.
std::string FolderOfFile(const std::string& path);

}  // namespace machine
