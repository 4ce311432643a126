#include "tools/kestova/status.h"

#include "machine/core/utf.h"
#include "tools/kestova/disk_layout.h"
#include "tools/kestova/operations.h"
#include "tools/kestova/partition_words.h"
#include "tools/kestova/text.h"

namespace {

// Asks for a variable that does not exist: legacy firmware cannot even be asked.
std::string Firmware() {
    const DWORD length =
        GetFirmwareEnvironmentVariableW(TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"), nullptr, 0);
    return length == 0 && GetLastError() == ERROR_INVALID_FUNCTION ? "BIOS" : "UEFI";
}

// Windows PE is started with the option MININT.
std::string RunningSystem() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("SYSTEM\\CurrentControlSet\\Control"), 0, KEY_READ, &key) !=
        ERROR_SUCCESS) {
        return "unknown";
    }
    WCHAR options[1024] = {};
    DWORD size = sizeof options - sizeof(WCHAR);
    const LSTATUS read = RegQueryValueExW(key, TEXT("SystemStartOptions"), nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(options), &size);
    RegCloseKey(key);
    if (read != ERROR_SUCCESS) return "unknown";
    const std::string text = UpperCase(machine::ToUtf8(options));
    return text.find("MININT") != std::string::npos ? "Windows PE" : "Windows";
}

Json WindowsDirectory() {
    WCHAR directory[MAX_PATH] = {};
    const UINT length = GetWindowsDirectoryW(directory, MAX_PATH);
    if (length == 0 || length > MAX_PATH) return nullptr;
    return machine::ToUtf8(directory);
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
    json["active"] = mbr && partition.Mbr.BootIndicator != 0;
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
    partition["label"] = read ? Json(machine::ToUtf8(label)) : Json();
    partition["fileSystem"] = read ? Json(machine::ToUtf8(fileSystem)) : Json();
}

Json NullForNone(int number) {
    return number >= 0 ? Json(number) : Json();
}

Json DiskStyle(Kestova& object) {
    Json outputs;
    FindOperation("GetDiskStyle").invoke(object, Json::object(), outputs);
    static const char* const words[] = {"unknown", "MBR", "GPT"};
    const size_t style = outputs["style"].get<size_t>();
    return words[style < std::size(words) ? style : 0];
}

}  // namespace

Json ReadStatus(Kestova& object) {
    Json status;
    status["firmware"] = Firmware();
    status["system"] = RunningSystem();
    status["windowsDirectory"] = WindowsDirectory();
    const int disk = object.GetFirstInternalDriveNumber();
    status["internalDisk"] = NullForNone(disk);
    status["style"] = disk >= 0 ? DiskStyle(object) : Json();
    status["activePartition"] = disk >= 0 ? NullForNone(object.GetActivePartitionNumber()) : Json();
    status["partitions"] = Json::array();
    if (disk < 0) return status;
    const auto layout = ReadDiskLayout(disk);
    if (!layout) {
        status["problem"] = "the partitions of disk " + std::to_string(disk) + " cannot be read (error " +
                            std::to_string(GetLastError()) + ")";
        return status;
    }
    for (const PARTITION_INFORMATION_EX& entry : *layout) {
        Json partition = PartitionJson(entry);
        AddVolume(object, disk, partition);
        status["partitions"].push_back(partition);
    }
    return status;
}
