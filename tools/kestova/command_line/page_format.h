// In which form a command makes a page.
#pragma once

#include "tools/kestova/command_line/command_line.h"

enum class PageFormat { Html, Markdown };

// That of --format, or HTML. Throws WrongUse for an unknown one, and for a page of HTML without a place: a
// terminal shows none.
PageFormat PageFormatOf(const CommandLine& line);
