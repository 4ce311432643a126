#include "tests/support/transcript.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/utf.h"

namespace {

const char* KindName(LogItemKind kind) {
    switch (kind) {
        case LogItemKind::String:
            return "string";
        case LogItemKind::Text:
            return "text";
        case LogItemKind::Pointer:
            return "pointer";
        case LogItemKind::ULong:
            return "ulong";
        case LogItemKind::ULongLong:
            return "ulonglong";
        case LogItemKind::Long:
            return "long";
        case LogItemKind::LongLong:
            return "longlong";
        case LogItemKind::Int:
            return "int";
        case LogItemKind::Char:
            return "char";
    }
    return "";
}

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char unit : text) {
        if (unit == '\t') {
            escaped += "\\t";
        } else if (unit == '\0') {
            escaped += "\\0";
        } else {
            escaped += unit;
        }
    }
    return escaped;
}

std::string Line(const LogEntry& entry) {
    std::string line = std::to_string(entry.level) + " ";
    for (const LogItem& item : entry.items) {
        const std::string text = Escaped(ToUtf8(item.text));
        line +=
            item.kind == LogItemKind::Text ? text : std::string("{") + KindName(item.kind) + " " + text + "}";
    }
    return line + "\n";
}

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

}  // namespace

std::string Transcript(const machine::Journal& journal) {
    std::string transcript;
    for (const LogEntry& entry : journal.Records()) {
        EXPECT_TRUE(EndsWithOneEmptyText(entry)) << "record not closed by one empty text: " << Line(entry);
        transcript += Line(entry);
    }
    return transcript;
}

void ExpectTranscript(const machine::Journal& journal, const std::string& name) {
    const std::filesystem::path path =
        std::filesystem::path(KESTOVA_SOURCE_FOLDER) / "tests" / "transcripts" / (name + ".txt");
    const std::string actual = Transcript(journal);
    if (std::getenv("KESTOVA_RECORD") != nullptr) {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << actual;
        return;
    }
    std::ifstream file(path, std::ios::binary);
    ASSERT_TRUE(file) << "no transcript " << path;
    std::ostringstream expected;
    expected << file.rdbuf();
    EXPECT_EQ(actual, expected.str()) << "transcript " << path;
}
