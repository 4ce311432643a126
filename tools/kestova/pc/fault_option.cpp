#include "tools/kestova/pc/fault_option.h"

#include <charconv>
#include <optional>
#include <vector>

#include "machine/facts/call_table.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

namespace {

std::optional<uint32_t> ReadNumber(std::string_view text, int base) {
    uint32_t number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || rest != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<uint32_t> ReadCode(std::string_view text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    return hexadecimal ? ReadNumber(text.substr(2), 16) : ReadNumber(text, 10);
}

std::vector<std::string> CallNames() {
    std::vector<std::string> names;
    for (const machine::CallInfo& call : machine::AllCalls())
        names.emplace_back(call.name);
    return names;
}

}  // namespace

machine::FaultRule ReadFault(const std::string& text) {
    const auto wrong = [&](const std::string& what) { return WrongUse("--fail '" + text + "': " + what); };
    const size_t equals = text.find('=');
    if (equals == std::string::npos) throw wrong("no '=CODE'");

    machine::FaultRule rule;
    const std::optional<uint32_t> code = ReadCode(std::string_view(text).substr(equals + 1));
    if (!code) throw wrong("'" + text.substr(equals + 1) + "' is not a code of 32 bits");
    rule.code = *code;

    rule.call = text.substr(0, equals);
    if (rule.call.ends_with('+')) {
        rule.onwards = true;
        rule.call.pop_back();
    }
    if (const size_t sharp = rule.call.find('#'); sharp != std::string::npos) {
        const std::optional<uint32_t> nth = ReadNumber(std::string_view(rule.call).substr(sharp + 1), 10);
        if (!nth || *nth == 0) throw wrong("after '#' comes the number of the call, from 1");
        rule.nth = *nth;
        rule.call.resize(sharp);
    }
    if (rule.call != machine::anyCall && machine::FindCall(rule.call) == nullptr)
        throw wrong(UnknownWord("call", rule.call, CallNames()));
    return rule;
}
