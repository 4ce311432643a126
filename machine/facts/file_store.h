// Where the files of a volume really are, when not in the description: the door to a file system on an image.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace machine {

enum class FileKind { None, File, Folder };

// Paths have no drive, slashes or backslashes, and are looked up without regard to case; the empty path is
// the root. The codes are the platform's error codes; 0 is success.
class FileStore {
  public:
    virtual ~FileStore() = default;
    virtual FileKind Find(std::string_view path) = 0;
    // Error 2 when there is no such file.
    virtual uint32_t Read(std::string_view path, std::string& content) = 0;
    // Creates or overwrites; the bytes are on the medium when it answers. Error 3 when the folder is missing,
    // 19 when the medium is open for reading only.
    virtual uint32_t Write(std::string_view path, std::string_view content) = 0;
    // Error 2 when there is no such file, 5 for a folder, 19 when the medium is open for reading only.
    virtual uint32_t Remove(std::string_view path) = 0;
};

}  // namespace machine
