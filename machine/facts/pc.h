// The facts of an emulated PC: plain data that tests build, the JSON description holds, and the emulated
// platform answers from. Everything that changes an answer of the recovery library stands here. Text is
// UTF-8; paths on volumes are written with slashes or backslashes, without the drive.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/guid.h"
#include "machine/facts/fault_rule.h"
#include "machine/facts/file_store.h"
#include "machine/facts/file_tree.h"
#include "machine/facts/hive_reader.h"
#include "machine/facts/partition_table.h"
#include "machine/facts/registry_keys.h"

namespace machine {

// A fact that a call either tells or fails to tell: a value, or the error code that the call fails with.
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

// A piece of a disk that a volume lies on.
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

// What a drive letter opens: the contents of a partition, or a disc, a stick or a network share without a
// disk.
struct Volume {
    std::string letters;  // upper case; one partition can have several
    // As GetVolumeInformationW names it; "RAW" when unreadable, "BitLocker" when locked.
    std::string fileSystem = "NTFS";
    Fact<std::string> label = std::string();  // or the error of reading it
    DriveType driveType = DriveType::Fixed;
    std::vector<Extent> furtherExtents;  // besides the partition's own
    uint32_t openError = 0;              // what CreateFileW on \\.\X: fails with; 0 opens
    std::optional<int> extentType;       // VDS extent type; without it, what the partition's type implies
    FileTree files;                      // the files of a described volume
    std::shared_ptr<FileStore> store;    // where the files are instead, on an image
    std::string image;                   // path of a disc's or a stick's image; empty without one

    bool operator==(const Volume&) const = default;
};

// --- disks ---

enum class PartitionStyle { Unknown, Mbr, Gpt };

struct Partition {
    uint32_t number = 0;        // as Windows counts: used entries from 1
    uint64_t offset = 0;        // bytes
    uint64_t size = 0;          // bytes
    uint8_t mbrType = 0;        // on MBR disks
    uint8_t bootIndicator = 0;  // as VDS reports it: 1 is active
    Guid gptType;               // on GPT disks, as the next three
    Guid gptId;
    uint64_t attributes = 0;
    std::string name;
    std::optional<Volume> volume;  // absent: nothing that a letter could open

    bool operator==(const Partition&) const = default;
};

struct ScsiAddress {
    uint8_t port = 0;
    uint8_t path = 0;
    uint8_t target = 0;
    uint8_t lun = 0;
    bool operator==(const ScsiAddress&) const = default;
};

// The instance of Win32_DiskDrive; an absent property reads as VT_NULL.
struct WmiDisk {
    std::optional<std::string> deviceId;
    std::optional<std::string> pnpDeviceId;
    std::optional<std::string> interfaceType;
    bool operator==(const WmiDisk&) const = default;
};

struct Disk {
    uint32_t number = 0;
    std::optional<std::string> vdsName;  // \\?\PhysicalDriveN; absent: a null name
    uint32_t deviceType = 7;             // FILE_DEVICE_DISK
    uint32_t busType = 11;               // VDS bus type; 11 is SATA
    uint64_t size = 0;                   // bytes
    PartitionStyle style = PartitionStyle::Mbr;
    uint32_t signature = 0;      // on MBR disks
    Guid guid;                   // on GPT disks
    std::string pack;            // name of a pack of the PC; empty: an online pack of its own
    bool unallocated = false;    // listed as unallocated; then in a pack only if `pack` names one
    std::optional<WmiDisk> wmi;  // absent: WMI does not list the disk
    Fact<std::string> location = std::string();     // SetupAPI location text; error 13: no such property
    Fact<ScsiAddress> scsiAddress = ScsiAddress();  // IOCTL_SCSI_GET_ADDRESS
    Fact<uint32_t> storageBusType = uint32_t{11};   // IOCTL_STORAGE_QUERY_PROPERTY
    std::vector<std::string> controllers;           // PNP device ids of what the disk hangs on, nearest first
    std::vector<Partition> partitions;              // in the order in which VDS lists them
    std::string image;                              // path of the image file; empty: a described disk
    std::shared_ptr<PartitionTable> table;          // where table changes go on an image

    bool operator==(const Disk&) const = default;
};

// A VDS pack that disks name. Disks without one stand in an online pack of their own.
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
    std::optional<uint32_t>
        error;  // of GetFirmwareEnvironmentVariableW; absent: 1 on BIOS, 998 on UEFI; 0 reads
    bool operator==(const Firmware&) const = default;
};

enum class SystemKind { Windows, WindowsPe };

struct RunningSystem {
    SystemKind kind = SystemKind::Windows;
    std::string windowsDirectory = "C:\\Windows";
    std::optional<std::string> startOptions =
        " NOEXECUTE=OPTIN";  // SystemStartOptions; absent: no such value
    // The program is a 32-bit one on a 64-bit system: below the Windows directory it sees SysWOW64 as
    // System32 unless it switches the redirection off.
    bool emulates32Bit = false;
    bool operator==(const RunningSystem&) const = default;
};

// The program that loaded the library; its folder's files are seen whatever the volumes hold.
struct HostProgram {
    std::string path = "C:\\Program Files\\Recovery\\Recovery.exe";
    FileTree files;  // in its folder, IDE.INI for instance
    bool operator==(const HostProgram&) const = default;
};

// How the command interpreter runs a batch file.
struct Shell {
    uint32_t milliseconds = 50;  // that a batch takes
    bool regFails = false;       // `reg` does nothing and ends with an error
    bool tellsProcess = true;    // false: a batch starts without a handle of its process
    bool operator==(const Shell&) const = default;
};

// A volume as BitLocker's WMI provider lists it; an absent property reads as VT_NULL.
struct EncryptableVolume {
    std::optional<std::string> deviceId;
    std::optional<std::string> persistentVolumeId;
    std::optional<std::string> driveLetter;  // "C:"
    uint32_t returnValue = 0;                // of GetEncryptionMethod
    uint32_t encryptionMethod = 0;           // 0: not encrypted
    bool operator==(const EncryptableVolume&) const = default;
};

// What the platform's documentation leaves open. The defaults are what is documented or observed most.
struct Switches {
    bool activeFlagIsExclusive = false;          // setting one active flag clears the others
    enum class Letterless { Fails, Nul, Zero };  // GetDriveLetter of a partition without a letter
    Letterless letterless = Letterless::Fails;
    bool volumesRefuseLetterCalls = true;  // letter calls fail on a partition that carries a volume
    bool hidingRemovesVolume = true;       // an unrecognised type takes letters and label away
    bool profilesSkipUtf8Mark = false;     // a UTF-8 mark does not spoil the first line of a profile
    bool operator==(const Switches&) const = default;
};

struct Pc {
    std::string name;
    Firmware firmware;
    RunningSystem system;
    HostProgram host;
    std::vector<Pack> packs;
    std::vector<Disk> disks;         // in VDS order
    std::vector<uint32_t> wmiOrder;  // disk numbers in WMI's order; those not named follow in VDS order
    std::vector<Volume> volumes;     // without a disk: discs, sticks, network letters
    RegistryKeys registry;
    RegistryKeys offlineSystemHive;  // what a hive file on a described volume holds, keys below its root
    std::shared_ptr<HiveReader> hiveReader;  // reads the hive files of disk images instead
    Shell shell;
    // What BitLocker's provider lists, in its order; absent: there is no such provider.
    std::optional<std::vector<EncryptableVolume>> encryptableVolumes;
    Switches switches;
    std::vector<FaultRule> faults;

    bool operator==(const Pc&) const = default;
};

}  // namespace machine
