// Builds a PC from images only, and assigns the letters of its running system.
#include <algorithm>

#include "machine/facts/extent_type.h"
#include "machine/facts/letters.h"
#include "machine/facts/machines.h"
#include "machine/media/disk_image.h"
#include "machine/media/encryptable_volumes.h"
#include "machine/media/given_images.h"
#include "machine/media/hive/hivex_reader.h"
#include "machine/media/mounted_devices.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr const char* sataController = "PCI\\VEN_8086&DEV_2922&SUBSYS_20F017AA&REV_03\\3&11583659&0&FA";
constexpr const char* windowsLoader = "Windows\\System32\\Winload.exe";

constexpr uint64_t gptHidden = 0x4000000000000000;
constexpr uint64_t gptNoDriveLetter = 0x8000000000000000;

bool IsBasicData(const Partition& partition) {
    return partition.gptType == PARTITION_BASIC_DATA_GUID;
}

// Every system assigns letters to recognised volumes. Windows PE also assigns them to the readable volumes
// of the maker and the recovery environment.
bool GetsLetter(const Disk& disk, const Partition& partition, SystemKind system) {
    if (!partition.volume) return false;
    const bool isPe = system == SystemKind::WindowsPe;
    const bool isReadable = WhyUnreadable(*partition.volume) == 0;
    const VDS_DISK_EXTENT_TYPE extent = ExtentTypeOf(disk.style, partition);
    if (disk.style == PartitionStyle::Gpt) {
        if ((partition.attributes & gptHidden) != 0) return false;
        // The no-letter attribute is defined only for basic data.
        if (IsBasicData(partition) && (partition.attributes & gptNoDriveLetter) != 0) return false;
        return extent == VDS_DET_DATA || (isPe && isReadable && extent == VDS_DET_OEM);
    }
    return extent == VDS_DET_DATA ||
           (isPe && isReadable && (extent == VDS_DET_OEM || extent == VDS_DET_UNKNOWN));
}

bool HoldsWindows(const Partition& partition) {
    return partition.volume && partition.volume->store &&
           partition.volume->store->Find(windowsLoader) == FileKind::File;
}

// The partition of the installed Windows, or null.
Partition* FindWindows(Pc& pc) {
    for (Disk& disk : pc.disks) {
        for (Partition& partition : disk.partitions) {
            if (GetsLetter(disk, partition, SystemKind::Windows) && HoldsWindows(partition))
                return &partition;
        }
    }
    return nullptr;
}

// Assigns C, D, ... in the order of disks and partitions; the running Windows is C.
void AssignLetters(Pc& pc) {
    std::string free = "CDEFGHIJKLMNOPQRSTUVWXYZ";
    const auto assign = [&](Partition& partition) {
        partition.volume->letters = free.substr(0, 1);
        free.erase(0, 1);
    };
    for (const Volume& volume : pc.volumes)
        std::erase_if(free, [&](char letter) { return volume.letters.find(letter) != std::string::npos; });
    const Partition* windows = nullptr;
    if (pc.system.kind == SystemKind::Windows) {
        if (Partition* found = FindWindows(pc)) {
            assign(*found);
            windows = found;
        }
    }
    for (Disk& disk : pc.disks) {
        for (Partition& partition : disk.partitions) {
            if (&partition != windows && !free.empty() && GetsLetter(disk, partition, pc.system.kind))
                assign(partition);
        }
    }
}

}  // namespace

Pc PcOfImages(const std::vector<std::string>& paths, SystemKind system, const ImageUse& use) {
    Pc pc = system == SystemKind::WindowsPe ? WindowsPePc() : Pc();
    pc.name = "images";
    // The platform does not document what happens to the other flags. With two of them a disk does not
    // boot.
    pc.switches.activeFlagIsExclusive = true;
    // The operations change the first disk alone: what is wrong with another, such as a stick, bars only
    // that. So does a blank one, which alone would be a PC without anything to look at.
    ImageUse first = use;
    first.mayBeBlank = paths.size() > 1;
    ImageUse further = first;
    further.mayBeDamaged = true;
    for (const std::string& path : paths) {
        CheckIsNew(pc, path);
        const auto number = static_cast<uint32_t>(pc.disks.size());
        Disk disk = SataDisk(number, 0, "IMAGE___________________________________", sataController);
        disk.image = path;
        AttachImage(disk, pc.disks.empty() ? first : further);
        pc.disks.push_back(std::move(disk));
    }
    const auto used = std::ranges::find_if(pc.disks, [](const Disk& disk) { return HasTable(disk); });
    const bool isUefi = used != pc.disks.end() && used->style == PartitionStyle::Gpt;
    pc.firmware.kind = isUefi ? FirmwareKind::Uefi : FirmwareKind::Bios;
    AssignLetters(pc);
    pc.registry["HKLM\\SYSTEM\\MountedDevices"] = MountedDevicesOf(pc);
    pc.encryptableVolumes = EncryptableVolumesOf(pc);
    pc.hiveReader = std::make_shared<HivexReader>();
    return pc;
}

}  // namespace machine
