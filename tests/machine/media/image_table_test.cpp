// Changes of a partition table on an image, checked byte by byte.
#include <gmock/gmock.h>

#include "machine/facts/partition_table.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr uint64_t recovery = 1 * MiB;
constexpr uint64_t windows = 61 * MiB;
constexpr uint64_t hibernation = 271 * MiB;

class ImageTableTest : public ImageTest {
  protected:
    std::string original_ = FactoryMbrImage("original.img");
    std::string image_ = FactoryMbrImage("changed.img");
};

TEST_F(ImageTableTest, FactoryMbr_MoveActiveFlag_ChangesTwoBytes) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(recovery, true, OtherFlags::Clear), 0u);
    EXPECT_TRUE(AreSame(original_, image_)) << "before the commit";
    EXPECT_EQ(disk.medium->Commit(), "");

    EXPECT_EQ(Differences(original_, image_), 2u);
    const std::string dump = OutputOf("sfdisk -d '" + image_ + "'");
    EXPECT_THAT(dump, HasSubstr("type=27, bootable\n"));
    EXPECT_THAT(dump, HasSubstr("type=7\n"));
}

TEST_F(ImageTableTest, FactoryMbr_SetActiveAndType_AreOnTheMediumAfterEachCommit) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(recovery, true, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(ByteAt(image_, 446), 0x80);
    EXPECT_EQ(ByteAt(image_, 446 + 16), 0x80);  // one flag does not clear another
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x12), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(ByteAt(image_, 450), 0x12);
    EXPECT_EQ(disk.table->SetActive(windows, false, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.table->SetMbrType(hibernation, 0x49), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(ByteAt(image_, 446 + 16), 0x00);

    EXPECT_EQ(Differences(original_, image_), 4u);
}

TEST_F(ImageTableTest, FlagOnTheMediumOnly_SetActive_ClearsItToo) {
    const Disk disk = Attach(image_, ImageAccess::Write);
    PatchByte(image_, 446 + 3 * 16, 0x80);  // unknown to the disk's facts

    EXPECT_EQ(disk.table->SetActive(recovery, true, OtherFlags::Clear), 0u);

    EXPECT_THAT(disk.table->Entries(),
                ElementsAre(TableEntry{recovery, true, 0x27}, TableEntry{windows, false, 0x07}, testing::_,
                            TableEntry{hibernation, false, 0x84}));
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(Differences(original_, image_), 2u);
}

TEST_F(ImageTableTest, ActiveExtendedPartition_SetActive_ClearsItsFlagToo) {
    const std::string image =
        PartitionedImage(40,
                         "label: dos\\n1: start=2048,size=2048,type=7\\n2: start=8192,size=40960,type=5\\n"
                         "5: start=10240,size=2048,type=b\\n");
    PatchByte(image, 446 + 16, 0x80);
    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(2048 * 512, true, OtherFlags::Clear), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");

    EXPECT_EQ(ByteAt(image, 446), 0x80);
    EXPECT_EQ(ByteAt(image, 446 + 16), 0x00);
    EXPECT_THAT(disk.table->Entries(),
                ElementsAre(TableEntry{2048 * 512, true, 0x07}, TableEntry{8192 * 512, false, 0x05},
                            TableEntry{10240 * 512, false, 0x0B}));
}

TEST_F(ImageTableTest, FactoryMbr_ChangeAndRestore_LeavesTheImageUnchanged) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(windows, false, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_FALSE(AreSame(original_, image_));
    EXPECT_EQ(disk.table->SetActive(windows, true, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, CurrentValue_SetActiveAndType_SucceedAndChangeNothing) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(windows, true, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.table->SetActive(recovery, false, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.table->SetMbrType(windows, 0x07), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, EveryPlainType_SetType_IsStored) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    for (int type = 1; type <= 0xFF; ++type) {
        const bool isRefused = type == 0x05 || type == 0x0F || type == 0x85 || type == 0xEE;
        EXPECT_EQ(disk.table->SetMbrType(hibernation, static_cast<uint8_t>(type)), isRefused ? 87u : 0u)
            << type;
        if (!isRefused) {
            EXPECT_EQ(disk.medium->Commit(), "");
            EXPECT_EQ(ByteAt(image_, 446 + 3 * 16 + 4), type);
        }
    }
    EXPECT_EQ(disk.table->SetMbrType(hibernation, 0), 87u);
}

TEST_F(ImageTableTest, LogicalPartition_SetType_ChangesItsOwnSector) {
    const std::string image = PartitionedImage(
        40, "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n");
    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetMbrType(10240 * 512, 0x17), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(ByteAt(image, 8192 * 512 + 450), 0x17);
    EXPECT_EQ(disk.table->SetMbrType(8192 * 512, 0x07),
              87u);  // the extended partition cannot be changed
}

TEST_F(ImageTableTest, OffsetWithoutPartition_Change_IsRefused) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(5 * MiB, true, OtherFlags::Keep), 87u);
    EXPECT_EQ(disk.table->SetMbrType(0, 0x07), 87u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, GptDisk_SetActiveAndType_AreRefused) {
    const std::string original = FactoryGptImage("original-gpt.img");
    const std::string image = FactoryGptImage();
    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(1 * MiB, true, OtherFlags::Keep), 87u);
    EXPECT_EQ(disk.table->SetMbrType(1 * MiB, 0x07), 87u);
    EXPECT_TRUE(AreSame(original, image));
}

TEST_F(ImageTableTest, ReadOnlyImage_Change_FailsWithWriteProtect) {
    const Disk disk = Attach(image_, ImageAccess::Read);

    EXPECT_EQ(disk.table->SetActive(recovery, true, OtherFlags::Keep), 19u);
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x12), 19u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, DryRun_Change_AnswersAsWritingAndWritesNothing) {
    const Disk disk = Attach(image_, ImageAccess::Overlay);

    EXPECT_EQ(disk.table->SetActive(recovery, true, OtherFlags::Keep), 0u);
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x12), 0u);
    EXPECT_EQ(disk.table->SetActive(5 * MiB, true, OtherFlags::Keep), 87u);
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x05), 87u);
    EXPECT_EQ(disk.table->Entries()[0], (TableEntry{recovery, true, 0x12}));
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, GptOrErasedTable_Entries_AreEmpty) {
    EXPECT_EQ(Attach(image_, ImageAccess::Read).table->Entries().size(), 4u);
    EXPECT_THAT(Attach(FactoryGptImage(), ImageAccess::Write).table->Entries(), testing::IsEmpty());
    const Disk disk = Attach(image_, ImageAccess::Write);
    PatchByte(image_, 511, 0);
    EXPECT_THAT(disk.table->Entries(), testing::IsEmpty()) << "the table is gone";
}

TEST_F(ImageTableTest, TableErasedMeanwhile_Change_Fails) {
    const Disk disk = Attach(image_, ImageAccess::Write);
    PatchByte(image_, 511, 0);

    EXPECT_NE(disk.table->SetActive(recovery, true, OtherFlags::Keep), 0u);
    EXPECT_EQ(ByteAt(image_, 446), 0);
}

}  // namespace
}  // namespace machine
