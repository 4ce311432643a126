#include "tests/faults/memory/endings.h"

#include <map>
#include <set>

namespace {

// One for each step that the result names. After a step that is an operation with an ending of its own, the
// code is that of what follows it.
const std::map<std::string, std::set<std::string>> endings = {
    {"Initialize", {"0"}},
    {"GetFirstInternalDriveNumber", {"-1"}},
    {"GetDiskStyle", {"1 0"}},
    {"GetCurrentDiskType", {"1 0"}},
    {"IsDynamic", {"0"}},
    {"IsEFIBootSystem", {"0"}},
    {"GetDriveLetter", {"0"}},
    {"IsNeedHidePartition", {"0"}},
    {"IsBIOSHibernationPartition", {"0"}},
    {"SetBIOSHibernationPartitionID", {"1"}},
    {"GetActivePartitionNumber", {"-1"}},
    {"SetActive", {"1"}},
    {"ClearActive", {"1"}},
    {"GetFactoryPrtDriveLetter", {"1 0"}},
    {"GetRCVDISC", {"0"}},
    {"GetRCVUFD", {"0"}},
    {"IsWindowsRE", {"0"}},
    {"IsVistaOS", {"0"}},
    {"IsCachePartitionForExpCacheExist", {"0"}},
    {"ActiveOrvoBootPartition", {"101 0", "105 0"}},
    {"DisableOrvoBootPartition", {"105"}},
    {"ActiveGPTSystemPartition", {"101 0", "105 0"}},
    {"DisableGPTSystemPartition", {"105"}},
    {"AssignRecoveryPartition", {"1 0"}},
    {"AssignWinREPartition", {"1 0"}},
    {"RemoveRecoveryPartition", {""}},
    {"RemoveWinREPartition", {""}},
    {"IsExistRcvprt", {"0"}},
    {"IsExistEncryptVolume", {"0"}},
    {"GetEncryptVolume", {"0"}},
    {"GetAllEncryptVolume", {"0 "}},
    {"GetBitLockerSystemInfo", {"100 -1 -1 0", "106 -1 -1 0", "115 -1 -1 0"}},
    {"GetVistaOSInfo", {"104 -1 -1 0", "110 -1 -1 0", "111 -1 -1 0"}},
    {"GetWinDriveLetters", {"0"}},
    {"SetRcvprtActive", {"1", "3", "5"}},
    {"SetSystemActive", {"1", "3", "4"}},
    {"SetPOneActive", {"1", "3", "5"}},
    {"SetPTwoActive", {"1", "2"}},
};

std::string Text(const Value& value) {
    if (const auto* const flag = std::get_if<bool>(&value)) return std::to_string(static_cast<int>(*flag));
    if (const auto* const number = std::get_if<int>(&value)) return std::to_string(*number);
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? *text : "";
}

bool IsList(const Value& value) {
    return std::holds_alternative<std::vector<DriveRecord>>(value);
}

}  // namespace

std::string AnswerText(const Value& result, const Values& outputs) {
    std::string text = Text(result);
    for (const auto& [name, value] : outputs) {
        if (!IsList(value)) text += " " + Text(value);
    }
    return text;
}

// One that has no row here ends with a failure, as the tool's table has it.
bool IsEnding(const Operation& operation, const Value& result, const Values& outputs) {
    const auto row = endings.find(operation.name);
    if (row != endings.end()) return row->second.contains(AnswerText(result, outputs));
    const Meaning* const meaning = FindMeaning(operation.results, result);
    return meaning != nullptr && (meaning->after.advice != Advice::None || meaning->vague);
}
