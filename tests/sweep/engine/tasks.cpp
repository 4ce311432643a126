#include "tests/sweep/engine/tasks.h"

#include <map>
#include <ostream>
#include <set>

namespace sweep {

namespace {

// Operations without an entry are called once, without arguments.
const std::map<std::string, std::vector<std::vector<std::string>>> argumentsOf = {
    {"Initialize", {{"true"}}},
    {"GetDriveLetter", {{"0", "2"}, {"0", "9"}}},
    {"IsNeedHidePartition", {{"0", "2"}, {"0", "5"}}},
    {"IsBIOSHibernationPartition", {{"0", "4"}}},
    {"SetBIOSHibernationPartitionID", {{"3"}}},
    {"SetActive", {{"1"}}},
    {"IsWindowsRE", {{"C"}}},
    {"IsVistaOS", {{"C"}, {"D"}}},
};

const std::map<std::string, std::string> comesAfter = {
    {"DisableOrvoBootPartition", "ActiveOrvoBootPartition"},
    {"DisableGPTSystemPartition", "ActiveGPTSystemPartition"},
    {"RemoveRecoveryPartition", "AssignRecoveryPartition"},
    {"RemoveWinREPartition", "AssignWinREPartition"},
};

std::vector<Task> MakeTasks() {
    std::vector<Task> tasks;
    for (const Operation& operation : Operations()) {
        const auto given = argumentsOf.find(operation.name);
        const auto before = comesAfter.find(operation.name);
        const auto lists =
            given != argumentsOf.end() ? given->second : std::vector<std::vector<std::string>>{{}};
        for (const std::vector<std::string>& words : lists) {
            Task task{operation.name, &operation, ReadArguments(operation, words)};
            for (const std::string& word : words)
                task.name += " " + word;
            if (before != comesAfter.end()) task.before = &FindOperation(before->second);
            tasks.push_back(std::move(task));
        }
    }
    return tasks;
}

}  // namespace

void PrintTo(const Task& task, std::ostream* out) {
    *out << task.name;
}

const std::vector<Task>& Tasks() {
    static const std::vector<Task> tasks = MakeTasks();
    return tasks;
}

bool IsListed(const Operation& operation, const Value& result) {
    if (*operation.otherwise != '\0') return true;
    return operation.results.empty() ? IsNothing(result) : FindMeaning(operation.results, result) != nullptr;
}

bool IsSwitch(const Operation& operation) {
    static const std::set<std::string> switches = {"SetRcvprtActive", "SetSystemActive", "SetPOneActive",
                                                   "SetPTwoActive"};
    return switches.contains(operation.name);
}

}  // namespace sweep
