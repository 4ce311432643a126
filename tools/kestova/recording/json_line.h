// Lines of JSON in a file that anybody can have written. What is done with one needs memory and time in
// proportion to its length.
#pragma once

#include <cstddef>
#include <istream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

// More than this is no line of a recording or a survey.
inline constexpr size_t longestLine = size_t{64} << 20;

// The value; a discarded one for text that is no JSON, is longer than the longest line, is nested deeper, or
// has more values or more keys in an object than anything that this program writes.
nlohmann::ordered_json ParsedLine(std::string_view text);

enum class LineEnd { Whole, TornOff, TooLong };

// The next line, without its line feed; torn off if the file ends before that, or empty behind the last one.
LineEnd ReadLine(std::istream& lines, std::string& line);
