// The facts of an emulated PC: plain data that tests construct, the JSON description stores, and the
// emulated platform answers from. They contain everything that can change an answer of the recovery
// library. Text is UTF-8; paths on volumes are written with slashes or backslashes, without the drive.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/guid.h"
#include "machine/calls/fault_rule.h"
#include "machine/facts/file_store.h"
#include "machine/facts/file_tree.h"
#include "machine/facts/hive_reader.h"
#include "machine/facts/medium.h"
#include "machine/facts/partition_table.h"
#include "machine/facts/registry_keys.h"

namespace machine {

// A fact that a call returns or fails to return: a value, or the error code of the failure.
template <typename T>
struct Fact {
    std::optional<T> value;
    uint32_t error = 0;

    Fact() = default;
    Fact(T known) : value(std::move(known)) {}
    static Fact Fails(uint32_t code) {
        Fact fact;
        fact.error = code;
        return fact;
    }
    bool operator==(const Fact&) const = default;
};

// --- volumes ---

// A contiguous part of a disk that a volume occupies.
struct Extent {
    uint32_t disk = 0;
    uint64_t offset = 0;
    uint64_t size = 0;
    bool operator==(const Extent&) const = default;
};

// The values of GetDriveTypeW.
enum class DriveType : uint32_t {
    Unknown = 0,
    NoRoot = 1,
    Removable = 2,
    Fixed = 3,
    Remote = 4,
    Optical = 5,
    RamDisk = 6
};

// What a drive letter refers to: the contents of a partition, or a disc, a stick or a network share without
// a disk.
struct Volume {
    std::string letters;  // upper case; a volume can have several
    // As GetVolumeInformationW reports it; "RAW" if unreadable, "BitLocker" if locked.
    std::string fileSystem = "NTFS";
    Fact<std::string> label = std::string();  // or the error of reading it
    DriveType driveType = DriveType::Fixed;
    std::vector<Extent> furtherExtents;  // besides the partition's own
    uint32_t openError = 0;              // the error of CreateFileW on \\.\X:; 0: it succeeds
    std::optional<int> extentType;       // VDS extent type; absent: implied by the partition's type
    FileTree files;                      // the files of a described volume
    std::shared_ptr<VolumeStore> store;  // the files of a volume on an image
    std::string image;                   // path of a disc's or a stick's image; empty: none

    bool operator==(const Volume&) const = default;
};

// --- disks ---

enum class PartitionStyle { Unknown, Mbr, Gpt };

struct Partition {
    uint32_t number = 0;           // as Windows counts: used entries from 1
    std::optional<uint32_t> slot;  // in the table of an image, from 1; absent: described
    uint64_t offset = 0;           // bytes
    uint64_t size = 0;             // bytes
    uint8_t mbrType = 0;           // on MBR disks
    uint8_t bootIndicator = 0;     // as VDS reports it: 1 is active
    Guid gptType;                  // on GPT disks, as are the next three
    Guid gptId;
    uint64_t attributes = 0;
    std::string name;
    std::optional<Volume> volume;  // absent: no contents

    bool operator==(const Partition&) const = default;
};

struct ScsiAddress {
    uint8_t port = 0;
    uint8_t path = 0;
    uint8_t target = 0;
    uint8_t lun = 0;
    bool operator==(const ScsiAddress&) const = default;
};

// The instance of Win32_DiskDrive; an absent property is VT_NULL.
struct WmiDisk {
    std::optional<std::string> deviceId;
    std::optional<std::string> pnpDeviceId;
    std::optional<std::string> interfaceType;
    bool operator==(const WmiDisk&) const = default;
};

// The two classes that associate controllers with devices.
enum class ControllerKind { Ide, Scsi };

// Bytes of a storage descriptor as most devices answer it: the record and a name. It begins with its version
// and size. No device has nearly as many as the most.
inline constexpr uint32_t usualDescriptorSize = 54;
inline constexpr uint32_t fewestDescriptorBytes = 8;
inline constexpr uint32_t mostDescriptorBytes = 65536;

struct Disk {
    uint32_t number = 0;
    std::optional<std::string> vdsName;  // \\?\PhysicalDriveN; absent: a null name
    uint32_t deviceType = 7;             // FILE_DEVICE_DISK
    uint32_t busType = 11;               // VDS bus type; 11 is SATA
    uint64_t size = 0;                   // bytes
    uint32_t sectorSize = 512;           // bytes; 512 unless the table of an image counts in others
    PartitionStyle style = PartitionStyle::Mbr;
    uint32_t signature = 0;  // on MBR disks
    Guid guid;               // on GPT disks
    std::string pack;        // name of a pack of the PC; empty: an implicit pack of its own, which is online
    bool unallocated = false;    // listed as unallocated; then in a pack only if `pack` names one
    std::optional<WmiDisk> wmi;  // absent: WMI does not list the disk
    Fact<std::string> location = std::string();     // SetupAPI location text; error 13: no such property
    Fact<ScsiAddress> scsiAddress = ScsiAddress();  // IOCTL_SCSI_GET_ADDRESS
    Fact<uint32_t> storageBusType = uint32_t{11};   // IOCTL_STORAGE_QUERY_PROPERTY
    std::optional<uint32_t> storageDescriptorSize;  // bytes, of the same control; absent: usualDescriptorSize
    std::vector<std::string> controllers;           // PNP device ids of its controllers, nearest first
    std::optional<ControllerKind> controllerKind;   // absent: as the interface type in WMI says, if it does
    std::vector<Partition> partitions;              // in the order in which VDS lists them
    std::string image;                              // path of the image file; empty: a described disk
    std::shared_ptr<PartitionTable> table;          // receives changes of the table on an image
    std::shared_ptr<Medium> medium;                 // of the image; writes what was changed

