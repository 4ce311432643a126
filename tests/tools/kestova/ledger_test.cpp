// What the library holds in the end, and what the program keeps while it runs.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

#include "tests/support/program/program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Ledger = ProgramTest;

class Memory : public ProgramTest {
  protected:
    // The largest resident memory of the program while it runs a script, in KiB.
    long PeakOf(const std::string& script) {
        const pid_t child = fork();
        if (child == 0) {
            // Memory that the sanitizer does not hand out again would count.
            setenv("ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0:detect_leaks=0",
                   1);
            const int nowhere = open("/dev/null", O_WRONLY);
            dup2(nowhere, STDOUT_FILENO);
            execl(KESTOVA_PROGRAM, "kestova", "--pc", "factory-mbr", "run", script.c_str(), nullptr);
            _exit(127);
        }
        int status = -1;
        rusage used = {};
        wait4(child, &status, 0, &used);
        EXPECT_EQ(status, 0);
        return used.ru_maxrss;
    }

    std::string Switches(int count) {
        std::string script;
        for (int i = 0; i < count; i += 2)
            script += "SetRcvprtActive\nSetSystemActive\n";
        const std::string name = "switches-" + std::to_string(count);
        WriteFile(name, script);
        return (Folder() / name).string();
    }

    // What the class leaks in that script.
    long LeaksOf(const std::string& script) {
        const std::string output = Kestova("--pc factory-mbr --ledger run " + script).output;
        std::istringstream ledger(output.substr(output.find("Held in the end:\n")));
        long leaks = 0;
        for (std::string line; std::getline(ledger, line);) {
            const size_t number = line.find_last_not_of("0123456789") + 1;
            if (number < line.size()) leaks += std::stol(line.substr(number));
        }
        return leaks;
    }
};

TEST_F(Memory, TenTimesTheSwitches_Run_NeedOnlyMemoryForWhatTheClassLeaks) {
    const std::string few = Switches(200);
    const std::string many = Switches(2000);
    constexpr long bound = 2 * 1024;  // KiB
    constexpr long sizeOfLeak = 1;    // KiB: an object with its parts, under a sanitizer
    const long leaks = (LeaksOf(few) * 10 - LeaksOf(few)) * sizeOfLeak;
    EXPECT_LE(PeakOf(many), PeakOf(few) + leaks + bound);
}

TEST_F(Ledger, FactoryMbr_CallInText_ShowsEachKindLast) {
    const Outcome outcome = Kestova("--pc factory-mbr --ledger call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("GetDriveLetter(0, 2) = C: its letter\nHeld in the end:\n"));
    EXPECT_THAT(outcome.output, HasSubstr("  COM initialization  0\n"));
    EXPECT_THAT(outcome.output, HasSubstr("  file handle         0\n"));
}

TEST_F(Ledger, FactoryMbr_EachCommandInJson_HasTheLastKey) {
    for (const char* const words : {"call GetDriveLetter 0 2", "status", "letters", "boot recovery"}) {
        const Outcome outcome = Kestova(std::string("--pc factory-mbr --json --ledger ") + words);
        EXPECT_THAT(outcome.output, StartsWith("{\"")) << words;
        EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1) << words;
        EXPECT_THAT(outcome.output, testing::MatchesRegex(".*,\"ledger\":\\{\"[^{]*\\}\\}\n")) << words;
    }
    const Outcome script = Kestova("--pc factory-mbr --json --ledger run -", "IsDynamic\n");
    EXPECT_EQ(script.output.find("\"ledger\""), script.output.rfind("\"ledger\""));
    EXPECT_THAT(script.output, HasSubstr("\n{\"operation\":\"~Kestova\","));
    EXPECT_THAT(script.output, EndsWith("}}\n"));
}

TEST_F(Ledger, AnsweredAlready_SaveFails_TheObjectIsShownAllTheSame) {
    // No file of this program can be larger than a block.
    const Outcome outcome =
        Shell("{ (ulimit -f 1; exec env --ignore-signal=XFSZ '" KESTOVA_PROGRAM
              "' --pc factory-mbr --json --ledger --save pc.json call IsDynamic); echo $? >status; } | cat");
    EXPECT_EQ(ReadFile("status"), "1\n");
    EXPECT_EQ(outcome.errors, "{\"error\":\"pc.json: cannot be written\",\"status\":1}\n");
    EXPECT_THAT(outcome.output, HasSubstr("\"ledger\":{"));
}

TEST_F(Ledger, RecoverOrNoPc_AnyCommand_IsWrongUse) {
    EXPECT_THAT(Kestova("--ledger pcs").errors, StartsWith("kestova: pcs does not use --ledger\n"));
    EXPECT_THAT(Kestova("--ledger --image x recover").errors,
                StartsWith("kestova: recover does not use --ledger\n"));
}

}  // namespace
