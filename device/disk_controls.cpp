// Queries of disks by device I/O control.
#include <algorithm>

#include "device/device_handle.h"
#include "device/disk_drive.h"
#include "diag/failure_record.h"

namespace {

constexpr FailureText noScsiAddress = {
    TEXT("Kestova CDiskDrive::GetScsiAddress DeviceIoControl return False (2) GetLastError = "),
    LoggedCodes::LastError};

constexpr FailureText noStorageProperty = {
    TEXT("Kestova CDiskDrive::QueryStorageProperty DeviceIoControl return False"),
    LoggedCodes::LabelledLastError, TEXT(" GetLastError: ")};

BOOL QueryDeviceProperty(HANDLE device, STORAGE_DEVICE_DESCRIPTOR* descriptor, DWORD size) {
    STORAGE_PROPERTY_QUERY query = {};
    query.PropertyId = StorageDeviceProperty;
    query.QueryType = PropertyStandardQuery;
    DWORD returned = 0;
    return DeviceIoControl(device, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, descriptor, size,
                           &returned, nullptr);
}

}  // namespace

DWORD CDiskDrive::GetScsiAddress(const WideString& devicePath, SCSI_ADDRESS& address) {
    FileHandle device = OpenDevice(devicePath.c_str());
    if (!device) {
        return LogFailure(LOG_LEVEL_TRACE,
                          TEXT("Kestova CDiskDrive::GetScsiAddress CreateFile INVALID_HANDLE_VALUE (1)"),
                          DEVICE_NOT_OPENED);
    }
    DWORD returned = 0;
    const BOOL read = DeviceIoControl(device.Get(), IOCTL_SCSI_GET_ADDRESS, nullptr, 0, &address,
                                      sizeof address, &returned, nullptr);
    const DWORD lastError = GetLastError();
    device.Reset();
    if (!read) return LogFailure(LOG_LEVEL_TRACE, noScsiAddress, SCSI_ADDRESS_NOT_READ, lastError);
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::GetScsiAddress End (0)"));
    return 0;
}

DWORD CDiskDrive::QueryStorageProperty(const WideString& devicePath,
                                       GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR>& descriptor) {
    descriptor.Reset();
    FileHandle device = OpenDevice(devicePath.c_str());
    if (!device) return DEVICE_NOT_OPENED;
    STORAGE_DEVICE_DESCRIPTOR header = {};
    if (!QueryDeviceProperty(device.Get(), &header, sizeof header)) return STORAGE_SIZE_UNKNOWN;
    // At least the fixed part, which callers read.
    const SIZE_T capacity = std::max<SIZE_T>(header.Size, sizeof header);
    descriptor.Reset(static_cast<STORAGE_DEVICE_DESCRIPTOR*>(GlobalAlloc(GMEM_ZEROINIT, capacity)));
    if (!descriptor) return STORAGE_NO_MEMORY;
    if (!QueryDeviceProperty(device.Get(), descriptor.Get(), header.Size)) {
        const DWORD lastError = GetLastError();
        device.Reset();
        LogFailure(LOG_LEVEL_TRACE, noStorageProperty, FALSE, lastError);
        descriptor.Reset();
        return STORAGE_NOT_READ;
    }
    device.Reset();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::QueryStorageProperty End (0)"));
    return 0;
}
