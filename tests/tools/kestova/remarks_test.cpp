// What a success adds: which of two outcomes it was, what it changed, and what will keep the PC from
// starting.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "tests/support/program/program.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Texts = std::vector<std::string>;

class Remarks : public ProgramTest {
  protected:
    // The objects that the program writes with --json.
    std::vector<json> Objects(const std::string& words, const std::string& input = "") {
        const Outcome outcome = Kestova("--json " + words, input);
        std::istringstream lines(outcome.output);
        std::vector<json> objects;
        for (std::string line; std::getline(lines, line);)
            objects.push_back(json::parse(line));
        EXPECT_FALSE(objects.empty()) << outcome.errors;
        if (objects.empty()) objects.emplace_back();
        return objects;
    }
    // The factory's MBR machine, on which setting one active flag clears the others.
    json Exclusive() {
        EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json status").status, 0);
        json pc = json::parse(ReadFile("pc.json"));
        pc["switches"]["activeFlagIsExclusive"] = true;
        return pc;
    }
    Texts Codes(const json& object) {
        Texts codes;
        for (const json& remark : object.value("remarks", json::array()))
            codes.push_back(remark["code"]);
        return codes;
    }
};

using Outcomes = Remarks;
using Faults = Remarks;

TEST_F(Outcomes, ExclusiveFlags_BootThereTwiceAndBackTwice_SaysWhichItWas) {
    WriteFile("pc.json", Exclusive().dump());
    const std::vector<std::pair<std::string, std::string>> stories = {
        {"boot recovery", "SetRcvprtActive() = 0: done\n"},
        {"boot recovery", "SetRcvprtActive() = 0: it was active already\nNothing changed.\n"},
        {"boot system", "SetSystemActive() = 0: done\n"},
        {"boot system", "SetSystemActive() = 0: there was nothing to do\nNothing changed.\n"},
    };
    for (const auto& [words, answer] : stories) {
        const Outcome outcome = Kestova("--pc pc.json --save pc.json " + words);
        EXPECT_EQ(outcome.status, 0) << words;
        EXPECT_THAT(outcome.output, HasSubstr(answer)) << words;
        EXPECT_EQ(outcome.errors, "") << words;
    }
}

TEST_F(Outcomes, ExclusiveFlags_BootInJson_HasOutcomeAndChanges) {
    WriteFile("pc.json", Exclusive().dump());
    const json there = Objects("--pc pc.json --save pc.json boot recovery").back();
    EXPECT_EQ(there["outcome"], "done");
    EXPECT_EQ(there["changes"].get<Texts>(),
              Texts({"disk 0, partition 1: active now", "disk 0, partition 1: given letter E",
                     "disk 0, partition 1: file SystemVolume.ini created:\n    [System]\n    Active=2",
                     "disk 0, partition 2: no longer active"}));
    EXPECT_FALSE(there.contains("remarks"));
    const json again = Objects("--pc pc.json boot recovery").back();
    EXPECT_EQ(again["outcome"], "it was active already");
    EXPECT_THAT(again["changes"], IsEmpty());
}

TEST_F(Outcomes, FailedSwitch_BootInJson_HasNoOutcome) {
    const json refused = Objects("--pc factory-gpt boot recovery").back();
    EXPECT_FALSE(refused.contains("outcome"));
    EXPECT_THAT(refused["changes"], IsEmpty());
}

TEST_F(Outcomes, Script_RunInJson_EachLineHasItsOwnChanges) {
    WriteFile("pc.json", Exclusive().dump());
    const std::vector<json> objects =
        Objects("--pc pc.json run -", "SetActive 3\nGetDriveLetter 0 2\nSetActive 2\n");
    ASSERT_EQ(objects.size(), 6);
    EXPECT_EQ(objects[2]["changes"].get<Texts>(),
              Texts({"disk 0, partition 2: no longer active", "disk 0, partition 3: active now"}));
    EXPECT_FALSE(objects[3].contains("changes"));
    EXPECT_EQ(objects[4]["changes"].get<Texts>(),
              Texts({"disk 0, partition 2: active now", "disk 0, partition 3: no longer active"}));
}

