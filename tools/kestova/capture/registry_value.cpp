#include "tools/kestova/capture/registry_value.h"

#include <algorithm>

#include "base/utf.h"

std::optional<machine::RegistryValue> ReadValue(HKEY key, const WCHAR* name) {
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
    std::string data(size, '\0');
    if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size) !=
        ERROR_SUCCESS)
        return std::nullopt;
    data.resize(size);
    return machine::RegistryValue{type, data};
}

std::string TextOf(const machine::RegistryValue& value) {
    WideString wide(value.data.size() / sizeof(WCHAR), TEXT('\0'));
    std::copy_n(value.data.data(), wide.size() * sizeof(WCHAR), reinterpret_cast<char*>(wide.data()));
    while (wide.ends_with(TEXT('\0')))
        wide.pop_back();
    return ToUtf8(wide);
}
