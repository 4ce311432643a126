// Command lines that a shell completes.
#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class Completion : public ProgramTest {
  protected:
    Completion() { EXPECT_EQ(Shell("ln -s '" KESTOVA_PROGRAM "' kestova && touch file.img").status, 0); }

    // The candidates without their meanings.
    std::string Words(const std::string& words) {
        return Shell("'" KESTOVA_PROGRAM "' completion words -- " + words + " | cut -f 1 | paste -sd ' '")
            .output;
    }
    Outcome In(const std::string& shell, const std::string& script) {
        WriteFile("script", script);
        return Shell("PATH=$PWD:$PATH HOME=$PWD " + shell + " script");
    }
};

TEST_F(Completion, BeginningOfAWord_IsOfferedWhatFitsItsPlace) {
    EXPECT_EQ(Words("s"), "status survey\n");
    EXPECT_EQ(Words("re"), "report replay recover repair-table\n");
    EXPECT_EQ(Words("boot ''"), "recovery system\n");
    EXPECT_EQ(Words("call SetR"), "SetRcvprtActive\n");
    EXPECT_EQ(Words("help ru"), "run\n");
    EXPECT_EQ(Words("completion b"), "bash\n");
    EXPECT_EQ(Words("--sector-size ''"), "512 4096\n");
    EXPECT_EQ(Words("--pc winpe"), "winpe-two-disks winpe-media\n");
    EXPECT_EQ(Words("--fail CreateFileW"), "CreateFileW\n");
    EXPECT_EQ(Words("--journ"), "--journal\n");
}

TEST_F(Completion, ListOfColumns_IsOfferedThoseThatItLacks) {
    EXPECT_EQ(Words("status --columns s"), "slot start size\n");
    EXPECT_EQ(Words("status --columns label,s"), "label,slot label,start label,size\n");
    EXPECT_EQ(Words("status --columns size,slot,s"), "size,slot,start\n");
    EXPECT_EQ(Words("status --columns nonsense,z"), "\n");
}

// bash makes three words of it.
TEST_F(Completion, ValueBehindEquals_IsOfferedAsBehindABlank) {
    EXPECT_EQ(Words("report --format ''"), "html markdown\n");
    EXPECT_EQ(Words("report --format=m"), "--format=markdown\n");
    EXPECT_EQ(Words("report --format="), "--format=html --format=markdown\n");
    EXPECT_EQ(Words("status --columns=size,hid"), "--columns=size,hidden --columns=size,hide\n");
    EXPECT_EQ(Words("report --format ="), "html markdown\n");
    EXPECT_EQ(Words("report --format = m"), "markdown\n");
    EXPECT_EQ(Words("--pc = factory-mbr boot r"), "recovery\n");
    EXPECT_EQ(Words("--image="), "\n");
}

// The shell offers files instead, or has nothing to offer.
TEST_F(Completion, FileOrNumber_IsOfferedNothing) {
    for (const std::string words : {"--image ''", "undo ''", "call GetDriveLetter ''", "boot recovery ''",
                                    "nonsense ''", "boot z", "status ''"})
        EXPECT_EQ(Words(words), "\n") << words;
}

TEST_F(Completion, OptionsBeforeTheCommand_AreNotTakenForIt) {
    EXPECT_EQ(Words("--json --image boot --dry-run boot r"), "recovery\n");
    EXPECT_EQ(Words("--image disk.img boot --tr"), "--trace\n");
}

TEST_F(Completion, OptionWithoutAnEffect_IsNotOffered) {
    EXPECT_EQ(Words("--led"), "--ledger\n");
    EXPECT_EQ(Words("undo --led"), "\n");
    EXPECT_EQ(Words("status --tr"), "\n");
}

TEST_F(Completion, Candidates_HaveTheMeaningsOfHelp) {
    EXPECT_EQ(Kestova("completion words -- stat").output, "status\tWhat this PC is\n");
}

TEST_F(Completion, Bash_CompletesWordsAndFiles) {
    const std::string begin = "eval \"$(kestova completion bash)\"\n";
    EXPECT_EQ(In("bash", begin + "COMP_WORDS=(kestova --pc factory-mbr boot r) COMP_CWORD=4\n"
                                 "_kestova kestova r boot\necho \"${COMPREPLY[@]}\"\n")
                  .output,
              "recovery\n");
    EXPECT_EQ(In("bash", begin + "COMP_WORDS=(kestova report --format = m) COMP_CWORD=4\n"
                                 "_kestova kestova m =\necho \"${COMPREPLY[@]}\"\n"
                                 "COMP_WORDS=(kestova report --format =) COMP_CWORD=3\n"
                                 "_kestova kestova '' --format\necho \"${COMPREPLY[@]}\"\n")
                  .output,
              "markdown\nhtml markdown\n");
    EXPECT_EQ(In("bash", begin + "complete -p kestova\n").output,
              "complete -o bashdefault -o default -F _kestova kestova\n");
}

// As its completion system calls the function, which cannot be without a terminal.
TEST_F(Completion, Zsh_CompletesWordsAndFiles) {
    const std::string begin =
        "compdef() { print \"$@\" }\n_describe() { print -rl -- \"${(@P)2}\" }\n_files() { print files }\n"
        "eval \"$(kestova completion zsh)\"\n";
    EXPECT_EQ(In("zsh", begin + "words=(kestova boot sys) CURRENT=3\n_kestova\n").output,
              "_kestova kestova\nsystem:\n");
    EXPECT_EQ(In("zsh", begin + "words=(kestova stat) CURRENT=2\n_kestova\n").output,
              "_kestova kestova\nstatus:What this PC is\n");
    EXPECT_EQ(In("zsh", begin + "words=(kestova report --format=m) CURRENT=3\n_kestova\n").output,
              "_kestova kestova\n--format=markdown:\n");
    EXPECT_EQ(In("zsh", begin + "words=(kestova --image '') CURRENT=3\n_kestova\n").output,
              "_kestova kestova\nfiles\n");
}

TEST_F(Completion, Fish_CompletesWordsAndFiles) {
    const std::string begin = "kestova completion fish | source\n";
    EXPECT_EQ(In("fish", begin + "complete --do-complete 'kestova --pc factory-mbr stat'\n").output,
              "status\tWhat this PC is\n");
    EXPECT_EQ(In("fish", begin + "complete --do-complete 'kestova report --format=m'\n").output,
              "--format=markdown\n");
    EXPECT_THAT(In("fish", begin + "complete --do-complete 'kestova --image fi'\n").output,
                HasSubstr("file.img"));
    EXPECT_THAT(In("fish", begin + "complete --do-complete 'kestova boot '\n").output,
                Not(HasSubstr("file.img")));
}

TEST_F(Completion, AnotherShell_IsRefused) {
    const Outcome outcome = Kestova("completion tcsh");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("kestova: there is no completion for 'tcsh'"));
}

}  // namespace
