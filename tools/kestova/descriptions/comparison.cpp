#include "tools/kestova/descriptions/comparison.h"

#include "tools/kestova/pc/described_pc.h"

ComparisonReport ComparePcs(const std::string& left, const std::string& right) {
    return {left, right, machine::Compare(DescribedPc(left, "compare"), DescribedPc(right, "compare"))};
}
