// How many columns of a terminal a text takes: two for a wide character of East Asia, none for a combining
// mark. A build without libutf8proc counts characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Of UTF-8 without control characters.
size_t DisplayWidth(std::string_view text);

// The text, or its beginning and "…" if it takes more columns than that.
std::string CutToWidth(const std::string& text, size_t columns);

// The text; of a long one what stands around the first place at which the other differs from it.
std::string CutAroundDifference(const std::string& text, const std::string& other);

// The licence of the library that is linked for it; null without one.
const char* DisplayWidthLicence();

// Of one character. What differs between the builds.
size_t CharacterWidth(char32_t character);
