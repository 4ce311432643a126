#include "logging/log_line.h"

#include <cstdio>
#include <limits>

namespace {

constexpr char32_t replacement = 0xFFFD;

bool IsHighSurrogate(WCHAR unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(WCHAR unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Reads the character at an index, and advances the index past it.
char32_t TakeCharacter(const std::basic_string<WCHAR>& text, size_t& at) {
    const WCHAR unit = text[at++];
    if (IsHighSurrogate(unit) && at < text.size() && IsLowSurrogate(text[at])) {
        return 0x10000U + ((unit - 0xD800U) << 10) + (text[at++] - 0xDC00U);
    }
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) ? replacement : unit;
}

// A UTF-8 continuation byte with the low 6 bits.
char Continuation(char32_t bits) {
    return static_cast<char>(0x80U | (bits & 0x3FU));
}

void AppendUtf8(std::string& bytes, char32_t character) {
    if (character < 0x80) {
        bytes += static_cast<char>(character);
        return;
    }
    if (character < 0x800) {
        bytes += static_cast<char>(0xC0U | (character >> 6));
    } else {
        if (character < 0x10000) {
            bytes += static_cast<char>(0xE0U | (character >> 12));
        } else {
            bytes += static_cast<char>(0xF0U | (character >> 18));
            bytes += Continuation(character >> 12);
        }
        bytes += Continuation(character >> 6);
    }
    bytes += Continuation(character);
}

void AppendText(std::string& line, const std::basic_string<WCHAR>& text) {
    for (size_t at = 0; at < text.size();) {
        const char32_t character = TakeCharacter(text, at);
        if (character == U'\r') {
            line += "\\r";
        } else if (character == U'\n') {
            line += "\\n";
        } else if (character == U'\0') {
            line += "\\0";
        } else {
            AppendUtf8(line, character);
        }
    }
}

std::string LevelName(int level) {
    switch (level) {
        case LOG_LEVEL_ERROR:
            return "ERROR";
        case LOG_LEVEL_TRACE:
            return "TRACE";
        default:
            return std::to_string(level);
    }
}

}  // namespace

std::string LogLine(const LogStamp& stamp, const LogEntry& entry) {
    const SYSTEMTIME& time = stamp.time;
    char head[64];
    std::snprintf(head, sizeof(head), "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ %u %u ", unsigned{time.wYear},
                  unsigned{time.wMonth}, unsigned{time.wDay}, unsigned{time.wHour}, unsigned{time.wMinute},
                  unsigned{time.wSecond}, unsigned{time.wMilliseconds}, static_cast<unsigned>(stamp.process),
                  static_cast<unsigned>(stamp.thread));
    std::string line = head + LevelName(entry.level) + " ";
    for (const LogItem& item : entry.items)
        AppendText(line, item.text);
    return line + "\r\n";
}

int HighestLevel(const std::basic_string<WCHAR>& setting) {
    constexpr int every = std::numeric_limits<int>::max();
    if (setting.empty() || setting.size() > 9) return every;
    int level = 0;
    for (const WCHAR digit : setting) {
        if (digit < TEXT('0') || digit > TEXT('9')) return every;
        level = level * 10 + (digit - TEXT('0'));
    }
    return level;
}
