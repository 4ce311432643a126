#include "tests/sweep/engine/expected.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tests/sweep/engine/fields.h"

namespace sweep {

namespace {

constexpr const char* anyText = "*";

struct Layout {
    const char* file;
    size_t fields;
    bool hasReason;
};

Layout LayoutOf(Table table) {
    switch (table) {
        case Table::Breaches:
            return {"breaches.tsv", 5, true};
        case Table::ClosingRecords:
            return {"closing_records.tsv", 3, false};
        case Table::UnnamedCalls:
            return {"unnamed_calls.tsv", 3, false};
    }
    return {};
}

// The position of the text among the alternatives of a field; none if it is not among them.
std::optional<size_t> AlternativeOf(const std::string& text, const std::string& field) {
    if (field == anyText) return 0;
    std::istringstream alternatives(field);
    size_t position = 0;
    for (std::string alternative; std::getline(alternatives, alternative, '|'); ++position) {
        if (alternative == text) return position;
    }
    return std::nullopt;
}

size_t CountAlternatives(const std::string& field) {
    return static_cast<size_t>(std::count(field.begin(), field.end(), '|')) + 1;
}

// Which rows that a row of a table stands for have been found: one for each combination of its alternatives.
class Seen {
  public:
    // Whether the found row is one of those that the pattern stands for.
    bool Add(const Row& pattern, const Row& found) {
        std::vector<size_t> positions;
        for (size_t at = 0; at < pattern.size(); ++at) {
            const std::optional<size_t> position = AlternativeOf(found[at], pattern[at]);
            if (!position) return false;
            positions.push_back(*position);
        }
        seen_.insert(positions);
        return true;
    }

    bool IsWhole(const Row& pattern) const {
        size_t combinations = 1;
        for (const std::string& field : pattern)
            combinations *= CountAlternatives(field);
        return seen_.size() == combinations;
    }

  private:
    std::set<std::vector<size_t>> seen_;  // of each, the position of the alternative in every field
};

ExpectedRow ReadRow(const std::string& line, const Layout& layout, const std::string& place) {
    ExpectedRow row{Split(line), ""};
    if (row.fields.size() != layout.fields + (layout.hasReason ? 1 : 0))
        throw std::runtime_error(place + ": " + std::to_string(row.fields.size()) + " fields");
    if (layout.hasReason) {
        row.reason = row.fields.back();
        row.fields.pop_back();
        if (row.reason.empty()) throw std::runtime_error(place + ": no reason");
    }
    return row;
}

}  // namespace

Expected::Expected(const std::string& folder) {
    for (const Table table : allTables) {
        const Layout layout = LayoutOf(table);
        File& file = files_[table];
        file.path = folder + "/" + layout.file;
        std::ifstream in(file.path);
        if (!in) throw std::runtime_error(file.path + ": cannot be read");
        size_t number = 0;
        for (std::string line; std::getline(in, line);) {
            ++number;
            if (line.starts_with('#')) {
                file.head += line + "\n";
                continue;
            }
            file.rows.push_back(ReadRow(line, layout, file.path + ":" + std::to_string(number)));
            file.rows.back().line = number;
        }
    }
}

std::vector<std::string> Expected::Compare(const Tally& tally, bool whole) const {
    std::vector<std::string> differences;
    for (const auto& [table, file] : files_) {
        std::vector<Seen> seen(file.rows.size());
        for (const auto& [row, found] : tally.Rows(table)) {
            bool known = false;
            for (size_t at = 0; at < file.rows.size(); ++at)
                known = seen[at].Add(file.rows[at].fields, row) || known;
            if (!known)
                differences.push_back(file.path + " lacks: " + Joined(row) + "\n    " +
                                      std::to_string(found.times) + " times; " + found.example);
        }
        for (size_t at = 0; whole && at < file.rows.size(); ++at) {
            const ExpectedRow& row = file.rows[at];
            if (!seen[at].IsWhole(row.fields))
                differences.push_back(
                    file.path + ":" + std::to_string(row.line) +
                    ": does not occur any more, as a whole or in one combination of its alternatives: " +
                    Joined(row.fields));
        }
    }
    return differences;
}

void Expected::Record(const Tally& tally) const {
    for (const auto& [table, file] : files_) {
        std::set<std::string> lines;
        for (const auto& [row, found] : tally.Rows(table)) {
            std::string line = Joined(row);
            if (LayoutOf(table).hasReason) line += "\t? " + found.example;
            for (const ExpectedRow& expected : file.rows) {
                if (!Seen().Add(expected.fields, row)) continue;
                line = Joined(expected.fields);
                if (!expected.reason.empty()) line += "\t" + expected.reason;
                break;
            }
            lines.insert(line);
        }
        std::ofstream out(file.path);
        out << file.head;
        for (const std::string& line : lines)
            out << line << '\n';
    }
}

}  // namespace sweep
