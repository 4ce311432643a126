#include "device/ide_ini.h"

#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

const WideString controller = TEXT("PCI\\VEN_8086&DEV_2922\\3&11583659&0&FA");

machine::Pc PcWithIni(std::string content) {
    machine::Pc pc = PcWithDisks({BareDisk(0)});
    pc.host.files.PutFile("IDE.INI", std::move(content));
    return pc;
}

int Key(const HostedPc&, const WCHAR* section = TEXT("Exclude")) {
    return FindControllerKey(section, controller, IdeIniPath());
}

}  // namespace

TEST(IdeIniPath, HostProgram_ReturnsTheFileBesideIt) {
    const HostedPc pc(PcWithIni(""));
    EXPECT_EQ(IdeIniPath(), TEXT("C:\\Program Files\\Recovery\\IDE.INI"));
}

TEST(IdeIniPath, HostProgramInTheRoot_ReturnsTheFileInTheRoot) {
    machine::Pc facts = PcWithIni("");
    facts.host.path = "X:\\Recovery.exe";
    const HostedPc pc(facts);
    EXPECT_EQ(IdeIniPath(), TEXT("X:\\IDE.INI"));
}

TEST(IdeIniPath, NoModulePath_ReturnsNone) {
    HostedPc pc(PcWithIni(""));
    pc.Fail("GetModuleFileNameW", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(IdeIniPath(), TEXT(""));
}

TEST(IdeIniPath, ModulePathCutInItsFileName_KeepsTheFolder) {
    machine::Pc facts = PcWithIni("");
    facts.host.path = "C:\\" + std::string(240, 'a') + "\\" + std::string(30, 'b') + ".exe";
    const HostedPc pc(facts);
    EXPECT_EQ(IdeIniPath(), TEXT("C:\\") + WideString(240, TEXT('a')) + TEXT("\\IDE.INI"));
}

TEST(IdeIniPath, ModulePathCutInItsFolder_ReturnsTheFolderAbove) {
    machine::Pc facts = PcWithIni("");
    facts.host.path = "C:\\" + std::string(260, 'a') + "\\Recovery.exe";
    const HostedPc pc(facts);
    EXPECT_EQ(IdeIniPath(), TEXT("C:\\IDE.INI"));
}

TEST(IdeIniPath, NameThatCannotBeAppended_ReturnsNone) {
    HostedPc pc(PcWithIni(""));
    pc.Fail("PathAppendW", ERROR_INVALID_PARAMETER);
    EXPECT_EQ(IdeIniPath(), TEXT(""));
}

TEST(FindControllerKey, FirstMatch_Counts) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\\VEN_1000\r\nDeviceID2=PCI\\VEN_8086\r\n"
                                     "DeviceID3=PCI\\VEN_8086&DEV_2922\r\n"))),
              2);
}

TEST(FindControllerKey, WholeId_Matches) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\\VEN_8086&DEV_2922\\3&11583659&0&FA\r\n"))),
              1);
}

TEST(FindControllerKey, LongerValue_DoesNotMatch) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\\VEN_8086&DEV_2922\\3&11583659&0&FA0\r\n"))),
              0);
}

TEST(FindControllerKey, ValueInsideTheId_DoesNotMatch) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=VEN_8086\r\n"))), 0);
}

TEST(FindControllerKey, Case_DoesNotCount) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[exclude]\r\ndeviceid1=pci\\ven_8086\r\n"))), 1);
}

TEST(FindControllerKey, Gap_EndsTheReading) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\\VEN_1000\r\nDeviceID3=PCI\\VEN_8086\r\n"))),
              0);
}

TEST(FindControllerKey, FirstKeyMissing_FindsNone) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID2=PCI\\VEN_8086\r\n"))), 0);
}

TEST(FindControllerKey, EmptyValue_EndsTheReading) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=\r\nDeviceID2=PCI\\VEN_8086\r\n"))), 0);
}

TEST(FindControllerKey, ValueLikeThatOfAMissingKey_EndsTheReading) {
    EXPECT_EQ(Key(HostedPc(PcWithIni("[Exclude]\r\nDeviceID1=(INI READ ERROR)\r\nDeviceID2=PCI\r\n"))), 0);
}

