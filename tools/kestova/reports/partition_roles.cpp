#include "tools/kestova/reports/partition_roles.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "platform/partition_types.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/reports/refused_letters.h"

namespace {

constexpr const char* installedWindows = "installed Windows";

// A type as the status has it.
std::string TypeText(BYTE id) {
    return Hex(id, 2);
}
std::string TypeText(const GUID& guid) {
    return GuidText(guid);
}

template <typename Rows>
void AddTypeRole(PartitionReport& partition, const Rows& rows) {
    for (const auto& row : rows) {
        if (row.role != nullptr && partition.type == TypeText(row.type))
            partition.roles.push_back({row.role, "type"});
    }
}

bool IsEncrypted(const StatusReport& status, WCHAR letter) {
    return status.encryptedVolumes && status.encryptedVolumes->find(LetterText(letter)) != std::string::npos;
}

// The roles that the files of a lettered partition, or its encryption, reveal. The library reports every
// encrypted volume as an installed Windows.
void AddVolumeRoles(const StatusReport& status, PartitionReport& partition, Questions& questions) {
    if (!partition.letter) return;
    const Values letter = {{"letter", LetterText(*partition.letter)}};
    if (IsEncrypted(status, *partition.letter)) {
        partition.roles.push_back({"encrypted", "BitLocker lists it"});
    } else if (questions.IsYes("IsVistaOS", letter)) {
        partition.roles.push_back({installedWindows, "contents"});
    }
    if (questions.IsYes("IsWindowsRE", letter))
        partition.roles.push_back({"Windows RE", "bootable contents"});
}

bool IsForRecovery(const PartitionReport& partition) {
    return partition.type == GuidText(PARTITION_MSFT_RECOVERY_GUID) ||
           std::ranges::any_of(partition.roles,
                               [](const Role& role) { return std::string_view(role.role) == "recovery"; });
}

void AddPartitionRoles(const StatusReport& status, PartitionReport& partition, Questions& questions) {
    const Values place = {{"disk", *status.internalDisk}, {"partition", partition.number}};
    partition.hide = questions.IsYes("IsNeedHidePartition", place);
    AddTypeRoles(partition);
    if (IsForRecovery(partition) &&
        questions.On().OnPc().LacksFileSystem(*status.internalDisk, partition.number)) {
        questions.AddUnread("partition " + std::to_string(partition.number) +
                            " is for recovery and holds no file system that can be read");
    }
    if (questions.IsYes("IsBIOSHibernationPartition", place))
        partition.roles.push_back({"hibernation", "type"});
    AddVolumeRoles(status, partition, questions);
}

// Marks the partition that an operation found by type and contents and gave that letter.
void AddFoundRole(StatusReport& status, const Value& letter, const char* role, Questions& questions) {
    if (letter == Value("0")) return;
    for (PartitionReport& partition : status.partitions) {
        const Values place = {{"disk", *status.internalDisk}, {"partition", partition.number}};
        if (questions.Ask("GetDriveLetter", place).result == letter)
            partition.roles.push_back({role, "type and contents"});
    }
}

// Windows and the maker share the recovery partition type; only the contents distinguish them. To look into a
// partition without a letter, the library gives it one.
void AddRecoveryRoles(StatusReport& status, Questions& questions) {
    std::set<int64_t> refused;
    const auto look = [&](const char* assign, const char* role) {
        const OperationReport report = questions.Ask(assign);
        refused.merge(RefusedLetters(report.trace));
        AddFoundRole(status, ValueOf(report.outputs, "letter"), role, questions);
    };
    const bool rehearsed = questions.On().OnPc().Rehearse([&] {
        look("AssignRecoveryPartition", "recovery");
        look("AssignWinREPartition", "Windows RE");
    });
    for (PartitionReport& partition : status.partitions) {
        const bool isUnknown = partition.roles.empty() && refused.contains(partition.offset);
        if ((isUnknown || !rehearsed) && partition.type == GuidText(PARTITION_MSFT_RECOVERY_GUID))
            partition.roles.push_back({"recovery or Windows RE", "type; contents not looked into"});
    }
}

bool HoldsWindows(const PartitionReport& partition) {
    return std::ranges::any_of(
        partition.roles, [](const Role& role) { return std::string_view(role.role) == installedWindows; });
}

// By the layout if the library finds it there, else by its files.
std::optional<WindowsPlace> InstalledWindows(const StatusReport& status, Questions& questions) {
    const OperationReport report = questions.Ask("GetVistaOSInfo");
    if (report.result == Value(0)) {
        const auto number = [&](const char* name) { return std::get<int>(ValueOf(report.outputs, name)); };
        const auto& letter = std::get<std::string>(ValueOf(report.outputs, "letter"));
        return WindowsPlace{number("disk"), number("partition"), static_cast<WCHAR>(letter.front())};
    }
    const auto windows = std::ranges::find_if(status.partitions, HoldsWindows);
    if (windows == status.partitions.end()) return std::nullopt;
    return WindowsPlace{*status.internalDisk, windows->number, *windows->letter};
}

std::optional<std::string> EncryptedVolumes(Questions& questions) {
    constexpr int wholeAnswer = 33;  // characters
    const OperationReport report = questions.Ask("GetAllEncryptVolume", {{"size", wholeAnswer}});
    if (report.result != Value(1)) return std::nullopt;
    return std::get<std::string>(ValueOf(report.outputs, "buffer"));
}

void AddLayout(StatusReport& status, Questions& questions) {
    const OperationReport report = questions.Ask("GetCurrentDiskType");
    status.layout = std::get<int>(ValueOf(report.outputs, "type"));
    const auto& meanings = report.operation->parameters.front().meanings;
    status.layoutName = FindMeaning(meanings, status.layout)->words;
}

}  // namespace

void AddTypeRoles(PartitionReport& partition) {
    AddTypeRole(partition, mbrPartitionTypes);
    AddTypeRole(partition, gptPartitionTypes);
}

void AddRoles(StatusReport& status, Questions& questions) {
    AddLayout(status, questions);
    status.encryptedVolumes = EncryptedVolumes(questions);
    status.recoveryDisc = questions.AskLetter("GetRCVDISC");
    status.recoveryStick = questions.AskLetter("GetRCVUFD");
    status.cachePartition = questions.IsYes("IsCachePartitionForExpCacheExist");
    for (PartitionReport& partition : status.partitions)
        AddPartitionRoles(status, partition, questions);
    status.windows = InstalledWindows(status, questions);
    AddRecoveryRoles(status, questions);
}
