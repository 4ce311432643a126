// Identifies the file system at an offset of an image, and reads its label.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "machine/media/device/image_file.h"

struct blkid_struct_probe;

namespace machine {

struct FileSystem {
    // As GetVolumeInformationW reports it: "NTFS", "FAT32", "FAT", "exFAT", "ReFS", "BitLocker"; on discs
    // "UDF" and "CDFS".
    std::string kind;
    std::string label;  // UTF-8
};

enum class MediumKind { Disk, Disc };

class FileSystemProbe {
  public:
    // Detects the file systems that Windows expects on that kind of medium.
    FileSystemProbe(const ImageFile& image, MediumKind medium);
    ~FileSystemProbe();
    FileSystemProbe(const FileSystemProbe&) = delete;
    FileSystemProbe& operator=(const FileSystemProbe&) = delete;

    // Nothing if Windows would not recognise it.
    std::optional<FileSystem> Identify(uint64_t offset, uint64_t size);

  private:
    std::string Value(const char* name) const;

    const ImageFile& image_;
    blkid_struct_probe* probe_;
};

}  // namespace machine
