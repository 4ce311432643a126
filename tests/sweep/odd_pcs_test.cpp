// PCs and answers that are odd and no failures: very many disks and partitions, two of one number, discs on
// every bus, the longest labels, lists without items, a last error from before.

#include <gtest/gtest.h>

#include <string>

#include "base/com_apartment.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "platform/partition_types.h"
#include "tests/support/application/application.h"
#include "tests/sweep/engine/machines.h"
#include "tests/sweep/engine/run.h"

namespace {

constexpr uint64_t GiB = 1024ULL * 1024 * 1024;

// The factory disk as the last of so many, the others empty.
machine::Pc ManyDisks(uint32_t count) {
    machine::Pc pc = machine::FactoryMbr();
    machine::Disk factory = pc.disks[0];
    pc.disks.clear();
    for (uint32_t number = 0; number < count; ++number) {
        machine::Disk disk = machine::SataDisk(number, GiB, std::string(40, '_'), "PCI\\CONTROLLER");
        disk.signature = number + 1;
        pc.disks.push_back(disk);
    }
    pc.disks[0].partitions = factory.partitions;
    std::reverse(pc.disks.begin(), pc.disks.end());
    return pc;
}

machine::Pc ManyPartitions(uint32_t count) {
    machine::Pc pc = machine::FactoryGpt();
    std::vector<machine::Partition>& partitions = pc.disks[0].partitions;
    for (auto number = static_cast<uint32_t>(partitions.size()) + 1; number <= count; ++number) {
        machine::Partition partition;
        partition.number = number;
        partition.offset = 499 * GiB + number * 1024ULL * 1024;
        partition.size = 1024ULL * 1024;
        partition.gptType = PARTITION_BASIC_DATA_GUID;
        partition.gptId.Data1 = number;
        partitions.push_back(partition);
    }
    return pc;
}

struct Answer {
    Value result = {};
    Values outputs = {};
    machine::Pc after = {};

    bool operator==(const Answer&) const = default;
};

Answer WithLastError(const machine::Pc& pc, const sweep::Task& task, uint32_t lastError) {
    machine::EmulatedPc emulated(pc);
    const ComApartment com;
    Kestova object;
    if (task.operation->name != "Initialize") object.Initialize(false);
    emulated.lastError = lastError;
    Answer answer;
    answer.result = task.operation->invoke(object, task.arguments, answer.outputs);
    answer.after = emulated.facts;
    return answer;
}

}  // namespace

class DiskCount : public testing::TestWithParam<uint32_t> {};

TEST_P(DiskCount, FactoryDiskIsNumber0_IsFoundInWindowsAndWindowsPe) {
    for (const bool isWindowsPe : {false, true}) {
        machine::Pc pc = ManyDisks(GetParam());
        if (isWindowsPe) pc.system = machine::WindowsPePc().system;
        Application application(pc);
        EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), 0);
        EXPECT_EQ(application.kestova.GetActivePartitionNumber(), 2);
        EXPECT_EQ(application.kestova.GetDriveLetter(0, 2), TEXT('C'));
        ExpectOnlyKeptLeftovers(application.pc.ledger);
    }
}

INSTANTIATE_TEST_SUITE_P(Disks, DiskCount, testing::Values(1U, 63U, 64U, 65U),
                         [](const auto& test) { return std::to_string(test.param) + "Disks"; });

class PartitionCount : public testing::TestWithParam<uint32_t> {};

TEST_P(PartitionCount, GptDisk_AnswersAboutTheLastOneAndAssignsRecovery) {
    Application application(ManyPartitions(GetParam()));
    const auto last = static_cast<int>(GetParam());
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, last), 0);
    EXPECT_EQ(application.kestova.GetDriveLetter(0, last), TEXT('0'));
    WCHAR letter = 0;
    EXPECT_EQ(application.kestova.AssignRecoveryPartition(letter), 1);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

INSTANTIATE_TEST_SUITE_P(Partitions, PartitionCount, testing::Values(7U, 128U, 129U),
                         [](const auto& test) { return std::to_string(test.param) + "Partitions"; });

