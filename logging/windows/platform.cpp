#include "logging/platform.h"

#include <new>
#include <string>

#include "logging/log_line.h"
#include "logging/windows/log_file.h"
#include "platform/windows_api.h"

namespace {

using Text = std::basic_string<WCHAR>;

constexpr DWORD longestText = 32768;  // of an environment variable or a path, in units

// Empty when the variable is not set.
Text Setting(const WCHAR* name) {
    Text value(longestText, 0);
    value.resize(GetEnvironmentVariableW(name, value.data(), longestText));
    return value;
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

DWORD LastErrorCode() {
    return GetLastError();
}

void SetLastErrorCode(DWORD code) {
    SetLastError(code);
}

ILogSink* StandardSink() noexcept {
    try {
        const Text file = Setting(TEXT("KESTOVA_LOG"));
        return new LogFile(file.empty() ? FileBesideProgram() : FullPath(file),
                           HighestLevel(Setting(TEXT("KESTOVA_LOG_LEVEL"))));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
