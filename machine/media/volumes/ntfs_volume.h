// The files of an NTFS volume on an image, through libntfs-3g.
#pragma once

#include <cstdint>
#include <memory>

#include "machine/facts/file_store.h"
#include "machine/media/device/image_file.h"

namespace machine {

class NtfsVolume : public FileStore {
  public:
    // Does not read anything; the volume is mounted on first use.
    NtfsVolume(std::shared_ptr<ImageFile> image, uint64_t offset, uint64_t size);
    ~NtfsVolume() override;

    // Whether Windows left the volume in a state in which it may be changed.
    enum class Condition { Clean, Dirty, Hibernated, Damaged };
    Condition Check();
    // From here on the volume is only read.
    void Protect();

    // Finds nothing on a volume that cannot be mounted. Error codes beyond those of FileStore: 5 for files
    // to which Windows denies access (read-only for Write and Remove, encrypted, a folder, the file
    // system's own), 112 if the volume is full, 123 for an invalid name, 1117 if the medium cannot be read
    // or written, 1392 if the volume or the file is damaged. A volume on which an operation reads more than a
    // sound one can demand refers to itself: it is damaged from then on, and the image is no longer written.
    FileKind Find(std::string_view path) override;
    uint32_t Read(std::string_view path, std::string& content) override;
    uint32_t Write(std::string_view path, std::string_view content) override;
    uint32_t Remove(std::string_view path) override;

  private:
    class Mount;
    Mount& Mounted();
    bool IsProtected() const;

    std::shared_ptr<ImageFile> image_;
    uint64_t offset_;
    uint64_t size_;
    bool isProtected_ = false;
    std::unique_ptr<Mount> mount_;
};

}  // namespace machine
