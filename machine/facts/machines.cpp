#include "machine/facts/machines.h"

#include "machine/facts/letters.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint64_t MiB = 1024ULL * 1024;
constexpr uint64_t GiB = 1024 * MiB;
constexpr uint32_t xtsAes128 = 6;  // of Win32_EncryptableVolume
constexpr const char* sataController = "PCI\\VEN_8086&DEV_2922&SUBSYS_20F017AA&REV_03\\3&11583659&0&FA";
constexpr const char* cacheController = "PCI\\VEN_8086&DEV_282A&SUBSYS_20F017AA&REV_03\\3&11583659&0&FB";

FileTree RecoveryFiles() {
    return {{"sources/Qelhdrcv.ini", "[Recovery]\r\nVersion=1\r\n"},
            {"sources/Orvo/", ""},
            {"sources/data/", ""},
            {"sources/idf/", ""},
            {"sources/boot.wim", "WIM"}};
}

FileTree WindowsReFiles() {
    return {{"Boot/BCD", "BCD"},
            {"EFI/Microsoft/Boot/BCD", "BCD"},
            {"Recovery/WindowsRE/winre.wim", "WIM"},
            {"bootmgr", "BOOTMGR"},
            {"bootmgr.efi", "BOOTMGR"},
            {"sources/Autorun/", ""},
            {"sources/Orvo/", ""},
            {"sources/HDD/", ""}};
}

FileTree WindowsFiles() {
    return {
        {"Windows/System32/Winload.exe", "MZ"}, {"Windows/System32/config/SYSTEM", "regf"}, {"Users/", ""}};
}

Volume MakeVolume(std::string letters, std::string label, FileTree files, std::string fileSystem = "NTFS") {
    Volume volume;
    volume.letters = std::move(letters);
    volume.label = std::move(label);
    volume.files = std::move(files);
    volume.fileSystem = std::move(fileSystem);
    return volume;
}

Partition MbrPartition(uint32_t number, uint64_t offset, uint64_t size, uint8_t type,
                       std::optional<Volume> volume) {
    Partition partition;
    partition.number = number;
    partition.offset = offset;
    partition.size = size;
    partition.mbrType = type;
    partition.volume = std::move(volume);
    return partition;
}

Partition GptPartition(uint32_t number, uint64_t offset, uint64_t size, const GUID& type, std::string name,
                       std::optional<Volume> volume) {
    Partition partition;
    partition.number = number;
    partition.offset = offset;
    partition.size = size;
    partition.gptType = type;
    partition.gptId = *GuidFromText("6f1f3a52-0000-4000-8000-00000000000" + std::to_string(number));
    partition.name = std::move(name);
    partition.volume = std::move(volume);
    return partition;
}

Disk FactoryMbrDisk() {
    Disk disk = SataDisk(0, 500 * GiB, "ST500LT012_________________________SD13____", sataController);
    disk.signature = 0xB2F6B2F6;
    disk.partitions = {
        MbrPartition(1, MiB, 15 * GiB, MBR_ID_HIDDEN_RECOVERY, MakeVolume("", "Recovery", RecoveryFiles())),
        MbrPartition(2, MiB + 15 * GiB, 200 * GiB, MBR_ID_NTFS, MakeVolume("C", "Windows", WindowsFiles())),
        MbrPartition(3, MiB + 215 * GiB, 276 * GiB, MBR_ID_NTFS, MakeVolume("D", "Data", {})),
        MbrPartition(4, MiB + 491 * GiB, 8 * GiB, MBR_ID_BIOS_HIBERNATION, std::nullopt),
    };
    disk.partitions[1].bootIndicator = 1;
    return disk;
}

