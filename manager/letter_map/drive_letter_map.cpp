// The disk and partition of each letter of the installed Windows: the registry of each system stores the data
// that identify the volume of a letter.

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>

#include "base/drive_letter.h"
#include "base/format.h"
#include "base/owners.h"
#include "base/wide_string.h"
#include "diag/failure_record.h"
#include "diag/module.h"
#include "manager/formatted_record.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "manager/letter_map/letter_map_failures.h"
#include "platform/windows_api.h"

namespace {

using DeviceMap = std::map<WCHAR, tagDeviceData_t>;

constexpr const WCHAR* runningSystemKey = TEXT("SYSTEM\\MountedDevices");
constexpr const WCHAR* installedWindowsKey = TEXT("TEMSYSTEM\\MountedDevices");
constexpr const WCHAR* letterText =
    TEXT("Kestova::GetWinDriveLetters      cWindowsDriveLetter is %c   cWinPEDriveLetter is %c");
constexpr const WCHAR* recordText =
    TEXT("Kestova::GetWinDriveLetters      iDiskNum is %d     iPartNum is %d   cDriveLetter is %c");

// The data of a value, possibly of length 0; null if there is no such value or it cannot be read.
std::unique_ptr<BYTE[]> ReadValue(HKEY key, const WCHAR* name, DWORD& length) {
    if (RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &length) != ERROR_SUCCESS) return nullptr;
    std::unique_ptr<BYTE[]> data(new (std::nothrow) BYTE[length]());
    DWORD room = length;
    if (!data || RegQueryValueExW(key, name, nullptr, nullptr, data.get(), &room) != ERROR_SUCCESS)
        return nullptr;
    return data;
}

// Adds the letters that are not in the map yet.
void ReadLetters(HKEY key, DeviceMap& devices) {
    for (WCHAR letter = TEXT('A'); letter <= TEXT('Z'); ++letter) {
        WCHAR name[32];
        FormatInto(name, std::size(name), TEXT("\\DosDevices\\%c:"), letter);
        DWORD length = 0;
        std::unique_ptr<BYTE[]> data = ReadValue(key, name, length);
        if (!data) continue;
        const bool added = devices.try_emplace(letter, tagDeviceData_t{data.get(), length}).second;
        if (added) static_cast<void>(data.release());  // the map owns it
    }
}

bool IsSameVolume(const tagDeviceData_t& left, const tagDeviceData_t& right) {
    return std::equal(left.pData, left.pData + left.dwLength, right.pData, right.pData + right.dwLength);
}

void FreeBuffers(DeviceMap& devices) {
    for (auto& [letter, data] : devices)
        delete[] data.pData;
    devices.clear();
}

}  // namespace

int Kestova::ReadRegistry(WCHAR* sRegisterPath) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::ReadRegistry Start. sRegisterPath = "))
        .Text(sRegisterPath != nullptr ? sRegisterPath : TEXT(""));

    const auto read = [&]() -> int {
        if (sRegisterPath == nullptr) return FALSE;
        RegistryKey key;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, sRegisterPath, 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
            return FALSE;
        const bool isRunningSystem = EqualIgnoringCase(sRegisterPath, runningSystemKey);
        ReadLetters(key.Get(), isRunningSystem ? m_mapPEDrive : m_mapWinDrive);
        return TRUE;
    };

    const int bResult = read();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::ReadRegistry End. bResult = ")).Int(bResult);
    return bResult;
}

int Kestova::TransformDriveLetter(WCHAR cWindowsDriveLetter, WCHAR& cWinPEDriveLetter) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::TransformDriveLetter  cWindowsDriveLetter: "))
        .Char(cWindowsDriveLetter);
    const auto installed = m_mapWinDrive.find(cWindowsDriveLetter);
    const bool isKnown = installed != m_mapWinDrive.end();
    if (!isKnown) LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::TransformDriveLetter\t\tFALSE"));
    for (auto running = m_mapPEDrive.begin(); isKnown && running != m_mapPEDrive.end(); ++running) {
        if (IsSameVolume(running->second, installed->second)) {
            cWinPEDriveLetter = running->first;
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("Kestova::TransformDriveLetter  cWinPEDriveLetter: "))
                .Char(cWinPEDriveLetter);
            break;
        }
        cWinPEDriveLetter = noLetter;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::TransformDriveLetter\t\tcWinPEDriveLetter is 0"));
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::TransformDriveLetter  cWindowsDriveLetter: "))
        .Char(cWindowsDriveLetter);
    return isKnown;
}

int Kestova::GetWinDriveLetters(tagDriveInfo_t* records, int count) {
    return Guarded(ending::GetWinDriveLetters, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetWinDriveLetters\t\tStart"));
        CleanMap();

        const auto readBothSystems = [&]() -> int {
            if (!ReadRegistry(WideString(runningSystemKey).data())) {
                return LogFailure(LOG_LEVEL_ERROR, runningSystemNotRead, FALSE);
            }
            if (!LoadWindowsRegistry()) {
                return LogFailure(LOG_LEVEL_ERROR, installedWindowsNotLoaded, FALSE);
            }
            if (!ReadRegistry(WideString(installedWindowsKey).data())) {
                return LogFailure(LOG_LEVEL_TRACE, installedWindowsNotRead, FALSE);
            }
            return TRUE;
        };

        const auto fillRecords = [&]() -> int {
            int filled = 0;
            for (const auto& [letter, data] : m_mapWinDrive) {
                WCHAR running = noLetter;
                const int known = TransformDriveLetter(letter, running);
                TraceString(StringFormat(letterText, letter, running));
                if (!known || running == noLetter) continue;
                if (filled >= count) return FALSE;
                tagDriveInfo_t& record = records[filled++];
                record = {GetDiskNumber(running), GetPartNumber(running), letter};
                TraceString(StringFormat(recordText, record.iDiskNum, record.iPartNum, record.cDriveLetter));
            }
            return TRUE;
        };

        // A failure like any other, so that the hive is unloaded.
        int bResult =
            Guarded(FALSE, [&]() -> int { return records != nullptr && readBothSystems() && fillRecords(); });
        if (!UnloadWindowsRegistry()) {
            LogRecord(LOG_LEVEL_ERROR).Text(installedWindowsNotUnloaded);
            bResult = FALSE;
        }
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetWinDriveLetters\t\tEnd"));
        return bResult;
    });
}

void Kestova::CleanMap() {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::CleanMap\tStart"));
    FreeBuffers(m_mapPEDrive);
    FreeBuffers(m_mapWinDrive);
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::CleanMap\tEnd"));
}
