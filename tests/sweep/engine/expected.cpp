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

const char* NameOf(Table table) {
    switch (table) {
        case Table::Breaches:
            return "breaches.tsv";
        case Table::ClosingRecords:
            return "closing_records.tsv";
        case Table::UnnamedCalls:
            return "unnamed_calls.tsv";
    }
    return "";
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

// A breach as the outline has it, with its example in place of a reason.
std::string Outlined(const Row& breach, const Found& found) {
    return "? " + found.example + "\n\t" + Joined({breach[0], breach[1], breach[4]}) + "\n\t\t" +
           Joined({breach[2], breach[3]}) + "\n";
}

}  // namespace

Expected::Expected(const std::string& folder) {
    for (const Table table : allTables) {
        const bool isOutline = table == Table::Breaches;
        File& file = files_[table];
        file.path = folder + "/" + NameOf(table);
        std::ifstream in(file.path);
        if (!in) throw std::runtime_error(file.path + ": cannot be read");
        std::vector<TableLine> lines;
        size_t number = 0;
        for (std::string text; std::getline(in, text);) {
            ++number;
            const bool isComment = text.starts_with('#');
            if (isComment || isOutline) file.kept += text + "\n";
            if (!isComment) lines.push_back({text, number});
        }
        file.rows = isOutline ? ReadOutline(file.path, lines) : ReadRows(file.path, lines);
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
        std::ofstream out(file.path);
        out << file.kept;
        for (const auto& [row, found] : tally.Rows(table)) {
            const bool known = std::ranges::any_of(file.rows, [&row = row](const ExpectedRow& expected) {
                return Seen().Add(expected.fields, row);
            });
            if (table != Table::Breaches) {
                out << Joined(row) << '\n';
            } else if (!known) {
                out << Outlined(row, found);
            }
        }
    }
}

}  // namespace sweep
