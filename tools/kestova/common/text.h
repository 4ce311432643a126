// Small helpers for text.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/windows_api.h"

inline constexpr size_t noLimit = std::string::npos;

// A wide character as UTF-8.
std::string LetterText(WCHAR letter);

// The text on one line: CR, LF and NUL are written as `\r`, `\n` and `\0`, as in the log file.
std::string OneLine(std::string_view text);

// A name from a medium, for a terminal: a control character, or a mark of the text's direction, is written as
// `\u202E`. A name that is not UTF-8 becomes "?".
std::string Printable(std::string_view name);

// The same of a whole text: its line feeds and tabs stay, and bytes that are not UTF-8 are shown as `\xE9`.
std::string PrintableText(std::string_view text);

// The elements' texts with the separator between them; an element's text is itself unless `text` says
// otherwise.
template <typename List, typename Text = std::identity>
std::string Joined(const List& list, std::string_view separator, Text text = {}) {
    std::string joined;
    for (bool isFirst = true; const auto& element : list) {
        if (!std::exchange(isFirst, false)) joined += separator;
        joined += std::invoke(text, element);
    }
    return joined;
}

// The value's text; without one, what stands for none.
std::string TextOr(const std::optional<std::string>& text, const char* none);
std::string TextOr(const std::optional<int>& number, const char* none);
std::string TextOr(const std::optional<WCHAR>& letter, const char* none);

// "1 argument", "2 arguments".
// The text; "NUL" for that character alone.
std::string WithNamedNul(const std::string& text);

std::string Count(uint64_t count, std::string_view noun);

// "there is no operation 'SetActiv'; did you mean SetActive?"
std::string UnknownWord(std::string_view what, std::string_view name, const std::vector<std::string>& known);

// "100.0 MiB".
std::string SizeText(uint64_t bytes);

// Rows of cells as lines, each column as wide as its widest cell, without trailing blanks. The last column is
// wrapped where the lines would be longer than `columns`.
std::string Table(const std::vector<std::vector<std::string>>& rows, const std::string& indent,
                  size_t columns = noLimit);

// The text in lines of at most that many characters, broken at blanks; its own line breaks stay.
std::string Wrapped(const std::string& text, size_t columns);
