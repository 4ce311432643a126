// Which volume holds an installed Windows.

#include <gmock/gmock.h>

#include <optional>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::DriveType;
using machine::EmulatedPc;
using machine::FactoryMbr;
using machine::FileTree;
using testing::ElementsAre;

const std::string started = "4 Kestova::IsVistaOS\\tStart. cDriveLetter = {char C}\n";
const std::string ended = "4 Kestova::IsVistaOS\\tEnd\n";

// A PC whose BitLocker cannot be asked, so that the files alone decide.
struct Files {
    EmulatedPc pc;
    Kestova kestova;
    internals::WithoutEncryptionLayer without{kestova};

    explicit Files(machine::Pc facts) : pc(std::move(facts)) { pc.journal.Clear(); }
    std::string Records() const { return Transcript(pc.journal); }
    std::vector<std::string> Calls() const {
        std::vector<std::string> names;
        for (const machine::CallRecord& call : pc.journal.Calls())
            names.push_back(call.call);
        return names;
    }
};

machine::Pc WithFilesOnC(FileTree files) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->files = std::move(files);
    return facts;
}

// A 32-bit program in the Windows of C:, which sees SysWOW64 in place of System32.
machine::Pc Emulated() {
    machine::Pc facts = FactoryMbr();
    facts.system.emulates32Bit = true;
    PartitionOf(facts, 2).volume->files.PutFolder("Windows/SysWOW64");
    return facts;
}

TEST(IsVistaOS, Loader_Returns1) {
    Files files(FactoryMbr());
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 1);
    EXPECT_EQ(files.Records(), started + ended);
    std::vector<std::string> tested;
    for (const machine::CallRecord& call : files.pc.journal.Calls("PathFileExistsW"))
        tested.push_back(call.arguments.at(0));
    EXPECT_THAT(tested,
                ElementsAre("C:\\Windows", "C:\\Windows\\System32", "C:\\Windows\\System32\\Winload.exe"));
    EXPECT_TRUE(files.pc.ledger.Outstanding().empty());
}

TEST(IsVistaOS, LowerCaseLetter_Returns1) {
    Files files(FactoryMbr());
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('c')), 1);
    EXPECT_EQ(files.Records(), "4 Kestova::IsVistaOS\\tStart. cDriveLetter = {char c}\n" + ended);
}

TEST(IsVistaOS, NoLoader_Returns0WithoutAnEndRecord) {
    for (const FileTree& tree :
         {FileTree(), FileTree{{"Windows/", ""}}, FileTree{{"Windows/System32/", ""}}}) {
        Files files(WithFilesOnC(tree));
        EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 0);
        EXPECT_EQ(files.Records(), started);
    }
}

TEST(IsVistaOS, OtherThanAFixedDrive_Returns0) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->driveType = DriveType::Removable;
    Files files(facts);
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 0);
    EXPECT_EQ(files.Records(), started + "4 Kestova::IsVistaOS\\tDRIVE_FIXED != GetDriveType szDrive: C:\n");
}

TEST(IsVistaOS, LowerCaseLetter_RootKeepsItsCase) {
    Files files(FactoryMbr());
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('q')), 0);
    EXPECT_EQ(files.Records(),
              "4 Kestova::IsVistaOS\\tStart. cDriveLetter = {char q}\n"
              "4 Kestova::IsVistaOS\\tDRIVE_FIXED != GetDriveType szDrive: q:\n");
}

TEST(IsVistaOSRedirection, NoRedirection_IsLeftAlone) {
    Files files(FactoryMbr());
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 1);
    EXPECT_EQ(files.pc.journal.Calls("IsWow64Process").size(), 1U);
    EXPECT_TRUE(files.pc.journal.Calls("Wow64DisableWow64FsRedirection").empty());
    EXPECT_TRUE(files.pc.journal.Calls("Wow64RevertWow64FsRedirection").empty());
}

