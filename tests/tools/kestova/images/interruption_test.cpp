// Ctrl-C and other signals that end the program: at once while it reads, and after the change once it writes.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* nothingChanged = "kestova: interrupted; nothing was changed\n";
constexpr const char* notBefore =
    "kestova: interrupted, but not before the change had ended as shown above\n";

class Interruption : public ProgramTest {
  protected:
    Interruption() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    }

    bool Exists(const std::string& name) const { return std::filesystem::exists(Folder() / name); }
    bool IsAsMade() { return AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"); }
    std::string ActiveLine() { return Shell("sfdisk --dump disk.img | grep bootable").output; }
};

// --- while it reads ---

class Reading : public Interruption {
  protected:
    // So many questions that their answers fill a pipe, and a switch at the end.
    Reading() {
        std::string script;
        for (int i = 0; i < 100; ++i)
            script += "GetCurrentDiskType\n";
        WriteFile("script", script + "SetRcvprtActive\n");
    }

    // Does that as soon as the first answer is there; the program then waits for a reader of the next ones. A
    // shell that is not interactive would have it ignore SIGINT. What the shell itself says of a signal is
    // left out.
    Outcome AtTheFirstAnswer(const std::string& action, const std::string& words) {
        Outcome outcome = Shell("mkfifo pipe && { env --default-signal=INT '" KESTOVA_PROGRAM "' " + words +
                                " --trace run script >pipe 2>said & } && pid=$! && { read -r line; " +
                                action + "; } <pipe; wait $pid");
        outcome.errors = ReadFile("said");
        return outcome;
    }
};

struct Signal {
    const char* name;
    int status;
};

class EachSignal : public Reading, public testing::WithParamInterface<Signal> {};

TEST_P(EachSignal, WhileItReads_EndsTheProgramAndNothingIsChanged) {
    const auto [name, status] = GetParam();
    const Outcome outcome =
        AtTheFirstAnswer(std::string("kill -") + name + " $pid", "--json --image disk.img");

    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.errors,
              R"({"error":"interrupted; nothing was changed","status":)" + std::to_string(status) + "}\n");
    EXPECT_TRUE(IsAsMade());
    EXPECT_FALSE(Exists("disk.img.kestova-backup-1"));
}

INSTANTIATE_TEST_SUITE_P(Every, EachSignal,
                         testing::ValuesIn(std::vector<Signal>{{"HUP", 129}, {"INT", 130}, {"TERM", 143}}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(Reading, VirtualDisk_Interrupted_LeavesNoServer) {
    ASSERT_EQ(
        Shell("qemu-img convert -f raw -O qcow2 disk.img disk.qcow2 && echo $PWD/disk.qcow2 >name").status,
        0);
    const std::string servers = "{ grep -lsFf name /proc/[0-9]*/cmdline | wc -l; }";

    const Outcome outcome = AtTheFirstAnswer(servers + "; kill -INT $pid", "--image disk.qcow2");

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.output, "1\n");
    EXPECT_EQ(outcome.errors, nothingChanged);
    EXPECT_EQ(Shell("until test $(" + servers + ") = 0; do :; done").status, 0);
}

// As a program is started by nohup.
TEST_F(Reading, SignalThatIsIgnored_TheProgramGoesOn) {
    const Outcome outcome = Shell("trap '' HUP; mkfifo pipe && { '" KESTOVA_PROGRAM
                                  "' --image disk.img --trace run script >pipe & } && pid=$! && "
                                  "{ read -r line; kill -HUP $pid; cat >rest; } <pipe; wait $pid");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(ActiveLine(), HasSubstr("type=27, bootable"));
}

// The line on which the terminal has shown ^C, or the program its progress, is cleared first.
TEST_F(Reading, OnATerminal_Interrupted_ReplacesTheLine) {
    WriteFile("command", "mkfifo pipe\nenv TERM=xterm '" KESTOVA_PROGRAM
                         "' --image disk.img --trace run script >pipe &\n"
                         "pid=$!\n{ read -r line; kill -TERM $pid; } <pipe\nwait $pid\n");
    const Outcome outcome = Shell("script --quiet --return --command 'sh command' terminal </dev/null");
    EXPECT_EQ(outcome.status, 143);
    EXPECT_THAT(outcome.output, HasSubstr("\r\033[Kkestova: interrupted; nothing was changed"));
}

// --- while it writes ---

class Writing : public Interruption {
  protected:
    void SetUp() override {
        if (Shell("strace -qq -o calls true").status != 0) GTEST_SKIP() << "no program can be traced here";
    }

    // Ctrl-C at the so-manieth flush of the medium or of a file beside it. The tracer and what looks for
    // leaks exclude each other.
    Outcome AtFlush(int number, const std::string& words) {
        return Shell(
            "ASAN_OPTIONS=detect_leaks=0 strace -qq -o calls -e trace=fsync -e inject=fsync:signal=INT:when=" +
            std::to_string(number) + " '" KESTOVA_PROGRAM "' " + words);
    }
};

class EachFlush : public Writing, public testing::WithParamInterface<int> {};

TEST_P(EachFlush, OfASwitch_Interrupted_EndsWhenTheSwitchIsWholeAndShown) {
    const Outcome outcome = AtFlush(GetParam(), "--image disk.img boot recovery");

    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.output, StartsWith("SetRcvprtActive() = 0: done\nChanged:\n"));
    EXPECT_THAT(outcome.output, HasSubstr("disk.img.kestova-backup-1\n"));
    EXPECT_EQ(outcome.errors, notBefore);
    EXPECT_THAT(ActiveLine(), HasSubstr("type=27, bootable"));
    EXPECT_FALSE(Exists("disk.img.kestova-journal"));
    ASSERT_EQ(Kestova("undo disk.img.kestova-backup-1").status, 0);
    EXPECT_TRUE(IsAsMade());
}

