#include "tools/kestova/conformance/expected_differences.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/input_file.h"

namespace {

constexpr size_t largestList = size_t{1} << 20;
constexpr char separator = '\t';

ExpectedDifference ReadRow(const std::string& line, const std::string& place) {
    const size_t first = line.find(separator);
    const size_t second = first == std::string::npos ? first : line.find(separator, first + 1);
    if (second == std::string::npos || second + 1 == line.size())
        throw WrongUse(place + ": a call, its arguments and a reason are wanted, with a tab between them");
    return {Pattern(line.substr(0, first)), Pattern(line.substr(first + 1, second - first - 1)),
            line.substr(second + 1), place};
}

}  // namespace

// From the last "*" on, each start is tried in turn.
bool Pattern::Matches(std::string_view text) const {
    size_t at = 0;
    size_t own = 0;
    size_t star = std::string::npos;
    size_t begin = 0;
    while (at < text.size()) {
        if (own < text_.size() && text_[own] == '*') {
            star = own++;
            begin = at;
        } else if (own < text_.size() && text_[own] == text[at]) {
            ++own;
            ++at;
        } else if (star != std::string::npos) {
            own = star + 1;
            at = ++begin;
        } else {
            return false;
        }
    }
    return text_.find_first_not_of('*', own) == std::string::npos;
}

ExpectedDifferences ReadExpectedDifferences(const std::string& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) throw WrongUse(file + ": there is no such file");
    std::ifstream opened = OpenInput(file);
    if (!opened) throw WrongUse(file + ": cannot be read");
    const std::string text = ReadUpTo(opened, largestList);
    if (text.size() > largestList) throw WrongUse(file + ": larger than 1 MiB, so no list of differences");
    std::istringstream lines(text);
    ExpectedDifferences expected;
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string place = file + ":" + std::to_string(++number);
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty() || line.starts_with('#')) continue;
        expected.rows.push_back(ReadRow(line, place));
    }
    return expected;
}
