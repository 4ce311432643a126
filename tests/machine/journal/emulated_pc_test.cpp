#include "machine/journal/emulated_pc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diag/log_record.h"
#include "machine/facts/machines.h"

using machine::EmulatedPc;
using testing::IsEmpty;
using testing::SizeIs;

TEST(EmulatedPc, WhileItExists_AnswersCalls) {
    {
        EmulatedPc first(machine::FactoryMbr());
        EXPECT_EQ(&EmulatedPc::Current(), &first);
    }
    EmulatedPc second(machine::FactoryGpt());
    EXPECT_EQ(&EmulatedPc::Current(), &second);
}

TEST(EmulatedPc, FaultsInFacts_AreArmedFromTheStart) {
    machine::Pc facts = machine::FactoryMbr();
    facts.faults = {{.call = "GetDriveTypeW", .nth = 1, .code = 0}};
    EmulatedPc pc(facts);
    EXPECT_EQ(GetDriveTypeW(TEXT("C:")), 0u);
    EXPECT_EQ(pc.faults.Fired(), 1);
}

TEST(EmulatedPc, SeveralTypes_State_KeepsOneObjectOfEach) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.State<int>() = 7;
    EXPECT_EQ(pc.State<int>(), 7);
    EXPECT_EQ(pc.State<std::string>(), "");
}

TEST(EmulatedPc, AfterItsEnd_LogRecordsAreNotDelivered) {
    machine::Journal before;
    {
        EmulatedPc pc(machine::FactoryMbr());
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("heard"));
        before = pc.journal;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("not heard"));
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_THAT(before.Records(), SizeIs(1));
    EXPECT_THAT(pc.journal.Records(), IsEmpty());
}

TEST(EmulatedPcDeathTest, NoPc_Call_EndsTheProcessWithAMessage) {
    EXPECT_DEATH(GetDriveTypeW(TEXT("C:")), "a platform call was made, but no emulated PC is alive");
}

TEST(EmulatedPcDeathTest, ExistingPc_SecondOne_EndsTheProcessWithAMessage) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_DEATH(EmulatedPc{machine::FactoryGpt()}, "an emulated PC is alive already");
}
