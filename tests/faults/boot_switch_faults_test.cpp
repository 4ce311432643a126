// Every platform call of the four boot switches that reads or moves the active flag, finds the recovery
// partition or keeps the record fails: each place once, from there on for good, after its effect, and with a
// success that hands out nothing. Whatever fails, the machine keeps a partition to boot, the code matches the
// last record, nothing is released twice, and only the kept leftovers stay on loan.

#include <gtest/gtest.h>

#include <set>

#include "base/utf.h"
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/support/application/application.h"
#include "tests/support/fault_walk.h"

namespace {

using machine::FaultRule;

using Flags = std::vector<uint32_t>;

// The sweep fails the others as well.
const std::set<std::string> callsOfTheStory = {"IVdsAdvancedDisk2::ChangePartitionType",
                                               "IVdsAdvancedDisk::AssignDriveLetter",
                                               "IVdsAdvancedDisk::ChangeAttributes",
                                               "IVdsAdvancedDisk::QueryPartitions",
                                               "PathFileExistsW",
                                               "DeleteFileW",
                                               "GetPrivateProfileStringW",
                                               "WritePrivateProfileStringW"};

// --- the PCs ---

machine::Pc SystemActive() {
    machine::Pc facts = machine::FactoryMbr();
    facts.switches.activeFlagIsExclusive = true;
    return facts;
}

// Every flag that was ever set stays.
machine::Pc FlagsStay() {
    return machine::FactoryMbr();
}

// The recovery partition is shown as an ordinary one and will be hidden.
machine::Pc VisibleRecovery() {
    machine::Pc facts = SystemActive();
    PartitionOf(facts, 1).mbrType = MBR_ID_NTFS;
    PartitionOf(facts, 1).volume->letters = "R";
    return facts;
}

machine::Pc RecoveryActive() {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.disks.resize(1);
    facts.switches.activeFlagIsExclusive = true;
    PartitionOf(facts, 1).volume->files.PutFile("SystemVolume.ini", "[System]\r\nActive=3\r\n");
    return facts;
}

// --- the switches ---

struct Switch {
    const char* name;
    int (Kestova::*operation)();
    machine::Pc (*facts)();
    Flags flagsWhenDone;
    // The last record of each code; the first is that of success.
    std::vector<std::set<std::string>> lastRecords;
    // Codes after which nothing is changed for good.
    std::set<int> unchangedCodes;
};

void PrintTo(const Switch& tested, std::ostream* out) {
    *out << tested.name;
}

const std::vector<std::set<std::string>> setRcvprtActive = {
    {"Kestova::SetRcvprtActive\t\tEnd. Return 0"},
    {"Kestova::SetRcvprtActive\tGetActivePartitionNumber return False. 1"},
    {"Kestova::SetRcvprtActive\tGetActivePartitionNumber PartitionNumber is -1. 2"},
    {"Kestova::SetRcvprtActive\tGetSystemVolumeIni return False. 3"},
    {"Kestova::SetRcvprtActive\tWritePrivateProfileString return False. 4"},
    {"Kestova::SetRcvprtActive\tSetActive return False. 5"},
};

const std::vector<std::set<std::string>> setPOneActive = {
    {"Kestova::SetPOneActive\t\tEnd", "E:\\SystemVolume.ini"},
    {"Kestova::SetPOneActive\tGetActivePartitionNumber bReturn is FALSE. (1)"},
    {"Kestova::SetPOneActive\tGetActivePartitionNumber PartitionNumber is -1.(2)"},
    {"Kestova::SetPOneActive\tGetSystemVolumeIni bReturn is FALSE. (3)"},
    {"Kestova::SetPOneActive\tWritePrivateProfileString bReturn is FALSE.(4)"},
    {"Kestova::SetPOneActive\tSetActive bReturn is FALSE.(5)"},
    {"Kestova::SetPOneActive\tDeleteFile bReturn is FALSE.(6)"},
};

const std::vector<std::set<std::string>> setSystemActive = {
    {"Kestova::SetSystemActive\t\tEnd"},
    {"Kestova::SetSystemActive\t\tGetActivePartitionNumber return false. 1"},
    {"Kestova::SetSystemActive\t\tGetActivePartitionNumber PartitionNumber is -1. 2"},
    {"Kestova::SetSystemActive\t\tGetSystemVolumeIni return FALSE. 3"},
    {"Kestova::SetSystemActive  SetActive return FALSE. 4"},
    {"Kestova::SetSystemActive  DeleteFile return FALSE. 4"},
};

// Code 1 has no record of its own: the last is one of the layer below.
const std::vector<std::set<std::string>> setPTwoActive = {
    {"Kestova::SetPTwoActive\t\tEnd"},
    {},
    {"Kestova::SetPTwoActive\tGetSystemVolumeIni return FALSE.(2)"},
    {"Kestova::SetPTwoActive\tDeleteFile return FALSE.(3)"},
};

const Switch switches[] = {
    {"SetRcvprtActive", &Kestova::SetRcvprtActive, SystemActive, {1}, setRcvprtActive, {1, 2, 3, 4, 5}},
    {"SetRcvprtActiveWhereFlagsStay",
     &Kestova::SetRcvprtActive,
     FlagsStay,
     {1, 2},
     setRcvprtActive,
     {1, 2, 3, 4, 5}},
    {"SetRcvprtActiveHidingRecovery",
     &Kestova::SetRcvprtActive,
     VisibleRecovery,
     {1},
     setRcvprtActive,
     {1, 2, 3, 4, 5}},
    {"SetPOneActive", &Kestova::SetPOneActive, SystemActive, {1}, setPOneActive, {1, 2, 3, 4, 5}},
    {"SetSystemActive", &Kestova::SetSystemActive, RecoveryActive, {3}, setSystemActive, {1, 2, 3, 4}},
    {"SetPTwoActive", &Kestova::SetPTwoActive, RecoveryActive, {2}, setPTwoActive, {1}},
};

machine::Journal UndisturbedRun(const Switch& tested) {
    Application application(tested.facts());
    EXPECT_EQ((application.kestova.*tested.operation)(), 0);
    EXPECT_EQ(ActivePartitions(application.pc), tested.flagsWhenDone);
    return application.pc.journal;
}

class BootSwitchFaults : public testing::TestWithParam<Switch> {};

TEST_P(BootSwitchFaults, EveryCallFails_PcBootsAndCodeMatchesTheLastRecord) {
    const Switch& tested = GetParam();
    int visited = 0;
    WalkFaults(UndisturbedRun(tested), [&](const FaultRule& rule) {
        if (!callsOfTheStory.contains(rule.call)) return;
        ++visited;
        Application application(tested.facts());
        const Flags flagsBefore = ActivePartitions(application.pc);
        const std::optional<std::string> recordBefore = SystemVolumeIni(application.pc);
        application.pc.faults.Arm(rule);
        const int code = (application.kestova.*tested.operation)();
        EXPECT_GT(application.pc.faults.Fired(), 0);

        ASSERT_TRUE(code >= 0 && static_cast<size_t>(code) < tested.lastRecords.size()) << code;
        const std::set<std::string>& lastRecords = tested.lastRecords[static_cast<size_t>(code)];
        if (!lastRecords.empty()) {
            EXPECT_TRUE(lastRecords.contains(ToUtf8(application.pc.journal.Records().back().Text())));
        }
        EXPECT_FALSE(ActivePartitions(application.pc).empty());
        if (IsHonest(rule) && tested.unchangedCodes.contains(code)) {
            if (tested.operation != &Kestova::SetPTwoActive) {
                EXPECT_EQ(ActivePartitions(application.pc), flagsBefore);
            }
            EXPECT_EQ(SystemVolumeIni(application.pc), recordBefore);
        }
        ExpectOnlyKeptLeftovers(application.pc.ledger, rule.call);
    });
    EXPECT_GT(visited, 10);
}

INSTANTIATE_TEST_SUITE_P(Every, BootSwitchFaults, testing::ValuesIn(switches),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
