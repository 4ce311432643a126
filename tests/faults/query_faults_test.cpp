// Every platform call of the questions about disks, partitions and volumes, and of the single changes, fails
// in every way: the answer is the true one or that of a failure, nothing on the PC changes that the answer
// does not report, and only the kept leftovers stay on loan.

#include <gtest/gtest.h>

#include <set>

#include "machine/facts/machines.h"
#include "manager/result_codes.h"
#include "platform/partition_types.h"
#include "tests/faults/current_module.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/fault_walk.h"

namespace {

using machine::FaultRule;

machine::Pc SystemReserved() {
    machine::Pc facts = machine::FactoryMbr();
    PartitionOf(facts, 2).volume->label = std::string("System Reserved");
    return facts;
}

machine::Pc Factory() {
    machine::Pc facts = machine::FactoryMbr();
    PartitionOf(facts, 2).volume->label = std::string("Factory");
    return facts;
}

machine::Pc WithMedium(machine::DriveType driveType, const char* flag) {
    machine::Pc facts = machine::FactoryMbr();
    machine::Volume medium;
    medium.letters = "R";
    medium.driveType = driveType;
    medium.files = PartitionOf(facts, 1).volume->files;
    medium.files.PutFolder(flag);
    facts.volumes = {medium};
    return facts;
}

machine::Pc Disc() {
    return WithMedium(machine::DriveType::Optical, "sources/DVD");
}

machine::Pc Stick() {
    return WithMedium(machine::DriveType::Removable, "sources/UFD");
}

machine::Pc WindowsRe() {
    machine::Pc facts = machine::FactoryMbr();
    PartitionOf(facts, 3).volume->files = {
        {"bootmgr", ""}, {"boot/bcd", ""}, {"sources/boot.wim", ""}, {"Orvo/", ""}};
    return facts;
}

machine::Pc WindowsReVolume() {
    machine::Pc facts = machine::FactoryGpt();
    PartitionOf(facts, 2).volume->letters = "R";
    return facts;
}

machine::Pc Emulated() {
    machine::Pc facts = machine::FactoryMbr();
    facts.system.emulates32Bit = true;
    facts.encryptableVolumes.emplace();
    return facts;
}

machine::Pc Encrypted() {
    machine::Pc facts = machine::FactoryMbr();
    PartitionOf(facts, 2).volume->files = {};
    machine::EncryptableVolume volume;
    volume.deviceId = "\\\\?\\Volume{0}\\";
    volume.persistentVolumeId = "{0}";
    volume.driveLetter = "C:";
    volume.encryptionMethod = 1;
    facts.encryptableVolumes = {volume};
    return facts;
}

struct Question {
    const char* name;
    machine::Pc (*facts)();
    int (*ask)(Kestova&);
    int answer;
    // What a failure may answer besides; an answer that a failure cannot change has none.
    std::set<int> failures;
};

void PrintTo(const Question& question, std::ostream* out) {
    *out << question.name;
}

const Question questions[] = {
    {"GetFirstInternalDriveNumber",
     machine::FactoryMbr,
     [](Kestova& kestova) { return kestova.GetFirstInternalDriveNumber(); },
     0,
     {-1}},
    {"GetActivePartitionNumber",
     machine::FactoryMbr,
     [](Kestova& kestova) { return kestova.GetActivePartitionNumber(); },
     2,
     {-1}},
    {"GetDiskStyle",
     machine::FactoryMbr,
     [](Kestova& kestova) {
         THardDiskType style = HARD_DISK_UNKNOWN;
         EXPECT_EQ(kestova.GetDiskStyle(style), 1);
         return static_cast<int>(style);
     },
     HARD_DISK_MBR,
     {HARD_DISK_UNKNOWN}},
    // A label that cannot be read is another label.
    {"GetCurrentDiskTypeOfMbr",
     SystemReserved,
     [](Kestova& kestova) {
         tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
         EXPECT_EQ(kestova.GetCurrentDiskType(type), 1);
         return static_cast<int>(type);
     },
     DISK_TYPE_MBR_SYSTEM_RESERVED,
     {DISK_TYPE_UNKNOWN, DISK_TYPE_MBR_OTHER}},
    {"GetCurrentDiskTypeOfGpt",
     machine::FactoryGpt,
     [](Kestova& kestova) {
         tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
         EXPECT_EQ(kestova.GetCurrentDiskType(type), 1);
         return static_cast<int>(type);
     },
     DISK_TYPE_GPT_ESP,
     {DISK_TYPE_UNKNOWN}},
    {"IsDynamic", machine::FactoryMbr, [](Kestova& kestova) { return kestova.IsDynamic(); }, 0, {}},
    {"IsEFIBootSystem",
     machine::FactoryGpt,
     [](Kestova& kestova) { return kestova.IsEFIBootSystem(); },
     1,
     {0}},
    {"GetDriveLetter",
     machine::FactoryMbr,
     [](Kestova& kestova) -> int { return kestova.GetDriveLetter(0, 2); },
     'C',
     {'0'}},
    {"IsNeedHidePartition",
     SystemReserved,
     [](Kestova& kestova) { return kestova.IsNeedHidePartition(0, 2); },
     1,
     {0}},
    // A partition that cannot be looked at is one to hide.
    {"IsNeedHidePartitionOfData",
     machine::FactoryGpt,
     [](Kestova& kestova) { return kestova.IsNeedHidePartition(0, 5); },
     0,
     {1}},
    {"IsBIOSHibernationPartition",
     machine::FactoryMbr,
     [](Kestova& kestova) { return kestova.IsBIOSHibernationPartition(0, 4); },
     1,
     {0}},
    {"IsCachePartitionForExpCacheExist",
     machine::WinPeTwoDisks,
     [](Kestova& kestova) { return kestova.IsCachePartitionForExpCacheExist(); },
     1,
     {0}},
    {"GetFactoryPrtDriveLetter",
     Factory,
     [](Kestova& kestova) -> int {
         WCHAR letter = 0;
         EXPECT_EQ(kestova.GetFactoryPrtDriveLetter(letter), 1);
         return letter;
     },
     'C',
     {'0'}},
    {"GetRCVDISC", Disc, [](Kestova& kestova) -> int { return kestova.GetRCVDISC(); }, 'R', {'0'}},
    {"GetRCVUFD", Stick, [](Kestova& kestova) -> int { return kestova.GetRCVUFD(); }, 'R', {'0'}},
    {"IsWindowsRE", WindowsRe, [](Kestova& kestova) { return kestova.IsWindowsRE(TEXT('D')); }, 1, {0}},
    {"GetDiskNumber",
     machine::FactoryMbr,
     [](Kestova& kestova) { return (kestova.*Open(internals::GetDiskNumberTag()))(TEXT('C')); },
     0,
     {255}},
    {"GetPartNumber",
     machine::FactoryMbr,
     [](Kestova& kestova) { return (kestova.*Open(internals::GetPartNumberTag()))(TEXT('C')); },
     2,
     {0}},
    {"IsWinREVolume",
     WindowsReVolume,
     [](Kestova& kestova) { return (kestova.*Open(internals::IsWinREVolumeTag()))(TEXT('R')); },
     1,
     {0}},
    {"GetOSVolume",
     machine::FactoryMbr,
     [](Kestova& kestova) -> int { return (kestova.*Open(internals::GetOSVolumeTag()))(); },
     'C',
     {'0'}},
    {"GetBitLockerSystemInfo",
     machine::FactoryGpt,
     [](Kestova& kestova) {
         int disk = 77;
         int partition = 77;
         WCHAR letter = 0;
         const DWORD code = kestova.GetBitLockerSystemInfo(disk, partition, letter);
         EXPECT_EQ(partition, code == 0 ? 3 : -1);
         return static_cast<int>(code);
     },
     0,
     {NO_INTERNAL_DISK, UNKNOWN_DISK_STYLE, NO_SYSTEM_PARTITION_TYPE}},
    {"GetVistaOSInfo",
     machine::FactoryGpt,
     [](Kestova& kestova) {
         int disk = 77;
         int partition = 77;
         WCHAR letter = 0;
         const DWORD code = kestova.GetVistaOSInfo(disk, partition, letter);
         EXPECT_EQ(partition, code == 0 ? 5 : -1);
         EXPECT_EQ(letter, code == 0 ? TEXT('C') : TEXT('0'));
         return static_cast<int>(code);
     },
     0,
     {ERROR_GET_DRIVE_LETTER, ERROR_NO_EXIST_OS, ERROR_GET_DISK_STYLE}},
    {"IsExistEncryptVolume",
     Encrypted,
     [](Kestova& kestova) { return kestova.IsExistEncryptVolume(); },
     1,
     {0}},
    // A query that ends early may have missed the volume or its letter.
    {"GetEncryptVolume",
     Encrypted,
     [](Kestova& kestova) -> int { return kestova.GetEncryptVolume(); },
     'C',
     {'0', '\0'}},
    {"GetAllEncryptVolume",
     Encrypted,
     [](Kestova& kestova) -> int {
         WCHAR letters[33] = {};
         const int isAsked = kestova.GetAllEncryptVolume(letters, 33);
         return isAsked ? letters[0] : -1;
     },
     'C',
     {-1, '\0'}},
    {"IsVistaOSByFiles", Emulated, [](Kestova& kestova) { return kestova.IsVistaOS(TEXT('C')); }, 1, {0}},
    {"IsVistaOSEncrypted", Encrypted, [](Kestova& kestova) { return kestova.IsVistaOS(TEXT('C')); }, 1, {0}},
};

machine::Journal UndisturbedRun(const Question& question) {
    Application application(question.facts());
    EXPECT_EQ(question.ask(application.kestova), question.answer);
    return application.pc.journal;
}

class QueryFaults : public testing::TestWithParam<Question> {};

TEST_P(QueryFaults, EveryCallFails_ReturnsTheAnswerOrAFailureAndChangesNothing) {
    const Question& question = GetParam();
    std::set<int> answers;
    const int visited = WalkFaults(UndisturbedRun(question), [&](const FaultRule& rule) {
        Application application(question.facts());
        application.pc.faults.Arm(rule);
        const int answer = question.ask(application.kestova);
        EXPECT_GT(application.pc.faults.Fired(), 0);
        answers.insert(answer);
        EXPECT_TRUE(answer == question.answer || question.failures.contains(answer)) << answer;
        EXPECT_EQ(application.pc.facts, question.facts());
        ExpectNoCurrentModule();
        ExpectOnlyKeptLeftovers(application.pc.ledger, rule.call);
    });
    EXPECT_GT(visited, 0);
    // Each of the answers that a failure may give is given by some.
    for (const int failure : question.failures)
        EXPECT_TRUE(answers.contains(failure)) << failure;
}

INSTANTIATE_TEST_SUITE_P(Every, QueryFaults, testing::ValuesIn(questions),
                         [](const auto& tested) { return std::string(tested.param.name); });

// --- single changes ---

struct Change {
    const char* name;
    int (*make)(Kestova&);  // 0: done; 1: failed
};

void PrintTo(const Change& change, std::ostream* out) {
    *out << change.name;
}

constexpr Change changes[] = {
    {"SetActive", [](Kestova& kestova) { return kestova.SetActive(1); }},
    {"ClearActive", [](Kestova& kestova) { return kestova.ClearActive(); }},
    {"SetBIOSHibernationPartitionID",
     [](Kestova& kestova) { return kestova.SetBIOSHibernationPartitionID(3); }},
};

// Also what the change makes of the disks.
machine::Journal UndisturbedRun(const Change& change, std::vector<machine::Disk>& after) {
    Application application(machine::FactoryMbr());
    EXPECT_EQ(change.make(application.kestova), 0);
    after = application.pc.facts.disks;
    return application.pc.journal;
}

class ChangeFaults : public testing::TestWithParam<Change> {};

TEST_P(ChangeFaults, EveryCallFails_DisksAreAsBeforeOrAsChanged) {
    const std::vector<machine::Disk> before = machine::FactoryMbr().disks;
    std::vector<machine::Disk> after;
    const machine::Journal undisturbed = UndisturbedRun(GetParam(), after);
    ASSERT_NE(after, before);
    WalkFaults(undisturbed, [&](const FaultRule& rule) {
        Application application(machine::FactoryMbr());
        application.pc.faults.Arm(rule);
        const int result = GetParam().make(application.kestova);
        EXPECT_GT(application.pc.faults.Fired(), 0);
        if (IsHonest(rule)) {
            EXPECT_EQ(application.pc.facts.disks, result == 0 ? after : before);
        }
        ExpectOnlyKeptLeftovers(application.pc.ledger, rule.call);
    });
}

INSTANTIATE_TEST_SUITE_P(Every, ChangeFaults, testing::ValuesIn(changes),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
