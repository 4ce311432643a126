// Where two PCs answer differently, as a user meets it.

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "machine/calls/call_table.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tests/support/program/program.h"
#include "tools/kestova/conformance/conformance.h"
#include "tools/kestova/probes/enumerations.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Optional;

class Conform : public ProgramTest {
  protected:
    // The factory PC in a file, in which one text is another.
    void DescribeWith(const std::string& file, const std::string& text, const std::string& other) {
        ASSERT_EQ(Kestova("--pc factory-mbr --save factory.json call IsDynamic").status, 0);
        std::string description = ReadFile("factory.json");
        const size_t at = description.find(text);
        ASSERT_NE(at, std::string::npos) << text;
        WriteFile(file, description.replace(at, text.size(), other));
    }

    // Of what both PCs were asked.
    std::vector<json> Differing(const std::string& words) {
        std::vector<json> both;
        const json report = json::parse(Kestova("--json " + words).output);
        for (const json& difference : report["differences"]) {
            if (!difference["here"].is_null() && !difference["emulated"].is_null())
                both.push_back(difference);
        }
        return both;
    }
    std::set<std::string> NamesOfDiffering(const std::string& words) {
        std::set<std::string> names;
        for (const json& difference : Differing(words))
            names.insert(difference["name"]);
        return names;
    }
};

std::unique_ptr<OpenedPc> Open(const std::string& machine) {
    return OpenPc({.pc = machine, .trace = true}, Access::Ask);
}

PcAnswers Ask(OpenedPc& pc) {
    Session session(pc, nullptr, false);
    return AskPc(session);
}

TEST_F(Conform, EachMachine_WithItself_HasNoDifference) {
    for (const std::string name : {"factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"}) {
        const Outcome outcome = Kestova("--pc " + name + " conform " + name);
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_THAT(outcome.output, EndsWith(" calls compared: no differences\n")) << name;
        EXPECT_EQ(outcome.errors, "");
    }
}

// The PC is captured and built again from that, which answers like it as far as a capture can see.
TEST_F(Conform, EachMachine_WithItsCapture_HasNoDifference) {
    for (const std::string name : {"factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"}) {
        const Outcome outcome = Kestova("--pc " + name + " conform");
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_THAT(outcome.output, EndsWith(" calls compared: no differences\n")) << name;
    }
}

TEST_F(Conform, OtherLabel_DiffersWhereLabelsAreRead) {
    DescribeWith("other.json", "\"Windows\"", "\"Fenster\"");
    const Outcome outcome = Kestova("--pc factory-mbr conform other.json");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        NamesOfDiffering("--pc factory-mbr conform other.json"),
        ElementsAre("GetCurrentDiskType", "GetVolumeInformationW", "IVdsVolumeMF::GetFileSystemProperties"));
    EXPECT_THAT(outcome.output, testing::ContainsRegex("label \"Windows\".* label \"Fenster\""));
}

TEST_F(Conform, OtherMbrType_DiffersInEveryTableThatHasIt) {
    DescribeWith("other.json", "\"mbrType\": \"0x27\"", "\"mbrType\": \"0x12\"");
    EXPECT_THAT(NamesOfDiffering("--pc factory-mbr conform other.json"),
                IsSupersetOf({"DeviceIoControl", "IVdsAdvancedDisk::QueryPartitions"}));
}

// A call that the library makes with these arguments is marked with the operations that make it.
TEST_F(Conform, OtherDriveType_IsMetByWhoAsksForTheType) {
    DescribeWith("other.json", "\"label\": \"Data\"", "\"driveType\": \"removable\", \"label\": \"Data\"");
    const std::vector<json> differing = Differing("--pc factory-mbr conform other.json");
    const auto type = std::ranges::find_if(differing, [](const json& difference) {
        return difference["name"] == "GetDriveTypeW" && difference["arguments"] == "\"D:\"";
    });
    ASSERT_NE(type, differing.end());
    EXPECT_EQ((*type)["here"], "3");
    EXPECT_EQ((*type)["emulated"], "2");
    EXPECT_THAT((*type)["operations"], Contains("GetRCVUFD"));
}

// A disk that one PC lacks: the calls for it are no differences of their own, but are shown.
TEST_F(Conform, DiskOfOneOnly_IsListedByItself) {
    const Outcome outcome = Kestova("--pc factory-mbr conform winpe-two-disks");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("\nOnly winpe-two-disks was asked:\n"));
    const size_t list = outcome.output.find("Only winpe-two-disks was asked:");
    EXPECT_GT(outcome.output.find("\"\\\\?\\PhysicalDrive1\", partition 1"), list);
}

