// CreateFileW, CloseHandle and DeleteFileW. A handle of a volume or disk is for DeviceIoControl, one of a
// file for ReadFile and WriteFile, or proof that the file exists.

#include <charconv>

#include "base/text_case.h"
#include "machine/api/call/outcome.h"
#include "machine/api/files/redirection.h"
#include "machine/api/handles/file_handles.h"
#include "machine/api/handles/processes.h"

using namespace machine;

namespace {

bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (!SameName(text.substr(0, prefix.size()), prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

// The volume or disk that a device name opens: "\\\\.\\C:", "\\\\?\\Volume{...}", "\\\\.\\PhysicalDrive0".
// Nothing for any other text.
std::optional<FileHandle> ParseDevice(std::string_view device) {
    FileHandle file;
    const auto [volume, rest] = DividePath(device);
    if (!TakePrefix(device, "\\\\.\\") && !TakePrefix(device, "\\\\?\\")) return std::nullopt;
    if (!volume.empty() && rest.empty()) {
        file.volume = UpperCase(volume);
        return file;
    }
    if (!TakePrefix(device, "PhysicalDrive")) return std::nullopt;
    uint32_t number = 0;
    const char* const end = device.data() + device.size();
    const auto [behind, error] = std::from_chars(device.data(), end, number);
    if (error != std::errc() || behind != end) return std::nullopt;
    file.disk = number;
    return file;
}

uint32_t OpenDevice(EmulatedPc& pc, const FileHandle& file, DWORD access, DWORD shareMode,
                    DWORD disposition) {
    if (disposition != OPEN_EXISTING) return ERROR_INVALID_PARAMETER;
    const LocatedVolume device = DeviceOf(pc, file);
    if (file.disk) return device.disk != nullptr ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    if (!device) return ERROR_FILE_NOT_FOUND;
    const bool byLetter = file.volume.size() == 2;
    if (device.volume->openError != 0 && (byLetter || access != 0)) return device.volume->openError;
    return (shareMode & FILE_SHARE_WRITE) != 0 ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION;
}

uint32_t OpenPath(EmulatedPc& pc, const std::string& path, DWORD disposition, DWORD flags) {
    if (disposition == CREATE_ALWAYS) return FilesOf(pc).Write(path, "");
    if (disposition != OPEN_EXISTING) return ERROR_NOT_SUPPORTED;
    FileKind kind;
    if (const uint32_t error = FilesOf(pc).Find(path, kind); error != ERROR_SUCCESS) return error;
    const bool opens = kind == FileKind::File || (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0;
    return opens ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

std::string DispositionText(DWORD disposition) {
    static const char* const names[] = {"CREATE_NEW", "CREATE_ALWAYS", "OPEN_EXISTING", "OPEN_ALWAYS",
                                        "TRUNCATE_EXISTING"};
    return disposition >= CREATE_NEW && disposition <= TRUNCATE_EXISTING ? names[disposition - CREATE_NEW]
                                                                         : Hex(disposition);
}

}  // namespace

// Opens an existing volume ("\\\\.\\C:", or by another of its names), physical disk ("\\\\.\\PhysicalDrive0")
// or file, and with FILE_FLAG_BACKUP_SEMANTICS a folder. CREATE_ALWAYS creates a file or truncates an
// existing one. INVALID_HANDLE_VALUE: error 2 or 3 if it does not exist, 5 for a folder, 19 for a
// write-protected medium, 32 for a volume without FILE_SHARE_WRITE, 50 for a file with another disposition,
// 87 for a device with a disposition other than OPEN_EXISTING, and the error from the volume's facts. The
// caller closes the handle with CloseHandle.
extern "C" HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode,
                                     LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                                     HANDLE pattern) {
    const std::string path = ToUtf8(name);
    std::vector<std::string> arguments = {path, Hex(access), Hex(shareMode), DispositionText(disposition)};
    NoteUnshown("CreateFileW", [&] { return Arguments{Hex(flags), Presence(security), Presence(pattern)}; });
    HANDLE opened = INVALID_HANDLE_VALUE;
    const HANDLE answer = Answer<HANDLE>("CreateFileW", std::move(arguments), [&](EmulatedPc& pc) {
        std::optional<FileHandle> file = ParseDevice(path);
        const uint32_t error = file ? OpenDevice(pc, *file, access, shareMode, disposition)
                                    : OpenPath(pc, path, disposition, flags);
        if (error != ERROR_SUCCESS) return Failure<HANDLE>(pc, FailsWith::InvalidHandle, error);
        if (!file) file.emplace();
        file->name = path;
        file->access = access;
        opened = FileHandles::Of(pc).Open(pc, *file);
        return opened;
    });
    // A failure after the effect leaves the file created, without an open handle.
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    if (answer != opened) FileHandles::Of(pc).Close(pc, opened);
    return answer;
}

// Closes a handle of a file, a device or a process. Error 6 for a handle that is not open, which is a
// violation in the ledger.
extern "C" BOOL WINAPI CloseHandle(HANDLE handle) {
    return Answer<BOOL>("CloseHandle", {NameOf(EmulatedPc::Current(), handle)}, [&](EmulatedPc& pc) {
        const bool closed = Processes::Of(pc).Find(handle) != nullptr ? Processes::Of(pc).Close(pc, handle)
                                                                      : FileHandles::Of(pc).Close(pc, handle);
        return Outcome(pc, closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
    });
}

// Fails with the errors of VolumeFiles.
extern "C" BOOL WINAPI DeleteFileW(LPCWSTR name) {
    const std::string path = ToUtf8(name);
    return Answer<BOOL>("DeleteFileW", {path},
                        [&](EmulatedPc& pc) { return Outcome(pc, FilesOf(pc).Remove(path)); });
}
