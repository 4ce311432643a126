#include "machine/api/call/call.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace machine {

std::string Hex(uint64_t value) {
    constexpr size_t fewest = 8;
    std::array<char, 2 * sizeof value> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
    const std::string_view shown(digits.data(), static_cast<size_t>(end - digits.data()));
    std::string text = "0x";
    text.append(fewest - std::min(fewest, shown.size()), '0') += shown;
    return text;
}

std::string Presence(const void* pointer) {
    return pointer != nullptr ? "given" : "null";
}

std::string TextOrNull(const WCHAR* text) {
    return text != nullptr ? ToUtf8(text) : "null";
}

}  // namespace machine