TEST(IsVistaOSRedirection, Loader_IsOffDuringTheTestAndBackAfterwards) {
    Files files(Emulated());
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 1);
    EXPECT_EQ(files.Records(), started + ended);
    EXPECT_THAT(files.Calls(),
                ElementsAre("GetDriveTypeW", "IsWow64Process", "Wow64DisableWow64FsRedirection",
                            "PathAppendW", "PathFileExistsW", "PathAppendW", "PathFileExistsW", "PathAppendW",
                            "PathFileExistsW", "Wow64RevertWow64FsRedirection"));
    EXPECT_TRUE(files.pc.ledger.Outstanding().empty());
    EXPECT_TRUE(files.pc.ledger.Violations().empty());
}

TEST(IsVistaOSRedirection, NoLoader_IsBackAfterwards) {
    machine::Pc facts = Emulated();
    PartitionOf(facts, 2).volume->files = {};
    Files files(facts);
    EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 0);
    EXPECT_EQ(files.Calls().back(), "Wow64RevertWow64FsRedirection");
    EXPECT_TRUE(files.pc.ledger.Outstanding().empty());
}

TEST(IsVistaOSRedirection, FailedSwitch_StaysOn) {
    for (const char* const call : {"IsWow64Process", "Wow64DisableWow64FsRedirection"}) {
        Files files(Emulated());
        files.pc.faults.Arm({.call = call, .code = ERROR_INVALID_FUNCTION});
        EXPECT_EQ(files.kestova.IsVistaOS(TEXT('C')), 0) << call;
        EXPECT_EQ(files.Records(), started) << call;
        EXPECT_TRUE(files.pc.journal.Calls("Wow64RevertWow64FsRedirection").empty()) << call;
        EXPECT_TRUE(files.pc.ledger.Outstanding().empty()) << call;
    }
}

// --- what BitLocker says ---

struct Encryption {
    const char* name;
    // Letters of the encrypted volumes, in their order; empty: a volume without a letter. Nothing: no
    // BitLocker.
    std::optional<std::vector<std::string>> letters;
    std::vector<machine::FaultRule> faults;
    bool decides;  // whether C: is taken for an installed Windows without a look at its files
};

void PrintTo(const Encryption& encryption, std::ostream* out) {
    *out << encryption.name;
}

machine::Pc WithEncrypted(const std::optional<std::vector<std::string>>& letters, FileTree files) {
    machine::Pc facts = WithFilesOnC(std::move(files));
    if (!letters) return facts;
    facts.encryptableVolumes.emplace();
    for (const std::string& letter : *letters) {
        machine::EncryptableVolume volume;
        volume.deviceId = "\\\\?\\Volume{" + std::to_string(facts.encryptableVolumes->size()) + "}\\";
        volume.persistentVolumeId = "{0}";
        if (!letter.empty()) volume.driveLetter = letter;
        volume.encryptionMethod = 1;
        facts.encryptableVolumes->push_back(volume);
    }
    return facts;
}

class IsVistaOSEncrypted : public testing::TestWithParam<Encryption> {};

