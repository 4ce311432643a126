// The interface to the files of a volume, whether they are in the description or in a file system on an
// image.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

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

}  // namespace machine
