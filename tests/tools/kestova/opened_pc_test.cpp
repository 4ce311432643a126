// What is only tried on an emulated PC is taken back, also if it ends by an exception.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tools/kestova/operations/session.h"
#include "tools/kestova/pc/opened_pc.h"
#include "tools/kestova/reports/disk_layout.h"

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Optional;

std::unique_ptr<OpenedPc> FactoryMbr(const std::vector<std::string>& faults = {}) {
    PcChoice choice;
    choice.pc = "factory-mbr";
    choice.faults = faults;
    return OpenPc(choice, Access::Change);
}

TEST(EmulatedPc, RehearsalThatThrows_RestoresTheFacts) {
    const auto pc = FactoryMbr();
    Session session(*pc, nullptr, false);
    session.Construct();
    session.Call(FindOperation("Initialize"), {{"reserved", false}});

    const auto rehearse = [&] {
        pc->Rehearse([&] {
            session.Call(FindOperation("SetRcvprtActive"), {});
            EXPECT_THAT(pc->Changes(), Optional(Contains("disk 0, partition 1: active now")));
            throw std::runtime_error("in the middle");
        });
    };

    EXPECT_THROW(rehearse(), std::runtime_error);
    EXPECT_THAT(pc->Changes(), Optional(IsEmpty()));
    session.Destroy();
}

TEST(EmulatedPc, LookAsideThatThrows_RestoresTheFaults) {
    const auto pc = FactoryMbr({"CreateFileW=5"});

    const auto look = [&] {
        pc->Aside([&] {
            EXPECT_TRUE(ReadDiskLayout(0));
            throw std::runtime_error("in the middle");
        });
    };

    EXPECT_THROW(look(), std::runtime_error);
    EXPECT_EQ(pc->FaultCounts().front().met, 0);
    EXPECT_FALSE(ReadDiskLayout(0));
    EXPECT_EQ(pc->FaultCounts().front().met, 1);
}

}  // namespace
