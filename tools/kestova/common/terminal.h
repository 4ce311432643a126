// The terminal that standard output is, if it is one; and the one on which a question can be asked.
#pragma once

#include <optional>
#include <string>

#include "tools/kestova/common/text.h"

struct Terminal {
    size_t columns = noLimit;
    bool showsColour = false;  // never with NO_COLOR
    bool isRewritten = false;  // its last line can be replaced, as by clearLine
};

inline constexpr const char* clearLine = "\r\033[K";

// The width is the terminal's own, else that of COLUMNS.
Terminal StandardOutput();
Terminal StandardError();

// Asks on standard error and reads the answer from standard input: whether it is "y" or "yes". Nothing, and
// no question, unless both are a terminal.
std::optional<bool> AskOnTerminal(const std::string& question);

// Whether both are one.
bool CanAsk();

// What both systems have in common: a width from COLUMNS, whether NO_COLOR allows colour, and a terminal that
// obeys nothing.
size_t ColumnsOfEnvironment();
bool AllowsColour();
bool IsDumbTerminal();
