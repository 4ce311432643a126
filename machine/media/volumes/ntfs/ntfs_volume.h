// The files of an NTFS volume on an image, through libntfs-3g.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "machine/facts/file_store.h"
#include "machine/media/image/image_file.h"

namespace machine {

class NtfsVolume : public VolumeStore {
  public:
    // Does not read anything; the volume is mounted on first use, for writing on the first change.
    NtfsVolume(std::shared_ptr<ImageFile> image, uint64_t offset, uint64_t size);
    ~NtfsVolume() override;

    // How the volume is called in messages.
    void SetName(const std::string& name) { name_ = name; }

    using Condition = VolumeCondition;
    Condition Check() override;
    // 0 if its condition allows a change; otherwise the error of Write, with the image barred.
    uint32_t PrepareChange();

    // Finds nothing on a volume that cannot be mounted. Error codes beyond those of FileStore: 5 for files
    // to which Windows denies access (read-only for Write and Remove, encrypted, a folder, the file
    // system's own), 112 if the volume is full, 123 for an invalid name, 1117 if the medium cannot be read
    // or written, 1392 if the volume or the file is damaged. A volume on which an operation reads more than a
    // sound one can demand refers to itself: it is damaged from then on, and an image that it was changed on
    // is no longer written. Write and Remove leave a volume in a wrong condition alone, return 19 or 1392,
    // and bar the image from being committed.
    FileKind Find(std::string_view path) override;
    uint32_t Read(std::string_view path, std::string& content) override;
    uint32_t Write(std::string_view path, std::string_view content) override;
    uint32_t Remove(std::string_view path) override;
    // Without the file system's own files, and without the second names of the days of DOS.
    uint32_t List(std::string_view path, std::vector<FileEntry>& entries) override;
    // Files of any length.
    uint32_t ReadParts(std::string_view path, const std::function<void(std::string_view)>& take) override;
    std::string WhyUnchangeable() override;

  private:
    class Mount;
    Mount& Mounted();
    bool AllowsChange(Condition condition) const;

    std::shared_ptr<ImageFile> image_;
    uint64_t offset_;
    uint64_t size_;
    std::string name_ = "an NTFS volume";
    std::optional<Condition> condition_;  // once it was mounted for writing
    std::unique_ptr<Mount> mount_;
};

}  // namespace machine
