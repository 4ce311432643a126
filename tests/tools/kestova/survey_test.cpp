// A script on many PCs.

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/program/program.h"
#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/survey_lines.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A folder "lab" of generated PCs, and the factory's switch there and back.
class Survey : public ProgramTest {
  protected:
    Survey() {
        WriteFile("switch.txt", "GetActivePartitionNumber\nSetRcvprtActive\nSetSystemActive\n");
        EXPECT_EQ(Kestova("generate --seed 3 --count 40 --output lab").status, 0);
    }

    Outcome OfLab(const std::string& options) {
        return Kestova("survey lab --script switch.txt --quiet " + options);
    }
    static std::string Repeated(const std::string& operation, int times) {
        std::string script;
        for (int i = 0; i < times; ++i)
            script += operation + "\n";
        return script;
    }
    static std::string Line(const std::string& lines, int number) {
        std::istringstream stream(lines);
        std::string line;
        for (int i = 0; i < number; ++i)
            std::getline(stream, line);
        return line + "\n";
    }
    // What an expression of python makes of each line, which is the object "pc" there.
    std::string Of(const std::string& lines, const std::string& expression) {
        WriteFile("lines", lines);
        const Outcome outcome = Shell(
            "python3 -c \"import json\nfor line in open('lines'):\n    pc = json.loads(line)\n    print(" +
            expression + ")\"");
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return outcome.output;
    }
};

TEST_F(Survey, Folder_Run_WritesALineForEachPcInTheirOrder) {
    const Outcome outcome = OfLab("--jobs 3");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(Of(outcome.output, "pc['pc'], pc['name']"),
              Shell("for number in $(seq 40); do "
                    "printf \"lab/pc-%06d.json generated 3/%d\\n\" $number "
                    "$number; done")
                  .output);
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(Survey, AnyNumberOfJobs_WritesTheSame) {
    const std::string one = OfLab("--jobs 1").output;
    EXPECT_EQ(one, OfLab("--jobs 7").output);
    EXPECT_EQ(std::ranges::count(one, '\n'), 40);
}

// Operations, results, outputs and the status are those of a run on that PC alone.
TEST_F(Survey, EachPc_AnswersAsRunDoes) {
    const std::string lines = OfLab("").output;
    const std::string surveyed =
        Of(lines,
           "pc['status'], [[o['operation'], o['arguments'], o['result'], o['outputs']] for "
           "o in pc['operations']], [r['text'] for r in pc['records']]");
    WriteFile("runs.py",
              "import json, glob, subprocess\n"
              "for pc in sorted(glob.glob('lab/*.json')):\n"
              "    run = subprocess.run(['" KESTOVA_PROGRAM
              "', '--pc', pc, '--json', '--quiet', 'run', 'switch.txt'],\n"
              "                         capture_output=True)\n"
              "    all = [json.loads(line) for line in run.stdout.splitlines()]\n"
              "    print(run.returncode,\n"
              "          [[o['operation'], o['arguments'], o['result'], o['outputs']] for o in all[1:-1]],\n"
              "          [r['text'] for o in all for r in o['log'] if r['level'] == 1])\n");
    EXPECT_EQ(surveyed, Shell("python3 runs.py").output);
}

TEST_F(Survey, FactoryDisk_SwitchThere_SaysWhatChangesAndWhatResultsMean) {
    WriteFile("there.txt", "SetRcvprtActive\n");
    ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json call GetDiskStyle").status, 0);
    const std::string line = Kestova("survey pc.json --script there.txt --quiet").output;
    EXPECT_THAT(Of(line, "pc['changes']"), HasSubstr("'disk 0, partition 1: active now'"));
    EXPECT_EQ(Of(line, "pc['operations'][1]['meaning']"), "done\n");
    EXPECT_EQ(Kestova("--pc pc.json call GetActivePartitionNumber").output,
              "GetActivePartitionNumber() = 2: the number of the partition\n");
}

TEST_F(Survey, Shards_Together_AreTheWhole) {
    const std::string whole = OfLab("").output;
    ASSERT_EQ(OfLab("--shard 1/3 -o 1.jsonl").status, 0);
    ASSERT_EQ(OfLab("--shard 2/3 -o 2.jsonl").status, 0);
    ASSERT_EQ(OfLab("--shard 3/3 -o 3.jsonl").status, 0);
    WriteFile("whole", whole);
    EXPECT_EQ(
        Shell("wc -l <2.jsonl && sort whole >sorted && cat 1.jsonl 2.jsonl 3.jsonl | sort | diff - sorted")
            .output,
        "13\n");
}

// As an interruption or a power cut leaves it: the last line is torn off.
TEST_F(Survey, OutputThatWasCut_Resume_BecomesTheWhole) {
    const std::string whole = OfLab("").output;
    WriteFile("cut.jsonl", whole.substr(0, whole.size() / 2));
    ASSERT_EQ(OfLab("-o cut.jsonl --resume").status, 0);
    EXPECT_EQ(ReadFile("cut.jsonl"), whole);
    ASSERT_EQ(OfLab("-o cut.jsonl --resume").status, 0);
    EXPECT_EQ(ReadFile("cut.jsonl"), whole);
    ASSERT_EQ(OfLab("-o new.jsonl --resume").status, 0);
    EXPECT_EQ(ReadFile("new.jsonl"), whole);
}

TEST_F(Survey, OutputOfSomethingElse_IsKept) {
    WriteFile("notes", "mine\n");
    EXPECT_THAT(OfLab("-o notes").errors,
                HasSubstr("--output: notes is not empty; --resume goes on with it, --overwrite replaces it"));
    EXPECT_THAT(OfLab("-o notes --resume").errors, HasSubstr("notes: byte 0: no line of a survey"));
    EXPECT_THAT(OfLab("-o lab/pc-000001.json --overwrite").errors,
                HasSubstr("--output: lab/pc-000001.json is a file that the survey reads"));
    EXPECT_THAT(OfLab("-o switch.txt --overwrite").errors,
                HasSubstr("switch.txt is a file that the survey reads"));
    EXPECT_EQ(ReadFile("notes"), "mine\n");
    EXPECT_EQ(OfLab("-o notes --overwrite").status, 0);
    EXPECT_THAT(ReadFile("notes"), StartsWith("{\"pc\":\"lab/pc-000001.json\""));
}

// A parser without bounds would need a stack for the one line, and memory without end for the other.
TEST_F(Survey, EarlierOutputThatIsHostile_IsRefused) {
    const std::string deep(2000000, '[');
    WriteFile(
        "deep.jsonl",
        OfLab("--shard 1/40").output +
            "{\"pc\":\"\",\"name\":\"\",\"records\":[],\"operations\":[{\"operation\":\"\",\"meaning\":\"\",\"result\":" +
            deep + std::string(deep.size(), ']') + "}]}\n");
    ASSERT_EQ(Shell("{ head -c 100M /dev/zero; echo; } >long.jsonl && mkfifo pipe").status, 0);
    const std::string first = std::to_string(OfLab("--shard 1/40").output.size());
    for (const std::string option : {"--against ", "--resume -o "}) {
        const Outcome outcome = OfLab(option + "deep.jsonl");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, HasSubstr("deep.jsonl: byte " + first + ": no line of a survey"));
        EXPECT_THAT(OfLab(option + "long.jsonl").errors,
                    HasSubstr("long.jsonl: byte 0: no line of a survey"));
    }
    EXPECT_THAT(OfLab("--against pipe").errors, HasSubstr("pipe: not a regular file"));
    EXPECT_THAT(Kestova("survey --script switch.txt --from long.jsonl").errors,
                HasSubstr("--from: long.jsonl is larger than 64 MiB, so no list of names"));
}

