// The active flag of the MBR partitions of the first internal disk.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
const std::string setMethod = "Kestova CVDSPartition::SetActive";
const std::string clearMethod = "Kestova CVDSPartition::ClearActive";
const std::string getMethod = "Kestova CVDSPartition::GetActivePartitionNumber";
const std::string clearStarted = "4 " + clearMethod + "\\t\\tStart\n";
const std::string getStarted = "4 " + getMethod + "\\t\\tStart\n";

using Flags = std::vector<int>;

// The indicators of the partitions in order.
Flags FlagsOf(VdsSession& session) {
    Flags flags;
    for (const machine::Partition& partition : session.Disk().partitions) {
        flags.push_back(partition.bootIndicator);
    }
    return flags;
}

machine::Pc WithFlags(const Flags& flags) {
    machine::Pc pc = machine::FactoryMbr();
    for (size_t index = 0; index < flags.size(); ++index) {
        pc.disks[0].partitions[index].bootIndicator = static_cast<uint8_t>(flags[index]);
    }
    return pc;
}

}  // namespace

TEST(SetActive, FactoryMbr_SetsOneFlagAndTouchesNoOther) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->SetActive(1));
    EXPECT_EQ(FlagsOf(session), (Flags{1, 1, 0, 0}));
    EXPECT_EQ(session.Records(), queryPartitionsRecords);
    EXPECT_EQ(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").size(), 1u);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetActive, Platform_MayClearTheOtherFlags) {
    machine::Pc pc = machine::FactoryMbr();
    pc.switches.activeFlagIsExclusive = true;
    VdsSession session(pc);
    EXPECT_TRUE(session->SetActive(1));
    EXPECT_EQ(FlagsOf(session), (Flags{1, 0, 0, 0}));
}

TEST(SetActive, FlagSetAlready_IsSetAgain) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->SetActive(2));
    EXPECT_EQ(FlagsOf(session), (Flags{0, 1, 0, 0}));
    EXPECT_EQ(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").size(), 1u);
}

TEST(SetActive, MissingPartition_IsFalseWithoutARecord) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->SetActive(9));
    EXPECT_EQ(FlagsOf(session), (Flags{0, 1, 0, 0}));
    EXPECT_EQ(session.Records(), queryPartitionsRecords);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetActive, GptPartition_IsFalseWithoutARecord) {
    VdsSession session(machine::FactoryGpt());
    EXPECT_FALSE(session->SetActive(1));
    EXPECT_EQ(session.Records(), queryPartitionsRecords);
    EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").empty());
}

TEST(SetActive, WhatCannotBegin_IsAnError) {
    {
        machine::EmulatedPc pc(machine::FactoryMbr());
        CVDSPartition partition;
        EXPECT_FALSE(partition.SetActive(1));
        EXPECT_EQ(Transcript(pc.journal), "1 " + setMethod + " m_pVdsService is NULL.\n");
    }
    {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsService::IsServiceReady", 1);
        session.pc.lastError = 5;
        EXPECT_FALSE(session->SetActive(1));
        EXPECT_EQ(session.Records(),
                  "1 " + setMethod + " IsServiceReady error. hResult = {long 1} GetLastError = {ulong 5}\n");
    }
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_FALSE(session->SetActive(1));
    EXPECT_EQ(session.Records(),
              refusedPartitionsRecords + "1 " + setMethod + " QueryPartitions error. FALSE == bReturn \n");
}