Disk FactoryGptDisk() {
    Disk disk = SataDisk(0, 500 * GiB, "ST500LT012_________________________SD13____", sataController);
    disk.style = PartitionStyle::Gpt;
    disk.guid = *GuidFromText("6f1f3a52-1111-4000-8000-000000000000");
    disk.partitions = {
        GptPartition(1, MiB, GiB, ORVOBOOT_GUID, "Maker boot",
                     MakeVolume("", "Boot", {{"boot/", ""}}, "FAT32")),
        GptPartition(2, MiB + GiB, GiB, PARTITION_MSFT_RECOVERY_GUID, "Windows RE",
                     MakeVolume("", "WinRE", WindowsReFiles())),
        GptPartition(3, MiB + 2 * GiB, GiB, PARTITION_SYSTEM_GUID, "EFI system partition",
                     MakeVolume("", "SYSTEM", {{"EFI/Microsoft/Boot/bootmgfw.efi", "MZ"}}, "FAT32")),
        GptPartition(4, MiB + 3 * GiB, 128 * MiB, PARTITION_MSFT_RESERVED_GUID,
                     "Microsoft reserved partition", std::nullopt),
        GptPartition(5, MiB + 4 * GiB, 470 * GiB, PARTITION_BASIC_DATA_GUID, "Basic data partition",
                     MakeVolume("C", "Windows", WindowsFiles())),
        GptPartition(6, MiB + 474 * GiB, 25 * GiB, PARTITION_MSFT_RECOVERY_GUID, "Recovery",
                     MakeVolume("", "Recovery", RecoveryFiles())),
    };
    return disk;
}

// The factory disk with an additional data partition, which is locked, between Windows and recovery.
Disk SharedGptDisk() {
    Volume locked = MakeVolume("D", "", {}, "RAW");
    locked.label = Fact<std::string>::Fails(errorLockedVolume);
    Disk disk = FactoryGptDisk();
    disk.partitions[4].size = 200 * GiB;
    disk.partitions[5] = GptPartition(6, MiB + 204 * GiB, 270 * GiB, PARTITION_BASIC_DATA_GUID,
                                      "Basic data partition", std::move(locked));
    disk.partitions.push_back(GptPartition(7, MiB + 474 * GiB, 25 * GiB, PARTITION_MSFT_RECOVERY_GUID,
                                           "Recovery", MakeVolume("", "Recovery", RecoveryFiles())));
    return disk;
}

Volume RecoveryMedium(const char* letter, DriveType driveType, const char* fileSystem, const char* flag) {
    Volume medium = MakeVolume(letter, "Recovery", RecoveryFiles(), fileSystem);
    medium.driveType = driveType;
    medium.files.PutFile(flag, "");
    return medium;
}

// The MountedDevices value of a GPT partition.
std::pair<const std::string, RegistryValue> MountedDevice(char letter, const Guid& partitionId) {
    constexpr uint32_t binary = 3;
    const std::string id(reinterpret_cast<const char*>(&partitionId), sizeof(GUID));
    return {std::string("\\DosDevices\\") + letter + ":", {binary, "DMIO:ID:" + id}};
}

}  // namespace

Disk SataDisk(uint32_t number, uint64_t size, const std::string& model, const std::string& controller) {
    const std::string digit = std::to_string(number);
    Disk disk;
    disk.number = number;
    disk.vdsName = "\\\\?\\PhysicalDrive" + digit;
    disk.size = size;
    disk.wmi = WmiDisk{"\\\\.\\PHYSICALDRIVE" + digit,
                       "IDE\\DISK" + model + "\\5&37E07111&0&" + digit + ".0.0", "IDE"};
    disk.location = digit;
    disk.scsiAddress = ScsiAddress{0, static_cast<uint8_t>(number), 0, 0};
    disk.controllers = {controller};
    return disk;
}

Pc WindowsPePc() {
    Pc pc;
    pc.system.kind = SystemKind::WindowsPe;
    pc.system.windowsDirectory = "X:\\Windows";
    pc.system.startOptions = " FASTDETECT MININT";
    pc.volumes = {MakeVolume("X", "Boot", {{"Windows/System32/Winload.exe", "MZ"}})};
    pc.host.path = "X:\\Recovery\\Recovery.exe";
    return pc;
}

