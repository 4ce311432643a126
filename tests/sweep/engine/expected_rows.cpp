#include "tests/sweep/engine/expected_rows.h"

#include <algorithm>
#include <stdexcept>

#include "tests/sweep/engine/fields.h"

namespace sweep {

namespace {

constexpr size_t fieldsOfRow = 3;

// The depths of the outline, and the fields that a line of each has, with the empty ones that indent it.
constexpr size_t reason = 0;
constexpr size_t effect = 1;
constexpr size_t cause = 2;
constexpr size_t fieldsAt[] = {1, 4, 4};

[[noreturn]] void Refuse(const std::string& path, const TableLine& line, const std::string& why) {
    throw std::runtime_error(path + ":" + std::to_string(line.number) + ": " + why);
}

size_t DepthOf(const Row& fields) {
    const auto text = std::ranges::find_if(fields, [](const std::string& field) { return !field.empty(); });
    return static_cast<size_t>(text - fields.begin());
}

// Why a line of that depth cannot follow; null if it can.
const char* WrongAfter(size_t before, size_t depth) {
    if (depth == cause && before == reason) return "nothing is broken";
    if (depth == reason && before != cause) return "nothing leads to what is above";
    return nullptr;
}

}  // namespace

std::vector<ExpectedRow> ReadRows(const std::string& path, const std::vector<TableLine>& lines) {
    std::vector<ExpectedRow> rows;
    for (const TableLine& line : lines) {
        rows.push_back({Split(line.text), line.number});
        const size_t fields = rows.back().fields.size();
        if (fields != fieldsOfRow) Refuse(path, line, std::to_string(fields) + " fields");
    }
    return rows;
}

std::vector<ExpectedRow> ReadOutline(const std::string& path, const std::vector<TableLine>& lines) {
    std::vector<ExpectedRow> rows;
    std::vector<Row> effects;
    size_t before = cause;
    for (const TableLine& line : lines) {
        const Row fields = Split(line.text);
        const size_t depth = DepthOf(fields);
        if (depth > cause || fields.size() != fieldsAt[depth])
            Refuse(path, line, std::to_string(fields.size()) + " fields");
        if (depth != reason && line.number == lines.front().number) Refuse(path, line, "no reason");
        if (const char* const why = WrongAfter(before, depth)) Refuse(path, line, why);
        if (depth == effect) {
            if (before != effect) effects.clear();
            effects.push_back(fields);
        }
        if (depth == cause) {
            for (const Row& what : effects)
                rows.push_back({{what[1], what[2], fields[2], fields[3], what[3]}, line.number});
        }
        before = depth;
    }
    if (before != cause) Refuse(path, lines.back(), "nothing leads there");
    return rows;
}

}  // namespace sweep
