// Paths of WMI: of namespaces, and of objects in them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace machine {

// "root\cimv2" for "\\.\root\CIMV2", "\\PC\root\cimv2" or "root/cimv2"; the case stays. Nothing: no such
// form.
std::optional<std::string> NamespaceOf(std::string_view path);

struct WmiPath {
    std::string space;  // empty: that of the connection
    std::string className;
    std::string key;                   // name of the key property; empty for a class, or when left out
    std::optional<std::string> value;  // of the key as it stands between its quotes; absent for a class

    // Whether the value means this key. Backslashes may stand twice or once: both are in use.
    bool Names(std::string_view keyValue) const;
};

// Reads "Class", "Class.Key='value'" or "Class.Key="value"", with "NAMESPACE:" in front or not. Nothing: the
// path is malformed.
std::optional<WmiPath> ReadWmiPath(std::string_view path);

}  // namespace machine
