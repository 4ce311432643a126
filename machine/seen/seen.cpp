#include "machine/seen/seen.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "base/text_case.h"
#include "base/utf.h"
#include "machine/facts/extent_type.h"
#include "machine/facts/letters.h"
#include "machine/facts/volume_files.h"
#include "machine/facts/volume_names.h"
#include "machine/facts/wmi_disks.h"
#include "machine/seen/looked_for_files.h"
#include "platform/start_options.h"
#include "platform/vds.h"

namespace machine {

namespace {

constexpr std::string_view controlKey = "HKLM\\SYSTEM\\CurrentControlSet\\Control";
constexpr std::string_view mountedDevicesKey = "HKLM\\SYSTEM\\MountedDevices";
constexpr std::string_view letterPrefix = "\\DosDevices\\";
constexpr uint32_t busTypeEnd = offsetof(STORAGE_DEVICE_DESCRIPTOR, BusType) + 1;

// --- the system ---

// Only the error tells the kinds of firmware apart.
Firmware SeenFirmware(const Firmware& firmware) {
    const bool isUefi = firmware.kind == FirmwareKind::Uefi;
    const uint32_t error = firmware.error.value_or(isUefi ? ERROR_NOACCESS : ERROR_INVALID_FUNCTION);
    if (error == ERROR_INVALID_FUNCTION) return {FirmwareKind::Bios, std::nullopt};
    return {FirmwareKind::Uefi, error == ERROR_NOACCESS ? std::nullopt : std::optional(error)};
}

using RegistryValues = RegistryKeys::mapped_type;

const RegistryValues* FindKey(const RegistryKeys& keys, std::string_view path) {
    const auto found = std::ranges::find_if(keys, [&](const auto& key) { return SameName(key.first, path); });
    return found != keys.end() ? &found->second : nullptr;
}

std::optional<std::string> StartOptions(const Pc& pc) {
    if (pc.system.startOptions) return pc.system.startOptions;
    const RegistryValues* const values = FindKey(pc.registry, controlKey);
    if (values == nullptr) return std::nullopt;
    for (const auto& [name, value] : *values) {
        if (SameName(name, ToUtf8(startOptionsValue)) && value.type == REG_SZ) return value.data;
    }
    return std::nullopt;
}

RegistryKeys SeenRegistry(const RegistryKeys& keys) {
    const RegistryValues* const values = FindKey(keys, mountedDevicesKey);
    if (values == nullptr) return {};
    RegistryValues seen;
    for (const auto& [name, value] : *values) {
        const bool isLetter = name.size() == letterPrefix.size() + 2 && name.back() == ':' &&
                              SameName(name.substr(0, letterPrefix.size()), letterPrefix);
        if (isLetter) seen[std::string(letterPrefix) + UpperCase(name.substr(letterPrefix.size()))] = value;
    }
    return {{std::string(mountedDevicesKey), seen}};
}

HostApplication SeenHost(Pc& pc) {
    HostApplication host = {.path = pc.host.path, .files = {}};
    const std::string folder = host.path.substr(0, host.path.find_last_of('\\') + 1);
    std::string content;
    if (VolumeFiles(pc).Read(folder + std::string(ideFile), content) == ERROR_SUCCESS)
        host.files.PutFile(ideFile, content);
    return host;
}

// --- volumes ---

// The root folder of a volume: by its first letter, through which the folder of the host application shows
// too, or by its name.
class SeenRoot {
  public:
    SeenRoot(Pc& pc, const Volume& volume) : pc_(pc), volume_(volume) {
        const auto letter = std::ranges::min_element(volume.letters);
        if (letter != volume.letters.end()) root_ = std::string(1, *letter) + ":\\";
    }

    // 0 if it can be read.
    uint32_t Error() {
        FileKind kind;
        return root_.empty() ? WhyUnreadable(volume_) : VolumeFiles(pc_).Find(root_, kind);
    }

    FileTree Files() {
        FileTree seen;
        for (const std::string_view path : lookedForFiles) {
            const FileKind kind = KindOf(path);
            if (kind == FileKind::Folder) seen.PutFolder(path);
            if (kind == FileKind::File) seen.PutFile(path, path == systemVolumeFile ? Content(path) : "");
        }
        return seen;
    }

