// Selecting a partition, and the label of the volume on it.
#include <string_view>

#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
const std::string method = "Kestova CVDSPartition::SelectPartition";
const std::string labelMethod = "Kestova CVDSPartition::GetVolumeLabel";
const std::string started = "4 " + method + "\\tStart\n";
const std::string ended = "4 " + method + "\\tEnd bRet = {int 1}\n";

// A factory PC with disk 0 selected.
class SelectedDisk : public VdsSession {
  public:
    explicit SelectedDisk(machine::Pc facts = machine::FactoryMbr()) : VdsSession(std::move(facts)) {
        EXPECT_TRUE((*this)->SelectDisk(0));
        pc.journal.Clear();
    }
};

bool NothingSelected(VdsSession& session) {
    const VDS_PARTITION_PROP zero = {};
    // Byte for byte, the union and the padding too.
    const auto bytes = [](const VDS_PARTITION_PROP& properties) {
        return std::string_view(reinterpret_cast<const char*>(&properties), sizeof(properties));
    };
    return bytes(session->PartitionProperties()) == bytes(zero);
}

// The label, or "(none)".
std::string Label(VdsSession& session, int capacity = 64) {
    WCHAR label[64] = {};
    return session->GetVolumeLabel(label, capacity) ? ToUtf8(label) : "(none)";
}

}  // namespace

TEST(SelectPartition, FactoryMbr_KeepsTheProperties) {
    SelectedDisk session;
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_EQ(session->PartitionProperties().ulPartitionNumber, 2u);
    EXPECT_EQ(session->PartitionProperties().PartitionStyle, VDS_PST_MBR);
    EXPECT_EQ(session->PartitionProperties().Mbr.partitionType, MBR_ID_NTFS);
    EXPECT_EQ(session->PartitionProperties().ullOffset, session.Partition(2).offset);
    EXPECT_EQ(session.Records(), started + ended);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SelectPartition, MissingNumber_IsTrueAndLeavesNothingSelected) {
    SelectedDisk session;
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_TRUE(session->SelectPartition(9));
    EXPECT_TRUE(NothingSelected(session));
    EXPECT_EQ(session.Records(), started + ended + started + ended);
    EXPECT_EQ(session.pc.journal.Calls("IVdsDisk::QueryExtents").size(), 1u);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SelectPartition, ExtentOfAnEarlierSelection_Stays) {
    SelectedDisk session;
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_TRUE(session->SelectPartition(9));
    EXPECT_EQ(Label(session), "Windows");
}

TEST(SelectPartition, ExtentsThatCannotBeRead_LeaveTheEarlierOne) {
    SelectedDisk session;
    EXPECT_TRUE(session->SelectPartition(2));
    session.Fail("IVdsDisk::QueryExtents", failure);
    EXPECT_TRUE(session->SelectPartition(3));
    EXPECT_EQ(session->PartitionProperties().ulPartitionNumber, 3u);
    EXPECT_EQ(Label(session), "Windows");
}

TEST(SelectPartition, NoExtentAtTheOffset_LeavesTheEarlierOne) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks.push_back(PlainDisk(1));
    SelectedDisk session(pc);
    EXPECT_TRUE(session->SelectPartition(2));
    // The extents are those of disk 1 from now on, the partitions those of the first internal disk.
    EXPECT_TRUE(session->SelectDisk(1));
    int number = -1;
    EXPECT_TRUE(session->GetActivePartitionNumber(number));
    EXPECT_TRUE(session->SelectPartition(3));
    EXPECT_EQ(session->PartitionProperties().ullOffset, session.Partition(3).offset);
    EXPECT_EQ(Label(session), "Windows");
}

TEST(SelectPartition, FirstOfTwoExtentsAtOneOffset_IsTaken) {
    for (const bool firstHasVolume : {true, false}) {
        SelectedDisk session;
        machine::Partition& first = session.Partition(2);
        machine::Partition& second = session.Partition(3);
        second.offset = first.offset;
        (firstHasVolume ? second : first).volume->extentType = VDS_DET_OEM;
        EXPECT_TRUE(session->SelectPartition(3));
        EXPECT_EQ(Label(session), firstHasVolume ? "Windows" : "(none)");
    }
}

TEST(SelectPartition, MissingService_IsAnErrorAndTrue) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    EXPECT_TRUE(partition.SelectPartition(1));
    EXPECT_EQ(Transcript(pc.journal), started + "1 " + method + "\\tNULL == m_pVdsService\n" + ended);
}

TEST(SelectPartition, NoSelectedDisk_IsAnErrorAndTrue) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->SelectPartition(1));
    EXPECT_EQ(session.Records(), started + "1 " + method + "\\tNULL == m_pVdsDisk\n" + ended);
    EXPECT_TRUE(NothingSelected(session));
}

