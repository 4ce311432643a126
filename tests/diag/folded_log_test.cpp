// How the log of an operation is folded for its transcript.
#include "tests/support/folded_log.h"

#include <gtest/gtest.h>

#include "base/wide_string.h"

namespace {

LogItem Text(const WCHAR* text) {
    return {LogItemKind::Text, text};
}

LogItem Int(const WCHAR* digits) {
    return {LogItemKind::Int, digits};
}

LogEntry Trace(std::vector<LogItem> items) {
    return {LOG_LEVEL_TRACE, std::move(items)};
}

LogEntry Trace(const WCHAR* text) {
    return Trace({Text(text)});
}

LogEntry Error(std::vector<LogItem> items) {
    return {LOG_LEVEL_ERROR, std::move(items)};
}

// An operation that calls a function with that result.
std::vector<LogEntry> OneCall(const WCHAR* result, const WCHAR* message = TEXT("Low::Ask runs")) {
    return {Trace(TEXT("High::Do Start")), Trace(TEXT("Low::Ask Start")), Trace(message),
            Trace({Text(TEXT("Low::Ask End. iRet = ")), Int(result)}), Trace(TEXT("High::Do End"))};
}

// The folded lines, without the name at the end of each.
std::string WithoutNames(const std::string& text) {
    std::string bare;
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find('\n', at);
        bare += text.substr(at, std::min(text.find(" #", at), end) - at) + "\n";
        at = end + 1;
    }
    return bare;
}

}  // namespace

TEST(Fold, CallOfAnotherFunction_IsOneLineWithItsResultAndABlockOfItsOwn) {
    const FoldedLog folded = Fold(OneCall(TEXT("7")));
    ASSERT_EQ(folded.hidden.size(), 1U);
    const std::string& name = folded.hidden[0].name;
    EXPECT_EQ(
        folded.operation,
        (LogBlock{"High::Do", "", "4 High::Do Start\n4 > Low::Ask {int 7} " + name + "\n4 High::Do End\n"}));
    EXPECT_EQ(
        folded.hidden[0],
        (LogBlock{"Low::Ask", name, "4 Low::Ask Start\n4 Low::Ask runs\n4 Low::Ask End. iRet = {int 7}\n"}));
}

TEST(Fold, CallWithAnotherText_HasTheSameName) {
    const FoldedLog one = Fold(OneCall(TEXT("7")));
    const FoldedLog other = Fold(OneCall(TEXT("7"), TEXT("Low::Ask hurries")));
    EXPECT_EQ(one.operation, other.operation);
    EXPECT_NE(one.hidden, other.hidden);
}

TEST(Fold, CallWithAnotherValueLevelOrNumberOfRecords_HasAnotherName) {
    const FoldedLog one = Fold(OneCall(TEXT("7")));
    std::vector<LogEntry> records = OneCall(TEXT("7"));
    records[2].level = LOG_LEVEL_ERROR;
    EXPECT_NE(one.hidden[0].name, Fold(records).hidden[0].name);
    records.erase(records.begin() + 2);
    EXPECT_NE(one.hidden[0].name, Fold(records).hidden[0].name);
    EXPECT_NE(one.hidden[0].name, Fold(OneCall(TEXT("8"))).hidden[0].name);
}

TEST(Fold, TextBehindALabel_CountsAsAValue) {
    const auto withPath = [](const WCHAR* path) {
        std::vector<LogEntry> records = OneCall(TEXT("7"));
        records[2] = Trace({Text(TEXT("Low::Ask path = ")), Text(path)});
        return Fold(records).hidden[0].name;
    };
    EXPECT_NE(withPath(TEXT("C:")), withPath(TEXT("D:")));
}

TEST(Fold, LabelBehindAnEmptyValue_IsNoValue) {
    const auto withLabel = [](const WCHAR* label) {
        std::vector<LogEntry> records = OneCall(TEXT("7"));
        records[2] = Trace(
            {Text(TEXT("Low::Ask path = ")), Text(TEXT("")), Text(label), Int(TEXT("2")), Text(TEXT(""))});
        return Fold(records).hidden[0].name;
    };
    EXPECT_EQ(withLabel(TEXT(" size = ")), withLabel(TEXT(" length = ")));
}

