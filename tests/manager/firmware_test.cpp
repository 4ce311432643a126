// What the machine's firmware is.

#include <gmock/gmock.h>

#include <optional>

#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "manager/kestova.h"
#include "tests/support/transcript.h"

namespace {

using machine::EmulatedPc;
using machine::FirmwareKind;

struct Answer {
    const char* name;
    FirmwareKind kind;
    std::optional<uint32_t> error;
    int result;
    const char* record;  // the one between start and end; empty: none
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << answer.name;
}

class IsEFIBootSystem : public testing::TestWithParam<Answer> {};

TEST_P(IsEFIBootSystem, ErrorOfTheFirmware_DecidesTheResult) {
    machine::Pc facts = machine::FactoryMbr();
    facts.firmware = {GetParam().kind, GetParam().error};
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.IsEFIBootSystem(), GetParam().result);
    EXPECT_EQ(Transcript(pc.journal), std::string("4 Kestova::IsEFIBootSystem\\t\\tStart\n") +
                                          GetParam().record + "4 Kestova::IsEFIBootSystem\\t\\tEnd\n");
}

const Answer answers[] = {
    {"Uefi", FirmwareKind::Uefi, std::nullopt, 1, ""},
    {"Bios", FirmwareKind::Bios, std::nullopt, 0, "4 Kestova::IsEFIBootSystem\\t{string GetLastError = 1}\n"},
    {"WithoutPrivilege", FirmwareKind::Uefi, ERROR_PRIVILEGE_NOT_HELD, 0,
     "4 Kestova::IsEFIBootSystem\\t{string GetLastError = 1314}\n"},
    {"VariableThatCanBeRead", FirmwareKind::Uefi, ERROR_SUCCESS, 0, ""},
};

INSTANTIATE_TEST_SUITE_P(Firmware, IsEFIBootSystem, testing::ValuesIn(answers),
                         [](const auto& tested) { return tested.param.name; });

TEST(IsEFIBootSystemCall, AnyFirmware_ReadsAVariableWithoutAName) {
    EmulatedPc pc(machine::FactoryGpt());
    Kestova kestova;
    pc.journal.Clear();
    EXPECT_EQ(kestova.IsEFIBootSystem(), 1);
    const auto calls = pc.journal.Calls();
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].call, "GetFirmwareEnvironmentVariableW");
    EXPECT_THAT(calls[0].arguments,
                testing::ElementsAre("", "{00000000-0000-0000-0000-000000000000}", "1000"));
}

TEST(IsEFIBootSystemCall, ErrorOfAnEarlierCall_DoesNotCount) {
    machine::Pc facts = machine::FactoryGpt();
    facts.firmware.error = ERROR_SUCCESS;
    EmulatedPc pc(facts);
    Kestova kestova;
    pc.lastError = ERROR_NOACCESS;
    EXPECT_EQ(kestova.IsEFIBootSystem(), 0);
}

}  // namespace
