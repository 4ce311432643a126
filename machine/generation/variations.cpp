#include "machine/generation/variations.h"

#include <algorithm>

#include "machine/facts/letters.h"
#include "machine/facts/machines.h"
#include "machine/generation/wild_pc.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint64_t MiB = 1024ULL * 1024;
constexpr uint64_t GiB = 1024 * MiB;

// --- parts of the PC ---

// It is shipped as the first of the list.
Disk& Internal(Pc& pc) {
    return pc.disks.front();
}

bool IsRecovery(const Partition& partition) {
    return partition.volume && partition.volume->files.Find("sources/Qelhdrcv.ini") != nullptr;
}

// Null once it is lost.
Volume* RecoveryVolume(Pc& pc) {
    const auto found = std::ranges::find_if(Internal(pc).partitions, IsRecovery);
    return found != Internal(pc).partitions.end() ? &*found->volume : nullptr;
}

// Null on a disk that has lost its partitions.
Partition* AnyPartition(Pc& pc, Choice& choice) {
    std::vector<Partition>& partitions = Internal(pc).partitions;
    return partitions.empty() ? nullptr : &partitions[choice.IndexBelow(partitions.size())];
}

std::string FreeLetters(const Pc& pc) {
    std::string letters = "CDEFGHIJKLMNOPQRSTUVW";
    const std::string used = UsedLetters(pc);
    std::erase_if(letters, [&](char letter) { return used.find(letter) != std::string::npos; });
    return letters;
}

// --- the internal disk ---

// The partitions keep their shares.
void Resize(Pc& pc, Choice& choice) {
    Disk& disk = Internal(pc);
    const uint64_t before = disk.size / MiB;
    disk.size = choice.OneOf<uint64_t>({120, 128, 240, 256, 320, 512, 750, 1000, 2000}) * GiB;
    const auto scaled = [&](uint64_t offset) {
        return std::max<uint64_t>(offset / MiB * (disk.size / MiB) / before, 1) * MiB;
    };
    for (Partition& partition : disk.partitions) {
        const uint64_t end = scaled(partition.offset + partition.size);
        partition.offset = scaled(partition.offset);
        partition.size = end - partition.offset;
    }
}

void Replace(Pc& pc, Choice& choice) {
    Disk& disk = Internal(pc);
    std::string model = choice.OneOf<std::string>({"HD500", "HD1000", "SSD256", "SSD512", "HYBRID750"});
    model.resize(40, '_');
    disk.wmi = SataDisk(disk.number, disk.size, model, "").wmi;
    const auto identity = static_cast<uint32_t>(choice.Below(0xFFFFFFFF) + 1);
    if (disk.style == PartitionStyle::Mbr) disk.signature = identity;
    if (disk.style == PartitionStyle::Gpt) disk.guid.Data1 = identity;
}

void PutOnAnotherBus(Pc& pc, Choice& choice) {
    Disk& disk = Internal(pc);
    disk.busType = choice.OneOf<uint32_t>({3, 8, 17, 17, 10, 7, 1, 0});
    disk.storageBusType = disk.busType;
}

// Windows counts used entries.
void LosePartition(Pc& pc, Choice& choice) {
    std::vector<Partition>& partitions = Internal(pc).partitions;
    partitions.erase(partitions.begin() + static_cast<std::ptrdiff_t>(choice.Below(partitions.size())));
    for (uint32_t number = 1; Partition & partition : partitions)
        partition.number = number++;
}

void LoseAllPartitions(Pc& pc, Choice&) {
    Internal(pc).partitions.clear();
}

void MoveActiveFlag(Pc& pc, Choice& choice) {
    Disk& disk = Internal(pc);
    if (disk.style != PartitionStyle::Mbr) return;
    if (!choice.OneIn(4)) {
        for (Partition& partition : disk.partitions)
            partition.bootIndicator = 0;
    }
    if (Partition* const partition = AnyPartition(pc, choice))
        partition->bootIndicator = choice.OneIn(5) ? 0 : 1;
}

