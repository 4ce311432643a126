// WMI paths: of namespaces, and of objects in them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace machine {

// "root\cimv2" for "\\.\root\CIMV2", "\\PC\root\cimv2" or "root/cimv2", with its case kept. Nothing for any
// other form.
std::optional<std::string> NamespaceOf(std::string_view path);

struct WmiPath {
    std::string space;  // empty: the connection's
    std::string className;
    std::string key;                   // name of the key property; empty for a class, or if left out
    std::optional<std::string> value;  // text between the quotes; absent for a class

    // Whether the path has this key. Backslashes may be doubled or not: both are in use.
    bool Names(std::string_view keyValue) const;
};

// Parses "Class", "Class.Key='value'" or "Class.Key="value"", optionally with "NAMESPACE:" in front.
// Nothing for a malformed path.
std::optional<WmiPath> ReadWmiPath(std::string_view path);

}  // namespace machine
