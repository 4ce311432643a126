#include "tools/kestova/reports/status.h"

#include <algorithm>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "base/text_case.h"
#include "base/utf.h"
#include "machine/facts/letters.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/reports/disk_layout.h"
#include "tools/kestova/reports/partition_roles.h"

namespace {

// What could not be read, in the order of the queries.
class Problems {
  public:
    void Add(const std::string& what) { text_ += (text_.empty() ? "" : "; ") + what; }
    void Add(const std::string& what, unsigned long error) {
        Add(what + " (error " + std::to_string(error) + ")");
    }
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

// Reads a variable that does not exist: only UEFI firmware fails with ERROR_NOACCESS.
std::string Firmware() {
    BYTE buffer[1000] = {};
    const DWORD length = GetFirmwareEnvironmentVariableW(
        TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"), buffer, sizeof buffer);
    return length == 0 && GetLastError() == ERROR_NOACCESS ? "UEFI" : "BIOS";
}

// The boot options of the running system. Returns the status of the failing call, or of RegQueryValueExW.
LSTATUS ReadStartOptions(std::string& options) {
    HKEY key = nullptr;
    const LSTATUS opened =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("SYSTEM\\CurrentControlSet\\Control"), 0, KEY_READ, &key);
    if (opened != ERROR_SUCCESS) return opened;
    WCHAR buffer[1024] = {};
    DWORD size = sizeof buffer - sizeof(WCHAR);
    const LSTATUS read = RegQueryValueExW(key, TEXT("SystemStartOptions"), nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(buffer), &size);
    RegCloseKey(key);
    if (read == ERROR_SUCCESS) options = ToUtf8(buffer);
    return read;
}

// Windows PE is started with the option MININT.
std::string RunningSystem(Problems& problems) {
    std::string options;
    if (const LSTATUS read = ReadStartOptions(options); read != ERROR_SUCCESS) {
        problems.Add("the start options of the running system cannot be read",
                     static_cast<unsigned long>(read));
        return "unknown";
    }
    return UpperCase(options).find("MININT") != std::string::npos ? "Windows PE" : "Windows";
}

std::optional<std::string> WindowsDirectory(Problems& problems) {
    WCHAR directory[MAX_PATH] = {};
    const UINT length = GetWindowsDirectoryW(directory, MAX_PATH);
    if (length != 0 && length <= MAX_PATH) return ToUtf8(directory);
    problems.Add("the Windows directory cannot be read", GetLastError());
    return std::nullopt;
}

bool IsActive(const PARTITION_INFORMATION_EX& partition) {
    return partition.PartitionStyle == PARTITION_STYLE_MBR && partition.Mbr.BootIndicator != 0;
}

// A volume without a file system, or one that BitLocker keeps locked, is as it should be.
bool IsOrdinary(DWORD error) {
    return error == ERROR_UNRECOGNIZED_VOLUME || error == machine::errorLockedVolume;
}

// Letter, label and file system.
void AddVolume(Kestova& object, int disk, PartitionReport& partition, Problems& problems) {
    const WCHAR letter = object.GetDriveLetter(disk, partition.number);
    if (letter == TEXT('0') || letter == 0) return;
    partition.letter = letter;
    const WCHAR root[] = {letter, TEXT(':'), TEXT('\\'), 0};
    WCHAR label[MAX_PATH + 1] = {};
    WCHAR fileSystem[MAX_PATH + 1] = {};
    if (!GetVolumeInformationW(root, label, MAX_PATH + 1, nullptr, nullptr, nullptr, fileSystem,
                               MAX_PATH + 1)) {
        const DWORD error = GetLastError();
        if (!IsOrdinary(error))
            problems.Add("the volume " + std::string(1, static_cast<char>(letter)) + ": cannot be read",
                         error);
        return;
    }
    partition.label = ToUtf8(label);
    partition.fileSystem = ToUtf8(fileSystem);
}

PartitionReport ReadPartition(Kestova& object, int disk, const PARTITION_INFORMATION_EX& entry,
                              Problems& problems) {
    const bool mbr = entry.PartitionStyle == PARTITION_STYLE_MBR;
    PartitionReport partition;
    partition.number = static_cast<int>(entry.PartitionNumber);
    partition.offset = entry.StartingOffset.QuadPart;
    partition.size = entry.PartitionLength.QuadPart;
    partition.type = mbr ? Hex(entry.Mbr.PartitionType, 2) : GuidText(entry.Gpt.PartitionType);
    partition.typeName = mbr ? MbrTypeWords(entry.Mbr.PartitionType) : GptTypeWords(entry.Gpt.PartitionType);
    partition.active = IsActive(entry);
    AddVolume(object, disk, partition, problems);
    return partition;
}

std::string DiskName(int disk) {
    return "disk " + std::to_string(disk);
}

std::string DiskStyle(Kestova& object, int disk, Problems& problems) {
    THardDiskType style = HARD_DISK_UNKNOWN;
    object.GetDiskStyle(style);
    if (style == HARD_DISK_MBR) return "MBR";
    if (style == HARD_DISK_GPT) return "GPT";
    problems.Add("the partition style of " + DiskName(disk) + " could not be told");
    return "unknown";
}

using DiskLayout = std::optional<std::vector<PARTITION_INFORMATION_EX>>;

std::string Remark(const DiskLayout& layout) {
    if (!layout) return "";
    const auto active = std::ranges::count_if(*layout, IsActive);
    if (active < 2) return "";
    return std::to_string(active) + " partitions are active; a PC starts from a disk with one only";
}

void Initialize(Session& session, Problems& problems) {
    const Operation& operation = FindOperation("Initialize");
    const Value result = session.Call(operation, {{"reserved", false}}).result;
    if (!IsFailure(operation, result)) return;
    problems.Add("Initialize: " + std::string(FindMeaning(operation.results, result)->words));
}

// The active partition, and the partitions with their volumes; `layout` is empty when it could not be read.
void AddPartitions(Kestova& object, int disk, const DiskLayout& layout, StatusReport& status,
                   Problems& problems) {
    const int active = object.GetActivePartitionNumber();
    if (active >= 0) status.activePartition = active;
    // The library returns the same for none and for one that it could not read.
    const bool isKnown = active >= 0 || (layout && std::ranges::none_of(*layout, IsActive));
    if (!isKnown) problems.Add("the active partition of " + DiskName(disk) + " could not be told");
    if (!layout) return;
    for (const PARTITION_INFORMATION_EX& entry : *layout)
        status.partitions.push_back(ReadPartition(object, disk, entry, problems));
}

void AddDisk(Kestova& object, StatusReport& status, Problems& problems) {
    const int disk = object.GetFirstInternalDriveNumber();
    if (disk < 0) {
        problems.Add("no internal disk was found, or it could not be told");
        return;
    }
    status.internalDisk = disk;
    status.style = DiskStyle(object, disk, problems);
    const DiskLayout layout = ReadDiskLayout(disk);
    if (!layout) problems.Add("the partitions of " + DiskName(disk) + " cannot be read", GetLastError());
    AddPartitions(object, disk, layout, status, problems);
    status.remark = Remark(layout);
}

}  // namespace

StatusReport ReadStatus(Session& session, bool initialize) {
    Problems problems;
    if (initialize) Initialize(session, problems);
    StatusReport status;
    status.firmware = Firmware();
    status.system = RunningSystem(problems);
    status.windowsDirectory = WindowsDirectory(problems);
    AddDisk(session.Object(), status, problems);
    AddRoles(session, status);
    status.problem = problems.Text();
    return status;
}

std::string ActiveFlagsRemark(Kestova& object) {
    const int disk = object.GetFirstInternalDriveNumber();
    return disk >= 0 ? Remark(ReadDiskLayout(disk)) : "";
}