void RetypePartition(Pc& pc, Choice& choice) {
    Partition* const partition = AnyPartition(pc, choice);
    if (partition == nullptr || !partition->volume) return;
    if (Internal(pc).style == PartitionStyle::Mbr) {
        partition->mbrType =
            choice.OneOf<uint8_t>({MBR_ID_NTFS, MBR_ID_HIDDEN_RECOVERY, MBR_ID_OEM_RECOVERY});
    } else {
        partition->gptType = choice.OneOf<GUID>(
            {PARTITION_BASIC_DATA_GUID, PARTITION_MSFT_RECOVERY_GUID, PARTITION_SYSTEM_GUID, ORVOBOOT_GUID});
    }
}

// --- volumes ---

void LoseRecoveryFiles(Pc& pc, Choice& choice) {
    Volume* const volume = RecoveryVolume(pc);
    if (volume == nullptr) return;
    if (choice.OneIn(2)) {
        volume->files = {};
    } else {
        volume->files.RemoveFile("sources/Qelhdrcv.ini");
    }
}

void LeaveRecord(Pc& pc, Choice& choice) {
    Volume* const volume = RecoveryVolume(pc);
    if (volume == nullptr) return;
    volume->files.PutFile("SystemVolume.ini",
                          choice.OneOf<std::string>({"[System]\r\nActive=1\r\n", "[System]\r\nActive=2\r\n",
                                                     "[System]\r\nActive=4\r\n", "[System]\r\n"}));
}

// A locked volume shows no label.
void Relabel(Pc& pc, Choice& choice) {
    Partition* const partition = AnyPartition(pc, choice);
    if (partition == nullptr || !partition->volume || !partition->volume->label.value) return;
    partition->volume->label =
        choice.OneOf<std::string>({"", "System Reserved", "Factory", "Daten", "データ"});
}

void ChangeLetter(Pc& pc, Choice& choice) {
    Partition* const partition = AnyPartition(pc, choice);
    if (partition == nullptr || !partition->volume) return;
    std::string letters = FreeLetters(pc);
    partition->volume->letters = choice.OneIn(3) ? "" : TakeLetter(letters, choice);
}

void Encrypt(Pc& pc, Choice& choice) {
    pc.encryptableVolumes.emplace();
    for (const char letter : UsedLetters(pc)) {
        if (letter != 'X') pc.encryptableVolumes->push_back(WildEncryptable(letter, choice));
    }
}

// --- what is beside the internal disk ---

void AddDisk(Pc& pc, Choice& choice) {
    std::string letters = FreeLetters(pc);
    const auto number = static_cast<uint32_t>(pc.disks.size());
    const auto at = static_cast<std::ptrdiff_t>(choice.Below(pc.disks.size() + 1));
    pc.disks.insert(pc.disks.begin() + at, WildDisk(number, letters, choice));
}

void InsertMedium(Pc& pc, Choice& choice) {
    std::string letters = FreeLetters(pc);
    pc.volumes.push_back(WildMedium(letters, choice));
}

void StartWindowsPe(Pc& pc, Choice&) {
    const Pc example = WindowsPePc();
    if (pc.system.kind == SystemKind::WindowsPe) return;
    pc.system = example.system;
    pc.host = example.host;
    pc.volumes.insert(pc.volumes.end(), example.volumes.begin(), example.volumes.end());
}

void SwitchFirmware(Pc& pc, Choice& choice) {
    pc.firmware.kind = choice.OneOf({FirmwareKind::Bios, FirmwareKind::Uefi});
}

void ChooseSwitches(Pc& pc, Choice& choice) {
    pc.switches = WildSwitches(choice);
}

// --- how often ---

struct Variation {
    uint64_t oneIn;
    void (*apply)(Pc& pc, Choice& choice);
};

// In this order: what adds disks comes after what changes the internal one.
constexpr Variation variations[] = {
    {2, Resize},          {2, Replace},           {4, PutOnAnotherBus},    {5, MoveActiveFlag},
    {8, RetypePartition}, {8, LoseRecoveryFiles}, {6, LeaveRecord},        {4, Relabel},
    {4, ChangeLetter},    {8, LosePartition},     {40, LoseAllPartitions}, {4, InsertMedium},
    {3, AddDisk},         {8, AddDisk},           {30, AddDisk},           {4, Encrypt},
    {5, StartWindowsPe},  {8, SwitchFirmware},    {3, ChooseSwitches}};

}  // namespace

void Vary(Pc& pc, Choice& choice) {
    for (const Variation& variation : variations) {
        if (choice.OneIn(variation.oneIn)) variation.apply(pc, choice);
    }
}

}  // namespace machine
