#include "machine/core/utf.h"

#include <codecvt>
#include <locale>

namespace machine {

namespace {

using Converter = std::wstring_convert<std::codecvt_utf8_utf16<WCHAR>, WCHAR>;

Converter MakeConverter() {
    return Converter("?", std::basic_string<WCHAR>(1, TEXT('?')));
}

}  // namespace

std::basic_string<WCHAR> ToWide(std::string_view text) {
    return MakeConverter().from_bytes(text.data(), text.data() + text.size());
}

std::string ToUtf8(std::basic_string_view<WCHAR> text) {
    return MakeConverter().to_bytes(text.data(), text.data() + text.size());
}

std::string ToUtf8(const WCHAR* text) {
    return text != nullptr ? ToUtf8(std::basic_string_view<WCHAR>(text)) : std::string();
}

}  // namespace machine
