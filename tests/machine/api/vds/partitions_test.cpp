// Partition records and drive letters.
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/machine/api/com/com_client.h"

using machine::Switches;

namespace {

constexpr uint64_t MiB = 1024 * 1024;

HRESULT GetLetter(DiskClient& client, uint32_t partition, WCHAR& letter) {
    return client.advanced->GetDriveLetter(client.Partition(partition).offset, &letter);
}

HRESULT Assign(DiskClient& client, uint32_t partition, char letter) {
    return client.advanced->AssignDriveLetter(client.Partition(partition).offset, static_cast<WCHAR>(letter));
}

HRESULT Delete(DiskClient& client, uint32_t partition, char letter) {
    return client.advanced->DeleteDriveLetter(client.Partition(partition).offset, static_cast<WCHAR>(letter));
}

}  // namespace

TEST(QueryPartitions, MbrDisk_ReturnsPartitionsInThePcsOrder) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.disks[0].partitions[1].bootIndicator = 2;
    std::swap(client.pc.facts.disks[0].partitions[0], client.pc.facts.disks[0].partitions[1]);
    const std::vector<VDS_PARTITION_PROP> partitions = PartitionsOf(client.advanced.Get());
    ASSERT_EQ(partitions.size(), 4u);
    EXPECT_EQ(partitions[0].PartitionStyle, VDS_PST_MBR);
    EXPECT_EQ(partitions[0].ulPartitionNumber, 2u);
    EXPECT_EQ(partitions[0].Mbr.partitionType, MBR_ID_NTFS);
    EXPECT_EQ(partitions[0].Mbr.bootIndicator, 2) << "as the PC has it";
    EXPECT_TRUE(partitions[0].Mbr.recognizedPartition);
    EXPECT_EQ(partitions[1].ulPartitionNumber, 1u);
    EXPECT_EQ(partitions[1].ullOffset, MiB);
    EXPECT_EQ(partitions[1].Mbr.partitionType, MBR_ID_HIDDEN_RECOVERY);
    EXPECT_EQ(partitions[1].Mbr.hiddenSectors, 2048u);
    EXPECT_FALSE(partitions[1].Mbr.recognizedPartition);
}

TEST(QueryPartitions, GptDisk_ReturnsItsPartitions) {
    DiskClient client(machine::FactoryGpt());
    client.Partition(2).attributes = 0x8000000000000001;
    client.Partition(2).name = std::string(40, 'x');
    const std::vector<VDS_PARTITION_PROP> partitions = PartitionsOf(client.advanced.Get());
    ASSERT_EQ(partitions.size(), 6u);
    EXPECT_EQ(partitions[1].PartitionStyle, VDS_PST_GPT);
    EXPECT_TRUE(partitions[1].Gpt.partitionType == PARTITION_MSFT_RECOVERY_GUID);
    EXPECT_EQ(GuidText(partitions[1].Gpt.partitionId), "6f1f3a52-0000-4000-8000-000000000002");
    EXPECT_EQ(partitions[1].Gpt.attributes, 0x8000000000000001u);
    EXPECT_EQ(partitions[1].Gpt.name[35], TEXT('x')) << "cut at 36 characters";
    EXPECT_EQ(ToUtf8(partitions[0].Gpt.name), "Maker boot");
}

TEST(QueryPartitions, MbrDisk_CallerFreesTheArray) {
    DiskClient client(machine::FactoryMbr());
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    ASSERT_EQ(client.advanced->QueryPartitions(&partitions, &count), S_OK);
    EXPECT_EQ(client.OnLoan()["VDS_PARTITION_PROP array"], 1);
    CoTaskMemFree(partitions);
    EXPECT_EQ(client.OnLoan().count("VDS_PARTITION_PROP array"), 0u);
    EXPECT_EQ(client.advanced->QueryPartitions(nullptr, &count), E_POINTER);
    EXPECT_EQ(client.advanced->QueryPartitions(&partitions, nullptr), E_POINTER);
}

TEST(QueryPartitions, EmptyTable_ReturnsSFalseAndNoArray) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.disks[0].partitions.clear();
    VDS_PARTITION_PROP* partitions = reinterpret_cast<VDS_PARTITION_PROP*>(1);
    LONG count = 9;
    EXPECT_EQ(client.advanced->QueryPartitions(&partitions, &count), S_FALSE);
    EXPECT_EQ(partitions, nullptr);
    EXPECT_EQ(count, 0);
}

