#include "device/disk_location.h"

#include "base/scan.h"
#include "device/disk_drive.h"
#include "diag/failure_record.h"

namespace {

// On this bus number, the target distinguishes the disks.
constexpr int targetBus = 6;

constexpr FailureText noDevice = {
    TEXT("Kestova CDiskDrive::GetLocationInformation SetupDiOpenDeviceInfo bReturn == FALSE (2)"),
    LoggedCodes::LabelledLastError};

}  // namespace

int ReadLocation(const WCHAR* text, int& targetLocation) {
    int location = -1;
    if (ScanNumbers(text, TEXT("%d"), {&location}) == 1) return location;
    int bus = -1;
    int target = -1;
    if (ScanNumbers(text, TEXT("Bus Number %d, Target Id %d"), {&bus, &target}) < 2) return -1;
    if (bus != targetBus) return bus;
    targetLocation = 1;
    return target;
}

DWORD CDiskDrive::GetLocationInformation(const WideString& pnpDeviceId, GlobalBuffer<WCHAR>& text) {
    text.Reset();
    DeviceInfoSet devices(SetupDiCreateDeviceInfoList(nullptr, nullptr));
    if (!devices) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT(
                "Kestova CDiskDrive::GetLocationInformation SetupDiCreateDeviceInfoList hDevInfo == INVALID_HANDLE_VALUE (1)"),
            LOCATION_NO_DEVICE_SET);
    }
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof device;
    if (!SetupDiOpenDeviceInfoW(devices.Get(), pnpDeviceId.c_str(), nullptr, 0, &device)) {
        LogFailure(LOG_LEVEL_ERROR, noDevice, FALSE);
        return LOCATION_NO_DEVICE;
    }
    DWORD lastError = ERROR_SUCCESS;
    const DWORD step =
        GetDeviceRegistryProperty(devices.Get(), device, SPDRP_LOCATION_INFORMATION, text, lastError);
    devices.Reset();
    if (step != 0) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CDiskDrive::GetLocationInformation GetDeviceRegistryProperty dwReturn != 0. dwReturn = "))
            .ULong(step)
            .Text(TEXT(" GetLastError = "))
            .ULong(lastError);
        return step;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::GetLocationInformation End (0)"));
    return 0;
}

DWORD CDiskDrive::GetDeviceRegistryProperty(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property,
                                            GlobalBuffer<WCHAR>& text, DWORD& lastError) {
    text.Reset();
    DWORD size = 0;
    if (!SetupDiGetDeviceRegistryPropertyW(devices, &device, property, nullptr, nullptr, 0, &size)) {
        lastError = GetLastError();
        if (lastError == ERROR_INVALID_DATA) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT(
                    "Kestova CDiskDrive::GetDeviceRegistryProperty SetupDiGetDeviceRegistryProperty GetLastError == ERROR_INVALID_DATA. (0)"));
            return 0;
        }
        if (lastError != ERROR_INSUFFICIENT_BUFFER) {
            return LogFailure(
                LOG_LEVEL_ERROR,
                TEXT(
                    "Kestova CDiskDrive::GetDeviceRegistryProperty SetupDiGetDeviceRegistryProperty GetLastError != ERROR_INVALID_DATA. (1)"),
                PROPERTY_SIZE_UNKNOWN);
        }
    }
    // One more unit: terminated even if the registry value is not.
    text.Reset(static_cast<WCHAR*>(GlobalAlloc(GMEM_ZEROINIT, size + sizeof(WCHAR))));
    if (!text) {
        lastError = GetLastError();
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CDiskDrive::GetDeviceRegistryProperty lpProperty == NULL (2)"),
                          PROPERTY_NO_MEMORY);
    }
    BYTE* const bytes = reinterpret_cast<BYTE*>(text.Get());
    if (!SetupDiGetDeviceRegistryPropertyW(devices, &device, property, nullptr, bytes, size, nullptr)) {
        lastError = GetLastError();
        text.Reset();
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT(
                "Kestova CDiskDrive::GetDeviceRegistryProperty SetupDiGetDeviceRegistryProperty return FALSE. (3)"),
            PROPERTY_NOT_READ);
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::GetDeviceRegistryProperty End (0) lpProperty = "))
        .Text(text.Get());
    return 0;
}
