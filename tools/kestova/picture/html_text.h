// Any text as HTML shows it, also within quotes.
#pragma once

#include <string>
#include <string_view>

// Control characters are shown as Printable does, tabs and line feeds too.
std::string HtmlText(std::string_view text);
