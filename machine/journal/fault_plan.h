// Decides which calls fail: counts the calls of each name and finds the rule that applies.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "machine/facts/fault_rule.h"

namespace machine {

class FaultPlan {
  public:
    FaultPlan() = default;
    explicit FaultPlan(std::vector<FaultRule> rules) : rules_(std::move(rules)) {}

    // Adds a rule and restarts all counts.
    void Arm(FaultRule rule);
    void Disarm();
    // Counts the call and returns the first rule that applies to it, or null.
    const FaultRule* Next(const std::string& call);
    // How many calls a rule has applied to.
    int Fired() const { return fired_; }

  private:
    // Whether the rule is for the call that has just been counted.
    bool Applies(const FaultRule& rule, const std::string& call);

    std::vector<FaultRule> rules_;
    std::map<std::string, uint32_t> counts_;  // of anyCall: the calls of all names
    int fired_ = 0;
};

// Called whenever a rule applies; set a breakpoint here.
void FaultInjected(const FaultRule& rule);

}  // namespace machine
