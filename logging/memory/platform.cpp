#include "logging/platform.h"

#include <new>

#include "logging/logger.h"

DWORD LastErrorCode() {
    return 0;
}

void SetLastErrorCode(DWORD) {}

ILogSink* StandardSink() noexcept {
    return nullptr;
}

void ReleaseStandardSink() noexcept {}

ILogger& CLoggingFactory::GetInstance() noexcept {
    // Never destroyed: records are written until the process ends.
    alignas(Logger) static std::byte place[sizeof(Logger)];
    static Logger* const logger = new (place) Logger;
    return *logger;
}
