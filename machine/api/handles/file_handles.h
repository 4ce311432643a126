// What the handles of CreateFileW stand for.
#pragma once

#include <optional>
#include <string>

#include "machine/api/call/handle_table.h"
#include "machine/facts/letters.h"

namespace machine {

struct FileHandle {
    static constexpr const char* kind = "file handle";
    std::string name;              // as it was opened
    char letter = '\0';            // of a volume
    std::optional<uint32_t> disk;  // number of a physical disk; with no letter either, a file or folder
    DWORD access = 0;
    size_t position = 0;  // where the next bytes go in a file
};

using FileHandles = HandleTable<FileHandle>;

// The name under which the handle was opened, for a process what was started, or "<not open>": for the
// journal.
std::string NameOf(EmulatedPc& pc, const void* handle);

// The volume or disk behind the handle as the PC is now: a physical disk has no volume and no partition. All
// parts are null for a file, and for a device that has gone.
LocatedVolume DeviceOf(EmulatedPc& pc, const FileHandle& file);

// The disk of that number, or null.
Disk* FindDisk(Pc& pc, uint32_t number);

}  // namespace machine