INSTANTIATE_TEST_SUITE_P(Every, EachFlush, testing::Range(1, 9));

TEST_F(Writing, ScriptOfSwitches_InterruptedInTheFirst_DoesNotBeginTheNext) {
    WriteFile("script", "SetRcvprtActive\nSetSystemActive\n");

    const Outcome outcome = AtFlush(2, "--image disk.img run script");

    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.output, HasSubstr("SetRcvprtActive() = 0"));
    EXPECT_THAT(outcome.output, HasSubstr("Backup, for kestova undo: "));
    EXPECT_THAT(outcome.output, Not(HasSubstr("SetSystemActive")));
    EXPECT_EQ(outcome.errors, notBefore);
    EXPECT_THAT(ActiveLine(), HasSubstr("type=27, bootable"));
}

TEST_F(Writing, UndoAndRecover_Interrupted_EndWhenTheChangeIsTakenBack) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);

    const Outcome undo = AtFlush(3, "undo disk.img.kestova-backup-1");

    EXPECT_EQ(undo.status, 130);
    EXPECT_THAT(undo.output, StartsWith("disk.img: disk.img.kestova-backup-1 was taken back\n"));
    EXPECT_EQ(undo.errors, notBefore);
    EXPECT_TRUE(IsAsMade());

    // On a medium of which only the beginning can be written.
    Shell("ulimit -f 200; " KESTOVA_PROGRAM " --image disk.img boot recovery");
    ASSERT_TRUE(Exists("disk.img.kestova-journal"));

    const Outcome recover = AtFlush(1, "--image disk.img recover");

    EXPECT_EQ(recover.status, 130);
    EXPECT_EQ(recover.output, "disk.img: a change that had been interrupted was taken back\n");
    EXPECT_EQ(recover.errors, notBefore);
    EXPECT_TRUE(IsAsMade());
    EXPECT_FALSE(Exists("disk.img.kestova-journal"));
}

TEST_F(Writing, SecondOfTwoImages_InterruptedInTheFirst_IsNotRecovered) {
    Shell("ulimit -f 200; " KESTOVA_PROGRAM " --image disk.img boot recovery");
    ASSERT_EQ(
        Shell(
            "cp --sparse=always disk.img other.img && cp disk.img.kestova-journal other.img.kestova-journal")
            .status,
        0);

    const Outcome outcome = AtFlush(1, "--image disk.img --image other.img recover");

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.output, "disk.img: a change that had been interrupted was taken back\n");
    EXPECT_FALSE(Exists("disk.img.kestova-journal"));
    EXPECT_TRUE(Exists("other.img.kestova-journal"));
}

TEST_F(Writing, DescriptionToSave_Interrupted_IsWholeAndNoOtherFileIsLeft) {
    const Outcome outcome = AtFlush(1, "--pc factory-mbr --save pc.json status");

    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(ReadFile("pc.json"), StartsWith("{"));
    EXPECT_EQ(Shell("ls -d pc.json*").output, "pc.json\n");
}

}  // namespace
