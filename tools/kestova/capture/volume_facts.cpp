#include "tools/kestova/capture/volume_facts.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "base/owners.h"
#include "base/utf.h"
#include "machine/facts/find_disk.h"
#include "machine/facts/letters.h"
#include "tools/kestova/capture/file_facts.h"
#include "tools/kestova/capture/open_device.h"

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

// A type that the platform does not define is unknown.
machine::DriveType CapturedDriveType(const WideString& root) {
    const auto type = static_cast<machine::DriveType>(GetDriveTypeW(root.c_str()));
    return type <= machine::DriveType::RamDisk ? type : machine::DriveType::Unknown;
}

// The root ends in a backslash.
machine::Volume CapturedVolume(Findings& findings, const std::string& root) {
    machine::Volume volume;
    const WideString wide = ToWide(root);
    volume.driveType = CapturedDriveType(wide);
    CaptureLabel(volume, wide);
    // A share that is gone, or a drive without a medium, would take its time for each file.
    const bool isThere =
        volume.driveType == machine::DriveType::Fixed || WhyUnreadable(wide) == ERROR_SUCCESS;
    if (isThere) volume.files = CapturedFiles(root, findings.notes);
    return volume;
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

// A volume as the mount manager knows it.
struct KnownVolume {
    std::string name;  // "\\\\?\\Volume{...}\\"; empty for one that has only letters
    std::vector<machine::Extent> extents;
    std::string letters;
    DWORD openError = ERROR_SUCCESS;  // of its letters
};

class VolumeCapture {
  public:
    explicit VolumeCapture(Findings& findings) : findings_(findings) {}
    void Run();

  private:
    void FindNames();
    void FindLetters();
    KnownVolume& OfLetter(char letter);
    void Describe(const KnownVolume& known);
    void OfPartitions();

    Findings& findings_;
    std::vector<KnownVolume> known_;
};

std::string RootOf(char letter) {
    return std::string(1, letter) + ":\\";
}

std::string DeviceOf(char letter) {
    return std::string("\\\\.\\") + letter + ":";
}

void VolumeCapture::FindNames() {
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
        known_.push_back({root, ExtentsOf(OpenShared(root.substr(0, root.size() - 1), 0)), "", 0});
    } while (FindNextVolumeW(search, name, nameRoom));
    FindVolumeClose(search);
}

// The volume that a letter stands for: by its name, or, where it has none, by its place; else one of its own.
KnownVolume& VolumeCapture::OfLetter(char letter) {
    WCHAR buffer[nameRoom];
    const bool isNamed =
        GetVolumeNameForVolumeMountPointW(ToWide(RootOf(letter)).c_str(), buffer, nameRoom) != FALSE;
    const std::string name = isNamed ? ToUtf8(buffer) : "";
    const std::vector<machine::Extent> extents =
        isNamed ? std::vector<machine::Extent>() : ExtentsOf(OpenShared(DeviceOf(letter), 0));
    const auto known = std::ranges::find_if(known_, [&](const KnownVolume& volume) {
        return isNamed ? volume.name == name : !extents.empty() && volume.extents == extents;
    });
    if (known != known_.end()) return *known;
    known_.push_back({name, extents, "", ERROR_SUCCESS});
    return known_.back();
}

void VolumeCapture::FindLetters() {
    WCHAR roots[26 * 4 + 1] = {};
    const DWORD length = GetLogicalDriveStringsW(static_cast<DWORD>(std::size(roots)), roots);
    for (DWORD at = 0; at + 4 <= length && length < std::size(roots); at += 4) {
        const char letter = static_cast<char>(roots[at]);
        KnownVolume& volume = OfLetter(letter);
        volume.letters += letter;
        if (!OpenShared(DeviceOf(letter), GENERIC_READ)) volume.openError = GetLastError();
    }
}

machine::Partition* PartitionAt(machine::Pc& pc, const std::vector<machine::Extent>& extents) {
    if (extents.empty()) return nullptr;
    machine::Disk* const disk = machine::FindDisk(pc, extents.front().disk);
    return disk != nullptr ? machine::FindPartition(*disk, extents.front().offset) : nullptr;
}

// A volume with a letter is asked by it, as the library asks.
void VolumeCapture::Describe(const KnownVolume& known) {
    machine::Volume volume =
        CapturedVolume(findings_, known.letters.empty() ? known.name : RootOf(known.letters.front()));
    volume.letters = known.letters;
    volume.openError = known.openError;
    volume.furtherExtents = known.extents;
    machine::Partition* const partition = PartitionAt(findings_.pc, known.extents);
    if (partition == nullptr) {
        findings_.pc.volumes.push_back(std::move(volume));
        return;
    }
    volume.furtherExtents.erase(volume.furtherExtents.begin());
    partition->volume = std::move(volume);
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
            volume.furtherExtents = ExtentsOf(OpenShared(device, 0));
            if (!volume.furtherExtents.empty()) volume.furtherExtents.erase(volume.furtherExtents.begin());
            if (volume.driveType == machine::DriveType::NoRoot) volume.driveType = machine::DriveType::Fixed;
            partition.volume = std::move(volume);
        }
    }
}

void VolumeCapture::Run() {
    FindNames();
    FindLetters();
    for (const KnownVolume& volume : known_)
        Describe(volume);
    OfPartitions();
}

}  // namespace

void CaptureVolumes(Findings& findings) {
    VolumeCapture(findings).Run();
}
