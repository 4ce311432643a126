#include "tools/kestova/reports/partition_roles.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "base/utf.h"
#include "platform/partition_types.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/reports/refused_letters.h"

namespace {

constexpr const char* installedWindows = "installed Windows";

// The letter that an operation returned; none for '0'.
std::optional<WCHAR> LetterOrNone(WCHAR letter) {
    return letter != TEXT('0') ? std::optional(letter) : std::nullopt;
}

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
void AddVolumeRoles(Kestova& object, const StatusReport& status, PartitionReport& partition) {
    if (!partition.letter) return;
    if (IsEncrypted(status, *partition.letter)) {
        partition.roles.push_back({"encrypted", "BitLocker lists it"});
    } else if (object.IsVistaOS(*partition.letter) == 1) {
        partition.roles.push_back({installedWindows, "contents"});
    }
    if (object.IsWindowsRE(*partition.letter) == 1)
        partition.roles.push_back({"Windows RE", "bootable contents"});
}

void AddPartitionRoles(Kestova& object, const StatusReport& status, PartitionReport& partition) {
    const int disk = *status.internalDisk;
    partition.hide = object.IsNeedHidePartition(disk, partition.number) == 1;
    AddTypeRole(partition, mbrPartitionTypes);
    AddTypeRole(partition, gptPartitionTypes);
    if (object.IsBIOSHibernationPartition(disk, partition.number) == 1)
        partition.roles.push_back({"hibernation", "type"});
    AddVolumeRoles(object, status, partition);
}

// Marks the partition that an operation found by type and contents and gave that letter.
void AddFoundRole(Kestova& object, StatusReport& status, WCHAR letter, const char* role) {
    if (!LetterOrNone(letter)) return;
    for (PartitionReport& partition : status.partitions) {
        if (object.GetDriveLetter(*status.internalDisk, partition.number) == letter)
            partition.roles.push_back({role, "type and contents"});
    }
}

// Windows and the maker share the recovery partition type; only the contents tell them apart. To look into a
// partition without a letter, the library gives it one.
void AddRecoveryRoles(Session& session, StatusReport& status) {
    Kestova& object = session.Object();
    OpenedPc& pc = session.OnPc();
    std::set<int64_t> refused;
    const auto look = [&](int (Kestova::*assign)(WCHAR&), const char* role) {
        WCHAR letter = TEXT('0');
        pc.TakeTrace();
        (object.*assign)(letter);
        refused.merge(RefusedLetters(pc.TakeTrace()));
        AddFoundRole(object, status, letter, role);
    };
    const bool rehearsed = pc.Rehearse([&] {
        look(&Kestova::AssignRecoveryPartition, "recovery");
        look(&Kestova::AssignWinREPartition, "Windows RE");
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
std::optional<WindowsPlace> InstalledWindows(Kestova& object, const StatusReport& status) {
    WindowsPlace place{-1, -1, TEXT('0')};
    if (object.GetVistaOSInfo(place.disk, place.partition, place.letter) == 0) return place;
    const auto windows = std::ranges::find_if(status.partitions, HoldsWindows);
    if (windows == status.partitions.end()) return std::nullopt;
    return WindowsPlace{*status.internalDisk, windows->number, *windows->letter};
}

std::optional<std::string> EncryptedVolumes(Kestova& object) {
    WCHAR letters[33] = {};  // which hold every answer
    if (object.GetAllEncryptVolume(letters, static_cast<DWORD>(std::size(letters))) != 1) return std::nullopt;
    return ToUtf8(letters);
}

void AddLayout(Kestova& object, StatusReport& status) {
    tagDiskTypeEnum layout = DISK_TYPE_UNKNOWN;
    object.GetCurrentDiskType(layout);
    status.layout = layout;
    const auto& meanings = FindOperation("GetCurrentDiskType").parameters.front().meanings;
    status.layoutName = FindMeaning(meanings, status.layout)->words;
}

}  // namespace

void AddRoles(Session& session, StatusReport& status) {
    Kestova& object = session.Object();
    AddLayout(object, status);
    status.encryptedVolumes = EncryptedVolumes(object);
    status.recoveryDisc = LetterOrNone(object.GetRCVDISC());
    status.recoveryStick = LetterOrNone(object.GetRCVUFD());
    status.cachePartition = object.IsCachePartitionForExpCacheExist() == 1;
    for (PartitionReport& partition : status.partitions)
        AddPartitionRoles(object, status, partition);
    status.windows = InstalledWindows(object, status);
    AddRecoveryRoles(session, status);
}