TEST(QueryPartitions, TableWithoutPartitions_LendsAnEmptyArrayIfTheSwitchSaysSo) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.disks[0].partitions.clear();
    client.pc.facts.switches.emptyTableLendsArray = true;
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 9;
    EXPECT_EQ(client.advanced->QueryPartitions(&partitions, &count), S_FALSE);
    EXPECT_NE(partitions, nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(client.OnLoan().at("VDS_PARTITION_PROP array"), 1);
    CoTaskMemFree(partitions);
}

TEST(QueryPartitions, NoTable_FailsWithNotInitialized) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.disks[0].style = machine::PartitionStyle::Unknown;
    EXPECT_EQ(PartitionsOf(client.advanced.Get()).at(0).PartitionStyle, VDS_PST_UNKNOWN)
        << "a table that the service cannot name";
    client.pc.facts.disks[0].partitions.clear();
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    EXPECT_EQ(client.advanced->QueryPartitions(&partitions, &count), VDS_E_DISK_NOT_INITIALIZED);
}

TEST(GetDriveLetter, SeveralLetters_ReturnsTheFirst) {
    DiskClient client(machine::FactoryMbr());
    client.Partition(1).volume->letters = "RQ";
    WCHAR letter = TEXT('?');
    EXPECT_EQ(GetLetter(client, 1, letter), S_OK);
    EXPECT_EQ(letter, TEXT('R'));
    EXPECT_EQ(client.advanced->GetDriveLetter(MiB, nullptr), E_POINTER);
}

