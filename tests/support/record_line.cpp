#include "tests/support/record_line.h"

#include <algorithm>
#include <cctype>

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

std::string InBraces(const LogItem& item) {
    return std::string("{") + KindName(item.kind) + " " + Escaped(ToUtf8(item.text)) + "}";
}

// Empty for a record that begins with a value.
std::string MessageOf(const LogEntry& record) {
    const bool begins = !record.items.empty() && record.items.front().kind == LogItemKind::Text;
    return begins ? ToUtf8(record.items.front().text) : "";
}

bool IsPartOfName(char unit) {
    return std::isalnum(static_cast<unsigned char>(unit)) || unit == '_';
}

}  // namespace

std::string LineOf(const LogEntry& record) {
    std::string line = std::to_string(record.level) + " ";
    for (const LogItem& item : record.items)
        line += item.kind == LogItemKind::Text ? Escaped(ToUtf8(item.text)) : InBraces(item);
    return line + "\n";
}

std::string FunctionOf(const LogEntry& record) {
    const std::string message = MessageOf(record);
    const size_t colons = message.find("::");
    if (colons == std::string::npos) return "";
    const auto middle = message.begin() + static_cast<std::ptrdiff_t>(colons);
    const auto begin = std::find_if_not(std::reverse_iterator(middle), message.rend(), IsPartOfName).base();
    const auto end = std::find_if_not(middle + 2, message.end(), IsPartOfName);
    return begin == middle || end == middle + 2 ? "" : std::string(begin, end);
}

std::string ValuesOf(const LogEntry& record) {
    std::string values;
    bool behindText = false;
    for (const LogItem& item : record.items) {
        const bool closes = &item == &record.items.back() && item.text.empty();
        const bool isValue = item.kind != LogItemKind::Text || (behindText && !closes);
        if (isValue) values += (values.empty() ? "" : " ") + InBraces(item);
        behindText = !isValue;
    }
    return values;
}

bool HasWord(const std::string& text, const std::string& word) {
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        const size_t end = at + word.size();
        const bool begins = at == 0 || !IsPartOfName(text[at - 1]);
        if (begins && (end == text.size() || !IsPartOfName(text[end]))) return true;
    }
    return false;
}

bool SaysStart(const LogEntry& record) {
    const std::string message = MessageOf(record);
    return HasWord(message, "Start") || HasWord(message, "Enter");
}

bool SaysEnd(const LogEntry& record) {
    const std::string message = MessageOf(record);
    return HasWord(message, "End") || HasWord(message, "end");
}
