// Random operations on random PCs agree with the model, and the model notices what does not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "machine/facts/machines.h"
#include "tests/random/engine/model.h"
#include "tests/random/engine/random_run.h"

namespace {

uint64_t Seed() {
    const char* const given = std::getenv("KESTOVA_SEED");
    return given != nullptr ? std::stoull(given) : std::random_device()();
}

// What the model says of an operation on the factory PC that returned this and changed nothing.
std::string OnFactoryMbr(const char* name, const std::vector<std::string>& words, const Value& result,
                         const Values& outputs = {}) {
    const Operation& operation = FindOperation(name);
    const Values arguments = ReadArguments(operation, words);
    const machine::Pc pc = machine::FactoryMbr();
    return randomly::Contradiction({operation, arguments, result, outputs, 0, pc, pc});
}

}  // namespace

TEST(RandomRuns, ThousandOperations_AgreeWithTheModel) {
    const uint64_t seed = Seed();
    EXPECT_EQ(randomly::RunMany(1000, seed), "") << "again: ./dev random 1000 " << seed;
}

TEST(Model, TrueAnswers_AreAccepted) {
    EXPECT_EQ(OnFactoryMbr("GetActivePartitionNumber", {}, 2), "");
    EXPECT_EQ(OnFactoryMbr("GetDriveLetter", {"0", "2"}, std::string("C")), "");
    EXPECT_EQ(OnFactoryMbr("GetDiskStyle", {}, 1, {{"style", 1}}), "");
}

TEST(Model, WrongAnswers_AreNoticed) {
    EXPECT_NE(OnFactoryMbr("GetActivePartitionNumber", {}, 3), "");
    EXPECT_NE(OnFactoryMbr("GetDriveLetter", {"0", "2"}, std::string("D")), "");
    EXPECT_NE(OnFactoryMbr("GetDiskStyle", {}, 1, {{"style", 2}}), "");
    EXPECT_NE(OnFactoryMbr("IsDynamic", {}, 1), "");
}

TEST(Model, SuccessWithoutTheChange_IsNoticed) {
    EXPECT_NE(OnFactoryMbr("SetActive", {"3"}, 0), "");
    EXPECT_NE(OnFactoryMbr("ClearActive", {}, 0), "");
    EXPECT_NE(OnFactoryMbr("SetRcvprtActive", {}, 0), "");
    EXPECT_NE(OnFactoryMbr("SetBIOSHibernationPartitionID", {"3"}, 0), "");
}
