// The objects behind the handles of CreateFileW.
#pragma once

#include <optional>
#include <string>

#include "machine/api/call/handle_table.h"
#include "machine/facts/volume_names.h"

namespace machine {

struct FileHandle {
    static constexpr const char* kind = "file handle";
    std::string name;              // the name it was opened with
    std::string volume;            // its name as in volume_names.h
    std::optional<uint32_t> disk;  // number of a physical disk; a file or folder has neither disk nor volume
    DWORD access = 0;
    size_t position = 0;  // offset of the next read or write in a file
};

using FileHandles = HandleTable<FileHandle>;

// For the journal: the name the handle was opened with, a process's file, or "<not open>".
std::string NameOf(EmulatedPc& pc, const void* handle);

// The volume or disk behind the handle in the PC's current state; volume and partition are null for a
// physical disk. All parts are null for a file, and for a device that is gone.
LocatedVolume DeviceOf(EmulatedPc& pc, const FileHandle& file);

}  // namespace machine