TEST_F(Survey, PcsThatCannotBeRead_AreLinesWithTheirErrors) {
    WriteFile("lab/pc-000002.json", "{\"nam\": 5}");
    Shell("rm lab/pc-000003.json && truncate -s 1M lab/zero.img");
    const Outcome outcome = Kestova("survey lab lab/pc-000003.json --script switch.txt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        Of(outcome.output, "pc.get('status'), pc.get('error')"),
        testing::AllOf(HasSubstr("\n3 lab/pc-000002.json: nam: unknown key"), HasSubstr("\n3 lab/zero.img: "),
                       HasSubstr("\n3 lab/pc-000003.json: there is no such file")));
    EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 41);
    EXPECT_THAT(outcome.errors, HasSubstr("41 PCs, 3 without a whole answer\n"));
}

// A pipe that nobody writes would be waited for, and a device that never ends would fill the memory.
TEST_F(Survey, PipeOrDeviceOfCharacters_IsALineThatSaysSo) {
    Shell("mkfifo pipe pipe.json pipe.img");
    const Outcome outcome = Kestova("survey pipe pipe.json pipe.img /dev/zero --script switch.txt --quiet");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(Of(outcome.output, "pc['status'], pc['error']"),
              "3 pipe: not a regular file\n3 pipe.json: not a regular file\n3 pipe.img: not a regular file\n"
              "3 /dev/zero: not a regular file\n");
}