TEST(FindControllerKey, Sections_AreApart) {
    const HostedPc pc(PcWithIni("[OrderIndex]\r\nDeviceID1=PCI\r\n"));
    EXPECT_EQ(Key(pc, TEXT("Exclude")), 0);
    EXPECT_EQ(Key(pc, TEXT("OrderIndex")), 1);
}

TEST(FindControllerKey, ControllerWithoutId_IsNeverNamed) {
    const HostedPc pc(PcWithIni("[Exclude]\r\nDeviceID1=P\r\n"));
    EXPECT_EQ(FindControllerKey(TEXT("Exclude"), TEXT(""), IdeIniPath()), 0);
}

TEST(FindControllerKey, Value_IsCutAt259Units) {
    const std::string longest(259, 'A');
    const HostedPc pc(PcWithIni("[Exclude]\r\nDeviceID1=" + longest + "B\r\n"));
    EXPECT_EQ(FindControllerKey(TEXT("Exclude"), WideString(259, TEXT('A')), IdeIniPath()), 1);
    EXPECT_EQ(FindControllerKey(TEXT("Exclude"), WideString(258, TEXT('A')), IdeIniPath()), 0);
}

TEST(FindControllerKey, MoreThanNineKeys_AreRead) {
    std::string content = "[Exclude]\r\n";
    for (int number = 1; number <= 11; ++number)
        content += "DeviceID" + std::to_string(number) + "=" + (number == 11 ? "PCI" : "USB") + "\r\n";
    EXPECT_EQ(Key(HostedPc(PcWithIni(content))), 11);
}

TEST(FindControllerKey, FailingRead_EndsTheReading) {
    HostedPc pc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\r\n"));
    pc.Fail("GetPrivateProfileStringW", ERROR_ACCESS_DENIED);
    EXPECT_EQ(Key(pc), 0);
}

TEST(ExistExcludeID, NamedController_IsExcluded) {
    const HostedPc pc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\\VEN_8086\r\n"));
    EXPECT_EQ(CDiskDrive().ExistExcludeID(controller, IdeIniPath()), TRUE);
    ExpectTranscript(pc.emulated.journal);
}

TEST(ExistExcludeID, OtherController_IsNotExcluded) {
    const HostedPc pc(PcWithIni("[Exclude]\r\nDeviceID1=PCI\\VEN_1000\r\n"));
    EXPECT_EQ(CDiskDrive().ExistExcludeID(controller, IdeIniPath()), FALSE);
    ExpectTranscript(pc.emulated.journal);
}

TEST(ExistExcludeID, NoFile_ExcludesNone) {
    const HostedPc pc(PcWithDisks({BareDisk(0)}));
    EXPECT_EQ(CDiskDrive().ExistExcludeID(controller, IdeIniPath()), FALSE);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetOrderIndex, ListedController_ReturnsItsIndex) {
    const HostedPc pc(PcWithIni("[OrderIndex]\r\nDeviceID1=PCI\\VEN_1000\r\nDeviceID2=PCI\\VEN_8086\r\n"));
    int order = -1;
    EXPECT_EQ(CDiskDrive().GetOrderIndex(controller, IdeIniPath(), order), TRUE);
    EXPECT_EQ(order, 2);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "4 Kestova CDiskDrive::GetOrderIndex find. nOrderIndex = nIndex = {int 2}\n"
              "4 Kestova CDiskDrive::GetOrderIndex End. bFind = {int 1} nOrderIndex = {int 2}\n");
}

TEST(GetOrderIndex, UnlistedController_ReturnsNone) {
    const HostedPc pc(PcWithIni("[OrderIndex]\r\nDeviceID1=PCI\\VEN_1000\r\n"));
    int order = -1;
    EXPECT_EQ(CDiskDrive().GetOrderIndex(controller, IdeIniPath(), order), FALSE);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "4 Kestova CDiskDrive::GetOrderIndex End. bFind = {int 0} nOrderIndex = {int 0}\n");
}

TEST(GetOrderIndex, NoFile_ReturnsNone) {
    const HostedPc pc(PcWithDisks({BareDisk(0)}));
    int order = -1;
    EXPECT_EQ(CDiskDrive().GetOrderIndex(controller, IdeIniPath(), order), FALSE);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "1 Kestova CDiskDrive::GetOrderIndex pszFileName is C:\\Program Files\\Recovery\\IDE.INI\n");
}
