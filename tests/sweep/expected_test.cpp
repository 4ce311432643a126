// The tables of the sweep: every row found must be in them, and in a whole sweep every row of them be found.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/temporary_folder.h"
#include "tests/sweep/engine/expected.h"
#include "tests/sweep/engine/sweep.h"

namespace {

namespace fs = std::filesystem;

using sweep::Expected;
using sweep::Row;
using sweep::Table;
using sweep::Tally;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ExpectedTables : public testing::Test {
  protected:
    void Write(const std::string& breaches) {
        std::ofstream(Folder() / "breaches.tsv") << breaches;
        std::ofstream(Folder() / "closing_records.tsv") << "";
        std::ofstream(Folder() / "unnamed_calls.tsv") << "";
    }
    std::vector<std::string> Compare(const std::vector<Row>& found, bool whole = true) {
        Tally tally;
        for (const Row& row : found)
            tally.Add({Table::Breaches, row}, "example");
        return Expected(Folder()).Compare(tally, whole);
    }

    const fs::path& Folder() const { return folder_.Path(); }

  private:
    TemporaryFolder folder_;
};

const Row leak = {"rule", "SetActive", "CloseHandle", "fails", "file handle"};
constexpr const char* explainedLeak = "Why.\n\trule\tSetActive\tfile handle\n\t\tCloseHandle\tfails\n";

}  // namespace

TEST_F(ExpectedTables, RowThatIsFound_MakesNoDifference) {
    Write(std::string("# head\n") + explainedLeak);
    EXPECT_THAT(Compare({leak}), IsEmpty());
}

TEST_F(ExpectedTables, RowThatNoTableHas_IsADifference) {
    Write("");
    EXPECT_THAT(Compare({leak}, false), ElementsAre(HasSubstr("lacks: rule\tSetActive")));
}

TEST_F(ExpectedTables, RowThatDoesNotOccur_IsADifferenceInAWholeSweep) {
    Write(explainedLeak);
    EXPECT_THAT(Compare({}, true), ElementsAre(HasSubstr("breaches.tsv:3: does not occur any more")));
    EXPECT_THAT(Compare({}, false), IsEmpty());
}

TEST_F(ExpectedTables, Alternatives_MustEachOccur) {
    Write("Why.\n\trule\tSetActive|ClearActive\t*\n\t\tCloseHandle\tfails\n");
    EXPECT_THAT(Compare({leak}), ElementsAre(HasSubstr("one combination of its alternatives")));
    Row other = leak;
    other[1] = "ClearActive";
    EXPECT_THAT(Compare({leak, other}), IsEmpty());
}

TEST_F(ExpectedTables, AlternativesOfTwoFields_MustOccurInEveryCombination) {
    Write("Why.\n\trule\tSetActive|ClearActive\t*\n\t\tCloseHandle|CreateFileW\tfails\n");
    std::vector<Row> found;
    for (const char* const operation : {"SetActive", "ClearActive"}) {
        for (const char* const call : {"CloseHandle", "CreateFileW"})
            found.push_back({"rule", operation, call, "fails", "file handle"});
    }
    EXPECT_THAT(Compare(found), IsEmpty());
    found.erase(found.begin() + 1);
    EXPECT_THAT(Compare(found), ElementsAre(HasSubstr("one combination of its alternatives")));
}

TEST_F(ExpectedTables, EverythingBelowAReason_MustOccurWithEverythingThatLeadsThere) {
    Write(
        "Why.\n"
        "\trule\tSetActive\tfile handle\n"
        "\trule\tClearActive\tregistry key\n"
        "\t\tCloseHandle\tfails\n"
        "\t\t*\tall calls fail\n"
        "\tother rule\tSetActive\tletter\n"
        "\t\tReadFile\tfails\n");
    std::vector<Row> found = {{"other rule", "SetActive", "ReadFile", "fails", "letter"}};
    for (const Row& way : {Row{"CloseHandle", "fails"}, Row{"*", "all calls fail"}}) {
        found.push_back({"rule", "SetActive", way[0], way[1], "file handle"});
        found.push_back({"rule", "ClearActive", way[0], way[1], "registry key"});
    }
    EXPECT_THAT(Compare(found), IsEmpty());
    for (size_t at = 0; at < found.size(); ++at) {
        std::vector<Row> fewer = found;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(Compare(fewer).size(), 1U) << at;
    }
    found.push_back({"rule", "SetActive", "ReadFile", "fails", "file handle"});
    EXPECT_THAT(Compare(found), ElementsAre(HasSubstr("lacks: rule\tSetActive\tReadFile")))
        << "what leads to the group behind it";
}

