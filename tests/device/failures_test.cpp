// Every platform call of the choice fails once, at every place: nothing stays on loan and the answer stays
// one that callers know.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "machine/calls/call_table.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/fault_walk.h"

namespace {

struct Choice {
    BOOL found = FALSE;
    int number = 99;
    int marker = 99;
};

// Windows PE with an IDE disk, a SCSI disk and an IDE.INI.
machine::Pc TwoKinds() {
    machine::Pc pc = machine::WinPeTwoDisks();
    pc.disks[1].wmi->interfaceType = "SCSI";
    return pc;
}

machine::Journal UndisturbedRun() {
    HostedPc pc(TwoKinds());
    Choice choice;
    EXPECT_TRUE(CDiskDrive().GetFirstInternalDriveNumber(choice.number, choice.marker));
    return pc.emulated.journal;
}

}  // namespace

TEST(GetFirstInternalDriveNumber, EveryCallFails_ReturnsADiskOrNone) {
    const int visited = WalkFaults(UndisturbedRun(), [](machine::FaultRule rule) {
        HostedPc pc(TwoKinds());
        // A release that failed has released all the same.
        if (IsHonest(rule)) rule.afterEffect = machine::FindCall(rule.call)->changesPc;
        pc.emulated.faults.Arm(rule);
        Choice choice;
        choice.found = CDiskDrive().GetFirstInternalDriveNumber(choice.number, choice.marker);
        EXPECT_THAT(choice.number, testing::AnyOf(-1, 0, 1));
        EXPECT_EQ(choice.number == -1, choice.marker == 99);  // a marker comes with a disk, and only then
        if (choice.number != -1) {
            EXPECT_EQ(choice.found, TRUE);
        }
        EXPECT_FALSE(pc.emulated.journal.Records().empty());
        EXPECT_GT(pc.emulated.faults.Fired(), 0);
    });
    EXPECT_GT(visited, 140);
}
