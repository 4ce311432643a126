// Where in the text of a description its values stand.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

namespace machine::description {

struct Position {
    size_t line;  // from 1, as the column, which counts bytes
    size_t column;
};

Position PositionOf(const std::string& text, size_t offset);

// The offset of each value by its place, as Node names places: that of its key, or of an entry of a list. Of
// keys that stand twice, the last. Of text that is not JSON, or nested too deep, as far as it is.
std::unordered_map<std::string, size_t> OffsetsByPlace(const std::string& text);

}  // namespace machine::description
