#include <vector>

#include "tools/kestova/common/text.h"
#include "tools/kestova/reports/partition_roles.h"
#include "tools/kestova/reports/status.h"

namespace {

std::string Or(const Json& value, const char* none) {
    if (value.is_null()) return none;
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::vector<std::string> PartitionRow(const Json& partition) {
    return {std::to_string(partition["number"].get<int>()),
            SizeText(partition["size"].get<uint64_t>()),
            partition["typeName"].get<std::string>(),
            partition["active"].get<bool>() ? "active" : "-",
            Or(partition["letter"], "-"),
            Or(partition["label"], "-"),
            Or(partition["fileSystem"], "-"),
            partition["hide"].get<bool>() ? "hide" : "-",
            RolesText(partition)};
}

std::string WindowsText(const Json& windows) {
    if (windows.is_null()) return "not found";
    return windows["letter"].get<std::string>() + ": disk " + windows["disk"].dump() + ", partition " +
           windows["partition"].dump();
}

std::string EncryptedText(const Json& letters) {
    const bool isNone = letters.is_string() && letters.get_ref<const std::string&>().empty();
    return isNone ? "none" : Or(letters, "BitLocker cannot be asked");
}

// Without a number there is none only where every flag could be read.
const char* ActivePartitionWord(const Json& status) {
    if (status["internalDisk"].is_null()) return "-";
    return status.contains("problem") ? "unknown" : "none";
}

}  // namespace

std::string StatusText(const Json& status) {
    std::string text =
        Table({{"Firmware", Or(status["firmware"], "unknown")},
               {"Running system", Or(status["system"], "unknown")},
               {"Windows directory", Or(status["windowsDirectory"], "unknown")},
               {"Internal disk", Or(status["internalDisk"], "unknown")},
               {"Partition style", Or(status["style"], "-")},
               {"Active partition", Or(status["activePartition"], ActivePartitionWord(status))},
               {"Layout", status["layoutName"].get<std::string>()},
               {"Installed Windows", WindowsText(status["windows"])},
               {"Encrypted volumes", EncryptedText(status["encryptedVolumes"])},
               {"Recovery disc", Or(status["recoveryDisc"], "none")},
               {"Recovery stick", Or(status["recoveryStick"], "none")},
               {"Cache partition", status["cachePartition"].get<bool>() ? "yes" : "no"}},
              "");
    if (status["partitions"].empty()) return text;
    std::vector<std::vector<std::string>> rows = {
        {"#", "Size", "Type", "Active", "Letter", "Label", "File system", "Hide", "Role: reason"}};
    for (const Json& partition : status["partitions"])
        rows.push_back(PartitionRow(partition));
    return text + "\n" + Table(rows, "  ");
}
