// The library kept from changing the PC: it asks the system and both services, and ends at its first change.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "manager/kestova.h"
#include "tests/windows/real/landscape.h"
#include "tests/windows/real/services.h"
#include "tools/kestova/passage/stopped_library.h"

namespace {

using testing::Optional;
using testing::StartsWith;

constexpr ULONGLONG MiB = 1024ULL * 1024;

// One SATA disk: 1 the hidden recovery partition with that letter, 2 Windows, active, which is C:.
TestPc OneDisk(WCHAR letter) {
    TestPc pc;
    pc.disks = {{0,
                 500'000 * MiB,
                 VDS_BUS_TYPE_SATA,
                 {{1, MiB, 20'000 * MiB, 0x27, false, letter, TEXT("Recovery")},
                  {2, 20'001 * MiB, 400'000 * MiB, 0x07, true, TEXT('C'), TEXT("Windows")}}}};
    return pc;
}

class StoppedWindows : public testing::Test {
  protected:
    StoppedWindows() { EmptyDrives(); }
    ~StoppedWindows() override { EmptyDrives(); }

    const TestPartition& Partition(size_t index) const { return services.pc.disks[0].partitions[index]; }

    Services services{OneDisk(TEXT('E'))};
};

TEST_F(StoppedWindows, RecoveryFiles_SetRcvprtActive_EndsBeforeTheRecord) {
    MakeRecoveryFiles("E:");
    StoppedLibrary library;
    Kestova kestova;
    EXPECT_EQ(kestova.Initialize(false), 1);
    EXPECT_EQ(library.Stop().TakeFirst(), std::nullopt);
    kestova.SetRcvprtActive();
    EXPECT_THAT(library.Stop().TakeFirst(),
                Optional(std::string("write [System] Active=2 into the file E:\\SystemVolume.ini")));
    EXPECT_FALSE(std::filesystem::exists("E:/SystemVolume.ini"));
    EXPECT_FALSE(Partition(0).active);
    EXPECT_TRUE(Partition(1).active);
}

TEST_F(StoppedWindows, RecordThere_SetSystemActive_EndsBeforeTheFlagAndKeepsTheRecord) {
    MakeRecoveryFiles("E:");
    services.pc.disks[0].partitions[0].active = true;
    services.pc.disks[0].partitions[1].active = false;
    ASSERT_TRUE(
        WritePrivateProfileStringW(TEXT("System"), TEXT("Active"), TEXT("2"), TEXT("E:\\SystemVolume.ini")));
    StoppedLibrary library;
    Kestova kestova;
    EXPECT_EQ(kestova.Initialize(false), 1);
    kestova.SetSystemActive();
    EXPECT_THAT(library.Stop().TakeFirst(), Optional(StartsWith("make the partition at offset ")));
    EXPECT_TRUE(std::filesystem::exists("E:/SystemVolume.ini"));
    EXPECT_TRUE(Partition(0).active);
}

TEST_F(StoppedWindows, NoRecoveryFiles_SetRcvprtActive_AnswersAsEver) {
    StoppedLibrary library;
    Kestova kestova;
    EXPECT_EQ(kestova.Initialize(false), 1);
    EXPECT_EQ(kestova.SetRcvprtActive(), 3);
    EXPECT_EQ(library.Stop().TakeFirst(), std::nullopt);
}

TEST_F(StoppedWindows, AnyPartition_SetActive_EndsBeforeTheFlag) {
    StoppedLibrary library;
    Kestova kestova;
    EXPECT_EQ(kestova.Initialize(false), 1);
    kestova.SetActive(1);
    EXPECT_THAT(library.Stop().TakeFirst(),
                Optional(std::string("make the partition at offset 1048576 active")));
    EXPECT_FALSE(Partition(0).active);
}

// Letters of the installed Windows are read from its registry, which a batch file loads.
TEST_F(StoppedWindows, InstalledWindows_GetWinDriveLetters_EndsBeforeTheBatchFile) {
    MakeFile("C:/windows/system32/Winload.exe");
    const RegTool reg("PREPARED");
    StoppedLibrary library;
    Kestova kestova;
    tagDriveInfo_t record = {};
    kestova.GetWinDriveLetters(&record, 1);
    EXPECT_THAT(library.Stop().TakeFirst(), Optional(std::string("create the file X:\\LoadRegistry.bat")));
    EXPECT_EQ(reg.Asked(), "");
    EXPECT_FALSE(std::filesystem::exists("X:/LoadRegistry.bat"));
}

// A library that is not stopped any more changes what it is asked to.
TEST_F(StoppedWindows, StopIsOver_SetRcvprtActive_Switches) {
    MakeRecoveryFiles("E:");
    { const StoppedLibrary library; }
    Kestova kestova;
    EXPECT_EQ(kestova.Initialize(false), 1);
    EXPECT_EQ(kestova.SetRcvprtActive(), 0);
    EXPECT_TRUE(Partition(0).active);
}

}  // namespace
