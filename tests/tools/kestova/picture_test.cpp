// The picture of all disks that `status` shows, of described PCs: each column, the reason why a disk is
// internal or not, widths, colours, and texts that a terminal must not obey.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/program/program.h"
#include "tools/kestova/common/display_width.h"

namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A PC with a SATA and a USB disk.
constexpr const char* twoDisks = R"({
  "disks": [
    {"number": 0, "size": "100 GiB", "partitions": [
      {"number": 1, "offset": "1 MiB", "size": "10 GiB", "mbrType": "0x27",
       "volume": {"label": "Recovery", "files": {"SystemVolume.ini": "[System]\r\nActive=3\r\n",
         "sources/Qelhdrcv.ini": "", "sources/Orvo/": null, "sources/data/": null, "sources/idf/": null}}},
      {"number": 2, "offset": "20 GiB", "size": "80 GiB", "mbrType": "0x07", "bootIndicator": 1,
       "volume": {"letters": "C", "label": "Windows", "files": {"Windows/System32/Winload.exe": "MZ"}}}]},
    {"number": 4, "busType": "usb", "size": "8 GiB", "style": "gpt", "partitions": [
      {"number": 1, "offset": "1 MiB", "size": "1 GiB", "gptType": "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
       "attributes": "0x4000000000000000", "name": "Stick", "volume": {"letters": "U", "fileSystem": "FAT32",
       "label": "STICK"}},
      {"number": 2, "offset": "2 GiB", "size": "1 GiB", "gptType": "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
       "volume": {"fileSystem": "BitLocker"}},
      {"number": 3, "offset": "3 GiB", "size": "1 GiB", "gptType": "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
       "volume": {"fileSystem": "RAW"}}]}]
})";

class Picture : public ProgramTest {
  protected:
    Picture() { WriteFile("pc.json", twoDisks); }

    json Status(const std::string& words) { return json::parse(Kestova(words + " --json status").output); }
    // On a terminal of that width, as it writes it.
    std::string OnTerminal(size_t columns, const std::string& words, const std::string& environment = "") {
        WriteFile("command", "stty cols " + std::to_string(columns) + "; TERM=xterm " + environment +
                                 " '" KESTOVA_PROGRAM "' " + words + "\n");
        return Shell("script --quiet --return --command 'sh command' /dev/null </dev/null").output;
    }
};

TEST_F(Picture, SataAndUsbDisk_Status_ShowsBothWithTheReason) {
    const Outcome outcome = Kestova("--pc pc.json status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(
        outcome.output,
        EndsWith(
            "Record             partition 3; boot system makes partition 3 active, which is not there\n"
            "\n"
            "Disk 0: 100.0 GiB, MBR, SATA, Emulated disk; internal: SATA; the first internal disk\n"
            "  #  Start     Size      Type                    Active  Letter  Label     File system  Condition  Hide  "
            "Role: reason\n"
            "  1  1.0 MiB   10.0 GiB  hidden recovery (0x27)  -       -       Recovery  NTFS         -          -     "
            "recovery: type\n"
            "     10.0 GiB  10.0 GiB  free\n"
            "  2  20.0 GiB  80.0 GiB  NTFS (0x07)             active  C       Windows   NTFS         -          -     "
            "installed Windows: contents\n"
            "\n"
            "Disk 4: 8.0 GiB, GPT, USB, Emulated disk; not internal: USB is not ATA, RAID or SATA\n"
            "  #  Start    Size        Type        Name   Active  Letter  Label  File system  Condition   Hide  Role: "
            "reason\n"
            "  1  1.0 MiB  1.0 GiB     basic data  Stick  -       U       STICK  FAT32        -           -     -\n"
            "     1.0 GiB  1023.0 MiB  free\n"
            "  2  2.0 GiB  1.0 GiB     basic data  -      -       -       -      BitLocker    BitLocker   -     -\n"
            "  3  3.0 GiB  1.0 GiB     basic data  -      -       -       -      -            unreadable  -     -\n"
            "     4.0 GiB  4.0 GiB     free\n"));
}

