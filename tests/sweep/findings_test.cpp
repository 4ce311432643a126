// The checks of the sweep are silent about an undisturbed run and notice each breach.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/utf.h"
#include "machine/facts/machines.h"
#include "tests/sweep/engine/findings.h"

namespace {

using sweep::Disturbance;
using sweep::Outcome;
using sweep::Table;
using sweep::Way;
using testing::Contains;
using testing::Not;

// An operation on the factory PC.
struct Case {
    explicit Case(const char* name, machine::Pc pc = machine::FactoryMbr())
        : operation(FindOperation(name)),
          task{name, &operation, {}},
          before(std::move(pc)),
          undisturbed(sweep::Run(before, task, {})),
          returned(undisturbed.afterReturn) {}

    // What is found in a run with that outcome.
    std::vector<sweep::Row> Rows(const Outcome& outcome, Table table,
                                 const Disturbance& disturbance = {"CreateFileW", Way::Fails}) const {
        std::vector<sweep::Row> rows;
        for (const sweep::Finding& finding :
             sweep::Check(task, {before, undisturbed, returned, 0}, disturbance, outcome)) {
            if (finding.table == table) rows.push_back(finding.row);
        }
        return rows;
    }
    // The rules that it breaks.
    std::vector<std::string> Broken(const Outcome& outcome) const {
        std::vector<std::string> rules;
        for (const sweep::Row& row : Rows(outcome, Table::Breaches))
            rules.push_back(row[0]);
        return rules;
    }

    const Operation& operation;
    sweep::Task task;
    machine::Pc before;
    Outcome undisturbed;
    machine::Pc returned;
};

LogEntry RecordOf(const char* text) {
    return {LOG_LEVEL_TRACE, {{LogItemKind::Text, ToWide(text)}}};
}

}  // namespace

TEST(Findings, UndisturbedOutcome_BreaksNothing) {
    const Case question("GetDiskStyle");
    EXPECT_THAT(question.Broken(question.undisturbed), testing::IsEmpty());
    const Case change("SetRcvprtActive");
    EXPECT_THAT(change.Broken(change.undisturbed), testing::IsEmpty());
}

TEST(Findings, ResultThatIsNotListed_IsABreach) {
    const Case tested("SetRcvprtActive");
    Outcome outcome = tested.undisturbed;
    outcome.result = 9;
    EXPECT_THAT(tested.Broken(outcome), Contains("the result is listed"));
}

TEST(Findings, ExceptionThatEscapes_IsABreach) {
    const Case tested("GetDiskStyle");
    Outcome outcome = tested.undisturbed;
    outcome.thrown = "bad";
    EXPECT_THAT(tested.Broken(outcome), Contains("nothing is thrown"));
}

TEST(Findings, LeakOrDoubleRelease_IsABreach) {
    const Case tested("GetDiskStyle");
    Outcome outcome = tested.undisturbed;
    ++outcome.outstanding["file handle"];
    outcome.violations = {"IVdsDisk released too often"};
    EXPECT_THAT(tested.Broken(outcome), Contains("nothing stays on loan"));
    EXPECT_THAT(tested.Broken(outcome), Contains("everything is released once"));
}

TEST(Findings, UndisturbedRunWithAnotherNumberOfStrings_IsABreach) {
    const Case tested("SetRcvprtActive");
    const sweep::Row breach = {"nothing stays on loan", "SetRcvprtActive", "-", "undisturbed",
                               "some strings of a disk"};
    Outcome outcome = tested.undisturbed;
    EXPECT_THAT(tested.Rows(outcome, Table::Breaches, {}), Not(Contains(breach)));
    --outcome.outstanding.at("VDS_DISK_PROP string");
    EXPECT_THAT(tested.Rows(outcome, Table::Breaches, {}), Contains(breach));
}

TEST(Findings, SuccessWithoutTheFlag_IsABreach) {
    const Case tested("SetRcvprtActive");
    Outcome outcome = tested.undisturbed;
    outcome.after = tested.before;
    EXPECT_THAT(tested.Broken(outcome), Contains("success leaves the PC as done"));
}

TEST(Findings, ChangeOfAnotherDisk_IsABreach) {
    machine::Pc pc = machine::WinPeTwoDisks();
    const Case tested("ClearActive", pc);
    Outcome outcome = tested.undisturbed;
    outcome.after.disks[1].partitions.clear();
    EXPECT_THAT(tested.Broken(outcome), Contains("one operation changes one disk"));
}

TEST(Findings, ChangeOfAnotherDiskWhereNothingShouldChange_IsABreach) {
    machine::Pc pc = machine::WinPeTwoDisks();
    const Case tested("SetRcvprtActive", pc);
    ASSERT_EQ(tested.undisturbed.after, pc) << "partition 1 is active already";
    Outcome outcome = tested.undisturbed;
    outcome.after.disks[1].partitions[0].bootIndicator = 1;
    EXPECT_THAT(tested.Broken(outcome), Contains("one operation changes one disk"));
}