Pc FactoryMbr() {
    Pc pc;
    pc.name = "factory-mbr";
    pc.disks = {FactoryMbrDisk()};
    return pc;
}

Pc FactoryGpt() {
    Pc pc;
    pc.name = "factory-gpt";
    pc.firmware.kind = FirmwareKind::Uefi;
    pc.disks = {FactoryGptDisk()};
    return pc;
}

Pc WinPeTwoDisks() {
    Pc pc = WindowsPePc();
    pc.name = "winpe-two-disks";
    pc.host.files.PutFile("IDE.INI", std::string("[OrderIndex]\r\nDeviceID1=") + sataController + "\r\n");
    Disk internal = FactoryMbrDisk();
    internal.partitions[0].bootIndicator = 1;
    internal.partitions[0].volume->letters = "C";
    internal.partitions[1].bootIndicator = 0;
    internal.partitions[1].volume->letters = "D";
    internal.partitions[2].volume->letters = "E";
    Disk cache = SataDisk(1, 32 * GiB, "SSD32______________________________1.0_____", cacheController);
    cache.signature = 0xCAC4E001;
    cache.partitions = {MbrPartition(1, MiB, 31 * GiB, MBR_ID_CACHE, std::nullopt)};
    pc.disks = {internal, cache};
    return pc;
}

Pc WinPeMedia() {
    Pc pc = WindowsPePc();
    pc.name = "winpe-media";
    pc.firmware.kind = FirmwareKind::Uefi;
    pc.disks = {SharedGptDisk()};
    pc.volumes.push_back(RecoveryMedium("R", DriveType::Optical, "UDF", "sources/DVD"));
    pc.volumes.push_back(RecoveryMedium("U", DriveType::Removable, "FAT32", "sources/UFD"));
    const Guid windows = pc.disks[0].partitions[4].gptId;
    const Guid data = pc.disks[0].partitions[5].gptId;
    const Guid gone = *GuidFromText("6f1f3a52-2222-4000-8000-000000000001");
    pc.registry["HKLM\\SYSTEM\\MountedDevices"] = {MountedDevice('C', windows), MountedDevice('D', data)};
    pc.offlineSystemHive["MountedDevices"] = {MountedDevice('C', windows), MountedDevice('E', data),
                                              MountedDevice('F', gone)};
    EncryptableVolume system;
    system.deviceId = "\\\\?\\Volume{6f1f3a52-0000-4000-8000-000000000005}\\";
    system.persistentVolumeId = "";
    system.driveLetter = "C:";
    EncryptableVolume locked;
    locked.deviceId = "\\\\?\\Volume{6f1f3a52-0000-4000-8000-000000000006}\\";
    locked.persistentVolumeId = "{6f1f3a52-3333-4000-8000-000000000006}";
    locked.driveLetter = "D:";
    locked.encryptionMethod = xtsAes128;
    pc.encryptableVolumes = {system, locked};
    return pc;
}

const std::vector<NamedMachine>& NamedMachines() {
    static const std::vector<NamedMachine> machines = {
        {"factory-mbr", "BIOS, installed Windows, MBR disk: recovery, Windows (active), data, hibernation",
         FactoryMbr},
        {"factory-gpt",
         "UEFI, installed Windows, GPT disk: maker's boot, Windows RE, EFI, reserved, Windows, recovery",
         FactoryGpt},
        {"winpe-two-disks", "BIOS, Windows PE from the recovery partition, a cache disk, IDE.INI",
         WinPeTwoDisks},
        {"winpe-media",
         "UEFI, Windows PE, GPT disk with Windows and a locked data partition, recovery disc and stick",
         WinPeMedia},
    };
    return machines;
}

}  // namespace machine