TEST_F(Survey, WorkerThatIsKilled_IsALineWithItsSignal_AndTheOthersAnswer) {
    WriteFile("long.txt", Repeated("SetRcvprtActive", 1000));
    const Outcome outcome =
        Shell("'" KESTOVA_PROGRAM
              "' survey lab/pc-000001.json lab/pc-000002.json --script long.txt --jobs 1 --quiet & "
              "pid=$!; until child=$(cat /proc/$pid/task/$pid/children) && test -n \"$child\"; do :; done; "
              "kill -KILL $child; wait $pid");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(Of(outcome.output, "pc['status'], len(pc['operations']), pc.get('error')"),
              "None 0 its worker was ended by signal 9 (Killed)\n" +
                  Of(Line(outcome.output, 2), "pc['status'], 1001, None"));
}

TEST_F(Survey, PcThatTakesTooLong_IsALineThatSaysSo_AndTheNextAnswers) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save slow.json status").status, 0);
    WriteFile("long.txt", Repeated("SetRcvprtActive", 65000));
    const Outcome outcome = Kestova("survey slow.json none.json --script long.txt --time-limit 1 --quiet");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(Of(outcome.output, "pc['status'], pc['error']"),
              "None its worker took longer than --time-limit allows\n3 none.json: there is no such file\n");
}

// With --write it may have been in the middle of a change.
TEST_F(Survey, PcThatTakesTooLongToWrite_IsALineThatNamesTheWayOut) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save slow.json status").status, 0);
    WriteFile("long.txt", Repeated("SetRcvprtActive", 65000));
    EXPECT_THAT(Kestova("survey slow.json --script long.txt --time-limit 1 --write --quiet").output,
                HasSubstr("its worker took longer than --time-limit allows; if it left a journal, `kestova "
                          "recover` takes back what it was changing, or finishes it"));
}

TEST_F(Survey, Interrupted_SaysHowToGoOn_AndResumeMakesTheWhole) {
    WriteFile("long.txt", Repeated("SetRcvprtActive", 100));
    const std::string survey = "'" KESTOVA_PROGRAM "' survey lab --script long.txt --jobs 2 --quiet -o ";
    const Outcome outcome = Shell(survey +
                                  "cut.jsonl & pid=$!; until test -s cut.jsonl; do :; done; kill -TERM $pid; "
                                  "wait $pid");
    EXPECT_EQ(outcome.status, 143);
    EXPECT_THAT(outcome.errors,
                HasSubstr("kestova: interrupted; the same command with --resume goes on with the PCs "
                          "that are not in cut.jsonl\n"));
    EXPECT_THAT(ReadFile("cut.jsonl"), testing::EndsWith("}\n"));
    EXPECT_EQ(Shell(survey + "whole.jsonl && test $(wc -l <cut.jsonl) -lt 40 && " + survey +
                    "cut.jsonl --resume && cmp whole.jsonl cut.jsonl")
                  .status,
              0);
}

TEST_F(Survey, AgainstAnEarlierOne_SaysWhichPcsAnswerDifferently) {
    ASSERT_EQ(OfLab("-o before.jsonl").status, 0);
    EXPECT_EQ(OfLab("--against before.jsonl").status, 0);
    EXPECT_EQ(OfLab("--against before.jsonl").errors, "");
    ASSERT_EQ(Kestova("--pc factory-mbr --save lab/pc-000041.json status").status, 0);
    ASSERT_EQ(Shell("rm lab/pc-000040.json").status, 0);
    ASSERT_EQ(
        Kestova("generate --seed 4 --output other && mv other/pc-000001.json lab/pc-000007.json").status, 0);
    const Outcome outcome = OfLab("--against before.jsonl -o after.jsonl");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                HasSubstr("lab/pc-000007.json: name \"generated 4/1\" instead of \"generated 3/7\"\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("lab/pc-000041.json: was not surveyed earlier\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("lab/pc-000040.json: was surveyed earlier only\n"));
    EXPECT_THAT(outcome.errors, Not(HasSubstr("lab/pc-000008.json")));
    EXPECT_EQ(OfLab("--against after.jsonl").status, 0);
}

TEST_F(Survey, OtherAnswers_Against_NamesOperationAndResults) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json status").status, 0);
    const std::string survey = "survey pc.json --script switch.txt --quiet ";
    ASSERT_EQ(Kestova(survey + "-o before.jsonl").status, 0);
    EXPECT_THAT(Kestova(survey + "--against before.jsonl --fail CreateFileW=5").errors,
                HasSubstr("pc.json: SetRcvprtActive: result "));
}

TEST_F(Survey, NamesFromAFileOrStandardInput_AreSurveyed) {
    WriteFile("names", "lab/pc-000009.json\n\nlab/pc-000004.json\nlab/pc-000009.json\n");
    const Outcome outcome = Kestova("survey --from names --script switch.txt --quiet");
    EXPECT_EQ(Of(outcome.output, "pc['pc']"), "lab/pc-000009.json\nlab/pc-000004.json\n");
    EXPECT_EQ(outcome.output,
              Kestova("survey --from - --script switch.txt --quiet", ReadFile("names")).output);
}

