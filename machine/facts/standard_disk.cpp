#include "machine/facts/standard_disk.h"

#include <algorithm>
#include <iterator>

namespace machine {

namespace {

// How WMI lists the disks of a bus; the star in the PNP device id stands for the disk number.
struct BusRow {
    uint32_t busType;
    const char* interfaceType;
    const char* pnpDeviceId;
};

constexpr const char* idePnpId = "IDE\\DISKGENERIC_DISK________________________1.0_____\\5&37E07111&0&*.0.0";
constexpr const char* scsiPnpId = "SCSI\\DISK&VEN_GENERIC&PROD_DISK\\5&37E07111&0&0*0000";
constexpr const char* usbPnpId = "USBSTOR\\DISK&VEN_GENERIC&PROD_DISK&REV_1.0\\00000000000*&0";
constexpr const char* firewirePnpId = "SBP2\\GENERIC&DISK&CMDSETID104D8\\00000000000*";

constexpr BusRow buses[] = {
    {2, "IDE", idePnpId},             // ATAPI
    {3, "IDE", idePnpId},             // ATA
    {4, "1394", firewirePnpId},       // IEEE 1394
    {7, "USB", usbPnpId},             // USB
    {11, "IDE", idePnpId},            // SATA
    {0xFFFFFFFF, "SCSI", scsiPnpId},  // every other: SCSI, RAID, SAS, NVMe
};

}  // namespace

Disk StandardDisk(uint32_t number, uint32_t busType) {
    const std::string digits = std::to_string(number);
    const BusRow* const bus = std::find_if(std::begin(buses), std::end(buses) - 1,
                                           [&](const BusRow& row) { return row.busType == busType; });
    std::string pnpDeviceId = bus->pnpDeviceId;
    pnpDeviceId.replace(pnpDeviceId.find('*'), 1, digits);
    Disk disk;
    disk.number = number;
    disk.vdsName = "\\\\?\\PhysicalDrive" + digits;
    disk.busType = busType;
    disk.wmi = WmiDisk{"\\\\.\\PHYSICALDRIVE" + digits, pnpDeviceId, bus->interfaceType};
    disk.storageBusType = busType;
    return disk;
}

}  // namespace machine