TEST_P(IsVistaOSEncrypted, Volume_DecidesWithoutReadingFiles) {
    Application application(WithEncrypted(GetParam().letters, {}));
    for (const machine::FaultRule& fault : GetParam().faults)
        application.pc.faults.Arm(fault);
    EXPECT_EQ(application.kestova.IsVistaOS(TEXT('C')), GetParam().decides);
    EXPECT_EQ(application.pc.faults.Fired() > 0, !GetParam().faults.empty());
    EXPECT_EQ(application.pc.journal.Calls("PathFileExistsW").empty(), GetParam().decides);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Encryption encryptions[] = {
    {"encrypted", {{"C:"}}, {}, true},
    {"encrypted_lower_case", {{"c:"}}, {}, true},
    {"encrypted_second", {{"D:", "C:"}}, {}, true},
    {"encrypted_other", {{"D:", "E:"}}, {}, false},
    {"encrypted_without_letter", {{""}}, {}, false},
    {"encrypted_none", {std::vector<std::string>()}, {}, false},
    {"no_bitlocker", std::nullopt, {}, false},
    // A list that broke off is not believed.
    {"encrypted_query_fails",
     {{"C:", "D:"}},
     {{.call = "IWbemServices::ExecMethod", .nth = 2, .code = 0x80041001}},
     false},
};

INSTANTIATE_TEST_SUITE_P(Volumes, IsVistaOSEncrypted, testing::ValuesIn(encryptions),
                         [](const auto& tested) { return tested.param.name; });

TEST(IsVistaOSEncryptedVolume, LowerCaseLetter_Returns1) {
    Application application(WithEncrypted({{"C:"}}, {}));
    EXPECT_EQ(application.kestova.IsVistaOS(TEXT('c')), 1);
    EXPECT_TRUE(application.pc.journal.Calls("PathFileExistsW").empty());
    EXPECT_TRUE(Transcript(application.pc.journal).ends_with("4 Kestova::IsVistaOS End. TRUE\n"));
}

TEST(IsVistaOSUnencrypted, UnencryptedVolume_FilesDecide) {
    Application application(WithEncrypted({{"D:"}}, {{"Windows/System32/winload.exe", "MZ"}}));
    EXPECT_EQ(application.kestova.IsVistaOS(TEXT('C')), 1);
    ExpectTranscript(application.pc.journal);
}

TEST(IsOSVolume, LoaderOnAnyDrive_Returns1) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->driveType = DriveType::Removable;
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    const auto isOsVolume = Open(internals::IsOSVolumeTag());
    EXPECT_EQ((kestova.*isOsVolume)(TEXT('C')), 1);
    EXPECT_EQ((kestova.*isOsVolume)(TEXT('D')), 0);
    EXPECT_EQ((kestova.*isOsVolume)(TEXT('Q')), 0);
    EXPECT_EQ(Transcript(pc.journal), "");
    EXPECT_TRUE(pc.journal.Calls("GetDriveTypeW").empty());
}

TEST(IsOSVolume, AnyDrive_LeavesTheRedirection) {
    EmulatedPc pc(Emulated());
    Kestova kestova;
    EXPECT_EQ((kestova.*Open(internals::IsOSVolumeTag()))(TEXT('C')), 0);
    EXPECT_TRUE(pc.journal.Calls("IsWow64Process").empty());
}

WCHAR OsVolume(const machine::Pc& facts) {
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    const WCHAR letter = (kestova.*Open(internals::GetOSVolumeTag()))();
    EXPECT_EQ(Transcript(pc.journal), "");
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
    for (const machine::CallRecord& call : pc.journal.Calls("PathFileExistsW"))
        EXPECT_NE(call.arguments.at(0).front(), 'X');
    return letter;
}

TEST(GetOSVolume, TwoInstalledWindows_ReturnsTheFirst) {
    machine::Pc facts = machine::WinPeTwoDisks();
    EXPECT_EQ(OsVolume(facts), TEXT('D'));
    PartitionOf(facts, 3).volume->files = PartitionOf(facts, 2).volume->files;
    EXPECT_EQ(OsVolume(facts), TEXT('D'));
    PartitionOf(facts, 2).volume->letters = "Z";
    EXPECT_EQ(OsVolume(facts), TEXT('E'));
}

TEST(GetOSVolume, WindowsPe_IsPassedOver) {
    EXPECT_EQ(OsVolume(machine::WindowsPePc()), TEXT('0'));
}

TEST(GetOSVolume, RemovableDrive_IsReturned) {
    machine::Pc facts = machine::WinPeTwoDisks();
    PartitionOf(facts, 2).volume->driveType = DriveType::Removable;
    EXPECT_EQ(OsVolume(facts), TEXT('D'));
}

TEST(GetOSVolume, LetterBehindX_IsReturned) {
    machine::Pc facts = machine::WinPeTwoDisks();
    PartitionOf(facts, 2).volume->letters = "Z";
    EXPECT_EQ(OsVolume(facts), TEXT('Z'));
}

}  // namespace