TEST_F(Survey, WrongUse_IsRefused_BeforeAnyPcIsRead) {
    WriteFile("wrong.txt", "SetRcvprtActive\nSetRcvprtActiv\n");
    Shell("mkdir empty");
    for (const auto& [words, message] : std::vector<std::pair<std::string, std::string>>{
             {"lab", "survey: --script names the operations, one a line"},
             {"lab --script wrong.txt", "wrong.txt:2: there is no operation 'SetRcvprtActiv'"},
             {"lab --script none.txt", "none.txt: there is no such file"},
             {"--script switch.txt", "survey: no PC was named"},
             {"empty --script switch.txt", "empty: there are no descriptions and no images in this folder"},
             {"lab --script switch.txt --shard 4/3", "--shard: '4/3' is not like 2/8"},
             {"lab --script switch.txt --shard 0/3", "--shard: '0/3' is not like 2/8"},
             {"lab --script switch.txt --jobs 0", "--jobs: '0' is no number from 1 to 1024"},
             {"lab --script switch.txt --against none.jsonl", "none.jsonl: cannot be read"},
             {"--from none --script switch.txt", "--from: none cannot be read, or names no PC"},
             {"lab --script - --from -", "--script and --from cannot both be standard input"}}) {
        const Outcome outcome = Kestova("survey -o new.jsonl " + words);
        EXPECT_EQ(outcome.status, 2) << words;
        EXPECT_THAT(outcome.errors, HasSubstr(message)) << words;
    }
    EXPECT_EQ(Shell("test -e new.jsonl").status, 1);
    EXPECT_THAT(OfLab("--resume").errors, HasSubstr("--resume: it goes on with the file of --output"));
}

TEST_F(Survey, Summary_CountsResultsAndFoldsRecords) {
    const Outcome outcome = Kestova("survey lab --script switch.txt -o lab.jsonl");
    EXPECT_THAT(outcome.errors, StartsWith("40 PCs, 0 without a whole answer\nInitialize\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("\nRecords of errors\n"));
    const std::string active = Of(ReadFile("lab.jsonl"), "pc['operations'][1]['result'] == 2");
    size_t count = 0;
    for (size_t at = active.find("True"); at != std::string::npos; at = active.find("True", at + 1))
        ++count;
    EXPECT_THAT(outcome.errors,
                HasSubstr("\n  " + std::to_string(count) + "   2: the number of the partition\n"));
}

// What reads a hostile PC could answer in another one's name.
TEST(SurveyLines, WorkerThatAnswersForAnotherPc_IsALineThatSaysSo) {
    const std::string own = AsJson(SurveyedPc{.pc = "mine.json", .name = "mine"});
    EXPECT_EQ(LineOfWorker("mine.json", {.answer = own, .problem = ""}), own);
    for (const std::string& answer : {AsJson(SurveyedPc{.pc = "other.json"}), std::string("{}\n")})
        EXPECT_EQ(LineOfWorker("mine.json", {.answer = answer, .problem = ""}),
                  AsJson(SurveyedPc{.pc = "mine.json", .error = "its worker answered with something else"}));
}

// A line of a PC with one operation, and these texts of JSON.
std::string LineWith(const std::string& records, const std::string& changes) {
    return "{\"pc\":\"a\",\"name\":\"\",\"status\":0,\"operations\":[],\"records\":" + records +
           ",\"changes\":" + changes + "}\n";
}

TEST(SurveyLines, OtherRecordsAndChanges_AreDifferences) {
    const std::string record = "[{\"level\":1,\"text\":\"x\"}]";
    EXPECT_THAT(
        SurveyDifferences(LineWith("[]", "[]"), LineWith(record, "[\"y\"]")),
        testing::ElementsAre("records " + record + " instead of []", "changes [\"y\"] instead of []"));
}

// Records with numbers in them would fill the memory.
TEST(SurveyLines, TooManyKindsOfRecords_AreCountedTogether) {
    SurveyTally tally;
    for (int number = 0; number < 10003; ++number)
        tally.Add(LineWith("[{\"text\":\"record " + std::to_string(number) + "\"}]", "[]"));
    EXPECT_THAT(tally.Text(), HasSubstr("  3  (others)\n"));
}

// More than a pipe holds is written.
TEST_F(Survey, ReaderThatHasSeenEnough_EndsTheSurvey) {
    WriteFile("long.txt", Repeated("GetCurrentDiskType", 200));
    EXPECT_EQ(Shell("{ '" KESTOVA_PROGRAM
                    "' survey lab --script long.txt --quiet; echo $? >status; } | head -c 27; "
                    "cat status")
                  .output,
              "{\"pc\":\"lab/pc-000001.json\",141\n");
}

}  // namespace
