#include "machine/description/values.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "base/hexadecimal.h"
#include "machine/calls/result_codes.h"

namespace machine::description {

namespace {

struct Unit {
    const char* name;
    uint64_t bytes;
};

constexpr Unit units[] = {
    {"TiB", uint64_t{1} << 40}, {"GiB", uint64_t{1} << 30}, {"MiB", uint64_t{1} << 20}, {"KiB", 1024}};

// A decimal number, or a hexadecimal one with 0x in front; nothing if anything follows it.
std::optional<uint64_t> NumberFromText(std::string_view text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) text.remove_prefix(2);
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, hex ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// Where the count of "100 GiB" or "100GiB" ends; nowhere in a number without a unit.
size_t EndOfCount(const std::string& text) {
    const size_t blank = text.find(' ');
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (blank != std::string::npos || !text.ends_with('B') || isHex) return blank;
    return text.find_first_not_of("0123456789");
}

}  // namespace

void Text::Read(const Node& node, std::string& text) {
    text = node.Text();
}

void Text::Write(Output out, const std::string& text, const std::string&) {
    out.Text(text);
}

void Letters::Read(const Node& node, std::string& letters) {
    for (const char letter : node.Text()) {
        if (letter < 'A' || letter > 'Z')
            node.Fail("\"" + node.Text() + "\" must be upper-case letters from A to Z");
    }
    letters = node.Text();
}

void DriveName::Read(const Node& node, std::string& name) {
    name = node.Text();
    if (name.empty()) return;
    const char letter = name[0];
    const bool isLetter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
    if (name.size() != 2 || !isLetter || name[1] != ':')
        node.Fail("\"" + name + "\" must be a letter from A to Z and a colon, like \"C:\"");
}

void HexBytes::Read(const Node& node, std::string& bytes) {
    std::string digits = node.Content();
    std::erase(digits, ' ');
    if (!AreHexDigits(digits) || digits.size() % 2 != 0)
        node.Fail("must be pairs of hexadecimal digits, like \"ff fe 41 00\"");
    bytes.clear();
    for (size_t at = 0; at < digits.size(); at += 2)
        bytes += static_cast<char>(*NumberFromText("0x" + digits.substr(at, 2)));
}

void HexBytes::Write(Output out, const std::string& bytes, const std::string&) {
    std::string text;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        text += digits;
    }
    out.Text(text);
}

void Flag::Read(const Node& node, bool& flag) {
    flag = node.Flag();
}

void Flag::Write(Output out, bool flag, bool) {
    out.Flag(flag);
}

void GuidValue::Read(const Node& node, Guid& guid) {
    const std::optional<Guid> read = GuidFromText(node.Text());
    if (!read) node.Fail("\"" + node.Text() + "\" is no GUID like \"c12a7328-f81f-11d2-ba4b-00a0c93ec93b\"");
    guid = *read;
}

void GuidValue::Write(Output out, const Guid& guid, const Guid&) {
    out.Text(GuidText(guid));
}

void ByteCount::Read(const Node& node, uint64_t& bytes) {
    const NumberRange range = {0, std::numeric_limits<uint64_t>::max()};
    const size_t end = node.IsText() ? EndOfCount(node.Text()) : std::string::npos;
    if (end == std::string::npos) {
        bytes = ReadNumber(node, range);
        return;
    }
    const std::string& text = node.Text();
    const std::string name = text.substr(text[end] == ' ' ? end + 1 : end);
    const auto unit =
        std::find_if(std::begin(units), std::end(units), [&](const Unit& row) { return name == row.name; });
    const std::optional<uint64_t> count = NumberFromText(text.substr(0, end));
    if (!count || unit == std::end(units))
        node.Fail("\"" + text +
                  "\" is no size: write 1048576, \"0x100000\" or \"1 MiB\" (KiB, MiB, GiB, TiB)");
    if (*count > range.most / unit->bytes) node.Fail("\"" + text + "\" is too large");
    bytes = *count * unit->bytes;
}