TEST_F(Conform, KnownDifferences_AreNoFailure) {
    DescribeWith("other.json", "\"Windows\"", "\"Fenster\"");
    WriteFile("known.tsv",
              "# call, arguments, reason\n\n"
              "GetVolumeInformationW\t\"C:*\tthe label was changed\n"
              "*\tthe volume of *\tso it was for the service\n"
              "GetCurrentDiskType\tlog record *\tits record has it\r\n"
              "GetDriveTypeW\t*\tnothing\n");
    const Outcome outcome = Kestova("--pc factory-mbr --expect known.tsv conform other.json");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Expected differences:\n"));
    EXPECT_THAT(outcome.output, HasSubstr("so it was for the service\n"));
    EXPECT_THAT(outcome.output, EndsWith(" calls compared: no differences, 3 expected\n"));
    EXPECT_EQ(outcome.errors, "kestova: known.tsv:6: expected, but no difference: nothing\n");
}

TEST_F(Conform, FileThatIsNoListOfDifferences_IsRefusedWithItsLine) {
    WriteFile("known.tsv", "# call\nGetDriveTypeW\tno reason\n");
    const Outcome outcome = Kestova("--pc factory-mbr --expect known.tsv conform factory-mbr");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("known.tsv:2: a call, its arguments and a reason are wanted"));
    EXPECT_THAT(Kestova("--pc factory-mbr --expect none.tsv conform factory-mbr").errors,
                HasSubstr("none.tsv: there is no such file"));
    WriteFile("long.tsv", std::string(2 << 20, '#'));
    EXPECT_THAT(Kestova("--pc factory-mbr --expect long.tsv conform factory-mbr").errors,
                HasSubstr("long.tsv: larger than 1 MiB, so no list of differences"));
}

TEST_F(Conform, MissingOrWrongPc_IsRefused) {
    EXPECT_EQ(Kestova("--pc factory-mbr conform factory-mbd").status, 2);
    EXPECT_EQ(Kestova("--pc none.json conform factory-mbr").status, 3);
    WriteFile("wrong.json", "{\"nam\": 5}");
    const Outcome outcome = Kestova("--pc factory-mbr conform wrong.json");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(Kestova("--pc factory-mbr --dry-run conform factory-mbr").status, 2);
}

// The two calls whose answers are not compared: only waiting for a program and reading a file need something
// that would have to be started or made first.
TEST(ConformanceProbes, EveryCallThatChangesNothing_IsMade) {
    std::set<std::string> made = {"ReadFile", "WaitForSingleObject"};
    for (const std::string machine : {"factory-mbr", "winpe-media"}) {
        const auto pc = Open(machine);
        for (const CallAnswer& call : Ask(*pc).calls)
            made.insert(call.call);
    }
    for (const machine::CallInfo& call : machine::AllCalls()) {
        if (!call.changesPc) EXPECT_THAT(made, Contains(call.name));
    }
}

// A probe that gave nothing back would exhaust the service of a real PC. What the library itself keeps is
// left.
TEST(ConformanceProbes, WhatTheyAreGiven_TheyGiveBack) {
    const auto pc = Open("winpe-media");
    Session session(*pc, nullptr, false);
    session.Construct();
    session.Call(FindOperation("Initialize"), {{"reserved", false}});
    const std::map<std::string, int> before = pc->Ledger();
    MakeCalls(*pc);
    for (const auto& [kind, count] : pc->Ledger())
        EXPECT_EQ(count, before.contains(kind) ? before.at(kind) : 0) << kind;
    session.Destroy();
}

TEST(ConformanceProbes, EveryMachine_IsAskedWithoutAChange) {
    const auto pc = Open("factory-gpt");
    Ask(*pc);
    EXPECT_THAT(pc->Changes(), Optional(IsEmpty()));
}

// A program that is started, or a file that is written and deleted again, would show in no change of the end.
TEST(ConformanceProbes, NoOperation_ChangesAnythingOnItsWay) {
    constexpr const char* changing[] = {"WriteFile",
                                        "DeleteFileW",
                                        "ShellExecuteExW",
                                        "WritePrivateProfileStringW",
                                        "IVdsAdvancedDisk::AssignDriveLetter",
                                        "IVdsAdvancedDisk::DeleteDriveLetter",
                                        "IVdsAdvancedDisk::ChangeAttributes",
                                        "IVdsAdvancedDisk2::ChangePartitionType"};
    for (const std::string machine : {"factory-mbr", "factory-gpt", "winpe-media", "winpe-two-disks"}) {
        const auto pc = Open(machine);
        for (const auto& [call, callers] : Ask(*pc).callers) {
            for (const std::string name : changing)
                EXPECT_FALSE(call.starts_with(name + "(")) << call << " of " << callers.front();
        }
    }
}

// Questions to a server that is gone would each wait for it.
TEST(ConformanceProbes, NetworkDrive_IsAskedForItsTypeOnly) {
    machine::Pc facts = machine::FactoryMbr();
    facts.volumes.push_back({.letters = "N", .driveType = machine::DriveType::Remote});
    machine::EmulatedPc pc(facts);
    EXPECT_EQ(LettersInUse(), WideString(TEXT("CD")));
    EXPECT_EQ(LocalLetters().find(TEXT('N')), WideString::npos);
    EXPECT_EQ(LocalLetters().size(), 25u);
}

