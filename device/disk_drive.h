// The physical disks as described by WMI, device set-up and the disks themselves, and the choice of the first
// internal one.
#pragma once

#include "base/owners.h"
#include "base/wide_string.h"
#include "platform/windows_api.h"

inline constexpr int MAX_DISK_DRIVES = 64;

enum : int {
    INTERFACE_OTHER = 0,
    INTERFACE_IDE = 1,
    INTERFACE_SCSI = 2,
    INTERFACE_USB = 3,
    INTERFACE_1394 = 4
};

// The values of STORAGE_BUS_TYPE that matter here.
enum : int { BUS_TYPE_ATA = 3, BUS_TYPE_RAID = 8, BUS_TYPE_SATA = 11, BUS_TYPE_UNKNOWN = 127 };

// The step in which a device helper failed; 0 is success. The records contain the same numbers.
enum : DWORD {
    LOCATION_NO_DEVICE_SET = 1,
    LOCATION_NO_DEVICE = 2,

    PROPERTY_SIZE_UNKNOWN = 1,
    PROPERTY_NO_MEMORY = 2,
    PROPERTY_NOT_READ = 3,

    DEVICE_NOT_OPENED = 1,
    SCSI_ADDRESS_NOT_READ = 2,
    STORAGE_SIZE_UNKNOWN = 2,
    STORAGE_NO_MEMORY = 3,
    STORAGE_NOT_READ = 4
};

// Each array is a column, each disk a row.
struct tagDiskDriveTable_t {
    WideString strDeviceID[MAX_DISK_DRIVES];  // \\.\PHYSICALDRIVEn
    WideString strPNPDeviceID[MAX_DISK_DRIVES];
    WideString
        strControllerID[MAX_DISK_DRIVES];  // PNP device id of the top-most controller; empty: none known
    int nInterfaceType[MAX_DISK_DRIVES];   // INTERFACE_...
    int nDriveNumber[MAX_DISK_DRIVES];     // -1: the device id does not contain one
    int nLocation[MAX_DISK_DRIVES];        // -1: unknown
    int bScsiAddress[MAX_DISK_DRIVES];     // 1: the four columns below are valid
    BYTE PortNumber[MAX_DISK_DRIVES];
    BYTE PathId[MAX_DISK_DRIVES];
    BYTE TargetId[MAX_DISK_DRIVES];
    BYTE Lun[MAX_DISK_DRIVES];
    int nBusType[MAX_DISK_DRIVES];         // BUS_TYPE_..., any STORAGE_BUS_TYPE
    int nTargetLocation[MAX_DISK_DRIVES];  // 1: the location is a Target Id of bus 6; -1: no location text
    int nCount;                            // rows in use
};

// The associations of one class between controllers and the devices below them.
struct tagControllerLinkTable_t {
    WideString Antecedent[MAX_DISK_DRIVES];  // object path of the controller
    WideString Dependent[MAX_DISK_DRIVES];   // object path of the device
    int nCount;                              // rows in use
};

// Stateless: every call reads the PC again and releases everything it acquired. COM must be initialised. A
// negative result code of WMI is a failure; an enumeration normally ends with a positive one.
class CDiskDrive {
  public:
    // The first internal disk by the exclusions and the order of IDE.INI and by location: as below, skipping
    // nothing.
    BOOL GetFirstInternalDriveNumber(int& driveNumber, int& targetLocation);
    // The same search, skipping one disk number (-1: none). TRUE if there is any eligible disk, even if only
    // the skipped one: the drive number is -1 then, so test it as well. `targetLocation` receives the marker
    // of the chosen row, and is unchanged if none was chosen.
    BOOL GetFirstInternalDriveNumber(int& driveNumber, int skippedDrive, int& targetLocation);

    // Whether Windows PE is running: the boot loader's options (SystemStartOptions) contain "MININT".
    BOOL IsWindowsPE();
    // The disk that contains the Windows directory. FALSE and -1 if it is not on a fixed drive, or its volume
    // cannot be opened or has more than one disk extent.
    BOOL GetCurrentDriveNumber(int& driveNumber);

    // --- the steps of the search ---

    // Fills the whole table: the rows from WMI, then the controller, drive number, location, SCSI address and
    // bus type of each; a column stays "unknown" where the disk does not report it. S_OK, or the code of the
    // first WMI failure.
    HRESULT GetDiskDrive(tagDiskDriveTable_t& table);
    // The disks that WMI lists (Win32_DiskDrive). E_OUTOFMEMORY once the table is full, that is, from 64
    // disks on; else the status of the last call, WBEM_S_FALSE after the last disk.
    HRESULT Enum_DiskDrive(IWbemServices* services, tagDiskDriveTable_t& table);
    // The links of an association class; links beyond the capacity are not read. The status of the last call.
    HRESULT Enum_ControllerDevice(IWbemServices* services, const WCHAR* associationClass,
                                  tagControllerLinkTable_t& links);

    // The location text of a device. LOCATION_... or the failed step of GetDeviceRegistryProperty; else 0,
    // with an empty buffer if the device has no location.
    DWORD GetLocationInformation(const WideString& pnpDeviceId, GlobalBuffer<WCHAR>& text);
    // A text property (SPDRP_...) of a device. PROPERTY_..., with the last error of the failed call; else 0,
    // with an empty buffer if the device has no such property. Calls SetupDiGetDeviceRegistryPropertyW.
    DWORD GetDeviceRegistryProperty(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property,
                                    GlobalBuffer<WCHAR>& text, DWORD& lastError);
    // DEVICE_NOT_OPENED, SCSI_ADDRESS_NOT_READ or 0. Uses IOCTL_SCSI_GET_ADDRESS.
    DWORD GetScsiAddress(const WideString& devicePath, SCSI_ADDRESS& address);
    // DEVICE_NOT_OPENED, STORAGE_... or 0. Uses IOCTL_STORAGE_QUERY_PROPERTY.
    DWORD QueryStorageProperty(const WideString& devicePath,
                               GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR>& descriptor);

    // Whether the section "Exclude" of IDE.INI lists the controller. A missing file excludes nothing.
    BOOL ExistExcludeID(const WideString& controllerId, const WideString& fileName);
    // Whether the section "OrderIndex" of IDE.INI lists the controller, and its number there: 1 has the
    // highest preference, 0 is none. A missing file orders nothing.
    BOOL GetOrderIndex(const WideString& controllerId, const WideString& fileName, int& orderIndex);
    // Replaces the best row by the candidate if that precedes it: by location if both are known, else by SCSI
    // address if both are known, else by drive number if no row has an address (`hasScsi`) or a location
    // (`hasLocation`).
    void Compare(const tagDiskDriveTable_t& table, int candidate, int& best, bool hasScsi, bool hasLocation);

  private:
    HRESULT FindControllers(IWbemServices* services, int interfaceType, const WCHAR* associationClass,
                            tagDiskDriveTable_t& table);
    void ReadDevices(tagDiskDriveTable_t& table);
};