TEST_F(Remarks, SharedFlags_RunAScript_RemarksInEachObjectAndOnceInText) {
    const std::string script = "SetActive 3\nGetDriveLetter 0 2\nClearActive\n";
    const std::vector<json> objects = Objects("--pc factory-mbr run -", script);
    ASSERT_EQ(objects.size(), 6);
    EXPECT_THAT(Codes(objects[2]), ElementsAre("twoActiveFlags"));
    EXPECT_THAT(Codes(objects[3]), IsEmpty());
    EXPECT_THAT(Codes(objects[4]), IsEmpty());
    EXPECT_EQ(Kestova("--pc factory-mbr run -", script).errors, "");
    EXPECT_THAT(Kestova("--pc factory-mbr run -", "SetActive 3\nSetActive 1\nGetDriveLetter 0 2\n").errors,
                "kestova: 3 partitions are active; a PC starts from a disk with one only; the description's "
                "activeFlagIsExclusive is false, so others keep theirs\n");
}

TEST_F(Remarks, HiddenPartition_CallSetActive_RemarksThatItsWindowsDoesNotStart) {
    json pc = Exclusive();
    pc["disks"][0]["partitions"][2]["mbrType"] = 0x17;
    WriteFile("hidden.json", pc.dump());
    const Outcome outcome = Kestova("--pc hidden.json --save hidden.json call SetActive 3");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors,
              "kestova: partition 3 is active and hidden (type 0x17); a Windows on it does not start\n");
    EXPECT_THAT(Codes(Objects("--pc hidden.json status").back()), ElementsAre("hiddenActive"));
}

// An active hibernation partition is what the record then names.
TEST_F(Remarks, HibernationPartitionActive_BootRecovery_RemarksOnTheRecord) {
    json pc = Exclusive();
    pc["disks"][0]["partitions"][1]["bootIndicator"] = 0;
    pc["disks"][0]["partitions"][3]["bootIndicator"] = 1;
    WriteFile("pc.json", pc.dump());
    const Outcome outcome = Kestova("--pc pc.json --save pc.json boot recovery");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.errors,
        "kestova: SystemVolume.ini names partition 4, which is for hibernation; boot system makes that active\n");
    EXPECT_THAT(Codes(Objects("--pc pc.json status").back()), ElementsAre("recordAtHibernation"));
}

// What was recorded at the switch is a number that anybody can write anew.
TEST_F(Remarks, RecordThatNamesAWrongPartition_Check_SaysNoAndWhatHelps) {
    WriteFile("pc.json", Exclusive().dump());
    ASSERT_EQ(Kestova("--pc pc.json --save pc.json boot recovery").status, 0);
    ASSERT_EQ(Kestova("--pc pc.json check").status, 0);
    const std::string made = ReadFile("pc.json");
    for (const auto& [number, what] :
         {std::pair("1", "the recovery partition itself"), {"4", "which is for hibernation"}}) {
        WriteFile("pc.json",
                  std::regex_replace(made, std::regex("Active=2"), std::string("Active=") + number));
        const Outcome outcome = Kestova("--pc pc.json check");
        EXPECT_EQ(outcome.status, 1) << number;
        EXPECT_THAT(
            outcome.output,
            HasSubstr(
                std::string("boot system (tried)    no   makes partition ") + number + " active, " + what +
                ", because SystemVolume.ini names it: delete the file SystemVolume.ini on partition 1\n"));
    }
}

TEST_F(Remarks, RecordOfTheRecoveryPartition_BootSystem_RemarksThatRecoveryStartsAgain) {
    WriteFile("pc.json", Exclusive().dump());
    ASSERT_EQ(Kestova("--pc pc.json --save pc.json boot recovery").status, 0);
    WriteFile("pc.json", std::regex_replace(ReadFile("pc.json"), std::regex("Active=2"), "Active=1"));
    const json result = Objects("--pc pc.json boot system").back();
    EXPECT_EQ(result["result"], 0);
    EXPECT_THAT(Codes(result), ElementsAre("recoveryStaysActive"));
    EXPECT_THAT(Kestova("--pc pc.json boot system").errors,
                StartsWith("kestova: partition 1 is active still, so this PC starts its recovery again"));
}

TEST_F(Remarks, RecordOfTheHibernationPartition_BootSystem_RemarksThatNothingStartsFromIt) {
    json pc = Exclusive();
    pc["disks"][0]["partitions"][1]["bootIndicator"] = 0;
    pc["disks"][0]["partitions"][3]["bootIndicator"] = 1;
    WriteFile("pc.json", pc.dump());
    ASSERT_EQ(Kestova("--pc pc.json --save pc.json boot recovery").status, 0);
    const Outcome outcome = Kestova("--pc pc.json boot system");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors,
              "kestova: partition 4 is active and for hibernation; no system starts from it\n");
}

