// The bytes of an image file, with a copy-on-write overlay for a dry run.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "machine/media/device/image_access.h"

namespace machine {

class ImageFile {
  public:
    // Opens the file; for writing, locks it against other writers for the lifetime of this object. Throws
    // ImageError if it is missing, a folder, empty, not a whole number of sectors, not permitted or locked.
    ImageFile(const std::string& path, ImageAccess access);
    ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    const std::string& Path() const { return path_; }
    ImageAccess Access() const { return access_; }
    uint64_t Size() const { return size_; }  // bytes
    // The file without the overlay, for libraries that read it themselves.
    int Descriptor() const { return descriptor_; }

    // Reads all of the bytes or returns false, also for a range beyond the end of the file.
    bool Read(uint64_t offset, void* buffer, size_t length) const;
    // The same for writing; also false if the image is open for reading only. On a dry run writes to the
    // overlay.
    bool Write(uint64_t offset, const void* bytes, size_t length);
    // False if the bytes written so far may not be on the medium.
    bool Flush();

    // An error with the name of this file.
    ImageError Error(const std::string& whatIsWrong) const;

  private:
    static constexpr size_t blockSize = 4096;
    using Block = std::array<uint8_t, blockSize>;

    void Lock();
    bool IsInside(uint64_t offset, size_t length) const;
    bool ReadFile(uint64_t offset, void* buffer, size_t length) const;
    bool WriteFile(uint64_t offset, const void* bytes, size_t length);
    bool WriteOverlay(uint64_t offset, const uint8_t* bytes, size_t length);

    std::string path_;
    ImageAccess access_;
    int descriptor_ = -1;
    uint64_t size_ = 0;
    std::map<uint64_t, Block> overlay_;  // changed blocks by their number
};

}  // namespace machine
