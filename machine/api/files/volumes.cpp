// Drive letters and the properties of their volumes.

#include <algorithm>

#include "machine/api/call/outcome.h"
#include "machine/facts/volume_names.h"

using namespace machine;

namespace {

// The volume whose root the path is; the backslash of "C:\\" may be missing. None for any other path.
LocatedVolume FindRoot(EmulatedPc& pc, std::string_view path) {
    const auto [volume, rest] = DividePath(path);
    if (volume.empty() || (!rest.empty() && rest != "\\")) return {};
    return FindVolume(pc.facts, volume);
}

// Whether the path can be a root with its backslash.
bool IsRoot(std::string_view path) {
    const auto [volume, rest] = DividePath(path);
    return !volume.empty() && rest == "\\";
}

// Copies the text with its terminator to the caller's buffer; error 234 if it does not fit.
uint32_t PutText(const std::string& text, WCHAR* buffer, DWORD size) {
    if (buffer == nullptr) return ERROR_SUCCESS;
    const WideString wide = ToWide(text);
    if (wide.size() >= size) return ERROR_MORE_DATA;
    std::copy_n(wide.c_str(), wide.size() + 1, buffer);
    return ERROR_SUCCESS;
}

// The outputs of GetVolumeInformationW; null for those not requested.
struct VolumeAnswers {
    WCHAR* label;
    DWORD labelSize;
    DWORD* serial;
    DWORD* longestName;
    DWORD* flags;
    WCHAR* fileSystem;
    DWORD fileSystemSize;
};

uint32_t ReturnVolume(EmulatedPc& pc, const std::string& root, const VolumeAnswers& answers) {
    if (!IsRoot(root)) return ERROR_INVALID_NAME;
    const LocatedVolume located = FindRoot(pc, root);
    if (!located) return ERROR_PATH_NOT_FOUND;
    const Volume& volume = *located.volume;
    if (!volume.label.value) return volume.label.error;
    if (const uint32_t error = WhyUnreadable(volume)) return error;
    if (IsDamaged(volume)) return ERROR_FILE_CORRUPT;
    if (answers.serial != nullptr) *answers.serial = 0;
    if (answers.longestName != nullptr) *answers.longestName = 255;
    if (answers.flags != nullptr) *answers.flags = FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK;
    if (const uint32_t error = PutText(*volume.label.value, answers.label, answers.labelSize)) return error;
    return PutText(volume.fileSystem, answers.fileSystem, answers.fileSystemSize);
}

}  // namespace

// DRIVE_NO_ROOT_DIR (1) for a letter without a volume and for any path other than a root; the backslash may
// be missing. A null root is the drive of the host application. The last error is unchanged.
extern "C" UINT WINAPI GetDriveTypeW(LPCWSTR root) {
    const std::string path =
        root != nullptr ? ToUtf8(root) : EmulatedPc::Current().facts.host.path.substr(0, 2);
    return Answer<UINT>("GetDriveTypeW", {path}, [&](EmulatedPc& pc) -> UINT {
        const LocatedVolume located = FindRoot(pc, path);
        return static_cast<UINT>(located ? located.volume->driveType : DriveType::NoRoot);
    });
}

// Error 3 for a letter without a volume, 123 for a root without its backslash, 234 for a short buffer, 1005
// for an unknown file system, 0x80310000 for one that BitLocker keeps locked, and the error from the
// label's fact.
extern "C" BOOL WINAPI GetVolumeInformationW(LPCWSTR root, LPWSTR label, DWORD labelSize, LPDWORD serial,
                                             LPDWORD longestName, LPDWORD flags, LPWSTR fileSystem,
                                             DWORD fileSystemSize) {
    const std::string path = ToUtf8(root);
    NoteUnshown("GetVolumeInformationW", [&] {
        return Arguments{std::to_string(labelSize), std::to_string(fileSystemSize)};
    });
    return Answer<BOOL>("GetVolumeInformationW", {path}, [&](EmulatedPc& pc) {
        return Outcome(
            pc, ReturnVolume(pc, path,
                             {label, labelSize, serial, longestName, flags, fileSystem, fileSystemSize}));
    });
}

// "C:\\", "D:\\", ..., each with its terminator, then a final terminator. Returns the length without the
// final terminator. If the buffer is too short, writes nothing and returns the length with it.
extern "C" DWORD WINAPI GetLogicalDriveStringsW(DWORD size, LPWSTR buffer) {
    return Answer<DWORD>("GetLogicalDriveStringsW", {std::to_string(size)}, [&](EmulatedPc& pc) {
        WideString roots;
        for (const char letter : UsedLetters(pc.facts))
            roots.append({static_cast<WCHAR>(letter), TEXT(':'), TEXT('\\'), TEXT('\0')});
        const DWORD length = static_cast<DWORD>(roots.size());
        if (buffer == nullptr || size <= length) return length + 1;
        std::copy_n(roots.c_str(), length + 1, buffer);
        return length;
    });
}
