// Writing through a handle of a file.

#include <algorithm>

#include "machine/api/file_handles.h"
#include "machine/api/outcome.h"
#include "machine/api/redirection.h"

using namespace machine;

namespace {

uint32_t Write(EmulatedPc& pc, HANDLE handle, std::string_view bytes) {
    FileHandle* const file = FileHandles::Of(pc).Find(handle);
    if (file == nullptr) return ERROR_INVALID_HANDLE;
    if (file->letter != '\0' || file->disk) return ERROR_NOT_SUPPORTED;
    if ((file->access & GENERIC_WRITE) == 0) return ERROR_ACCESS_DENIED;
    VolumeFiles files = FilesOf(pc);
    std::string content;
    if (const uint32_t error = files.Read(file->name, content); error != ERROR_SUCCESS) return error;
    content.resize(std::max(content.size(), file->position + bytes.size()));
    content.replace(file->position, bytes.size(), bytes);
    if (const uint32_t error = files.Write(file->name, content); error != ERROR_SUCCESS) return error;
    file->position += bytes.size();
    return ERROR_SUCCESS;
}

}  // namespace

// Writes all of it behind what was written before, or nothing. Error 5 for a file that was opened for reading
// only, 6 for a handle that is not open, 50 for one of a volume or disk, and those of VolumeFiles.
extern "C" BOOL WINAPI WriteFile(HANDLE handle, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED) {
    if (written != nullptr) *written = 0;
    std::vector<std::string> arguments = {NameOf(EmulatedPc::Current(), handle), std::to_string(size)};
    return Answer<BOOL>("WriteFile", std::move(arguments), [&](EmulatedPc& pc) {
        const uint32_t error = Write(pc, handle, {static_cast<const char*>(bytes), size});
        if (error == ERROR_SUCCESS && written != nullptr) *written = size;
        return Outcome(pc, error);
    });
}
