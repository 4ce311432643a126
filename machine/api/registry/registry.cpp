// Registry keys and values. Errors are returned as results; the last error is unchanged.

#include <algorithm>
#include <cstring>
#include <optional>

#include "base/text_case.h"
#include "machine/api/call/call.h"
#include "machine/api/registry/mounted_hives.h"
#include "machine/api/registry/open_keys.h"

using namespace machine;

namespace {

struct Root {
    HKEY key;
    const char* name;
};

const Root roots[] = {{HKEY_CLASSES_ROOT, "HKCR"},
                      {HKEY_CURRENT_USER, "HKCU"},
                      {HKEY_LOCAL_MACHINE, "HKLM"},
                      {HKEY_USERS, "HKU"}};

constexpr const char* controlKey = "HKLM\\SYSTEM\\CurrentControlSet\\Control";
constexpr const char* startOptionsValue = "SystemStartOptions";

const Root* FindRoot(HKEY key) {
    const auto found =
        std::find_if(std::begin(roots), std::end(roots), [&](const Root& root) { return root.key == key; });
    return found != std::end(roots) ? found : nullptr;
}

// The path of a predefined root or an open key; nothing for any other handle.
std::optional<std::string> PathOf(EmulatedPc& pc, HKEY key) {
    if (const Root* const root = FindRoot(key)) return root->name;
    const OpenKey* const open = OpenKeys::Of(pc).Find(key);
    return open != nullptr ? std::optional(open->path) : std::nullopt;
}

std::string KeyName(HKEY key) {
    const Turn turn;
    return PathOf(EmulatedPc::Current(), key).value_or("<not open>");
}

// The boot loader's options come from the running system's facts, overriding the registry.
std::optional<RegistryValue> FindValue(const Pc& pc, const std::string& path, const std::string& name) {
    if (pc.system.startOptions && SameName(path, controlKey) && SameName(name, startOptionsValue))
        return RegistryValue{REG_SZ, *pc.system.startOptions};
    for (const auto& [key, values] : pc.registry) {
        if (!SameName(key, path)) continue;
        for (const auto& [valueName, value] : values) {
            if (SameName(valueName, name)) return value;
        }
    }
    return std::nullopt;
}

// The value as the platform stores it: text as UTF-16 with its terminator.
std::string StoredBytes(const RegistryValue& value) {
    if (value.type != REG_SZ) return value.data;
    const WideString wide = ToWide(value.data);
    return {reinterpret_cast<const char*>(wide.c_str()), (wide.size() + 1) * sizeof(WCHAR)};
}

std::string WithoutSlashes(std::string path) {
    while (path.ends_with('\\'))
        path.pop_back();
    return path;
}

LSTATUS Query(EmulatedPc& pc, HKEY key, const std::string& name, DWORD* type, BYTE* data, DWORD* size) {
    constexpr REGSAM reading = KEY_QUERY_VALUE | GENERIC_READ | GENERIC_ALL | MAXIMUM_ALLOWED;
    const std::optional<std::string> path = PathOf(pc, key);
    if (!path) return ERROR_INVALID_HANDLE;
    if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
    const OpenKey* const open = OpenKeys::Of(pc).Find(key);
    if (open != nullptr && (open->access & reading) == 0) return ERROR_ACCESS_DENIED;
    const std::optional<RegistryValue> value = FindValue(pc.facts, *path, name);
    if (!value) return ERROR_FILE_NOT_FOUND;
    const std::string bytes = StoredBytes(*value);
    const DWORD room = size != nullptr ? *size : 0;
    if (type != nullptr) *type = value->type;
    if (size != nullptr) *size = static_cast<DWORD>(bytes.size());
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < bytes.size()) return ERROR_MORE_DATA;
    std::memcpy(data, bytes.data(), bytes.size());
    return ERROR_SUCCESS;
}

}  // namespace

bool machine::IsAtOrBelow(const std::string& key, const std::string& path) {
    return SameName(key.substr(0, path.size()), path) &&
           (key.size() == path.size() || key[path.size()] == '\\');
}

bool machine::KeyExists(const Pc& pc, const std::string& path) {
    return IsAtOrBelow(controlKey, path) ||
           std::any_of(pc.registry.begin(), pc.registry.end(),
                       [&](const auto& key) { return IsAtOrBelow(key.first, path); });
}

