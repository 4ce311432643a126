// The libraries that the program loads only for what needs them.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LateLibrary : public ProgramTest {
  protected:
    LateLibrary() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img && "
                        "qemu-img convert -f raw -O qcow2 disk.img disk.qcow2 && "
                        "ewfacquire -u -q -c fast -S 1048576 -f encase6 -t disk disk.img >/dev/null")
                      .status,
                  0);
    }

    // Those of the late libraries that the loader says it has loaded.
    std::vector<std::string> LoadedFor(const std::string& words, const std::string& writer = "") {
        const Outcome outcome =
            Shell("rm -f loaded.* && " + writer +
                  " LD_DEBUG=files LD_DEBUG_OUTPUT=loaded '" KESTOVA_PROGRAM "' " + words);
        EXPECT_EQ(outcome.status, 0) << words << ": " << outcome.errors;
        std::vector<std::string> loaded;
        for (const std::string library : {"libewf", "libhivex", "libnbd", "libnettle"}) {
            if (Shell("grep -q 'file=" + library + "\\.so.*dynamically loaded' loaded.*").status == 0)
                loaded.push_back(library);
        }
        return loaded;
    }

    // As if the library were not installed: the loader finds a file that is none.
    Outcome Without(const std::string& library, const std::string& words) {
        return Shell("mkdir -p hidden && : >hidden/" + library +
                     " && LD_LIBRARY_PATH=$PWD/hidden '" KESTOVA_PROGRAM "' " + words);
    }
};

TEST_F(LateLibrary, DiskImage_Status_LoadsNone) {
    EXPECT_THAT(LoadedFor("--image disk.img status"), IsEmpty());
}

TEST_F(LateLibrary, DescribedPc_Status_LoadsNone) {
    ASSERT_EQ(Kestova("--pc winpe-two-disks --save described.json status").status, 0);
    ASSERT_EQ(Kestova("--image disk.img --save on-image.json status").status, 0);
    EXPECT_THAT(LoadedFor("--pc described.json status"), IsEmpty());
    EXPECT_THAT(LoadedFor("--pc on-image.json status"), IsEmpty());
}

TEST_F(LateLibrary, VirtualDisk_Status_LoadsWhatReadsIt) {
    EXPECT_THAT(LoadedFor("--image disk.qcow2 status"), ElementsAre("libnbd"));
    EXPECT_THAT(LoadedFor("--image disk.E01 status"), ElementsAre("libewf"));
}

TEST_F(LateLibrary, VirtualDiskInADescription_Status_LoadsWhatReadsIt) {
    ASSERT_EQ(Kestova("--image disk.qcow2 --save here.json status").status, 0);
    ASSERT_EQ(Shell("mkdir below && sed 's|disk.qcow2|../disk.qcow2|' here.json >below/pc.json").status, 0);
    EXPECT_THAT(LoadedFor("--pc here.json status"), ElementsAre("libnbd"));
    EXPECT_THAT(LoadedFor("--pc below/pc.json status"), ElementsAre("libnbd"));
}

// What the text does not show, the description can still say.
TEST_F(LateLibrary, DescriptionThatHidesItsImages_Status_LoadsWhatReadsAny) {
    ASSERT_EQ(Kestova("--image disk.qcow2 --save pc.json status").status, 0);
    ASSERT_EQ(Shell("sed 's|\"image\"|\"\\\\u0069mage\"|' pc.json >escaped-key.json && "
                    "sed 's|disk.qcow2|.\\\\/disk.qcow2|' pc.json >escaped-name.json && "
                    "grep -q u0069mage escaped-key.json && grep -q '\\.\\\\/disk' escaped-name.json")
                  .status,
              0);
    EXPECT_THAT(LoadedFor("--pc escaped-key.json status"), ElementsAre("libewf", "libnbd"));
    EXPECT_THAT(LoadedFor("--pc escaped-name.json status"), ElementsAre("libewf", "libnbd"));
    EXPECT_THAT(LoadedFor("--pc /dev/stdin status", "sed \"s|disk.qcow2|$PWD/disk.qcow2|\" pc.json |"),
                ElementsAre("libewf", "libnbd"));
}

TEST_F(LateLibrary, DiskImage_LettersAndHashes_LoadWhatTheyNeed) {
    ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/installed-windows.img windows.img").status,
              0);
    EXPECT_THAT(LoadedFor("--image windows.img letters"), ElementsAre("libhivex"));
    EXPECT_THAT(LoadedFor("--image windows.img call GetWinDriveLetters"), ElementsAre("libhivex"));
    EXPECT_THAT(LoadedFor("--image disk.img --hash files 1:/sources"), ElementsAre("libnettle"));
}

TEST_F(LateLibrary, NotInstalled_AsksForItsPackageOnlyWhereItIsNeeded) {
    struct Needed {
        std::string library;
        std::string package;
        std::string words;
        int status;
        std::string where;
    };
    for (const Needed& needed :
         {Needed{"libnbd.so.0", "libnbd0", "--image disk.qcow2 status", 3, "disk.qcow2: "},
          Needed{"libewf.so.2", "libewf2", "--image disk.E01 status", 3, "disk.E01: "},
          Needed{"libhivex.so.0", "libhivex0", "--image disk.img letters", 1, ""},
          Needed{"libnettle.so.8", "libnettle8", "--image disk.img --hash files 1:/sources", 1, ""}}) {
        const Outcome outcome = Without(needed.library, needed.words);
        EXPECT_EQ(outcome.status, needed.status) << needed.library;
        EXPECT_EQ(outcome.errors, "kestova: " + needed.where + "needs " + needed.library + " (package " +
                                      needed.package + "), which is not installed or cannot be loaded\n");
    }

    // All four are hidden by now.
    EXPECT_EQ(Without("libnbd.so.0", "--image disk.img status").status, 0);
    EXPECT_EQ(Without("libnbd.so.0", "--image disk.img call IsDynamic").status, 0);
}

}  // namespace
