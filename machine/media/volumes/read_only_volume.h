// The common part of the read-only file systems: resolves paths name by name from the root, ignoring case,
// and refuses changes.
#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "machine/facts/file_store.h"
#include "machine/media/image/volume_bytes.h"

namespace machine {

class ReadOnlyVolume : public VolumeStore {
  public:
    // Finds nothing on a damaged volume, not even the root. Error codes beyond those of FileStore: 5 for a
    // folder, 1392 if the volume or the file is damaged. Write and Remove return 19.
    FileKind Find(std::string_view path) final;
    uint32_t Read(std::string_view path, std::string& content) final;
    uint32_t Write(std::string_view path, std::string_view content) final;
    uint32_t Remove(std::string_view path) final;
    uint32_t List(std::string_view path, std::vector<FileEntry>& entries) final;
    std::string WhyUnchangeable() final;

  protected:
    explicit ReadOnlyVolume(VolumeBytes bytes);

    // A file or a folder.
    struct Item {
        bool isFolder = false;
        uint64_t place = 0;       // location of the content, defined by the file system
        uint64_t size = 0;        // bytes
        uint64_t unrecorded = 0;  // of them at the end, which read as zero
    };
    struct Entry : Item {
        std::string name;   // UTF-8
        std::string alias;  // a second name, or empty
    };

    const VolumeBytes& Bytes() const { return bytes_; }

    virtual Item Root() const = 0;
    // The entries of the folder without itself and its parent; nothing if it is damaged.
    virtual std::optional<std::vector<Entry>> List(const Item& folder) const = 0;
    // Bytes of a file; nothing if it is damaged.
    virtual std::optional<uint64_t> Length(const Item& file) const { return file.size; }
    // Nothing if the file is damaged.
    virtual std::optional<std::string> Content(const Item& file) const = 0;

  private:
    // Names and aliases in upper case, sorted.
    using NamedItem = std::pair<std::string, Item>;
    using Folder = std::vector<NamedItem>;

    // The folder, which is read once; null if it is damaged.
    const Folder* Open(const Item& folder);
    std::optional<Folder> ReadFolder(const Item& folder);
    uint32_t Look(std::string_view path, Item& found);
    FileEntry Described(const Entry& entry) const;

    VolumeBytes bytes_;
    std::map<std::pair<uint64_t, uint64_t>, std::optional<Folder>> folders_;  // by place and size
    uint64_t entriesLeft_;  // as many as fit into what is left of the volume
};

}  // namespace machine
