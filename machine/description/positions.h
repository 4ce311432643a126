// Where in the text of a description its values stand.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace machine::description {

struct Position {
    size_t line;  // from 1, as the column, which counts bytes
    size_t column;
};

class Lines {
  public:
    explicit Lines(const std::string& text);
    Position Of(size_t offset) const;

  private:
    std::vector<size_t> starts_;  // offsets
};

// The offset of each value by its place, as Node names places: that of its key, or of an entry of a list. Of
// keys that stand twice, the last. Of text that is not JSON, or nested too deep, as far as it is.
std::unordered_map<std::string, size_t> OffsetsByPlace(const std::string& text);

}  // namespace machine::description
