// The interface to the files of a volume, whether they are in the description or in a file system on an
// image.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

enum class FileKind { None, File, Folder };

// Paths have no drive; separators are slashes or backslashes; case is ignored; the empty path is the root.
// Returned codes are the platform's error codes; 0 is success.
class FileStore {
  public:
    virtual ~FileStore() = default;
    virtual FileKind Find(std::string_view path) = 0;
    // Error 2 if the file does not exist.
    virtual uint32_t Read(std::string_view path, std::string& content) = 0;
    // Creates or overwrites. Error 3 if the folder is missing, 19 for a write-protected medium.
    virtual uint32_t Write(std::string_view path, std::string_view content) = 0;
    // Error 2 if the file does not exist, 5 for a folder, 19 for a write-protected medium.
    virtual uint32_t Remove(std::string_view path) = 0;
};

struct FileEntry {
    std::string name = {};  // UTF-8, with any characters
    FileKind kind = FileKind::File;
    std::optional<uint64_t> bytes = {};  // nothing for a folder, and for a file whose length cannot be read
    bool operator==(const FileEntry&) const = default;
};

// How Windows left a volume. Dirty: marked to be checked. Unreplayed: changes are only in its journal.
// Hibernated: a system that sleeps, or kept its metadata for a fast start, will go on with its own view.
enum class VolumeCondition { Unknown, Clean, Dirty, Unreplayed, Hibernated, Damaged };

// The files of a whole volume.
class VolumeStore : public FileStore {
  public:
    // Unknown for a file system that does not record it.
    virtual VolumeCondition Check() { return VolumeCondition::Unknown; }
    // What is in a folder, in any order; a file is its own only entry. Error 2 if there is no such path.
    virtual uint32_t List(std::string_view path, std::vector<FileEntry>& entries) = 0;
    // Read in parts, in their order; after an error some may have been passed on. A store says if it passes
    // on longer files than Read returns.
    virtual uint32_t ReadParts(std::string_view path, const std::function<void(std::string_view)>& take) {
        std::string content;
        const uint32_t error = Read(path, content);
        if (error == 0) take(content);
        return error;
    }
    // Why no file can be changed now, and what helps, as the predicate of a sentence ("is hibernated: ...").
    // Empty if nothing forbids it.
    virtual std::string WhyUnchangeable() = 0;
};

}  // namespace machine
