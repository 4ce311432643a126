#include "machine/generation/wild_pc.h"

#include <algorithm>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint64_t MiB = 1024ULL * 1024;
constexpr uint64_t GiB = 1024 * MiB;
constexpr const char* controllers[] = {"PCI\\VEN_8086&DEV_2922\\3&0&FA", "PCI\\VEN_8086&DEV_282A\\3&0&FB"};

// The contents of volumes of the factory disks; none for other kinds.
FileTree FilesLike(uint64_t kind) {
    const Pc mbr = FactoryMbr();
    const Pc gpt = FactoryGpt();
    if (kind == 0) return mbr.disks[0].partitions[0].volume->files;
    if (kind == 1) return mbr.disks[0].partitions[1].volume->files;
    if (kind == 2) return gpt.disks[0].partitions[1].volume->files;
    return {};
}

Volume WildVolume(std::string& letters, Choice& choice) {
    Volume volume;
    if (!choice.OneIn(3)) volume.letters = TakeLetter(letters, choice);
    volume.label = choice.OneOf<std::string>({"", "Windows", "Data", "System Reserved", "system reserved",
                                              "Factory", "FACTORY", "Factory2", std::string(32, 'L')});
    volume.fileSystem = choice.OneOf<std::string>({"NTFS", "NTFS", "FAT32"});
    volume.files = FilesLike(choice.Below(5));
    if (choice.OneIn(8))
        volume.files.PutFile("SystemVolume.ini", choice.OneOf<std::string>(
                                                     {"[System]\r\nActive=3\r\n", "[System]\r\nActive=2\r\n",
                                                      "[System]\r\nActive=abc\r\n", ""}));
    return volume;
}

// Whether a partition of the type that is chosen holds a volume.
bool ChooseType(const Disk& disk, Partition& partition, Choice& choice) {
    if (disk.style == PartitionStyle::Mbr) {
        partition.mbrType =
            choice.OneOf<uint8_t>({MBR_ID_NTFS, MBR_ID_NTFS, MBR_ID_HIDDEN_RECOVERY, MBR_ID_OEM_RECOVERY,
                                   MBR_ID_BIOS_HIBERNATION, MBR_ID_CACHE});
        partition.bootIndicator = choice.OneIn(5) ? 1 : 0;
        return partition.mbrType != MBR_ID_BIOS_HIBERNATION && partition.mbrType != MBR_ID_CACHE;
    }
    partition.gptType = choice.OneOf<GUID>({ORVOBOOT_GUID, PARTITION_SYSTEM_GUID, PARTITION_SYSTEM_GUID,
                                            PARTITION_MSFT_RESERVED_GUID, PARTITION_BASIC_DATA_GUID,
                                            PARTITION_BASIC_DATA_GUID, PARTITION_MSFT_RECOVERY_GUID});
    partition.gptId.Data1 = disk.number * 100 + partition.number;
    return partition.gptType != Guid(PARTITION_MSFT_RESERVED_GUID);
}

Partition WildPartition(const Disk& disk, uint32_t number, std::string& letters, Choice& choice) {
    constexpr uint64_t size = 10 * GiB;
    Partition partition;
    partition.number = number;
    partition.offset = MiB + (number - 1) * size;
    partition.size = size;
    const bool holdsVolume = ChooseType(disk, partition, choice);
    if (holdsVolume && !choice.OneIn(8)) partition.volume = WildVolume(letters, choice);
    return partition;
}

}  // namespace

std::string TakeLetter(std::string& letters, Choice& choice) {
    if (letters.empty()) return "";
    const size_t at = choice.IndexBelow(letters.size());
    std::string letter(1, letters[at]);
    letters.erase(at, 1);
    return letter;
}

Disk WildDisk(uint32_t number, std::string& letters, Choice& choice) {
    Disk disk = SataDisk(number, 500 * GiB, "DISK" + std::string(36, '_'), controllers[choice.Below(2)]);
    disk.style = choice.OneIn(3) ? PartitionStyle::Gpt : PartitionStyle::Mbr;
    if (disk.style == PartitionStyle::Mbr) disk.signature = 0xD15C0000 + number;
    if (disk.style == PartitionStyle::Gpt) disk.guid.Data1 = 0xD15C0000 + number;
    disk.busType = choice.OneOf<uint32_t>({3, 8, 11, 11, 17, 7, 1, 10, 0});
    disk.storageBusType = disk.busType;
    const uint64_t count = choice.Below(8);
    for (uint32_t partition = 1; partition <= count; ++partition)
        disk.partitions.push_back(WildPartition(disk, partition, letters, choice));
    return disk;
}

Volume WildMedium(std::string& letters, Choice& choice) {
    Volume medium = WildVolume(letters, choice);
    medium.driveType = choice.OneOf({DriveType::Optical, DriveType::Removable, DriveType::Remote});
    if (medium.letters.empty()) medium.letters = TakeLetter(letters, choice);
    if (choice.OneIn(2)) medium.files.PutFile(choice.OneOf<std::string>({"sources/DVD", "sources/UFD"}), "");
    return medium;
}

Switches WildSwitches(Choice& choice) {
    Switches switches;
    switches.activeFlagIsExclusive = choice.OneIn(2);
    switches.volumesRefuseLetterCalls = choice.OneIn(2);
    switches.letterless =
        choice.OneOf({Switches::Letterless::Fails, Switches::Letterless::Nul, Switches::Letterless::Zero});
    return switches;
}

EncryptableVolume WildEncryptable(char letter, Choice& choice) {
    EncryptableVolume volume;
    volume.deviceId = std::string("\\\\?\\Volume{") + letter + "}\\";
    volume.persistentVolumeId = choice.OneIn(2) ? "" : "{id}";
    if (!choice.OneIn(4)) volume.driveLetter = std::string(1, letter) + ":";
    volume.encryptionMethod = choice.OneOf<uint32_t>({0, 0, 6, 0xFFFFFFFF});
    return volume;
}

Pc WildPc(Choice& choice) {
    Pc pc = choice.OneIn(3) ? WindowsPePc() : Pc();
    std::string letters = "CDEFGHIJKLMNOPQRSTUVW";
    pc.firmware.kind = choice.OneOf({FirmwareKind::Bios, FirmwareKind::Uefi});
    pc.switches = WildSwitches(choice);
    const uint64_t disks = choice.Below(5);
    for (uint32_t number = 0; number < disks; ++number)
        pc.disks.push_back(WildDisk(number, letters, choice));
    if (choice.OneIn(2)) std::ranges::reverse(pc.disks);
    for (uint64_t media = choice.Below(3); media > 0; --media)
        pc.volumes.push_back(WildMedium(letters, choice));
    if (choice.OneIn(2)) {
        pc.encryptableVolumes.emplace();
        for (const char letter : std::string("CDE").substr(choice.IndexBelow(4)))
            pc.encryptableVolumes->push_back(WildEncryptable(letter, choice));
    }
    return pc;
}

}  // namespace machine
