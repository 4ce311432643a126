// Whole recovery landscapes on images made by other tools: GPT disks, letters in an installed Windows' hive,
// recovery discs and sticks, an encrypted volume. Queries write nothing.

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Landscape : public ProgramTest {
  protected:
    // A copy of a made image in the test's folder.
    void Take(const std::string& image) {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/" + image + " .").status, 0);
    }
    bool IsAsMade(const std::string& image) {
        return AreSame(KESTOVA_TEST_IMAGES "/" + image, Folder() / image);
    }
};

TEST_F(Landscape, GptImage_Status_ShowsEveryRole) {
    Take("factory-gpt.img");
    const Outcome outcome = Kestova("--image factory-gpt.img status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.output,
        "Firmware           UEFI\n"
        "Running system     Windows PE\n"
        "Windows directory  X:\\Windows\n"
        "Internal disk      0\n"
        "Partition style    GPT\n"
        "Active partition   none\n"
        "Layout             GPT, partition 3 is the EFI system partition\n"
        "Installed Windows  D: disk 0, partition 5\n"
        "Encrypted volumes  none\n"
        "Recovery disc      none\n"
        "Recovery stick     none\n"
        "Cache partition    no\n"
        "Record             -\n"
        "\n"
        "Disk 0: 400.0 MiB, GPT, SATA, Emulated disk; internal: an image counts as SATA; the first internal disk\n"
        "  #  Start      Size       Type                Name                          Active  Letter  Label     File system  Condition  Hide  Role: reason\n"
        "  1  1.0 MiB    40.0 MiB   maker's boot        Maker boot                    -       -       BOOT      FAT32        clean      hide  maker's boot: type\n"
        "  2  41.0 MiB   40.0 MiB   Windows recovery    Windows RE                    -       C       WinRE     NTFS         clean      -     Windows RE: type and contents\n"
        "  3  81.0 MiB   40.0 MiB   EFI system          EFI system partition          -       -       SYSTEM    FAT32        clean      hide  EFI system: type\n"
        "  4  121.0 MiB  16.0 MiB   Microsoft reserved  Microsoft reserved partition  -       -       -         -            -          hide  -\n"
        "  5  137.0 MiB  180.0 MiB  basic data          Basic data partition          -       D       Windows   NTFS         clean      -     installed Windows: contents\n"
        "  6  317.0 MiB  80.0 MiB   Windows recovery    Recovery                      -       E       Recovery  NTFS         clean      -     recovery: type and contents\n"
        "     397.0 MiB  3.0 MiB    free\n");
    EXPECT_TRUE(IsAsMade("factory-gpt.img"));
}

TEST_F(Landscape, GptImage_Run_GivesAndRemovesLetters) {
    Take("factory-gpt.img");
    const Outcome outcome = Kestova("--image factory-gpt.img run -",
                                    "ActiveOrvoBootPartition\n"
                                    "ActiveGPTSystemPartition\n"
                                    "GetDriveLetter 0 3\n"
                                    "AssignRecoveryPartition\n"
                                    "IsExistRcvprt\n"
                                    "DisableGPTSystemPartition\n"
                                    "DisableOrvoBootPartition\n"
                                    "RemoveRecoveryPartition\n"
                                    "GetDriveLetter 0 6\n"
                                    "SetRcvprtActive\n");
    EXPECT_EQ(outcome.status, 1);  // of the last operation
    EXPECT_EQ(outcome.output,
              "Initialize(false) = 1: the service is ready\n"
              "ActiveOrvoBootPartition() = 0: done\n"
              "  letter = F\n"
              "ActiveGPTSystemPartition() = 0: done\n"
              "  letter = G\n"
              "GetDriveLetter(0, 3) = G: its letter\n"
              "AssignRecoveryPartition() = 1: asked; the letter tells the rest\n"
              "  letter = E\n"
              "IsExistRcvprt() = 1: yes\n"
              "DisableGPTSystemPartition() = 0: done\n"
              "DisableOrvoBootPartition() = 0: done\n"
              "RemoveRecoveryPartition()\n"
              "GetDriveLetter(0, 6) = 0: it has none\n"
              "SetRcvprtActive() = 1: no active partition could be read\n");
    EXPECT_TRUE(IsAsMade("factory-gpt.img"));
}

