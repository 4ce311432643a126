#include "tools/kestova/common/terminal.h"

#include <cstdlib>
#include <string_view>

size_t ColumnsOfEnvironment() {
    const char* const columns = std::getenv("COLUMNS");
    const unsigned long number = columns != nullptr ? std::strtoul(columns, nullptr, 10) : 0;
    return number == 0 ? noLimit : number;
}

bool AllowsColour() {
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const kind = std::getenv("TERM");
    const bool isDumb = kind != nullptr && std::string_view(kind) == "dumb";
    return (noColour == nullptr || *noColour == '\0') && !isDumb;
}
