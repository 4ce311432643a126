#include "tools/kestova/conformance/asked_operations.h"

#include <algorithm>
#include <map>

#include "tools/kestova/common/text.h"

namespace {

using Words = std::vector<std::string>;

std::vector<AskedOperation> MakeList() {
    // Places of a factory disk, and some where there is nothing.
    const std::vector<Words> partitions = {{"0", "1"}, {"0", "2"}, {"0", "3"}, {"0", "4"}, {"0", "5"},
                                           {"0", "9"}, {"1", "1"}, {"1", "2"}, {"9", "1"}};
    const std::vector<Words> letters = {{"C"}, {"D"}, {"E"}, {"F"}, {"X"}, {"Z"}};

    // Operations without an entry are asked once, with the arguments that they have by default; those with an
    // empty one never: GetWinDriveLetters mounts the registry of an installed Windows, by a batch file that
    // it writes to X: and runs.
    const std::map<std::string, std::vector<Words>> wordsOf = {
        {"Initialize", {{"false"}}},
        {"GetDriveLetter", partitions},
        {"IsNeedHidePartition", partitions},
        {"IsBIOSHibernationPartition", partitions},
        {"IsWindowsRE", letters},
        {"IsVistaOS", letters},
        {"GetWinDriveLetters", {}},
    };
    std::vector<AskedOperation> list;
    for (const Operation& operation : Operations()) {
        if (operation.changesPc) continue;
        const auto given = wordsOf.find(operation.name);
        const std::vector<Words> lists = given != wordsOf.end() ? given->second : std::vector<Words>{{}};
        for (const Words& words : lists)
            list.push_back({&operation, words, ReadArguments(operation, words)});
    }
    return list;
}

std::string Text(std::monostate) {
    return "nothing";
}
std::string Text(bool flag) {
    return flag ? "true" : "false";
}
std::string Text(int number) {
    return std::to_string(number);
}
std::string Text(const std::string& text) {
    return "\"" + Printable(text) + "\"";
}
std::string Text(const std::vector<DriveRecord>& records) {
    return Joined(records, "; ", [](const DriveRecord& record) {
        return "disk " + std::to_string(record.disk) + ", partition " + std::to_string(record.partition) +
               ": " + Printable(record.letter);
    });
}

std::string Text(const Value& value) {
    return std::visit([](const auto& held) { return Text(held); }, value);
}

}  // namespace

const std::vector<AskedOperation>& AskedOperations() {
    static const std::vector<AskedOperation> list = MakeList();
    return list;
}

std::vector<std::string> NotAskedOperations() {
    std::vector<std::string> names;
    for (const Operation& operation : Operations()) {
        if (std::ranges::find(AskedOperations(), &operation, &AskedOperation::operation) ==
            AskedOperations().end())
            names.push_back(operation.name);
    }
    return names;
}

std::string AnswerWords(const OperationReport& report) {
    std::string words = Text(report.result);
    for (const auto& [name, value] : report.outputs)
        words += ", " + name + " " + Text(value);
    return words;
}
