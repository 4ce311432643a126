// Disk images, in a library that was built to open them: an application's tests look at a real disk, and
// leave it as it is.

#include <gmock/gmock.h>

#include <fstream>

#include "tests/c/interface.h"
#include "tests/support/shell/shell.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

class COnImages : public CInterfaceTest {
  protected:
    std::string File(const char* name) const { return folder_.Path() / name; }
    // A disk that nobody may write to, as all tests share it.
    static constexpr const char* disk = KESTOVA_TEST_IMAGES "/factory-mbr.img";
    void ExpectSwitch() {
        EXPECT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_DONE);
        EXPECT_EQ(kestova_get_active_partition_number(handle_), 1);
    }
    std::string Refused(const std::string& name) {
        EXPECT_EQ(kestova_open_pc(name.c_str()), nullptr);
        EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_PC);
        return Utf8(LastProblem().words);
    }

    TemporaryFolder folder_;
};

TEST_F(COnImages, DiskImage_Switched_IsSwitchedInMemoryOnly) {
    const std::string before = OutputOf(std::string("sha256sum ") + disk);
    Open(disk);
    ExpectSwitch();
    EXPECT_THAT(Trace(), Contains(HasSubstr("IVdsAdvancedDisk::ChangeAttributes")));
    EXPECT_EQ(OutputOf(std::string("sha256sum ") + disk), before);
    EXPECT_EQ(kestova_save(pc_, File("saved.json").c_str()), 0);
    EXPECT_EQ(Utf8(LastProblem().words), File("saved.json") + ": no description holds a PC on disk images");
}

TEST_F(COnImages, VirtualDisk_Switched_IsOpenedByItsProgram) {
    const std::string virtualDisk = File("disk.qcow2");
    OutputOf("qemu-img convert -f raw -O qcow2 " + std::string(disk) + " " + virtualDisk);
    Open(virtualDisk.c_str());
    ExpectSwitch();
}

TEST_F(COnImages, DescriptionOnImages_Switched_FindsThemBesideItself) {
    std::filesystem::create_symlink(disk, folder_.Path() / "disk.img");
    std::ofstream(File("pc.json")) << R"(
        {"disks": [{"number": 0, "image": "disk.img", "location": "0",
                    "wmi": {"pnpDeviceId": "IDE\\DISKIMAGE\\0"}, "controllers": ["PCI\\VEN_8086&DEV_2922\\0"],
                    "partitions": [{"number": 1, "volume": {"letters": "C"}},
                                   {"number": 2, "volume": {"letters": "D"}}]}]})";
    Open(File("pc.json").c_str());
    ExpectSwitch();
}

TEST_F(COnImages, DescribedPc_Opened_IsAsInALibraryWithoutImages) {
    Open("factory-mbr");
    ExpectSwitch();
    EXPECT_EQ(kestova_save(pc_, File("saved.json").c_str()), 1);
}

TEST_F(COnImages, WhatIsNeither_Opened_IsRefusedByName) {
    std::ofstream(File("notes.txt")) << "Not a disk.";
    EXPECT_THAT(Refused(File("notes.txt")), StartsWith(File("notes.txt") + ": "));
    EXPECT_EQ(Refused("factory-mbt"),
              "kestova_open_pc: there is no machine or file 'factory-mbt'; did you mean factory-mbr?");
    std::ofstream(File("pc.json")) << R"({"disks": [{"number": 0, "image": "none.img"}]})";
    EXPECT_THAT(Refused(File("pc.json")), StartsWith(File("none.img") + ": "));
}

}  // namespace
