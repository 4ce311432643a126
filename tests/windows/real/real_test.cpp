// The library as it ships, in the process of a recovery application: real letters, files, INI files,
// registry, device set-up and batch files; only the Virtual Disk Service and WMI are the test's.

#include <gtest/gtest.h>

#include <fstream>

#include "manager/kestova.h"
#include "tests/windows/real/landscape.h"
#include "tests/windows/real/log.h"
#include "tests/windows/real/services.h"

namespace {

constexpr ULONGLONG MiB = 1024ULL * 1024;

// One SATA disk: 1 the hidden recovery partition, which is E:, 2 Windows, active, which is C:.
TestPc OneDisk() {
    TestPc pc;
    pc.disks = {{0,
                 500'000 * MiB,
                 VDS_BUS_TYPE_SATA,
                 {{1, MiB, 20'000 * MiB, 0x27, false, TEXT('E'), TEXT("Recovery")},
                  {2, 20'001 * MiB, 400'000 * MiB, 0x07, true, TEXT('C'), TEXT("Windows")}}}};
    return pc;
}

std::vector<BYTE> AsText(const std::wstring& text) {
    const auto* const bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return {bytes, bytes + (text.size() + 1) * sizeof(WCHAR)};
}

// An application that has made and initialised its object; the log begins after that.
class RealWindows : public testing::Test {
  protected:
    RealWindows() {
        EmptyDrives();
        EXPECT_EQ(kestova.Initialize(false), 1);
        log.Forget();
    }

    bool IsActive(size_t index) const { return services.pc.disks[0].partitions[index].active; }

    Services services{OneDisk()};
    Log log;
    Kestova kestova;
};

// --- the internal disk ---

TEST_F(RealWindows, ServiceWithoutAProxy_Initialize_LoadsIt) {
    EXPECT_EQ(kestova.Initialize(false), 1);
    log.Expect("initialize");
}

TEST_F(RealWindows, InstalledWindows_GetFirstInternalDriveNumber_IsTheDiskItRunsFrom) {
    EXPECT_EQ(kestova.GetFirstInternalDriveNumber(), 0);
    log.Expect("first-disk-windows");
}

TEST_F(RealWindows, WindowsPe_GetFirstInternalDriveNumber_IsTheLowestDisk) {
    const RegistryValue options(L"SYSTEM\\CurrentControlSet\\Control", L"SystemStartOptions", REG_SZ,
                                AsText(L" FASTDETECT MININT"));
    services.pc.disks.push_back({1, 8'000 * MiB, VDS_BUS_TYPE_SATA, {}});
    EXPECT_EQ(kestova.GetFirstInternalDriveNumber(), 0);
    log.Expect("first-disk-windows-pe");
}

// IDE.INI is beside the program. A disk of Wine's is on a bus that no internal disk is on, so none is
// chosen; the log shows what was read of each.
TEST_F(RealWindows, WindowsPeWithSettingFile_GetFirstInternalDriveNumber_ReadsTheLocationsOfAllDisks) {
    const RegistryValue options(L"SYSTEM\\CurrentControlSet\\Control", L"SystemStartOptions", REG_SZ,
                                AsText(L" FASTDETECT MININT"));
    const RegisteredDisk first(L"SCSI\\DISK&VEN_A&PROD_B\\4&0&0&000000", L"Bus Number 1, Target Id 0, LUN 0");
    const RegisteredDisk second(L"SCSI\\DISK&VEN_A&PROD_B\\4&0&0&000100",
                                L"Bus Number 6, Target Id 2, LUN 0");
    services.pc.instances[TEXT("Win32_DiskDrive")] = {
        {{TEXT("DeviceID"), TEXT("\\\\.\\PHYSICALDRIVE0")},
         {TEXT("PNPDeviceID"), TEXT("SCSI\\DISK&VEN_A&PROD_B\\4&0&0&000000")},
         {TEXT("InterfaceType"), TEXT("SCSI")}},
        {{TEXT("DeviceID"), TEXT("\\\\.\\PHYSICALDRIVE1")},
         {TEXT("PNPDeviceID"), TEXT("SCSI\\DISK&VEN_A&PROD_B\\4&0&0&000100")},
         {TEXT("InterfaceType"), TEXT("SCSI")}}};
    std::wstring name(MAX_PATH, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), MAX_PATH));
    const std::filesystem::path settings = std::filesystem::path(name).parent_path() / "IDE.INI";
    std::ofstream(settings) << "[OrderIndex]\nDeviceID1=PCI\\VEN_8086&DEV_2922\n";
    EXPECT_EQ(kestova.GetFirstInternalDriveNumber(), -1);
    std::filesystem::remove(settings);
    log.Expect("setting-file");
}

// --- choosing what the machine boots ---

TEST_F(RealWindows, RecoveryFiles_SetRcvprtActiveAndSetSystemActive_SwitchAndSwitchBack) {
    MakeRecoveryFiles("E:");
    EXPECT_EQ(kestova.SetRcvprtActive(), 0);
    EXPECT_TRUE(IsActive(0));
    EXPECT_EQ(Contents("E:/SystemVolume.ini"), "[System]\r\nActive=2\r\n");
    log.Expect("set-rcvprt-active");

    EXPECT_EQ(kestova.SetSystemActive(), 0);
    EXPECT_TRUE(IsActive(1));
    EXPECT_FALSE(std::filesystem::exists("E:/SystemVolume.ini"));
    log.Expect("set-system-active");
}

TEST_F(RealWindows, RecordCannotBeWritten_SetRcvprtActive_LeavesTheFlag) {
    MakeRecoveryFiles("E:");
    std::filesystem::create_directory("E:/SystemVolume.ini");
    EXPECT_EQ(kestova.SetRcvprtActive(), 4);
    std::filesystem::remove("E:/SystemVolume.ini");
    EXPECT_TRUE(IsActive(1));
    EXPECT_FALSE(IsActive(0));
}

// --- media and volumes ---

TEST_F(RealWindows, DiscStickAndFactoryVolume_GetTheirLetters_AreFound) {
    MakeRecoveryFiles("R:", "DVD");
    MakeRecoveryFiles("U:", "UFD");
    EXPECT_EQ(kestova.GetRCVDISC(), TEXT('R'));
    EXPECT_EQ(kestova.GetRCVUFD(), TEXT('U'));
    log.Forget();
    WCHAR letter = 0;
    EXPECT_EQ(kestova.GetFactoryPrtDriveLetter(letter), 1);
    EXPECT_EQ(letter, TEXT('F'));
    log.Expect("factory-volume");
}

TEST_F(RealWindows, BootLoaderOfWindows_IsVistaOS_IsTrueOnceItExists) {
    EXPECT_EQ(kestova.IsVistaOS(TEXT('C')), 0);
    MakeFile("C:/windows/system32/Winload.exe");
    EXPECT_EQ(kestova.IsVistaOS(TEXT('C')), 1);
}

TEST_F(RealWindows, MakersFiles_IsWindowsRE_IsTrueOnceTheyExist) {
    EXPECT_EQ(kestova.IsWindowsRE(TEXT('F')), 0);
    for (const char* file : {"F:/Bootmgr", "F:/boot/bcd", "F:/sources/boot.wim"})
        MakeFile(file);
    std::filesystem::create_directory("F:/Orvo");
    log.Forget();
    EXPECT_EQ(kestova.IsWindowsRE(TEXT('F')), 1);
    log.Expect("windows-re");
}

TEST_F(RealWindows, Bios_IsEFIBootSystem_IsFalse) {
    EXPECT_EQ(kestova.IsEFIBootSystem(), 0);
    log.Expect("firmware");
}

// --- the installed Windows' letters ---

// The batch file is written to X:, run and deleted, to load the hive and to take it away. The installed
// Windows calls the running one's C: by the letter G.
TEST_F(RealWindows, LetterOfTheInstalledWindows_GetWinDriveLetters_IsTranslated) {
    MakeFile("C:/windows/system32/Winload.exe");
    const std::vector<BYTE> systemDrive = RegistryValue::Read(L"SYSTEM\\MountedDevices", L"\\DosDevices\\C:");
    ASSERT_FALSE(systemDrive.empty());
    const RegistryValue installed(L"PREPARED\\MountedDevices", L"\\DosDevices\\G:", REG_BINARY, systemDrive);
    const RegTool reg("PREPARED");
    tagDriveInfo_t record = {};
    EXPECT_EQ(kestova.GetWinDriveLetters(&record, 1), 1);
    EXPECT_EQ(record.cDriveLetter, TEXT('G'));
    EXPECT_EQ(record.iDiskNum, 0);
    EXPECT_EQ(reg.Asked(),
              "load HKLM\\TEMSYSTEM C:\\Windows\\System32\\Config\\SYSTEM\r\nunload HKLM\\TEMSYSTEM\r\n");
    EXPECT_TRUE(RegistryValue::Read(L"TEMSYSTEM\\MountedDevices", L"\\DosDevices\\G:").empty());
    EXPECT_FALSE(std::filesystem::exists("X:/LoadRegistry.bat"));
    log.Expect("windows-letters");
}

}  // namespace
