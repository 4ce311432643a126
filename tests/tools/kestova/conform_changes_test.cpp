// Calls that change a disk, tried on one of two PCs and taken back.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/support/program/program.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ConformChanges : public ProgramTest {
  protected:
    // The factory PC, and disk 1: a lettered and an active volume, and a partition without either.
    json Lab() {
        EXPECT_EQ(Kestova("--pc factory-mbr --save factory.json call IsDynamic").status, 0);
        json pc = json::parse(ReadFile("factory.json"));
        const auto volume = [](const char* letters) {
            return json{{"letters", letters}, {"fileSystem", "NTFS"}};
        };
        pc["disks"].push_back(
            {{"number", 1},
             {"size", "10 GiB"},
             {"busType", "usb"},
             {"partitions",
              {{{"number", 1},
                {"offset", "1 MiB"},
                {"size", "4 GiB"},
                {"mbrType", "0x07"},
                {"volume", volume("E")}},
               {{"number", 2},
                {"offset", "5 GiB"},
                {"size", "4 GiB"},
                {"mbrType", "0x07"},
                {"bootIndicator", 1},
                {"volume", volume("")}},
               {{"number", 3}, {"offset", "9 GiB"}, {"size", "512 MiB"}, {"mbrType", "0x27"}}}}});
        return pc;
    }
    json Switched() {
        json pc = Lab();
        pc["switches"] = {{"activeFlagIsExclusive", true},
                          {"letterless", "zero"},
                          {"volumesRefuseLetterCalls", false},
                          {"hidingRemovesVolume", false}};
        return pc;
    }

    Outcome Conform(const json& pc, const std::string& words = "--changes 1") {
        WriteFile("lab.json", pc.dump());
        WriteFile("plain.json", Lab().dump());
        return Kestova("--pc lab.json --json " + words + " conform plain.json");
    }
    // The answers of the PC at hand, by the question's switch.
    static std::vector<std::string> AnswersIn(const Outcome& outcome, const char* side = "here") {
        std::vector<std::string> answers;
        const json report = json::parse(outcome.output);
        for (const json& question : report["questions"])
            answers.push_back(question["switch"].get<std::string>() + "=" +
                              question[side].get<std::string>());
        return answers;
    }
};

TEST_F(ConformChanges, EachSwitchTheOneWay_Tried_IsFoundOut) {
    json pc = Lab();
    pc["switches"] = {{"volumesRefuseLetterCalls", true}, {"hidingRemovesVolume", false}};
    const Outcome outcome = Conform(pc);
    EXPECT_THAT(
        AnswersIn(outcome),
        ElementsAre("activeFlagIsExclusive=false", "letterless=\"fails\"", "volumesRefuseLetterCalls=true",
                    "=unknown: AssignDriveLetter answered VDS_E_INVALID_OPERATION",
                    "hidingRemovesVolume=false"));
    EXPECT_THAT(json::parse(outcome.output)["left"], IsEmpty());
}

TEST_F(ConformChanges, EachSwitchTheOtherWay_Tried_IsFoundOutAndPutBack) {
    json pc = Switched();
    pc["switches"]["hidingRemovesVolume"] = true;
    const Outcome outcome = Conform(pc);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        AnswersIn(outcome),
        ElementsAre("activeFlagIsExclusive=true", "letterless=\"zero\"", "volumesRefuseLetterCalls=false",
                    "=GetDriveLetter shows the first one; the first stays", "hidingRemovesVolume=true"));
    EXPECT_THAT(json::parse(outcome.output)["left"], IsEmpty());
    EXPECT_THAT(AnswersIn(outcome, "emulated"), Contains("activeFlagIsExclusive=false"));
}

TEST_F(ConformChanges, LetterlessAnswersNul_Tried_IsFoundOut) {
    json pc = Lab();
    pc["switches"] = {{"letterless", "nul"}};
    EXPECT_THAT(AnswersIn(Conform(pc)), Contains("letterless=\"nul\""));
}