TEST(Fold, CallInACall_IsFoldedThereAndHidden) {
    const FoldedLog folded =
        Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("Mid::Find Start")), Trace(TEXT("Low::Ask Start")),
              Trace(TEXT("Low::Ask End")), Trace(TEXT("Mid::Find End")), Trace(TEXT("High::Do End"))});
    ASSERT_EQ(folded.hidden.size(), 2U);
    EXPECT_EQ(WithoutNames(folded.operation.text), "4 High::Do Start\n4 > Mid::Find\n4 High::Do End\n");
    EXPECT_EQ(WithoutNames(folded.hidden[0].text), "4 Low::Ask Start\n4 Low::Ask End\n");
    EXPECT_EQ(WithoutNames(folded.hidden[1].text), "4 Mid::Find Start\n4 > Low::Ask\n4 Mid::Find End\n");
}

TEST(Fold, CallWithoutAnEnd_EndsBeforeTheNextRecordOfItsCaller) {
    const FoldedLog folded =
        Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("Low::Ask Start")),
              Error({Text(TEXT("Low::Ask failed, code = ")), Int(TEXT("5"))}), Trace(TEXT("High::Do End"))});
    EXPECT_EQ(WithoutNames(folded.operation.text),
              "4 High::Do Start\n1 > Low::Ask {int 5}\n4 High::Do End\n");
}

TEST(Fold, CallWithoutAnEnd_EndsWhereItsFunctionStartsAgain) {
    const FoldedLog folded = Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("Low::Ask Start")),
                                   Trace(TEXT("Low::Ask Start")), Trace(TEXT("Low::Ask End"))});
    EXPECT_EQ(WithoutNames(folded.operation.text), "4 High::Do Start\n4 > Low::Ask\n4 > Low::Ask\n");
}

TEST(Fold, FunctionThatNeverLogsAnEnd_EndsBeforeAFunctionThatItDoesNotCall) {
    const FoldedLog folded =
        Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("CVDSPartition::SelectDisk Start")),
              Trace(TEXT("CVDSEx::QueryDisks Start")), Trace(TEXT("CVDSEx::GetVdsDisk Start")),
              Trace(TEXT("CVDSPartition::SelectPartition Start"))});
    EXPECT_EQ(WithoutNames(folded.operation.text),
              "4 High::Do Start\n4 > CVDSPartition::SelectDisk\n4 > CVDSPartition::SelectPartition\n");
    EXPECT_EQ(folded.hidden.size(), 4U);
}

TEST(Fold, RecordOfAFunctionThatLoggedNoStart_IsShownWhereItIs) {
    const FoldedLog folded =
        Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("Low::Ask End")), Trace(TEXT("High::Do End"))});
    EXPECT_EQ(folded.operation.text, "4 High::Do Start\n4 Low::Ask End\n4 High::Do End\n");
    EXPECT_TRUE(folded.hidden.empty());
}

TEST(Fold, RecordThatNamesNoFunction_BelongsToTheFunctionThatRuns) {
    const FoldedLog folded =
        Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("Low::Ask Start")), Trace({Int(TEXT("3"))}),
              Trace(TEXT("Low::Ask End")), Trace(TEXT("a line"))});
    EXPECT_EQ(WithoutNames(folded.operation.text), "4 High::Do Start\n4 > Low::Ask\n4 a line\n");
    EXPECT_EQ(folded.hidden[0].text, "4 Low::Ask Start\n4 {int 3}\n4 Low::Ask End\n");
}

TEST(Fold, TwoOperations_ShowTheFirstAndFoldTheSecond) {
    const FoldedLog folded =
        Fold({Trace(TEXT("High::Do Start")), Trace(TEXT("High::Do End")), Trace(TEXT("High::Undo Start")),
              Trace(TEXT("High::Undo End")), Trace(TEXT("High::Do Start"))});
    EXPECT_EQ(WithoutNames(folded.operation.text),
              "4 High::Do Start\n4 High::Do End\n4 > High::Undo\n4 High::Do Start\n");
}
