// Walking through an operation's platform calls and failing each of them in every way there is.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/fault_rule.h"
#include "machine/journal/journal.h"

// The how-manieth call of a name.
struct PlaceToFail {
    std::string call;
    uint32_t nth;
};

// Every call in the journal that has a fault point.
std::vector<PlaceToFail> PlacesToFail(const machine::Journal& journal);

// Once, from there on for good, after its effect, and with a success that hands out nothing.
std::vector<machine::FaultRule> WaysToFail(const PlaceToFail& place);

std::string ToText(const machine::FaultRule& rule);
