// The checks of the sweep are silent about an undisturbed run and notice each breach.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

    // The rules that a run with that outcome breaks.
    std::vector<std::string> Broken(const Outcome& outcome, const Disturbance& disturbance) const {
        std::vector<std::string> rules;
        for (const sweep::Finding& finding :
             sweep::Check(task, {before, undisturbed, returned}, disturbance, outcome)) {
            if (finding.table == Table::Breaches) rules.push_back(finding.row[0]);
        }
        return rules;
    }
    std::vector<std::string> Broken(const Outcome& outcome) const {
        return Broken(outcome, {"CreateFileW", Way::Fails});
    }

    const Operation& operation;
    sweep::Task task;
    machine::Pc before;
    Outcome undisturbed;
    machine::Pc returned;
};

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

TEST(Findings, FailedSwitchWithoutAWayBack_IsABreach) {
    const Case tested("SetRcvprtActive");
    Outcome outcome = tested.undisturbed;
    outcome.result = 5;
    EXPECT_THAT(tested.Broken(outcome), Not(Contains("SetSystemActive returns after a failed switch")));
    outcome.afterReturn.disks[0].partitions[2].bootIndicator = 1;
    EXPECT_THAT(tested.Broken(outcome), Contains("SetSystemActive returns after a failed switch"));
}
