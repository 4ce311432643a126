// The published names of result codes, for those that a platform call is documented to end with.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "machine/calls/call_table.h"

namespace machine {

struct NamedCode {
    std::string_view name;
    uint32_t code;
};

// HRESULTs and last errors, each in the order of their codes.
std::span<const NamedCode> NamedResults();
std::span<const NamedCode> NamedErrors();

// The code of that name, of either kind; nothing for any other text.
std::optional<uint32_t> CodeOfName(std::string_view name);

// The name that is most similar to a misspelt one; empty if there is none.
std::string NearestCodeName(std::string_view name);

// "ERROR_ACCESS_DENIED": the name of a code by which a call of that kind fails; a code without one as a
// number, "0x80041001" or "5".
std::string CodeText(uint32_t code, FailsWith failsWith);

}  // namespace machine
