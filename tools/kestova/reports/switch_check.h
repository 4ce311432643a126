// Whether this PC can boot its recovery partition and come back: each condition, what was found, and what to
// do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

struct ConditionReport {
    const char* code;
    const char* question;
    std::optional<bool> isMet = {};  // nothing: not asked, because another one is not met, or not tried
    std::string found = {};
    std::string advice = {};  // if it is not met; may be empty
};

// "yes", "no", or "-" for a condition that was not asked.
const char* AnswerWord(const ConditionReport& condition);

// What was found, and what to do if that is not as it should be.
std::string TextOf(const ConditionReport& condition);

struct SwitchReport {
    std::vector<ConditionReport> conditions = {};
    bool isPossible = false;   // every condition that was asked is met
    std::string problem = {};  // what could not be answered; else empty
};

// Asks each condition, then rehearses the switch and the way back. Leaves the PC unchanged if it was opened
// for a rehearsal.
SwitchReport CheckSwitch(Session& session);

// The conditions on this disk that are not met, without a rehearsal; -1 for no disk.
std::vector<Finding> WhySwitchRefused(Session& session, int disk);
