// Where in the text of a description its values stand.
#pragma once

#include <cstddef>
#include <set>
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

// The offsets of values by their places, as Node names them: that of the key, or of an entry of a list; those
// of the wanted places, and of what holds them and stands beside them. Of keys that stand twice, the last. Of
// text that is not JSON, or more than a description can be, as far as it is.
std::unordered_map<std::string, size_t> OffsetsByPlace(const std::string& text,
                                                       const std::set<std::string>& wanted);

}  // namespace machine::description
