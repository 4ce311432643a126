// The parts of a JSON Schema (draft 2020-12) that codecs describe their values with.
#pragma once

#include <string_view>

#include "machine/description/output.h"

namespace machine::description::schema {

// Text of this pattern; any text if it is empty.
void Text(Output out, std::string_view pattern = "");
void Flag(Output out);
void Null(Output out);
// A JSON number of that range, or text of the pattern.
void Number(Output out, int64_t least, uint64_t most, std::string_view pattern);

// A number that a description has as text, decimal or with 0x in front.
inline constexpr std::string_view numberText = "^([0-9]+|0[xX][0-9A-Fa-f]+)$";
// The same with a unit behind it.
// The same, or the name of a code.
inline constexpr std::string_view codeText = "^([0-9]+|0[xX][0-9A-Fa-f]+|[A-Z][A-Z0-9_]+)$";
inline constexpr std::string_view sizeText = "^([0-9]+( ?[KMGT]iB)?|0[xX][0-9A-Fa-f]+( [KMGT]iB)?)$";

// An object with no other keys than those that the caller describes in what is returned.
Output Object(Output out);
void RequireKey(Output out, std::string_view key);
void ForbidKey(Output out, std::string_view key);

// An object with any keys, each of which has the value that the caller describes in what is returned.
Output Map(Output out);
// A list of what the caller describes in what is returned.
Output List(Output out);
// One of the values that the caller describes in the entries of what is returned.
Output AnyOf(Output out);

}  // namespace machine::description::schema
