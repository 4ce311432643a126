// What the program has given up while it works, as the kernel sees it.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/support/program/program.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/filters/filter_program.h"
#include "tools/kestova/process/system_calls.h"

namespace {

using testing::HasSubstr;

class Confinement : public ProgramTest {
  protected:
    // What /proc says of the program after its first line of output, while it waits for the reader of the
    // rest, which is more than a pipe holds. The files are open by then.
    std::string StatusOf(const std::string& environment, const std::string& words) {
        std::string script;
        for (int i = 0; i < 100; ++i)
            script += "GetCurrentDiskType\n";
        WriteFile("script", script);
        EXPECT_EQ(
            Shell("rm -f pipe && mkfifo pipe && { " + environment + " '" KESTOVA_PROGRAM "' " + words +
                  " --json --trace run script >pipe & } && pid=$! && "
                  "{ read -r line; cat /proc/$pid/status /proc/$pid/limits >status; cat >rest; } <pipe && "
                  "wait $pid && test $(cat rest | wc -c) -gt 80000")
                .status,
            0);
        return ReadFile("status");
    }
};

TEST_F(Confinement, Question_Run_HasNeitherNewPrivilegesNorOtherCallsNorCapabilities) {
    const std::string status = StatusOf("", "--pc factory-mbr");
    EXPECT_THAT(status, HasSubstr("NoNewPrivs:\t1\n"));
    EXPECT_THAT(status, HasSubstr("Seccomp:\t2\n"));
    EXPECT_THAT(status, HasSubstr("CapEff:\t0000000000000000\n"));
    EXPECT_THAT(status, HasSubstr("CapPrm:\t0000000000000000\n"));
    EXPECT_THAT(status, testing::ContainsRegex("Max core file size *0 "));
    EXPECT_THAT(status, testing::ContainsRegex("Max cpu time *410 "));
}

// The limit follows what the file can hold.
TEST_F(Confinement, VirtualDiskThatClaims2Terabytes_Question_HasTheLimitOfASmallOne) {
    ASSERT_EQ(Shell("truncate -s 2T disk.img && echo 'label: dos' | sfdisk --quiet disk.img && "
                    "qemu-img convert -f raw -O qcow2 disk.img disk.qcow2")
                  .status,
              0);
    EXPECT_THAT(StatusOf("", "--image disk.qcow2"), testing::ContainsRegex("Max cpu time *410 "));
    EXPECT_THAT(StatusOf("", "--image disk.img"), testing::ContainsRegex("Max cpu time *20890 "));
}

TEST_F(Confinement, StartedThroughSudo_Question_IsTheUserAgain) {
    if (geteuid() != 0) GTEST_SKIP() << "only root is another user";
    EXPECT_THAT(StatusOf("SUDO_UID=12345 SUDO_GID=12346", "--pc factory-mbr"),
                HasSubstr("Uid:\t12345\t12345\t12345\t12345\nGid:\t12346\t12346\t12346\t12346\n"));
}

// The new file is made in a folder that may be root's.
TEST_F(Confinement, StartedThroughSudo_Save_StaysRootWithTheCapabilitiesForFiles) {
    if (geteuid() != 0) GTEST_SKIP() << "only root is another user";
    const std::string status = StatusOf("SUDO_UID=12345 SUDO_GID=12346", "--pc factory-mbr --save pc.json");
    EXPECT_THAT(status, HasSubstr("Uid:\t0\t0\t0\t0\n"));
    EXPECT_THAT(status, HasSubstr("CapEff:\t000000000000000e\n"));
    EXPECT_TRUE(std::filesystem::exists(Folder() / "pc.json"));
}

// It has opened nothing yet, and has given up what no command needs.
TEST_F(Confinement, ScriptOnAPipe_Run_IsConfinedBeforeItReads) {
    const Outcome outcome =
        Shell("mkfifo pipe && { '" KESTOVA_PROGRAM
              "' --pc factory-mbr run - <pipe >output & } && pid=$! && exec 3>pipe && "
              "until grep -q '^Seccomp:.2' /proc/$pid/status; do :; done && "
              "grep NoNewPrivs /proc/$pid/status; echo IsDynamic >&3; exec 3>&-; wait $pid");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "NoNewPrivs:\t1\n");
}

// sigaltstack is called by the sanitizer's _exit.
TEST(SystemCalls, OneThatIsNotAllowed_EndsTheProgramWithAMessage) {
    EXPECT_EXIT(
        {
            AllowOnly(FilterProgram(std::vector<AllowedCall>{{"write"}, {"exit_group"}, {"sigaltstack"}}));
            static_cast<void>(getppid());
            _exit(0);
        },
        testing::ExitedWithCode(1),
        "kestova: ended, because it was about to make a system call that it has given up \\(number [0-9]+\\)");
}

TEST(SystemCalls, ReadingOnly_OpeningForWriting_IsRefused) {
    EXPECT_EXIT(
        {
            AllowOnly(FilterProgram(std::vector<AllowedCall>{
                {"write"}, {"exit_group"}, {"sigaltstack"}, {"openat", Only::Reading}}));
            if (open("/dev/null", O_RDONLY) < 0) _exit(2);
            _exit(open("/dev/null", O_WRONLY) < 0 ? 3 : 0);
        },
        testing::ExitedWithCode(1), "has given up");
}

// The filter is made when the program is built, with a number that stands for the process.
void SignalOnlyOwnProcess(pid_t signalled) {
    AllowOnly(FilterProgram(std::vector<AllowedCall>{
        {"write"}, {"exit_group"}, {"sigaltstack"}, {"gettid"}, {"getpid"}, {"tgkill", Only::OwnProcess}}));
    _exit(tgkill(signalled, signalled, 0) == 0 ? 0 : 2);
}

TEST(SystemCalls, OwnProcessOnly_SignalToItself_IsAllowed) {
    EXPECT_EXIT(SignalOnlyOwnProcess(getpid()), testing::ExitedWithCode(0), "");
}

TEST(SystemCalls, OwnProcessOnly_SignalToAnother_IsRefused) {
    const pid_t parent = getpid();
    EXPECT_EXIT(SignalOnlyOwnProcess(parent), testing::ExitedWithCode(1), "has given up");
}

TEST(SystemCalls, EveryWork_HasAFilterOfItsOwn) {
    for (int bits = 0; bits < 16; ++bits) {
        const ConfinedWork work = {.writesImages = (bits & 1) != 0,
                                   .writesDisks = (bits & 2) != 0,
                                   .saves = (bits & 4) != 0,
                                   .imageBytes = (bits & 8) != 0 ? uint64_t{512} : 0};
        EXPECT_FALSE(SystemCallFilter(RowsOf(work)).empty()) << bits;
    }
    EXPECT_FALSE(SystemCallFilter(RowsAtStart()).empty());
}

// A work that nobody thought of is not done without a filter.
TEST(SystemCalls, NoFilter_AllowOnly_Throws) {
    EXPECT_THROW(AllowOnly({}), Failed);
}

}  // namespace
