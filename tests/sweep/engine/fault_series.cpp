#include "tests/sweep/engine/fault_series.h"

#include <map>

#include "base/hexadecimal.h"
#include "machine/calls/call_table.h"
#include "machine/calls/documented_results.h"
#include "platform/windows_api.h"

namespace sweep {

namespace {

using machine::FailsWith;
using machine::FaultRule;

// What a dead service and a refusing system return, from some call on, for every call.
constexpr uint32_t codesOfAllCalls[] = {0x80070005, 0x800706BA};

void AddFailures(const machine::CallInfo& info, uint32_t nth, std::vector<Disturbance>& all) {
    const std::string call(info.name);
    const bool fails = info.failsWith != FailsWith::Value;
    for (const uint32_t code : machine::ResultsOf(call).failures) {
        all.push_back(
            {call, fails ? Way::Fails : Way::OtherValue, {{.call = call, .nth = nth, .code = code}}});
        all.push_back({call,
                       fails ? Way::FailsOnwards : Way::OtherValue,
                       {{.call = call, .nth = nth, .onwards = true, .code = code}}});
        if (!info.changesPc) continue;
        all.push_back({call,
                       fails ? Way::FailsAfterEffect : Way::OtherValue,
                       {{.call = call, .nth = nth, .afterEffect = true, .code = code}}});
    }
}

void AddAnswers(const std::string& call, uint32_t nth, std::vector<Disturbance>& all) {
    for (const uint32_t code : machine::ResultsOf(call).answers) {
        for (const bool onwards : {false, true}) {
            all.push_back(
                {call, Way::OtherValue, {{.call = call, .nth = nth, .onwards = onwards, .code = code}}});
        }
    }
}

void AddSuccesses(const machine::CallInfo& info, uint32_t nth, std::vector<Disturbance>& all) {
    const std::string call(info.name);
    const bool isResult = info.failsWith == FailsWith::Hresult;
    if (!isResult && info.failsWith != FailsWith::Status) return;
    for (const bool onwards : {false, true}) {
        all.push_back({call,
                       Way::SuccessNothing,
                       {{.call = call, .nth = nth, .onwards = onwards, .code = ERROR_SUCCESS}}});
        if (!isResult) continue;
        all.push_back(
            {call, Way::EmptySuccess, {{.call = call, .nth = nth, .onwards = onwards, .code = S_FALSE}}});
    }
    for (const uint32_t code : machine::ResultsOf(call).emptySuccesses)
        all.push_back({call, Way::EmptySuccess, {{.call = call, .nth = nth, .code = code}}});
    for (const uint32_t code : machine::ResultsOf(call).successes) {
        all.push_back(
            {call, Way::OtherSuccess, {{.call = call, .nth = nth, .afterEffect = true, .code = code}}});
    }
}

std::map<std::string, uint32_t> CountsOf(const std::vector<std::string>& calls) {
    std::map<std::string, uint32_t> counts;
    for (const std::string& call : calls)
        ++counts[call];
    return counts;
}

std::string ToText(const FaultRule& rule) {
    return "--fail '" + rule.call + "#" + std::to_string(rule.nth) + (rule.onwards ? "+" : "") + "=" +
           Hex(rule.code, 8) + "'" + (rule.afterEffect ? " after its effect" : "");
}

}  // namespace

const char* NameOf(Way way) {
    switch (way) {
        case Way::None:
            return "undisturbed";
        case Way::Fails:
            return "fails";
        case Way::FailsOnwards:
            return "fails from then on";
        case Way::AllCallsFail:
            return "all calls fail";
        case Way::TwoFail:
            return "fails, and a second call";
        case Way::FailsAfterEffect:
            return "fails after its effect";
        case Way::TwoFailAfterEffect:
            return "fails after its effect, and a second call";
        case Way::OtherSuccess:
            return "another success with outputs";
        case Way::EmptySuccess:
            return "another success with nothing";
        case Way::SuccessNothing:
            return "success with nothing";
        case Way::OtherValue:
            return "another value";
    }
    return "";
}

std::string ToText(const Disturbance& disturbance) {
    std::string text;
    for (const FaultRule& rule : disturbance.rules)
        text += (text.empty() ? "" : " ") + ToText(rule);
    return text;
}

std::vector<Disturbance> AllDisturbances(const CallNames& calls) {
    std::vector<Disturbance> all;
    std::map<std::string, uint32_t> counts = CountsOf(calls.preparation);
    auto position = static_cast<uint32_t>(calls.preparation.size());
    for (const std::string& call : calls.operation) {
        ++position;
        const uint32_t nth = ++counts[call];
        const machine::CallInfo* const info = machine::FindCall(call);
        if (info == nullptr) continue;  // a call that cannot be disturbed
        AddFailures(*info, nth, all);
        AddAnswers(call, nth, all);
        AddSuccesses(*info, nth, all);
        if (info->failsWith == FailsWith::Value) continue;
        for (const uint32_t code : codesOfAllCalls) {
            all.push_back({machine::anyCall,
                           Way::AllCallsFail,
                           {{.call = machine::anyCall, .nth = position, .onwards = true, .code = code}}});
        }
    }
    return all;
}

std::vector<Disturbance> FaultsOfRollBack(const Disturbance& disturbance, const CallNames& calls,
                                          size_t first) {
    const Way way = disturbance.way == Way::Fails ? Way::TwoFail : Way::TwoFailAfterEffect;
    std::vector<Disturbance> all;
    std::map<std::string, uint32_t> counts = CountsOf(calls.preparation);
    for (size_t position = 0; position < calls.operation.size(); ++position) {
        const std::string& call = calls.operation[position];
        const uint32_t nth = ++counts[call];
        const machine::CallInfo* const info = machine::FindCall(call);
        if (position <= first || info == nullptr || info->failsWith == FailsWith::Value) continue;
        Disturbance both{disturbance.call, way, disturbance.rules};
        both.rules.push_back({.call = call, .nth = nth, .code = machine::ResultsOf(call).failures.front()});
        all.push_back(std::move(both));
    }
    return all;
}

}  // namespace sweep
