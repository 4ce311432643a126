// How an image is opened, and the exception for one that cannot be used.
#pragma once

#include <stdexcept>

namespace machine {

// Overlay is a dry run: changes stay in memory and never reach the file.
enum class ImageAccess { Read, Write, Overlay };

// The image file cannot be used. what() reads "FILE: what is wrong[, where]".
class ImageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace machine
