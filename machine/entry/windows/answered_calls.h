// The platform calls of the emulated PC, as a module's import table names them.
#pragma once

#include <span>
#include <string_view>

namespace machine {

struct AnsweredCall {
    std::string_view name;
    const void* function;
};

// In the order of their names, each once.
std::span<const AnsweredCall> AnsweredCalls();

// The functions by which the C runtime inside a module serves itself: threads, locks, thread-local storage,
// exceptions. In the order of their names, each once. They are no part of the PC.
std::span<const std::string_view> RuntimeCalls();

}  // namespace machine
