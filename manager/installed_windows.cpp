// Which volume contains an installed Windows.

#include <algorithm>
#include <span>

#include "device/encrypt_volume.h"
#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/drive.h"
#include "manager/guard.h"
#include "manager/kestova.h"

namespace {

constexpr const WCHAR* loader = TEXT("Windows\\System32\\Winload.exe");
constexpr const WCHAR* loaderAndFolders[] = {TEXT("Windows"), TEXT("Windows\\System32"), loader};

// In its scope, a 32-bit program on a 64-bit system sees the real System32.
class WithoutRedirection {
  public:
    WithoutRedirection() {
        BOOL emulated = FALSE;
        disabled_ = IsWow64Process(GetCurrentProcess(), &emulated) && emulated &&
                    Wow64DisableWow64FsRedirection(&previous_);
    }
    ~WithoutRedirection() {
        if (disabled_) Wow64RevertWow64FsRedirection(previous_);
    }
    WithoutRedirection(const WithoutRedirection&) = delete;
    WithoutRedirection& operator=(const WithoutRedirection&) = delete;

  private:
    PVOID previous_ = nullptr;
    bool disabled_ = false;
};

bool IsEncrypted(WCHAR letter, CEncryptVolume& bitLocker) {
    tagEncryptVolume_t encrypted;
    if (!bitLocker.GetEncryptVolume(encrypted)) return false;
    const WideString root = UpperCase(DrivePath(letter).text);
    const std::span<const WideString> listed(encrypted.strDriveLetter,
                                             static_cast<size_t>(encrypted.VolumeCount));
    return std::ranges::any_of(listed, [&](const WideString& name) { return UpperCase(name)[0] == root[0]; });
}

bool HasLoaderAndFolders(WCHAR letter) {
    const WithoutRedirection whileLooking;
    return std::ranges::all_of(loaderAndFolders,
                               [&](const WCHAR* path) { return DrivePath(letter, path).Exists(); });
}

}  // namespace

int Kestova::IsVistaOS(WCHAR letter) {
    return Guarded(ending::IsVistaOS, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsVistaOS\tStart. cDriveLetter = ")).Char(letter);
        if (!IsFixedDrive(letter)) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("Kestova::IsVistaOS\tDRIVE_FIXED != GetDriveType szDrive: "))
                .Text(DrivePath(letter).text);
            return 0;
        }
        // The files of an encrypted volume cannot be read.
        if (m_pEncryptVolume != nullptr && IsEncrypted(letter, *m_pEncryptVolume)) {
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsVistaOS End. TRUE"));
            return 1;
        }
        if (!HasLoaderAndFolders(letter)) return 0;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsVistaOS\tEnd"));
        return 1;
    });
}

int Kestova::IsOSVolume(WCHAR letter) {
    return DrivePath(letter, loader).Exists();
}

WCHAR Kestova::GetOSVolume() {
    // Windows PE runs from X:.
    return FirstLetter([&](WCHAR letter) { return letter != TEXT('X') && IsOSVolume(letter); });
}
