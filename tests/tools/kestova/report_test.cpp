// The report: a page that others judge well-formed, that needs nothing from elsewhere, and in which no text
// of a medium means anything; and the same for a chat.

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

#include "tests/support/program/program.h"

namespace {

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Report : public ProgramTest {
  protected:
    // At the same time, what is made of the same PC is the same.
    Report() { setenv("SOURCE_DATE_EPOCH", "1700000000", 1); }
    ~Report() override { unsetenv("SOURCE_DATE_EPOCH"); }

    std::string Page(const std::string& words) {
        const Outcome outcome = Kestova(words + " report -o -");
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }
    // A PC with one partition of 1 MiB among large ones, and with such a label and GPT name.
    void Describe(const std::string& label, const std::string& name) {
        WriteFile("pc.json", R"({"disks": [{"number": 0, "size": "100 GiB", "style": "gpt", "partitions": [
          {"number": 1, "offset": "1 MiB", "size": "1 MiB", "gptType": "e3c9e316-0b5c-4db8-817d-f92df00215ae"},
          {"number": 2, "offset": "2 MiB", "size": "50 GiB", "gptType": "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
           "name": ")" + name + R"(", "volume": {"letters": "C", "label": ")" +
                                 label + R"("}}]}]})");
    }
};

// The judge does not know the attributes of SVG, and says nothing else.
void ExpectWellFormed(const std::string& judgement) {
    std::istringstream lines(judgement);
    for (std::string line; std::getline(lines, line);)
        EXPECT_THAT(line, HasSubstr("proprietary attribute")) << line;
}

TEST_F(Report, EachMachine_Page_IsWellFormed) {
    for (const std::string pc : {"factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"}) {
        ASSERT_EQ(Kestova("--pc " + pc + " report -o page.html").status, 0) << pc;
        const Outcome judged = Shell("tidy -quiet -errors page.html");
        EXPECT_LE(judged.status, 1) << pc;
        ExpectWellFormed(judged.errors);
    }
}

TEST_F(Report, FactoryMbr_Page_NeedsNothingFromElsewhereAndCanBeReadAloud) {
    const std::string page = Page("--pc factory-mbr");
    for (const char* const outside : {"http", "<script", "src=", "href=", "url(", "@import", "<link"})
        EXPECT_THAT(page, Not(HasSubstr(outside)));
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n<!-- Kestova report -->\n<html lang=\"en\">\n"));
    for (
        const char* const part :
        {"<header>", "<main>", "<title id=\"disk0-title\">Disk 0 to scale</title>",
         "<desc id=\"disk0-words\">partition 1: hidden recovery (0x27), 15.0 GiB, Recovery, recovery; partition 2: "
         "NTFS (0x07), 200.0 GiB, C:, Windows, active, installed Windows; ",
         "<th scope=\"col\">Condition</th>", "<th scope=\"row\">Firmware</th><td>BIOS</td>",
         "<td class=\"good\">active</td>", "prefers-color-scheme: dark", "@media print",
         "<th scope=\"row\">boot system (tried)</th><td class=\"good\">yes</td><td>makes partition 2 active</td>",
         "<li>Kestova::Kestova Start</li>"})
        EXPECT_THAT(page, HasSubstr(part));
    EXPECT_THAT(page, EndsWith("</html>\n"));
}

