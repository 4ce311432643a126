#include "tools/kestova/recording/values.h"

#include <charconv>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "base/utf.h"

namespace recording {

namespace {

constexpr int codeDigits = 8;

const std::string& StringFrom(const Json& value) {
    if (!value.is_string()) throw DamagedRecording("a value is no text");
    return value.get_ref<const std::string&>();
}

uint32_t HexFrom(std::string_view digits) {
    uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number, 16);
    if (digits.empty() || error != std::errc() || rest != end)
        throw DamagedRecording("a value is no hexadecimal number");
    return number;
}

}  // namespace

Json AsJson(LPCWSTR text) {
    if (text == nullptr) return nullptr;
    const WideString units(text);
    std::string utf8 = ToUtf8(units);
    if (ToWide(utf8) == units) return utf8;
    Json numbers = Json::array();
    for (const WCHAR unit : units)
        numbers.push_back(static_cast<uint16_t>(unit));
    return numbers;
}

Json AsJson(const GUID& guid) {
    return GuidText(guid);
}

Json BytesAsJson(const void* bytes, size_t size) {
    const auto* const byte = static_cast<const unsigned char*>(bytes);
    std::string digits;
    for (size_t i = 0; i < size; ++i) {
        constexpr std::string_view all = "0123456789abcdef";
        digits += {all[byte[i] >> 4], all[byte[i] & 0xF]};
    }
    return digits;
}

Json CodeAsJson(uint32_t code) {
    return Hex(code, codeDigits);
}

const Json& At(const Json& values, const char* name) {
    const auto found = values.find(name);
    if (found == values.end()) throw DamagedRecording(std::string("there is no \"") + name + "\"");
    return *found;
}

WideString TextFrom(const Json& value) {
    if (!value.is_array()) return ToWide(StringFrom(value));
    WideString units;
    for (const Json& unit : value)
        units += static_cast<WCHAR>(NumberFrom<uint16_t>(unit));
    return units;
}

GUID GuidFrom(const Json& value) {
    const auto guid = GuidFromText(StringFrom(value));
    if (!guid) throw DamagedRecording("a value is no GUID");
    return *guid;
}

std::string BytesFrom(const Json& value) {
    const std::string& digits = StringFrom(value);
    if (digits.size() % 2 != 0) throw DamagedRecording("bytes end in the middle of one");
    std::string bytes;
    for (size_t i = 0; i < digits.size(); i += 2)
        bytes += static_cast<char>(HexFrom(std::string_view(digits).substr(i, 2)));
    return bytes;
}

uint32_t CodeFrom(const Json& value) {
    const std::string& text = StringFrom(value);
    if (!text.starts_with("0x")) throw DamagedRecording("a value is no code");
    return HexFrom(std::string_view(text).substr(2));
}

}  // namespace recording
