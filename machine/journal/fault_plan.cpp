#include "machine/journal/fault_plan.h"

#include "machine/calls/call_table.h"

namespace machine {

void FaultPlan::Arm(FaultRule rule) {
    counts_.clear();
    rules_.push_back(std::move(rule));
    fired_.push_back(0);
}

void FaultPlan::Disarm() {
    rules_.clear();
    counts_.clear();
    fired_.clear();
}

const FaultRule* FaultPlan::Next(const std::string& call) {
    ++counts_[call];
    ++counts_[anyCall];
    for (size_t i = 0; i < rules_.size(); ++i) {
        const FaultRule& rule = rules_[i];
        if (!Applies(rule, call)) continue;
        ++fired_[i];
        FaultInjected(rule);
        return &rule;
    }
    return nullptr;
}

uint32_t FaultPlan::Calls(const std::string& name) const {
    const auto found = counts_.find(name);
    return found != counts_.end() ? found->second : 0;
}

bool FaultPlan::Applies(const FaultRule& rule, const std::string& call) {
    if (rule.call == anyCall) {
        const CallInfo* const info = FindCall(call);
        if (info != nullptr && info->failsWith == FailsWith::Value) return false;
    } else if (rule.call != call) {
        return false;
    }
    const uint32_t count = counts_[rule.call];
    return rule.nth == 0 || count == rule.nth || (rule.onwards && count > rule.nth);
}

void FaultInjected(const FaultRule&) {}

}  // namespace machine
