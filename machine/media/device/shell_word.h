// A file name in a command that a message advises.
#pragma once

#include <string>
#include <string_view>

namespace machine {

// The text as one word of a shell's command line: itself, or in quotes where a shell would read anything
// else.
inline std::string ShellWord(const std::string& text) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+:,@%";
    if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) return text;
    std::string word = "'";
    for (const char unit : text)
        word += unit == '\'' ? std::string("'\\''") : std::string(1, unit);
    return word + "'";
}

}  // namespace machine
