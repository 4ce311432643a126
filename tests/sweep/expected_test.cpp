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

}  // namespace

TEST_F(ExpectedTables, RowThatIsFound_MakesNoDifference) {
    Write("# head\nrule\tSetActive\tCloseHandle\tfails\tfile handle\tWhy.\n");
    EXPECT_THAT(Compare({leak}), IsEmpty());
}

TEST_F(ExpectedTables, RowThatNoTableHas_IsADifference) {
    Write("");
    EXPECT_THAT(Compare({leak}, false), ElementsAre(HasSubstr("lacks: rule\tSetActive")));
}

TEST_F(ExpectedTables, RowThatDoesNotOccur_IsADifferenceInAWholeSweep) {
    Write("rule\tSetActive\tCloseHandle\tfails\tfile handle\tWhy.\n");
    EXPECT_THAT(Compare({}, true), ElementsAre(HasSubstr("does not occur any more")));
    EXPECT_THAT(Compare({}, false), IsEmpty());
}

TEST_F(ExpectedTables, Alternatives_MustEachOccur) {
    Write("rule\tSetActive|ClearActive\tCloseHandle\tfails\t*\tWhy.\n");
    EXPECT_THAT(Compare({leak}), ElementsAre(HasSubstr("one combination of its alternatives")));
    Row other = leak;
    other[1] = "ClearActive";
    EXPECT_THAT(Compare({leak, other}), IsEmpty());
}

TEST_F(ExpectedTables, AlternativesOfTwoFields_MustOccurInEveryCombination) {
    Write("rule\tSetActive|ClearActive\tCloseHandle|CreateFileW\tfails\t*\tWhy.\n");
    std::vector<Row> found;
    for (const char* const operation : {"SetActive", "ClearActive"}) {
        for (const char* const call : {"CloseHandle", "CreateFileW"})
            found.push_back({"rule", operation, call, "fails", "file handle"});
    }
    EXPECT_THAT(Compare(found), IsEmpty());
    found.erase(found.begin() + 1);
    EXPECT_THAT(Compare(found), ElementsAre(HasSubstr("one combination of its alternatives")));
}

TEST_F(ExpectedTables, BreachWithoutAReason_IsRefusedWithFileAndLine) {
    Write("# head\nrule\tSetActive\tCloseHandle\tfails\tfile handle\t\n");
    try {
        const Expected expected(Folder());
        ADD_FAILURE() << "accepted";
    } catch (const std::runtime_error& refused) {
        EXPECT_THAT(refused.what(), HasSubstr("breaches.tsv:2: no reason"));
    }
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