TEST_F(Picture, SataAndUsbDisk_JsonStatus_HasBothBehindTheKeysOfBefore) {
    const std::string line = Kestova("--pc pc.json --json status").output;
    EXPECT_THAT(line, HasSubstr(R"("windows":{"disk":0,"partition":2,"letter":"C"},"disks":[{"number":0,)"));
    EXPECT_THAT(
        line, EndsWith(R"(,"record":{"partition":1,"exists":true,"recorded":3,"bootSystem":3,)"
                       R"("words":"partition 3; boot system makes partition 3 active, which is not there"}})"
                       "\n"));
    const json status = json::parse(line);
    EXPECT_EQ(status["partitions"][0]["label"], nullptr) << "a key of before: of lettered partitions";
    const json& internal = status["disks"][0];
    EXPECT_EQ(internal["isInternal"], true);
    EXPECT_EQ(internal["partitions"][0]["label"], "Recovery");
    EXPECT_EQ(internal["partitions"][0]["hidden"], true);
    EXPECT_EQ(internal["partitions"][0]["slot"], nullptr);
    EXPECT_EQ(internal["partitions"][0]["name"], nullptr);
    EXPECT_EQ(internal["gaps"], json::parse(R"([{"offset":10738466816,"size":10736369664}])"));
    const json& stick = status["disks"][1];
    EXPECT_EQ(stick["number"], 4);
    EXPECT_EQ(stick["bus"], "USB");
    EXPECT_EQ(stick["isInternal"], false);
    EXPECT_EQ(stick["size"], int64_t{8} << 30);
    EXPECT_EQ(stick["sectorSize"], 512);
    EXPECT_EQ(stick["style"], "GPT");
    EXPECT_EQ(stick["partitions"][0]["name"], "Stick");
    EXPECT_EQ(stick["partitions"][0]["hidden"], true);
    EXPECT_EQ(stick["partitions"][0]["letter"], "U");
    EXPECT_EQ(stick["partitions"][1]["condition"], "BitLocker");
}

TEST_F(Picture, WindowsOnNvme_Status_SaysBoth) {
    std::string description = twoDisks;
    description.replace(description.find("\"size\": \"100 GiB\""), 0, "\"busType\": \"nvme\", ");
    WriteFile("nvme.json", description);
    const json status = Status("--pc nvme.json");
    EXPECT_EQ(status["internalDisk"], nullptr);
    EXPECT_EQ(status["disks"][0]["isInternal"], false);
    EXPECT_EQ(
        status["disks"][0]["reason"],
        "NVMe is not ATA, RAID or SATA; Windows runs from it, so its number is found all the same, with failure");
    EXPECT_EQ(Status("--pc nvme.json --pe")["disks"][0]["reason"], "NVMe is not ATA, RAID or SATA");
}

TEST_F(Picture, Record_Status_SaysWhereBootSystemGoes) {
    const auto words = [&](const std::string& pc) { return Status(pc)["record"]["words"]; };
    EXPECT_EQ(words("--pc factory-mbr"), "none; boot system changes nothing");
    EXPECT_EQ(Status("--pc factory-gpt")["record"], nullptr);
    ASSERT_EQ(Kestova("--pc factory-mbr --save there.json boot recovery").status, 0);
    EXPECT_EQ(words("--pc there.json"), "partition 2; boot system makes partition 2 active");
    ASSERT_EQ(Shell("sed -i 's/Active=2/Active=two/' there.json").status, 0);
    EXPECT_EQ(words("--pc there.json"), "no number; boot system makes partition 2 active");
    ASSERT_EQ(Shell("sed -i 's/SystemVolume.ini/Other.ini/' there.json").status, 0);
    EXPECT_EQ(words("--pc there.json"), "none; boot system makes partition 2 active");
}

// The switch back looks at the recovery partition before it looks at the record.
TEST_F(Picture, RecoveryFileMissing_Status_SaysThatBootSystemIsRefusedAsItIs) {
    ASSERT_EQ(Shell("sed 's/sources.idf/sources\\/other/' pc.json >missing.json").status, 0);
    const json record = Status("--pc missing.json")["record"];
    EXPECT_EQ(record["recorded"], 3);
    EXPECT_EQ(record["bootSystem"], nullptr);
    EXPECT_THAT(record["words"],
                StartsWith("partition 3; boot system is refused: sources\\idf is missing on partition 1"));
    EXPECT_EQ(Kestova("--pc missing.json boot system").status, 3);
}

// --- what a disk does not answer ---

TEST_F(Picture, DiskThatCannotBeAsked_Status_ShowsTheRestAndFails) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail 'DeviceIoControl=5' --no-initialize --quiet status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("the size of disk 0 cannot be read (error 5)"));
    EXPECT_THAT(outcome.errors, HasSubstr("the partitions of disk 0 cannot be read (error 5)"));
    EXPECT_THAT(outcome.output,
                HasSubstr("Disk 0: of unknown size, unknown style; its bus cannot be read\n"));
}

