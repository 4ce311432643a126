#include "machine/journal/fault_plan.h"

#include "machine/calls/call_table.h"

namespace machine {

namespace {

bool HasArgument(const FaultRule& rule, std::span<const std::string> arguments) {
    return !rule.argument || (!arguments.empty() && arguments.front() == *rule.argument);
}

}  // namespace

void FaultPlan::Arm(FaultRule rule) {
    counts_.clear();
    all_ = 0;
    rules_.push_back(std::move(rule));
    met_.assign(rules_.size(), 0);
    fired_.push_back(0);
}

void FaultPlan::Disarm() {
    rules_.clear();
    counts_.clear();
    all_ = 0;
    met_.clear();
    fired_.clear();
}

const FaultRule* FaultPlan::Next(std::string_view call, std::span<const std::string> arguments) {
    if (rules_.empty()) return nullptr;
    auto counted = counts_.find(call);
    if (counted == counts_.end()) counted = counts_.emplace(call, 0).first;
    ++counted->second;
    ++all_;
    for (size_t i = 0; i < rules_.size(); ++i) {
        if (rules_[i].call == call && HasArgument(rules_[i], arguments)) ++met_[i];
    }
    for (size_t i = 0; i < rules_.size(); ++i) {
        const FaultRule& rule = rules_[i];
        if (!Applies(i, call, arguments)) continue;
        ++fired_[i];
        FaultInjected(rule);
        return &rule;
    }
    return nullptr;
}

uint32_t FaultPlan::Calls(const std::string& name) const {
    if (name == anyCall) return all_;
    const auto found = counts_.find(name);
    return found != counts_.end() ? found->second : 0;
}

bool FaultPlan::Applies(size_t index, std::string_view call, std::span<const std::string> arguments) const {
    const FaultRule& rule = rules_[index];
    if (rule.call == anyCall) {
        const CallInfo* const info = FindCall(call);
        if (info != nullptr && info->failsWith == FailsWith::Value) return false;
    } else if (rule.call != call) {
        return false;
    }
    if (!HasArgument(rule, arguments)) return false;
    const uint32_t count = rule.argument ? met_[index] : Calls(rule.call);
    return rule.nth == 0 || count == rule.nth || (rule.onwards && count > rule.nth);
}

void FaultInjected(const FaultRule&) {}

}  // namespace machine