TEST_F(Remarks, LogicalPartition_CallSetActive_RemarksThatNoPcStartsFromIt) {
    json pc = Exclusive();
    json& partitions = pc["disks"][0]["partitions"];
    const json data = partitions[2];
    partitions[2] = {{"number", 0}, {"offset", data["offset"]}, {"size", data["size"]}, {"mbrType", "0x0F"}};
    partitions.push_back({{"number", 3}, {"offset", "216 GiB"}, {"size", "10 GiB"}, {"mbrType", 7}});
    WriteFile("pc.json", pc.dump());
    const Outcome outcome = Kestova("--pc pc.json call SetActive 3");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors,
              "kestova: partition 3 is active and a logical one; a PC starts from primary partitions only\n");
}

TEST_F(Remarks, SecondDisk_TwoActiveFlags_NamesTheDisk) {
    ASSERT_EQ(Kestova("--pc winpe-two-disks --save two.json status").status, 0);
    json pc = json::parse(ReadFile("two.json"));
    pc["disks"][0]["partitions"][1]["bootIndicator"] = 1;
    pc["disks"][1]["partitions"] = json::array();
    for (const int number : {1, 2})
        pc["disks"][1]["partitions"].push_back({{"number", number},
                                                {"offset", number << 20},
                                                {"size", 1 << 20},
                                                {"mbrType", 7},
                                                {"bootIndicator", 1}});
    WriteFile("two.json", pc.dump());
    const json object = Objects("--pc two.json call SetActive 1").back();
    ASSERT_THAT(Codes(object), ElementsAre("twoActiveFlags", "twoActiveFlags"));
    EXPECT_THAT(object["remarks"][0]["text"], testing::StartsWith("disk 0: 2 partitions are active; "));
    EXPECT_THAT(object["remarks"][1]["text"], testing::StartsWith("disk 1: 2 partitions are active; "));
}

TEST_F(Faults, MetAndUnmet_CallInJson_CountsThemAndRemarks) {
    const json object =
        Objects("--pc factory-mbr --fail GetDriveTypeW#2=3 --fail CreateFileW#99=5 call GetDriveLetter 0 2")
            .back();
    EXPECT_EQ(object["faultsMet"], json::parse(R"([{"fault": "GetDriveTypeW#2=3", "met": 1},
                                                   {"fault": "CreateFileW#99=5", "met": 0}])"));
    EXPECT_THAT(Codes(object), ElementsAre("faultNeverMet"));
}

TEST_F(Faults, NeverMet_AnyCommand_SaysHowManySuchCallsThereWere) {
    EXPECT_EQ(Kestova("--pc factory-mbr --fail GetDriveTypeW#99=3 call GetDriveLetter 0 2").errors,
              "kestova: --fail GetDriveTypeW#99=3 was never met: there were 3 such calls\n");
    EXPECT_EQ(Kestova("--pc factory-mbr --fail DeleteFileW=5 status").errors,
              "kestova: --fail DeleteFileW=5 was never met: there was no such call\n");
}

TEST_F(Faults, ScriptInJson_LastObjectHasTheCounts) {
    const std::vector<json> objects =
        Objects("--pc factory-mbr --ledger --fail DeleteFileW=5 run -", "GetDriveLetter 0 2\n");
    ASSERT_EQ(objects.size(), 4);
    EXPECT_FALSE(objects[2].contains("faultsMet"));
    EXPECT_EQ(objects[3]["faultsMet"][0]["met"], 0);
    EXPECT_TRUE(objects[3].contains("ledger"));
}

// What a later fault would meet first is what the program itself reads after the operation.
TEST_F(Faults, FaultBehindTheOperation_CallSetActive_IsNotMetByTheRemarks) {
    const json object = Objects("--pc factory-mbr --fail DeviceIoControl#2+=5 call SetActive 3").back();
    ASSERT_THAT(Codes(object), ElementsAre("twoActiveFlags", "faultNeverMet"));
    EXPECT_EQ(object["remarks"][1]["text"],
              "--fail DeviceIoControl#2+=5 was never met: there was 1 such call");
}

}  // namespace
