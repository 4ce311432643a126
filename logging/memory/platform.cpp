#include "logging/platform.h"

DWORD LastErrorCode() {
    return 0;
}

void SetLastErrorCode(DWORD) {}

ILogSink* StandardSink() noexcept {
    return nullptr;
}