TEST_F(ConformChanges, SamePcTwice_Tried_HasNoDifference) {
    json pc = Lab();
    pc["switches"] = {{"hidingRemovesVolume", false}};
    WriteFile("lab.json", pc.dump());
    const Outcome outcome = Kestova("--pc lab.json --changes 1 conform lab.json");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("What the documents leave open:\n"));
    EXPECT_THAT(outcome.output, HasSubstr("compared: no differences\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("\nNot asked, since they change the first internal disk or write files: "));
    EXPECT_THAT(outcome.output, HasSubstr(", GetWinDriveLetters, SetRcvprtActive, "));
}

// The changing calls are compared like the others.
TEST_F(ConformChanges, OtherAnswerOfACallThatChanges_Tried_IsADifference) {
    json pc = Switched();
    pc["faults"] = {{{"call", "IVdsAdvancedDisk::ChangeAttributes"}, {"code", "E_FAIL"}}};
    const json report = json::parse(Conform(pc).output);
    const json& first = report["questions"][0];
    EXPECT_EQ(first["here"], "unknown: ChangeAttributes answered E_FAIL, then E_FAIL");
    const auto isOfTheFlag = [](const json& difference) {
        return difference["name"] == "IVdsAdvancedDisk::ChangeAttributes" && difference["here"] == "E_FAIL" &&
               difference["emulated"] == "S_OK";
    };
    EXPECT_TRUE(std::ranges::any_of(report["differences"], isOfTheFlag));
    EXPECT_THAT(report["left"], IsEmpty());
}

TEST_F(ConformChanges, LetterThatCannotBeTaken_Tried_IsSaid) {
    json pc = Switched();
    pc["faults"] = {{{"call", "IVdsAdvancedDisk::DeleteDriveLetter"}, {"code", "E_FAIL"}}};
    const Outcome outcome = Conform(pc);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        json::parse(outcome.output)["left"],
        ElementsAre("\\\\?\\PhysicalDrive1, partition 1 was: type 0x07, not active, letters E; it is: type "
                    "0x07, not active, letters EZ; put it back with diskpart"));
    EXPECT_THAT(outcome.errors, HasSubstr("letters EZ; put it back with diskpart\n"));
}

TEST_F(ConformChanges, FlagThatCannotBeSetBack_Tried_IsSaid) {
    json pc = Switched();
    pc["switches"]["activeFlagIsExclusive"] = false;
    pc["faults"] = {
        {{"call", "IVdsAdvancedDisk::ChangeAttributes"}, {"nth", 3}, {"onwards", true}, {"code", "E_FAIL"}}};
    const Outcome outcome = Conform(pc);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        json::parse(outcome.output)["left"],
        ElementsAre("\\\\?\\PhysicalDrive1, partition 1 was: type 0x07, not active, letters E; it is: type "
                    "0x07, active, letters E; put it back with diskpart"));
}

// The service lists no partition any more, from each of its answers on.
TEST_F(ConformChanges, PartitionsThatAreNotListedAnyMore_Tried_ArePutBackAndSaidToBeUnknown) {
    int unread = 0;
    for (int nth = 2; nth <= 60; nth += 6) {
        json pc = Switched();
        pc["switches"]["activeFlagIsExclusive"] = false;
        pc["faults"] = {{{"call", "IVdsAdvancedDisk::QueryPartitions"},
                         {"argument", "disk 1"},
                         {"nth", nth},
                         {"onwards", true},
                         {"code", "E_FAIL"}}};
        const Outcome outcome = Conform(pc);
        if (outcome.status == 2) continue;  // not listed at all, so refused
        const json report = json::parse(outcome.output);
        for (const json& difference : report["differences"])
            EXPECT_NE(difference["name"], "IVdsAdvancedDisk::ChangeAttributes") << nth << difference;
        if (report["questions"][0]["here"] != "false")
            EXPECT_EQ(report["questions"][0]["here"], "unknown: the service did not list the partitions")
                << nth;
        if (report["left"].empty()) continue;
        ++unread;
        for (const json& left : report["left"])
            EXPECT_THAT(left.get<std::string>(),
                        HasSubstr("; it is: not to be read; put it back with diskpart"));
    }
    EXPECT_GT(unread, 0);
}

// Whatever the running Windows is on is not changed, also if it cannot be told.
TEST_F(ConformChanges, PlaceOfTheRunningWindowsUnknown_Tried_IsRefused) {
    json pc = Lab();
    pc["disks"][0]["busType"] = "usb";
    pc["disks"][1]["busType"] = "sata";
    for (const char* const call : {"CreateFileW", "DeviceIoControl"}) {
        int refusals = 0;
        for (int nth = 1; nth <= 8; ++nth) {
            pc["faults"] = {{{"call", call}, {"nth", nth}, {"code", "ERROR_ACCESS_DENIED"}}};
            WriteFile("odd.json", pc.dump());
            const Outcome outcome = Kestova("--pc odd.json --changes 0 conform");
            EXPECT_EQ(outcome.status, 2) << call << nth << outcome.output;
            if (outcome.errors.find("which disk holds the running Windows could not be told") !=
                std::string::npos)
                ++refusals;
        }
        EXPECT_EQ(refusals, 1) << call;
    }
}

