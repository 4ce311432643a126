// Recognising recovery media by their markers.

#include "manager/recovery_media.h"

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::DriveType;
using machine::FileTree;

FileTree Markers() {
    return {{"sources/Qelhdrcv.ini", ""}, {"sources/Orvo/", ""}, {"sources/data/", ""}, {"sources/idf/", ""}};
}

FileTree With(FileTree files, std::initializer_list<const char*> folders) {
    for (const char* folder : folders)
        files.PutFolder(folder);
    return files;
}

machine::Volume MakeVolume(const char* letter, DriveType driveType, FileTree files) {
    machine::Volume volume;
    volume.letters = letter;
    volume.driveType = driveType;
    volume.files = std::move(files);
    return volume;
}

// One volume R: of a drive type with some files, tested for one kind of media.
struct Media {
    const char* name;
    DriveType driveType;
    FileTree files;
    int mediaType;
    int result;
    const char* record;  // the one between start and end; empty: none
};

void PrintTo(const Media& media, std::ostream* out) {
    *out << media.name;
}

constexpr const char* recognised = "4 Kestova::IsRCVVolume\\t\\tEnd return true\n";

class IsRCVVolume : public testing::TestWithParam<Media> {};

TEST_P(IsRCVVolume, Media_ReturnsWhetherTheyAreRecoveryMedia) {
    machine::Pc facts = machine::FactoryMbr();
    facts.volumes = {MakeVolume("R", GetParam().driveType, GetParam().files)};
    machine::EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ((kestova.*Open(internals::IsRCVVolumeTag()))(TEXT('R'), GetParam().mediaType),
              GetParam().result);
    EXPECT_EQ(Transcript(pc.journal), std::string("4 Kestova::IsRCVVolume\\t\\tStart\n") + GetParam().record);
}

const Media media[] = {
    {"HardDisk", DriveType::Fixed, Markers(), TYPE_HDD, 1, recognised},
    {"HardDiskInAnyCase",
     DriveType::Fixed,
     {{"SOURCES/QELHDRCV.INI", ""}, {"sources/ORVO", ""}, {"Sources/Data/", ""}, {"sources/IDF/", ""}},
     TYPE_HDD,
     1,
     recognised},
    {"HardDiskWithStickFlag", DriveType::Fixed, With(Markers(), {"sources/UFD"}), TYPE_HDD, 1, recognised},
    {"HardDiskWithDiscFlag", DriveType::Fixed, With(Markers(), {"sources/DVD"}), TYPE_HDD, 0,
     "4 Kestova::IsRCVVolume\\tMediaType error. MediaType = {int 1}\n"},
    {"HardDiskOnARemovableDrive", DriveType::Removable, Markers(), TYPE_HDD, 0, ""},
    {"HardDiskOnADisc", DriveType::Optical, Markers(), TYPE_HDD, 0, ""},
    {"NoIni", DriveType::Fixed, FileTree{{"sources/Orvo/", ""}}, TYPE_HDD, 0,
     "4 Kestova::IsRCVVolume\\tmiss QELHDRCVINI. szPath = R:\\sources\\Qelhdrcv.ini\n"},
    {"NoMakersFolder", DriveType::Fixed, FileTree{{"sources/Qelhdrcv.ini", ""}}, TYPE_HDD, 0,
     "4 Kestova::IsRCVVolume\\tmiss ORVO_FOLDER. szPath = R:\\sources\\Orvo\n"},
    {"NoData", DriveType::Fixed, FileTree{{"sources/Qelhdrcv.ini", ""}, {"sources/Orvo/", ""}}, TYPE_HDD, 0,
     "4 Kestova::IsRCVVolume\\tmiss DATA. szPath = R:\\sources\\data\n"},
    {"NoIdf", DriveType::Fixed,
     FileTree{{"sources/Qelhdrcv.ini", ""}, {"sources/Orvo/", ""}, {"sources/data/", ""}}, TYPE_HDD, 0,
     "4 Kestova::IsRCVVolume\\tmiss IDF. szPath = R:\\sources\\idf\n"},
    {"Disc", DriveType::Optical, With(Markers(), {"sources/DVD"}), TYPE_DISC, 1, recognised},
    {"DiscWithoutItsFlag", DriveType::Optical, Markers(), TYPE_DISC, 0,
     "4 Kestova::IsRCVVolume\\tmiss FLAG_UFD.(TYPE_DISC == MediaType) szPath = R:\\sources\\DVD\n"},
    {"DiscWithBothFlags", DriveType::Optical, With(Markers(), {"sources/DVD", "sources/UFD"}), TYPE_DISC, 0,
     "4 Kestova::IsRCVVolume\\t\\tMediaType error. MediaType = {int 2}\n"},
    {"DiscOnAHardDisk", DriveType::Fixed, With(Markers(), {"sources/DVD"}), TYPE_DISC, 0, ""},
    {"Stick", DriveType::Removable, With(Markers(), {"sources/UFD"}), TYPE_UFD, 1, recognised},
    {"StickWithoutItsFlag", DriveType::Removable, Markers(), TYPE_UFD, 0,
     "4 Kestova::IsRCVVolume\\tmiss FLAG_UFD.(TYPE_UFD == MediaType) szPath = R:\\sources\\UFD\n"},
    {"StickWithBothFlags", DriveType::Removable, With(Markers(), {"sources/DVD", "sources/UFD"}), TYPE_UFD, 0,
     "4 Kestova::IsRCVVolume\\tMediaType error. MediaType = {int 3}\n"},
    {"StickOnAHardDisk", DriveType::Fixed, With(Markers(), {"sources/UFD"}), TYPE_UFD, 0, ""},
    {"AnyMediaWithBothFlags", DriveType::Remote, With(Markers(), {"sources/DVD", "sources/UFD"}), 0, 1,
     recognised},
    {"AnyMediaWithoutFlags", DriveType::Optical, Markers(), 4, 1, recognised},
};

