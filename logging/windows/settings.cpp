#include "logging/windows/settings.h"

#include "logging/log_line.h"
#include "logging/plain_file.h"
#include "platform/start_options.h"

namespace {

using Text = std::basic_string<WCHAR>;

constexpr DWORD longestText = 32768;  // of an environment variable, a registry value or a path, in units

// Empty when the variable is not set.
Text Variable(const WCHAR* name) {
    Text value(longestText, 0);
    value.resize(GetEnvironmentVariableW(name, value.data(), longestText));
    return value;
}

// Of the local machine, in the view that programs of both word sizes share. Empty when there is no such text.
Text RegistryText(const WCHAR* path, const WCHAR* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS)
        return {};
    Text value(longestText, 0);
    DWORD size = longestText * sizeof(WCHAR);
    const LSTATUS read = RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ, nullptr, value.data(), &size);
    RegCloseKey(key);
    if (read != ERROR_SUCCESS) return {};
    value.resize(value.find(WCHAR{0}));
    return value;
}

// Windows PE has one user, and an environment that nobody else writes.
bool IsWindowsPe() {
    Text options = RegistryText(startOptionsKey, startOptionsValue);
    CharUpperBuffW(options.data(), static_cast<DWORD>(options.size()));
    return options.find(windowsPeOption) != Text::npos;
}

// True also when it cannot be found out.
bool IsElevated() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return true;
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    const BOOL known = GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &size);
    CloseHandle(token);
    return !known || elevation.TokenIsElevated != 0;
}

// Resolved once: a relative path is relative to the folder in which the program was started.
Text FullPath(const Text& path) {
    Text full(longestText, 0);
    full.resize(GetFullPathNameW(path.c_str(), longestText, full.data(), nullptr));
    return full;
}

Text FileBesideProgram() {
    Text program(longestText, 0);
    program.resize(GetModuleFileNameW(nullptr, program.data(), longestText));
    return program.substr(0, program.find_last_of(TEXT('\\')) + 1) + TEXT("Kestova.log");
}

}  // namespace

Text LogFilePath() {
    if (IsElevated() && !IsWindowsPe()) {
        const Text file = RegistryText(TEXT("SOFTWARE\\Kestova"), TEXT("Log"));
        return IsFullPath(file) ? file : FileBesideProgram();
    }
    const Text file = Variable(TEXT("KESTOVA_LOG"));
    return file.empty() ? FileBesideProgram() : FullPath(file);
}

int HighestLogLevel() {
    return HighestLevel(Variable(TEXT("KESTOVA_LOG_LEVEL")));
}
