#include "tools/kestova/pc/fault_option.h"

#include <charconv>
#include <optional>
#include <vector>

#include "machine/calls/call_table.h"
#include "machine/calls/result_codes.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

namespace {

template <typename Number>
std::optional<Number> ReadNumber(std::string_view text, int base) {
    Number number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || rest != text.data() + text.size()) return std::nullopt;
    return number;
}

// A name, a number, or an HRESULT as a negative number.
std::optional<uint32_t> ReadCode(std::string_view text) {
    if (const std::optional<uint32_t> named = machine::CodeOfName(text)) return named;
    if (text.starts_with("0x") || text.starts_with("0X")) return ReadNumber<uint32_t>(text.substr(2), 16);
    if (!text.starts_with('-')) return ReadNumber<uint32_t>(text, 10);
    const std::optional<int32_t> negative = ReadNumber<int32_t>(text, 10);
    return negative ? std::optional(static_cast<uint32_t>(*negative)) : std::nullopt;
}

std::string WrongCode(const std::string& text) {
    const std::string similar = machine::NearestCodeName(text);
    return "'" + text + "' is not a code of 32 bits" +
           (similar.empty() ? "" : "; did you mean " + similar + "?");
}

std::vector<std::string> CallNames() {
    std::vector<std::string> names;
    for (const machine::CallInfo& call : machine::AllCalls())
        names.emplace_back(call.name);
    return names;
}

}  // namespace

machine::FaultRule ReadFault(const std::string& text, const std::string& asker) {
    const auto wrong = [&](const std::string& what) { return WrongUse(asker + " '" + text + "': " + what); };
    const size_t equals = text.find('=');
    if (equals == std::string::npos) throw wrong("no '=CODE'");

    machine::FaultRule rule;
    const std::string word = text.substr(equals + 1);
    const std::optional<uint32_t> code = ReadCode(word);
    if (!code) throw wrong(WrongCode(word));
    rule.code = *code;

    rule.call = text.substr(0, equals);
    if (rule.call.ends_with('+')) {
        rule.onwards = true;
        rule.call.pop_back();
    }
    if (const size_t sharp = rule.call.find('#'); sharp != std::string::npos) {
        const std::optional<uint32_t> nth =
            ReadNumber<uint32_t>(std::string_view(rule.call).substr(sharp + 1), 10);
        if (!nth || *nth == 0) throw wrong("after '#' comes the number of the call, from 1");
        rule.nth = *nth;
        rule.call.resize(sharp);
    }
    if (rule.call != machine::anyCall && machine::FindCall(rule.call) == nullptr)
        throw wrong(UnknownWord("call", rule.call, CallNames()));
    return rule;
}