  private:
    FileKind KindOf(std::string_view path) {
        FileKind kind = FileKind::None;
        if (!root_.empty()) {
            VolumeFiles(pc_).Find(root_ + std::string(path), kind);
        } else if (WhyUnreadable(volume_) == 0) {
            const FileTree::Entry* const entry = volume_.files.Find(path);
            if (entry != nullptr) kind = entry->folder ? FileKind::Folder : FileKind::File;
        }
        return kind;
    }

    std::string Content(std::string_view path) {
        if (root_.empty()) return volume_.files.Find(path)->content;
        std::string content;
        VolumeFiles(pc_).Read(root_ + std::string(path), content);
        return content;
    }

    Pc& pc_;
    const Volume& volume_;
    std::string root_;
};

Volume SeenVolume(Pc& pc, const Volume& volume) {
    Volume seen = volume;
    std::ranges::sort(seen.letters);
    if (seen.letters.empty()) seen.openError = 0;
    const uint32_t unreadable = WhyUnreadable(volume);
    if (unreadable != 0 && seen.label.value) seen.label = Fact<std::string>::Fails(unreadable);
    SeenRoot root(pc, volume);
    // Without a label there is no name of the file system either.
    if (!seen.label.value && root.Error() == ERROR_SUCCESS) seen.fileSystem = Volume().fileSystem;
    seen.files = root.Files();
    return seen;
}

// Without a disk. A network drive has no name, so that two letters are not known to be of one, and what has
// names is listed before it.
std::vector<Volume> SeenVolumes(Pc& pc, const std::vector<Volume>& volumes) {
    std::vector<Volume> seen;
    std::vector<Volume> remote;
    for (const Volume& volume : volumes) {
        Volume one = SeenVolume(pc, volume);
        one.extentType.reset();  // the service lists extents of disks
        if (one.driveType != DriveType::Remote) {
            seen.push_back(one);
            continue;
        }
        if (one.openError != 0) one.furtherExtents.clear();
        for (const char letter : volume.letters) {
            remote.push_back(one);
            remote.back().letters = letter;
        }
    }
    std::ranges::move(remote, std::back_inserter(seen));
    return seen;
}

void SeePartition(Pc& pc, const Disk& disk, Partition& partition) {
    if (disk.style == PartitionStyle::Mbr) {
        partition.gptType = partition.gptId = Guid();
        partition.attributes = 0;
        partition.name.clear();
    } else {
        partition.mbrType = partition.bootIndicator = 0;
    }
    if (!partition.volume) return;
    Volume& volume = *partition.volume;
    volume = SeenVolume(pc, volume);
    if (volume.extentType) {
        const int given = *std::exchange(volume.extentType, std::nullopt);
        if (given != ExtentTypeOf(disk.style, partition)) volume.extentType = given;
    }
    if (IsHidden(partition) && volume.letters.empty() && WhyUnreadable(volume) != 0) partition.volume.reset();
}

// --- disks ---

bool IsAbsent(const Pc& pc, std::string_view wmiClass) {
    return std::ranges::any_of(pc.absentWmiClasses,
                               [&](const std::string& name) { return SameName(name, wmiClass); });
}

void SeeControllers(const Pc& pc, Disk& disk) {
    const std::optional<ControllerKind> kind = KindOfControllers(disk);
    const bool isIde = kind == ControllerKind::Ide;
    const bool listed = kind && disk.wmi && disk.wmi->pnpDeviceId &&
                        !IsAbsent(pc, isIde ? "Win32_IDEControllerDevice" : "Win32_SCSIControllerDevice");
    if (!listed) disk.controllers.clear();
    disk.controllerKind.reset();
    if (!disk.controllers.empty() && KindOfControllers(disk) != kind) disk.controllerKind = kind;
}

void SeeDisk(Pc& pc, Disk& disk) {
    if (IsAbsent(pc, "Win32_DiskDrive")) disk.wmi.reset();
    if (!disk.wmi || !disk.wmi->pnpDeviceId) disk.location = Disk().location;
    if (disk.style != PartitionStyle::Mbr) disk.signature = 0;
    if (disk.style != PartitionStyle::Gpt) disk.guid = Guid();
    if (!disk.storageBusType.value || disk.storageDescriptorSize == usualDescriptorSize)
        disk.storageDescriptorSize.reset();
    if (disk.storageBusType.value && disk.storageDescriptorSize.value_or(usualDescriptorSize) < busTypeEnd)
        disk.storageBusType = uint32_t{0};
    SeeControllers(pc, disk);
    for (Partition& partition : disk.partitions)
        SeePartition(pc, disk, partition);
}

bool IsDynamic(const Pc& pc, const std::string& name) {
    const auto pack = std::ranges::find(pc.packs, name, &Pack::name);
    return pack != pc.packs.end() && pack->dynamic;
}

// The disks of each pack together, packs in the order of their first disks, those of the dynamic provider
// behind the others, disks without a pack last.
std::vector<Disk> AsListed(const Pc& pc) {
    std::vector<Disk> listed;
    for (const bool dynamic : {false, true}) {
        for (const Disk& first : pc.disks) {
            const bool isListed = std::ranges::count(listed, first.number, &Disk::number) != 0;
            const bool inPack = !first.unallocated || !first.pack.empty();
            if (isListed || !inPack || IsDynamic(pc, first.pack) != dynamic) continue;
            std::ranges::copy_if(pc.disks, std::back_inserter(listed), [&](const Disk& disk) {
                const bool same = first.pack.empty() ? disk.number == first.number : disk.pack == first.pack;
                return same;
            });
        }
    }
    std::ranges::copy_if(pc.disks, std::back_inserter(listed),
                         [](const Disk& disk) { return disk.unallocated && disk.pack.empty(); });
    return listed;
}

// In the order of their disks, those of the dynamic provider behind the others.
std::vector<Pack> PacksAsListed(const Pc& pc) {
    std::vector<Pack> packs = pc.packs;
    const auto place = [&](const Pack& pack) {
        const auto disk = std::ranges::find(pc.disks, pack.name, &Disk::pack);
        return std::pair(pack.dynamic, disk - pc.disks.begin());
    };
    std::ranges::stable_sort(packs, {}, place);
    return packs;
}

std::vector<uint32_t> OrderOfWmi(const Pc& pc) {
    std::vector<uint32_t> order;
    for (const Disk* const disk : DisksOfWmi(pc))
        order.push_back(disk->number);
    return order;
}

// Both services list the disks; the order of the one is written only where it differs from that of the other.
void SeeDisks(Pc& whole, Pc& pc) {
    for (Disk& disk : pc.disks)
        SeeDisk(whole, disk);
    const std::vector<uint32_t> order = OrderOfWmi(pc);
    pc.packs = PacksAsListed(pc);
    pc.disks = AsListed(pc);
    pc.wmiOrder.clear();
    if (OrderOfWmi(pc) != order) pc.wmiOrder = order;
}

// Only those that the library enumerates, each once.
std::vector<std::string> SeenAbsentClasses(const Pc& pc) {
    std::vector<std::string> absent;
    for (const char* const name : {"Win32_DiskDrive", "Win32_IDEControllerDevice",
                                   "Win32_SCSIControllerDevice", "Win32_EncryptableVolume"}) {
        const bool isSeen = pc.encryptableVolumes || !SameName(name, "Win32_EncryptableVolume");
        if (isSeen && IsAbsent(pc, name)) absent.emplace_back(name);
    }
    return absent;
}

EncryptableVolume SeenEncryptable(EncryptableVolume volume) {
    // Its methods are called by its id.
    if (!volume.deviceId) volume.returnValue = volume.encryptionMethod = 0;
    return volume;
}

}  // namespace

Pc Seen(Pc pc) {
    Pc whole = pc;
    const Pc nothing;
    pc.host = SeenHost(pc);
    pc.name.clear();
    pc.firmware = SeenFirmware(pc.firmware);
    pc.system.startOptions = StartOptions(pc);
    const bool isPe =
        UpperCase(pc.system.startOptions.value_or("")).find(ToUtf8(windowsPeOption)) != std::string::npos;
    pc.system.kind = isPe ? SystemKind::WindowsPe : SystemKind::Windows;
    pc.registry = SeenRegistry(pc.registry);
    pc.offlineSystemHive.clear();
    pc.shell = nothing.shell;
    pc.switches = nothing.switches;
    pc.faults.clear();
    SeeDisks(whole, pc);
    pc.volumes = SeenVolumes(whole, whole.volumes);
    if (pc.encryptableVolumes && IsAbsent(pc, "Win32_EncryptableVolume")) pc.encryptableVolumes->clear();
    pc.absentWmiClasses = SeenAbsentClasses(pc);
    if (pc.encryptableVolumes) {
        for (EncryptableVolume& volume : *pc.encryptableVolumes)
            volume = SeenEncryptable(std::move(volume));
    }
    return pc;
}

}  // namespace machine
