// Physical disks as WMI, the device set-up interface and the disks themselves describe them, and the choice
// of the first internal one.
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

// The values of STORAGE_BUS_TYPE that count.
enum : int { BUS_TYPE_ATA = 3, BUS_TYPE_RAID = 8, BUS_TYPE_SATA = 11, BUS_TYPE_UNKNOWN = 127 };

// The steps that the device helpers fail in; 0 is success. The records show the same numbers.
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

// One column an array, one row a disk.
struct tagDiskDriveTable_t {
    WideString strDeviceID[MAX_DISK_DRIVES];  // \\.\PHYSICALDRIVEn
    WideString strPNPDeviceID[MAX_DISK_DRIVES];
    WideString
        strControllerID[MAX_DISK_DRIVES];  // PNP device id of the top-most controller; empty: none known
    int nInterfaceType[MAX_DISK_DRIVES];   // INTERFACE_...
    int nDriveNumber[MAX_DISK_DRIVES];     // -1: the device id could not be read
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

// The associations of one class between controllers and what hangs on them.
struct tagControllerLinkTable_t {
    WideString Antecedent[MAX_DISK_DRIVES];  // object path of the controller
    WideString Dependent[MAX_DISK_DRIVES];   // object path of the device
    int nCount;                              // rows in use
};

// Holds nothing; every call looks at the machine afresh and releases all it took. COM must be initialised.
// Result codes of WMI are failures when they are negative; the normal end of an enumeration is a positive
// one.
class CDiskDrive {
  public:
    // The first internal disk by IDE.INI's exclusions and order and by location, as below with nothing
    // skipped.
    BOOL GetFirstInternalDriveNumber(int& driveNumber, int& targetLocation);
    // The same search without one disk number (-1: none). TRUE as soon as an eligible disk was seen, even
    // when every one bore the skipped number: the drive number is -1 then, so test it as well.
    // `targetLocation` is the marker of the chosen row and untouched when none was chosen.
    BOOL GetFirstInternalDriveNumber(int& driveNumber, int skippedDrive, int& targetLocation);

    // Whether Windows PE is running: "MININT" among the boot loader's options (SystemStartOptions).
    BOOL IsWindowsPE();
    // The disk that holds the Windows directory. FALSE, and -1: no fixed drive, or a volume that cannot be
    // opened or lies on more than one disk extent.
    BOOL GetCurrentDriveNumber(int& driveNumber);

    // --- the steps of the search ---

    // The whole table: rows of WMI, then each row's controller, drive number, location, SCSI address and bus
    // type; of what a disk does not tell, its column keeps "unknown". S_OK, or the code of the first failure
    // in WMI.
    HRESULT GetDiskDrive(tagDiskDriveTable_t& table);
    // The disks that WMI lists (Win32_DiskDrive). E_OUTOFMEMORY as soon as the table is full, so already with
    // 64 disks; else the status of the last call, WBEM_S_FALSE after the last disk.
    HRESULT Enum_DiskDrive(IWbemServices* services, tagDiskDriveTable_t& table);
    // The links of an association class; what does not fit is not read. The status of the last call.
    HRESULT Enum_ControllerDevice(IWbemServices* services, const WCHAR* associationClass,
                                  tagControllerLinkTable_t& links);

    // The location text of a device. 0, with no text when the device has none; LOCATION_..., or the step that
    // GetDeviceRegistryProperty failed in.
    DWORD GetLocationInformation(const WideString& pnpDeviceId, GlobalBuffer<WCHAR>& text);
    // A text property (SPDRP_...) of a device. 0, with no text when the device has no such property;
    // PROPERTY_..., and the last error of the call that failed. Rests on SetupDiGetDeviceRegistryPropertyW.
    DWORD GetDeviceRegistryProperty(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property,
                                    GlobalBuffer<WCHAR>& text, DWORD& lastError);
    // 0, DEVICE_NOT_OPENED or SCSI_ADDRESS_NOT_READ. Rests on IOCTL_SCSI_GET_ADDRESS.
    DWORD GetScsiAddress(const WideString& devicePath, SCSI_ADDRESS& address);
    // 0, DEVICE_NOT_OPENED or STORAGE_.... Rests on IOCTL_STORAGE_QUERY_PROPERTY.
    DWORD QueryStorageProperty(const WideString& devicePath,
                               GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR>& descriptor);

    // Whether IDE.INI's section "Exclude" names the controller. A missing file excludes nothing.
    BOOL ExistExcludeID(const WideString& controllerId, const WideString& fileName);
    // Whether IDE.INI's section "OrderIndex" names the controller, and with which number: 1 is preferred
    // most, 0 is none. A missing file orders nothing.
    BOOL GetOrderIndex(const WideString& controllerId, const WideString& fileName, int& orderIndex);
    // Puts the candidate row in the place of the best one when it comes before it: by location where both are
    // known, else by SCSI address, else, when no row `hasScsi` address nor `hasLocation`, by drive number.
    void Compare(const tagDiskDriveTable_t& table, int candidate, int& best, bool hasScsi, bool hasLocation);

  private:
    HRESULT FindControllers(IWbemServices* services, int interfaceType, const WCHAR* associationClass,
                            tagDiskDriveTable_t& table);
    void ReadDevices(tagDiskDriveTable_t& table);
};
