// What went wrong in a call of the C interface.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestova/kestova_c.h"
#include "platform/windows_api.h"

namespace c_interface {

struct Problem {
    kestova_problem_code code = KESTOVA_PROBLEM_NONE;
    std::string_view operation = {};  // a literal; empty for other functions
    std::optional<int> result = {};
    std::basic_string<WCHAR> record = {};  // the last one of an error
    std::string words = {};                // UTF-8; empty: those of the code or of the result
};

// Of the calling thread's last call.
void SetProblem(const kestova_problem& problem) noexcept;
const kestova_problem& LastProblem() noexcept;

// As the interface shows it; what does not fit is cut.
kestova_problem Shown(const Problem& problem) noexcept;

// Copies text into a buffer, cut to its size, with a 0 at its end. Nothing for a size of 0.
void PutText(std::basic_string_view<WCHAR> text, kestova_char* buffer, size_t size) noexcept;

// Thrown where a call cannot be made.
struct Refusal {
    Problem problem;
};

// The problem of the exception that is being handled.
Problem Caught() noexcept;

// The border of the interface: no exception passes it. The calling thread's problem is that of the action, or
// of the exception that ended it; the result then is `otherwise`.
template <typename Result, typename Action>
Result Attempt(Result otherwise, const Action& action) noexcept {
    SetProblem({});
    try {
        return action();
    } catch (...) {
        SetProblem(Shown(Caught()));
        return otherwise;
    }
}

}  // namespace c_interface
