#include <vector>

#include "tools/kestova/status.h"
#include "tools/kestova/text.h"

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
            Or(partition["fileSystem"], "-")};
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
               {"Active partition", Or(status["activePartition"], ActivePartitionWord(status))}},
              "");
    if (status["partitions"].empty()) return text;
    std::vector<std::vector<std::string>> rows = {
        {"#", "Size", "Type", "Active", "Letter", "Label", "File system"}};
    for (const Json& partition : status["partitions"])
        rows.push_back(PartitionRow(partition));
    return text + "\n" + Table(rows, "  ");
}
