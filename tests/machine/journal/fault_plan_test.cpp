#include "machine/journal/fault_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using machine::FaultPlan;
using machine::FaultRule;
using testing::ElementsAre;

namespace {

using Rules = std::vector<FaultRule>;

// Which of the first five calls of that name fail.
std::vector<bool> FirstFive(FaultPlan& plan, const std::string& call) {
    std::vector<bool> fails;
    for (int i = 0; i < 5; ++i)
        fails.push_back(plan.Next(call) != nullptr);
    return fails;
}

}  // namespace

TEST(FaultPlan, WithoutRulesNothingFails) {
    FaultPlan plan;
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(false, false, false, false, false));
    EXPECT_EQ(plan.Fired(), 0);
}

TEST(FaultPlan, NthCallFailsOnce) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .nth = 2, .code = 5}});
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(false, true, false, false, false));
    EXPECT_EQ(plan.Fired(), 1);
}

TEST(FaultPlan, NthCallAndAllLaterOnesFail) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .nth = 3, .onwards = true, .code = 5}});
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(false, false, true, true, true));
    EXPECT_EQ(plan.Fired(), 3);
}

TEST(FaultPlan, EveryCallFails) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .code = 5}});
    EXPECT_THAT(FirstFive(plan, "CreateFileW"), ElementsAre(true, true, true, true, true));
}

TEST(FaultPlan, CountsEachNameByItself) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .nth = 1, .code = 5}});
    EXPECT_EQ(plan.Next("CloseHandle"), nullptr);
    EXPECT_NE(plan.Next("CreateFileW"), nullptr);
}

TEST(FaultPlan, TellsTheRuleThatApplied) {
    const FaultRule after{.call = "DeleteFileW", .nth = 2, .afterEffect = true, .code = 5};
    FaultPlan plan(Rules{{.call = "DeleteFileW", .nth = 1, .code = 19}, after});
    EXPECT_EQ(plan.Next("DeleteFileW")->code, 19u);
    EXPECT_EQ(*plan.Next("DeleteFileW"), after);
}

TEST(FaultPlan, FirstOfTwoRulesForOneCallWins) {
    FaultPlan plan(Rules{{.call = "DeleteFileW", .code = 1}, {.call = "DeleteFileW", .nth = 1, .code = 2}});
    EXPECT_EQ(plan.Next("DeleteFileW")->code, 1u);
}

TEST(FaultPlan, ArmingCountsAfresh) {
    FaultPlan plan;
    plan.Next("CreateFileW");
    plan.Arm({.call = "CreateFileW", .nth = 1, .code = 5});
    EXPECT_NE(plan.Next("CreateFileW"), nullptr);
}

TEST(FaultPlan, DisarmedNothingFailsAndNothingHasFired) {
    FaultPlan plan(Rules{{.call = "CreateFileW", .code = 5}});
    plan.Next("CreateFileW");
    plan.Disarm();
    EXPECT_EQ(plan.Next("CreateFileW"), nullptr);
    EXPECT_EQ(plan.Fired(), 0);
}
