// Initialisation files as text: sections in brackets, a "key=value" a line. Looking up follows the platform's
// rules; changing leaves every other line as it is.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

// Names of sections and keys are compared without regard to case and to blanks around them. Lines that start
// with ";" are comments. Of sections and of keys with the same name the first one counts.
class ProfileText {
  public:
    // Bytes as they stand in a file: UTF-16 after its mark, else the ANSI code page (1252). The mark of UTF-8
    // is text like any other, and so spoils a section header behind it, unless it is to be skipped.
    explicit ProfileText(std::string_view bytes, bool skipUtf8Mark = false);

    // In the encoding that was read; what the ANSI code page lacks becomes "?".
    std::string Bytes() const;

    // Without the blanks around it and one pair of quotes. Nothing when the key is absent or has no "=".
    std::optional<std::u16string> Value(std::u16string_view section, std::u16string_view key) const;
    std::vector<std::u16string> SectionNames() const;
    std::vector<std::u16string> KeyNames(std::u16string_view section) const;

    // Replaces the value in place, keeping the key's spelling; a new key follows the last one of its section,
    // a new section the last line. Leading blanks of the value are lost.
    void Set(std::u16string_view section, std::u16string_view key, std::u16string_view value);
    // Both do nothing when there is none of that name.
    void RemoveKey(std::u16string_view section, std::u16string_view key);
    void RemoveSection(std::u16string_view section);

  private:
    enum class Encoding { Ansi, Utf8Mark, Utf16 };

    struct Line {
        std::u16string text;
        std::u16string end;  // what ended it in the file; empty for a last line without one
    };

    // Lines of a section without its header; an absent section is empty and starts at npos.
    struct Range {
        size_t begin;
        size_t end;
    };

    void SplitLines(std::u16string_view text);
    Range FindSection(std::u16string_view section) const;
    size_t FindKey(const Range& range, std::u16string_view key) const;
    void InsertLine(size_t position, std::u16string text);

    Encoding encoding_ = Encoding::Ansi;
    std::vector<Line> lines_;
};

}  // namespace machine