TEST_F(Landscape, GptImageWithoutEfi_Run_FindsNoWindowsByLayout) {
    Take("gpt-without-efi.img");
    const Outcome outcome = Kestova("--image gpt-without-efi.img run -",
                                    "GetCurrentDiskType\nGetBitLockerSystemInfo\nGetVistaOSInfo\n");
    EXPECT_EQ(outcome.output,
              "Initialize(false) = 1: the service is ready\n"
              "GetCurrentDiskType() = 1: asked; the type tells the rest\n"
              "  type = 2: GPT, partition 3 is not the EFI system partition\n"
              "GetBitLockerSystemInfo() = 0: asked; the outputs tell the rest\n"
              "  disk = -1: none\n"
              "  partition = -1: none\n"
              "  letter = 0: none\n"
              "GetVistaOSInfo() = 104: its partition has no letter, or the layout is another\n"
              "  disk = -1: none\n"
              "  partition = -1: none\n"
              "  letter = 0: none\n");
    EXPECT_TRUE(IsAsMade("gpt-without-efi.img"));
}

// C and D are partitions of the MBR disk, E is one of the GPT disk, F was on a disk that is gone, and G is
// the partition of D.
TEST_F(Landscape, TwoImages_Letters_MapsThemToBothDisks) {
    Take("installed-windows.img");
    Take("factory-gpt.img");
    const Outcome outcome = Kestova("--image installed-windows.img --image factory-gpt.img letters");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "Letter  Disk  Partition  Here\n"
              "C       0     2          D\n"
              "D       0     3          E\n"
              "E       1     5          G\n"
              "G       0     3          E\n");
    EXPECT_TRUE(IsAsMade("installed-windows.img"));
    EXPECT_TRUE(IsAsMade("factory-gpt.img"));
}

TEST_F(Landscape, HiveNotClosed_Letters_SaysThatTheyMayBeOld) {
    Take("installed-windows.img");
    // The number of the last change that was begun, and the checksum of the header.
    const Outcome place = Shell("LC_ALL=C grep -abo regf installed-windows.img | head -n 1 | cut -d : -f 1");
    std::fstream image(Folder() / "installed-windows.img", std::ios::in | std::ios::out | std::ios::binary);
    for (const unsigned field : {4u, 508u}) {
        const auto at = static_cast<std::streamoff>(std::stoul(place.output) + field);
        image.seekg(at);
        const int byte = image.get();
        image.seekp(at);
        image.put(static_cast<char>(byte ^ 1));
    }
    image.close();
    EXPECT_EQ(Shell("cp --sparse=always installed-windows.img before.img").status, 0);

    for (const char* const words : {"letters", "--json letters", "--dry-run letters"}) {
        const Outcome outcome = Kestova("--image installed-windows.img " + std::string(words));

        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, HasSubstr("D"));
        EXPECT_EQ(outcome.errors,
                  "kestova: installed-windows.img: the registry of partition 2 was not closed, and its "
                  "transaction logs were not applied, because there are none: letters may be old\n");
    }
    EXPECT_TRUE(AreSame(Folder() / "before.img", Folder() / "installed-windows.img"));
    EXPECT_EQ(Kestova("--image installed-windows.img status").errors, "");
}

