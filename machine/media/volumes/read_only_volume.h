// The common part of the read-only file systems: resolves paths name by name from the root, ignoring case,
// and refuses changes.
#pragma once

#include <optional>
#include <vector>

#include "machine/facts/file_store.h"

namespace machine {

class ReadOnlyVolume : public FileStore {
  public:
    // Finds nothing on a damaged volume, not even the root. Error codes beyond those of FileStore: 5 for a
    // folder, 1392 if the volume or the file is damaged. Write and Remove return 19.
    FileKind Find(std::string_view path) final;
    uint32_t Read(std::string_view path, std::string& content) final;
    uint32_t Write(std::string_view path, std::string_view content) final;
    uint32_t Remove(std::string_view path) final;

  protected:
    struct Entry {
        std::string name;   // UTF-8
        std::string alias;  // a second name, or empty
        bool isFolder = false;
        uint64_t place = 0;  // location of the content, defined by the file system
        uint64_t size = 0;   // bytes
    };

    bool IsReadable() const { return List(Root()).has_value(); }

    virtual Entry Root() const = 0;
    // The entries of the folder without itself and its parent; nothing if it is damaged.
    virtual std::optional<std::vector<Entry>> List(const Entry& folder) const = 0;
    // Nothing if the file is damaged.
    virtual std::optional<std::string> Content(const Entry& file) const = 0;

  private:
    uint32_t Look(std::string_view path, Entry& found) const;
};

}  // namespace machine
