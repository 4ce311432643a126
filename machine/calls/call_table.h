// Every platform call that can fail, by its published name, and how it reports a failure.
#pragma once

#include <span>
#include <string_view>

namespace machine {

// How a call reports failure, which defines the meaning of a fault rule's code.
enum class FailsWith {
    Hresult,            // the code is the result; 0 returns success without doing anything
    Status,             // the code is the result, as in registry calls
    FalseAndLastError,  // FALSE; the code is the last error
    ZeroAndLastError,   // a count of 0; the code is the last error
    NullAndLastError,   // a null pointer; the code is the last error
    InvalidHandle,      // INVALID_HANDLE_VALUE; the code is the last error
    Value,              // cannot fail: the code is the returned value
};

struct CallInfo {
    std::string_view name;
    FailsWith failsWith;
    bool changesPc;  // whether a failure after the effect differs from one before it
};

// All calls, sorted by name within each area.
std::span<const CallInfo> AllCalls();

// The row with that name, or null.
const CallInfo* FindCall(std::string_view name);

}  // namespace machine
