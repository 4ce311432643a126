#include "base/guid.h"

#include <cstdio>

#include "base/hexadecimal.h"

std::string GuidText(const GUID& guid) {
    char text[40];
    std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

std::optional<Guid> GuidFromText(std::string_view text) {
    if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
    if (text.size() != 36) return std::nullopt;
    std::string digits;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool dash = at == 8 || at == 13 || at == 18 || at == 23;
        if (dash != (text[at] == '-')) return std::nullopt;
        if (!dash) digits += text[at];
    }
    if (!AreHexDigits(digits)) return std::nullopt;
    const auto number = [&](size_t from, size_t count) {
        return std::stoul(digits.substr(from, count), nullptr, 16);
    };
    Guid guid;
    guid.Data1 = static_cast<decltype(guid.Data1)>(number(0, 8));
    guid.Data2 = static_cast<decltype(guid.Data2)>(number(8, 4));
    guid.Data3 = static_cast<decltype(guid.Data3)>(number(12, 4));
    for (size_t at = 0; at < 8; ++at)
        guid.Data4[at] = static_cast<BYTE>(number(16 + 2 * at, 2));
    return guid;
}
