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

}  // namespace
