// Initialisation files as text: sections in brackets, one "key=value" per line. Lookups follow the
// platform's rules; changes leave all other lines untouched.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf.h"

namespace machine {

// Names of sections and keys are compared without regard to case or surrounding blanks. Lines that start
// with ";" are comments. Where a section or key occurs more than once, the first one counts.
class ProfileText {
  public:
    // `bytes` is the content of a file: UTF-16 after a byte order mark, otherwise the ANSI code page
    // (1252). A UTF-8 mark is ordinary text, and so spoils a section header after it, unless it is to be
    // skipped.
    explicit ProfileText(std::string_view bytes, bool skipUtf8Mark = false);

    // In the encoding that was read; a character missing from the ANSI code page becomes "?".
    std::string Bytes() const;

    // The value without surrounding blanks and one pair of quotes. Nothing if the key is absent or has no
    // "=".
    std::optional<WideString> Value(WideView section, WideView key) const;
    std::vector<WideString> SectionNames() const;
    std::vector<WideString> KeyNames(WideView section) const;

    // Replaces the value in place and keeps the key's spelling. A new key goes after the last one of its
    // section, a new section after the last line. Leading blanks of the value are lost.
    void Set(WideView section, WideView key, WideView value);
    // Both do nothing if the name does not exist.
    void RemoveKey(WideView section, WideView key);
    void RemoveSection(WideView section);

  private:
    enum class Encoding { Ansi, Utf8Mark, Utf16 };

    enum class LineKind { Header, Key, Other };

    struct Line {
        Line(WideString newText, WideString newEnd);
        void SetText(WideString newText);

        WideString text;
        WideString end;  // its line ending in the file; empty for an unterminated last line
        LineKind kind = LineKind::Other;
        WideString name;  // of the section or key, as it is compared
    };

    // The lines of a section without its header. An absent section is empty and starts at npos.
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
