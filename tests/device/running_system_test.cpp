// Whether Windows PE runs, and the disk of the running Windows. Neither is logged.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

BOOL IsPeWithOptions(std::optional<std::string> options) {
    machine::Pc facts = machine::FactoryMbr();
    facts.system.startOptions = std::move(options);
    const HostedPc pc(facts);
    const BOOL isPe = CDiskDrive().IsWindowsPE();
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
    return isPe;
}

BOOL IsPeWhenCallFails(const char* call, uint32_t code) {
    HostedPc pc(machine::WinPeTwoDisks());
    pc.emulated.faults.Arm({.call = call, .afterEffect = true, .code = code});
    return CDiskDrive().IsWindowsPE();
}

struct CurrentDrive {
    BOOL known;
    int number;
    bool operator==(const CurrentDrive&) const = default;
};

CurrentDrive Find(const HostedPc& pc) {
    int number = 99;
    const BOOL known = CDiskDrive().GetCurrentDriveNumber(number);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
    return {known, number};
}

CurrentDrive FindWhenCallFails(const char* call, uint32_t code) {
    HostedPc pc(machine::FactoryMbr());
    pc.Fail(call, code);
    return Find(pc);
}

constexpr CurrentDrive unknown = {FALSE, -1};

}  // namespace

TEST(IsWindowsPE, MinintAmongTheOptions_IsTrue) {
    EXPECT_EQ(IsPeWithOptions(" FASTDETECT MININT"), TRUE);
    EXPECT_EQ(IsPeWithOptions(" fastdetect minint"), TRUE);
    EXPECT_EQ(IsPeWithOptions("MININT RDPATH=MULTI(0)"), TRUE);
}

TEST(IsWindowsPE, InstalledWindows_IsFalse) {
    EXPECT_EQ(IsPeWithOptions(" NOEXECUTE=OPTIN"), FALSE);
    EXPECT_EQ(IsPeWithOptions(""), FALSE);
    EXPECT_EQ(IsPeWithOptions(" MINI NT"), FALSE);
}

TEST(IsWindowsPE, AnySystem_OpensTheControlKeyForReading) {
    const HostedPc pc(machine::WinPeTwoDisks());
    EXPECT_EQ(CDiskDrive().IsWindowsPE(), TRUE);
    EXPECT_THAT(pc.emulated.journal.Calls("RegOpenKeyExW").at(0).arguments,
                testing::ElementsAre("HKLM", "SYSTEM\\CurrentControlSet\\Control", "0x00020019"));
}

TEST(IsWindowsPE, NoSuchValue_IsFalse) {
    EXPECT_EQ(IsPeWithOptions(std::nullopt), FALSE);
}

TEST(IsWindowsPE, ThousandBytes_AreTheMost) {
    EXPECT_EQ(IsPeWithOptions(std::string(493, ' ') + "MININT"), TRUE);   // 499 units and the terminator
    EXPECT_EQ(IsPeWithOptions(std::string(494, ' ') + "MININT"), FALSE);  // ERROR_MORE_DATA
}

TEST(IsWindowsPE, ThousandBytesWithoutATerminator_AreReadToTheirEnd) {
    const WideString options = WideString(494, TEXT(' ')) + TEXT("MININT");
    machine::Pc facts = machine::FactoryMbr();
    facts.system.startOptions.reset();
    facts.registry["HKLM\\SYSTEM\\CurrentControlSet\\Control"]["SystemStartOptions"] = {
        REG_BINARY,
        std::string(reinterpret_cast<const char*>(options.data()), options.size() * sizeof(WCHAR))};
    const HostedPc pc(facts);
    EXPECT_EQ(CDiskDrive().IsWindowsPE(), TRUE);
}

