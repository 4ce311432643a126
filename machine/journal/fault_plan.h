// Decides which calls fail: counts the calls of each name and finds the rule that applies.
#pragma once

#include <functional>
#include <map>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "machine/calls/fault_rule.h"

namespace machine {

class FaultPlan {
  public:
    FaultPlan() = default;
    explicit FaultPlan(std::vector<FaultRule> rules) : rules_(std::move(rules)) {}

    // Adds a rule and restarts all counts.
    void Arm(FaultRule rule);
    void Disarm();
    // Counts the call, if there are rules, and returns the first one that applies to it, or null.
    const FaultRule* Next(std::string_view call, std::span<const std::string> arguments = {});
    // How many calls the rules have applied to; and each of them, in order.
    int Fired() const { return std::accumulate(fired_.begin(), fired_.end(), 0); }
    const std::vector<int>& FiredByRule() const { return fired_; }
    // How many calls of that name there were since the last rule was added.
    uint32_t Calls(const std::string& name) const;

  private:
    // Whether a rule is for the call that has just been counted.
    bool Applies(size_t rule, std::string_view call, std::span<const std::string> arguments) const;

    std::vector<FaultRule> rules_;
    std::map<std::string, uint32_t, std::less<>> counts_;               // by name
    uint32_t all_ = 0;                                                  // of all names
    std::vector<uint32_t> met_ = std::vector<uint32_t>(rules_.size());  // calls with each rule's argument
    std::vector<int> fired_ = std::vector<int>(rules_.size());          // of each rule
};

// Called whenever a rule applies; set a breakpoint here.
void FaultInjected(const FaultRule& rule);

}  // namespace machine
