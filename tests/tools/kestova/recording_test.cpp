// A recording of the platform calls, and the library run again on it.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "machine/calls/call_table.h"
#include "machine/facts/machines.h"
#include "tests/support/program/program.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/recording/recorded_library.h"
#include "tools/kestova/recording/values.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class Recording : public ProgramTest {
  protected:
    // The command with and without a recording, which must not show, and the operations run again on it.
    void ExpectReplays(const std::string& words) {
        SCOPED_TRACE(words);
        const Outcome plain = Kestova("--quiet --json " + words);
        const Outcome recorded = Kestova("--quiet --json --log plain.log --record calls.jsonl " + words);
        EXPECT_EQ(recorded.output, plain.output);
        EXPECT_EQ(recorded.errors, plain.errors);
        EXPECT_EQ(recorded.status, plain.status);
        const Outcome replayed = Kestova("--log replayed.log replay calls.jsonl");
        EXPECT_EQ(replayed.status, 0) << replayed.errors;
        EXPECT_THAT(replayed.output, HasSubstr("As recorded: "));
        EXPECT_EQ(ReadFile("replayed.log"), ReadFile("plain.log"));
    }

    // Adds the calls of the recording to those that were met.
    void Meet() {
        for (const std::string& line : LinesOf(ReadFile("calls.jsonl"))) {
            const json object = json::parse(line);
            if (object.contains("call")) met_.insert(object["call"].get<std::string>());
        }
    }

    // Changes the line of the recording that has both texts, and says which it is, from 1.
    size_t Change(const std::string& has, const std::string& from, const std::string& to) {
        std::vector<std::string> lines = LinesOf(ReadFile("calls.jsonl"));
        const auto line = std::ranges::find_if(lines, [&](const std::string& one) {
            return one.find(has) != std::string::npos && one.find(from) != std::string::npos;
        });
        if (line == lines.end()) {
            ADD_FAILURE() << "no line has " << has << " and " << from;
            return 0;
        }
        line->replace(line->find(from), from.size(), to);
        std::string text;
        for (const std::string& one : lines)
            text += one + "\n";
        WriteFile("calls.jsonl", text);
        return static_cast<size_t>(line - lines.begin()) + 1;
    }

    void Record(const std::string& words) {
        const Outcome recorded = Kestova("--quiet --record calls.jsonl " + words);
        ASSERT_THAT(recorded.errors, IsEmpty());
    }

    std::set<std::string> met_;  // calls in the recordings of this test
};

// The functions of its table that can fail, and the methods.
std::vector<std::string> CallsOfTheTape() {
    std::vector<std::string> calls;
    for (const machine::CallInfo& call : machine::AllCalls()) {
        const bool isMethod = call.name.find("::") != std::string_view::npos;
        if (isMethod || std::ranges::count(TapedCalls(), call.name, &machine::AnsweredCall::name) != 0)
            calls.emplace_back(call.name);
    }
    return calls;
}

// A value for an argument of that name.
std::string ValueFor(const Parameter& parameter, const std::string& partition) {
    if (parameter.name == "partition") return " " + partition;
    switch (parameter.kind) {
        case Kind::Flag:
            return " false";
        case Kind::Letter:
            return " C";
        case Kind::Count:
            return " 33";
        default:
            return " 0";
    }
}

// Every operation with several partitions, one a line.
std::string EveryOperation() {
    std::string script;
    for (const char* const partition : {"1", "3", "4"}) {
        for (const Operation& operation : Operations()) {
            script += operation.name;
            for (const Parameter& parameter : operation.parameters)
                if (!parameter.output) script += ValueFor(parameter, partition);
            script += "\n";
        }
    }
    return script;
}

// --- the same again ---

TEST_F(Recording, EachMachine_EachQuestionAndSwitch_ReplaysAsItWas) {
    for (const machine::NamedMachine& machine : machine::NamedMachines()) {
        for (const char* const command : {"status", "letters", "check", "boot recovery", "boot system",
                                          "--pe boot system", "call IsEFIBootSystem"})
            ExpectReplays("--pc " + std::string(machine.name) + " " + command);
    }
}

TEST_F(Recording, EachCallFailing_Script_ReplaysTheFailures) {
    WriteFile("script", "SetRcvprtActive\nGetWinDriveLetters 26\nGetAllEncryptVolume 33\n");
    for (const std::string& call : CallsOfTheTape())
        ExpectReplays("--pc winpe-media --fail " + call + "#2+=0x80070005 run script");
}

