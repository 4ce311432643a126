#include "tools/kestova/reports/status.h"

#include <algorithm>
#include <optional>

#include "base/guid.h"
#include "base/text_case.h"
#include "base/utf.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/reports/disk_layout.h"
#include "tools/kestova/reports/partition_roles.h"

namespace {

// What could not be read, in the order of asking.
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

// Asks for a variable that does not exist: only UEFI firmware refuses to read it.
std::string Firmware() {
    BYTE buffer[1000] = {};
    const DWORD length = GetFirmwareEnvironmentVariableW(
        TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"), buffer, sizeof buffer);
    return length == 0 && GetLastError() == ERROR_NOACCESS ? "UEFI" : "BIOS";
}

// The options that the running system was started with, as RegQueryValueExW answers them.
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

Json WindowsDirectory(Problems& problems) {
    WCHAR directory[MAX_PATH] = {};
    const UINT length = GetWindowsDirectoryW(directory, MAX_PATH);
    if (length != 0 && length <= MAX_PATH) return ToUtf8(directory);
    problems.Add("the Windows directory cannot be read", GetLastError());
    return nullptr;
}

bool IsActive(const PARTITION_INFORMATION_EX& partition) {
    return partition.PartitionStyle == PARTITION_STYLE_MBR && partition.Mbr.BootIndicator != 0;
}

Json PartitionJson(const PARTITION_INFORMATION_EX& partition) {
    const bool mbr = partition.PartitionStyle == PARTITION_STYLE_MBR;
    Json json;
    json["number"] = partition.PartitionNumber;
    json["offset"] = partition.StartingOffset.QuadPart;
    json["size"] = partition.PartitionLength.QuadPart;
    json["type"] = mbr ? Hex(partition.Mbr.PartitionType, 2) : GuidText(partition.Gpt.PartitionType);
    json["typeName"] =
        mbr ? MbrTypeWords(partition.Mbr.PartitionType) : GptTypeWords(partition.Gpt.PartitionType);
    json["active"] = IsActive(partition);
    return json;
}

// Letter, label and file system; null where there is none, or none that can be read.
void AddVolume(Kestova& object, int disk, Json& partition) {
    const WCHAR letter = object.GetDriveLetter(disk, partition["number"].get<int>());
    const bool lettered = letter != TEXT('0') && letter != 0;
    const WCHAR root[] = {letter, TEXT(':'), TEXT('\\'), 0};
    WCHAR label[MAX_PATH + 1] = {};
    WCHAR fileSystem[MAX_PATH + 1] = {};
    const bool read = lettered && GetVolumeInformationW(root, label, MAX_PATH + 1, nullptr, nullptr, nullptr,
                                                        fileSystem, MAX_PATH + 1);
    partition["letter"] = lettered ? Json(LetterText(letter)) : Json();
    partition["label"] = read ? Json(ToUtf8(label)) : Json();
    partition["fileSystem"] = read ? Json(ToUtf8(fileSystem)) : Json();
}

Json DiskStyle(Kestova& object, const std::string& disk, Problems& problems) {
    Json outputs;
    FindOperation("GetDiskStyle").invoke(object, Json::object(), outputs);
    static const char* const words[] = {"unknown", "MBR", "GPT"};
    const size_t style = outputs["style"].get<size_t>();
    if (style == HARD_DISK_MBR || style == HARD_DISK_GPT) return words[style];
    problems.Add("the partition style of " + disk + " could not be told");
    return words[HARD_DISK_UNKNOWN];
}

std::string Remark(const std::vector<PARTITION_INFORMATION_EX>& layout) {
    const auto active = std::count_if(layout.begin(), layout.end(), IsActive);
    if (active < 2) return "";
    return std::to_string(active) + " partitions are active; a PC starts from a disk with one only";
}

void Initialize(Session& session, Problems& problems) {
    const Operation& operation = FindOperation("Initialize");
    const Json result = session.Call(operation, {{"reserved", false}})["result"];
    if (!IsFailure(operation, result)) return;
    problems.Add("Initialize: " + std::string(FindMeaning(operation.results, result)->words));
}

// The active partition, and the partitions with their volumes; `layout` is null when it could not be read.
void AddPartitions(Kestova& object, int disk, const std::vector<PARTITION_INFORMATION_EX>* layout,
                   Json& status, Problems& problems) {
    const std::string name = "disk " + std::to_string(disk);
    const int active = object.GetActivePartitionNumber();
    // The library's answer is the same for none and for one that it could not read.
    const bool isTold =
        active >= 0 || (layout != nullptr && std::none_of(layout->begin(), layout->end(), IsActive));
    status["activePartition"] = active >= 0 ? Json(active) : Json();
    if (!isTold) problems.Add("the active partition of " + name + " could not be told");
    if (layout == nullptr) return;
    for (const PARTITION_INFORMATION_EX& entry : *layout) {
        Json partition = PartitionJson(entry);
        AddVolume(object, disk, partition);
        status["partitions"].push_back(partition);
    }
}

// Answers the remark on the disk's active flags.
std::string AddDisk(Kestova& object, Json& status, Problems& problems) {
    const int disk = object.GetFirstInternalDriveNumber();
    if (disk < 0) {
        problems.Add("no internal disk was found, or it could not be told");
        return "";
    }
    const std::string name = "disk " + std::to_string(disk);
    status["internalDisk"] = disk;
    status["style"] = DiskStyle(object, name, problems);
    const auto layout = ReadDiskLayout(disk);
    if (!layout) problems.Add("the partitions of " + name + " cannot be read", GetLastError());
    AddPartitions(object, disk, layout ? &*layout : nullptr, status, problems);
    return layout ? Remark(*layout) : "";
}

}  // namespace

Json ReadStatus(Session& session, bool initialize) {
    Problems problems;
    if (initialize) Initialize(session, problems);
    Json status;
    status["firmware"] = Firmware();
    status["system"] = RunningSystem(problems);
    status["windowsDirectory"] = WindowsDirectory(problems);
    for (const char* const key : {"internalDisk", "style", "activePartition"})
        status[key] = nullptr;
    status["partitions"] = Json::array();
    const std::string remark = AddDisk(session.Object(), status, problems);
    AddRoles(session, status);
    if (!remark.empty()) status["remark"] = remark;
    if (!problems.Text().empty()) status["problem"] = problems.Text();
    return status;
}

std::string ActiveFlagsRemark(Kestova& object) {
    const int disk = object.GetFirstInternalDriveNumber();
    const auto layout = disk >= 0 ? ReadDiskLayout(disk) : std::nullopt;
    return layout ? Remark(*layout) : "";
}