TEST_F(ConformChanges, DiskOnWhichNothingMayBeTried_IsRefused) {
    const auto refusal = [&](const std::string& words) {
        const Outcome outcome = Kestova(words + " conform");
        EXPECT_EQ(outcome.status, 2) << words;
        EXPECT_EQ(outcome.output, "");
        return outcome.errors.substr(0, outcome.errors.find('\n'));
    };
    WriteFile("lab.json", Lab().dump());
    EXPECT_EQ(
        refusal("--pc lab.json --changes 0"),
        "kestova: --changes 0: the first internal disk, from which the PC starts; attach a virtual disk");
    EXPECT_EQ(refusal("--pc lab.json --changes 2"),
              "kestova: --changes 2: the Virtual Disk Service has no such disk");
    EXPECT_EQ(refusal("--pc lab.json --changes one"), "kestova: --changes: 'one' is no number from 0 to 127");
    json pc = Lab();
    pc["disks"][0]["busType"] = "usb";
    WriteFile("usb.json", pc.dump());
    EXPECT_EQ(refusal("--pc usb.json --changes 0"), "kestova: --changes 0: it holds the running Windows");
    pc = Lab();
    pc["disks"][1]["partitions"][0]["volume"]["files"] = {{"pagefile.sys", "x"}};
    WriteFile("paged.json", pc.dump());
    EXPECT_EQ(refusal("--pc paged.json --changes 1"), "kestova: --changes 1: it holds a page file");
    pc["disks"][1]["partitions"] = json::array();
    WriteFile("bare.json", pc.dump());
    EXPECT_EQ(refusal("--pc bare.json --changes 1"), "kestova: --changes 1: it has no partitions");
    pc["disks"][1]["style"] = "gpt";
    WriteFile("gpt.json", pc.dump());
    EXPECT_EQ(refusal("--pc gpt.json --changes 1"),
              "kestova: --changes 1: not an MBR disk that the Virtual Disk Service changes");
    EXPECT_EQ(
        refusal("--image none.img --changes 1"),
        "kestova: --changes: not on disk images; attach a virtual disk to the PC, or name one with --pc");
}

// --- the result as a page ---

TEST_F(ConformChanges, Differences_AsAPage_StandThereWholeAndSafe) {
    WriteFile("lab.json", Switched().dump());
    WriteFile("plain<b>.json", Lab().dump());
    const Outcome outcome = Shell("SOURCE_DATE_EPOCH=0 '" KESTOVA_PROGRAM
                                  "' --pc lab.json --changes 1 -o page.html conform 'plain<b>.json'");
    EXPECT_EQ(outcome.status, 1) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    const std::string page = ReadFile("page.html");
    EXPECT_THAT(page, HasSubstr("<p>Made by kestova " KESTOVA_VERSION
                                " at 1970-01-01T00:00:00Z. Changes were tried on disk "
                                "1 of lab.json.</p>"));
    EXPECT_THAT(page, HasSubstr("<p>lab.json and plain&lt;b&gt;.json: 55 operations and "));
    EXPECT_THAT(
        page, HasSubstr("<tr><td>IVdsAdvancedDisk::AssignDriveLetter</td><td>\\\\?\\PhysicalDrive1, 1048576, "
                        "Z</td><td>S_OK</td><td>VDS_E_INVALID_OPERATION</td><td></td></tr>"));
    EXPECT_THAT(page,
                HasSubstr("<td>does setting one active flag clear the others?</td><td>true</td><td>false</td>"
                          "<td>activeFlagIsExclusive</td>"));
    EXPECT_EQ(Shell("tidy -q -e page.html").errors, "");
    EXPECT_EQ(Kestova("--pc lab.json -o page.html conform lab.json").status, 0) << "a page replaces a page";
    EXPECT_THAT(ReadFile("page.html"), HasSubstr("Nothing was changed.</p>"));
}

TEST_F(ConformChanges, Differences_AsMarkdown_AreTablesOnStandardOutput) {
    WriteFile("lab.json", Switched().dump());
    WriteFile("plain.json", Lab().dump());
    const Outcome outcome = Kestova("--pc lab.json --changes 1 --format markdown conform plain.json");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output,
                HasSubstr("# Kestova report: where two PCs answer differently\n\nMade by kestova "));
    EXPECT_THAT(
        outcome.output,
        HasSubstr("\n## What the documents leave open\n\n| Question | lab.json | plain.json | Switch of "
                  "a description |\n|---|---|---|---|\n| does setting one active flag clear the "
                  "others? | true | false | activeFlagIsExclusive |\n"));
}

TEST_F(ConformChanges, PageWithoutAPlaceOrInJson_Asked_IsRefused) {
    const auto refusal = [&](const std::string& words) {
        const Outcome outcome = Kestova("--pc factory-mbr " + words + " conform");
        EXPECT_EQ(outcome.status, 2) << words;
        return outcome.errors.substr(0, outcome.errors.find('\n'));
    };
    EXPECT_EQ(refusal("--format html"),
              "kestova: conform: name the file with --output, or standard output with --output -");
    EXPECT_EQ(refusal("--format pdf"), "kestova: --format: there is no format 'pdf'");
    EXPECT_THAT(refusal("--json --format markdown"),
                HasSubstr("conform: --json is given with --output or --format, which make a page"));
    WriteFile("notes.txt", "mine\n");
    EXPECT_EQ(refusal("-o notes.txt"),
              "kestova: --output: notes.txt is neither empty nor a report; --overwrite replaces it");
    EXPECT_EQ(ReadFile("notes.txt"), "mine\n");
}

}  // namespace
