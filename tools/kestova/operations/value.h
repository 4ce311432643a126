// Arguments, results and outputs of operations.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// A letter of the installed Windows, and where its volume is.
struct DriveRecord {
    int disk;
    int partition;
    std::string letter;

    bool operator==(const DriveRecord&) const = default;
};

// Nothing, a flag, a number, a letter or another text, a list.
using Value = std::variant<std::monostate, bool, int, std::string, std::vector<DriveRecord>>;

inline bool IsNothing(const Value& value) {
    return std::holds_alternative<std::monostate>(value);
}

// Values by name, in the order in which they were added.
using Values = std::vector<std::pair<std::string, Value>>;

// The value of that name, which must be there.
const Value& ValueOf(const Values& values, std::string_view name);
