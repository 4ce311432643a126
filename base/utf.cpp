#include "base/utf.h"

#include <algorithm>
#include <codecvt>
#include <locale>

namespace {

using Converter = std::wstring_convert<std::codecvt_utf8_utf16<WCHAR>, WCHAR>;

Converter MakeConverter() {
    // The converter reports no error for a text that ends in the middle of a character: it converts fewer
    // units.
    return Converter("?", WideString(1, TEXT('?')));
}

// Whether each character is one unit, the same in both. Nearly all texts are like that, and the converter
// takes many times as long.
template <typename Text>
bool IsAscii(Text text) {
    return std::all_of(text.begin(), text.end(), [](auto unit) { return (unit & ~0x7F) == 0; });
}

template <typename To, typename From>
To Resized(From text) {
    To resized(text.size(), typename To::value_type());
    std::transform(text.begin(), text.end(), resized.begin(),
                   [](auto unit) { return static_cast<typename To::value_type>(unit); });
    return resized;
}

}  // namespace

WideString ToWide(std::string_view text) {
    if (IsAscii(text)) return Resized<WideString>(text);
    Converter converter = MakeConverter();
    const auto wide = converter.from_bytes(text.data(), text.data() + text.size());
    return converter.converted() == text.size() ? wide : TEXT("?");
}

std::string ToUtf8(WideView text) {
    if (IsAscii(text)) return Resized<std::string>(text);
    Converter converter = MakeConverter();
    const std::string bytes = converter.to_bytes(text.data(), text.data() + text.size());
    return converter.converted() == text.size() ? bytes : "?";
}

std::string ToUtf8(const WCHAR* text) {
    return text != nullptr ? ToUtf8(WideView(text)) : std::string();
}