TEST_F(Picture, DisksThatCannotBeOpened_Status_SaysSoOnce) {
    const Outcome outcome = Kestova("--pc factory-mbr --fail CreateFileW=5 --json status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(json::parse(outcome.output)["disks"], json::array());
    EXPECT_THAT(outcome.errors, HasSubstr("the disks from 0 on cannot be opened (error 5)"));
}

TEST_F(Picture, UnreadableVolumeOfAStick_Status_ShowsItAndSucceeds) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save usb.json status").status, 0);
    json pc = json::parse(ReadFile("usb.json"));
    pc["disks"].push_back(json::parse(R"({"number": 1, "busType": "usb", "size": "8 GiB", "style": "mbr",
      "partitions": [{"number": 1, "offset": "1 MiB", "size": "1 GiB", "mbrType": 7,
                      "volume": {"letters": "U", "label": {"error": 21}}}]})"));
    WriteFile("usb.json", pc.dump());
    const Outcome outcome = Kestova("--pc usb.json --json status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(json::parse(outcome.output)["disks"][1]["partitions"][0]["letter"], "U");
}

// --- what the user wants to see ---

TEST_F(Picture, Bytes_Status_RoundsNothing) {
    EXPECT_THAT(Kestova("--pc pc.json --bytes --columns start,size,type status").output,
                HasSubstr("  Start        Size         Type\n"
                          "  1048576      10737418240  hidden recovery (0x27)\n"
                          "  10738466816  10736369664  free\n"
                          "  21474836480  85899345920  NTFS (0x07)\n"));
}

TEST_F(Picture, Columns_Status_ShowsTheseInThisOrder) {
    EXPECT_THAT(Kestova("--pc pc.json --columns label,hidden,number,slot status").output,
                HasSubstr("  Label     Hidden  #  Slot\n"
                          "  Recovery  hidden  1  -\n"
                          "  Windows   -       2  -\n"));
    const Outcome unknown = Kestova("--pc pc.json --columns size,lable status");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.output, "");
    EXPECT_THAT(unknown.errors,
                StartsWith("kestova: --columns: there is no column 'lable'; there are number, slot, "));
    EXPECT_EQ(Kestova("--pc pc.json --columns , status").status, 2);
    EXPECT_THAT(Kestova("help status").output,
                HasSubstr("\n  condition   in which Windows left the volume\n"));
}

TEST_F(Picture, Quiet_Status_ShowsTheDisksAndNoNotes) {
    const Outcome outcome = Kestova("--quiet status");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, StartsWith("Disk 0: 500.0 GiB, "));
    EXPECT_NE(Kestova("status").errors, "");
    // A remark.
    ASSERT_EQ(Kestova("--pc factory-mbr --save two.json call SetActive 1").status, 0);
    EXPECT_NE(Kestova("--pc two.json status").errors, "");
    EXPECT_EQ(Kestova("--pc two.json --quiet status").errors, "");
    // Errors stay.
    EXPECT_NE(Kestova("--pc pc.json --quiet --fail GetWindowsDirectoryW=6 status").errors, "");
}

// --- terminals ---

// Every line, with its escape sequences taken out.
std::vector<std::string> PlainLines(const std::string& shown) {
    std::vector<std::string> lines;
    std::istringstream stream(shown);
    for (std::string line; std::getline(stream, line);) {
        while (!line.empty() && line.back() == '\r')
            line.pop_back();
        for (size_t at = line.find('\x1B'); at != std::string::npos; at = line.find('\x1B'))
            line.erase(at, line.find('m', at) + 1 - at);
        lines.push_back(line);
    }
    return lines;
}

TEST_F(Picture, TerminalOfAnyWidth_Status_FitsAndCutsNoNumber) {
    for (const size_t columns : {40U, 60U, 70U, 80U, 100U, 132U, 200U}) {
        std::string text;
        for (const std::string& line : PlainLines(OnTerminal(columns, "--pc pc.json status"))) {
            EXPECT_LE(DisplayWidth(line), columns) << line;
            text += line + "\n";
        }
        EXPECT_THAT(text, HasSubstr(" Condition  ")) << columns;
        EXPECT_THAT(text, HasSubstr(" BitLocker  ")) << columns;
        if (columns < 60) continue;
        for (const char* const number : {"100.0 GiB", "10.0 GiB", "80.0 GiB", "1023.0 MiB"})
            EXPECT_THAT(text, HasSubstr(number)) << columns;
    }
}

