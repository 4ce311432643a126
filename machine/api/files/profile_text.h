// Initialisation files as text: sections in brackets, a "key=value" a line. Looking up follows the platform's
// rules; changing leaves every other line as it is.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf.h"

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
    std::optional<WideString> Value(WideView section, WideView key) const;
    std::vector<WideString> SectionNames() const;
    std::vector<WideString> KeyNames(WideView section) const;

    // Replaces the value in place, keeping the key's spelling; a new key follows the last one of its section,
    // a new section the last line. Leading blanks of the value are lost.
    void Set(WideView section, WideView key, WideView value);
    // Both do nothing when there is none of that name.
    void RemoveKey(WideView section, WideView key);
    void RemoveSection(WideView section);

  private:
    enum class Encoding { Ansi, Utf8Mark, Utf16 };

    struct Line {
        WideString text;
        WideString end;  // what ended it in the file; empty for a last line without one
    };

    // Lines of a section without its header; an absent section is empty and starts at npos.
    struct Range {
        size_t begin;
        size_t end;
    };

    void SplitLines(WideView text);
    Range FindSection(WideView section) const;
    size_t FindKey(const Range& range, WideView key) const;
    void InsertLine(size_t position, WideString text);

    Encoding encoding_ = Encoding::Ansi;
    std::vector<Line> lines_;
};

}  // namespace machine
