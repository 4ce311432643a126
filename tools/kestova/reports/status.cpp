#include "tools/kestova/reports/status.h"

#include <algorithm>
#include <iterator>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "base/utf.h"
#include "base/wide_string.h"
#include "machine/facts/letters.h"
#include "platform/partition_types.h"
#include "platform/start_options.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/disk_facts.h"
#include "tools/kestova/reports/boot_record.h"
#include "tools/kestova/reports/disk_layout.h"
#include "tools/kestova/reports/disk_picture.h"
#include "tools/kestova/reports/partition_roles.h"
#include "tools/kestova/reports/remarks.h"

namespace {

// Reads a variable that does not exist: only UEFI firmware fails with ERROR_NOACCESS.
std::string Firmware(Questions& questions) {
    BYTE buffer[1000] = {};
    const DWORD length = GetFirmwareEnvironmentVariableW(
        TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"), buffer, sizeof buffer);
    const DWORD error = length == 0 ? GetLastError() : ERROR_SUCCESS;
    if (error == ERROR_NOACCESS) return "UEFI";
    // What a BIOS answers.
    if (error != ERROR_SUCCESS && error != ERROR_INVALID_FUNCTION)
        questions.AddUndetermined("the firmware could not be told (error " + std::to_string(error) + ")");
    return "BIOS";
}

// The boot options of the running system. Returns the status of the failing call, or of RegQueryValueExW.
LSTATUS ReadStartOptions(WideString& options) {
    HKEY key = nullptr;
    const LSTATUS opened = RegOpenKeyExW(HKEY_LOCAL_MACHINE, startOptionsKey, 0, KEY_READ, &key);
    if (opened != ERROR_SUCCESS) return opened;
    WCHAR buffer[1024] = {};
    DWORD size = sizeof buffer - sizeof(WCHAR);
    const LSTATUS read =
        RegQueryValueExW(key, startOptionsValue, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size);
    RegCloseKey(key);
    if (read == ERROR_SUCCESS) options = buffer;
    return read;
}

std::string RunningSystem(Questions& questions) {
    WideString options;
    if (const LSTATUS read = ReadStartOptions(options); read != ERROR_SUCCESS) {
        questions.AddUnread("the start options of the running system cannot be read",
                            static_cast<unsigned long>(read));
        return "unknown";
    }
    return UpperCase(options).find(windowsPeOption) != WideString::npos ? "Windows PE" : "Windows";
}

std::optional<std::string> WindowsDirectory(Questions& questions) {
    WCHAR directory[MAX_PATH] = {};
    const UINT length = GetWindowsDirectoryW(directory, MAX_PATH);
    if (length != 0 && length <= MAX_PATH) return ToUtf8(directory);
    questions.AddUnread("the Windows directory cannot be read", GetLastError());
    return std::nullopt;
}

bool IsHiddenMbrType(BYTE type) {
    return type == MBR_ID_HIDDEN_RECOVERY || HasHiddenBit(type);
}

constexpr DWORD64 gptHidden = 0x4000000000000000;

// The field is not terminated if the name fills it.
std::string NameOf(const PARTITION_INFORMATION_EX& entry) {
    const WCHAR* const end = std::find(std::begin(entry.Gpt.Name), std::end(entry.Gpt.Name), WCHAR{0});
    return ToUtf8(
        WideView(std::begin(entry.Gpt.Name), static_cast<size_t>(end - std::begin(entry.Gpt.Name))));
}

// A volume without a file system, or one that BitLocker keeps locked, is as it should be.
bool IsOrdinary(DWORD error) {
    return error == ERROR_UNRECOGNIZED_VOLUME || error == machine::errorLockedVolume;
}

}  // namespace

void AddVolume(int disk, PartitionReport& partition, Questions& questions) {
    partition.letter =
        questions.AskLetter("GetDriveLetter", {{"disk", disk}, {"partition", partition.number}});
    if (!partition.letter) return;
    const WCHAR root[] = {*partition.letter, TEXT(':'), TEXT('\\'), 0};
    WCHAR label[MAX_PATH + 1] = {};
    WCHAR fileSystem[MAX_PATH + 1] = {};
    if (!GetVolumeInformationW(root, label, MAX_PATH + 1, nullptr, nullptr, nullptr, fileSystem,
                               MAX_PATH + 1)) {
        const DWORD error = GetLastError();
        if (error == ERROR_UNRECOGNIZED_VOLUME) partition.condition = volume_condition::unreadable;
        if (error == machine::errorLockedVolume) partition.condition = volume_condition::encrypted;
        if (!IsOrdinary(error))
            questions.AddUnread("the volume " + LetterText(*partition.letter) + ": cannot be read", error);
        return;
    }
    partition.label = ToUtf8(label);
    partition.fileSystem = ToUtf8(fileSystem);
}

PartitionReport PartitionOf(const PARTITION_INFORMATION_EX& entry) {
    const bool mbr = entry.PartitionStyle == PARTITION_STYLE_MBR;
    PartitionReport partition;
    partition.number = static_cast<int>(entry.PartitionNumber);
    partition.offset = entry.StartingOffset.QuadPart;
    partition.size = entry.PartitionLength.QuadPart;
    partition.type = mbr ? Hex(entry.Mbr.PartitionType, 2) : GuidText(entry.Gpt.PartitionType);
    partition.typeName = mbr ? MbrTypeWords(entry.Mbr.PartitionType) : GptTypeWords(entry.Gpt.PartitionType);
    partition.active = IsActive(entry);
    partition.hidden =
        mbr ? IsHiddenMbrType(entry.Mbr.PartitionType) : (entry.Gpt.Attributes & gptHidden) != 0;
    if (!mbr) partition.gptName = NameOf(entry);
    return partition;
}

namespace {

std::string DiskName(int disk) {
    return "disk " + std::to_string(disk);
}

std::string DiskStyle(Questions& questions) {
    const Values outputs = questions.On().Ask(FindOperation("GetDiskStyle"), {}).outputs;
    const Value& style = ValueOf(outputs, "style");
    if (style == Value(int{HARD_DISK_MBR})) return "MBR";
    if (style == Value(int{HARD_DISK_GPT})) return "GPT";
    return "unknown";
}

using DiskLayout = std::optional<std::vector<PARTITION_INFORMATION_EX>>;

void Initialize(Questions& questions) {
    const Operation& operation = FindOperation("Initialize");
    const Value result = questions.On().Call(operation, {{"reserved", false}}).result;
    if (!IsFailure(operation, result)) return;
    questions.AddUnread("Initialize: " + std::string(FindMeaning(operation.results, result)->words));
}

// The active partition, and the partitions with their volumes; `layout` is empty when it could not be read.
void AddPartitions(int disk, const DiskLayout& layout, StatusReport& status, Questions& questions) {
    const int active = questions.On().AskNumber("GetActivePartitionNumber");
    if (active >= 0) status.activePartition = active;
    // The library returns the same for none and for one that it could not read.
    const bool isKnown = active >= 0 || (layout && std::ranges::none_of(*layout, IsActive));
    if (!isKnown) questions.AddUnread("the active partition of " + DiskName(disk) + " could not be told");
    if (!layout) return;
    for (const PARTITION_INFORMATION_EX& entry : *layout) {
        status.partitions.push_back(PartitionOf(entry));
        AddVolume(disk, status.partitions.back(), questions);
    }
}

void AddDisk(StatusReport& status, Questions& questions) {
    const int disk = questions.On().AskNumber("GetFirstInternalDriveNumber");
    if (disk < 0) {
        questions.AddUnread("no internal disk was found, or it could not be told");
        return;
    }
    status.internalDisk = disk;
    status.style = DiskStyle(questions);
    const DiskLayout layout = ReadDiskLayout(disk);
    const DWORD error = GetLastError();
    // Of a disk without partitions the library has no style.
    if (status.style == "unknown" && (!layout || !layout->empty()))
        questions.AddUnread("the partition style of " + DiskName(disk) + " could not be told");
    if (!layout) questions.AddUnread("the partitions of " + DiskName(disk) + " cannot be read", error);
    AddPartitions(disk, layout, status, questions);
}

}  // namespace

StatusReport ReadStatus(Session& session, bool initialize) {
    Questions questions(session);
    if (initialize) Initialize(questions);
    StatusReport status;
    status.firmware = Firmware(questions);
    status.system = RunningSystem(questions);
    status.windowsDirectory = WindowsDirectory(questions);
    AddDisk(status, questions);
    status.isAllRead = questions.HasReadAll();
    AddRoles(status, questions);
    status.disks = ReadDisks(status, questions);
    status.record = ReadRecord(status, questions.On());
    if (status.internalDisk) status.remarks = RemarksOn(questions.On().OnPc(), *status.internalDisk);
    status.problem = questions.Problems();
    return status;
}