TEST_F(Picture, Terminal_Status_ColoursWhatMatters) {
    const std::string shown = OnTerminal(200, "--pc pc.json status");
    EXPECT_THAT(shown, HasSubstr("\x1B[1mDisk 0\x1B[0m: "));
    EXPECT_THAT(shown, HasSubstr("\x1B[32mactive\x1B[0m"));
    EXPECT_THAT(shown, HasSubstr("\x1B[1;31mBitLocker\x1B[0m"));
    EXPECT_THAT(shown, HasSubstr("\nDisk 4: "));
    EXPECT_THAT(OnTerminal(200, "--pc pc.json status", "NO_COLOR=1"), Not(HasSubstr("\x1B")));
    EXPECT_THAT(OnTerminal(200, "--pc pc.json status", "NO_COLOR="), HasSubstr("\x1B"));
    EXPECT_THAT(OnTerminal(200, "--pc pc.json --json status"), Not(HasSubstr("\x1B")));
    EXPECT_THAT(Kestova("--pc pc.json status").output, Not(HasSubstr("\x1B")));
}

// --- texts of a medium ---

TEST_F(Picture, WideLabel_Status_KeepsTheColumnsStraight) {
    WriteFile("wide.json", R"({"disks": [{"number": 0, "size": "8 GiB", "partitions": [
      {"number": 1, "offset": "1 MiB", "size": "1 GiB", "mbrType": 7, "volume": {"label": "日本"}},
      {"number": 2, "offset": "2 GiB", "size": "1 GiB", "mbrType": 7, "volume": {"label": "Résumé"}}]}]})");
    EXPECT_THAT(Kestova("--pc wide.json --columns label,filesystem status").output,
                HasSubstr("  Label   File system\n"
                          "  日本    NTFS\n"
                          "  Résumé  NTFS\n"));
}

TEST_F(Picture, ControlCharactersInALabel_JsonStatus_HasThemEscapedAndReadsTheSame) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save evil.json status").status, 0);
    json pc = json::parse(ReadFile("evil.json"));
    const std::string rightToLeft = {'\xE2', '\x80', '\xAE'};
    const std::string label = std::string("\xC2\x9B") + "31m\x7F" + rightToLeft;
    pc["disks"][0]["partitions"][1]["volume"]["label"] = label;
    WriteFile("evil.json", pc.dump());
    const std::string line = Kestova("--pc evil.json --json status").output;
    for (const std::string& obeyed : {std::string("\x7F"), std::string("\xC2\x9B"), rightToLeft})
        EXPECT_EQ(line.find(obeyed), std::string::npos);
    EXPECT_EQ(json::parse(line)["partitions"][1]["label"], label);
}

TEST_F(Picture, ControlCharactersInNames_StatusAndLog_ReachNoTerminal) {
    WriteFile("evil.json", R"({"disks": [{"number": 0, "size": "8 GiB", "style": "gpt", "partitions": [
      {"number": 1, "offset": "1 MiB", "size": "1 GiB", "gptType": "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
       "name": "a\u202eb", "volume": {"letters": "C", "label": "E\u001b[31mvil\u009b"}}]}]})");
    const Outcome outcome = Kestova("--pc evil.json --log - status");
    EXPECT_THAT(outcome.output, HasSubstr("  a\\u202Eb  "));
    EXPECT_THAT(outcome.output, HasSubstr("  E\\u001B[31mvil\\u009B  "));
    EXPECT_THAT(outcome.output, Not(HasSubstr("\x1B")));
    const std::string rightToLeft = {'\xE2', '\x80', '\xAE'};
    EXPECT_THAT(outcome.output, Not(HasSubstr(rightToLeft)));
    const std::string json = Kestova("--pc evil.json --json status").output;
    EXPECT_THAT(json.substr(json.find("\"disks\"")), HasSubstr(R"("label":"E\u001b[31mvil\u009B")"));
    EXPECT_THAT(json, HasSubstr(R"("name":"a\u202Eb")"));
    // In a file the log is as the library writes it.
    ASSERT_EQ(Kestova("--pc evil.json --log log status").status, outcome.status);
    EXPECT_THAT(ReadFile("log"), Not(HasSubstr("\\u")));
}

TEST_F(Picture, FileNameThatIsNoUtf8_Message_ShowsItsBytes) {
    EXPECT_EQ(Kestova("--pc \"$(printf './\\351\\033')\" status").errors,
              "kestova: ./\\xE9\\x1B: there is no such file\n");
}

}  // namespace
