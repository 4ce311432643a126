#include "tools/kestova/capture/volume_facts.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <optional>

#include "base/owners.h"
#include "base/utf.h"
#include "machine/facts/find_disk.h"
#include "machine/facts/letters.h"
#include "tools/kestova/capture/file_facts.h"

namespace {

constexpr DWORD nameRoom = 50;  // characters of a volume name, as documented
constexpr size_t mostExtents = 64;

// --- one volume ---

// What stands in the way of its file system; 0 if nothing does.
DWORD WhyUnreadable(const WideString& root) {
    return PathFileExistsW(root.c_str()) ? DWORD{ERROR_SUCCESS} : GetLastError();
}

void CaptureLabel(machine::Volume& volume, const WideString& root) {
    WCHAR label[MAX_PATH + 1] = {};
    WCHAR fileSystem[MAX_PATH + 1] = {};
    if (GetVolumeInformationW(root.c_str(), label, MAX_PATH + 1, nullptr, nullptr, nullptr, fileSystem,
                              MAX_PATH + 1)) {
        volume.label = ToUtf8(label);
        volume.fileSystem = ToUtf8(fileSystem);
        return;
    }
    volume.label = machine::Fact<std::string>::Fails(GetLastError());
    const DWORD error = WhyUnreadable(root);
    if (error == machine::errorLockedVolume) volume.fileSystem = "BitLocker";
    if (error == ERROR_UNRECOGNIZED_VOLUME) volume.fileSystem = "RAW";
}

// The root ends in a backslash.
machine::Volume CapturedVolume(Findings& findings, const std::string& root) {
    machine::Volume volume;
    const WideString wide = ToWide(root);
    volume.driveType = static_cast<machine::DriveType>(GetDriveTypeW(wide.c_str()));
    CaptureLabel(volume, wide);
    volume.files = CapturedFiles(root, findings.notes);
    return volume;
}

FileHandle OpenVolume(const std::string& device, DWORD access) {
    return FileHandle(CreateFileW(ToWide(device).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// None for a volume without a disk.
std::vector<machine::Extent> ExtentsOf(const FileHandle& volume) {
    constexpr size_t start = offsetof(VOLUME_DISK_EXTENTS, Extents);
    std::vector<char> room(start + mostExtents * sizeof(DISK_EXTENT));
    DWORD returned = 0;
    if (!volume || !DeviceIoControl(volume.Get(), IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0,
                                    room.data(), static_cast<DWORD>(room.size()), &returned, nullptr))
        return {};
    DWORD count = 0;
    std::memcpy(&count, room.data(), sizeof count);
    std::vector<machine::Extent> extents;
    for (size_t at = 0; at < std::min<size_t>(count, mostExtents); ++at) {
        DISK_EXTENT extent;
        std::memcpy(&extent, room.data() + start + at * sizeof extent, sizeof extent);
        extents.push_back({extent.DiskNumber, static_cast<uint64_t>(extent.StartingOffset.QuadPart),
                           static_cast<uint64_t>(extent.ExtentLength.QuadPart)});
    }
    return extents;
}

// --- all of them ---

class VolumeCapture {
  public:
    explicit VolumeCapture(Findings& findings) : findings_(findings) {}
    void Run();

  private:
    void Named();
    void Lettered();
    void OfPartitions();
    machine::Volume& Place(machine::Volume volume, std::vector<machine::Extent> extents);
    machine::Volume& OfLetter(char letter);
    machine::Volume* InPartition(const std::vector<machine::Extent>& extents);

    Findings& findings_;
    std::map<std::string, std::vector<machine::Extent>> byName_;  // extents of the volumes that have names
    std::map<std::string, size_t> withoutDisk_;                   // by name, in the list of the PC
};

machine::Partition* PartitionAt(machine::Pc& pc, const std::vector<machine::Extent>& extents) {
    if (extents.empty()) return nullptr;
    machine::Disk* const disk = machine::FindDisk(pc, extents.front().disk);
    return disk != nullptr ? machine::FindPartition(*disk, extents.front().offset) : nullptr;
}

machine::Volume& VolumeCapture::Place(machine::Volume volume, std::vector<machine::Extent> extents) {
    machine::Partition* const partition = PartitionAt(findings_.pc, extents);
    if (partition != nullptr) extents.erase(extents.begin());
    volume.furtherExtents = std::move(extents);
    if (partition != nullptr) return partition->volume.emplace(std::move(volume));
    return findings_.pc.volumes.emplace_back(std::move(volume));
}

machine::Volume* VolumeCapture::InPartition(const std::vector<machine::Extent>& extents) {
    machine::Partition* const partition = PartitionAt(findings_.pc, extents);
    return partition != nullptr && partition->volume ? &*partition->volume : nullptr;
}

void VolumeCapture::Named() {
    WCHAR name[nameRoom];
    const HANDLE search = FindFirstVolumeW(name, nameRoom);
    if (search == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_NO_MORE_FILES)
            findings_.Note("volumes without a letter are not described: error " +
                           std::to_string(GetLastError()));
        return;
    }
    do {
        const std::string root = ToUtf8(name);
        const std::vector<machine::Extent> extents =
            ExtentsOf(OpenVolume(root.substr(0, root.size() - 1), 0));
        byName_[root] = extents;
        if (PartitionAt(findings_.pc, extents) == nullptr) withoutDisk_[root] = findings_.pc.volumes.size();
        Place(CapturedVolume(findings_, root), extents);
    } while (FindNextVolumeW(search, name, nameRoom));
    FindVolumeClose(search);
}

// The volume that a letter stands for; one that nothing has named before is a volume without a disk, or that
// of a hidden partition.
machine::Volume& VolumeCapture::OfLetter(char letter) {
    const std::string root = std::string(1, letter) + ":\\";
    WCHAR buffer[nameRoom];
    const bool isNamed = GetVolumeNameForVolumeMountPointW(ToWide(root).c_str(), buffer, nameRoom);
    const std::string name = isNamed ? ToUtf8(buffer) : "";
    if (const auto known = withoutDisk_.find(name); known != withoutDisk_.end())
        return findings_.pc.volumes[known->second];
    const auto named = byName_.find(name);
    const std::vector<machine::Extent> extents =
        named != byName_.end() ? named->second
                               : ExtentsOf(OpenVolume(std::string("\\\\.\\") + letter + ":", 0));
    if (machine::Volume* const volume = InPartition(extents)) return *volume;
    return Place(CapturedVolume(findings_, root), extents);
}

void VolumeCapture::Lettered() {
    WCHAR roots[26 * 4 + 1] = {};
    const DWORD length = GetLogicalDriveStringsW(static_cast<DWORD>(std::size(roots)), roots);
    for (DWORD at = 0; at + 4 <= length && length < std::size(roots); at += 4) {
        const char letter = static_cast<char>(roots[at]);
        machine::Volume& volume = OfLetter(letter);
        volume.letters += letter;
        if (!OpenVolume(std::string("\\\\.\\") + letter + ":", GENERIC_READ))
            volume.openError = GetLastError();
    }
}

// Partitions that the mount manager hides have neither a letter nor a name: their device is looked into.
void VolumeCapture::OfPartitions() {
    for (machine::Disk& disk : findings_.pc.disks) {
        for (machine::Partition& partition : disk.partitions) {
            if (partition.volume || partition.number == 0) continue;
            const std::string device = "\\\\?\\GLOBALROOT\\Device\\Harddisk" + std::to_string(disk.number) +
                                       "\\Partition" + std::to_string(partition.number);
            if (!PathFileExistsW(ToWide(device + "\\").c_str())) continue;
            machine::Volume volume = CapturedVolume(findings_, device + "\\");
            volume.furtherExtents = ExtentsOf(OpenVolume(device, 0));
            if (!volume.furtherExtents.empty()) volume.furtherExtents.erase(volume.furtherExtents.begin());
            if (volume.driveType == machine::DriveType::NoRoot) volume.driveType = machine::DriveType::Fixed;
            partition.volume = std::move(volume);
        }
    }
}

void VolumeCapture::Run() {
    Named();
    Lettered();
    OfPartitions();
}

}  // namespace

void CaptureVolumes(Findings& findings) {
    VolumeCapture(findings).Run();
}