INSTANTIATE_TEST_SUITE_P(Media, IsRCVVolume, testing::ValuesIn(media),
                         [](const auto& tested) { return tested.param.name; });

// The folder itself can be missing only when the platform forgets it between two looks.
TEST(IsRCVVolumeMarkers, FolderGoneAfterTheIni_Returns0) {
    machine::EmulatedPc pc(machine::WinPeTwoDisks());
    Kestova kestova;
    pc.faults.Arm({.call = "PathFileExistsW", .nth = 2, .code = ERROR_NOT_READY});
    pc.journal.Clear();
    EXPECT_EQ((kestova.*Open(internals::IsRCVVolumeTag()))(TEXT('C'), TYPE_HDD), 0);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::IsRCVVolume\\t\\tStart\n"
              "4 Kestova::IsRCVVolume\\tmiss SOURCES. szPath = C:\\sources\n");
}

TEST(IsRCVVolumeMarkers, MissingLetter_Returns0) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ((kestova.*Open(internals::IsRCVVolumeTag()))(TEXT('Q'), TYPE_HDD), 0);
    EXPECT_EQ(Transcript(pc.journal), "4 Kestova::IsRCVVolume\\t\\tStart\n");
}

// A path that cannot be joined is not there; the root in its place would be.
TEST(IsRCVVolumeMarkers, PathThatCannotBeJoined_CountsAsMissing) {
    machine::EmulatedPc pc(machine::WinPeTwoDisks());
    Kestova kestova;
    pc.faults.Arm({.call = "PathAppendW", .nth = 1, .code = ERROR_NOT_ENOUGH_MEMORY});
    pc.journal.Clear();
    EXPECT_EQ((kestova.*Open(internals::IsRCVVolumeTag()))(TEXT('C'), TYPE_HDD), 0);
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::IsRCVVolume\\t\\tStart\n"
              "4 Kestova::IsRCVVolume\\tmiss QELHDRCVINI. szPath = \n");
}

// --- the first letter of its kind ---

// A recovery partition C:, a disc without its flag E:, two recovery discs G: and H:, two sticks T: and U:.
machine::Pc WithMedia() {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.volumes.push_back(MakeVolume("E", DriveType::Optical, Markers()));
    for (const char* letter : {"G", "H"})
        facts.volumes.push_back(MakeVolume(letter, DriveType::Optical, With(Markers(), {"sources/DVD"})));
    for (const char* letter : {"T", "U"})
        facts.volumes.push_back(MakeVolume(letter, DriveType::Removable, With(Markers(), {"sources/UFD"})));
    return facts;
}

std::string Untouched(int letters) {
    std::string records;
    for (int letter = 0; letter < letters; ++letter)
        records += "4 Kestova::IsRCVVolume\\t\\tStart\n";
    return records;
}

TEST(GetRCVDISC, TwoDiscs_ReturnsTheFirst) {
    machine::Pc facts = WithMedia();
    PartitionOf(facts, 3).volume->letters = "F";
    machine::EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.GetRCVDISC(), TEXT('G'));
    EXPECT_EQ(
        Transcript(pc.journal),
        "4 Kestova::GetRCVDISC\\tStart\n" + Untouched(5) +
            "4 Kestova::IsRCVVolume\\tmiss FLAG_UFD.(TYPE_DISC == MediaType) szPath = E:\\sources\\DVD\n" +
            Untouched(2) +
            "4 Kestova::IsRCVVolume\\t\\tEnd return true\n"
            "4 Kestova::GetRCVDISC\\tcDriveLetter = {char G}\n");
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(GetRCVDISC, NoDisc_ReturnsNone) {
    machine::EmulatedPc pc(machine::WinPeTwoDisks());
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.GetRCVDISC(), TEXT('0'));
    EXPECT_EQ(Transcript(pc.journal), "4 Kestova::GetRCVDISC\\tStart\n" + Untouched(26) +
                                          "4 Kestova::GetRCVDISC\\tEnd cDriveLetter = 0\n");
}

TEST(GetRCVUFD, TwoSticks_ReturnsTheFirst) {
    machine::EmulatedPc pc(WithMedia());
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.GetRCVUFD(), TEXT('T'));
    EXPECT_EQ(Transcript(pc.journal), "4 Kestova::GetRCVUFD\\tStart\n" + Untouched(20) +
                                          "4 Kestova::IsRCVVolume\\t\\tEnd return true\n"
                                          "4 Kestova::GetRCVUFD\\tDriver = {char T}\n");
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
}

TEST(GetRCVUFD, NoStick_ReturnsNone) {
    machine::EmulatedPc pc(machine::WinPeTwoDisks());
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.GetRCVUFD(), TEXT('0'));
    EXPECT_EQ(Transcript(pc.journal),
              "4 Kestova::GetRCVUFD\\tStart\n" + Untouched(26) + "4 Kestova::GetRCVUFD\\tEnd. Driver = 0\n");
}

}  // namespace
