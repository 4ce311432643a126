// The terminal that standard output is, if it is one.
#pragma once

#include "tools/kestova/common/text.h"

struct Terminal {
    size_t columns = noLimit;
    bool showsColour = false;  // never with NO_COLOR
};

// The width is the terminal's own, else that of COLUMNS.
Terminal StandardOutput();

// What both systems have in common: a width from COLUMNS, and whether NO_COLOR allows colour.
size_t ColumnsOfEnvironment();
bool AllowsColour();
