// Recognising Windows RE, on its own volume and on bootable media.

#include <gtest/gtest.h>

#include <span>

#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tests/manager/internals.h"
#include "tests/support/transcript.h"

namespace {

using machine::DriveType;
using machine::FileTree;

// What is below the root, and what is written when it is the first that is not.
struct Marker {
    const char* path;
    const char* missRecord;
};

constexpr Marker volumeMarkers[] = {
    {"Boot", "1 Kestova::IsWinREVolume\\tmiss boot. szPath = R:\\Boot\n"},
    {"EFI", "1 Kestova::IsWinREVolume\\tmiss efi. szPath = R:\\EFI\n"},
    {"Recovery", "1 Kestova::IsWinREVolume\\tmiss RECOVERY. szPath = R:\\Recovery\n"},
    {"bootmgr", "1 Kestova::IsWinREVolume\\tmiss BOOTMGR. szPath = R:\\bootmgr\n"},
    {"bootmgr.efi", "1 Kestova::IsWinREVolume\\tmiss BOOTMGR_EFI. szPath = R:\\bootmgr.efi\n"},
    {"sources", "1 Kestova::IsWinREVolume\\tmiss SOURCES. szPath = R:\\sources\n"},
    {"sources/Autorun", "1 Kestova::IsWinREVolume\\tmiss Autorun. szPath = R:\\sources\\Autorun\n"},
    {"sources/Orvo", "4 Kestova::IsWinREVolume\\tmiss ORVO_FOLDER. szPath = R:\\sources\\Orvo\n"},
    {"sources/HDD", "4 Kestova::IsWinREVolume\\tmiss FLAG_UFD.szPath = R:\\sources\\HDD\n"},
};

constexpr Marker mediaMarkers[] = {
    {"Bootmgr", "4 Kestova::IsWindowsRE\\t\\tPathFileExists\\tBootmgr is not exist. szPath : R:\\Bootmgr\n"},
    {"boot", "4 Kestova::IsWindowsRE\\t\\tPathFileExists\\tboot is not exist. szPath: R:\\boot\n"},
    {"boot/bcd", "4 Kestova::IsWindowsRE\\t\\tPathFileExists\\tbcd is not exist. szPath: R:\\boot\\bcd\n"},
    {"sources", "4 Kestova::IsWindowsRE\\t\\tPathFileExists\\tSOURCES is not exist. szPath: R:\\sources\n"},
    {"sources/boot.wim",
     "4 Kestova::IsWindowsRE\\t\\tPathFileExists\\tboot.wim is not exist. szPath: R:\\sources\\boot.wim\n"},
    {"Orvo", "4 Kestova::IsWindowsRE\\t\\tPathFileExists\\tORVO_FOLDER is not exist. szPath: R:\\Orvo\n"},
};

FileTree Files(std::span<const Marker> markers) {
    FileTree files;
    for (const Marker& marker : markers)
        files.PutFolder(marker.path);
    return files;
}

// A PC with R: and nothing else on it that counts, and an object that was not initialised.
struct VolumeR {
    machine::EmulatedPc pc;
    Kestova kestova;

