// Each call of the emulated PC has documented results, and no other has.

#include <gtest/gtest.h>

#include "machine/calls/call_table.h"
#include "machine/calls/documented_results.h"
#include "tests/sweep/engine/fault_series.h"

namespace {

using sweep::Disturbance;
using sweep::Way;

size_t CountWay(const std::vector<Disturbance>& all, Way way) {
    return static_cast<size_t>(std::count_if(
        all.begin(), all.end(), [&](const Disturbance& disturbance) { return disturbance.way == way; }));
}

}  // namespace

TEST(DocumentedResults, EveryCallOfTheTable_HasOneRowWithFailures) {
    EXPECT_EQ(machine::AllDocumentedResults().size(), machine::AllCalls().size());
    for (const machine::CallInfo& call : machine::AllCalls())
        EXPECT_FALSE(machine::ResultsOf(call.name).failures.empty()) << call.name;
}

TEST(DocumentedResults, FailuresOfResultCalls_AreFailures) {
    for (const machine::CallInfo& call : machine::AllCalls()) {
        if (call.failsWith != machine::FailsWith::Hresult) continue;
        for (const uint32_t code : machine::ResultsOf(call.name).failures)
            EXPECT_GE(code, 0x80000000U) << call.name;
        for (const uint32_t code : machine::ResultsOf(call.name).successes)
            EXPECT_LT(code, 0x80000000U) << call.name;
    }
}

TEST(FaultSeries, CallThatChangesThePc_FailsInEveryWay) {
    const std::string call = "IVdsAdvancedDisk::ChangeAttributes";
    const auto all = sweep::AllDisturbances({{}, {call}});
    const size_t codes = machine::ResultsOf(call).failures.size();
    EXPECT_EQ(CountWay(all, Way::Fails), codes);
    EXPECT_EQ(CountWay(all, Way::FailsOnwards), codes);
    EXPECT_EQ(CountWay(all, Way::FailsAfterEffect), codes);
    EXPECT_EQ(CountWay(all, Way::SuccessNothing), 2U);
    EXPECT_EQ(CountWay(all, Way::EmptySuccess), 2U);
    EXPECT_EQ(CountWay(all, Way::AllCallsFail), 2U);
}

TEST(FaultSeries, CallsOfThePreparation_AreCountedAndNotDisturbed) {
    const auto all = sweep::AllDisturbances({{"CreateFileW", "CloseHandle"}, {"CreateFileW"}});
    for (const Disturbance& disturbance : all) {
        const bool anyCall = disturbance.call == machine::anyCall;
        EXPECT_EQ(disturbance.rules.front().nth, anyCall ? 3U : 2U);
        EXPECT_TRUE(anyCall || disturbance.call == "CreateFileW");
    }
}

TEST(FaultSeries, CodeThatAnswers_IsAnotherValueAndNoFailure) {
    const std::string call = "CoInitializeSecurity";
    const auto all = sweep::AllDisturbances({{}, {call}});
    EXPECT_EQ(CountWay(all, Way::Fails), machine::ResultsOf(call).failures.size());
    EXPECT_EQ(CountWay(all, Way::OtherValue), 2U);
}

TEST(FaultSeries, RollBackAfterAnEffect_IsAWayOfItsOwn) {
    const Disturbance first{"ReadFile", Way::FailsAfterEffect, {{.call = "ReadFile", .nth = 1, .code = 5}}};
    const std::vector<std::string> calls = {"ReadFile", "CreateFileW"};
    const auto pairs = sweep::FaultsOfRollBack(first, {{}, calls}, 0);
    ASSERT_EQ(pairs.size(), 1U);
    EXPECT_EQ(pairs[0].way, Way::TwoFailAfterEffect);
}

TEST(FaultSeries, RollBack_FailsEachLaterCallToo) {
    const Disturbance first{"ReadFile", Way::Fails, {{.call = "ReadFile", .nth = 1, .code = 5}}};
    const std::vector<std::string> calls = {"CreateFileW", "ReadFile", "CreateFileW", "GetDriveTypeW"};
    const auto pairs = sweep::FaultsOfRollBack(first, {{}, calls}, 1);
    ASSERT_EQ(pairs.size(), 1U);
    EXPECT_EQ(pairs[0].way, Way::TwoFail);
    EXPECT_EQ(pairs[0].rules.size(), 2U);
    EXPECT_EQ(pairs[0].rules[1].call, "CreateFileW");
    EXPECT_EQ(pairs[0].rules[1].nth, 2U);
}