TEST_F(Landscape, BitLockerImage_Run_FindsTheEncryptedVolume) {
    Take("bitlocker.img");
    EXPECT_THAT(
        Shell("dd if=bitlocker.img bs=1M skip=41 count=80 status=none of=volume; blkid -p volume").output,
        HasSubstr("TYPE=\"BitLocker\""));
    const Outcome outcome =
        Kestova("--image bitlocker.img run -",
                "IsExistEncryptVolume\nGetEncryptVolume\nGetAllEncryptVolume 33\nIsVistaOS D\n");
    EXPECT_EQ(outcome.output,
              "Initialize(false) = 1: the service is ready\n"
              "IsExistEncryptVolume() = 1: it can, even if it encrypts nothing\n"
              "GetEncryptVolume() = D: its letter\n"
              "GetAllEncryptVolume(33) = 1: BitLocker was asked\n"
              "  buffer = D\n"
              "IsVistaOS(D) = 1: yes\n");
    EXPECT_TRUE(IsAsMade("bitlocker.img"));
}

struct Medium {
    const char* name;
    const char* option;
    const char* image;
    const char* question;
};

void PrintTo(const Medium& medium, std::ostream* out) {
    *out << medium.name;
}

class RecoveryMedium : public Landscape, public testing::WithParamInterface<Medium> {};

TEST_P(RecoveryMedium, EachFormat_Call_FindsTheMediumAfterTheDisks) {
    const Medium& medium = GetParam();
    Take("factory-mbr.img");
    Take(medium.image);
    const std::string pc = std::string("--image factory-mbr.img ") + medium.option + " " + medium.image;
    EXPECT_EQ(Kestova(pc + " call " + medium.question).output,
              std::string(medium.question) + "() = F: its letter\n");
    EXPECT_TRUE(IsAsMade(medium.image));
    EXPECT_EQ(Kestova(std::string("--image factory-mbr.img call ") + medium.question).output,
              std::string(medium.question) + "() = 0: there is none\n");
}

constexpr Medium media[] = {
    {"Iso9660", "--disc", "disc-iso.iso", "GetRCVDISC"},
    {"Joliet", "--disc", "disc-joliet.iso", "GetRCVDISC"},
    {"Udf", "--disc", "disc-udf.iso", "GetRCVDISC"},
    {"UdfVirtual", "--disc", "disc-udf-virtual.iso", "GetRCVDISC"},
    {"UdfSparable", "--disc", "disc-udf-sparable.iso", "GetRCVDISC"},
    {"UdfMetadata", "--disc", "disc-udf-metadata.iso", "GetRCVDISC"},
    {"Fat12", "--stick", "stick-fat12.img", "GetRCVUFD"},
    {"Fat16", "--stick", "stick-fat16.img", "GetRCVUFD"},
    {"Fat32", "--stick", "stick-fat32.img", "GetRCVUFD"},
    {"Exfat", "--stick", "stick-exfat.img", "GetRCVUFD"},
    {"Ntfs", "--stick", "stick-ntfs.img", "GetRCVUFD"},
    {"Partitioned", "--stick", "stick-table.img", "GetRCVUFD"},
};

INSTANTIATE_TEST_SUITE_P(Every, RecoveryMedium, testing::ValuesIn(media),
                         [](const auto& tested) { return std::string(tested.param.name); });

// With one primary partition the first logical one is number 2.
TEST_F(Landscape, LogicalPartitionActive_Status_RemarksThatNoPcStartsFromIt) {
    ASSERT_EQ(Shell("truncate -s 64M disk.img && printf 'label: dos\\n1: size=16MiB, type=7\\n"
                    "2: size=40MiB, type=f\\n5: size=16MiB, type=7, bootable\\n' | sfdisk --quiet disk.img")
                  .status,
              0);
    EXPECT_EQ(Kestova("--image disk.img status").errors,
              "kestova: partition 2 is active and a logical one; a PC starts from primary partitions only\n");
}

