#include "tests/support/fault_walk.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "machine/calls/call_table.h"
#include "platform/windows_api.h"

using machine::FailsWith;
using machine::FaultRule;

namespace {

std::vector<FaultRule> WaysToFail(const machine::CallInfo& call, uint32_t nth) {
    const std::string name(call.name);
    const uint32_t code = FailureCode(call.failsWith);
    std::vector<FaultRule> rules = {{.call = name, .nth = nth, .code = code},
                                    {.call = name, .nth = nth, .onwards = true, .code = code}};
    if (call.changesPc) rules.push_back({.call = name, .nth = nth, .afterEffect = true, .code = code});
    if (call.failsWith == FailsWith::Hresult) rules.push_back({.call = name, .nth = nth, .code = S_OK});
    return rules;
}

std::string ToText(const FaultRule& rule) {
    return rule.call + "#" + std::to_string(rule.nth) + (rule.onwards ? "+" : "") +
           (rule.afterEffect ? " after its effect" : "") + "=" + std::to_string(rule.code);
}

}  // namespace

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

int WalkFaults(const machine::Journal& undisturbed,
               const std::function<void(const machine::FaultRule& rule)>& visit) {
    int visited = 0;
    std::map<std::string, uint32_t> counts;
    for (const machine::CallRecord& call : undisturbed.Calls()) {
        const machine::CallInfo* const info = machine::FindCall(call.call);
        if (info == nullptr) continue;  // a call that cannot fail
        for (const FaultRule& rule : WaysToFail(*info, ++counts[call.call])) {
            SCOPED_TRACE(ToText(rule));
            visit(rule);
            ++visited;
        }
    }
    return visited;
}

bool IsHonest(const FaultRule& rule) {
    return !rule.afterEffect && rule.code != S_OK;
}

bool FailsOnce(const FaultRule& rule) {
    return IsHonest(rule) && !rule.onwards;
}