TEST_F(ExpectedTables, OutlineThatSkipsALevel_IsRefusedWithFileAndLine) {
    const struct {
        const char* outline;
        const char* why;
    } cases[] = {
        {"# head\n\trule\tSetActive\tletter\n\t\tReadFile\tfails\n", "breaches.tsv:2: no reason"},
        {"Why.\n\t\tReadFile\tfails\n", "breaches.tsv:2: nothing is broken"},
        {"Why.\n\trule\tSetActive\tletter\nWhy not.\n", "breaches.tsv:3: nothing leads to what is above"},
        {"Why.\n\trule\tSetActive\tletter\n", "breaches.tsv:2: nothing leads there"},
        {"Why.\n\trule\tSetActive\n", "breaches.tsv:2: 3 fields"},
        {"Why.\n\n", "breaches.tsv:2: 1 fields"},
        {"Why.\n\t\t\tReadFile\n", "breaches.tsv:2: 4 fields"},
    };
    for (const auto& [outline, why] : cases) {
        Write(outline);
        try {
            const Expected expected(Folder());
            ADD_FAILURE() << "accepted: " << outline;
        } catch (const std::runtime_error& refused) {
            EXPECT_THAT(refused.what(), HasSubstr(why));
        }
    }
}

TEST_F(ExpectedTables, RecordedBreachWithoutAReason_HasItsExampleBehindWhatIsExplained) {
    const std::string explained = std::string("# head\n") + explainedLeak;
    Write(explained);
    Tally tally;
    tally.Add({Table::Breaches, leak}, "known");
    tally.Add({Table::Breaches, {"rule", "SetActive", "ReadFile", "fails", "letter"}}, "example");
    Expected(Folder()).Record(tally);
    std::stringstream text;
    text << std::ifstream(Folder() / "breaches.tsv").rdbuf();
    EXPECT_EQ(text.str(), explained + "? example\n\trule\tSetActive\tletter\n\t\tReadFile\tfails\n");
    EXPECT_THAT(Expected(Folder()).Compare(tally, true), IsEmpty());
}

TEST(Tally, WrittenAndRead_IsTheSame) {
    Tally tally;
    tally.Of(sweep::Tasks().front()) = {1, 2, 3, 4, 5};
    tally.Add({Table::Breaches, leak}, "shorter");
    tally.Add({Table::Breaches, leak}, "much longer");
    std::stringstream written;
    tally.Write(written);
    Tally read;
    read.AddWritten(written);
    EXPECT_EQ(read, tally);
    EXPECT_EQ(read.Rows(Table::Breaches).at(leak).example, "shorter");
}

TEST(Sample, SameSeed_ChoosesTheSamePart) {
    const sweep::Sample sample{.seed = 3, .part = 0.25};
    const sweep::Sample other{.seed = 4, .part = 0.25};
    int chosen = 0;
    int differently = 0;
    for (int fault = 0; fault < 4000; ++fault) {
        const std::string words = "fault " + std::to_string(fault);
        EXPECT_EQ(sample.Has(words), sample.Has(words));
        chosen += sample.Has(words) ? 1 : 0;
        differently += sample.Has(words) != other.Has(words) ? 1 : 0;
    }
    EXPECT_NEAR(chosen, 1000, 150);
    EXPECT_GT(differently, 500);
}

TEST(SweepItems, EveryOperation_IsSweptOnEveryPc) {
    const auto items = sweep::AllItems();
    EXPECT_GE(items.size(), Operations().size() * sweep::Machines().size());
    EXPECT_GE(sweep::Machines().size(), 8U);
}
