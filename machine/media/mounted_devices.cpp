#include "machine/media/mounted_devices.h"

namespace machine {

namespace {

// Little-endian.
std::string BytesOf(uint64_t number, size_t count) {
    std::string bytes;
    for (size_t i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

std::string PlaceOf(const Disk& disk, const Partition& partition) {
    if (disk.style != PartitionStyle::Gpt) return BytesOf(disk.signature, 4) + BytesOf(partition.offset, 8);
    const GUID& id = partition.gptId;
    return "DMIO:ID:" + std::string(reinterpret_cast<const char*>(&id), sizeof(id));
}

}  // namespace

std::map<std::string, RegistryValue> MountedDevicesOf(const Pc& pc) {
    std::map<std::string, RegistryValue> values;
    for (const Disk& disk : pc.disks) {
        for (const Partition& partition : disk.partitions) {
            if (!partition.volume) continue;
            for (const char letter : partition.volume->letters)
                values[std::string("\\DosDevices\\") + letter + ':'] = {REG_BINARY, PlaceOf(disk, partition)};
        }
    }
    return values;
}

}  // namespace machine
