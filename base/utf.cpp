#include "base/utf.h"

#include <codecvt>
#include <locale>

namespace {

using Converter = std::wstring_convert<std::codecvt_utf8_utf16<WCHAR>, WCHAR>;

Converter MakeConverter() {
    // The converter reports no error for a text that ends in the middle of a character: it converts fewer
    // units.
    return Converter("?", WideString(1, TEXT('?')));
}

}  // namespace

WideString ToWide(std::string_view text) {
    Converter converter = MakeConverter();
    const auto wide = converter.from_bytes(text.data(), text.data() + text.size());
    return converter.converted() == text.size() ? wide : TEXT("?");
}

std::string ToUtf8(WideView text) {
    Converter converter = MakeConverter();
    const std::string bytes = converter.to_bytes(text.data(), text.data() + text.size());
    return converter.converted() == text.size() ? bytes : "?";
}

std::string ToUtf8(const WCHAR* text) {
    return text != nullptr ? ToUtf8(WideView(text)) : std::string();
}
