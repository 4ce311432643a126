// Images that other programs use: looked at, and never written.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "machine/media/device/descriptor.h"
#include "machine/media/device/file_device.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::IsEmpty;

class InUseTest : public ImageTest {
  protected:
    const std::string image = FactoryMbrImage();

    std::vector<std::string> NotesOf(ImageAccess access) { return Attach(image, access).medium->Notes(); }
};

// As a virtual machine locks the file: bytes that stand for reading and writing, of the open file.
TEST_F(InUseTest, LockedByAnOpenFile_Attach_IsRefusedForWritingOnly) {
    const Descriptor other(open(image.c_str(), O_RDONLY | O_CLOEXEC));
    struct flock lock = {};
    lock.l_type = F_RDLCK;
    lock.l_start = 100;
    lock.l_len = 1;
    ASSERT_EQ(fcntl(other.Number(), F_OFD_SETLK, &lock), 0);

    EXPECT_EQ(Complaint(image, ImageAccess::Write),
              image + ": in use: qemu or another program holds a lock on it");
    EXPECT_THAT(
        NotesOf(ImageAccess::Read),
        ElementsAre(image +
                    ": in use: qemu or another program holds a lock on it, and may change what is shown"));
    EXPECT_EQ(Complaint(image, ImageAccess::Overlay), "");
}

TEST_F(InUseTest, LockedByAProcess_AttachForWriting_IsRefusedWithItsNameAndNumber) {
    int pipeEnds[2];
    ASSERT_EQ(pipe2(pipeEnds, O_CLOEXEC), 0);
    Descriptor readEnd(pipeEnds[0]);
    const Descriptor writeEnd(pipeEnds[1]);
    const pid_t child = fork();
    if (child == 0) {
        const Descriptor own(open(image.c_str(), O_RDONLY | O_CLOEXEC));
        struct flock lock = {};
        lock.l_type = F_RDLCK;
        const char done = fcntl(own.Number(), F_SETLK, &lock) == 0 ? 'y' : 'n';
        if (write(writeEnd.Number(), &done, 1) == 1) pause();
        _exit(0);
    }
    char done = 0;
    EXPECT_EQ(read(readEnd.Number(), &done, 1), 1);
    EXPECT_EQ(done, 'y');

    const std::string message = Complaint(image, ImageAccess::Write);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);

    EXPECT_THAT(message, ContainsRegex(": in use: .* \\(process " + std::to_string(child) +
                                       "\\) holds a lock on it$"));
    EXPECT_EQ(Complaint(image, ImageAccess::Write), "");
}

// As a file system in user space has it.
TEST_F(InUseTest, OpenForWritingWithoutALock_AttachForWriting_IsRefused) {
    {
        const std::fstream other(image, std::ios::in | std::ios::out | std::ios::binary);
        EXPECT_EQ(Complaint(image, ImageAccess::Write),
                  image + ": in use: another program has opened it for writing");
    }
    const std::ifstream reader(image, std::ios::binary);
    EXPECT_EQ(Complaint(image, ImageAccess::Write), "");
}

// The device is read-only, so it has the file open for reading only.
TEST_F(InUseTest, BehindALoopDevice_Attach_IsRefusedForWritingAndNamesTheDevice) {
    if (!std::filesystem::exists("/sys/block")) GTEST_SKIP() << "the kernel shows no devices here";
    if (StatusOf("losetup --read-only --find '" + image + "' 2>/dev/null") != 0)
        GTEST_SKIP() << "no loop device can be set up here";
    const std::string loop =
        OutputOf("losetup --noheadings --output NAME --associated '" + image + "' | tr -d '\\n'");
    // By another name, too.
    const std::string link = (Folder() / "link.img").string();
    OutputOf("ln '" + image + "' '" + link + "'");

    const std::string message = Complaint(link, ImageAccess::Write);
    const std::vector<std::string> notes = NotesOf(ImageAccess::Read);
    OutputOf("losetup --detach " + loop);

    EXPECT_EQ(message, link + ": in use: the loop device " + loop + " is on it");
    EXPECT_THAT(notes, ElementsAre(image + ": in use: the loop device " + loop +
                                   " is on it, and may change what is shown"));
    EXPECT_EQ(Complaint(link, ImageAccess::Write), "");
}

TEST_F(InUseTest, AttachedForWriting_VirtualMachineStarts_IsRefusedUntilItIsDetached) {
    const std::string look = "qemu-img bench -q -c 1 -f raw '" + image + "' >/dev/null 2>&1";
    {
        const Disk disk = Attach(image, ImageAccess::Write);
        EXPECT_NE(StatusOf(look), 0);
    }
    EXPECT_EQ(StatusOf(look), 0);
    const Disk disk = Attach(image, ImageAccess::Read);
    EXPECT_EQ(StatusOf(look), 0);
    EXPECT_THAT(disk.medium->Notes(), IsEmpty());
}

}  // namespace
}  // namespace machine