TEST(IsWindowsPE, RegistryFailures_AreFalse) {
    EXPECT_EQ(IsPeWhenCallFails("RegOpenKeyExW", ERROR_ACCESS_DENIED), FALSE);
    EXPECT_EQ(IsPeWhenCallFails("RegQueryValueExW", ERROR_FILE_NOT_FOUND), FALSE);
    EXPECT_EQ(IsPeWhenCallFails("RegCloseKey", ERROR_INVALID_HANDLE), FALSE);
}

TEST(GetCurrentDriveNumber, WindowsOnDisk0_Returns0) {
    EXPECT_EQ(Find(HostedPc(machine::FactoryMbr())), (CurrentDrive{TRUE, 0}));
}

TEST(GetCurrentDriveNumber, WindowsOnAnotherDisk_ReturnsIt) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.disks[0].number = 5;
    facts.disks[0].vdsName = "\\\\?\\PhysicalDrive5";
    facts.system.windowsDirectory = "d:\\windows";
    EXPECT_EQ(Find(HostedPc(facts)), (CurrentDrive{TRUE, 5}));
}

TEST(GetCurrentDriveNumber, InstalledWindows_OpensTheVolumeByItsDevicePath) {
    const HostedPc pc(machine::FactoryMbr());
    Find(pc);
    const auto opened = pc.emulated.journal.Calls("CreateFileW");
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_THAT(opened[0].arguments,
                testing::ElementsAre("\\\\.\\C:", "0xc0000000", "0x00000003", "OPEN_EXISTING"));
    EXPECT_THAT(pc.emulated.journal.Calls("GetDriveTypeW").at(0).arguments, testing::ElementsAre("C:"));
}

TEST(GetCurrentDriveNumber, VolumeOnTwoExtents_Fails) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[1].volume->furtherExtents = {{1, 0, 1024}};
    EXPECT_EQ(Find(HostedPc(facts)), unknown);
}

TEST(GetCurrentDriveNumber, FirstAndLastLetter_ReturnTheirDisk) {
    for (const std::string letter : {"A", "Z"}) {
        machine::Pc facts = machine::FactoryMbr();
        facts.disks[0].partitions[1].volume->letters = letter;
        facts.system.windowsDirectory = letter + ":\\Windows";
        EXPECT_EQ(Find(HostedPc(facts)), (CurrentDrive{TRUE, 0})) << letter;
    }
}

TEST(GetCurrentDriveNumber, RemovableDrive_Fails) {
    for (const auto type : {machine::DriveType::Removable, machine::DriveType::Remote,
                            machine::DriveType::Optical, machine::DriveType::RamDisk}) {
        machine::Pc facts = machine::FactoryMbr();
        facts.disks[0].partitions[1].volume->driveType = type;
        EXPECT_EQ(Find(HostedPc(facts)), unknown);
    }
}

TEST(GetCurrentDriveNumber, DirectoryWithoutLetter_Fails) {
    for (const char* directory : {"\\\\server\\windows", "", "C", "1:\\Windows"}) {
        machine::Pc facts = machine::FactoryMbr();
        facts.system.windowsDirectory = directory;
        EXPECT_EQ(Find(HostedPc(facts)), unknown) << directory;
    }
}

TEST(GetCurrentDriveNumber, VolumeThatDoesNotOpen_Fails) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[1].volume->openError = ERROR_ACCESS_DENIED;
    EXPECT_EQ(Find(HostedPc(facts)), unknown);
}

TEST(GetCurrentDriveNumber, PlatformFailures_Fail) {
    EXPECT_EQ(FindWhenCallFails("GetWindowsDirectoryW", ERROR_NOT_ENOUGH_MEMORY), unknown);
    EXPECT_EQ(FindWhenCallFails("GetDriveTypeW", 1), unknown);
    EXPECT_EQ(FindWhenCallFails("CreateFileW", ERROR_SHARING_VIOLATION), unknown);
    EXPECT_EQ(FindWhenCallFails("DeviceIoControl", ERROR_MORE_DATA), unknown);
}
