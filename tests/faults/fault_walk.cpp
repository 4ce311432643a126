#include "tests/faults/fault_walk.h"

#include <map>

#include "machine/facts/call_table.h"
#include "platform/windows_api.h"

using machine::FailsWith;
using machine::FaultRule;

namespace {

// What a real failure of that kind of call answers.
uint32_t FailureCode(FailsWith failsWith) {
    switch (failsWith) {
        case FailsWith::Hresult:
            return 0x80004005;
        case FailsWith::Value:
            return DRIVE_NO_ROOT_DIR;
        default:
            return ERROR_ACCESS_DENIED;
    }
}

}  // namespace

std::vector<PlaceToFail> PlacesToFail(const machine::Journal& journal) {
    std::map<std::string, uint32_t> counts;
    std::vector<PlaceToFail> places;
    for (const machine::CallRecord& call : journal.Calls()) {
        if (machine::FindCall(call.call) != nullptr) places.push_back({call.call, ++counts[call.call]});
    }
    return places;
}

std::vector<FaultRule> WaysToFail(const PlaceToFail& place) {
    const machine::CallInfo& info = *machine::FindCall(place.call);
    const uint32_t code = FailureCode(info.failsWith);
    std::vector<FaultRule> rules = {{.call = place.call, .nth = place.nth, .code = code},
                                    {.call = place.call, .nth = place.nth, .onwards = true, .code = code}};
    if (info.changesPc) {
        rules.push_back({.call = place.call, .nth = place.nth, .afterEffect = true, .code = code});
    }
    if (info.failsWith == FailsWith::Hresult) {
        rules.push_back({.call = place.call, .nth = place.nth, .code = S_OK});
    }
    return rules;
}

std::string ToText(const FaultRule& rule) {
    return rule.call + "#" + std::to_string(rule.nth) + (rule.onwards ? "+" : "") +
           (rule.afterEffect ? " after its effect" : "") + "=" + std::to_string(rule.code);
}
