// The names of result codes.
#include "machine/calls/result_codes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "machine/calls/documented_results.h"

namespace {

using machine::FailsWith;
using testing::IsEmpty;
using testing::Optional;

TEST(ResultCodes, PublishedNames_HavePublishedNumbers) {
    EXPECT_THAT(machine::CodeOfName("E_FAIL"), Optional(0x80004005));
    EXPECT_THAT(machine::CodeOfName("E_ACCESSDENIED"), Optional(0x80070005));
    EXPECT_THAT(machine::CodeOfName("WBEM_E_INVALID_NAMESPACE"), Optional(0x8004100E));
    EXPECT_THAT(machine::CodeOfName("VDS_E_DRIVE_LETTER_NOT_FREE"), Optional(0x8004255C));
    EXPECT_THAT(machine::CodeOfName("ERROR_ACCESS_DENIED"), Optional(5));
    EXPECT_THAT(machine::CodeOfName("ERROR_MORE_DATA"), Optional(234));
    for (const char* const none : {"", "e_fail", "E_FAIL ", "5"})
        EXPECT_EQ(machine::CodeOfName(none), std::nullopt) << none;
}

TEST(ResultCodes, EachKind_IsInTheOrderOfItsCodes) {
    for (const auto codes : {machine::NamedResults(), machine::NamedErrors()}) {
        const auto comesTooEarly = [](const machine::NamedCode& one, const machine::NamedCode& next) {
            return one.code >= next.code;
        };
        const auto found = std::ranges::adjacent_find(codes, comesTooEarly);
        EXPECT_EQ(found, codes.end()) << found->name;
    }
}

TEST(ResultCodes, CodesOfEachKind_HaveTheNameOfThatKind) {
    EXPECT_EQ(machine::CodeText(1, FailsWith::Hresult), "S_FALSE");
    EXPECT_EQ(machine::CodeText(1, FailsWith::FalseAndLastError), "ERROR_INVALID_FUNCTION");
    EXPECT_EQ(machine::CodeText(5, FailsWith::Status), "ERROR_ACCESS_DENIED");
    EXPECT_EQ(machine::CodeText(5, FailsWith::Value), "5");
    EXPECT_EQ(machine::CodeText(77, FailsWith::FalseAndLastError), "77");
    EXPECT_EQ(machine::CodeText(0x80310001, FailsWith::FalseAndLastError), "0x80310001");
    EXPECT_EQ(machine::CodeText(77, FailsWith::Hresult), "0x0000004D");
}

// Those of another facility are shown as numbers.
TEST(ResultCodes, DocumentedResults_HaveNamesButForTwo) {
    std::set<std::string> numbers;
    for (const machine::CallInfo& call : machine::AllCalls()) {
        if (call.failsWith == FailsWith::Value) continue;
        for (const uint32_t code : machine::ResultsOf(call.name).failures) {
            const std::string text = machine::CodeText(code, call.failsWith);
            if (text.starts_with("0x") || (text[0] >= '0' && text[0] <= '9')) numbers.insert(text);
        }
    }
    EXPECT_THAT(numbers, testing::ElementsAre("0x80070422", "0x800706BA"));
}

TEST(ResultCodes, MisspeltName_FindsTheNearest) {
    EXPECT_EQ(machine::NearestCodeName("ERROR_ACCES_DENIED"), "ERROR_ACCESS_DENIED");
    EXPECT_EQ(machine::NearestCodeName("E_FIAL"), "E_FAIL");
    EXPECT_THAT(machine::NearestCodeName("0x1ffffffff"), IsEmpty());
}

}  // namespace
