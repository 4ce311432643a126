#include "machine/journal/fault_plan.h"

namespace machine {

void FaultPlan::Arm(FaultRule rule) {
    counts_.clear();
    rules_.push_back(std::move(rule));
}

void FaultPlan::Disarm() {
    rules_.clear();
    counts_.clear();
    fired_ = 0;
}

const FaultRule* FaultPlan::Next(const std::string& call) {
    const uint32_t count = ++counts_[call];
    for (const FaultRule& rule : rules_) {
        if (rule.call != call) continue;
        if (rule.nth != 0 && (rule.onwards ? count < rule.nth : count != rule.nth)) continue;
        ++fired_;
        FaultInjected(rule);
        return &rule;
    }
    return nullptr;
}

void FaultInjected(const FaultRule&) {}

}  // namespace machine
