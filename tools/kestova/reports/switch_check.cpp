#include "tools/kestova/reports/switch_check.h"

#include <algorithm>

#include "base/utf.h"
#include "manager/factory_layout.h"
#include "manager/recovery_media.h"
#include "manager/system_volume_ini.h"
#include "platform/partition_types.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/partition_words.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/questions.h"
#include "tools/kestova/reports/disk_layout.h"

namespace {

using machine::FileKind;
using machine::VolumeStore;

constexpr int recovery = mbr_layout::recovery;

struct Answer {
    std::optional<bool> isMet = {};
    std::string found = {};
};

// --- what the conditions are answered from ---

struct Facts {
    int disk = noDisk;
    std::vector<PARTITION_INFORMATION_EX> partitions = {};
    const PARTITION_INFORMATION_EX* recovery = nullptr;  // of an MBR disk
    std::optional<WCHAR> letter = {};                    // of the recovery partition
    std::shared_ptr<VolumeStore> files = {};             // of the recovery partition; null if not looked into
    std::optional<bool> isReadable = {};                 // nothing if not looked into
    std::string whyUnreadable = {};
};

bool IsMbr(const Facts& facts) {
    return !facts.partitions.empty() && facts.partitions.front().PartitionStyle == PARTITION_STYLE_MBR;
}

bool HasType(const Facts& facts, BYTE type) {
    return facts.recovery != nullptr && facts.recovery->Mbr.PartitionType == type;
}

void LookInto(Session& session, Facts& facts) {
    try {
        facts.files = session.OnPc().VolumeAt({.disk = facts.disk, .partition = recovery}).files;
        facts.isReadable = true;
    } catch (const NotLookedInto& reason) {
        facts.whyUnreadable = reason.what();
    } catch (const Failed& reason) {
        facts.isReadable = false;
        facts.whyUnreadable = reason.what();
    }
}

Facts FactsOf(Questions& questions, int disk) {
    Facts facts{.disk = disk};
    if (disk == noDisk) return facts;
    const auto layout = ReadDiskLayout(disk);
    if (!layout) questions.AddUnread("the partitions of disk " + std::to_string(disk) + " cannot be read");
    facts.partitions = layout.value_or(std::vector<PARTITION_INFORMATION_EX>());
    const auto entry = std::ranges::find(facts.partitions, static_cast<DWORD>(recovery),
                                         &PARTITION_INFORMATION_EX::PartitionNumber);
    if (!IsMbr(facts) || entry == facts.partitions.end()) return facts;
    facts.recovery = &*entry;
    facts.letter = questions.AskLetter("GetDriveLetter", {{"disk", disk}, {"partition", recovery}});
    LookInto(questions.On(), facts);
    return facts;
}

// --- the conditions ---

Answer InternalDisk(const Facts& facts) {
    if (facts.disk == noDisk) return {false, "none was found"};
    return {true, "disk " + std::to_string(facts.disk)};
}

Answer Style(const Facts& facts) {
    if (facts.partitions.empty()) return {};
    return {IsMbr(facts), IsMbr(facts) ? "MBR" : "GPT"};
}

Answer ActivePartition(const Facts& facts) {
    if (!IsMbr(facts)) return {};
    std::vector<std::string> numbers;
    for (const PARTITION_INFORMATION_EX& entry : facts.partitions) {
        if (IsActive(entry)) numbers.push_back(std::to_string(entry.PartitionNumber));
    }
    if (numbers.empty()) return {false, "none"};
    const bool isOne = numbers.size() == 1;
    return {isOne, (isOne ? "partition " : "partitions ") + Joined(numbers, ", ")};
}

Answer RecoveryPartition(const Facts& facts) {
    if (!IsMbr(facts)) return {};
    const std::string name = "partition " + std::to_string(recovery);
    if (facts.recovery == nullptr) return {false, "there is no " + name};
    const bool isExpected = HasType(facts, MBR_ID_NTFS) || HasType(facts, MBR_ID_OEM_RECOVERY) ||
                            HasType(facts, MBR_ID_HIDDEN_RECOVERY);
    return {isExpected, name + ": " + MbrTypeWords(facts.recovery->Mbr.PartitionType)};
}

Answer RecoveryLetter(const Facts& facts) {
    if (facts.recovery == nullptr) return {};
    if (facts.letter) return {true, LetterText(*facts.letter)};
    if (HasType(facts, MBR_ID_NTFS)) return {false, "none, which a visible partition needs"};
    return {true, "none yet: it gets the first free one"};
}

// "sources\idf is missing on partition 1".
std::string WhyNoRecoveryMedium(VolumeStore& files) {
    const std::string place = " on partition " + std::to_string(recovery);
    for (const WCHAR* const path : recovery_files::required) {
        if (files.Find(ToUtf8(path)) == FileKind::None) return ToUtf8(path) + " is missing" + place;
    }
    if (files.Find(ToUtf8(recovery_files::disc)) == FileKind::None) return "";
    return ToUtf8(recovery_files::disc) + " is" + place + ", and marks a disc";
}

Answer RecoveryFiles(const Facts& facts) {
    if (facts.recovery == nullptr) return {};
    if (!facts.files) return {facts.isReadable, facts.whyUnreadable};
    const std::string why = WhyNoRecoveryMedium(*facts.files);
    return {why.empty(), why.empty() ? "all there" : why};
}

// A PC that boots its recovery partition already needs a record only to delete it.
Answer Record(const Facts& facts) {
    if (facts.recovery == nullptr || !facts.files) return {};
    const std::string name = ToUtf8(systemVolumeIni);
    const std::string place = "partition " + std::to_string(recovery);
    const bool isThere = facts.files->Find(name) != FileKind::None;
    if (!isThere && IsActive(*facts.recovery)) return {true, "there is none, and none is needed"};
    const std::string why = facts.files->WhyUnchangeable();
    if (!why.empty()) return {false, place + " " + why};
    return {true, name + (isThere ? " is on " : " is written to ") + place};
}

struct Condition {
    const char* code;
    const char* question;
    Answer (*answer)(const Facts& facts);
    const char* advice;
};

constexpr Condition conditions[] = {
    {"internalDisk", "Internal disk", InternalDisk, "connect it, or name it in IDE.INI"},
    {"mbr", "Partition style", Style,
     "this switch is for MBR disks; on a GPT disk the firmware chooses what starts"},
    {"activePartition", "One active partition", ActivePartition,
     "make the partition of the system the only active one: call ClearActive, call SetActive"},
    {"recoveryPartition", "Recovery partition", RecoveryPartition,
     "it is the first one of the table, of type 0x27, 0x12 or 0x07"},
    {"recoveryLetter", "Its letter", RecoveryLetter, "give it one, or the type 0x27"},
    {"recoveryFiles", "Recovery files", RecoveryFiles,
     "copy the files of the factory's recovery partition to it; `kestova [PC] files 1:/sources` lists what is there"},
    {"record", "Record", Record, ""},
};

// With the options that choose this PC, so that a command in it can be typed as it is.
std::string AdviceFor(const OpenedPc& pc, std::string advice) {
    constexpr std::string_view place = "[PC] ";
    const size_t at = advice.find(place);
    return at == std::string::npos ? advice : advice.replace(at, place.size(), pc.ChoosingOptions());
}

std::vector<ConditionReport> Asked(const OpenedPc& pc, const Facts& facts) {
    std::vector<ConditionReport> reports;
    for (const Condition& condition : conditions) {
        Answer answer = condition.answer(facts);
        reports.push_back({condition.code, condition.question, answer.isMet, std::move(answer.found),
                           AdviceFor(pc, condition.advice)});
    }
    return reports;
}

// --- the rehearsal ---

struct Rehearsed {
    Answer there = {};
    Answer back = {};
};

// What a change of a volume in a wrong condition ends with is the answer, too.
Answer Try(Session& session, const char* name) {
    const Operation& operation = FindOperation(name);
    try {
        const OperationReport report = session.Call(operation, {});
        const bool isDone = !IsFailure(operation, report.result) && report.unwritten.empty();
        return {isDone, !report.unwritten.empty()
                            ? report.unwritten
                            : std::string(name) + "() = " + std::to_string(std::get<int>(report.result)) +
                                  ": " + ResultWords(report)};
    } catch (const UnreadablePc& barred) {
        return {false, barred.what()};
    }
}

// Where a platform leaves the flag of the recovery partition set, the other one is meant.
Answer BackTo(int disk) {
    const auto layout = ReadDiskLayout(disk);
    int active = recovery;
    bool isForHibernation = false;
    for (const PARTITION_INFORMATION_EX& entry : layout.value_or(std::vector<PARTITION_INFORMATION_EX>())) {
        if (!IsActive(entry) || static_cast<int>(entry.PartitionNumber) == recovery) continue;
        active = static_cast<int>(entry.PartitionNumber);
        isForHibernation = entry.Mbr.PartitionType == MBR_ID_BIOS_HIBERNATION;
    }
    const std::string made = "makes partition " + std::to_string(active) + " active";
    const char* const what = active == recovery ? ", the recovery partition itself"
                             : isForHibernation ? ", which is for hibernation"
                                                : nullptr;
    if (what == nullptr) return {true, made};
    const std::string file = ToUtf8(systemVolumeIni);
    return {false, made + what + ", because " + file + " names it: delete the file " + file +
                       " on partition " + std::to_string(recovery)};
}

Rehearsed Rehearse(Session& session, int disk) {
    Rehearsed rehearsed;
    const bool isTried = session.OnPc().Rehearse([&] {
        rehearsed.there = Try(session, "SetRcvprtActive");
        if (rehearsed.there.isMet != true) return;
        rehearsed.back = Try(session, "SetSystemActive");
        if (rehearsed.back.isMet == true) rehearsed.back = BackTo(disk);
    });
    if (!isTried) rehearsed.there.found = rehearsed.back.found = "not on the PC that the program runs on";
    return rehearsed;
}

}  // namespace

