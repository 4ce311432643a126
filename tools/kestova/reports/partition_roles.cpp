#include "tools/kestova/reports/partition_roles.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>

#include "base/guid.h"
#include "platform/partition_types.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/operations.h"

namespace {

// An operation by its name: its outputs, and its result under "result".
Json Ask(Kestova& object, const char* name, const Json& arguments = Json::object()) {
    Json answer = Json::object();
    const Json result = FindOperation(name).invoke(object, arguments, answer);
    answer["result"] = result;
    return answer;
}

// The letter that an operation answers; null for none.
Json LetterOrNull(const Json& letter) {
    return letter == "0" ? Json() : letter;
}

void AddRole(Json& partition, const char* role, const char* reason) {
    partition["roles"].push_back({{"role", role}, {"reason", reason}});
}

// A type as the status has it.
std::string TypeText(BYTE id) {
    return Hex(id, 2);
}
std::string TypeText(const GUID& guid) {
    return GuidText(guid);
}

template <typename Rows>
void AddTypeRole(Json& partition, const Rows& rows) {
    for (const auto& row : rows) {
        if (row.role != nullptr && partition["type"] == TypeText(row.type))
            AddRole(partition, row.role, "type");
    }
}

bool IsEncrypted(const Json& status, const Json& letter) {
    const Json& letters = status["encryptedVolumes"];
    return letters.is_string() && letter.is_string() &&
           letters.get_ref<const std::string&>().find(letter.get_ref<const std::string&>()) !=
               std::string::npos;
}

// What the files of a lettered partition, or its encryption, tell. The library takes every encrypted volume
// for an installed Windows.
void AddVolumeRoles(Kestova& object, const Json& status, Json& partition) {
    const Json letter = partition["letter"];
    if (letter.is_null()) return;
    const Json arguments = {{"letter", letter}};
    if (IsEncrypted(status, letter)) {
        AddRole(partition, "encrypted", "BitLocker lists it");
    } else if (Ask(object, "IsVistaOS", arguments)["result"] == 1) {
        AddRole(partition, "installed Windows", "contents");
    }
    if (Ask(object, "IsWindowsRE", arguments)["result"] == 1)
        AddRole(partition, "Windows RE", "bootable contents");
}

void AddPartitionRoles(Kestova& object, const Json& status, Json& partition) {
    const Json place = {{"disk", status["internalDisk"]}, {"partition", partition["number"]}};
    partition["hide"] = Ask(object, "IsNeedHidePartition", place)["result"] == 1;
    partition["roles"] = Json::array();
    AddTypeRole(partition, mbrPartitionTypes);
    AddTypeRole(partition, gptPartitionTypes);
    if (Ask(object, "IsBIOSHibernationPartition", place)["result"] == 1)
        AddRole(partition, "hibernation", "type");
    AddVolumeRoles(object, status, partition);
}

// The partition that the operation finds by type and contents, which gets a letter for it.
void AddFoundRole(Kestova& object, Json& status, const Json& letter, const char* role) {
    if (letter.is_null()) return;
    for (Json& partition : status["partitions"]) {
        const Json place = {{"disk", status["internalDisk"]}, {"partition", partition["number"]}};
        if (Ask(object, "GetDriveLetter", place)["result"] == letter)
            AddRole(partition, role, "type and contents");
    }
}

// The partitions that the operation could not look into: no letter could be given to them, by its records.
std::set<int> NotLookedInto(const Json& log) {
    constexpr std::string_view lettering =
        "Kestova CVDSPartition::SetDriveLetter\t\tStart  PartitionNumber = ";
    constexpr std::string_view refusals[] = {
        "Kestova Kestova::IsRecoveryPartition SetDriveLetter return false",
        "Kestova Kestova::IsWinREPartition SetDriveLetter return false",
    };
    std::set<int> numbers;
    int number = 0;
    for (const Json& record : log) {
        const std::string_view text = record["text"].get_ref<const std::string&>();
        if (text.starts_with(lettering)) {
            std::from_chars(text.data() + lettering.size(), text.data() + text.size(), number);
        } else if (std::ranges::find(refusals, text) != std::end(refusals)) {
            numbers.insert(number);
        }
    }
    return numbers;
}

bool IsWindowsRecovery(const Json& partition) {
    return partition["type"] == GuidText(PARTITION_MSFT_RECOVERY_GUID);
}

// Windows' own recovery partitions, which may be the maker's too: only their contents tell.
void AddRecoveryRoles(Session& session, Json& status) {
    std::set<int> notLookedInto;
    const auto look = [&](const char* operation, const char* role) {
        const Json report = session.Call(FindOperation(operation), Json::object());
        AddFoundRole(session.Object(), status, LetterOrNull(report["outputs"]["letter"]), role);
        notLookedInto.merge(NotLookedInto(report["log"]));
    };
    const bool rehearsed = session.OnPc().Rehearse([&] {
        look("AssignRecoveryPartition", "recovery");
        look("AssignWinREPartition", "Windows RE");
    });
    for (Json& partition : status["partitions"]) {
        const bool isUnknown =
            partition["roles"].empty() && notLookedInto.contains(partition["number"].get<int>());
        if ((isUnknown || !rehearsed) && IsWindowsRecovery(partition))
            AddRole(partition, "recovery or Windows RE", "type; contents not looked into");
    }
}

bool HoldsWindows(const Json& partition) {
    const Json& roles = partition["roles"];
    return std::any_of(roles.begin(), roles.end(),
                       [](const Json& role) { return role["role"] == "installed Windows"; });
}

Json Place(const Json& disk, const Json& partition, const Json& letter) {
    return {{"disk", disk}, {"partition", partition}, {"letter", letter}};
}

// Where the library finds it by the layout, else where its files are.
Json InstalledWindows(Kestova& object, const Json& status) {
    const Json found = Ask(object, "GetVistaOSInfo");
    if (found["result"] == 0) return Place(found["disk"], found["partition"], found["letter"]);
    const Json& partitions = status["partitions"];
    const auto windows = std::find_if(partitions.begin(), partitions.end(), HoldsWindows);
    if (windows == partitions.end()) return nullptr;
    return Place(status["internalDisk"], (*windows)["number"], (*windows)["letter"]);
}

Json EncryptedVolumes(Kestova& object) {
    const Json answer = Ask(object, "GetAllEncryptVolume", {{"size", 33}});
    return answer["result"] == 1 ? answer["buffer"] : Json();
}

}  // namespace

void AddRoles(Session& session, Json& status) {
    Kestova& object = session.Object();
    const Json layout = Ask(object, "GetCurrentDiskType")["type"];
    const auto& meanings = FindOperation("GetCurrentDiskType").parameters.front().meanings;
    status["layout"] = layout;
    status["layoutName"] = FindMeaning(meanings, layout)->words;
    status["encryptedVolumes"] = EncryptedVolumes(object);
    status["recoveryDisc"] = LetterOrNull(Ask(object, "GetRCVDISC")["result"]);
    status["recoveryStick"] = LetterOrNull(Ask(object, "GetRCVUFD")["result"]);
    status["cachePartition"] = Ask(object, "IsCachePartitionForExpCacheExist")["result"] == 1;
    for (Json& partition : status["partitions"])
        AddPartitionRoles(object, status, partition);
    status["windows"] = InstalledWindows(object, status);
    AddRecoveryRoles(session, status);
}

std::string RolesText(const Json& partition) {
    std::string text;
    for (const Json& role : partition["roles"])
        text += (text.empty() ? "" : "; ") + role["role"].get<std::string>() + ": " +
                role["reason"].get<std::string>();
    return text.empty() ? "-" : text;
}
