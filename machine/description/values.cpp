#include "machine/description/values.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "base/hexadecimal.h"

namespace machine::description {

namespace {

struct Unit {
    const char* name;
    uint64_t bytes;
};

constexpr Unit units[] = {
    {"TiB", uint64_t{1} << 40}, {"GiB", uint64_t{1} << 30}, {"MiB", uint64_t{1} << 20}, {"KiB", 1024}};

// The whole of a decimal number, or of a hexadecimal one with 0x in front.
std::optional<uint64_t> NumberFromText(std::string_view text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) text.remove_prefix(2);
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, hex ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

uint64_t ReadByteCount(const Node& node) {
    const NumberRange range = {0, std::numeric_limits<uint64_t>::max()};
    if (!node.Value().is_string()) return ReadNumber(node, range);
    const std::string& text = node.Text();
    const size_t blank = text.find(' ');
    if (blank == std::string::npos) return ReadNumber(node, range);
    const auto unit = std::find_if(std::begin(units), std::end(units),
                                   [&](const Unit& row) { return text.substr(blank + 1) == row.name; });
    const std::optional<uint64_t> count = NumberFromText(text.substr(0, blank));
    if (!count || unit == std::end(units))
        node.Fail("\"" + text +
                  "\" is no size: write 1048576, \"0x100000\" or \"1 MiB\" (KiB, MiB, GiB, TiB)");
    if (*count > range.most / unit->bytes) node.Fail("\"" + text + "\" is too large");
    return *count * unit->bytes;
}

Json WriteByteCount(uint64_t bytes) {
    for (const Unit& unit : units) {
        if (bytes != 0 && bytes % unit.bytes == 0)
            return std::to_string(bytes / unit.bytes) + " " + unit.name;
    }
    return bytes;
}

std::string ReadLetters(const Node& node) {
    for (const char letter : node.Text()) {
        if (letter < 'A' || letter > 'Z')
            node.Fail("\"" + node.Text() + "\" must be upper-case letters from A to Z");
    }
    return node.Text();
}

std::string ReadDriveName(const Node& node) {
    const std::string& name = node.Text();
    const char letter = name.empty() ? '\0' : name[0];
    const bool isLetter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
    if (name.size() != 2 || !isLetter || name[1] != ':')
        node.Fail("\"" + name + "\" must be a letter from A to Z and a colon, like \"C:\"");
    return name;
}

Guid ReadGuid(const Node& node) {
    const std::optional<Guid> guid = GuidFromText(node.Text());
    if (!guid) node.Fail("\"" + node.Text() + "\" is no GUID like \"c12a7328-f81f-11d2-ba4b-00a0c93ec93b\"");
    return *guid;
}

std::string ReadHexBytes(const Node& node) {
    std::string digits = node.Text();
    std::erase(digits, ' ');
    const bool allHex = digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!allHex || digits.size() % 2 != 0)
        node.Fail("must be pairs of hexadecimal digits, like \"ff fe 41 00\"");
    std::string bytes;
    for (size_t at = 0; at < digits.size(); at += 2)
        bytes += static_cast<char>(*NumberFromText("0x" + digits.substr(at, 2)));
    return bytes;
}

Json WriteHexBytes(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

}  // namespace

Codec<std::string> Text() {
    return PlainCodec<std::string>([](const Node& node) { return node.Text(); },
                                   [](const std::string& text) { return Json(text); });
}

Codec<bool> Flag() {
    return PlainCodec<bool>(
        [](const Node& node) {
            if (!node.Value().is_boolean()) node.Fail("must be true or false");
            return node.Value().get<bool>();
        },
        [](bool flag) { return Json(flag); });
}

Codec<Guid> GuidValue() {
    return PlainCodec<Guid>(ReadGuid, [](const Guid& guid) { return Json(GuidText(guid)); });
}

Codec<std::string> Letters() {
    return PlainCodec<std::string>(ReadLetters, [](const std::string& letters) { return Json(letters); });
}

Codec<std::string> DriveName() {
    return PlainCodec<std::string>(ReadDriveName, [](const std::string& name) { return Json(name); });
}

Codec<uint64_t> ByteCount() {
    return PlainCodec<uint64_t>(ReadByteCount, WriteByteCount);
}

bool IsJsonText(const std::string& text) {
    try {
        Json(text).dump();
        return true;
    } catch (const Json::type_error&) {
        return false;
    }
}

Codec<std::string> HexBytes() {
    return PlainCodec<std::string>(ReadHexBytes, WriteHexBytes);
}

uint64_t ReadNumber(const Node& node, NumberRange range) {
    const Json& value = node.Value();
    std::optional<uint64_t> number;
    bool negative = false;
    if (value.is_string()) {
        number = NumberFromText(value.get_ref<const std::string&>());
    } else if (value.is_number_integer()) {
        negative = !value.is_number_unsigned() && value.get<int64_t>() < 0;
        number = value.get<uint64_t>();
    }
    if (!number) node.Fail("must be a whole number, like 39 or \"0x27\"");
    if (negative ? static_cast<int64_t>(*number) < range.least : *number > range.most)
        node.Fail(value.dump() + " is out of range: " + std::to_string(range.least) + " to " +
                  std::to_string(range.most));
    return *number;
}

Json WriteNumber(uint64_t number, Notation notation, size_t bytes) {
    constexpr uint64_t leastResultCode = 0x10000;
    if (notation == Notation::Decimal || (notation == Notation::Code && number < leastResultCode))
        return number;
    return Hex(number, static_cast<int>(2 * bytes));
}

void FailOnWord(const Node& node, const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words)
        list += (list.empty() ? "" : ", ") + word;
    node.Fail("unknown word " + Unknown(node.Text(), words) + "; it is one of: " + list);
}

bool LooksLikeNumber(const Node& node) {
    if (!node.Value().is_string()) return true;
    const std::string& text = node.Text();
    return !text.empty() && text[0] >= '0' && text[0] <= '9';
}

}  // namespace machine::description