    explicit VolumeR(const FileTree& files, DriveType driveType = DriveType::Fixed)
        : pc(Facts(files, driveType)) {
        pc.journal.Clear();
    }
    static machine::Pc Facts(const FileTree& files, DriveType driveType) {
        machine::Pc facts = machine::FactoryMbr();
        machine::Volume volume;
        volume.letters = "R";
        volume.driveType = driveType;
        volume.files = files;
        facts.volumes = {volume};
        return facts;
    }
    int IsWinREVolume(WCHAR letter = TEXT('R')) {
        return (kestova.*Open(internals::IsWinREVolumeTag()))(letter);
    }
    std::string Records() const { return Transcript(pc.journal); }
};

const std::string volumeStart = "4 Kestova::IsWinREVolume\\t\\tStart\n";
const std::string volumeEnd = "4 Kestova::IsRCVVolume     End return true\n";
const std::string notFixed = "1 Kestova::IsWinREVolume It is not DRIVE_FIXED\n";
const std::string mediaStart = "4 Kestova::IsWindowsRE\\tStart cDriveLetter = {char R}\n";
const std::string mediaEnd = "4 Kestova::IsWindowsRE\\tEnd\n";

TEST(IsWinREVolume, EveryMarker_Returns1) {
    VolumeR volume(Files(volumeMarkers));
    EXPECT_EQ(volume.IsWinREVolume(), 1);
    EXPECT_EQ(volume.Records(), volumeStart + volumeEnd);
    EXPECT_EQ(volume.pc.journal.Calls("PathFileExistsW").size(), std::size(volumeMarkers));
    EXPECT_TRUE(volume.pc.ledger.Outstanding().empty());
}

TEST(IsWinREVolume, MissingMarkers_RecordsTheFirst) {
    for (size_t present = 0; present < std::size(volumeMarkers); ++present) {
        VolumeR volume(Files(std::span(volumeMarkers).first(present)));
        EXPECT_EQ(volume.IsWinREVolume(), 0);
        EXPECT_EQ(volume.Records(), volumeStart + volumeMarkers[present].missRecord + volumeEnd);
    }
}

TEST(IsWinREVolume, OtherThanAFixedDrive_Returns0) {
    for (const DriveType driveType : {DriveType::Removable, DriveType::Optical, DriveType::RamDisk}) {
        VolumeR volume(Files(volumeMarkers), driveType);
        EXPECT_EQ(volume.IsWinREVolume(), 0);
        EXPECT_EQ(volume.Records(), volumeStart + notFixed + volumeEnd);
        EXPECT_TRUE(volume.pc.journal.Calls("PathFileExistsW").empty());
    }
}

TEST(IsWinREVolume, MissingLetter_Returns0) {
    VolumeR volume(Files(volumeMarkers));
    EXPECT_EQ(volume.IsWinREVolume(TEXT('Q')), 0);
    EXPECT_EQ(volume.Records(), volumeStart + notFixed + volumeEnd);
}

TEST(IsWindowsRE, EveryMarkerInAnyCase_Returns1) {
    VolumeR volume({{"BOOTMGR", ""}, {"Boot/BCD", ""}, {"Sources/BOOT.WIM", ""}, {"ORVO/", ""}});
    EXPECT_EQ(volume.kestova.IsWindowsRE(TEXT('R')), 1);
    EXPECT_EQ(volume.Records(), mediaStart + mediaEnd);
    EXPECT_EQ(volume.pc.journal.Calls("PathFileExistsW").size(), std::size(mediaMarkers));
    EXPECT_TRUE(volume.pc.ledger.Outstanding().empty());
}

TEST(IsWindowsRE, MissingMarkers_RecordsTheFirst) {
    for (size_t present = 0; present < std::size(mediaMarkers); ++present) {
        VolumeR volume(Files(std::span(mediaMarkers).first(present)));
        EXPECT_EQ(volume.kestova.IsWindowsRE(TEXT('R')), 0);
        EXPECT_EQ(volume.Records(), mediaStart + mediaMarkers[present].missRecord + mediaEnd);
    }
}

TEST(IsWindowsRE, FolderOfTheMaker_IsSoughtAtTheRoot) {
    FileTree files = Files(std::span(mediaMarkers).first(5));
    files.PutFolder("sources/Orvo");
    VolumeR volume(files);
    EXPECT_EQ(volume.kestova.IsWindowsRE(TEXT('R')), 0);
    EXPECT_EQ(volume.Records(), mediaStart + mediaMarkers[5].missRecord + mediaEnd);
}

TEST(IsWindowsRE, OtherThanAFixedDrive_Returns0) {
    for (const DriveType driveType : {DriveType::Removable, DriveType::Optical, DriveType::RamDisk}) {
        VolumeR volume(Files(mediaMarkers), driveType);
        EXPECT_EQ(volume.kestova.IsWindowsRE(TEXT('R')), 0);
        EXPECT_EQ(volume.Records(),
                  mediaStart + "4 Kestova::IsWindowsRE\\t\\tGetDriveType\\tError\n" + mediaEnd);
        EXPECT_TRUE(volume.pc.journal.Calls("PathFileExistsW").empty());
    }
}

}  // namespace