TEST(OddPcs, EmptyTables_ThereIsNothing) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions.clear();
    Application application(pc);
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), -1);
    EXPECT_EQ(application.kestova.SetActive(1), 1);
    EXPECT_EQ(application.kestova.SetRcvprtActive(), 1);
    EXPECT_EQ(application.pc.facts, pc);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(OddPcs, TwoDisksOfOneNumber_OneIsChanged) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks.push_back(pc.disks[0]);
    for (machine::Partition& partition : pc.disks[1].partitions) {
        if (partition.volume) partition.volume->letters = "";
    }
    Application application(pc);
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), 0);
    EXPECT_EQ(application.kestova.SetActive(3), 0);
    const bool first = application.pc.facts.disks[0] != pc.disks[0];
    const bool second = application.pc.facts.disks[1] != pc.disks[1];
    EXPECT_NE(first, second);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(OddPcs, TwoPartitionsOfOneNumber_BothAreChanged) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[3].number = 3;
    Application application(pc);
    EXPECT_EQ(application.kestova.SetActive(3), 0);
    EXPECT_EQ(application.pc.facts.disks[0].partitions[2].bootIndicator, 1);
    EXPECT_EQ(application.pc.facts.disks[0].partitions[3].bootIndicator, 1);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(OddPcs, DiscsOnEveryBus_NoneIsAnInternalDisk) {
    for (const uint32_t deviceType : {2U, 0x33U}) {
        for (uint32_t busType = 0; busType <= 20; ++busType) {
            machine::Pc pc = machine::FactoryMbr();
            pc.disks[0].deviceType = deviceType;
            pc.disks[0].busType = busType;
            Application application(pc);
            EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), -1) << busType;
            ExpectOnlyKeptLeftovers(application.pc.ledger);
        }
    }
}

TEST(OddPcs, LongestLabels_AreReadWhole) {
    for (const size_t length : {31U, 32U, 259U, 260U, 400U}) {
        machine::Pc pc = machine::FactoryMbr();
        PartitionOf(pc, 2).volume->label = std::string(length, 'L');
        PartitionOf(pc, 3).volume->label = std::string("Factory");
        Application application(pc);
        WCHAR letter = 0;
        EXPECT_EQ(application.kestova.GetFactoryPrtDriveLetter(letter), 1);
        EXPECT_EQ(letter, TEXT('D')) << length;
        tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
        EXPECT_EQ(application.kestova.GetCurrentDiskType(type), 1);
        EXPECT_EQ(type, DISK_TYPE_MBR_OTHER) << length;
        ExpectOnlyKeptLeftovers(application.pc.ledger);
    }
}

TEST(OddPcs, NoEncryptableVolume_BitLockerIsThereAndEncryptsNothing) {
    machine::Pc pc = machine::FactoryMbr();
    pc.encryptableVolumes.emplace();
    Application application(pc);
    EXPECT_EQ(application.kestova.IsExistEncryptVolume(), 1);
    EXPECT_EQ(application.kestova.GetEncryptVolume(), TEXT('0'));
    WCHAR letters[33] = {TEXT('x')};
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 33), 1);
    EXPECT_EQ(letters[0], 0);
}

// The letters of identities that no registry should have: empty, cut off, of more letters than there are.
TEST(OddPcs, OddMountedDevices_LettersAreTranslatedOrNot) {
    machine::Pc pc = machine::WinPeMedia();
    auto& installed = pc.offlineSystemHive["MountedDevices"];
    installed["\\DosDevices\\G:"] = {REG_BINARY, ""};
    installed["\\DosDevices\\H:"] = {REG_SZ, "DMIO:ID:"};
    installed["\\DosDevices\\1:"] = {REG_BINARY, "x"};
    installed["\\DosDevices\\"] = {REG_BINARY, "x"};
    installed["\\??\\Volume{0}"] = {REG_BINARY, std::string(4000, 'x')};
    Application application(pc);
    tagDriveInfo_t records[26] = {};
    EXPECT_EQ(application.kestova.GetWinDriveLetters(records, 26), 1);
    EXPECT_EQ(records[0].cDriveLetter, TEXT('C'));
    EXPECT_EQ(records[0].iPartNum, 5);
}

TEST(OddPcs, LastErrorFromBefore_ChangesNoAnswer) {
    for (const sweep::NamedPc& pc : sweep::Machines()) {
        for (const sweep::Task& task : sweep::Tasks()) {
            const Answer usual = WithLastError(pc.make(), task, ERROR_SUCCESS);
            for (const DWORD stale : std::initializer_list<DWORD>{ERROR_INSUFFICIENT_BUFFER, ERROR_MORE_DATA,
                                                                  ERROR_INVALID_DATA}) {
                EXPECT_EQ(WithLastError(pc.make(), task, stale) == usual, true)
                    << pc.name << ": " << task.name << " after " << stale;
            }
        }
    }
}
