#include "tests/sweep/engine/report.h"

#include <cstdio>

namespace sweep {

namespace {

template <typename... Cells>
std::string Formatted(const char* format, Cells... cells) {
    char line[256];
    std::snprintf(line, sizeof line, format, cells...);
    return line;
}

std::string Line(const std::string& name, const OperationTally& of) {
    return Formatted("%-34s %6llu %8llu %9llu %9llu %9llu\n", name.c_str(),
                     static_cast<unsigned long long>(of.machines), static_cast<unsigned long long>(of.calls),
                     static_cast<unsigned long long>(of.faults), static_cast<unsigned long long>(of.runs),
                     static_cast<unsigned long long>(of.breaches));
}

}  // namespace

std::string Report(const Tally& tally) {
    std::string text =
        Formatted("%-34s %6s %8s %9s %9s %9s\n", "operation", "PCs", "calls", "faults", "runs", "breaches");
    for (const auto& [name, of] : tally.Operations())
        text += Line(name, of);
    return text + Line("all", tally.Total());
}

}  // namespace sweep
