#include "device/ide_ini.h"

#include "base/format.h"
#include "device/disk_drive.h"
#include "diag/log_record.h"

namespace {

constexpr DWORD valueCapacity = 260;
constexpr const WCHAR* missingValue = TEXT("(INI READ ERROR)");

// The value of DeviceIDn; empty if it is missing or empty.
WideString ReadDeviceId(const WCHAR* section, int number, const WideString& fileName) {
    WCHAR key[32];
    FormatInto(key, std::size(key), TEXT("DeviceID%d"), number);
    WCHAR value[valueCapacity] = {};
    // The platform's headers disagree on the type of the count.
    const auto length =
        GetPrivateProfileStringW(section, key, missingValue, value, valueCapacity, fileName.c_str());
    return length == 0 || WideString(value) == missingValue ? WideString() : WideString(value);
}

}  // namespace

WideString IdeIniPath() {
    WCHAR path[MAX_PATH] = {};
    // A path that is truncated within the file name still contains the folder.
    if (GetModuleFileNameW(nullptr, path, MAX_PATH) == 0) return WideString();
    PathRemoveFileSpecW(path);
    return PathAppendW(path, TEXT("IDE.INI")) ? WideString(path) : WideString();
}

int FindControllerKey(const WCHAR* section, const WideString& controllerId, const WideString& fileName) {
    const WideString controller = UpperCase(controllerId);
    for (int number = 1;; ++number) {
        const WideString value = UpperCase(ReadDeviceId(section, number, fileName));
        if (value.empty()) return 0;
        if (controller.starts_with(value)) return number;
    }
}

BOOL CDiskDrive::ExistExcludeID(const WideString& controllerId, const WideString& fileName) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::ExistExcludeID\tStart. pszDeviceID = "))
        .Text(controllerId.c_str())
        .Text(TEXT(" pszFileName = "))
        .Text(fileName.c_str());
    if (!PathFileExistsW(fileName.c_str())) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CDiskDrive::ExistExcludeID\tStart. pszDeviceID is not exist. pszFileName = "))
            .Text(fileName.c_str());
        return FALSE;
    }
    const BOOL exists = FindControllerKey(TEXT("Exclude"), controllerId, fileName) > 0;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::ExistExcludeID\tEnd. bExist = ")).Int(exists);
    return exists;
}

BOOL CDiskDrive::GetOrderIndex(const WideString& controllerId, const WideString& fileName, int& orderIndex) {
    orderIndex = 0;
    if (!PathFileExistsW(fileName.c_str())) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova CDiskDrive::GetOrderIndex pszFileName is "))
            .Text(fileName.c_str());
        return FALSE;
    }
    orderIndex = FindControllerKey(TEXT("OrderIndex"), controllerId, fileName);
    const BOOL found = orderIndex > 0;
    if (found) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CDiskDrive::GetOrderIndex find. nOrderIndex = nIndex = "))
            .Int(orderIndex);
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::GetOrderIndex End. bFind = "))
        .Int(found)
        .Text(TEXT(" nOrderIndex = "))
        .Int(orderIndex);
    return found;
}
