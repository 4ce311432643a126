// Logging.dll as a module: it owns the logger and the log file, and frees both when it is unloaded.

#include <cstddef>
#include <new>

#include "logging/logger.h"
#include "logging/platform.h"
#include "logging/windows/log_file.h"
#include "logging/windows/settings.h"
#include "platform/windows_api.h"

namespace {

// Constructed when the module is loaded, before any module that uses it. At the end of the process it stays:
// other modules write records until then.
alignas(Logger) std::byte place[sizeof(Logger)];
Logger* const logger = new (place) Logger;

LogFile* file = nullptr;

}  // namespace

DWORD LastErrorCode() {
    return GetLastError();
}

void SetLastErrorCode(DWORD code) {
    SetLastError(code);
}

ILogSink* StandardSink() noexcept {
    if (file != nullptr) return file;
    try {
        file = new LogFile(LogFilePath(), HighestLogLevel());
    } catch (...) {
        return nullptr;
    }
    return file;
}

void ReleaseStandardSink() noexcept {
    delete file;
    file = nullptr;
}

ILogger& CLoggingFactory::GetInstance() noexcept {
    return *logger;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        logger->~Logger();
        ReleaseStandardSink();
    }
    return TRUE;
}