TEST_F(Recording, EveryOperation_Recorded_MeetsEveryCallOfTheTape) {
    WriteFile("script", EveryOperation());
    Kestova("--pc winpe-media --save pc.json call IsEFIBootSystem");
    std::string description = ReadFile("pc.json");
    const std::string system = "\"system\": {";
    description.insert(description.find(system) + system.size(), "\"emulates32Bit\": true, ");
    WriteFile("pc.json", description);
    for (const char* const words :
         {"--pc factory-mbr run script", "--pc factory-mbr boot recovery", "--pc pc.json run script",
          "--pc pc.json call IsVistaOS D", "--pc winpe-two-disks call GetFirstInternalDriveNumber"}) {
        Kestova("--quiet --record calls.jsonl " + std::string(words));
        Meet();
    }
    std::vector<std::string> never;
    for (const std::string& call : CallsOfTheTape())
        if (!met_.contains(call)) never.push_back(call);
    // No operation asks for a provider's properties, and no method of WMI that one calls has arguments.
    EXPECT_THAT(never, ElementsAre("IVdsProvider::GetProperties", "IWbemClassObject::Put",
                                   "IWbemClassObject::SpawnInstance"));
}

TEST_F(Recording, AlreadyRecorded_RecordedAgain_IsTheSameButForItsTime) {
    Record("--pc factory-gpt status");
    const std::vector<std::string> first = LinesOf(ReadFile("calls.jsonl"));
    Record("--pc factory-gpt status");
    const std::vector<std::string> second = LinesOf(ReadFile("calls.jsonl"));
    ASSERT_GT(first.size(), 1000U);
    EXPECT_TRUE(std::equal(first.begin() + 1, first.end(), second.begin() + 1, second.end()));
}

TEST_F(Recording, OneOperationNamed_Replay_RunsThatOne) {
    Record("--pc factory-mbr boot recovery");
    const Outcome outcome = Kestova("replay calls.jsonl Initialize SetRcvprtActive");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(LinesOf(outcome.output),
                ElementsAre("Initialize(false) = 1: the service is ready", "SetRcvprtActive() = 0: done",
                            StartsWith("As recorded: 2 operations, ")));
    EXPECT_THAT(Kestova("replay calls.jsonl GetRCVDISC").errors,
                HasSubstr("calls.jsonl: no GetRCVDISC is recorded from there on"));
}

// A call that many lines have is chosen by its arguments, spelt as in a script.
TEST_F(Recording, OperationNamedWithArguments_Replay_RunsThatCall) {
    WriteFile("letters.txt", "GetDriveLetter 0 2\nGetDriveLetter 0 3\nGetDriveLetter 0 2\n");
    Record("--pc factory-mbr run letters.txt");
    const Outcome outcome = Kestova("replay calls.jsonl 'GetDriveLetter 0 3' 'GetDriveLetter  0  2'");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(LinesOf(outcome.output),
                ElementsAre("GetDriveLetter(0, 3) = D: its letter", "GetDriveLetter(0, 2) = C: its letter",
                            StartsWith("As recorded: 2 operations, ")));
    const Outcome any = Kestova("replay calls.jsonl GetDriveLetter");
    EXPECT_THAT(any.output, StartsWith("GetDriveLetter(0, 2) = C: its letter\nAs recorded: 1 operation, "));
}

TEST_F(Recording, OperationNamedWithArgumentsThatAreNotThere_Replay_IsRefused) {
    Record("--pc factory-mbr call GetDriveLetter 0 2");
    for (const auto& [words, message] : std::map<std::string, std::string>{
             {"'GetDriveLetter 0 4'", "calls.jsonl: no GetDriveLetter 0 4 is recorded from there on"},
             {"'GetDriveLetter 0'", "GetDriveLetter takes 2 arguments, not 1"},
             {"'GetDriveLetter 0 x'", "partition: 'x' is not a number"},
             {"' '", "' ' names no operation"}}) {
        const Outcome outcome = Kestova("replay calls.jsonl " + words);
        EXPECT_EQ(outcome.status, 2) << words;
        EXPECT_THAT(outcome.errors, HasSubstr(message)) << words;
    }
}

// The PC that answers has no changes to show.
TEST_F(Recording, Switch_Replay_ShowsNoChanges) {
    Record("--pc factory-mbr boot recovery");
    const Outcome outcome = Kestova("--json replay calls.jsonl");
    EXPECT_THAT(outcome.output, HasSubstr("\"operation\":\"SetRcvprtActive\""));
    EXPECT_THAT(outcome.output, testing::Not(HasSubstr("\"changes\"")));
}

// Labels of other systems can be no UTF-16.
TEST(RecordedText, UnitsThatAreNoText_ReadAsTheyWere) {
    for (const WideString& text :
         {WideString{'A', 0xD800}, WideString{0xDC00, 'B'}, WideString(TEXT("\u00E4"))})
        EXPECT_EQ(recording::TextFrom(recording::AsJson(text.c_str())), text);
    EXPECT_TRUE(recording::AsJson(static_cast<LPCWSTR>(nullptr)).is_null());
}

// --- differences ---