TEST(Findings, AdviceThatNothingIsChangedWhereSomethingIs_IsABreach) {
    const Case tested("SetRcvprtActive");
    Outcome outcome = tested.undisturbed;
    outcome.result = 3;
    EXPECT_THAT(tested.Broken(outcome), Contains("the advice is true"));
    outcome.after = outcome.start;
    outcome.after.disks[0].partitions[0].volume->letters = "R";
    EXPECT_THAT(tested.Broken(outcome), Not(Contains("the advice is true")));
}

TEST(Findings, AdviceToGoOnWhereTheFlagHasNotMoved_IsABreach) {
    const Case tested("SetPTwoActive", [] {
        machine::Pc pc = machine::FactoryMbr();
        std::swap(pc.disks[0].partitions[0].bootIndicator, pc.disks[0].partitions[1].bootIndicator);
        return pc;
    }());
    Outcome outcome = tested.undisturbed;
    outcome.result = 3;
    EXPECT_THAT(tested.Broken(outcome), Not(Contains("the advice is true")));
    outcome.after = outcome.start;
    EXPECT_THAT(tested.Broken(outcome), Contains("the advice is true"));
}

TEST(Findings, NoActivePartitionLeft_IsABreachButOfClearActive) {
    const Case tested("SetRcvprtActive");
    Outcome outcome = tested.undisturbed;
    for (machine::Partition& partition : outcome.after.disks[0].partitions)
        partition.bootIndicator = 0;
    EXPECT_THAT(tested.Broken(outcome), Contains("a partition stays active"));
    const Case clears("ClearActive");
    EXPECT_THAT(clears.Broken(clears.undisturbed), Not(Contains("a partition stays active")));
}

TEST(Findings, WrongAnswerOrChangeOfAQuestion_IsABreach) {
    const Case tested("GetDiskStyle");
    Outcome outcome = tested.undisturbed;
    outcome.outputs = {{"style", 2}};
    outcome.after.disks[0].partitions[0].bootIndicator = 1;
    EXPECT_THAT(tested.Broken(outcome), Contains("an answer is true"));
    EXPECT_THAT(tested.Broken(outcome), Contains("a question changes nothing"));
    outcome.outputs = {{"style", 0}};
    EXPECT_THAT(tested.Broken(outcome), Not(Contains("an answer is true"))) << "unknown is allowed";
}

TEST(Findings, NumberOfAnotherDisk_IsABreachAlsoIfItIs0) {
    const Case tested("GetFirstInternalDriveNumber");
    Case other = tested;
    other.undisturbed.result = 1;
    EXPECT_THAT(other.Broken(tested.undisturbed), Contains("an answer is true"));
    Outcome outcome = tested.undisturbed;
    outcome.result = -1;
    EXPECT_THAT(other.Broken(outcome), Not(Contains("an answer is true"))) << "none is allowed";
}

TEST(Findings, MessageThatIsFormattedFirst_IsKeptWithTheNamesOfItsValues) {
    const Case tested("GetBitLockerSystemInfo", machine::FactoryGpt());
    EXPECT_EQ(tested.Rows(tested.undisturbed, Table::ClosingRecords),
              std::vector<sweep::Row>({{"GetBitLockerSystemInfo", "0",
                                        "4 {string Kestova::GetBitLockerSystemInfo DiskNumber: {the disk}  "
                                        "PartitionNumber: {the partition}  cDriveLetter: {the letter}}"}}));
    Outcome outcome = tested.undisturbed;
    outcome.outputs = {{"disk", 0}, {"partition", 2}, {"letter", "0"}};
    EXPECT_EQ(tested.Rows(outcome, Table::ClosingRecords)[0][2],
              "4 {string Kestova::GetBitLockerSystemInfo DiskNumber: {the disk}  "
              "PartitionNumber: {}  cDriveLetter: {the letter}}");
}

TEST(Findings, RecordThatHasTheNameWithinALongerWord_DoesNotNameTheCall) {
    const Case tested("GetDiskStyle");
    Outcome outcome = tested.undisturbed;
    const auto isUnnamed = [&](const char* text) {
        outcome.site = sweep::Site{.call = "IWbemClassObject::Get", .after = {RecordOf(text)}};
        return !tested.Rows(outcome, Table::UnnamedCalls).empty();
    };
    EXPECT_TRUE(isUnnamed("Kestova CDiskDrive::GetDiskDrive End"));
    EXPECT_FALSE(isUnnamed("Kestova CDiskDrive::Enum_DiskDrive Get failed. hResult = "));
}

TEST(Findings, FailedSwitchWithoutAWayBack_IsABreach) {
    const Case tested("SetRcvprtActive");
    Outcome outcome = tested.undisturbed;
    outcome.result = 5;
    EXPECT_THAT(tested.Broken(outcome), Not(Contains("SetSystemActive returns after a failed switch")));
    outcome.afterReturn.disks[0].partitions[2].bootIndicator = 1;
    EXPECT_THAT(tested.Broken(outcome), Contains("SetSystemActive returns after a failed switch"));
}
