#include "tests/sweep/engine/tally.h"

#include <istream>
#include <ostream>
#include <sstream>

#include "tests/sweep/engine/fields.h"

namespace sweep {

namespace {

void Add(OperationTally& to, const OperationTally& from) {
    to.machines += from.machines;
    to.calls += from.calls;
    to.faults += from.faults;
    to.runs += from.runs;
    to.breaches += from.breaches;
}

void Add(Found& to, const Found& from) {
    // The shortest one is the easiest to follow, and the same in every run.
    const bool better = to.times == 0 || from.example.size() < to.example.size() ||
                        (from.example.size() == to.example.size() && from.example < to.example);
    if (better) to.example = from.example;
    to.times += from.times;
}

}  // namespace

void Tally::Add(const Finding& finding, const std::string& example) {
    sweep::Add(found_[finding.table][finding.row], {1, example});
}

void Tally::Add(const Tally& other) {
    for (const auto& [name, operation] : other.operations_)
        sweep::Add(operations_[name], operation);
    for (const auto& [table, rows] : other.found_) {
        for (const auto& [row, found] : rows)
            sweep::Add(found_[table][row], found);
    }
}

const std::map<Row, Found>& Tally::Rows(Table table) const {
    static const std::map<Row, Found> none;
    const auto rows = found_.find(table);
    return rows != found_.end() ? rows->second : none;
}

OperationTally Tally::Total() const {
    OperationTally total;
    for (const auto& [name, operation] : operations_)
        sweep::Add(total, operation);
    return total;
}

void Tally::Write(std::ostream& out) const {
    for (const auto& [name, of] : operations_) {
        out << "operation\t" << name << '\t' << of.machines << ' ' << of.calls << ' ' << of.faults << ' '
            << of.runs << ' ' << of.breaches << '\n';
    }
    for (const auto& [table, rows] : found_) {
        for (const auto& [row, found] : rows)
            out << static_cast<int>(table) << '\t' << found.times << '\t' << found.example << '\t'
                << Joined(row) << '\n';
    }
}

void Tally::AddWritten(std::istream& in) {
    for (std::string line; std::getline(in, line);) {
        Row fields = Split(line);
        if (fields[0] == "operation") {
            OperationTally of;
            std::istringstream(fields[2]) >> of.machines >> of.calls >> of.faults >> of.runs >> of.breaches;
            sweep::Add(operations_[fields[1]], of);
            continue;
        }
        const auto table = static_cast<Table>(std::stoi(fields[0]));
        const Found found{std::stoull(fields[1]), fields[2]};
        fields.erase(fields.begin(), fields.begin() + 3);
        sweep::Add(found_[table][fields], found);
    }
}

}  // namespace sweep