TEST_F(Recording, CallAskedOtherwise_Replay_NamesLineOperationAndRecord) {
    Record("--pc factory-mbr boot recovery");
    const size_t line = Change("IVdsAdvancedDisk::ChangeAttributes", "\"offset\":1048576", "\"offset\":2048");
    const Outcome outcome = Kestova("replay calls.jsonl");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                StartsWith("kestova: calls.jsonl:" + std::to_string(line) +
                           ": recorded was {\"call\":\"IVdsAdvancedDisk::ChangeAttributes\""));
    EXPECT_THAT(outcome.errors, HasSubstr("\"offset\":2048"));
    EXPECT_THAT(outcome.errors, HasSubstr("; asked was {\"call\":\"IVdsAdvancedDisk::ChangeAttributes\""));
    EXPECT_THAT(outcome.errors, HasSubstr("\"offset\":1048576"));
    EXPECT_THAT(outcome.errors, HasSubstr("; in SetRcvprtActive; the last record before it: Kestova"));
}

TEST_F(Recording, LongLine_Replay_ShowsItsBeginning) {
    Record("--pc factory-mbr call GetActivePartitionNumber");
    Change("IVdsService::QueryProviders", "\"masks\":1", "\"masks\":\"" + std::string(5000, 'x') + "\"");
    const Outcome outcome = Kestova("replay calls.jsonl");
    EXPECT_THAT(outcome.errors, HasSubstr("xxx...; asked was {"));
    EXPECT_LT(outcome.errors.size(), 1500U);
}

TEST_F(Recording, AnswerChanged_Replay_LogsOtherwise) {
    Record("--pc factory-mbr call GetActivePartitionNumber");
    const size_t line = Change("IVdsAdvancedDisk::QueryPartitions", "\"active\":1", "\"active\":0");
    const Outcome outcome = Kestova("replay calls.jsonl");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("; in GetActivePartitionNumber"));
    const size_t found = std::stoul(outcome.errors.substr(outcome.errors.find(':', 9) + 1));
    EXPECT_GT(found, line);
}

TEST_F(Recording, LastErrorChanged_Replay_NamesTheRecordBeforeTheDifference) {
    Record("--pc factory-gpt call IsEFIBootSystem");
    const size_t line = Change("GetFirmwareEnvironmentVariableW", "\"error\":998", "\"error\":5");
    EXPECT_THAT(
        Kestova("replay calls.jsonl").errors,
        AllOf(StartsWith("kestova: calls.jsonl:" + std::to_string(line + 1) + ": recorded was {\"level\":4"),
              HasSubstr("GetLastError = 5"),
              EndsWith("; the last record before it: Kestova::IsEFIBootSystem\\u0009\\u0009Start\n")));
}

TEST_F(Recording, ResultChanged_Replay_IsADifference) {
    Record("--pc factory-mbr call GetActivePartitionNumber");
    const size_t line = Change("\"end\":\"GetActivePartitionNumber\"", "\"result\":2", "\"result\":3");
    EXPECT_THAT(Kestova("replay calls.jsonl").errors,
                StartsWith("kestova: calls.jsonl:" + std::to_string(line)));
}

// --- files that are not what they should be ---

TEST_F(Recording, CutAnywhere_Replay_NamesTheLastLine) {
    Record("--pc factory-mbr call GetActivePartitionNumber");
    const std::string whole = ReadFile("calls.jsonl");
    for (const size_t size : {whole.size() / 4, whole.size() / 2, whole.size() - 9}) {
        const std::string cut = whole.substr(0, size);
        WriteFile("cut.jsonl", cut);
        const Outcome outcome = Kestova("replay cut.jsonl");
        EXPECT_EQ(outcome.status, 1);
        const std::string place = "cut.jsonl:" + std::to_string(std::ranges::count(cut, '\n') + 1) + ": ";
        EXPECT_THAT(outcome.errors, HasSubstr(place + "the last line is cut off, or damaged"));
    }
}

TEST_F(Recording, EndsBetweenTwoLines_Replay_SaysSo) {
    Record("--pc factory-mbr call GetActivePartitionNumber");
    std::string text;
    for (const std::string& line : LinesOf(ReadFile("calls.jsonl"))) {
        if (line.find("IVdsService::QueryProviders") != std::string::npos) break;
        text += line + "\n";
    }
    WriteFile("calls.jsonl", text);
    const Outcome outcome = Kestova("replay calls.jsonl");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("the recording ends behind this line; asked was "
                                          "{\"call\":\"IVdsService::QueryProviders\""));
}

