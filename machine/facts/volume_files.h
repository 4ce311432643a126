// The files of the emulated PC by their full Windows paths ("C:\\dir\\file"), whether beside the host
// application, on a described volume or on an image.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "machine/facts/pc.h"

namespace machine {

// Stateless: every call looks at the PC afresh. Paths begin with the name of a volume as in
// volume_names.h, have slashes or backslashes, and optionally the prefix "\\\\?\\" or "\\\\.\\"; "." and ".."
// are resolved; case is ignored.
//
// The host application, its folder and the folders above it exist whatever the volumes contain. Files that
// the facts list in that folder hide the volume's files of the same names; a new file there joins them.
//
// All members return 0 or an error code: 2 for a missing file or a path without a drive, 3 for a missing
// folder or drive, 5 for a folder or the host application where a file is required, 19 for a
// write-protected medium, 123 for a path with invalid characters, 1005 for a volume that cannot be read,
// 0x80310000 for one that BitLocker keeps locked.
//
// With redirection, the running system's System32 refers to the folder SysWOW64 beside it, as in a 32-bit
// program on a 64-bit system.
class VolumeFiles {
  public:
    explicit VolumeFiles(Pc& pc, bool redirects = false) : pc_(pc), redirects_(redirects) {}

    // 0 for a file and for a folder; `kind` is which, or None after an error.
    uint32_t Find(std::string_view path, FileKind& kind);
    uint32_t Read(std::string_view path, std::string& content);
    // Creates or overwrites a file; does not create folders.
    uint32_t Write(std::string_view path, std::string_view content);
    uint32_t Remove(std::string_view path);

  private:
    Pc& pc_;
    bool redirects_;
};

}  // namespace machine
