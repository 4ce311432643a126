// The program on virtual disks, which another program opens for it.

#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::HasSubstr;

class VirtualDisk : public ProgramTest {
  protected:
    VirtualDisk() {
        EXPECT_EQ(
            Shell("qemu-img convert -f raw -O qcow2 " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.qcow2 && "
                  "cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img")
                .status,
            0);
    }

    // What is on the disk in it.
    Outcome Table() {
        return Shell(
            "qemu-img convert -f qcow2 -O raw disk.qcow2 back.img && sfdisk --dump back.img | grep ^back");
    }
};

TEST_F(VirtualDisk, Qcow2_BootRecoveryThenSystem_AnswersAsOnTheRawImageAndRestoresTheTable) {
    const std::string table = Table().output;
    for (const std::string words : {"status", "boot recovery", "--json status", "boot system"}) {
        const Outcome raw = Kestova("--no-backup --image disk.img " + words);
        const Outcome outcome = Kestova("--no-backup --image disk.qcow2 " + words);
        EXPECT_EQ(outcome.status, 0) << words;
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.output, raw.output);
        if (words == "boot recovery") {
            EXPECT_THAT(Table().output, HasSubstr("type=27, bootable\n"));
        }
    }
    EXPECT_EQ(Table().output, table);
    EXPECT_EQ(Shell("qemu-img check -q -f qcow2 disk.qcow2").status, 0);
}

TEST_F(VirtualDisk, SwitchedQcow2_Undo_RestoresTheDisk) {
    ASSERT_EQ(Kestova("--image disk.qcow2 boot recovery").status, 0);

    EXPECT_EQ(Kestova("undo disk.qcow2.kestova-backup-1").status, 0);

    EXPECT_EQ(Shell("qemu-img compare -f qcow2 -F raw disk.qcow2 disk.img").status, 0);
}

TEST_F(VirtualDisk, Qcow2InADescription_Status_IsTheDisk) {
    ASSERT_EQ(Kestova("--image disk.qcow2 --save pc.json status").status, 0);
    const Outcome outcome = Kestova("--pc pc.json status");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("installed Windows: contents"));
}

// The user whom the program is again has no rights over the server.
TEST_F(VirtualDisk, StartedThroughSudo_Status_IsTheDisk) {
    if (geteuid() != 0) GTEST_SKIP() << "only root is another user";
    const Outcome outcome =
        Shell("SUDO_UID=12345 SUDO_GID=12346 '" KESTOVA_PROGRAM "' --image disk.qcow2 status");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
}

TEST_F(VirtualDisk, LockedByAVirtualMachine_Status_IsRefusedInOneLine) {
    const Outcome outcome = Shell(
        "qemu-nbd --fork --pid-file=server --socket=$PWD/socket --format=qcow2 disk.qcow2 && "
        "{ '" KESTOVA_PROGRAM "' --image disk.qcow2 status; status=$?; kill $(cat server); exit $status; }");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "kestova: disk.qcow2: in use: qemu or another program holds a lock on it\n");
}

TEST_F(VirtualDisk, ServerNotInstalled_Status_NamesItsPackage) {
    const Outcome outcome = Shell("PATH=/nowhere '" KESTOVA_PROGRAM "' --image disk.qcow2 status");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "kestova: disk.qcow2: needs qemu-nbd (package qemu-utils), which is not installed\n");
}

// It waits for a reader of its output, with the disk open.
TEST_F(VirtualDisk, KilledProgram_LeavesNoServer) {
    std::string script;
    for (int i = 0; i < 100; ++i)
        script += "GetCurrentDiskType\n";
    WriteFile("script", script);
    const Outcome outcome = Shell(
        "echo $PWD/disk.qcow2 >name; servers() { grep -lsFf name /proc/[0-9]*/cmdline | wc -l; }; mkfifo pipe && "
        "{ '" KESTOVA_PROGRAM
        "' --image disk.qcow2 --json --trace run script >pipe & } && pid=$! && "
        "{ read -r line; servers; kill -KILL $pid; } <pipe; wait $pid; "
        "until test $(servers) = 0; do :; done");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "1\n");
}

// The server is one that never answers; it ends when nobody has the pipe open for writing any more.
TEST_F(VirtualDisk, KilledProgramWhileTheDiskIsBeingOpened_LeavesNoServer) {
    WriteFile("qemu-nbd", "#!/bin/sh\nexec 9>servers\nexec sleep 1000\n");
    const Outcome outcome =
        Shell("mkfifo servers && chmod +x qemu-nbd && { PATH=$PWD:$PATH '" KESTOVA_PROGRAM
              "' --image disk.qcow2 status & } && exec 8<servers && kill -KILL $! && cat <&8");
    EXPECT_EQ(outcome.status, 0);
}

}  // namespace
