// The files of the emulated PC by their full Windows paths ("C:\\dir\\file"): decides whose files a path
// means - those beside the host program, those of a described volume, those on an image - and tells failures
// in the platform's error codes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "machine/facts/pc.h"

namespace machine {

// Looks at the PC at every call and keeps nothing. Paths have a drive, slashes or backslashes, and optionally
// the prefix "\\\\?\\" or "\\\\.\\"; "." and ".." are resolved; case does not matter.
//
// The host program, its folder and the folders above it exist whatever the volumes hold. Files that the facts
// list in that folder cover the volume's of the same names; a new file there joins them.
//
// Every member answers 0 or an error code: 2 no such file, or a path without a drive, 3 no such folder or
// drive, 5 a folder (or the host program) where a file is meant, 19 a medium open for reading only, 123 a
// path with characters that no name has, 1005 a volume that cannot be read, 0x80310000 one that BitLocker
// keeps locked.
//
// With redirection, the running system's System32 means the folder SysWOW64 beside it: what a 32-bit program
// on a 64-bit system sees.
class VolumeFiles {
  public:
    explicit VolumeFiles(Pc& pc, bool redirects = false) : pc_(pc), redirects_(redirects) {}

    // 0 for a file and for a folder; `kind` tells which, None after an error.
    uint32_t Find(std::string_view path, FileKind& kind);
    uint32_t Read(std::string_view path, std::string& content);
    // Creates or overwrites a file; makes no folder.
    uint32_t Write(std::string_view path, std::string_view content);
    uint32_t Remove(std::string_view path);

  private:
    Pc& pc_;
    bool redirects_;
};

}  // namespace machine
