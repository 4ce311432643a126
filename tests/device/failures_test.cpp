// Every platform call of the choice fails once, at every place: nothing stays on loan and the answer stays
// one that callers know.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "machine/facts/call_table.h"
#include "tests/device/hosted_pc.h"

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

// Whether the rule applied.
bool ChooseWith(const machine::FaultRule& rule) {
    HostedPc pc(TwoKinds());
    pc.emulated.faults.Arm(rule);
    Choice choice;
    choice.found = CDiskDrive().GetFirstInternalDriveNumber(choice.number, choice.marker);
    EXPECT_THAT(choice.number, testing::AnyOf(-1, 0, 1));
    EXPECT_EQ(choice.number == -1, choice.marker == 99);  // a marker comes with a disk, and only then
    if (choice.number != -1) {
        EXPECT_EQ(choice.found, TRUE);
    }
    EXPECT_FALSE(pc.emulated.journal.Records().empty());
    return pc.emulated.faults.Fired() > 0;
}

uint32_t CodeFor(const machine::CallInfo& call) {
    return call.failsWith == machine::FailsWith::Hresult ? 0x80004005 : ERROR_GEN_FAILURE;
}

// Fails the first, second, ... call of each name until none is left to fail; answers how many failed.
int FailEachCall(bool onwards) {
    int failed = 0;
    for (const machine::CallInfo& call : machine::AllCalls()) {
        if (call.name == "CoInitializeEx") continue;  // the host's own
        for (uint32_t nth = 1;; ++nth) {
            const machine::FaultRule rule{.call = std::string(call.name),
                                          .nth = nth,
                                          .onwards = onwards,
                                          .afterEffect = call.changesPc,
                                          .code = CodeFor(call)};
            SCOPED_TRACE(rule.call + "#" + std::to_string(nth));
            if (!ChooseWith(rule)) break;
            ++failed;
        }
    }
    return failed;
}

}  // namespace

TEST(GetFirstInternalDriveNumber, EveryCallFailsOnce) {
    EXPECT_GT(FailEachCall(false), 60);
}

TEST(GetFirstInternalDriveNumber, EveryCallFailsFromThenOn) {
    EXPECT_GT(FailEachCall(true), 60);
}

// The odd success: a call says yes and hands out nothing.
TEST(GetFirstInternalDriveNumber, EveryResultCodeSucceedsWithoutEffect) {
    int applied = 0;
    for (const machine::CallInfo& call : machine::AllCalls()) {
        if (call.failsWith != machine::FailsWith::Hresult || call.name == "CoInitializeEx") continue;
        for (uint32_t nth = 1;; ++nth) {
            SCOPED_TRACE(std::string(call.name) + "#" + std::to_string(nth));
            if (!ChooseWith({.call = std::string(call.name), .nth = nth, .code = S_OK})) break;
            ++applied;
        }
    }
    EXPECT_GT(applied, 20);
}