TEST_F(Report, ImagesInFolders_Report_HasTheirNamesAndTheTimeOfMaking) {
    Shell("mkdir cases");
    Describe("Windows", "Windows");
    EXPECT_EQ(Shell("mv pc.json cases/pc-of-a-customer.json").status, 0);
    const std::string made = "Made by kestova " KESTOVA_VERSION " at " +
                             Shell("date --utc --date=@1700000000 +%Y-%m-%dT%H:%M:%SZ | tr -d '\n'").output;

    EXPECT_THAT(Kestova("--pc cases/pc-of-a-customer.json report -o -").output,
                HasSubstr("<p>" + made + " of pc-of-a-customer.json. Nothing was changed.</p>\n"));
    EXPECT_THAT(
        Kestova("--pc cases/pc-of-a-customer.json --format markdown report").output,
        StartsWith("# Kestova report\n\n" + made + " of pc-of-a-customer.json. Nothing was changed.\n"));
    ASSERT_EQ(Kestova("--pc cases/pc-of-a-customer.json --format markdown report").output.find("cases/"),
              std::string::npos);
    EXPECT_THAT(Kestova("report -o -").output, HasSubstr("<p>" + made + ". Nothing was changed.</p>\n"));
    unsetenv("SOURCE_DATE_EPOCH");
    EXPECT_THAT(Kestova("report -o -").output,
                ContainsRegex("Made by kestova [0-9.]+ at 20[0-9-]+T[0-9:]+Z\\. "));
}

TEST_F(Report, NoTimeOfMaking_Report_IsWrongUse) {
    for (const std::string time : {"yesterday", "-1", "1 ", "253402300800", "99999999999999999999"}) {
        const Outcome outcome = Shell("SOURCE_DATE_EPOCH='" + time + "' '" KESTOVA_PROGRAM "' report -o -");
        EXPECT_EQ(outcome.status, 2) << time;
        EXPECT_THAT(
            outcome.errors,
            StartsWith("kestova: SOURCE_DATE_EPOCH: a number of seconds since 1970, not " + time + "\n"));
    }
}

TEST_F(Report, TinyPartition_Drawing_IsWideEnoughAndTheWholeFits) {
    Describe("Windows", "Windows");
    const std::string page = Page("--pc pc.json");
    std::vector<double> widths;
    double sum = 0;
    const std::string mark = "<rect class=\"";
    for (size_t at = page.find(mark); at != std::string::npos; at = page.find(mark, at + 1)) {
        widths.push_back(std::stod(page.substr(page.find("width=\"", at) + 7)));
        sum += widths.back();
    }
    ASSERT_EQ(widths.size(), 3u);
    EXPECT_DOUBLE_EQ(widths[0], 2.5);
    EXPECT_NEAR(widths[1], 97.5 / 2, 0.1);
    EXPECT_NEAR(sum, 100, 0.01);
}

TEST_F(Report, TextsOfAMedium_PageAndMarkdown_MeanNothing) {
    Describe("<script>alert('1')</script>\\u001b", "a|b `c` <b>\\\"&_@all");
    const std::string page = Page("--pc pc.json");
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, HasSubstr("<td>&lt;script&gt;alert(&#39;1&#39;)&lt;/script&gt;\\u001B</td>"));
    EXPECT_THAT(page, HasSubstr("<td>a|b `c` &lt;b&gt;&quot;&amp;_@all</td>"));
    WriteFile("page.html", page);
    ExpectWellFormed(Shell("tidy -quiet -errors page.html").errors);
    EXPECT_THAT(Kestova("--pc pc.json --format markdown report").output,
                HasSubstr("| a\\|b \\`c\\` \\<b\\>\"\\&\\_@\u200Ball | "));
}