const char* AnswerWord(const ConditionReport& condition) {
    if (!condition.isMet) return "-";
    return *condition.isMet ? "yes" : "no";
}

std::string TextOf(const ConditionReport& condition) {
    const bool isAdvised = condition.isMet == false && !condition.advice.empty();
    return condition.found + (isAdvised ? ": " + condition.advice : "");
}

SwitchReport CheckSwitch(Session& session) {
    Questions questions(session);
    const int disk = std::get<int>(questions.Ask("GetFirstInternalDriveNumber").result);
    SwitchReport report{.conditions = Asked(session.OnPc(), FactsOf(questions, disk))};
    const Rehearsed rehearsed = Rehearse(session, disk);
    report.conditions.push_back(
        {"bootRecovery", "boot recovery (tried)", rehearsed.there.isMet, rehearsed.there.found, ""});
    report.conditions.push_back(
        {"bootSystem", "boot system (tried)", rehearsed.back.isMet, rehearsed.back.found, ""});
    report.isPossible = std::ranges::none_of(
        report.conditions, [](const ConditionReport& condition) { return condition.isMet == false; });
    report.problem = questions.Problems();
    return report;
}

std::vector<Finding> WhySwitchRefused(Session& session, int disk) {
    Questions questions(session);
    std::vector<Finding> reasons;
    for (const ConditionReport& condition : Asked(session.OnPc(), FactsOf(questions, disk))) {
        if (condition.isMet == false) reasons.push_back({condition.code, TextOf(condition)});
    }
    return reasons;
}