TEST(SetActive, RefusedChange_IsAnErrorWhetherItWasMadeOrNot) {
    for (const bool afterEffect : {false, true}) {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsAdvancedDisk::ChangeAttributes", failure, 0, afterEffect);
        EXPECT_FALSE(session->SetActive(1));
        EXPECT_EQ(FlagsOf(session), (afterEffect ? Flags{1, 1, 0, 0} : Flags{0, 1, 0, 0}));
        EXPECT_EQ(session.Records(), queryPartitionsRecords + "1 " + setMethod +
                                         " ChangeAttributes error. hResult = {long -2147467259}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(SetActive, EveryRecordOfTheNumber_IsChanged) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[2].number = 1;
    VdsSession session(pc);
    EXPECT_TRUE(session->SetActive(1));
    EXPECT_EQ(FlagsOf(session), (Flags{1, 1, 1, 0}));
}

TEST(ClearActive, TwoActivePartitions_ClearsEveryFlag) {
    VdsSession session(WithFlags({1, 1, 0, 1}));
    EXPECT_TRUE(session->ClearActive());
    EXPECT_EQ(FlagsOf(session), (Flags{0, 0, 0, 0}));
    EXPECT_EQ(session.Records(), clearStarted + queryPartitionsRecords);
    EXPECT_EQ(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").size(), 3u);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(ClearActive, EveryFlagButZero_IsActive) {
    VdsSession session(WithFlags({0x80, 1, 0, 0}));
    EXPECT_TRUE(session->ClearActive());
    EXPECT_EQ(FlagsOf(session), (Flags{0, 0, 0, 0}));
    EXPECT_EQ(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").size(), 2u);
}

TEST(ClearActive, NothingActive_IsTrue) {
    VdsSession session(WithFlags({0, 0, 0, 0}));
    EXPECT_TRUE(session->ClearActive());
    EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").empty());
}

TEST(ClearActive, NoPartitionsBehindASuccess_AreTrue) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", 0);
    EXPECT_TRUE(session->ClearActive());
    EXPECT_EQ(session.Records(), clearStarted + queryPartitionsRecords);
}

TEST(ClearActive, GptDisk_IsTrueAndUntouched) {
    VdsSession session(machine::FactoryGpt());
    EXPECT_TRUE(session->ClearActive());
    EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").empty());
}

TEST(ClearActive, FailureHalfWay_LeavesTheLaterFlags) {
    for (const bool afterEffect : {false, true}) {
        VdsSession session(WithFlags({1, 1, 1, 0}));
        session.Fail("IVdsAdvancedDisk::ChangeAttributes", failure, 2, afterEffect);
        EXPECT_FALSE(session->ClearActive());
        EXPECT_EQ(FlagsOf(session), (afterEffect ? Flags{0, 0, 1, 0} : Flags{0, 1, 1, 0}));
        EXPECT_EQ(session.Records(), clearStarted + queryPartitionsRecords + "1 " + clearMethod +
                                         "\\tChangeAttributes error.hResult = {long -2147467259}"
                                         " GetLastError: {ulong 2}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(ClearActive, WhatCannotBegin_IsAnError) {
    {
        machine::EmulatedPc pc(machine::FactoryMbr());
        CVDSPartition partition;
        EXPECT_FALSE(partition.ClearActive());
        EXPECT_EQ(Transcript(pc.journal), clearStarted + "1 " + clearMethod + "\\tm_pVdsService is NULL.\n");
    }
    {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsService::IsServiceReady", 1);
        EXPECT_FALSE(session->ClearActive());
        EXPECT_EQ(session.Records(),
                  clearStarted + "1 " + clearMethod + "\\tIsServiceReady error. hResult = {long 1}\n");
    }
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_FALSE(session->ClearActive());
    EXPECT_EQ(session.Records(), clearStarted + refusedPartitionsRecords + "1 " + clearMethod +
                                     "\\tQueryPartitions return false.\n");
}

TEST(GetActivePartitionNumber, AnyFlags_ReturnsTheFirstActivePartition) {
    struct Case {
        Flags flags;
        BOOL result;
        int number;
    };
    const Case cases[] = {
        {{0, 1, 0, 0}, TRUE, 2},
        {{0, 0, 1, 1}, TRUE, 3},
        {{0, 0, 0, 0}, FALSE, -1},
        {{0x80, 0, 0, 0}, FALSE, -1},  // only 1 counts
    };
    for (const Case& expected : cases) {
        VdsSession session(WithFlags(expected.flags));
        int number = 7;
        EXPECT_EQ(session->GetActivePartitionNumber(number), expected.result);
        EXPECT_EQ(number, expected.number);
        EXPECT_EQ(session.Records(), getStarted + queryPartitionsRecords + "4 " + getMethod +
                                         "\\t\\tEnd. bFind = {int " + std::to_string(expected.result) +
                                         "}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(GetActivePartitionNumber, GptDisk_HasNone) {
    VdsSession session(machine::FactoryGpt());
    int number = 7;
    EXPECT_FALSE(session->GetActivePartitionNumber(number));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(session.Records(),
              getStarted + queryPartitionsRecords + "4 " + getMethod + "\\t\\tEnd. bFind = {int 0}\n");
}

TEST(GetActivePartitionNumber, WhatCannotBegin_IsAnErrorWithoutAnEnd) {
    int number = 7;
    {
        machine::EmulatedPc pc(machine::FactoryMbr());
        CVDSPartition partition;
        EXPECT_FALSE(partition.GetActivePartitionNumber(number));
        EXPECT_EQ(number, -1);
        EXPECT_EQ(Transcript(pc.journal), getStarted + "1 " + getMethod + "\\tm_pVdsService is NULL.\n");
    }
    {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsService::IsServiceReady", 1);
        EXPECT_FALSE(session->GetActivePartitionNumber(number));
        EXPECT_EQ(session.Records(),
                  getStarted + "1 " + getMethod + "\\tIsServiceReady error. hResult = {long 1}\n");
    }
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_FALSE(session->GetActivePartitionNumber(number));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(session.Records(), getStarted + refusedPartitionsRecords + "1 " + getMethod +
                                     "\\tQueryPartitions return false.\n");
}