TEST_F(Recording, AnswersOfAnotherForm_Replay_NamesTheLine) {
    const std::map<std::string, std::pair<std::string, std::string>> changes = {
        {"IVdsAdvancedDisk::QueryPartitions", {"\"count\":4", "\"count\":400000000"}},
        {"IVdsPack::QueryDisks", {"\"out\":{\"list\":", "\"out\":{\"list\":-"}},
        {"IVdsDisk::GetProperties", {"\"busType\":11", "\"busType\":\"SATA\""}},
        {"IVdsService::QueryProviders", {"\"result\":\"0x", "\"result\":\"x"}},
        {"IVdsService::IsServiceReady", {"\"error\":", "\"mistake\":"}},
        // More than there is room for.
        {"GetVolumeInformationW", {"\"label\":\"", "\"label\":\"" + std::string(100000, 'x')}},
        {"DeviceIoControl", {"\"output\":\"", "\"output\":\"" + std::string(200000, '0')}},
        {"IEnumVdsObject::Next", {"\"objects\":[", "\"objects\":[7,7,7,"}},
    };
    for (const auto& [call, change] : changes) {
        Record("--pc factory-mbr status");
        const size_t line = Change(call, change.first, change.second);
        const Outcome outcome = Kestova("replay calls.jsonl");
        EXPECT_EQ(outcome.status, 1) << call;
        EXPECT_THAT(outcome.errors, StartsWith("kestova: calls.jsonl:" + std::to_string(line) + ": "))
            << call;
        EXPECT_LT(outcome.errors.size(), 1500U) << call;
    }
}

TEST_F(Recording, OtherFiles_Replay_SaysWhatTheyAreNot) {
    WriteFile("empty", "");
    WriteFile("other", "{\"name\":\"a PC\"}\n");
    WriteFile("newer", "{\"kestovaRecording\":2}\n");
    WriteFile("headless", "{\"kestovaRecording\":1}\n{\"operation\":\"Initialize\",\"arguments\":{}}\n");
    EXPECT_EQ(Kestova("replay empty").errors, "kestova: empty: not a recording of platform calls\n");
    EXPECT_EQ(Kestova("replay other").errors, "kestova: other: not a recording of platform calls\n");
    EXPECT_EQ(Kestova("replay newer").errors, "kestova: newer: a recording of another version, 2\n");
    EXPECT_EQ(Kestova("replay headless").errors,
              "kestova: headless: no object of the library is made at its beginning\n");
    EXPECT_EQ(Kestova("replay missing").status, 3);
}

// A parser without bounds would need a stack for the one, and gigabytes for the others.
TEST_F(Recording, LineThatIsDeepWideOrFullOfKeys_Replay_IsDamaged) {
    constexpr size_t many = 2000000;
    std::string keys;
    for (size_t key = 0; key < 100000; ++key)
        keys += "\"" + std::to_string(key) + "\":0,";
    std::string values;
    for (size_t value = 0; value < 5 * many; ++value)
        values += "0,";
    for (const std::string& line : {std::string(many, '[') + std::string(many, ']'), "{" + keys + "\"\":0}",
                                    "[" + values + "0]", std::string(many, '{')}) {
        WriteFile("calls.jsonl",
                  "{\"kestovaRecording\":1}\n{\"operation\":\"Kestova\",\"arguments\":{}}\n"
                  "{\"call\":" +
                      line + "}\n\n");
        const Outcome outcome = Kestova("replay calls.jsonl");
        EXPECT_EQ(outcome.status, 1) << line.substr(0, 10);
        EXPECT_EQ(outcome.errors, "kestova: calls.jsonl:3: damaged: not a JSON object; in Kestova\n");
    }
    WriteFile("deep", std::string(many, '[') + std::string(many, ']') + "\n");
    EXPECT_EQ(Kestova("replay deep").errors, "kestova: deep: not a recording of platform calls\n");
}

// --- the file that is written ---

TEST_F(Recording, FileOfAnotherKind_Record_LeavesItUnlessToldTo) {
    WriteFile("letter.txt", "Dear customer\n");
    const Outcome refused = Kestova("--pc factory-mbr --record letter.txt status");
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, StartsWith("kestova: --record: letter.txt is neither empty nor a recording"));
    EXPECT_EQ(ReadFile("letter.txt"), "Dear customer\n");
    EXPECT_EQ(Kestova("--pc factory-mbr --overwrite --record letter.txt status").status, 0);
    EXPECT_THAT(ReadFile("letter.txt"), StartsWith("{\"kestovaRecording\":1,"));
    EXPECT_EQ(Kestova("--pc factory-mbr --log one --record one status").status, 2);
}

TEST_F(Recording, Recorded_SaysWhatTheFileHolds) {
    EXPECT_THAT(
        Kestova("--pc factory-mbr --record calls.jsonl call IsEFIBootSystem").errors,
        EndsWith("kestova: calls.jsonl holds what the PC answered: serial numbers, labels, paths and all "
                 "else that the library asked for\n"));
    EXPECT_EQ(Kestova("--pc factory-mbr --record /dev/full call IsEFIBootSystem").status, 1);
}

}  // namespace