// Error 2 for a key that does not exist, 6 for a parent that is not open, 87 without an output pointer and
// for options other than REG_OPTION_OPEN_LINK. The output is null after a failure. The caller closes the key
// with RegCloseKey.
extern "C" LSTATUS WINAPI RegOpenKeyExW(HKEY parent, LPCWSTR name, DWORD options, REGSAM access,
                                        PHKEY opened) {
    if (opened != nullptr) *opened = nullptr;
    const std::string path = WithoutSlashes(ToUtf8(name));
    NoteUnshown("RegOpenKeyExW", [&] { return Arguments{Hex(options)}; });
    return Answer<LSTATUS>("RegOpenKeyExW", {KeyName(parent), path, Hex(access)},
                           [&](EmulatedPc& pc) -> LSTATUS {
                               if (opened == nullptr || (options & ~DWORD{REG_OPTION_OPEN_LINK}) != 0)
                                   return ERROR_INVALID_PARAMETER;
                               const std::optional<std::string> above = PathOf(pc, parent);
                               if (!above) return ERROR_INVALID_HANDLE;
                               const std::string whole = path.empty() ? *above : *above + '\\' + path;
                               if (!path.empty() && !KeyExists(pc.facts, whole)) return ERROR_FILE_NOT_FOUND;
                               void* const key = OpenKeys::Of(pc).Open(pc, {whole, access});
                               *opened = static_cast<HKEY>(key);
                               return ERROR_SUCCESS;
                           });
}

// Without a buffer, returns only type and size. Error 2 for a value that does not exist, 5 for a key not
// opened for reading, 6 for one that is not open, 87 for a buffer without its size and for a reserved
// argument other than null, 234 for a short buffer, which is left untouched, with the required size.
extern "C" LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type,
                                           LPBYTE data, LPDWORD size) {
    const std::string value = ToUtf8(name);
    NoteUnshown("RegQueryValueExW", [&] {
        return Arguments{Presence(type), Presence(data), size != nullptr ? std::to_string(*size) : "null"};
    });
    return Answer<LSTATUS>("RegQueryValueExW", {KeyName(key), value}, [&](EmulatedPc& pc) -> LSTATUS {
        if (reserved != nullptr) return ERROR_INVALID_PARAMETER;
        return Query(pc, key, value, type, data, size);
    });
}

// Closing a predefined root does nothing. Error 6 for a key that is not open, which is a violation in the
// ledger.
extern "C" LSTATUS WINAPI RegCloseKey(HKEY key) {
    return Answer<LSTATUS>("RegCloseKey", {KeyName(key)}, [&](EmulatedPc& pc) -> LSTATUS {
        if (FindRoot(key) != nullptr) return ERROR_SUCCESS;
        return OpenKeys::Of(pc).Close(pc, key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
    });
}

// Mounts a hive file below a new key of HKEY_LOCAL_MACHINE. Errors as of MountHive; 6 for another parent.
extern "C" LSTATUS WINAPI RegLoadKeyW(HKEY parent, LPCWSTR name, LPCWSTR file) {
    const std::string key = ToUtf8(name);
    const std::string path = ToUtf8(file);
    return Answer<LSTATUS>("RegLoadKeyW", {KeyName(parent), key, path}, [&](EmulatedPc& pc) -> LSTATUS {
        if (parent != HKEY_LOCAL_MACHINE) return ERROR_INVALID_HANDLE;
        return static_cast<LSTATUS>(MountHive(pc, "HKLM\\" + key, path));
    });
}

// Unmounts it. Errors as of UnmountHive; 6 for another parent.
extern "C" LSTATUS WINAPI RegUnLoadKeyW(HKEY parent, LPCWSTR name) {
    const std::string key = ToUtf8(name);
    return Answer<LSTATUS>("RegUnLoadKeyW", {KeyName(parent), key}, [&](EmulatedPc& pc) -> LSTATUS {
        if (parent != HKEY_LOCAL_MACHINE) return ERROR_INVALID_HANDLE;
        return static_cast<LSTATUS>(UnmountHive(pc, "HKLM\\" + key));
    });
}
