// make_system_call_filters: writes the source with the filter of each kind of work to standard output.

#include <cstdio>
#include <exception>
#include <set>

#include "tools/kestova/filters/filter_program.h"

namespace {

// Those of every work there can be, and those of the start.
std::set<KeptRows> SetsOfRows() {
    std::set<KeptRows> sets = {RowsAtStart()};
    for (const bool writesImages : {false, true})
        for (const bool writesDisks : {false, true})
            for (const bool saves : {false, true})
                for (const uint64_t imageBytes : {uint64_t{0}, uint64_t{1}})
                    sets.insert(RowsOf({.writesImages = writesImages,
                                        .writesDisks = writesDisks,
                                        .saves = saves,
                                        .imageBytes = imageBytes}));
    return sets;
}

void WriteFilter(KeptRows rows) {
    std::vector<AllowedCall> calls;
    ForEachRow(rows, [&](const Kept& row) { calls.insert(calls.end(), row.calls.begin(), row.calls.end()); });
    std::printf("constexpr sock_filter rows%u[] = {", rows);
    for (const sock_filter& one : FilterProgram(calls))
        std::printf("\n    {%u, %u, %u, %u},", one.code, one.jt, one.jf, one.k);
    std::printf("\n};\n");
}

void WriteSource() {
    const std::set<KeptRows> sets = SetsOfRows();
    std::printf("#include \"tools/kestova/process/system_calls.h\"\n\nnamespace {\n\n");
    for (const KeptRows rows : sets)
        WriteFilter(rows);
    std::printf(
        "\n}  // namespace\n\nstd::span<const sock_filter> SystemCallFilter(KeptRows rows) {\n"
        "    switch (rows) {\n");
    for (const KeptRows rows : sets)
        std::printf("        case %u:\n            return rows%u;\n", rows, rows);
    std::printf("        default:\n            return {};\n    }\n}\n");
}

}  // namespace

int main() {
    try {
        WriteSource();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make_system_call_filters: %s\n", failure.what());
        return 1;
    }
}