// A stick made of a disc's image has an MBR before the file system of the disc, with an active partition from
// sector 0.
TEST_F(Landscape, StickMadeOfADiscBesideTheInternalDisk_BarsOnlyItself) {
    Take("factory-mbr.img");
    Take("disc-joliet.iso");
    ASSERT_EQ(Shell("mv disc-joliet.iso stick.iso && truncate -s 1M stick.iso && "
                    "printf '\\200\\0\\1\\0\\27\\077\\040\\0\\0\\0\\0\\0\\0\\010\\0\\0' | "
                    "dd of=stick.iso bs=1 seek=446 conv=notrunc status=none && "
                    "printf '\\125\\252' | dd of=stick.iso bs=1 seek=510 conv=notrunc status=none && "
                    "cp stick.iso before.iso")
                  .status,
              0);
    ASSERT_THAT(Shell("sfdisk --dump stick.iso").output,
                HasSubstr("stick.iso1 : start=           0, size=        2048, type=17, bootable\n"));
    const std::string note = "kestova: stick.iso: partition 1 lies on the partition table\n";

    const Outcome status = Kestova("--image factory-mbr.img --image stick.iso status");
    EXPECT_EQ(status.status, 0);
    EXPECT_EQ(status.errors, note);
    EXPECT_THAT(status.output, HasSubstr("  1  0 B    1.0 MiB  hidden NTFS (0x17)  active"));

    const Outcome boot = Kestova("--image factory-mbr.img --image stick.iso boot recovery");
    EXPECT_EQ(boot.status, 0);
    EXPECT_THAT(boot.errors, StartsWith(note));
    EXPECT_THAT(Shell("sfdisk --dump factory-mbr.img | grep bootable").output, HasSubstr("type=27"));
    EXPECT_EQ(Shell("cmp stick.iso before.iso").status, 0);

    const Outcome itself = Kestova("--image stick.iso --image factory-mbr.img call SetActive 1");
    EXPECT_EQ(itself.status, 3);
    EXPECT_EQ(itself.errors, note);
    EXPECT_EQ(Shell("cmp stick.iso before.iso").status, 0);
}

TEST_F(Landscape, LinuxExtendedPartitionOnASecondDisk_BarsNothing) {
    Take("factory-mbr.img");
    ASSERT_EQ(Shell("truncate -s 64M linux.img && printf 'label: dos\\n1: size=16MiB, type=7\\n"
                    "2: size=40MiB, type=85\\n5: size=16MiB, type=83\\n' | sfdisk --quiet linux.img")
                  .status,
              0);
    const std::string pc = "--image factory-mbr.img --image linux.img ";
    const std::string note =
        "kestova: linux.img: an extended partition of type 0x85, which Windows does not know\n";

    for (const std::string words : {"status", "boot recovery", "boot system"}) {
        const Outcome outcome = Kestova(pc + words);
        EXPECT_EQ(outcome.status, 0) << words;
        EXPECT_EQ(outcome.errors, note) << words;
    }
    EXPECT_THAT(Kestova("--image linux.img --columns number,slot,start,size,type status").output,
                AllOf(HasSubstr("17.0 MiB  40.0 MiB  Linux extended (0x85)\n"),
                      HasSubstr("57.0 MiB  7.0 MiB   free\n")));
}

TEST_F(Landscape, InitialisedDiskWithoutPartitions_EachQuestion_IsAnsweredWithoutAProblem) {
    for (const std::string label : {"dos", "gpt"}) {
        SCOPED_TRACE(label);
        ASSERT_EQ(Shell("rm -f disk.img; truncate -s 64M disk.img && echo label: " + label +
                        " | sfdisk --quiet disk.img")
                      .status,
                  0);
        for (const std::string words :
             {"status", "call GetCurrentDiskType", "call GetActivePartitionNumber"}) {
            const Outcome outcome = Kestova("--image disk.img " + words);
            EXPECT_EQ(outcome.errors, "") << words;
        }
        const Outcome status = Kestova("--image disk.img status");
        EXPECT_EQ(status.status, 0);
        EXPECT_THAT(status.output, HasSubstr("Active partition   none\n"));
    }
}

}  // namespace
