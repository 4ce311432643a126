#include "tests/random/engine/random_machine.h"

#include <algorithm>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"

namespace randomly {

namespace {

using namespace machine;

constexpr uint64_t MiB = 1024ULL * 1024;
constexpr uint64_t GiB = 1024 * MiB;
constexpr const char* controllers[] = {"PCI\\VEN_8086&DEV_2922\\3&0&FA", "PCI\\VEN_8086&DEV_282A\\3&0&FB"};

class Maker {
  public:
    explicit Maker(Choice& choice) : choice_(choice) {}
    Pc Make();

  private:
    std::string Letter();
    Volume MakeVolume();
    Partition MakePartition(const Disk& disk, uint32_t number);
    Disk MakeDisk(uint32_t number);
    Volume MakeMedium();
    EncryptableVolume MakeEncryptable(char letter);

    Choice& choice_;
    std::string lettersLeft_ = "CDEFGHIJKLMNOPQRSTUVW";
};

// A free letter.
std::string Maker::Letter() {
    if (lettersLeft_.empty()) return "";
    const size_t at = choice_.Below(lettersLeft_.size());
    std::string letter(1, lettersLeft_[at]);
    lettersLeft_.erase(at, 1);
    return letter;
}

// The contents of volumes of the factory disks.
FileTree FilesLike(uint32_t kind) {
    const Pc mbr = FactoryMbr();
    const Pc gpt = FactoryGpt();
    if (kind == 0) return mbr.disks[0].partitions[0].volume->files;
    if (kind == 1) return mbr.disks[0].partitions[1].volume->files;
    if (kind == 2) return gpt.disks[0].partitions[1].volume->files;
    return {};
}

Volume Maker::MakeVolume() {
    Volume volume;
    if (!choice_.OneIn(3)) volume.letters = Letter();
    volume.label = choice_.OneOf<std::string>({"", "Windows", "Data", "System Reserved", "system reserved",
                                               "Factory", "FACTORY", "Factory2", std::string(32, 'L')});
    volume.fileSystem = choice_.OneOf<std::string>({"NTFS", "NTFS", "FAT32"});
    volume.files = FilesLike(static_cast<uint32_t>(choice_.Below(5)));
    if (choice_.OneIn(8))
        volume.files.PutFile("SystemVolume.ini", choice_.OneOf<std::string>(
                                                     {"[System]\r\nActive=3\r\n", "[System]\r\nActive=2\r\n",
                                                      "[System]\r\nActive=abc\r\n", ""}));
    return volume;
}

Partition Maker::MakePartition(const Disk& disk, uint32_t number) {
    Partition partition;
    partition.number = number;
    partition.offset = MiB + (number - 1) * 10 * GiB;
    partition.size = 10 * GiB;
    bool holdsVolume = true;
    if (disk.style == PartitionStyle::Mbr) {
        partition.mbrType =
            choice_.OneOf<uint8_t>({MBR_ID_NTFS, MBR_ID_NTFS, MBR_ID_HIDDEN_RECOVERY, MBR_ID_OEM_RECOVERY,
                                    MBR_ID_BIOS_HIBERNATION, MBR_ID_CACHE});
        partition.bootIndicator = choice_.OneIn(5) ? 1 : 0;
        holdsVolume = partition.mbrType != MBR_ID_BIOS_HIBERNATION && partition.mbrType != MBR_ID_CACHE;
    } else {
        partition.gptType = choice_.OneOf<GUID>({ORVOBOOT_GUID, PARTITION_SYSTEM_GUID, PARTITION_SYSTEM_GUID,
                                                 PARTITION_MSFT_RESERVED_GUID, PARTITION_BASIC_DATA_GUID,
                                                 PARTITION_BASIC_DATA_GUID, PARTITION_MSFT_RECOVERY_GUID});
        partition.gptId.Data1 = disk.number * 100 + number;
        holdsVolume = partition.gptType != Guid(PARTITION_MSFT_RESERVED_GUID);
    }
    if (holdsVolume && !choice_.OneIn(8)) partition.volume = MakeVolume();
    return partition;
}

Disk Maker::MakeDisk(uint32_t number) {
    Disk disk = SataDisk(number, 500 * GiB, "DISK" + std::string(36, '_'), controllers[choice_.Below(2)]);
    disk.style = choice_.OneIn(3) ? PartitionStyle::Gpt : PartitionStyle::Mbr;
    if (disk.style == PartitionStyle::Mbr) disk.signature = 0xD15C0000 + number;
    if (disk.style == PartitionStyle::Gpt) disk.guid.Data1 = 0xD15C0000 + number;
    disk.busType = choice_.OneOf<uint32_t>({3, 8, 11, 11, 17, 7, 1, 10, 0});
    disk.storageBusType = disk.busType;
    const uint64_t count = choice_.Below(8);
    for (uint32_t partition = 1; partition <= count; ++partition)
        disk.partitions.push_back(MakePartition(disk, partition));
    return disk;
}

Volume Maker::MakeMedium() {
    Volume medium = MakeVolume();
    medium.driveType = choice_.OneOf({DriveType::Optical, DriveType::Removable, DriveType::Remote});
    medium.letters = Letter();
    if (choice_.OneIn(2))
        medium.files.PutFile(choice_.OneOf<std::string>({"sources/DVD", "sources/UFD"}), "");
    return medium;
}

EncryptableVolume Maker::MakeEncryptable(char letter) {
    EncryptableVolume volume;
    volume.deviceId = std::string("\\\\?\\Volume{") + letter + "}\\";
    volume.persistentVolumeId = choice_.OneIn(2) ? "" : "{id}";
    if (!choice_.OneIn(4)) volume.driveLetter = std::string(1, letter) + ":";
    volume.encryptionMethod = choice_.OneOf<uint32_t>({0, 0, 6, 0xFFFFFFFF});
    return volume;
}

Pc Maker::Make() {
    Pc pc = choice_.OneIn(3) ? WindowsPePc() : Pc();
    pc.firmware.kind = choice_.OneOf({FirmwareKind::Bios, FirmwareKind::Uefi});
    pc.switches.activeFlagIsExclusive = choice_.OneIn(2);
    pc.switches.volumesRefuseLetterCalls = choice_.OneIn(2);
    pc.switches.letterless =
        choice_.OneOf({Switches::Letterless::Fails, Switches::Letterless::Nul, Switches::Letterless::Zero});
    const uint64_t disks = choice_.Below(4);
    for (uint32_t number = 0; number < disks; ++number)
        pc.disks.push_back(MakeDisk(number));
    if (choice_.OneIn(2)) std::reverse(pc.disks.begin(), pc.disks.end());
    for (uint64_t media = choice_.Below(3); media > 0; --media)
        pc.volumes.push_back(MakeMedium());
    if (choice_.OneIn(2)) {
        pc.encryptableVolumes.emplace();
        for (const char letter : std::string("CDE").substr(choice_.Below(4)))
            pc.encryptableVolumes->push_back(MakeEncryptable(letter));
    }
    return pc;
}

}  // namespace

Pc RandomMachine(Choice& choice) {
    return Maker(choice).Make();
}

}  // namespace randomly