TEST_F(Report, Markdown_Report_HasTablesOnStandardOutput) {
    const Outcome outcome = Kestova("--pc factory-mbr --format markdown report");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("# Kestova report\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n| Firmware | BIOS |\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("\n## Disk 0\n\n500.0 GiB, MBR, SATA, Emulated disk; internal: SATA; "));
    EXPECT_THAT(outcome.output, HasSubstr("| 2 | - | 15.0 GiB | 200.0 GiB | NTFS (0x07) | - | active | "));
    EXPECT_THAT(outcome.output, HasSubstr("\n## Can it boot its recovery partition and come back? Yes\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\n## Errors in the log\n\n- Kestova "));
}

TEST_F(Report, ProblemsAndErrors_Report_AreMarkedAndTheStatusIsThatOfStatus) {
    const std::string pc = "--pc factory-mbr --fail IVdsService::IsServiceReady=0x8004252c ";
    const Outcome page = Kestova(pc + "report -o -");
    EXPECT_EQ(page.status, 1);
    EXPECT_EQ(page.status, Kestova(pc + "status").status);
    EXPECT_THAT(page.output,
                HasSubstr("<li class=\"bad\">Problem: Initialize: the service could not be loaded in "));
    EXPECT_THAT(page.output, HasSubstr("<li class=\"bad\">error: Kestova "));
    EXPECT_THAT(Kestova(pc + "--format markdown report").output, HasSubstr("\n- **Problem:** "));
    // A switch that is not possible is no failure of the report.
    const Outcome gpt = Kestova("--pc factory-gpt report -o -");
    EXPECT_EQ(gpt.status, 0);
    EXPECT_THAT(gpt.output, HasSubstr("<p class=\"bad\">No.</p>"));
    EXPECT_THAT(Kestova("report -o -").output, HasSubstr("<li>no PC was named: this is factory-mbr"));
}

// --- the file ---

TEST_F(Report, File_Report_IsReplacedOnlyIfItIsAReport) {
    ASSERT_EQ(Kestova("--pc factory-mbr report --output page.html").status, 0);
    const std::string page = ReadFile("page.html");
    EXPECT_EQ(page, Page("--pc factory-mbr"));
    EXPECT_EQ(Kestova("--pc factory-gpt report -o page.html").status, 0);
    EXPECT_NE(ReadFile("page.html"), page);
    ASSERT_EQ(Kestova("--pc factory-gpt --format markdown report -o page.html").status, 0);
    EXPECT_THAT(ReadFile("page.html"), StartsWith("# Kestova report\n"));
    WriteFile("letter", "Dear customer,\n");
    const Outcome refused = Kestova("--pc factory-mbr report -o letter");
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(
        refused.errors,
        StartsWith("kestova: --output: letter is neither empty nor a report; --overwrite replaces it\n"));
    EXPECT_EQ(ReadFile("letter"), "Dear customer,\n");
    EXPECT_EQ(Kestova("--pc factory-mbr --overwrite report -o letter").status, 0);
    EXPECT_EQ(ReadFile("letter"), page);
}

TEST_F(Report, WrongUse_Report_SaysWhatIsMeant) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json call IsDynamic").status, 0);
    const std::string description = ReadFile("pc.json");
    struct Case {
        const char* words;
        const char* message;
    };
    for (const Case& wrong : {
             Case{"report", "report: name the file with --output, or standard output with --output -\n"},
             Case{"--format pdf report", "--format: there is no format 'pdf'"},
             Case{"--format htm report -o -", "--format: there is no format 'htm'; did you mean html?\n"},
             Case{"--overwrite report -o pc.json", "--output: pc.json is the description that --pc reads\n"},
             Case{"--log x report -o x", "--log: x is the file that --output writes\n"},
             Case{"--save x report -o x", "--save: x is the file that --output writes\n"},
             Case{"report -o none/page.html",
                  "--output: none/page.html cannot be written: its folder is missing\n"},
             Case{"--ledger report -o -", "report does not use --ledger\n"},
             Case{"status -o x", "status does not use --output\n"},
         }) {
        const Outcome outcome = Kestova(std::string("--pc pc.json ") + wrong.words);
        EXPECT_EQ(outcome.status, 2) << wrong.words;
        EXPECT_EQ(outcome.output, "") << wrong.words;
        EXPECT_THAT(outcome.errors, StartsWith(std::string("kestova: ") + wrong.message)) << wrong.words;
    }
    EXPECT_EQ(ReadFile("pc.json"), description);
    EXPECT_FALSE(std::filesystem::exists(Folder() / "x"));
}

}  // namespace
