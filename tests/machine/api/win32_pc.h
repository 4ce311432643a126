// Helpers of the tests of the Win32 calls.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/utf.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"

// A stale last error; a successful call keeps it.
inline constexpr DWORD staleError = 4711;

// Everything is released and the ledger has no violation.
inline void ExpectCleanLedger(const machine::EmulatedPc& pc) {
    EXPECT_THAT(pc.ledger.Outstanding(), testing::IsEmpty());
    EXPECT_THAT(pc.ledger.Violations(), testing::IsEmpty());
}

// Makes the next call of that name fail with the code, before or after its effect.
inline void FailNext(machine::EmulatedPc& pc, const char* call, uint32_t code, bool afterEffect = false) {
    pc.faults.Arm({.call = call, .nth = 1, .afterEffect = afterEffect, .code = code});
}

// Opens a device as the library does; the caller closes it.
inline HANDLE OpenShared(const WCHAR* name) {
    return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}
