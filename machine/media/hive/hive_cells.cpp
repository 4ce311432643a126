#include "machine/media/hive/hive_cells.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "machine/media/device/little_endian.h"
#include "machine/media/hive/hive_layout.h"

namespace machine {

namespace {

constexpr size_t binHeader = 32;
constexpr size_t cellUnit = 8;  // cells begin, and end, at multiples of it

bool IsBin(const std::string& hive, size_t at) {
    return hive.compare(at, 4, "hbin") == 0 && Le32(hive, at + 4) == at - hiveBins;
}

// The end of the bin: from the header if that is sound, otherwise where the next sound header is.
size_t EndOfBin(const std::string& hive, size_t at, size_t end) {
    if (const uint32_t size = Le32(hive, at + 8);
        IsBin(hive, at) && size != 0 && size % hivePage == 0 && size <= end - at)
        return at + size;
    size_t next = at + hivePage;
    while (next < end && !IsBin(hive, next))
        next += hivePage;
    return next;
}

// The length of the cell, negative in the hive if it is used; 0 if it is impossible.
size_t LengthOfCell(const std::string& hive, size_t at, size_t end) {
    const auto length = static_cast<size_t>(std::abs(int64_t{static_cast<int32_t>(Le32(hive, at))}));
    return length % cellUnit == 0 && length <= end - at ? length : 0;
}

void MendBin(std::string& hive, size_t at, size_t end) {
    // Whether the cells from a place on, one after the other, reach the end of the bin.
    std::vector<bool> fits((end - at) / cellUnit + 1);
    const auto fitsFrom = [&](size_t place) { return fits[(place - at) / cellUnit]; };
    fits.back() = true;
    for (size_t place = end - cellUnit; place > at; place -= cellUnit) {
        const size_t length = LengthOfCell(hive, place, end);
        fits[(place - at) / cellUnit] = length != 0 && fitsFrom(place + length);
    }
    size_t next = at;  // where the cell behind the damage begins
    for (size_t cell = at + binHeader; !fitsFrom(cell);) {
        while (next <= cell || !fitsFrom(next))
            next += cellUnit;
        size_t length = LengthOfCell(hive, cell, end);
        if (length == 0 || cell + length > next) {
            length = next - cell;
            PutLe32(hive, cell, 0 - static_cast<uint32_t>(length));
        }
        cell += length;
    }
}

}  // namespace

void MendCells(std::string& hive) {
    const size_t end = hiveBins + size_t{Le32(hive, hiveBinsSize)};
    if (end > hive.size() || end % hivePage != 0) return;
    for (size_t bin = hiveBins; bin < end;) {
        const size_t next = EndOfBin(hive, bin, end);
        hive.replace(bin, 4, "hbin");
        PutLe32(hive, bin + 4, static_cast<uint32_t>(bin - hiveBins));
        PutLe32(hive, bin + 8, static_cast<uint32_t>(next - bin));
        MendBin(hive, bin, next);
        bin = next;
    }
}

}  // namespace machine