TEST(GetDriveLetter, NoLetter_FollowsTheSwitch) {
    DiskClient client(machine::FactoryMbr());
    WCHAR letter = TEXT('?');
    EXPECT_EQ(GetLetter(client, 1, letter), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(letter, TEXT('?')) << "untouched";
    EXPECT_EQ(GetLetter(client, 4, letter), VDS_E_OBJECT_NOT_FOUND) << "no volume at all";
    client.pc.facts.switches.letterless = Switches::Letterless::Nul;
    EXPECT_EQ(GetLetter(client, 1, letter), S_OK);
    EXPECT_EQ(letter, TEXT('\0'));
    client.pc.facts.switches.letterless = Switches::Letterless::Zero;
    EXPECT_EQ(GetLetter(client, 4, letter), S_OK);
    EXPECT_EQ(letter, TEXT('0'));
}

TEST(LetterCalls, Volume_FollowTheSwitch) {
    DiskClient client(machine::FactoryMbr());
    WCHAR letter = TEXT('?');
    EXPECT_EQ(GetLetter(client, 2, letter), VDS_E_INVALID_OPERATION);
    EXPECT_EQ(letter, TEXT('?'));
    EXPECT_EQ(Assign(client, 2, 'W'), VDS_E_INVALID_OPERATION);
    EXPECT_EQ(Delete(client, 2, 'C'), VDS_E_INVALID_OPERATION);
    EXPECT_EQ(client.Partition(2).volume->letters, "C");
    client.pc.facts.switches.volumesRefuseLetterCalls = false;
    EXPECT_EQ(GetLetter(client, 2, letter), S_OK);
    EXPECT_EQ(letter, TEXT('C'));
    EXPECT_EQ(Delete(client, 2, 'C'), S_OK);
    EXPECT_EQ(Assign(client, 2, 'W'), S_OK);
    EXPECT_EQ(client.Partition(2).volume->letters, "W");
}

TEST(LetterCalls, GptPartition_FollowItsType) {
    DiskClient client(machine::FactoryGpt());
    EXPECT_EQ(Assign(client, 1, 'R'), S_OK) << "unknown";
    EXPECT_EQ(Assign(client, 2, 'S'), S_OK) << "recovery";
    EXPECT_EQ(Assign(client, 3, 'T'), S_OK) << "EFI system";
    EXPECT_EQ(Assign(client, 4, 'U'), VDS_E_INVALID_OPERATION) << "reserved";
    EXPECT_EQ(Assign(client, 5, 'V'), VDS_E_INVALID_OPERATION) << "basic data";
}

TEST(LetterCalls, OffsetWithoutPartition_FailWithNotFound) {
    DiskClient client(machine::FactoryMbr());
    WCHAR letter = TEXT('?');
    EXPECT_EQ(client.advanced->GetDriveLetter(7, &letter), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(client.advanced->AssignDriveLetter(7, TEXT('R')), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(client.advanced->DeleteDriveLetter(7, TEXT('R')), VDS_E_OBJECT_NOT_FOUND);
}

TEST(AssignDriveLetter, EitherCase_AddsTheLetterAndKeepsOthers) {
    DiskClient client(machine::FactoryMbr());
    EXPECT_EQ(Assign(client, 1, 'r'), S_OK);
    EXPECT_EQ(Assign(client, 1, 'Q'), S_OK);
    EXPECT_EQ(Assign(client, 1, 'R'), S_OK) << "its own already";
    EXPECT_EQ(client.Partition(1).volume->letters, "RQ");
}

TEST(AssignDriveLetter, LetterInUseOrInvalid_Fails) {
    DiskClient client(machine::FactoryMbr());
    machine::Volume disc;
    disc.letters = "E";
    client.pc.facts.volumes = {disc};
    EXPECT_EQ(Assign(client, 1, 'C'), VDS_E_DRIVE_LETTER_NOT_FREE);
    EXPECT_EQ(Assign(client, 1, 'e'), VDS_E_DRIVE_LETTER_NOT_FREE);
    for (const char letter : {'0', '@', '[', '`', '{'})
        EXPECT_EQ(Assign(client, 1, letter), VDS_E_INVALID_DRIVE_LETTER) << letter;
    EXPECT_EQ(client.Partition(1).volume->letters, "");
}

TEST(AssignDriveLetter, EmptyPartition_BecomesAnUnreadableVolume) {
    DiskClient client(machine::FactoryMbr());
    EXPECT_EQ(Assign(client, 4, 'H'), S_OK);
    ASSERT_TRUE(client.Partition(4).volume);
    EXPECT_EQ(client.Partition(4).volume->letters, "H");
    EXPECT_EQ(client.Partition(4).volume->fileSystem, "RAW");
}

TEST(AssignDriveLetter, FaultBeforeOrAfterEffect_ChangesNothingOrTheLetter) {
    DiskClient client(machine::FactoryMbr());
    client.pc.faults.Arm({"IVdsAdvancedDisk::AssignDriveLetter", 1, false, false, 0x80004005});
    client.pc.faults.Arm({"IVdsAdvancedDisk::AssignDriveLetter", 2, false, true, 0x80004005});
    EXPECT_EQ(Assign(client, 1, 'R'), E_FAIL);
    EXPECT_EQ(client.Partition(1).volume->letters, "");
    EXPECT_EQ(Assign(client, 1, 'R'), E_FAIL);
    EXPECT_EQ(client.Partition(1).volume->letters, "R");
}

TEST(DeleteDriveLetter, SeveralLetters_RemovesOnlyThatLetter) {
    DiskClient client(machine::FactoryMbr());
    client.Partition(1).volume->letters = "RQ";
    EXPECT_EQ(Delete(client, 1, 'r'), S_OK);
    EXPECT_EQ(client.Partition(1).volume->letters, "Q");
    EXPECT_EQ(Delete(client, 1, 'R'), VDS_E_INVALID_DRIVE_LETTER) << "free";
    EXPECT_EQ(Delete(client, 1, 'C'), VDS_E_INVALID_DRIVE_LETTER) << "another's";
    EXPECT_EQ(Delete(client, 1, '0'), VDS_E_INVALID_DRIVE_LETTER) << "no letter";
    EXPECT_EQ(Delete(client, 4, 'Q'), VDS_E_INVALID_DRIVE_LETTER) << "no volume";
}

TEST(DeleteDriveLetter, FaultBeforeOrAfterEffect_ChangesNothingOrTheLetter) {
    DiskClient client(machine::FactoryMbr());
    client.Partition(1).volume->letters = "R";
    client.pc.faults.Arm({"IVdsAdvancedDisk::DeleteDriveLetter", 1, false, false, 0x80004005});
    client.pc.faults.Arm({"IVdsAdvancedDisk::DeleteDriveLetter", 2, false, true, 0x80004005});
    EXPECT_EQ(Delete(client, 1, 'R'), E_FAIL);
    EXPECT_EQ(client.Partition(1).volume->letters, "R");
    EXPECT_EQ(Delete(client, 1, 'R'), E_FAIL);
    EXPECT_EQ(client.Partition(1).volume->letters, "");
}

TEST(LetterCalls, EachCall_JournalsDiskOffsetAndLetter) {
    DiskClient client(machine::FactoryMbr());
    Assign(client, 1, 'R');
    EXPECT_EQ(client.pc.journal.Calls("IVdsAdvancedDisk::AssignDriveLetter").at(0).arguments,
              (std::vector<std::string>{"disk 0", "1048576", "R"}));
}
