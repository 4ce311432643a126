#include "tests/support/transcript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "tests/support/folded_log.h"
#include "tests/support/record_line.h"
#include "tests/support/transcript_file.h"

namespace {

bool IsEmptyText(const LogItem& item) {
    return item.kind == LogItemKind::Text && item.text.empty();
}

// A name that is missing is an empty value behind its label or its operation.
bool IsLabel(const LogItem& item) {
    return item.kind == LogItemKind::Text &&
           (item.text.ends_with(TEXT("= ")) || item.text.ends_with(TEXT("\t")));
}

bool EndsWithOneEmptyText(const LogEntry& entry) {
    const size_t count = entry.items.size();
    if (count < 2 || !IsEmptyText(entry.items[count - 1])) return false;
    return !IsEmptyText(entry.items[count - 2]) || (count > 2 && IsLabel(entry.items[count - 3]));
}

// Suite.Test, with the part behind a comma.
std::string SectionName(const std::string& part) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    return part.empty() ? name : name + ", " + part;
}

// CLASS/FUNCTION.txt.
std::filesystem::path FileOf(const std::string& function) {
    const size_t colons = function.find("::");
    return std::filesystem::path(function.substr(0, colons)) / (function.substr(colons + 2) + ".txt");
}

void ExpectSection(const LogBlock& block, const std::filesystem::path& path) {
    std::vector<TranscriptSection> expected = ReadTranscripts(path);
    std::erase_if(expected, [&](const TranscriptSection& section) { return section.name != block.name; });
    if (expected.size() == 1) {
        EXPECT_EQ(block.text, expected[0].text) << "transcript " << path << ", == " << block.name;
    } else {
        EXPECT_TRUE(std::ranges::count(expected, block.text, &TranscriptSection::text))
            << "transcript " << path << " expects no == " << block.name << "\n"
            << block.text;
    }
}

void Compare(const LogBlock& block) {
    const char* const recorded = std::getenv("KESTOVA_RECORD");
    if (recorded != nullptr) {
        RecordTranscript(recorded / FileOf(block.function), {block.name, block.text});
    } else {
        ExpectSection(block, std::filesystem::path(KESTOVA_SOURCE_FOLDER) / "tests" / "transcripts" /
                                 FileOf(block.function));
    }
}

}  // namespace

std::string Transcript(const machine::Journal& journal) {
    std::string transcript;
    for (const LogEntry& entry : journal.Records()) {
        EXPECT_TRUE(EndsWithOneEmptyText(entry)) << "record not closed by one empty text: " << LineOf(entry);
        transcript += LineOf(entry);
    }
    return transcript;
}

void ExpectTranscript(const machine::Journal& journal, const std::string& part) {
    Transcript(journal);
    FoldedLog folded = Fold(journal.Records());
    ASSERT_NE(folded.operation.function, "") << "nothing was logged";
    folded.operation.name = SectionName(part);
    Compare(folded.operation);
    for (const LogBlock& block : folded.hidden)
        Compare(block);
}
