// The platform calls that the emulated PC implements, by their names in a module's import table.
#pragma once

#include <span>
#include <string_view>

#include "machine/entry/answered_call.h"

namespace machine {

// Sorted by name, each once.
std::span<const AnsweredCall> AnsweredCalls();

// The functions that the C runtime inside a module imports for itself: threads, locks, thread-local
// storage, exceptions. Sorted by name, each once. They do not belong to the PC.
std::span<const std::string_view> RuntimeCalls();

}  // namespace machine
