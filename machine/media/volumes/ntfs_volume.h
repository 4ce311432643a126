// The files of an NTFS volume that lies in an image, through libntfs-3g with the image as its device.
#pragma once

#include <cstdint>
#include <memory>

#include "machine/facts/file_store.h"
#include "machine/media/device/image_file.h"

namespace machine {

class NtfsVolume : public FileStore {
  public:
    // Reads nothing yet; the volume is opened at the first question.
    NtfsVolume(std::shared_ptr<ImageFile> image, uint64_t offset, uint64_t size);
    ~NtfsVolume() override;

    // Whether Windows left the volume in a state that others may change.
    enum class Condition { Clean, Dirty, Hibernated, Damaged };
    Condition Check();

    // On a volume that cannot be opened there is nothing to find. Besides the codes of FileStore: 5 for files
    // that Windows refuses (read-only for Write and Remove, encrypted, a folder, the file system's own), 112
    // when the volume is full, 123 for a name that Windows does not take, 1117 when the medium cannot be read
    // or written, 1392 when the volume or the file is damaged.
    FileKind Find(std::string_view path) override;
    uint32_t Read(std::string_view path, std::string& content) override;
    uint32_t Write(std::string_view path, std::string_view content) override;
    uint32_t Remove(std::string_view path) override;

  private:
    class Mount;
    Mount& Mounted();

    std::shared_ptr<ImageFile> image_;
    uint64_t offset_;
    uint64_t size_;
    std::unique_ptr<Mount> mount_;
};

}  // namespace machine
