// The lock of the logger.
#pragma once

#include "platform/windows_api.h"

#if defined(_WIN32)

// The thread that has it may take it again. Unlike the toolchain's own, it needs no memory when it is taken
// and leaves none behind.
class Lock {
  public:
    Lock() { InitializeCriticalSection(&section_); }
    ~Lock() { DeleteCriticalSection(&section_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() noexcept { EnterCriticalSection(&section_); }
    void unlock() noexcept { LeaveCriticalSection(&section_); }

  private:
    CRITICAL_SECTION section_;
};

#else

#include <mutex>

using Lock = std::recursive_mutex;

#endif
