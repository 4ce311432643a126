// `kestova files` on images, compared with other tools that read the same file systems.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::HasSubstr;

class FilesOnImages : public ProgramTest {
  protected:
    FilesOnImages() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    }
    std::string Output(const std::string& command) {
        const Outcome outcome = Shell(command);
        EXPECT_EQ(outcome.status, 0) << command << "\n" << outcome.errors;
        return outcome.output;
    }
    std::string Files(const std::string& words) {
        const Outcome outcome = Kestova("--image disk.img files " + words);
        EXPECT_EQ(outcome.status, 0) << words << "\n" << outcome.errors;
        return outcome.output;
    }
};

// The first column, without its title, without regard to case and order.
constexpr const char* namesOnly = " | tail -n +2 | sed 's/  .*//' | sort";

TEST_F(FilesOnImages, NtfsFolder_Files_AreThoseOfNtfsls) {
    ChangeRecoveryVolume("true");
    const std::string theirs = Output("ntfsls --force --path /sources part | grep -vx \\. | sort");
    EXPECT_THAT(theirs, HasSubstr("Qelhdrcv.ini\n"));
    WriteFile("ours", Files("1:/sources"));
    EXPECT_EQ(Output(std::string("cat ours") + namesOnly), theirs);
}

TEST_F(FilesOnImages, FileTypedInOtherCase_Files_HasTheNameThatIsStored) {
    ChangeRecoveryVolume("true");
    const std::string stored = Output("ntfsls --force --path /sources part | grep -ix qelhdrcv.ini");
    EXPECT_THAT(Files("1:/SOURCES/qelhdrcv.INI --hash"),
                HasSubstr("\n" + stored.substr(0, stored.find('\n')) + "  "));
}

TEST_F(FilesOnImages, NtfsFiles_Hash_IsThatOfNtfscat) {
    ChangeRecoveryVolume(
        "head -c 3000001 /dev/zero | tr '\\0' x >long && truncate -s 5M long &&"
        " ntfscp --force part long 'sources/a long one.wim'");
    const std::string whole =
        Output("ntfscat --force part 'sources/a long one.wim' | sha256sum | cut -c1-64");
    EXPECT_EQ(Files("'1:/sources/a long one.wim' --hash"),
              "Name            Size     SHA-256\na long one.wim  5.0 MiB  " + whole);
    EXPECT_THAT(Files("C:/sources --hash"), HasSubstr("a long one.wim  5.0 MiB  " + whole));
}

TEST_F(FilesOnImages, FatStick_Files_AreThoseOfMdirWithTheirHashes) {
    const std::string stick = "--stick " KESTOVA_TEST_IMAGES "/stick-fat32.img ";
    const std::string theirs =
        Output("mdir -b -i " KESTOVA_TEST_IMAGES "/stick-fat32.img ::/sources | sed 's#/$##;s#.*/##' | sort");
    WriteFile("ours", Files(stick + "F:/sources"));
    EXPECT_EQ(Output(std::string("cat ours") + namesOnly), theirs);
    const std::string hash = Output("mtype -i " KESTOVA_TEST_IMAGES
                                    "/stick-fat32.img '::/sources/Image of the factory state.wim'"
                                    " | sha256sum | cut -c1-64");
    EXPECT_THAT(Files(stick + "F:/sources --hash"),
                HasSubstr("Image of the factory state.wim  47.7 KiB  " + hash));
}

TEST_F(FilesOnImages, EveryKindOfDiscAndStick_Files_HaveTheSameContent) {
    for (const char* const medium :
         {"--disc " KESTOVA_TEST_IMAGES "/disc-joliet.iso", "--disc " KESTOVA_TEST_IMAGES "/disc-udf.iso",
          "--disc " KESTOVA_TEST_IMAGES "/disc-udf-virtual.iso",
          "--stick " KESTOVA_TEST_IMAGES "/stick-exfat.img",
          "--stick " KESTOVA_TEST_IMAGES "/stick-fat12.img",
          "--stick " KESTOVA_TEST_IMAGES "/stick-ntfs.img"}) {
        const std::string files = Files(std::string(medium) + " F:/sources --hash");
        EXPECT_THAT(files, HasSubstr("\nboot.wim                        3 B       "
                                     "07d9d387aebfdb9a084aa2126a3f55f736fdf6566d9d6afa5a02c2730224c190\n"))
            << medium;
        EXPECT_THAT(files, HasSubstr("\nidf                             folder    -\n")) << medium;
    }
}

TEST_F(FilesOnImages, EveryCommandLine_Files_LeaveTheImageAlone) {
    Files("1:/sources --hash");
    EXPECT_TRUE(AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"));
    EXPECT_EQ(Output("ls disk.img*"), "disk.img\n");
}

TEST_F(FilesOnImages, TwoDisks_Files_AreNamedByDiskAndPartition) {
    const std::string two = "--image " KESTOVA_TEST_IMAGES "/factory-gpt.img ";
    const std::string second = Kestova("--image disk.img " + two + "--json files 1.2:/").output;
    EXPECT_THAT(second, HasSubstr(R"("disk":1,"partition":2,)"));
    EXPECT_THAT(Kestova("--image disk.img " + two + "--json files 2:/").output,
                HasSubstr(R"("disk":0,"partition":2,)"));
}

TEST_F(FilesOnImages, LockedByBitLocker_Files_SaySo) {
    const Outcome outcome = Kestova("--image " KESTOVA_TEST_IMAGES "/bitlocker.img files '2:\\Windows'");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "kestova: partition 2 of disk 0 is locked by BitLocker\n");
}

TEST_F(FilesOnImages, DamagedVolume_Files_SaySo) {
    // The size of an index block, as a power of two.
    ChangeRecoveryVolume("printf '\\340' | dd of=part bs=1 seek=68 conv=notrunc status=none");
    const Outcome outcome = Kestova("--image disk.img files 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              "kestova: partition 1 of disk 0 is damaged: let chkdsk repair it on a running Windows\n");
}

TEST_F(FilesOnImages, FileLongerThanItsClusters_Hash_NamesItAndGoesOn) {
    ASSERT_EQ(
        Shell("cp " KESTOVA_TEST_IMAGES "/stick-fat12.img stick.img &&"
              " at=$(grep -obUam1 'BOOT    WIM' stick.img | cut -d: -f1) &&"
              " printf '\\000\\000\\001' | dd of=stick.img bs=1 seek=$((at + 28)) conv=notrunc status=none")
            .status,
        0);
    const Outcome outcome = Kestova("--image disk.img --stick stick.img --hash files F:/sources");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "kestova: sources\\boot.wim cannot be read (error 1392)\n");
    EXPECT_THAT(outcome.output, HasSubstr("\nboot.wim                        64.0 KiB  -\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nQelhdrcv.ini                    23 B      0378ce27"));
}

// Characters that NTFS allows in a name, and a terminal obeys.
TEST_F(FilesOnImages, NtfsNameThatATerminalObeys_Files_ShowItEscaped) {
    ChangeRecoveryVolume(
        "printf x >one && ntfscp --force part one 'sources/aQ[31mb' &&"
        " LC_ALL=C sed -i 's/a\\x00Q\\x00\\[\\x003\\x00/a\\x00\\x1b\\x00[\\x003\\x00/g' part");
    EXPECT_THAT(Files("1:/sources"), HasSubstr("\na\\u001B[31mb  1 B\n"));
}

}  // namespace
