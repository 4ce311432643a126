#include "tools/kestova/descriptions/comparison.h"

#include "machine/facts/seen.h"
#include "tools/kestova/pc/described_pc.h"

ComparisonReport ComparePcs(const std::string& left, const std::string& right, Compared compared) {
    const auto read = [&](const std::string& name) {
        machine::Pc pc = DescribedPc(name, "compare");
        return compared == Compared::Seen ? machine::Seen(std::move(pc)) : pc;
    };
    const auto order =
        compared == Compared::Seen ? machine::ListOrder::Compared : machine::ListOrder::Ignored;
    return {left, right, machine::Compare(read(left), read(right), order)};
}