void ByteCount::Write(Output out, uint64_t bytes, uint64_t) {
    const auto unit = std::find_if(std::begin(units), std::end(units),
                                   [&](const Unit& row) { return bytes % row.bytes == 0; });
    if (bytes == 0 || unit == std::end(units)) return out.Number(bytes);
    out.Text(std::to_string(bytes / unit->bytes) + " " + unit->name);
}

void HexBytes::DescribeObject(Output out, void (*type)(Output out)) {
    const Output properties = schema::Object(out);
    if (type != nullptr) {
        type(properties.Key("type"));
        schema::RequireKey(out, "type");
    }
    Describe(properties.Key("hex"));
    schema::RequireKey(out, "hex");
}

void ByteCount::Describe(Output out) {
    schema::Number(out, 0, std::numeric_limits<uint64_t>::max(), schema::sizeText);
}

uint64_t ReadNumber(const Node& node, NumberRange range) {
    std::optional<WholeNumber> number = node.Number();
    if (node.IsText()) {
        if (const std::optional<uint64_t> read = NumberFromText(node.Text()))
            number = WholeNumber{*read, false};
    }
    if (!number) node.Fail("must be a whole number, like 39 or \"0x27\"");
    const auto [bits, negative] = *number;
    if (negative ? static_cast<int64_t>(bits) < range.least : bits > range.most)
        node.Fail(node.Spelling() + " is out of range: " + std::to_string(range.least) + " to " +
                  std::to_string(range.most));
    return bits;
}

void WriteNumber(Output out, uint64_t number, Notation notation, size_t bytes) {
    constexpr uint64_t leastResultCode = 0x10000;
    if (notation == Notation::Decimal || (notation == Notation::Code && number < leastResultCode))
        return out.Number(number);
    out.Text(Hex(number, static_cast<int>(2 * bytes)));
}

namespace {

constexpr NumberRange codeRange = {std::numeric_limits<int32_t>::min(), std::numeric_limits<uint32_t>::max()};

}  // namespace

void ErrorCode::Read(const Node& node, uint32_t& code) {
    if (node.IsText()) {
        if (const std::optional<uint32_t> named = CodeOfName(node.Text())) {
            code = *named;
            return;
        }
        if (const std::string similar = NearestCodeName(node.Text()); !similar.empty())
            node.Fail("there is no code \"" + node.Text() + "\"; did you mean \"" + similar + "\"?");
    }
    code = static_cast<uint32_t>(ReadNumber(node, codeRange));
}

void ErrorCode::Write(Output out, uint32_t code, uint32_t) {
    WriteNumber(out, code, Notation::Code, sizeof code);
}

void ErrorCode::Describe(Output out) {
    schema::Number(out, codeRange.least, codeRange.most, schema::codeText);
}

void DescribeWords(Output out, Words words) {
    out.Object();
    const Output values = out.Key("enum");
    values.List();
    for (const Named& word : words)
        values.Entry().Text(std::string(word.name));
}

int64_t ReadWord(const Node& node, Words words) {
    const auto row =
        std::find_if(words.begin(), words.end(), [&](const Named& word) { return word.name == node.Text(); });
    if (row != words.end()) return row->value;
    std::vector<std::string> names;
    std::string list;
    for (const Named& word : words) {
        names.emplace_back(word.name);
        list += (list.empty() ? "" : ", ") + names.back();
    }
    node.Fail("unknown word " + Unknown(node.Text(), names) + "; it is one of: " + list);
}

const Named* FindValue(Words words, int64_t value) {
    const auto row =
        std::find_if(words.begin(), words.end(), [&](const Named& word) { return word.value == value; });
    return row != words.end() ? &*row : nullptr;
}

bool LooksLikeNumber(const Node& node) {
    if (!node.IsText()) return true;
    const std::string& text = node.Text();
    return !text.empty() && text[0] >= '0' && text[0] <= '9';
}

}  // namespace machine::description
