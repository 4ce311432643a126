#include "machine/media/table/table_check.h"

#include <algorithm>

namespace machine {

namespace {

using Problems = std::vector<std::string>;

void CheckPlace(const TableLayout& layout, const Region& region, Problems& problems) {
    if (region.size == 0) {
        problems.push_back(region.name + " has no length; the partition table is damaged");
    } else if (!IsWithin(region, {"", 0, layout.diskSize})) {
        problems.push_back(region.name + " ends " +
                           std::to_string(region.offset + region.size - layout.diskSize) +
                           " bytes beyond the end of the file; the image is truncated, or its table damaged");
    } else if (!IsWithin(region, layout.space)) {
        problems.push_back(region.name + " lies on the partition table");
    }
}

void CheckApart(std::vector<Region> regions, Problems& problems) {
    std::sort(regions.begin(), regions.end(),
              [](const Region& left, const Region& right) { return left.offset < right.offset; });
    for (size_t i = 1; i < regions.size(); ++i) {
        const Region& before = regions[i - 1];
        if (before.offset + before.size > regions[i].offset)
            problems.push_back(before.name + " and " + regions[i].name + " overlap");
    }
}

}  // namespace

std::vector<std::string> LayoutProblems(const TableLayout& layout) {
    Problems problems;
    std::vector<Region> outer = layout.primaries;
    outer.insert(outer.end(), layout.extended.begin(), layout.extended.end());
    for (const Region& region : outer)
        CheckPlace(layout, region, problems);
    for (const Region& logical : layout.logicals) {
        CheckPlace(layout, logical, problems);
        const bool isHeld = std::any_of(layout.extended.begin(), layout.extended.end(),
                                        [&](const Region& extended) { return IsWithin(logical, extended); });
        if (!isHeld) problems.push_back(logical.name + " is logical and leaves the extended partition");
    }
    CheckApart(outer, problems);
    CheckApart(layout.logicals, problems);
    return problems;
}

}  // namespace machine
