// Changes of a partition table in an image: exactly the bytes that they need.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>

#include "machine/storage/partition_table.h"
#include "tests/machine/storage/image_fixture.h"

namespace machine {
namespace {

using testing::HasSubstr;

constexpr uint64_t recovery = 1 * MiB;
constexpr uint64_t windows = 61 * MiB;
constexpr uint64_t hibernation = 271 * MiB;

class ImageTableTest : public ImageTest {
  protected:
    std::string original_ = FactoryMbrImage("original.img");
    std::string image_ = FactoryMbrImage("changed.img");
};

// While it lives no file can be written from that byte on, as if the medium failed there.
class FullMedium {
  public:
    explicit FullMedium(rlim_t firstBadByte) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = firstBadByte;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullMedium() { setrlimit(RLIMIT_FSIZE, &before_); }

  private:
    rlimit before_ = {};
};

TEST_F(ImageTableTest, MovingTheFlagChangesTwoBytes) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(recovery, true), 0u);
    EXPECT_EQ(disk.table->SetActive(windows, false), 0u);

    EXPECT_EQ(Differences(original_, image_), 2);
    const std::string dump = OutputOf("/usr/sbin/sfdisk -d '" + image_ + "'");
    EXPECT_THAT(dump, HasSubstr("type=27, bootable\n"));
    EXPECT_THAT(dump, HasSubstr("type=7\n"));
}

TEST_F(ImageTableTest, FlagAndTypeAreOnTheMediumAfterEachCall) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(recovery, true), 0u);
    EXPECT_EQ(ByteAt(image_, 446), 0x80);
    EXPECT_EQ(ByteAt(image_, 446 + 16), 0x80);  // one flag does not clear another
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x12), 0u);
    EXPECT_EQ(ByteAt(image_, 450), 0x12);
    EXPECT_EQ(disk.table->SetActive(windows, false), 0u);
    EXPECT_EQ(ByteAt(image_, 446 + 16), 0x00);
    EXPECT_EQ(disk.table->SetMbrType(hibernation, 0x49), 0u);

    EXPECT_EQ(Differences(original_, image_), 4);
}

TEST_F(ImageTableTest, ThereAndBackLeavesTheImageAsItWas) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(windows, false), 0u);
    EXPECT_FALSE(AreSame(original_, image_));
    EXPECT_EQ(disk.table->SetActive(windows, true), 0u);

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, ValueThatIsThereAlreadySucceedsAndChangesNothing) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(windows, true), 0u);
    EXPECT_EQ(disk.table->SetActive(recovery, false), 0u);
    EXPECT_EQ(disk.table->SetMbrType(windows, 0x07), 0u);

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, EveryTypeOfAPlainPartitionCanBeSet) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    for (int type = 1; type <= 0xFF; ++type) {
        const bool isRefused = type == 0x05 || type == 0x0F || type == 0x85 || type == 0xEE;
        EXPECT_EQ(disk.table->SetMbrType(hibernation, static_cast<uint8_t>(type)), isRefused ? 87u : 0u)
            << type;
        if (!isRefused) {
            EXPECT_EQ(ByteAt(image_, 446 + 3 * 16 + 4), type);
        }
    }
    EXPECT_EQ(disk.table->SetMbrType(hibernation, 0), 87u);
}

TEST_F(ImageTableTest, LogicalPartitionIsChangedInItsOwnSector) {
    const std::string image = PartitionedImage(
        40, "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n");
    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetMbrType(10240 * 512, 0x17), 0u);
    EXPECT_EQ(ByteAt(image, 8192 * 512 + 450), 0x17);
    EXPECT_EQ(disk.table->SetMbrType(8192 * 512, 0x07),
              87u);  // the extended partition is no partition to change
}

TEST_F(ImageTableTest, PlaceWithoutAPartitionIsRefused) {
    const Disk disk = Attach(image_, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(5 * MiB, true), 87u);
    EXPECT_EQ(disk.table->SetMbrType(0, 0x07), 87u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, GptHasNeitherFlagNorType) {
    const std::string original = FactoryGptImage("original-gpt.img");
    const std::string image = FactoryGptImage();
    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.table->SetActive(1 * MiB, true), 87u);
    EXPECT_EQ(disk.table->SetMbrType(1 * MiB, 0x07), 87u);
    EXPECT_TRUE(AreSame(original, image));
}

TEST_F(ImageTableTest, ReadingRefusesChanges) {
    const Disk disk = Attach(image_, ImageAccess::Read);

    EXPECT_EQ(disk.table->SetActive(recovery, true), 19u);
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x12), 19u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, DryRunAnswersAsWritingWouldAndWritesNothing) {
    const Disk disk = Attach(image_, ImageAccess::Overlay);

    EXPECT_EQ(disk.table->SetActive(recovery, true), 0u);
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x12), 0u);
    EXPECT_EQ(disk.table->SetActive(5 * MiB, true), 87u);
    EXPECT_EQ(disk.table->SetMbrType(recovery, 0x05), 87u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, MediumThatCannotBeWrittenIsTold) {
    const Disk disk = Attach(image_, ImageAccess::Write);
    uint32_t result = 0;
    {
        const FullMedium medium(0);
        result = disk.table->SetActive(recovery, true);
    }

    EXPECT_EQ(result, 1117u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(ImageTableTest, TableThatIsGoneMeanwhileIsTold) {
    const Disk disk = Attach(image_, ImageAccess::Write);
    PatchByte(image_, 511, 0);

    EXPECT_NE(disk.table->SetActive(recovery, true), 0u);
    EXPECT_EQ(ByteAt(image_, 446), 0);
}

}  // namespace
}  // namespace machine
