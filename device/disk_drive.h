// Physical disks as WMI, the device set-up interface and the disks themselves describe them, and the choice
// of the first internal one.
#pragma once

#include "platform/windows_api.h"
#include "text/wide_string.h"

inline constexpr int MAX_DISK_DRIVES = 64;

enum : int {
    INTERFACE_OTHER = 0,
    INTERFACE_IDE = 1,
    INTERFACE_SCSI = 2,
    INTERFACE_USB = 3,
    INTERFACE_1394 = 4
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
    int nBusType[MAX_DISK_DRIVES];         // STORAGE_BUS_TYPE; 127: unknown
    int nTargetLocation[MAX_DISK_DRIVES];  // 1: the location is a Target Id of bus 6; -1: no location text
    int nCount;                            // rows in use
};

// The associations of one class between controllers and what hangs on them.
struct tagControllerLinkTable_t {
    WideString Antecedent[MAX_DISK_DRIVES];  // object path of the controller
    WideString Dependent[MAX_DISK_DRIVES];   // object path of the device
    int nCount;
};

// Holds nothing; every call looks at the machine afresh and releases all it took. COM must be initialised.
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
};
