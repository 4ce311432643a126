// Every platform call that can fail, by its published name: what a failure looks like to the caller.
#pragma once

#include <span>
#include <string_view>

namespace machine {

// How a call tells that it failed, and so what the code of a fault rule means.
enum class FailsWith {
    Hresult,            // the code is the result; 0 answers success and does nothing
    Status,             // the code is the result, as registry calls have it
    FalseAndLastError,  // FALSE; the code is the last error
    ZeroAndLastError,   // a count of 0; the code is the last error
    NullAndLastError,   // a null pointer; the code is the last error
    InvalidHandle,      // INVALID_HANDLE_VALUE; the code is the last error
    Value,              // no failure of its own: the code is the value answered
};

struct CallInfo {
    std::string_view name;
    FailsWith failsWith;
    bool changesPc;  // a failure after the effect differs from one before it
};

// All of them, in the order of their names within each area.
std::span<const CallInfo> AllCalls();

// The row of that name, or null.
const CallInfo* FindCall(std::string_view name);

}  // namespace machine
