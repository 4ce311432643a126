#include "base/nearest.h"

#include <algorithm>
#include <numeric>

#include "base/text_case.h"

namespace {

// The Levenshtein distance, computed with one row of the table at a time.
size_t Distance(std::string_view left, std::string_view right) {
    std::vector<size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t down = 1; down <= left.size(); ++down) {
        size_t diagonal = row[0];
        row[0] = down;
        for (size_t across = 1; across <= right.size(); ++across) {
            const size_t changed = diagonal + (left[down - 1] == right[across - 1] ? 0 : 1);
            diagonal = row[across];
            row[across] = std::min({row[across] + 1, row[across - 1] + 1, changed});
        }
    }
    return row.back();
}

}  // namespace

std::string Nearest(std::string_view word, const std::vector<std::string>& words) {
    const std::string wanted = UpperCase(word);
    std::string nearest;
    size_t least = (wanted.size() + 2) / 3;
    for (const std::string& candidate : words) {
        // The distance is at least the difference in length; a word can be as long as a file.
        if (wanted.size() > candidate.size() + least) continue;
        const size_t distance = Distance(wanted, UpperCase(candidate));
        if (distance < least || (distance == least && nearest.empty())) {
            least = distance;
            nearest = candidate;
        }
    }
    if (!nearest.empty() || wanted.size() < 4) return nearest;
    const auto containing = std::find_if(words.begin(), words.end(), [&](const std::string& candidate) {
        return UpperCase(candidate).find(wanted) != std::string::npos;
    });
    return containing != words.end() ? *containing : std::string();
}
