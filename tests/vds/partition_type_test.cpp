// Types of partitions: reading and changing them, and what follows from them.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
const std::string method = "Kestova CVDSPartition::GetPartitionType";
const std::string changeMethod = "Kestova CVDSPartition::ChangePartitionType";
const std::string started = "4 " + method + "\\t\\tStart\n";
const std::string changeStarted = "4 " + changeMethod + " Start\n";

// Answers of the MBR form: result and ID.
struct MbrType {
    BOOL result;
    int id;
    bool operator==(const MbrType&) const = default;
};

MbrType ReadMbrType(VdsSession& session, int number) {
    BYTE id = 1;
    const BOOL result = session->GetPartitionType(number, id);
    return {result, id};
}

bool NeedsHiding(const machine::Pc& pc, int number) {
    VdsSession session(pc);
    return session->IsNeedHidePartition(0, number);
}

machine::Pc WithLabel(const std::string& label) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[1].volume->label = label;
    return pc;
}

machine::Pc WithGptType(const GUID& type) {
    machine::Pc pc = machine::FactoryGpt();
    pc.disks[0].partitions[1].gptType = type;
    return pc;
}

}  // namespace

TEST(GetGptTypeByNumber, EveryPartition_ReturnsItsType) {
    const GUID types[] = {ORVOBOOT_GUID,
                          PARTITION_MSFT_RECOVERY_GUID,
                          PARTITION_SYSTEM_GUID,
                          PARTITION_MSFT_RESERVED_GUID,
                          PARTITION_BASIC_DATA_GUID,
                          PARTITION_MSFT_RECOVERY_GUID};
    for (int number = 1; number <= 6; ++number) {
        VdsSession session(machine::FactoryGpt());
        GUID type = {};
        EXPECT_TRUE(session->GetPartitionType(number, type));
        EXPECT_TRUE(type == types[number - 1]) << number;
        EXPECT_EQ(session.Records(), started + queryPartitionsRecords + "4 " + method + " End\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(GetGptTypeByNumber, MissingPartition_IsTraced) {
    VdsSession session(machine::FactoryGpt());
    GUID type = ORVOBOOT_GUID;
    EXPECT_FALSE(session->GetPartitionType(7, type));
    EXPECT_TRUE(type == ORVOBOOT_GUID);
    EXPECT_EQ(session.Records(),
              started + queryPartitionsRecords + "4 " + method + " does not find the partition\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetGptTypeByNumber, MbrPartition_IsTraced) {
    VdsSession session(machine::FactoryMbr());
    GUID type = ORVOBOOT_GUID;
    EXPECT_FALSE(session->GetPartitionType(1, type));
    EXPECT_TRUE(type == ORVOBOOT_GUID);
    EXPECT_EQ(session.Records(), started + queryPartitionsRecords + "4 " + method +
                                     " VDS_PST_GPT != PartitionProp.PartitionStyle\n");
}

TEST(GetGptTypeByNumber, WhatCannotBegin_IsTraced) {
    GUID type = {};
    {
        machine::EmulatedPc pc(machine::FactoryGpt());
        CVDSPartition partition;
        EXPECT_FALSE(partition.GetPartitionType(1, type));
        EXPECT_EQ(Transcript(pc.journal), started + "4 " + method + " NULL == m_pVdsService\n");
    }
    {
        VdsSession session(machine::FactoryGpt());
        session.Fail("IVdsService::IsServiceReady", 1);
        EXPECT_FALSE(session->GetPartitionType(1, type));
        EXPECT_EQ(session.Records(), started + "4 " + method + " IsServiceReady S_OK != hResult\n");
    }
    VdsSession session(machine::FactoryGpt());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_FALSE(session->GetPartitionType(1, type));
    EXPECT_EQ(session.Records(),
              started + refusedPartitionsRecords + "4 " + method + " QueryPartitions return False\n");
}

TEST(GetMbrTypeByNumber, EveryPartition_ReturnsItsId) {
    const int ids[] = {MBR_ID_HIDDEN_RECOVERY, MBR_ID_NTFS, MBR_ID_NTFS, MBR_ID_BIOS_HIBERNATION};
    for (int number = 1; number <= 4; ++number) {
        VdsSession session(machine::FactoryMbr());
        EXPECT_EQ(ReadMbrType(session, number), (MbrType{TRUE, ids[number - 1]}));
        EXPECT_EQ(session.Records(), queryPartitionsRecords);
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(GetMbrTypeByNumber, UnreadablePartition_FailsInSilence) {
    const MbrType none{FALSE, 0xFF};
    {
        VdsSession session(machine::FactoryGpt());
        EXPECT_EQ(ReadMbrType(session, 1), none);
        EXPECT_EQ(session.Records(), queryPartitionsRecords);
    }
    {
        VdsSession session(machine::FactoryMbr());
        EXPECT_EQ(ReadMbrType(session, 5), none);
        EXPECT_EQ(session.Records(), queryPartitionsRecords);
        session.pc.journal.Clear();
        session.Fail("IVdsService::IsServiceReady", 1);
        EXPECT_EQ(ReadMbrType(session, 1), none);
        EXPECT_EQ(session.Records(), "");
    }
    {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
        EXPECT_EQ(ReadMbrType(session, 1), none);
        EXPECT_EQ(session.Records(), refusedPartitionsRecords);
    }
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    BYTE id = 1;
    EXPECT_FALSE(partition.GetPartitionType(1, id));
    EXPECT_EQ(id, 0xFF);
}

TEST(IsBIOSHibernationPartition, OnlyTheHibernationId_IsOne) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->IsBIOSHibernationPartition(0, 4));
    ExpectTranscript(session.pc.journal);
    EXPECT_FALSE(session->IsBIOSHibernationPartition(0, 2));
    EXPECT_FALSE(session->IsBIOSHibernationPartition(0, 9));
    EXPECT_FALSE(session->IsBIOSHibernationPartition(1, 4));
}

TEST(IsBIOSHibernationPartition, GptPartition_IsNone) {
    GUID type = {};
    type.Data1 = MBR_ID_BIOS_HIBERNATION;  // the byte at the place of the ID
    VdsSession session(WithGptType(type));
    EXPECT_FALSE(session->IsBIOSHibernationPartition(0, 2));
}

TEST(IsNeedHidePartition, GptTypesOfTheMakerAndTheSystem_AreHidden) {
    for (const GUID& type : {ORVOBOOT_GUID, PARTITION_SYSTEM_GUID, PARTITION_MSFT_RESERVED_GUID}) {
        EXPECT_TRUE(NeedsHiding(WithGptType(type), 2));
    }
    for (const GUID& type :
         {PARTITION_BASIC_DATA_GUID, PARTITION_MSFT_RECOVERY_GUID, EXPCACHE_PARTITION_GUID}) {
        EXPECT_FALSE(NeedsHiding(WithGptType(type), 2));
    }
}

TEST(IsNeedHidePartition, MbrVolume_IsHiddenByItsLabelInAnyCase) {
    EXPECT_TRUE(NeedsHiding(WithLabel("System Reserved"), 2));
    EXPECT_TRUE(NeedsHiding(WithLabel("SYSTEM RESERVED"), 2));
    EXPECT_FALSE(NeedsHiding(WithLabel("System Reserved 2"), 2));
    EXPECT_FALSE(NeedsHiding(WithLabel("Windows"), 2));
    EXPECT_FALSE(NeedsHiding(WithLabel(""), 2));
}

TEST(IsNeedHidePartition, MbrPartitionWithoutAVolume_IsNotHidden) {
    EXPECT_FALSE(NeedsHiding(machine::FactoryMbr(), 1));
    EXPECT_FALSE(NeedsHiding(machine::FactoryMbr(), 4));
}

TEST(IsNeedHidePartition, MissingPartition_IsHidden) {
    EXPECT_TRUE(NeedsHiding(machine::FactoryMbr(), 9));
}

TEST(IsNeedHidePartition, MissingDisk_IsFalse) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->IsNeedHidePartition(3, 1));
}

TEST(IsNeedHidePartition, FactoryMbr_WritesOnlyTheRecordsOfItsSteps) {
    VdsSession session(WithLabel("System Reserved"));
    EXPECT_TRUE(session->IsNeedHidePartition(0, 2));
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(ChangePartitionType, NewId_IsSetByForce) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->ChangePartitionType(2, MBR_ID_HIDDEN_RECOVERY));
    EXPECT_EQ(session.Partition(2).mbrType, MBR_ID_HIDDEN_RECOVERY);
    const auto calls = session.pc.journal.Calls("IVdsAdvancedDisk2::ChangePartitionType");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].arguments.at(2), "1");  // by force
    EXPECT_EQ(session.Records(), changeStarted + queryPartitionsRecords + "4 " + changeMethod + " End\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(ChangePartitionType, SameId_IsTrueWithoutACall) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->ChangePartitionType(1, MBR_ID_HIDDEN_RECOVERY));
    EXPECT_EQ(session.Records(), changeStarted + queryPartitionsRecords);
    EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk2::ChangePartitionType").empty());
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(ChangePartitionType, MissingPartition_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->ChangePartitionType(9, MBR_ID_NTFS));
    EXPECT_EQ(session.Records(),
              changeStarted + queryPartitionsRecords + "1 " + changeMethod + " FALSE == bFind\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(ChangePartitionType, GptPartition_IsAnError) {
    VdsSession session(machine::FactoryGpt());
    EXPECT_FALSE(session->ChangePartitionType(2, MBR_ID_NTFS));
    EXPECT_EQ(session.Records(),
              changeStarted + queryPartitionsRecords + "1 " + changeMethod + " partition style is not MBR\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(ChangePartitionType, WhatCannotBegin_IsAnError) {
    {
        machine::EmulatedPc pc(machine::FactoryMbr());
        CVDSPartition partition;
        EXPECT_FALSE(partition.ChangePartitionType(2, MBR_ID_CACHE));
        EXPECT_EQ(Transcript(pc.journal), changeStarted + "1 " + changeMethod + " m_pVdsService is NULL\n");
    }
    {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsService::IsServiceReady", 1);
        EXPECT_FALSE(session->ChangePartitionType(2, MBR_ID_CACHE));
        EXPECT_EQ(session.Records(), changeStarted + "1 " + changeMethod +
                                         " IsServiceReady S_OK != hResult. hResult = {long 1}\n");
    }
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_FALSE(session->ChangePartitionType(2, MBR_ID_CACHE));
    EXPECT_EQ(session.Records(), changeStarted + refusedPartitionsRecords + "1 " + changeMethod +
                                     " QueryPartitions FALSE == bReturn\n");
}

TEST(ChangePartitionType, DiskThatCannotBeHad_IsAnError) {
    struct Case {
        const char* call;
        uint32_t code;
        uint32_t nth;
        std::string told;
    };
    for (const Case& fault : {Case{"IVdsService::GetObject", failure, 2, "-2147467259"},
                              Case{"IUnknown::QueryInterface", failure, 6, "-2147467259"},
                              Case{"IUnknown::QueryInterface", 0, 6, "-2147024809"}}) {
        SCOPED_TRACE(fault.call);
        VdsSession session(machine::FactoryMbr());
        session.Fail(fault.call, fault.code, fault.nth);
        EXPECT_FALSE(session->ChangePartitionType(2, MBR_ID_CACHE));
        EXPECT_EQ(session.Partition(2).mbrType, MBR_ID_NTFS);
        EXPECT_EQ(session.Records(), changeStarted + queryPartitionsRecords + "1 " + changeMethod +
                                         " CVDSEx::GetVdsAdvancedDisk2 S_OK != hResult. hResult = {long " +
                                         fault.told + "}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(ChangePartitionType, RefusedChange_IsAnErrorWhetherItWasMadeOrNot) {
    for (const bool afterEffect : {false, true}) {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsAdvancedDisk2::ChangePartitionType", failure, 0, afterEffect);
        EXPECT_FALSE(session->ChangePartitionType(2, MBR_ID_CACHE));
        EXPECT_EQ(session.Partition(2).mbrType, afterEffect ? MBR_ID_CACHE : MBR_ID_NTFS);
        EXPECT_EQ(session.Records(), changeStarted + queryPartitionsRecords + "1 " + changeMethod +
                                         " ChangePartitionType S_OK != hResult. hResult = "
                                         "{long -2147467259} GetLastError = {ulong 2}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}
