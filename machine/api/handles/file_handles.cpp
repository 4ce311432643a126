#include "machine/api/handles/file_handles.h"

#include "machine/api/handles/processes.h"
#include "machine/facts/find_disk.h"

namespace machine {

std::string NameOf(EmulatedPc& pc, const void* handle) {
    const Turn turn;
    const FileHandle* const file = FileHandles::Of(pc).Find(handle);
    if (file != nullptr) return file->name;
    const Process* const process = Processes::Of(pc).Find(handle);
    return process != nullptr ? process->file : "<not open>";
}

LocatedVolume DeviceOf(EmulatedPc& pc, const FileHandle& file) {
    if (file.disk) return {nullptr, nullptr, FindDisk(pc.facts, *file.disk)};
    return !file.volume.empty() ? FindVolume(pc.facts, file.volume) : LocatedVolume();
}

}  // namespace machine
