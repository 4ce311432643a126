#include "machine/api/text/ansi_code_page.h"

#include <algorithm>
#include <iterator>

namespace machine {

namespace {

// Bytes 0x80 to 0x9F; all others, and the five unassigned ones, are the character of the same number.
constexpr WCHAR upperControls[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                   0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr WCHAR firstOfTable = 0x80;

WCHAR FromByte(unsigned char byte) {
    const size_t index = byte - size_t{firstOfTable};
    return byte >= firstOfTable && index < std::size(upperControls) ? upperControls[index] : byte;
}

char ToByte(WCHAR unit) {
    const auto found = std::find(std::begin(upperControls), std::end(upperControls), unit);
    if (found != std::end(upperControls))
        return static_cast<char>(firstOfTable + (found - std::begin(upperControls)));
    const bool own = unit < firstOfTable || (unit >= 0xA0 && unit <= 0xFF);
    return own ? static_cast<char>(unit) : '?';
}

}  // namespace

WideString FromAnsi(std::string_view bytes) {
    WideString text;
    std::transform(bytes.begin(), bytes.end(), std::back_inserter(text),
                   [](char byte) { return FromByte(static_cast<unsigned char>(byte)); });
    return text;
}

std::string ToAnsi(WideView text) {
    std::string bytes;
    std::transform(text.begin(), text.end(), std::back_inserter(bytes), ToByte);
    return bytes;
}

}  // namespace machine
