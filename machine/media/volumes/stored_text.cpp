#include "machine/media/volumes/stored_text.h"

#include <algorithm>

#include "base/utf.h"
#include "machine/media/device/little_endian.h"

namespace machine {

namespace {

std::string FromUtf16(std::string_view bytes, uint16_t (*unit)(std::string_view bytes, size_t at)) {
    std::u16string text;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2)
        text += static_cast<char16_t>(unit(bytes, at));
    return ToUtf8(text);
}

}  // namespace

std::string FromUtf16Le(std::string_view bytes) {
    return FromUtf16(bytes, Le16);
}

std::string FromUtf16Be(std::string_view bytes) {
    return FromUtf16(bytes, Be16);
}

std::string WithoutPadding(std::string text) {
    text.erase(std::min(text.find('\0'), text.size()));
    text.erase(text.find_last_not_of(" \t\n\v\f\r") + 1);
    return text;
}

}  // namespace machine