TEST(SelectPartition, NoAdvancedDisk_IsAnErrorAndTrue) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::GetObject", failure, 2);
    EXPECT_FALSE(session->SelectDisk(0));
    session.pc.journal.Clear();
    EXPECT_TRUE(session->SelectPartition(1));
    EXPECT_EQ(session.Records(), started + "1 " + method + "\\tNULL == m_pVdsAdvancedDisk\n" + ended);
}

TEST(SelectPartition, FailuresOfTheService_AreErrorsAndTrue) {
    struct Case {
        const char* call;
        uint32_t code;
        std::string record;
        bool selected;
    };
    const Case cases[] = {
        {"IVdsService::IsServiceReady", 1, "\\tS_OK != hResult GetLastError = {ulong 5}", false},
        {"IVdsAdvancedDisk::QueryPartitions", failure,
         "\\tm_pVdsAdvancedDisk->QueryPartitions S_OK != hResult GetLastError = {ulong 5}", false},
        {"IVdsAdvancedDisk::QueryPartitions", 1,
         "\\tm_pVdsAdvancedDisk->QueryPartitions S_OK != hResult GetLastError = {ulong 5}", false},
        {"IVdsAdvancedDisk::QueryPartitions", 0,
         "\\tm_pVdsAdvancedDisk->QueryPartitions NULL == pVdsPartitionPropArray", false},
        {"IVdsDisk::QueryExtents", failure,
         "\\tm_pVdsDisk->QueryExtents S_OK != hResult GetLastError = {ulong 5}", true},
        {"IVdsDisk::QueryExtents", 0, " m_pVdsDisk->QueryExtents NULL == pVdsDiskExtent", true},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(expected.record);
        SelectedDisk session;
        session.Fail(expected.call, expected.code);
        session.pc.lastError = 5;
        EXPECT_TRUE(session->SelectPartition(2));
        EXPECT_EQ(session.Records(), started + "1 " + method + expected.record + "\n" + ended);
        EXPECT_EQ(NothingSelected(session), !expected.selected);
        EXPECT_EQ(Label(session), "(none)");  // no extent was read
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(GetVolumeLabel, SelectedPartition_ReturnsItsLabel) {
    SelectedDisk session;
    session->SelectPartition(3);
    session.pc.journal.Clear();
    EXPECT_EQ(Label(session), "Data");
    EXPECT_EQ(session.Records(),
              Lines({"4 " + labelMethod + "\\tStart", "4 " + labelMethod + "\\tEnd bRet = {int 1}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetVolumeLabel, Label_IsCutToTheCapacity) {
    SelectedDisk session;
    session->SelectPartition(2);
    EXPECT_EQ(Label(session, 4), "Win");
    EXPECT_EQ(Label(session, 1), "");
    WCHAR untouched = TEXT('x');
    EXPECT_TRUE(session->GetVolumeLabel(&untouched, 0));
    EXPECT_EQ(untouched, TEXT('x'));
}

TEST(GetVolumeLabel, VolumeWithoutALabel_HasAnEmptyOne) {
    SelectedDisk session;
    session.Partition(2).volume->label = std::string();
    session->SelectPartition(2);
    EXPECT_EQ(Label(session), "");
}

TEST(GetVolumeLabel, NullLabel_IsAnEmptyOne) {
    SelectedDisk session;
    session->SelectPartition(2);
    session.Fail("IVdsVolumeMF::GetFileSystemProperties", 0);  // success without properties
    WCHAR label[8] = {TEXT('x')};
    EXPECT_TRUE(session->GetVolumeLabel(label, 8));
    EXPECT_EQ(label[0], 0);
}

TEST(GetVolumeLabel, ExtentsWithoutAVolume_AreRefusedInSilence) {
    for (const int type : {VDS_DET_UNKNOWN, VDS_DET_FREE, VDS_DET_OEM, VDS_DET_UNUSABLE}) {
        SCOPED_TRACE(type);
        SelectedDisk session;
        session.Partition(2).volume->extentType = type;
        session->SelectPartition(2);
        session.pc.journal.Clear();
        EXPECT_EQ(Label(session), "(none)");
        EXPECT_EQ(session.Records(),
                  Lines({"4 " + labelMethod + "\\tStart", "4 " + labelMethod + "\\tEnd bRet = {int 0}"}));
        EXPECT_TRUE(session.pc.journal.Calls("IVdsService::GetObject").empty());
    }
}

TEST(GetVolumeLabel, NothingSelected_IsRefusedInSilence) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_EQ(Label(session), "(none)");
    EXPECT_EQ(session.Records(),
              Lines({"4 " + labelMethod + "\\tStart", "4 " + labelMethod + "\\tEnd bRet = {int 0}"}));
}

TEST(GetVolumeLabel, MissingService_IsAnError) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    WCHAR label[8] = {};
    EXPECT_FALSE(partition.GetVolumeLabel(label, 8));
    EXPECT_EQ(Transcript(pc.journal),
              Lines({"4 " + labelMethod + "\\tStart", "1 " + labelMethod + "\\tNULL == m_pVdsService",
                     "4 " + labelMethod + "\\tEnd bRet = {int 0}"}));
}

TEST(GetVolumeLabel, FailuresOfTheService_AreFalseInSilence) {
    struct Case {
        const char* call;
        uint32_t code;
    };
    for (const Case& fault :
         {Case{"IVdsService::IsServiceReady", 1}, Case{"IVdsService::GetObject", failure},
          Case{"IVdsService::GetObject", 0}, Case{"IUnknown::QueryInterface", failure},
          Case{"IUnknown::QueryInterface", 0}, Case{"IVdsVolumeMF::GetFileSystemProperties", failure},
          Case{"IVdsVolumeMF::GetFileSystemProperties", 1}}) {
        SCOPED_TRACE(std::string(fault.call) + "=" + std::to_string(fault.code));
        SelectedDisk session;
        session->SelectPartition(2);
        session.pc.journal.Clear();
        session.Fail(fault.call, fault.code);
        WCHAR label[8] = {TEXT('x')};
        EXPECT_FALSE(session->GetVolumeLabel(label, 8));
        EXPECT_EQ(label[0], TEXT('x'));
        EXPECT_EQ(session.Records(),
                  Lines({"4 " + labelMethod + "\\tStart", "4 " + labelMethod + "\\tEnd bRet = {int 0}"}));
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(GetVolumeLabel, SecondLabel_DropsTheVolumeOfTheFirst) {
    SelectedDisk session;
    session->SelectPartition(2);
    EXPECT_EQ(Label(session), "Windows");
    EXPECT_EQ(Label(session), "Windows");
    EXPECT_EQ(session.Left(1), (Holdings{{"IVdsVolumeMF", 1}}));
}

TEST(GetVolumeLabel, NoVolume_DropsTheVolumeOfTheLabelBefore) {
    SelectedDisk session;
    session->SelectPartition(2);
    EXPECT_EQ(Label(session), "Windows");
    session->SelectPartition(1);  // hidden: an extent without a volume
    EXPECT_EQ(Label(session), "(none)");
    EXPECT_EQ(session.Left(1), (Holdings{{"IVdsVolumeMF", 1}}));
}

TEST(GetGPTPartitionType, SelectedPartition_ReturnsItsType) {
    SelectedDisk session(machine::FactoryGpt());
    session->SelectPartition(3);
    session.pc.journal.Clear();
    GUID type = {};
    EXPECT_TRUE(session->GetGPTPartitionType(type));
    EXPECT_TRUE(type == PARTITION_SYSTEM_GUID);
    EXPECT_EQ(session.Records(), Lines({"4 Kestova CVDSPartition::GetGPTPartitionType Start",
                                        "4 Kestova CVDSPartition::GetGPTPartitionType end. bRet = {int 1}"}));
}

TEST(GetGPTPartitionType, MbrPartition_HasNone) {
    SelectedDisk session;
    session->SelectPartition(2);
    session.pc.journal.Clear();
    GUID type = ORVOBOOT_GUID;
    EXPECT_FALSE(session->GetGPTPartitionType(type));
    EXPECT_TRUE(type == ORVOBOOT_GUID);
    EXPECT_EQ(session.Records(), Lines({"4 Kestova CVDSPartition::GetGPTPartitionType Start",
                                        "4 Kestova CVDSPartition::GetGPTPartitionType end. bRet = {int 0}"}));
}

TEST(GetVolumeLabel, ExtentsThatCanHaveAVolume_ReturnItsLabel) {
    for (const int type : {VDS_DET_DATA, VDS_DET_ESP, VDS_DET_MSR, VDS_DET_LDM}) {
        SCOPED_TRACE(type);
        SelectedDisk session;
        session.Partition(2).volume->extentType = type;
        session->SelectPartition(2);
        EXPECT_EQ(Label(session), "Windows");
    }
}

TEST(SelectPartition, UnlistedPartitions_AreNotLookedForAmongTheExtents) {
    SelectedDisk session;
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_TRUE(session.pc.journal.Calls("IVdsDisk::QueryExtents").empty());
}

TEST(SelectDisk, SelectedPartition_StaysSelected) {
    SelectedDisk session;
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_TRUE(session->SelectDisk(0));
    EXPECT_EQ(session->PartitionProperties().ulPartitionNumber, 2u);
    EXPECT_EQ(Label(session), "Windows");
}

TEST(PartitionObject, DiskPartitionAndVolumeSelected_Destroy_ReleasesDiskAccessServiceDiskAndVolume) {
    SelectedDisk session;
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_NE(Label(session), "(none)");
    session.pc.journal.Clear();

    EXPECT_EQ(session.Left(1), Holdings());

    std::vector<std::string> released;
    for (const std::vector<std::string>& release : session.pc.journal.Unshown("IUnknown::Release"))
        released.push_back(release.front());
    EXPECT_EQ(released,
              (std::vector<std::string>{"IVdsAdvancedDisk", "IVdsService", "IVdsDisk", "IVdsVolumeMF"}));
}
