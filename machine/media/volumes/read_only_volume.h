// What the file systems that are only read here have in common: a file is found name by name from the root,
// without regard to case, and the medium refuses to be changed.
#pragma once

#include <optional>
#include <vector>

#include "machine/facts/file_store.h"

namespace machine {

class ReadOnlyVolume : public FileStore {
  public:
    // On a damaged volume there is nothing to find, not even the root. Besides the codes of FileStore: 5 for
    // a folder, 1392 when the volume or the file is damaged. Write and Remove answer 19.
    FileKind Find(std::string_view path) final;
    uint32_t Read(std::string_view path, std::string& content) final;
    uint32_t Write(std::string_view path, std::string_view content) final;
    uint32_t Remove(std::string_view path) final;

  protected:
    struct Entry {
        std::string name;   // UTF-8
        std::string alias;  // a second name, when there is one
        bool isFolder = false;
        uint64_t place = 0;  // where the file system finds the content
        uint64_t size = 0;   // bytes
    };

    bool IsReadable() const { return List(Root()).has_value(); }

    virtual Entry Root() const = 0;
    // What lies in the folder, except itself and its parent; nothing when it is damaged.
    virtual std::optional<std::vector<Entry>> List(const Entry& folder) const = 0;
    // Nothing when the file is damaged.
    virtual std::optional<std::string> Content(const Entry& file) const = 0;

  private:
    uint32_t Look(std::string_view path, Entry& found) const;
};

}  // namespace machine