    bool operator==(const Disk&) const = default;
};

// A VDS pack that disks refer to by name. A disk without a pack is in an implicit online pack of its own.
struct Pack {
    std::string name;
    int status = 1;        // VDS_PS_ONLINE
    bool dynamic = false;  // listed by the dynamic provider, not the basic one
    bool operator==(const Pack&) const = default;
};

// --- the machine ---

enum class FirmwareKind { Bios, Uefi };

struct Firmware {
    FirmwareKind kind = FirmwareKind::Bios;
    // Of GetFirmwareEnvironmentVariableW; 0: it succeeds; absent: 1 on BIOS, 998 on UEFI.
    std::optional<uint32_t> error;
    bool operator==(const Firmware&) const = default;
};

enum class SystemKind { Windows, WindowsPe };

struct RunningSystem {
    SystemKind kind = SystemKind::Windows;
    std::string windowsDirectory = "C:\\Windows";
    // SystemStartOptions; absent: the value in `registry`, if it has one.
    std::optional<std::string> startOptions = " NOEXECUTE=OPTIN";
    // The host application is a 32-bit program on a 64-bit system: below the Windows directory, System32 is
    // redirected to SysWOW64 unless it disables the redirection.
    bool emulates32Bit = false;
    bool operator==(const RunningSystem&) const = default;
};

// The host application, which loads the library. The files in its folder exist whatever the volumes
// contain.
struct HostApplication {
    std::string path = "C:\\Program Files\\Recovery\\Recovery.exe";
    FileTree files;  // in its folder, such as IDE.INI
    bool operator==(const HostApplication&) const = default;
};

// How the command interpreter runs a batch file.
struct Shell {
    uint32_t milliseconds = 50;  // duration of a batch file
    bool regFails = false;       // `reg` does nothing and returns an error
    bool returnsProcess = true;  // false: a batch starts without a process handle
    bool operator==(const Shell&) const = default;
};

// A volume as BitLocker's WMI provider lists it; an absent property is VT_NULL.
struct EncryptableVolume {
    std::optional<std::string> deviceId;
    std::optional<std::string> persistentVolumeId;
    std::optional<std::string> driveLetter;  // "C:"
    uint32_t returnValue = 0;                // of GetEncryptionMethod
    uint32_t encryptionMethod = 0;           // 0: not encrypted
    bool operator==(const EncryptableVolume&) const = default;
};

// Behaviour that the platform's documentation leaves open. The defaults are documented, or what is observed
// most.
struct Switches {
    bool activeFlagIsExclusive = false;          // setting one active flag clears the others
    enum class Letterless { Fails, Nul, Zero };  // GetDriveLetter of a partition without a letter
    Letterless letterless = Letterless::Fails;
    bool volumesRefuseLetterCalls = true;  // letter calls fail for a partition with a volume
    bool hidingRemovesVolume = true;       // an unrecognised type removes letters and label
    bool profilesSkipUtf8Mark = false;     // a UTF-8 mark does not spoil the first line of an INI file
    bool emptyTableLendsArray = false;     // QueryPartitions lends an array even without partitions
    bool absentClassFailsLate = false;     // enumerating an unknown WMI class fails at the first object
    enum class ShortDescriptor { Fills, MoreData, Fails };  // a storage descriptor for a smaller buffer
    ShortDescriptor shortDescriptor = ShortDescriptor::Fills;
    bool operator==(const Switches&) const = default;
};

struct Pc {
    std::string name;
    Firmware firmware;
    RunningSystem system;
    HostApplication host;
    std::vector<Pack> packs;
    std::vector<Disk> disks;         // in VDS order
    std::vector<uint32_t> wmiOrder;  // disk numbers in WMI's order; unlisted disks follow in VDS order
    std::vector<Volume> volumes;     // without a disk: discs, sticks, network drives
    RegistryKeys registry;
    RegistryKeys offlineSystemHive;  // contents of a hive file on a described volume, keys below its root
    std::shared_ptr<HiveReader> hiveReader;  // reads the hive files of disk images
    Shell shell;
    // The instances of BitLocker's provider, in its order; absent: there is no provider.
    std::optional<std::vector<EncryptableVolume>> encryptableVolumes;
    std::vector<std::string> absentWmiClasses;  // that WMI lacks, by name
    Switches switches;
    std::vector<FaultRule> faults;

    bool operator==(const Pc&) const = default;
};

}  // namespace machine
