// The table of all disks, from WMI, device set-up and the disks themselves.
#include <algorithm>
#include <cstring>

#include "base/scan.h"
#include "device/controller_path.h"
#include "device/disk_drive.h"
#include "device/disk_location.h"
#include "device/wmi_ex.h"
#include "diag/failure_record.h"

namespace {

// Longer device ids are truncated before the number is read.
constexpr size_t maxDeviceIdLength = 260;

// The n of \\.\PHYSICALDRIVEn, or -1.
int ReadDriveNumber(const WideString& deviceId) {
    int number = -1;
    const WideString name = UpperCase(deviceId.substr(0, maxDeviceIdLength));
    ScanNumbers(name.c_str(), TEXT("\\\\.\\PHYSICALDRIVE%d"), {&number});
    return number;
}

// Copied as a plain number: a driver may report a bus type that the headers do not define.
int BusTypeOf(const STORAGE_DEVICE_DESCRIPTOR& descriptor) {
    int busType = 0;
    static_assert(sizeof busType == sizeof descriptor.BusType);
    std::memcpy(&busType, &descriptor.BusType, sizeof busType);
    return busType;
}

}  // namespace

HRESULT CDiskDrive::GetDiskDrive(tagDiskDriveTable_t& table) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::GetDiskDrive Start"));
    table.nCount = 0;
    HRESULT result = CWMIEx::Initialize();
    if (FAILED(result)) {
        return LogFailure(LOG_LEVEL_TRACE,
                          TEXT("Kestova CDiskDrive::GetDiskDrive CWMIEx::Initialize FAILED( hResult )."),
                          result);
    }
    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> services;
    result = CWMIEx::ConnectServer(TEXT("\\\\.\\root\\CIMV2"), locator.Put(), services.Put());
    if (FAILED(result)) {
        return LogFailure(LOG_LEVEL_TRACE,
                          TEXT("Kestova CDiskDrive::GetDiskDrive CWMIEx::ConnectServer FAILED( hResult )."),
                          result);
    }
    result = Enum_DiskDrive(services.Get(), table);
    if (FAILED(result)) {
        return LogFailure(LOG_LEVEL_TRACE,
                          TEXT("Kestova CDiskDrive::GetDiskDrive Enum_DiskDrive FAILED( hResult )."), result);
    }
    result = FindControllers(services.Get(), INTERFACE_IDE, TEXT("Win32_IDEControllerDevice"), table);
    if (FAILED(result)) return result;
    result = FindControllers(services.Get(), INTERFACE_SCSI, TEXT("Win32_SCSIControllerDevice"), table);
    if (FAILED(result)) return result;
    ReadDevices(table);
    return S_OK;
}

HRESULT CDiskDrive::FindControllers(IWbemServices* services, int interfaceType, const WCHAR* associationClass,
                                    tagDiskDriveTable_t& table) {
    const int* const types = table.nInterfaceType;
    if (std::find(types, types + table.nCount, interfaceType) == types + table.nCount) return S_OK;
    tagControllerLinkTable_t links;
    const HRESULT result = Enum_ControllerDevice(services, associationClass, links);
    if (FAILED(result)) return result;
    for (int row = 0; row < table.nCount; ++row) {
        if (types[row] == interfaceType)
            table.strControllerID[row] = FindTopController(table.strPNPDeviceID[row], links);
    }
    return S_OK;
}

void CDiskDrive::ReadDevices(tagDiskDriveTable_t& table) {
    // Not reset between rows: after the first location that is a target of its bus, all later ones count as
    // such.
    int targetLocation = 0;
    for (int row = 0; row < table.nCount; ++row) {
        table.nDriveNumber[row] = ReadDriveNumber(table.strDeviceID[row]);

        GlobalBuffer<WCHAR> location;
        if (GetLocationInformation(table.strPNPDeviceID[row], location) == 0 && location) {
            table.nLocation[row] = ReadLocation(location.Get(), targetLocation);
            table.nTargetLocation[row] = targetLocation;
        }
        SCSI_ADDRESS address = {};
        if (GetScsiAddress(table.strDeviceID[row], address) == 0) {
            table.bScsiAddress[row] = TRUE;
            table.PortNumber[row] = address.PortNumber;
            table.PathId[row] = address.PathId;
            table.TargetId[row] = address.TargetId;
            table.Lun[row] = address.Lun;
        }
        GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
        if (QueryStorageProperty(table.strDeviceID[row], descriptor) == 0 && descriptor)
            table.nBusType[row] = BusTypeOf(*descriptor.Get());
    }
}
