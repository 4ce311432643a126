#include "machine/journal/fault_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using machine::FaultPlan;
using machine::FaultRule;
using testing::ElementsAre;

namespace {

using Rules = std::vector<FaultRule>;

// The numbers of the calls that fail among the first five of that name.
std::vector<bool> FirstFive(FaultPlan& plan, const std::string& call) {
    std::vector<bool> fails;
    for (int i = 0; i < 5; ++i)
        fails.push_back(plan.Next(call) != nullptr);
    return fails;
}

}  // namespace

TEST(FaultPlan, NoRule_FailsNoCall) {
    FaultPlan plan;
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(false, false, false, false, false));
    EXPECT_EQ(plan.Fired(), 0);
}

TEST(FaultPlan, NthCallArmed_FailsOnlyThatCall) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .nth = 2, .code = 5}});
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(false, true, false, false, false));
    EXPECT_EQ(plan.Fired(), 1);
}

TEST(FaultPlan, NthCallOnwardsArmed_FailsItAndAllLaterCalls) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .nth = 3, .onwards = true, .code = 5}});
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(false, false, true, true, true));
    EXPECT_EQ(plan.Fired(), 3);
}

TEST(FaultPlan, EveryCallArmed_FailsEveryCall) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .code = 5}});
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(true, true, true, true, true));
}

TEST(FaultPlan, EveryNameArmedOnwards_FailsAllCallsFromThatOneOn) {
    FaultPlan plan(Rules{{.call = machine::anyCall, .nth = 2, .onwards = true, .code = 5}});
    EXPECT_EQ(plan.Next("CreateFileW"), nullptr);
    EXPECT_NE(plan.Next("ReadFile"), nullptr);
    EXPECT_NE(plan.Next("CreateFileW"), nullptr);
}

TEST(FaultPlan, EveryNameArmed_SparesCallsThatCannotFail) {
    FaultPlan plan(Rules{{.call = machine::anyCall, .code = 5}});
    EXPECT_EQ(plan.Next("GetDriveTypeW"), nullptr);
    EXPECT_NE(plan.Next("CreateFileW"), nullptr);
}

TEST(FaultPlan, SeveralNames_AreCountedSeparately) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .nth = 1, .code = 5}});
    EXPECT_EQ(plan.Next("CloseHandle"), nullptr);
    EXPECT_NE(plan.Next("CreateFileW"), nullptr);
}

TEST(FaultPlan, RuleApplies_ReturnsThatRule) {
    const FaultRule after{.call = "DeleteFileW", .nth = 2, .afterEffect = true, .code = 5};
    FaultPlan plan(Rules{{.call = "DeleteFileW", .nth = 1, .code = 19}, after});
    EXPECT_EQ(plan.Next("DeleteFileW")->code, 19u);
    EXPECT_EQ(*plan.Next("DeleteFileW"), after);
}

TEST(FaultPlan, TwoRulesForOneCall_FirstOneApplies) {
    FaultPlan plan(Rules{{.call = "DeleteFileW", .code = 1}, {.call = "DeleteFileW", .nth = 1, .code = 2}});
    EXPECT_EQ(plan.Next("DeleteFileW")->code, 1u);
}

TEST(FaultPlan, ArmedLater_RestartsTheCount) {
    FaultPlan plan;
    plan.Next("CreateFileW");
    plan.Arm({.call = "CreateFileW", .nth = 1, .code = 5});
    EXPECT_NE(plan.Next("CreateFileW"), nullptr);
}

TEST(FaultPlan, Disarmed_FailsNoCallAndResetsTheCount) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .code = 5}});
    plan.Next("CreateFileW");
    plan.Disarm();
    EXPECT_EQ(plan.Next("CreateFileW"), nullptr);
    EXPECT_EQ(plan.Fired(), 0);
}

TEST(FaultPlan, RuleWithAnArgument_FailsAndCountsOnlyCallsThatHaveIt) {
    const std::vector<std::string> first = {"disk 0", "5"};
    const std::vector<std::string> second = {"disk 1", "5"};
    FaultPlan plan(Rules{{.call = "IVdsDisk::GetProperties", .nth = 2, .code = 5, .argument = "disk 1"}});
    EXPECT_EQ(plan.Next("IVdsDisk::GetProperties", second), nullptr);
    EXPECT_EQ(plan.Next("IVdsDisk::GetProperties", first), nullptr);
    EXPECT_EQ(plan.Next("IVdsDisk::QueryExtents", second), nullptr);
    EXPECT_EQ(plan.Next("IVdsDisk::GetProperties"), nullptr);
    EXPECT_NE(plan.Next("IVdsDisk::GetProperties", second), nullptr);
    EXPECT_EQ(plan.Next("IVdsDisk::GetProperties", second), nullptr);
    EXPECT_EQ(plan.Calls("IVdsDisk::GetProperties"), 5u);
}

TEST(FaultPlan, RuleWithAnArgumentBehindOneWithout_IsCountedAlsoWhileThatApplies) {
    const std::vector<std::string> disk = {"disk 1"};
    FaultPlan plan(Rules{{.call = "IVdsDisk::GetProperties", .nth = 1, .code = 5},
                         {.call = "IVdsDisk::GetProperties", .nth = 2, .code = 6, .argument = "disk 1"}});
    EXPECT_EQ(plan.Next("IVdsDisk::GetProperties", disk)->code, 5u);
    EXPECT_EQ(plan.Next("IVdsDisk::GetProperties", disk)->code, 6u);
}