// A provider that hangs is asked no further; every other call is made and compared.
TEST_F(Conform, ListOfWmiThatNeverAnswers_IsADifferenceOfItsOwn) {
    ASSERT_EQ(Kestova("--pc winpe-media --save plain.json call IsDynamic").status, 0);
    json pc = json::parse(ReadFile("plain.json"));
    pc["faults"] = {{{"call", "IEnumWbemClassObject::Next"}, {"code", "0x40004"}}};
    WriteFile("slow.json", pc.dump());
    const json report = json::parse(Kestova("--pc slow.json --json conform plain.json").output);
    std::set<std::string> answers;
    for (const json& difference : report["differences"]) {
        if (difference["name"] != "IEnumWbemClassObject::Next") continue;
        EXPECT_THAT(difference["operations"], Contains("GetEncryptVolume"));
        if (!difference["here"].is_null()) answers.insert(difference["here"]);
    }
    EXPECT_THAT(answers, ElementsAre("no answer in 60 s"));
}

// Lists of a service in trouble, which hand out the same object again and again.
class EndlessObjects final : public IEnumVdsObject {
  public:
    explicit EndlessObjects(HRESULT result) : result_(result) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE Next(ULONG, IUnknown** objects, ULONG* fetched) override {
        AddRef();
        *objects = this;
        *fetched = 1;
        return result_;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVdsObject**) override { return E_NOTIMPL; }

    ULONG references = 1;

  private:
    HRESULT result_;
};

TEST(ConformanceLists, ListWithoutAnEnd_IsReadSoFarAndGivenBack) {
    EndlessObjects list(S_OK);
    int objects = 0;
    EXPECT_EQ(ForEachObject(list, [&](IUnknown&) { ++objects; }), S_OK);
    EXPECT_EQ(objects, longestList);
    EXPECT_EQ(list.references, 1U);
}

// The second call of the same kind is compared with the second, and a longer list has calls of its own.
TEST(ConformanceComparison, SameCallTwice_IsComparedInOrder) {
    const PcAnswers here = {.calls = {{"Next", "list, 1", "S_OK", ""}, {"Next", "list, 1", "S_FALSE", ""}}};
    const PcAnswers emulated = {.calls = {{"Next", "list, 1", "S_OK", ""},
                                          {"Next", "list, 1", "S_OK", ""},
                                          {"Next", "list, 1", "S_FALSE", "Next(1)"}},
                                .callers = {{"Next(1)", {"GetDiskStyle"}}}};
    const ConformanceReport report = CompareAnswers(here, emulated);
    ASSERT_EQ(report.differences.size(), 2u);
    EXPECT_EQ(report.differences[0].here, "S_FALSE");
    EXPECT_EQ(report.differences[0].emulated, "S_OK");
    EXPECT_EQ(report.differences[1].here, std::nullopt);
    EXPECT_THAT(report.differences[1].operations, ElementsAre("GetDiskStyle"));
}

TEST(ConformanceComparison, LongerLog_DiffersInItsFirstFurtherRecord) {
    const PcAnswers here = {.operations = {{"IsVistaOS", "C", "1", {"4 Start"}}}};
    const PcAnswers emulated = {.operations = {{"IsVistaOS", "C", "1", {"4 Start", "4 End"}}}};
    const ConformanceReport report = CompareAnswers(here, emulated);
    ASSERT_EQ(report.differences.size(), 1u);
    EXPECT_EQ(report.differences[0].arguments, "C, log record 2");
    EXPECT_EQ(report.differences[0].here, std::nullopt);
    EXPECT_EQ(report.differences[0].emulated, "4 End");
}

TEST(ConformanceComparison, DifferenceThatTwoRowsFit_IsExplainedByTheFirst) {
    ConformanceReport report = CompareAnswers({.calls = {{"GetDriveTypeW", "C:", "3", ""}}},
                                              {.calls = {{"GetDriveTypeW", "C:", "2", ""}}});
    NoteExpected({{{Pattern("*"), Pattern("C:"), "the first", "known.tsv:1"},
                   {Pattern("GetDriveTypeW"), Pattern("*"), "the second", "known.tsv:2"}}},
                 report);
    EXPECT_EQ(report.differences[0].expected, "the first");
    EXPECT_THAT(report.unmet, ElementsAre("known.tsv:2: expected, but no difference: the second"));
}

TEST(ConformancePattern, Stars_StandForAnyText) {
    EXPECT_TRUE(Pattern("*").Matches(""));
    EXPECT_TRUE(Pattern("a*c*").Matches("abcbc"));
    EXPECT_TRUE(Pattern("*bc").Matches("abcbc"));
    EXPECT_FALSE(Pattern("*bd").Matches("abcbc"));
    EXPECT_FALSE(Pattern("").Matches("a"));
    EXPECT_FALSE(Pattern("ab").Matches("abc"));
}

}  // namespace
