// The WMI enumerations of disks, and of the links between controllers and devices.
#include "device/disk_drive.h"
#include "device/wmi_instances.h"
#include "diag/failure_record.h"

namespace {

int InterfaceTypeOf(const WideString& name) {
    static constexpr struct {
        const WCHAR* name;
        int type;
    } types[] = {{TEXT("IDE"), INTERFACE_IDE},
                 {TEXT("SCSI"), INTERFACE_SCSI},
                 {TEXT("USB"), INTERFACE_USB},
                 {TEXT("1394"), INTERFACE_1394}};
    for (const auto& row : types) {
        if (EqualIgnoringCase(name.c_str(), row.name)) return row.type;
    }
    return INTERFACE_OTHER;
}

// Adds a row with the values from WMI; every other column starts as unknown.
void AddDisk(tagDiskDriveTable_t& table, const WideString& deviceId, const WideString& pnpDeviceId,
             const WideString& interfaceType) {
    const int row = table.nCount++;
    table.strDeviceID[row] = deviceId;
    table.strPNPDeviceID[row] = pnpDeviceId;
    table.strControllerID[row].clear();
    table.nInterfaceType[row] = InterfaceTypeOf(interfaceType);
    table.nDriveNumber[row] = -1;
    table.nLocation[row] = -1;
    table.bScsiAddress[row] = FALSE;
    table.PortNumber[row] = table.PathId[row] = table.TargetId[row] = table.Lun[row] = 255;
    table.nBusType[row] = BUS_TYPE_UNKNOWN;
    table.nTargetLocation[row] = -1;
}

constexpr FailureText noLinks = {
    TEXT("Kestova CDiskDrive::Enum_ControllerDevice CreateInstanceEnum FAILED. hResult = "),
    LoggedCodes::ResultAndLastError, TEXT("GetLastError = ")};

}  // namespace

HRESULT CDiskDrive::Enum_DiskDrive(IWbemServices* services, tagDiskDriveTable_t& table) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::Enum_DiskDrive Start"));
    table.nCount = 0;
    const Bstr className(SysAllocString(TEXT("Win32_DiskDrive")));
    ComPtr<IEnumWbemClassObject> instances;
    HRESULT result = OpenInstances(services, className, instances);
    if (FAILED(result)) {
        return LogFailure(
            LOG_LEVEL_TRACE,
            TEXT("Kestova CDiskDrive::Enum_DiskDrive pWbemServices->CreateInstanceEnum FAILED( hResult )"),
            result);
    }
    bool overflow = false;
    bool complete = false;
    do {
        // Tested before the next disk is read: a table that is exactly full counts as overflow.
        overflow = table.nCount == MAX_DISK_DRIVES;
        if (overflow) break;
        WideString deviceId;
        WideString pnpDeviceId;
        WideString interfaceType;
        result = ReadNext(instances.Get(),
                          {{TEXT("DeviceID"), deviceId},
                           {TEXT("PNPDeviceID"), pnpDeviceId},
                           {TEXT("InterfaceType"), interfaceType}},
                          complete);
        if (complete) AddDisk(table, deviceId, pnpDeviceId, interfaceType);
    } while (complete && result == S_OK);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::Enum_DiskDrive End bOverBuffer = "))
        .Int(overflow);
    return overflow ? E_OUTOFMEMORY : result;
}

HRESULT CDiskDrive::Enum_ControllerDevice(IWbemServices* services, const WCHAR* associationClass,
                                          tagControllerLinkTable_t& links) {
    links.nCount = 0;
    const Bstr className(SysAllocString(associationClass));
    ComPtr<IEnumWbemClassObject> instances;
    HRESULT result = OpenInstances(services, className, instances);
    if (FAILED(result)) {
        return LogFailure(LOG_LEVEL_ERROR, noLinks, result);
    }
    bool complete = false;
    do {
        result = ReadNext(instances.Get(),
                          {{TEXT("Antecedent"), links.Antecedent[links.nCount]},
                           {TEXT("Dependent"), links.Dependent[links.nCount]}},
                          complete);
        if (complete) ++links.nCount;
    } while (complete && result == S_OK && links.nCount < MAX_DISK_DRIVES);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::Enum_ControllerDevice End. hResult = "))
        .Long(result);
    return result;
}
