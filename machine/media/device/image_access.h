// How an image is opened, and what is thrown when it cannot be.
#pragma once

#include <stdexcept>

namespace machine {

// Overlay is a dry run: changes are kept in memory, and nothing reaches the file.
enum class ImageAccess { Read, Write, Overlay };

// A file that cannot be used as the disk it should be. what() reads "FILE: what is wrong[, where]".
class ImageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace machine
