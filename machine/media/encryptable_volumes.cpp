#include "machine/media/encryptable_volumes.h"

namespace machine {

namespace {

constexpr uint32_t notEncrypted = 0;
constexpr uint32_t xtsAes128 = 6;

// Windows identifies the volume of a GPT partition by the partition's id, that of an MBR partition by the
// disk's signature and the partition's offset.
std::string VolumeGuidText(const Disk& disk, const Partition& partition) {
    if (disk.style == PartitionStyle::Gpt) return GuidText(partition.gptId);
    Guid guid;
    guid.Data1 = disk.signature;
    for (size_t i = 0; i < sizeof(guid.Data4); ++i)
        guid.Data4[i] = static_cast<unsigned char>(partition.offset >> (8 * i));
    return GuidText(guid);
}

}  // namespace

std::vector<EncryptableVolume> EncryptableVolumesOf(const Pc& pc) {
    std::vector<EncryptableVolume> volumes;
    for (const Disk& disk : pc.disks) {
        for (const Partition& partition : disk.partitions) {
            if (!partition.volume) continue;
            const std::string& letters = partition.volume->letters;
            const bool isLocked = partition.volume->fileSystem == "BitLocker";
            if (letters.empty() && !isLocked) continue;
            const std::string guid = VolumeGuidText(disk, partition);
            EncryptableVolume volume;
            volume.deviceId = R"(\\?\Volume{)" + guid + R"(}\)";
            volume.persistentVolumeId = isLocked ? "{" + guid + "}" : "";
            if (!letters.empty()) volume.driveLetter = letters.substr(0, 1) + ":";
            volume.encryptionMethod = isLocked ? xtsAes128 : notEncrypted;
            volumes.push_back(std::move(volume));
        }
    }
    return volumes;
}

}  // namespace machine
