#include "machine/api/wmi/path.h"

#include <algorithm>

#include "base/text_case.h"

namespace machine {

namespace {

std::string WithSingleBackslashes(std::string_view text) {
    std::string single;
    for (size_t at = 0; at < text.size(); ++at) {
        single += text[at];
        if (text.substr(at, 2) == "\\\\") ++at;
    }
    return single;
}

// The text between two equal quotes.
std::optional<std::string> Unquoted(std::string_view text) {
    const bool quoted =
        text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front();
    if (!quoted) return std::nullopt;
    return std::string(text.substr(1, text.size() - 2));
}

}  // namespace

std::optional<std::string> NamespaceOf(std::string_view path) {
    std::string space(path);
    std::replace(space.begin(), space.end(), '/', '\\');
    if (space.starts_with("\\\\")) {
        const size_t machineEnd = space.find('\\', 2);
        if (machineEnd == std::string::npos || machineEnd == 2) return std::nullopt;
        space.erase(0, machineEnd + 1);
    }
    if (space.empty() || space.starts_with('\\') || space.ends_with('\\')) return std::nullopt;
    return space;
}

bool WmiPath::Names(std::string_view keyValue) const {
    return value && (SameName(*value, keyValue) || SameName(WithSingleBackslashes(*value), keyValue));
}

std::optional<WmiPath> ReadWmiPath(std::string_view path) {
    WmiPath read;
    const size_t equals = path.find('=');
    std::string_view object = path.substr(0, equals);
    if (const size_t colon = object.rfind(':'); colon != std::string_view::npos) {
        const std::optional<std::string> space = NamespaceOf(object.substr(0, colon));
        if (!space) return std::nullopt;
        read.space = *space;
        object.remove_prefix(colon + 1);
    }
    const size_t dot = object.find('.');
    read.className = object.substr(0, dot);
    if (dot != std::string_view::npos) read.key = object.substr(dot + 1);
    if (equals != std::string_view::npos) read.value = Unquoted(path.substr(equals + 1));
    const bool valueFits = (equals != std::string_view::npos) == read.value.has_value();
    const bool keyFits = dot == std::string_view::npos || (!read.key.empty() && read.value);
    return !read.className.empty() && valueFits && keyFits ? std::optional(read) : std::nullopt;
}

}  // namespace machine
