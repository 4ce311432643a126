// What the platform is given beside what its answers depend on: each call of the manager once.

#include <gmock/gmock.h>

#include "base/wide_string.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/application/two_systems.h"

namespace {

using testing::ElementsAre;

using Arguments = std::vector<std::string>;

}  // namespace

TEST(ManagerCalls, NamesOfVolumes_AreReadInto1024Units) {
    Application application(machine::FactoryMbr());
    WCHAR name[MAX_PATH] = {};
    EXPECT_EQ((application.kestova.*Open(internals::GetVolumeNameTag()))(TEXT('C'), name), 1);
    EXPECT_THAT(application.pc.journal.Unshown("GetVolumeInformationW"),
                ElementsAre(Arguments{"1024", "1024"}));
}

TEST(ManagerCalls, PartitionNumber_IsReadIntoItsRecord) {
    Application application(machine::FactoryMbr());
    EXPECT_EQ((application.kestova.*Open(internals::GetPartNumberTag()))(TEXT('C')), 2);
    EXPECT_THAT(application.pc.journal.Unshown("DeviceIoControl"),
                ElementsAre(Arguments{"0", std::to_string(sizeof(PARTITION_INFORMATION_EX)), "null"}));
}

TEST(ManagerCalls, BatchFile_IsAnOrdinaryFileOfPlainCharacters) {
    machine::EmulatedPc pc(TwoSystems());
    Kestova kestova;
    EXPECT_EQ((kestova.*Open(internals::LoadRegistryTag()))(TEXT("reg unload HKLM\\TEMSYSTEM")), 0);
    EXPECT_THAT(pc.journal.Unshown("CreateFileW"), ElementsAre(Arguments{"0x00000080", "null", "null"}));
    EXPECT_THAT(pc.journal.Unshown("WriteFile"), ElementsAre(Arguments{"null"}));
    EXPECT_THAT(
        pc.journal.Unshown("WideCharToMultiByte"),
        ElementsAre(Arguments{"0x00000000", "null", "null"}, Arguments{"0x00000000", "null", "null"}));
}

// Neither a window nor parameters, a folder, an item, a class, a hot key or a monitor.
TEST(ManagerCalls, BatchFile_IsOpenedHiddenAndByItsNameAlone) {
    machine::EmulatedPc pc(TwoSystems());
    Kestova kestova;
    EXPECT_EQ((kestova.*Open(internals::LoadRegistryTag()))(TEXT("reg unload HKLM\\TEMSYSTEM")), 0);
    EXPECT_THAT(pc.journal.Calls("ShellExecuteExW").at(0).arguments,
                ElementsAre("open", "X:\\LoadRegistry.bat", "", "", "0", "0x00000040"));
    EXPECT_THAT(pc.journal.Unshown("ShellExecuteExW"),
                ElementsAre(Arguments{"null", "null", "null", "null", "null", "null", "0", "null"}));
}

// Each value is asked for its size and read into that much.
TEST(ManagerCalls, LettersOfTheRegistry_AreReadIntoTheirSize) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    const std::string key = "HKLM\\SYSTEM\\MountedDevices";
    pc.facts.registry[key] = {{"\\DosDevices\\C:", {REG_BINARY, std::string(12, '\1')}}};
    Kestova kestova;
    WideString path = TEXT("SYSTEM\\MountedDevices");
    EXPECT_EQ((kestova.*Open(internals::ReadRegistryTag()))(path.data()), 1);
    EXPECT_THAT(pc.journal.Unshown("RegOpenKeyExW"), ElementsAre(Arguments{"0x00000000"}));
    const std::vector<Arguments> sizes = pc.journal.Unshown("RegQueryValueExW");
    EXPECT_THAT(sizes, testing::Contains(Arguments{"null", "given", "12"}));
    EXPECT_THAT(sizes, testing::Each(testing::Contains("null")));
    EXPECT_EQ((kestova.*Open(internals::PEDriveMapTag())).at(TEXT('C')).dwLength, 12U);
}

TEST(ManagerCalls, RecordOfTheSystem_IsWrittenAndReadByTheSameNames) {
    machine::Pc facts = machine::FactoryMbr();
    facts.switches.activeFlagIsExclusive = true;
    Application application(facts);
    EXPECT_EQ(application.kestova.SetRcvprtActive(), 0);
    const auto written = application.pc.journal.Calls("WritePrivateProfileStringW");
    ASSERT_EQ(written.size(), 1U);
    EXPECT_THAT(written[0].arguments, ElementsAre("System", "Active", "2", "E:\\SystemVolume.ini"));
    EXPECT_EQ(application.kestova.SetSystemActive(), 0);
    const auto read = application.pc.journal.Calls("GetPrivateProfileStringW");
    ASSERT_EQ(read.size(), 1U);
    EXPECT_THAT(read[0].arguments,
                ElementsAre("System", "Active", "_NO_VALUE_", "260", "E:\\SystemVolume.ini"));
}
