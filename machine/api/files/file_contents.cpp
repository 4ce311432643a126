// ReadFile and WriteFile on a file handle; both advance its position.

#include <algorithm>

#include "machine/api/call/outcome.h"
#include "machine/api/handles/file_handles.h"
#include "machine/facts/volume_files.h"

using namespace machine;

namespace {

// The file behind a handle opened with that access, and its current content.
struct OpenFile {
    FileHandle* handle = nullptr;
    std::string content;
};

uint32_t Open(EmulatedPc& pc, HANDLE handle, DWORD access, OpenFile& file) {
    file.handle = FileHandles::Of(pc).Find(handle);
    if (file.handle == nullptr) return ERROR_INVALID_HANDLE;
    if (!file.handle->volume.empty() || file.handle->disk) return ERROR_NOT_SUPPORTED;
    if ((file.handle->access & access) == 0) return ERROR_ACCESS_DENIED;
    return VolumeFiles(pc.facts).Read(file.handle->name, file.content);
}

uint32_t Read(EmulatedPc& pc, HANDLE handle, void* bytes, size_t size, size_t& count) {
    OpenFile file;
    if (const uint32_t error = Open(pc, handle, GENERIC_READ, file); error != ERROR_SUCCESS) return error;
    size_t& position = file.handle->position;
    if (position >= file.content.size()) return ERROR_SUCCESS;
    count = file.content.copy(static_cast<char*>(bytes), size, position);
    position += count;
    return ERROR_SUCCESS;
}

uint32_t Write(EmulatedPc& pc, HANDLE handle, std::string_view bytes) {
    OpenFile file;
    if (const uint32_t error = Open(pc, handle, GENERIC_WRITE, file); error != ERROR_SUCCESS) return error;
    size_t& position = file.handle->position;
    file.content.resize(std::max(file.content.size(), position + bytes.size()));
    file.content.replace(position, bytes.size(), bytes);
    VolumeFiles files(pc.facts);
    if (const uint32_t error = files.Write(file.handle->name, file.content); error != ERROR_SUCCESS) {
        return error;
    }
    position += bytes.size();
    return ERROR_SUCCESS;
}

}  // namespace

// Reads up to the end of the file; at the end, 0 bytes. Error 5 for a file not opened for reading, 6 for a
// handle that is not open, 50 for a volume or disk handle, and those of VolumeFiles.
extern "C" BOOL WINAPI ReadFile(HANDLE handle, LPVOID bytes, DWORD size, LPDWORD read,
                                LPOVERLAPPED overlapped) {
    NoteUnshown("ReadFile", [&] { return Arguments{Presence(overlapped)}; });
    size_t count = 0;
    std::vector<std::string> arguments = {NameOf(EmulatedPc::Current(), handle), std::to_string(size)};
    const BOOL answer = Answer<BOOL>("ReadFile", std::move(arguments), [&](EmulatedPc& pc) {
        return Outcome(pc, Read(pc, handle, bytes, size, count));
    });
    if (read != nullptr) *read = answer ? static_cast<DWORD>(count) : 0;
    return answer;
}

// Writes everything or nothing. Error 5 for a file not opened for writing; the others as for ReadFile.
extern "C" BOOL WINAPI WriteFile(HANDLE handle, LPCVOID bytes, DWORD size, LPDWORD written,
                                 LPOVERLAPPED overlapped) {
    NoteUnshown("WriteFile", [&] { return Arguments{Presence(overlapped)}; });
    if (written != nullptr) *written = 0;
    std::vector<std::string> arguments = {NameOf(EmulatedPc::Current(), handle), std::to_string(size)};
    return Answer<BOOL>("WriteFile", std::move(arguments), [&](EmulatedPc& pc) {
        const uint32_t error = Write(pc, handle, {static_cast<const char*>(bytes), size});
        if (error == ERROR_SUCCESS && written != nullptr) *written = size;
        return Outcome(pc, error);
    });
}
